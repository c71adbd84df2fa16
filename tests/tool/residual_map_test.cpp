#include "residual_map.hpp"

#include "profile_plot.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace tool;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN(), kInfinity = std::numeric_limits<float>::infinity();

std::vector<int> Pixel(const Picture& picture, size_t index) {
    return {picture.samples.begin() + static_cast<std::ptrdiff_t>(3 * index),
            picture.samples.begin() + static_cast<std::ptrdiff_t>(3 * index + 3)};
}

}  // namespace

TEST(ResidualMap, ColoursAreSymmetricEndAtTheLimitAndLeaveGreyToWhatIsNoNumber) {
    const Picture picture = ResidualPicture({-kInfinity, -9, -3, 0, 3, 9, kInfinity, kNan}, 8, 1, 3);
    ASSERT_EQ(24u, picture.samples.size());
    for (const size_t beyond : {0u, 1u}) EXPECT_EQ(Pixel(picture, 2), Pixel(picture, beyond));
    for (const size_t beyond : {5u, 6u}) EXPECT_EQ(Pixel(picture, 4), Pixel(picture, beyond));
    const auto below = Pixel(picture, 2), on = Pixel(picture, 3), above = Pixel(picture, 4), none = Pixel(picture, 7);
    EXPECT_GT(below[2], below[0] + 50) << "blue below";
    EXPECT_GT(above[0], above[2] + 50) << "red above";
    EXPECT_GT(std::min({on[0], on[1], on[2]}), 240) << "white on the surface";
    EXPECT_EQ(none, (std::vector{150, 150, 150}));
    // Rising lightness from both ends to the middle.
    std::vector<float> scale;
    for (int i = -50; i <= 50; ++i) scale.push_back(static_cast<float>(i));
    const Picture ramp = ResidualPicture(scale, 101, 1, 50);
    const auto lightness = [&](size_t i) {
        const auto c = Pixel(ramp, i);
        return 0.299 * c[0] + 0.587 * c[1] + 0.114 * c[2];
    };
    for (size_t i = 0; i < 50; ++i) {
        EXPECT_LT(lightness(i), lightness(i + 1)) << i;
        EXPECT_LT(lightness(100 - i), lightness(99 - i)) << i;
    }
}

TEST(ResidualMap, LimitIsARoundNumberOfUnitsThatOneInTwoHundredMayExceed) {
    std::vector<float> residual(1000, 0.7f);
    for (size_t i = 0; i < 5; ++i) residual[i] = -5000;
    EXPECT_DOUBLE_EQ(0.8, ResidualLimit(residual, 1));
    EXPECT_DOUBLE_EQ(20 / 26.0, ResidualLimit(residual, 26)) << "18.2 units: up to 20";
    for (size_t i = 0; i < 6; ++i) residual[i] = -5000;
    EXPECT_DOUBLE_EQ(5000, ResidualLimit(residual, 1));
    for (const std::vector<float>& none : {std::vector<float>{}, {0, 0}, {kNan}, {kInfinity}})
        EXPECT_DOUBLE_EQ(0.5, ResidualLimit(none, 2));
}

TEST(ResidualMap, LargeImagesAreAveragedWithoutWhatIsNoNumber) {
    std::vector<float> residual(2000, 4);
    residual[1] = kNan;
    residual[2] = residual[3] = kNan;
    const Picture picture = ResidualPicture(residual, 2000, 1, 4);
    EXPECT_EQ(1000, picture.width);
    EXPECT_EQ(Pixel(picture, 0), Pixel(picture, 2));
    EXPECT_EQ(Pixel(picture, 1), (std::vector{150, 150, 150}));
}

TEST(ProfilePlot, BreaksWhereTheRegionDoesAndNeverWritesWhatIsNoNumber) {
    constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    const auto plot = [](const std::vector<double>& values) {
        return ProfilePlot({"x, pixels", 1, "grey level", "residual, grey levels", values, values, values});
    };
    const std::string svg = plot({1, 2, kNone, 3, 4});
    // Each of the three curves: two pieces of two points.
    const auto first = svg.find("<path d='"), end = svg.find('\'', first + 9);
    const std::string path = svg.substr(first + 9, end - first - 9);
    EXPECT_EQ(2, std::count(path.begin(), path.end(), 'M'));
    EXPECT_EQ(2, std::count(path.begin(), path.end(), 'L'));
    for (const std::vector<double>& values : {std::vector<double>{5},
                                              {5, 5},
                                              {0, 0, 0},
                                              {1e300, -1e300},
                                              {kNone, 1, kInfinity},
                                              std::vector<double>(5000, 1)}) {
        const std::string drawn = plot(values);
        EXPECT_THAT(drawn, HasSubstr("</svg>"));
        EXPECT_THAT(drawn, Not(HasSubstr("nan")));
        EXPECT_THAT(drawn, Not(HasSubstr("inf")));
        EXPECT_THAT(drawn, Not(HasSubstr("–")));
        EXPECT_LT(drawn.size(), 100000u);
    }
    for (const std::vector<double>& values : {std::vector<double>{}, {kNone, kNone}})
        EXPECT_THAT(plot(values), HasSubstr("No pixel of the region"));
}
