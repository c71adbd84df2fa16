#include "geometry/line.hpp"

#include "support/special_numbers.hpp"
#include "support/testing.hpp"

namespace orlix {
namespace {

using Pixel = std::pair<int64_t, int64_t>;
using Pixels = std::vector<Pixel>;

// The visible pixels. Checks that ForEach and ForEachRow yield the same ones.
Pixels Visible(const Line& line, int32_t width, int32_t height) {
    const VisibleSteps steps(line, width, height);
    Pixels pixels, ofRows;
    steps.ForEach([&](int32_t x, int32_t y) { pixels.push_back({x, y}); });
    int64_t rows = 0;
    steps.ForEachRow([&](int32_t y, int32_t left, int32_t right) {
        ++rows;
        if (line.x1 <= line.x2)
            for (int32_t x = left; x <= right; ++x) ofRows.push_back({x, y});
        else
            for (int32_t x = right; x >= left; --x) ofRows.push_back({x, y});
    });
    EXPECT_EQ(pixels, ofRows);
    EXPECT_EQ(rows, steps.Rows());
    return pixels;
}

// The textbook form of Bresenham's algorithm, from end to end; pixels outside the image are skipped.
Pixels Walked(const Line& line, int32_t width, int32_t height) {
    Pixels pixels;
    const int64_t ax = 2 * std::abs(int64_t{line.x2} - line.x1);
    const int64_t ay = 2 * std::abs(int64_t{line.y2} - line.y1);
    const int sx = line.x2 < line.x1 ? -1 : 1;
    const int sy = line.y2 < line.y1 ? -1 : 1;
    int64_t x = line.x1;
    int64_t y = line.y1;
    const bool steep = ax <= ay;
    int64_t d = steep ? ax - ay / 2 : ay - ax / 2;
    for (;;) {
        if (x >= 0 && x < width && y >= 0 && y < height) pixels.push_back({x, y});
        if (steep ? y == line.y2 : x == line.x2) return pixels;
        if (d >= 0) {
            (steep ? x : y) += steep ? sx : sy;
            d -= steep ? ay : ax;
        }
        (steep ? y : x) += steep ? sy : sx;
        d += steep ? ax : ay;
    }
}

TEST(Line, EqualsTheWalkForAllSmallLines) {
    for (int32_t x1 = -4; x1 < 9; ++x1)
        for (int32_t y1 = -4; y1 < 8; ++y1)
            for (int32_t x2 = -4; x2 < 9; ++x2)
                for (int32_t y2 = -4; y2 < 8; ++y2) {
                    const Line line{x1, y1, x2, y2};
                    ASSERT_EQ(Walked(line, 5, 4), Visible(line, 5, 4)) << x1 << ' ' << y1 << ' ' << x2 << ' ' << y2;
                }
    EXPECT_TRUE(Visible({0, 0, 5, 5}, 0, 0).empty());
}

TEST(Line, EqualsTheWalkWhenMostOfItLiesOutside) {
    std::mt19937 random(20);
    std::uniform_int_distribution<int32_t> anywhere(-20000, 20000);
    size_t seen = 0;
    for (int i = 0; i < 2000; ++i) {
        // Passes through a point of the image, so that most lines are visible.
        const int32_t x = static_cast<int32_t>(random() % 300), y = static_cast<int32_t>(random() % 200);
        const int32_t x1 = anywhere(random), y1 = anywhere(random);
        const Line through{x1, y1, 2 * x - x1, 2 * y - y1};
        const auto pixels = Visible(through, 300, 200);
        ASSERT_EQ(Walked(through, 300, 200), pixels);
        seen += pixels.size();
    }
    EXPECT_GT(seen, 100000u);
}

// Pixel k lies within half a step of the true line: -major < 2 (side major - k minor) <= major.
TEST(Line, AThousandMillionStepsAwayThePixelsAreStillThoseOfTheLine) {
    const Line line{-500000000, -300000001, 500000000, 300000002};
    const int64_t major = int64_t{line.x2} - line.x1;
    const int64_t minor = int64_t{line.y2} - line.y1;
    int64_t next = 0;
    for (const auto& [x, y] : Visible(line, 4000, 4000)) {
        EXPECT_EQ(next++, x);
        const int64_t k = x - line.x1, side = y - line.y1;
        EXPECT_LE(2 * (side * major - k * minor), major);
        EXPECT_GT(2 * (side * major - k * minor), -major);
    }
    EXPECT_EQ(4000, next);
}

TEST(Line, ReachesFromOneEndOfTheNumbersToTheOther) {
    Pixels diagonal;
    for (int64_t i = 0; i < 50; ++i) diagonal.emplace_back(i, i);
    EXPECT_EQ(diagonal, Visible({kLeast, kLeast, kMost, kMost}, 100, 50));
    // 2^32 - 1 steps to the right and one down: the downward step comes half-way, between columns -1 and 0.
    EXPECT_EQ((Pixels{{0, 1}, {1, 1}}), Visible({kLeast, 0, kMost, 1}, 2, 2));
    EXPECT_EQ((Pixels{{1, 0}, {0, 0}}), Visible({kMost, 0, kLeast, 1}, 2, 2));
    EXPECT_EQ((Pixels{{1, 0}, {1, 1}}), Visible({0, kLeast, 1, kMost}, 2, 2));
    // Down to the left across the first column of an image of the largest height.
    EXPECT_EQ(Pixels{}, Visible({kMost, kLeast, kLeast, kMost}, 1, kMost));
    EXPECT_EQ((Pixels{{0, 0}}), Visible({kMost, kLeast + 1, kLeast + 1, kMost}, kMost, kMost));
}

TEST(Line, RoundsItsEndsUpFromTheHalfAndHoldsThemIn32Bits) {
    using Ends = std::array<int32_t, 4>;
    const auto ends = [](const Line& line) { return Ends{line.x1, line.y1, line.x2, line.y2}; };
    EXPECT_EQ((Ends{2, 3, -2, 3}), ends(Line::BetweenRounded(2.4, 2.6, -2.5, 2.5)));
    EXPECT_EQ((Ends{kMost, kLeast, kMost, kLeast}),
              ends(Line::BetweenRounded(1e300, -kInfinity, kInfinity, -2147483649.0)));
}

}  // namespace
}  // namespace orlix
