#include "geometry/outline.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "platform/elementary.hpp"

namespace orlix {
namespace {

constexpr double kLargest = std::numeric_limits<double>::max();

template <class Visit>
void ForEachEdge(Outline outline, const Visit& visit) {
    for (size_t i = 0; i < outline.size(); ++i) visit(outline[i], outline[i + 1 == outline.size() ? 0 : i + 1]);
}

double Cross(const Point& a, const Point& b) { return a.x * b.y - b.x * a.y; }

bool IsFinite(const Point& p) { return std::isfinite(p.x) && std::isfinite(p.y); }

// The direction (-1, 0), in which angles leap from 180 to -180 degrees, belongs to the upper half.
bool HasPositiveAngle(const Point& p, const Point& from) { return p.y > from.y || (p.y == from.y && p.x < from.x); }
bool HasNegativeAngle(const Point& p, const Point& from) { return p.y < from.y; }

// 0 to 360, of a point other than `from`.
double DegreesOf(const Point& p, const Point& from) {
    constexpr double kDegrees = 57.295779513082323;
    const double angle = ArcTangent(p.y - from.y, p.x - from.x) * kDegrees;
    return angle < 0 ? angle + 360 : angle;
}

}  // namespace

double Area(Outline outline) {
    double sum = 0;
    ForEachEdge(outline, [&](const Point& a, const Point& b) { sum += Cross(a, b); });
    return std::fabs(sum) * 0.5;
}

double Perimeter(Outline outline) {
    double sum = 0;
    ForEachEdge(outline, [&](const Point& a, const Point& b) { sum += Distance(a, b); });
    return sum;
}

double Circularity(Outline outline) {
    const auto n = static_cast<double>(outline.size());
    Point mean;
    for (const Point& p : outline) {
        mean.x += p.x;
        mean.y += p.y;
    }
    mean.x /= n;
    mean.y /= n;
    double sum = 0, squares = 0;
    for (const Point& p : outline) sum += Distance(mean, p);
    const double radius = sum / n;
    for (const Point& p : outline) {
        const double off = Distance(mean, p) - radius;
        squares += off * off;
    }
    return 1 - std::sqrt(squares / n) / radius;
}

Point SignedCentroid(Outline outline) {
    double x = 0, y = 0, sum = 0;
    ForEachEdge(outline, [&](const Point& a, const Point& b) {
        const double cross = Cross(a, b);
        x += (a.x + b.x) * cross;
        y += (a.y + b.y) * cross;
        sum += cross;
    });
    const double divisor = 6 * (std::fabs(sum) * 0.5);
    return {x / divisor, y / divisor};
}

Bounds BoundsOf(Outline outline) {
    Bounds bounds = {kLargest, kLargest, -kLargest, -kLargest};
    for (const Point& p : outline) {
        if (p.x < bounds.left) bounds.left = p.x;
        if (p.y < bounds.top) bounds.top = p.y;
        if (p.x > bounds.right) bounds.right = p.x;
        if (p.y > bounds.bottom) bounds.bottom = p.y;
    }
    return bounds;
}

Extremes DistancesFrom(const Point& point, Outline outline) {
    Extremes extremes;
    extremes.nearestDistance = kLargest;
    for (size_t i = 0; i < outline.size(); ++i) {
        const double distance = Distance(point, outline[i]);
        if (distance < extremes.nearestDistance) {
            extremes.nearestDistance = distance;
            extremes.nearest = static_cast<int64_t>(i);
        }
        if (distance > extremes.farthestDistance) {
            extremes.farthestDistance = distance;
            extremes.farthest = static_cast<int64_t>(i);
        }
    }
    return extremes;
}

// The differences of the angles of neighbours add up to 0 around the outline; what brings one into -180..180 degrees is
// 360 wherever an edge passes the direction (-1, 0).
bool Encloses(Outline outline, const Point& point) {
    if (!IsFinite(point)) return false;
    int64_t turns = 0;
    bool finite = true;
    ForEachEdge(outline, [&](const Point& a, const Point& b) {
        finite = finite && IsFinite(a);
        if (HasNegativeAngle(a, point) && HasPositiveAngle(b, point))
            turns -= finite && IsFinite(b) && Turn(point, a, b) < 0;
        else if (HasPositiveAngle(a, point) && HasNegativeAngle(b, point))
            turns += finite && IsFinite(b) && Turn(point, a, b) > 0;
    });
    return finite && turns != 0;
}

double SubtendedAngle(Outline outline, const Point& point) {
    if (Encloses(outline, point)) return 360;
    std::vector<std::pair<double, double>> arcs;
    ForEachEdge(outline, [&](const Point& a, const Point& b) {
        if (!IsFinite(a) || !IsFinite(b) || !IsFinite(point) || a == point || b == point) return;
        const int turn = Turn(point, a, b);
        if (turn == 0) return;
        const double from = DegreesOf(turn > 0 ? a : b, point), to = DegreesOf(turn > 0 ? b : a, point);
        if (from <= to) {
            arcs.emplace_back(from, to);
        } else {
            arcs.emplace_back(from, 360.0);
            arcs.emplace_back(0.0, to);
        }
    });
    std::sort(arcs.begin(), arcs.end());
    double covered = 0, end = 0;
    for (const auto& [from, to] : arcs) {
        if (to <= end) continue;
        covered += to - std::max(from, end);
        end = to;
    }
    return std::min(covered, 360.0);
}

}  // namespace orlix
