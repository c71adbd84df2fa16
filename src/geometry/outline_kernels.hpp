// Loops over the vertices of outlines, and their variants.
#pragma once

#include "numerics/plane.hpp"
#include "vectors/inline.hpp"
#include "vectors/variants.hpp"

namespace orlix {

struct Bounds {
    double left, top, right, bottom;
};

// An edge between two vertices, and the square of its length, or 1 where that is 0.
struct Edge {
    Edge(const Point& first, const Point& last)
        : a(first), b(last), x(b.x - a.x), y(b.y - a.y), square(x * x + y * y), scale(square > 0 ? square : 1) {}
    Point a, b;
    double x, y, square, scale;
};

// Sums of products over the edges (a, b) of a path: of a.x b.y, and of a.y b.x. The lower parts may be larger than half
// a unit of the higher ones.
struct CrossSums {
    DoublePair forward, backward;
    double most = 0;  // the largest absolute coordinate of the vertices before the last
};

// The least and the largest of the squares (x - from.x)^2 + (y - from.y)^2, rounded at each step.
struct Squares {
    double least, most;
    bool areNumbers;  // otherwise NaN among them was ignored
};

struct Turns {
    int64_t count;
    bool areFinite;  // otherwise a vertex before the last is not finite and the count means nothing
};

// A convex polygon of up to eight vertices. None of them: nothing is inside.
struct InnerPolygon {
    Point from[8], along[8];
    int edges = 0;
    double margin = 0;
};

// A path is n edges between n + 1 vertices.
struct OutlineKernels {
    // Adds the lengths of the edges by Distance() to the sum, one after the other.
    double (*pathLength)(const Point* path, size_t n, double sum);
    // For n <= kCrossed. With finite coordinates below 1e150 the error of each sum is below 2^-79 most^2 + 1e-300.
    CrossSums (*crossSums)(const Point* path, size_t n);
    // Writes the RoughSquare() of n vertices and returns the largest one, 0 for none.
    double (*roughSquares)(const Point* vertices, size_t n, const Edge& edge, double* squares);
    Squares (*squares)(const Point* vertices, size_t n, const Point& from);
    // How often the edges cross the direction (-1, 0) as seen from a finite point, see Encloses().
    Turns (*turns)(const Point* path, size_t n, const Point& from);
    // See BoundsOf(). A bound of 0 may have either sign.
    Bounds (*bounds)(const Point* vertices, size_t n);
    // Indices of finite vertices with the largest y, y - x, -x, -x - y, -y, x - y, x, and x + y; -1 for none.
    void (*farthest)(const Point* vertices, size_t n, int64_t (&indices)[8]);
    // Bit i, for n <= 64: vertex i is finite, and not inside the polygon by cross products that exceed the margin.
    uint64_t (*outside)(const Point* vertices, size_t n, const InnerPolygon& polygon);
};

constexpr size_t kCrossed = 256;

// Adds the lanes' sums, forward and backward by turns, in two parts each. Not inline: the linker may keep a suffixed
// file's copy for all CPUs.
CrossSums Together(CrossSums sums, const double* high, const double* low, const double* most, size_t lanes);

extern const OutlineKernels kOutline_scalar, kOutline_sse2, kOutline_avx2, kOutline_avx512;

inline constexpr Variant<const OutlineKernels*> kOutlineKernels[] = {
    {"avx512", Cpu::Avx512, &kOutline_avx512},
    {"avx2", Cpu::Avx2, &kOutline_avx2},
    {"sse2", Cpu::Sse2, &kOutline_sse2},
    {"scalar", Cpu::Any, &kOutline_scalar},
};

namespace {

// The square of the distance of a vertex from the edge times edge.scale, with a relative error below 5e-15 unless the
// vertex lies on the line exactly. That holds if the scale is above 1e-140 and the result above 1e-280 and 1e-280
// times the scale.
ORLIX_INLINE double RoughSquare(const Edge& edge, const Point& p) {
    const double ax = p.x - edge.a.x, ay = p.y - edge.a.y, bx = p.x - edge.b.x, by = p.y - edge.b.y;
    const double along = ax * edge.x + ay * edge.y, cross = ax * edge.y - ay * edge.x;
    const bool afterFirst = along > 0;
    const double x = afterFirst ? bx : ax, y = afterFirst ? by : ay;
    return afterFirst && along < edge.square ? cross * cross : (x * x + y * y) * edge.scale;
}

ORLIX_INLINE bool IsOutside(const InnerPolygon& polygon, const Point& p) {
    for (int k = 0; k < polygon.edges; ++k) {
        const Point &from = polygon.from[k], &along = polygon.along[k];
        if (!(along.y * (p.x - from.x) - along.x * (p.y - from.y) < -polygon.margin)) return true;
    }
    return polygon.edges == 0;
}

ORLIX_INLINE bool HasNegativeAngle(const Point& p, const Point& from) { return p.y < from.y; }
// The direction (-1, 0), where angles jump from 180 to -180 degrees, belongs to the upper half.
ORLIX_INLINE bool HasPositiveAngle(const Point& p, const Point& from) {
    return p.y > from.y || (p.y == from.y && p.x < from.x);
}

// 1, 0 or -1.
ORLIX_INLINE int TurnOf(const Point& a, const Point& b, const Point& from) {
    if (HasNegativeAngle(a, from) && HasPositiveAngle(b, from)) return Turn(from, a, b) < 0 ? -1 : 0;
    if (HasPositiveAngle(a, from) && HasNegativeAngle(b, from)) return Turn(from, a, b) > 0 ? 1 : 0;
    return 0;
}

}  // namespace
}  // namespace orlix
