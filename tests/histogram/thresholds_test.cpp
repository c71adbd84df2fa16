#include "histogram/thresholds.hpp"

#include "histogram/histograms.hpp"
#include "histogram/statistics.hpp"
#include "support/testing.hpp"

namespace orlix {
namespace {

// ---------------------------------------------------------------------------------------------------------- tail cut

TEST(Thresholds, TheTailCutLeavesTheGivenFractionsOutside) {
    const Counts flat(100, 1);
    struct Case {
        Counts counts;
        double left, right;
        int64_t wantLeft, wantRight;
    };
    const Case cases[] = {
        {flat, 0.1, 0.1, 10, 89},                  //
        {flat, 0.99, 0, 99, 99},                   //
        {flat, 0.005, 0.0049, 1, 99},              // half a count rounds up
        {{0, 0, 5, 0, 5, 0}, 0, 0, 2, 4},          // empty ends are cut even without trimming
        {{0, 0, 5, 0, 5, 0}, 0.5, 0.49, 4, 2},     // 5 of 10 from either side: left ends up above right
        {Counts(7, 0), 0.3, 0.3, 0, 6},            // nothing to exceed
        {{}, 0.3, 0.3, 0, -1},                     //
        {{-3, 1}, 0.2, 0.2, 0, 1},                 // N = -2: nothing exceeds 0 from the left
        {{kMost, kMost, kMost}, 0.34, 0.3, 1, 2},  // a total beyond 32 bits
    };
    for (const Case& c : cases) {
        const TailCut cut = CutTails(c.counts, c.left, c.right);
        EXPECT_EQ(c.wantLeft, cut.left) << c.left;
        EXPECT_EQ(c.wantRight, cut.right) << c.right;
    }
}

// ------------------------------------------------------------------------------------------------ greatest separation

// Beyond the small histograms that are compared with the definition below.
TEST(Thresholds, SeparationOfKnownHistograms) {
    struct Case {
        const char* what;
        Counts counts;
        double left, right;
        int64_t bin;
    };
    const Case cases[] = {
        {"a lower class of 10 in 19", {1, 1, 1, 7, 0, 0, 0, 0, 0, 9}, 0.52, 0, 5},
        {"a lower class of more", {1, 1, 1, 7, 0, 0, 0, 0, 0, 9}, 0.53, 0, 0},
        {"three tenths are 0.3, not less", {1, 1, 1, 1, 1, 1, 1, 1, 1, 1}, 0.3, 0.7, 2},
        {"NaN leaves no candidate", {10, 0, 0, 10}, kNaN, 0, 0},
        {"negative probabilities restrict nothing", {10, 0, 0, 10}, -1, -kInfinity, 1},
        // Two bins far apart, equal but for one count in 2^31: a plateau, since the bins between are empty ...
        {"the last count of billions over a valley", {kMost, 0, 0, kMost - 1}, 0, 0, 1},
        // ... while three full bins prefer the larger side.
        {"the last count of billions at the left", {kMost, kMost - 1, kMost - 1}, 0, 0, 0},
        {"the last count of billions at the right", {kMost - 1, kMost - 1, kMost}, 0, 0, 1},
    };
    for (const Case& c : cases) EXPECT_EQ(c.bin, BinOfGreatestSeparation(c.counts, c.left, c.right)) << c.what;
}

// The textbook's other form of the between-class variance, w0 w1 (mu0 - mu1)^2, as a fraction of integers. For small
// counts only.
int64_t SlowSeparation(const Counts& counts, double left, double right) {
    const auto n = static_cast<int64_t>(counts.size());
    int64_t bestNumerator = 0, bestDenominator = 1, first = 0, last = 0;
    for (int64_t t = 0; t < n; ++t) {
        int64_t c0 = 0, m0 = 0, c1 = 0, m1 = 0;
        for (int64_t i = 0; i < n; ++i) {
            (i <= t ? c0 : c1) += counts[static_cast<size_t>(i)];
            (i <= t ? m0 : m1) += i * counts[static_cast<size_t>(i)];
        }
        const double w = static_cast<double>(c0) / static_cast<double>(c0 + c1);
        if (c0 == 0 || c1 == 0 || w < left || w > 1 - right) continue;
        const int64_t difference = c1 * m0 - c0 * m1, numerator = difference * difference, denominator = c0 * c1;
        const int64_t more = numerator * bestDenominator - bestNumerator * denominator;
        if (more > 0) {
            bestNumerator = numerator;
            bestDenominator = denominator;
            first = last = t;
        } else if (more == 0 && numerator > 0 && last == t - 1) {
            last = t;
        }
    }
    return (first + last) / 2;
}

TEST(Thresholds, SeparationEqualsItsDefinitionInIntegers) {
    Random random(11);
    for (int trial = 0; trial < 6000; ++trial) {
        const Counts counts =
            SomeCounts(random, 1 + static_cast<size_t>(random.Below(14)), 1 + static_cast<LONG>(random.Below(3)));
        const double left = trial % 3 ? 0.0 : static_cast<double>(random.Below(60)) / 100;
        const double right = trial % 3 ? 0.0 : static_cast<double>(random.Below(60)) / 100;
        ASSERT_EQ(SlowSeparation(counts, left, right), BinOfGreatestSeparation(counts, left, right))
            << "trial " << trial;
    }
}

TEST(Thresholds, SeparationScalesWithTheCountsUpToTheLargest) {
    // The same histogram times any factor has the same plateau, even with counts of 2^31 - 1 in 65536 bins and more.
    Random random(12);
    for (const size_t n : {4, 9, 100, 1000}) {
        Counts counts = SomeCounts(random, n, 7);
        const int64_t bin = BinOfGreatestSeparation(counts, 0, 0);
        for (LONG& c : counts) c *= kMost / 8;
        EXPECT_EQ(bin, BinOfGreatestSeparation(counts, 0, 0));
    }
    // Equal bins: the two middle cuts of an odd number tie, whatever the rounding.
    for (const size_t n : {3, 5, 77, 255, 1001, 65535, 65536, 100000})
        for (const LONG count : {LONG{1}, LONG{kMost}})
            EXPECT_EQ(static_cast<int64_t>(n) / 2 - 1, BinOfGreatestSeparation(Counts(n, count), 0, 0)) << n;
}

// ----------------------------------------------------------------------------------------------------------- minimum

TEST(Thresholds, TheMinimumOfKnownHistograms) {
    // Mean 2.5, deviation about 1.9, so 2.25 to either side: bins 0..5. Of the empty bins 1..4 the scan reaches 3
    // first.
    EXPECT_EQ(3, BinOfMinimum(Counts{5, 0, 0, 0, 0, 5}, {0, 5}));
    EXPECT_EQ(1, BinOfMinimum(Counts{0, 7, 0}, {0, 2}));  // no spread: the window is the mean's bin
    EXPECT_FALSE(BinOfMinimum(Counts{0, 0, 0}, {0, 2}));
    EXPECT_FALSE(BinOfMinimum({}, {0, -1}));
    EXPECT_FALSE(BinOfMinimum(Counts{1, 1}, {1, 0}));
    // No count is below the initial value, so the result is the mean's bin.
    EXPECT_EQ(2, BinOfMinimum(Counts(4, kMost), {0, 3}));
}

TEST(Thresholds, TheMinimumEqualsItsDefinition) {
    Random random(17);
    for (int trial = 0; trial < 2000; ++trial) {
        const auto n = 1 + random.Below(60);
        const Counts counts = SomeCounts(random, static_cast<size_t>(n), trial % 2 ? 20 : kMost / 2);
        const int64_t left = random.Below(n);
        const int64_t right = left + random.Below(n - left);
        long double m = 0, s1 = 0, s2 = 0;
        for (int64_t i = left; i <= right; ++i) {
            const long double c = counts[static_cast<size_t>(i)];
            m += c;
            s1 += c * static_cast<long double>(i);
            s2 += c * static_cast<long double>(i * i);
        }
        const auto got = BinOfMinimum(counts, {left, right});
        if (m < 1) {
            EXPECT_FALSE(got);
            continue;
        }
        const long double mean = s1 / m;
        const long double w = 1.2L * std::sqrt(std::max(0.0L, (s2 - s1 * s1 / m) / m));
        const long double d = (mean - static_cast<long double>(left + right) / 2) / 2;
        const int64_t low = std::max(left, static_cast<int64_t>(std::floor(mean - (d + w) + 0.5L)));
        const int64_t high = std::min(right, static_cast<int64_t>(std::floor(mean + (w - d) + 0.5L)));
        const auto start = static_cast<int64_t>(std::floor(mean + 0.5L));
        // Bins in order of preference; the first of the smallest wins.
        std::vector<int64_t> order;
        for (int64_t i = start; i >= low; --i) order.push_back(i);
        for (int64_t i = start + 1; i <= high; ++i) order.push_back(i);
        int64_t want = start;
        LONG least = kMost;
        for (const int64_t i : order)
            if (counts[static_cast<size_t>(i)] < least) least = counts[static_cast<size_t>(want = i)];
        EXPECT_EQ(want, got) << "trial " << trial;
    }
}

// --------------------------------------------------------------------------------------------------- normal mixture

long double TablePhi(long double z) {
    const auto entry = [](int j) {
        return j >= 61 ? 0.5L : std::floor(std::erf(j / 20.0L / std::sqrt(2.0L)) / 2 * 1e5L + 0.5L) / 1e5L;
    };
    const long double steps = 20 * std::fabs(z);
    if (steps >= 61) return z < 0 ? 0 : 1;
    const int j = static_cast<int>(steps);
    const long double value = entry(j) + (entry(j + 1) - entry(j)) * (steps - j);
    return z < 0 ? 0.5L - value : 0.5L + value;
}

TEST(Thresholds, TheNormalDistributionIsTheRoundedTable) {
    for (int j = -1030; j <= 1030; ++j)
        EXPECT_NEAR(static_cast<double>(TablePhi(j / 320.0L)), NormalDistribution(j / 320.0), 1e-12) << j;
    EXPECT_NEAR(0.5 + (0.01994 + 0.03983) / 2, NormalDistribution(0.075), 1e-12);
    for (const double z : {3.05, std::nextafter(3.05, 4.0), 1e300, kInfinity}) {
        EXPECT_EQ(1.0, NormalDistribution(z));
        EXPECT_EQ(0.0, NormalDistribution(-z));
    }
    EXPECT_EQ(0.5, NormalDistribution(-0.0));
    EXPECT_TRUE(std::isnan(NormalDistribution(kNaN)));
}

// The score of one threshold, with its classes summed afresh; negative if it is no candidate.
long double SlowScore(const Counts& counts, size_t t, int64_t kLeft, int64_t kRight) {
    struct Class {
        long double n = 0, mean = 0, variance = 0;
    } classes[2];
    const auto classOf = [&](size_t i) -> Class& { return classes[i <= t ? 0 : 1]; };
    for (size_t i = 0; i < counts.size(); ++i) {
        classOf(i).n += counts[i];
        classOf(i).mean += static_cast<long double>(i) * counts[i];
    }
    if (classes[0].n <= 0 || classes[1].n <= 0) return -1;
    for (Class& c : classes) c.mean /= c.n;
    for (size_t i = 0; i < counts.size(); ++i) {
        const long double d = static_cast<long double>(i) - classOf(i).mean;
        classOf(i).variance += counts[i] * d * d / classOf(i).n;
    }
    // The bins within the limits are those before the first that exceeds them, but at least one.
    int64_t sum = 0, low = -1;
    while (low + 1 < static_cast<int64_t>(counts.size()) && (sum += counts[static_cast<size_t>(low + 1)]) <= kLeft)
        ++low;
    sum = 0;
    auto high = static_cast<int64_t>(counts.size());
    while (high > 0 && (sum += counts[static_cast<size_t>(high - 1)]) <= kRight) --high;
    low = std::max<int64_t>(low, 0);
    high = std::min<int64_t>(high, static_cast<int64_t>(counts.size()) - 1);
    if (static_cast<int64_t>(t) < low || static_cast<int64_t>(t) > high) return -1;

    const long double x = static_cast<long double>(t);
    const long double w = classes[0].n / (classes[0].n + classes[1].n);
    long double score = 0;
    for (int k = 0; k < 2; ++k) {
        const long double sigma = std::sqrt(std::max(classes[k].variance, 1.0L / 12));
        const auto side = [&](long double z) { return k == 0 ? TablePhi(z) : 1 - TablePhi(z); };
        const long double z = (x - classes[k].mean) / sigma;
        const long double mean =
            classes[k].mean + sigma * std::exp(-z * z / 2) / (std::sqrt(2 * std::acos(-1.0L)) * side(z));
        score += (k == 0 ? w : 1 - w) * side((x - mean) / sigma);
    }
    return score;
}

TEST(Thresholds, BestClassificationEqualsItsDefinition) {
    Random random(19);
    for (int trial = 0; trial < 400; ++trial) {
        const size_t n = 2 + static_cast<size_t>(random.Below(50));
        const Counts counts = SomeCounts(random, n, trial % 2 ? 50 : 1000000);
        const double left = trial % 4 ? 0.0 : static_cast<double>(random.Below(50)) / 100;
        const double right = trial % 4 ? 0.0 : static_cast<double>(random.Below(50)) / 100;
        const auto total = TotalCount(counts);
        const auto got = BinOfBestClassification(counts, left, right);
        std::vector<long double> scores;
        for (size_t t = 0; t < n; ++t)
            scores.push_back(SlowScore(counts, t, CountsOfFraction(total, left), CountsOfFraction(total, right)));
        const long double best = *std::max_element(scores.begin(), scores.end());
        if (best <= 0) {
            EXPECT_FALSE(got);
            continue;
        }
        ASSERT_TRUE(got);
        // No bin scores higher by more than rounding errors.
        EXPECT_NEAR(static_cast<double>(best), static_cast<double>(scores[static_cast<size_t>(*got)]), 1e-10) << trial;
    }
}

TEST(Thresholds, BestClassificationOfKnownHistograms) {
    // When the classes are far apart, both are certain everywhere in the valley: the score is 1, and the lowest such
    // bin wins. The lower class is a single bin of deviation sqrt(1/12): certain from 3.05 deviations on, 0.88 above
    // it.
    EXPECT_EQ(4, BinOfBestClassification(Counts{0, 0, 0, 10, 0, 0, 0, 0, 0, 0, 10}, 0, 0));
    EXPECT_FALSE(BinOfBestClassification(Counts{0, 9, 0}, 0, 0));
    // No bin between the limits; NaN and extreme limits.
    const Counts apart{10, 0, 0, 0, 0, 0, 0, 0, 0, 0, 10};
    EXPECT_FALSE(BinOfBestClassification(apart, 0.9, 0.9));
    EXPECT_EQ(1, BinOfBestClassification(apart, kNaN, kNaN));
    EXPECT_EQ(1, BinOfBestClassification(apart, -kInfinity, -1e300));
    EXPECT_FALSE(BinOfBestClassification(Counts{10, 0, 0, 0, 0, 10}, kInfinity, 0));
}

// ----------------------------------------------------------------------------------------------------------- entropy

int64_t EntropyBin(const Counts& counts, double left = 0.0, double right = 0.0) {
    std::vector<double> scratch;
    return BinOfGreatestEntropy(counts, left, right, scratch);
}

long double SlowEntropy(const Counts& counts, size_t from, size_t to) {
    const auto total = static_cast<long double>(TotalCount(counts));
    long double p = 0, q = 0;
    for (size_t i = from; i <= to; ++i)
        if (counts[i] / total > 0) {
            p += counts[i] / total;
            q += counts[i] / total * std::log(counts[i] / total);
        }
    return p > 0 ? std::log(p) - q / p : 0;
}

TEST(Thresholds, GreatestEntropyEqualsItsDefinition) {
    Random random(29);
    for (int trial = 0; trial < 1500; ++trial) {
        const size_t n = 1 + static_cast<size_t>(random.Below(40));
        Counts counts = SomeCounts(random, n, trial % 2 ? 12 : kMost / 2);
        if (trial % 5 == 0)
            for (LONG& c : counts) c = -c;  // a negative total reverses the signs
        const double left = trial % 3 ? 0.0 : static_cast<double>(random.Below(60)) / 100;
        const double right = trial % 3 ? 0.0 : static_cast<double>(random.Below(60)) / 100;
        const auto got = static_cast<size_t>(EntropyBin(counts, left, right));
        int64_t running = 0;
        long double best = -1;
        std::vector<long double> values;
        for (size_t t = 0; t < n; ++t) {
            running += counts[t];
            const double w = static_cast<double>(running) / static_cast<double>(TotalCount(counts));
            const bool candidate = w >= left && 1 - w >= right;
            values.push_back(candidate ? SlowEntropy(counts, 0, t) + SlowEntropy(counts, t, n - 1) : -1);
            best = std::max(best, values.back());
        }
        if (best < 0) {
            EXPECT_EQ(0u, got);
            continue;
        }
        EXPECT_NEAR(static_cast<double>(best), static_cast<double>(values[got]), 1e-12) << trial;
        for (size_t t = 0; t < got; ++t) EXPECT_LT(values[t], best + 1e-12L) << trial;
    }
}

TEST(Thresholds, GreatestEntropyOfKnownHistograms) {
    EXPECT_EQ(2, EntropyBin({1, 1, 1, 1, 1}));          // ln 3 + ln 3
    EXPECT_EQ(1, EntropyBin({1, 1, 1, 1}));             // ln 2 + ln 3 on both sides of the middle: the lower
    EXPECT_EQ(0, EntropyBin({1, 1, 1, 1, 1}, 1.5, 0));  // no candidate
    EXPECT_EQ(0, EntropyBin({1, 1, 1, 1, 1}, 0, 1.5));
    EXPECT_EQ(2, EntropyBin({1, 1, 1, 1, 1}, kNaN, kNaN));
    EXPECT_EQ(1, EntropyBin({1, -2}));  // N = -1: the quotients are -1 and 1, and only the second is at least 0
}

TEST(Thresholds, GreatestEntropyTakesTheLowestOfEqualBins) {
    // H + 0 at one end and 0 + H at the other tie, as do the empty bins before.
    Random random(37);
    for (int trial = 0; trial < 2000; ++trial) {
        Counts counts(10, 0);
        counts[2] = 1 + static_cast<LONG>(random.Below(kMost));
        if (trial % 3) counts[7] = 1 + static_cast<LONG>(random.Below(kMost));
        EXPECT_EQ(0, EntropyBin(counts)) << counts[2] << " and " << counts[7];
    }
    for (int trial = 0; trial < 300; ++trial) {
        const size_t half = 1 + static_cast<size_t>(random.Below(100));
        Counts counts = SomeCounts(random, half, trial % 2 ? 12 : kMost / 2);
        for (size_t i = half; i-- > 0;) counts.push_back(counts[i]);  // mirrored
        EXPECT_LT(EntropyBin(counts), static_cast<int64_t>(half));
    }
}

// ---------------------------------------------------------------------------------------------------- negative counts

TEST(Thresholds, OfNegativeCountsAreSomeBin) {
    Random random(13);
    for (int trial = 0; trial < 1000; ++trial) {
        Counts counts(1 + static_cast<size_t>(random.Below(20)));
        for (LONG& c : counts)
            c = static_cast<LONG>(trial % 2 ? random.Below(kMost) - 1000000000 : random.Below(200) - 90);
        if (trial % 4 == 0) counts.back() = kMost;  // the mean may lie far outside the bins
        if (trial % 4 == 1) counts.front() = kLeast;
        if (TotalCount(counts) < 1) continue;
        const auto n = static_cast<int64_t>(counts.size());
        EXPECT_TRUE(BinOfMinimum(counts, {0, n - 1}));
        for (const int64_t bin : {BinOfGreatestSeparation(counts, 0, 0), EntropyBin(counts),
                                  BinOfBestClassification(counts, 0, 0).value_or(0)})
            EXPECT_TRUE(bin >= 0 && bin < n) << trial;
    }
}

// ---------------------------------------------------------------------------------------------------------- all builds

TEST(Thresholds, EveryBuildGivesTheSameBits) {
    // The hash is this implementation's own, recorded after the comparisons with the definitions had passed.
    Random random(41);
    std::vector<double> scratch;
    uint64_t hash = 0xcbf29ce484222325u;
    const auto add = [&](double value) { hash = (hash ^ std::bit_cast<uint64_t>(value)) * 0x100000001b3u; };
    for (int trial = 0; trial < 300; ++trial) {
        Counts counts(2 + static_cast<size_t>(random.Below(300)));
        for (LONG& c : counts) c = static_cast<LONG>(random.Below(trial % 2 ? 30 : kMost));
        counts[0] = counts[1] = 1;
        for (const auto statistic : {&MeanBin, &VarianceOfBins, &SkewOfBins, &KurtosisOfBins, &EntropyOfBins})
            add(statistic(counts));
        add(StatisticsWithoutTails(counts, 0.1)->deviation);
        add(ExponentialTail(counts, 0.1));
        add(static_cast<double>(BinOfGreatestSeparation(counts, 0.1, 0)));
        add(static_cast<double>(BinOfBestClassification(counts, 0, 0).value_or(-1)));
        add(static_cast<double>(BinOfGreatestEntropy(counts, 0, 0, scratch)));
        add(static_cast<double>(BinOfMinimum(counts, CutTails(counts, 0.1, 0.1)).value_or(-1)));
    }
    EXPECT_EQ(0xca9af324dadd10d8u, hash);
}

}  // namespace
}  // namespace orlix
