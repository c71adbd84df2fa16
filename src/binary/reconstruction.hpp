// Components of a binary image that are found from seeds: reconstruction, holes, what touches the border.
#pragma once

#include "binary/bit_plane.hpp"
#include "binary/connectivity.hpp"

namespace orlix {

// Planes that are passed together have the same size. Pixels outside the bitmap do not take part.
//
// Cost: a few passes over the words (L. Vincent 1993, on words), and then one step for each word and each time that
// pixels of it are reached: never more steps than the mask has pixels, whatever way a path winds. Memory: the result,
// and up to 17 bytes for each word of 64 pixels.

// The components of the mask that hold a seed, entire. Seeds outside the mask have no effect.
BitPlane Reconstruct(const BitPlane& seeds, const BitPlane& mask, Connectivity connectivity);

// A hole is a component of the background, of the dual connectivity, without a pixel at the edge of the bitmap.
// `connectivity` is that of the foreground.
BitPlane FillHoles(const BitPlane& image, Connectivity connectivity);

// Only the components without a pixel in the first or last row or column.
BitPlane ClearBorder(const BitPlane& image, Connectivity connectivity);

}  // namespace orlix
