#include "numerics/exact_accumulator.hpp"

#include "support/testing.hpp"

namespace orlix {
namespace {

ExactAccumulator SumOf(const std::vector<double>& terms) {
    ExactAccumulator sum;
    for (const double term : terms) sum.Add(term);
    return sum;
}

TEST(ExactAccumulator, SeesWhatADoubleSumLoses) {
    constexpr double kTiny = std::numeric_limits<double>::denorm_min(), kHuge = std::numeric_limits<double>::max();
    EXPECT_GT(SumOf({kHuge, kTiny}), SumOf({kHuge}));
    EXPECT_LT(SumOf({kHuge, kTiny}), SumOf({kHuge, kTiny, kTiny}));
    EXPECT_EQ(SumOf({1, 0x1p-53, 0x1p-53}), SumOf({1 + 0x1p-52}));
    EXPECT_EQ(SumOf({0.1, 0.2}) <=> SumOf({0.3}), std::strong_ordering::greater);  // as the doubles they are
    EXPECT_EQ(SumOf({}), SumOf({0, 0}));
    EXPECT_LT(SumOf({}), SumOf({kTiny}));
    // Carries through every digit: 2^52 - 1 units of the last place of all exponents, and one unit more.
    std::vector<double> all;
    for (int e = -1022; e < 971; e += 53) all.push_back(std::ldexp(0x1p53 - 1, e));
    const ExactAccumulator before = SumOf(all);
    all.push_back(0x1p-1022);
    EXPECT_GT(SumOf(all), before);
    EXPECT_EQ(SumOf(all), SumOf({std::ldexp(1.0, -1022 + 53 * static_cast<int>(all.size() - 1))}));
}

TEST(ExactAccumulator, DoesNotDependOnTheOrderNorOnRepetitionByCount) {
    std::mt19937_64 random(5);
    std::vector<double> terms(3000);
    for (double& term : terms)
        term = std::ldexp(static_cast<double>(random() >> 11), static_cast<int>(random() % 1900) - 1100);
    const ExactAccumulator sum = SumOf(terms);
    std::shuffle(terms.begin(), terms.end(), random);
    EXPECT_EQ(sum, SumOf(terms));
    for (const double term : {0x1.fffffffffffffp3, 0x0.8p-1060, 0.1}) {
        ExactAccumulator repeated, counted, most;
        for (int i = 0; i < 12345; ++i) repeated.Add(term);
        counted.Add(term, 12345);
        EXPECT_EQ(repeated, counted);
        counted.Add(term, 0xffffffff - 12345);
        most.Add(term, 0xffffffff);
        EXPECT_EQ(most, counted);
    }
}

}  // namespace
}  // namespace orlix
