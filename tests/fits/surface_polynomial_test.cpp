#include "fits/surface_polynomial.hpp"

#include "support/testing.hpp"

namespace orlix {
namespace {

// 7 + 2y - 3x + y^2 - 2xy + x^2/2 + y^3/4 - x y^2 + 2x^2 y - x^3/8
constexpr double kCubic[10] = {7, 2, -3, 1, -2, 0.5, 0.25, -1, 2, -0.125};

double At(const double* k, double x, double y) {
    double sum = 0;
    for (int p = 0; p <= 3; ++p)
        for (int q = 0; p + q <= 3; ++q) sum += k[MonomialIndex(p, q)] * std::pow(x, p) * std::pow(y, q);
    return sum;
}

TEST(SurfaceFrame, KeepsPixelsWithinOne) {
    const SurfaceFrame frame(600, 440, 619, 454);  // 19 by 14: scaled by 32 and 16
    EXPECT_EQ(-19.0 / 32, frame.u(600));
    EXPECT_EQ(19.0 / 32, frame.u(619));
    EXPECT_EQ(14.0 / 16, frame.v(454));
    EXPECT_EQ(0.0, SurfaceFrame(3, 5, 3, 5).u(3));
}

TEST(PolynomialThrough, PointsInGeneralPositionGivesItsCoefficientsExactly) {
    const int32_t at[10][2] = {{600, 440}, {619, 454}, {610, 450}, {601, 454}, {618, 441},
                               {605, 447}, {611, 443}, {603, 442}, {616, 449}, {607, 453}};
    for (const int degree : {1, 2, 3}) {
        double k[10] = {};
        for (size_t i = 0; i < NumberOfMonomials(degree); ++i) k[i] = kCubic[i];
        std::vector<SurfacePoint> points;
        double sum = 0;
        for (size_t i = 0; i < NumberOfMonomials(degree); ++i) {
            points.push_back({at[i][0], at[i][1], At(k, at[i][0], at[i][1])});
            sum += points.back().z;
        }
        const SurfacePolynomial surface = PolynomialThrough(degree, SurfaceFrame(600, 440, 619, 454), points);
        for (size_t i = 0; i < 10; ++i) EXPECT_EQ(k[i], surface.k[i]) << degree << " " << i;
        EXPECT_DOUBLE_EQ(sum / static_cast<double>(points.size()), surface.average);
    }
}

// On a line only the slope along it is known; across it the shortest solution has none.
TEST(PolynomialThrough, DegeneratePointsGivesTheShortestSolution) {
    const SurfaceFrame frame(0, 0, 8, 8);
    const SurfacePolynomial diagonal =
        PolynomialThrough(1, frame, std::vector<SurfacePoint>{{0, 0, 10}, {4, 4, 14}, {8, 8, 18}});
    EXPECT_NEAR(0.5, diagonal.k[1], 1e-15);
    EXPECT_NEAR(0.5, diagonal.k[2], 1e-15);
    EXPECT_NEAR(10, diagonal.k[0], 1e-14);
    const SurfacePolynomial thrice = PolynomialThrough(1, frame, std::vector<SurfacePoint>(3, {4, 4, 5}));
    EXPECT_NEAR(5, thrice.k[0], 1e-14);
    EXPECT_EQ(0, thrice.k[1]);
    EXPECT_EQ(0, thrice.k[2]);
}

TEST(ShortestPolynomial, OfPixelsWorkedOutByHand) {
    const SurfacePolynomial two = ShortestPolynomial(1, std::vector<SurfacePoint>{{3, 0, 12}, {2, 1, 200}});
    EXPECT_DOUBLE_EQ(-152.0 / 11, two.k[2]);
    EXPECT_DOUBLE_EQ(1916.0 / 11, two.k[1]);
    EXPECT_DOUBLE_EQ(588.0 / 11, two.k[0]);
    EXPECT_EQ(106, two.average);
    // One pixel: its monomials, scaled.
    for (const int32_t at : {4, 1000000, 2147483647})
        for (const int degree : {1, 2, 3}) {
            const SurfacePolynomial one = ShortestPolynomial(degree, std::vector<SurfacePoint>{{at, 3, 40.7}});
            std::array<long double, 10> monomials = {};
            long double square = 0;
            for (int p = 0; p <= degree; ++p)
                for (int q = 0; p + q <= degree; ++q) {
                    const long double m = std::pow(static_cast<long double>(at), p) * std::pow(3.0L, q);
                    monomials[MonomialIndex(p, q)] = m;
                    square += m * m;
                }
            for (size_t i = 0; i < 10; ++i)
                EXPECT_DOUBLE_EQ(static_cast<double>(monomials[i] * 40.7 / square), one.k[i]) << at << " " << degree;
        }
}

// Pixels beside each other fix the slope along x; what is left of the heights is beta y + gamma.
TEST(ShortestPolynomial, KeepsItsDigitsFarFromTheOrigin) {
    for (const int32_t x : {0, 600, 1000000, 2147483646})
        for (const int32_t y : {0, 5, 40000}) {
            const SurfacePolynomial plane =
                ShortestPolynomial(1, std::vector<SurfacePoint>{{x, y, 100}, {x + 1, y, 107.25}});
            const long double rest = 100 - 7.25L * x, ySquare = 1 + static_cast<long double>(y) * y;
            EXPECT_EQ(7.25, plane.k[2]);
            EXPECT_DOUBLE_EQ(static_cast<double>(rest * y / ySquare), plane.k[1]) << x << " " << y;
            EXPECT_DOUBLE_EQ(static_cast<double>(rest / ySquare), plane.k[0]) << x << " " << y;
        }
}

// 3 x 3 pixels do not determine a cubic, and are yet too many for one: all but the part of z that goes like
// (1, -2, 1) along x and y. Shortest means at right angles to (x - 5)(x - 6)(x - 7) and the same in y.
TEST(ShortestPolynomial, OfASquareOfNineLeavesWhatACubicCannotHold) {
    const double z[3][3] = {{1, 2, 3}, {4, 5, 9}, {7, 8, 20}}, pattern[3] = {1, -2, 1};
    std::vector<SurfacePoint> points;
    double share = 0;
    for (int j = 0; j < 3; ++j)
        for (int i = 0; i < 3; ++i) {
            points.push_back({5 + i, 5 + j, z[j][i]});
            share += pattern[j] * pattern[i] * z[j][i] / 36;
        }
    const auto k = ShortestPolynomial(3, points).k;
    for (int j = 0; j < 3; ++j)
        for (int i = 0; i < 3; ++i)
            EXPECT_NEAR(z[j][i] - share * pattern[j] * pattern[i], At(k.data(), 5 + i, 5 + j), 1e-11);
    EXPECT_NEAR(0, k[9] - 18 * k[5] + 107 * k[2] - 210 * k[0], 1e-10);
    EXPECT_NEAR(0, k[6] - 18 * k[3] + 107 * k[1] - 210 * k[0], 1e-10);
}

TEST(SurfacePolynomial, KnowsWhetherItIsFinite) {
    SurfacePolynomial surface;
    EXPECT_TRUE(surface.finite());
    surface.k[9] = std::nan("");
    EXPECT_FALSE(surface.finite());
    surface.k[9] = 0;
    surface.average = HUGE_VAL;
    EXPECT_FALSE(surface.finite());
}

}  // namespace
}  // namespace orlix
