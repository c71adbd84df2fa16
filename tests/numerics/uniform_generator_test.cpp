#include "numerics/uniform_generator.hpp"

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace orlix {
namespace {

// Worked out with rational numbers from the three congruences, table and start that the header states.
TEST(UniformGenerator, FirstNumbersOfSeedMinusOne) {
    constexpr double kFirst[] = {0x1.8f674dc41104ap-2, 0x1.5e830f3a84593p-3, 0x1.48e68b071654cp-1,
                                 0x1.bcda3367872bfp-1, 0x1.5d5240effac3ap-3, 0x1.62ffc995ea2eap-1};
    UniformGenerator random(-1);
    for (const double number : kFirst) EXPECT_DOUBLE_EQ(number, random());
    for (int i = 6; i < 999; ++i) random();
    EXPECT_DOUBLE_EQ(0x1.e16d0a35d7738p-1, random());
    for (int i = 1000; i < 99999; ++i) random();
    EXPECT_DOUBLE_EQ(0x1.9912966df0e48p-4, random());
}

TEST(UniformGenerator, StartsAgainWithTheSeedAndDiffersFromOtherSeeds) {
    UniformGenerator a(-1), b(-1), other(-2);
    int different = 0;
    for (int i = 0; i < 1000; ++i) {
        const double number = a();
        ASSERT_EQ(number, b());
        different += number != other();
    }
    EXPECT_GT(different, 990);
}

TEST(UniformGenerator, FillsTheUnitIntervalEvenlyAndPairwiseIndependently) {
    UniformGenerator random(-1);
    std::array<int, 100> cells = {};
    double previous = random();
    constexpr int kNumbers = 200000;
    for (int i = 0; i < kNumbers; ++i) {
        const double u = random();
        ASSERT_GE(u, 0.0);
        ASSERT_LT(u, 1.0);
        ++cells[static_cast<size_t>(previous * 10) * 10 + static_cast<size_t>(u * 10)];
        previous = u;
    }
    double chiSquare = 0;  // of 99 degrees of freedom: 148 is exceeded once in 1000 times
    for (const int count : cells)
        chiSquare += (count - kNumbers / 100.0) * (count - kNumbers / 100.0) / (kNumbers / 100.0);
    EXPECT_LT(chiSquare, 148.0);
    EXPECT_GT(chiSquare, 60.0);
}

// The largest number is 1 - 1 / (259200 * 134456): the index of a pixel stays below the number of pixels.
TEST(UniformGenerator, TimesACountStaysBelowTheCount) {
    const double largest = (259199 + 134455.0 / 134456) / 259200;
    for (const double n : {1.0, 3.0, 4294967295.0, 0x1p50}) EXPECT_LT(largest * n, n);
}

}  // namespace
}  // namespace orlix
