// orlix flatten
#include "batch.hpp"
#include "commands.hpp"
#include "console.hpp"
#include "flatten_report.hpp"
#include "flattening.hpp"
#include "html_page.hpp"
#include "image_file.hpp"
#include "pictures.hpp"
#include "residual_map.hpp"
#include "subcommand.hpp"
#include "surface.hpp"
#include "units.hpp"
#include "warnings.hpp"

#include <orlix/client.hpp>

#include <algorithm>
#include <cmath>
#include <iostream>
#include <memory>

namespace tool {

using namespace orlix;

namespace {

constexpr char kFlattenFooter[] = R"(
What is done
  A surface is fitted to the grey levels of the region by least squares and subtracted, and their mean
  is added: it stays, except with --robust. The roughness is taken before and after, the latter in
  floating point: rounding to grey levels does not enter. With --z-scale it is also given as heights,
  with a pixel size too the slopes of a plane and the radius of a hemisphere.

Roughness (areal parameters as ISO 25178-2 defines them, of heights z from their mean, no filter)
  Sa           mean of |z|
  Sq           root of the mean z^2
  Sz           from the lowest to the highest; trimmed: without the lowest and the highest 0.1 %
  Ssk, Sku     mean z^3 by Sq^3 and mean z^4 by Sq^4: 0 and 3 of normally distributed heights

Surfaces (x column, y row, z grey level)
  plane                alpha x + beta y + gamma
  biquadratic          all terms up to x^2, x y, y^2
  bicubic              all terms up to x^3, x^2 y, x y^2, y^3
  hemisphere           half an ellipsoid whose axes along x and y are equal
  angled-hemisphere    the same on a tilted base

Robust fits
  --robust P takes P as the probability that a pixel belongs to the surface: the fit follows the
  better part P of the pixels, whatever the others are (particles, pits, dust). It draws pixels at
  random, always the same ones for the same image. It needs at least 3 (plane), 6, 10, 5 and 7
  (angled-hemisphere) pixels. As the surface goes through the noise of these few pixels, least
  squares over all pixels within 2.5 deviations of it follow, until they stay the same.

Output
  A table for people, or with --json one document {..., options, images: [...]} whatever the
  number of images (a failed one has "file" and "error"), or with --csv one line an image. With
  --out DIR also NAME_flattened.png, of the image's own pixel type (of a colour image the one band),
  and report.html for one image, NAME_report.html each and report.html over all of them for several:
  images before and after, the residual in colour, profiles, figures.

Examples:
  orlix flatten weld.png --surface plane --out results
  orlix flatten height.png --surface biquadratic --z-scale 2.61e-5 --pixel-size 1.098 --out results
  orlix flatten *.png --surface plane --robust 0.7 --csv > roughness.csv
  orlix flatten ball.png --surface hemisphere --roi circle:400,300,250 --json)";

struct FlattenOptions {
    LoadOptions load;
    std::vector<std::string> files;
    SubjectOptions subject;
    std::string surface, out;
    std::optional<double> robust, zScale;
    bool json = false, csv = false, force = false;
};

std::vector<std::string> Columns(const FlattenOptions& options) {
    std::vector<std::string> columns = {"file",
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
                                        "zScale",
                                        "surface.kind",
                                        "surface.robust",
                                        "surface.refit.pixels",
                                        "surface.refit.within",
                                        "surface.average"};
    for (const auto& [name, value] : MakeSurface(options.surface)->Coefficients())
        columns.push_back("surface.coefficients." + std::string(name));
    for (const char* name : {"surface.slopeX", "surface.slopeY", "surface.apexRadius"}) columns.emplace_back(name);
    for (const std::string when : {"before.", "after."})
        for (const char* name : {"mean", "minimum", "maximum", "Sa", "Sq", "Sz", "trimmedSz", "Ssk", "Sku", "SaMicrons",
                                 "SqMicrons", "SzMicrons", "trimmedSzMicrons"})
            columns.push_back(when + name);
    columns.emplace_back("clippedPixels");
    columns.emplace_back("warnings");
    return columns;
}

std::string FlattenText(const Json& m) {
    const Json& robust = Member(m, "surface.robust");
    std::string out = SubjectText(m);
    out += TextLine("surface", Member(m, "surface.kind").get<std::string>() +
                                   (robust.is_null() ? "" : ", robust with " + Number(robust)) + ": " +
                                   Member(m, "surface.formula").get<std::string>());
    for (const auto& [name, value] : Member(m, "surface.coefficients").items())
        out += TextLine("", Padded(name, 10, false) + (value.is_null() ? "–" : Number(value)));
    if (const double slope = NumberAt(m, "surface.slopeX"); !std::isnan(slope))
        out += TextLine("", "slopes    " + Digits(slope, 6) + " and " + Digits(NumberAt(m, "surface.slopeY"), 6) +
                                " µm/mm along x and y");
    if (const double radius = NumberAt(m, "surface.apexRadius"); !std::isnan(radius))
        out += TextLine("", "radius of curvature at the apex " + Length(radius));
    if (const double pixels = NumberAt(m, "surface.refit.pixels"); !std::isnan(pixels))
        out += TextLine("", "least squares over the " + Plain(pixels) + " pixels within " +
                                Digits(NumberAt(m, "surface.refit.within"), 5) + " grey levels");
    for (const char* when : {"before", "after"}) {
        const auto figure = [&](const char* name, const char* member) {
            return std::string(name) + " " + Figure(m, when, member);
        };
        out += TextLine(when, figure("Sa", "Sa") + ", " + figure("Sq", "Sq"));
        out += TextLine("", figure("Sz", "Sz") + ", trimmed " + Figure(m, when, "trimmedSz"));
        out += TextLine("", "Ssk " + Digits(NumberAt(m, std::string(when) + ".Ssk"), 5) + ", Sku " +
                                Digits(NumberAt(m, std::string(when) + ".Sku"), 5));
    }
    return out + TextLine("clipped", Plain(NumberAt(m, "clippedPixels")) + " pixels of the flattened image") +
           WarningsText(m) + "\n";
}

// Stretches grey levels so that 0.1 % of the region's values are black and 0.1 % are white.
Picture Stretched(const std::vector<float>& values, const std::vector<float>& region, const Subject& subject,
                  double shift, std::string& range) {
    std::vector<float> sorted;
    for (size_t i = 0; i < values.size(); ++i)
        if (std::isfinite(region[i])) sorted.push_back(values[i]);
    double low = 0, high = 0;
    if (!sorted.empty()) {
        const auto cut = static_cast<std::ptrdiff_t>(sorted.size() / 1000);
        std::nth_element(sorted.begin(), sorted.begin() + cut, sorted.end());
        low = sorted[static_cast<size_t>(cut)];
        std::nth_element(sorted.begin(), sorted.end() - 1 - cut, sorted.end());
        high = *(sorted.end() - 1 - cut);
    }
    Picture picture = {subject.width, subject.height, 1, {}};
    picture.samples.reserve(values.size());
    for (const double value : values) {
        const double level = high > low ? (value - low) / (high - low) * 255 + 0.5 : 128;
        picture.samples.push_back(static_cast<uint8_t>(level > 0 ? std::min(level, 255.0) : 0));
    }
    const int digits = high - low < 10 ? 2 : high - low < 100 ? 1 : 0;
    range = "black " + Rounded(low + shift, digits) + ", white " + Rounded(high + shift, digits) + " grey levels";
    return picture;
}

// The profiles through the middle of the region.
void AddProfiles(const Flattening& flat, const Subject& subject, std::optional<double> zScale, FlattenPictures& out) {
    const auto width = static_cast<size_t>(subject.width);
    int32_t left = subject.width, right = -1, top = subject.height, bottom = -1;
    for (size_t i = 0; i < flat.residual.size(); ++i) {
        if (std::isnan(flat.residual[i])) continue;
        const auto x = static_cast<int32_t>(i % width), y = static_cast<int32_t>(i / width);
        left = std::min(left, x);
        right = std::max(right, x);
        top = std::min(top, y);
        bottom = std::max(bottom, y);
    }
    if (right < left) left = top = right = bottom = 0;
    out.row = (top + bottom) / 2;
    out.column = (left + right) / 2;

    const double mean = zScale ? NumberAt(flat.document, "before.mean") : 0;
    const auto line = [&](size_t first, size_t step, LONG count, double pixel, const char* name) {
        Profile profile;
        const Unit along = pixel > 0 ? LengthUnit(static_cast<double>(count) * pixel) : Unit{"pixels", 1};
        profile.axis = std::string(name) + ", " + along.name;
        profile.step = pixel > 0 ? pixel * along.scale : 1;
        double most = 0, mostResidual = 0;
        for (size_t i = 0; i < static_cast<size_t>(count); ++i) {
            const double residual = flat.residual[first + i * step];
            if (!std::isfinite(residual)) continue;
            most = std::max(most, std::fabs(flat.before[first + i * step] - mean));
            mostResidual = std::max(mostResidual, std::fabs(residual));
        }
        const Unit height = HeightUnit(most, zScale), rest = HeightUnit(mostResidual, zScale);
        profile.level = zScale ? "height about the mean, " + height.name : "grey level";
        profile.residual = "residual, " + rest.name;
        for (size_t i = 0; i < static_cast<size_t>(count); ++i) {
            const double residual = flat.residual[first + i * step];
            const double value = std::isnan(residual) ? residual : flat.before[first + i * step] - mean;
            profile.values.push_back(value * height.scale);
            profile.surface.push_back((value - residual) * height.scale);
            profile.residuals.push_back(residual * rest.scale);
        }
        return profile;
    };
    const auto row = static_cast<size_t>(out.row), column = static_cast<size_t>(out.column);
    out.horizontal = line(row * width, 1, subject.width, subject.xMicrons, "x");
    out.vertical = line(column, width, subject.height, subject.yMicrons, "y");
}

class FlattenResults {
public:
    explicit FlattenResults(const FlattenOptions& options)
        : single_(options.files.size() == 1), folder_(options.out, options.files, PlanOf(single_), options.force) {}

    void Add(size_t index, const Subject& subject, const Flattening& flat, std::optional<double> zScale,
             Json& document) {
        const std::string& name = folder_.NameOf(index);
        const std::string report = single_ ? "report.html" : name + "_report.html";
        Sign(subject.image);
        SaveImage(subject.image, Utf8(folder_.At(name + "_flattened.png")), IFF_PNG);

        const TemporaryFile file(".png");
        const std::filesystem::path& temporary = file.path();
        FlattenPictures pictures;
        AddProfiles(flat, subject, zScale, pictures);
        const double average = NumberAt(document, "surface.average");
        std::vector<float> after = flat.before;  // pixels outside the region are unchanged
        for (size_t i = 0; i < after.size(); ++i)
            after[i] = std::isnan(flat.residual[i]) ? static_cast<float>(after[i] - average) : flat.residual[i];
        const double microns = NumberAt(document, "micronsPerPixel.x");
        pictures.before = ReportPicture(Stretched(flat.before, flat.residual, subject, 0, pictures.beforeRange),
                                        kLargestInReport, microns, temporary);
        pictures.after = ReportPicture(Stretched(after, flat.residual, subject, average, pictures.afterRange),
                                       kLargestInReport, microns, temporary);
        const double most = NumberAt(document, "after.Sq");
        pictures.limit = ResidualLimit(flat.residual, HeightUnit(4 * most, zScale).scale);
        const auto beyond = std::count_if(flat.residual.begin(), flat.residual.end(),
                                          [&](double residual) { return std::fabs(residual) > pictures.limit; });
        pictures.beyond = static_cast<double>(beyond) / static_cast<double>(subject.pixels);
        pictures.residualMap = ResidualMap(
            document, DataUri(ResidualPicture(flat.residual, subject.width, subject.height, pictures.limit), temporary),
            pictures.limit, pictures.row, pictures.column);
        WriteFile(folder_.At(report), FlattenReport(document, ORLIX_TOOL_VERSION, pictures));
        document["outputs"]["image"] = name + "_flattened.png";
        document["outputs"]["report"] = report;
    }

    void Finish(const Batch& batch) {
        if (!single_)
            WriteFile(folder_.At("report.html"), FlattenOverview(batch.images, batch.warnings, ORLIX_TOOL_VERSION));
    }

private:
    static OutputFolder::Plan PlanOf(bool single) {
        OutputFolder::Plan plan = {{"_flattened.png"}, {"report.html"}};
        if (!single) plan.suffixes.emplace_back("_report.html");
        return plan;
    }

    bool single_;
    OutputFolder folder_;
};

// A copy of one band of a colour image: once that is flattened, the other bands no longer match it.
ComPtr<IImageVPAExPlus> BandOf(const ComPtr<IImageVPAExPlus>& image, LONG band) {
    auto alone = CreateObject<IImageVPAExPlus>("Orlix.Image");
    Check(alone->CreateFromImage(image.get(), band), alone);
    return alone;
}

int FlattenAll(const FlattenOptions& options, const Subcommand& command) {
    SubjectSettings subjectSettings;
    options.subject.Complete(subjectSettings);
    const FlattenSettings settings = MakeFlattenSettings(options.surface, options.robust, options.zScale);
    std::optional<FlattenResults> results;
    if (!options.out.empty()) results.emplace(options);

    const std::vector<std::string> columns = Columns(options);
    if (options.csv) std::cout << CsvHeader(columns);
    Batch batch = RunBatch(
        options.files,
        [&](size_t i, const std::string& name, Progress&) {
            Json document = {{"file", name}};
            Subject subject(options.load.Load(options.files[i]), subjectSettings, document);
            if (subject.bands > 1) {
                SubjectSettings alone = subjectSettings;
                alone.band = 0;
                Json ignored;
                subject = Subject(BandOf(subject.image, subject.band), alone, ignored);
            }
            const Flattening flat = Flatten(subject, settings);
            for (const auto& [code, message] : flat.warnings) Warn(document, code, message);
            for (const auto& [member, value] : flat.document.items()) document[member] = value;
            if (results) NoteOutputError(document, [&] { results->Add(i, subject, flat, settings.zScale, document); });
            return document;
        },
        [&](const Json& document) {
            if (options.csv)
                std::cout << CsvLine(columns, document) << std::flush;
            else if (!options.json && !document.contains("error"))
                std::cout << FlattenText(document) << std::flush;
        });

    if (results) batch.Write([&] { results->Finish(batch); });
    if (options.json) {
        Json document = command.Envelope();
        document["images"] = std::move(batch.images);
        document["warnings"] = std::move(batch.warnings);
        std::cout << Print(document);
    }
    return batch.code();
}

}  // namespace

Command AddFlatten(CLI::App& program) {
    const auto options = std::make_shared<FlattenOptions>();
    Subcommand command(program, "flatten", "Remove a fitted surface; roughness before and after", kFlattenFooter);
    command.Add("IMAGE", options->files, kImageFiles).Required();
    options->load.AddPages(command);
    command.Add("--surface", options->surface, SurfaceList()).Required().OneOf(SurfaceNames()).Named("SURFACE");
    command.Add("--robust", options->robust, "Probability that a pixel belongs to the surface, up to 1").Named("P");
    options->subject.AddRegion(command);
    options->subject.AddExclusions(command);
    command.Add("--z-scale", options->zScale, "Microns per grey level").Named("MICRONS");
    options->subject.AddPixelSize(command);
    options->subject.AddBand(
        command, "Band of a colour image: 0 red (default), 1 green, 2 blue; grey 0.299 R + 0.587 G + 0.114 B", true);
    command.Add("--out", options->out, "Folder for the flattened image and the report").Named("DIR");
    command.AddFlag("--force", options->force, "Replace other files there that have the names of results");
    const Parameter json = command.AddFlag("--json", options->json, "Results as JSON");
    command.AddFlag("--csv", options->csv, "Results as CSV").Excludes(json);
    return [options, command] { return FlattenAll(*options, command); };
}

}  // namespace tool
