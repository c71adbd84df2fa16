#include "numerics/plane.hpp"

#include "support/special_numbers.hpp"
#include "support/testing.hpp"

namespace orlix {
namespace {

TEST(Turn, IsTheSignOfWholeNumbers) {
    std::mt19937 random(1);
    std::uniform_int_distribution<int64_t> little(-4, 4), large(-1000000000, 1000000000);
    for (auto* range : {&little, &large})
        for (int k = 0; k < 2000; ++k) {
            int64_t c[6];
            for (int64_t& v : c) v = (*range)(random);
            const int64_t cross = (c[2] - c[0]) * (c[5] - c[1]) - (c[3] - c[1]) * (c[4] - c[0]);
            const auto point = [&](int i) { return Point{static_cast<double>(c[i]), static_cast<double>(c[i + 1])}; };
            EXPECT_EQ(cross > 0 ? 1 : cross < 0 ? -1 : 0, Turn(point(0), point(2), point(4)));
        }
}

// Near the line y = x through (12, 12) and (24, 24), in steps of the last place of 0.5: the answer is the sign of y - x
// there.
TEST(Turn, IsExactWhereDoublesRound) {
    const double step = std::ldexp(1.0, -53);
    for (int i = 0; i < 64; ++i)
        for (int j = 0; j < 64; ++j) {
            const Point p = {0.5 + i * step, 0.5 + j * step};
            const int expected = j > i ? 1 : j < i ? -1 : 0;
            EXPECT_EQ(expected, Turn(p, {12, 12}, {24, 24})) << i << ' ' << j;
            EXPECT_EQ(-expected, Turn({24, 24}, {12, 12}, p)) << i << ' ' << j;
        }
}

TEST(Turn, HoldsFromDenormalsToTheLargestDouble) {
    const double least = std::numeric_limits<double>::denorm_min(), most = std::numeric_limits<double>::max();
    EXPECT_EQ(1, Turn({0, 0}, {least, 0}, {0, least}));
    EXPECT_EQ(-1, Turn({-most, -most}, {most, most}, {most, -most}));
    EXPECT_EQ(0, Turn({-most, -most}, {0, 0}, {most, most}));
    EXPECT_EQ(-1, Turn({-most, -most}, {-least, 0}, {most, most}));
    EXPECT_EQ(1, Turn({-most, -most}, {least, 0}, {most, most}));
    EXPECT_EQ(0, Turn({0.1, 0.1}, {0.1, 0.1}, {most, 3}));
}

TEST(Hypotenuse, IsRightToTheLastBitOfLongDouble) {
    EXPECT_EQ(5, Hypotenuse(3, -4));
    EXPECT_EQ(std::sqrt(2.0), Hypotenuse(1, 1));
    EXPECT_EQ(0, Hypotenuse(0, -0.0));
    std::mt19937_64 random(2);
    std::uniform_real_distribution<double> mantissa(1, 2);
    std::uniform_int_distribution<int> exponent(-1060, 1022);
    for (int k = 0; k < 20000; ++k) {
        const int e = exponent(random);
        const double x = std::ldexp(mantissa(random), e), y = std::ldexp(mantissa(random), e - k % 60);
        // Exactly scaled, so that squares neither overflow nor vanish.
        const double a = std::ldexp(x, -e), b = std::ldexp(y, -e);
        const long double root = std::sqrt(static_cast<long double>(a) * a + static_cast<long double>(b) * b);
        const double expected = std::ldexp(static_cast<double>(root), e);
        // Rounding twice, and numbers below the normal ones, leave a last place.
        const double last = std::nextafter(expected, kInfinity) - expected;
        EXPECT_LE(std::fabs(Hypotenuse(x, y) - expected), last) << x << ' ' << y;
    }
    EXPECT_EQ(kInfinity, Hypotenuse(1.7e308, 1.7e308));
    EXPECT_EQ(kInfinity, Hypotenuse(kNaN, -kInfinity));
    EXPECT_TRUE(std::isnan(Hypotenuse(kNaN, 1)));
}

}  // namespace
}  // namespace orlix
