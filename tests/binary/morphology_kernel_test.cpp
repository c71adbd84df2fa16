#include "binary/morphology_kernels.hpp"

#include "support/kernel_testing.hpp"

namespace orlix {
namespace {

// Rows of noise in which few pixels decide: clear ones for an erosion, set ones for a dilation.
std::vector<uint8_t> SparseNoise(size_t bytes, bool set, uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<uint8_t> noise(bytes);
    for (uint8_t& byte : noise) {
        byte = random() % 4 == 0 ? static_cast<uint8_t>(1 << random() % 8) : uint8_t{0};
        if (!set) byte = static_cast<uint8_t>(~byte);
    }
    return noise;
}

// Compares the pixels that the variants give with those of the definition, in place and apart.
template <class Table, class Call>
void ExpectSameMorphology(const Table& table, bool dilate, size_t scratchBytes, size_t bytes, int32_t height,
                          const Call& call) {
    constexpr ptrdiff_t kPadding = 2;
    const ptrdiff_t rowBytes = static_cast<ptrdiff_t>(bytes) + kPadding;
    const std::vector<uint8_t> source =
        SparseNoise(static_cast<size_t>(rowBytes) * static_cast<size_t>(height), dilate, static_cast<uint32_t>(bytes));
    for (const uint8_t lastMask : {uint8_t{0xff}, uint8_t{0xf0}, uint8_t{0x80}})
        for (const bool inPlace : {false, true}) {
            SCOPED_TRACE(testing::Message() << bytes << " bytes" << (inPlace ? " in place" : " apart"));
            const std::vector<uint8_t> before = inPlace ? source : std::vector<uint8_t>(source.size(), 0x5a);
            ExpectTheBits(table, before, [&](auto fn, uint8_t* to) {
                Guarded<uint8_t> from(source, 3), scratch(std::vector<uint8_t>(scratchBytes, 0x33), 0);
                uint8_t* const read = inPlace ? to : from.data();
                call(fn, MorphologyRows{read, rowBytes, to, rowBytes, height, bytes, lastMask}, scratch.data());
                EXPECT_TRUE(from.GuardsIntact() && scratch.GuardsIntact());
                for (int32_t y = 1; y <= height; ++y) {
                    const ptrdiff_t end = y * rowBytes - kPadding;
                    for (const ptrdiff_t i : {end, end + 1}) EXPECT_EQ(before[static_cast<size_t>(i)], to[i]) << y;
                    to[end - 1] &= lastMask;
                }
            });
        }
}

constexpr size_t kRowLengths[] = {1, 2, 3, 7, 8, 15, 16, 17, 31, 32, 33, 63, 64, 65, 127, 128, 129, 200};

TEST(MorphologyKernel, SquareVariantsEqualTheDefinition) {
    const auto call = [](SquareFn fn, const MorphologyRows& rows, uint8_t* scratch) { fn(rows, scratch); };
    for (const size_t bytes : kRowLengths)
        for (int32_t height = 1; height <= 6; ++height) {
            ExpectSameMorphology(kSquare<false, false>, false, 3 * bytes, bytes, height, call);
            ExpectSameMorphology(kSquare<false, true>, false, 3 * bytes, bytes, height, call);
            ExpectSameMorphology(kSquare<true, false>, true, 3 * bytes, bytes, height, call);
            ExpectSameMorphology(kSquare<true, true>, true, 3 * bytes, bytes, height, call);
        }
}

// Windows of one and of two words, with full words between their ends, and as wide as the rows; of fewer rows than the
// picture and of more.
TEST(MorphologyKernel, RectangleVariantsEqualTheDefinition) {
    const auto expect = [](size_t bytes, int32_t height, const MorphologyRectangle& window) {
        const auto call = [&](RectangleFn fn, const MorphologyRows& rows, uint8_t* scratch) {
            fn(rows, window, scratch);
        };
        const size_t scratch = RectangleScratch(bytes, height, window);
        ExpectSameMorphology(kRectangle<false>, false, scratch, bytes, height, call);
        ExpectSameMorphology(kRectangle<true>, true, scratch, bytes, height, call);
    };
    for (const size_t bytes : {1u, 2u, 5u, 8u, 16u, 33u, 64u, 70u, 130u, 300u})
        for (const int32_t reach : {0, 1, 2, 3, 4, 7, 8, 15, 16, 23, 31, 40, 62, 63, 64, 100, 127, 128, 200, 511, 1200})
            for (const int32_t more : {-1, 0, 1}) {
                const auto widest = static_cast<int32_t>(8 * bytes) - 8;
                if (reach > widest || reach + more > widest || reach + more < 0) continue;
                expect(bytes, 2, {{reach, reach + more}, {more == 0 ? 0 : 1, 0}});
            }
    for (const size_t bytes : {1u, 3u, 65u, 200u})
        for (const int32_t height : {1, 2, 7, 30})
            for (const int32_t reach : {0, 1, 2, 6, 9, 14, 28, 29})
                for (const int32_t more : {-1, 0, 1}) {
                    if (reach >= height || reach + more >= height || reach + more < 0) continue;
                    const MorphologyWindow columns = bytes == 1 ? MorphologyWindow{0, 0} : MorphologyWindow{1, 2};
                    expect(bytes, height, {columns, {reach, reach + more}});
                }
}

}  // namespace
}  // namespace orlix
