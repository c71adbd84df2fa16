#include "numerics/wide_integer.hpp"

#include <gtest/gtest.h>

#include <initializer_list>
#include <limits>

#include "histogram/histograms.hpp"
#include "numerics/power_sums.hpp"

namespace {

using orlix::PowerSums;
using orlix::WideInteger;
using namespace orlix::testing;

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
    const int64_t one = int64_t{1} << 53;  // from here on every second integer is a double
    EXPECT_EQ(0x1p53, WideInteger(one + 1).ToDouble());
    EXPECT_EQ(0x1p53 + 4, WideInteger(one + 3).ToDouble());
    EXPECT_EQ(-0x1p53, WideInteger(-one - 1).ToDouble());
    EXPECT_EQ(0x1p63, WideInteger(kMax64).ToDouble());
    EXPECT_EQ(-0x1p63, WideInteger(kMin64).ToDouble());
    for (int shift = 0; shift < 380; ++shift) {
        WideInteger scale = 1;
        for (int i = 0; i < shift; ++i) scale = scale + scale;
        const double unit = std::ldexp(1.0, shift);
        EXPECT_EQ((0x1p53 + 2) * unit, (scale * (one + 2)).ToDouble()) << shift;
        EXPECT_EQ(0x1p53 * unit, (scale * (one + 1)).ToDouble()) << shift;
        // Half a unit and the least bit more: up. The least bit less than half: down.
        EXPECT_EQ(shift == 0 ? 0x1p53 + 2 : (0x1p53 + 2) * unit, (scale * (one + 1) + 1).ToDouble()) << shift;
        EXPECT_EQ(shift == 0 ? 0x1p53 + 2 : (0x1p53 + 2) * unit, (scale * (one + 3) - 1).ToDouble()) << shift;
    }
}

// 60 times the sum of i^k over 0 .. m - 1.
WideInteger SixtyPowerSums(int64_t m, size_t k) {
    const WideInteger a = m;
    const WideInteger pairs = a * (m - 1);
    switch (k) {
        case 0:
            return a * 60;
        case 1:
            return pairs * 30;
        case 2:
            return pairs * (2 * m - 1) * 10;
        case 3:
            return pairs * pairs * 15;
        default:
            return pairs * (2 * m - 1) * (pairs * 3 - 1) * 2;
    }
}

template <size_t Highest>
void ExpectPowerSumsOfOnes(int64_t n, int64_t first) {
    const PowerSums<Highest> sums(Counts(static_cast<size_t>(n), 1), first);
    for (size_t k = 0; k <= Highest; ++k)
        EXPECT_EQ(0, (sums[k] * 60 - (SixtyPowerSums(first + n, k) - SixtyPowerSums(first, k))).Sign())
            << "bins " << n << " from " << first << " power " << k;
}

TEST(PowerSums, AreExactAcrossBlocksAndOrigins) {
    for (const int64_t n : {1, 2, 63, 64, 65, 128, 255, 256, 257, 1023, 1024, 1025, 65535, 65536, 65537, 200000})
        for (const int64_t first : {int64_t{0}, int64_t{1}, int64_t{1000}, int64_t{2147483647}}) {
            ExpectPowerSumsOfOnes<1>(n, first);
            ExpectPowerSumsOfOnes<2>(n, first);
            ExpectPowerSumsOfOnes<3>(n, first);
            ExpectPowerSumsOfOnes<4>(n, first);
        }
}

TEST(PowerSums, HoldTheLargestCountsOfEitherSign) {
    for (const LONG count : {kMost, kLeast}) {
        const Counts counts(70000, count);
        const PowerSums<4> sums(counts);
        const PowerSums<4> ones(Counts(70000, 1));
        for (size_t k = 0; k <= 4; ++k) EXPECT_EQ(0, (sums[k] - ones[k] * int64_t{count}).Sign()) << k;
        const PowerSums<1> low(counts);
        EXPECT_EQ(0, (low[1] - sums[1]).Sign());
    }
}

}  // namespace
