#include "files/tiff.hpp"

#include <bit>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "files/hand_made_tiff.hpp"
#include "files/reading.hpp"

namespace orlix::test {
namespace {

constexpr auto kTiffHeaderText = "IImageVPAEx::CreateFromTiff: problems reading tiff header";
constexpr auto kTiffPixelText = "IImageVPAEx::CreateFromTiff: problems reading tiff pixels";
constexpr auto kTiffShortText = "IImageVPAEx::CreateFromTiff: the file is too short for its image.";
constexpr auto kTiffTypeText = "IImageVPAEx::CreateFromTiff: the type of the samples is not supported.";
constexpr auto kTiffModelText = "IImageVPAEx::CreateFromTiff: the colour model is not supported.";
constexpr auto kTiffCompressionText = "IImageVPAEx::CreateFromTiff: the compression is not supported.";

// Any bits, runs among them.
uint32_t SomeTiffSample(uint32_t x, uint32_t y, uint32_t s) {
    return x % 5 == 0 ? 0 : (x * 0x9E3779B1u + y * 0x85EBCA77u + s * 0xC2B2AE3Du) ^ (x * y << 7);
}

struct TiffKind {
    uint32_t bits, format, photometric, samples, bands;
    LONG type;
    int32_t significant;
    uint32_t (*level)(uint32_t stored);
};
uint32_t SameLevel(uint32_t stored) { return stored; }
const TiffKind kTiffKinds[] = {
    {1, 0, 1, 1, 1, DT_BYTE, 0, [](uint32_t v) { return v * 255; }},
    {1, 0, 0, 1, 1, DT_BYTE, 0, [](uint32_t v) { return v ? 0u : 255u; }},
    {2, 1, 1, 1, 1, DT_BYTE, 0, [](uint32_t v) { return v * 85; }},
    {4, 1, 1, 3, 3, DT_BYTE, 0, [](uint32_t v) { return v * 17; }},
    {4, 1, 0, 1, 1, DT_BYTE, 0, [](uint32_t v) { return 255 - v * 17; }},
    {8, 0, 1, 1, 1, DT_BYTE, 0, SameLevel},
    {8, 4, 2, 3, 3, DT_BYTE, 0, SameLevel},  // format "void" is unsigned, too
    {8, 1, 2, 5, 3, DT_BYTE, 0, SameLevel},
    {8, 1, 1, 2, 2, DT_BYTE, 0, SameLevel},
    {8, 1, 0, 1, 1, DT_BYTE, 0, [](uint32_t v) { return 255 - v; }},
    {10, 1, 1, 1, 1, DT_WORD, 10, SameLevel},
    {12, 1, 1, 1, 1, DT_WORD, 12, SameLevel},
    {12, 1, 1, 4, 4, DT_WORD, 12, SameLevel},
    {12, 1, 0, 1, 1, DT_WORD, 12, [](uint32_t v) { return 4095 - v; }},
    {15, 1, 1, 1, 1, DT_WORD, 15, SameLevel},
    {16, 1, 1, 1, 1, DT_WORD, 0, SameLevel},
    {16, 1, 2, 4, 3, DT_WORD, 0, SameLevel},
    {16, 1, 0, 1, 1, DT_WORD, 0, [](uint32_t v) { return 65535 - v; }},
    {32, 1, 1, 1, 1, DT_DWORD, 0, SameLevel},
    {32, 1, 2, 3, 3, DT_DWORD, 0, SameLevel},
    {32, 1, 0, 1, 1, DT_DWORD, 0, [](uint32_t v) { return ~v; }},
    {32, 3, 1, 1, 1, DT_Float, 0, SameLevel},
    {32, 3, 2, 3, 3, DT_Float, 0, SameLevel},
    {8, 2, 1, 1, 1, DT_Float, 0,
     [](uint32_t v) { return std::bit_cast<uint32_t>(static_cast<float>(static_cast<int8_t>(v))); }},
    {16, 2, 1, 2, 2, DT_Float, 0,
     [](uint32_t v) { return std::bit_cast<uint32_t>(static_cast<float>(static_cast<int16_t>(v))); }},
};

struct TiffStorage {
    uint32_t rowsPerStrip, tileWidth, tileHeight;
    bool planar, bigEndian, large, reversedBits;
};
constexpr TiffStorage kTiffStorages[] = {
    {0, 0, 0, false, false, false, false}, {4, 0, 0, false, true, false, false},   {3, 0, 0, true, false, true, false},
    {0, 16, 16, false, true, true, false}, {0, 32, 16, true, false, false, false}, {5, 0, 0, false, false, false, true},
};

TEST(Tiff, EveryKindOfSampleStorageCompressionAndPredictorGivesThePixels) {
    int read = 0;
    for (const TiffKind& kind : kTiffKinds)
        for (const TiffStorage& storage : kTiffStorages)
            for (const uint32_t compression :
                 {kTiffNone, kTiffLzw, kTiffDeflate, TiffCompression{32946}, kTiffPackBits})
                for (const uint32_t predictor : {1u, 2u, 3u}) {
                    // Predictors are for whole bytes and LZW and deflate; the last one for floating point.
                    const bool predicts = compression != kTiffNone && compression != kTiffPackBits;
                    if (predictor > 1 && (!predicts || kind.bits % 8 != 0)) continue;
                    if (predictor == 3 && kind.type != DT_Float) continue;
                    if (predictor == 3 && kind.format != 3) continue;
                    const uint32_t mask = kind.bits == 32 ? ~0u : (1u << kind.bits) - 1;
                    const auto stored = [=](uint32_t x, uint32_t y, uint32_t s) {
                        return SomeTiffSample(x, y, s) & mask;
                    };
                    TiffPage page{.width = 21, .height = 19, .bits = kind.bits, .samples = kind.samples};
                    page.photometric = kind.samples >= 3 && kind.bands == 3 ? 2 : kind.photometric;
                    page.format = kind.format;
                    page.compression = compression;
                    page.predictor = predictor;
                    page.rowsPerStrip = storage.rowsPerStrip;
                    page.tileWidth = storage.tileWidth;
                    page.tileHeight = storage.tileHeight;
                    page.planar = storage.planar;
                    page.reversedBits = storage.reversedBits;
                    page.value = stored;
                    SCOPED_TRACE(testing::Message()
                                 << kind.bits << " bits, format " << kind.format << ", photometric " << page.photometric
                                 << ", samples " << kind.samples << ", storage " << &storage - kTiffStorages
                                 << ", compression " << compression << ", predictor " << predictor);
                    const MemoryImage image = Read(MakeTiff(TiffFile{{storage.bigEndian}, storage.large, {page}}));
                    ASSERT_EQ(kind.type, image.properties.dataType);
                    ASSERT_EQ(kind.significant, image.properties.kept.significantBits);
                    std::vector<uint32_t> levels;
                    for (uint32_t band = 0; band < kind.bands; ++band)
                        for (uint32_t y = 0; y < page.height; ++y)
                            for (uint32_t x = 0; x < page.width; ++x) levels.push_back(kind.level(stored(x, y, band)));
                    ASSERT_EQ(levels, image.Levels());
                    ++read;
                }
    EXPECT_LT(1000, read);
}

TEST(Tiff, FurtherSamplesOfGreyAreBandsUnlessOneIsTransparency) {
    TiffPage page{.width = 2, .height = 1, .samples = 2, .value = [](uint32_t x, uint32_t, uint32_t s) {
                      return 10 + x + 100 * s;
                  }};
    for (const auto& [kind, levels] :
         {std::pair{0u, std::vector<uint32_t>{10, 11, 110, 111}}, {1u, {10, 11}}, {2u, {10, 11}}}) {
        page.more = {TiffShort(338, kind)};
        EXPECT_EQ(levels, Read(MakeTiff(page)).Levels()) << kind;
    }
}

TEST(Tiff, APaletteIsAppliedAndGreyWhereOnlyGreysAreUsed) {
    const auto colourMap = [](uint32_t red, uint32_t green, uint32_t blue, uint32_t scale) {
        Bytes values;  // reds, then greens, then blues; entry 3 is not used
        for (const uint32_t first : {red, green, blue})
            for (const uint32_t value : {first, 20u, 30u, first + 1}) values = values + Little16(value * scale);
        return TiffEntry{320, 3, 12, values};
    };
    TiffPage page{.width = 3, .height = 1, .bits = 2, .photometric = 3, .value = [](uint32_t x, uint32_t, uint32_t) {
                      return x;
                  }};
    for (const uint32_t scale : {1u, 256u, 257u}) {
        page.more = {colourMap(10, 10, 10, scale)};
        EXPECT_EQ((std::vector<uint32_t>{10, 20, 30}), Read(MakeTiff(page)).Levels()) << scale;
        page.more = {colourMap(10, 11, 12, scale)};
        EXPECT_EQ((std::vector<uint32_t>{10, 20, 30, 11, 20, 30, 12, 20, 30}), Read(MakeTiff(page)).Levels()) << scale;
    }
}

TEST(Tiff, ThePageIsAnArgument) {
    TiffFile file;
    file.pages.clear();
    for (uint32_t page = 0; page < 3; ++page)
        file.pages.push_back(
            {.width = page + 1, .value = [=](uint32_t x, uint32_t, uint32_t) { return 10 * page + x; }});
    const Bytes bytes = MakeTiff(file);
    EXPECT_EQ(3, CountTiffPages(bytes));
    const auto read = [&](int32_t page) {
        MemoryImage image;
        ReadOptions options;
        options.page = page;
        try {
            ReadImageFile(bytes, image, options);
        } catch (const Failure& failure) {
            return std::pair(image.Levels(), std::string(failure.what()));
        }
        return std::pair(image.Levels(), std::string());
    };
    using Levels = std::vector<uint32_t>;
    EXPECT_EQ(std::pair(Levels{0}, std::string()), read(0));
    EXPECT_EQ(std::pair(Levels{20, 21, 22}, std::string()), read(2));
    for (const int32_t page : {3, INT32_MAX, -1})
        EXPECT_EQ("IImageFile::LoadFromFile: the file has no such page.", read(page).second) << page;
}

// --------------------------------------------------------------------------------------------------------- calibration

TEST(Tiff, TheSizeOfAPixelComesFromTheMostExactSource) {
    const auto resolution = [](uint32_t unit, const Bytes& x, const Bytes& y) {
        return std::vector<TiffEntry>{TiffShort(296, unit), {282, 5, 1, x}, {283, 5, 1, y}};
    };
    const auto with = [](std::vector<TiffEntry> entries, const char* description) {
        entries.push_back(TiffAscii(270, description));
        return entries;
    };
    const Bytes r4 = LittleRational(4, 1), r8 = LittleRational(80000, 10000), bad = LittleRational(1, 0);
    const char* const tiff = "TIFF resolution";
    const struct {
        const char* name;
        std::vector<TiffEntry> entries;
        double x, y;
        const char* from;
    } cases[] = {
        {"centimetres", resolution(3, r4, r8), 2500, 1250, tiff},
        {"inches", resolution(2, r4, r8), 6350, 3175, tiff},
        {"inches without a unit", {{282, 5, 1, r4}, {283, 5, 1, r8}}, 6350, 3175, tiff},
        {"the shape only", resolution(1, r4, r8), 0, 0, ""},
        {"exact to the last digit", resolution(3, LittleRational(1550387597, 10000), r8), 1e8 / 1550387597.0, 1250,
         tiff},
        {"one of two", {TiffShort(296, 3), {282, 5, 1, r4}}, 2500, 2500, tiff},
        {"zero", resolution(3, LittleRational(0, 1), r8), 1250, 1250, tiff},
        {"no denominators", resolution(3, bad, LittleRational(0, 0)), 0, 0, ""},
        {"ImageJ", with(resolution(1, r4, r8), "ImageJ=1.53k\nunit=micron\nspacing=2\n"), 0.25, 0.125, "ImageJ unit"},
        {"ImageJ, symbols", with(resolution(1, r4, r8), "ImageJ=1\nimages=3\nunit=\\u00B5m\n"), 0.25, 0.125,
         "ImageJ unit"},
        {"ImageJ, two units", with(resolution(1, r4, r8), "ImageJ=1\nunit=mm\nyunit=nm\n"), 250, 0.000125,
         "ImageJ unit"},
        {"ImageJ, pixels", with(resolution(3, r4, r8), "ImageJ=1\nunit=pixel\n"), 2500, 1250, tiff},
        {"no ImageJ", with(resolution(3, r4, r8), "Image\nunit=micron\n"), 2500, 1250, tiff},
        {"OME",
         with(resolution(3, r4, r8),
              "<?xml version='1.0'?><OME xmlns='x'><Image ID='PhysicalSizeX=\"3\"'><Pixels\n"
              "SizeX=\"4\" PhysicalSizeX = \"0.1\" XPhysicalSizeY=\"3\" PhysicalSizeY='0.2'>"),
         0.1, 0.2, "OME PhysicalSizeX"},
        {"OME, units",
         with({},
              "<OME><Pixels PhysicalSizeX=\"100\" PhysicalSizeXUnit=\"nm\" PhysicalSizeY=\"2e-3\" "
              "PhysicalSizeYUnit=\"mm\" />"),
         0.1, 2, "OME PhysicalSizeX"},
        {"OME, micro sign", with({}, "<OME:OME><OME:Pixels PhysicalSizeXUnit=\"\xC2\xB5m\" PhysicalSizeX=\"0.5\">"),
         0.5, 0.5, "OME PhysicalSizeX"},
        {"OME, Latin-1", with({}, "<OME><Pixels PhysicalSizeXUnit='\xC5' PhysicalSizeX='20'>"), 0.002, 0.002,
         "OME PhysicalSizeX"},
        {"OME, cut off", with(resolution(3, r4, r8), "<OME><Pixels PhysicalSizeX='20' PhysicalSizeXUnit='n"), 2500,
         1250, tiff},
        {"OME, no size", with(resolution(3, r4, r8), "<OME><Pixels PhysicalSizeX=\"-1\" PhysicalSizeY=\"nan\">"), 2500,
         1250, tiff},
    };
    for (const auto& [name, entries, x, y, from] : cases) {
        const ImageProperties kept = Read(MakeTiff(TiffPage{.more = entries})).properties.kept;
        EXPECT_DOUBLE_EQ(x, kept.micronsX) << name;
        EXPECT_DOUBLE_EQ(y, kept.micronsY) << name;
        EXPECT_STREQ(from, kept.micronsFrom) << name;
    }
}

TEST(Tiff, AsciiTagsBecomeTexts) {
    const TiffPage page{.more = {TiffAscii(270, "caf\xC3\xA9"), TiffAscii(315, "M\xFCller"), TiffAscii(305, ""),
                                 TiffAscii(306, "2026:11:23 03:00:00"), TiffAscii(65000, "unknown")}};
    const ImageProperties kept = Read(MakeTiff(page)).properties.kept;
    EXPECT_TRUE(kept.hasDescription);
    EXPECT_EQ(OLESTR("caf\u00E9"), kept.description);
    ASSERT_EQ(2u, kept.texts.size());
    EXPECT_EQ(OLESTR("Author"), kept.texts[0].keyword);
    EXPECT_EQ(OLESTR("M\u00FCller"), kept.texts[0].text);
    EXPECT_EQ(OLESTR("Creation Time"), kept.texts[1].keyword);
}

// -------------------------------------------------------------------------------------------------------------- damage

TEST(Tiff, WhatIsWrongWithAFileIsNamed) {
    const struct {
        const char* name;
        void (*change)(TiffPage&);
        const char* text;
    } cases[] = {
        {"JPEG in TIFF", [](TiffPage& p) { p.more = {TiffShort(259, 7)}; }, kTiffCompressionText},
        {"fax", [](TiffPage& p) { p.bits = 1, p.more = {TiffShort(259, 4)}; }, kTiffCompressionText},
        {"unknown compression", [](TiffPage& p) { p.more = {TiffShort(259, 4711)}; }, kTiffCompressionText},
        {"double precision", [](TiffPage& p) { p.bits = 64, p.format = 3; }, kTiffTypeText},
        {"half precision", [](TiffPage& p) { p.bits = 16, p.format = 3; }, kTiffTypeText},
        {"signed 32 bits", [](TiffPage& p) { p.bits = 32, p.format = 2; }, kTiffTypeText},
        {"24 bits", [](TiffPage& p) { p.bits = 24; }, kTiffTypeText},
        {"3 bits", [](TiffPage& p) { p.bits = 3; }, kTiffTypeText},
        {"CMYK", [](TiffPage& p) { p.samples = 4, p.photometric = 5; }, kTiffModelText},
        {"YCbCr", [](TiffPage& p) { p.samples = 3, p.photometric = 6; }, kTiffModelText},
        {"floating point, white as zero", [](TiffPage& p) { p.bits = 32, p.format = 3, p.photometric = 0; },
         kTiffModelText},
        {"colour of two", [](TiffPage& p) { p.samples = 2, p.photometric = 2; }, kTiffHeaderText},
        {"palette missing", [](TiffPage& p) { p.bits = 4, p.photometric = 3; }, kTiffHeaderText},
        {"no width", [](TiffPage& p) { p.width = 0; }, kTiffHeaderText},
        {"no strips",
         [](TiffPage& p) {
             p.more = {{273, 4, 0, {}}};
         },
         kTiffHeaderText},
        {"wide",
         [](TiffPage& p) {
             p.more = {{256, 4, 1, Little32(1 << 26)}};
         },
         kTiffShortText},
        {"beyond 2^31",
         [](TiffPage& p) {
             p.more = {{256, 4, 1, Little32(0x80000000)}};
         },
         kTiffHeaderText},
        {"high",
         [](TiffPage& p) {
             p.more = {{257, 4, 1, Little32(1 << 26)}, {278, 4, 1, Little32(1 << 26)}};
         },
         kTiffShortText},
        {"a huge tile",
         [](TiffPage& p) {
             p.tileWidth = p.tileHeight = 16;
             p.compression = kTiffDeflate;
             p.more = {{322, 4, 1, Little32(1 << 13)}, {323, 4, 1, Little32(1 << 13)}};
         },
         kTiffShortText},
        {"many samples", [](TiffPage& p) { p.more = {TiffShort(277, 65535)}; }, kTiffShortText},
    };
    for (const auto& [name, change, text] : cases) {
        SCOPED_TRACE(name);
        TiffPage page{.width = 4, .height = 4};
        change(page);
        ExpectRefused(text, MakeTiff(page));
    }
    // The header is sound, the pixels are not.
    TiffPage page{.width = 40, .height = 40, .compression = kTiffDeflate};
    Bytes file = MakeTiff(page);
    file[12] ^= 0xFF;
    ExpectRefused(kTiffPixelText, file, true);
}

TEST(Tiff, AFileCutOffAnywhereIsRefused) {
    // The directory stands at the end.
    const Bytes file = MakeTiff(TiffPage{.width = 5, .height = 5, .compression = kTiffLzw, .rowsPerStrip = 2});
    for (size_t size = 4; size + 4 < file.size(); ++size) {
        MemoryImage image;
        EXPECT_NE("", FailureOfReading(std::span(file).first(size), image)) << size;
    }
}

TEST(Tiff, DirectoriesThatFormARingEnd) {
    Bytes file = MakeTiff(TiffFile{.pages = {{}, {}}});
    std::copy_n(file.begin() + 4, 4, file.end() - 4);  // the last one is followed by the first
    EXPECT_EQ(2, CountTiffPages(file));
    Read(file);
}

TEST(Tiff, StripsThatShareTheirBytesCountOnce) {
    // 4000 strips of 64 KiB each, all made from the same 80 bytes.
    constexpr uint32_t kStrips = 4000;
    const Bytes strip = PackedStream(Bytes(65536));
    TiffPage page{.width = 65536, .height = 1, .compression = kTiffDeflate};
    Bytes offsets, sizes;
    for (uint32_t i = 0; i < kStrips; ++i) {
        offsets = std::move(offsets) + Little32(8);
        sizes = std::move(sizes) + Little32(static_cast<uint32_t>(strip.size()));
    }
    page.more = {
        {257, 4, 1, Little32(kStrips)}, {278, 4, 1, Little32(1)}, {273, 4, kStrips, offsets}, {279, 4, kStrips, sizes}};
    ExpectRefused(kTiffShortText, MakeTiff(page), false, SampleLimit(0));
}

TEST(Tiff, TheLimitOfSamplesIsCheckedBeforeTheSinkIsBegun) {
    const TiffPage page{.width = 300, .height = 200, .samples = 3, .photometric = 2, .compression = kTiffPackBits};
    ExpectRefused("IImageVPAEx::CreateFromFile: the image has 180000 samples, more than the limit of 179999.",
                  MakeTiff(page), false, SampleLimit(179999));
    MemoryImage image;
    EXPECT_EQ("", FailureOfReading(MakeTiff(page), image, SampleLimit(180000)));
}

// ------------------------------------------------------------------------------------------------------------- writing

// Everything that an image keeps; sizes that no rational holds exactly.
void KeepAllInTiff(FileProperties& properties) {
    ImageProperties& kept = properties.kept;
    kept.PutMicrons(0.0645, 1.0 / 3, "");
    kept.Keep({WideString(kDescriptionKeyword), OLESTR("caf\u00E9 \u20AC")});
    kept.Keep({OLESTR("Author"), OLESTR("me")});
    kept.Keep({OLESTR("Stage"), OLESTR("x \u00B5")});
    kept.binaries.push_back({OLESTR("raw"), {0, 1, 255}});
    properties.coordinates = TCoordinateMap{1, 2, {3, 4, 5, 6}};
}

TEST(Tiff, PropertiesComeBackExactly) {
    MemoryImage image(3, 2, 1, DT_WORD, [](int32_t, int32_t x, int32_t y) { return 1000 * x + y; });
    KeepAllInTiff(image.properties);
    image.properties.kept.significantBits = 12;
    const MemoryImage back = Read(Written(IFF_TIFF, image));
    EXPECT_TRUE(back.SamePixels(image));
    const ImageProperties &kept = back.properties.kept, &given = image.properties.kept;
    EXPECT_EQ(given.micronsX, kept.micronsX);
    EXPECT_EQ(given.micronsY, kept.micronsY);
    EXPECT_STREQ("TIFF private tag", kept.micronsFrom);
    EXPECT_EQ(12, kept.significantBits);
    EXPECT_EQ(given.description, kept.description);
    ASSERT_EQ(2u, kept.texts.size());
    EXPECT_EQ(OLESTR("Stage"), kept.texts[1].keyword);
    ASSERT_EQ(1u, kept.binaries.size());
    EXPECT_EQ(given.binaries[0].bytes, kept.binaries[0].bytes);
    ASSERT_TRUE(back.properties.coordinates);
    EXPECT_EQ(6, back.properties.coordinates->Matrix.A22);
}

TEST(Tiff, AResolutionThatAnotherProgramChangedCounts) {
    MemoryImage image(1, 1, 1, DT_BYTE);
    image.properties.kept.PutMicrons(0.5, 0.5, "");
    Bytes file = Written(IFF_TIFF, image);
    const Bytes rational = LittleRational(2000000000, 100000);  // 20000 to the centimetre, twice
    auto at = std::search(file.begin(), file.end(), rational.begin(), rational.end());
    ASSERT_NE(file.end(), at);
    const Bytes changed = LittleRational(10000, 1);
    std::copy(changed.begin(), changed.end(), at);
    const ImageProperties kept = Read(file).properties.kept;
    EXPECT_EQ(1.0, kept.micronsX);
    EXPECT_EQ(0.5, kept.micronsY);
    EXPECT_STREQ("TIFF resolution", kept.micronsFrom);
}

// What a description says of the size may be older than the size.
TEST(Tiff, ASizeThatTheDescriptionContradictsComesBack) {
    for (const WideString text : {OLESTR("ImageJ=1\nunit=micron\n"), OLESTR("ImageJ=1\nunit=nm\nyunit=mm\n"),
                                  OLESTR("<OME><Pixels PhysicalSizeX='7' PhysicalSizeY='7'>")}) {
        MemoryImage image(1, 1, 1, DT_BYTE);
        image.properties.kept.PutMicrons(0.0645, 1.0 / 3, "");
        image.properties.kept.Keep({WideString(kDescriptionKeyword), text});
        const ImageProperties kept = Read(Written(IFF_TIFF, image)).properties.kept;
        EXPECT_EQ(0.0645, kept.micronsX);
        EXPECT_EQ(1.0 / 3, kept.micronsY);
    }
}

#ifndef _WIN32
MemoryImage ImageOfStrips(int32_t bands, LONG type) {
    // Several strips of 256 KiB, the last one shorter.
    return {500, 400, bands, type, [&](int32_t band, int32_t x, int32_t y) {
                return SomeTiffSample(static_cast<uint32_t>(x / 3), static_cast<uint32_t>(y),
                                      static_cast<uint32_t>(band));
            }};
}

// libtiff's own programs read what the writer writes and store it in other ways.
TEST(Tiff, ProgramsOfLibtiffReadTheFilesAndConvertThem) {
    if (std::system("tiffcp -h > /dev/null 2>&1; test $? != 127") != 0) GTEST_SKIP() << "there is no tiffcp";
    namespace fs = std::filesystem;
    const fs::path folder = fs::temp_directory_path() / ("orlix-tiff-" + std::to_string(std::random_device()()));
    fs::create_directory(folder);
    const fs::path ours = folder / "ours.tif", theirs = folder / "theirs.tif";
    size_t number = 0;
    for (const int32_t bands : {1, 3})
        for (const LONG type : {DT_BYTE, DT_WORD, DT_DWORD, DT_Float})
            for (const int turn : {0, 1}) {
                constexpr const char* kWays[] = {"-c none -s -r 7", "-c lzw:2 -B", "-c packbits -t -w 32 -l 48",
                                                 "-c zip -8 -L", "-c lzw -t -w 64 -l 16"};
                const char* const way = kWays[(number++ + static_cast<size_t>(turn)) % std::size(kWays)];
                SCOPED_TRACE(testing::Message() << type << ' ' << bands << ' ' << way);
                MemoryImage image = ImageOfStrips(bands, type);
                KeepAllInTiff(image.properties);
                const Bytes file = Written(IFF_TIFF, image);
                std::ofstream(ours, std::ios::binary)
                    .write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
                // It says on its standard output that it does not know the private tag.
                const std::string convert = "tiffcp " + std::string(way) + " " + ours.string() + " " + theirs.string();
                ASSERT_EQ(0, std::system((convert + " > /dev/null 2>&1").c_str()));
                std::ifstream stream(theirs, std::ios::binary);
                const MemoryImage back = Read(Bytes(std::istreambuf_iterator<char>(stream), {}));
                EXPECT_TRUE(back.SamePixels(image));
                EXPECT_NEAR(0.0645, back.properties.kept.micronsX, 1e-8);  // resolutions of single precision
                EXPECT_NEAR(1.0 / 3, back.properties.kept.micronsY, 1e-7);
                EXPECT_EQ(image.properties.kept.description, back.properties.kept.description);
            }
    fs::remove_all(folder);
}
#endif

}  // namespace
}  // namespace orlix::test
