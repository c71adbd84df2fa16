#include <algorithm>
#include <limits>

#include "files/corpus.hpp"
#include "files/png_filter.hpp"
#include "files/png_format.hpp"
#include "files/png_samples.hpp"
#include "files/reading.hpp"
#include "image/byte_order.hpp"

namespace orlix::test {
namespace {

FileProperties ReadBackPng(MemoryImage& image) { return Read(Written(IFF_PNG, image)).properties; }

TEST(PngWriter, FilteringIsUndoneForEveryFilterPixelAndLength) {
    Noise noise(3);
    for (const size_t pixel : {1u, 2u, 3u, 4u, 6u, 8u})
        for (const size_t pixels : {1u, 2u, 3u, 15u, 16u, 17u, 100u})
            for (uint8_t filter = 0; filter < png::kFilters; ++filter) {
                Bytes row(pixel * pixels), above(row.size());
                for (auto* bytes : {&row, &above})
                    for (auto& byte : *bytes) byte = static_cast<uint8_t>(noise());
                for (const auto& apply : SupportedOnThisCpu(png::kApplyFilter)) {
                    SCOPED_TRACE(testing::Message()
                                 << apply.name << " filter " << int{filter} << " pixel " << pixel << " of " << pixels);
                    Bytes filtered(1 + row.size(), filter);
                    const uint64_t sum = apply.fn(static_cast<png::Filter>(filter), row.data(), above.data(),
                                                  row.size(), pixel, filtered.data() + 1);
                    uint64_t expected = 0;
                    for (size_t i = 0; i < row.size(); ++i) {
                        const int a = i < pixel ? 0 : row[i - pixel], b = above[i],
                                  c = i < pixel ? 0 : above[i - pixel];
                        const int predictions[] = {0, a, b, (a + b) / 2, PaethByDefinition(a, b, c)};
                        const auto difference = static_cast<int8_t>(row[i] - predictions[filter]);
                        ASSERT_EQ(static_cast<uint8_t>(difference), filtered[1 + i]);
                        expected += static_cast<uint64_t>(std::abs(int{difference}));
                    }
                    EXPECT_EQ(expected, sum);
                    png::Unfilter_scalar(filtered.data(), 1, above.data(), row.size(), pixel);
                    EXPECT_EQ(row, Part(filtered, 1));
                }
            }
}

// Rows of any filters in turn, around the numbers that vectors take at once.
TEST(PngWriter, RowsAreUndoneTogetherAsOneByOne) {
    Noise noise(7);
    for (const size_t pixel : {1u, 2u, 3u, 4u, 6u, 8u})
        for (const size_t pixels : {1u, 32u, 33u, 48u, 64u, 65u, 100u})
            for (const size_t rows : {1u, 15u, 16u, 33u, 49u})
                for (const uint32_t filters : {1u, 2u, 3u, 4u, 5u}) {
                    const size_t size = pixel * pixels;
                    Bytes stored(rows * (1 + size)), above(size);
                    for (auto* bytes : {&stored, &above})
                        for (auto& byte : *bytes) byte = static_cast<uint8_t>(noise());
                    for (size_t i = 0; i < rows; ++i)
                        stored[i * (1 + size)] = static_cast<uint8_t>(5 - filters + noise.below(filters));
                    Bytes one = stored;
                    png::Unfilter_scalar(one.data(), rows, above.data(), size, pixel);
                    for (const auto& unfilter : SupportedOnThisCpu(png::kUnfilter)) {
                        Bytes together = stored;
                        unfilter.fn(together.data(), rows, above.data(), size, pixel);
                        ASSERT_EQ(one, together) << unfilter.name << ' ' << rows << " rows of " << pixels
                                                 << " pixels of " << pixel << " bytes, " << filters << " filters";
                    }
                }
}

TEST(PngWriter, TheFileIsASignatureAndChunksInOrderWithTheirProperties) {
    MemoryImage image(2, 3, 3, 16);
    image.properties.kept.PutMicrons(0.25, 0.5, "");
    image.properties.kept.significantBits = 12;
    image.properties.kept.chunks = {{png::ChunkType("heRe"), true, {7}}, {png::ChunkType("eXIf"), false, {8, 9}}};
    image.properties.kept.binaries = {{OLESTR("\u20AC"), {5, 6}}};
    image.properties.kept.texts = {{OLESTR("Title"), OLESTR("a")}, {OLESTR("Comment"), OLESTR("\u20AC")}};
    const Bytes file = Written(IFF_PNG, image);
    std::string types;
    for (auto at = file.begin() + 8; file.end() - at >= 12; at += 12 + static_cast<ptrdiff_t>(BigEndian32(&*at)))
        types += std::string(at + 4, at + 8) + " ";
    EXPECT_EQ("IHDR sBIT pHYs caLB biNe tEXt iTXt eXIf IDAT heRe IEND ", types);
    const Bytes start = PngSignature() + PngHeader(2, 3, 16, 2) + PngChunk("sBIT", {12, 12, 12}) +
                        PngChunk("pHYs", Big32(4000000) + Big32(2000000) + Bytes{1}) +
                        PngChunk("caLB", FromText("Orlix") + Bytes{1, 0x3F, 0xD0, 0, 0, 0, 0, 0, 0} +  // 0.25
                                             Bytes{0x3F, 0xE0, 0, 0, 0, 0, 0, 0} + Bytes(16) +         // 0.5, 0, 0
                                             Bytes{0x3F, 0xF0, 0, 0, 0, 0, 0, 0} + Bytes(16) +         // 1, 0, 0
                                             Bytes{0x3F, 0xF0, 0, 0, 0, 0, 0, 0, 12}) +                // 1
                        PngChunk("biNe", FromText("Orlix") + Bytes{1, 0, 0, 0, 1, 0x20, 0xAC, 5, 6}) +
                        PngChunk("tEXt", FromText("Title") + Bytes{0, 'a'}) +
                        PngChunk("iTXt", FromText("Comment") + Bytes{0, 0, 0, 0, 0, 0xE2, 0x82, 0xAC});
    EXPECT_EQ(start, Part(file, 0, start.size()));
}

TEST(PngWriter, ThePixelSizeSurvivesExactlyUnlessAnotherProgramHasChangedIt) {
    MemoryImage image(1, 1, 1, 8);
    auto [x, y] = std::tie(image.properties.kept.micronsX, image.properties.kept.micronsY);
    for (const double microns : {0.01953, 0.2252, 1.098252, 100.0, 1e-300, 3e6}) {
        x = microns;
        y = microns / 3;
        const FileProperties back = ReadBackPng(image);
        EXPECT_EQ(std::pair(x, y), std::pair(back.kept.micronsX, back.kept.micronsY));
    }
    y = 1;
    using Limits = std::numeric_limits<double>;
    for (const double microns : {0.0, -1.0, Limits::infinity(), Limits::quiet_NaN()}) {
        x = microns;
        const FileProperties back = ReadBackPng(image);
        EXPECT_EQ(std::pair(0.0, 0.0), std::pair(back.kept.micronsX, back.kept.micronsY)) << microns;
    }
    x = y = 0.3;
    Bytes file = Written(IFF_PNG, image);
    file[8 + 25 + 11] = 8;  // the last byte of pHYs' x: 3,333,128 pixels per metre in place of 3,333,333
    const FileProperties changed = Read(WithRightChecksums(file)).properties;
    EXPECT_EQ(std::pair(1e6 / 3333128, 1e6 / 3333333), std::pair(changed.kept.micronsX, changed.kept.micronsY));
}

TEST(PngWriter, TextsSurviveWithAnyCharacters) {
    MemoryImage image(1, 1, 1, 8);
    image.properties.kept.texts = {{OLESTR("Plain"), OLESTR("two\nlines, 5 \u00B5m")},
                                   {OLESTR("Other"), OLESTR("tab\tand \u4E2D\u6587 \U0001D11E")},
                                   {OLESTR("Half"), OLESTR("x") + WideString{0xD834}},
                                   {OLESTR("Zero"), WideString(OLESTR("a\0b"), 3)},
                                   {OLESTR("Empty"), {}},
                                   {OLESTR("bad  keyword \u4E2D"), OLESTR("x")},
                                   {OLESTR("Long"), WideString(3000000, OLECHAR{'y'})}};
    const auto back = ReadBackPng(image).kept.texts;
    EXPECT_TRUE(std::ranges::equal(image.properties.kept.texts, back, [](const TextEntry& a, const TextEntry& b) {
        return a.keyword == b.keyword && a.text == b.text;
    }));
}

TEST(PngWriter, FewerSignificantBitsAreScaledForOtherProgramsAndComeBack) {
    for (const auto& [depth, bits] : {std::pair{16, 12}, {16, 10}, {16, 3}, {8, 5}, {8, 1}}) {
        MemoryImage image(64, 64, 1, depth, [bits = bits](int32_t, int32_t x, int32_t y) {
            return static_cast<uint32_t>(x + 64 * y) & ((1u << bits) - 1);
        });
        image.properties.kept.significantBits = bits;
        const MemoryImage back = Read(Written(IFF_PNG, image));
        EXPECT_TRUE(back.SamePixels(image));
        EXPECT_EQ(bits, back.properties.kept.significantBits);
        const std::vector<uint16_t> scaled = png::ScaledSamples(bits, depth);
        const double factor = ((1 << depth) - 1.0) / ((1 << bits) - 1.0);
        for (size_t value = 0; value < scaled.size(); ++value)
            EXPECT_NEAR(static_cast<double>(value) * factor, scaled[value], 0.999) << bits << " of " << depth;
        // A sample beyond them: nothing is scaled.
        depth == 8 ? void(image.bytes[0] = 0xFF) : void(image.words[0] = 0xFFFF);
        EXPECT_TRUE(Read(Written(IFF_PNG, image)).SamePixels(image));
    }
}

}  // namespace
}  // namespace orlix::test
