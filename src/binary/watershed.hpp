// Splitting of blobs that touch.
#pragma once

#include "binary/bit_plane.hpp"
#include "binary/connectivity.hpp"

namespace orlix {

// How much wider than the neck between them two parts of a component must be to be taken for two. A part whose largest
// inscribed circle has the radius r is one of its own where the path to every wider part passes a place with a distance
// to the background below (1 - share) r - pixels: `pixels` suppresses the roughness of an outline, which is the same
// at all sizes, `share` what grows with the size. Both 0: each regional maximum of the distance is a part.
struct SplitDepth {
    double pixels = 0;  // at least 0, may be infinite; NaN and less count as 0
    double share = 0;   // 0 to 1; NaN and less count as 0, more as 1
};

// Digitisation alone gives long particles several maxima of the distance, at any size: of smooth ellipses three times
// as long as wide up to half are split with 0.5 pixels alone, 1 in 50 with 0.75. Rough outlines need something that
// grows with the size. With both, none of 600 ellipses of each kind was split: radius (the root of the product of the
// half axes) 4 to 64; ratio of the axes 1 to 3 with smooth outlines, 1 to 1.5 with 3 % of roughness, 1 with 6 %. Disks
// that overlap are told apart if the neck is 0.5 of the smaller radius from 6 pixels of the larger one on (4 of 5; from
// 12 on all), if it is 0.8 from 12 on (half; from 24 on all).
inline constexpr SplitDepth kUsualSplitDepth = {0.75, 0.05};

// Splits each component along the watershed lines of its distances D to the background (F. Meyer 1994; P. Soille 2003):
//  (1) D is the root, rounded to double, of the squared distance (distance.hpp), M = (1 - share) D - pixels.
//  (2) R is the reconstruction of M under D in the component: R(p) is the largest min(M(q), least D on a path from q to
//      p) over all q and paths. The regional maxima of R are the markers, with one label each. With share = 0 this is
//      the h-maxima transform with h = pixels.
//  (3) Flooding: the pixels beside a marker are queued in raster order, at the level D(p). Always the first pixel of
//      the highest level in the queue is taken, and the level never rises again: later pixels are queued at the smaller
//      of D(p) and the present level. A pixel whose labelled neighbours all have the same label takes it, and queues
//      its neighbours that are not labelled and have never been queued, in raster order; any other pixel is on the
//      line.
//  (4) The result has the labelled pixels. So two parts are never connected, and every pixel of the line touches at
//      least two of them. Pixels that only the line surrounds (they are rare) go with it.
// A component with one marker is unchanged; so is a bitmap without background. Time goes with the pixels (where a
// bitmap is so narrow that distances outgrow the number of pixels, they are sorted). Memory: up to 24 bytes (int32_t
// distances) for each pixel of the largest component's bounding box, and 16 for each different distance.
BitPlane WatershedSplit(const BitPlane& image, Connectivity connectivity, const SplitDepth& depth);

}  // namespace orlix
