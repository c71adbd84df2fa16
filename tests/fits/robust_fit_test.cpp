#include "fits/robust_fit.hpp"

#include "fits/angled_hemisphere_fit.hpp"
#include "fits/correction_kernels.hpp"
#include "fits/hemisphere_fit.hpp"
#include "numerics/consensus_search.hpp"
#include "numerics/exact_accumulator.hpp"
#include "support/region_picture.hpp"
#include "support/special_numbers.hpp"
#include "support/testing.hpp"

namespace orlix {
namespace {

// ------------------------------------------------------------------------------------------- the search, the plain way
// One buffer of squares, sorted; the sums of the K smallest compared exactly.

using Values = std::function<double(const SurfacePoint&)>;
struct Trial {
    Values values;
    std::array<double, 10> result;
};

std::optional<std::array<double, 10>> PlainSearch(
    const std::vector<SurfacePoint>& all, size_t k, double probability,
    const std::function<std::optional<Trial>(std::span<const SurfacePoint>)>& through) {
    const size_t n = all.size();
    if (n < k) return std::nullopt;
    const double p = UsableProbability(probability), limit = TrialLimit(p, static_cast<int>(k));
    const auto good = static_cast<size_t>(static_cast<double>(n) * p);
    UniformGenerator random(-1);
    std::optional<std::array<double, 10>> best;
    std::vector<double> bestSquares, squares(n);
    double counter = 0;
    while (counter < limit) {
        std::vector<SurfacePoint> drawn;
        for (size_t i = 0; i < k; ++i) drawn.push_back(all[static_cast<size_t>(random() * static_cast<double>(n))]);
        bool improved = false;
        const bool finite = std::all_of(drawn.begin(), drawn.end(), [](auto& point) { return std::isfinite(point.z); });
        const std::optional<Trial> trial = finite ? through(drawn) : std::nullopt;
        if (trial) {
            for (size_t i = 0; i < n; ++i) {
                const double r = trial->values(all[i]) - all[i].z;
                squares[i] = std::isnan(r * r) ? kInfinity : r * r;
            }
            std::sort(squares.begin(), squares.end());
            if (good == 0 || squares[good - 1] < kInfinity) {
                improved = !best;
                if (best) {
                    ExactAccumulator sum, least;
                    for (size_t i = 0; i < good; ++i) {
                        sum.Add(squares[i]);
                        least.Add(bestSquares[i]);
                    }
                    improved = sum < least;
                }
            }
            if (improved) {
                best = trial->result;
                bestSquares = squares;
            }
        }
        counter = improved ? 0 : counter + 1;
    }
    return best;
}

template <class T>
std::optional<std::array<double, 10>> PlainPolynomial(const RegionPixels<T>& region, int degree, double probability) {
    const std::vector<SurfacePoint> all = PointsOf(region);
    if (all.empty()) return std::nullopt;
    int32_t left = all[0].x, right = left;
    for (const SurfacePoint& point : all) {
        left = std::min(left, point.x);
        right = std::max(right, point.x);
    }
    const SurfaceFrame frame(left, all.front().y, right, all.back().y);
    return PlainSearch(all, NumberOfMonomials(degree), probability, [&](std::span<const SurfacePoint> drawn) {
        const auto k = PolynomialThrough(degree, frame, drawn).k;
        const auto values = [=](const SurfacePoint& at) {
            const double x = at.x, y = at.y;
            return k[0] + y * (k[1] + y * (k[3] + y * k[6])) +
                   x * (k[2] + y * (k[4] + y * k[7]) + x * (k[5] + y * k[8] + x * k[9]));
        };
        return std::optional<Trial>(Trial{values, k});
    });
}

std::array<double, 10> ArrayOf(const Hemisphere& h) {
    return {h.xCenter, h.yCenter, h.zCenter, h.zScale, h.radius, h.alpha, h.beta};
}

template <class T>
std::optional<std::array<double, 10>> PlainHemisphere(const RegionPixels<T>& region, bool angled, double probability) {
    return PlainSearch(PointsOf(region), angled ? 7 : 5, probability,
                       [&](std::span<const SurfacePoint> drawn) -> std::optional<Trial> {
                           const double average = AverageOf({drawn.begin(), drawn.end()});
                           const PointRuns runs(drawn);
                           const auto h =
                               angled ? AngledHemisphereThrough(drawn, average) : FitHemisphere(runs, average);
                           if (!h) return std::nullopt;
                           const HemisphereSurface surface(*h);
                           const auto values = [=](const SurfacePoint& at) {
                               double value = 0;
                               surface.Values(at.x, at.y, 1, &value);
                               return value;
                           };
                           return Trial{values, ArrayOf(*h)};
                       });
}

template <class T>
void ExpectPlainResult(const RegionPixels<T>& region, double probability, const char* what) {
    SCOPED_TRACE(testing::Message() << what << " " << probability << ", " << region.count() << " pixels");
    using Result = std::optional<std::array<double, 10>>;
    for (int degree = 1; degree <= (probability < 0.6 ? 2 : 3); ++degree) {
        const auto got = RobustPolynomial(region, degree, probability);
        EXPECT_EQ(PlainPolynomial(region, degree, probability), got ? Result(got->k) : std::nullopt) << degree;
    }
    for (const bool angled : {false, true}) {
        const auto got = RobustHemisphere(region, angled, probability);
        EXPECT_EQ(PlainHemisphere(region, angled, probability), got ? Result(ArrayOf(got->hemisphere)) : std::nullopt)
            << angled;
    }
}

template <class T>
void ExpectPlainResults(int32_t width, int32_t height, double probability) {
    NormalNoise noise(static_cast<uint32_t>(width * 1000 + height));
    const auto bad = [&](double share, double good) { return noise.Uniform() < share ? 250 * noise.Uniform() : good; };
    const double level = sizeof(T) == 1 ? 1 : 100;
    const auto check = [&](const char* what, const auto& heightAt) {
        const RegionPicture<T> picture(width, height, heightAt);
        ExpectPlainResult(picture.region(), probability, what);
    };
    check("noisy plane", [&](int x, int y) { return level * bad(0.2, 40 + 0.5 * x + 0.3 * y + 2 * noise()); });
    check("whole plane", [&](int x, int y) { return level * bad(0.2, 10.0 + x + 2 * y); });
    check("two levels", [&](int, int) { return level * (noise.Uniform() < 0.5 ? 10 : 11); });
    check("cap", [&](int x, int y) {
        const double dx = x - width / 2.0, dy = y - height / 2.0;
        return level * bad(0.1, 20 + std::sqrt(std::max(0.0, 900.0 - dx * dx - dy * dy)) * 3);
    });
    if constexpr (std::is_same_v<T, float>)
        check("with NaN", [&](int x, int y) { return bad(0.1, noise.Uniform() < 0.1 ? kNaN : 0.1 * x - 0.2 * y); });
}

TEST(RobustFit, EqualsThePlainSearch) {
    ExpectPlainResults<uint8_t>(7, 5, 0.5);
    ExpectPlainResults<uint16_t>(20, 13, 0.7);
    ExpectPlainResults<uint32_t>(11, 1, 0.8);
    ExpectPlainResults<float>(3, 20, 0.8);
    ExpectPlainResults<float>(50, 40, 0.9);
    ExpectPlainResults<uint8_t>(70, 61, 0.9);
    for (const int32_t few : {1, 2, 3, 5, 7, 9, 10}) ExpectPlainResults<uint8_t>(few, 1, 0.7);
}

TEST(RobustFit, SmallProbabilitiesEnd) {
    const RegionPicture<uint8_t> picture(300, 200, [](int x, int y) { return (x * 7 + y * 13) % 251; });
    for (const double p : {1e-300, 5e-324, 1e-6}) {  // K = 0: the first surface wins
        EXPECT_TRUE(RobustPolynomial(picture.region(), 1, p));
        EXPECT_TRUE(RobustPolynomial(picture.region(), 3, p));
        EXPECT_TRUE(RobustHemisphere(picture.region(), false, p));
        EXPECT_TRUE(RobustHemisphere(picture.region(), true, p));
    }
    EXPECT_TRUE(RobustPolynomial(picture.region(), 1, 3 / 60000.0));  // K = 3: three pixels are met exactly
}

TEST(RobustFit, NoFinitePixelGivesNoSurface) {
    const RegionPicture<float> nothing(20, 20, [](int x, int) { return x % 2 ? kNaN : kInfinity; });
    EXPECT_FALSE(RobustPolynomial(nothing.region(), 1, 0.9));
    EXPECT_FALSE(RobustHemisphere(nothing.region(), false, 0.9));
    // Too few finite ones for K.
    RegionPicture<float> half(20, 20, [](int x, int y) { return x < 10 ? x + 2 * y : kNaN; });
    EXPECT_FALSE(RobustPolynomial(half.region(), 1, 0.6));
    const auto fit = RobustPolynomial(half.region(), 1, 0.4);
    ASSERT_TRUE(fit);
    EXPECT_EQ(1, fit->k[2]);
    EXPECT_EQ(2, fit->k[1]);
    EXPECT_EQ(4.5 + 19, fit->average);
    half.at(3, 3) = std::numeric_limits<float>::infinity();
    EXPECT_EQ(fit->k, RobustPolynomial(half.region(), 1, 0.4)->k);
}

TEST(RobustFit, PixelsAreCountedInRunOrder) {
    ForeignRegion region;
    region.box = {0, 2, 99, 6};
    region.rows[2] = {MakeRun(5, 5), MakeRun(10, 12)};
    region.rows[4] = {MakeRun(0, 1)};
    region.rows[6] = {MakeRun(98, 200)};
    const RegionPicture<uint8_t> picture(
        100, 10, [](int x, int y) { return x + y; }, &region);
    const RegionPixels<uint8_t> pixels = picture.region();
    constexpr int kWant[][2] = {{5, 2}, {10, 2}, {11, 2}, {12, 2}, {0, 4}, {1, 4}, {98, 6}, {99, 6}};
    ASSERT_EQ(8, pixels.count());
    for (int64_t i = 0; i < 8; ++i) {
        EXPECT_EQ(kWant[i][0], pixels.At(i).x);
        EXPECT_EQ(kWant[i][1], pixels.At(i).y);
        EXPECT_EQ(kWant[i][0] + kWant[i][1], pixels.At(i).z);
    }
    ExpectPlainResult(pixels, 0.8, "region");
}

}  // namespace
}  // namespace orlix
