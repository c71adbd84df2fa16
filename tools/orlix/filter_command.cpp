// orlix filter
#include "batch.hpp"
#include "commands.hpp"
#include "console.hpp"
#include "image_file.hpp"
#include "subcommand.hpp"
#include "subject.hpp"
#include "warnings.hpp"

#include <orlix/client.hpp>
#include <orlix/filters.hpp>

#include <algorithm>
#include <iomanip>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace tool {

using namespace orlix;

namespace {

constexpr char kExtremumSharpening[] = "extremum-sharpening";

constexpr char kFilterFooter[] = R"(
Results are clamped to the luminance range (those of median3x3 are not). Pixels outside the region,
and with --band the other bands, keep their values.
The format follows the name of OUT: .png, .pgm or .ppm. With --out DIR: NAME_FILTER.png.

Examples:
  orlix filter median3x3 noisy.png -o clean.png
  orlix filter sobel weld.png -o edges.png --roi circle:400,300,250
  orlix filter extremum-sharpening *.png --half-size 3 --out sharpened)";

// What kFilterFooter is the rest of.
std::string ListOfFilters() {
    std::ostringstream list;
    list << "\nFilters (E the pixel, A B C / D . F / G H I its neighbours; beyond its edge an image is mirrored)";
    const auto add = [&](const char* word, const char* formula) {
        list << "\n  " << std::left << std::setw(23) << word << formula;
    };
    for (const NamedFilter& filter : kNamedFilters) add(filter.word, filter.formula);
    add(kExtremumSharpening, "the smallest or largest of a square, whichever is nearer; --half-size 1 is 3x3");
    return list.str() + "\n";
}

struct FilterOptions {
    LoadOptions load;
    std::string filter;
    std::vector<std::string> files;
    SubjectOptions subject{BI_AllBands};
    std::string file, folder;
    std::optional<LONG> halfSize;
    std::vector<double> luminance;
    bool json = false, force = false;
};

// Mean, minimum and maximum of the region, over all bands processed.
Json Summary(const Subject& subject) {
    const auto process = Cast<IImageProcess>(subject.image);
    const LONG first = subject.band == BI_AllBands ? 0 : subject.band;
    const LONG last = subject.band == BI_AllBands ? subject.bands - 1 : subject.band;
    double sum = 0, least = 0, most = 0;
    for (LONG band = first; band <= last; ++band) {
        double low = 0, high = 0, oldLow = 0, oldHigh = 0;
        SGrayMeasurements grey = {};
        Check(process->put_BandToProcess(band), process);
        Check(process->GetLuminanceRange(&oldLow, &oldHigh), process);
        Check(process->get_GrayMeasurements(GEMT_GrayStatistics, &grey), process);
        Check(process->SnapLuminanceRange(0, 0, 0), process);
        Check(process->GetLuminanceRange(&low, &high), process);
        Check(process->PutLuminanceRange(oldLow, oldHigh), process);
        sum += grey.m_dGrayAverage;
        least = band == first ? low : std::min(least, low);
        most = band == first ? high : std::max(most, high);
    }
    Check(process->put_BandToProcess(subject.band), process);
    Json out;
    out["mean"] = Finite(sum / (last - first + 1));
    out["minimum"] = Finite(least);
    out["maximum"] = Finite(most);
    return out;
}

void Apply(const FilterOptions& options, const Subject& subject) {
    auto source = CreateObject<IImageVPAExPlus>("Orlix.Image");
    Check(source->CreateFromImage(subject.image.get(), BI_AllBands), source);
    const auto process = Cast<IImageProcess>(subject.image);
    if (const NamedFilter* filter = FindFilter(options.filter))
        Check((process.get()->*filter->apply)(source.get(), subject.band), process);
    else
        Check(process->ExtremumSharpening(options.halfSize.value_or(1), source.get(), subject.band), process);
}

std::string FilterText(const Json& m) {
    const auto values = [&](const std::string& when) {
        return "mean " + Rounded(NumberAt(m, when + ".mean"), 2) + ", minimum " +
               Rounded(NumberAt(m, when + ".minimum"), 0) + ", maximum " + Rounded(NumberAt(m, when + ".maximum"), 0);
    };
    return SubjectText(m) +
           TextLine("filter", m["filter"].get<std::string>() +
                                  (m["halfSize"].is_null() ? "" : ", half size " + m["halfSize"].dump())) +
           TextLine("before", values("before")) + TextLine("after", values("after")) +
           TextLine("written", OutputName(m)) + WarningsText(m) + "\n";
}

int FilterAll(const FilterOptions& options, const Subcommand& command) {
    SubjectSettings settings;
    options.subject.Complete(settings);
    const bool squares = options.filter == kExtremumSharpening;
    if (options.file.empty() == options.folder.empty()) throw UsageError("give either -o OUT or --out DIR");
    if (!options.file.empty() && options.files.size() != 1)
        throw UsageError("-o is for one image; --out takes several");
    if (options.halfSize && !squares) throw UsageError("--half-size goes with extremum-sharpening only");
    if (!options.luminance.empty() && !(options.luminance[0] <= options.luminance[1]))
        throw UsageError("--luminance: LOW is above HIGH");
    std::optional<OutputFolder> folder;
    const std::string suffix = "_" + options.filter + ".png";
    if (!options.folder.empty())
        folder.emplace(options.folder, options.files, OutputFolder::Plan{{suffix}, {}}, options.force);
    else
        CheckOutput(options.file, options.files, options.force);
    if (options.file == "-" && options.json)
        throw UsageError("standard output holds the image, so --json has no place");

    Batch batch = RunBatch(
        options.files,
        [&](size_t i, const std::string& name, Progress&) {
            Json document = {{"file", name}};
            const Subject subject(options.load.Load(options.files[i]), settings, document);
            document["filter"] = options.filter;
            document["halfSize"] = squares ? Json(options.halfSize.value_or(1)) : Json(nullptr);
            if (!options.luminance.empty()) PutLuminance(subject, options.luminance[0], options.luminance[1]);
            document["before"] = Summary(subject);
            Apply(options, subject);
            document["after"] = Summary(subject);
            const std::string output = folder ? Utf8(folder->At(folder->NameOf(i) + suffix)) : options.file;
            if (folder) Sign(subject.image);
            SaveImage(subject.image, output, IFF_ByExtension);
            WarnOfLosses(subject.image, output, document);
            document["output"] = output;
            return document;
        },
        [&](const Json& document) {
            if (!options.json && !document.contains("error"))
                (options.file == "-" ? std::cerr : std::cout) << FilterText(document) << std::flush;
        });
    if (options.json) {
        Json document = command.Envelope();
        document["images"] = std::move(batch.images);
        document["warnings"] = std::move(batch.warnings);
        std::cout << Print(document);
    }
    return batch.code();
}

}  // namespace

Command AddFilter(CLI::App& program) {
    const auto options = std::make_shared<FilterOptions>();
    Subcommand command(program, "filter", "Smooth, sharpen or find edges", ListOfFilters() + kFilterFooter);
    std::vector<std::string> names;
    for (const NamedFilter& filter : kNamedFilters) names.emplace_back(filter.word);
    names.emplace_back(kExtremumSharpening);
    command.Add("NAME", options->filter, "Filter; see below").Required().OneOf(names);
    command.Add("IMAGE", options->files, kImageFiles).Required();
    options->load.AddPages(command);
    command.Add("-o,--output", options->file, "File to write, for one image; - is standard output").Named("FILE");
    command.Add("--out", options->folder, "Folder to write to").Named("DIR");
    command.AddFlag("--force", options->force, "Replace the image itself, or other files in the folder");
    command.Add("--half-size", options->halfSize, "Of the square of extremum-sharpening, in pixels (default 1)")
        .Between(0, 1000000);
    command.Add("--luminance", options->luminance, "Grey levels that results are clamped to").Pair("LOW HIGH");
    options->subject.AddRegion(command);
    options->subject.AddBand(command, "This band only, from 0 (default: all)");
    command.AddFlag("--json", options->json, "Summary as JSON");
    return [options, command] { return FilterAll(*options, command); };
}

}  // namespace tool
