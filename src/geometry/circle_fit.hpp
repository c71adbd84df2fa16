// Robust circle fit: the circle through most of a set of points.
#pragma once

#include <optional>
#include <span>

#include "numerics/plane.hpp"

namespace orlix {

struct Circle {
    Point center;
    double radius = 0;
};

// With p = min(P, 0.99) and n points, a trial draws three points trunc(u n), u from UniformGenerator(-1), takes the
// circle through them and sums the trunc(n p + 0.5) smallest squares of (distance from the centre - radius), in the
// order of the points (numerics/consensus_search.hpp). The search ends after ceil(25 / p^3) consecutive trials without
// a smaller sum, or at a sum of 0. It also ends when these consecutive trials have cost 2^32 point visits, but not
// before 200 of them; each trial counts as n + 64 visits. Non-finite points count as outliers. `nullopt` when no trial
// gave a circle, for fewer than three points and unless P > 0.
std::optional<Circle> RobustCircle(std::span<const Point> points, double probability);

}  // namespace orlix
