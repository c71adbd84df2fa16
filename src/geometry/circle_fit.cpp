#include "geometry/circle_fit.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "numerics/consensus_search.hpp"

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

// The sum of the `good` smallest squares. `scratch` has as many elements as `squares`.
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
    const double p = UsableProbability(probability);
    const auto good = static_cast<size_t>(std::trunc(static_cast<double>(n) * p + 0.5));
    const auto visits = static_cast<int64_t>(n);
    const SearchBudget budget = {SearchBudget::Lasts::UntilImprovement, int64_t{1} << 32, visits + 64};

    std::vector<double> squares(n), scratch(n);
    std::optional<Circle> best;
    double bestScore = std::numeric_limits<double>::max();
    ConsensusSearch search(visits, p, 3, budget);
    int64_t drawn[3];
    while (!(best && bestScore == 0) && search.Draw(drawn)) {
        const auto point = [&](int i) { return points[static_cast<size_t>(drawn[i])]; };
        const std::optional<Circle> circle = CircleThrough(point(0), point(1), point(2));
        if (!circle) continue;
        for (size_t i = 0; i < n; ++i) {
            const double off = Distance(circle->center, points[i]) - circle->radius, square = off * off;
            squares[i] = square >= 0 ? square : std::numeric_limits<double>::infinity();
        }
        const double score = TrimmedSum(squares, good, scratch);
        if (score < bestScore) {
            bestScore = score;
            best = circle;
            search.Improved();
        }
    }
    return best;
}

}  // namespace orlix
