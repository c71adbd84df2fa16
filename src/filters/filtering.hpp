// Neighbourhood filters on whole bands: takes a row kernel to regions, borders and sources of any kind.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "filters/filter_kernels.hpp"
#include "geometry/region_rows.hpp"
#include "image/pixel_view.hpp"

namespace orlix {

// Applies a kernel to the pixels of a region. T is uint8_t, uint16_t, uint32_t or float. Notes:
//  (1) to(x, y) is computed from from(x - r .. x + r, y - r .. y + r), read through the table of `from`, margin
//      included. Where that needs an entry outside -200 .. size + 199, to(x, y) is left unchanged: a source may be
//      smaller than the destination.
//  (2) The kernel reads contiguous source columns in place; all others (borders, tables of other components) are
//      gathered into a short buffer. The kernel sees the same samples, so the results are bit-identical.
//  (3) `from` must not share memory with `to`, see SharesMemory() and InPlaceRows.
template <class T>
class NeighbourhoodFilter {
public:
    static constexpr int32_t kMostRadius = 2;

    NeighbourhoodFilter(FilterFn<T> kernel, int32_t radius, const FilterParameters<T>& parameters)
        : kernel_(kernel), radius_(radius), parameters_(parameters) {}

    int32_t radius() const { return radius_; }
    void operator()(PixelView<const T> from, PixelView<T> to, const RegionRows& region) const;
    // The rows first..last of the region only; adjacent is from.AdjacentColumns().
    void operator()(PixelView<const T> from, int32_t adjacent, PixelView<T> to, const RegionRows& region, int32_t first,
                    int32_t last) const;

private:
    struct Rows;
    void Direct(const Rows& rows, int64_t x, int64_t stop) const;

    FilterFn<T> kernel_;
    int32_t radius_;
    FilterParameters<T> parameters_;
};

// A copy of everything that a filter of the given radius (>= 0) can read from a source for destination columns
// 0..width-1 and rows top..bottom, to be used in place of the source. Throws std::bad_alloc, or FailedResult(E_FAIL)
// when offsets exceed 32 bits.
template <class T>
class SourceCopy {
public:
    SourceCopy(PixelView<const T> source, int32_t width, int32_t top, int32_t bottom, int32_t radius);

    // Valid as long as the copy, of the source's size. Reads outside the copied area give an arbitrary sample of the
    // copy.
    PixelView<const T> view() const;

private:
    int32_t width_;
    int32_t height_;
    std::unique_ptr<T[]> samples_;
    std::vector<VPAEntry> table_;
};

// Filters bands of an image in place, some rows at a time: the pixels of the rows that a filter of the given radius
// still needs are kept in a ring, so that memory and time hardly grow.
template <class T>
class InPlaceRows {
public:
    // Whether `from` is the band `to` itself, with a table that mirrors both axes as an image's own does: then no row
    // needs one that lies farther away than the radius. Not for extremely wide images.
    static bool Suit(PixelView<const T> from, PixelView<T> to);

    // For bands like `band`. Throws std::bad_alloc.
    InPlaceRows(PixelView<T> band, const RegionRows& region, int32_t radius);

    // Suit(band, band). Cannot fail.
    void Apply(const NeighbourhoodFilter<T>& filter, PixelView<T> band, const RegionRows& region);

private:
    T* Slot(int64_t row) { return samples_.get() + row % slots_ * stride_; }

    int64_t radius_;
    int64_t first_ = 0, count_ = 0;  // the columns that are kept
    int64_t stride_;                 // of a row in the ring
    int64_t rows_;                   // filtered at a time
    int64_t slots_;
    std::unique_ptr<T[]> samples_;
    std::vector<VPAEntry> table_;
};

extern template class NeighbourhoodFilter<uint8_t>;
extern template class NeighbourhoodFilter<uint16_t>;
extern template class NeighbourhoodFilter<uint32_t>;
extern template class NeighbourhoodFilter<float>;
extern template class InPlaceRows<uint8_t>;
extern template class InPlaceRows<uint16_t>;
extern template class InPlaceRows<uint32_t>;
extern template class InPlaceRows<float>;
extern template class SourceCopy<uint8_t>;
extern template class SourceCopy<uint16_t>;
extern template class SourceCopy<uint32_t>;
extern template class SourceCopy<float>;

}  // namespace orlix
