// orlix convert
#include "batch.hpp"
#include "commands.hpp"
#include "console.hpp"
#include "image_file.hpp"
#include "measurement.hpp"
#include "region.hpp"
#include "subcommand.hpp"
#include "subject.hpp"
#include "warnings.hpp"

#include <orlix/client.hpp>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <optional>

namespace tool {

using namespace orlix;

namespace {

// In two parts, with the list of formats between them.
constexpr char kConvertFooter[] = R"(
The format follows the name of OUT: )";
constexpr char kConvertExamples[] = R"(.
PNG, PGM, PPM and PAM hold 8 and 16 bits, BMP and JPEG 8, PFM floating point, TIFF every image; PGM is
grey, PPM in colour. With - as IN or OUT the image comes from standard input or goes to standard
output, as PNG. What the image carries (pixel size, texts, bytes, coordinate map, settings) goes along
where the format holds it: all of it in PNG, TIFF and JPEG.

Changing the number of bits spreads the grey levels that --range names over all levels of the new
type: full (default; all levels of the old type), data (smallest to largest pixel) or LOW,HIGH.
Levels outside are clamped. 16 bits to 8 and back with the full range is exact at both ends.
--float keeps the grey levels as they are.

Examples:
  orlix convert camera.pgm camera.png --pixel-size 0.32
  orlix convert nuclei16.png nuclei8.png --type 8 --range data
  orlix convert colour.png green.png --band 1
  orlix convert section.png corner.png --crop 0,0,511,511
  orlix convert dump.bin dump.png --raw 1280x1024:u16le:512)";

struct ConvertOptions {
    LoadOptions load;
    std::string in, out, crop, range = "full";
    int type = 0;
    LONG band = BI_AllBands;
    double pixelSize = 0;
    std::optional<LONG> quality;
    bool floats = false, plain = false, force = false, json = false;
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

// Maps low .. high of the source to the whole range of the destination, rounded half up; NaN becomes 0.
template <class From, class To>
void Spread(const ComPtr<IImageVPAExPlus>& from, const ComPtr<IImageVPAExPlus>& to, LONG bands, double low,
            double high) {
    const double white = static_cast<To>(-1), scale = high > low ? white / (high - low) : 0;
    for (LONG band = 0; band < bands; ++band) {
        const Rows<From> in(from, band);
        const Rows<To> out(to, band);
        for (LONG y = 0; y < in.height(); ++y)
            std::transform(in[y].begin(), in[y].end(), out[y].begin(), [&](From pixel) {
                const double level = std::floor((static_cast<double>(pixel) - low) * scale + 0.5);
                return static_cast<To>(level > 0 ? std::min(level, white) : 0.0);
            });
    }
}

// Of the finite pixels; 0, 0 without one.
template <class From>
std::array<double, 2> Extremes(const ComPtr<IImageVPAExPlus>& image, LONG bands) {
    double low = std::numeric_limits<double>::infinity(), high = -low;
    for (LONG band = 0; band < bands; ++band)
        for (const std::span<From> row : Rows<From>(image, band))
            for (const From pixel : row) {
                const auto level = static_cast<double>(pixel);
                if (!std::isfinite(level)) continue;
                low = std::min(low, level);
                high = std::max(high, level);
            }
    return low <= high ? std::array{low, high} : std::array{0.0, 0.0};
}

// The grey levels that are spread, see the footer.
template <class From>
std::array<double, 2> RangeToSpread(const ComPtr<IImageVPAExPlus>& image, const Geometry& g, const std::string& text,
                                    Json& document) {
    if (text == "data") return Extremes<From>(image, g.bands);
    if (text == "full") {
        if (g.type == DT_Float) throw UsageError("floating-point levels have no full range; give --range");
        return {0, TypeMaximum(g.type)};
    }
    const auto numbers = ParseNumbers(text, text);
    if (numbers.size() != 2 || !(numbers[0] < numbers[1])) throw UsageError("--range is full, data or LOW,HIGH");
    if (numbers[0] < TypeMinimum(g.type) || numbers[1] > TypeMaximum(g.type))
        Warn(document, "levels-outside-type",
             "the levels " + text + " of --range reach beyond the grey levels of " + TypePhrase(g.type) + ", 0 to " +
                 Rounded(TypeMaximum(g.type), 0));
    return {numbers[0], numbers[1]};
}

template <class From>
ComPtr<IImageVPAExPlus> Retyped(const ComPtr<IImageVPAExPlus>& image, const Geometry& g, const ConvertOptions& options,
                                Json& document) {
    auto result = NewImage();
    const LONG type = options.floats ? LONG{DT_Float} : options.type ? LONG{options.type} : g.type;
    if (type == DT_Float) {
        if (options.range != "full") throw UsageError("floating-point images keep the levels; --range has no place");
        Check(result->Create(g.width, g.height, g.bands, type, 0), result);
        for (LONG band = 0; band < g.bands; ++band) {
            const Rows<From> in(image, band);
            const Rows<float> out(result, band);
            for (LONG y = 0; y < g.height; ++y)
                std::transform(in[y].begin(), in[y].end(), out[y].begin(),
                               [](From pixel) { return static_cast<float>(pixel); });
        }
        return result;
    }
    const auto [low, high] = RangeToSpread<From>(image, g, options.range, document);
    Check(result->Create(g.width, g.height, g.bands, type, 0), result);
    if (type == DT_BYTE)
        Spread<From, uint8_t>(image, result, g.bands, low, high);
    else if (type == DT_WORD)
        Spread<From, uint16_t>(image, result, g.bands, low, high);
    else
        Spread<From, uint32_t>(image, result, g.bands, low, high);
    return result;
}

ComPtr<IImageVPAExPlus> Retyped(const ComPtr<IImageVPAExPlus>& image, const ConvertOptions& options, Json& document) {
    const Geometry g = GeometryOf(image);
    const LONG type = options.floats ? LONG{DT_Float} : options.type ? LONG{options.type} : g.type;
    if (type == g.type && options.range == "full") return image;
    auto result = g.type == DT_BYTE    ? Retyped<uint8_t>(image, g, options, document)
                  : g.type == DT_WORD  ? Retyped<uint16_t>(image, g, options, document)
                  : g.type == DT_DWORD ? Retyped<uint32_t>(image, g, options, document)
                                       : Retyped<float>(image, g, options, document);
    TCoordinateMap map = {};
    Check(image->GetCoords(&map), image);
    Check(result->SetCoords(map), result);
    return result;
}

// Description, texts, bytes and pixel size, which images made from others do not have.
void CopyProperties(const ComPtr<IImageVPAExPlus>& from, const ComPtr<IImageVPAExPlus>& to) {
    Text description;
    Check(from->get_Description(description.Out()), from);
    Check(to->put_Description(description), to);
    const auto source = Cast<IImageEntries>(from), destination = Cast<IImageEntries>(to);
    LONG count = 0;
    Check(source->get_NumberOfTextEntries(&count), source);
    for (LONG i = 0; i < count; ++i) {
        Text keyword, text;
        Check(source->GetTextEntry(i, keyword.Out(), text.Out()), source);
        Check(destination->PutTextEntry(keyword, text), destination);
    }
    Check(source->get_NumberOfBinaryEntries(&count), source);
    for (LONG i = 0; i < count; ++i) {
        Text keyword;
        LONG size = 0;
        Check(source->GetBinaryEntry(i, keyword.Out(), &size), source);
        std::vector<unsigned char> bytes(static_cast<size_t>(size));
        Check(source->ReadBinaryEntry(i, 0, size, bytes.data()), source);
        Check(destination->PutBinaryEntry(keyword, size, bytes.data()), destination);
    }
    const auto file = Cast<IImageFile>(from), copy = Cast<IImageFile>(to);
    double x = 0, y = 0;
    if (Check(file->GetMicronsPerPixel(&x, &y), file) == S_OK) Check(copy->PutMicronsPerPixel(x, y), copy);
}

int Convert(const ConvertOptions& options, const Subcommand& command) {
    CheckOutput(options.out, {options.in}, options.force);
    if (options.out == "-" && options.json) throw UsageError("standard output holds the image, so --json has no place");
    const std::string extension = Extension(options.out);
    if (options.plain && options.out != "-" && extension != ".pgm" && extension != ".ppm" && IsImageName(options.out))
        throw UsageError("--plain is for PGM and PPM, not for " + extension);
    Json document = {{"file", ShownNames({options.in})[0]}, {"output", options.out}};
    const auto source = options.load.Load(options.in);
    auto image = source;
    if (!options.crop.empty()) {
        const Geometry g = GeometryOf(image);
        const auto corners = ParseNumbers(options.crop, options.crop);
        const bool whole = std::all_of(corners.begin(), corners.end(), [](double v) { return v == std::floor(v); });
        if (corners.size() != 4 || !whole || corners[0] < 0 || corners[1] < 0 || corners[2] < corners[0] ||
            corners[3] < corners[1])
            throw UsageError("--crop is LEFT,TOP,RIGHT,BOTTOM in whole pixels, both ends included");
        if (corners[2] >= g.width || corners[3] >= g.height)
            throw std::runtime_error("the rectangle to crop reaches outside the image");
        image = NewImage();
        const auto at = [&](size_t i) { return static_cast<LONG>(corners[i]); };
        Check(image->CreateFromSubImage(source.get(), options.band, at(0), at(1), at(2), at(3)), image);
    } else if (options.band != BI_AllBands) {
        image = NewImage();
        Check(image->CreateFromImage(source.get(), options.band), image);
    }
    image = Retyped(image, options, document);
    if (image.get() != source.get()) CopyProperties(source, image);

    const auto file = Cast<IImageFile>(image);
    if (options.pixelSize != 0) Check(file->PutMicronsPerPixel(options.pixelSize, options.pixelSize), file);
    if (options.quality) Check(file->put_Quality(*options.quality), file);
    const ImageFileFormat plain = GeometryOf(image).bands == 1 ? IFF_PlainPGM : IFF_PlainPPM;
    SaveImage(image, options.out, options.plain ? plain : IFF_ByExtension);
    WarnOfLosses(image, options.out, document);
    PrintOne(command, std::move(document), options.json);
    return kDone;
}

}  // namespace

Command AddConvert(CLI::App& program) {
    const auto options = std::make_shared<ConvertOptions>();
    Subcommand command(program, "convert", "Save an image in another format, type or part",
                       kConvertFooter + kOutputNames + kConvertExamples);
    command.Add("IN", options->in, kImageFile).Required();
    command.Add("OUT", options->out, "File to write, or -").Required();
    options->load.AddPages(command);
    const Parameter type = command.Add("--type", options->type, "Bits of a sample: 8, 16 or 32")
                               .OneOf(std::vector{8, 16, 32})
                               .Named("BITS");
    command.AddFlag("--float", options->floats, "Floating-point samples").Excludes(type);
    command.Add("--range", options->range, "Grey levels to spread: full, data or LOW,HIGH")
        .ShowDefault("full")
        .Named("LEVELS");
    command.Add("--band", options->band, "This band only, from 0").NotNegative();
    command.Add("--crop", options->crop, "LEFT,TOP,RIGHT,BOTTOM, both ends included").Named("CORNERS");
    command.Add("--pixel-size", options->pixelSize, "Microns per pixel to write").Positive().Named("MICRONS");
    command.Add("--quality", options->quality, "Of JPEG: 1 (smallest) to 100 (best); default 90").Between(1, 100);
    command.AddFlag("--plain", options->plain, "Plain (text) PGM or PPM");
    command.AddFlag("--force", options->force, "Replace the image itself");
    command.AddFlag("--json", options->json, "Warnings as JSON");
    return [options, command] { return Convert(*options, command); };
}

}  // namespace tool
