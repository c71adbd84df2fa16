#include "binary/neighbourhood_table.hpp"

#include "binary/binary_pictures.hpp"
#include "binary/plane_kernels.hpp"
#include "support/kernel_testing.hpp"
#include "support/slow_morphology.hpp"

namespace orlix {
namespace {

template <class Rule>
NeighbourhoodTable TableOf(const Rule& rule) {
    NeighbourhoodTable table;
    for (size_t index = 0; index < 512; ++index) table[index] = rule(index);
    return table;
}

NeighbourhoodTable NoiseTable(uint32_t seed) {
    std::mt19937 random(seed);
    return TableOf([&](size_t) { return random() % 2 == 0; });
}

// Of the neighbourhood's nine pixels, in reading order.
bool Set(size_t index, size_t pixel) { return (index >> (8 - pixel) & 1) != 0; }

const NeighbourhoodTable kMajority = TableOf([](size_t index) { return __builtin_popcountll(index) > 4; });
// A pixel lives on with two or three neighbours and is born with three.
const NeighbourhoodTable kLife = TableOf([](size_t index) {
    const int neighbours = __builtin_popcountll(index) - Set(index, 4);
    return neighbours == 3 || (neighbours == 2 && Set(index, 4));
});

TEST(NeighbourhoodTable, EveryWidthAndAnyTable) {
    for (int32_t width = 1; width <= 140; ++width)
        for (const NeighbourhoodTable& table : {NoiseTable(static_cast<uint32_t>(width)), kLife, kMajority}) {
            const BitPlane before = NoisePlane(width, 1 + width % 5, 0.5, static_cast<uint32_t>(width));
            BitPlane plane = before;
            ApplyTable(plane, table, 1);
            ASSERT_EQ(SlowTablePass(before, table), plane) << width;
        }
    BitPlane wide = NoisePlane(3000, 3, 0.5, 1);
    const BitPlane want = SlowTablePass(wide, kLife);
    ApplyTable(wide, kLife, 1);
    EXPECT_EQ(want, wide);
}

// Rows are visited again only after a change next to them; the result must not depend on it.
TEST(NeighbourhoodTable, ManyPassesAreThatManySinglePasses) {
    for (const NeighbourhoodTable& table : {kLife, kMajority, NoiseTable(1), NoiseTable(2)}) {
        BitPlane slow = NoisePlane(67, 40, 0.2, 1);
        for (int32_t times = 0; times < 40; ++times) {
            BitPlane plane = NoisePlane(67, 40, 0.2, 1);
            const TablePasses passes = ApplyTable(plane, table, times);
            ASSERT_EQ(slow, plane) << times;
            EXPECT_TRUE(passes.passes == times || passes.stable) << times;
            slow = SlowTablePass(slow, table);
        }
    }
}

// A line that grows by a pixel each pass, until it reaches the edge.
TEST(NeighbourhoodTable, EndsWhenNothingChanges) {
    const NeighbourhoodTable grow = TableOf([](size_t index) { return Set(index, 3) || Set(index, 4); });
    BitPlane plane(100, 3);
    plane.setBit(10, 1, true);
    const TablePasses passes = ApplyTable(plane, grow, INT32_MAX);
    EXPECT_EQ(89, passes.passes);
    EXPECT_TRUE(passes.stable);
    for (int32_t x = 0; x < 100; ++x) EXPECT_EQ(x >= 10, plane.bit(x, 1));
    EXPECT_EQ(0, ApplyTable(plane, grow, 5).passes);
    EXPECT_EQ(0, ApplyTable(plane, kLife, -1).passes);
    BitPlane none;
    EXPECT_TRUE(ApplyTable(none, kLife, 1).stable);
}

// Three in a row turn at each pass; next to them four in a square stay.
TEST(NeighbourhoodTable, WhatGoesBackAndForthEndsAtOnce) {
    BitPlane upright(80, 20), level(80, 20);
    for (BitPlane* plane : {&upright, &level})
        for (const int32_t i : {0, 1}) {
            plane->setBit(70, i, true);
            plane->setBit(71, i, true);
        }
    for (const int32_t i : {-1, 0, 1}) {
        upright.setBit(20, 10 + i, true);
        level.setBit(20 + i, 10, true);
    }
    for (const int32_t times : {1, 2, 3, INT32_MAX - 1, INT32_MAX}) {
        BitPlane plane = upright;
        const TablePasses passes = ApplyTable(plane, kLife, times);
        EXPECT_EQ(times, passes.passes);
        EXPECT_FALSE(passes.stable);
        EXPECT_EQ(times % 2 == 0 ? upright : level, plane) << times;
    }
    const NeighbourhoodTable invert = TableOf([](size_t index) { return !Set(index, 4); });
    BitPlane plane = upright;
    ApplyTable(plane, invert, INT32_MAX);
    EXPECT_EQ(upright.bit(0, 0), !plane.bit(0, 0));
}

TEST(NeighbourhoodTable, ProgramsAreShort) {
    for (uint32_t seed = 0; seed < 20; ++seed)
        EXPECT_LE(NeighbourhoodProgram(NoiseTable(seed)).choices(), kMostChoices);
    EXPECT_EQ(0u, NeighbourhoodProgram(TableOf([](size_t) { return true; })).choices());
    EXPECT_EQ(9u, NeighbourhoodProgram(TableOf([](size_t index) { return index == 511; })).choices());
    EXPECT_LE(NeighbourhoodProgram(kLife).choices(), 40u);
}

TEST(PlaneKernel, EveryVariantEqualsTheDefinition) {
    for (const size_t n : kAwkwardSizes) {
        const std::vector<uint64_t> from = Noise<uint64_t>(n + 1, 1), to = Noise<uint64_t>(n, 2);
        ExpectTheBits(kOrWords, to, [&](OrWordsFn fn, uint64_t* words) { fn(words, from.data() + 1, n); });
        for (const int bits : {1, 7, 32, 63})
            ExpectTheBits(kOrMoved, to, [&](OrMovedFn fn, uint64_t* words) { fn(words, from.data() + 1, n, bits); });
    }
    const TableChoice choices[] = {{3, 0, 1}, {8, 2, 0}, {0, 3, 2}, {8, 1, 4}};
    const std::vector<uint64_t> noise = Noise<uint64_t>(sizeof(ChoiceWords) / 8, 3);
    ExpectTheBits(kChooseWords, std::vector<uint64_t>(7 * kChoiceWords), [&](ChooseWordsFn fn, uint64_t* values) {
        ChoiceWords words;
        std::memcpy(&words, noise.data(), sizeof words);
        fn(choices, std::size(choices), words);
        std::memcpy(values, words.values, 7 * kChoiceWords * sizeof(uint64_t));
    });
}

TEST(HitOrMiss, EqualsItsDefinitionAtEveryWidth) {
    for (int32_t width = 1; width <= 70; ++width) {
        const BitPlane plane = NoisePlane(width, 1 + width % 7, 0.5, static_cast<uint32_t>(width));
        ASSERT_EQ(SlowHitOrMiss(plane, {{0, 0}, {1, 0}, {0, 1}}, {{-1, 0}, {-1, -1}, {0, -1}}),
                  HitOrMiss(plane, {{0, 0, 1}, {1, 0, 0}}, {{-1, -1, 0}, {0, -1, -1}}))
            << width;
        EXPECT_EQ(plane, HitOrMiss(plane, {{0, 0, 0}}, {}));
    }
}

TEST(BoundaryOf, PixelsWithANeighbourOfTheOtherKind) {
    for (int32_t width = 1; width <= 70; ++width) {
        const BitPlane plane = NoisePlane(width, 1 + width % 7, width % 2 == 0 ? 0.1 : 0.8, 1);
        for (const Boundary side : {Boundary::Inner, Boundary::Outer})
            for (const Connectivity neighbours : kConnectivities)
                ASSERT_EQ(SlowBoundary(plane, side == Boundary::Inner, neighbours), BoundaryOf(plane, side, neighbours))
                    << width;
    }
}

}  // namespace
}  // namespace orlix
