#include "numerics/uniform_generator.hpp"

#include "support/testing.hpp"

namespace orlix {
namespace {

// Worked out with rational numbers from the three congruences, table and start that the header states.
TEST(UniformGenerator, NumbersOfSeedMinusOne) {
    constexpr double kFirst[] = {0x1.8f674dc41104ap-2, 0x1.5e830f3a84593p-3, 0x1.48e68b071654cp-1,
                                 0x1.bcda3367872bfp-1, 0x1.5d5240effac3ap-3, 0x1.62ffc995ea2eap-1};
    UniformGenerator random(-1);
    for (const double number : kFirst) EXPECT_DOUBLE_EQ(number, random());
    for (int i = 6; i < 999; ++i) random();
    EXPECT_DOUBLE_EQ(0x1.e16d0a35d7738p-1, random());
    for (int i = 1000; i < 99999; ++i) {
        const double number = random();
        ASSERT_TRUE(number >= 0 && number < 1);
    }
    EXPECT_DOUBLE_EQ(0x1.9912966df0e48p-4, random());
    EXPECT_NE(kFirst[0], UniformGenerator(-2)());
}

}  // namespace
}  // namespace orlix
