#include "subject.hpp"

#include "console.hpp"
#include "subcommand.hpp"

#include <orlix/client.hpp>

#include <algorithm>
#include <cmath>
#include <limits>

namespace tool {

using namespace orlix;

void SubjectOptions::AddRegion(Subcommand& command) {
    command.Add("--roi", region_, "Region: rect:L,T,R,B | oriented:W,H,ANGLE,XC,YC | circle:XC,YC,R").Named("SHAPE");
    command.Add("--roi-polarity", polarity_, "inside, outside or frame of the region")
        .ShowDefault("inside")
        .Named("SIDE");
}

void SubjectOptions::AddBand(Subcommand& command, const char* description) {
    command.Add("--band", band_, description).NotNegative();
}

void SubjectOptions::AddPixelSize(Subcommand& command) {
    command.Add("--pixel-size", pixelSize_, "Microns per pixel, instead of what the file says").Named("MICRONS");
}

void SubjectOptions::Complete(SubjectSettings& settings) const {
    settings.band = band_.value_or(defaultBand_);
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

Subject::Subject(ComPtr<IImageVPAExPlus> subject, const SubjectSettings& settings, Json& document)
    : image(std::move(subject)), band(settings.band) {
    Check(image->Dimensions(&bands, &width, &height), image);
    Check(image->DataType(0, &type), image);
    if (band >= bands)
        throw std::runtime_error("the image has " + std::to_string(bands) + (bands == 1 ? " band" : " bands") +
                                 ", so there is no band " + std::to_string(band));
    const auto process = Cast<IImageProcess>(image);
    Check(process->put_BandToProcess(band), process);
    document["width"] = width;
    document["height"] = height;
    document["bands"] = bands;
    document["type"] = TypeName(type);
    document["band"] = band == BI_AllBands ? Json(nullptr) : Json(band);

    const auto file = Cast<IImageFile>(image);
    const bool known = Check(file->GetMicronsPerPixel(&xMicrons, &yMicrons), file) == S_OK;
    if (settings.pixelSize) {
        xMicrons = yMicrons = *settings.pixelSize;
        Check(file->PutMicronsPerPixel(xMicrons, yMicrons), file);  // so that pictures of the result carry it
    }
    Json& size = document["micronsPerPixel"];
    if (known || settings.pixelSize) {
        size["x"] = xMicrons;
        size["y"] = yMicrons;
        size["source"] = settings.pixelSize ? "given" : "file";
    }

    if (settings.region) region = MakeRegion(*settings.region, width, height);
    Check(process->put_RegionOfInterest(region.get()), process);
    pixels = int64_t{width} * height;
    if (region) {
        const std::vector<uint8_t> mask = RegionMask(region, width, height);
        pixels = std::count(mask.begin(), mask.end(), uint8_t{1});
    }
    if (pixels < 1) throw std::runtime_error("the region holds no pixel of the image");
    Json& out = document["region"];
    out["shape"] = settings.region ? settings.region->text : "whole image";
    out["polarity"] = settings.region ? PolarityName(settings.region->polarity) : "inside";
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

double TypeMinimum(LONG type) { return type == DT_Float ? -std::numeric_limits<double>::infinity() : 0; }
double TypeMaximum(LONG type) {
    return type == DT_Float ? std::numeric_limits<double>::infinity() : std::ldexp(1.0, static_cast<int>(type)) - 1;
}

void PutLuminance(const Subject& subject, double lower, double upper) {
    if (lower < TypeMinimum(subject.type) || upper > TypeMaximum(subject.type))
        throw std::runtime_error("the luminance range does not lie within the grey levels of " +
                                 TypePhrase(subject.type));
    const auto process = Cast<IImageProcess>(subject.image);
    Check(process->PutLuminanceRange(lower, upper), process);
}

std::string Padded(const std::string& text, size_t width, bool right) {
    // Bytes that continue a character do not count.
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
        size += m["band"].is_null() ? ", " + whole("bands") + " bands"
                                    : ", band " + whole("band") + " of " + whole("bands");
    if (m["micronsPerPixel"].is_null())
        size += ", not calibrated";
    else
        size += ", " + Number(NumberAt(m, "micronsPerPixel.x")) + " x " + Number(NumberAt(m, "micronsPerPixel.y")) +
                " µm per pixel (" + m["micronsPerPixel"]["source"].get<std::string>() + ")";
    const std::string shape = Member(m, "region.shape"), polarity = Member(m, "region.polarity");
    return m["file"].get<std::string>() + "\n" + TextLine("image", size) +
           TextLine("region",
                    shape + (polarity == "inside" ? "" : ", " + polarity) + ", " + whole("region.pixels") + " pixels");
}

}  // namespace tool
