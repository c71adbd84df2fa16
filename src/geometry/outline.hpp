// Measurements of closed outlines: an edge joins each vertex with the next one and the last with the first. Sums run in
// the order of the vertices, in double. What needs a vertex that is no finite number is none either, unless stated.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "numerics/plane.hpp"

namespace orlix {

using Outline = std::span<const Point>;

// Of the exact sum over the edges: the double nearest to it, or in rare cases its neighbour.
double Area(Outline outline);
double Perimeter(Outline outline);
// Of the circle with this perimeter.
double PerimeterEquivalentRadius(Outline outline);
// 1 - root of the variance of the distances from the mean vertex, over their mean.
double Circularity(Outline outline);
// Divided by the area without its sign: negated where the signed area is negative; not finite where that is 0. With the
// digits of two doubles and about a vertex, so that neither the place nor the size of the outline costs any.
Point SignedCentroid(Outline outline);

// NaN is left out; the largest double and its negative where nothing remains.
struct Bounds {
    double left, top, right, bottom;
};
Bounds BoundsOf(Outline outline);

// Index of the nearest and of the farthest vertex, the first of equals. Only vertices nearer than the largest double
// and farther than 0 are found; -1 where none is.
struct ExtremeDistances {
    int64_t nearest = -1, farthest = -1;
    double nearestDistance = 0, farthestDistance = 0;
};
ExtremeDistances DistancesFrom(const Point& point, Outline outline);

// Whether the outline winds around the point: the angles from vertex to vertex as seen from it, each between -180 and
// 180 degrees, do not add up to 0. Without rounding. An edge through the point counts as +180 degrees when its first
// end is in the direction (1, 0) from the point or has the smaller y, else as -180; a vertex at the point as one in the
// direction (1, 0). False where a number is not finite.
bool Encloses(Outline outline, const Point& point);

// Degrees of the directions from the point in which edges lie, 0 to 360.
double SubtendedAngle(Outline outline, const Point& point);

// Indices of the corners of the convex hull, from the vertex with the largest y, of these the one with the largest x,
// on, in the order in which Turn() is -1. The first of equal vertices; none on an edge. Vertices that are not finite
// are left out.
std::vector<uint32_t> ConvexHull(Outline outline);

// The vertices i < j farthest apart by Distance(), the first such pair by i, then j. i = j = 0 where the distance is 0.
struct Diameter {
    uint32_t i = 0, j = 0;
    double length = 0;
};
Diameter DiameterOf(Outline outline);

// Indices of the vertices that stay, in order. See IPolygon::Smooth.
std::vector<uint32_t> Simplify(Outline outline, double tolerance);

}  // namespace orlix
