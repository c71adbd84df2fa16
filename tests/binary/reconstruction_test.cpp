#include "binary/reconstruction.hpp"

#include "binary/area_filter.hpp"
#include "binary/binary_pictures.hpp"
#include "binary/component_hulls.hpp"
#include "support/testing.hpp"

namespace orlix {
namespace {

void ExpectSlowResults(const BitPlane& image) {
    // Some seeds lie outside the mask.
    const BitPlane seeds = NoisePlane(image.width(), image.height(), 0.04, 99);
    for (const Connectivity connectivity : kConnectivities) {
        ASSERT_EQ(SlowReconstruct(seeds, image, connectivity), Reconstruct(seeds, image, connectivity));
        ASSERT_EQ(SlowClearBorder(image, connectivity), ClearBorder(image, connectivity));
        ASSERT_EQ(SlowFillHoles(image, connectivity, INT64_MAX), FillHoles(image, connectivity));
        for (const int most : {-1, 0, 1, 3, 19, 20})
            ASSERT_EQ(SlowFillHoles(image, connectivity, most), FillHolesUpTo(image, connectivity, most));
        for (const auto& [least, most] : {std::pair<int64_t, int64_t>{2, 5}, {4, INT64_MAX}, {INT64_MAX, INT64_MIN}})
            ASSERT_EQ(SlowKeepArea(image, connectivity, least, most), KeepByArea(image, connectivity, least, most));
    }
}

TEST(ConnectedOperations, EqualTheirSlowDefinitions) {
    ForEachPlaneOfAnyWidth(ExpectSlowResults);
    ForEachPlaneOfSize(4, 3, ExpectSlowResults);
    for (uint32_t seed = 0; seed < 5; ++seed)  // long and winding paths
        ExpectSlowResults(NoisePlane(150, 100, 0.4 + 0.04 * seed, seed));
    // A hole of 20 pixels around a blob with a hole of 3: what is filled keeps the blobs and holes inside.
    ExpectSlowResults(PlaneOf("#########|#.......#|#.#####.#|#.#...#.#|#.#####.#|#.......#|#########"));
}

// The path of one pixel's width winds to the middle, or up and down: every pass over the rows would add one turn.
TEST(ConnectedOperations, WindingPathsAreFollowedToTheEnd) {
    constexpr int32_t kSize = 1023;
    BitPlane spiral(kSize, kSize), seed(kSize, kSize);
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
    const auto serpentine = EachPixel<BitPlane>(
        kSize, kSize, [](int32_t x, int32_t y) { return x % 2 == 0 || y == (x % 4 == 1 ? 0 : kSize - 1); });
    seed.setBit(0, 0, true);
    for (const BitPlane& path : {spiral, serpentine})
        for (const Connectivity connectivity : kConnectivities) {
            EXPECT_EQ(path, Reconstruct(seed, path, connectivity));
            EXPECT_EQ(BitPlane(kSize, kSize), ClearBorder(path, connectivity));
        }
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
