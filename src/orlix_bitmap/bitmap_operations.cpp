// Binary morphology: the methods of IBitmapProcess that change the bitmap from its own pixels.
#include "orlix_bitmap/orlix_bitmap.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "binary/area_filter.hpp"
#include "binary/component_hulls.hpp"
#include "binary/distance.hpp"
#include "binary/local_threshold.hpp"
#include "binary/neighbourhood_table.hpp"
#include "binary/reconstruction.hpp"
#include "binary/thinning.hpp"
#include "binary/watershed.hpp"
#include "orlix_bitmap/client_answers.hpp"
#include "orlix_bitmap/image_band.hpp"
#include "orlix_bitmap/orlix_blobs.hpp"
#include "orlix_bitmap/plane_image.hpp"

using namespace orlix;

namespace {

Connectivity Checked(ConnectivityType type) {
    if (type != CT_4 && type != CT_8) throw FailedResult(E_INVALIDARG);
    return type == CT_4 ? Connectivity::Four : Connectivity::Eight;
}

}  // namespace

// A client's region and a client's bitmap may call this object back and create it anew; so everything that the
// operation reads from it is read after the last client was called. The size is the one that the bitmap had before the
// first: taking a reference calls the region, too.
RegionRows OrlixBitmap::AskRegion(int32_t width, int32_t height) {
    const ComPtr<IRegionOfInterest> region = region_;
    return RegionRows(region.get(), width, height);
}

void OrlixBitmap::RequireSize(int32_t width, int32_t height) const {
    if (store_.width() != width || store_.height() != height) throw FailedResult(E_FAIL);
}

// The foreground pixels of the region, as a number that the contract can hold.
LONG OrlixBitmap::PixelsIn(const RegionRows& region) const {
    const int64_t pixels = CountPixels(RowsOf(store_), region);
    if (pixels > std::numeric_limits<LONG>::max()) throw MethodFailure("more than 2147483647 pixels.");
    return static_cast<LONG>(pixels);
}

// Runs `operation(region)` on a bitmap that has pixels. `prepare()` comes before everything else: it checks pointers,
// clears outputs, and asks the other clients.
template <class Prepare, class Operation>
HRESULT OrlixBitmap::InPlace(const Prepare& prepare, const Operation& operation, const char* method) noexcept {
    return Guarded<IBitmapProcess>(
        [&] {
            prepare();
            const int32_t width = store_.width(), height = store_.height();
            if (width == 0) return S_FALSE;
            const RegionRows region = AskRegion(width, height);
            RequireSize(width, height);
            operation(region);
            return S_OK;
        },
        method);
}
template <class Operation>
HRESULT OrlixBitmap::InPlace(const Operation& operation, const char* method) noexcept {
    return InPlace([] {}, operation, method);
}

// The same for `operation(region, rows)` with the rows of another bitmap of the same size.
template <class Operation>
HRESULT OrlixBitmap::InPlaceWith(IBitmap* other, const Operation& operation, const char* method) noexcept {
    return Guarded<IBitmapProcess>(
        [&] {
            Require(other);
            const ComPtr<IBitmap> alive(other);  // the region may let go of it
            const int32_t width = store_.width(), height = store_.height();
            if (width == 0) return S_FALSE;
            const RegionRows region = AskRegion(width, height);
            const ClientBitmap bitmap(other);
            RequireSize(width, height);
            if (bitmap.rows().width != width || bitmap.rows().height != height)
                throw MethodFailure("the bitmaps have different sizes.");
            operation(region, bitmap.rows());
            return S_OK;
        },
        method);
}

// Stores `operation(plane)`, the result for the whole bitmap, in the region.
template <class Operation>
HRESULT OrlixBitmap::Change(const Operation& operation, const char* method) noexcept {
    return InPlace([&](const RegionRows& region) { Store(operation(BitPlane(RowsOf(store_))), store_, region); },
                   method);
}

HRESULT OrlixBitmap::Combine(IBitmap* other, BitLogic how, const char* method) noexcept {
    return InPlaceWith(
        other, [&](const RegionRows& region, const BitRows& rows) { orlix::Combine(store_, how, rows, region); },
        method);
}

HRESULT OrlixBitmap::ApplySquare(Morphology operation, ConnectivityType neighbours, LONG times,
                                 const char* method) noexcept {
    return InPlace(
        [&](const RegionRows& region) {
            orlix::ApplySquare(RowsOf(store_), operation, Checked(neighbours), times, store_, region);
        },
        method);
}

HRESULT OrlixBitmap::ApplyRectangle(Morphology operation, LONG width, LONG height, const char* method) noexcept {
    return InPlace(
        [&](const RegionRows& region) {
            if (width < 1 || height < 1) throw MethodFailure("width and height must be positive.");
            orlix::ApplyRectangle(RowsOf(store_), operation, width, height, store_, region);
        },
        method);
}

HRESULT OrlixBitmap::ApplyDisk(Morphology operation, double radius, const char* method) noexcept {
    return InPlace(
        [&](const RegionRows& region) {
            if (!(radius >= 0)) throw MethodFailure("the radius cannot be negative.");
            orlix::ApplyDisk(RowsOf(store_), operation, radius, store_, region);
        },
        method);
}

HRESULT OrlixBitmap::ApplyElement(Morphology operation, IStructuringElement* element, const char* method) noexcept {
    std::vector<SElement> elements;
    return InPlace(
        [&] {
            Require(element);
            elements = ElementsOf(element);
            if (elements.empty()) throw MethodFailure("the structuring element is empty.");
        },
        [&](const RegionRows& region) { orlix::ApplyElement(RowsOf(store_), operation, elements, store_, region); },
        method);
}

STDMETHODIMP OrlixBitmap::get_RegionOfInterest(IRegionOfInterest** value) noexcept {
    return Guarded<IBitmapProcess>([&] {
        Require(value);
        *value = ComPtr<IRegionOfInterest>(region_).Detach();
    });
}

// The former region may call back from its last release: it finds the new one.
STDMETHODIMP OrlixBitmap::put_RegionOfInterest(IRegionOfInterest* value) noexcept {
    return Guarded<IBitmapProcess>([&] {
        ComPtr<IRegionOfInterest> region(value);
        std::swap(region, region_);
    });
}

STDMETHODIMP OrlixBitmap::get_PixelCount(LONG* value) noexcept {
    return InPlace(
        [&] {
            Require(value);
            *value = 0;
        },
        [&](const RegionRows& region) { *value = PixelsIn(region); }, __func__);
}

STDMETHODIMP OrlixBitmap::Invert() noexcept {
    return InPlace([&](const RegionRows& region) { orlix::Invert(store_, region); }, __func__);
}

STDMETHODIMP OrlixBitmap::AndEquals(IBitmap* bitmap) noexcept { return Combine(bitmap, BitLogic::And, __func__); }
STDMETHODIMP OrlixBitmap::OrEquals(IBitmap* bitmap) noexcept { return Combine(bitmap, BitLogic::Or, __func__); }
STDMETHODIMP OrlixBitmap::XorEquals(IBitmap* bitmap) noexcept { return Combine(bitmap, BitLogic::Xor, __func__); }
STDMETHODIMP OrlixBitmap::AndNotEquals(IBitmap* bitmap) noexcept { return Combine(bitmap, BitLogic::AndNot, __func__); }

STDMETHODIMP OrlixBitmap::ShiftEquals(LONG x, LONG y) noexcept {
    return InPlace([&](const RegionRows& region) { Translate(store_, x, y, region); }, __func__);
}

STDMETHODIMP OrlixBitmap::Erode(ConnectivityType neighbours, LONG times) noexcept {
    return ApplySquare(Morphology::Erosion, neighbours, times);
}
STDMETHODIMP OrlixBitmap::Dilate(ConnectivityType neighbours, LONG times) noexcept {
    return ApplySquare(Morphology::Dilation, neighbours, times);
}
STDMETHODIMP OrlixBitmap::Open(ConnectivityType neighbours, LONG times) noexcept {
    return ApplySquare(Morphology::Opening, neighbours, times);
}
STDMETHODIMP OrlixBitmap::Close(ConnectivityType neighbours, LONG times) noexcept {
    return ApplySquare(Morphology::Closing, neighbours, times);
}

STDMETHODIMP OrlixBitmap::ErodeRectangle(LONG width, LONG height) noexcept {
    return ApplyRectangle(Morphology::Erosion, width, height);
}
STDMETHODIMP OrlixBitmap::DilateRectangle(LONG width, LONG height) noexcept {
    return ApplyRectangle(Morphology::Dilation, width, height);
}
STDMETHODIMP OrlixBitmap::OpenRectangle(LONG width, LONG height) noexcept {
    return ApplyRectangle(Morphology::Opening, width, height);
}
STDMETHODIMP OrlixBitmap::CloseRectangle(LONG width, LONG height) noexcept {
    return ApplyRectangle(Morphology::Closing, width, height);
}

STDMETHODIMP OrlixBitmap::ErodeDisk(double radius) noexcept { return ApplyDisk(Morphology::Erosion, radius); }
STDMETHODIMP OrlixBitmap::DilateDisk(double radius) noexcept { return ApplyDisk(Morphology::Dilation, radius); }
STDMETHODIMP OrlixBitmap::OpenDisk(double radius) noexcept { return ApplyDisk(Morphology::Opening, radius); }
STDMETHODIMP OrlixBitmap::CloseDisk(double radius) noexcept { return ApplyDisk(Morphology::Closing, radius); }

STDMETHODIMP OrlixBitmap::ErodeElement(IStructuringElement* element) noexcept {
    return ApplyElement(Morphology::Erosion, element);
}
STDMETHODIMP OrlixBitmap::DilateElement(IStructuringElement* element) noexcept {
    return ApplyElement(Morphology::Dilation, element);
}
STDMETHODIMP OrlixBitmap::OpenElement(IStructuringElement* element) noexcept {
    return ApplyElement(Morphology::Opening, element);
}
STDMETHODIMP OrlixBitmap::CloseElement(IStructuringElement* element) noexcept {
    return ApplyElement(Morphology::Closing, element);
}

STDMETHODIMP OrlixBitmap::ApplyTable(unsigned char* table, LONG times, LONG* passes) noexcept {
    return InPlace(
        [&] {
            Require(table);
            Require(passes);
            *passes = 0;
        },
        [&](const RegionRows& region) {
            NeighbourhoodTable entries;
            std::transform(table, table + entries.size(), entries.begin(), [](unsigned char e) { return e != 0; });
            BitPlane image(RowsOf(store_));
            const TablePasses done = orlix::ApplyTable(image, entries, times);
            if (!done.stable && done.passes < times) throw MethodFailure("too many passes for a bitmap of this size.");
            Store(image, store_, region);
            *passes = done.passes;
        },
        __func__);
}

STDMETHODIMP OrlixBitmap::HitOrMiss(IStructuringElement* hit, IStructuringElement* miss) noexcept {
    std::vector<SElement> hits, misses;
    return InPlace(
        [&] {
            const ComPtr<IStructuringElement> alive(miss);  // the other element may let go of it
            hits = ElementsOf(hit);
            misses = ElementsOf(miss);
            if (hits.empty() && misses.empty()) throw MethodFailure("no structuring element.");
        },
        [&](const RegionRows& region) {
            const BitPlane image(RowsOf(store_));
            const auto runsOf = [&](const auto& elements) { return RunsOf(elements, image.width(), image.height()); };
            Store(orlix::HitOrMiss(image, runsOf(hits), runsOf(misses)), store_, region);
        },
        __func__);
}

STDMETHODIMP OrlixBitmap::Boundary(BoundaryType side, ConnectivityType connectivity) noexcept {
    return Change([=](const BitPlane& image) {
        if (side != BT_Inner && side != BT_Outer) throw FailedResult(E_INVALIDARG);
        return BoundaryOf(image, side == BT_Inner ? orlix::Boundary::Inner : orlix::Boundary::Outer,
                          Checked(connectivity));
    });
}

STDMETHODIMP OrlixBitmap::Thin(ConnectivityType connectivity, LONG times) noexcept {
    return Change([=](const BitPlane& image) { return orlix::Thin(image, Checked(connectivity), times); });
}
STDMETHODIMP OrlixBitmap::Skeleton(ConnectivityType connectivity) noexcept {
    return Change([=](const BitPlane& image) { return orlix::Skeleton(image, Checked(connectivity)); });
}
STDMETHODIMP OrlixBitmap::Prune(ConnectivityType connectivity, LONG length) noexcept {
    return Change([=](const BitPlane& image) { return orlix::Prune(image, Checked(connectivity), length); });
}
STDMETHODIMP OrlixBitmap::Thicken(ConnectivityType connectivity, LONG times) noexcept {
    return Change([=](const BitPlane& image) { return orlix::Thicken(image, Checked(connectivity), times); });
}
STDMETHODIMP OrlixBitmap::ConvexHulls(ConnectivityType connectivity) noexcept {
    return Change([=](const BitPlane& image) { return orlix::ConvexHulls(image, Checked(connectivity)); });
}
STDMETHODIMP OrlixBitmap::UltimatePoints(ConnectivityType connectivity) noexcept {
    return Change([=](const BitPlane& image) { return orlix::UltimatePoints(image, Checked(connectivity)); });
}

STDMETHODIMP OrlixBitmap::Reconstruct(IBitmap* seeds, ConnectivityType connectivity) noexcept {
    return InPlaceWith(
        seeds,
        [&](const RegionRows& region, const BitRows& rows) {
            Store(orlix::Reconstruct(BitPlane(rows), BitPlane(RowsOf(store_)), Checked(connectivity)), store_, region);
        },
        __func__);
}

STDMETHODIMP OrlixBitmap::FillHoles(LONG maximumArea, ConnectivityType connectivity) noexcept {
    return Change([=](const BitPlane& image) {
        if (maximumArea < 0) throw MethodFailure("the area cannot be negative.");
        return maximumArea == 0 ? orlix::FillHoles(image, Checked(connectivity))
                                : FillHolesUpTo(image, Checked(connectivity), maximumArea);
    });
}

STDMETHODIMP OrlixBitmap::ClearBorder(ConnectivityType connectivity) noexcept {
    return Change([=](const BitPlane& image) { return orlix::ClearBorder(image, Checked(connectivity)); });
}

STDMETHODIMP OrlixBitmap::KeepArea(LONG minimum, LONG maximum, ConnectivityType connectivity) noexcept {
    return Change([=](const BitPlane& image) { return KeepByArea(image, Checked(connectivity), minimum, maximum); });
}

STDMETHODIMP OrlixBitmap::Split(double minimumDepth, double minimumShare, ConnectivityType connectivity) noexcept {
    return Change([=](const BitPlane& image) {
        if (!(minimumDepth >= 0)) throw MethodFailure("the depth cannot be negative.");
        if (!(minimumShare >= 0 && minimumShare <= 1)) throw MethodFailure("the share must lie between 0 and 1.");
        return WatershedSplit(image, Checked(connectivity), {minimumDepth, minimumShare});
    });
}

STDMETHODIMP OrlixBitmap::ThresholdLocally(IImageVPA* image, LONG band, LONG radius, double contrast, double offset,
                                           LONG bright) noexcept {
    return Guarded<IBitmapProcess>([&] {
        Require(image);
        if (radius < 0) throw MethodFailure("the radius cannot be negative.");
        if (!(contrast >= 0)) throw MethodFailure("the contrast cannot be negative.");
        if (std::isnan(offset)) throw MethodFailure("the offset is not a number.");
        const int32_t width = store_.width(), height = store_.height();
        if (width == 0) return S_FALSE;
        const ComPtr<IImageVPA> alive(image);
        const RegionRows region = AskRegion(width, height);
        WithPixels({image, band, width, height, MethodFailure("multiband thresholding is not supported.")},
                   [&]<class Pixel>(const PixelView<const Pixel>& view) {
                       RequireSize(width, height);
                       BitPlane plane(RowsOf(store_));
                       orlix::ThresholdLocally(view, {radius, contrast, offset, bright != 0}, plane);
                       Store(plane, store_, region);
                   });
        return S_OK;
    });
}

STDMETHODIMP OrlixBitmap::get_DistanceMap(IImageVPA** value) noexcept {
    return Guarded<IBitmapProcess>([&] {
        Require(value);
        *value = nullptr;
        if (store_.width() == 0) return S_FALSE;
        const auto map = PlaneImage::Make(DT_Float, store_.width(), store_.height());
        const auto fill = [&]<class T>(const std::vector<T>& squares) {
            const T* square = squares.data();
            for (LONG y = 0; y < store_.height(); ++y) {
                float* const row = map->row<float>(y);
                for (LONG x = 0; x < store_.width(); ++x, ++square)
                    row[x] = *square == kInfiniteDistance<T>
                                 ? std::numeric_limits<float>::infinity()
                                 : static_cast<float>(std::sqrt(static_cast<double>(*square)));
            }
        };
        const BitPlane image(RowsOf(store_));
        if (DistancesFitInt32(image.width(), image.height()))
            fill(SquaredDistances<int32_t>(image));
        else
            fill(SquaredDistances<int64_t>(image));
        *value = ComPtr<IImageVPA>(map.get()).Detach();
        return S_OK;
    });
}

STDMETHODIMP OrlixBitmap::FindBlobs(ConnectivityType connectivity, IBlobs** value) noexcept {
    return InPlace(
        [&] {
            Require(value);
            *value = nullptr;
        },
        [&](const RegionRows& region) {
            const Connectivity neighbours = Checked(connectivity);
            PixelsIn(region);
            const RunTable runs = RunsOf(store_);
            const auto blobs =
                OrlixBlobs::Of(region.whole() ? Label(runs, neighbours) : Label(runs, neighbours, region));
            *value = ComPtr<IBlobs>(blobs.get()).Detach();
        },
        __func__);
}
