// orlix particles
#include "batch.hpp"
#include "commands.hpp"
#include "console.hpp"
#include "image_file.hpp"
#include "particle_finding.hpp"
#include "particle_pictures.hpp"
#include "particle_report.hpp"
#include "particle_trust.hpp"
#include "phase_options.hpp"
#include "region.hpp"
#include "scale_bar.hpp"
#include "subcommand.hpp"
#include "units.hpp"
#include "warnings.hpp"

#include <orlix/filters.hpp>
#include <orlix/statistics.hpp>

#include <charconv>
#include <cmath>
#include <iostream>
#include <limits>
#include <memory>

namespace tool {

namespace {

constexpr char kParticleSteps[] = R"(
Steps, in this order whatever the order of the options
  1 --filter            the grey levels of the whole image, before --flatten; several in their order
  2 --threshold         the phase, with --dark, --bright, --roi, --mask, --ignore and --flatten
  3 --local RADIUS,CONTRAST  where grey levels within RADIUS pixels (of a square) differ by CONTRAST or
                        more, their middle is the threshold instead (Bernsen). So a dim particle ends
                        at the rim of a bright one, and a halo does not belong to its particle.
                        Holes stay where both thresholds find background
  4 --open R            removes what no disk of this radius fits into
  5 --close R           fills what no disk of this radius outside fits into
  6 --fill-holes[=MAX]  fills holes, those of at most MAX pixels
  7 --split[=DEPTH[,SHARE]]  separates particles that touch. A part whose largest inscribed circle has
                        the radius r becomes a particle of its own where the neck to any wider part
                        has a half width below (1 - SHARE) r - DEPTH. Without values 0.75,0.05
  8 --min-area, --max-area  leave out particles by their number of pixels
  9 --exclude-border    leaves out particles that the border of the image or region cuts
Particles are the connected sets of pixels that are left, 8-connected unless --connectivity is 4.
)";

constexpr char kParticlesFooter[] = R"(
Numbers and sizes
  The number per area comes from the unbiased counting rule: of the particles at the border of a
  rectangle, those count that touch its left or top side and neither of the others. In other regions
  each particle that is cut counts half. Its interval (95 %) is that of a Poisson distribution, for
  particles that lie independently of each other. --exclude-border does not change it.
  Diameters are those of discs of the same area: 10, 50 and 90 % of the particles (by number), or of
  their area (by area), lie below d10, d50 and d90. With --exclude-border large particles are missing
  more often than small ones; in a rectangle the distributions are corrected for that (Miles and
  Lantuejoul).

How far the numbers can be trusted
  All steps from the threshold on are made again with the level moved to either side: by one grey level
  (by one bin of the histogram, where bins are wider), and by half the width of the histogram's valley.
  The valley lies between the highest counts on either side of the level, and reaches as far as the
  smoothed counts are at most a tenth of the way up from its floor to the lower one of these peaks. A
  level on the slope of a peak, or without two peaks, has none. Said are how number, area and median
  diameters change, and of each particle the area that it has then and its fate: it is the same, merges
  with another, splits, or vanishes. A neighbour or a part of less than a tenth of its area does not
  count. Of a phase between two levels both ends move, outwards and inwards. --no-trust leaves it out.

Measurements (--measure LIST: names of columns of --csv, and groups)
  usual     size, box, perimeter, circularity, solidity, Feret diameters, ellipse, holes, grey levels,
            sub-pixel outline, trust
  shape     all of the pixels: also Crofton perimeter, roundness, compactness, extent, oriented box, hull,
            inscribed and enclosing circle, skeleton
  grey      all of the grey levels: also median, mode, skewness, kurtosis, sum, centroid, boundary, volume
  outline   all of the sub-pixel outline: also centroid, ellipse and Feret diameters
  trust     areas and fate with the threshold moved
  all       everything. Only what is chosen is computed. Names: those of the columns, as circularity or grey.mean

Output
  A summary for people; with --json one document {..., options, images: [...], summary}, in which each
  image has particleSummary and particles; with --csv one line a particle. Lengths and areas are in
  microns if the pixel size is known. "outline." stands for the sub-pixel outline at the grey level of
  the threshold, the other figures are those of the pixels. With --out DIR also NAME_outlines.png
  (numbered), NAME_labels.png (a colour for each particle), particles.csv, particles.json, and
  report.html for one image, NAME_report.html each and report.html over all of them for several.

Examples:
  orlix particles powder.png --bright --min-area 20
  orlix particles pores.png --fill-holes --split --exclude-border --pixel-size 0.65 --out results
  orlix particles nuclei.png --bright --filter gaussian5x5:3 --threshold otsu --split --csv
  orlix particles field*.png --threshold 0,96 --open 1.5 --json)";

struct ParticlesOptions {
    LoadOptions load;
    std::vector<std::string> files, filters;
    PhaseOptions phase;
    std::optional<double> open, close;
    std::string local, fillHoles, split, measure = "usual", out;
    std::optional<LONG> minimumArea, maximumArea;
    int connectivity = 8;
    bool excludeBorder = false, noTrust = false, json = false, csv = false, force = false;
    ParticleSettings settings;
};

FilterPass ParseFilter(const std::string& text) {
    constexpr int kMost = 1000;
    const size_t colon = std::min(text.find(':'), text.size());
    FilterPass pass = {text.substr(0, colon), 1};
    if (!orlix::FindFilter(pass.name)) {
        std::string known;
        for (const orlix::NamedFilter& filter : orlix::kNamedFilters)
            known += std::string(known.empty() ? "" : ", ") + filter.word;
        throw UsageError("'" + text + "' is not a filter: " + known + ", each also as NAME:TIMES");
    }
    if (colon == text.size()) return pass;
    const char* const end = text.data() + text.size();
    const auto [at, error] = std::from_chars(text.data() + colon + 1, end, pass.times);
    if (error != std::errc() || at != end || pass.times < 1 || pass.times > kMost)
        throw UsageError("'" + text + "': a filter is applied 1 to " + std::to_string(kMost) + " times");
    return pass;
}

void CompleteParticles(ParticlesOptions& options) {
    ParticleSettings& settings = options.settings;
    options.phase.Complete(settings);
    for (const std::string& text : options.filters) settings.filters.push_back(ParseFilter(text));
    for (const auto& [name, radius] : {std::pair{"--open", options.open}, {"--close", options.close}})
        if (radius && !(*radius >= 0 && std::isfinite(*radius)))
            throw UsageError(std::string(name) + " must be a radius of at least 0 pixels");
    settings.open = options.open;
    settings.close = options.close;
    if (!options.local.empty()) {
        const auto values = ParseNumbers(options.local, "--local " + options.local);
        constexpr double kMost = 1e6;
        if (values.size() != 2 || !(values[0] >= 1 && values[0] <= kMost && values[0] == std::floor(values[0])) ||
            !(values[1] > 0))
            throw UsageError("--local " + options.local +
                             " is not RADIUS,CONTRAST: whole pixels from 1 on, and grey levels above 0");
        const auto& [first, last] = settings.threshold.levels;
        if (!settings.threshold.method && std::isnan(first) == std::isnan(last))
            throw UsageError("--local needs a threshold with one level: a method, or LO, or ,HI");
        settings.local = {static_cast<LONG>(values[0]), values[1],
                          settings.threshold.method ? settings.bright : std::isnan(last)};
    }
    if (!options.fillHoles.empty()) {
        const auto area = ParseNumbers(options.fillHoles, "--fill-holes=" + options.fillHoles);
        const bool whole = area.size() == 1 && area[0] == std::floor(area[0]);
        if (!whole || area[0] < 0 || area[0] > std::numeric_limits<LONG>::max())
            throw UsageError("--fill-holes=" + options.fillHoles + " is not a number of pixels");
        settings.fillHoles = static_cast<LONG>(area[0]);
    }
    if (options.split == kDefaultValue)
        settings.split = kUsualSplit;
    else if (!options.split.empty()) {
        const auto values = ParseNumbers(options.split, "--split=" + options.split);
        settings.split = std::pair(values[0], values.size() > 1 ? values[1] : 0.0);
        if (values.size() > 2 || !(values[0] >= 0) || !(settings.split->second >= 0 && settings.split->second <= 1))
            throw UsageError("--split=" + options.split +
                             " is not DEPTH,SHARE: a depth of at least 0 pixels and a share from 0 to 1");
    }
    if (options.minimumArea && options.maximumArea && *options.minimumArea > *options.maximumArea)
        throw UsageError("--min-area is above --max-area");
    settings.minimumArea = options.minimumArea;
    settings.maximumArea = options.maximumArea;
    settings.excludeBorder = options.excludeBorder;
    settings.trust = !options.noTrust;
    settings.columns = ParseColumns(options.measure);
    if (options.noTrust)
        std::erase_if(settings.columns, [](const std::string& name) { return name.starts_with("trust."); });
    settings.connectivity = options.connectivity == 4 ? CT_4 : CT_8;
}

// Over all images: {measured, failed, particles, unit, numberPerArea {mean, standardDeviation, confidence95, minimum,
// maximum, unit}, diameter, trust (the greatest changes)}. Lengths in microns and pixels are not put together: unit and
// diameter are null then.
Json SummaryOfFields(const Json& images) {
    size_t failed = 0, count = 0;
    std::vector<double> numbers;
    std::vector<const Json*> particles;
    std::string unit, perArea;
    bool oneUnit = true;
    for (const Json& image : images) {
        if (image.contains("error")) {
            ++failed;
            continue;
        }
        const Json& summary = image["particleSummary"];
        count += summary["count"].get<size_t>();
        const std::string name = image["unit"];
        oneUnit = oneUnit && (unit.empty() || unit == name);
        unit = name;
        perArea = Member(summary, "numberPerArea.unit");
        if (const double number = NumberAt(summary, "numberPerArea.value"); !std::isnan(number))
            numbers.push_back(number);
        for (const Json& particle : image["particles"]) particles.push_back(&particle);
    }
    Json out;
    out["measured"] = images.size() - failed;
    out["failed"] = failed;
    out["particles"] = count;
    out["unit"] = oneUnit && !unit.empty() ? Json(unit) : Json(nullptr);
    out["numberPerArea"] = nullptr;
    if (oneUnit && numbers.size() >= 2) {
        const orlix::SampleStatistics sample = orlix::SummarizeSample(numbers);
        Json& number = out["numberPerArea"];
        number["mean"] = sample.mean;
        number["standardDeviation"] = sample.standardDeviation;
        number["confidence95"] = sample.confidence95;
        number["minimum"] = sample.minimum;
        number["maximum"] = sample.maximum;
        number["unit"] = perArea;
    }
    out["diameter"] = oneUnit ? DiameterDistributions(particles) : Json(nullptr);
    out["trust"] = GreatestChanges(images);
    return out;
}

std::string ParticleHeader(const std::vector<std::string>& columns) {
    std::vector<std::string> all = {"file", "error", "unit"};
    all.insert(all.end(), columns.begin(), columns.end());
    return CsvHeader(all);
}

// A line for each particle, or the one of a failure.
std::string ParticleLines(const std::vector<std::string>& columns, const Json& image) {
    static const std::vector<std::string> head = {"file", "error", "unit"};
    std::string start = CsvLine(head, image), out;
    start.resize(start.size() - 2);  // without the line's end
    if (!image.contains("particles")) return start + std::string(columns.size(), ',') + "\r\n";
    for (const Json& particle : image["particles"]) out += start + "," + CsvLine(columns, particle);
    return out;
}

std::string StepText(const Json& step) {
    const std::string name = step["step"];
    const auto number = [&](const char* member) { return Number(NumberAt(step, member)); };
    if (name == "filter")
        return step["filter"].get<std::string>() + (step["times"] > 1 ? " " + number("times") + " times" : "");
    if (name == "threshold") return name;
    if (name == "local") return "local " + number("radius") + "," + number("contrast");
    if (name == "open" || name == "close") return name + " " + number("radius");
    if (name == "fill-holes")
        return "fill holes" + (step["maximumArea"].is_null() ? "" : " up to " + number("maximumArea") + " pixels");
    if (name == "split") return "split " + number("depth") + "," + number("share");
    const std::string removed = " (" + number("removed") + " left out)";
    if (name == "border") return "not at the border" + removed;
    return (step["maximum"].is_null() ? "at least " + number("minimum")
                                      : number("minimum") + " to " + number("maximum")) +
           " pixels" + removed;
}

std::string DistributionText(const Json& sizes) {
    const auto size = [&](const char* name) { return Digits(NumberAt(sizes, name), 4); };
    return "d10 " + size("d10") + ", d50 " + size("d50") + ", d90 " + size("d90") + ", mean " + size("mean");
}

std::string PerAreaName(const std::string& unit) { return unit == "1/mm2" ? "per mm²" : "per megapixel"; }

std::string PercentText(double fraction) { return Digits(100 * fraction, 3) + " %"; }

// What a move of the threshold does, of the narrower and the wider phase.
std::string MoveText(const Json& move, const Json& summary) {
    const auto change = [&](const char* figure, const char* base) {
        const auto percent = [&](const char* phase) {
            const double value = 100 * (NumberAt(move[phase], figure) / NumberAt(summary, base) - 1);
            return (value > 0 ? "+" : "") + Digits(value, 2);
        };
        return percent("narrower") + " to " + percent("wider") + " %";
    };
    std::string out = Number(NumberAt(move, "narrower.count")) + " to " + Number(NumberAt(move, "wider.count")) +
                      " particles, area " + change("area", "area") + ", d50 " +
                      change("d50ByNumber", "diameter.byNumber.d50") + " (by area " +
                      change("d50ByArea", "diameter.byArea.d50") + ")";
    for (const auto& [fate, past] : {std::pair{"splits", "split"}, {"merges", "merged"}, {"vanishes", "vanished"}})
        if (const double count = NumberAt(move["particles"], fate); count > 0) out += ", " + Number(count) + " " + past;
    return out;
}

std::string TrustText(const Json& trust, const Json& summary) {
    const auto line = [&](const Json& move, const char* what) {
        return "± " + Number(NumberAt(move, "shift")) + what + ": " + MoveText(move, summary);
    };
    const Json& valley = trust["valley"];
    return TextLine("trust", line(trust["oneLevel"], "")) +
           TextLine("", valley.is_null() ? trust["noValley"].get<std::string>() : line(valley, " (half the valley)"));
}

std::string ParticlesText(const Json& m) {
    const auto line = [&](const std::string& name, const std::string& text) { return TextLine(name, text); };
    const Json& summary = m["particleSummary"];
    const std::string unit = m["unit"] == "pixel" ? "pixels" : "µm";
    std::string out = SubjectText(m), steps;
    for (const Json& step : m["steps"]) steps += (steps.empty() ? "" : ", ") + StepText(step);
    const double lower = NumberAt(m, "phase.lower"), upper = NumberAt(m, "phase.upper");
    const auto level = [](double value) {
        return std::isnan(value) ? std::string("…") : Rounded(value, value == std::floor(value) ? 0 : 2);
    };
    out += line("phase", Member(m, "phase.pixels").is_null()
                             ? "none"
                             : Member(m, "phase.polarity").get<std::string>() + ", grey " + level(lower) + " to " +
                                   level(upper) + " (" + Member(m, "phase.method").get<std::string>() + ")");
    out += line("steps", steps);
    const double count = NumberAt(summary, "count");
    out += line("particles", Number(count) + ", " + Number(NumberAt(summary, "atBorder")) +
                                 (Member(m, "particleSummary.edgeCorrection").is_null() ? " at the border"
                                                                                        : " left out at the border"));
    const Json& number = summary["numberPerArea"];
    out += line("number", Digits(NumberAt(number, "value"), 4) + " " + PerAreaName(number["unit"]) + ", 95 %: " +
                              Digits(NumberAt(number, "lower"), 4) + " to " + Digits(NumberAt(number, "upper"), 4) +
                              " (" + Number(NumberAt(summary, "counting.counted")) + " by the counting rule)");
    out += line("area", Rounded(100 * NumberAt(summary, "areaFraction"), 3) + " % of the region, " +
                            Number(NumberAt(summary, "pixels")) + " pixels");
    if (count > 0) {
        out += line("diameter", "by number " + DistributionText(Member(summary, "diameter.byNumber")) + " " + unit);
        out += line("", "by area   " + DistributionText(Member(summary, "diameter.byArea")) + " " + unit);
    }
    if (count > 0 && !m["trust"].is_null()) out += TrustText(m["trust"], summary);
    return out + WarningsText(m) + "\n";
}

std::string TextOfFields(const Json& summary) {
    if (NumberAt(summary, "measured") < 2) return {};
    std::string out =
        Number(NumberAt(summary, "measured")) + " images: " + Number(NumberAt(summary, "particles")) + " particles";
    if (const Json& number = summary["numberPerArea"]; !number.is_null())
        out += ", " + Digits(NumberAt(number, "mean"), 4) + " ± " + Digits(NumberAt(number, "confidence95"), 3) + " " +
               PerAreaName(number["unit"]) + " (95 % confidence), deviation " +
               Digits(NumberAt(number, "standardDeviation"), 3);
    if (!summary["diameter"].is_null() && NumberAt(summary, "particles") > 0) {
        const std::string unit = summary["unit"] == "pixel" ? "pixels" : "µm";
        out += "\n  diameter by number " + DistributionText(Member(summary, "diameter.byNumber")) + " " + unit +
               "\n           by area   " + DistributionText(Member(summary, "diameter.byArea")) + " " + unit;
    }
    for (const auto& [member, what] : {std::pair{"oneLevel", "one level"}, {"valley", "half the valley"}})
        if (const Json& change = Member(summary, std::string("trust.") + member); !change.is_null())
            out += std::string("\n  ") + what + " changes the number of an image by up to " +
                   PercentText(NumberAt(change, "count")) + ", the area by " + PercentText(NumberAt(change, "area")) +
                   ", d50 by " + PercentText(NumberAt(change, "d50ByNumber")) + " (by area " +
                   PercentText(NumberAt(change, "d50ByArea")) + ")";
    return out + "\n";
}

// Pictures, lists and reports.
class ParticleResults {
public:
    explicit ParticleResults(const ParticlesOptions& options)
        : single_(options.files.size() == 1),
          folder_(options.out, options.files, PlanOf(single_), options.force),
          columns_(options.settings.columns),
          lines_(ParticleHeader(columns_)) {}

    void Add(size_t index, ParticleImage& found) {
        Json& document = found.measurement.document;
        lines_ += ParticleLines(columns_, document);
        const std::string& name = folder_.NameOf(index);
        const std::string report = single_ ? "report.html" : name + "_report.html";
        const Picture display = DisplayPicture(found.measurement);
        const LabelRows labels(found.blobs);
        const Picture outlines = OutlinesPicture(display, labels, InscribedCircles(found.blobs));
        const TemporaryFile file(".png");
        const Json& calibration = document["micronsPerPixel"];
        const double microns = NumberAt(document, "micronsPerPixel.x");
        SavePng(WithScaleBar(outlines, microns), calibration, folder_.At(name + "_outlines.png"));
        SavePng(LabelsPicture(labels), calibration, folder_.At(name + "_labels.png"));
        WriteFile(folder_.At(report),
                  ParticleReport(
                      document, found.blobs, ORLIX_TOOL_VERSION,
                      ReportPicture(display, kLargestInReport, std::numeric_limits<double>::quiet_NaN(), file.path())));
        if (!single_)
            entries_.push_back({document, report,
                                ReportPicture(outlines, 280, std::numeric_limits<double>::quiet_NaN(), file.path())});
        Json& outputs = document["outputs"];
        outputs["outlines"] = name + "_outlines.png";
        outputs["labels"] = name + "_labels.png";
        outputs["report"] = report;
    }

    void AddFailure(const Json& failure) {
        lines_ += ParticleLines(columns_, failure);
        entries_.push_back({failure, {}, {}});
    }

    void Finish(const Json& document) {
        WriteFile(folder_.At("particles.csv"), lines_);
        WriteFile(folder_.At("particles.json"), Print(document));
    }

    void Report(Json summary, const Json& warnings) {
        summary["warnings"] = warnings;
        if (!single_) WriteFile(folder_.At("report.html"), ParticleBatchReport(entries_, summary, ORLIX_TOOL_VERSION));
    }

private:
    static OutputFolder::Plan PlanOf(bool single) {
        OutputFolder::Plan plan = {{"_outlines.png", "_labels.png"},
                                   {"report.html", "particles.csv", "particles.json"}};
        if (!single) plan.suffixes.emplace_back("_report.html");
        return plan;
    }

    bool single_;
    OutputFolder folder_;
    std::vector<std::string> columns_;
    std::string lines_;
    std::vector<ParticleEntry> entries_;
};

int FindAllParticles(ParticlesOptions& options, const Subcommand& command) {
    CompleteParticles(options);
    std::optional<ParticleResults> results;
    if (!options.out.empty()) results.emplace(options);

    if (options.csv) std::cout << ParticleHeader(options.settings.columns);
    Batch batch = RunBatch(
        options.files,
        [&](size_t i, const std::string& name, Progress& progress) {
            ParticleImage found = FindParticles(options.load.Load(options.files[i]), name, options.settings);
            Json& document = found.measurement.document;
            if (results) NoteOutputError(document, [&] { results->Add(i, found); });
            if (options.csv)
                for (const Json& warning : Warnings(document))
                    progress.Say("orlix: warning: " + name + ": " + warning["message"].get<std::string>());
            return std::move(document);
        },
        [&](const Json& document) {
            if (results && document.contains("error")) results->AddFailure(document);
            if (options.csv)
                std::cout << ParticleLines(options.settings.columns, document) << std::flush;
            else if (!options.json && !document.contains("error"))
                std::cout << ParticlesText(document) << std::flush;
        });

    Json document = command.Envelope();
    document["images"] = std::move(batch.images);
    document["summary"] = SummaryOfFields(document["images"]);
    if (results) batch.Write([&] { results->Report(document["summary"], batch.warnings); });
    document["warnings"] = batch.warnings;
    if (results) batch.Write([&] { results->Finish(document); });
    if (options.json)
        std::cout << Print(document);
    else if (!options.csv)
        std::cout << TextOfFields(document["summary"]);
    return batch.code();
}

}  // namespace

Command AddParticles(CLI::App& program) {
    const auto options = std::make_shared<ParticlesOptions>();
    Subcommand command(program, "particles", "Count and measure particles, pores or grains",
                       std::string(kParticleSteps) + kThresholdHelp + kParticlesFooter);
    command.Add("IMAGE", options->files, kImageFiles).Required();
    options->load.AddPages(command);
    command.Add("--filter", options->filters, "Filter of orlix filter, perhaps several times; before the threshold")
        .Repeated("NAME[:TIMES]");
    options->phase.Add(command);
    command.Add("--local", options->local, "Threshold of its own for each pixel with so much contrast around it")
        .Named("RADIUS,CONTRAST");
    command.Add("--open", options->open, "Opening with a disk of this radius in pixels").Named("R");
    command.Add("--close", options->close, "Closing with a disk of this radius in pixels").Named("R");
    command.AddOptionalValue("--fill-holes", options->fillHoles, "0", "MAX", "Fill holes (of at most MAX pixels)");
    command.AddOptionalValue("--split", options->split, kDefaultValue, "DEPTH[,SHARE]",
                             "Separate particles that touch (usual values 0.75,0.05)");
    command.Add("--min-area", options->minimumArea, "Least number of pixels of a particle").NotNegative();
    command.Add("--max-area", options->maximumArea, "Greatest number of pixels of a particle").NotNegative();
    command.AddFlag("--exclude-border", options->excludeBorder, "Leave out particles that the border cuts");
    command.Add("--connectivity", options->connectivity, "4 or 8 neighbours hold a particle together (default 8)")
        .OneOf(std::vector{4, 8});
    command.Add("--measure", options->measure, "What is measured of each particle; see below")
        .Named("LIST")
        .ShowDefault();
    command.AddFlag("--no-trust", options->noTrust, "Do not find the particles again with the threshold moved");
    command.Add("--out", options->out, "Folder for pictures, lists and reports").Named("DIR");
    command.AddFlag("--force", options->force, "Replace other files there that have the names of results");
    const Parameter json = command.AddFlag("--json", options->json, "Results as JSON");
    command.AddFlag("--csv", options->csv, "One line of CSV a particle").Excludes(json);
    return [options, command] { return FindAllParticles(*options, command); };
}

}  // namespace tool
