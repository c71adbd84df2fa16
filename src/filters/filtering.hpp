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
//  (3) `from` must not share memory with `to`, see SharesMemory().
//  (3) from must not lie in the memory of to, see SharesMemory().
template <class T>
class NeighbourhoodFilter {
public:
    static constexpr int32_t kMostRadius = 2;

    NeighbourhoodFilter(FilterFn<T> kernel, int32_t radius, const FilterParameters<T>& parameters)
        : kernel_(kernel), radius_(radius), parameters_(parameters) {}

    int32_t radius() const { return radius_; }
    void operator()(PixelView<const T> from, PixelView<T> to, const RegionRows& region) const;

private:
    struct Rows;
    void Direct(const Rows& rows, int64_t x, int64_t stop) const;

    FilterFn<T> kernel_;
    int32_t radius_;
    FilterParameters<T> parameters_;
};

// Whether the samples of a view, margin included, may lie between two addresses. Compares only the lowest and the
// highest address that the table can give, so it may also be true for an image whose rows lie on both sides of the
// other.
template <class T>
bool SharesMemory(PixelView<const T> view, const void* begin, const void* end);

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

extern template class NeighbourhoodFilter<uint8_t>;
extern template class NeighbourhoodFilter<uint16_t>;
extern template class NeighbourhoodFilter<uint32_t>;
extern template class NeighbourhoodFilter<float>;
extern template class SourceCopy<uint8_t>;
extern template class SourceCopy<uint16_t>;
extern template class SourceCopy<uint32_t>;
extern template class SourceCopy<float>;

}  // namespace orlix
