// The convex hull of a component's pixels, and what is measured on it. Corners are those of pixels, in whole numbers:
// (x, y) is the upper left corner of pixel (left + x, top + y), where (left, top) is that of the bounding box.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "blobs/blob_rows.hpp"
#include "geometry/shape_region.hpp"
#include "numerics/plane.hpp"

namespace orlix {

struct HullCorner {
    int64_t x, y;
    friend bool operator==(const HullCorner&, const HullCorner&) = default;
};

// Clockwise (with y downwards) from the left one of the top edge; no three in one line. At least four. Products of the
// sides of the box are below 2^60, as those of all bitmaps are.
using Hull = std::vector<HullCorner>;
void FindHull(const BlobRows& rows, const Box& box, Hull& hull);

int64_t TwiceHullArea(const Hull& hull);

// All of the following measure in the plane (x, ratio y), in the unit of x.
double HullPerimeter(const Hull& hull, double ratio);

struct Strip {
    double width = 0;
    Point from, to;  // in the corners' coordinates
};
Strip LongestChord(const Hull& hull, double ratio);
Strip NarrowestStrip(const Hull& hull, double ratio);

struct HullBox {
    Point centre;                  // in the corners' coordinates
    double along = 0, across = 0;  // sides
    Point direction;               // of `along`, in the plane, of any length
};
HullBox SmallestBox(const Hull& hull, double ratio);

struct HullCircle {
    Point centre;  // in the corners' coordinates
    double radius = 0;
};
HullCircle SmallestCircle(const Hull& hull, double ratio);

}  // namespace orlix
