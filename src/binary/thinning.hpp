// Homotopic operations: thinning, skeletons and what is done with them. None of them joins, splits, creates or removes
// a component or a hole.
#pragma once

#include <cstdint>

#include "binary/bit_plane.hpp"
#include "binary/connectivity.hpp"

namespace orlix {

// A pixel is simple if its removal changes neither the components of the foreground nor those of the background in its
// 3x3 neighbourhood: if its crossing number is 1 (S. Yokoi, J. Toriwaki and T. Fukumura 1975). It is an end if it has
// exactly one neighbour. Neighbours are those of the connectivity. Pixels outside the bitmap are background.

// One pass of thinning has four steps, for the directions north, south, east and west. Each step removes, all at once,
// the simple pixels that are no ends and whose neighbour in its direction is background (A. Rosenfeld 1975). A number
// of passes below 1 changes nothing, and passes after the last one that changes something take no time. Time goes with
// the words that hold an outline plus, for each pixel removed, a bounded number of words: not with the passes times the
// image. Memory: the image once more and up to 25 bytes for each word of 64 pixels.
BitPlane Thin(const BitPlane& image, Connectivity connectivity, int64_t passes);

// Thinned until nothing changes: lines one pixel wide. Every simple pixel that is left is an end.
BitPlane Skeleton(const BitPlane& image, Connectivity connectivity);

// For skeletons. A branch runs from an end over pixels with two neighbours to a junction, a pixel with three or more,
// which is no part of it. The shortest branch is removed, of equal ones that whose end comes first in raster order, as
// long as there is one of at most `length` pixels. A junction that is left simple with two neighbours goes with its
// branch; one that is left with two neighbours otherwise is a junction no more, so two branches may have become one, or
// a line. Thus what has no junction stays: lines, rings, single pixels. Each pixel of a branch is visited once from
// each end.
BitPlane Prune(const BitPlane& image, Connectivity connectivity, int64_t length);

// Thinning of the background: components grow by one pixel in all eight directions with each pass, but do not meet, and
// holes get smaller but stay. A line of background, as thin as its connectivity (Dual) allows, remains between
// components. The same steps as in `Thin`, with two differences: pixels outside the bitmap belong to the background
// that is thinned, and an end is removed as well in the step of the direction opposite to its one neighbour, so that
// notches of an outline close. After enough passes only the dividing lines are left.
BitPlane Thicken(const BitPlane& image, Connectivity connectivity, int64_t passes);

}  // namespace orlix
