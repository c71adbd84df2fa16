#include "orlix_bitmap/orlix_blobs.hpp"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

#include "blobs/level_outline.hpp"
#include "geometry/orlix_polygon.hpp"
#include "orlix_bitmap/blob_records.hpp"
#include "orlix_bitmap/image_band.hpp"
#include "orlix_bitmap/orlix_bitmap.hpp"
#include "orlix_bitmap/plane_image.hpp"
#include "orlix_bitmap/run_region.hpp"

using namespace orlix;

namespace {

ImageBand MeasuredBand(IImageVPA* image, LONG band, const Components& components) {
    return {image, band, components.width(), components.height(),
            MethodFailure("multiband measurement is not supported.")};
}

// The path of a hole, or with -1 the outer one.
size_t PathOf(LONG hole, size_t paths) {
    if (hole < -1 || static_cast<int64_t>(hole) + 1 >= static_cast<int64_t>(paths))
        throw MethodFailure("hole is out of range");
    return static_cast<size_t>(hole + 1);
}

template <class I>
void HandOut(I** to, ComPtr<I> object) {
    *to = object.Detach();
}

}  // namespace

ComPtr<OrlixBlobs> OrlixBlobs::Of(Labelling&& labelling) {
    auto found = std::make_shared<Found>(std::move(labelling));
    std::vector<uint32_t> labels(found->components().count());
    std::iota(labels.begin(), labels.end(), 0u);
    return ComPtr<OrlixBlobs>::Attach(new OrlixBlobs(std::move(found), std::move(labels)));
}

// The blobs at the given places, with what is known of them.
ComPtr<OrlixBlobs> OrlixBlobs::Chosen(const std::vector<uint32_t>& indices) const {
    std::vector<uint32_t> labels;
    std::vector<BlobGrayMeasurements> gray;
    labels.reserve(indices.size());
    if (!gray_.empty()) gray.reserve(indices.size());
    for (const uint32_t index : indices) {
        labels.push_back(labels_[index]);
        if (!gray_.empty()) gray.push_back(gray_[index]);
    }
    const auto chosen = ComPtr<OrlixBlobs>::Attach(new OrlixBlobs(found_, std::move(labels)));
    chosen->gray_ = std::move(gray);
    chosen->pixel_ = pixel_;
    return chosen;
}

uint32_t OrlixBlobs::LabelAt(LONG index) const {
    if (index < 0 || static_cast<size_t>(index) >= labels_.size()) throw MethodFailure("index is out of range");
    return labels_[static_cast<size_t>(index)];
}

void OrlixBlobs::RequireRange(LONG first, LONG count) const {
    if (first < 0 || count < 0 || static_cast<uint64_t>(first) + static_cast<uint64_t>(count) > labels_.size())
        throw MethodFailure("index is out of range");
}

// Of the blobs first .. first + count - 1, which exist.
std::vector<double> OrlixBlobs::Values(SingleMeasurementType type, LONG first, LONG count) const {
    const std::span<const uint32_t> labels =
        std::span(labels_).subspan(static_cast<size_t>(first), static_cast<size_t>(count));
    std::vector<double> values;
    values.reserve(labels.size());
    if (type == SMT_Label) {
        values.assign(labels.begin(), labels.end());
        return values;
    }
    const SingleMeasurement& measurement = SingleMeasurementOf(type);
    if (measurement.ofGray) {
        if (gray_.size() != labels_.size()) throw MethodFailure("no image has been measured.");
        for (size_t i = 0; i < labels.size(); ++i)
            values.push_back(measurement.ofGray(gray_[static_cast<size_t>(first) + i], pixel_.x * pixel_.y));
        return values;
    }
    ShapeMeasurer measurer(found_->labelling, measurement.groups, pixel_);
    ShapeMeasurements shape;
    for (const uint32_t label : labels) {
        measurer.Measure(label, shape);
        values.push_back(measurement.ofShape(shape));
    }
    return values;
}

STDMETHODIMP OrlixBlobs::get_Count(LONG* value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = static_cast<LONG>(labels_.size());
    });
}

STDMETHODIMP OrlixBlobs::get_Width(LONG* value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = components().width();
    });
}

STDMETHODIMP OrlixBlobs::get_Height(LONG* value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = components().height();
    });
}

STDMETHODIMP OrlixBlobs::get_Connectivity(ConnectivityType* value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = components().connectivity() == Connectivity::Four ? CT_4 : CT_8;
    });
}

STDMETHODIMP OrlixBlobs::GetMicronsPerPixel(double* x, double* y) noexcept {
    return Guarded([&] {
        Require(x), Require(y);
        *x = pixel_.x;
        *y = pixel_.y;
    });
}

STDMETHODIMP OrlixBlobs::PutMicronsPerPixel(double x, double y) noexcept {
    return Guarded<IBlobs>([&] {
        if (!(x > 0 && y > 0 && std::isfinite(x) && std::isfinite(y)))
            throw MethodFailure("the pixel size must be positive.");
        pixel_ = {x, y};
    });
}

STDMETHODIMP OrlixBlobs::get_Label(LONG index, LONG* value) noexcept {
    return Guarded<IBlobs>([&] {
        Require(value);
        *value = 0;
        *value = static_cast<LONG>(LabelAt(index));
    });
}

STDMETHODIMP OrlixBlobs::get_Parent(LONG index, LONG* value) noexcept {
    return Guarded<IBlobs>([&] {
        Require(value);
        *value = 0;
        const uint32_t label = LabelAt(index);
        const std::vector<uint32_t>& parents = found_->parents ? *found_->parents : found_->holes().holeOfBlob;
        *value = parents[label] == kNoLabel ? -1 : static_cast<LONG>(parents[label]);
    });
}

STDMETHODIMP OrlixBlobs::get_Holes(IBlobs** value) noexcept {
    return Guarded<IBlobs>([&] {
        Require(value);
        *value = nullptr;
        const Holes& found = found_->holes();
        std::vector<bool> chosen(components().count());
        for (const uint32_t label : labels_) chosen[label] = true;
        std::vector<uint32_t> labels;
        for (uint32_t hole = 0; hole < found.holes.count(); ++hole)
            if (chosen[found.blobOfHole[hole]]) labels.push_back(hole);
        Labelling labelling;
        labelling.blobs = found.holes;
        auto holes = std::make_shared<Found>(std::move(labelling));
        holes->parents = found.blobOfHole;
        const auto object = ComPtr<OrlixBlobs>::Attach(new OrlixBlobs(std::move(holes), std::move(labels)));
        object->pixel_ = pixel_;
        HandOut<IBlobs>(value, ComPtr<IBlobs>(object.get()));
    });
}

STDMETHODIMP OrlixBlobs::GetBinaryMeasurements(LONG desired, LONG first, LONG count,
                                               SBinaryMeasurements* measure) noexcept {
    return Guarded<IBlobs>([&] {
        Require(measure);
        RequireRange(first, count);
        const auto groups = static_cast<uint32_t>(desired) & SG_All;
        ShapeMeasurer measurer(found_->labelling, groups | SG_Size, pixel_);
        // Everything that can fail comes first; then the records are written one after another.
        std::vector<ShapeMeasurements> shapes(static_cast<size_t>(std::min<LONG>(count, 1024)));
        for (LONG done = 0; done < count;) {
            const auto n = std::min<LONG>(count - done, 1024);
            for (LONG i = 0; i < n; ++i)
                measurer.Measure(labels_[static_cast<size_t>(first + done + i)], shapes[static_cast<size_t>(i)]);
            for (LONG i = 0; i < n; ++i) {
                SBinaryMeasurements& record = measure[done + i];
                record.m_lLabel = static_cast<LONG>(labels_[static_cast<size_t>(first + done + i)]);
                FillIn(record, shapes[static_cast<size_t>(i)], groups);
            }
            done += n;
        }
    });
}

STDMETHODIMP OrlixBlobs::MeasureGray(IImageVPA* image, LONG band, LONG desired) noexcept {
    return Guarded<IBlobs>([&] {
        std::vector<BlobGrayMeasurements> gray;
        WithPixels(MeasuredBand(image, band, components()), [&]<class Pixel>(const PixelView<const Pixel>& view) {
            GrayMeasurer<Pixel> measurer(components(), view, static_cast<uint32_t>(desired) & GG_All);
            gray.reserve(labels_.size());
            for (const uint32_t label : labels_) gray.push_back(measurer.Measure(label));
        });
        gray_ = std::move(gray);
    });
}

STDMETHODIMP OrlixBlobs::GetGrayMeasurements(LONG first, LONG count, SBlobGrayMeasurements* measure) noexcept {
    return Guarded<IBlobs>([&] {
        Require(measure);
        RequireRange(first, count);
        if (gray_.size() != labels_.size()) throw MethodFailure("no image has been measured.");
        for (LONG i = 0; i < count; ++i) {
            measure[i].m_lLabel = static_cast<LONG>(labels_[static_cast<size_t>(first + i)]);
            FillIn(measure[i], gray_[static_cast<size_t>(first + i)], pixel_);
        }
    });
}

STDMETHODIMP OrlixBlobs::GetValues(SingleMeasurementType type, LONG first, LONG count, double* values) noexcept {
    return Guarded<IBlobs>([&] {
        Require(values);
        RequireRange(first, count);
        std::ranges::copy(Values(type, first, count), values);
    });
}

STDMETHODIMP OrlixBlobs::Select(SingleMeasurementType type, double lower, double upper, IBlobs** value) noexcept {
    return Guarded<IBlobs>([&] {
        Require(value);
        *value = nullptr;
        if (!(lower <= upper)) throw MethodFailure("Lower cannot be larger than Upper.");
        const std::vector<double> values = Values(type, 0, static_cast<LONG>(labels_.size()));
        std::vector<uint32_t> indices;
        for (size_t i = 0; i < values.size(); ++i)
            if (values[i] >= lower && values[i] <= upper) indices.push_back(static_cast<uint32_t>(i));
        HandOut<IBlobs>(value, ComPtr<IBlobs>(Chosen(indices).get()));
    });
}

STDMETHODIMP OrlixBlobs::Sort(SingleMeasurementType type, LONG descending, IBlobs** value) noexcept {
    return Guarded<IBlobs>([&] {
        Require(value);
        *value = nullptr;
        const std::vector<double> values = Values(type, 0, static_cast<LONG>(labels_.size()));
        std::vector<uint32_t> indices(values.size());
        std::iota(indices.begin(), indices.end(), 0u);
        std::stable_sort(indices.begin(), indices.end(), [&](uint32_t a, uint32_t b) {
            if (std::isnan(values[a]) || std::isnan(values[b])) return !std::isnan(values[a]) && std::isnan(values[b]);
            return descending ? values[a] > values[b] : values[a] < values[b];
        });
        HandOut<IBlobs>(value, ComPtr<IBlobs>(Chosen(indices).get()));
    });
}

STDMETHODIMP OrlixBlobs::get_Bitmap(IBitmap** value) noexcept {
    return Guarded<IBlobs>([&] {
        Require(value);
        *value = nullptr;
        const auto bitmap = OrlixBitmap::Make();
        bitmap->store().Create(components().width(), components().height(), true);
        for (const uint32_t label : labels_)
            for (const LabelledRun& run : components().runs(label))
                DrawRow(bitmap->store(), run.row, {run.start, run.stop}, DT_On);
        HandOut<IBitmap>(value, ComPtr<IBitmap>(bitmap.get()));
    });
}

STDMETHODIMP OrlixBlobs::get_LabelImage(IImageVPA** value) noexcept {
    return Guarded<IBlobs>([&] {
        Require(value);
        *value = nullptr;
        const auto image = PlaneImage::Make(DT_DWORD, components().width(), components().height());
        for (size_t i = 0; i < labels_.size(); ++i)
            for (const LabelledRun& run : components().runs(labels_[i])) {
                uint32_t* const row = image->row<uint32_t>(run.row);
                std::fill(row + run.start, row + run.stop + 1, static_cast<uint32_t>(i + 1));
            }
        HandOut<IImageVPA>(value, ComPtr<IImageVPA>(image.get()));
    });
}

STDMETHODIMP OrlixBlobs::get_Region(LONG index, IRegionOfInterest** value) noexcept {
    return Guarded<IBlobs>([&] {
        Require(value);
        *value = nullptr;
        const auto region =
            RunRegion::Make(components().width(), components().height(), components().runs(LabelAt(index)));
        HandOut<IRegionOfInterest>(value, ComPtr<IRegionOfInterest>(region.get()));
    });
}

STDMETHODIMP OrlixBlobs::get_Outline(LONG index, OutlineType type, LONG hole, IPolygon** value) noexcept {
    return Guarded<IBlobs>([&] {
        Require(value);
        *value = nullptr;
        const uint32_t label = LabelAt(index);
        if (type != OT_PixelEdges && type != OT_PixelCenters) throw FailedResult(E_INVALIDARG);
        const OutlineKind kind = type == OT_PixelEdges ? OutlineKind::PixelEdges : OutlineKind::PixelCentres;
        Outlines outlines = OutlinesOf(components().runs(label), components().connectivity(), kind);
        const size_t path = PathOf(hole, 1 + outlines.holes.size());
        std::vector<Point>& outline = path == 0 ? outlines.outer : outlines.holes[path - 1];
        HandOut<IPolygon>(value, ComPtr<IPolygon>(OrlixPolygon::Of(std::move(outline)).get()));
    });
}

STDMETHODIMP OrlixBlobs::get_LevelOutline(LONG index, IImageVPA* image, LONG band, double level, LONG hole,
                                          IPolygon** value) noexcept {
    return Guarded<IBlobs>([&] {
        Require(value);
        *value = nullptr;
        const uint32_t label = LabelAt(index);
        PixelPaths paths;
        paths.Trace(components().runs(label), components().connectivity());
        const size_t path = PathOf(hole, paths.count());
        LevelOutline outline;
        WithPixels(MeasuredBand(image, band, components()), [&](const auto& view) {
            outline = LevelOutlineOf(paths, view.width(), view.height(), level,
                                     [&](int32_t x, int32_t y) { return static_cast<double>(view.at(x, y)); });
        });
        HandOut<IPolygon>(value, ComPtr<IPolygon>(OrlixPolygon::Of(std::move(outline.paths[path])).get()));
    });
}

STDMETHODIMP OrlixBlobs::GetLevelMeasurements(IImageVPA* image, LONG band, double level, LONG first, LONG count,
                                              SLevelMeasurements* measure) noexcept {
    return Guarded<IBlobs>([&] {
        Require(measure);
        RequireRange(first, count);
        std::vector<LevelMeasurements> measured;
        measured.reserve(static_cast<size_t>(count));
        WithPixels(MeasuredBand(image, band, components()), [&](const auto& view) {
            PixelPaths paths;
            for (LONG i = first; i < first + count; ++i) {
                paths.Trace(components().runs(labels_[static_cast<size_t>(i)]), components().connectivity());
                measured.push_back(MeasureLevelOutline(
                    LevelOutlineOf(paths, view.width(), view.height(), level,
                                   [&](int32_t x, int32_t y) { return static_cast<double>(view.at(x, y)); }),
                    pixel_.x, pixel_.y));
            }
        });
        for (LONG i = 0; i < count; ++i) {
            measure[i].m_lLabel = static_cast<LONG>(labels_[static_cast<size_t>(first + i)]);
            FillIn(measure[i], measured[static_cast<size_t>(i)]);
        }
    });
}
