#include "files/reading.hpp"

namespace orlix::test {
namespace {

constexpr auto kBmpHeaderText = "IImageVPAEx::CreateFromBmp: problems reading bmp header";
constexpr auto kBitsText =
    "IImageVPAEx::CreateFromBmp: only bitmaps with eight bits per pixel are currently supported.";
constexpr auto kCompressedText = "IImageVPAEx::CreateFromBmp: compressed bitmaps are not currently supported.";
constexpr auto kBmpShortText = "IImageVPAEx::CreateFromBmp: the file is too short for its image.";

// 5 columns, 2 rows, stored bottom row first, 3 bytes of padding: 10..14 below 20..24.
BmpFile SmallBmp() {
    BmpFile file;
    file.width = 5;
    file.height = 2;
    file.palette = GreyRampPalette();
    file.rows = {10, 11, 12, 13, 14, 99, 99, 99, 20, 21, 22, 23, 24, 99, 99, 99};
    return file;
}

TEST(Bmp, EveryHeaderPaletteAndRowOrderGivesThePixels) {
    using Levels = std::vector<uint32_t>;
    const Levels pixels = {20, 21, 22, 23, 24, 10, 11, 12, 13, 14};
    for (const uint32_t headerSize : {12u, 40u, 52u, 56u, 64u, 108u, 124u}) {
        BmpFile file = SmallBmp();
        file.headerSize = headerSize;
        if (headerSize == 12) file.palette = GreyRampPalette(3);
        EXPECT_EQ(pixels, Read(MakeBmp(file)).Levels()) << headerSize;
    }
    const struct {
        const char* name;
        void (*change)(BmpFile&);
        Levels levels;
    } cases[] = {{"top-down", [](BmpFile& f) { f.height = -2; }, {10, 11, 12, 13, 14, 20, 21, 22, 23, 24}},
                 {"white is 0",
                  [](BmpFile& f) {
                      for (auto& byte : f.palette) byte = static_cast<uint8_t>(255 - byte);
                  },
                  {235, 234, 233, 232, 231, 245, 244, 243, 242, 241}},
                 {"the colour of an index that does not occur", [](BmpFile& f) { f.palette[4 * 9] = 200; }, pixels},
                 {"blue of the index of the first pixel",
                  [](BmpFile& f) { f.palette[4 * 20] = 200; },
                  {20, 21, 22, 23, 24, 10,  11, 12, 13, 14, 20, 21, 22, 23, 24,
                   10, 11, 12, 13, 14, 200, 21, 22, 23, 24, 10, 11, 12, 13, 14}},
                 {"without a palette the indices are the levels", [](BmpFile& f) { f.palette.clear(); }, pixels},
                 {"as many colours as are used", [](BmpFile& f) { f.coloursUsed = 25; }, pixels}};
    for (const auto& [name, change, levels] : cases) {
        SCOPED_TRACE(name);
        BmpFile file = SmallBmp();
        change(file);
        const MemoryImage image = Read(MakeBmp(file));
        EXPECT_EQ(levels, image.Levels());
        EXPECT_EQ(levels.size() == 10 ? 1 : 3, image.properties.bands);
    }
}

TEST(Bmp, PixelsPerMetreBecomeMicrons) {
    BmpFile file = SmallBmp();
    file.perMetreX = 2000000;
    for (const auto& [perMetreY, x, y] : {std::tuple{4000000u, 0.5, 0.25}, {0xFFFFFFFFu, 0.0, 0.0}}) {
        file.perMetreY = perMetreY;
        const FileProperties properties = Read(MakeBmp(file)).properties;
        EXPECT_EQ(std::pair(x, y), std::pair(properties.micronsX, properties.micronsY));
    }
}

TEST(Bmp, WhatIsWrongWithAFileIsNamedAndTheSinkNotBegun) {
    const struct {
        const char* name;
        void (*change)(BmpFile&);
        const char* text;
    } cases[] = {{"24 bits", [](BmpFile& f) { f.bits = 24; }, kBitsText},
                 {"1 bit", [](BmpFile& f) { f.bits = 1; }, kBitsText},
                 {"4 bits compressed", [](BmpFile& f) { f.bits = 4, f.compression = 2; }, kBitsText},
                 {"run lengths", [](BmpFile& f) { f.compression = 1; }, kCompressedText},
                 {"width 0", [](BmpFile& f) { f.width = 0; }, kBmpHeaderText},
                 {"negative width", [](BmpFile& f) { f.width = -5; }, kBmpHeaderText},
                 {"height 0", [](BmpFile& f) { f.height = 0; }, kBmpHeaderText},
                 {"lowest height", [](BmpFile& f) { f.height = INT32_MIN; }, kBmpHeaderText},
                 {"planes", [](BmpFile& f) { f.planes = 3; }, kBmpHeaderText},
                 {"header size", [](BmpFile& f) { f.headerSize = 39; }, kBmpHeaderText},
                 {"wide", [](BmpFile& f) { f.width = INT32_MAX; }, kBmpShortText},
                 {"high", [](BmpFile& f) { f.height = INT32_MAX; }, kBmpShortText},
                 {"both", [](BmpFile& f) { f.width = f.height = INT32_MAX; }, kBmpShortText},
                 {"high, top-down", [](BmpFile& f) { f.height = -INT32_MAX; }, kBmpShortText},
                 {"an index too many", [](BmpFile& f) { f.coloursUsed = 24; },
                  "IImageVPAEx::CreateFromBmp: a pixel is outside the palette."}};
    for (const auto& [name, change, text] : cases) {
        SCOPED_TRACE(name);
        BmpFile file = SmallBmp();
        change(file);
        ExpectRefused(text, MakeBmp(file));
    }
}

TEST(Bmp, AFileCutOffAnywhereFailsUnlessOnlyPaddingIsMissing) {
    const Bytes file = MakeBmp(SmallBmp());
    for (size_t size = 0; size + 3 < file.size(); ++size)
        ExpectRefused(size < 2         ? "IImageVPAEx::CreateFromFile: unknown file format."
                      : size < 14 + 40 ? kBmpHeaderText
                                       : kBmpShortText,
                      std::span(file).first(size));
    for (size_t padding = 0; padding <= 3; ++padding) Read(std::span(file).first(file.size() - padding));
}

}  // namespace
}  // namespace orlix::test
