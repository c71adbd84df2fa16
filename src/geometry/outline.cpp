#include "geometry/outline.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
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

// Twice the signed area, rounded to double, if sums in pairs of doubles leave no doubt what the exact one rounds to.
std::optional<double> CertainTwiceSignedArea(Outline outline) {
    if (outline.size() < 3) return {};
    const OutlineKernels& kernels = *Choose(kOutlineKernels);
    const Point &first = outline.front(), &last = outline.back();
    DoublePair twice = ExactProduct(last.x, first.y) - ExactProduct(last.y, first.x);
    double most = std::max(std::fabs(last.x), std::fabs(last.y)), blocks = 0;
    for (size_t i = 0; i + 1 < outline.size(); i += kCrossed, ++blocks) {
        const CrossSums sums = kernels.crossSums(&outline[i], std::min(kCrossed, outline.size() - 1 - i));
        const DoublePair block = ExactSum(sums.forward.high, -sums.backward.high);
        twice += ExactSum(block.high, block.low + (sums.forward.low - sums.backward.low));
        most = std::max(most, sums.most);
    }
    if (!(most < 1e150)) return {};
    // The roundings of both sums of a block, of adding them to the total, and of the exact sum to 100 bits.
    const auto n = static_cast<double>(outline.size());
    const double error = most * most * (blocks * (0x1p-78 + n * 0x1p-98) + n * 0x1p-95) + 1e-290;
    const double rounded = twice.high + (twice.low - error);
    if (rounded != twice.high + (twice.low + error) || !(std::fabs(rounded) > 1e-280)) return {};
    return rounded;
}

// Of coordinates that equal a bound of 0, the first one decides its sign.
double FirstZero(Outline outline, double Point::*coordinate, double bound) {
    if (bound != 0) return bound;
    const auto found = std::find_if(outline.begin(), outline.end(), [=](const Point& p) { return p.*coordinate == 0; });
    return *found.*coordinate;
}

// Direction of p as seen from `from`, 0 to 360 degrees; p is not `from`.
double DegreesOf(const Point& p, const Point& from) {
    constexpr double kDegrees = 57.295779513082323;
    const double angle = ArcTangent(p.y - from.y, p.x - from.x) * kDegrees;
    return angle < 0 ? angle + 360 : angle;
}

}  // namespace

double Area(Outline outline) {
    if (const std::optional<double> certain = CertainTwiceSignedArea(outline)) return std::fabs(*certain) / 2;
    if (!IsFinite(outline)) return kNan;
    const auto [twice, exponent] = TwiceSignedArea(outline);
    return std::ldexp(std::fabs(twice.high), exponent - 1);
}

double Perimeter(Outline outline) {
    if (outline.empty()) return 0;
    const double open = Choose(kOutlineKernels)->pathLength(outline.data(), outline.size() - 1, 0);
    return open + Distance(outline.back(), outline.front());
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
    const Bounds bounds = Choose(kOutlineKernels)->bounds(outline.data(), outline.size());
    return {FirstZero(outline, &Point::x, bounds.left), FirstZero(outline, &Point::y, bounds.top),
            FirstZero(outline, &Point::x, bounds.right), FirstZero(outline, &Point::y, bounds.bottom)};
}

// Squares first: only vertices whose squares are within rounding of the extreme ones of a block are measured, and none
// in blocks whose squares are clearly not extreme.
ExtremeDistances DistancesFrom(const Point& point, Outline outline) {
    constexpr size_t kBlock = 64;
    constexpr double kMore = 1 + 1e-14, kLess = 1 - 1e-14, kSmall = 1e-290;  // below, squares lose bits
    const OutlineKernels& kernels = *Choose(kOutlineKernels);
    ExtremeDistances extremes;
    extremes.nearestDistance = kLargest;
    for (size_t start = 0; start < outline.size(); start += kBlock) {
        const Outline block = outline.subspan(start, std::min(kBlock, outline.size() - start));
        const auto [least, most, areNumbers] = kernels.squares(block.data(), block.size(), point);
        double &shortest = extremes.nearestDistance, &longest = extremes.farthestDistance;
        const bool mayBeNear = least <= shortest * shortest * kMore + kSmall || !areNumbers;
        const bool mayBeFar = most >= longest * longest * kLess - kSmall || !areNumbers;
        if (!mayBeNear && !mayBeFar) continue;
        // Squares that overflow tell nothing; distances beyond the numbers do.
        const bool all = !areNumbers || !(most < kLargest);
        const double nearest = mayBeNear ? least * kMore + kSmall : -1;
        const double farthest = mayBeFar ? most * kLess - kSmall : std::numeric_limits<double>::infinity();
        for (size_t i = 0; i < block.size(); ++i) {
            const double x = block[i].x - point.x, y = block[i].y - point.y, square = x * x + y * y;
            if (!all && square > nearest && square < farthest) continue;
            const double distance = Hypotenuse(x, y);
            if (distance < shortest) {
                shortest = distance;
                extremes.nearest = static_cast<int64_t>(start + i);
            }
            if (distance > longest) {
                longest = distance;
                extremes.farthest = static_cast<int64_t>(start + i);
            }
        }
    }
    return extremes;
}

// Around the outline, the raw differences between neighbouring angles sum to 0. Only the corrections into -180..180
// degrees remain: 360 degrees for each edge that crosses the direction (-1, 0).
bool Encloses(Outline outline, const Point& point) {
    if (outline.empty() || !IsFinite(point) || !IsFinite(outline.back())) return false;
    const Turns turns = Choose(kOutlineKernels)->turns(outline.data(), outline.size() - 1, point);
    return turns.areFinite && turns.count + TurnOf(outline.back(), outline.front(), point) != 0;
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
