#include "binary/bitmap_store.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <new>
#include <string>
#include <vector>

#include "component/failure.hpp"

namespace orlix {
namespace {

constexpr int32_t kMost = std::numeric_limits<int32_t>::max();

std::vector<uint8_t> Bytes(const BitmapStore& store) {
    const auto* first = static_cast<const uint8_t*>(store.record().bmBits);
    return {first, first + store.rowBytes() * store.height()};
}

// A store of the given size with the bytes 1, 2, 3, ...
BitmapStore Counting(int32_t width, int32_t height) {
    BitmapStore store;
    store.Create(width, height, false);
    uint8_t next = 0;
    for (int32_t y = 0; y < height; ++y)
        for (ptrdiff_t i = 0; i < store.rowBytes(); ++i) store.WriteRow(y)[i] = ++next;
    return store;
}

TEST(BitmapStore, RowsTakeAnEvenNumberOfBytes) {
    const int32_t table[][2] = {{1, 2},  {8, 2},  {9, 2},  {16, 2},           {17, 4},
                                {24, 4}, {32, 4}, {33, 6}, {kMost, 268435456}};
    for (const auto& [width, bytes] : table) EXPECT_EQ(bytes, BitmapStore::RowBytes(width)) << width;
}

TEST(BitmapStore, CreationKeepsTheBytesThatWereThere) {
    BitmapStore store = Counting(10, 2);
    store.Create(17, 2, false);
    EXPECT_EQ((std::vector<uint8_t>{1, 2, 3, 4, 0, 0, 0, 0}), Bytes(store));
    store.Create(1, 1, false);
    EXPECT_EQ((std::vector<uint8_t>{1, 2}), Bytes(store));
    store.Create(10, 2, false);  // bytes 3 and 4 are new again
    EXPECT_EQ((std::vector<uint8_t>{1, 2, 0, 0}), Bytes(store));
}

TEST(BitmapStore, FailedCreationLeavesEverythingAsItWas) {
    BitmapStore store = Counting(10, 2);
    store.ClearModified(1);
    const auto before = Bytes(store);
    const void* bits = store.record().bmBits;
    const auto unchanged = [&] {
        return store.width() == 10 && store.height() == 2 && store.record().bmBits == bits && Bytes(store) == before &&
               store.Modified(0) && !store.Modified(1);
    };
    const auto message = [&](int32_t width, int32_t height) {
        try {
            store.Create(width, height, true);
        } catch (const Failure& failure) {
            return std::string(failure.what());
        }
        return std::string();
    };
    for (const int32_t bad : {0, -1, std::numeric_limits<int32_t>::min()}) {
        EXPECT_EQ("CBITMAP::Create: width must be positive", message(bad, bad));
        EXPECT_EQ("CBITMAP::Create: height must be positive", message(1, bad));
    }
    EXPECT_THROW(store.Create(kMost, kMost, true), std::bad_alloc);  // 2^59 bytes
    EXPECT_TRUE(unchanged());
}

TEST(BitmapStore, TheIndexHoldsOffsetsInsideTheBitmap) {
    for (const auto& [width, height] : {std::pair{100, 3}, std::pair{5, 700}, std::pair{1, 1}}) {
        BitmapStore store;
        store.Create(width, height, false);
        const int32_t rowBytes = static_cast<int32_t>(store.rowBytes());
        const int32_t longer = std::max(rowBytes, static_cast<int32_t>(height));
        for (int32_t i = -200; i < longer + 200; ++i) {
            EXPECT_EQ(i < 0 ? 0 : i >= rowBytes ? rowBytes - 1 : i, store.Index(i).column);
            EXPECT_EQ(rowBytes * (i < 0 ? 0 : i >= height ? height - 1 : i), store.Index(i).offset);
        }
    }
}

TEST(BitmapStore, WritersMarkTheirRowAndFillsMarkNone) {
    BitmapStore store;
    store.Create(10, 4, true);
    for (int32_t y = 0; y < 4; ++y) {
        EXPECT_TRUE(store.Modified(y));
        store.ClearModified(y);
    }
    store.Fill(0xff);
    store.Row(1);
    store.WriteRow(2);
    for (int32_t y = 0; y < 4; ++y) EXPECT_EQ(y == 2, store.Modified(y));
    store.Create(10, 4, false);
    for (int32_t y = 0; y < 4; ++y) EXPECT_TRUE(store.Modified(y));
}

TEST(BitmapStore, CopiesRowsOfAnyLength) {
    uint8_t bytes[] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    BITMAP source = {};
    source.bmWidth = 20;  // 3 bytes, of 4 here
    source.bmHeight = 2;
    source.bmPlanes = 1;
    source.bmBitsPixel = 1;
    source.bmBits = bytes;
    BitmapStore store = Counting(50, 7);
    source.bmWidthBytes = 3;
    store.CopyFrom(source);
    EXPECT_EQ((std::vector<uint8_t>{1, 2, 3, 0, 4, 5, 6, 0}), Bytes(store));
    source.bmWidthBytes = 5;
    store.CopyFrom(source);
    EXPECT_EQ((std::vector<uint8_t>{1, 2, 3, 4, 6, 7, 8, 9}), Bytes(store));
    source.bmWidthBytes = 4;
    store.CopyFrom(source);
    EXPECT_EQ((std::vector<uint8_t>{1, 2, 3, 4, 5, 6, 7, 8}), Bytes(store));
    EXPECT_EQ(20, store.width());
}

TEST(BitmapStore, CopiesARecordOfItsOwnMemory) {
    BitmapStore store = Counting(16, 3);
    BITMAP second = store.record();
    second.bmHeight = 2;
    second.bmBits = static_cast<uint8_t*>(second.bmBits) + 2;
    store.CopyFrom(second);
    EXPECT_EQ((std::vector<uint8_t>{3, 4, 5, 6}), Bytes(store));
    EXPECT_TRUE(store.Modified(1));
}

TEST(BitmapStore, ImpossibleRecordsAreRefused) {
    uint8_t bytes[8] = {};
    BITMAP good = {};
    good.bmWidth = 20;
    good.bmHeight = 2;
    good.bmWidthBytes = 4;
    good.bmPlanes = 1;
    good.bmBitsPixel = 1;
    good.bmBits = bytes;
    BitmapStore store = Counting(10, 2);
    const auto before = Bytes(store);
    const auto refuse = [&](auto change) {
        BITMAP record = good;
        change(record);
        EXPECT_THROW(store.CopyFrom(record), FailedResult);
        EXPECT_EQ(before, Bytes(store));
        EXPECT_EQ(10, store.width());
    };
    refuse([](BITMAP& b) { b.bmBits = nullptr; });
    refuse([](BITMAP& b) { b.bmBits = reinterpret_cast<void*>(uintptr_t{16}); });  // not to be read
    refuse([](BITMAP& b) { b.bmWidthBytes = 2; });
    refuse([](BITMAP& b) { b.bmWidthBytes = -4; });
    refuse([](BITMAP& b) { b.bmPlanes = 4; });
    refuse([](BITMAP& b) { b.bmBitsPixel = 8; });
    refuse([](BITMAP& b) { b.bmWidth = kMost; });
    good.bmHeight = -2;
    EXPECT_THROW(store.CopyFrom(good), Failure);
    good.bmWidth = good.bmHeight = kMost;
    good.bmWidthBytes = kMost;
    EXPECT_THROW(store.CopyFrom(good), std::bad_alloc);
    EXPECT_EQ(before, Bytes(store));
}

}  // namespace
}  // namespace orlix
