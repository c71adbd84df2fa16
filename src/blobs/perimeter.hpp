// Estimates of the length of a component's border before it was digitised.
#pragma once

#include <cstdint>

#include "blobs/blob_rows.hpp"
#include "blobs/contour.hpp"

namespace orlix {

// In pixels; see ShapeMeasurements::perimeter.
double TracedPerimeter(const PixelPaths& paths);

// The area within a path, in pixels: positive for the outer path, negative for those around holes.
int64_t SignedArea(std::span<const PixelPaths::Corner> path);

// See ShapeMeasurements::croftonPerimeter.
double CroftonPerimeter(const BlobRows& rows, int64_t pixels, double sx, double sy);

}  // namespace orlix
