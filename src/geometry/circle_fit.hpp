// The circle through the better part of points.
#pragma once

#include <optional>
#include <span>

#include "numerics/plane.hpp"

namespace orlix {

struct Circle {
    Point center;
    double radius = 0;
};

// With p = min(P, 0.99) and n points: a trial draws three points trunc(u n) of UniformGenerator(-1), puts the circle
// through them and sums the trunc(n p + 0.5) smallest squares of distance from the centre less radius, in the order of
// the points (numerics/consensus_search.hpp). The search ends after ceil(25 / p^3) trials in a row without a
// smaller sum, at a sum of 0, and in any case when such trials have come to 2^32 visits of points, each trial counting
// 64 more, but no fewer than 200. Points that are not finite count as bad ones. Nothing where no trial gave a circle,
// for fewer than three points and unless P > 0.
std::optional<Circle> RobustCircle(std::span<const Point> points, double probability);

}  // namespace orlix
