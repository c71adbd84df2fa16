// Decisions and lengths in the plane, the same on every build.
#pragma once

namespace orlix {

struct Point {
    double x = 0;
    double y = 0;
    bool operator==(const Point&) const = default;
};

// The sign of (b - a) x (c - a) = (b.x - a.x) (c.y - a.y) - (b.y - a.y) (c.x - a.x) without rounding: 1, 0 or -1. With x to the
// right and y downwards, 1 where a, b, c turn clockwise. For any finite points. (Shewchuk 1997 for the filter.)
int Turn(const Point& a, const Point& b, const Point& c);

// The root of dx^2 + dy^2: the double nearest to it, or in rare cases its neighbour. Infinite beyond the largest double and for
// infinities, also beside NaN; else NaN for NaN.
double Hypotenuse(double dx, double dy);

inline double Distance(const Point& a, const Point& b) { return Hypotenuse(b.x - a.x, b.y - a.y); }

}  // namespace orlix
