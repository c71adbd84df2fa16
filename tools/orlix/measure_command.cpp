// orlix measure
#include "commands.hpp"
#include "console.hpp"
#include "html_report.hpp"
#include "measurement.hpp"
#include "pictures.hpp"

#include <CLI/CLI.hpp>

#include <orlix/client.hpp>

#include <algorithm>
#include <cmath>
#include <iostream>
#include <map>
#include <memory>
#include <set>

namespace tool {

namespace {

constexpr char kFooter[] = R"(
What is measured
  Grey statistics of the region: count, mean, standard deviation and grey centroid of all its
  pixels; minimum, maximum, median, mode, skew, kurtosis and entropy of those in the luminance
  range. The six automatic thresholds, and the area fraction on either side of each. Of the chosen
  phase: pixels, area fraction of the region, area in square microns, centroid.

Thresholds (METHOD, or METHOD:PARAMETER,PARAMETER)
  minimize-variance, otsu         smallest fractions of the pixels left and right       0,0
  trim, percentile                fractions that are the dark and the bright tail       0.05,0.05
  search-for-minimum, minimum     fractions trimmed off before the search               0.005,0.005
  gaussian-mixture, mixture       smallest fractions left and right                     0.005,0.005
  maximize-entropy, entropy       smallest fractions left and right                     0.005,0.005
  exponential, exp                fraction left above the threshold                     0.05
  LO,HI   the grey levels of the phase, both included; LO, or ,HI for an open end
  The level of an automatic threshold belongs to the dark side. With trim, the dark phase is
  below the left limit and the bright phase above the right one.

Histogram
  8-bit images have 256 bins. For others the luminance range snaps to the region's smallest and
  largest value (unless --luminance is given); statistics have one bin for each value, thresholds
  are chosen on neighbouring values added up to at most --bins bins.

Output
  A table for people, or with --json one document {tool, version, settings, images: [...], summary}
  whatever the number of images (a failed one has "file" and "error"), or with --csv one line an
  image. With --out DIR also NAME_bitmap.png (white phase), NAME_overlay.png, and report.html for
  one image, NAME_report.html each and report.html over all of them for several.

Examples:
  orlix measure cast_iron.png --dark --pixel-size 0.65
  orlix measure nuclei.png --bright --threshold entropy --smooth 5 --json
  orlix measure *.png --threshold 0,96 --csv > fractions.csv
  orlix measure weld.png --roi circle:400,300,250 --out results
  orlix measure plate.png --roi oriented:300,80,-12.5,400,300 --roi-polarity outside)";

struct Options {
    std::vector<std::string> files;
    std::string region, polarity = "inside", threshold = "minimize-variance", out;
    bool dark = false, bright = false, json = false, csv = false;
    double pixelSize = 0;
    std::vector<double> luminance;
    MeasureSettings settings;
};

// The last part of each path, with its folder where that alone names two images.
std::vector<std::string> ShownNames(const std::vector<std::string>& files) {
    std::map<std::string, int> uses;
    for (const std::string& file : files) ++uses[Utf8(Path(file).filename())];
    std::vector<std::string> names;
    for (const std::string& file : files) {
        const std::filesystem::path path = Path(file);
        const std::string name = Utf8(path.filename());
        const std::string folder = Utf8(path.parent_path().filename());
        names.push_back(uses[name] == 1 || folder.empty() ? name : folder + "/" + name);
    }
    return names;
}

void CompleteSettings(Options& options) {
    MeasureSettings& settings = options.settings;
    settings.threshold = ParseThreshold(options.threshold);
    if (!settings.threshold.method && (options.dark || options.bright))
        throw UsageError("levels name the phase themselves: neither --dark nor --bright goes with them");
    settings.bright = options.bright;
    if (!options.region.empty()) {
        settings.region = ParseRegion(options.region);
        settings.region->polarity = ParsePolarity(options.polarity);
    } else if (options.polarity != "inside") {
        throw UsageError("--roi-polarity needs --roi");
    }
    if (options.pixelSize != 0) {
        if (!(options.pixelSize > 0) || !std::isfinite(options.pixelSize))
            throw UsageError("--pixel-size must be a number of microns above 0");
        settings.pixelSize = options.pixelSize;
    }
    if (!options.luminance.empty()) {
        if (!(options.luminance[0] <= options.luminance[1])) throw UsageError("--luminance: LOW is above HIGH");
        settings.luminance = {options.luminance[0], options.luminance[1]};
    }
}

Json SettingsDocument(const Options& options) {
    const MeasureSettings& settings = options.settings;
    Json out;
    out["threshold"] = settings.threshold.text;
    out["phase"] = !settings.threshold.method ? "between" : settings.bright ? "bright" : "dark";
    out["region"] = settings.region ? Json(settings.region->text) : Json(nullptr);
    out["regionPolarity"] = options.polarity;
    out["pixelSize"] = settings.pixelSize ? Json(*settings.pixelSize) : Json(nullptr);
    out["band"] = settings.band;
    out["luminance"] = settings.luminance ? Json(*settings.luminance) : Json(nullptr);
    out["bins"] = settings.bins;
    out["smooth"] = settings.smoothing;
    return out;
}

// Half the width of the interval that holds the mean of n values with a probability of 95 %, in standard errors: Student's t
// (two-sided) for n - 1 degrees of freedom.
double StudentT95(size_t n) {
    constexpr double kTable[] = {12.706, 4.303, 3.182, 2.776, 2.571, 2.447, 2.365, 2.306, 2.262, 2.228,
                                 2.201,  2.179, 2.160, 2.145, 2.131, 2.120, 2.110, 2.101, 2.093, 2.086,
                                 2.080,  2.074, 2.069, 2.064, 2.060, 2.056, 2.052, 2.048, 2.045, 2.042};
    const size_t freedom = n - 1;
    // Beyond the table the first term of the expansion in 1 / freedom, good to 0.001.
    return freedom <= std::size(kTable) ? kTable[freedom - 1] : 1.960 + 2.372 / static_cast<double>(freedom);
}

Json Summary(const Json& images) {
    std::vector<double> fractions;
    for (const Json& image : images)
        if (!image.contains("error")) fractions.push_back(NumberAt(image, "phase.areaFraction"));
    Json out;
    out["measured"] = fractions.size();
    out["failed"] = images.size() - fractions.size();
    if (fractions.size() < 2) return out;
    const double n = static_cast<double>(fractions.size());
    double sum = 0, squares = 0;
    for (const double fraction : fractions) sum += fraction;
    const double mean = sum / n;
    for (const double fraction : fractions) squares += (fraction - mean) * (fraction - mean);
    const double deviation = std::sqrt(squares / (n - 1));
    Json& area = out["areaFraction"];
    area["mean"] = mean;
    area["standardDeviation"] = deviation;
    area["confidence95"] = StudentT95(fractions.size()) * deviation / std::sqrt(n);
    area["minimum"] = *std::min_element(fractions.begin(), fractions.end());
    area["maximum"] = *std::max_element(fractions.begin(), fractions.end());
    return out;
}

// The columns of a CSV line: members of an image's document, and of its thresholds "METHOD.member".
constexpr const char* kColumns[] = {"file",
                                    "error",
                                    "width",
                                    "height",
                                    "bands",
                                    "type",
                                    "band",
                                    "micronsPerPixel.x",
                                    "micronsPerPixel.y",
                                    "region.shape",
                                    "region.polarity",
                                    "region.pixels",
                                    "region.areaSquareMicrons",
                                    "luminance.lower",
                                    "luminance.upper",
                                    "grey.mean",
                                    "grey.standardDeviation",
                                    "grey.minimum",
                                    "grey.maximum",
                                    "grey.median",
                                    "grey.mode",
                                    "grey.skew",
                                    "grey.kurtosis",
                                    "grey.entropy",
                                    "grey.xCentroid",
                                    "grey.yCentroid",
                                    "minimize-variance.threshold",
                                    "trim.left",
                                    "trim.right",
                                    "search-for-minimum.threshold",
                                    "gaussian-mixture.threshold",
                                    "maximize-entropy.threshold",
                                    "exponential.threshold",
                                    "phase.polarity",
                                    "phase.method",
                                    "phase.lower",
                                    "phase.upper",
                                    "phase.pixels",
                                    "phase.areaFraction",
                                    "phase.areaSquareMicrons",
                                    "phase.xCentroid",
                                    "phase.yCentroid"};

std::string CsvHeader() {
    std::string line;
    for (const char* column : kColumns) line += (line.empty() ? "" : ",") + std::string(column);
    return line + "\r\n";
}

std::string CsvLine(Json image) {
    if (image.contains("thresholds"))
        for (const Json& entry : Json(image["thresholds"])) image[entry["method"].get<std::string>()] = entry;
    std::string line;
    for (const char* column : kColumns) line += (column == kColumns[0] ? "" : ",") + CsvField(Member(image, column));
    return line + "\r\n";
}

std::string Padded(const std::string& text, size_t width, bool right = true) {
    // Counted in characters: bytes that continue one do not count.
    const auto length = static_cast<size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xc0) != 0x80; }));
    const std::string blanks(length < width ? width - length : 0, ' ');
    return right ? blanks + text : text + blanks;
}

std::string Plain(const Json& m, const std::string& path, int digits = 2) {
    const double value = NumberAt(m, path);
    return Rounded(value, value == std::floor(value) ? 0 : digits);
}

std::string TextOf(const Json& m) {
    std::string out = m["file"].get<std::string>() + "\n";
    const auto line = [&](const std::string& name, const std::string& text) {
        out += "  " + Padded(name, 12, false) + text + "\n";
    };
    std::string size = Plain(m, "width") + " x " + Plain(m, "height") + " pixels, " + m["type"].get<std::string>();
    if (NumberAt(m, "bands") > 1) size += ", band " + Plain(m, "band") + " of " + Plain(m, "bands");
    if (m["micronsPerPixel"].is_null())
        size += ", not calibrated";
    else
        size += ", " + Number(NumberAt(m, "micronsPerPixel.x")) + " x " + Number(NumberAt(m, "micronsPerPixel.y")) +
                " µm per pixel (" + m["micronsPerPixel"]["source"].get<std::string>() + ")";
    line("image", size);
    const std::string shape = Member(m, "region.shape"), polarity = Member(m, "region.polarity");
    line("region",
         shape + (polarity == "inside" ? "" : ", " + polarity) + ", " + Plain(m, "region.pixels") + " pixels");
    line("grey", "mean " + Plain(m, "grey.mean") + ", deviation " + Plain(m, "grey.standardDeviation") + ", minimum " +
                     Plain(m, "grey.minimum") + ", maximum " + Plain(m, "grey.maximum"));
    line("", "median " + Plain(m, "grey.median") + ", mode " + Plain(m, "grey.mode") + ", skew " +
                 Plain(m, "grey.skew", 3) + ", kurtosis " + Plain(m, "grey.kurtosis", 3) + ", entropy " +
                 Plain(m, "grey.entropy", 3));
    line("", "centroid " + Plain(m, "grey.xCentroid") + ", " + Plain(m, "grey.yCentroid"));
    if (NumberAt(m, "histogram.pixelsOutside") > 0)
        line("luminance", Plain(m, "luminance.lower") + " to " + Plain(m, "luminance.upper") + ", " +
                              Plain(m, "histogram.pixelsOutside") + " pixels outside");
    line("thresholds", Padded("", 22, false) + Padded("level", 16) + Padded("dark", 11) + Padded("bright", 11));
    for (const Json& entry : m["thresholds"]) {
        std::string text =
            (entry["chosen"] == true ? "> " : "  ") + Padded(entry["method"].get<std::string>(), 20, false);
        if (entry.contains("message"))
            text += "    " + entry["message"].get<std::string>();
        else
            text += Padded(entry.contains("left") ? Plain(entry, "left") + " | " + Plain(entry, "right")
                                                  : Plain(entry, "threshold"),
                           16) +
                    Padded(Rounded(100 * NumberAt(entry, "darkFraction"), 2) + " %", 11) +
                    Padded(Rounded(100 * NumberAt(entry, "brightFraction"), 2) + " %", 11);
        if (entry.contains("note")) text += "  " + entry["note"].get<std::string>();
        line("", text);
    }
    const double lower = NumberAt(m, "phase.lower"), upper = NumberAt(m, "phase.upper");
    line("phase",
         Member(m, "phase.polarity").get<std::string>() + ", " +
             (lower > upper ? "no grey level" : "grey " + Plain(m, "phase.lower") + " to " + Plain(m, "phase.upper")));
    std::string area = "area fraction " + Rounded(100 * NumberAt(m, "phase.areaFraction"), 3) + " %, " +
                       Plain(m, "phase.pixels") + " pixels";
    if (Member(m, "phase.areaSquareMicrons").is_number()) area += ", " + Plain(m, "phase.areaSquareMicrons") + " µm²";
    line("", area);
    if (NumberAt(m, "phase.pixels") > 0)
        line("", "centroid " + Plain(m, "phase.xCentroid") + ", " + Plain(m, "phase.yCentroid"));
    return out + "\n";
}

std::string TextOfSummary(const Json& summary) {
    if (!summary.contains("areaFraction")) return {};
    const auto percent = [&](const char* name) {
        return Rounded(100 * NumberAt(summary["areaFraction"], name), 3) + " %";
    };
    return Rounded(NumberAt(summary, "measured"), 0) + " images: area fraction " + percent("mean") + " ± " +
           percent("confidence95") + " (95 % confidence), deviation " + percent("standardDeviation") + ", from " +
           percent("minimum") + " to " + percent("maximum") + "\n";
}

// Pictures and report of one image, under a name that no other image of the batch has.
class OutputFolder {
public:
    OutputFolder(const std::string& folder, bool single) : folder_(Path(folder)), single_(single) {
        std::error_code error;
        std::filesystem::create_directories(folder_, error);
        if (!std::filesystem::is_directory(folder_)) throw std::runtime_error("cannot make the folder " + folder);
    }

    void Add(const std::string& file, Measurement& measurement) {
        const std::string stem = Utf8(Path(file).stem());
        std::string name = stem;
        for (int number = 2; !used_.insert(name).second; ++number) name = stem + "_" + std::to_string(number);

        const Picture display = DisplayPicture(measurement);
        const Picture overlay = OverlayPicture(measurement, display);
        const std::filesystem::path temporary = folder_ / Path(name + "_report.tmp.png");
        const std::string report = single_ ? "report.html" : name + "_report.html";
        const Json& calibration = measurement.document["micronsPerPixel"];
        SavePng(PhasePicture(measurement.phase), calibration, folder_ / Path(name + "_bitmap.png"));
        SavePng(overlay, calibration, folder_ / Path(name + "_overlay.png"));
        WriteFile(folder_ / Path(report),
                  ImageReport(measurement.document, ORLIX_TOOL_VERSION, DataUri(Reduced(display, kLargest), temporary),
                              DataUri(Reduced(overlay, kLargest), temporary)));
        if (!single_) entries_.push_back({measurement.document, report, DataUri(Reduced(overlay, 280), temporary)});
        Json& outputs = measurement.document["outputs"];
        outputs["bitmap"] = name + "_bitmap.png";
        outputs["overlay"] = name + "_overlay.png";
        outputs["report"] = report;
    }

    void AddFailure(const Json& failure) { entries_.push_back({failure, {}, {}}); }

    void Finish(const Json& summary) {
        if (!single_) WriteFile(folder_ / "report.html", BatchReport(entries_, summary, ORLIX_TOOL_VERSION));
    }

private:
    static constexpr int32_t kLargest = 1400;  // pixels, of the pictures in a report; the files beside it are whole
    std::filesystem::path folder_;
    bool single_;
    std::set<std::string> used_;
    std::vector<BatchEntry> entries_;
};

bool IsMissingModule(const orlix::Error& error) {
    return error.result() == REGDB_E_CLASSNOTREG || error.result() == CO_E_CLASSSTRING;
}

int Measure(Options& options) {
    CompleteSettings(options);
    std::optional<OutputFolder> folder;
    if (!options.out.empty()) folder.emplace(options.out, options.files.size() == 1);

    const std::vector<std::string> names = ShownNames(options.files);
    Json images = Json::array();
    bool failed = false;
    Progress progress(options.files.size());
    if (options.csv) std::cout << CsvHeader();
    for (size_t i = 0; i < options.files.size(); ++i) {
        progress.Next(names[i]);
        Json document;
        try {
            Measurement measurement = MeasureFile(options.files[i], names[i], options.settings);
            if (folder) folder->Add(options.files[i], measurement);
            document = std::move(measurement.document);
            if (document["bands"] > 1 && i == 0)
                progress.Say("orlix: " + names[i] + " has several bands; band " +
                             std::to_string(options.settings.band) + " is measured");
        } catch (const std::exception& error) {
            const auto* const call = dynamic_cast<const orlix::Error*>(&error);
            if (call && IsMissingModule(*call)) throw;
            progress.Say("orlix: " + names[i] + ": " + error.what());
            failed = true;
            document = Json::object();
            document["file"] = names[i];
            document["error"] = error.what();
            if (folder) folder->AddFailure(document);
        }
        progress.Clear();
        if (options.csv)
            std::cout << CsvLine(document) << std::flush;
        else if (!options.json && !document.contains("error"))
            std::cout << TextOf(document) << std::flush;
        images.push_back(std::move(document));
    }

    Json document;
    document["tool"] = "orlix";
    document["version"] = ORLIX_TOOL_VERSION;
    document["settings"] = SettingsDocument(options);
    document["images"] = std::move(images);
    document["summary"] = Summary(document["images"]);
    if (folder) folder->Finish(document["summary"]);
    if (options.json)
        std::cout << Print(document);
    else if (!options.csv)
        std::cout << TextOfSummary(document["summary"]);
    return failed ? kFailed : kDone;
}

}  // namespace

Command AddMeasure(CLI::App& program) {
    const auto options = std::make_shared<Options>();
    CLI::App& command =
        *program.add_subcommand("measure", "Measure images: grey statistics, thresholds, area of a phase");
    command.footer(kFooter);
    command.add_option("IMAGE", options->files, "PNG, BMP, PGM or PPM files")->required();
    command.add_option("--roi", options->region, "Region: rect:L,T,R,B | oriented:W,H,ANGLE,XC,YC | circle:XC,YC,R");
    command.add_option("--roi-polarity", options->polarity, "inside, outside or frame of the region")
        ->default_str("inside");
    command.add_option("--threshold", options->threshold, "METHOD or LO,HI; see below")
        ->default_str("minimize-variance");
    auto* dark = command.add_flag("--dark", options->dark, "The phase is the dark side of the threshold (default)");
    command.add_flag("--bright", options->bright, "The phase is the bright side")->excludes(dark);
    command.add_option("--pixel-size", options->pixelSize, "Microns per pixel, instead of what the file says");
    command.add_option("--band", options->settings.band, "Band of a colour image: 0 red, 1 green, 2 blue (default 0)")
        ->check(CLI::NonNegativeNumber);
    command.add_option("--luminance", options->luminance, "Grey levels that the histogram and its thresholds look at")
        ->expected(2)
        ->type_name("LOW HIGH");
    command.add_option("--bins", options->settings.bins, "Bins at most, where thresholds are chosen (default 1024)")
        ->check(CLI::Range(2, 65536));
    command
        .add_option("--smooth", options->settings.smoothing,
                    "Smooth the histogram with 3, 5, 7 or 9 binomial weights before choosing thresholds")
        ->check(CLI::IsMember({0, 3, 5, 7, 9}));
    command.add_option("--out", options->out, "Folder for pictures and reports");
    auto* json = command.add_flag("--json", options->json, "Results as JSON");
    command.add_flag("--csv", options->csv, "Results as CSV")->excludes(json);
    return [options] { return Measure(*options); };
}

}  // namespace tool
