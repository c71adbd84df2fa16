// orlix render
#include "batch.hpp"
#include "commands.hpp"
#include "console.hpp"
#include "image_file.hpp"
#include "pictures.hpp"
#include "subcommand.hpp"
#include "subject.hpp"
#include "warnings.hpp"

#include <orlix/measure.hpp>

#include <algorithm>
#include <cmath>
#include <iostream>
#include <memory>

namespace tool {

using namespace orlix;

namespace {

constexpr char kRenderFooter[] = R"(
The view is what a window of that size would show: the image as large as it fits, with square pixels, in
the middle of the surround. With a zoom factor of 4 it begins with a quarter of the image's width and
height about the centre, and grows to fill the view.

Grey levels of 8 bits are shown as they are, others spread over the range of their type; --snap spreads
those that occur. TRIM is the part of the pixels left out at either end, 0.001 or so.

With --roi, --snap and --equalize look at the pixels of that region only; it is not drawn.

Examples:
  orlix render section.png --size 800 600 -o view.png
  orlix render height.png --size 1024 768 --snap 0.001 --zoom 4 --center 320 200 -o view.png
  orlix render weld.png --size 640 480 --surround FFFFFF --overlay-roi circle:400,300,250 -o view.png)";

struct RenderOptions {
    LoadOptions load;
    std::string file, output;
    std::vector<int> size;
    double zoom = 1;
    std::vector<double> center;
    std::optional<double> snap;
    bool equalize = false, nearest = false, json = false, force = false;
    std::string surround = "000000", overlayColor = "FF0000", overlayPolarity = "frame";
    std::vector<std::string> overlays;
    SubjectOptions subject{BI_AllBands};
};

// 0x00RRGGBB from "RRGGBB" or "#RRGGBB".
uint32_t ParseColor(const std::string& text) {
    const std::string digits = text.starts_with('#') ? text.substr(1) : text;
    if (digits.size() != 6 || digits.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
        throw UsageError("a colour is written RRGGBB, in hexadecimal digits: " + text);
    return static_cast<uint32_t>(std::stoul(digits, nullptr, 16));
}

OLE_COLOR ToOleColor(uint32_t rgb) { return (rgb & 0xff) << 16 | (rgb & 0xff00) | rgb >> 16; }

struct View {
    LONG width, height;
    std::vector<uint32_t> pixels;  // 0x00RRGGBB, from the top
    TCoordinateMap toDest = {};
    RECT dest = {};
};

// The columns (or rows) of the view that image columns first .. last cover: at least the one under their middle.
std::pair<LONG, LONG> Covered(double origin, double scale, LONG first, LONG last, LONG begin, LONG end) {
    const auto at = [&](double position, double rounding) {
        return static_cast<LONG>(std::clamp(std::floor(origin + scale * position + rounding), -1e9, 1e9));
    };
    LONG from = at(first - 0.5, 0.5), to = at(last + 0.5, 0.5);
    if (from == to) {
        from = at((first + last) / 2.0, 0);
        to = from + 1;
    }
    return {std::max(from, begin), std::min(to, end)};
}

void DrawRegion(const ComPtr<IRegionOfInterest>& region, LONG width, LONG height, uint32_t color, View& view) {
    const std::vector<uint8_t> mask = RegionMask(region, width, height);
    for (LONG y = 0; y < height; ++y) {
        const auto row = mask.begin() + static_cast<ptrdiff_t>(y) * width;
        const auto [top, bottom] =
            Covered(view.toDest.OrgY, view.toDest.Matrix.A22, y, y, view.dest.top, view.dest.bottom);
        for (LONG x = 0; x < width; ++x) {
            if (!row[x]) continue;
            const LONG start = x;
            while (x + 1 < width && row[x + 1]) ++x;
            const auto [left, right] =
                Covered(view.toDest.OrgX, view.toDest.Matrix.A11, start, x, view.dest.left, view.dest.right);
            for (LONG destY = top; destY < bottom && left < right; ++destY)
                std::fill_n(view.pixels.begin() + static_cast<ptrdiff_t>(destY) * view.width + left, right - left,
                            color);
        }
    }
}

View Rendered(const RenderOptions& options, const Subject& subject) {
    const auto display = Cast<IDisplayProcess>(subject.image);
    const auto picture = Cast<IPictureExZoom>(subject.image);
    const auto memory = Cast<IPictureMemory>(subject.image);
    Check(display->put_BandToDisplay(subject.band), display);
    if (options.snap) Check(display->SnapDisplayRange(*options.snap, *options.snap, 0), display);
    if (options.equalize) Check(display->EqualizeColorTable(), display);
    Check(picture->put_ZoomFactor(options.zoom), picture);
    if (!options.center.empty()) {
        Check(picture->put_ZoomCenterX(options.center[0]), picture);
        Check(picture->put_ZoomCenterY(options.center[1]), picture);
    }
    Check(picture->put_Surround(ToOleColor(ParseColor(options.surround))), picture);

    View view{options.size[0], options.size[1], {}};
    view.pixels.resize(static_cast<size_t>(view.width) * static_cast<size_t>(view.height));
    SPictureMemory target = {view.pixels.data(), view.width, view.height, view.width,
                             options.nearest ? RS_Nearest : RS_Smooth};
    Check(memory->RenderToMemory(&target, 0, 0, view.width, view.height), memory);
    Check(picture->get_PixelToDestCoords(&view.toDest), picture);
    Check(picture->get_DestRect(&view.dest), picture);
    return view;
}

Picture ToPicture(const View& view) {
    Picture picture{view.width, view.height, 3, {}};
    picture.samples.reserve(3 * view.pixels.size());
    for (const uint32_t pixel : view.pixels)
        for (const int shift : {16, 8, 0}) picture.samples.push_back(static_cast<uint8_t>(pixel >> shift));
    return picture;
}

Json Describe(const View& view, const Subject& subject, const ComPtr<IDisplayProcess>& display) {
    double lower = 0, upper = 0;
    Check(display->GetDisplayRange(&lower, &upper), display);
    const double scaleX = view.toDest.Matrix.A11, scaleY = view.toDest.Matrix.A22;
    const auto shown = [](double from, double to, double origin, double scale) {
        return Json::array({std::llround((from - origin) / scale + 0.5), std::llround((to - origin) / scale - 0.5)});
    };
    Json out;
    out["displayRange"] = {Finite(lower), Finite(upper)};
    out["columns"] = shown(view.dest.left, view.dest.right, view.toDest.OrgX, scaleX);
    out["rows"] = shown(view.dest.top, view.dest.bottom, view.toDest.OrgY, scaleY);
    out["viewPixelsPerPixel"] = {{"x", scaleX}, {"y", scaleY}};
    out["picture"] = {view.dest.left, view.dest.top, view.dest.right, view.dest.bottom};
    out["micronsPerViewPixel"] = nullptr;
    if (subject.xMicrons > 0)
        out["micronsPerViewPixel"] = {{"x", subject.xMicrons / scaleX}, {"y", subject.yMicrons / scaleY}};
    return out;
}

std::string RenderText(const Json& m) {
    const auto range = [&](const char* name) {
        return Number(m[name][0].get<double>()) + " to " + Number(m[name][1].get<double>());
    };
    return SubjectText(m) + TextLine("grey levels", range("displayRange")) +
           TextLine("shown", "columns " + range("columns") + ", rows " + range("rows")) +
           TextLine("scale", Rounded(NumberAt(m, "viewPixelsPerPixel.x"), 4) + " view pixels for a pixel") +
           TextLine("written", OutputName(m)) + WarningsText(m);
}

int Render(const RenderOptions& options, const Subcommand& command) {
    if (options.size[0] < 1 || options.size[1] < 1 || options.size[0] > 32767 || options.size[1] > 32767)
        throw UsageError("--size: width and height from 1 to 32767");
    if (options.output != "-" && Extension(options.output) != ".png")
        throw UsageError("-o " + options.output + ": a view is written as PNG, so its name must end with .png");
    if (options.output == "-" && options.json)
        throw UsageError("standard output holds the view, so --json has no place");
    CheckOutput(options.output, {options.file}, options.force);
    ParseColor(options.surround);
    const uint32_t color = ParseColor(options.overlayColor);
    const PolarityType polarity = ParsePolarity(options.overlayPolarity);
    std::vector<RegionShape> overlays;
    for (const std::string& text : options.overlays) overlays.push_back(ParseRegion(text));
    SubjectSettings settings;
    options.subject.Complete(settings);

    Json document = {{"file", ShownNames({options.file})[0]}};
    const Subject subject(options.load.Load(options.file), settings, document);
    View view = Rendered(options, subject);
    for (RegionShape& shape : overlays) {
        shape.polarity = polarity;
        DrawRegion(MakeRegion(shape, subject.width, subject.height), subject.width, subject.height, color, view);
    }
    document.update(Describe(view, subject, Cast<IDisplayProcess>(subject.image)));
    document["output"] = options.output;
    SavePng(ToPicture(view), document["micronsPerViewPixel"], Path(options.output));
    if (options.json) {
        PrintOne(command, std::move(document), true);
    } else {
        (options.output == "-" ? std::cerr : std::cout) << RenderText(document);
    }
    return kDone;
}

}  // namespace

Command AddRender(CLI::App& program) {
    const auto options = std::make_shared<RenderOptions>();
    Subcommand command(program, "render", "Draw a view of an image, zoomed, in its display colours", kRenderFooter);
    command.Add("IMAGE", options->file, kImageFile).Required();
    options->load.AddPages(command);
    command.Add("-o,--output", options->output, "PNG file to write; - is standard output").Required().Named("FILE");
    command.AddFlag("--force", options->force, "Replace the image itself");
    command.Add("--size", options->size, "Of the view, in pixels").Pair("W H").Required();
    command.Add("--zoom", options->zoom, "Zoom factor (default 1: the whole image)").Named("F");
    command.Add("--center", options->center, "Pixel in the middle (default: the image's)").Pair("X Y");
    command.Add("--snap", options->snap, "Spread the grey levels that occur, but for this part at either end")
        .Named("TRIM");
    command.AddFlag("--equalize", options->equalize, "Spread them so that all are about equally frequent");
    command.AddFlag("--nearest", options->nearest, "Show single pixels instead of averages and transitions");
    command.Add("--surround", options->surround, "Colour beside the image, RRGGBB (default black)").Named("COLOUR");
    command.Add("--overlay-roi", options->overlays, "Region to draw, as for --roi; may be repeated").Repeated("SHAPE");
    command.Add("--overlay-polarity", options->overlayPolarity, "inside, outside or frame (default)").Named("SIDE");
    command.Add("--overlay-color", options->overlayColor, "RRGGBB (default red)").Named("COLOUR");
    options->subject.AddRegion(command);
    options->subject.AddBand(command, "Band to show, from 0 (default: three or more bands in colour, else the first)");
    options->subject.AddPixelSize(command);
    command.AddFlag("--json", options->json, "Summary as JSON");
    return [options, command] { return Render(*options, command); };
}

}  // namespace tool
