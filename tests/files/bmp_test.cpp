#include "files/bmp.hpp"

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>

#include "files/reading.hpp"

#ifdef _WIN32
#include <windows.h>
#endif

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
        EXPECT_EQ(std::pair(x, y), std::pair(properties.kept.micronsX, properties.kept.micronsY));
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

// ------------------------------------------------------------------------------------------------- bitmaps of any kind

std::string FailureOfReadingAny(const Bytes& file, const SampleLimit& limit = {}) {
    MemoryImage image;
    const std::string text = FailureOfReading(file, image, limit, true);
    EXPECT_TRUE(text.empty() || !image.begun);
    return text;
}

Bytes Masks(std::initializer_list<uint32_t> masks) {
    Bytes bytes;
    for (const uint32_t mask : masks) bytes = bytes + Little32(mask);
    return bytes;
}

using Levels = std::vector<uint32_t>;

TEST(AnyBmp, EveryDepthGivesItsPixels) {
    const struct {
        const char* name;
        BmpFile file;
        Levels levels;
    } cases[] = {
        {"1 bit, first pixel in the highest bit",
         {.width = 10, .bits = 1, .palette = {9, 9, 9, 0, 200, 200, 200, 0}, .rows = {0xA0, 0x40, 0, 0}},
         {200, 9, 200, 9, 9, 9, 9, 9, 9, 200}},
        {"1 bit in colour, top-down",
         {.width = 1,
          .height = -2,
          .bits = 1,
          .palette = {1, 2, 3, 0, 4, 5, 6, 0},
          .rows = {0x80, 0, 0, 0, 0, 0, 0, 0}},
         {6, 3, 5, 2, 4, 1}},
        {"1 bit without a palette", {.width = 2, .bits = 1, .rows = {0x40, 0, 0, 0}}, {0, 255}},
        {"4 bits, first pixel in the higher half",
         {.width = 3, .bits = 4, .palette = Part(GreyRampPalette(), 0, 64), .rows = {0x1F, 0x30, 0, 0}},
         {1, 15, 3}},
        {"4 bits without a palette", {.width = 3, .bits = 4, .rows = {0x1F, 0x30, 0, 0}}, {17, 255, 51}},
        // 255 v / 31: 1 gives 8.2, 16 gives 131.6.
        {"16 bits, 5 each",
         {.width = 4, .bits = 16, .rows = {0xFF, 0xFF, 0x01, 0x00, 0x00, 0x02, 0x00, 0x04}},
         {255, 0, 0, 8, 255, 0, 132, 0, 255, 8, 0, 0}},
        // 255 v / 63: 1 gives 4.05, 32 gives 129.5.
        {"16 bits, 5, 6, 5",
         {.width = 4,
          .bits = 16,
          .compression = 3,
          .masks = Masks({0xF800, 0x07E0, 0x001F}),
          .rows = {0x20, 0x00, 0x00, 0x04, 0x00, 0x08, 0x1F, 0x00}},
         {0, 0, 8, 0, 4, 130, 0, 0, 0, 0, 0, 255}},
        {"16 bits without blue",
         {.width = 1, .bits = 16, .compression = 3, .masks = Masks({0xFF00, 0xFF, 0}), .rows = {7, 8, 0, 0}},
         {8, 7, 0}},
        {"24 bits",
         {.width = 2, .height = 2, .bits = 24, .rows = {1, 2, 3, 4, 5, 6, 0, 0, 7, 8, 9, 10, 11, 12, 0, 0}},
         {9, 12, 3, 6, 8, 11, 2, 5, 7, 10, 1, 4}},
        {"24 bits, top-down",
         {.width = 1, .height = -2, .bits = 24, .rows = {1, 2, 3, 0, 7, 8, 9, 0}},
         {3, 9, 2, 8, 1, 7}},
        {"24 bits behind a palette for displays",
         {.width = 1, .bits = 24, .coloursUsed = 2, .palette = {9, 9, 9, 9, 9, 9, 9, 9}, .rows = {1, 2, 3, 0}},
         {3, 2, 1}},
        {"32 bits", {.width = 2, .bits = 32, .rows = {1, 2, 3, 99, 4, 5, 6, 0}}, {3, 6, 2, 5, 1, 4}},
        // 255 v / 1023: 512 gives 127.6, 2 gives 0.499.
        {"32 bits, 10 each",
         {.width = 2,
          .bits = 32,
          .compression = 3,
          .masks = Masks({0x3FF, 0xFFC00, 0x3FF00000}),
          .rows = Little32(512 | 1023 << 10 | 2 << 20) + Little32(0xC0000003)},
         {128, 1, 255, 0, 0, 0}},
        {"32 bits, bytes from the highest down, with alpha",
         {.width = 1,
          .bits = 32,
          .compression = 6,
          .masks = Masks({0xFF000000, 0xFF0000, 0xFF00, 0xFF}),
          .rows = {4, 3, 2, 1}},
         {1, 2, 3}},
        {"32 bits, one channel takes all",
         {.width = 2,
          .bits = 32,
          .compression = 3,
          .masks = Masks({0xFFFFFFFF, 0, 1}),
          .rows = {0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0x80}},
         {255, 128, 0, 0, 255, 0}},
    };
    for (const auto& [name, file, levels] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(levels, Read(MakeBmp(file)).Levels());
    }
    for (const uint32_t headerSize : {52u, 56u, 108u, 124u}) {
        const BmpFile file{.headerSize = headerSize,
                           .width = 1,
                           .bits = 32,
                           .compression = 3,
                           .masks = Masks({0xFF, 0xFF00, 0xFF0000}),
                           .rows = {1, 2, 3, 4}};
        EXPECT_EQ((Levels{1, 2, 3}), Read(MakeBmp(file)).Levels()) << headerSize;
    }
    EXPECT_EQ((Levels{3, 2, 1}),
              Read(MakeBmp({.headerSize = 12, .width = 1, .bits = 24, .rows = {1, 2, 3, 0}})).Levels());
}

TEST(AnyBmp, ChannelsOfEveryWidthAreScaledToTheNearestLevel) {
    for (uint32_t bits = 1; bits <= 14; ++bits)
        for (const uint32_t shift : {0u, 3u, 32 - bits}) {
            const uint32_t most = (1u << bits) - 1;
            BmpFile file{.width = static_cast<int32_t>(most) + 1, .bits = 32, .compression = 3};
            file.masks = Masks({0, most << shift, 0});
            Levels wanted(3 * (size_t{most} + 1));
            for (uint32_t v = 0; v <= most; ++v) {
                for (const uint8_t byte : Little32(v << shift | ~(most << shift))) file.rows.push_back(byte);
                wanted[size_t{most} + 1 + v] = static_cast<uint32_t>(std::lround(255.0 * v / most));
            }
            EXPECT_EQ(wanted, Read(MakeBmp(file)).Levels()) << bits << " bits from bit " << shift;
        }
}

TEST(AnyBmp, RunLengthsAreExpanded) {
    const Bytes grey = GreyRampPalette();
    const struct {
        const char* name;
        uint32_t bits;
        int32_t width, height;
        Bytes runs;
        Levels levels;
    } cases[] = {
        {"runs, row ends, the end", 8, 4, 2, {4, 7, 0, 0, 1, 8, 3, 9, 0, 0, 0, 1}, {8, 9, 9, 9, 7, 7, 7, 7}},
        {"without the last marks", 8, 4, 1, {4, 7}, {7, 7, 7, 7}},
        {"copied, an odd number with a byte behind", 8, 4, 1, {0, 3, 1, 2, 3, 99, 1, 4}, {1, 2, 3, 4}},
        {"copied, without the byte behind", 8, 3, 1, {0, 3, 1, 2, 3}, {1, 2, 3}},
        {"a row that ends early", 8, 3, 2, {1, 5, 0, 0, 3, 6, 0, 1}, {6, 6, 6, 5, 0, 0}},
        {"the end before all rows", 8, 2, 3, {2, 5, 0, 1}, {0, 0, 0, 0, 5, 5}},
        {"a move to the right", 8, 4, 1, {1, 5, 0, 2, 2, 0, 1, 6}, {5, 0, 0, 6}},
        {"a move up", 8, 3, 3, {1, 5, 0, 2, 1, 2, 1, 6, 0, 1}, {0, 0, 6, 0, 0, 0, 5, 0, 0}},
        {"a move behind the last row", 8, 1, 2, {1, 5, 0, 2, 0, 2}, {0, 5}},
        {"rows with their padding", 8, 3, 2, {4, 5, 0, 0, 4, 6, 0, 0, 0, 1}, {6, 6, 6, 5, 5, 5}},
        {"4 bits, two colours in turn", 4, 5, 1, {5, 0x1F}, {1, 15, 1, 15, 1}},
        {"4 bits, copied in whole words", 4, 7, 1, {0, 5, 0x12, 0x34, 0x50, 99, 2, 0x67}, {1, 2, 3, 4, 5, 6, 7}},
        {"4 bits, a row with its padding", 4, 3, 1, {8, 0x12}, {1, 2, 1}},
        {"4 bits, a copy whose bytes are even", 4, 5, 1, {0, 4, 0x12, 0x34, 1, 0x90}, {1, 2, 3, 4, 9}},
    };
    for (const auto& [name, bits, width, height, runs, levels] : cases) {
        SCOPED_TRACE(name);
        BmpFile file{.width = width, .height = height, .bits = bits, .compression = bits == 8 ? 1u : 2u, .rows = runs};
        file.palette = Part(grey, 0, size_t{4} << bits);
        EXPECT_EQ(levels, Read(MakeBmp(file)).Levels());
    }
}

TEST(AnyBmp, WhatIsWrongIsNamedAndTheSinkNotBegun) {
    const std::string name = "IImageVPAEx::CreateFromBmp: ", depth = "unknown number of bits per pixel.",
                      compression = "unknown compression.", masks = "invalid colour masks.",
                      tooShort = "the file is too short for its image.", leaves = "the run lengths leave the image.";
    const auto runs = [](int32_t width, int32_t height, const Bytes& stream) {
        return BmpFile{
            .width = width, .height = height, .compression = 1, .palette = GreyRampPalette(), .rows = stream};
    };
    const auto masked = [](uint32_t bits, const Bytes& given) {
        return BmpFile{.bits = bits, .compression = 3, .masks = given, .rows = Bytes(4)};
    };
    const struct {
        std::string text;
        BmpFile file;
    } cases[] = {
        {depth, {.bits = 2, .rows = Bytes(4)}},
        {depth, {.bits = 0, .rows = Bytes(4)}},
        {depth, {.headerSize = 12, .bits = 32, .rows = Bytes(4)}},
        {compression, {.bits = 24, .compression = 1, .rows = Bytes(4)}},
        {compression, {.bits = 8, .compression = 2, .rows = Bytes(4)}},
        {compression, {.bits = 24, .compression = 4, .rows = Bytes(4)}},  // a JPEG file, says the header
        {compression, {.bits = 24, .compression = 3, .masks = Masks({1, 2, 4}), .rows = Bytes(4)}},
        {compression, {.height = -1, .compression = 1, .rows = Bytes(4)}},
        {compression, {.headerSize = 64, .bits = 16, .compression = 3, .masks = Masks({1, 2, 4}), .rows = Bytes(4)}},
        {compression, {.headerSize = 48, .bits = 16, .compression = 3, .masks = Masks({1, 2, 4}), .rows = Bytes(4)}},
        {masks, masked(16, Masks({0x7C00, 0x3E0, 0x1B}))},
        {masks, masked(16, Masks({0x10000, 0x3E0, 0x1F}))},
        {masks, masked(32, Masks({0, 0, 0}))},
        {tooShort, {.width = 3, .bits = 24, .rows = Bytes(8)}},
        {tooShort, {.width = 33, .bits = 1, .rows = Bytes(4)}},
        {tooShort, {.width = INT32_MAX, .height = INT32_MAX, .bits = 32, .rows = Bytes(4)}},
        {leaves, runs(3, 1, {5, 7})},
        {leaves, runs(3, 1, {2, 7, 0, 3, 1, 2, 3, 0})},
        {leaves, runs(3, 2, {0, 2, 5, 0, 1, 7})},
        {leaves, runs(3, 2, {0, 2, 0, 3})},
        {tooShort, runs(3, 2, {3, 7})},
        {tooShort, runs(3, 1, {0, 3, 1, 2})},
        {tooShort, runs(3, 1, {0, 2, 0})},
        {tooShort, runs(1000, 1000, {0, 1})},  // 10^6 > 2^16 + 1024 x 2
        {tooShort, runs(INT32_MAX, INT32_MAX, {0, 1})},
        {"a pixel is outside the palette.",
         {.bits = 4, .coloursUsed = 3, .palette = Bytes(12), .rows = {0x30, 0, 0, 0}}},
    };
    for (const auto& [text, file] : cases)
        EXPECT_EQ(name + text, FailureOfReadingAny(MakeBmp(file))) << "case " << &text - &cases[0].text;
    EXPECT_EQ("", FailureOfReadingAny(MakeBmp(runs(300, 200, {0, 1}))));

    const Bytes cut = MakeBmp({.bits = 16, .compression = 3, .masks = Masks({1, 2, 4})});
    EXPECT_EQ(name + masks, FailureOfReadingAny(Part(cut, 0, 54 + 11)));
    EXPECT_EQ("IImageVPAEx::CreateFromFile: the image has 6 samples, more than the limit of 5.",
              FailureOfReadingAny(MakeBmp({.width = 2, .bits = 24, .rows = Bytes(8)}), SampleLimit(5)));
    EXPECT_EQ("IImageVPAEx::CreateFromFile: the image has 60000 samples, more than the limit of 5.",
              FailureOfReadingAny(MakeBmp(runs(300, 200, {0, 3})), SampleLimit(5)));
}

#ifndef _WIN32
// What another program, gdk-pixbuf, reads, pixel by pixel in red, green and blue. nullopt where it is missing.
std::optional<Bytes> SeenByOthers(const Bytes& file, int32_t width, int32_t height) {
    const auto folder = std::filesystem::temp_directory_path();
    const std::string name = (folder / "orlix_bmp_test.bmp").string();
    std::ofstream(name, std::ios::binary).write(reinterpret_cast<const char*>(file.data()), std::ssize(file));
    Bytes pixels;
    const std::string result = name + ".pixdata", command = "gdk-pixbuf-pixdata '" + name + "' '" + result + "'";
    if (std::system("command -v gdk-pixbuf-pixdata >/dev/null") != 0) return std::nullopt;
    if (std::system(command.c_str()) != 0) return pixels;
    std::ifstream stream(result, std::ios::binary);
    const Bytes data{std::istreambuf_iterator<char>(stream), {}};
    std::filesystem::remove(result);
    // Six numbers: signature, length, type, bytes of a row, width, height. Then padded rows of 3 or 4 bytes.
    const auto number = [&](size_t i) { return size_t{data[i + 2]} << 8 | data[i + 3]; };
    EXPECT_EQ(std::pair(static_cast<size_t>(width), static_cast<size_t>(height)), std::pair(number(16), number(20)));
    const size_t channels = data[11] == 2 ? 4 : 3;
    for (size_t y = 0; y < number(20); ++y)
        for (size_t x = 0; x < number(16); ++x)
            for (size_t channel = 0; channel < 3; ++channel)
                pixels.push_back(data[24 + y * number(12) + x * channels + channel]);
    std::filesystem::remove(name);
    return pixels;
}

// Reads the file, and expects others to see the same but for `tolerance` levels.
void ExpectSeenAlike(const Bytes& file, int tolerance) {
    const MemoryImage image = Read(file);
    const auto width = static_cast<size_t>(image.properties.width),
               height = static_cast<size_t>(image.properties.height);
    const auto seen = SeenByOthers(file, image.properties.width, image.properties.height);
    ASSERT_TRUE(seen);
    ASSERT_EQ(3 * width * height, seen->size());
    int worst = 0;
    for (size_t i = 0; i < width * height; ++i)
        for (size_t channel = 0; channel < 3; ++channel) {
            const size_t band = image.properties.bands == 3 ? channel : 0;
            worst = std::max(worst, std::abs((*seen)[3 * i + channel] - int{image.bytes[band * width * height + i]}));
        }
    EXPECT_LE(worst, tolerance);
}

// `colours` colours without a grey one, blue first.
Bytes ColourPalette(int colours) {
    Bytes palette;
    for (int i = 0; i < colours; ++i)
        palette =
            palette + Bytes{static_cast<uint8_t>(i), static_cast<uint8_t>(i + 100), static_cast<uint8_t>(255 - i), 0};
    return palette;
}

TEST(AnyBmp, OtherProgramsSeeTheSamePixels) {
    if (!SeenByOthers(MakeBmp(SmallBmp()), 5, 2)) GTEST_SKIP() << "gdk-pixbuf-pixdata is not installed";
    Noise noise(11);
    // Others repeat the bits of a channel in place of rounding: a level more or less.
    const struct {
        const char* name;
        uint32_t bits, compression;
        Bytes masks;
        int tolerance;
    } kinds[] = {{"1", 1, 0, {}, 0},
                 {"4", 4, 0, {}, 0},
                 {"8", 8, 0, {}, 0},
                 {"16", 16, 0, {}, 1},
                 {"565", 16, 3, Masks({0xF800, 0x7E0, 0x1F}), 1},
                 {"24", 24, 0, {}, 0},
                 {"32", 32, 0, {}, 0},
                 {"32 with masks", 32, 3, Masks({0xFF0000, 0xFF00, 0xFF}), 0}};
    for (const auto& [name, bits, compression, masks, tolerance] : kinds)
        for (const int32_t width : {1, 7, 32, 33})
            for (const int32_t height : {3, -3}) {
                SCOPED_TRACE(testing::Message() << name << ' ' << width << ' ' << height);
                BmpFile file{
                    .width = width, .height = height, .bits = bits, .compression = compression, .masks = masks};
                if (bits <= 8) file.palette = ColourPalette(1 << bits);
                const size_t stride = (static_cast<size_t>(width) * bits + 31) / 32 * 4;
                for (size_t i = 0; i < 3 * stride; ++i) file.rows.push_back(static_cast<uint8_t>(noise()));
                ExpectSeenAlike(MakeBmp(file), tolerance);
            }
    for (const uint32_t bits : {4u, 8u}) {
        SCOPED_TRACE(testing::Message() << "run lengths of " << bits);
        BmpFile file{.width = 40, .height = 20, .bits = bits, .compression = bits == 8 ? 1u : 2u};
        file.palette = ColourPalette(1 << bits);
        for (int y = 0; y < 20; ++y) {
            for (uint32_t left = 40; left > 0;) {
                const uint32_t n = std::min(left, 1 + noise.below(12));
                const bool copied = n >= 3 && noise.below(2) == 0;
                file.rows = file.rows + (copied ? Bytes{0, static_cast<uint8_t>(n)} : Bytes{static_cast<uint8_t>(n)});
                const uint32_t size = copied ? ((n * bits + 7) / 8 + 1) / 2 * 2 : 1;
                for (uint32_t i = 0; i < size; ++i) file.rows.push_back(static_cast<uint8_t>(noise()));
                left -= n;
            }
            file.rows = file.rows + Bytes{0, static_cast<uint8_t>(y == 19)};
        }
        ExpectSeenAlike(MakeBmp(file), 0);
    }
    for (const int32_t bands : {1, 3}) {
        SCOPED_TRACE(testing::Message() << "written, " << bands);
        MemoryImage image(13, 5, bands, 8, [&](int32_t, int32_t, int32_t) { return noise.below(256); });
        const Bytes file = Written(IFF_BMP, image);
        EXPECT_TRUE(Read(file).SamePixels(image));
        ExpectSeenAlike(file, 0);
    }
}
#endif

TEST(AnyBmp, WrittenFilesKeepWholePixelsPerMetre) {
    MemoryImage image(3, 2, 1, 8, [](int32_t, int32_t x, int32_t y) { return 10 * x + y; });
    for (const auto& [microns, found] : {std::pair{0.5, 0.5}, {0.3, 1e6 / 3333333}, {0.0, 0.0}, {3e6, 0.0}}) {
        image.properties.kept.PutMicrons(microns, microns / 2, "");
        const ImageProperties read = Read(Written(IFF_BMP, image)).properties.kept;
        EXPECT_EQ(found, read.micronsX);
        EXPECT_NEAR(found / 2, read.micronsY, 1e-7);
    }
    image.properties.width = image.properties.height = 1 << 16;  // 4 GB, and no row is asked for
    try {
        Written(IFF_BMP, image);
        ADD_FAILURE();
    } catch (const Failure& failure) {
        EXPECT_STREQ("IImageFile::SaveToFile: the image is too large for the format.", failure.what());
    }
}

}  // namespace
}  // namespace orlix::test
