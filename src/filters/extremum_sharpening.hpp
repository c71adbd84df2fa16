// Extremum sharpening of whole bands, with squares of any size.
#pragma once

#include <cstdint>
#include <optional>

#include "filters/filter_kernels.hpp"
#include "filters/filtering.hpp"
#include "geometry/region_rows.hpp"
#include "image/pixel_buffer.hpp"
#include "image/pixel_view.hpp"

namespace orlix {

// Replaces every pixel p by the nearer extreme of its square of side 2h + 1: by mx, the largest of lower and the
// square's pixels, when p - mn >= mx - p, else by mn, the smallest of upper and the square's pixels. T is uint8_t,
// uint16_t, uint32_t or float. Notes:
//  (1) The time per pixel hardly depends on h: vertical extremes combine a suffix and a prefix of two adjacent blocks
//      of 2h + 1 rows (van Herk 1992, Gil and Werman 1993), horizontal ones come from windows that grow fourfold.
//  (2) The square is read through the table of `from`, margin included. Where it needs an entry outside
//      -200 .. size + 199, to(x, y) is left unchanged; so for h > 200 only pixels away from the borders change.
//  (3) A negative h makes the square empty: p becomes lower when p - upper >= lower - p, else upper.
//  (4) float: differences are rounded to single precision. NaN pixels in the square and NaN limits are ignored; a pixel
//      that is NaN itself becomes the quiet NaN 7fc00000. Zeros lose their sign.
//  (5) Neither limit clamps: lower > upper is allowed.
//  (6) `from` must not share memory with `to`. std::bad_alloc when the scratch memory (about 0.5 MiB for small h, at
//      most about the size of the source's band with its margin) is not available; nothing has been written then. After
//      the first band, bands of the same sizes cannot fail.
template <class T>
class ExtremumSharpening {
public:
    ExtremumSharpening(int32_t halfSize, const FilterParameters<T>& limits);

    int32_t radius() const { return halfSize_ < 0 ? 0 : halfSize_; }
    void operator()(PixelView<const T> from, PixelView<T> to, const RegionRows& region) const;

    // The same filter, by rows of 3x3 squares, for h = 1 and h < 0; none for other h.
    std::optional<NeighbourhoodFilter<T>> Small() const;

    // The same for h >= 0, without the shortcut for 3x3 squares.
    void AnySize(PixelView<const T> from, PixelView<T> to, const RegionRows& region) const;

private:
    int32_t halfSize_;
    FilterParameters<T> limits_;   // not NaN
    mutable PixelBuffer scratch_;  // kept, so that bands after the first cannot fail
};

extern template class ExtremumSharpening<uint8_t>;
extern template class ExtremumSharpening<uint16_t>;
extern template class ExtremumSharpening<uint32_t>;
extern template class ExtremumSharpening<float>;

}  // namespace orlix
