// Thresholds that follow the neighbourhood.
#pragma once

#include <cstdint>

#include "binary/bit_plane.hpp"
#include "image/pixel_view.hpp"

namespace orlix {

struct LocalThreshold {
    int32_t radius = 0;   // at least 0: of a square of 2 radius + 1 columns and rows
    double contrast = 0;  // at least 0, may be infinite
    double offset = 0;    // not NaN; moves the level from the middle
    bool bright = false;  // the side of the level that is foreground
};

// Decides each pixel whose square has contrast by the middle of its grey values (J. Bernsen, Dynamic thresholding of
// grey-level images, 1986); all others of the plane stay. Of a pixel with the grey value g, and the smallest and
// largest values low and high of its square:
//  (1) The square is clipped to the image. Values that are not finite are left out, and a pixel that has one stays.
//  (2) Where high - low >= contrast, the pixel is on the bright side if (g - low) - (high - g) > 2 offset, which is
//      g > (low + high) / 2 + offset, else on the dark side. So the level itself is dark. Integers are exact; with
//      float values each difference is rounded to double.
// Plane and image have the same size. The time hardly depends on the radius: vertical extremes combine a suffix and a
// prefix of two adjacent blocks of rows (van Herk 1992, Gil and Werman 1993), horizontal ones come from windows that
// grow twofold. Memory: two values for each pixel of 2 radius + 1 rows, at most of the image. std::bad_alloc; nothing
// has changed then. T is uint8_t, uint16_t, uint32_t or float.
template <class T>
void ThresholdLocally(const PixelView<const T>& image, const LocalThreshold& threshold, BitPlane& plane);

extern template void ThresholdLocally(const PixelView<const uint8_t>&, const LocalThreshold&, BitPlane&);
extern template void ThresholdLocally(const PixelView<const uint16_t>&, const LocalThreshold&, BitPlane&);
extern template void ThresholdLocally(const PixelView<const uint32_t>&, const LocalThreshold&, BitPlane&);
extern template void ThresholdLocally(const PixelView<const float>&, const LocalThreshold&, BitPlane&);

}  // namespace orlix
