#include <limits>

#include "files/png_filter.hpp"
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
                Bytes row(pixel * pixels), above(row.size()), filtered(row.size());
                for (auto* bytes : {&row, &above})
                    for (auto& byte : *bytes) byte = static_cast<uint8_t>(noise());
                const uint64_t sum = png::ApplyFilter(static_cast<png::Filter>(filter), row.data(), above.data(),
                                                      row.size(), pixel, filtered.data());
                uint64_t expected = 0;
                for (const uint8_t byte : filtered)
                    expected += static_cast<uint64_t>(std::abs(int{static_cast<int8_t>(byte)}));
                EXPECT_EQ(expected, sum);
                ASSERT_TRUE(png::Unfilter(filter, filtered.data(), above.data(), row.size(), pixel));
                EXPECT_EQ(row, filtered) << "filter " << int{filter} << " pixel " << pixel << " of " << pixels;
            }
    uint8_t byte = 1;
    EXPECT_FALSE(png::Unfilter(5, &byte, &byte, 1, 1));
}

TEST(PngWriter, TheFileIsASignatureAndChunksInOrderWithTheirProperties) {
    MemoryImage image(2, 3, 3, 16);
    image.properties.micronsX = 0.25;
    image.properties.micronsY = 0.5;
    image.properties.texts = {{OLESTR("Title"), OLESTR("a")}, {OLESTR("Comment"), OLESTR("\u20AC")}};
    const Bytes file = Written(IFF_PNG, image);
    std::string types;
    for (auto at = file.begin() + 8; file.end() - at >= 12; at += 12 + static_cast<ptrdiff_t>(BigEndian32(&*at)))
        types += std::string(at + 4, at + 8) + " ";
    EXPECT_EQ("IHDR pHYs tEXt iTXt IDAT IEND ", types);
    const Bytes start = PngSignature() + PngHeader(2, 3, 16, 2) +
                        PngChunk("pHYs", Big32(4000000) + Big32(2000000) + Bytes{1}) +
                        PngChunk("tEXt", FromText("Title") + Bytes{0, 'a'}) +
                        PngChunk("iTXt", FromText("Comment") + Bytes{0, 0, 0, 0, 0, 0xE2, 0x82, 0xAC});
    EXPECT_EQ(start, Part(file, 0, start.size()));
}

TEST(PngWriter, ThePixelSizeSurvivesToAWholeNumberOfPixelsPerMetre) {
    MemoryImage image(1, 1, 1, 8);
    auto [x, y] = std::tie(image.properties.micronsX, image.properties.micronsY);
    for (const double microns : {0.01953, 0.2252, 1.098252, 2.5, 100.0, 1e6}) {
        x = microns;
        y = 2 * microns;
        const FileProperties back = ReadBackPng(image);
        // Half a pixel per metre of 1e6 / microns of them.
        EXPECT_NEAR(1.0, back.micronsX / microns, 0.5e-6 * microns);
        EXPECT_NEAR(2.0, back.micronsY / microns, 2e-6 * microns * 2);
    }
    y = 1;
    using Limits = std::numeric_limits<double>;
    for (const double microns : {0.0, -1.0, 1e-4, 3e6, Limits::infinity(), Limits::quiet_NaN()}) {
        x = microns;
        const FileProperties back = ReadBackPng(image);
        EXPECT_EQ(std::pair(0.0, 0.0), std::pair(back.micronsX, back.micronsY)) << microns;
    }
}

TEST(PngWriter, TextsSurviveWithAnyCharacters) {
    MemoryImage image(1, 1, 1, 8);
    const WideString plain = OLESTR("two\nlines, 5 \u00B5m"), other = OLESTR("tab\tand \u4E2D\u6587 \U0001D11E"),
                     large(3000000, OLECHAR{'y'});
    image.properties.texts = {{OLESTR("Plain"), plain},
                              {OLESTR("Other"), other},
                              {OLESTR("Half"), OLESTR("x") + WideString{0xD834}},
                              {OLESTR("Zero"), WideString(OLESTR("a\0b"), 3)},
                              {OLESTR("Empty"), {}},
                              {OLESTR("bad  keyword"), OLESTR("x")},
                              {OLESTR("Long"), large}};
    std::vector<WideString> texts;
    for (const FileText& text : ReadBackPng(image).texts) texts.push_back(text.text);
    EXPECT_TRUE((texts == std::vector<WideString>{plain, other, OLESTR("x\uFFFD"), OLESTR("a"), large}));
}

}  // namespace
}  // namespace orlix::test
