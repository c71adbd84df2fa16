#include "particle_finding.hpp"

#include "console.hpp"
#include "particle_trust.hpp"
#include "warnings.hpp"

#include <orlix/filters.hpp>
#include <orlix/measure.hpp>
#include <orlix/particles.hpp>

#include <algorithm>
#include <cmath>
#include <limits>
#include <sstream>
#include <type_traits>

namespace tool {

using namespace orlix;

namespace {

// A measurement: the group that it is computed with, and whether it is one of those that are usually wanted.
template <class Record>
struct RecordField {
    const char* name;
    LONG group;
    bool usual;
    Json (*of)(const Record&);
};
template <class Record, auto Member>
Json MemberOf(const Record& record) {
    if constexpr (std::is_same_v<std::remove_cvref_t<decltype(record.*Member)>, double>)
        return Finite(record.*Member);
    else
        return record.*Member;
}

using ParticleShape = SBinaryMeasurements;
constexpr RecordField<ParticleShape> kShapeFields[] = {
    {"x", BEMT_Size, true, &MemberOf<ParticleShape, &ParticleShape::m_dXCentroid>},
    {"y", BEMT_Size, true, &MemberOf<ParticleShape, &ParticleShape::m_dYCentroid>},
    {"left", BEMT_Size, true, &MemberOf<ParticleShape, &ParticleShape::m_lLeft>},
    {"top", BEMT_Size, true, &MemberOf<ParticleShape, &ParticleShape::m_lTop>},
    {"right", BEMT_Size, true, &MemberOf<ParticleShape, &ParticleShape::m_lRight>},
    {"bottom", BEMT_Size, true, &MemberOf<ParticleShape, &ParticleShape::m_lBottom>},
    {"pixels", BEMT_Size, true, &MemberOf<ParticleShape, &ParticleShape::m_lPixelCount>},
    {"area", BEMT_Size, true, &MemberOf<ParticleShape, &ParticleShape::m_dArea>},
    {"diameter", BEMT_Size, true, [](const ParticleShape& shape) { return Finite(2 * shape.m_dEquivalentRadius); }},
    {"perimeter", BEMT_Perimeter, true, &MemberOf<ParticleShape, &ParticleShape::m_dPerimeter>},
    {"croftonPerimeter", BEMT_CroftonPerimeter, false, &MemberOf<ParticleShape, &ParticleShape::m_dCroftonPerimeter>},
    {"circularity", BEMT_Perimeter, true, &MemberOf<ParticleShape, &ParticleShape::m_dCircularity>},
    {"roundness", BEMT_Feret, false, &MemberOf<ParticleShape, &ParticleShape::m_dRoundness>},
    {"compactness", BEMT_Feret, false, &MemberOf<ParticleShape, &ParticleShape::m_dCompactness>},
    {"solidity", BEMT_Hull, true, &MemberOf<ParticleShape, &ParticleShape::m_dSolidity>},
    {"extent", BEMT_Size, false, &MemberOf<ParticleShape, &ParticleShape::m_dExtent>},
    {"aspectRatio", BEMT_Ellipse, true, &MemberOf<ParticleShape, &ParticleShape::m_dAspectRatio>},
    {"feretMaximum", BEMT_Feret, true, &MemberOf<ParticleShape, &ParticleShape::m_dFeretMaximum>},
    {"feretMaximumAngle", BEMT_Feret, true, &MemberOf<ParticleShape, &ParticleShape::m_dFeretMaximumAngle>},
    {"feretMinimum", BEMT_Feret, true, &MemberOf<ParticleShape, &ParticleShape::m_dFeretMinimum>},
    {"feretMinimumAngle", BEMT_Feret, true, &MemberOf<ParticleShape, &ParticleShape::m_dFeretMinimumAngle>},
    {"boxLength", BEMT_OrientedBox, false, &MemberOf<ParticleShape, &ParticleShape::m_dBoxLength>},
    {"boxWidth", BEMT_OrientedBox, false, &MemberOf<ParticleShape, &ParticleShape::m_dBoxWidth>},
    {"boxAngle", BEMT_OrientedBox, false, &MemberOf<ParticleShape, &ParticleShape::m_dBoxAngle>},
    {"majorAxis", BEMT_Ellipse, true, &MemberOf<ParticleShape, &ParticleShape::m_dMajorAxis>},
    {"minorAxis", BEMT_Ellipse, true, &MemberOf<ParticleShape, &ParticleShape::m_dMinorAxis>},
    {"ellipseAngle", BEMT_Ellipse, true, &MemberOf<ParticleShape, &ParticleShape::m_dEllipseAngle>},
    {"eccentricity", BEMT_Ellipse, false, &MemberOf<ParticleShape, &ParticleShape::m_dEccentricity>},
    {"holes", BEMT_Topology, true, &MemberOf<ParticleShape, &ParticleShape::m_lHoles>},
    {"filledArea", BEMT_FilledArea, false, &MemberOf<ParticleShape, &ParticleShape::m_dFilledArea>},
    {"hullArea", BEMT_Hull, false, &MemberOf<ParticleShape, &ParticleShape::m_dHullArea>},
    {"hullPerimeter", BEMT_Hull, false, &MemberOf<ParticleShape, &ParticleShape::m_dHullPerimeter>},
    {"inscribedRadius", BEMT_InscribedCircle, false, &MemberOf<ParticleShape, &ParticleShape::m_dInscribedRadius>},
    {"inscribedX", BEMT_InscribedCircle, false, &MemberOf<ParticleShape, &ParticleShape::m_dInscribedXCenter>},
    {"inscribedY", BEMT_InscribedCircle, false, &MemberOf<ParticleShape, &ParticleShape::m_dInscribedYCenter>},
    {"enclosingRadius", BEMT_EnclosingCircle, false, &MemberOf<ParticleShape, &ParticleShape::m_dEnclosingRadius>},
    {"skeletonLength", BEMT_Skeleton, false, &MemberOf<ParticleShape, &ParticleShape::m_dSkeletonLength>},
    {"meanWidth", BEMT_Skeleton, false, &MemberOf<ParticleShape, &ParticleShape::m_dMeanWidth>},
};
using ParticleGrey = SBlobGrayMeasurements;
constexpr RecordField<ParticleGrey> kGreyFields[] = {
    {"mean", GEMT_GrayStatistics, true, &MemberOf<ParticleGrey, &ParticleGrey::m_dGrayAverage>},
    {"standardDeviation", GEMT_GrayStatistics, true, &MemberOf<ParticleGrey, &ParticleGrey::m_dGrayStandardDeviation>},
    {"minimum", GEMT_GrayStatistics, true, &MemberOf<ParticleGrey, &ParticleGrey::m_dGrayMinimum>},
    {"maximum", GEMT_GrayStatistics, true, &MemberOf<ParticleGrey, &ParticleGrey::m_dGrayMaximum>},
    {"median", GEMT_GrayRank, false, &MemberOf<ParticleGrey, &ParticleGrey::m_dGrayMedian>},
    {"mode", GEMT_GrayRank, false, &MemberOf<ParticleGrey, &ParticleGrey::m_dGrayMode>},
    {"skewness", GEMT_GrayStatistics, false, &MemberOf<ParticleGrey, &ParticleGrey::m_dGraySkewness>},
    {"kurtosis", GEMT_GrayStatistics, false, &MemberOf<ParticleGrey, &ParticleGrey::m_dGrayKurtosis>},
    {"integrated", GEMT_GrayStatistics, false, &MemberOf<ParticleGrey, &ParticleGrey::m_dGrayIntegrated>},
    {"boundaryMean", GEMT_GrayBoundary, false, &MemberOf<ParticleGrey, &ParticleGrey::m_dGrayBoundaryAverage>},
    {"xCentroid", GEMT_GrayLocation, false, &MemberOf<ParticleGrey, &ParticleGrey::m_dGrayXCentroid>},
    {"yCentroid", GEMT_GrayLocation, false, &MemberOf<ParticleGrey, &ParticleGrey::m_dGrayYCentroid>},
    {"volumeOverPlane", GEMT_GrayVolume, false, &MemberOf<ParticleGrey, &ParticleGrey::m_dVolumeOverPlane>},
};
using ParticleOutline = SLevelMeasurements;
constexpr RecordField<ParticleOutline> kOutlineFields[] = {
    {"area", 1, true, &MemberOf<ParticleOutline, &ParticleOutline::m_dArea>},
    {"diameter", 1, true, [](const ParticleOutline& outline) { return Finite(2 * outline.m_dEquivalentRadius); }},
    {"perimeter", 1, true, &MemberOf<ParticleOutline, &ParticleOutline::m_dPerimeter>},
    {"circularity", 1, true, &MemberOf<ParticleOutline, &ParticleOutline::m_dCircularity>},
    {"x", 1, false, &MemberOf<ParticleOutline, &ParticleOutline::m_dXCentroid>},
    {"y", 1, false, &MemberOf<ParticleOutline, &ParticleOutline::m_dYCentroid>},
    {"majorAxis", 1, false, &MemberOf<ParticleOutline, &ParticleOutline::m_dMajorAxis>},
    {"minorAxis", 1, false, &MemberOf<ParticleOutline, &ParticleOutline::m_dMinorAxis>},
    {"ellipseAngle", 1, false, &MemberOf<ParticleOutline, &ParticleOutline::m_dEllipseAngle>},
    {"feretMaximum", 1, false, &MemberOf<ParticleOutline, &ParticleOutline::m_dFeretMaximum>},
    {"feretMinimum", 1, false, &MemberOf<ParticleOutline, &ParticleOutline::m_dFeretMinimum>},
    {"levelShare", 1, true, &MemberOf<ParticleOutline, &ParticleOutline::m_dLevelShare>},
};

// Of a table, the fields whose columns are chosen, and the groups to compute for them.
template <class Record>
struct ChosenFields {
    std::vector<const RecordField<Record>*> fields;
    LONG groups = 0;

    template <size_t N>
    ChosenFields(const RecordField<Record> (&table)[N], const std::string& prefix,
                 const std::vector<std::string>& columns, LONG always = 0) {
        for (const RecordField<Record>& field : table)
            if ((field.group & always) != 0 || std::ranges::find(columns, prefix + field.name) != columns.end()) {
                fields.push_back(&field);
                groups |= field.group;
            }
    }
    void Put(const Record& record, Json& out) const {
        for (const RecordField<Record>* field : fields) out[field->name] = field->of(record);
    }
};

LONG NumberOfBlobs(const ComPtr<IBlobs>& blobs) {
    LONG count = 0;
    Check(blobs->get_Count(&count), blobs);
    return count;
}

std::vector<ParticleShape> ShapesOf(const ComPtr<IBlobs>& blobs, LONG groups) {
    std::vector<ParticleShape> shapes(static_cast<size_t>(NumberOfBlobs(blobs)));
    if (!shapes.empty())
        Check(blobs->GetBinaryMeasurements(groups, 0, static_cast<LONG>(shapes.size()), shapes.data()), blobs);
    return shapes;
}

// Where particles are counted: the image, or the region.
class CountingField {
public:
    CountingField(const Measurement& measurement) {
        const Json& document = measurement.document;
        box_ = {0, 0, document["width"].get<LONG>() - 1, document["height"].get<LONG>() - 1};
        pixels_ = Member(document, "region.pixels");
        if (measurement.region) {
            RECT box = {};
            Check(measurement.region->get_BoundingBox(&box), measurement.region);
            box_ = {std::max<LONG>(box_.left, box.left), std::max<LONG>(box_.top, box.top),
                    std::min<LONG>(box_.right, box.right), std::min<LONG>(box_.bottom, box.bottom)};
        }
        rectangle_ = int64_t{Width()} * Height() == pixels_;
    }
    bool rectangle() const { return rectangle_; }
    LONG Width() const { return box_.right - box_.left + 1; }
    LONG Height() const { return box_.bottom - box_.top + 1; }

    // Pixels that the counting rule stands for.
    int64_t CountedPixels() const { return rectangle_ ? int64_t{Width() - 1} * (Height() - 1) : pixels_; }
    bool Cuts(const ParticleShape& shape) const {
        return shape.m_lImageBorderPixels > 0 || shape.m_lRegionBorderPixels > 0;
    }
    double CountOf(const ParticleShape& shape) const {
        if (!rectangle_) return Cuts(shape) ? 0.5 : 1;
        return CountsInField({shape.m_lLeft <= box_.left, shape.m_lTop <= box_.top, shape.m_lRight >= box_.right,
                              shape.m_lBottom >= box_.bottom})
                   ? 1
                   : 0;
    }
    // The weight of a particle that is not cut.
    double WeightOf(const ParticleShape& shape) const {
        return MilesLantuejoul(shape.m_lRight - shape.m_lLeft + 1, shape.m_lBottom - shape.m_lTop + 1, Width(),
                               Height());
    }

private:
    struct Box {
        LONG left, top, right, bottom;
    };
    Box box_ = {};
    int64_t pixels_ = 0;
    bool rectangle_ = false;
};

// The grey level of the outlines: half-way between the last level of one side and the first of the other. NaN for a
// phase with two bounds, or none.
double OutlineLevel(const Json& document, LONG type) {
    const double lower = NumberAt(document, "phase.lower"), upper = NumberAt(document, "phase.upper");
    const bool below = lower > TypeMinimum(type), above = upper < TypeMaximum(type);  // false for NaN, an open end
    if (below == above || lower > upper) return std::numeric_limits<double>::quiet_NaN();
    const double half = type == DT_Float ? 0 : 0.5;
    return above ? upper + half : lower - half;
}

class ParticleFinding {
public:
    ParticleFinding(ComPtr<IImageVPAExPlus> image, const std::string& shownName, const ParticleSettings& settings)
        : settings_(settings) {
        Filter(image);
        result_.measurement = MeasureImage(std::move(image), shownName, settings);
        Check(Of().image->DataType(Of().band, &type_), Of().image);
    }

    ParticleImage Run() {
        Json& document = Of().document;
        const ComPtr<IBlobs> found = Steps(Of().phase, 0, steps_);
        const CountingField field(Of());
        const double xMicrons = NumberAt(document, "micronsPerPixel.x"),
                     yMicrons = NumberAt(document, "micronsPerPixel.y");
        const bool calibrated = xMicrons > 0 && yMicrons > 0;
        if (calibrated) Check(found->PutMicronsPerPixel(xMicrons, yMicrons), found);
        Json summary = Counted(found, field, calibrated ? xMicrons * yMicrons : 0);
        const double level = OutlineLevel(document, type_);
        // Each place has a level of its own then.
        const double outlineLevel = settings_.local ? std::numeric_limits<double>::quiet_NaN() : level;
        document["steps"] = steps_;
        document["unit"] = calibrated ? "µm" : "pixel";
        document["level"] = Finite(outlineLevel);
        Json particles = List(field, outlineLevel);

        int64_t pixels = 0, specks = 0;
        double area = 0;
        std::vector<const Json*> pointers;
        for (const Json& particle : particles) {
            const int64_t of = particle["pixels"];
            pixels += of;
            specks += of < kSpeck;
            area += particle["area"].get<double>();
            pointers.push_back(&particle);
        }
        summary["pixels"] = pixels;
        summary["area"] = area;
        summary["areaFraction"] = static_cast<double>(pixels) / NumberAt(document, "region.pixels");
        summary["edgeCorrection"] =
            settings_.excludeBorder && field.rectangle() ? Json("miles-lantuejoul") : Json(nullptr);
        summary["diameter"] = DiameterDistributions(pointers);
        document["trust"] = nullptr;
        if (settings_.trust && Of().movedPhase)
            document["trust"] =
                Trust(field, level, calibrated ? xMicrons * yMicrons : 1, document["histogram"], particles);
        if (particles.size() >= 4 && 2 * specks > static_cast<int64_t>(particles.size()))
            Warn(document, "specks",
                 std::to_string(specks) + " of " + std::to_string(particles.size()) +
                     " particles have fewer than 5 pixels: noise? See --filter, --open and --min-area");
        if (settings_.excludeBorder && particles.empty() && summary["atBorder"] > 0)
            Warn(document, "all-at-border", "all particles are cut by the border");
        document["particleSummary"] = std::move(summary);
        document["particles"] = std::move(particles);
        // Warnings stay last.
        if (document.contains("warnings")) {
            Json warnings = std::move(document["warnings"]);
            document.erase("warnings");
            document["warnings"] = std::move(warnings);
        }
        return std::move(result_);
    }

private:
    static constexpr int64_t kSpeck = 5;  // pixels; smaller ones have no shape

    Measurement& Of() { return result_.measurement; }
    const Measurement& Of() const { return result_.measurement; }

    static Json& Step(Json& steps, const char* name) {
        steps.push_back({{"step", name}});
        return steps.back();
    }

    void Filter(const ComPtr<IImageVPAExPlus>& image) {
        for (const FilterPass& pass : settings_.filters) {
            const NamedFilter* const filter = FindFilter(pass.name);
            const auto process = Cast<IImageProcess>(image);
            for (int i = 0; i < pass.times; ++i) {
                auto source = CreateObject<IImageVPAExPlus>("Orlix.Image");
                Check(source->CreateFromImage(image.get(), BI_AllBands), source);
                Check((process.get()->*filter->apply)(source.get(), BI_AllBands), process);
            }
            Json& step = Step(steps_, "filter");
            step["filter"] = pass.name;
            step["times"] = pass.times;
        }
    }

    // Applies the local threshold to a copy of the phase, and fills the holes that are none: within a particle, either
    // texture has contrast in the phase, or nothing has, outside of it, and only the rim was found. A hole stays if the
    // phase and the local threshold both leave out one of its pixels.
    void ThresholdLocally(const ComPtr<IBitmapProcess>& bitmap, const ComPtr<IBitmap>& phase, double shift) const {
        const LocalThreshold& local = *settings_.local;
        const double offset = local.bright ? -shift : shift;
        const auto threshold = [&](const ComPtr<IBitmapProcess>& to) {
            Check(to->ThresholdLocally(Of().image.get(), Of().band, local.radius, local.contrast, offset, local.bright),
                  to);
        };
        const auto copyOf = [&](const ComPtr<IBitmapProcess>& from) {
            const auto copy = CreateObject<IBitmapProcess>("Orlix.Bitmap");
            Check(copy->CreateFromBitmap(from.get()), copy);
            return copy;
        };
        threshold(bitmap);
        const auto found = copyOf(bitmap), background = copyOf(bitmap);
        Check(background->One(), background);
        threshold(background);
        Check(background->Invert(), background);
        Check(background->AndNotEquals(phase.get()), background);
        Check(bitmap->FillHoles(0, settings_.connectivity), bitmap);
        const auto holes = copyOf(bitmap);
        Check(holes->AndNotEquals(found.get()), holes);
        Check(holes->Reconstruct(background.get(), settings_.connectivity == CT_4 ? CT_8 : CT_4), holes);
        Check(bitmap->AndNotEquals(holes.get()), bitmap);
    }

    // Applies the steps to a copy of a phase that is wider by `shift` grey levels than that of the measurement, and
    // finds its components. Says what was done.
    ComPtr<IBlobs> Steps(const ComPtr<IBitmap>& phase, double shift, Json& steps) const {
        Step(steps, "threshold");
        const auto bitmap = CreateObject<IBitmapProcess>("Orlix.Bitmap");
        Check(bitmap->CreateFromBitmap(phase.get()), bitmap);
        Check(bitmap->put_RegionOfInterest(result_.measurement.region.get()), bitmap);
        const ConnectivityType connectivity = settings_.connectivity;
        if (settings_.local) {
            ThresholdLocally(bitmap, phase, shift);
            Json& step = Step(steps, "local");
            step["radius"] = settings_.local->radius;
            step["contrast"] = settings_.local->contrast;
        }
        if (settings_.open) {
            Check(bitmap->OpenDisk(*settings_.open), bitmap);
            Step(steps, "open")["radius"] = *settings_.open;
        }
        if (settings_.close) {
            Check(bitmap->CloseDisk(*settings_.close), bitmap);
            Step(steps, "close")["radius"] = *settings_.close;
        }
        if (settings_.fillHoles) {
            Check(bitmap->FillHoles(*settings_.fillHoles, connectivity), bitmap);
            Step(steps, "fill-holes")["maximumArea"] =
                *settings_.fillHoles ? Json(*settings_.fillHoles) : Json(nullptr);
        }
        if (settings_.split) {
            const auto& [depth, share] = *settings_.split;
            Check(bitmap->Split(depth, share, connectivity), bitmap);
            Json& step = Step(steps, "split");
            step["depth"] = depth;
            step["share"] = share;
        }
        ComPtr<IBlobs> blobs;
        Check(bitmap->FindBlobs(connectivity, blobs.Out()), bitmap);
        if (settings_.minimumArea || settings_.maximumArea) {
            const LONG least = settings_.minimumArea.value_or(1),
                       most = settings_.maximumArea.value_or(std::numeric_limits<LONG>::max());
            ComPtr<IBlobs> chosen;
            Check(blobs->Select(SMT_PixelCount, least, most, chosen.Out()), blobs);
            Json& step = Step(steps, "area");
            step["minimum"] = least;
            step["maximum"] = settings_.maximumArea ? Json(most) : Json(nullptr);
            step["removed"] = NumberOfBlobs(blobs) - NumberOfBlobs(chosen);
            blobs = chosen;
        }
        return blobs;
    }

    // The particles that no border cuts.
    static ComPtr<IBlobs> Whole(const ComPtr<IBlobs>& found) {
        ComPtr<IBlobs> inImage, whole;
        Check(found->Select(SMT_ImageBorderPixels, 0, 0, inImage.Out()), found);
        Check(inImage->Select(SMT_RegionBorderPixels, 0, 0, whole.Out()), inImage);
        return whole;
    }

    // Counts the particles by the rule of the field; then leaves out those that are cut, if asked to.
    Json Counted(const ComPtr<IBlobs>& found, const CountingField& field, double squareMicrons) {
        double counted = 0;
        int64_t cut = 0;
        const std::vector<ParticleShape> shapes = ShapesOf(found, BEMT_Size | BEMT_BorderContact);
        for (const ParticleShape& shape : shapes) {
            counted += field.CountOf(shape);
            cut += field.Cuts(shape);
        }
        result_.blobs = found;
        if (settings_.excludeBorder) {
            result_.blobs = Whole(found);
            Step(steps_, "border")["removed"] = cut;
        }
        Json out;
        out["count"] = NumberOfBlobs(result_.blobs);
        out["atBorder"] = cut;
        Json& counting = out["counting"];
        counting["rule"] = field.rectangle() ? "counting-frame" : "half-of-cut";
        counting["counted"] = counted == std::floor(counted) ? Json(static_cast<int64_t>(counted)) : Json(counted);
        const auto pixels = static_cast<double>(field.CountedPixels());
        counting["field"]["pixels"] = field.CountedPixels();
        counting["field"]["squareMicrons"] = squareMicrons > 0 ? Json(pixels * squareMicrons) : Json(nullptr);
        Json& number = out["numberPerArea"];
        // A particle counted half has no Poisson interval of its own: that of the next whole number stands in.
        const Interval interval = PoissonInterval95(static_cast<int64_t>(std::ceil(counted)));
        const double units = pixels * (squareMicrons > 0 ? squareMicrons : 1) / 1e6;
        const auto density = [&](double count) { return Finite(count / units); };
        number["value"] = density(counted);
        number["lower"] = density(interval.lower);
        number["upper"] = density(interval.upper);
        number["unit"] = squareMicrons > 0 ? "1/mm2" : "1/megapixel";
        return out;
    }

    // The documents of the particles that are left.
    Json List(const CountingField& field, double level) {
        const ComPtr<IBlobs>& blobs = result_.blobs;
        const ChosenFields<ParticleShape> shapeFields(kShapeFields, "", settings_.columns, BEMT_Size);
        const ChosenFields<ParticleGrey> greyFields(kGreyFields, "grey.", settings_.columns);
        const ChosenFields<ParticleOutline> outlineFields(kOutlineFields, "outline.", settings_.columns);
        const std::vector<ParticleShape> shapes = ShapesOf(blobs, shapeFields.groups | BEMT_BorderContact);
        std::vector<ParticleGrey> grey(greyFields.groups == 0 ? 0 : shapes.size());
        std::vector<ParticleOutline> outlines(outlineFields.groups == 0 || std::isnan(level) ? 0 : shapes.size());
        const auto count = static_cast<LONG>(shapes.size());
        if (!grey.empty()) {
            Check(blobs->MeasureGray(Of().image.get(), Of().band, greyFields.groups), blobs);
            Check(blobs->GetGrayMeasurements(0, count, grey.data()), blobs);
        }
        if (!outlines.empty())
            Check(blobs->GetLevelMeasurements(Of().image.get(), Of().band, level, 0, count, outlines.data()), blobs);
        Json list = Json::array();
        for (size_t i = 0; i < shapes.size(); ++i) {
            Json particle;
            particle["number"] = i + 1;
            shapeFields.Put(shapes[i], particle);
            particle["atBorder"] = field.Cuts(shapes[i]);
            particle["weight"] = Finite(WeightOf(shapes[i], field));
            if (!grey.empty()) greyFields.Put(grey[i], particle["grey"]);
            if (outlineFields.groups != 0) particle["outline"] = nullptr;
            if (!outlines.empty()) outlineFields.Put(outlines[i], particle["outline"]);
            list.push_back(std::move(particle));
        }
        return list;
    }

    // In the size distributions.
    double WeightOf(const ParticleShape& shape, const CountingField& field) const {
        return settings_.excludeBorder && field.rectangle() ? field.WeightOf(shape) : 1;
    }

    Json Trust(const CountingField& field, double level, double pixelArea, const Json& histogram, Json& particles) {
        const Json& phase = Of().document["phase"];
        TrustSettings trust;
        trust.level = level;
        trust.integer = type_ != DT_Float;
        trust.pixelArea = pixelArea;
        trust.weightOf = [&](const ParticleShape& shape) { return WeightOf(shape, field); };
        trust.movedBy = [&](double shift) -> ParticlesAt {
            const MovedPhase moved = Of().movedPhase(shift);
            Json same;  // steps as before
            const ComPtr<IBlobs> found = Steps(moved.phase, shift, same);
            return {settings_.excludeBorder ? Whole(found) : found, moved.lower, moved.upper};
        };
        return TrustOf(histogram, {result_.blobs, NumberAt(phase, "lower"), NumberAt(phase, "upper")}, trust,
                       particles);
    }

    const ParticleSettings& settings_;
    ParticleImage result_;
    LONG type_ = DT_BYTE;
    Json steps_ = Json::array();
};

Json DistributionDocument(const SizeDistribution& sizes) {
    Json out;
    out["count"] = sizes.count;
    out["mean"] = Finite(sizes.mean);
    out["d10"] = Finite(sizes.d10);
    out["d50"] = Finite(sizes.d50);
    out["d90"] = Finite(sizes.d90);
    return out;
}

}  // namespace

ParticleImage FindParticles(ComPtr<IImageVPAExPlus> image, const std::string& shownName,
                            const ParticleSettings& settings) {
    return ParticleFinding(std::move(image), shownName, settings).Run();
}

std::vector<std::string> ParseColumns(const std::string& list) {
    struct Column {
        std::string name, group;
        bool usual;
    };
    std::vector<Column> columns = {{"number", "", true}};
    const auto add = [&](const auto& table, const std::string& group, const std::string& prefix) {
        for (const auto& field : table) columns.push_back({prefix + field.name, group, field.usual});
    };
    add(kShapeFields, "shape", "");
    columns.push_back({"atBorder", "shape", true});
    columns.push_back({"weight", "shape", true});
    add(kGreyFields, "grey", "grey.");
    add(kOutlineFields, "outline", "outline.");
    for (const char* move : {"oneLevel", "valley"})
        for (const char* member : {"narrowerArea", "widerArea", "fate"})
            columns.push_back({std::string("trust.") + move + "." + member, "trust", true});

    std::vector<bool> chosen(columns.size(), false);
    chosen[0] = true;
    std::istringstream words(list);
    for (std::string word; std::getline(words, word, ',');) {
        if (word.starts_with("gray")) word[2] = 'e';
        bool some = false;
        for (size_t i = 0; i < columns.size(); ++i) {
            const Column& column = columns[i];
            if (word != "all" && word != column.group && word != column.name && !(word == "usual" && column.usual))
                continue;
            chosen[i] = some = true;
        }
        if (!some) {
            std::string known = "usual, all, shape, grey, outline, trust";
            for (size_t i = 1; i < columns.size(); ++i) known += ", " + columns[i].name;
            throw UsageError("--measure: '" + word + "' is not one of " + known);
        }
    }
    std::vector<std::string> out;
    for (size_t i = 0; i < columns.size(); ++i)
        if (chosen[i]) out.push_back(columns[i].name);
    return out;
}

Json DiameterDistributions(const std::vector<const Json*>& particles) {
    std::vector<double> diameters, numbers, areas;
    for (const Json* particle : particles) {
        const double weight = NumberAt(*particle, "weight");  // NaN, which leaves it out, where it could not lie inside
        diameters.push_back(NumberAt(*particle, "diameter"));
        numbers.push_back(weight);
        areas.push_back(weight * NumberAt(*particle, "area"));
    }
    Json out;
    out["byNumber"] = DistributionDocument(DistributionOf(diameters, numbers));
    out["byArea"] = DistributionDocument(DistributionOf(diameters, areas));
    return out;
}

}  // namespace tool
