#include "geometry/shape_region.hpp"

#include "geometry/rounding.hpp"
#include "support/failure_of.hpp"
#include "support/special_numbers.hpp"
#include "support/testing.hpp"

namespace orlix {

void PrintTo(const RawRun& run, std::ostream* out) { *out << run.start << ".." << run.stop; }
void PrintTo(const Box& b, std::ostream* out) {
    *out << '(' << b.left << ' ' << b.top << ' ' << b.right << ' ' << b.bottom << ')';
}

namespace {

std::vector<RawRun> Runs(const ShapeRegion& shape, int32_t y) {
    const auto row = shape.Row(y);
    return {row.runs.begin(), row.runs.begin() + row.count};
}

bool Covers(const ShapeRegion& shape, int32_t x, int32_t y) {
    const auto row = shape.Row(y);
    for (int i = 0; i < row.count; ++i) {
        const RawRun& run = row.runs[static_cast<size_t>(i)];
        if (run.start <= x && x <= run.stop) return true;
    }
    return false;
}

auto Is(const std::vector<RawRun>& runs) { return testing::ElementsAreArray(runs); }

ShapeRegion Rectangle(int32_t width, int32_t height, int32_t left, int32_t top, int32_t right, int32_t bottom) {
    ShapeRegion shape;
    shape.CreateRectangle(width, height, left, top, right, bottom);
    return shape;
}
ShapeRegion Circle(int32_t width, int32_t height, double x, double y, double radius) {
    ShapeRegion shape;
    shape.CreateCircle(width, height, x, y, radius);
    return shape;
}
ShapeRegion Oriented(int32_t width, int32_t height, double x1, double y1, double x2, double y2, double across) {
    ShapeRegion shape;
    shape.CreateOrientedRectangle(width, height, x1, y1, x2, y2, across);
    return shape;
}

// ---------------------------------------------------------------------------------------------------------- rectangles

TEST(ShapeRegion, ARectangleBesideTheImageHasReversedRunsOrNoRows) {
    EXPECT_EQ((Box{0, 2, -5, 4}), Rectangle(100, 50, -10, 2, -5, 4).BoundingBox());
    EXPECT_THAT(Runs(Rectangle(100, 50, -10, 2, -5, 4), 3), Is({{0, -5}}));
    EXPECT_THAT(Runs(Rectangle(100, 50, 200, 2, 300, 4), 3), Is({{200, 99}}));
    const ShapeRegion below = Rectangle(100, 50, 1, 60, 2, 70);
    EXPECT_EQ((Box{1, 60, 2, 49}), below.BoundingBox());
    EXPECT_THAT(Runs(below, 49), Is({}));
}

TEST(ShapeRegion, TheLargestRectangleNeedsNoMemory) {
    ShapeRegion shape = Rectangle(kMost, kMost, kLeast, kLeast, kMost, kMost);
    EXPECT_THAT(Runs(shape, kMost - 1), Is({{0, kMost - 1}}));
    shape.set_polarity(PT_Frame);
    EXPECT_THAT(Runs(shape, 1000), Is({{0, 0}, {kMost - 1, kMost - 1}}));
    shape.set_polarity(PT_Outside);
    EXPECT_THAT(Runs(shape, 1000), Is({{0, -1}, {kMost, kMost - 1}}));
}

// ------------------------------------------------------------------------------------------------------------- circles

TEST(ShapeRegion, ACircleRowWithoutPixelsLeavesItsOutsideWhole) {
    ShapeRegion shape = Circle(100, 100, 5.5, 5.5, 0.5);
    EXPECT_EQ((Box{5, 5, 6, 6}), shape.BoundingBox());
    EXPECT_THAT(Runs(shape, 5), Is({{6, 5}}));
    shape.set_polarity(PT_Outside);
    EXPECT_THAT(Runs(shape, 5), Is({{0, 5}, {6, 99}}));
}

// In eighths of a pixel every coordinate is an integer, and membership is (8x - cx)^2 + (8y - cy)^2 <= r^2.
TEST(ShapeRegion, CirclesHoldExactlyThePixelsWithinTheRadius) {
    constexpr int32_t kSize = 24;
    for (int64_t cx : {-9, 0, 60, 64, 67, 100, 191})
        for (int64_t cy : {-20, 0, 61, 68, 96, 190})
            for (int64_t r = 0; r <= 130; ++r) {
                const ShapeRegion shape = Circle(kSize, kSize, double(cx) / 8, double(cy) / 8, double(r) / 8);
                for (int32_t y = 0; y < kSize; ++y)
                    for (int32_t x = 0; x < kSize; ++x) {
                        const int64_t dx = 8 * x - cx, dy = 8 * y - cy;
                        ASSERT_EQ(dx * dx + dy * dy <= r * r, Covers(shape, x, y))
                            << x << ' ' << y << " of " << cx << ' ' << cy << ' ' << r;
                    }
            }
}

// A circle that just reaches row 10, as exactly as its centre and radius can express; there radius^2 - d^2 may come out
// as -1e-15.
TEST(ShapeRegion, RoundingAtTheFirstRowDoesNotLoseIt) {
    int reached = 0;
    int negative = 0;
    for (int i = 1; i < 5000; ++i) {
        const double radius = i / 997.0;
        const double y = 10 + radius;
        const ShapeRegion shape = Circle(50, 50, 25, y, radius);
        if (shape.BoundingBox().top != 10) continue;  // y - radius came out above 10
        EXPECT_THAT(Runs(shape, 10), Is({{25, 25}})) << radius;
        ++reached;
        negative += radius * radius - (10 - y) * (10 - y) < 0;
    }
    EXPECT_GT(reached, 1000);
    EXPECT_GT(negative, 100);
}

TEST(ShapeRegion, CirclesOfAnySizeAreDefined) {
    EXPECT_THAT(Runs(Circle(100, 100, 50, 50, kInfinity), 0), Is({{kLeast, kMost}}));
    EXPECT_EQ((Box{0, 0, 99, 99}), Circle(100, 100, 50, 50, 1e300).BoundingBox());
    EXPECT_THAT(Runs(Circle(100, 100, 50, 50, 1e300), 99), Is({{kLeast, kMost}}));
    EXPECT_THAT(Runs(Circle(100, 100, 50, 1e200, 2e200), 99), Is({{kLeast, kMost}}));  // both squares overflow
    EXPECT_THAT(Runs(Circle(100, 100, 50, 50, -3), 50), Is({}));
    EXPECT_THAT(Runs(Circle(100, 100, 50, 50, 0), 50), Is({{50, 50}}));
    // A half-plane: a huge disk, tangent at column 10, whose edge is straight at the scale of the image.
    EXPECT_THAT(Runs(Circle(100, 100, 1e12 + 10, 50, 1e12), 50), Is({{10, kMost}}));
    for (const double bad : {kNaN, kInfinity, -kInfinity})
        for (const double radius : {1.0, kInfinity, kNaN}) {
            for (const PolarityType polarity : {PT_Inside, PT_Frame, PT_Outside}) {
                ShapeRegion shape = Circle(20, 20, bad, 5, radius);
                shape.set_polarity(polarity);
                for (int32_t y = 0; y < 20; ++y)
                    for (int32_t x = 0; x < 20; ++x)
                        EXPECT_EQ(polarity == PT_Outside, Covers(shape, x, y)) << bad << ' ' << radius;
            }
        }
}

// ------------------------------------------------------------------------------------------------- oriented rectangles

// Independent of edges and rows: compares coordinates along and across the centre line. Skips pixels within 1e-9 of the
// border, which rounding may put on either side.
TEST(ShapeRegion, OrientedRectanglesHoldThePixelsBetweenTheirSides) {
    constexpr int32_t kSize = 60;
    std::mt19937 random(7);
    std::uniform_real_distribution<double> inside(18, 42);
    std::uniform_real_distribution<double> width(1, 22);
    int64_t compared = 0;
    for (int i = 0; i < 2000; ++i) {
        const double x1 = inside(random), y1 = inside(random), x2 = inside(random), y2 = inside(random);
        const double across = width(random);
        const double length = std::sqrt((x2 - x1) * (x2 - x1) + (y2 - y1) * (y2 - y1));
        const ShapeRegion shape = Oriented(kSize, kSize, x1, y1, x2, y2, across);
        Box covered = {kSize - 1, kSize - 1, 0, 0};
        for (int32_t y = 0; y < kSize; ++y)
            for (int32_t x = 0; x < kSize; ++x) {
                if (Covers(shape, x, y))
                    covered = {std::min(covered.left, x), std::min(covered.top, y), std::max(covered.right, x),
                               std::max(covered.bottom, y)};
                const double along = ((x - x1) * (x2 - x1) + (y - y1) * (y2 - y1)) / length;
                const double aside = ((x - x1) * (y2 - y1) - (y - y1) * (x2 - x1)) / length;
                const double depth = std::min(std::min(along, length - along), across / 2 - std::abs(aside));
                if (std::abs(depth) < 1e-9) continue;
                ASSERT_EQ(depth > 0, Covers(shape, x, y))
                    << x << ' ' << y << " in " << x1 << ' ' << y1 << ' ' << x2 << ' ' << y2 << ' ' << across;
                ++compared;
            }
        ASSERT_EQ(covered, shape.BoundingBox());
    }
    EXPECT_GT(compared, int64_t{2000} * kSize * kSize - 1000);
}

TEST(ShapeRegion, ARectangleBesideTheImageHasThePixelAtTheNearEnd) {
    const ShapeRegion left = Oriented(100, 50, -30, 10, -20, 10, 6);
    EXPECT_EQ((Box{0, 7, 0, 13}), left.BoundingBox());
    EXPECT_THAT(Runs(left, 10), Is({{0, 0}}));
    const ShapeRegion right = Oriented(100, 50, 130, 10, 120, 10, 6);
    EXPECT_EQ((Box{99, 7, 99, 13}), right.BoundingBox());
    EXPECT_THAT(Runs(right, 10), Is({{99, 99}}));
    // No rows lie above the image: the box stays as the search began.
    EXPECT_EQ((Box{99, 49, 0, 0}), Oriented(100, 50, 10, -20, 20, -20, 6).BoundingBox());
}

TEST(ShapeRegion, ARowBetweenTwoPixelCentresIsNotInTheBox) {
    // Half a pixel long about column 10.5, so it holds no pixel centre.
    const ShapeRegion shape = Oriented(100, 50, 10.25, 10, 10.75, 10, 2);
    EXPECT_EQ((Box{99, 49, 0, 0}), shape.BoundingBox());
    EXPECT_THAT(Runs(shape, 10), Is({}));
}

// The upper edge from A (0.5, 5 +- a little) to B (10.5, 5 -+ a little) counts as horizontal: in row 5 it is
// represented by its end nearer to the row, and the right side adds column 10.5.
TEST(ShapeRegion, AnEdgeThatIsAllButHorizontalStandsForItsNearerEnd) {
    // A is 2e-5 below the row, B 3e-5 above it: the run starts at A.
    const ShapeRegion fromA = Oriented(30, 30, 5.5, 4.999995, 5.50005, 14.999995, 10);
    EXPECT_EQ(5, fromA.BoundingBox().top);
    EXPECT_THAT(Runs(fromA, 5), Is({{1, 10}}));
    // A is 3e-5 below, B 2e-5 above: both edges meet the row at B, between two columns.
    const ShapeRegion fromB = Oriented(30, 30, 5.5, 5.000005, 5.50005, 15.000005, 10);
    EXPECT_EQ(6, fromB.BoundingBox().top);
    EXPECT_THAT(Runs(fromB, 6), Is({{1, 10}}));
}

TEST(ShapeRegion, BelowAWidthOfOneItIsTheOnePixelLine) {
    const ShapeRegion shape = Oriented(100, 50, 1.6, 2.4, 8.4, 3.5, 0.5);  // (2, 2) to (8, 4)
    EXPECT_EQ((Box{2, 2, 8, 4}), shape.BoundingBox());
    EXPECT_THAT(Runs(shape, 2), Is({{2, 3}}));
    EXPECT_THAT(Runs(shape, 3), Is({{4, 6}}));
    EXPECT_THAT(Runs(shape, 4), Is({{7, 8}}));
    // A width of -3 is below 1 too; pixels outside the image are dropped.
    const ShapeRegion across = Oriented(10, 10, -1e9, -1e9, 1e9, 1e9, -3);
    EXPECT_EQ((Box{0, 0, 9, 9}), across.BoundingBox());
    for (int32_t y = 0; y < 10; ++y) EXPECT_THAT(Runs(across, y), Is({{y, y}}));
    EXPECT_EQ((Box{9, 9, 0, 0}), Oriented(10, 10, 20, 20, 30, 30, 0).BoundingBox());
}

TEST(ShapeRegion, InAnImageOnePixelWideTheEmptyRunReadsAsColumnZero) {
    // No part of the line is in the image; the initial box of the search is its one pixel.
    const ShapeRegion shape = Oriented(1, 1, 20, 20, 30, 30, 0);
    EXPECT_EQ((Box{0, 0, 0, 0}), shape.BoundingBox());
    EXPECT_THAT(Runs(shape, 0), Is({{0, 0}}));
    EXPECT_THAT(Runs(Oriented(2, 1, 20, 20, 30, 30, 0), 0), Is({{1, 0}}));
}

TEST(ShapeRegion, CentreLinesOfAnyLengthAreDefined) {
    const std::string none = "IShapeRegionOfInterest::CreateOrientedRectangle: no rectangle center line.";
    ShapeRegion shape;
    EXPECT_EQ(none, FailureOf([&] { shape.CreateOrientedRectangle(10, 10, 3, 4, 3, 4, 2); }));
    EXPECT_EQ(none, FailureOf([&] { shape.CreateOrientedRectangle(10, 10, kNaN, 4, 3, 4, 2); }));
    EXPECT_EQ(none, FailureOf([&] { shape.CreateOrientedRectangle(10, 10, kInfinity, 4, kInfinity, 4, 2); }));
    // The squares of these lengths overflow and underflow; the lengths do not.
    EXPECT_EQ((Box{0, 4, 9, 6}), Oriented(10, 10, -1e200, 5, 1e200, 5, 2).BoundingBox());
    EXPECT_EQ((Box{5, 4, 5, 6}), Oriented(10, 10, 5, 5, std::nextafter(5.0, 6.0), 5, 2).BoundingBox());
    EXPECT_EQ((Box{0, 0, 0, 1}), Oriented(10, 10, 0, 0, 5e-324, 0, 2).BoundingBox());
    for (const double odd : {kInfinity, -kInfinity, 1e308, kNaN}) {
        Oriented(10, 10, 0, 0, 1, 1, odd);
        if (!std::isnan(odd)) Oriented(10, 10, 0, 0, odd, 3, 2);
        if (!std::isnan(odd)) Oriented(10, 10, -odd, odd, odd, -odd, 1e308);
    }
    EXPECT_THAT(Runs(Oriented(10, 10, 0, 0, 9, 9, kNaN), 5), Is({}));
}

// Integers only, but images of 2^31 rows or columns.
TEST(ShapeRegion, WhatCoversTooManyRowsIsRefusedAndNoLengthOfARowMatters) {
    ShapeRegion shape = Rectangle(100, 50, 10, 5, 20, 8);
    const std::string disk = "IShapeRegionOfInterest::CreateCircle: the shape covers more than 16777216 rows.";
    const std::string other =
        "IShapeRegionOfInterest::CreateOrientedRectangle: the shape covers more than 16777216 rows.";
    EXPECT_EQ(disk, FailureOf([&] { shape.CreateCircle(1000, kMost, 500, 1e9, 8388609); }));
    EXPECT_EQ(other, FailureOf([&] { shape.CreateOrientedRectangle(1000, kMost, 0, 0, 999, kMost, 300); }));
    EXPECT_EQ(other, FailureOf([&] { shape.CreateOrientedRectangle(kMost, kMost, 0, 0, kMost, 16777216, 0); }));
    EXPECT_EQ(kMost, shape.height());
    EXPECT_EQ((Box{10, 5, 20, 8}), shape.BoundingBox());
    EXPECT_THAT(Runs(shape, 6), Is({{kMost - 1, 0}}));

    shape.CreateOrientedRectangle(kMost, 5, 0, 1, kMost, 4, 0);
    EXPECT_EQ((Box{0, 1, kMost - 1, 4}), shape.BoundingBox());
    EXPECT_THAT(Runs(shape, 1), Is({{0, 357913941}}));
    EXPECT_THAT(Runs(shape, 2), Is({{357913942, 1073741823}}));
}

// ----------------------------------------------------------------------------------------------------------- the frame

// A pixel of the shape belongs to the frame unless its row is neither the first nor the last, it lies strictly within
// its run, and the rows above and below cover it.
TEST(ShapeRegion, FramesHoldThePixelsThatTheirNeighboursDoNotCover) {
    std::vector<ShapeRegion> shapes;
    for (const double radius : {0.0, 0.5, 1.0, 1.5, 3.3, 7.0, 12.9, 30.0, 80.0}) {
        shapes.push_back(Circle(40, 40, 20, 20, radius));
        shapes.push_back(Circle(40, 40, 5.5, 31.5, radius));
        shapes.push_back(Oriented(40, 40, 20 - radius, 20 - radius / 2, 21 + radius, 20 + radius, 5));
        shapes.push_back(Oriented(40, 40, 3, 3, 30 - radius / 3, 35, 0.5));
    }
    for (const ShapeRegion& shape : shapes) {
        ShapeRegion frame = shape;
        frame.set_polarity(PT_Frame);
        const Box box = shape.BoundingBox();
        for (int32_t y = 0; y < 40; ++y)
            for (int32_t x = -60; x < 100; ++x) {
                bool want = Covers(shape, x, y);
                if (want && y != box.top && y != box.bottom)
                    want = !Covers(shape, x - 1, y) || !Covers(shape, x + 1, y) || !Covers(shape, x, y - 1) ||
                           !Covers(shape, x, y + 1);
                ASSERT_EQ(want, Covers(frame, x, y)) << x << ' ' << y;
            }
    }
}

// ------------------------------------------------------------------------------------------------------------ failures

TEST(ShapeRegion, AFailureAfterTheSizeLeavesTheNewSizeAndNoPixels) {
    ShapeRegion shape = Rectangle(100, 50, 10, 5, 20, 8);
    EXPECT_EQ("IShapeRegionOfInterest::CreateRectangle: left cannot be greater than right.",
              FailureOf([&] { shape.CreateRectangle(30, 7, 2, 3, 1, 2); }));
    EXPECT_EQ(30, shape.width());
    EXPECT_EQ(7, shape.height());
    EXPECT_EQ((Box{10, 5, 20, 8}), shape.BoundingBox());  // its rows exceed the new image
    EXPECT_THAT(Runs(shape, 5), Is({{29, 0}}));
    shape.set_polarity(PT_Frame);
    EXPECT_THAT(Runs(shape, 6), Is({{29, 0}, {29, 0}}));
    shape.set_polarity(PT_Outside);
    EXPECT_THAT(Runs(shape, 5), Is({{0, 28}, {1, 29}}));

    FailureOf([&] { shape.CreateOrientedRectangle(11, 12, 1, 1, 1, 1, 1); });
    EXPECT_TRUE(shape.width() == 11 && shape.height() == 12);
}

TEST(Rounding, EveryDoubleBecomesAWholeNumberOf32Bits) {
    for (const auto convert : {&TruncateToInt32, &FloorToInt32, &CeilToInt32, &RoundToInt32}) {
        EXPECT_EQ(0, convert(kNaN));
        EXPECT_EQ(kMost, convert(kInfinity));
        EXPECT_EQ(kLeast, convert(-kInfinity));
        EXPECT_EQ(kMost, convert(2147483648.0));
        EXPECT_EQ(kLeast, convert(-2147483650.0));
        EXPECT_EQ(-7, convert(-7.0));
    }
    EXPECT_EQ(-2, FloorToInt32(-1.5));
    EXPECT_EQ(-1, CeilToInt32(-1.5));
    EXPECT_EQ(-1, RoundToInt32(-1.5));
    EXPECT_EQ(2, RoundToInt32(1.5));
    EXPECT_EQ(-1, TruncateToInt32(-1.9));
}

}  // namespace
}  // namespace orlix
