#include "binary/morphology.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include "binary/binary_pictures.hpp"
#include "component/failure.hpp"
#include "geometry/structuring_element.hpp"

namespace orlix {
namespace {

using Offsets = std::vector<std::pair<int64_t, int64_t>>;

constexpr Morphology kMorphology[] = {Morphology::Erosion, Morphology::Dilation, Morphology::Opening,
                                      Morphology::Closing};

// The definition of the header.
std::vector<bool> SlowStep(const std::vector<bool>& pixels, int32_t width, const Offsets& offsets, bool dilate) {
    const auto height = static_cast<int32_t>(pixels.size()) / width;
    std::vector<bool> result(pixels.size());
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x) {
            bool extreme = !dilate;
            for (const auto& [dx, dy] : offsets) {
                const int64_t column = dilate ? x - dx : x + dx, row = dilate ? y - dy : y + dy;
                if (column < 0 || column >= width || row < 0 || row >= height) continue;
                if (pixels[static_cast<size_t>(row * width + column)] == dilate) extreme = dilate;
            }
            result[static_cast<size_t>(y * width + x)] = extreme;
        }
    return result;
}

std::vector<bool> Slow(std::vector<bool> pixels, int32_t width, const Offsets& offsets, Morphology operation,
                       int32_t times = 1) {
    const bool dilateFirst = operation == Morphology::Dilation || operation == Morphology::Closing;
    for (int32_t i = 0; i < times; ++i) pixels = SlowStep(pixels, width, offsets, dilateFirst);
    if (operation == Morphology::Opening || operation == Morphology::Closing)
        for (int32_t i = 0; i < times; ++i) pixels = SlowStep(pixels, width, offsets, !dilateFirst);
    return pixels;
}

using Apply = std::function<void(const BitRows&, Morphology, BitmapStore&, const RegionRows&)>;

// Compares pixels in place, from another bitmap and within regions, with padding set and clear.
void ExpectMorphology(int32_t width, int32_t height, const Offsets& offsets, const Apply& apply, int32_t times = 1) {
    for (const Morphology operation : kMorphology)
        for (const double density : {0.05, 0.8}) {
            const auto seed = static_cast<uint32_t>(width);
            BitmapStore source = NoiseBitmap(width, height, density, Padding::Set, seed);
            const std::vector<bool> want = Slow(PixelsOf(source), width, offsets, operation, times);
            ForEachRegion(width, height, [&](const RegionRows& region, const std::vector<bool>& inside) {
                BitmapStore to = NoiseBitmap(width, height, 0.5, Padding::Noise, 7);
                const std::vector<bool> before = PixelsOf(to);
                apply(RowsOf(source), operation, to, region);
                const std::vector<bool> got = PixelsOf(to);
                for (size_t i = 0; i < want.size(); ++i)
                    ASSERT_EQ(inside[i] ? want[i] : before[i], got[i])
                        << width << " x " << height << ", pixel " << i << ", operation " << int(operation);
                for (int32_t y = 0; y < height; ++y) EXPECT_EQ(!region.row(y).empty(), to.Modified(y));
            });
            apply(RowsOf(source), operation, source, RegionRows(nullptr, width, height));
            ASSERT_EQ(want, PixelsOf(source)) << width << " x " << height << ", operation " << int(operation);
        }
}

Offsets Box(int64_t left, int64_t top, int64_t right, int64_t bottom) {
    Offsets offsets;
    for (int64_t y = top; y <= bottom; ++y)
        for (int64_t x = left; x <= right; ++x) offsets.push_back({x, y});
    return offsets;
}

const Offsets kCross = {{0, 0}, {1, 0}, {-1, 0}, {0, 1}, {0, -1}};

TEST(BinaryMorphology, SquaresAndDiamondsAtEveryWidth) {
    for (int32_t width = 1; width <= 70; ++width) {
        const int32_t height = 1 + width % 9, times = 1 + width % 6, many = width % 10 == 0 ? 25 : times;
        ExpectMorphology(width, height, Box(-1, -1, 1, 1), [](auto& from, auto how, auto& to, auto& region) {
            ApplySquare(from, how, Connectivity::Eight, 1, to, region);
        });
        ExpectMorphology(width, height, kCross, [](auto& from, auto how, auto& to, auto& region) {
            ApplySquare(from, how, Connectivity::Four, 1, to, region);
        });
        for (const Connectivity neighbours : {Connectivity::Four, Connectivity::Eight})
            ExpectMorphology(
                width, height, neighbours == Connectivity::Four ? kCross : Box(-1, -1, 1, 1),
                [&, n = neighbours == Connectivity::Four ? many : times](auto& from, auto how, auto& to, auto& region) {
                    ApplySquare(from, how, neighbours, n, to, region);
                },
                neighbours == Connectivity::Four ? many : times);
    }
}

TEST(BinaryMorphology, ManyTimesAreAsManyAsTheBitmapIsLong) {
    for (const Connectivity neighbours : {Connectivity::Four, Connectivity::Eight})
        for (const int32_t times : {40, 100000, INT32_MAX})
            ExpectMorphology(
                23, 9, neighbours == Connectivity::Four ? kCross : Box(-1, -1, 1, 1),
                [&](auto& from, auto how, auto& to, auto& region) {
                    ApplySquare(from, how, neighbours, times, to, region);
                },
                40);
    for (const int32_t times : {0, -1, INT32_MIN})
        ExpectMorphology(
            23, 9, kCross,
            [&](auto& from, auto how, auto& to, auto& region) {
                ApplySquare(from, how, Connectivity::Four, times, to, region);
            },
            0);
}

// Windows of even length reach farther to the right and down.
TEST(BinaryMorphology, RectanglesAtEveryWidth) {
    constexpr std::pair<int32_t, int32_t> kSizes[] = {{1, 1},  {2, 1},   {1, 2}, {4, 3},
                                                      {16, 2}, {17, 5},  {9, 6}, {25, 1},
                                                      {31, 4}, {48, 20}, {1, 9}, {INT32_MAX, INT32_MAX}};
    for (int32_t width = 1; width <= 70; ++width)
        for (size_t i = static_cast<size_t>(width) % 3; i < std::size(kSizes); i += 3) {
            const auto [w, h] = kSizes[i];
            const int32_t height = 1 + width % 11;
            const auto reach = [](int32_t length, int32_t size) { return std::min(length, size); };
            ExpectMorphology(
                width, height,
                Box(-reach((w - 1) / 2, width), -reach((h - 1) / 2, height), reach(w / 2, width), reach(h / 2, height)),
                [&, rectangle = kSizes[i]](auto& from, auto how, auto& to, auto& region) {
                    ApplyRectangle(from, how, rectangle.first, rectangle.second, to, region);
                });
        }
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
        ExpectMorphology(19, 12, Box(-18, -11, 18, 11), [&](auto& from, auto how, auto& to, auto& region) {
            ApplyDisk(from, how, radius, to, region);
        });
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
    const std::vector<bool> before = PixelsOf(bitmap);
    const RegionRows all(nullptr, 3000, 3000);
    EXPECT_THROW(ApplyElement(RowsOf(bitmap), Morphology::Erosion, grid, bitmap, all), MethodFailure);
    EXPECT_EQ(before, PixelsOf(bitmap));
}

// Rows of 13 bytes in the memory of rows of 14.
TEST(BinaryMorphology, AnOverlappingSourceIsReadBeforeItIsWritten) {
    BitmapStore bitmap = NoiseBitmap(100, 21, 0.9, Padding::Noise);
    BitRows shorter = RowsOf(bitmap);
    shorter.rowBytes = 13;
    std::vector<bool> source;
    for (int32_t y = 0; y < 21; ++y)
        for (int32_t x = 0; x < 100; ++x) source.push_back(shorter.row(y)[x / 8] & BitmapStore::MaskOf(x));
    ApplySquare(shorter, Morphology::Erosion, Connectivity::Eight, 1, bitmap, RegionRows(nullptr, 100, 21));
    EXPECT_EQ(Slow(source, 100, Box(-1, -1, 1, 1), Morphology::Erosion), PixelsOf(bitmap));
}

}  // namespace
}  // namespace orlix
