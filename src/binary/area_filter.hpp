// Components of a binary image chosen by their number of pixels.
#pragma once

#include <cstdint>

#include "binary/bit_plane.hpp"
#include "binary/connectivity.hpp"

namespace orlix {

// The components of minimum to maximum pixels, both included: the area opening with `minimum` alone, what it removes
// with maximum = minimum - 1. No component if minimum > maximum. Time and memory (36 bytes each) go with the runs.
BitPlane KeepByArea(const BitPlane& image, Connectivity connectivity, int64_t minimum, int64_t maximum);

// Fills the holes (reconstruction.hpp) of at most `maximum` pixels: the area closing that leaves what touches the edge.
// The size of a hole is its number of background pixels: components inside it do not count, and become joined to what
// is around them when it is filled.
BitPlane FillHolesUpTo(const BitPlane& image, Connectivity connectivity, int64_t maximum);

}  // namespace orlix
