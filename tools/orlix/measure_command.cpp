// orlix measure
#include "batch.hpp"
#include "commands.hpp"
#include "console.hpp"
#include "html_report.hpp"
#include "image_file.hpp"
#include "measurement.hpp"
#include "phase_options.hpp"
#include "pictures.hpp"
#include "scale_bar.hpp"
#include "subcommand.hpp"
#include "units.hpp"
#include "warnings.hpp"

#include <orlix/statistics.hpp>

#include <cmath>
#include <iostream>
#include <limits>
#include <memory>

namespace tool {

namespace {

constexpr char kWhatIsMeasured[] = R"(
What is measured
  Of the pixels of the region, less those that --mask and --ignore leave out: count, mean, standard
  deviation, minimum, maximum, median, mode, skew, excess kurtosis, entropy and grey centroid. The
  automatic thresholds, and the area fraction on either side of each. Of the chosen phase: pixels,
  area fraction of these pixels, area in square microns, centroid.)";

constexpr char kMeasureFooter[] = R"(
Two peaks
  A threshold between two classes means something where the histogram has two peaks. The dip
  (Hartigan and Hartigan 1985) says how far it is from having one: 0 for one peak, about a quarter
  of the pixels in the smaller of two, at most 0.25. Below 0.003 (more for few pixels) a warning says
  that there is no second peak; another one, that a side of the threshold has two peaks itself.

Flattening
  --flatten removes a fitted surface from the grey levels of the region before anything is measured;
  what lies on the surface gets their mean. A surface that takes every pixel into account follows
  particles too: with --flatten-robust 0.7 it follows the better 70 % of the pixels. See orlix flatten.

Histogram
  8-bit images have 256 bins. Of others, thresholds are chosen between the smallest and the largest
  value on neighbouring values added up to at most --bins bins. --luminance LOW HIGH has thresholds
  chosen on these grey levels only; what they are applied to, and all figures, stay the same.

Output
  A table for people, or with --json one document {..., options, images: [...], summary}
  whatever the number of images (a failed one has "file" and "error"), or with --csv one line an
  image. With --out DIR also NAME_bitmap.png (white phase), NAME_overlay.png, measurement.json (what
  --json prints), and report.html for one image, NAME_report.html each and report.html over all of
  them for several.

Examples:
  orlix measure cast_iron.png --dark --pixel-size 0.65
  orlix measure nuclei.png --bright --threshold entropy --smooth 5 --json
  orlix measure *.png --threshold 0,96 --csv > fractions.csv
  orlix measure tilted.png --flatten plane --flatten-robust 0.8
  orlix measure weld.png --roi circle:400,300,250 --out results
  orlix measure plate.png --roi oriented:300,80,-12.5,400,300 --roi-polarity outside)";

struct MeasureOptions {
    LoadOptions load;
    std::vector<std::string> files;
    PhaseOptions phase;
    std::string out;
    bool json = false, csv = false, force = false;
    MeasureSettings settings;
};

Json Summary(const Json& images) {
    std::vector<double> fractions;
    size_t failed = 0;
    for (const Json& image : images)
        if (image.contains("error"))
            ++failed;
        else if (const double fraction = NumberAt(image, "phase.areaFraction"); !std::isnan(fraction))
            fractions.push_back(fraction);
    Json out;
    out["measured"] = images.size() - failed;
    out["failed"] = failed;
    out["withPhase"] = fractions.size();  // images without a threshold do not enter the mean
    if (fractions.size() < 2) return out;
    const orlix::SampleStatistics sample = orlix::SummarizeSample(fractions);
    Json& area = out["areaFraction"];
    area["mean"] = sample.mean;
    area["standardDeviation"] = sample.standardDeviation;
    area["confidence95"] = sample.confidence95;
    area["minimum"] = sample.minimum;
    area["maximum"] = sample.maximum;
    return out;
}

// The columns of a CSV line: members of an image's document, those of its thresholds as "METHOD.member".
const std::vector<std::string> kMeasureColumns = {"file",
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
                                                  "region.mask",
                                                  "region.pixelsLeftOut",
                                                  "region.pixels",
                                                  "region.areaSquareMicrons",
                                                  "flatten.surface.kind",
                                                  "flatten.surface.robust",
                                                  "flatten.before.Sq",
                                                  "flatten.after.Sq",
                                                  "flatten.clippedPixels",
                                                  "luminance.lower",
                                                  "luminance.upper",
                                                  "grey.mean",
                                                  "grey.standardDeviation",
                                                  "grey.minimum",
                                                  "grey.maximum",
                                                  "grey.median",
                                                  "grey.mode",
                                                  "grey.skew",
                                                  "grey.excessKurtosis",
                                                  "grey.entropy",
                                                  "grey.xCentroid",
                                                  "grey.yCentroid",
                                                  "histogram.dip",
                                                  "minimize-variance.threshold",
                                                  "trim.left",
                                                  "trim.right",
                                                  "search-for-minimum.threshold",
                                                  "gaussian-mixture.threshold",
                                                  "maximize-entropy.threshold",
                                                  "phase.polarity",
                                                  "phase.method",
                                                  "phase.lower",
                                                  "phase.upper",
                                                  "phase.pixels",
                                                  "phase.areaFraction",
                                                  "phase.areaSquareMicrons",
                                                  "phase.xCentroid",
                                                  "phase.yCentroid",
                                                  "warnings"};

std::string LineOf(Json image) {
    if (image.contains("thresholds"))
        for (const Json& entry : Json(image["thresholds"])) image[entry["method"].get<std::string>()] = entry;
    return CsvLine(kMeasureColumns, image);
}

std::string PlainAt(const Json& m, const std::string& path, int digits = 2) {
    const double value = NumberAt(m, path);
    return Rounded(value, value == std::floor(value) ? 0 : digits);
}

std::string MeasureText(const Json& m) {
    std::string out = SubjectText(m);
    const auto line = [&](const std::string& name, const std::string& text) { out += TextLine(name, text); };
    if (!m["flatten"].is_null()) {
        const std::string kind = Member(m, "flatten.surface.kind");
        const Json& robust = Member(m, "flatten.surface.robust");
        line("flattened", kind + (robust.is_null() ? "" : ", robust with " + Number(robust)) + ", " +
                              PlainAt(m, "flatten.clippedPixels") + " pixels clipped");
    }
    line("grey", "mean " + PlainAt(m, "grey.mean") + ", deviation " + PlainAt(m, "grey.standardDeviation") +
                     ", minimum " + PlainAt(m, "grey.minimum") + ", maximum " + PlainAt(m, "grey.maximum"));
    line("", "median " + PlainAt(m, "grey.median") + ", mode " + PlainAt(m, "grey.mode") + ", skew " +
                 PlainAt(m, "grey.skew", 3) + ", excess kurtosis " + PlainAt(m, "grey.excessKurtosis", 3) +
                 ", entropy " + PlainAt(m, "grey.entropy", 3));
    line("", "centroid " + PlainAt(m, "grey.xCentroid") + ", " + PlainAt(m, "grey.yCentroid"));
    line("histogram",
         "dip " + Digits(NumberAt(m, "histogram.dip"), 2) +
             (NumberAt(m, "histogram.dip") < NumberAt(m, "histogram.leastDipOfTwoPeaks") ? ": no second peak"
                                                                                         : ": two peaks or more"));
    if (NumberAt(m, "histogram.pixelsOutside") > 0)
        line("luminance", PlainAt(m, "luminance.lower") + " to " + PlainAt(m, "luminance.upper") + ", " +
                              PlainAt(m, "histogram.pixelsOutside") + " pixels outside");
    line("thresholds", Padded("", 22, false) + Padded("level", 16) + Padded("dark", 11) + Padded("bright", 11));
    for (const Json& entry : m["thresholds"]) {
        std::string text =
            (entry["chosen"] == true ? "> " : "  ") + Padded(entry["method"].get<std::string>(), 20, false);
        if (entry.contains("message"))
            text += "    " + entry["message"].get<std::string>();
        else
            text += Padded(entry.contains("left") ? PlainAt(entry, "left") + " | " + PlainAt(entry, "right")
                                                  : PlainAt(entry, "threshold"),
                           16) +
                    Padded(Rounded(100 * NumberAt(entry, "darkFraction"), 2) + " %", 11) +
                    Padded(Rounded(100 * NumberAt(entry, "brightFraction"), 2) + " %", 11);
        if (entry.contains("note")) text += "  " + entry["note"].get<std::string>();
        line("", text);
    }
    if (Member(m, "phase.pixels").is_null()) {
        line("phase", "none");
        return out + WarningsText(m) + "\n";
    }
    const double lower = NumberAt(m, "phase.lower"), upper = NumberAt(m, "phase.upper");
    line("phase", Member(m, "phase.polarity").get<std::string>() + ", " +
                      (lower > upper ? "no grey level"
                                     : "grey " + PlainAt(m, "phase.lower") + " to " + PlainAt(m, "phase.upper")));
    std::string area = "area fraction " + Rounded(100 * NumberAt(m, "phase.areaFraction"), 3) + " %, " +
                       PlainAt(m, "phase.pixels") + " pixels";
    if (Member(m, "phase.areaSquareMicrons").is_number()) area += ", " + PlainAt(m, "phase.areaSquareMicrons") + " µm²";
    line("", area);
    if (NumberAt(m, "phase.pixels") > 0)
        line("", "centroid " + PlainAt(m, "phase.xCentroid") + ", " + PlainAt(m, "phase.yCentroid"));
    return out + WarningsText(m) + "\n";
}

std::string TextOfSummary(const Json& summary) {
    if (!summary.contains("areaFraction")) return {};
    const auto percent = [&](const char* name) {
        return Rounded(100 * NumberAt(summary["areaFraction"], name), 3) + " %";
    };
    return Rounded(NumberAt(summary, "withPhase"), 0) + " images: area fraction " + percent("mean") + " ± " +
           percent("confidence95") + " (95 % confidence), deviation " + percent("standardDeviation") + ", from " +
           percent("minimum") + " to " + percent("maximum") + "\n";
}

// Pictures and reports.
class MeasureResults {
public:
    explicit MeasureResults(const MeasureOptions& options)
        : single_(options.files.size() == 1), folder_(options.out, options.files, PlanOf(single_), options.force) {}

    void Add(size_t index, Measurement& measurement) {
        const std::string& name = folder_.NameOf(index);
        const Picture display = DisplayPicture(measurement);
        const Picture overlay = OverlayPicture(measurement, display);
        const TemporaryFile file(".png");
        const std::filesystem::path& temporary = file.path();
        const std::string report = single_ ? "report.html" : name + "_report.html";
        const Json& calibration = measurement.document["micronsPerPixel"];
        const double microns = NumberAt(measurement.document, "micronsPerPixel.x");
        SavePng(PhasePicture(measurement.phase), calibration, folder_.At(name + "_bitmap.png"));
        const std::filesystem::path overlayFile = folder_.At(name + "_overlay.png");
        SavePng(WithScaleBar(overlay, microns), calibration, overlayFile);
        const std::string overlayUri = Reduction(overlay, kLargestInReport) == 1
                                           ? DataUri(overlayFile)
                                           : ReportPicture(overlay, kLargestInReport, microns, temporary);
        WriteFile(folder_.At(report),
                  ImageReport(measurement.document, ORLIX_TOOL_VERSION,
                              ReportPicture(display, kLargestInReport, microns, temporary), overlayUri));
        if (!single_) {
            constexpr double kNone = std::numeric_limits<double>::quiet_NaN();  // no bar in a thumbnail
            entries_.push_back({measurement.document, report, ReportPicture(overlay, 280, kNone, temporary)});
        }
        Json& outputs = measurement.document["outputs"];
        outputs["bitmap"] = name + "_bitmap.png";
        outputs["overlay"] = name + "_overlay.png";
        outputs["report"] = report;
    }

    void AddFailure(const Json& failure) { entries_.push_back({failure, {}, {}}); }

    void Keep(const Json& document) { WriteFile(folder_.At("measurement.json"), Print(document)); }

    void Finish(Json summary, const Json& warnings) {
        summary["warnings"] = warnings;
        if (!single_) WriteFile(folder_.At("report.html"), BatchReport(entries_, summary, ORLIX_TOOL_VERSION));
    }

private:
    static OutputFolder::Plan PlanOf(bool single) {
        OutputFolder::Plan plan = {{"_bitmap.png", "_overlay.png"}, {"report.html", "measurement.json"}};
        if (!single) plan.suffixes.emplace_back("_report.html");
        return plan;
    }

    bool single_;
    OutputFolder folder_;
    std::vector<BatchEntry> entries_;
};

int Measure(MeasureOptions& options, const Subcommand& command) {
    options.phase.Complete(options.settings);
    std::optional<MeasureResults> results;
    if (!options.out.empty()) results.emplace(options);

    if (options.csv) std::cout << CsvHeader(kMeasureColumns);
    Batch batch = RunBatch(
        options.files,
        [&](size_t i, const std::string& name, Progress& progress) {
            Measurement measurement = MeasureImage(options.load.Load(options.files[i]), name, options.settings);
            if (results) NoteOutputError(measurement.document, [&] { results->Add(i, measurement); });
            if (measurement.document["bands"] > 1 && measurement.document["band"].is_number() && i == 0)
                progress.Say("orlix: " + name + " has several bands; band " + std::to_string(options.settings.band) +
                             " is measured");
            return std::move(measurement.document);
        },
        [&](const Json& document) {
            if (results && document.contains("error")) results->AddFailure(document);
            if (options.csv)
                std::cout << LineOf(document) << std::flush;
            else if (!options.json && !document.contains("error"))
                std::cout << MeasureText(document) << std::flush;
        });

    Json document = command.Envelope();
    document["images"] = std::move(batch.images);
    document["summary"] = Summary(document["images"]);
    if (results) batch.Write([&] { results->Finish(document["summary"], batch.warnings); });
    document["warnings"] = batch.warnings;
    if (results) batch.Write([&] { results->Keep(document); });
    if (options.json)
        std::cout << Print(document);
    else if (!options.csv)
        std::cout << TextOfSummary(document["summary"]);
    return batch.code();
}

}  // namespace

Command AddMeasure(CLI::App& program) {
    const auto options = std::make_shared<MeasureOptions>();
    Subcommand command(program, "measure", "Measure images: grey statistics, thresholds, area of a phase",
                       std::string(kWhatIsMeasured) + "\n" + kThresholdHelp + kMeasureFooter);
    command.Add("IMAGE", options->files, kImageFiles).Required();
    options->load.AddPages(command);
    options->phase.Add(command);
    command.Add("--out", options->out, "Folder for pictures and reports").Named("DIR");
    command.AddFlag("--force", options->force, "Replace other files there that have the names of results");
    const Parameter json = command.AddFlag("--json", options->json, "Results as JSON");
    command.AddFlag("--csv", options->csv, "Results as CSV").Excludes(json);
    return [options, command] { return Measure(*options, command); };
}

}  // namespace tool
