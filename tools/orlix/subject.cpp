#include "subject.hpp"

#include "console.hpp"
#include "image_file.hpp"
#include "subcommand.hpp"
#include "units.hpp"
#include "warnings.hpp"

#include <orlix/measure.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <type_traits>

namespace tool {

using namespace orlix;

void SubjectOptions::AddRegion(Subcommand& command) {
    command.Add("--roi", region_, "Region: rect:L,T,R,B | oriented:W,H,ANGLE,XC,YC | circle:XC,YC,R").Named("SHAPE");
    command.Add("--roi-polarity", polarity_, "inside, outside or frame of the region")
        .ShowDefault("inside")
        .Named("SIDE");
}

void SubjectOptions::AddBand(Subcommand& command, const char* description, bool grey) {
    grey_ = grey;
    command.Add("--band", band_, description).Named(grey ? "NUMBER|grey" : "NUMBER");
}

void SubjectOptions::AddExclusions(Subcommand& command) {
    command.Add("--mask", mask_, "Image file of the same size: where it is 0, pixels are left out of everything");
    command.Add("--ignore", ignored_, "Pixels of these grey levels (of the file) are left out of everything")
        .Repeated("LOW,HIGH");
}

void SubjectOptions::AddPixelSize(Subcommand& command) {
    command.Add("--pixel-size", pixelSize_, "Microns per pixel, instead of what the file says").Named("MICRONS");
}

LONG SubjectOptions::Band() const {
    if (band_.empty()) return defaultBand_;
    if (grey_ && (band_ == "grey" || band_ == "gray")) return kGreyBand;
    LONG band = 0;
    const auto [end, error] = std::from_chars(band_.data(), band_.data() + band_.size(), band);
    if (error != std::errc() || end != band_.data() + band_.size() || band < 0)
        throw UsageError("'" + band_ + "' is not a band: 0, 1, 2" + (grey_ ? " or grey" : ""));
    return band;
}

void SubjectOptions::Complete(SubjectSettings& settings) const {
    settings.band = Band();
    settings.mask = mask_;
    for (const std::string& text : ignored_) {
        const auto levels = ParseNumbers(text, text, true);
        if (levels.size() != 2 || (std::isnan(levels[0]) && std::isnan(levels[1])) || levels[0] > levels[1])
            throw UsageError("'" + text + "' is not a range of grey levels: LOW,HIGH or LOW, or ,HIGH");
        settings.ignored.push_back({levels[0], levels[1]});
    }
    if (!region_.empty()) {
        settings.region = ParseRegion(region_);
        settings.region->polarity = ParsePolarity(polarity_);
    } else if (polarity_ != "inside") {
        throw UsageError("--roi-polarity needs --roi");
    }
    if (pixelSize_ && !(*pixelSize_ > 0 && std::isfinite(*pixelSize_)))
        throw UsageError("--pixel-size must be a number of microns above 0");
    settings.pixelSize = pixelSize_;
}

namespace {

// Calls `visit` with the rows of a band as spans of its pixel type.
template <class Visit>
void ForEachRow(const ComPtr<IImageVPAExPlus>& image, LONG band, LONG type, Visit visit) {
    const auto rows = [&]<class Pixel>(Pixel) {
        for (const std::span<Pixel> row : Rows<Pixel>(image, band)) visit(row);
    };
    if (type == DT_BYTE)
        rows(uint8_t{});
    else if (type == DT_WORD)
        rows(uint16_t{});
    else if (type == DT_DWORD)
        rows(uint32_t{});
    else
        rows(float{});
}

// Removes the pixels at which another image is 0 from the mask.
void LeaveOutMasked(const std::string& file, LONG width, LONG height, std::vector<uint8_t>& mask) {
    ComPtr<IImageVPAExPlus> image;
    try {
        // The limit of the image itself admitted as many samples as it has.
        const int64_t most = std::max(int64_t{1} << 28, int64_t{width} * height);
        image = LoadOptions{.maxSamples = static_cast<LONG>(std::min<int64_t>(most, INT32_MAX))}.Load(file);
    } catch (const Error& error) {
        throw std::runtime_error("the mask " + file + ": " + error.what());
    }
    LONG bands = 0, columns = 0, rows = 0, type = 0;
    Check(image->Dimensions(&bands, &columns, &rows), image);
    Check(image->DataType(0, &type), image);
    if (columns != width || rows != height)
        throw std::runtime_error("the mask has " + std::to_string(columns) + " x " + std::to_string(rows) +
                                 " pixels, the image " + std::to_string(width) + " x " + std::to_string(height));
    auto at = mask.begin();
    ForEachRow(image, 0, type, [&](const auto& row) {
        for (const auto pixel : row) {
            if (pixel == 0) *at = 0;
            ++at;
        }
    });
}

void LeaveOutIgnored(const Subject& subject, const std::vector<std::array<double, 2>>& ignored,
                     std::vector<uint8_t>& mask) {
    auto at = mask.begin();
    ForEachRow(subject.image, subject.band, subject.type, [&](const auto& row) {
        for (const auto pixel : row) {
            const double level = static_cast<double>(pixel);
            for (const auto& [low, high] : ignored)
                if (!(level < low) && !(level > high)) *at = 0;
            ++at;
        }
    });
}

// Dots per inch, if the pixel size is one that files carry because a screen, a printer or a program has it; otherwise
// 0.
int ResolutionOfPaper(double microns) {
    for (const int dots : {72, 75, 90, 96, 100, 120, 144, 150, 192, 200, 240, 300, 600, 1200})
        // The formats hold whole pixels per metre, rounded or truncated.
        if (std::fabs(1e6 / microns - dots / 0.0254) <= 1) return dots;
    return 0;
}

}  // namespace

ComPtr<IImageVPAExPlus> Luma(const ComPtr<IImageVPAExPlus>& image) {
    LONG bands = 0, width = 0, height = 0, type = 0;
    Check(image->Dimensions(&bands, &width, &height), image);
    Check(image->DataType(0, &type), image);
    if (bands != 3) throw std::runtime_error("grey is made of three bands, the image has " + std::to_string(bands));
    auto grey = CreateObject<IImageVPAExPlus>("Orlix.Image");
    Check(grey->Create(width, height, 1, type, 0), grey);
    const auto fill = [&]<class Pixel>(Pixel) {
        const Rows<Pixel> red(image, 0), green(image, 1), blue(image, 2), out(grey);
        for (LONG y = 0; y < height; ++y)
            for (size_t x = 0; x < out[y].size(); ++x) {
                if constexpr (std::is_integral_v<Pixel>)
                    out[y][x] = static_cast<Pixel>(
                        (299 * uint64_t{red[y][x]} + 587 * uint64_t{green[y][x]} + 114 * uint64_t{blue[y][x]} + 500) /
                        1000);
                else
                    out[y][x] = static_cast<Pixel>(
                        (299 * double{red[y][x]} + 587 * double{green[y][x]} + 114 * double{blue[y][x]}) / 1000);
            }
    };
    if (type == DT_BYTE)
        fill(uint8_t{});
    else if (type == DT_WORD)
        fill(uint16_t{});
    else if (type == DT_DWORD)
        fill(uint32_t{});
    else
        fill(float{});
    double x = 0, y = 0;
    const auto file = Cast<IImageFile>(image), greyFile = Cast<IImageFile>(grey);
    if (Check(file->GetMicronsPerPixel(&x, &y), file) == S_OK) Check(greyFile->PutMicronsPerPixel(x, y), greyFile);
    return grey;
}

Subject::Subject(ComPtr<IImageVPAExPlus> subject, const SubjectSettings& settings, Json& document)
    : image(std::move(subject)), band(settings.band) {
    Check(image->Dimensions(&bands, &width, &height), image);
    Check(image->DataType(0, &type), image);
    const LONG inFile = bands;
    if (band == kGreyBand) {
        if (bands > 1) image = Luma(image);
        bands = 1;
        band = 0;
    }
    if (band >= bands)
        throw std::runtime_error("the image has " + std::to_string(bands) + (bands == 1 ? " band" : " bands") +
                                 ", so there is no band " + std::to_string(band));
    document["width"] = width;
    document["height"] = height;
    document["bands"] = inFile;
    document["type"] = TypeName(type);
    document["band"] = band == BI_AllBands ? Json(nullptr) : inFile > bands ? Json("grey") : Json(band);

    const auto file = Cast<IImageFile>(image);
    const bool known = Check(file->GetMicronsPerPixel(&xMicrons, &yMicrons), file) == S_OK;
    if (settings.pixelSize) {
        xMicrons = yMicrons = *settings.pixelSize;
        Check(file->PutMicronsPerPixel(xMicrons, yMicrons), file);  // for the pictures of the result
    }
    Json& size = document["micronsPerPixel"];
    if (known || settings.pixelSize) {
        size["x"] = xMicrons;
        size["y"] = yMicrons;
        size["source"] = settings.pixelSize ? "given" : "file";
    }

    if (const int dots = known && !settings.pixelSize ? ResolutionOfPaper(xMicrons) : 0)
        Warn(document, "resolution-of-paper",
             "the file's " + Digits(xMicrons, 5) + " µm per pixel are " + std::to_string(dots) +
                 " dots an inch, as screens and printers have: hardly the size of a pixel on the specimen (see "
                 "--pixel-size)");

    if (settings.region) region = MakeRegion(*settings.region, width, height);
    std::vector<uint8_t> mask = RegionMask(region, width, height);
    const auto count = [&] { return static_cast<int64_t>(std::count(mask.begin(), mask.end(), uint8_t{1})); };
    const int64_t inRegion = count();
    if (inRegion < 1) throw std::runtime_error("the region holds no pixel of the image");
    if (!settings.mask.empty()) LeaveOutMasked(settings.mask, width, height, mask);
    if (!settings.ignored.empty()) LeaveOutIgnored(*this, settings.ignored, mask);
    pixels = count();
    if (pixels < 1) throw std::runtime_error("all pixels of the region are left out by --mask and --ignore");
    if (pixels < inRegion) region = RegionOfMask(std::move(mask), width, height);
    const auto process = Cast<IImageProcess>(image);
    Check(process->put_BandToProcess(band), process);
    Check(process->put_RegionOfInterest(region.get()), process);
    Json& out = document["region"];
    out["shape"] = settings.region ? settings.region->text : "whole image";
    out["polarity"] = settings.region ? PolarityName(settings.region->polarity) : "inside";
    out["mask"] = settings.mask.empty() ? Json(nullptr) : Json(Utf8(Path(settings.mask).filename()));
    out["pixelsLeftOut"] = inRegion - pixels;
    out["pixels"] = pixels;
    out["areaSquareMicrons"] = Area(pixels);
}

Json Subject::Area(int64_t pixelCount) const {
    const double square = xMicrons * yMicrons;
    return square > 0 ? Json(static_cast<double>(pixelCount) * square) : Json(nullptr);
}

const char* TypeName(LONG dataType) {
    switch (dataType) {
        case DT_BYTE:
            return "8-bit";
        case DT_WORD:
            return "16-bit";
        case DT_DWORD:
            return "32-bit";
        case DT_Float:
            return "float";
        default:
            return "unknown";
    }
}

std::string TypePhrase(LONG type) { return std::string(type == DT_BYTE ? "an " : "a ") + TypeName(type) + " image"; }

void PutLuminance(const Subject& subject, double lower, double upper) {
    if (lower < TypeMinimum(subject.type) || upper > TypeMaximum(subject.type))
        throw std::runtime_error("the luminance range does not lie within the grey levels of " +
                                 TypePhrase(subject.type));
    const auto process = Cast<IImageProcess>(subject.image);
    Check(process->PutLuminanceRange(lower, upper), process);
}

std::string Padded(const std::string& text, size_t width, bool right) {
    // Continuation bytes of UTF-8 do not count.
    const auto length = static_cast<size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xc0) != 0x80; }));
    const std::string blanks(length < width ? width - length : 0, ' ');
    return right ? blanks + text : text + blanks;
}

std::string TextLine(const std::string& name, const std::string& text) {
    return "  " + Padded(name, 12, false) + text + "\n";
}

std::string OutputName(const Json& m) {
    const std::string name = m["output"];
    return name == "-" ? "standard output" : name;
}

std::string SubjectText(const Json& m) {
    const auto whole = [&](const char* path) { return Rounded(NumberAt(m, path), 0); };
    std::string size = whole("width") + " x " + whole("height") + " pixels, " + m["type"].get<std::string>();
    if (NumberAt(m, "bands") > 1)
        size += m["band"].is_null()     ? ", " + whole("bands") + " bands"
                : m["band"].is_string() ? ", grey of " + whole("bands") + " bands"
                                        : ", band " + whole("band") + " of " + whole("bands");
    if (m["micronsPerPixel"].is_null())
        size += ", not calibrated";
    else
        size += ", " + Number(NumberAt(m, "micronsPerPixel.x")) + " x " + Number(NumberAt(m, "micronsPerPixel.y")) +
                " µm per pixel (" + m["micronsPerPixel"]["source"].get<std::string>() + ")";
    const std::string shape = Member(m, "region.shape"), polarity = Member(m, "region.polarity");
    return m["file"].get<std::string>() + "\n" + TextLine("image", size) +
           TextLine("region", shape + (polarity == "inside" ? "" : ", " + polarity) + ", " + whole("region.pixels") +
                                  " pixels" +
                                  (NumberAt(m, "region.pixelsLeftOut") > 0
                                       ? ", " + whole("region.pixelsLeftOut") + " more left out by mask or grey level"
                                       : ""));
}

}  // namespace tool
