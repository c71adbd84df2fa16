#include "process/surface_polynomial.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

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
