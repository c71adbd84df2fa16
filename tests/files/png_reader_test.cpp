#include "files/png_filter.hpp"
#include "files/private_chunks.hpp"
#include "files/reading.hpp"

namespace orlix::test {
namespace {

constexpr auto kPngHeaderText = "IImageVPAEx::CreateFromPng: problems reading png header";
constexpr auto kTruncatedText = "IImageVPAEx::CreateFromPng: the file is truncated.";
constexpr auto kChecksumText = "IImageVPAEx::CreateFromPng: a checksum is wrong.";
constexpr auto kOrderText = "IImageVPAEx::CreateFromPng: chunks are missing or out of order.";
constexpr auto kUnsupportedText = "IImageVPAEx::CreateFromPng: the file needs a chunk that is not supported.";
constexpr auto kPaletteText = "IImageVPAEx::CreateFromPng: problems reading png palette";
constexpr auto kPngShortText = "IImageVPAEx::CreateFromPng: the file is too short for its image.";
constexpr auto kPixelsText = "IImageVPAEx::CreateFromPng: problems reading png pixels";

// A palette of `count` entries: red 255 - i, green i, blue 7 i.
uint32_t PaletteLevel(uint32_t index, uint32_t colour) {
    return (colour == 0 ? 255 - index : colour == 1 ? index : 7 * index) & 0xFF;
}
Bytes PaletteChunk(uint32_t count) {
    Bytes data;
    for (uint32_t i = 0; i < 3 * count; ++i) data.push_back(static_cast<uint8_t>(PaletteLevel(i / 3, i % 3)));
    return PngChunk("PLTE", data);
}

// 2x2, 8-bit grey, levels 10 20 / 30 40, no filter.
PngPicture Tiny() {
    return {2, 2, 8, 0, false, [](uint32_t x, uint32_t y, uint32_t) { return 10 + 10 * x + 20 * y; }};
}
const Bytes kTinyRows = {0, 10, 20, 0, 30, 40}, kTinyStream = StoredStream(kTinyRows);
const std::vector<uint32_t> kTinyLevels = {10, 20, 30, 40};
Bytes TinyWith(const Bytes& stream, const Bytes& before = {}) { return PngFile(PngHeader(2, 2, 8, 0), stream, before); }

TEST(PngReader, EveryColourTypeDepthFilterAndInterlaceGivesItsPixels) {
    for (const auto& [colourType, depth] : kPngKinds)
        for (const bool interlaced : {false, true})
            for (const auto& [width, height] : std::vector<std::pair<uint32_t, uint32_t>>{
                     {1, 1}, {1, 9}, {2, 3}, {3, 5}, {4, 4}, {5, 1}, {5, 2}, {8, 8}, {9, 17}, {33, 20}}) {
                SCOPED_TRACE(testing::Message() << "type " << colourType << " depth " << depth << " interlaced "
                                                << interlaced << " " << width << "x" << height);
                std::vector<uint32_t> samples(width * height * 4);
                Noise noise(width * 100 + height);
                for (auto& sample : samples) sample = noise.below(1u << depth);
                const auto value = [&, w = width](uint32_t x, uint32_t y, uint32_t sample) {
                    return samples[(y * w + x) * 4 + sample];
                };
                const bool indexed = colourType == 3, colour = colourType == 2 || colourType == 6 || indexed;
                const MemoryImage image = Read(MakePng({width, height, depth, colourType, interlaced, value},
                                                       indexed ? PaletteChunk(1u << depth) : Bytes{}));
                ASSERT_EQ(depth == 16 ? DT_WORD : DT_BYTE, image.properties.dataType);
                const uint32_t scale = indexed || depth >= 8 ? 1 : depth == 1 ? 255 : depth == 2 ? 85 : 17;
                std::vector<uint32_t> levels;
                for (uint32_t band = 0; band < (colour ? 3u : 1u); ++band)
                    for (uint32_t y = 0; y < height; ++y)
                        for (uint32_t x = 0; x < width; ++x)
                            levels.push_back(indexed ? PaletteLevel(value(x, y, 0), band) : scale * value(x, y, band));
                ASSERT_EQ(levels, image.Levels());
            }
}

TEST(PngReader, PaethEqualsItsDefinitionForAllNeighbours) {
    for (int a = 0; a < 256; ++a)
        for (int b = 0; b < 256; ++b)
            for (int c = 0; c < 256; ++c)
                if (png::Paeth(a, b, c) != PaethByDefinition(a, b, c)) FAIL() << a << " " << b << " " << c;
}

TEST(PngReader, APaletteGivesOneBandWhenTheEntriesInUseAreGrey) {
    const auto file = [](uint32_t second) {
        return MakePng({2, 1, 8, 3, false, [=](uint32_t x, uint32_t, uint32_t) { return x ? second : 1; }},
                       PngChunk("PLTE", {9, 9, 9, 200, 200, 200, 1, 2, 3}));
    };
    EXPECT_EQ((std::vector<uint32_t>{200, 9}), Read(file(0)).Levels());
    EXPECT_EQ((std::vector<uint32_t>{200, 1, 200, 2, 200, 3}), Read(file(2)).Levels());
    ExpectRefused("IImageVPAEx::CreateFromPng: a pixel is outside the palette.", file(3));
}

// The stored samples stay where a colour is transparent; empty pieces, blocks of a byte, and bytes behind the end of
// the stream and of the file change nothing.
TEST(PngReader, WhatMakesNoDifferenceIsAccepted) {
    Bytes pieces = PngSignature() + PngHeader(2, 2, 8, 0) + PngChunk("IDAT", {});
    for (const uint8_t byte : StoredStream(kTinyRows, 1))
        pieces = pieces + PngChunk("IDAT", {byte}) + PngChunk("IDAT", {});
    for (const Bytes& file : {MakePng(Tiny(), PngChunk("tRNS", {0, 10})), pieces + PngEnd(),
                              TinyWith(kTinyStream + FromText("more")) + FromText("and more")})
        EXPECT_EQ(kTinyLevels, Read(file).Levels());
}

TEST(PngReader, AFileCutOffAnywhereFailsBeforeTheSinkIsBegun) {
    const Bytes file = MakePng({5, 3, 16, 2, true, [](uint32_t x, uint32_t y, uint32_t s) { return x * 7 + y + s; }},
                               PngChunk("tEXt", FromText("Title") + Bytes{0} + FromText("x")));
    Read(file);
    for (size_t size = 0; size < file.size(); ++size)
        ExpectRefused(size < 4   ? "IImageVPAEx::CreateFromFile: unknown file format."
                      : size < 8 ? kPngHeaderText
                                 : kTruncatedText,
                      std::span(file).first(size));
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

// With a right checksum the damage reaches the decompressor. The two bytes in front name a window size, which may vary,
// as may the unused bits of the block's first byte.
TEST(PngReader, DamageOfTheStreamBehindARightChecksumIsNoticed) {
    for (size_t at = 2; at < kTinyStream.size(); ++at)
        for (int value = 0; value < 256; ++value) {
            Bytes damaged = kTinyStream;
            damaged[at] = static_cast<uint8_t>(value);
            MemoryImage image;
            const bool same = value == kTinyStream[at] || (at == 2 && value % 8 == 1);
            EXPECT_EQ(same ? "" : kPixelsText, FailureOfReading(TinyWith(damaged), image)) << at << " " << value;
        }
}

TEST(PngReader, WhatIsWrongWithAFileIsNamed) {
    const Bytes stream = kTinyStream, pixels = PngChunk("IDAT", stream);
    const Bytes start = PngSignature() + PngHeader(2, 2, 8, 0);
    Bytes wrongSum = stream, wrongCrc = pixels;
    wrongSum.back() ^= 1;
    wrongCrc.back() ^= 1;
    const auto header = [&](uint32_t width, uint32_t height, uint32_t depth, uint32_t type, uint32_t interlace = 0) {
        return PngFile(PngHeader(width, height, depth, type, interlace), stream, PaletteChunk(2));
    };
    const auto indexed = [&](const Bytes& chunks) {
        return PngFile(PngHeader(2, 2, 1, 3), StoredStream({0, 0, 0, 0}), chunks);
    };
    const struct {
        const char* name;
        Bytes file;
        const char* text;
    } cases[] = {
        {"no header", PngSignature() + pixels + PngEnd(), kPngHeaderText},
        {"long header", PngSignature() + PngChunk("IHDR", Bytes(14)) + pixels + PngEnd(), kPngHeaderText},
        {"width 0", header(0, 2, 8, 2), kPngHeaderText},
        {"height 0", header(2, 0, 8, 2), kPngHeaderText},
        {"width 2^31", header(0x80000000u, 2, 8, 2), kPngHeaderText},
        {"height 2^31", header(2, 0x80000000u, 8, 2), kPngHeaderText},
        {"depth 3", header(2, 2, 3, 0), kPngHeaderText},
        {"colour of 4 bits", header(2, 2, 4, 2), kPngHeaderText},
        {"indices of 16 bits", header(2, 2, 16, 3), kPngHeaderText},
        {"colour type 1", header(2, 2, 8, 1), kPngHeaderText},
        {"interlace 2", header(2, 2, 8, 2, 2), kPngHeaderText},
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
        {"palette behind the pixels", PngSignature() + PngHeader(2, 2, 8, 2) + pixels + PaletteChunk(2) + PngEnd(),
         kOrderText},
        {"no stream", start + PngChunk("IDAT", {}) + PngEnd(), kPngShortText},
        {"a row missing", TinyWith(StoredStream({0, 10, 20})), kPixelsText},
        {"a byte too many", TinyWith(StoredStream({0, 10, 20, 0, 30, 40, 0})), kPixelsText},
        {"unknown filter", TinyWith(StoredStream({0, 10, 20, 5, 30, 40})), kPixelsText},
        {"wrong sum of the stream", TinyWith(wrongSum), kPixelsText},
        {"stream without its sum", TinyWith(Bytes(stream.begin(), stream.end() - 4)), kPixelsText},
        {"not compressed", TinyWith(kTinyRows), kPixelsText},
    };
    for (const auto& [name, file, text] : cases) {
        SCOPED_TRACE(name);
        ExpectRefused(text, file, text == kPixelsText);
    }
}

TEST(PngReader, ASizeThatTheFileCannotFillIsRefusedBeforeTheSinkIsBegun) {
    constexpr uint32_t kMost = 0x7FFFFFFF;
    for (const auto& [width, height] : std::vector<std::pair<uint32_t, uint32_t>>{
             {kMost, kMost},
             {kMost, 1},
             {1, kMost},
             {65536, 65536},
             {20000, 1},
             {1, 20000},
             // (1 + 8 * width) * height is 2^64 + 11030: a product of 64 bits would look small enough.
             {1074386744, 2146194582}})
        for (const uint32_t colourType : {0u, 6u})
            for (const uint32_t interlace : {0u, 1u}) {
                SCOPED_TRACE(testing::Message() << width << "x" << height);
                ExpectRefused(kPngShortText, PngFile(PngHeader(width, height, 16, colourType, interlace), kTinyStream));
            }
    ExpectRefused(kTruncatedText, PngSignature() + PngHeader(2, 2, 8, 0) + Big32(0xFFFFFFFFu) + FromText("IDAT") +
                                      kTinyStream + PngEnd());
}

TEST(PngReader, ThePixelSizeBecomesMicrons) {
    const std::pair<double, double> unknown = {0.0, 0.0};
    for (const auto& [data, wanted] : {std::pair{Big32(1000000) + Big32(2000000) + Bytes{1}, std::pair(1.0, 0.5)},
                                       {Big32(1000000) + Big32(2000000) + Bytes{0}, unknown},  // a ratio only
                                       {Big32(0) + Big32(2000000) + Bytes{1}, unknown},
                                       {Big32(1000000) + Big32(0x80000000u) + Bytes{1}, unknown},
                                       {Big32(1000000) + Bytes{1}, unknown}}) {
        const FileProperties properties = Read(MakePng(Tiny(), PngChunk("pHYs", data))).properties;
        EXPECT_EQ(wanted, std::pair(properties.kept.micronsX, properties.kept.micronsY));
    }
}

// 12 bits, scaled to 16 as the format has it (their first bits again) or with zeros behind them. One sample that is
// neither, channels that differ, or an impossible number leave the samples as they are.
TEST(PngReader, SamplesScaledFromFewerBitsAreScaledBackIfThatLosesNothing) {
    struct Case {
        uint32_t colourType, depth;
        Bytes bits;
        std::vector<uint32_t> stored, wanted;
        int32_t significant;
    };
    for (const Case& c : {Case{0, 16, {12}, {0x0000, 0xFFFF, 0x1231, 0xABCA}, {0, 0xFFF, 0x123, 0xABC}, 12},
                          {0, 16, {12}, {0x0000, 0xFFF0, 0x1230, 0xABC0}, {0, 0xFFF, 0x123, 0xABC}, 12},
                          {0, 16, {12}, {0x0000, 0xFFFF, 0x1230, 0xABC0}, {0, 0xFFFF, 0x1230, 0xABC0}, 0},
                          {0, 16, {5}, {0x0000, 0xFFFF, 0x8421, 0x0842}, {0, 31, 16, 1}, 5},
                          {0, 8, {3}, {0, 0xFF, 0xB6, 0x24}, {0, 7, 5, 1}, 3},
                          {0, 16, {16}, {1, 2, 3, 4}, {1, 2, 3, 4}, 0},
                          {0, 16, {0}, {0, 0, 0, 0}, {0, 0, 0, 0}, 0},
                          {0, 16, {12, 12}, {0, 0, 0, 0}, {0, 0, 0, 0}, 0},
                          {4, 16, {12, 16}, {0x0000, 0xFFFF, 0x1231, 0xABCA}, {0, 0xFFF, 0x123, 0xABC}, 12}}) {
        const PngPicture picture = {
            2,       2,
            c.depth, c.colourType,
            false,   [&](uint32_t x, uint32_t y, uint32_t sample) { return sample ? 0 : c.stored[2 * y + x]; }};
        const MemoryImage image = Read(MakePng(picture, PngChunk("sBIT", c.bits)));
        EXPECT_EQ(c.wanted, image.Levels());
        EXPECT_EQ(c.significant, image.properties.kept.significantBits);
    }
    const PngPicture colour = {1, 1, 8, 2, false, [](uint32_t, uint32_t, uint32_t) { return 0; }};
    EXPECT_EQ(0, Read(MakePng(colour, PngChunk("sBIT", {5, 6, 5}))).properties.kept.significantBits);
    EXPECT_EQ(5, Read(MakePng(colour, PngChunk("sBIT", {5, 5, 5}))).properties.kept.significantBits);
}

// Of a chunk of this library that is cut off, too long or of another version nothing is taken.
TEST(PngReader, DamagedPrivateChunksAreSkipped) {
    FileProperties whole;
    whole.kept.PutMicrons(0.1, 0.2, "");
    whole.kept.binaries = {{OLESTR("key"), {1, 2, 3}}};
    whole.settings.emplace();
    for (size_t i = 0; i < 1024; ++i) whole.settings->palette[i] = static_cast<uint8_t>(i % 4 == 3 ? 0 : i / 4);
    whole.settings->luminanceUpper = whole.settings->displayUpper = 255;
    const auto read = [](std::string_view type, const Bytes& data) {
        const FileProperties got = Read(MakePng(Tiny(), PngChunk(type, data))).properties;
        return std::tuple(got.kept.micronsX, got.kept.binaries.size(), got.settings.has_value());
    };
    const std::vector<PrivateChunk> chunks = PrivateChunks(whole);
    ASSERT_EQ(3u, chunks.size());
    const auto [calibration, settings, entry] = std::tie(chunks[0].data, chunks[1].data, chunks[2].data);
    EXPECT_EQ(std::tuple(0.1, 0u, false), read("caLB", calibration));
    EXPECT_EQ(std::tuple(0.0, 0u, true), read("seTT", settings));
    EXPECT_EQ(std::tuple(0.0, 1u, false), read("biNe", entry));
    const std::tuple nothing(0.0, size_t{0}, false);
    for (const auto& [type, data] : {std::pair{"caLB", calibration}, {"seTT", settings}}) {
        for (size_t size = 0; size < data.size(); ++size) EXPECT_EQ(nothing, read(type, Part(data, 0, size)));
        EXPECT_EQ(nothing, read(type, data + Bytes{0}));
        Bytes other = data;
        other[5] = 2;
        EXPECT_EQ(nothing, read(type, other));
    }
    for (size_t size = 0; size < 16; ++size) EXPECT_EQ(nothing, read("biNe", Part(entry, 0, size)));
    // Settings that an image of bytes with one band cannot have.
    for (const auto& spoil : std::vector<std::function<void(ImageSettings&)>>{
             [](ImageSettings& s) { s.bandToProcess = 1; }, [](ImageSettings& s) { s.bandToDisplay = -2; },
             [](ImageSettings& s) { s.numberOfBins = 255; }, [](ImageSettings& s) { s.luminanceUpper = 256; },
             [](ImageSettings& s) { s.luminanceLower = 0.5; }, [](ImageSettings& s) { s.displayLower = -1; }}) {
        FileProperties spoiled;
        spoiled.settings = whole.settings;
        spoil(*spoiled.settings);
        EXPECT_EQ(nothing, read("seTT", PrivateChunks(spoiled)[0].data));
    }
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
    const Bytes file = PngSignature() + PngHeader(2, 2, 8, 0) + before + PngChunk("IDAT", kTinyStream) +
                       entry("tEXt", "Title", FromText("behind")) + PngEnd();
    const std::pair<WideString, WideString> expected[] = {{OLESTR("Title"), OLESTR("5 \u00B5m")},
                                                          {OLESTR("Packed"), OLESTR("a\u00B5b")},
                                                          {OLESTR("Plain"), OLESTR("\u00B5\u20AC\U0001D11E\uFFFDz")},
                                                          {OLESTR("Small"), OLESTR("\u00E9")},
                                                          {OLESTR("Title"), OLESTR("behind")}};
    const auto texts = Read(file).properties.kept.texts;
    ASSERT_EQ(std::size(expected), texts.size());
    for (size_t i = 0; i < texts.size(); ++i)
        EXPECT_TRUE(expected[i] == std::pair(texts[i].keyword, texts[i].text)) << i;
}

TEST(PngReader, ATextThatDecompressesToMoreThanAMebibyteIsSkippedAndAllOfThemTogetherAreBounded) {
    const auto packed = [](std::string_view keyword, size_t size) {
        return PngChunk("zTXt", FromText(keyword) + Bytes{0, 0} + PackedStream(Bytes(size, 'x')));
    };
    const size_t mebibyte = size_t{1} << 20;
    const auto texts =
        Read(MakePng(Tiny(), packed("Large", mebibyte + 1) + packed("Most", mebibyte))).properties.kept.texts;
    ASSERT_EQ(1u, texts.size());
    EXPECT_EQ(mebibyte, texts[0].text.size());

    Bytes many;
    for (int i = 0; i < 20; ++i) many = many + packed("Many", mebibyte);
    EXPECT_EQ(16u, Read(MakePng(Tiny(), many)).properties.kept.texts.size());
}

}  // namespace
}  // namespace orlix::test
