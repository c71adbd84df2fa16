#include "geometry/outline.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "numerics/double_pair.hpp"
#include "numerics/elementary.hpp"

namespace orlix {
namespace {

constexpr double kLargest = std::numeric_limits<double>::max(), kNan = std::numeric_limits<double>::quiet_NaN();

template <class Visit>
void ForEachEdge(Outline outline, const Visit& visit) {
    for (size_t i = 0; i < outline.size(); ++i) visit(outline[i], outline[i + 1 == outline.size() ? 0 : i + 1]);
}

bool IsFinite(const Point& p) { return std::isfinite(p.x) && std::isfinite(p.y); }
bool IsFinite(Outline outline) {
    return std::all_of(outline.begin(), outline.end(), [](const Point& p) { return IsFinite(p); });
}

// One coordinate of the vertices relative to the first vertex, in a power-of-two unit in which no vertex is farther
// away than 2.
class AxisFromFirst {
public:
    AxisFromFirst(Outline outline, double Point::*coordinate) : coordinate_(coordinate) {
        double largest = 0, farthest = 0;
        for (const Point& p : outline) largest = std::max(largest, std::fabs(p.*coordinate));
        if (largest >= 0x1p960) before_ = 0x1p-64;  // differences could overflow otherwise
        first_ = outline[0].*coordinate * before_;
        for (const Point& p : outline) farthest = std::max(farthest, std::fabs(p.*coordinate * before_ - first_));
        if (farthest > 0) exponent_ = std::max(std::ilogb(farthest), -900);
        unit_ = std::ldexp(1.0, exponent_);
        perUnit_ = std::ldexp(1.0, -exponent_);
    }

    DoublePair Of(const Point& p) const {
        const DoublePair offset = ExactSum(p.*coordinate_ * before_, -first_);
        return {offset.high * perUnit_, offset.low * perUnit_};
    }
    // Converts an offset back to a coordinate.
    double At(const DoublePair& offset) const {
        const DoublePair sum = ExactSum(first_, offset.high * unit_);
        return (sum.high + (sum.low + offset.low * unit_)) / before_;
    }
    int exponent() const { return exponent_ + (before_ == 1 ? 0 : 64); }

private:
    double Point::*coordinate_;
    double before_ = 1;  // coordinates are multiplied by this first
    double first_ = 0;
    int exponent_ = 0;
    double unit_ = 1, perUnit_ = 1;
};

DoublePair Quotient(const DoublePair& a, const DoublePair& b) {
    const double first = a.high / b.high;
    const DoublePair rest = a - b * first;
    return ExactSumOrdered(first, rest.high / b.high);
}

// The direction (-1, 0), where angles jump from 180 to -180 degrees, belongs to the upper half.
bool HasPositiveAngle(const Point& p, const Point& from) { return p.y > from.y || (p.y == from.y && p.x < from.x); }
bool HasNegativeAngle(const Point& p, const Point& from) { return p.y < from.y; }

// Direction of p as seen from `from`, 0 to 360 degrees; p is not `from`.
double DegreesOf(const Point& p, const Point& from) {
    constexpr double kDegrees = 57.295779513082323;
    const double angle = ArcTangent(p.y - from.y, p.x - from.x) * kDegrees;
    return angle < 0 ? angle + 360 : angle;
}

}  // namespace

double Area(Outline outline) {
    if (!IsFinite(outline)) return kNan;
    const auto [twice, exponent] = TwiceSignedArea(outline);
    return std::ldexp(std::fabs(twice.high), exponent - 1);
}

double Perimeter(Outline outline) {
    double sum = 0;
    ForEachEdge(outline, [&](const Point& a, const Point& b) { sum += Distance(a, b); });
    return sum;
}

double PerimeterEquivalentRadius(Outline outline) {
    return Perimeter(outline) * 0.15915494309189535;  // 1 / (2 pi)
}

double Circularity(Outline outline) {
    // A ratio of lengths, computed in a power-of-two unit in which neither sums nor squares overflow or underflow.
    double largest = 0;
    for (const Point& p : outline) largest = std::max({largest, std::fabs(p.x), std::fabs(p.y)});
    const int exponent = largest > 0 && std::isfinite(largest) ? std::ilogb(largest) : 0;
    const double unit = exponent > 400 || exponent < -400 ? std::ldexp(1.0, std::clamp(-exponent, -1000, 1000)) : 1;
    const auto scaled = [unit](const Point& p) { return Point{p.x * unit, p.y * unit}; };

    const auto n = static_cast<double>(outline.size());
    Point mean;
    for (const Point& p : outline) {
        mean.x += p.x * unit;
        mean.y += p.y * unit;
    }
    mean.x /= n;
    mean.y /= n;
    double sum = 0, squares = 0;
    for (const Point& p : outline) sum += Distance(mean, scaled(p));
    const double radius = sum / n;
    for (const Point& p : outline) {
        const double off = Distance(mean, scaled(p)) - radius;
        squares += off * off;
    }
    return 1 - std::sqrt(squares / n) / radius;
}

Point SignedCentroid(Outline outline) {
    if (outline.empty() || !IsFinite(outline)) return {kNan, kNan};
    const AxisFromFirst xs(outline, &Point::x), ys(outline, &Point::y);
    DoublePair x, y;
    ForEachEdge(outline, [&](const Point& a, const Point& b) {
        const DoublePair ax = xs.Of(a), ay = ys.Of(a), bx = xs.Of(b), by = ys.Of(b);
        const DoublePair cross = ax * by - bx * ay;
        x += (ax + bx) * cross;
        y += (ay + by) * cross;
    });
    const auto [twice, exponent] = TwiceSignedArea(outline);
    const int scale = exponent - xs.exponent() - ys.exponent();
    const DoublePair area = {std::ldexp(twice.high, scale), std::ldexp(twice.low, scale)};
    if (area.high == 0) return {x.high / 0.0, y.high / 0.0};
    const double sign = area.high < 0 ? -1 : 1;
    return {sign * xs.At(Quotient(x, area * 3.0)), sign * ys.At(Quotient(y, area * 3.0))};
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

ExtremeDistances DistancesFrom(const Point& point, Outline outline) {
    ExtremeDistances extremes;
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

// Around the outline, the raw differences between neighbouring angles sum to 0. Only the corrections into -180..180
// degrees remain: 360 degrees for each edge that crosses the direction (-1, 0).
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
