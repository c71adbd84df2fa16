#include "binary/thinning.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "binary/plane_pictures.hpp"

namespace orlix {
namespace {

using Pixel = std::pair<int32_t, int32_t>;

// The neighbours north, east, south, west.
constexpr Pixel kSides[] = {{0, -1}, {1, 0}, {0, 1}, {-1, 0}};

// In a ringed plane: whether the pixel's removal changes neither the components of the foreground nor those of the
// background around it. Both are counted, by the definition of T. Y. Kong and A. Rosenfeld (1989): one component of
// neighbours in the 3x3 pixels that touches the pixel in its own connectivity, for either.
bool SlowSimple(const BitPlane& plane, int32_t x, int32_t y, Connectivity connectivity) {
    const auto touching = [&](Connectivity kind, bool set) {
        BitPlane around(3, 3);
        for (int32_t dy = -1; dy <= 1; ++dy)
            for (int32_t dx = -1; dx <= 1; ++dx)
                around.setBit(dx + 1, dy + 1, (dx != 0 || dy != 0) && plane.bit(x + dx, y + dy) == set);
        int count = 0;
        const auto steps = StepsOf(kind);
        for (const auto& pixels : SlowComponents(around, kind).pixels)
            count += std::any_of(pixels.begin(), pixels.end(), [&](const Pixel& pixel) {
                return std::find(steps.begin(), steps.end(), Pixel(pixel.first - 1, pixel.second - 1)) != steps.end();
            });
        return count;
    };
    return touching(connectivity, true) == 1 && touching(Dual(connectivity), false) == 1;
}

std::vector<Pixel> SlowNeighbours(const BitPlane& plane, int32_t x, int32_t y, Connectivity connectivity) {
    std::vector<Pixel> found;
    for (const auto& [dx, dy] : StepsOf(connectivity))
        if (IsSet(plane, x + dx, y + dy)) found.push_back({x + dx, y + dy});
    return found;
}

// One step of a pass, in a plane with a ring that stays.
bool SlowStep(BitPlane& plane, Connectivity connectivity, const Pixel& side, bool removesEnds) {
    const BitPlane before = plane;
    for (int32_t y = 1; y < plane.height() - 1; ++y)
        for (int32_t x = 1; x < plane.width() - 1; ++x) {
            if (!before.bit(x, y) || before.bit(x + side.first, y + side.second)) continue;
            if (!SlowSimple(before, x, y, connectivity)) continue;
            const auto neighbours = SlowNeighbours(before, x, y, connectivity);
            // Opposite: on the other side of the line through the pixel across the direction.
            const bool opposite = (neighbours[0].first - x) * side.first + (neighbours[0].second - y) * side.second < 0;
            if (neighbours.size() > 1 || (removesEnds && opposite)) plane.setBit(x, y, false);
        }
    return plane != before;
}

void SlowPasses(BitPlane& plane, Connectivity connectivity, bool removesEnds, int passes) {
    for (bool changed = true; changed && passes > 0; --passes) {
        changed = false;
        for (const Pixel& side : {kSides[0], kSides[2], kSides[1], kSides[3]})
            changed |= SlowStep(plane, connectivity, side, removesEnds);
    }
}

BitPlane SlowSkeleton(const BitPlane& image, Connectivity connectivity) {
    BitPlane plane = Ringed(image, false, false);
    SlowPasses(plane, connectivity, false, INT32_MAX);
    for (bool changed = true; changed;) {
        changed = false;
        for (int32_t y = 1; y < plane.height() - 1; ++y)
            for (int32_t x = 1; x < plane.width() - 1; ++x)
                if (plane.bit(x, y) && SlowSimple(plane, x, y, connectivity) &&
                    SlowNeighbours(plane, x, y, connectivity).size() > 1) {
                    plane.setBit(x, y, false);
                    changed = true;
                }
    }
    return plane;
}

// One component of the smaller plane in each of the larger one, and one of the larger background in each of the smaller.
bool SameTopology(const BitPlane& smaller, const BitPlane& larger, Connectivity connectivity) {
    const auto oneInEach = [](const SlowComponents& inner, const SlowComponents& outer) {
        if (inner.pixels.size() != outer.pixels.size()) return false;
        std::vector<bool> met(outer.pixels.size());
        for (const auto& pixels : inner.pixels) {
            const int label = outer.At(pixels[0].first, pixels[0].second);
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
        for (const int passes : {-1, 0, 1, 2}) {
            BitPlane thinner = Ringed(image, false, false);
            SlowPasses(thinner, connectivity, false, passes);
            ASSERT_EQ(thinner, Ringed(Thin(image, connectivity, passes), false, false));
        }
        const BitPlane skeleton = Skeleton(image, connectivity);
        ASSERT_EQ(SlowSkeleton(image, connectivity), Ringed(skeleton, false, false));
        ASSERT_TRUE(SameTopology(skeleton, image, connectivity));
        for (const int passes : {1, 3, 1000}) {
            BitPlane background = Ringed(image, true, true);
            SlowPasses(background, Dual(connectivity), true, passes);
            const BitPlane thicker = Thicken(image, connectivity, passes);
            ASSERT_EQ(background, Ringed(thicker, true, true));
            ASSERT_TRUE(SameTopology(image, thicker, connectivity));
        }
    }
}

TEST(Thinning, EqualsItsSlowDefinition) {
    ForEachPlaneOfSize(4, 3, ExpectThinning);
    ForEachPlaneOfAnyWidth(ExpectThinning);
}

// Every neighbourhood of a pixel, and of two that are removed at once, occurs.
TEST(Thinning, KeepsTheTopologyOfEverySmallImage) {
    ForEachPlaneOfSize(4, 4, [](const BitPlane& image) {
        for (const Connectivity connectivity : kConnectivities) {
            ASSERT_TRUE(SameTopology(Skeleton(image, connectivity), image, connectivity))
                << testing::PrintToString(image);
            ASSERT_TRUE(SameTopology(image, Thicken(image, connectivity, 9), connectivity))
                << testing::PrintToString(image);
        }
    });
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

// A blob that is thousands of pixels thick costs as many passes: time must go with the outline of each.
TEST(Thinning, ThickBlobsTakeNoTimeForWhatTheyLeaveAlone) {
    constexpr int32_t kSize = 3000;
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
        std::optional<std::vector<Pixel>> shortest;
        Pixel junction;
        for (int32_t y = 0; y < plane.height(); ++y)
            for (int32_t x = 0; x < plane.width(); ++x) {
                if (!plane.bit(x, y) || SlowNeighbours(plane, x, y, connectivity).size() != 1) continue;
                std::vector<Pixel> branch = {{x, y}};
                Pixel at = SlowNeighbours(plane, x, y, connectivity)[0];
                auto next = SlowNeighbours(plane, at.first, at.second, connectivity);
                for (; next.size() == 2; next = SlowNeighbours(plane, at.first, at.second, connectivity)) {
                    const Pixel before = branch.back();
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
        for (const size_t longest : {0, 1, 3, 1000})
            ASSERT_EQ(SlowPrune(image, connectivity, longest),
                      Prune(image, connectivity, static_cast<int64_t>(longest)));
}

TEST(Pruning, EqualsItsSlowDefinition) {
    ForEachPlaneOfSize(4, 4, ExpectPruning);
    for (int32_t width = 1; width <= 70; ++width) {
        const auto seed = static_cast<uint32_t>(width);
        ExpectPruning(NoisePlane(width, 9, 0.4, seed));
        ExpectPruning(Skeleton(NoisePlane(width, 20, 0.7, seed), kConnectivities[seed % 2]));
    }
    const BitPlane line = PlaneOf({"####"});
    EXPECT_EQ(line, Prune(line, Connectivity::Eight, INT64_MAX));
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
