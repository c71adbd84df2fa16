#include "fits/angled_hemisphere_fit.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <vector>

#include "fits/hemisphere_fit.hpp"
#include "fits/hemisphere_sums.hpp"
#include "numerics/elementary.hpp"
#include "numerics/linear_system.hpp"

namespace orlix {
namespace {

// The height is linear in the last four.
enum Unknown : size_t { kA, kB, kQ, kE, kC, kGx, kGy, kUnknowns };
constexpr size_t kNonlinear = 3, kLinear = 4;
using Vector = std::array<double, kUnknowns>;

// Origin and unit of the unknowns' coordinates.
struct Place {
    double xMiddle = 0, yMiddle = 0, length = 1, z = 0;
};

// Sum of squared residuals, half its gradient and the upper triangle of the normal matrix.
struct Sums {
    double squares = 0;
    Vector gradient = {};
    std::array<Vector, kUnknowns> normal = {};
};

// The columns and rows of a source are `step` apart.
template <class Source>
double StepOf(const Source& source) {
    if constexpr (requires { source.step(); }) return source.step();
    return 1;
}

template <class Source>
Sums SumsOf(const Source& source, const Place& place, const Vector& p) {
    const CapSumsFn addTerms = Choose(kCapSums);
    const double step = StepOf(source), unit = 1 / place.length, c = p[kC], towards = 2 * c;
    Sums total;
    source.ForEachRun([&](const typename Source::Pixel* run, size_t n, int32_t x, int32_t y) {
        const double yy = (y - place.yMiddle) * unit, dy = yy - p[kB], first = x - place.xMiddle;
        const double outside = 1 / p[kQ];
        const CapRow row = {unit,   p[kA], dy * dy, p[kQ], outside, -outside * outside, p[kE] + p[kGy] * yy,
                            p[kGx], p[kC], place.z};
        const auto sum = SumsOfRun(addTerms, row, run, n, first, step);
        const double count = static_cast<double>(n), middle = (first + step * (count - 1) / 2) * unit;
        const double xSum = count * middle;
        const double xSquares = xSum * middle + SpreadOfColumns(n, step).squares * (unit * unit);

        // The derivatives of the height: 2 c e d, 2 c e dy, -c m, 1, -phi, X and Y.
        total.squares += sum[CapRow::kRR];
        const Vector gradient = {towards * sum[CapRow::kDR], towards * dy * sum[CapRow::kER],
                                 -c * sum[CapRow::kMR],      sum[CapRow::kR],
                                 -sum[CapRow::kPhiR],        sum[CapRow::kXR],
                                 yy * sum[CapRow::kR]};
        for (size_t i = 0; i < kUnknowns; ++i) total.gradient[i] += gradient[i];
        const auto add = [&](Unknown i, const auto& entries) {
            for (size_t k = 0; k < std::size(entries); ++k) total.normal[i][i + k] += entries[k];
        };
        add(kA, std::array{towards * towards * sum[CapRow::kDD], towards * towards * dy * sum[CapRow::kDE],
                           -c * towards * sum[CapRow::kDM], towards * sum[CapRow::kD], -towards * sum[CapRow::kDPhi],
                           towards * sum[CapRow::kDX], towards * yy * sum[CapRow::kD]});
        const double towardsY = towards * dy;
        add(kB, std::array{towardsY * towardsY * sum[CapRow::kEE], -c * towardsY * sum[CapRow::kEM],
                           towardsY * sum[CapRow::kE], -towardsY * sum[CapRow::kEPhi], towardsY * sum[CapRow::kEX],
                           towardsY * yy * sum[CapRow::kE]});
        add(kQ, std::array{c * c * sum[CapRow::kMM], -c * sum[CapRow::kM], c * sum[CapRow::kMPhi],
                           -c * sum[CapRow::kMX], -c * yy * sum[CapRow::kM]});
        add(kE, std::array{count, -sum[CapRow::kPhi], xSum, yy * count});
        add(kC, std::array{sum[CapRow::kPhiPhi], -sum[CapRow::kPhiX], -yy * sum[CapRow::kPhi]});
        add(kGx, std::array{xSquares, yy * xSum});
        add(kGy, std::array{yy * yy * count});
    });
    return total;
}

// The sums with the linear unknowns optimal for the other three, so that only those three are left to search for.
struct Projection {
    Vector p;                                 // with the optimal linear unknowns
    double squares;                           // sum of squared residuals there
    std::array<double, kNonlinear> gradient;  // half the gradient of squares
    std::array<double, kNonlinear * kNonlinear> normal;
    std::array<std::array<double, kLinear>, kNonlinear>
        followed;  // derivatives of the optimal linear unknowns by the other three
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
    // The derivatives with respect to the nonlinear unknowns are proportional to c.
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

// The current state of the search.
struct Descent {
    Vector p;
    double squares;
};

// Numbers of points: to follow the starts on, for the scan of rims, and to use before all points of a large region.
constexpr int64_t kThin = 2048, kScanned = 512, kFew = 65536;

// Bounds: a radius of 2^16 half sides of the region (kLeastQ), and a centre kReach half sides away from its middle.
// Beyond them, a hemisphere cannot be told from a paraboloid.
constexpr double kLeastQ = 0x1p-32, kReach = 1024;

// Sums and projection at p. Far from the optimal linear unknowns the remaining squares are a small difference of large
// sums; there they are summed again, at the optimal ones.
struct Station {
    Sums sums;
    Projection at;
};
template <class Source>
Station Visit(const Source& source, const Place& place, const Vector& p) {
    constexpr double kDifference = 1e-6;
    Station station;
    station.sums = SumsOf(source, place, p);
    station.at = Project(station.sums, p);
    if (station.at.squares > kDifference * station.sums.squares) return station;
    const Vector best = station.at.p;
    station.sums = SumsOf(source, place, best);
    station.at = Project(station.sums, best);
    if (station.at.squares > kDifference * station.sums.squares) return station;
    station.at.p = best;
    station.at.squares = station.sums.squares;
    return station;
}

template <class Source>
Descent Refine(const Source& source, const Place& place, double deviation, const Vector& start, int mostSteps) {
    Station here = Visit(source, place, start);
    double lambda = 1e-3;
    for (int steps = 0; steps < mostSteps && lambda <= 1e12 && here.at.p[kQ] > kLeastQ; ++steps) {
        const Projection& at = here.at;
        auto damped = at.normal;
        std::array<double, kNonlinear> step;
        for (size_t i = 0; i < kNonlinear; ++i) {
            damped[i * kNonlinear + i] *= 1 + lambda;
            step[i] = -at.gradient[i];
        }
        LuDecomposition(damped, kNonlinear).Solve(step, step);
        const double least = std::max(at.p[kQ] / 8, kLeastQ) - at.p[kQ];
        if (step[kQ] < least) step[kQ] = least;
        Vector next = at.p;
        double moved = 0;
        for (size_t i = 0; i < kNonlinear; ++i) {
            next[i] += step[i];
            for (size_t k = 0; k < kLinear; ++k) next[kNonlinear + k] += at.followed[i][k] * step[i];
            moved += here.sums.normal[i][i] * step[i] * step[i];
        }
        lambda *= 10;
        if (!(std::fabs(next[kA]) <= kReach && std::fabs(next[kB]) <= kReach)) continue;
        const Station there = Visit(source, place, next);
        const double gain = at.squares - there.at.squares;
        const bool small = moved <= 1e-26 * deviation * deviation * static_cast<double>(source.count()) ||
                           std::fabs(gain) <= 1e-12 * at.squares;
        if (gain > 0) {
            here = there;
            lambda /= 100;
        }
        if (small) break;
    }
    return {here.at.p, here.at.squares};
}

// Every step-th column and row of a region.
class ThinnedPixels {
public:
    using Pixel = double;
    // step = 1, 2, ..., so that no more than about `most` pixels are left; all pixels of a region with so few rows or
    // columns that hardly any would be left.
    template <class Source>
    ThinnedPixels(const Source& source, int64_t most)
        : step_(static_cast<int32_t>(
              std::ceil(std::sqrt(static_cast<double>(source.count()) / static_cast<double>(most))))) {
        for (;; step_ = 1) {
            source.ForEachRun([&](const typename Source::Pixel* run, size_t n, int32_t x, int32_t y) {
                if (y % step_ != 0) return;
                const auto first = static_cast<size_t>((step_ - x % step_) % step_), before = values_.size();
                for (size_t i = first; i < n; i += static_cast<size_t>(step_))
                    values_.push_back(static_cast<double>(run[i]));
                if (values_.size() == before) return;
                runs_.push_back({x + static_cast<int32_t>(first), y, values_.size() - before});
            });
            if (step_ == 1 || count() >= most / 16) return;
            values_.clear();
            runs_.clear();
        }
    }

    int64_t count() const { return static_cast<int64_t>(values_.size()); }
    double step() const { return step_; }
    // Pixel i of a run is at the column x + step() i.
    template <class Visit>
    void ForEachRun(Visit&& visit) const {
        const double* values = values_.data();
        for (const RunOfPixels& run : runs_) {
            visit(values, run.length, run.x, run.y);
            values += run.length;
        }
    }

private:
    struct RunOfPixels {
        int32_t x, y;
        size_t length;
    };
    int32_t step_;
    std::vector<RunOfPixels> runs_;
    std::vector<double> values_;
};

// Caps whose rim lies in the region: among circles of a few radii about a grid of centres, those that explain most when
// height and base follow by linear regression. They only serve as starts; they cost some hundred sums over few points.
class RimScan {
public:
    RimScan(const ThinnedPixels& pixels, const Place& place) {
        std::array<double, 9> matrix = {};
        std::array<double, 3> right = {};
        pixels.ForEachRun([&](const double* run, size_t n, int32_t x, int32_t y) {
            for (size_t k = 0; k < n; ++k) {
                const double column = x + pixels.step() * static_cast<double>(k);
                const Sample sample = {(column - place.xMiddle) / place.length, (y - place.yMiddle) / place.length,
                                       run[k] - place.z};
                const std::array<double, 3> base = {1, sample.x, sample.y};
                for (size_t i = 0; i < 3; ++i) {
                    right[i] += base[i] * sample.z;
                    for (size_t j = 0; j < 3; ++j) matrix[i * 3 + j] += base[i] * base[j];
                }
                xMost_ = std::max(xMost_, std::fabs(sample.x));
                yMost_ = std::max(yMost_, std::fabs(sample.y));
                samples_.push_back(sample);
            }
        });
        lu_.emplace(matrix, 3);
        std::array<double, 3> plane;
        lu_->Solve(right, plane);
        for (Sample& sample : samples_) sample.z -= plane[0] + plane[1] * sample.x + plane[2] * sample.y;
    }

    // One start per radius.
    std::vector<Vector> Starts() const {
        std::vector<Vector> starts;
        for (const double radius : {0.3, 0.45, 0.65, 0.95, 1.35}) {
            const double q = 1 / (radius * radius), apart = 0.7 * radius;
            const auto columns = static_cast<int>(xMost_ / apart), rows = static_cast<int>(yMost_ / apart);
            Vector start = {};
            start[kQ] = q, start[kC] = 1;
            double most = -1;
            for (int j = -rows; j <= rows; ++j)
                for (int i = -columns; i <= columns; ++i) {
                    const double explained = Explained(apart * i, apart * j, q);
                    if (!(explained > most)) continue;
                    most = explained;
                    start[kA] = apart * i, start[kB] = apart * j;
                }
            starts.push_back(start);
        }
        return starts;
    }

private:
    struct Sample {
        double x, y, z;  // z minus the fitted plane
    };

    // The reduction by the cap of the sum of squares that the plane leaves.
    double Explained(double a, double b, double q) const {
        double phiZ = 0, phiPhi = 0;
        std::array<double, 3> onBase = {}, share;
        for (const auto& [x, y, z] : samples_) {
            const double s = (x - a) * (x - a) + (y - b) * (y - b), square = 1 - q * s;
            const double phi = square > 0 ? s / (1 + std::sqrt(square)) : 1 / q;
            phiZ += phi * z;
            phiPhi += phi * phi;
            onBase[0] += phi, onBase[1] += phi * x, onBase[2] += phi * y;
        }
        lu_->Solve(onBase, share);
        double rest = phiPhi;
        for (size_t i = 0; i < 3; ++i) rest -= share[i] * onBase[i];
        return rest > 1e-9 * phiPhi ? phiZ * phiZ / rest : 0;
    }

    std::vector<Sample> samples_;
    std::optional<LuDecomposition> lu_;  // for the plane
    double xMost_ = 0, yMost_ = 0;
};

Vector StartFrom(const Hemisphere& hemisphere, const Place& place) {
    Vector p = {};
    p[kA] = (hemisphere.xCenter - place.xMiddle) / place.length;
    p[kB] = (hemisphere.yCenter - place.yMiddle) / place.length;
    p[kQ] = place.length * place.length / (hemisphere.radius * hemisphere.radius);
    p[kC] = p[kQ] * hemisphere.radius / hemisphere.zScale;
    p[kE] = hemisphere.zCenter - place.z + p[kC] / p[kQ];
    return p;
}

// The start from which a few steps on the few pixels get farthest.
Vector BestRim(const ThinnedPixels& pixels, const Place& place, double deviation) {
    std::optional<Descent> best;
    for (const Vector& start : RimScan(pixels, place).Starts()) {
        const Descent descent = Refine(pixels, place, deviation, start, 12);
        if (!best || descent.squares < best->squares) best = descent;
    }
    return best->p;
}

// The smallest of the sums that the ends lead to: that of the best one, and of any other that is nearly as good and
// distinct.
template <class Source>
Vector BestOf(const Source& source, const Place& place, double deviation, const std::vector<Vector>& from) {
    std::vector<Descent> ends;
    for (const Vector& p : from) ends.push_back({p, SumsOf(source, place, p).squares});
    const auto least = [](const Descent& a, const Descent& b) { return a.squares < b.squares; };
    std::sort(ends.begin(), ends.end(), least);
    std::optional<Descent> best;
    for (const Descent& end : ends) {
        constexpr double kNearly = 1.1, kSame = 0.02;
        const bool same = std::fabs(end.p[kQ] - ends.front().p[kQ]) <= kSame * ends.front().p[kQ];
        if (best && (same || !(end.squares <= kNearly * ends.front().squares))) continue;
        const Descent descent = Refine(source, place, deviation, end.p, 40);
        if (!best || descent.squares < best->squares) best = descent;
    }
    return best->p;
}

// The smallest of the sums that the starts lead to. In a large region they are followed on a few of its pixels, and the
// best continues on more of them, at last on all.
template <class Source>
Vector Search(const Source& source, const Place& place, double deviation, const std::vector<Vector>& starts) {
    if (source.count() <= kThin) {
        const double exact = 1e-24 * deviation * deviation * static_cast<double>(source.count());
        std::optional<Descent> best;
        for (const Vector& start : starts) {
            const Descent end = Refine(source, place, deviation, start, 200);
            if (!best || end.squares < best->squares) best = end;
            if (end.squares <= exact) return end.p;
        }
        return best->p;
    }
    const ThinnedPixels thin(source, kThin);
    std::vector<Vector> ends;
    for (const Vector& start : starts) ends.push_back(Refine(thin, place, deviation, start, 60).p);
    if (source.count() < 4 * kFew) return BestOf(source, place, deviation, ends);
    return Refine(source, place, deviation, BestOf(ThinnedPixels(source, kFew), place, deviation, ends), 40).p;
}

template <class Source>
Place PlaceOf(const Source& source, double average) {
    int32_t left = std::numeric_limits<int32_t>::max(), right = 0, top = left, bottom = 0;
    source.ForEachRun([&](const typename Source::Pixel*, size_t n, int32_t x, int32_t y) {
        left = std::min(left, x);
        right = std::max(right, x + static_cast<int32_t>(n - 1));
        top = std::min(top, y);
        bottom = std::max(bottom, y);
    });
    return {std::floor((double{1} * left + right) / 2), std::floor((double{1} * top + bottom) / 2),
            0.5 * std::max(double{1} * right - left, double{1} * bottom - top), average};
}

bool AllFinite(const Hemisphere& h) {
    return std::isfinite(h.xCenter + h.yCenter + h.zCenter + h.zScale + h.radius + h.alpha + h.beta);
}

std::optional<Hemisphere> InPixels(const Place& place, const Vector& p) {
    Hemisphere hemisphere;
    hemisphere.xCenter = place.xMiddle + place.length * p[kA];
    hemisphere.yCenter = place.yMiddle + place.length * p[kB];
    hemisphere.zCenter = place.z + (p[kE] - p[kC] / p[kQ] + p[kGx] * p[kA] + p[kGy] * p[kB]);
    hemisphere.radius = place.length / std::sqrt(p[kQ]);
    hemisphere.zScale = p[kQ] * hemisphere.radius / p[kC];
    const double angleOf = std::fabs(hemisphere.zScale) / place.length;
    hemisphere.alpha = ArcTangent(p[kGx] * angleOf);
    hemisphere.beta = ArcTangent(p[kGy] * angleOf);
    if (!AllFinite(hemisphere)) return std::nullopt;
    return hemisphere;
}

}  // namespace

template <class Source>
std::optional<Hemisphere> FitAngledHemisphere(const Source& source, double average) {
    if (source.count() < static_cast<int64_t>(kUnknowns)) return std::nullopt;
    const std::optional<AlgebraicFit> algebraic = AlgebraicHemisphere(source, average);
    if (!algebraic) return std::nullopt;
    const Place place = PlaceOf(source, average);
    const double deviation = std::sqrt(algebraic->squares / static_cast<double>(source.count()));

    std::vector<Vector> starts;
    const Hemisphere& level = algebraic->hemisphere;
    if (std::isfinite(level.radius) && level.zScale != 0) starts.push_back(StartFrom(level, place));
    Vector outside = {};
    outside[kQ] = 0.2, outside[kC] = 1;
    starts.push_back(outside);
    starts.push_back(BestRim(ThinnedPixels(source, kScanned), place, deviation));
    return InPixels(place, Search(source, place, deviation, starts));
}

std::optional<Hemisphere> AngledHemisphereThrough(std::span<const SurfacePoint> points, double average) {
    const PointRuns runs(points);
    if (points.size() < kUnknowns) return std::nullopt;
    const std::optional<AlgebraicFit> algebraic = AlgebraicHemisphere(runs, average);
    if (!algebraic || !AllFinite(algebraic->hemisphere) || algebraic->hemisphere.zScale == 0) return std::nullopt;
    const Place place = PlaceOf(runs, average);
    const double deviation = std::sqrt(algebraic->squares / static_cast<double>(points.size()));
    return InPixels(place, Refine(runs, place, deviation, StartFrom(algebraic->hemisphere, place), 200).p);
}

template std::optional<Hemisphere> FitAngledHemisphere(const RegionPixels<uint8_t>&, double);
template std::optional<Hemisphere> FitAngledHemisphere(const RegionPixels<uint16_t>&, double);
template std::optional<Hemisphere> FitAngledHemisphere(const RegionPixels<uint32_t>&, double);
template std::optional<Hemisphere> FitAngledHemisphere(const RegionPixels<float>&, double);
template std::optional<Hemisphere> FitAngledHemisphere(const PointRuns&, double);

}  // namespace orlix
