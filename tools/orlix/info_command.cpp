// orlix info
#include "batch.hpp"
#include "commands.hpp"
#include "console.hpp"
#include "document.hpp"
#include "image_file.hpp"
#include "subcommand.hpp"
#include "subject.hpp"
#include "warnings.hpp"

#include <orlix/client.hpp>

#include <iostream>
#include <memory>

namespace tool {

using namespace orlix;

namespace {

constexpr char kInfoFooter[] = R"(
Says how large each image is, of which type, how it is calibrated and by what (the part of the file that
gave the pixel size), and what it carries: texts, bytes, and settings that differ from the initial ones.
With --json one document {..., images: [...]}, an object for each image in the order given.

Examples:
  orlix info section.png
  orlix info --json *.png
  orlix info stack.tif --page 3)";

constexpr char kAllBands[] = "all";

Json Band(LONG band) { return band == BI_AllBands ? Json(kAllBands) : Json(band); }
Json RangeOf(double lower, double upper) { return {{"lower", lower}, {"upper", upper}}; }

// Pixel size, significant bits and coordinate map.
void AddCalibration(const ComPtr<IImageVPAExPlus>& image, Json& out) {
    const auto file = Cast<IImageFile>(image);
    double x = 0, y = 0;
    Json& size = out["micronsPerPixel"];
    if (Check(file->GetMicronsPerPixel(&x, &y), file) == S_OK) {
        Text source;
        Check(file->get_CalibrationSource(source.Out()), file);
        size["x"] = x;
        size["y"] = y;
        size["source"] = source.Utf8();
    }
    LONG bits = 0;
    Check(file->get_SignificantBits(&bits), file);
    out["significantBits"] = bits == 0 ? Json(nullptr) : Json(bits);
    TCoordinateMap map = {};
    Check(image->GetCoords(&map), image);
    const TMatrix& a = map.Matrix;
    const bool identity = map.OrgX == 0 && map.OrgY == 0 && a.A11 == 1 && a.A12 == 0 && a.A21 == 0 && a.A22 == 1;
    Json& coordinates = out["coordinates"];
    if (!identity)
        coordinates = {{"origin", {Finite(map.OrgX), Finite(map.OrgY)}},
                       {"matrix", {Finite(a.A11), Finite(a.A12), Finite(a.A21), Finite(a.A22)}}};
}

// What processing and display go by.
void AddSettings(const ComPtr<IImageVPAExPlus>& image, Json& out) {
    const auto process = Cast<IImageProcess>(image);
    const auto display = Cast<IDisplayProcess>(image);
    double lower = 0, upper = 0;
    LONG band = 0, bins = 0;
    Check(process->GetLuminanceRange(&lower, &upper), process);
    out["luminanceRange"] = RangeOf(lower, upper);
    Check(process->get_NumberOfBins(&bins), process);
    out["bins"] = bins;
    Check(process->get_BandToProcess(&band), process);
    out["bandToProcess"] = Band(band);
    Check(display->GetDisplayRange(&lower, &upper), display);
    out["displayRange"] = RangeOf(lower, upper);
    Check(display->get_BandToDisplay(&band), display);
    out["bandToDisplay"] = Band(band);
    bool grey = true;
    for (LONG level = 0; level < 256; ++level) {
        OLE_COLOR colour = 0;
        Check(display->get_ColorTable(level, &colour), display);
        grey = grey && colour == static_cast<OLE_COLOR>(level) * 0x010101;
    }
    out["colourTable"] = grey ? "grey" : "own";
}

void AddEntries(const ComPtr<IImageVPAExPlus>& image, Json& out) {
    Text description;
    Check(image->get_Description(description.Out()), image);
    out["description"] = static_cast<BSTR>(description) ? Json(description.Utf8()) : Json(nullptr);
    Json& texts = out["texts"] = Json::object();
    Json& binaries = out["binaries"] = Json::array();
    const auto entries = Cast<IImageEntries>(image);
    LONG count = 0;
    Check(entries->get_NumberOfTextEntries(&count), entries);
    for (LONG i = 0; i < count; ++i) {
        Text keyword, text;
        Check(entries->GetTextEntry(i, keyword.Out(), text.Out()), entries);
        texts[keyword.Utf8()] = text.Utf8();
    }
    Check(entries->get_NumberOfBinaryEntries(&count), entries);
    for (LONG i = 0; i < count; ++i) {
        Text keyword;
        LONG size = 0;
        Check(entries->GetBinaryEntry(i, keyword.Out(), &size), entries);
        binaries.push_back({{"keyword", keyword.Utf8()}, {"bytes", size}});
    }
}

Json InfoOf(const LoadOptions& load, const std::string& file, const std::string& name) {
    int64_t pages = 0;
    const auto image = load.Load(file, &pages);
    Json out;
    out["file"] = name;
    LONG bands = 0, width = 0, height = 0, type = 0;
    Check(image->Dimensions(&bands, &width, &height), image);
    Check(image->DataType(0, &type), image);
    out["width"] = width;
    out["height"] = height;
    out["bands"] = bands;
    out["type"] = TypeName(type);
    out["page"] = load.page;
    out["pages"] = pages;
    AddCalibration(image, out);
    AddSettings(image, out);
    AddEntries(image, out);
    return out;
}

std::string RangeLine(const Json& info, const char* range, const char* band, const char* name) {
    const Json& levels = info[range];
    const LONG bands = info["bands"];
    return TextLine(name, Number(levels["lower"]) + " to " + Number(levels["upper"]) +
                              (bands == 1                ? ""
                               : info[band] == kAllBands ? ", all bands"
                                                         : ", band " + info[band].dump()));
}

std::string InfoText(const Json& info) {
    const auto whole = [&](const char* name) { return Rounded(info[name], 0); };
    std::string image = whole("width") + " x " + whole("height") + " pixels, " + std::string(info["type"]) + ", " +
                        whole("bands") + (info["bands"] == 1 ? " band" : " bands");
    if (!info["significantBits"].is_null()) image += ", " + whole("significantBits") + " significant bits";
    std::string out = std::string(info["file"]) + "\n" + TextLine("image", image);
    if (info["pages"] != 1) out += TextLine("page", whole("page") + " of " + whole("pages") + ", from 0");
    const Json& size = info["micronsPerPixel"];
    out += TextLine("pixel size", size.is_null() ? "not calibrated"
                                                 : Number(size["x"]) + " x " + Number(size["y"]) + " µm per pixel (" +
                                                       std::string(size["source"]) + ")");
    if (const Json& map = info["coordinates"]; !map.is_null()) {
        const auto list = [](const Json& numbers) {
            std::string text;
            for (const Json& number : numbers)
                text += (text.empty() ? "" : " ") + (number.is_null() ? "–" : Number(number));
            return text;
        };
        out += TextLine("coordinates", "origin " + list(map["origin"]) + ", matrix " + list(map["matrix"]));
    }
    out += RangeLine(info, "luminanceRange", "bandToProcess", "luminance");
    out += RangeLine(info, "displayRange", "bandToDisplay", "display");
    if (info["colourTable"] != "grey") out += TextLine("colours", "a table of its own");
    if (!info["description"].is_null()) out += TextLine("description", info["description"]);
    for (const auto& [keyword, text] : info["texts"].items()) out += "  " + keyword + ": " + std::string(text) + "\n";
    for (const Json& entry : info["binaries"])
        out += "  " + std::string(entry["keyword"]) + ": " + Rounded(entry["bytes"], 0) + " bytes\n";
    return out + WarningsText(info);
}

}  // namespace

Command AddInfo(CLI::App& program) {
    struct InfoOptions {
        LoadOptions load;
        std::vector<std::string> files;
        bool json = false;
    };
    const auto options = std::make_shared<InfoOptions>();
    Subcommand command(program, "info", "Say what image files hold", kInfoFooter);
    command.Add("IMAGE", options->files, kImageFiles).Required();
    options->load.AddPages(command);
    command.AddFlag("--json", options->json, "As JSON");
    return [options, command] {
        Batch batch = RunBatch(
            options->files,
            [&](size_t i, const std::string& name, Progress&) {
                return InfoOf(options->load, options->files[i], name);
            },
            [&](const Json& info) {
                if (!options->json && !info.contains("error")) std::cout << InfoText(info) << std::flush;
            });
        if (options->json) {
            Json document = command.Envelope();
            document["images"] = std::move(batch.images);
            document["warnings"] = std::move(batch.warnings);
            std::cout << Print(document);
        }
        return batch.code();
    };
}

}  // namespace tool
