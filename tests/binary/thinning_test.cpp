#include "binary/thinning.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "binary/plane_pictures.hpp"

namespace orlix {
namespace {

// In a ringed plane: whether the pixel's removal changes neither the components of the foreground nor those of the
// background around it. Both are counted, by the definition of T. Y. Kong and A. Rosenfeld (1989): one component of
// neighbours in the 3x3 pixels that touches the pixel in its own connectivity, for either.
bool SlowSimple(const BitPlane& plane, int32_t x, int32_t y, Connectivity connectivity) {
    static const auto tables = [] {
        std::array<std::array<bool, 512>, 2> simple;
        const auto touching = [](const BitPlane& around, Connectivity kind) {
            const auto steps = StepsOf(kind);
            int count = 0;
            for (const auto& pixels : SlowComponents(around, kind).pixels)
                count += std::any_of(pixels.begin(), pixels.end(), [&](const Place& at) {
                    return std::find(steps.begin(), steps.end(), Place{at.x - 1, at.y - 1}) != steps.end();
                });
            return count;
        };
        for (uint32_t bits = 0; bits < 512; ++bits) {
            BitPlane set(3, 3), clear(3, 3);
            for (int32_t i = 0; i < 9; ++i)
                if (i != 4) (bits >> i & 1 ? set : clear).setBit(i % 3, i / 3, true);
            for (size_t k = 0; k < 2; ++k)
                simple[k][bits] =
                    touching(set, kConnectivities[k]) == 1 && touching(clear, Dual(kConnectivities[k])) == 1;
        }
        return simple;
    }();
    uint32_t bits = 0;
    for (int32_t i = 0; i < 9; ++i) bits |= uint32_t{plane.bit(x + i % 3 - 1, y + i / 3 - 1)} << i;
    return tables[connectivity == Connectivity::Eight][bits];
}

std::vector<Place> SlowNeighbours(const BitPlane& plane, int32_t x, int32_t y, Connectivity connectivity) {
    std::vector<Place> found;
    for (const auto& [dx, dy] : StepsOf(connectivity))
        if (IsSet(plane, x + dx, y + dy)) found.push_back({x + dx, y + dy});
    return found;
}

// One step of a pass, in a plane with a ring that stays.
bool SlowStep(BitPlane& plane, Connectivity connectivity, const Place& side, bool removesEnds) {
    const BitPlane before = plane;
    for (int32_t y = 1; y < plane.height() - 1; ++y)
        for (int32_t x = 1; x < plane.width() - 1; ++x) {
            if (!before.bit(x, y) || before.bit(x + side.x, y + side.y)) continue;
            if (!SlowSimple(before, x, y, connectivity)) continue;
            const auto neighbours = SlowNeighbours(before, x, y, connectivity);
            // Opposite: on the other side of the line through the pixel across the direction.
            const bool opposite = (neighbours[0].x - x) * side.x + (neighbours[0].y - y) * side.y < 0;
            if (neighbours.size() > 1 || (removesEnds && opposite)) plane.setBit(x, y, false);
        }
    return plane != before;
}

void SlowPasses(BitPlane& plane, Connectivity connectivity, bool removesEnds, int passes) {
    for (bool changed = true; changed && passes > 0; --passes) {
        changed = false;
        for (const Place& side : {Place{0, -1}, Place{0, 1}, Place{1, 0}, Place{-1, 0}})
            changed |= SlowStep(plane, connectivity, side, removesEnds);
    }
}

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
        for (const int passes : {1, 2}) {
            BitPlane thinner = Ringed(image, false, false);
            SlowPasses(thinner, connectivity, false, passes);
            ASSERT_EQ(thinner, Ringed(Thin(image, connectivity, passes), false, false));
        }
        const BitPlane skeleton = Skeleton(image, connectivity);
        BitPlane thinnest = Ringed(image, false, false);
        SlowPasses(thinnest, connectivity, false, INT32_MAX);
        ASSERT_EQ(thinnest, Ringed(skeleton, false, false));
        ASSERT_TRUE(IsThin(thinnest, connectivity));
        ASSERT_TRUE(SameTopology(skeleton, image, connectivity));
        for (const int passes : {1, 1000}) {
            BitPlane background = Ringed(image, true, true);
            SlowPasses(background, Dual(connectivity), true, passes);
            const BitPlane thicker = Thicken(image, connectivity, passes);
            ASSERT_EQ(background, Ringed(thicker, true, true));
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
    // The middle line of a bar; the ends stay where the passes found them.
    EXPECT_EQ(PlaneOf({"..........",  //
                       "..........",  //
                       ".########.",  //
                       "..........",  //
                       ".........."}),
              Skeleton(PlaneOf({"##########",  //
                                "##########",  //
                                "##########",  //
                                "##########",  //
                                "##########"}),
                       Connectivity::Eight));
    // A ring becomes the shortest ring around the hole, a thick line a thin one from end to end.
    EXPECT_EQ(PlaneOf({"...#....",  //
                       "..#.#...",  //
                       "...#....",  //
                       "........",  //
                       "#.......",  //
                       ".######."}),
              Skeleton(PlaneOf({"..###...",  //
                                "..#.#...",  //
                                "..###...",  //
                                "#.......",  //
                                "##......",  //
                                ".######."}),
                       Connectivity::Eight));
}

TEST(Thinning, ThickenedBlobsFillTheImageAndDoNotMeet) {
    EXPECT_EQ(PlaneOf({"####.####",  //
                       "####.####",  //
                       "####.####"}),
              Thicken(PlaneOf({".........",  //
                               "..#...#..",  //
                               "........."}),
                      Connectivity::Eight, 100));
    // A notch closes, one pixel of a hole remains.
    EXPECT_EQ(PlaneOf({"#########",  //
                       "#########",  //
                       "#####.###",  //
                       "#########",  //
                       "#########"}),
              Thicken(PlaneOf({".........",  //
                               ".##.####.",  //
                               ".##.#..#.",  //
                               ".#######.",  //
                               "........."}),
                      Connectivity::Eight, 100));
}

// Hundreds of passes, of which each sees little more than the outline that the one before has left.
TEST(Thinning, ALargeSquareThinsToOneLineAndThickensBack) {
    constexpr int32_t kSize = 1500;
    BitPlane square(kSize, kSize);
    for (int32_t y = 0; y < kSize; ++y) SetRun(square.row(y), {0, kSize - 1});
    for (const Connectivity connectivity : kConnectivities) {
        const BitPlane skeleton = Skeleton(square, connectivity);
        EXPECT_EQ(1u, SlowComponents(skeleton, connectivity).pixels.size());
        EXPECT_EQ(square, Thicken(skeleton, connectivity, INT64_MAX));
    }
}

// Looks for all branches anew after each removal.
BitPlane SlowPrune(const BitPlane& image, Connectivity connectivity, size_t longest) {
    BitPlane plane = image;
    for (;;) {
        std::optional<std::vector<Place>> shortest;
        Place junction = {};
        for (int32_t y = 0; y < plane.height(); ++y)
            for (int32_t x = 0; x < plane.width(); ++x) {
                if (!plane.bit(x, y) || SlowNeighbours(plane, x, y, connectivity).size() != 1) continue;
                std::vector<Place> branch = {{x, y}};
                Place at = SlowNeighbours(plane, x, y, connectivity)[0];
                auto next = SlowNeighbours(plane, at.x, at.y, connectivity);
                for (; next.size() == 2; next = SlowNeighbours(plane, at.x, at.y, connectivity)) {
                    const Place before = branch.back();
                    branch.push_back(at);
                    at = next[next[0] == before ? 1 : 0];
                }
                if (next.size() < 3 || branch.size() > longest) continue;
                if (shortest && shortest->size() <= branch.size()) continue;
                shortest = branch;
                junction = at;
            }
        if (!shortest) return plane;
        for (const auto& [x, y] : *shortest) plane.setBit(x, y, false);
        const auto [x, y] = junction;
        if (SlowNeighbours(plane, x, y, connectivity).size() == 2 &&
            SlowSimple(Ringed(plane, false, false), x + 1, y + 1, connectivity))
            plane.setBit(x, y, false);
    }
}

void ExpectPruning(const BitPlane& image) {
    for (const Connectivity connectivity : kConnectivities)
        for (const size_t longest : {1, 3, 1000})
            ASSERT_EQ(SlowPrune(image, connectivity, longest),
                      Prune(image, connectivity, static_cast<int64_t>(longest)));
}

TEST(Pruning, EqualsItsSlowDefinition) {
    ForEachPlaneOfSize(4, 3, ExpectPruning);
    for (int32_t width = 1; width <= 70; ++width) {
        const auto seed = static_cast<uint32_t>(width);
        ExpectPruning(NoisePlane(width, 5, 0.4, seed));
        ExpectPruning(Skeleton(NoisePlane(width, 12, 0.7, seed), kConnectivities[seed % 2]));
    }
    const BitPlane line = PlaneOf({"####"});
    EXPECT_EQ(line, Prune(line, Connectivity::Eight, INT64_MAX));
    const BitPlane branched = NoisePlane(40, 40, 0.3, 1);
    for (const int64_t none : {int64_t{0}, INT64_MIN}) EXPECT_EQ(branched, Prune(branched, Connectivity::Eight, none));
    EXPECT_EQ(BitPlane(), Prune(BitPlane(), Connectivity::Eight, 5));
}

TEST(Pruning, RemovesTheShorterBranchesAndLeavesTheLine) {
    const BitPlane skeleton = PlaneOf({"#.........#",  //
                                       ".#..#....#.",  //
                                       "..#.#...#..",  //
                                       "#..#.###...",  //
                                       ".##.#......"});
    // The branch of 2 at the top goes before that of 2 at the left, which is a part of the line then.
    const BitPlane line = Prune(skeleton, Connectivity::Eight, 2);
    EXPECT_FALSE(line.bit(4, 1));
    EXPECT_TRUE(line.bit(10, 0));
    EXPECT_TRUE(SameTopology(line, skeleton, Connectivity::Eight));
    EXPECT_EQ(line, Prune(line, Connectivity::Eight, 2));
}

}  // namespace
}  // namespace orlix
