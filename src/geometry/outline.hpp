// Measurements of closed outlines: an edge joins each vertex to the next one and the last to the first. Sums run in the
// order of the vertices, in double. Results that depend on a non-finite vertex are not finite either, unless stated.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "geometry/outline_kernels.hpp"
#include "numerics/plane.hpp"

namespace orlix {

using Outline = std::span<const Point>;

// The double nearest to the exact area or, in rare cases, its neighbour.
double Area(Outline outline);
double Perimeter(Outline outline);
// The radius of the circle with this perimeter.
double PerimeterEquivalentRadius(Outline outline);
// 1 - s / m, where m is the mean of the distances from the mean vertex and s the square root of their variance.
double Circularity(Outline outline);
// The centroid, except that its moments are divided by the absolute area: negated when the signed area is negative, not
// finite when the area is 0. Computed in pairs of doubles relative to a vertex, so neither the position nor the size of
// the outline costs precision.
Point SignedCentroid(Outline outline);

// NaN coordinates are ignored. Without any others, the lower bound is the largest double and the upper bound its
// negative.
Bounds BoundsOf(Outline outline);

// Indices of the nearest and the farthest vertex, the first of equal ones. The nearest must be nearer than the largest
// double, the farthest farther than 0; -1 when no vertex is.
struct ExtremeDistances {
    int64_t nearest = -1, farthest = -1;
    double nearestDistance = 0, farthestDistance = 0;
};
ExtremeDistances DistancesFrom(const Point& point, Outline outline);

// Whether the outline winds around the point: the angles from vertex to vertex as seen from the point, each between
// -180 and 180 degrees, do not sum to 0. The decision is exact. An edge through the point counts as +180 degrees when
// its first end lies in the direction (1, 0) from the point or has the smaller y, otherwise as -180. A vertex at the
// point counts as lying in the direction (1, 0). False when any coordinate is not finite.
bool Encloses(Outline outline, const Point& point);

// The angle that the edges cover as seen from the point, 0 to 360 degrees.
double SubtendedAngle(Outline outline, const Point& point);

// Indices of the corners of the convex hull, starting at the vertex with the largest y (the largest x among those), in
// the order in which Turn() is -1. Equal vertices give the first one; vertices on a hull edge are no corners.
// Non-finite vertices are ignored.
std::vector<uint32_t> ConvexHull(Outline outline);

// The two vertices i < j farthest apart by Distance(); of equal pairs the one with the lowest i, then j. i = j = 0 when
// the distance is 0.
struct Diameter {
    uint32_t i = 0, j = 0;
    double length = 0;
};
Diameter DiameterOf(Outline outline);

// Indices of the vertices to keep, in order. See IPolygon::Smooth.
std::vector<uint32_t> Simplify(Outline outline, double tolerance);

}  // namespace orlix
