#include "binary/drawing.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

namespace orlix {
namespace {

constexpr int32_t kMost = std::numeric_limits<int32_t>::max();
constexpr int32_t kLeast = std::numeric_limits<int32_t>::min();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

BitmapStore Bitmap(int32_t width, int32_t height) {
    BitmapStore bitmap;
    bitmap.Create(width, height, true);
    return bitmap;
}

bool Bit(const BitmapStore& bitmap, int32_t x, int32_t y) { return bitmap.Row(y)[x / 8] & (0x80 >> (x % 8)); }

std::vector<bool> Pixels(const BitmapStore& bitmap) {
    std::vector<bool> pixels;
    for (int32_t y = 0; y < bitmap.height(); ++y)
        for (int32_t x = 0; x < bitmap.width(); ++x) pixels.push_back(Bit(bitmap, x, y));
    return pixels;
}

std::vector<uint8_t> RowBytes(const BitmapStore& bitmap, int32_t y) {
    return {bitmap.Row(y), bitmap.Row(y) + bitmap.rowBytes()};
}

// Draws into a bitmap of noise and compares every bit, padding included, with what the rule "inside(x, y)" asks for; so
// it does for the marks of the rows.
template <class Draw, class Inside>
void ExpectDrawn(int32_t width, int32_t height, Draw draw, Inside inside) {
    for (const DrawType how : {DT_On, DT_Off, DT_Xor, static_cast<DrawType>(3)}) {
        BitmapStore bitmap = Bitmap(width, height);
        std::mt19937 random(3);
        std::vector<std::vector<uint8_t>> before;
        for (int32_t y = 0; y < height; ++y) {
            for (ptrdiff_t i = 0; i < bitmap.rowBytes(); ++i) bitmap.WriteRow(y)[i] = static_cast<uint8_t>(random());
            bitmap.ClearModified(y);
            before.push_back(RowBytes(bitmap, y));
        }
        draw(bitmap, how);
        for (int32_t y = 0; y < height; ++y) {
            bool touched = false;
            for (int32_t x = 0; x < 8 * bitmap.rowBytes(); ++x) {
                const bool was = before[static_cast<size_t>(y)][static_cast<size_t>(x / 8)] & (0x80 >> (x % 8));
                const bool in = x < width && inside(x, y);
                touched = touched || in;
                ASSERT_EQ(!in             ? was
                          : how == DT_On  ? true
                          : how == DT_Off ? false
                                          : !was,
                          Bit(bitmap, x, y))
                    << x << ' ' << y << " how " << how;
            }
            ASSERT_EQ(touched, bitmap.Modified(y)) << y;
        }
    }
}

// --------------------------------------------------------------------------------------------------------------- spans

TEST(DrawRow, SetsTheBitsFromLeftToRight) {
    BitmapStore bitmap = Bitmap(24, 1);
    EXPECT_EQ(Drawing::Drawn, DrawRow(bitmap, 0, {3, 3}, DT_On));
    EXPECT_EQ((std::vector<uint8_t>{0x10, 0, 0, 0}), RowBytes(bitmap, 0));
    DrawRow(bitmap, 0, {0, 7}, DT_On);
    EXPECT_EQ((std::vector<uint8_t>{0xff, 0, 0, 0}), RowBytes(bitmap, 0));
    DrawRow(bitmap, 0, {6, 17}, DT_Xor);
    EXPECT_EQ((std::vector<uint8_t>{0xfc, 0xff, 0xc0, 0}), RowBytes(bitmap, 0));
    DrawRow(bitmap, 0, {1, 16}, DT_Off);
    EXPECT_EQ((std::vector<uint8_t>{0x80, 0, 0x40, 0}), RowBytes(bitmap, 0));
}

TEST(DrawRow, DrawsEverySpanOfEveryWidthAndNothingElse) {
    for (const int32_t width : {1, 7, 8, 9, 15, 16, 17, 24, 40})
        for (int32_t left = -2; left < width + 2; ++left)
            for (int32_t right = left; right < width + 2; ++right)
                ExpectDrawn(
                    width, 2,
                    [&](BitmapStore& bitmap, DrawType how) {
                        DrawRow(bitmap, 1, {left, right}, how);
                    },
                    [&](int32_t x, int32_t y) { return y == 1 && left <= x && x <= right; });
}

TEST(DrawRow, LongSpansBeginAndEndAnywhere) {
    for (const int32_t left : {0, 5, 8, 13, 64, 130})
        for (const int32_t right : {191, 192, 199, 200, 204, 263, 264})
            ExpectDrawn(
                265, 1,
                [&](BitmapStore& bitmap, DrawType how) {
                    DrawRow(bitmap, 0, {left, right}, how);
                },
                [&](int32_t x, int32_t) { return left <= x && x <= right; });
}

TEST(DrawRow, ASpanBesideTheBitmapMisses) {
    BitmapStore bitmap = Bitmap(10, 3);
    for (int32_t y = 0; y < 3; ++y) bitmap.ClearModified(y);
    for (const int32_t row : {-1, 3, kLeast, kMost}) EXPECT_EQ(Drawing::Missed, DrawRow(bitmap, row, {0, 9}, DT_On));
    EXPECT_EQ(Drawing::Missed, DrawRow(bitmap, 1, {10, 13}, DT_On));
    EXPECT_EQ(Drawing::Missed, DrawRow(bitmap, 1, {kLeast, -1}, DT_On));
    EXPECT_EQ(std::vector<bool>(30), Pixels(bitmap));
    for (int32_t y = 0; y < 3; ++y) EXPECT_FALSE(bitmap.Modified(y));
    EXPECT_EQ(Drawing::Drawn, DrawRow(bitmap, 1, {kLeast, kMost}, DT_On));
}

// ---------------------------------------------------------------------------------------------------------- rectangles

TEST(DrawRectangle, DrawsThePixelsBetweenItsEndsWhereverTheyLie) {
    for (const int32_t left : {kLeast, -1, 0, 3, 10})
        for (const int32_t right : {left, 0, 5, 10, kMost})
            for (const int32_t top : {kLeast, -1, 0, 4, 6})
                for (const int32_t bottom : {top, 2, 6, kMost})
                    ExpectDrawn(
                        11, 7,
                        [&](BitmapStore& bitmap, DrawType how) {
                            DrawRectangle(bitmap, left, top, right, bottom, how);
                        },
                        [&](int32_t x, int32_t y) { return left <= x && x <= right && top <= y && y <= bottom; });
}

TEST(DrawRectangle, SaysWhetherItMissesOrHasEmptySpans) {
    BitmapStore bitmap = Bitmap(10, 8);
    EXPECT_EQ(Drawing::Missed, DrawRectangle(bitmap, 0, -5, 9, -1, DT_On));
    EXPECT_EQ(Drawing::Missed, DrawRectangle(bitmap, 0, 8, 9, 9, DT_On));
    EXPECT_EQ(Drawing::Missed, DrawRectangle(bitmap, 10, 0, 12, 7, DT_On));
    EXPECT_EQ(Drawing::Missed, DrawRectangle(bitmap, -9, 0, -1, 7, DT_On));
    EXPECT_EQ(Drawing::Missed, DrawRectangle(bitmap, 12, 0, 5, 7, DT_On));
    EXPECT_EQ(Drawing::WithEmptySpans, DrawRectangle(bitmap, 8, 2, 3, 4, DT_On));
    EXPECT_EQ(Drawing::Drawn, DrawRectangle(bitmap, 8, 4, 3, 2, DT_On));  // no rows at all
    EXPECT_EQ(Drawing::Drawn, DrawRectangle(bitmap, 3, 4, 8, 2, DT_On));
    EXPECT_EQ(std::vector<bool>(80), Pixels(bitmap));
}

// --------------------------------------------------------------------------------------------------------------- disks

TEST(DrawDisk, DrawsThePixelCentresWithinTheRadius) {
    // In eighths of a pixel, where all numbers are whole.
    for (const int64_t cx : {-30, 0, 57, 64, 180})
        for (const int64_t cy : {-17, 44, 48})
            for (const int64_t r : {0, 1, 4, 7, 8, 9, 16, 21, 33, 80, 200})
                ExpectDrawn(
                    21, 12,
                    [&](BitmapStore& bitmap, DrawType how) {
                        DrawDisk(bitmap, {double(cx) / 8, double(cy) / 8, double(r) / 8}, how);
                    },
                    [&](int32_t x, int32_t y) {
                        return (8 * x - cx) * (8 * x - cx) + (8 * y - cy) * (8 * y - cy) <= r * r;
                    });
}

TEST(DrawDisk, EmptyRowsBetweenPixelCentresDrawNothingAndSaySo) {
    BitmapStore bitmap = Bitmap(12, 12);
    EXPECT_EQ(Drawing::WithEmptySpans, DrawDisk(bitmap, {5.5, 5.5, 0.5}, DT_On));
    EXPECT_EQ(std::vector<bool>(144), Pixels(bitmap));
    EXPECT_EQ(Drawing::Drawn, DrawDisk(bitmap, {5, 5, 0}, DT_On));
    EXPECT_TRUE(Bit(bitmap, 5, 5));
    // The empty row, -1 or 12, is none of the bitmap's.
    for (const double y : {-0.2, 11.2}) EXPECT_EQ(Drawing::Drawn, DrawDisk(bitmap, {5.5, y, 0.9}, DT_On));
}

TEST(DrawDisk, NegativeRadiiDrawNothingHoweverSmall) {
    BitmapStore bitmap = Bitmap(12, 12);
    for (const double radius : {-1.0, -0.5, -1e-17, -1e300})
        for (const double centre : {5.0, 5.5}) DrawDisk(bitmap, {centre, centre, radius}, DT_On);
    EXPECT_EQ(std::vector<bool>(144), Pixels(bitmap));
    EXPECT_EQ(Drawing::Drawn, DrawDisk(bitmap, {5, 5, -1}, DT_On));
}

TEST(DrawDisk, HugeDisksAreClippedBeforeTheyAreDrawn) {
    BitmapStore bitmap = Bitmap(12, 12);
    EXPECT_EQ(Drawing::Drawn, DrawDisk(bitmap, {5, 5, kInf}, DT_On));
    EXPECT_EQ(std::vector<bool>(144, true), Pixels(bitmap));
    EXPECT_EQ(Drawing::Drawn, DrawDisk(bitmap, {5, 5, 1e300}, DT_Xor));
    EXPECT_EQ(std::vector<bool>(144), Pixels(bitmap));
    // A disk of a thousand million pixels, tangent to the left of column 3.
    DrawDisk(bitmap, {1e9 + 3, 5, 1e9}, DT_On);
    EXPECT_FALSE(Bit(bitmap, 2, 5));
    EXPECT_TRUE(Bit(bitmap, 3, 5));
    EXPECT_TRUE(Bit(bitmap, 11, 11));
}

TEST(DrawDisk, DisksBesideTheBitmapAndThoseOfNoNumbersMiss) {
    BitmapStore bitmap = Bitmap(12, 12);
    EXPECT_EQ(Drawing::Missed, DrawDisk(bitmap, {5, -3, 2.9}, DT_On));
    EXPECT_EQ(Drawing::Missed, DrawDisk(bitmap, {5, 14, 2.9}, DT_On));
    EXPECT_EQ(Drawing::Missed, DrawDisk(bitmap, {-3, 5, 1.9}, DT_On));
    EXPECT_EQ(Drawing::Missed, DrawDisk(bitmap, {14, 5, 1.9}, DT_On));
    for (const double bad : {kNaN, kInf, -kInf}) {
        EXPECT_EQ(Drawing::Missed, DrawDisk(bitmap, {bad, 5, 3}, DT_On));
        EXPECT_EQ(Drawing::Missed, DrawDisk(bitmap, {5, bad, 3}, DT_On));
        EXPECT_EQ(Drawing::Missed, DrawDisk(bitmap, {bad, bad, kInf}, DT_On));
    }
    EXPECT_EQ(Drawing::Missed, DrawDisk(bitmap, {5, 5, kNaN}, DT_On));
    EXPECT_EQ(std::vector<bool>(144), Pixels(bitmap));
}

// --------------------------------------------------------------------------------------------------------------- lines

TEST(DrawLine, CombinesEachOfItsPixelsOnce) {
    ExpectDrawn(
        10, 5,
        [](BitmapStore& bitmap, DrawType how) {
            DrawLine(bitmap, {0, 0, 3, 1}, how);
        },
        [](int32_t x, int32_t y) { return y == x / 2 && x < 4; });
    ExpectDrawn(
        10, 5,
        [](BitmapStore& bitmap, DrawType how) {
            DrawLine(bitmap, {kMost, 2, kLeast, 2}, how);
        },
        [](int32_t, int32_t y) { return y == 2; });
    ExpectDrawn(
        10, 5,
        [](BitmapStore& bitmap, DrawType how) {
            DrawLine(bitmap, {20, 0, 20, 4}, how);
        },
        [](int32_t, int32_t) { return false; });
}

TEST(Drawing, IntoAStoreWithoutPixelsDoesNothing) {
    BitmapStore bitmap;
    EXPECT_EQ(Drawing::Missed, DrawRow(bitmap, 0, {0, 0}, DT_On));
    EXPECT_EQ(Drawing::Missed, DrawRectangle(bitmap, 0, 0, 1, 1, DT_On));
    EXPECT_EQ(Drawing::Drawn, DrawRectangle(bitmap, -1, -1, 1, 1, DT_On));
    DrawDisk(bitmap, {0, 0, 5}, DT_On);
    DrawLine(bitmap, {0, 0, 5, 5}, DT_On);
}

}  // namespace
}  // namespace orlix
