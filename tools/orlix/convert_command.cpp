// orlix convert
#include "batch.hpp"
#include "commands.hpp"
#include "console.hpp"
#include "image_file.hpp"
#include "measurement.hpp"
#include "region.hpp"
#include "subcommand.hpp"
#include "warnings.hpp"

#include <orlix/client.hpp>

#include <algorithm>
#include <cmath>
#include <memory>

namespace tool {

using namespace orlix;

namespace {

constexpr char kConvertFooter[] = R"(
The format follows the name of OUT: .png (grey or colour), .pgm (grey), .ppm (colour). With - as IN or
OUT the image comes from standard input or goes to standard output, as PNG.
Pixel size and texts go along where the format holds them (PNG).

Changing the number of bits spreads the grey levels that --range names over all levels of the new
type: full (default; all levels of the old type), data (smallest to largest pixel) or LOW,HIGH.
Levels outside are clamped. 16 bits to 8 and back with the full range is exact at both ends.

Examples:
  orlix convert camera.pgm camera.png --pixel-size 0.32
  orlix convert nuclei16.png nuclei8.png --type 8 --range data
  orlix convert colour.png green.png --band 1
  orlix convert section.png corner.png --crop 0,0,511,511)";

struct ConvertOptions {
    LoadOptions load;
    std::string in, out, crop, range = "full";
    int type = 0;
    LONG band = BI_AllBands;
    double pixelSize = 0;
    bool plain = false, force = false, json = false;
};

ComPtr<IImageVPAExPlus> NewImage() { return CreateObject<IImageVPAExPlus>("Orlix.Image"); }

struct Geometry {
    LONG bands = 0, width = 0, height = 0, type = 0;
};
Geometry GeometryOf(const ComPtr<IImageVPAExPlus>& image) {
    Geometry g;
    Check(image->Dimensions(&g.bands, &g.width, &g.height), image);
    Check(image->DataType(0, &g.type), image);
    return g;
}

// Maps low .. high of the source to the whole range of the destination, rounded half up.
template <class From, class To>
void Spread(const ComPtr<IImageVPAExPlus>& from, const ComPtr<IImageVPAExPlus>& to, LONG bands, double low,
            double high) {
    const double white = static_cast<To>(-1), scale = high > low ? white / (high - low) : 0;
    for (LONG band = 0; band < bands; ++band) {
        const Rows<From> in(from, band);
        const Rows<To> out(to, band);
        for (LONG y = 0; y < in.height(); ++y)
            std::transform(in[y].begin(), in[y].end(), out[y].begin(), [&](From pixel) {
                return static_cast<To>(std::clamp(std::floor((pixel - low) * scale + 0.5), 0.0, white));
            });
    }
}

template <class From>
std::array<double, 2> Extremes(const ComPtr<IImageVPAExPlus>& image, LONG bands) {
    From low = static_cast<From>(-1), high = 0;
    for (LONG band = 0; band < bands; ++band)
        for (const std::span<From> row : Rows<From>(image, band))
            for (const From pixel : row) {
                low = std::min(low, pixel);
                high = std::max(high, pixel);
            }
    return {static_cast<double>(low), static_cast<double>(high)};
}

template <class From>
ComPtr<IImageVPAExPlus> Retyped(const ComPtr<IImageVPAExPlus>& image, const Geometry& g, const ConvertOptions& options,
                                Json& document) {
    std::array<double, 2> range = {0, static_cast<double>(static_cast<From>(-1))};
    if (options.range == "data") {
        range = Extremes<From>(image, g.bands);
    } else if (options.range != "full") {
        const auto numbers = ParseNumbers(options.range, options.range);
        if (numbers.size() != 2 || !(numbers[0] < numbers[1])) throw UsageError("--range is full, data or LOW,HIGH");
        range = {numbers[0], numbers[1]};
        const double most = static_cast<double>(static_cast<From>(-1));
        if (range[1] < 0 || range[0] > most || range[0] < 0 || range[1] > most)
            Warn(document, "levels-outside-type",
                 "the levels " + options.range + " of --range reach beyond the grey levels of " + TypePhrase(g.type) +
                     ", 0 to " + Rounded(most, 0));
    }
    auto result = NewImage();
    const LONG type = options.type ? options.type : g.type;
    Check(result->Create(g.width, g.height, g.bands, type, 0), result);
    if (type == DT_BYTE)
        Spread<From, uint8_t>(image, result, g.bands, range[0], range[1]);
    else
        Spread<From, uint16_t>(image, result, g.bands, range[0], range[1]);
    return result;
}

void CopyTexts(const ComPtr<IImageVPAExPlus>& from, const ComPtr<IImageVPAExPlus>& to) {
    const auto source = Cast<IImageEntries>(from), destination = Cast<IImageEntries>(to);
    LONG count = 0;
    Check(source->get_NumberOfTextEntries(&count), source);
    for (LONG i = 0; i < count; ++i) {
        Text keyword, text;
        Check(source->GetTextEntry(i, keyword.Out(), text.Out()), source);
        Check(destination->PutTextEntry(keyword, text), destination);
    }
    const auto file = Cast<IImageFile>(from), copy = Cast<IImageFile>(to);
    double x = 0, y = 0;
    if (Check(file->GetMicronsPerPixel(&x, &y), file) == S_OK) Check(copy->PutMicronsPerPixel(x, y), copy);
}

int Convert(const ConvertOptions& options, const Subcommand& command) {
    CheckOutput(options.out, {options.in}, options.force);
    if (options.out == "-" && options.json) throw UsageError("standard output holds the image, so --json has no place");
    if (options.plain && Extension(options.out) == ".png") throw UsageError("--plain is for PGM and PPM, not for PNG");
    Json document = {{"file", ShownNames({options.in})[0]}, {"output", options.out}};
    const auto source = options.load.Load(options.in);
    auto image = source;
    if (options.band != BI_AllBands || !options.crop.empty()) {
        const Geometry g = GeometryOf(image);
        std::vector<double> corners = {0, 0, static_cast<double>(g.width - 1), static_cast<double>(g.height - 1)};
        if (!options.crop.empty()) corners = ParseNumbers(options.crop, options.crop);
        const bool whole = std::all_of(corners.begin(), corners.end(), [](double v) { return v == std::floor(v); });
        if (corners.size() != 4 || !whole || corners[0] < 0 || corners[1] < 0 || corners[2] < corners[0] ||
            corners[3] < corners[1])
            throw UsageError("--crop is LEFT,TOP,RIGHT,BOTTOM in whole pixels, both ends included");
        if (corners[2] >= g.width || corners[3] >= g.height)
            throw std::runtime_error("the rectangle to crop reaches outside the image");
        image = NewImage();
        const auto at = [&](size_t i) { return static_cast<LONG>(corners[i]); };
        Check(image->CreateFromSubImage(source.get(), options.band, at(0), at(1), at(2), at(3)), image);
    }
    const Geometry g = GeometryOf(image);
    if ((options.type && options.type != g.type) || options.range != "full")
        image = g.type == DT_BYTE ? Retyped<uint8_t>(image, g, options, document)
                                  : Retyped<uint16_t>(image, g, options, document);
    if (image.get() != source.get()) CopyTexts(source, image);

    const auto file = Cast<IImageFile>(image);
    if (options.pixelSize != 0) Check(file->PutMicronsPerPixel(options.pixelSize, options.pixelSize), file);
    const ImageFileFormat plain = g.bands == 1 ? IFF_PlainPGM : IFF_PlainPPM;
    SaveImage(image, options.out, options.plain ? plain : IFF_ByExtension);
    WarnOfLosses(image, options.out, document);
    PrintOne(command, std::move(document), options.json);
    return kDone;
}

}  // namespace

Command AddConvert(CLI::App& program) {
    const auto options = std::make_shared<ConvertOptions>();
    Subcommand command(program, "convert", "Save an image in another format, type or part", kConvertFooter);
    command.Add("IN", options->in, kImageFile).Required();
    command.Add("OUT", options->out, "File to write, or -").Required();
    options->load.Add(command);
    command.Add("--type", options->type, "Bits of a sample: 8 or 16").OneOf(std::vector{8, 16}).Named("BITS");
    command.Add("--range", options->range, "Grey levels to spread: full, data or LOW,HIGH")
        .ShowDefault("full")
        .Named("LEVELS");
    command.Add("--band", options->band, "This band only, from 0").NotNegative();
    command.Add("--crop", options->crop, "LEFT,TOP,RIGHT,BOTTOM, both ends included").Named("CORNERS");
    command.Add("--pixel-size", options->pixelSize, "Microns per pixel to write").Positive().Named("MICRONS");
    command.AddFlag("--plain", options->plain, "Plain (text) PGM or PPM");
    command.AddFlag("--force", options->force, "Replace the image itself");
    command.AddFlag("--json", options->json, "Warnings as JSON");
    return [options, command] { return Convert(*options, command); };
}

}  // namespace tool
