#include "binary/bit_plane.hpp"

#include "binary/binary_pictures.hpp"
#include "support/testing.hpp"

namespace orlix {
namespace {

// Bytes of a row: 0x80 is its first pixel, whatever the order of the machine's words.
TEST(BitPlane, TheFirstPixelIsTheHighestBit) {
    const uint8_t bytes[] = {0x80, 0, 0, 0, 0, 0, 0, 0x01, 0x80, 0xff};
    const BitPlane plane(BitRows{bytes, 10, 66, 1});
    EXPECT_EQ(2u, plane.wordsPerRow());
    EXPECT_EQ(0x8000000000000001u, plane.row(0)[0]);
    EXPECT_EQ(uint64_t{1} << 63, plane.row(0)[1]);
    EXPECT_EQ(uint64_t{3} << 62, plane.lastWordMask());
}

TEST(BitPlane, HoldsThePixelsAtEveryWidthAndNothingOfThePadding) {
    for (int32_t width = 1; width <= 140; ++width) {
        BitmapStore store = NoiseBitmap(width, 3, 0.5, Padding::Noise);
        BitPlane plane(RowsOf(store));
        for (int32_t y = 0; y < 3; ++y) {
            EXPECT_EQ(0u, plane.row(y)[plane.wordsPerRow() - 1] & ~plane.lastWordMask());
            for (int32_t x = 0; x < width; ++x) ASSERT_EQ(store.Bit(x, y), plane.bit(x, y)) << width << " " << x;
        }
        const BitPlane before = plane;
        plane.setBit(width - 1, 1, !plane.bit(width - 1, 1));
        EXPECT_EQ(!store.Bit(width - 1, 1), plane.bit(width - 1, 1));
        EXPECT_NE(before, plane);
    }
}

TEST(BitPlane, StoresThePixelsOfARegionAndMarksItsRows) {
    for (int32_t width = 1; width <= 140; ++width)
        ExpectInRegions(
            width, 4,
            [&](BitmapStore& store, const RegionRows& region) {
                Store(Opposite(BitPlane(RowsOf(store))), store, region);
            },
            [](int32_t x, int32_t y, const BitmapStore& before) { return !before.Bit(x, y); });
}

TEST(BitPlane, WhatCannotBeAddressedIsRefused) {
    EXPECT_THROW(BitPlane(INT32_MAX, INT32_MAX), std::bad_alloc);
    EXPECT_EQ(0u, BitPlane(0, 0).wordsPerRow());
    EXPECT_EQ(BitPlane(), BitPlane(RowsOf(BitmapStore())));
}

}  // namespace
}  // namespace orlix
