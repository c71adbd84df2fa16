#include <gtest/gtest.h>

#include <limits>

#include "files/byte_order.hpp"
#include "files/hand_made.hpp"
#include "files/memory_image.hpp"
#include "files/png_filter.hpp"

namespace orlix::test {
namespace {

Bytes Write(MemoryImage& image) {
    FleetingSource source(image);
    return WriteImageFile(IFF_PNG, image.properties, source);
}

MemoryImage Read(const Bytes& file) {
    MemoryImage image;
    EXPECT_EQ("", FailureOfReading(file, image));
    return image;
}

// Contents that lead to different filters and methods of compression.
struct Content {
    const char* name;
    uint32_t (*level)(int32_t band, int32_t x, int32_t y, Noise& noise);
};
constexpr Content kContents[] = {
    {"flat", [](int32_t, int32_t, int32_t, Noise&) { return 77u; }},
    {"noise", [](int32_t, int32_t, int32_t, Noise& noise) { return noise(); }},
    {"ramp",
     [](int32_t band, int32_t x, int32_t y, Noise&) { return static_cast<uint32_t>(3 * x + 5 * y + 50 * band); }},
    {"noisy ramp", [](int32_t band, int32_t x, int32_t y,
                      Noise& noise) { return static_cast<uint32_t>(40 * x + 60 * y + 50 * band) + noise.below(9); }},
    // Noise along a row and the same in every row but for the level: each row needs the one above it.
    {"columns", [](int32_t band, int32_t x, int32_t y,
                   Noise&) { return Noise(static_cast<uint64_t>(x))() + static_cast<uint32_t>(y % 7 + band); }},
    {"label", [](int32_t, int32_t x, int32_t y, Noise&) { return x / 7 % 3 == y / 5 % 3 ? 0xFFFFu : 0u; }},
};

TEST(PngWriter, EveryImageComesBackAsItWas) {
    for (const Content& content : kContents)
        for (const int32_t bands : {1, 3})
            for (const int32_t bits : {8, 16})
                for (const auto& [width, height] : std::vector<std::pair<int32_t, int32_t>>{
                         {1, 1}, {1, 7}, {7, 1}, {2, 2}, {13, 11}, {300, 70}, {1000, 300}, {70000, 2}}) {
                    SCOPED_TRACE(testing::Message() << content.name << " " << bands << " bands " << bits << " bits "
                                                    << width << "x" << height);
                    MemoryImage image(width, height, bands, bits);
                    Noise noise(7);
                    for (int32_t band = 0; band < bands; ++band)
                        for (int32_t y = 0; y < height; ++y)
                            for (int32_t x = 0; x < width; ++x) image.set(band, x, y, content.level(band, x, y, noise));
                    EXPECT_TRUE(Read(Write(image)).SamePixels(image));
                }
}

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
    const Bytes file = Write(image);
    std::string types;
    for (size_t at = 8; at + 12 <= file.size(); at += 12 + BigEndian32(&file[at]))
        types +=
            std::string(file.begin() + static_cast<ptrdiff_t>(at) + 4, file.begin() + static_cast<ptrdiff_t>(at) + 8) +
            " ";
    EXPECT_EQ("IHDR pHYs tEXt iTXt IDAT IEND ", types);
    const Bytes start = PngSignature() + PngHeader(2, 3, 16, 2) +
                        PngChunk("pHYs", Big32(4000000) + Big32(2000000) + Bytes{1}) +
                        PngChunk("tEXt", FromText("Title") + Bytes{0, 'a'}) +
                        PngChunk("iTXt", FromText("Comment") + Bytes{0, 0, 0, 0, 0, 0xE2, 0x82, 0xAC});
    ASSERT_GT(file.size(), start.size());
    EXPECT_EQ(start, Bytes(file.begin(), file.begin() + static_cast<ptrdiff_t>(start.size())));
}

TEST(PngWriter, ThePixelSizeSurvivesToAWholeNumberOfPixelsPerMetre) {
    for (const double microns : {0.01953, 0.2252, 1.098252, 2.5, 100.0, 1e6}) {
        MemoryImage image(1, 1, 1, 8);
        image.properties.micronsX = microns;
        image.properties.micronsY = 2 * microns;
        const FileProperties back = Read(Write(image)).properties;
        // Half a pixel per metre of 1e6 / microns of them.
        EXPECT_NEAR(1.0, back.micronsX / microns, 0.5e-6 * microns);
        EXPECT_NEAR(2.0, back.micronsY / microns, 2e-6 * microns * 2);
    }
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double microns : {0.0, -1.0, 1e-4, 3e6, infinity, std::numeric_limits<double>::quiet_NaN()}) {
        MemoryImage image(1, 1, 1, 8);
        image.properties.micronsX = microns;
        image.properties.micronsY = 1.0;
        const FileProperties back = Read(Write(image)).properties;
        EXPECT_EQ(0.0, back.micronsX) << microns;
        EXPECT_EQ(0.0, back.micronsY) << microns;
    }
}

TEST(PngWriter, TextsSurviveWithAnyCharacters) {
    MemoryImage image(1, 1, 1, 8);
    const WideString surrogate = {0xD834};
    image.properties.texts = {{OLESTR("Plain"), OLESTR("two\nlines, 5 \u00B5m")},
                              {OLESTR("Other"), OLESTR("tab\tand \u4E2D\u6587 \U0001D11E")},
                              {OLESTR("Half"), OLESTR("x") + surrogate},
                              {OLESTR("Zero"), WideString(OLESTR("a\0b"), 3)},
                              {OLESTR("Empty"), {}},
                              {OLESTR("bad  keyword"), OLESTR("x")},
                              {OLESTR("Long"), WideString(3000000, OLECHAR{'y'})}};
    const auto texts = Read(Write(image)).properties.texts;
    ASSERT_EQ(5u, texts.size());
    EXPECT_TRUE(texts[0].text == image.properties.texts[0].text);
    EXPECT_TRUE(texts[1].text == image.properties.texts[1].text);
    EXPECT_TRUE(texts[2].text == OLESTR("x\uFFFD"));
    EXPECT_TRUE(texts[3].text == OLESTR("a"));
    EXPECT_TRUE(texts[4].text == image.properties.texts[6].text);
}

}  // namespace
}  // namespace orlix::test
