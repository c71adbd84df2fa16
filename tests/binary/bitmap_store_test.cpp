#include "binary/bitmap_store.hpp"

#include "support/failure_of.hpp"
#include "support/special_numbers.hpp"
#include "support/testing.hpp"

namespace orlix {
namespace {

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
    for (const int32_t bad : {0, -1, kLeast}) {
        EXPECT_EQ("CBITMAP::Create: width must be positive", FailureOf([&] { store.Create(bad, bad, true); }));
        EXPECT_EQ("CBITMAP::Create: height must be positive", FailureOf([&] { store.Create(1, bad, true); }));
    }
    EXPECT_THROW(store.Create(kMost, kMost, true), std::bad_alloc);  // 2^59 bytes
    EXPECT_TRUE(store.width() == 10 && store.height() == 2 && store.record().bmBits == bits);
    EXPECT_EQ(before, Bytes(store));
    EXPECT_TRUE(store.Modified(0) && !store.Modified(1));
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
    const std::pair<LONG, std::vector<uint8_t>> cases[] = {
        {3, {1, 2, 3, 0, 4, 5, 6, 0}}, {5, {1, 2, 3, 4, 6, 7, 8, 9}}, {4, {1, 2, 3, 4, 5, 6, 7, 8}}};
    BitmapStore store = Counting(50, 7);
    for (const auto& [rowBytes, want] : cases) {
        store.CopyFrom({0, 20, 2, rowBytes, 1, 1, bytes});  // 3 bytes in a row, of 4 here
        EXPECT_EQ(want, Bytes(store));
    }
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
    BitmapStore store = Counting(10, 2);
    const auto before = Bytes(store);
    // The first is what a sound one of 20 x 2 is like, without its pixels.
    for (const BITMAP& record : {BITMAP{0, 20, 2, 4, 1, 1, nullptr},
                                 {0, 20, 2, 4, 1, 1, reinterpret_cast<void*>(uintptr_t{16})},  // not to be read
                                 {0, 20, 2, 2, 1, 1, bytes},
                                 {0, 20, 2, -4, 1, 1, bytes},
                                 {0, 20, 2, 4, 4, 1, bytes},
                                 {0, 20, 2, 4, 1, 8, bytes},
                                 {0, kMost, 2, 4, 1, 1, bytes}})
        EXPECT_THROW(store.CopyFrom(record), FailedResult);
    EXPECT_THROW(store.CopyFrom({0, 20, -2, 4, 1, 1, bytes}), Failure);
    EXPECT_THROW(store.CopyFrom({0, kMost, kMost, kMost, 1, 1, bytes}), FailedResult);
    EXPECT_EQ(before, Bytes(store));
    EXPECT_EQ(10, store.width());
}

}  // namespace
}  // namespace orlix
