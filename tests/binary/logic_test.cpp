#include "binary/logic.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

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

// Checks every pixel: those of the region against want(x, y), all others against what they were.
template <class Want>
void ExpectPixels(const BitmapStore& got, const std::vector<bool>& before, const std::vector<bool>& inside,
                  const Want& want) {
    for (int32_t y = 0; y < got.height(); ++y)
        for (int32_t x = 0; x < got.width(); ++x) {
            const auto i = static_cast<size_t>(y * got.width() + x);
            ASSERT_EQ(inside[i] ? want(x, y) : before[i], got.Bit(x, y)) << got.width() << ": " << x << ", " << y;
        }
}

TEST(BitmapLogic, CombinesThePixelsOfARegion) {
    for (int32_t width = 1; width <= 70; ++width)
        for (const BitLogic how : kLogic)
            ForEachRegion(width, 5, [&](const RegionRows& region, const std::vector<bool>& inside) {
                BitmapStore bitmap = NoiseBitmap(width, 5, 0.5, Padding::Noise, 2);
                const BitmapStore other = NoiseBitmap(width, 5, 0.5, Padding::Set, 3);
                const std::vector<bool> before = PixelsOf(bitmap);
                Combine(bitmap, how, RowsOf(other), region);
                ExpectPixels(bitmap, before, inside, [&](int32_t x, int32_t y) {
                    return LogicOf(how, before[static_cast<size_t>(y * width + x)], other.Bit(x, y));
                });
                for (int32_t y = 0; y < 5; ++y) EXPECT_EQ(!region.row(y).empty(), bitmap.Modified(y));
            });
}

// Itself; the same rows two rows down; every second row; rows of odd length.
TEST(BitmapLogic, AnOperandInTheBitmapsOwnMemoryIsReadBeforeItIsWritten) {
    struct Case {
        ptrdiff_t offset, rowBytes;
    };
    for (const BitLogic how : kLogic)
        for (const Case& c : {Case{0, 6}, Case{12, 6}, Case{0, 12}, Case{1, 5}}) {
            BitmapStore bitmap = NoiseBitmap(40, 10, 0.5, Padding::Noise);
            const std::vector<bool> before = PixelsOf(bitmap);
            const std::vector<uint8_t> bytes(bitmap.Row(0), bitmap.Row(0) + 60);
            BitRows part = RowsOf(bitmap);
            part.first += c.offset;
            part.rowBytes = c.rowBytes;
            part.height = 5;
            ForeignRegion upper;
            upper.box = {0, 0, 39, 4};
            for (LONG y = 0; y < 5; ++y) upper.rows[y] = {MakeRun(0, 39)};
            const RegionRows region(&upper, 40, 10);
            Combine(bitmap, how, part, region);
            std::vector<bool> inside(400);
            std::fill(inside.begin(), inside.begin() + 200, true);
            ExpectPixels(bitmap, before, inside, [&](int32_t x, int32_t y) {
                const uint8_t byte = bytes[static_cast<size_t>(c.offset + y * c.rowBytes + x / 8)];
                return LogicOf(how, before[static_cast<size_t>(y * 40 + x)], byte & BitmapStore::MaskOf(x));
            });
        }
}

TEST(BitmapLogic, CountsThePixelsOfARegion) {
    for (int32_t width = 1; width <= 140; ++width)
        ForEachRegion(width, 5, [&](const RegionRows& region, const std::vector<bool>& inside) {
            const BitmapStore bitmap = NoiseBitmap(width, 5, 0.5, Padding::Set);
            const std::vector<bool> pixels = PixelsOf(bitmap);
            int64_t want = 0;
            for (size_t i = 0; i < pixels.size(); ++i) want += pixels[i] && inside[i];
            EXPECT_EQ(want, CountPixels(RowsOf(bitmap), region)) << width;
        });
}

TEST(BitmapLogic, TranslatesByAnyDistance) {
    const int32_t distances[] = {0, 1, -1, 7, -7, 8, -8, 13, -20, 64, -65, 69, -70, 300, INT32_MAX, INT32_MIN};
    for (const int32_t width : {1, 5, 8, 16, 33, 64, 70})
        for (const int32_t right : distances)
            for (const int32_t down : {0, 1, -1, 2, -4, 5, INT32_MAX, INT32_MIN})
                ForEachRegion(width, 5, [&](const RegionRows& region, const std::vector<bool>& inside) {
                    BitmapStore bitmap = NoiseBitmap(width, 5, 0.5, Padding::Set);
                    const std::vector<bool> before = PixelsOf(bitmap);
                    Translate(bitmap, right, down, region);
                    ExpectPixels(bitmap, before, inside, [&](int32_t x, int32_t y) {
                        const int64_t fromX = int64_t{x} - right, fromY = int64_t{y} - down;
                        return fromX >= 0 && fromX < width && fromY >= 0 && fromY < 5 &&
                               before[static_cast<size_t>(fromY * width + fromX)];
                    });
                });
}

TEST(BitmapLogicKernel, EveryVariantEqualsTheDefinitionAtEverySize) {
    const auto each = [](const auto& table, auto fill, auto call) {
        for (const size_t n : kAwkwardSizes)
            for (const size_t offset : {0u, 1u, 30u}) {
                const std::vector<uint8_t> to = Noise<uint8_t>(n, 1), with = Noise<uint8_t>(n + 1, 2);
                Guarded<uint8_t> want(to, offset);
                const auto expected = call(std::end(table)[-1].fn, want.data(), with.data() + 1, n);
                for (const auto& variant : SupportedOnThisCpu(table)) {
                    Guarded<uint8_t> got(to, offset);
                    EXPECT_EQ(expected, call(variant.fn, got.data(), with.data() + 1, n)) << variant.name;
                    EXPECT_TRUE(SameBits(want.data(), got.data(), n)) << variant.name << fill;
                    EXPECT_TRUE(got.GuardsIntact()) << variant.name;
                }
            }
    };
    const auto combine = [](CombineFn fn, uint8_t* to, const uint8_t* with, size_t n) { return fn(to, with, n), 0; };
    each(kCombine<BitLogic::And>, " and", combine);
    each(kCombine<BitLogic::Or>, "or", combine);
    each(kCombine<BitLogic::Xor>, "xor", combine);
    each(kCombine<BitLogic::AndNot>, "and not", combine);
    each(kCombine<BitLogic::Copy>, "copy", combine);
    each(kCombine<BitLogic::Not>, "not", combine);
    each(kCountBits, "count", [](CountBitsFn fn, uint8_t* to, const uint8_t*, size_t n) { return fn(to, n); });
}

// Rows in order, forwards and backwards, moved by bytes and pixels, with pixels beyond the last one.
TEST(BitmapLogicKernel, EveryVariantMovesRowsAsTheDefinitionDoes) {
    for (const ptrdiff_t bytes : {1, 2, 3, 16, 17, 31, 64, 65, 66, 130, 200})
        for (const ptrdiff_t skipped : {0, 1, -1, 2, -3, 15, -16, 63, -65, 130, -200})
            for (int bits = 0; bits < 8; ++bits) {
                if (skipped > bytes || skipped < -bytes) continue;
                const auto n = static_cast<size_t>(3 * bytes);
                const std::vector<uint8_t> from = Noise<uint8_t>(n, 1), to = Noise<uint8_t>(n, 2);
                Guarded<uint8_t> want(to, 1);
                const auto call = [&](MoveRowsFn fn, uint8_t* written) {
                    fn({from.data() + 2 * bytes, written + 2 * bytes, -bytes, 3, bytes, skipped, bits, 0xe0});
                };
                call(std::end(kMoveRows)[-1].fn, want.data());
                for (const auto& variant : SupportedOnThisCpu(kMoveRows)) {
                    Guarded<uint8_t> got(to, 1);
                    call(variant.fn, got.data());
                    EXPECT_TRUE(SameBits(want.data(), got.data(), n) && got.GuardsIntact())
                        << variant.name << ' ' << bytes << ' ' << skipped << ' ' << bits;
                }
            }
}

}  // namespace
}  // namespace orlix
