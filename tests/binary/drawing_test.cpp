#include "binary/drawing.hpp"

#include "binary/binary_pictures.hpp"
#include "support/special_numbers.hpp"
#include "support/testing.hpp"

namespace orlix {
namespace {

BitmapStore Bitmap(int32_t width, int32_t height) { return NoiseBitmap(width, height, 0, Padding::Clear); }

// Draws into a bitmap of noise and compares every bit, padding included, with what the rule "inside(x, y)" asks for; so
// it does for the marks of the rows.
template <class Draw, class Inside>
void ExpectDrawn(int32_t width, int32_t height, Draw draw, Inside inside) {
    const BitmapStore before = NoiseBitmap(width, height, 0.5, Padding::Noise);
    for (const DrawType how : {DT_On, DT_Off, DT_Xor, static_cast<DrawType>(3)}) {
        BitmapStore bitmap = NoiseBitmap(width, height, 0.5, Padding::Noise);
        draw(bitmap, how);
        for (int32_t y = 0; y < height; ++y) {
            bool touched = false;
            for (int32_t x = 0; x < 8 * bitmap.rowBytes(); ++x) {
                const bool was = before.Bit(x, y), in = x < width && inside(x, y);
                touched = touched || in;
                const bool drawn = how == DT_On || (how != DT_Off && !was);
                ASSERT_EQ(in ? drawn : was, bitmap.Bit(x, y)) << x << ' ' << y << " how " << how;
            }
            ASSERT_EQ(touched, bitmap.Modified(y)) << y;
        }
    }
}

// --------------------------------------------------------------------------------------------------------------- spans

// By DrawRectangle, or by DrawRow as a rectangle of one row.
using DrawBox = Drawing (*)(BitmapStore&, int32_t left, int32_t top, int32_t right, int32_t bottom, DrawType how);
Drawing DrawRowAsBox(BitmapStore& bitmap, int32_t left, int32_t top, int32_t right, int32_t, DrawType how) {
    return DrawRow(bitmap, top, {left, right}, how);
}
void ExpectBox(DrawBox draw, int32_t width, int32_t height, int32_t left, int32_t top, int32_t right, int32_t bottom) {
    ExpectDrawn(
        width, height, [&](BitmapStore& bitmap, DrawType how) { draw(bitmap, left, top, right, bottom, how); },
        [&](int32_t x, int32_t y) { return left <= x && x <= right && top <= y && y <= bottom; });
}

TEST(DrawRow, DrawsEverySpanOfEveryWidthAndNothingElse) {
    for (const int32_t width : {1, 7, 8, 9, 15, 16, 17, 24, 40})
        for (int32_t left = -2; left < width + 2; ++left)
            for (int32_t right = left; right < width + 2; ++right)
                ExpectBox(&DrawRowAsBox, width, 2, left, 1, right, 1);
    for (const int32_t left : {0, 5, 8, 13, 64, 130})
        for (const int32_t right : {191, 192, 199, 200, 204, 263, 264})
            ExpectBox(&DrawRowAsBox, 265, 1, left, 0, right, 0);
}

// ---------------------------------------------------------------------------------------------------------- rectangles

TEST(DrawRectangle, DrawsThePixelsBetweenItsEndsWhereverTheyLie) {
    for (const int32_t left : {kLeast, -1, 0, 3, 10})
        for (const int32_t right : {left, 0, 5, 10, kMost})
            for (const int32_t top : {kLeast, -1, 0, 4, 6})
                for (const int32_t bottom : {top, 2, 6, kMost})
                    ExpectBox(&DrawRectangle, 11, 7, left, top, right, bottom);
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

TEST(DrawDisk, HugeDisksAreClippedBeforeTheyAreDrawn) {
    BitmapStore bitmap = Bitmap(12, 12);
    EXPECT_EQ(Drawing::Drawn, DrawDisk(bitmap, {5, 5, kInfinity}, DT_On));
    EXPECT_EQ(Opposite(BitPlane(12, 12)), BitPlane(RowsOf(bitmap)));
    EXPECT_EQ(Drawing::Drawn, DrawDisk(bitmap, {5, 5, 1e300}, DT_Xor));
    EXPECT_EQ(BitPlane(12, 12), BitPlane(RowsOf(bitmap)));
    // A disk of a thousand million pixels, tangent to the left of column 3.
    DrawDisk(bitmap, {1e9 + 3, 5, 1e9}, DT_On);
    EXPECT_FALSE(bitmap.Bit(2, 5));
    EXPECT_TRUE(bitmap.Bit(3, 5));
    EXPECT_TRUE(bitmap.Bit(11, 11));
}

// --------------------------------------------------------------------------------------------------------------- lines

TEST(DrawLine, CombinesEachOfItsPixelsOnce) {
    const struct {
        Line line;
        bool (*inside)(int32_t x, int32_t y);
    } cases[] = {
        {{0, 0, 3, 1}, [](int32_t x, int32_t y) { return y == x / 2 && x < 4; }},
        {{kMost, 2, kLeast, 2}, [](int32_t, int32_t y) { return y == 2; }},
        {{20, 0, 20, 4}, [](int32_t, int32_t) { return false; }},
    };
    for (const auto& [line, inside] : cases)
        ExpectDrawn(
            10, 5, [line = line](BitmapStore& bitmap, DrawType how) { DrawLine(bitmap, line, how); }, inside);
}

// ------------------------------------------------------------------------------------- what is said of empty drawings

Drawing DrawnRow(BitmapStore& bitmap, int32_t row, int32_t left, int32_t right) {
    return DrawRow(bitmap, row, {left, right}, DT_On);
}
Drawing DrawnBox(BitmapStore& bitmap, int32_t left, int32_t top, int32_t right, int32_t bottom) {
    return DrawRectangle(bitmap, left, top, right, bottom, DT_On);
}

TEST(Drawing, SaysWhetherItMissesOrHasEmptySpansAndDrawsNothingThen) {
    BitmapStore bitmap = Bitmap(12, 10);
    for (const int32_t row : {-1, 10, kLeast, kMost}) EXPECT_EQ(Drawing::Missed, DrawnRow(bitmap, row, 0, 9));
    EXPECT_EQ(Drawing::Missed, DrawnRow(bitmap, 1, 12, 13));
    EXPECT_EQ(Drawing::Missed, DrawnRow(bitmap, 1, kLeast, -1));

    EXPECT_EQ(Drawing::Missed, DrawnBox(bitmap, 0, -5, 9, -1));
    EXPECT_EQ(Drawing::Missed, DrawnBox(bitmap, 0, 10, 9, 11));
    EXPECT_EQ(Drawing::Missed, DrawnBox(bitmap, 12, 0, 14, 7));
    EXPECT_EQ(Drawing::Missed, DrawnBox(bitmap, -9, 0, -1, 7));
    EXPECT_EQ(Drawing::Missed, DrawnBox(bitmap, 14, 0, 5, 7));
    EXPECT_EQ(Drawing::WithEmptySpans, DrawnBox(bitmap, 8, 2, 3, 4));
    EXPECT_EQ(Drawing::Drawn, DrawnBox(bitmap, 8, 4, 3, 2));  // no rows at all
    EXPECT_EQ(Drawing::Drawn, DrawnBox(bitmap, 3, 4, 8, 2));

    std::vector<Disk> beside = {{5, -3, 2.9}, {5, 12, 2.9}, {-3, 5, 1.9}, {14, 5, 1.9}, {5, 5, kNaN}};
    for (const double bad : {kNaN, kInfinity, -kInfinity})
        beside.insert(beside.end(), {{bad, 5, 3}, {5, bad, 3}, {bad, bad, kInfinity}});
    for (const Disk& disk : beside) EXPECT_EQ(Drawing::Missed, DrawDisk(bitmap, disk, DT_On));
    EXPECT_EQ(Drawing::WithEmptySpans, DrawDisk(bitmap, {5.5, 5.5, 0.5}, DT_On));  // between the centres of pixels
    // Negative radii, however small.
    for (const double radius : {-1.0, -0.5, -1e-17, -1e300})
        for (const double centre : {5.0, 5.5}) DrawDisk(bitmap, {centre, centre, radius}, DT_On);
    EXPECT_EQ(Drawing::Drawn, DrawDisk(bitmap, {5, 5, -1}, DT_On));

    EXPECT_EQ(BitPlane(12, 10), BitPlane(RowsOf(bitmap)));
    for (int32_t y = 0; y < 10; ++y) EXPECT_FALSE(bitmap.Modified(y)) << y;
    EXPECT_EQ(Drawing::Drawn, DrawnRow(bitmap, 1, kLeast, kMost));
    EXPECT_EQ(Drawing::Drawn, DrawDisk(bitmap, {5, 5, 0}, DT_On));
    // The empty row, -1 or 10, is none of the bitmap's.
    for (const double y : {-0.2, 9.2}) EXPECT_EQ(Drawing::Drawn, DrawDisk(bitmap, {5.5, y, 0.9}, DT_On));

    BitmapStore none;
    EXPECT_EQ(Drawing::Missed, DrawnRow(none, 0, 0, 0));
    EXPECT_EQ(Drawing::Missed, DrawnBox(none, 0, 0, 1, 1));
    EXPECT_EQ(Drawing::Drawn, DrawnBox(none, -1, -1, 1, 1));
    DrawDisk(none, {0, 0, 5}, DT_On);
    DrawLine(none, {0, 0, 5, 5}, DT_On);
}

}  // namespace
}  // namespace orlix
