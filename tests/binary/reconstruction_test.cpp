#include "binary/reconstruction.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "binary/area_filter.hpp"
#include "binary/component_hulls.hpp"
#include "binary/plane_pictures.hpp"

namespace orlix {
namespace {

// The components of which `keep` says so, given their pixels.
template <class Keep>
BitPlane SlowChoice(const BitPlane& image, Connectivity connectivity, const Keep& keep) {
    BitPlane kept(image.width(), image.height());
    for (const auto& pixels : SlowComponents(image, connectivity).pixels)
        if (keep(pixels))
            for (const auto& [x, y] : pixels) kept.setBit(x, y, true);
    return kept;
}

BitPlane Without(const BitPlane& image, const BitPlane& other) {
    BitPlane result = image;
    for (int32_t y = 0; y < image.height(); ++y)
        for (int32_t x = 0; x < image.width(); ++x) result.setBit(x, y, image.bit(x, y) && !other.bit(x, y));
    return result;
}

BitPlane Opposite(const BitPlane& image) {
    BitPlane all(image.width(), image.height());
    for (int32_t y = 0; y < image.height(); ++y)
        for (int32_t x = 0; x < image.width(); ++x) all.setBit(x, y, true);
    return Without(all, image);
}

void ExpectSlowResults(const BitPlane& image) {
    const auto touchesEdge = [&](const auto& pixels) {
        return std::any_of(pixels.begin(), pixels.end(), [&](const auto& pixel) {
            return pixel.x == 0 || pixel.y == 0 || pixel.x == image.width() - 1 || pixel.y == image.height() - 1;
        });
    };
    // Some seeds lie outside the mask.
    const BitPlane seeds = NoisePlane(image.width(), image.height(), 0.04, 99);
    for (const Connectivity connectivity : kConnectivities) {
        const auto seeded = [&](const auto& pixels) {
            return std::any_of(pixels.begin(), pixels.end(),
                               [&](const auto& pixel) { return seeds.bit(pixel.x, pixel.y); });
        };
        ASSERT_EQ(SlowChoice(image, connectivity, seeded), Reconstruct(seeds, image, connectivity));
        ASSERT_EQ(SlowChoice(image, connectivity, [&](const auto& pixels) { return !touchesEdge(pixels); }),
                  ClearBorder(image, connectivity));

        const auto filled = [&](size_t most) {
            return Opposite(SlowChoice(Opposite(image), Dual(connectivity), [&](const auto& pixels) {
                return touchesEdge(pixels) || pixels.size() > most;
            }));
        };
        ASSERT_EQ(filled(SIZE_MAX), FillHoles(image, connectivity));
        for (const int most : {-1, 0, 1, 3})
            ASSERT_EQ(filled(most < 0 ? 0 : static_cast<size_t>(most)), FillHolesUpTo(image, connectivity, most));

        const auto between = [&](size_t least, size_t most) {
            return SlowChoice(image, connectivity,
                              [&](const auto& pixels) { return pixels.size() >= least && pixels.size() <= most; });
        };
        ASSERT_EQ(between(2, 5), KeepByArea(image, connectivity, 2, 5));
        ASSERT_EQ(between(4, SIZE_MAX), KeepByArea(image, connectivity, 4, INT64_MAX));
        ASSERT_EQ(between(1, 0), KeepByArea(image, connectivity, INT64_MAX, INT64_MIN));
    }
}

TEST(ConnectedOperations, EqualTheirSlowDefinitions) {
    ForEachPlaneOfAnyWidth(ExpectSlowResults);
    ForEachPlaneOfSize(4, 3, ExpectSlowResults);
    for (uint32_t seed = 0; seed < 5; ++seed)  // long and winding paths
        ExpectSlowResults(NoisePlane(150, 100, 0.4 + 0.04 * seed, seed));
}

// The path of one pixel's width winds to the middle, or up and down: every pass over the rows would add one turn.
TEST(ConnectedOperations, WindingPathsAreFollowedToTheEnd) {
    constexpr int32_t kSize = 1023;
    BitPlane spiral(kSize, kSize), serpentine(kSize, kSize);
    for (int32_t turn = 0; 2 * turn < kSize / 2; ++turn) {
        const int32_t first = 2 * turn;
        const int32_t last = kSize - 1 - first;
        for (int32_t i = first; i <= last; ++i) {
            if (i > first - 2) spiral.setBit(i, first, true);
            spiral.setBit(last, i, true);
            spiral.setBit(i, last, true);
            if (i > first + 1) spiral.setBit(first, i, true);
        }
        if (first > 0) spiral.setBit(first - 1, first, true);
    }
    for (int32_t x = 0; x < kSize; ++x)
        for (int32_t y = 0; y < kSize; ++y) serpentine.setBit(x, y, x % 2 == 0 || y == (x % 4 == 1 ? 0 : kSize - 1));
    BitPlane seed(kSize, kSize);
    seed.setBit(0, 0, true);
    for (const BitPlane& path : {spiral, serpentine})
        for (const Connectivity connectivity : kConnectivities) {
            EXPECT_EQ(path, Reconstruct(seed, path, connectivity));
            EXPECT_EQ(BitPlane(kSize, kSize), ClearBorder(path, connectivity));
        }
}

TEST(ConnectedOperations, AHoleThatIsFilledKeepsTheBlobsAndHolesInside) {
    const BitPlane image = PlaneOf({"#########",  //
                                    "#.......#",  //
                                    "#.#####.#",  //
                                    "#.#...#.#",  //
                                    "#.#####.#",  //
                                    "#.......#",  //
                                    "#########"});
    BitPlane inner = image;
    for (int32_t x = 3; x <= 5; ++x) inner.setBit(x, 3, true);
    EXPECT_EQ(inner, FillHolesUpTo(image, Connectivity::Eight, 3));
    EXPECT_EQ(inner, FillHolesUpTo(image, Connectivity::Eight, 19));
    EXPECT_EQ(FillHoles(image, Connectivity::Eight), FillHolesUpTo(image, Connectivity::Eight, 20));
}

// A point is outside a hull if some line through it has all of it on one side: the line may be turned until it passes
// through a point of the hull.
BitPlane SlowHulls(const BitPlane& image, Connectivity connectivity) {
    BitPlane hulls(image.width(), image.height());
    for (const auto& pixels : SlowComponents(image, connectivity).pixels)
        for (int32_t y = 0; y < image.height(); ++y)
            for (int32_t x = 0; x < image.width(); ++x) {
                const bool outside = std::any_of(pixels.begin(), pixels.end(), [&](const auto& a) {
                    return std::all_of(pixels.begin(), pixels.end(), [&](const auto& b) {
                        const int32_t ax = a.x - x, ay = a.y - y, bx = b.x - x, by = b.y - y;
                        const int32_t turn = ax * by - ay * bx;
                        return turn > 0 || (turn == 0 && ax * bx + ay * by > 0);
                    });
                });
                if (!outside) hulls.setBit(x, y, true);
            }
    return hulls;
}

TEST(ConvexHulls, HoldThePixelsWhoseCentresAreInside) {
    const auto expect = [](const BitPlane& image) {
        for (const Connectivity connectivity : kConnectivities)
            ASSERT_EQ(SlowHulls(image, connectivity), ConvexHulls(image, connectivity));
    };
    ForEachPlaneOfSize(4, 3, expect);
    for (int32_t width = 1; width <= 70; ++width) {
        const auto seed = static_cast<uint32_t>(width);
        expect(NoisePlane(width, 5, 0.3, seed));
    }
    // Tangled components whose hulls cross.
    for (uint32_t seed = 0; seed < 5; ++seed) expect(NoisePlane(24, 24, 0.45, seed));
}

// Chevrons one in another, each open to the right: the hulls of 167 of them overlap in most rows.
TEST(ConvexHulls, MayOverlapByTheHundred) {
    constexpr int32_t kSize = 1001, kMiddle = 500;
    BitPlane chevrons(kSize, kSize), hulls(kSize, kSize);
    for (int32_t y = 0; y < kSize; ++y)
        for (int32_t x = 0; x < kSize; ++x) {
            const int32_t depth = x - std::abs(y - kMiddle);
            chevrons.setBit(x, y, depth >= 0 && depth < kMiddle && depth % 3 == 0);
            // The hull of chevron k reaches from its arm to the column of its ends, kMiddle + 3 k.
            const int32_t first = std::max(0, (x - kMiddle + 2) / 3);
            hulls.setBit(x, y, depth >= 0 && first <= std::min(166, depth / 3));
        }
    EXPECT_EQ(hulls, ConvexHulls(chevrons, Connectivity::Eight));
}

}  // namespace
}  // namespace orlix
