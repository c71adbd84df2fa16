#include "binary/logic.hpp"

#include "binary/binary_pictures.hpp"
#include "binary/logic_kernels.hpp"
#include "support/kernel_testing.hpp"

namespace orlix {
namespace {

constexpr BitLogic kLogic[] = {BitLogic::And,    BitLogic::Or,   BitLogic::Xor,
                               BitLogic::AndNot, BitLogic::Copy, BitLogic::Not};

bool LogicOf(BitLogic how, bool a, bool b) {
    switch (how) {
        case BitLogic::And:
            return a && b;
        case BitLogic::Or:
            return a || b;
        case BitLogic::Xor:
            return a != b;
        case BitLogic::AndNot:
            return a && !b;
        case BitLogic::Copy:
            return b;
        case BitLogic::Not:
            break;
    }
    return !b;
}

TEST(BitmapLogic, CombinesThePixelsOfARegion) {
    for (int32_t width = 1; width <= 70; ++width)
        for (const BitLogic how : kLogic) {
            const BitmapStore other = NoiseBitmap(width, 5, 0.5, Padding::Set, 3);
            ExpectInRegions(
                width, 5,
                [&](BitmapStore& bitmap, const RegionRows& region) { Combine(bitmap, how, RowsOf(other), region); },
                [&](int32_t x, int32_t y, const BitmapStore& before) {
                    return LogicOf(how, before.Bit(x, y), other.Bit(x, y));
                });
        }
}

// Itself; the same rows two rows down; every second row; rows of odd length.
TEST(BitmapLogic, AnOperandInTheBitmapsOwnMemoryIsReadBeforeItIsWritten) {
    struct Case {
        ptrdiff_t offset, rowBytes;
    };
    for (const BitLogic how : kLogic)
        for (const Case& c : {Case{0, 6}, Case{12, 6}, Case{0, 12}, Case{1, 5}}) {
            BitmapStore bitmap = NoiseBitmap(40, 10, 0.5, Padding::Noise);
            const BitmapStore before = NoiseBitmap(40, 10, 0.5, Padding::Noise);
            BitRows part = RowsOf(bitmap);
            part.first += c.offset;
            part.rowBytes = c.rowBytes;
            part.height = 5;
            ForeignRegion upper;
            upper.box = {0, 0, 39, 4};
            for (LONG y = 0; y < 5; ++y) upper.rows[y] = {MakeRun(0, 39)};
            Combine(bitmap, how, part, RegionRows(&upper, 40, 10));
            for (int32_t y = 0; y < 10; ++y)
                for (int32_t x = 0; x < 40; ++x) {
                    const auto operand = [&] {
                        return before.Row(0)[c.offset + y * c.rowBytes + x / 8] & BitmapStore::MaskOf(x);
                    };
                    const bool want = y < 5 ? LogicOf(how, before.Bit(x, y), operand()) : before.Bit(x, y);
                    ASSERT_EQ(want, bitmap.Bit(x, y)) << x << ", " << y;
                }
        }
}

TEST(BitmapLogic, CountsThePixelsOfARegion) {
    for (int32_t width = 1; width <= 140; ++width)
        ForEachRegion(width, 5, [&](const RegionRows& region, const BitPlane& inside) {
            const BitmapStore bitmap = NoiseBitmap(width, 5, 0.5, Padding::Set);
            int64_t want = 0;
            for (int32_t y = 0; y < 5; ++y)
                for (int32_t x = 0; x < width; ++x) want += bitmap.Bit(x, y) && inside.bit(x, y);
            EXPECT_EQ(want, CountPixels(RowsOf(bitmap), region)) << width;
        });
}

TEST(BitmapLogic, TranslatesByAnyDistance) {
    const int32_t distances[] = {0, 1, -1, 7, -7, 8, -8, 13, -20, 64, -65, 69, -70, 300, INT32_MAX, INT32_MIN};
    for (const int32_t width : {1, 5, 8, 16, 33, 64, 70})
        for (const int32_t right : distances)
            for (const int32_t down : {0, 1, -1, 2, -4, 5, INT32_MAX, INT32_MIN})
                ExpectInRegions(
                    width, 5,
                    [&](BitmapStore& bitmap, const RegionRows& region) { Translate(bitmap, right, down, region); },
                    [&](int32_t x, int32_t y, const BitmapStore& before) {
                        const int64_t fromX = int64_t{x} - right, fromY = int64_t{y} - down;
                        return fromX >= 0 && fromX < width && fromY >= 0 && fromY < 5 &&
                               before.Bit(static_cast<int32_t>(fromX), static_cast<int32_t>(fromY));
                    });
}

// Rows end with their memory, so that AddressSanitizer sees a read beyond.
template <BitLogic how>
void ExpectCombineVariants() {
    for (const size_t n : kAwkwardSizes)
        for (const size_t offset : {0u, 1u, 30u}) {
            SCOPED_TRACE(testing::Message() << "logic " << int(how) << ", " << n << " bytes");
            const std::vector<uint8_t> with = Noise<uint8_t>(n + offset, 2);
            ExpectTheBits(kCombine<how>, Noise<uint8_t>(n, 1),
                          [&](CombineFn fn, uint8_t* to) { fn(to, with.data() + offset, n); });
        }
}

TEST(BitmapLogicKernel, EveryVariantEqualsTheDefinitionAtEverySize) {
    ExpectCombineVariants<BitLogic::And>();
    ExpectCombineVariants<BitLogic::Or>();
    ExpectCombineVariants<BitLogic::Xor>();
    ExpectCombineVariants<BitLogic::AndNot>();
    ExpectCombineVariants<BitLogic::Copy>();
    ExpectCombineVariants<BitLogic::Not>();
    for (const size_t n : kAwkwardSizes)
        ExpectTheBits(
            kCountBits, std::vector<uint64_t>(1),
            [&, bits = Noise<uint8_t>(n + 1, 1)](CountBitsFn fn, uint64_t* count) { *count = fn(bits.data() + 1, n); });
}

// Rows in order, forwards and backwards, moved by bytes and pixels, with pixels beyond the last one.
TEST(BitmapLogicKernel, EveryVariantMovesRowsAsTheDefinitionDoes) {
    for (const ptrdiff_t bytes : {1, 2, 3, 16, 17, 31, 64, 65, 66, 130, 200})
        for (const ptrdiff_t skipped : {0, 1, -1, 2, -3, 15, -16, 63, -65, 130, -200})
            for (int bits = 0; bits < 8; ++bits) {
                if (skipped > bytes || skipped < -bytes) continue;
                SCOPED_TRACE(testing::Message() << bytes << ' ' << skipped << ' ' << bits);
                const auto n = static_cast<size_t>(3 * bytes);
                ExpectTheBits(kMoveRows, Noise<uint8_t>(n, 2),
                              [&, from = Noise<uint8_t>(n, 1)](MoveRowsFn fn, uint8_t* to) {
                                  fn({from.data() + 2 * bytes, to + 2 * bytes, -bytes, 3, bytes, skipped, bits, 0xe0});
                              });
            }
}

}  // namespace
}  // namespace orlix
