#include <cmath>
#include <utility>

#include "geometry/outline.hpp"

namespace orlix {
namespace {

double DistanceToEdge(const Point& p, const Point& a, const Point& b) {
    const double x = b.x - a.x, y = b.y - a.y, square = x * x + y * y;
    const double along = (p.x - a.x) * x + (p.y - a.y) * y;
    if (!(along > 0)) return Distance(p, a);
    if (along >= square) return Distance(p, b);
    if (Turn(a, b, p) == 0) return 0;
    return std::fabs((p.x - a.x) * y - (p.y - a.y) * x) / Hypotenuse(x, y);
}

}  // namespace

std::vector<uint32_t> Simplify(Outline outline, double tolerance) {
    const auto n = static_cast<uint32_t>(outline.size());
    std::vector<uint32_t> all;
    bool finite = true;
    for (uint32_t i = 0; i < n; ++i) {
        all.push_back(i);
        finite = finite && std::isfinite(outline[i].x) && std::isfinite(outline[i].y);
    }
    if (n < 3 || !finite || !(tolerance >= 0)) return all;

    uint32_t opposite = 0;
    double most = 0;
    for (uint32_t i = 1; i < n; ++i)
        if (const double distance = Distance(outline[0], outline[i]); distance > most) {
            most = distance;
            opposite = i;
        }
    if (opposite == 0) return {0};  // all at one place

    // Vertex n is vertex 0.
    const auto at = [&](uint32_t i) -> const Point& { return outline[i == n ? 0 : i]; };
    std::vector<bool> stays(n + size_t{1}, false);
    stays[0] = stays[opposite] = true;
    std::vector<std::pair<uint32_t, uint32_t>> parts = {{0, opposite}, {opposite, n}};
    while (!parts.empty()) {
        const auto [first, last] = parts.back();
        parts.pop_back();
        uint32_t farthest = first;
        double distance = tolerance;
        for (uint32_t i = first + 1; i < last; ++i)
            if (const double d = DistanceToEdge(outline[i], at(first), at(last)); d > distance) {
                distance = d;
                farthest = i;
            }
        if (farthest == first) continue;
        stays[farthest] = true;
        parts.emplace_back(first, farthest);
        parts.emplace_back(farthest, last);
    }
    std::vector<uint32_t> left;
    for (uint32_t i = 0; i < n; ++i)
        if (stays[i]) left.push_back(i);
    return left;
}

}  // namespace orlix
