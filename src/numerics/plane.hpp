// Decisions and lengths in the plane, the same in every build.
#pragma once

#include <cmath>
#include <span>

#include "numerics/double_pair.hpp"

namespace orlix {

struct Point {
    double x = 0;
    double y = 0;
    bool operator==(const Point&) const = default;
};

// Turn() where rounding might matter.
int TurnWithoutRounding(const Point& a, const Point& b, const Point& c);

// The sign of (b - a) x (c - a) = (b.x - a.x) (c.y - a.y) - (b.y - a.y) (c.x - a.x) without rounding: 1, 0 or -1. With
// x to the right and y downwards, 1 means that a, b, c turn clockwise. For all finite points. (The filter is that of
// J. R. Shewchuk, 1997.)
inline int Turn(const Point& a, const Point& b, const Point& c) {
    const double left = (b.x - a.x) * (c.y - a.y), right = (b.y - a.y) * (c.x - a.x), turn = left - right;
    // Four roundings of half a unit each, relative to the products; and products too small to have all their bits.
    constexpr double kRounding = 3.4e-16, kSmall = 1e-280;
    const double doubt = kRounding * (std::fabs(left) + std::fabs(right)) + kSmall;
    if (turn > doubt) return 1;
    if (turn < -doubt) return -1;
    return TurnWithoutRounding(a, b, c);
}

// value 2^exponent: a number that may lie beyond the range of double. 0 has the value 0.
struct ScaledPair {
    DoublePair value;
    int exponent = 0;
};

// The sum of a.x b.y - b.x a.y over the edges (a, b) of the closed outline: twice its area, positive if it runs
// clockwise. It is formed without rounding. The value has 100 bits of it, and value.high is the nearest double or, in
// rare cases, its neighbour. For finite points.
ScaledPair TwiceSignedArea(std::span<const Point> outline);

// The root of dx^2 + dy^2: the nearest double or, in rare cases, its neighbour. Infinite beyond the largest double and
// if dx or dy is infinite, even if the other is NaN; otherwise NaN for NaN.
double Hypotenuse(double dx, double dy);

inline double Distance(const Point& a, const Point& b) { return Hypotenuse(b.x - a.x, b.y - a.y); }

}  // namespace orlix
