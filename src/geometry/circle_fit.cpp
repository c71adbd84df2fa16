#include "geometry/circle_fit.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "numerics/uniform_generator.hpp"

namespace orlix {
namespace {

std::optional<Circle> CircleThrough(const Point& a, const Point& b, const Point& c) {
    for (const Point& p : {a, b, c})
        if (!std::isfinite(p.x) || !std::isfinite(p.y)) return std::nullopt;
    if (Turn(a, b, c) == 0) return std::nullopt;
    const double bx = b.x - a.x, by = b.y - a.y, cx = c.x - a.x, cy = c.y - a.y;
    const double bSquare = bx * bx + by * by, cSquare = cx * cx + cy * cy, divisor = 2 * (bx * cy - by * cx);
    const double x = (cy * bSquare - by * cSquare) / divisor, y = (bx * cSquare - cx * bSquare) / divisor;
    const Circle circle{{a.x + x, a.y + y}, Hypotenuse(x, y)};
    if (!std::isfinite(circle.center.x) || !std::isfinite(circle.center.y) || !std::isfinite(circle.radius))
        return std::nullopt;
    return circle;
}

// The sum of the `good` smallest of the squares. `scratch` is as long.
double TrimmedSum(std::span<const double> squares, size_t good, std::vector<double>& scratch) {
    if (good == 0) return 0;
    std::copy(squares.begin(), squares.end(), scratch.begin());
    const auto last = scratch.begin() + static_cast<std::ptrdiff_t>(good - 1);
    std::nth_element(scratch.begin(), last, scratch.end());
    const double limit = *last;
    double sum = 0;
    size_t smaller = 0;
    for (const double square : squares)
        if (square < limit) {
            sum += square;
            ++smaller;
        }
    return sum + static_cast<double>(good - smaller) * limit;
}

}  // namespace

std::optional<Circle> RobustCircle(std::span<const Point> points, double probability) {
    const size_t n = points.size();
    if (n < 3 || !(probability > 0)) return std::nullopt;
    const double p = std::min(probability, 0.99), count = static_cast<double>(n);
    const double feasible = std::max(200.0, std::floor(0x1p32 / (count + 64)));
    const double limit = std::min(std::ceil(25 / (p * p * p)), feasible);
    const auto good = static_cast<size_t>(std::trunc(count * p + 0.5));

    std::vector<double> squares(n), scratch(n);
    std::optional<Circle> best;
    double bestScore = std::numeric_limits<double>::max();
    UniformGenerator random(-1);
    for (double unsuccessful = 0; unsuccessful < limit && !(best && bestScore == 0); ++unsuccessful) {
        Point drawn[3];
        for (Point& point : drawn) point = points[static_cast<size_t>(random() * count)];
        const std::optional<Circle> circle = CircleThrough(drawn[0], drawn[1], drawn[2]);
        if (!circle) continue;
        for (size_t i = 0; i < n; ++i) {
            const double off = Distance(circle->center, points[i]) - circle->radius, square = off * off;
            squares[i] = square >= 0 ? square : std::numeric_limits<double>::infinity();
        }
        const double score = TrimmedSum(squares, good, scratch);
        if (score < bestScore) {
            bestScore = score;
            best = circle;
            unsuccessful = -1;
        }
    }
    return best;
}

}  // namespace orlix
