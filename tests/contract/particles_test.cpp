#include <orlix/particles.hpp>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <vector>

namespace orlix {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Worked out by hand: particle i stands at the middle of its weight.
TEST(SizeDistributionOf, InterpolatesBetweenTheMiddlesOfTheWeights) {
    const std::vector<double> sizes = {40, 10, 30, kNaN, 20};
    const SizeDistribution byNumber = DistributionOf(sizes);
    EXPECT_EQ(4, byNumber.count);
    EXPECT_EQ(25, byNumber.mean);
    EXPECT_EQ(10, byNumber.d10);  // 10 stands at 1/8
    EXPECT_EQ(25, byNumber.d50);  // midway between 3/8 and 5/8
    EXPECT_EQ(40, byNumber.d90);
    EXPECT_EQ(15, SizeAt(sizes, {}, 0.25));

    const std::vector<double> areas = {5, 1, 2, 7, 2};
    const SizeDistribution byArea = DistributionOf(sizes, areas);
    EXPECT_EQ(10, byArea.weight);
    EXPECT_EQ((10 + 40 + 60 + 200) / 10.0, byArea.mean);
    EXPECT_DOUBLE_EQ(10 + 10 * 0.05 / 0.15, byArea.d10);  // 10 stands at 0.05, 20 at 0.2
    EXPECT_DOUBLE_EQ(30 + 10 * 0.1 / 0.35, byArea.d50);   // 30 at 0.4, 40 at 0.75
}

TEST(SizeDistributionOf, HasNoSizesWithoutWeight) {
    const std::vector<double> sizes = {1, 2}, weights = {0, -1};
    EXPECT_TRUE(std::isnan(DistributionOf(sizes, weights).d50));
    EXPECT_TRUE(std::isnan(SizeAt({}, {}, 0.5)));
    EXPECT_TRUE(std::isnan(SizeAt(sizes, {}, 1.5)));
    EXPECT_TRUE(std::isnan(SizeAt(sizes, {}, kNaN)));
}

// One square for each pixel of a plane, seen through a field: the rule counts one for each pixel of the area that it
// names, whatever the size, and the weights add up to one for each pixel of the field.
TEST(EdgeCorrections, CountEveryParticleOnceOnAverage) {
    constexpr int kField = 20;
    for (const int side : {1, 3, 7, 13}) {
        int counted = 0;
        double weighted = 0;
        for (int y = 1 - side; y < kField; ++y)
            for (int x = 1 - side; x < kField; ++x) {
                const EdgeContact contact = {x <= 0, y <= 0, x + side >= kField, y + side >= kField};
                counted += CountsInField(contact);
                if (!contact.left && !contact.top && !contact.right && !contact.bottom)
                    weighted += MilesLantuejoul(side, side, kField, kField);
            }
        EXPECT_EQ((kField - 1) * (kField - 1), counted) << side;
        EXPECT_NEAR(kField * kField, weighted, 1e-9) << side;
    }
    EXPECT_TRUE(std::isnan(MilesLantuejoul(19, 5, 20, 20)));
    EXPECT_TRUE(std::isnan(MilesLantuejoul(kNaN, 5, 20, 20)));
}

// Garwood's table (1936), and for large counts the normal distribution with its first correction.
TEST(PoissonInterval, IsGarwoods) {
    const struct {
        int64_t count;
        double lower, upper;
    } table[] = {{0, 0, 3.68888},         {1, 0.02532, 5.57164},    {2, 0.24221, 7.22469},
                 {10, 4.79539, 18.39036}, {30, 20.24087, 42.82687}, {100, 81.36399, 121.62679}};
    for (const auto& row : table) {
        EXPECT_NEAR(row.lower, PoissonInterval95(row.count).lower, 1e-5) << row.count;
        EXPECT_NEAR(row.upper, PoissonInterval95(row.count).upper, 1e-5) << row.count;
    }
    constexpr double kZ = 1.959963985;
    EXPECT_NEAR(1e6 - kZ * 1e3, PoissonInterval95(1'000'000).lower, 2);
    EXPECT_NEAR(1e6 + kZ * 1e3, PoissonInterval95(1'000'000).upper, 3);
    EXPECT_TRUE(std::isnan(PoissonInterval95(-1).lower));
}

}  // namespace
}  // namespace orlix
