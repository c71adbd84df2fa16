#include "process/angled_hemisphere_fit.hpp"

#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include "numerics/linear_system.hpp"
#include "platform/elementary.hpp"
#include "process/hemisphere_fit.hpp"

namespace orlix {
namespace {

// The height is linear in the last four.
enum Unknown : size_t { kA, kB, kQ, kE, kC, kGx, kGy, kUnknowns };
constexpr size_t kNonlinear = 3, kLinear = 4;
using Vector = std::array<double, kUnknowns>;

// Where the unknowns are counted from.
struct Place {
    double xMiddle = 0, yMiddle = 0, length = 1, z = 0;
};

// Sum of squared residuals, half its gradient and the upper triangle of the normal matrix.
struct Sums {
    double squares = 0;
    Vector gradient = {};
    std::array<Vector, kUnknowns> normal = {};

    void operator+=(const Sums& other) {
        squares += other.squares;
        for (size_t i = 0; i < kUnknowns; ++i) {
            gradient[i] += other.gradient[i];
            for (size_t j = i; j < kUnknowns; ++j) normal[i][j] += other.normal[i][j];
        }
    }
};

template <class Source>
Sums SumsOf(const Source& source, const Place& place, const Vector& p) {
    constexpr double kLeastRoot = 1.0 / 64;
    Sums total;
    source.ForEachRun([&](const typename Source::Pixel* run, size_t n, int32_t x, int32_t y) {
        Sums sums;
        const double yy = (y - place.yMiddle) / place.length;
        const double dy = yy - p[kB];
        for (size_t i = 0; i < n; ++i) {
            const double xx = ((x - place.xMiddle) + static_cast<double>(i)) / place.length;
            const double dx = xx - p[kA];
            const double s = dx * dx + dy * dy;
            const double square = 1 - p[kQ] * s;
            const bool inside = square > 0;
            const double root = inside ? std::sqrt(square) : 0.0;
            const double phi = inside ? s / (1 + root) : 1 / p[kQ];
            const double steep = root > kLeastRoot ? root : kLeastRoot;
            const double byS = inside ? 1 / (2 * steep) : 0.0;
            const double byQ = inside ? s * phi / (2 * steep * (1 + root)) : -phi * phi;
            const double residual =
                p[kE] + p[kGx] * xx + p[kGy] * yy - p[kC] * phi - (static_cast<double>(run[i]) - place.z);
            const double towards = 2 * p[kC] * byS;
            const Vector d = {towards * dx, towards * dy, -p[kC] * byQ, 1, -phi, xx, yy};
            sums.squares += residual * residual;
            for (size_t j = 0; j < kUnknowns; ++j) {
                sums.gradient[j] += d[j] * residual;
                for (size_t k = j; k < kUnknowns; ++k) sums.normal[j][k] += d[j] * d[k];
            }
        }
        total += sums;
    });
    return total;
}

// The sums with the linear unknowns at their best for the other three: those are then all that is left to look for.
struct Projection {
    Vector p;                                 // the linear unknowns put at their best
    double squares;                           // sum of squared residuals there
    std::array<double, kNonlinear> gradient;  // half of it
    std::array<double, kNonlinear * kNonlinear> normal;
    std::array<std::array<double, kLinear>, kNonlinear>
        followed;  // how the best linear unknowns follow the other three
};

Projection Project(const Sums& sums, const Vector& p) {
    const auto normal = [&](size_t i, size_t j) { return i < j ? sums.normal[i][j] : sums.normal[j][i]; };
    std::array<double, kLinear * kLinear> matrix;
    for (size_t i = 0; i < kLinear; ++i)
        for (size_t j = 0; j < kLinear; ++j) matrix[i * kLinear + j] = normal(kNonlinear + i, kNonlinear + j);
    const LuDecomposition lu(matrix, kLinear);
    const auto solve = [&](const auto& entry) {
        std::array<double, kLinear> solution;
        for (size_t i = 0; i < kLinear; ++i) solution[i] = -entry(kNonlinear + i);
        lu.Solve(solution, solution);
        return solution;
    };

    Projection projection{p, sums.squares, {}, {}, {}};
    const auto change = solve([&](size_t i) { return sums.gradient[i]; });
    for (size_t i = 0; i < kLinear; ++i) {
        projection.p[kNonlinear + i] += change[i];
        projection.squares += change[i] * sums.gradient[kNonlinear + i];
    }
    // The derivatives by the nonlinear unknowns are proportional to c.
    const double ratio = projection.p[kC] / p[kC];
    for (size_t i = 0; i < kNonlinear; ++i) {
        auto& followed = projection.followed[i];
        followed = solve([&](size_t j) { return normal(i, j); });
        double gradient = sums.gradient[i];
        for (size_t k = 0; k < kLinear; ++k) gradient += followed[k] * sums.gradient[kNonlinear + k];
        projection.gradient[i] = ratio * gradient;
        for (size_t j = 0; j < kNonlinear; ++j) {
            double entry = normal(i, j);
            for (size_t k = 0; k < kLinear; ++k) entry += followed[k] * normal(kNonlinear + k, j);
            projection.normal[i * kNonlinear + j] = ratio * ratio * entry;
        }
        for (double& f : followed) f *= ratio;
    }
    return projection;
}

template <class Source>
void Refine(const Source& source, const Place& place, double deviation, Vector& p) {
    Sums sums = SumsOf(source, place, p);
    Projection at = Project(sums, p);
    double lambda = 1e-3;
    for (int steps = 0; steps < 200 && lambda <= 1e12; ++steps) {
        auto damped = at.normal;
        std::array<double, kNonlinear> step;
        for (size_t i = 0; i < kNonlinear; ++i) {
            damped[i * kNonlinear + i] *= 1 + lambda;
            step[i] = -at.gradient[i];
        }
        LuDecomposition(damped, kNonlinear).Solve(step, step);
        Vector next = at.p;
        double moved = 0;
        for (size_t i = 0; i < kNonlinear; ++i) {
            next[i] += step[i];
            for (size_t k = 0; k < kLinear; ++k) next[kNonlinear + k] += at.followed[i][k] * step[i];
            moved += sums.normal[i][i] * step[i] * step[i];
        }
        const bool small = moved <= 1e-26 * deviation * deviation * static_cast<double>(source.count());
        bool better = false;
        if (next[kQ] > 0 && std::isfinite(next[kQ])) {
            const Sums nextSums = SumsOf(source, place, next);
            const Projection there = Project(nextSums, next);
            better = there.squares < at.squares;
            if (better) {
                sums = nextSums;
                at = there;
            }
        }
        lambda = better ? lambda / 10 : lambda * 10;
        if (small) break;
    }
    p = at.p;
}

}  // namespace

template <class Source>
std::optional<Hemisphere> FitAngledHemisphere(const Source& source, double average) {
    using T = typename Source::Pixel;
    if (source.count() < static_cast<int64_t>(kUnknowns)) return std::nullopt;
    const std::optional<Hemisphere> start = FitHemisphere(source, average);
    if (!start || start->zScale == 0) return std::nullopt;

    int32_t left = std::numeric_limits<int32_t>::max(), right = 0, top = left, bottom = 0;
    double squares = 0;
    source.ForEachRun([&](const T* run, size_t n, int32_t x, int32_t y) {
        left = std::min(left, x);
        right = std::max(right, x + static_cast<int32_t>(n - 1));
        top = std::min(top, y);
        bottom = std::max(bottom, y);
        for (size_t i = 0; i < n; ++i) {
            const double d = static_cast<double>(run[i]) - average;
            squares += d * d;
        }
    });
    const double deviation = std::sqrt(squares / static_cast<double>(source.count()));
    const Place place{std::floor((double{1} * left + right) / 2), std::floor((double{1} * top + bottom) / 2),
                      0.5 * std::max(double{1} * right - left, double{1} * bottom - top), average};

    Vector p = {};
    p[kA] = (start->xCenter - place.xMiddle) / place.length;
    p[kB] = (start->yCenter - place.yMiddle) / place.length;
    p[kQ] = place.length * place.length / (start->radius * start->radius);
    p[kC] = p[kQ] * start->radius / start->zScale;
    p[kE] = start->zCenter - place.z + p[kC] / p[kQ];

    constexpr int64_t kFew = 65536;
    if (source.count() >= 4 * kFew) {
        const auto every =
            static_cast<int32_t>(std::ceil(std::sqrt(static_cast<double>(source.count()) / static_cast<double>(kFew))));
        std::vector<SurfacePoint> points;
        source.ForEachRun([&](const T* run, size_t n, int32_t x, int32_t y) {
            if (y % every != 0) return;
            for (auto i = static_cast<size_t>((every - x % every) % every); i < n; i += static_cast<size_t>(every))
                points.push_back({x + static_cast<int32_t>(i), y, static_cast<double>(run[i])});
        });
        // A region of a few rows or columns may have none there.
        if (points.size() >= kFew / 16) Refine(PointRuns(points), place, deviation, p);
    }
    Refine(source, place, deviation, p);

    Hemisphere hemisphere;
    hemisphere.xCenter = place.xMiddle + place.length * p[kA];
    hemisphere.yCenter = place.yMiddle + place.length * p[kB];
    hemisphere.zCenter = place.z + (p[kE] - p[kC] / p[kQ] + p[kGx] * p[kA] + p[kGy] * p[kB]);
    hemisphere.radius = place.length / std::sqrt(p[kQ]);
    hemisphere.zScale = p[kQ] * hemisphere.radius / p[kC];
    const double angleOf = std::fabs(hemisphere.zScale) / place.length;
    hemisphere.alpha = ArcTangent(p[kGx] * angleOf);
    hemisphere.beta = ArcTangent(p[kGy] * angleOf);
    const double all = hemisphere.xCenter + hemisphere.yCenter + hemisphere.zCenter + hemisphere.zScale +
                       hemisphere.radius + hemisphere.alpha + hemisphere.beta;
    if (!std::isfinite(all)) return std::nullopt;
    return hemisphere;
}

template std::optional<Hemisphere> FitAngledHemisphere(const RegionPixels<uint8_t>&, double);
template std::optional<Hemisphere> FitAngledHemisphere(const RegionPixels<uint16_t>&, double);
template std::optional<Hemisphere> FitAngledHemisphere(const RegionPixels<uint32_t>&, double);
template std::optional<Hemisphere> FitAngledHemisphere(const RegionPixels<float>&, double);
template std::optional<Hemisphere> FitAngledHemisphere(const PointRuns&, double);

}  // namespace orlix
