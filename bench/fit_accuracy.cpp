// Measures the figures in docs/accuracy.md for hemisphere fits and robust fits: synthetic surfaces, rounded to whole
// grey levels unless stated otherwise, with normal noise from fixed seeds, compared with the truth. Prints tables;
// takes several minutes.
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "fits/angled_hemisphere_fit.hpp"
#include "fits/hemisphere_fit.hpp"
#include "fits/robust_fit.hpp"
#include "fits/surface_fit.hpp"

namespace orlix {
namespace {

class Noise {
public:
    explicit Noise(uint32_t seed) : random_(seed) {}
    double Uniform() { return (static_cast<double>(random_()) + 0.5) / 4294967296.0; }
    double Normal() {  // polar method, Marsaglia 1964
        for (;;) {
            const double u = 2 * Uniform() - 1, v = 2 * Uniform() - 1, s = u * u + v * v;
            if (s > 0 && s < 1) return u * std::sqrt(-2 * std::log(s) / s);
        }
    }

private:
    std::mt19937 random_;
};

double At(const HemisphereSurface& surface, int32_t x, int32_t y) {
    double z = 0;
    surface.Values(x, y, 1, &z);
    return z;
}

double AverageOf(const std::vector<SurfacePoint>& points) {
    double sum = 0;
    for (const SurfacePoint& point : points) sum += point.z;
    return sum / static_cast<double>(points.size());
}

double RmsOf(const std::vector<SurfacePoint>& points, const Hemisphere& hemisphere) {
    const HemisphereSurface surface(hemisphere);
    double squares = 0;
    for (const SurfacePoint& point : points) squares += std::pow(At(surface, point.x, point.y) - point.z, 2);
    return std::sqrt(squares / static_cast<double>(points.size()));
}

// A cap in a rectangle, or in the circle that touches its longer sides. Radius and offset of the centre are in units of
// a, the distance of the region's outermost pixels from its middle; tilt (along both axes) is in depths per a.
struct Cap {
    bool circle = false;
    int32_t width = 100, height = 75;
    double radius = 2.5, depth = 30, noise = 0, off = 0, tilt = 0;
    bool rounded = true;
};

struct Sampled {
    Hemisphere truth;
    std::vector<SurfacePoint> points;
};

Sampled Sample(const Cap& cap, uint32_t seed) {
    Noise noise(seed);
    const double a = cap.circle ? std::min(cap.width, cap.height) / 2.0 : std::hypot(cap.width, cap.height) / 2;
    const double r = cap.radius * a, xMiddle = (cap.width - 1) / 2.0, yMiddle = (cap.height - 1) / 2.0;
    const double scale = (r - std::sqrt(std::max(0.0, r * r - a * a))) / cap.depth;
    const double slope = std::atan(cap.tilt * cap.depth / a * scale);
    Sampled sampled{
        {xMiddle + cap.off * a, yMiddle - cap.off * a / 2, 150 - r / scale, scale, r, 0.8 * slope, 0.6 * slope}, {}};
    const HemisphereSurface surface(sampled.truth);
    for (int32_t y = 0; y < cap.height; ++y)
        for (int32_t x = 0; x < cap.width; ++x) {
            if (cap.circle && std::hypot(x - xMiddle, y - yMiddle) > a) continue;
            const double z = At(surface, x, y) + cap.noise * noise.Normal();
            sampled.points.push_back({x, y, cap.rounded ? std::floor(z + 0.5) : z});
        }
    return sampled;
}

// How often the tilted fit has a larger residual than the truth (by more than 0.1 %), and the scatter of its radius.
void TiltedFits() {
    std::puts(
        "Tilted fits: of each row 3 shapes, 2 tilts (0, 1), 2 offsets (0, 0.4), 2 noises (0.03, 0.1 of the depth)\n"
        "region     R/a   depth  worse than the truth, by at most");
    for (const bool circle : {false, true})
        for (const double radius : {0.3, 0.5, 0.8, 1.0, 1.2, 1.5, 2.5, 5.0, 10.0})
            for (const double depth : {5.0, 30.0}) {
                int worse = 0, fits = 0;
                double most = 0;
                for (const auto& [width, height] : {std::pair{60, 45}, {50, 50}, {70, 35}})
                    for (const double tilt : {0.0, 1.0})
                        for (const double off : {0.0, 0.4})
                            for (const double noise : {0.03, 0.1}) {
                                const Sampled s =
                                    Sample({circle, width, height, radius, depth, noise * depth, off, tilt}, 7);
                                const auto fit = FitAngledHemisphere(PointRuns(s.points), AverageOf(s.points));
                                const double excess =
                                    fit ? RmsOf(s.points, *fit) / RmsOf(s.points, s.truth) - 1 : HUGE_VAL;
                                ++fits;
                                if (excess > 0.001) ++worse;
                                most = std::max(most, excess);
                            }
                std::printf("%-9s %5.1f  %5.0f  %d of %d, %.1f %%\n", circle ? "circle" : "rectangle", radius, depth,
                            worse, fits, 100 * most);
            }
    std::puts("\nRadius of the tilted fit, level cap, rectangle 200 x 150, depth 30: mean and deviation of 8 fits");
    for (const double radius : {1.5, 2.5, 5.0})
        for (const double noise : {0.3, 1.0, 3.0}) {
            double sum = 0, squares = 0;
            constexpr int kFits = 8;
            for (uint32_t seed = 1; seed <= kFits; ++seed) {
                const Sampled s = Sample({false, 200, 150, radius, 30, noise}, seed);
                const auto fit = FitAngledHemisphere(PointRuns(s.points), AverageOf(s.points));
                const double off = fit->radius / s.truth.radius - 1;
                sum += off, squares += off * off;
            }
            const double mean = sum / kFits;
            std::printf("R/a %.1f, noise %.1f: %+.1f %% (%.1f)\n", radius, noise, 100 * mean,
                        100 * std::sqrt(squares / kFits - mean * mean));
        }
}

// The algebraic fit of level caps: curvature at the top, radius, z scale, and the error of the surface.
void AlgebraicFits() {
    std::puts(
        "\nAlgebraic fits of level caps, no rounding, R/a 1.5 to 5: curvature, surface off by (in s; rms, worst)");
    for (const bool circle : {true, false})
        for (const double noise : {1e-3, 0.01, 0.03, 0.1})
            for (const double radius : {1.5, 2.5, 5.0}) {
                const Sampled s = Sample({circle, 200, circle ? 200 : 150, radius, 30, noise * 30, 0, 0, false}, 3);
                const auto fit = FitHemisphere(PointRuns(s.points), AverageOf(s.points));
                if (!fit) continue;
                const HemisphereSurface got(*fit), want(s.truth);
                double squares = 0, worst = 0;
                for (const SurfacePoint& point : s.points) {
                    const double off = std::fabs(At(got, point.x, point.y) - At(want, point.x, point.y)) / (noise * 30);
                    squares += off * off;
                    worst = std::max(worst, off);
                }
                std::printf("%-9s s/h %-5g R/a %.1f: curvature %+6.1f %%, radius %+6.1f %%, off %.2f, %.2f\n",
                            circle ? "circle" : "rectangle", noise, radius,
                            100 * (s.truth.radius * s.truth.zScale / (fit->radius * fit->zScale) - 1),
                            100 * (fit->radius / s.truth.radius - 1),
                            std::sqrt(squares / static_cast<double>(s.points.size())), worst);
            }
}

// Robust and least-squares fits to 200 x 150 bytes, some of them bad: 10 to 90 levels too bright.
void RobustFits() {
    constexpr int32_t kWidth = 200, kHeight = 150;
    std::puts(
        "\nRobust fits, 200 x 150 bytes, P = 0.9 - outliers: surface off by rms, worst, of 4 (least squares in "
        "brackets)");
    std::vector<VPAEntry> table(kWidth);
    for (int32_t i = 0; i < kWidth; ++i) table[static_cast<size_t>(i)] = {i, i * kWidth};
    const RegionRows rows(nullptr, kWidth, kHeight);
    const auto surfaceAt = [](int kind, double x, double y) {
        const double u = (x - 100) / 100, v = (y - 75) / 75;
        if (kind == 1) return 90 + 15 * u - 10 * v;
        if (kind == 2) return 90 + 15 * u - 10 * v - 12 * u * u + 6 * u * v - 8 * v * v;
        if (kind == 3) return 90 + 15 * u - 10 * v - 12 * u * u + 6 * u * v - 8 * v * v + 7 * u * u * u - 5 * u * v * v;
        return 90 + (std::sqrt(187.5 * 187.5 - 10000 * u * u - 5625 * v * v) - 187.5) * 30 / 47.21 +
               (kind == 5 ? 8 * u : 0);
    };
    const char* names[] = {"", "plane", "biquadratic", "bicubic", "hemisphere", "tilted hemisphere"};
    for (int kind = 1; kind <= 5; ++kind)
        for (const double noise : {0.5, 3.0})
            for (const double outliers : {0.1, 0.3}) {
                if (kind >= 3 && outliers > 0.2) continue;
                double off[2] = {}, worst[2] = {};
                constexpr int kFits = 4;
                for (uint32_t seed = 1; seed <= kFits; ++seed) {
                    Noise random(seed);
                    std::vector<uint8_t> pixels;
                    for (int32_t y = 0; y < kHeight; ++y)
                        for (int32_t x = 0; x < kWidth; ++x) {
                            double z = surfaceAt(kind, x, y) + noise * random.Normal();
                            if (random.Uniform() < outliers) z += 10 + 80 * random.Uniform();
                            pixels.push_back(static_cast<uint8_t>(std::floor(z + 0.5)));
                        }
                    const RegionPixels<uint8_t> region(PixelView<uint8_t>(pixels.data(), table.data(), kWidth, kHeight),
                                                       rows);
                    double average = 0;
                    for (const uint8_t pixel : pixels) average += pixel;
                    average /= static_cast<double>(pixels.size());
                    for (const bool robust : {true, false}) {
                        std::vector<double> got;
                        const double p = 0.9 - outliers;
                        if (kind <= 3) {
                            SurfacePolynomial k;
                            if (robust) {
                                k = RobustPolynomial(region, kind, p).value_or(k);
                            } else {
                                SurfaceFitter<uint8_t> fitter(kind, rows, BoundsOf(rows));
                                region.ForEachRun(
                                    [&](const uint8_t* run, size_t n, int32_t x, int32_t y) { fitter(run, n, x, y); });
                                fitter.Finish(k);
                            }
                            for (int32_t y = 0; y < kHeight; ++y)
                                for (int32_t x = 0; x < kWidth; ++x) {
                                    double z = 0;
                                    for (int i = 0; i <= 3; ++i)
                                        for (int j = 0; i + j <= 3; ++j)
                                            z += k.k[MonomialIndex(i, j)] * std::pow(x, i) * std::pow(y, j);
                                    got.push_back(z);
                                }
                        } else {
                            std::optional<Hemisphere> h;
                            if (robust) {
                                if (const auto fit = RobustHemisphere(region, kind == 5, p)) h = fit->hemisphere;
                            } else {
                                h = kind == 5 ? FitAngledHemisphere(region, average) : FitHemisphere(region, average);
                            }
                            const HemisphereSurface surface(h.value_or(Hemisphere()));
                            for (int32_t y = 0; y < kHeight; ++y)
                                for (int32_t x = 0; x < kWidth; ++x) got.push_back(At(surface, x, y));
                        }
                        double squares = 0, most = 0;
                        for (size_t i = 0; i < got.size(); ++i) {
                            const auto x = static_cast<double>(i % kWidth), y = static_cast<double>(i / kWidth);
                            const double d = std::fabs(got[i] - surfaceAt(kind, x, y));
                            squares += d * d;
                            most = std::max(most, d);
                        }
                        off[robust ? 0 : 1] += std::sqrt(squares / static_cast<double>(got.size())) / kFits;
                        worst[robust ? 0 : 1] = std::max(worst[robust ? 0 : 1], most);
                    }
                }
                std::printf("%-17s noise %.1f, outliers %2.0f %%: %.2f, %.1f (%.2f, %.1f)\n", names[kind], noise,
                            100 * outliers, off[0], worst[0], off[1], worst[1]);
                std::fflush(stdout);
            }
}

}  // namespace
}  // namespace orlix

int main() {
    orlix::AlgebraicFits();
    orlix::TiltedFits();
    orlix::RobustFits();
}
