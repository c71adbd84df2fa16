#include "histogram/statistics.hpp"

#include "histogram/histograms.hpp"
#include "support/testing.hpp"

namespace orlix {
namespace {

// --------------------------------------------------------------------------------------------------------- mapping

TEST(Statistics, WholeRangesMapBinsToValuesAndOthersToTheMiddlesOfIntervals) {
    struct Case {
        int64_t n;
        double left, right, a, b;
    };
    const Case cases[] = {
        {256, 0, 255, 1, 0},       // values
        {256, 0, 256, 1, 0.5},     // 257 whole numbers do not fit 256 bins
        {1, 7, 7, 1, 0},           // a single value has no scale
        {3, -1, 1, 1, -1},         // values below 0
        {4, 0.5, 2.5, 0.5, 0.75},  // ends are not whole numbers
        {4, 3, 1, -0.5, 2.75},     // descending
        {4, 2, 2, 0, 2},           // no width
        {0, 0, 255, 1, 0},         // no bins
        {0, 1, 0, 1, 0},           // holds "0 values"
    };
    for (const Case& c : cases) {
        const BinMapping mapping = MapBins(c.n, c.left, c.right);
        EXPECT_EQ(c.a, mapping.a) << c.n << " bins over " << c.left << ".." << c.right;
        EXPECT_EQ(c.b, mapping.b) << c.n << " bins over " << c.left << ".." << c.right;
    }
    EXPECT_EQ(7.0, MapBins(256, 0, 255).Location(7));
    EXPECT_EQ(3.0, MapBins(4, 0.5, 2.5).Bin(2.25));
    for (const auto& [left, right] : {std::pair{kNaN, 3.0}, {0, kNaN}, {kInfinity, kInfinity}})
        EXPECT_TRUE(std::isnan(MapBins(4, left, right).a) && std::isnan(MapBins(4, left, right).b));
    EXPECT_EQ(kInfinity, MapBins(4, 0, kInfinity).a);
    EXPECT_EQ(0.25e300, MapBins(4, 0, 1e300).a);
}

// --------------------------------------------------------------------------------------- moments against the slow road

struct SlowMoments {
    long double mean, variance, skew, kurtosis, entropy;
};

SlowMoments Slow(const Counts& counts) {
    const auto total = std::accumulate(counts.begin(), counts.end(), 0.0L);
    SlowMoments m{};
    for (size_t i = 0; i < counts.size(); ++i) m.mean += static_cast<long double>(i) * counts[i] / total;
    long double m3 = 0, m4 = 0;
    for (size_t i = 0; i < counts.size(); ++i) {
        const long double p = counts[i] / total;
        const long double d = static_cast<long double>(i) - m.mean;
        m.variance += p * d * d;
        m3 += p * d * d * d;
        m4 += p * d * d * d * d;
        if (p > 0) m.entropy -= p * std::log(p);
    }
    m.skew = m3 / std::pow(m.variance, 1.5L);
    m.kurtosis = m4 / (m.variance * m.variance) - 3;
    return m;
}

TEST(Statistics, MomentsEqualTheirDefinitions) {
    Random random(1);
    for (const size_t n : {2, 3, 10, 64, 65, 256, 1000, 5000})
        for (int trial = 0; trial < 12; ++trial) {
            Counts counts = SomeCounts(random, n, trial < 6 ? 9 : kMost / 2);
            counts[0] += 1;  // not all in one bin
            counts[n - 1] += 1;
            const SlowMoments slow = Slow(counts);
            ExpectClose(slow.mean, MeanBin(counts));
            ExpectClose(slow.variance, VarianceOfBins(counts));
            ExpectClose(slow.skew, SkewOfBins(counts));
            ExpectClose(slow.kurtosis, KurtosisOfBins(counts));
            ExpectClose(slow.entropy, EntropyOfBins(counts));
        }
}

TEST(Statistics, OneBinHasNoVarianceAndNoShape) {
    const Counts one{0, 0, kMost, 0};
    EXPECT_EQ(2.0, MeanBin(one));
    EXPECT_EQ(0.0, VarianceOfBins(one));
    EXPECT_TRUE(std::isnan(SkewOfBins(one)) && std::isnan(KurtosisOfBins(one)));
    EXPECT_TRUE(EntropyOfBins(one) == 0 && !std::signbit(EntropyOfBins(one)));
}

TEST(Statistics, CountsThatSumBeyond32BitsAreStillCounts) {
    // Four bins of 2^31 - 1 are a uniform distribution; a 32-bit total would be -4.
    const Counts counts(4, kMost);
    EXPECT_EQ(4 * int64_t{kMost}, TotalCount(counts));
    EXPECT_EQ(1.5, MeanBin(counts));
    EXPECT_EQ(1.25, VarianceOfBins(counts));
    EXPECT_EQ(1, MedianBin(counts));
    EXPECT_DOUBLE_EQ(std::log(4.0), EntropyOfBins(counts));
    // Power sums beyond 2^92: a uniform distribution over n bins has variance (n^2 - 1) / 12, kurtosis -6/5 (n^2 + 1) /
    // (n^2 - 1).
    const Counts many(1000000, kMost);
    EXPECT_EQ(499999.5, MeanBin(many));
    EXPECT_DOUBLE_EQ((1e12 - 1) / 12, VarianceOfBins(many));
    EXPECT_EQ(0.0, SkewOfBins(many));
    EXPECT_DOUBLE_EQ(-1.2 * (1e12 + 1) / (1e12 - 1), KurtosisOfBins(many));
}

TEST(Statistics, EntropyOfARareSecondBinKeepsItsAccuracy) {
    // p = 2^-31 against the rest: p (31 ln 2 + 1) to first order, the next term is below 1e-9 of it.
    const double p = 0x1p-31;
    EXPECT_NEAR(p * (31 * std::log(2.0) + 1) - p * p / 2, EntropyOfBins(Counts{1, kMost}), 1e-14 * p);
}

TEST(Statistics, NegativeCountsGiveDefinedResults) {
    const Counts counts{-5, 10, -1, 3};
    EXPECT_EQ(7, TotalCount(counts));
    EXPECT_EQ(17.0 / 7.0, MeanBin(counts));
    EXPECT_EQ(1, MedianBin(counts));  // -5, then 5 of 7
    EXPECT_EQ(1, ModeBin(counts));
    EXPECT_EQ(1, LowestOccupiedBin(counts));
    EXPECT_EQ(3, HighestOccupiedBin(counts));
    EXPECT_EQ(0.0, VarianceOfBins(Counts{-1, 3, -1}));  // would be -2
    EXPECT_TRUE(std::isnan(KurtosisOfBins(Counts{-1, 3, -1})));
    const Counts extremes{kLeast, kMost, kMost, kLeast, kMost};
    EXPECT_TRUE(std::isfinite(MeanBin(extremes)));
    EXPECT_TRUE(std::isfinite(EntropyOfBins(extremes)));
}

// ----------------------------------------------------------------------------------------- medians, modes and extremes

TEST(Statistics, TheMedianIsTheFirstBinThatReachesHalfAndTheDeviationGrowsUntilHalfIsCovered) {
    Random random(7);
    for (int trial = 0; trial < 2000; ++trial) {
        const auto n = 1 + random.Below(12);
        const Counts counts = SomeCounts(random, static_cast<size_t>(n), 1 + static_cast<LONG>(random.Below(6)));
        const auto within = [&](int64_t first, int64_t last) {
            int64_t sum = 0;
            for (int64_t i = std::max<int64_t>(first, 0); i <= std::min(last, n - 1); ++i)
                sum += counts[static_cast<size_t>(i)];
            return 2 * sum >= TotalCount(counts);
        };
        int64_t median = 0, deviation = n > 1 ? 1 : 0;  // the first step is always taken, where there is one
        while (!within(0, median)) ++median;
        while (!within(median - deviation, median + deviation)) ++deviation;
        const MedianStatistics got = MedianAndDeviation(counts);
        EXPECT_EQ(median, got.median) << trial;
        EXPECT_EQ(median, MedianBin(counts)) << trial;
        EXPECT_EQ(deviation, got.deviation) << trial;
    }
    // Seven bins of 1/14 each are exactly half, but adding up the quotients would miss 0.5.
    for (LONG n = 2; n < 400; n += 2) EXPECT_EQ(n / 2 - 1, MedianBin(Counts(static_cast<size_t>(n), 3)));
}

TEST(Statistics, ModeAndExtremesOfFullEmptyAndMissingBins) {
    struct Case {
        Counts counts;
        int64_t mode, largest, lowest, highest;
    };
    const Case cases[] = {{{0, 5, 5, 0}, 1, 5, 1, 2},
                          {{0, 0, 0, 0, 0}, 0, 0, 4, 0},  // opposite ends
                          {{-9, -2, -3}, 1, 0, 2, 0},
                          {{}, 0, 0, -1, 0}};
    for (const Case& c : cases) {
        EXPECT_EQ(c.mode, ModeBin(c.counts));
        EXPECT_EQ(c.largest, LargestCount(c.counts));
        EXPECT_EQ(c.lowest, LowestOccupiedBin(c.counts));
        EXPECT_EQ(c.highest, HighestOccupiedBin(c.counts));
    }
}

// --------------------------------------------------------------------------------------------------------- trimming

Counts Trim(Counts counts, double fraction) {
    TrimTails(counts, fraction);
    return counts;
}

TEST(Statistics, TrimmingTakesTheSameNumberFromEachEnd) {
    const Counts counts{2, 3, 10, 3, 2};  // N = 20
    EXPECT_EQ(counts, Trim(counts, 0.0));
    EXPECT_EQ((Counts{1, 3, 10, 3, 1}), Trim(counts, 0.05));   // 1
    EXPECT_EQ((Counts{0, 3, 10, 3, 0}), Trim(counts, 0.1));    // 2: a bin is emptied before the count is exceeded
    EXPECT_EQ((Counts{0, 2, 10, 2, 0}), Trim(counts, 0.125));  // 2.5 rounds to 3
    EXPECT_EQ((Counts{0, 0, 4, 0, 0}), Trim(counts, 0.4));     // 8: both cuts in one bin
    for (const double all : {0.5, 1e300, kInfinity}) EXPECT_EQ(Counts(5, 0), Trim(counts, all));
    EXPECT_EQ(counts, Trim(counts, kNaN));
    // A negative fraction adds to the ends: k = trunc(-1.5 + 0.5) = -1.
    EXPECT_EQ((Counts{3, 10, 4}), Trim(Counts{2, 10, 3}, -0.1));
    EXPECT_EQ((Counts{kMost, 10, kMost}), Trim(Counts{2, 10, 3}, -kInfinity));
    EXPECT_EQ((Counts{kMost}), Trim(Counts{2}, -1e300));
}

TEST(Statistics, TrimmedStatisticsNeedCountsThatAreLeft) {
    const Counts counts{2, 3, 10, 3, 2};
    for (const double nothingLeft : {0.5, 0.75, 1e300, kInfinity, kNaN})
        EXPECT_FALSE(StatisticsWithoutTails(counts, nothingLeft));
    EXPECT_FALSE(StatisticsWithoutTails(Counts{2, -2, 2}, 0.49));  // 1, -2, 1: a total of 0
    EXPECT_FALSE(StatisticsWithoutTails(counts, -kInfinity));      // the winsorized total is negative
}

TEST(Statistics, TrimmedStatisticsEqualTheirDefinitions) {
    Random random(3);
    for (int trial = 0; trial < 300; ++trial) {
        const size_t n = 1 + static_cast<size_t>(random.Below(80));
        const Counts counts = SomeCounts(random, n, 30);
        const double fraction = static_cast<double>(random.Below(49)) / 100.0;
        const int64_t total = std::accumulate(counts.begin(), counts.end(), int64_t{0});
        const auto k = static_cast<std::ptrdiff_t>(std::floor(static_cast<double>(total) * fraction + 0.5));

        // From a sorted list of the individual counts.
        std::vector<size_t> list;
        for (size_t i = 0; i < n; ++i) list.insert(list.end(), static_cast<size_t>(counts[i]), i);
        const auto got = StatisticsWithoutTails(counts, fraction);
        ASSERT_EQ(2 * k < total, got.has_value());
        if (!got) continue;
        const std::vector<size_t> kept(list.begin() + k, list.end() - k);
        // The outermost bins kept hold all their own counts and k more each.
        std::vector<size_t> winsorized(static_cast<size_t>(k), kept.front());
        winsorized.insert(winsorized.end(), static_cast<size_t>(k), kept.back());
        for (const size_t i : list)
            if (i >= kept.front() && i <= kept.back()) winsorized.push_back(i);
        const auto meanOf = [](const std::vector<size_t>& bins) {
            return std::accumulate(bins.begin(), bins.end(), 0.0L) / static_cast<long double>(bins.size());
        };
        const long double mean = meanOf(kept), m = meanOf(winsorized);
        long double squares = 0;
        for (const size_t i : winsorized)
            squares += (static_cast<long double>(i) - m) * (static_cast<long double>(i) - m);
        const long double deviation = std::sqrt(squares / static_cast<long double>(winsorized.size())) /
                                      (1 - 2 * static_cast<long double>(fraction));
        ExpectClose(mean, got->mean);
        ExpectClose(deviation, got->deviation);
    }
}

TEST(Statistics, CountsOfAFractionRoundHalvesUpAndStayInRange) {
    EXPECT_EQ(3, CountsOfFraction(20, 0.125));
    EXPECT_EQ(2, CountsOfFraction(20, 0.12));
    EXPECT_EQ(0, CountsOfFraction(0, kInfinity));
    EXPECT_EQ(0, CountsOfFraction(20, kNaN));
    EXPECT_EQ(int64_t{1} << 62, CountsOfFraction(20, kInfinity));
    EXPECT_EQ(-(int64_t{1} << 61), CountsOfFraction(20, -1e300));
}

// --------------------------------------------------------------------------------------------------------- smoothing

TEST(Statistics, SmoothingEqualsItsDefinitionAtEverySizeAndLeavesTooFewBins) {
    Random random(5);
    for (const int width : {3, 5, 7, 9})
        for (int64_t n = 0; n < 40; ++n) {
            SCOPED_TRACE(::testing::Message() << width << " weights, " << n << " bins");
            Counts counts(static_cast<size_t>(n), n % 2 ? kMost : kLeast);
            if (n > 12)
                for (LONG& c : counts) c = static_cast<LONG>(2 * random.Below(kMost) - kMost);
            Counts want = counts, scratch;
            const bool enough = n > (width - 1) / 2;
            for (int64_t i = 0; enough && i < n; ++i) {
                int64_t sum = 0;
                for (int j = 0; j < width; ++j) {
                    int64_t binomial = 1;
                    for (int k = 0; k < j; ++k) binomial = binomial * (width - 1 - k) / (k + 1);
                    int64_t at = i + j - (width - 1) / 2;
                    if (at < 0) at = -at;
                    if (at > n - 1) at = 2 * (n - 1) - at;
                    sum += binomial * counts[static_cast<size_t>(at)];
                }
                want[static_cast<size_t>(i)] = static_cast<LONG>(sum / (int64_t{1} << (width - 1)));
            }
            EXPECT_EQ(enough, SmoothCounts(counts, width, scratch));
            EXPECT_EQ(want, counts);
        }
}

// ----------------------------------------------------------------------------------------------------------- pyramid

struct Pyramid {
    Counts detail, smooth;
};

Pyramid Decomposed(const Counts& counts) {
    const Counts garbage(counts.size(), 12345);
    Pyramid pyramid{garbage, garbage};
    Counts averages((counts.size() + 1) / 2);
    DecomposeCounts(counts, pyramid.detail, pyramid.smooth, averages);
    return pyramid;
}

TEST(Statistics, PyramidsOfKnownAndExtremeCounts) {
    // 8 2 | 5 6 -> 5 5 -> 5
    EXPECT_EQ((Counts{5, 5, 5, 5}), Decomposed({8, 2, 5, 6}).smooth);
    EXPECT_EQ((Counts{5, 0, -3, 0}), Decomposed({8, 2, 5, 6}).detail);
    // 1 3 | 5 9 | 20 -> 2 7 | 20 -> 4 20 -> 12
    EXPECT_EQ((Counts{12, 12, 4, 2, 7}), Decomposed({1, 3, 5, 9, 20}).smooth);
    EXPECT_EQ((Counts{12, 8, 2, 1, 2}), Decomposed({1, 3, 5, 9, 20}).detail);
    EXPECT_EQ((Counts{7}), Decomposed({7}).smooth);
    EXPECT_EQ((Counts{7}), Decomposed({7}).detail);
    EXPECT_TRUE(Decomposed({}).smooth.empty());
    EXPECT_EQ((Counts{kMost, kMost, kMost, kMost}), Decomposed(Counts(4, kMost)).smooth);
    EXPECT_EQ((Counts{kMost, 0, 0, 0}), Decomposed(Counts(4, kMost)).detail);
    EXPECT_EQ((Counts{0, kMost}), Decomposed({kLeast, kMost}).detail);  // 0 - -2^31 saturates
    EXPECT_EQ((Counts{-1, -1}), Decomposed({-3, 0}).smooth);            // toward 0
}

}  // namespace
}  // namespace orlix
