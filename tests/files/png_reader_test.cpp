#include "files/png.hpp"

#include <gtest/gtest.h>

#include "files/hand_made.hpp"
#include "files/memory_image.hpp"
#include "files/png_filter.hpp"

namespace orlix::test {
namespace {

constexpr auto kHeaderText = "IImageVPAEx::CreateFromPng: problems reading png header";
constexpr auto kTruncatedText = "IImageVPAEx::CreateFromPng: the file is truncated.";
constexpr auto kChecksumText = "IImageVPAEx::CreateFromPng: a checksum is wrong.";
constexpr auto kOrderText = "IImageVPAEx::CreateFromPng: chunks are missing or out of order.";
constexpr auto kUnsupportedText = "IImageVPAEx::CreateFromPng: the file needs a chunk that is not supported.";
constexpr auto kPaletteText = "IImageVPAEx::CreateFromPng: problems reading png palette";
constexpr auto kTooShortText = "IImageVPAEx::CreateFromPng: the file is too short for its image.";
constexpr auto kPixelsText = "IImageVPAEx::CreateFromPng: problems reading png pixels";
constexpr auto kOutsideText = "IImageVPAEx::CreateFromPng: a pixel is outside the palette.";

// A palette of `count` entries: red 255 - i, green i, blue 7 i; with grey = true (3 i mod 256) in all.
uint32_t PaletteLevel(uint32_t index, uint32_t colour, bool grey) {
    const uint32_t levels[] = {255 - index, index, 7 * index};
    return (grey ? 3 * index : levels[colour]) & 0xFF;
}
Bytes PaletteChunk(uint32_t count, bool grey = false) {
    Bytes data;
    for (uint32_t i = 0; i < count; ++i)
        for (uint32_t colour = 0; colour < 3; ++colour)
            data.push_back(static_cast<uint8_t>(PaletteLevel(i, colour, grey)));
    return PngChunk("PLTE", data);
}

// 2x2, 8-bit grey, levels 10 20 / 30 40, no filter.
PngPicture Tiny() {
    return {2, 2, 8, 0, false, [](uint32_t x, uint32_t y, uint32_t) { return 10 + 10 * x + 20 * y; }};
}
Bytes TinyRows() { return {0, 10, 20, 0, 30, 40}; }
// The tiny picture with any stream and chunks around it.
Bytes TinyWith(const Bytes& before, const Bytes& stream, const Bytes& after = PngEnd()) {
    return PngSignature() + PngHeader(2, 2, 8, 0) + before + PngChunk("IDAT", stream) + after;
}

TEST(PngReader, EveryColourTypeDepthFilterAndInterlaceGivesItsPixels) {
    struct Kind {
        uint32_t colourType;
        std::vector<uint32_t> depths;
    };
    for (const Kind& kind :
         {Kind{0, {1, 2, 4, 8, 16}}, Kind{2, {8, 16}}, Kind{3, {1, 2, 4, 8}}, Kind{4, {8, 16}}, Kind{6, {8, 16}}})
        for (const uint32_t depth : kind.depths)
            for (const bool interlaced : {false, true})
                for (const auto& [width, height] : std::vector<std::pair<uint32_t, uint32_t>>{
                         {1, 1}, {1, 9}, {2, 3}, {3, 5}, {4, 4}, {5, 1}, {5, 2}, {8, 8}, {9, 17}, {33, 20}}) {
                    SCOPED_TRACE(testing::Message() << "type " << kind.colourType << " depth " << depth
                                                    << " interlaced " << interlaced << " " << width << "x" << height);
                    std::vector<uint32_t> samples(width * height * 4);
                    Noise noise(width * 100 + height);
                    for (auto& sample : samples) sample = noise.below(1u << depth);
                    const PngPicture picture{width,
                                             height,
                                             depth,
                                             kind.colourType,
                                             interlaced,
                                             [&, w = width](uint32_t x, uint32_t y, uint32_t sample) {
                                                 return samples[(y * w + x) * 4 + sample]; }};
                    const bool indexed = kind.colourType == 3;
                    const Bytes file = MakePng(picture, indexed ? PaletteChunk(1u << depth) : Bytes{});
                    MemoryImage image;
                    ASSERT_EQ("", FailureOfReading(file, image));
                    const bool colour = kind.colourType == 2 || kind.colourType == 6 || indexed;
                    ASSERT_EQ(colour ? 3 : 1, image.properties.bands);
                    ASSERT_EQ(depth == 16 ? 16 : 8, image.properties.bits);
                    const uint32_t scale = indexed || depth >= 8 ? 1 : depth == 1 ? 255 : depth == 2 ? 85 : 17;
                    for (uint32_t y = 0; y < height; ++y)
                        for (uint32_t x = 0; x < width; ++x)
                            for (uint32_t band = 0; band < (colour ? 3u : 1u); ++band)
                                ASSERT_EQ(indexed ? PaletteLevel(picture.value(x, y, 0), band, false)
                                                  : scale * picture.value(x, y, band),
                                          image.at(static_cast<int32_t>(band), static_cast<int32_t>(x),
                                                   static_cast<int32_t>(y)))
                                    << x << "," << y << " band " << band;
                }
}

// Three rows of three: 1 2 4 / 7 11 16 / 22 29 37, worked out on paper.
TEST(PngReader, RowsOfEachFilterGiveTheLevelsWorkedOutByHand) {
    const uint8_t level[3][3] = {{1, 2, 4}, {7, 11, 16}, {22, 29, 37}};
    struct Case {
        const char* name;
        Bytes rows;
    };
    for (const Case& c :
         {Case{"none", {0, 1, 2, 4, 0, 7, 11, 16, 0, 22, 29, 37}}, Case{"sub", {1, 1, 1, 2, 1, 7, 4, 5, 1, 22, 7, 8}},
          Case{"up", {2, 1, 2, 4, 2, 6, 9, 12, 2, 15, 18, 21}},
          Case{"average", {3, 1, 2, 3, 3, 7, 7, 9, 3, 19, 13, 15}},
          Case{"paeth", {4, 1, 1, 2, 4, 6, 4, 5, 4, 15, 7, 8}}}) {
        SCOPED_TRACE(c.name);
        MemoryImage image;
        ASSERT_EQ(
            "", FailureOfReading(
                    PngSignature() + PngHeader(3, 3, 8, 0) + PngChunk("IDAT", StoredStream(c.rows)) + PngEnd(), image));
        for (int32_t y = 0; y < 3; ++y)
            for (int32_t x = 0; x < 3; ++x) EXPECT_EQ(level[y][x], image.at(0, x, y)) << x << "," << y;
    }
}

TEST(PngReader, PaethEqualsItsDefinitionForAllNeighbours) {
    for (int a = 0; a < 256; ++a)
        for (int b = 0; b < 256; ++b)
            for (int c = 0; c < 256; ++c) {
                const int p = a + b - c, pa = std::abs(p - a), pb = std::abs(p - b), pc = std::abs(p - c);
                const int nearest = pa <= pb && pa <= pc ? a : pb <= pc ? b : c;
                if (png::Paeth(a, b, c) != nearest) FAIL() << a << " " << b << " " << c;
            }
}

TEST(PngReader, APaletteGivesOneBandWhenTheEntriesInUseAreGrey) {
    const auto file = [](const Bytes& palette, uint32_t first, uint32_t second) {
        return MakePng({2, 1, 8, 3, false, [=](uint32_t x, uint32_t, uint32_t) { return x ? second : first; }},
                       PngChunk("PLTE", palette));
    };
    const Bytes palette = {9, 9, 9, 200, 200, 200, 1, 2, 3};
    MemoryImage grey;
    ASSERT_EQ("", FailureOfReading(file(palette, 1, 0), grey));
    EXPECT_EQ(1, grey.properties.bands);
    EXPECT_EQ((std::vector<uint8_t>{200, 9}), grey.bytes);

    MemoryImage colour;
    ASSERT_EQ("", FailureOfReading(file(palette, 1, 2), colour));
    EXPECT_EQ(3, colour.properties.bands);
    EXPECT_EQ((std::vector<uint8_t>{200, 1, 200, 2, 200, 3}), colour.bytes);

    MemoryImage outside;
    EXPECT_EQ(kOutsideText, FailureOfReading(file(palette, 1, 3), outside));
    EXPECT_FALSE(outside.begun);
}

TEST(PngReader, TransparencyIsDroppedAndTheStoredSamplesStay) {
    MemoryImage image;
    ASSERT_EQ("", FailureOfReading(MakePng(Tiny(), PngChunk("tRNS", {0, 10})), image));
    EXPECT_EQ((std::vector<uint8_t>{10, 20, 30, 40}), image.bytes);
}

TEST(PngReader, AFileCutOffAnywhereFailsBeforeTheSinkIsBegun) {
    const Bytes file = MakePng({5, 3, 16, 2, true, [](uint32_t x, uint32_t y, uint32_t s) { return x * 7 + y + s; }},
                               PngChunk("tEXt", FromText("Title") + Bytes{0} + FromText("x")));
    MemoryImage whole;
    ASSERT_EQ("", FailureOfReading(file, whole));
    for (size_t size = 0; size < file.size(); ++size) {
        MemoryImage image;
        const std::string text = FailureOfReading(std::span(file).first(size), image);
        EXPECT_EQ(size < 4   ? "IImageVPAEx::CreateFromFile: unknown file format."
                  : size < 8 ? kHeaderText
                             : kTruncatedText,
                  text)
            << size;
        EXPECT_FALSE(image.begun) << size;
    }
}

TEST(PngReader, EverySingleWrongByteIsNoticedBeforeTheSinkIsBegun) {
    const Bytes file =
        MakePng({4, 4, 4, 3, true, [](uint32_t x, uint32_t y, uint32_t) { return x + y; }}, PaletteChunk(7));
    for (size_t at = 0; at < file.size(); ++at)
        for (const int flip : {0x01, 0x20, 0x80, 0xFF}) {
            Bytes damaged = file;
            damaged[at] = static_cast<uint8_t>(damaged[at] ^ flip);
            MemoryImage image;
            EXPECT_NE("", FailureOfReading(damaged, image)) << "byte " << at << " flip " << flip;
            EXPECT_FALSE(image.begun);
        }
}

// With checksums made right again the damage reaches the parser and the decompressor.
TEST(PngReader, DamageBehindARightChecksumGivesAnErrorOrAnImage) {
    const Bytes stream = StoredStream(TinyRows());
    for (size_t at = 0; at < stream.size(); ++at)
        for (int value = 0; value < 256; ++value) {
            Bytes damaged = stream;
            damaged[at] = static_cast<uint8_t>(value);
            MemoryImage image;
            const std::string text = FailureOfReading(TinyWith({}, damaged), image);
            // The two bytes in front name a window size, which may vary, as may the unused bits of the block's first
            // byte.
            if (value == stream[at] || (at == 2 && value % 8 == 1)) {
                EXPECT_EQ("", text);
            } else if (at >= 2) {
                EXPECT_EQ(kPixelsText, text) << "byte " << at << " value " << value;
            }
        }
    const Bytes header = PngHeader(2, 2, 8, 0);
    for (size_t at = 8; at < 8 + 13; ++at)
        for (int value = 0; value < 256; ++value) {
            Bytes data(header.begin() + 8, header.begin() + 21);
            data[at - 8] = static_cast<uint8_t>(value);
            MemoryImage image;
            (void)FailureOfReading(PngSignature() + PngChunk("IHDR", data) + PngChunk("IDAT", stream) + PngEnd(),
                                   image);
        }
}

TEST(PngReader, WhatIsWrongWithAFileIsNamed) {
    const Bytes rows = TinyRows(), stream = StoredStream(rows), pixels = PngChunk("IDAT", stream);
    const Bytes start = PngSignature() + PngHeader(2, 2, 8, 0);
    Bytes wrongSum = stream;
    wrongSum.back() ^= 1;
    Bytes wrongCrc = pixels;
    wrongCrc.back() ^= 1;
    struct Case {
        const char* name;
        Bytes file;
        const char* text;
    };
    const auto header = [&](uint32_t width, uint32_t height, uint32_t depth, uint32_t type, uint32_t interlace = 0) {
        return PngSignature() + PngHeader(width, height, depth, type, interlace) + PaletteChunk(2) + pixels + PngEnd();
    };
    const auto indexed = [&](const Bytes& chunks) {
        return PngSignature() + PngHeader(2, 2, 1, 3) + chunks + PngChunk("IDAT", StoredStream({0, 0, 0, 0})) +
               PngEnd();
    };
    const std::vector<Case> cases = {
        {"no header", PngSignature() + pixels + PngEnd(), kHeaderText},
        {"long header", PngSignature() + PngChunk("IHDR", Bytes(14)) + pixels + PngEnd(), kHeaderText},
        {"width 0", header(0, 2, 8, 2), kHeaderText},
        {"height 0", header(2, 0, 8, 2), kHeaderText},
        {"width 2^31", header(0x80000000u, 2, 8, 2), kHeaderText},
        {"height 2^31", header(2, 0x80000000u, 8, 2), kHeaderText},
        {"depth 3", header(2, 2, 3, 0), kHeaderText},
        {"colour of 4 bits", header(2, 2, 4, 2), kHeaderText},
        {"indices of 16 bits", header(2, 2, 16, 3), kHeaderText},
        {"colour type 1", header(2, 2, 8, 1), kHeaderText},
        {"interlace 2", header(2, 2, 8, 2, 2), kHeaderText},
        {"two headers", start + PngHeader(2, 2, 8, 0) + pixels + PngEnd(), kOrderText},
        {"no pixels", start + PngEnd(), kOrderText},
        {"no end", start + pixels, kTruncatedText},
        {"pixels in two places", start + pixels + PngChunk("tIME", {}) + pixels + PngEnd(), kOrderText},
        {"unknown needed chunk", start + PngChunk("NEED", {}) + pixels + PngEnd(), kUnsupportedText},
        {"wrong checksum", start + wrongCrc + PngEnd(), kChecksumText},
        {"no palette", indexed({}), kPaletteText},
        {"empty palette", indexed(PngChunk("PLTE", {})), kPaletteText},
        {"broken entry", indexed(PngChunk("PLTE", {1, 2, 3, 4})), kPaletteText},
        {"more entries than indices", indexed(PaletteChunk(3)), kPaletteText},
        {"two palettes", indexed(PaletteChunk(2) + PaletteChunk(2)), kOrderText},
        {"palette of a grey image", start + PaletteChunk(2) + pixels + PngEnd(), kPaletteText},
        {"palette behind the pixels",
         !header(2, 2, 8, 2).empty() ? PngSignature() + PngHeader(2, 2, 8, 2) + pixels + PaletteChunk(2) + PngEnd()
                                     : Bytes{},
         kOrderText},
        {"no stream", start + PngChunk("IDAT", {}) + PngEnd(), kTooShortText},
        {"a row missing", TinyWith({}, StoredStream({0, 10, 20})), kPixelsText},
        {"a byte too many", TinyWith({}, StoredStream({0, 10, 20, 0, 30, 40, 0})), kPixelsText},
        {"unknown filter", TinyWith({}, StoredStream({0, 10, 20, 5, 30, 40})), kPixelsText},
        {"wrong sum of the stream", TinyWith({}, wrongSum), kPixelsText},
        {"stream without its sum", TinyWith({}, Bytes(stream.begin(), stream.end() - 4)), kPixelsText},
        {"not compressed", TinyWith({}, rows), kPixelsText},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        MemoryImage image;
        EXPECT_EQ(c.text, FailureOfReading(c.file, image));
        EXPECT_EQ(std::string(c.text) == kPixelsText, image.begun);
    }
}

TEST(PngReader, ASizeThatTheFileCannotFillIsRefusedBeforeTheSinkIsBegun) {
    const Bytes stream = StoredStream(TinyRows());
    const uint32_t most = 0x7FFFFFFF;
    for (const auto& [width, height] : std::vector<std::pair<uint32_t, uint32_t>>{
             {most, most}, {most, 1}, {1, most}, {65536, 65536}, {20000, 1}, {1, 20000}})
        for (const uint32_t colourType : {0u, 6u})
            for (const uint32_t interlace : {0u, 1u}) {
                MemoryImage image;
                EXPECT_EQ(kTooShortText,
                          FailureOfReading(PngSignature() + PngHeader(width, height, 16, colourType, interlace) +
                                               PngChunk("IDAT", stream) + PngEnd(),
                                           image))
                    << width << "x" << height;
                EXPECT_FALSE(image.begun);
            }
    // (1 + 8 * width) * height is 2^64 + 11030: a product of 64 bits would look small enough.
    MemoryImage wrapped;
    EXPECT_EQ(kTooShortText, FailureOfReading(PngSignature() + PngHeader(1074386744, 2146194582, 16, 6) +
                                                  PngChunk("IDAT", stream) + PngEnd(),
                                              wrapped));
    EXPECT_FALSE(wrapped.begun);
    // A length that reaches beyond the file.
    MemoryImage image;
    EXPECT_EQ(kTruncatedText, FailureOfReading(PngSignature() + PngHeader(2, 2, 8, 0) + Big32(0xFFFFFFFFu) +
                                                   FromText("IDAT") + stream + PngEnd(),
                                               image));
}

TEST(PngReader, AFlatImageThatCompressesWellIsNotMistakenForALie) {
    const uint32_t side = 1000;
    Bytes rows;
    for (uint32_t y = 0; y < side; ++y) rows.resize(rows.size() + 1 + side);
    const Bytes file = PngSignature() + PngHeader(side, side, 8, 0) + PngChunk("IDAT", RunStream(rows)) + PngEnd();
    EXPECT_LT(file.size() * 100, rows.size());
    MemoryImage image;
    ASSERT_EQ("", FailureOfReading(file, image));
    EXPECT_EQ(std::vector<uint8_t>(side * side, 0), image.bytes);
}

TEST(PngReader, TheStreamMayBeCutIntoAnyPiecesAndBlocks) {
    const Bytes stream = StoredStream(TinyRows(), 1);  // every byte a block of its own
    Bytes file = PngSignature() + PngHeader(2, 2, 8, 0) + PngChunk("IDAT", {});
    for (const uint8_t byte : stream) file = file + PngChunk("IDAT", {byte}) + PngChunk("IDAT", {});
    MemoryImage image;
    ASSERT_EQ("", FailureOfReading(file + PngEnd(), image));
    EXPECT_EQ((std::vector<uint8_t>{10, 20, 30, 40}), image.bytes);
}

TEST(PngReader, BytesBehindTheEndOfTheStreamAndOfTheFileAreIgnored) {
    MemoryImage image;
    ASSERT_EQ(
        "", FailureOfReading(TinyWith({}, StoredStream(TinyRows()) + FromText("more"), PngEnd() + FromText("and more")),
                             image));
    EXPECT_EQ((std::vector<uint8_t>{10, 20, 30, 40}), image.bytes);
}

TEST(PngReader, ThePixelSizeBecomesMicrons) {
    const auto read = [](const Bytes& data) {
        MemoryImage image;
        EXPECT_EQ("", FailureOfReading(MakePng(Tiny(), PngChunk("pHYs", data)), image));
        return std::pair(image.properties.micronsX, image.properties.micronsY);
    };
    const std::pair<double, double> unknown = {0.0, 0.0};
    EXPECT_EQ(std::pair(1.0, 0.5), read(Big32(1000000) + Big32(2000000) + Bytes{1}));
    EXPECT_EQ(unknown, read(Big32(1000000) + Big32(2000000) + Bytes{0})) << "a ratio only";
    EXPECT_EQ(unknown, read(Big32(0) + Big32(2000000) + Bytes{1}));
    EXPECT_EQ(unknown, read(Big32(1000000) + Big32(0x80000000u) + Bytes{1}));
    EXPECT_EQ(unknown, read(Big32(1000000) + Bytes{1}));
}

TEST(PngReader, TextsOfAllThreeKindsAreKeptInOrderAndOddOnesSkipped) {
    const auto entry = [](std::string_view type, std::string_view keyword, const Bytes& rest) {
        return PngChunk(type, FromText(keyword) + Bytes{0} + rest);
    };
    const Bytes packed = StoredStream({'a', 0xB5, 'b'});
    const Bytes utf8 = {0xC2, 0xB5, 0xE2, 0x82, 0xAC, 0xF0,
                        0x9D, 0x84, 0x9E, 0xFF, 'z'};  // micro, euro, a clef, damage
    const Bytes before =
        entry("tEXt", "Title", {'5', ' ', 0xB5, 'm'}) + entry("zTXt", "Packed", Bytes{0} + packed) +
        entry("iTXt", "Plain", Bytes{0, 0} + FromText("en") + Bytes{0, 0} + utf8) +
        entry("iTXt", "Small", Bytes{1, 0, 0, 0} + StoredStream({0xC3, 0xA9})) +
        // Skipped: no keyword, a bad one, no text, an unknown method, a damaged stream, no end of the keyword, a flag
        // of 2.
        entry("tEXt", "", FromText("x")) + entry("tEXt", " Title", FromText("x")) + entry("tEXt", "Empty", {}) +
        entry("zTXt", "Method", Bytes{1} + packed) + entry("zTXt", "Damaged", {0, 1, 2, 3}) +
        PngChunk("tEXt", FromText("Title")) + PngChunk("iTXt", {}) + entry("iTXt", "Flag", {2, 0, 0, 0, 'x'}) +
        entry("iTXt", "Cut", {0, 0, 'e', 'n'}) + entry("zTXt", "None", {});
    MemoryImage image;
    ASSERT_EQ("", FailureOfReading(
                      TinyWith(before, StoredStream(TinyRows()), entry("tEXt", "Title", FromText("behind")) + PngEnd()),
                      image));
    const auto& texts = image.properties.texts;
    ASSERT_EQ(5u, texts.size());
    const WideString expected[][2] = {
        {OLESTR("Title"), OLESTR("5 \u00B5m")},
        {OLESTR("Packed"), OLESTR("a\u00B5b")},
        {OLESTR("Plain"), OLESTR("\u00B5\u20AC\U0001D11E\uFFFDz")},
        {OLESTR("Small"), OLESTR("\u00E9")},
        {OLESTR("Title"), OLESTR("behind")},
    };
    for (size_t i = 0; i < 5; ++i) {
        EXPECT_TRUE(texts[i].keyword == expected[i][0]) << i;
        EXPECT_TRUE(texts[i].text == expected[i][1]) << i;
    }
}

TEST(PngReader, ATextThatDecompressesToMoreThanAMebibyteIsSkippedAndAllOfThemTogetherAreBounded) {
    const auto packed = [](std::string_view keyword, size_t size) {
        return PngChunk("zTXt", FromText(keyword) + Bytes{0, 0} + RunStream(Bytes(size, 'x')));
    };
    const size_t mebibyte = size_t{1} << 20;
    MemoryImage image;
    ASSERT_EQ("", FailureOfReading(MakePng(Tiny(), packed("Large", mebibyte + 1) + packed("Most", mebibyte)), image));
    ASSERT_EQ(1u, image.properties.texts.size());
    EXPECT_EQ(mebibyte, image.properties.texts[0].text.size());

    Bytes many;
    for (int i = 0; i < 20; ++i) many = many + packed("Many", mebibyte);
    MemoryImage bounded;
    ASSERT_EQ("", FailureOfReading(MakePng(Tiny(), many), bounded));
    EXPECT_EQ(16u, bounded.properties.texts.size());
}

}  // namespace
}  // namespace orlix::test
