// Figures that need no object: orlix/statistics.hpp.
#include <orlix/statistics.hpp>

#include <cmath>

#include "contract/support.hpp"

namespace orlix::testing {
namespace {

TEST(RoughnessFigures, AreThoseOfTheStandardsDefinitions) {
    const Roughness f = MeasureRoughness(std::vector<float>{11, static_cast<float>(kNaN), 15, 11, 11});
    EXPECT_EQ(4, f.count);
    EXPECT_EQ((std::vector<double>{12, 11, 15}), (std::vector<double>{f.mean, f.minimum, f.maximum}));
    EXPECT_EQ((std::vector<double>{1.5, 3, 1, 4}), (std::vector<double>{f.Sa, f.Sp, f.Sv, f.Sz}));
    EXPECT_DOUBLE_EQ(std::sqrt(3.0), f.Sq);
    EXPECT_DOUBLE_EQ(2 / std::sqrt(3.0), f.Ssk);
    EXPECT_DOUBLE_EQ(7 / 3.0, f.Sku);
}

TEST(RoughnessFigures, DoNotExistWithoutHeightsOrWithoutRoughness) {
    const Roughness none = MeasureRoughness(std::vector<double>{kNaN, kInfinity, -kInfinity});
    EXPECT_EQ(0, none.count);
    for (const double figure : {none.mean, none.minimum, none.maximum, none.Sa, none.Sq, none.Sz, none.Ssk, none.Sku})
        EXPECT_TRUE(std::isnan(figure));
    const Roughness flat = MeasureRoughness(std::vector{7, 7, 7});
    EXPECT_EQ(7, flat.mean);
    EXPECT_EQ(0, flat.Sq);
    EXPECT_TRUE(std::isnan(flat.Ssk) && std::isnan(flat.Sku));
}

TEST(TrimmedSz, LeavesOutEqualSharesAtEitherEnd) {
    std::vector<double> heights(2999);
    for (size_t i = 0; i < heights.size(); ++i) heights[i] = static_cast<double>(i * 1009 % heights.size());
    for (const auto& [share, range] : {std::pair{0.0, 2998.0}, {0.001, 2994.0}, {0.25, 1500.0}, {0.5, 0.0}})
        EXPECT_EQ(range, TrimmedSz(heights, share)) << share;
    heights.push_back(kInfinity);
    EXPECT_EQ(2994, TrimmedSz(heights, 0.001));
    for (const double share : {-0.1, 0.51, kNaN}) EXPECT_TRUE(std::isnan(TrimmedSz(heights, share))) << share;
    EXPECT_TRUE(std::isnan(TrimmedSz(std::vector{1, 2}, 0.5)));
    EXPECT_TRUE(std::isnan(TrimmedSz(std::vector<float>(), 0)));
}

// Of 1, 2, 4, 5 the squares about the mean are 4, 1, 1, 4; t for 3 degrees of freedom is 3.182446305.
TEST(Samples, HaveAMeanAndItsConfidenceInterval) {
    const SampleStatistics sample = SummarizeSample(std::vector<double>{2, 5, kNaN, 1, 4});
    EXPECT_EQ(4, sample.count);
    EXPECT_EQ(3, sample.mean);
    EXPECT_EQ(1, sample.minimum);
    EXPECT_EQ(5, sample.maximum);
    EXPECT_DOUBLE_EQ(std::sqrt(10 / 3.0), sample.standardDeviation);
    EXPECT_NEAR(3.182446305 * std::sqrt(10 / 3.0) / 2, sample.confidence95, 1e-9);

    const SampleStatistics one = SummarizeSample(std::vector{9.0}), none = SummarizeSample({});
    EXPECT_EQ(1, one.count);
    EXPECT_EQ(9, one.mean);
    EXPECT_TRUE(std::isnan(one.standardDeviation) && std::isnan(one.confidence95));
    EXPECT_EQ(0, none.count);
    EXPECT_TRUE(std::isnan(none.mean) && std::isnan(none.minimum));
}

TEST(StudentT, IsThatOfTheTables) {
    for (const auto& [freedom, t] : {std::pair<int64_t, double>{1, std::tan(0.95 * std::acos(0.0))},
                                     {2, 0.95 * std::sqrt(2 / (1 - 0.95 * 0.95))},
                                     {31, 2.039513446},
                                     {120, 1.979930405},
                                     {1000, 1.962339081},
                                     {INT64_MAX, 1.959963985}})
        EXPECT_NEAR(t, StudentT95(freedom), 1e-9) << freedom;
    // Above 1000 degrees of freedom it is a series: z + z (z^2 + 1) / 4 / freedom + 2.8 / freedom^2.
    EXPECT_NEAR(2.3723 / 1000 / 1001 + 2 * 2.8e-9, StudentT95(1000) - StudentT95(1001), 2e-9);
    EXPECT_TRUE(std::isnan(StudentT95(0)) && std::isnan(StudentT95(INT64_MIN)));
}

TEST(Dip, IsZeroForOnePeakAndClosedFormsForTwo) {
    std::vector<LONG> triangle, skew, stretched;
    for (LONG i = 0; i < 200; ++i) {
        triangle.push_back(1000 * std::min(i + 1, 200 - i));
        skew.push_back(static_cast<LONG>(1e6 * std::exp(-i / 20.0)));
    }
    for (const LONG count : triangle) stretched.insert(stretched.end(), {0, count, 0});
    for (const auto& onePeak :
         {triangle, skew, stretched, {}, {0, 0}, {5}, {0, 7, 0}, {3, 4}, {9, 9, 9}, {-5, 9, INT32_MIN, -1}})
        EXPECT_NEAR(0, Dip(onePeak), 1e-12) << onePeak.size();
    // Two levels with nothing between: each is spread over an eighth of the distance.
    std::vector<LONG> pair(256, 0);
    pair[0] = pair[255] = 5000;
    EXPECT_NEAR(7 / 32.0, Dip(pair), 1e-12);
    // A small second peak: the line that joins the ends of the two rises by 7/8 of its share until that peak begins.
    pair[255] = 100;
    EXPECT_NEAR(100 / 5100.0 * 7 / 8 / 2, Dip(pair), 1e-12);
    for (const auto& [pixels, least] : {std::pair<int64_t, double>{INT64_MIN, 0.7}, {10000, 0.007}, {100000, 0.003}})
        EXPECT_DOUBLE_EQ(least, LeastDipOfTwoPeaks(pixels));
}

// Two normal peaks far apart: smoothed by three means over 9 of 256 levels they are normal still, and reach a tenth of
// the lower one at known places.
TEST(Valley, ReachesToATenthOfTheLowerPeak) {
    const double deviation = std::sqrt(8.0 * 8 + 3 * 80 / 12.0);
    const auto peaks = [](double dark, double bright, LONG step, double scale) {
        std::vector<LONG> counts(256);
        for (LONG i = 0; i < 256; ++i)
            if (i % step == 0)
                counts[static_cast<size_t>(i)] =
                    static_cast<LONG>(scale * (dark * std::exp(-(i - 60) * (i - 60) / 128.0) +
                                               bright * std::exp(-(i - 200) * (i - 200) / 128.0) + 0.01));
        counts[0] = counts[255] = static_cast<LONG>(scale);  // so that the range is that of the type
        return counts;
    };
    for (const auto& [dark, bright, step, scale] :
         {std::array{1.0, 1.0, 1.0, 1e5}, {1, 12, 1, 1e4}, {20, 1, 1, 1e4}, {1, 12, 3, 1e4}, {1, 1, 1, 100}}) {
        SCOPED_TRACE(::testing::Message() << dark << " " << bright << " " << step << " " << scale);
        const std::vector<LONG> counts = peaks(dark, bright, static_cast<LONG>(step), scale);
        const Valley valley = ValleyAt(counts, 120.5);
        const double lower = std::min(dark, bright), tolerance = step > 1 || scale < 1000 ? 1.5 : 0.4;
        EXPECT_NEAR(60 + deviation * std::sqrt(2 * std::log(dark / (0.1 * lower))), valley.left, tolerance);
        EXPECT_NEAR(200 - deviation * std::sqrt(2 * std::log(bright / (0.1 * lower))), valley.right, tolerance);
        for (const double none : {70.5, 60.0, -1.0, 256.0, std::nan(""), -HUGE_VAL})  // on a slope, outside
            EXPECT_TRUE(std::isnan(ValleyAt(counts, none).left)) << none;
    }
    const std::vector<LONG> few = peaks(1, 1, 1, 1);
    EXPECT_TRUE(std::isnan(ValleyAt(few, 120.5).right)) << "chance could have made the valley of so few pixels";
    for (const std::vector<LONG>& onePeak : {std::vector<LONG>(),
                                             std::vector<LONG>(256, 1000),
                                             {0, 0},
                                             {5},
                                             {3, 4},
                                             {9, 9, 9},
                                             {1, 2, 3, 4, 3, 2, 1},
                                             {-5, 9, INT32_MIN}})
        EXPECT_TRUE(std::isnan(ValleyAt(onePeak, 1.5).left)) << onePeak.size();
}

}  // namespace
}  // namespace orlix::testing
