#include "fits/robust_fit.hpp"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <vector>

#include "fits/angled_hemisphere_fit.hpp"
#include "fits/correction_kernels.hpp"
#include "fits/hemisphere_fit.hpp"
#include "fits/trimmed_score.hpp"
#include "measure/measuring.hpp"
#include "numerics/consensus_search.hpp"

namespace orlix {
namespace {

class PolynomialSurface {
public:
    explicit PolynomialSurface(const SurfacePolynomial& polynomial) : polynomial_(polynomial), row_(Choose(kShifts)) {}

    const SurfacePolynomial& polynomial() const { return polynomial_; }

    RowPolynomial Row(int32_t y) const {
        const auto& k = polynomial_.k;
        const double v = y;
        return {{k[0] + v * (k[1] + v * (k[3] + v * k[6])), k[2] + v * (k[4] + v * k[7]), k[5] + v * k[8], k[9]}};
    }
    void Values(int32_t x, int32_t y, size_t n, double* values) const { row_(values, n, x, Row(y)); }

private:
    SurfacePolynomial polynomial_;
    ShiftsFn row_;
};

using Points = std::span<const SurfacePoint>;

// See robust_fit.hpp note (4).
constexpr SearchBudget kBudget = {SearchBudget::Lasts::WholeSearch, int64_t{1} << 35, 32768};

template <class Surface, class T>
std::optional<Surface> Search(const RegionPixels<T>& pixels, int points, double probability,
                              const std::function<std::optional<Surface>(Points)>& through) {
    const int64_t n = pixels.count();
    if (n < points) return std::nullopt;
    const double p = UsableProbability(probability);
    TrimmedScore<T, Surface> score(pixels, static_cast<int64_t>(static_cast<double>(n) * p));
    ConsensusSearch search(n, p, points, kBudget);
    std::vector<int64_t> indices(static_cast<size_t>(points));
    std::vector<SurfacePoint> drawn(indices.size());
    while (!score.Perfect() && search.Draw(indices)) {
        std::transform(indices.begin(), indices.end(), drawn.begin(), [&](int64_t index) { return pixels.At(index); });
        if (!std::all_of(drawn.begin(), drawn.end(), [](const auto& point) { return std::isfinite(point.z); }))
            continue;
        const std::optional<Surface> surface = through(drawn);
        const int64_t before = score.visits();
        if (surface && score.Improves(*surface)) search.Improved();
        search.Spend(score.visits() - before);
    }
    return score.best();
}

template <class T>
double AverageOf(const RegionPixels<T>& pixels) {
    Measurer<T> measurer(false, true);
    pixels.ForEachRun([&](const T* run, size_t n, int32_t x, int32_t y) { measurer(run, n, x, y); });
    const double average = measurer.Finish().average;
    if (std::isfinite(average)) return average;
    double sum = 0, count = 0;
    pixels.ForEachRun([&](const T* run, size_t n, int32_t, int32_t) {
        double part = 0;
        for (size_t i = 0; i < n; ++i) {
            const auto z = static_cast<double>(run[i]);
            if (!std::isfinite(z)) continue;
            part += z;
            ++count;
        }
        sum += part;
    });
    return sum / count;
}

}  // namespace

template <class T>
std::optional<SurfacePolynomial> RobustPolynomial(const RegionPixels<T>& pixels, int degree, double probability) {
    if (pixels.count() == 0) return std::nullopt;
    int32_t left = std::numeric_limits<int32_t>::max(), right = 0, top = left, bottom = 0;
    pixels.ForEachRun([&](const T*, size_t n, int32_t x, int32_t y) {
        left = std::min(left, x);
        right = std::max(right, x + static_cast<int32_t>(n - 1));
        top = std::min(top, y);
        bottom = y;
    });
    const SurfaceFrame frame(left, top, right, bottom);
    const std::optional<PolynomialSurface> best =
        Search<PolynomialSurface>(pixels, static_cast<int>(NumberOfMonomials(degree)), probability,
                                  [&](Points points) -> std::optional<PolynomialSurface> {
                                      const SurfacePolynomial polynomial = PolynomialThrough(degree, frame, points);
                                      for (const double k : polynomial.k)
                                          if (!std::isfinite(k)) return std::nullopt;
                                      return PolynomialSurface(polynomial);
                                  });
    if (!best) return std::nullopt;
    SurfacePolynomial polynomial = best->polynomial();
    polynomial.average = AverageOf(pixels);
    return polynomial;
}

template <class T>
std::optional<AveragedHemisphere> RobustHemisphere(const RegionPixels<T>& pixels, bool angled, double probability) {
    const std::optional<HemisphereSurface> best = Search<HemisphereSurface>(
        pixels, angled ? 7 : 5, probability, [&](Points points) -> std::optional<HemisphereSurface> {
            double sum = 0;
            for (const SurfacePoint& point : points) sum += point.z;
            const double average = sum / static_cast<double>(points.size());
            const auto hemisphere =
                angled ? AngledHemisphereThrough(points, average) : FitHemisphere(PointRuns(points), average);
            if (!hemisphere) return std::nullopt;
            return HemisphereSurface(*hemisphere);
        });
    if (!best) return std::nullopt;
    return AveragedHemisphere{best->hemisphere(), AverageOf(pixels)};
}

template std::optional<SurfacePolynomial> RobustPolynomial(const RegionPixels<uint8_t>&, int, double);
template std::optional<SurfacePolynomial> RobustPolynomial(const RegionPixels<uint16_t>&, int, double);
template std::optional<SurfacePolynomial> RobustPolynomial(const RegionPixels<uint32_t>&, int, double);
template std::optional<SurfacePolynomial> RobustPolynomial(const RegionPixels<float>&, int, double);
template std::optional<AveragedHemisphere> RobustHemisphere(const RegionPixels<uint8_t>&, bool, double);
template std::optional<AveragedHemisphere> RobustHemisphere(const RegionPixels<uint16_t>&, bool, double);
template std::optional<AveragedHemisphere> RobustHemisphere(const RegionPixels<uint32_t>&, bool, double);
template std::optional<AveragedHemisphere> RobustHemisphere(const RegionPixels<float>&, bool, double);

}  // namespace orlix
