#include "geometry/line.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <ostream>
#include <random>
#include <vector>

namespace orlix {
namespace {

struct Pixel {
    int64_t x, y;
    friend bool operator==(const Pixel&, const Pixel&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Pixel& p) {
        return out << '(' << p.x << ',' << p.y << ')';
    }
};

// The visible pixels. Checks that ForEach and ForEachRow yield the same ones.
std::vector<Pixel> Visible(const Line& line, int32_t width, int32_t height) {
    const VisibleSteps steps(line, width, height);
    std::vector<Pixel> pixels, ofRows;
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
std::vector<Pixel> Walked(const Line& line, int32_t width, int32_t height) {
    std::vector<Pixel> pixels;
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

constexpr int32_t kLeast = std::numeric_limits<int32_t>::min();
constexpr int32_t kMost = std::numeric_limits<int32_t>::max();

TEST(Line, HalfAStepGoesAwayFromTheFirstEnd) {
    EXPECT_THAT(Visible({0, 0, 3, 1}, 10, 10),
                testing::ElementsAre(Pixel{0, 0}, Pixel{1, 0}, Pixel{2, 1}, Pixel{3, 1}));
    EXPECT_THAT(Visible({0, 0, 2, 1}, 10, 10), testing::ElementsAre(Pixel{0, 0}, Pixel{1, 1}, Pixel{2, 1}));
    EXPECT_THAT(Visible({2, 1, 0, 0}, 10, 10), testing::ElementsAre(Pixel{2, 1}, Pixel{1, 0}, Pixel{0, 0}));
    EXPECT_THAT(Visible({4, 4, 4, 4}, 10, 10), testing::ElementsAre(Pixel{4, 4}));
}

TEST(Line, EqualsTheWalkForAllSmallLines) {
    constexpr int32_t kWidth = 5;
    constexpr int32_t kHeight = 4;
    for (int32_t x1 = -4; x1 < 9; ++x1)
        for (int32_t y1 = -4; y1 < 8; ++y1)
            for (int32_t x2 = -4; x2 < 9; ++x2)
                for (int32_t y2 = -4; y2 < 8; ++y2) {
                    const Line line{x1, y1, x2, y2};
                    ASSERT_EQ(Walked(line, kWidth, kHeight), Visible(line, kWidth, kHeight))
                        << x1 << ' ' << y1 << ' ' << x2 << ' ' << y2;
                }
}

TEST(Line, EqualsTheWalkWhenMostOfItLiesOutside) {
    std::mt19937 random(20);
    std::uniform_int_distribution<int32_t> anywhere(-20000, 20000);
    size_t seen = 0;
    for (int i = 0; i < 3000; ++i) {
        // Passes through a point of the image, so that most lines are visible.
        const Line line{anywhere(random), anywhere(random), static_cast<int32_t>(random() % 300),
                        static_cast<int32_t>(random() % 200)};
        const Line through{line.x1, line.y1, 2 * line.x2 - line.x1, 2 * line.y2 - line.y1};
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
    const auto pixels = Visible(line, 4000, 4000);
    ASSERT_EQ(4000u, pixels.size());
    for (size_t i = 0; i < pixels.size(); ++i) {
        EXPECT_EQ(static_cast<int64_t>(i), pixels[i].x);
        const int64_t k = pixels[i].x - line.x1;
        const int64_t side = pixels[i].y - line.y1;
        EXPECT_LE(2 * (side * major - k * minor), major);
        EXPECT_GT(2 * (side * major - k * minor), -major);
    }
}

TEST(Line, ReachesFromOneEndOfTheNumbersToTheOther) {
    const auto diagonal = Visible({kLeast, kLeast, kMost, kMost}, 100, 50);
    ASSERT_EQ(50u, diagonal.size());
    for (size_t i = 0; i < diagonal.size(); ++i)
        EXPECT_EQ((Pixel{static_cast<int64_t>(i), static_cast<int64_t>(i)}), diagonal[i]);

    // 2^32 - 1 steps to the right and one down: the downward step comes half-way, between columns -1 and 0.
    EXPECT_THAT(Visible({kLeast, 0, kMost, 1}, 2, 2), testing::ElementsAre(Pixel{0, 1}, Pixel{1, 1}));
    EXPECT_THAT(Visible({kMost, 0, kLeast, 1}, 2, 2), testing::ElementsAre(Pixel{1, 0}, Pixel{0, 0}));
    EXPECT_THAT(Visible({0, kLeast, 1, kMost}, 2, 2), testing::ElementsAre(Pixel{1, 0}, Pixel{1, 1}));

    // Down to the left across the first column of an image of the largest height.
    const auto anti = Visible({kMost, kLeast, kLeast, kMost}, 1, kMost);
    EXPECT_TRUE(anti.empty());
    EXPECT_THAT(Visible({kMost, kLeast + 1, kLeast + 1, kMost}, kMost, kMost), testing::ElementsAre(Pixel{0, 0}));
}

TEST(Line, MissingTheImageShowsNothing) {
    EXPECT_TRUE(Visible({-5, 0, -1, 3}, 10, 10).empty());
    EXPECT_TRUE(Visible({10, 0, 30, 9}, 10, 10).empty());
    EXPECT_TRUE(Visible({-3, 2, 2, -3}, 10, 10).empty());  // passes the corner
    EXPECT_TRUE(Visible({0, 0, 5, 5}, 0, 0).empty());
}

TEST(Line, RoundsItsEndsUpFromTheHalfAndHoldsThemIn32Bits) {
    const double inf = std::numeric_limits<double>::infinity();
    const Line line = Line::BetweenRounded(2.4, 2.6, -2.5, 2.5);
    EXPECT_EQ(2, line.x1);
    EXPECT_EQ(3, line.y1);
    EXPECT_EQ(-2, line.x2);
    EXPECT_EQ(3, line.y2);
    const Line outside = Line::BetweenRounded(1e300, -inf, inf, -2147483649.0);
    EXPECT_EQ(kMost, outside.x1);
    EXPECT_EQ(kLeast, outside.y1);
    EXPECT_EQ(kMost, outside.x2);
    EXPECT_EQ(kLeast, outside.y2);
}

}  // namespace
}  // namespace orlix
