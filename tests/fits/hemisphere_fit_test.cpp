#include "fits/hemisphere_fit.hpp"

#include "fits/angled_hemisphere_fit.hpp"
#include "support/region_picture.hpp"
#include "support/special_numbers.hpp"
#include "support/testing.hpp"

namespace orlix {
namespace {

double HeightOf(const Hemisphere& hemisphere, int32_t x, int32_t y) {
    double z = 0;
    HemisphereSurface(hemisphere).Values(x, y, 1, &z);
    return z;
}

// The largest of: centre and radius off by so much of the radius, z scale by so much of itself, angles by so much.
double Error(const Hemisphere& truth, const Hemisphere& fit) {
    const double r = truth.radius;
    double error = 0;
    for (const double part : {(fit.xCenter - truth.xCenter) / r, (fit.yCenter - truth.yCenter) / r,
                              (fit.zCenter - truth.zCenter) * truth.zScale / r, fit.zScale / truth.zScale - 1,
                              fit.radius / r - 1, fit.alpha - truth.alpha, fit.beta - truth.beta})
        error = std::isnan(part) ? part : std::max(error, std::fabs(part));
    return error;
}

std::vector<SurfacePoint> PointsOn(const Hemisphere& truth, int32_t width, int32_t height) {
    std::vector<SurfacePoint> points;
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x)
            if (std::hypot(x - truth.xCenter, y - truth.yCenter) < 0.97 * truth.radius)
                points.push_back({x, y, HeightOf(truth, x, y)});
    return points;
}

TEST(HemisphereFit, RecoversCapsFromAnywhere) {
    const Hemisphere caps[] = {{100.3, 98.7, 20, 0.5, 80},   {100.3, 98.7, 20, -0.5, 80}, {100.3, 98.7, -1e6, 0.5, 1e4},
                               {100.3, 98.7, 1e5, -20, 500}, {-3000, 150, 20, 1e-3, 1e4}, {20, 30, 0, 1e6, 25},
                               {70, 70, 4e9, -0x1p-20, 65},  {70, 70, 6e4, -1.0 / 64, 65}};
    for (const Hemisphere& truth : caps) {
        const std::vector<SurfacePoint> points = PointsOn(truth, 200, 200);
        const auto fit = FitHemisphere(PointRuns(points), AverageOf(points));
        const auto angled = FitAngledHemisphere(PointRuns(points), AverageOf(points));
        ASSERT_TRUE(fit && angled);
        EXPECT_LT(std::max(Error(truth, *fit), Error(truth, *angled)), 1e-6) << truth.radius;
    }
    // Far away from the origin as well.
    std::vector<SurfacePoint> distant = PointsOn(caps[0], 200, 200);
    for (SurfacePoint& point : distant) point.x += 3000000, point.y += 2000000;
    const auto distantFit = FitHemisphere(PointRuns(distant), AverageOf(distant));
    ASSERT_TRUE(distantFit);
    EXPECT_LT(Error({3000100.3, 2000098.7, 20, 0.5, 80}, *distantFit), 1e-9);
    // Five points determine one.
    const Hemisphere truth{7, 9, 3, -0.25, 20};
    std::vector<SurfacePoint> five;
    for (const auto& [x, y] : {std::pair{0, 0}, {7, 9}, {15, 20}, {20, 3}, {3, 22}})
        five.push_back({x, y, HeightOf(truth, x, y)});
    const auto fit = FitHemisphere(PointRuns(five), AverageOf(five));
    ASSERT_TRUE(fit);
    EXPECT_LT(Error(truth, *fit), 1e-9);
}

// The stated minimum, looked for by hand: around the result no surface with the same a0 a1 leaves less.
TEST(HemisphereFit, IsTheMinimumOfTheStatedSum) {
    NormalNoise noise(3);
    std::vector<SurfacePoint> points = PointsOn({12, 14, 8, 0.5, 30}, 30, 30);
    for (SurfacePoint& point : points) point.z += noise();
    const auto fit = FitHemisphere(PointRuns(points), AverageOf(points));
    ASSERT_TRUE(fit);
    const double a1 = fit->zScale * fit->zScale;
    const long double a5 = fit->xCenter * fit->xCenter + fit->yCenter * fit->yCenter +
                           a1 * fit->zCenter * fit->zCenter - fit->radius * fit->radius;
    const std::array<long double, 6> a = {1, a1, -2 * fit->xCenter, -2 * fit->yCenter, -2 * a1 * fit->zCenter, a5};
    const auto sum = [&](const std::array<long double, 6>& c) {
        const long double scale = 1 / (c[0] * c[1]);  // squares, of coefficients with a0 a1 = 1
        long double squares = 0;
        for (const auto& [x, y, z] : points) {
            const long double left = c[0] * (x * x + y * y) + c[1] * z * z + c[2] * x + c[3] * y + c[4] * z + c[5];
            squares += left * left;
        }
        return squares * scale;
    };
    for (size_t i = 0; i < 6; ++i)
        for (const long double by : {-1e-4L, 1e-4L}) {
            auto moved = a;
            moved[i] *= 1 + by;
            EXPECT_GT(sum(moved), sum(a)) << i << " " << static_cast<double>(by);
        }
}

TEST(HemisphereFit, NoHemisphereWhereThereIsNone) {
    const auto none = [](auto&& picture) {
        const auto pixels = picture.region();
        const double average = AverageOf(PointsOf(pixels));
        return !FitHemisphere(pixels, average) && !FitAngledHemisphere(pixels, average);
    };
    EXPECT_TRUE(none(RegionPicture<uint8_t>(20, 20, [](int, int) { return 7; })));
    EXPECT_TRUE(none(RegionPicture<uint8_t>(20, 20, [](int x, int y) { return x + 2 * y; })));
    EXPECT_TRUE(none(RegionPicture<float>(20, 20, [](int x, int y) { return 0.1 * x + 0.7 * y; })));
    EXPECT_TRUE(none(RegionPicture<uint8_t>(20, 20, [](int x, int y) { return (x + y) % 2; })));
    EXPECT_TRUE(none(RegionPicture<uint8_t>(40, 1, [](int x, int) { return x * x % 97; })));
    EXPECT_TRUE(none(RegionPicture<uint8_t>(2, 2, [](int x, int y) { return x * y; })));
    EXPECT_TRUE(none(RegionPicture<uint16_t>(20, 20, [](int x, int y) { return x * x + y * y; })));  // a paraboloid
    EXPECT_TRUE(none(RegionPicture<float>(20, 20, [](int x, int y) { return x == 3 && y == 3 ? kNaN : x * y; })));
    // Pixels on a diagonal, and a plane in single precision over a slanted region.
    std::vector<SurfacePoint> diagonal, slanted;
    for (int32_t i = 0; i < 20; ++i) {
        diagonal.push_back({i, i, static_cast<double>(i * i % 19)});
        for (int32_t j = 0; j < 20; ++j)
            slanted.push_back({i + j, j, double{static_cast<float>(0.6 * (i + j) - 0.9 * j)}});
    }
    EXPECT_FALSE(FitHemisphere(PointRuns(diagonal), AverageOf(diagonal)));
    EXPECT_FALSE(FitHemisphere(PointRuns(slanted), AverageOf(slanted)));
}

double MeanSquare(const std::vector<SurfacePoint>& points, const Hemisphere& hemisphere) {
    double squares = 0;
    for (const auto& [x, y, z] : points) squares += std::pow(HeightOf(hemisphere, x, y) - z, 2);
    return squares / static_cast<double>(points.size());
}

// The untilted fit of the last is nowhere near, or none; its radius is hardly determined.
TEST(AngledHemisphereFit, RecoversTiltedCaps) {
    const Hemisphere caps[] = {{100.3, 98.7, 20, 0.5, 80, 0.1, -0.05},
                               {100.3, 98.7, 20, -0.5, 120, 0.6, -0.9},
                               {100.3, 98.7, 20, 0.5, 1000, 0.1, -0.05},
                               {10, 150, 5e4, 0.01, 300, -0.02, 0.03},
                               {100.3, 98.7, 20, 0.5, 1e4, 0.01, -0.05}};
    for (const Hemisphere& truth : caps) {
        const std::vector<SurfacePoint> points = PointsOn(truth, 200, 200);
        const auto fit = FitAngledHemisphere(PointRuns(points), AverageOf(points));
        ASSERT_TRUE(fit);
        EXPECT_LT(MeanSquare(points, *fit), 1e-14) << truth.radius;
        EXPECT_LT(Error(truth, *fit), truth.radius > 5000 ? 1e-2 : 1e-9) << truth.radius;
    }
}

// The larger region is searched on a part of its pixels first. All of them decide: pixel by pixel, in an order of
// summation of its own, the result is the same.
TEST(AngledHemisphereFit, FindsTheBallOnItsTiltedBase) {
    for (const int by : {1, 5}) {
        NormalNoise noise(8);
        // The base is visible around it.
        const Hemisphere truth{70.5 * by, 60.25 * by, 50, 0.5, 45.0 * by, 0.05, -0.1};
        const RegionPicture<float> picture(140 * by, 120 * by,
                                           [&](int x, int y) { return HeightOf(truth, x, y) + 0.2 * noise(); });
        const std::vector<SurfacePoint> points = PointsOf(picture.region());
        const auto fit = FitAngledHemisphere(picture.region(), AverageOf(points));
        const auto slowly = FitAngledHemisphere(PointRuns(points), AverageOf(points));
        ASSERT_TRUE(fit && slowly);
        EXPECT_LT(Error(truth, *fit), 2e-3 / by);
        EXPECT_LT(Error(*slowly, *fit), 1e-8);
    }
}

TEST(HemisphereFit, RunsGiveTheSameAsPixelsOneByOne) {
    NormalNoise noise(4);
    const Hemisphere truth{700.5, 20.25, 50, 0.5, 2000};
    const RegionPicture<uint16_t> picture(1300, 40, [&](int x, int y) { return HeightOf(truth, x, y) + noise(); });
    const std::vector<SurfacePoint> points = PointsOf(picture.region());
    const auto fit = FitHemisphere(picture.region(), AverageOf(points));
    const auto slowly = FitHemisphere(PointRuns(points), AverageOf(points));
    ASSERT_TRUE(fit && slowly);
    EXPECT_LT(Error(*slowly, *fit), 1e-11);
}

// Caps cut off by the edges of a rectangle, in whole grey levels. The least sum is no larger than that of the truth,
// whichever side of the rim, and however shallow the cap. Off and tilted are parts of the half diagonal and of the
// depth.
TEST(AngledHemisphereFit, LeavesNoMoreThanTheTrueCap) {
    struct Case {
        int32_t width, height;
        double radius, depth, noise, off, tilt;
    };
    std::vector<Case> cases;
    for (const auto& [width, height] : {std::pair{100, 75}, {80, 80}, {110, 55}})
        for (const double radius : {1.2, 1.5, 2.5, 5.0, 10.0}) {
            cases.push_back({width, height, radius, 30, 1, 0, 0});
            cases.push_back({width, height, radius, 30, 1, 0, 1});
        }
    for (const double depth : {3, 5, 8}) cases.push_back({200, 150, 2.5, depth, 0, 0, 0});
    for (const double radius : {0.3, 0.5, 0.8})
        for (const double off : {0.0, 0.3}) cases.push_back({60, 45, radius, 30, 1, off, 0.6});
    uint32_t seed = 0;
    for (const auto& [width, height, radius, depth, noise, off, tilt] : cases) {
        NormalNoise deviate(++seed);
        const double a = std::hypot(width, height) / 2, r = radius * a;
        const double scale = (r - std::sqrt(std::max(0.0, r * r - a * a))) / depth;
        const Hemisphere truth{
            width / 2.0 + off * a, height / 2.0, 100 - r / scale, scale, r, std::atan(tilt * depth / a * scale), 0};
        std::vector<SurfacePoint> points;
        for (int32_t y = 0; y < height; ++y)
            for (int32_t x = 0; x < width; ++x)
                points.push_back({x, y, std::floor(HeightOf(truth, x, y) + noise * deviate() + 0.5)});
        const auto fit = FitAngledHemisphere(PointRuns(points), AverageOf(points));
        ASSERT_TRUE(fit);
        EXPECT_LE(MeanSquare(points, *fit), 1.0001 * MeanSquare(points, truth))
            << width << "x" << height << ", radius " << radius << ", depth " << depth << ", off " << off << ", tilt "
            << tilt;
    }
}

// The residuals are orthogonal to every derivative: no surface nearby fits better.
TEST(AngledHemisphereFit, IsAMinimumOfTheSquaredResiduals) {
    NormalNoise noise(9);
    const RegionPicture<float> picture(150, 150, [&](int x, int y) {
        return HeightOf({75, 70, 3, 0.5, 200, 0.1, 0.2}, x, y) + noise();
    });
    const auto fit = FitAngledHemisphere(picture.region(), AverageOf(PointsOf(picture.region())));
    ASSERT_TRUE(fit);
    const std::vector<SurfacePoint> points = PointsOf(picture.region());
    const double least = MeanSquare(points, *fit);
    EXPECT_NEAR(1.0, least, 0.03);
    for (double Hemisphere::*member : {&Hemisphere::xCenter, &Hemisphere::yCenter, &Hemisphere::zCenter,
                                       &Hemisphere::zScale, &Hemisphere::radius, &Hemisphere::alpha, &Hemisphere::beta})
        for (const double by : {0.9999, 1.0001}) {
            Hemisphere moved = *fit;
            moved.*member *= by;
            EXPECT_GT(MeanSquare(points, moved), least);
        }
}

TEST(Hemisphere, HeightsWorkedOutByHand) {
    // 3, 4, 5 triangles: at dx 3, dy 4 of a radius of 13 the root is 12.
    EXPECT_EQ(100 + 24.0, HeightOf({10, 20, 100, 0.5, 13}, 13, 24));
    EXPECT_EQ(100 - 24.0, HeightOf({10, 20, 100, -0.5, 13}, 13, 24));
    EXPECT_EQ(100.0, HeightOf({10, 20, 100, 0.5, 13}, 24, 20));  // outside
    EXPECT_EQ(100.0, HeightOf({10, 20, 100, 0, 13}, 10, 20));
    const double slope = std::tan(0.3), other = std::tan(-0.2);
    for (const double scale : {0.5, -0.5})
        EXPECT_NEAR(100 + 12 / scale + (3 * slope + 4 * other) / 0.5,
                    HeightOf({10, 20, 100, scale, 13, 0.3, -0.2}, 13, 24), 1e-12);
}

}  // namespace
}  // namespace orlix
