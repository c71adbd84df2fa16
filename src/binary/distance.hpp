// Exact Euclidean distances to the background, and their maxima.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "binary/bit_plane.hpp"
#include "binary/connectivity.hpp"

namespace orlix {

// The distance of pixels of a bitmap without background.
template <class T>
inline constexpr T kInfiniteDistance = std::numeric_limits<T>::max();

// Whether all squared distances in a bitmap of this size lie below kInfiniteDistance<int32_t>.
constexpr bool DistancesFitInt32(int32_t width, int32_t height) {
    const int64_t dx = int64_t{width} - 1;
    const int64_t dy = int64_t{height} - 1;
    return dx * dx < kInfiniteDistance<int32_t> && dy * dy < kInfiniteDistance<int32_t> - dx * dx;
}

// The square of the distance from the centre of each pixel to that of the nearest background pixel of the bitmap, row
// by row: 0 for background. Pixels outside the bitmap are no background. T is int64_t, or int32_t for bitmaps whose
// distances fit. Linear in the number of pixels (A. Meijster, J. B. T. M. Roerdink and W. H. Hesselink, 2000: columns
// first, then the lower envelope of parabolas in each row).
template <class T>
std::vector<T> SquaredDistances(const BitPlane& image);

// The pixels of the regional maxima of the distance: connected pixels of equal distance without a neighbour of a larger
// one. A bitmap without background has none. Linear in the number of pixels; takes 5 bytes (9 for distances beyond
// int32_t) for each pixel of the largest component's bounding box.
BitPlane UltimatePoints(const BitPlane& image, Connectivity connectivity);

}  // namespace orlix
