#include "binary/morphology.hpp"

#include "binary/binary_pictures.hpp"
#include "binary/morphology_sweep.hpp"
#include "component/failure.hpp"
#include "geometry/structuring_element.hpp"
#include "support/slow_morphology.hpp"
#include "support/testing.hpp"

namespace orlix {
namespace {

constexpr Morphology kMorphology[] = {Morphology::Erosion, Morphology::Dilation, Morphology::Opening,
                                      Morphology::Closing};

using Apply = std::function<void(const BitRows&, Morphology, BitmapStore&, const RegionRows&)>;

// Compares pixels in place, from another bitmap and within regions, with padding set and clear.
void ExpectMorphology(int32_t width, int32_t height, const Offsets& offsets, const Apply& apply, int32_t times = 1) {
    // Where about one pixel of a window decides, most depends on every one.
    const double part = 1 / (1 + static_cast<double>(offsets.size()) * std::max(1, times * times));
    for (const Morphology operation : kMorphology)
        for (const double density : {part, 1 - part}) {
            SCOPED_TRACE(testing::Message() << width << " x " << height << ", operation " << int(operation));
            BitmapStore source = NoiseBitmap(width, height, density, Padding::Set, static_cast<uint32_t>(width));
            const BitPlane want = SlowMorphology(BitPlane(RowsOf(source)), offsets, operation, times);
            ExpectInRegions(
                width, height,
                [&](BitmapStore& to, const RegionRows& region) { apply(RowsOf(source), operation, to, region); },
                [&](int32_t x, int32_t y, const BitmapStore&) { return want.bit(x, y); });
            apply(RowsOf(source), operation, source, RegionRows(nullptr, width, height));
            ASSERT_EQ(want, BitPlane(RowsOf(source)));
        }
}

// So many times are as many as `effective`.
void ExpectSquares(int32_t width, int32_t height, Connectivity neighbours, int32_t times, int32_t effective) {
    ExpectMorphology(
        width, height, NeighboursAnd(neighbours),
        [&](auto& from, auto how, auto& to, auto& region) { ApplySquare(from, how, neighbours, times, to, region); },
        effective);
}

TEST(BinaryMorphology, SquaresAndDiamondsAtEveryWidth) {
    for (int32_t width = 1; width <= 70; ++width)
        for (const Connectivity neighbours : kConnectivities)
            for (const int32_t times : {1, neighbours == Connectivity::Four && width % 10 == 0 ? 25 : 1 + width % 6})
                ExpectSquares(width, 1 + width % 9, neighbours, times, times);
}

TEST(BinaryMorphology, ManyTimesAreAsManyAsTheBitmapIsLong) {
    for (const Connectivity neighbours : kConnectivities)
        for (const int32_t times : {40, 100000, INT32_MAX}) ExpectSquares(23, 9, neighbours, times, 40);
    for (const int32_t times : {0, -1, INT32_MIN}) ExpectSquares(23, 9, Connectivity::Four, times, 0);
}

// Windows of even length reach farther to the right and down.
TEST(BinaryMorphology, RectanglesAtEveryWidth) {
    struct Size {
        int32_t width, height;
    };
    constexpr Size kSizes[] = {{1, 1},  {2, 1},  {1, 2},  {4, 3},  {16, 2},
                               {17, 5}, {9, 6},  {25, 1}, {31, 4}, {48, 20},
                               {1, 9},  {60, 1}, {41, 2}, {33, 1}, {INT32_MAX, INT32_MAX}};
    for (int32_t width = 1; width <= 70; ++width)
        for (size_t i = static_cast<size_t>(width) % 3; i < std::size(kSizes); i += 3)
            ExpectMorphology(width, 1 + width % 11, Window(kSizes[i].width, kSizes[i].height, width, 1 + width % 11),
                             [size = kSizes[i]](auto& from, auto how, auto& to, auto& region) {
                                 ApplyRectangle(from, how, size.width, size.height, to, region);
                             });
}

Offsets OffsetsOf(const std::vector<SElement>& elements) {
    Offsets offsets;
    for (const SElement& e : elements) offsets.push_back({e.m_lX, e.m_lY});
    return offsets;
}

TEST(BinaryMorphology, DisksHaveTheElementsOfCreateDisk) {
    constexpr double kRadii[] = {0.5, 1, 1.5, 2, 2.3, 3, 4.25, 5, 7, 9.9};
    for (int32_t width = 1; width <= 70; ++width) {
        const double radius = kRadii[width % 10];
        const std::vector<SElement> disk = DiskElements(radius);
        ExpectMorphology(width, 1 + width % 13, OffsetsOf(disk), [&](auto& from, auto how, auto& to, auto& region) {
            ApplyDisk(from, how, radius, to, region);
        });
    }
    // Wider than the bitmap, and without end.
    for (const double radius : {30.0, 1e300, static_cast<double>(INFINITY)})
        ExpectMorphology(19, 12, RectangleOf(-18, -11, 18, 11), [&](auto& from, auto how, auto& to, auto& region) {
            ApplyDisk(from, how, radius, to, region);
        });
}

std::vector<int32_t> HalfWidths(double radius) {
    std::vector<int32_t> halfWidths;
    for (const ElementRun& run : RunsOfDisk(radius, INT32_MAX, 1 << 20))
        if (run.y >= 0) halfWidths.push_back(run.stop);
    return halfWidths;
}

TEST(BinaryMorphology, ElementsWhoseRowsShrinkAreMeasuredFromTheSetPixels) {
    for (int32_t width = 1; width <= 70; ++width) {
        const double radius = 1 + width % 9 * 1.3;
        const BitPlane source = NoisePlane(width, 1 + width % 13, 0.05, static_cast<uint32_t>(width));
        EXPECT_EQ(SlowMorphology(source, OffsetsOf(DiskElements(radius)), Morphology::Dilation, 1),
                  DilatedByShrinkingRows(source, HalfWidths(radius)));
    }
}

// Across the borders of tiles, and where one method takes over from the other.
TEST(BinaryMorphology, LargeDisksAreTheSameByRectanglesAndFromTheSetPixels) {
    constexpr int32_t kWidth = 4700, kHeight = 700;
    const RegionRows all(nullptr, kWidth, kHeight);
    for (const double radius : {2.5, 40.0, 190.0, 210.0}) {
        BitmapStore bitmap = NoiseBitmap(kWidth, kHeight, 5e-5, Padding::Set);
        const std::vector<int32_t> halfWidths = HalfWidths(radius);
        const BitPlane dilated = DilatedByShrinkingRows(BitPlane(RowsOf(bitmap)), halfWidths);
        ApplyDisk(RowsOf(bitmap), Morphology::Closing, radius, bitmap, all);
        EXPECT_TRUE(Complement(DilatedByShrinkingRows(Complement(dilated), halfWidths)) == BitPlane(RowsOf(bitmap)))
            << radius;
    }
}

// Lines, lists out of order with duplicates, far offsets, none at all; disks as lists.
TEST(BinaryMorphology, AnyStructuringElement) {
    constexpr LONG kFar = INT32_MAX, kNear = INT32_MIN;
    const std::vector<std::vector<SElement>> elements = {
        {},
        {{0, 0, 0, 0}},
        {{3, 1, 0, 0}},
        {{-2, 0, 0, 0}, {-5, 0, 0, 0}, {-2, 0, 0, 0}, {2, 2, 0, 0}, {-4, 0, 0, 0}, {-3, 0, 0, 0}},
        {{5, 0, 0, 0}, {6, 0, 0, 0}, {7, 0, 0, 0}, {8, 0, 0, 0}, {9, 0, 0, 0}, {9, -1, 0, 0}},
        {{kFar, 0, 0, 0}, {0, kNear, 0, 0}, {kNear, kFar, 0, 0}, {1, -1, 0, 0}},
        {{kFar, kFar, 0, 0}},
        {{-1, 0, 0, 0}, {0, 0, 0, 0}, {1, 0, 0, 0}, {0, 1, 0, 0}},
        DiskElements(4.5),
    };
    for (int32_t width = 1; width <= 70; ++width) {
        const std::vector<SElement>& element = elements[static_cast<size_t>(width) % elements.size()];
        ExpectMorphology(width, 1 + width % 8, OffsetsOf(element), [&](auto& from, auto how, auto& to, auto& region) {
            ApplyElement(from, how, element, to, region);
        });
    }
}

TEST(BinaryMorphology, AnElementOfTooManyRunsIsRefusedAtOnce) {
    std::vector<SElement> grid;
    for (LONG y = 0; y < 1500; ++y)
        for (LONG x = 0; x < 1500; ++x) grid.push_back({2 * x, 2 * y, 0, 0});
    BitmapStore bitmap = NoiseBitmap(3000, 3000, 0.5, Padding::Clear);
    const BitPlane before(RowsOf(bitmap));
    const RegionRows all(nullptr, 3000, 3000);
    EXPECT_THROW(ApplyElement(RowsOf(bitmap), Morphology::Erosion, grid, bitmap, all), MethodFailure);
    ElementRuns longRuns;  // few, but each takes a dozen steps to be made
    for (int32_t y = -2999; y < 3000; ++y) longRuns.push_back({y, std::max(0, y), 2999 + std::min(0, y)});
    EXPECT_THROW(Dilated(before, longRuns), MethodFailure);
    EXPECT_EQ(before, BitPlane(RowsOf(bitmap)));
}

// Rows of 13 bytes in the memory of rows of 14.
TEST(BinaryMorphology, AnOverlappingSourceIsReadBeforeItIsWritten) {
    BitmapStore bitmap = NoiseBitmap(100, 21, 0.9, Padding::Noise);
    BitRows shorter = RowsOf(bitmap);
    shorter.rowBytes = 13;
    const BitPlane source(shorter);
    ApplySquare(shorter, Morphology::Erosion, Connectivity::Eight, 1, bitmap, RegionRows(nullptr, 100, 21));
    EXPECT_EQ(SlowMorphology(source, RectangleOf(-1, -1, 1, 1), Morphology::Erosion), BitPlane(RowsOf(bitmap)));
}

}  // namespace
}  // namespace orlix
