#include "binary/thinning.hpp"

#include "binary/binary_pictures.hpp"
#include "support/slow_thinning.hpp"
#include "support/testing.hpp"

namespace orlix {
namespace {

// Whether all simple pixels of a ringed plane are ends.
bool IsThin(const BitPlane& plane, Connectivity connectivity) {
    for (int32_t y = 1; y < plane.height() - 1; ++y)
        for (int32_t x = 1; x < plane.width() - 1; ++x)
            if (plane.bit(x, y) && SlowSimple(plane, x, y, connectivity) &&
                SlowNeighbours(plane, x, y, connectivity).size() > 1)
                return false;
    return true;
}

// One component of the smaller plane in each of the larger one, and one of the larger background in each of the
// smaller.
bool SameTopology(const BitPlane& smaller, const BitPlane& larger, Connectivity connectivity) {
    const auto oneInEach = [](const SlowComponents& inner, const SlowComponents& outer) {
        if (inner.pixels.size() != outer.pixels.size()) return false;
        std::vector<bool> met(outer.pixels.size());
        for (const auto& pixels : inner.pixels) {
            const int label = outer.At(pixels[0].x, pixels[0].y);
            if (label < 0 || met[static_cast<size_t>(label)]) return false;
            met[static_cast<size_t>(label)] = true;
        }
        return true;
    };
    const Connectivity dual = Dual(connectivity);
    return oneInEach(SlowComponents(smaller, connectivity), SlowComponents(larger, connectivity)) &&
           oneInEach(SlowComponents(Ringed(larger, true, true), dual),
                     SlowComponents(Ringed(smaller, true, true), dual));
}

void ExpectThinning(const BitPlane& image) {
    for (const Connectivity connectivity : kConnectivities) {
        for (const int passes : {1, 2})
            ASSERT_EQ(SlowThin(image, connectivity, passes), Thin(image, connectivity, passes));
        const BitPlane skeleton = Skeleton(image, connectivity);
        ASSERT_EQ(SlowThin(image, connectivity, INT32_MAX), skeleton);
        ASSERT_TRUE(IsThin(Ringed(skeleton, false, false), connectivity));
        ASSERT_TRUE(SameTopology(skeleton, image, connectivity));
        for (const int passes : {1, 1000}) {
            const BitPlane thicker = Thicken(image, connectivity, passes);
            ASSERT_EQ(SlowThicken(image, connectivity, passes), thicker);
            ASSERT_TRUE(SameTopology(image, thicker, connectivity));
        }
    }
}

// The small images have every neighbourhood of a pixel, and of two side by side that one step removes.
TEST(Thinning, EqualsItsSlowDefinitionAndKeepsTheTopology) {
    ForEachPlaneOfSize(4, 3, ExpectThinning);
    ForEachPlaneOfSize(3, 4, ExpectThinning);
    ForEachPlaneOfAnyWidth(ExpectThinning);
    const BitPlane image = DiskPlane(40, 30, 5, 9, 1);
    for (const int64_t none : {int64_t{0}, int64_t{-1}, INT64_MIN}) {
        EXPECT_EQ(image, Thin(image, Connectivity::Four, none));
        EXPECT_EQ(image, Thicken(image, Connectivity::Four, none));
    }
}

TEST(Thinning, KnownSkeletons) {
    const BitPlane bar = PlaneOf("##########|##########|##########|##########|##########");
    EXPECT_EQ(PlaneOf("..........|..........|.########.|..........|.........."), Skeleton(bar, Connectivity::Eight));
    // A ring becomes the shortest ring around the hole; blobs grow until they would meet.
    EXPECT_EQ(PlaneOf(".#.|#.#|.#."), Skeleton(PlaneOf("###|#.#|###"), Connectivity::Eight));
    EXPECT_EQ(PlaneOf("####.####|####.####|####.####"),
              Thicken(PlaneOf(".........|..#...#..|........."), Connectivity::Eight, 100));
}

// Hundreds of passes, of which each sees little more than the outline that the one before has left.
TEST(Thinning, ALargeSquareThinsToOneLineAndThickensBack) {
    constexpr int32_t kSize = 1500;
    const BitPlane square = Opposite(BitPlane(kSize, kSize));
    for (const Connectivity connectivity : kConnectivities) {
        const BitPlane skeleton = Skeleton(square, connectivity);
        EXPECT_EQ(1u, SlowComponents(skeleton, connectivity).pixels.size());
        EXPECT_EQ(square, Thicken(skeleton, connectivity, INT64_MAX));
    }
}

void ExpectPruning(const BitPlane& image) {
    for (const Connectivity connectivity : kConnectivities)
        for (const int64_t longest : {1, 3, 1000})
            ASSERT_EQ(SlowPrune(image, connectivity, longest), Prune(image, connectivity, longest));
}

TEST(Pruning, EqualsItsSlowDefinition) {
    ForEachPlaneOfSize(4, 3, ExpectPruning);
    for (int32_t width = 1; width <= 70; ++width) {
        const auto seed = static_cast<uint32_t>(width);
        ExpectPruning(NoisePlane(width, 5, 0.4, seed));
        ExpectPruning(Skeleton(NoisePlane(width, 12, 0.7, seed), kConnectivities[seed % 2]));
    }
    const BitPlane line = PlaneOf("####");
    EXPECT_EQ(line, Prune(line, Connectivity::Eight, INT64_MAX));
    const BitPlane branched = NoisePlane(40, 40, 0.3, 1);
    for (const int64_t none : {int64_t{0}, INT64_MIN}) EXPECT_EQ(branched, Prune(branched, Connectivity::Eight, none));
    EXPECT_EQ(BitPlane(), Prune(BitPlane(), Connectivity::Eight, 5));
}

}  // namespace
}  // namespace orlix
