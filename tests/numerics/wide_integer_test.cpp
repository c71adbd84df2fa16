#include "numerics/wide_integer.hpp"

#include "histogram/histograms.hpp"
#include "numerics/power_sums.hpp"
#include "support/testing.hpp"

namespace orlix {
namespace {

constexpr int64_t kMax64 = std::numeric_limits<int64_t>::max();
constexpr int64_t kMin64 = std::numeric_limits<int64_t>::min();

TEST(WideInteger, SmallArithmeticIsThatOf64Bits) {
    for (const int64_t a : std::initializer_list<int64_t>{-3000000007, -1, 0, 1, 65536, 2147483648})
        for (const int64_t b : std::initializer_list<int64_t>{-2147483649, -7, 0, 1, 3, 1000000000}) {
            EXPECT_EQ(static_cast<double>(a + b), (WideInteger(a) + b).ToDouble());
            EXPECT_EQ(static_cast<double>(a - b), (WideInteger(a) - b).ToDouble());
            EXPECT_EQ(0, (WideInteger(a) * b - WideInteger(a * b)).Sign());
            EXPECT_EQ((a > b) - (a < b), (WideInteger(a) - b).Sign());
        }
}

TEST(WideInteger, ProductsBeyond64BitsKeepEveryBit) {
    // (2^63)^6 = 2^378, reached by negative factors too; one more and one less are still told apart.
    WideInteger power = 1;
    for (int i = 0; i < 6; ++i) power = power * kMin64;
    EXPECT_EQ(0x1p378, power.ToDouble());
    EXPECT_EQ(1, (power + 1 - power).Sign());
    EXPECT_EQ(-1, (power - 1 - power).Sign());
    EXPECT_EQ(-0x1p441, (power * kMin64).ToDouble());
    // (a + b)(a - b) = a^2 - b^2
    const WideInteger a = WideInteger(kMax64) * kMax64 * 12345;
    const WideInteger b = WideInteger(kMin64) * 987654321;
    EXPECT_EQ(0, ((a + b) * (a - b) - (a * a - b * b)).Sign());
    WideInteger sum = b;
    sum.AddMultiple(a, 4294967295u);
    EXPECT_EQ(0, (sum - b - a * 4294967295).Sign());
}

TEST(WideInteger, BecomesTheNearestDoubleWithTiesToEven) {
    EXPECT_EQ(0x1p63, WideInteger(kMax64).ToDouble());
    EXPECT_EQ(-0x1p63, WideInteger(kMin64).ToDouble());
    const int64_t one = int64_t{1} << 53;  // from here on every second integer is a double
    WideInteger scale = 1;
    for (int shift = 0; shift < 380; ++shift, scale = scale + scale) {
        SCOPED_TRACE(shift);
        const double unit = std::ldexp(1.0, shift), up = (0x1p53 + 2) * unit;
        EXPECT_EQ(up, (scale * (one + 2)).ToDouble());
        EXPECT_EQ(0x1p53 * unit, (scale * (one + 1)).ToDouble());
        EXPECT_EQ(-(0x1p53 + 4) * unit, (scale * (-one - 3)).ToDouble());
        // Half a unit and the least bit more: up. The least bit less than half: down.
        EXPECT_EQ(up, (scale * (one + 1) + 1).ToDouble());
        EXPECT_EQ(up, (scale * (one + 3) - 1).ToDouble());
    }
}

template <size_t Highest, size_t Slow>
void ExpectSums(const PowerSums<Slow>& slow, const Counts& counts, int64_t first) {
    const PowerSums<Highest> sums(counts, first);
    for (size_t k = 0; k <= Highest; ++k)
        EXPECT_EQ(0, (sums[k] - slow[k]).Sign()) << counts.size() << " bins from " << first << ", power " << k;
}

// Adds the bins one by one.
template <size_t Highest>
PowerSums<Highest> SlowSums(const Counts& counts, int64_t first) {
    PowerSums<Highest> sums;
    for (const LONG count : counts) sums.Add(first++, count);
    return sums;
}

TEST(PowerSums, AreExactAcrossBlocksAndOriginsForTheLargestCounts) {
    Random random(1);
    for (const size_t n : {1, 2, 63, 64, 65, 128, 255, 256, 257, 1024, 1025}) {
        Counts noise(n);
        for (LONG& count : noise) count = static_cast<LONG>(random.Below(kMost) - kMost / 3);
        for (const auto& [first, counts] :
             {std::pair<int64_t, Counts>{0, noise}, {1000, Counts(n, kMost)}, {kMost, Counts(n, kLeast)}}) {
            const PowerSums<4> slow = SlowSums<4>(counts, first);
            ExpectSums<1>(slow, counts, first);
            ExpectSums<2>(slow, counts, first);
            ExpectSums<3>(slow, counts, first);
            ExpectSums<4>(slow, counts, first);
        }
    }
    const Counts full(65537, kLeast);
    ExpectSums<1>(SlowSums<1>(full, kMost), full, kMost);
}

}  // namespace
}  // namespace orlix
