// The convex hulls of the components of a binary image.
#pragma once

#include "binary/bit_plane.hpp"
#include "binary/connectivity.hpp"

namespace orlix {

// The pixels whose centre lies in the convex hull of the centres of a component's pixels (its boundary included), for
// each component: decided in integers. Hulls of different components may overlap and join. Time goes with the runs of
// the image plus the words of the result; memory is 48 bytes a run.
BitPlane ConvexHulls(const BitPlane& image, Connectivity connectivity);

}  // namespace orlix
