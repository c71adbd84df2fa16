#include <gtest/gtest.h>

#include "files/hand_made.hpp"
#include "files/memory_image.hpp"

namespace orlix::test {
namespace {

constexpr auto kHeaderText = "IImageVPAEx::CreateFromBmp: problems reading bmp header";
constexpr auto kBitsText =
    "IImageVPAEx::CreateFromBmp: only bitmaps with eight bits per pixel are currently supported.";
constexpr auto kCompressedText = "IImageVPAEx::CreateFromBmp: compressed bitmaps are not currently supported.";
constexpr auto kTooShortText = "IImageVPAEx::CreateFromBmp: the file is too short for its image.";
constexpr auto kOutsideText = "IImageVPAEx::CreateFromBmp: a pixel is outside the palette.";

// 5 columns, 2 rows, stored bottom row first, 3 bytes of padding: 10..14 below 20..24.
BmpFile Small() {
    BmpFile file;
    file.width = 5;
    file.height = 2;
    file.palette = GreyRampPalette();
    file.rows = {10, 11, 12, 13, 14, 99, 99, 99, 20, 21, 22, 23, 24, 99, 99, 99};
    return file;
}
const std::vector<uint8_t> kSmallPixels = {20, 21, 22, 23, 24, 10, 11, 12, 13, 14};

std::vector<uint8_t> PixelsOf(const Bytes& file) {
    MemoryImage image;
    EXPECT_EQ("", FailureOfReading(file, image));
    EXPECT_EQ(1, image.properties.bands);
    return image.bytes;
}

TEST(Bmp, EveryHeaderAndBothRowOrdersGiveThePixels) {
    for (const uint32_t headerSize : {12u, 40u, 52u, 56u, 64u, 108u, 124u}) {
        SCOPED_TRACE(headerSize);
        BmpFile file = Small();
        file.headerSize = headerSize;
        if (headerSize == 12) file.palette = GreyRampPalette(3);
        EXPECT_EQ(kSmallPixels, PixelsOf(MakeBmp(file)));
    }
    BmpFile topDown = Small();
    topDown.height = -2;
    EXPECT_EQ((std::vector<uint8_t>{10, 11, 12, 13, 14, 20, 21, 22, 23, 24}), PixelsOf(MakeBmp(topDown)));
}

TEST(Bmp, ThePaletteIsAppliedAndColourGivesThreeBands) {
    BmpFile file = Small();
    for (auto& byte : file.palette) byte = static_cast<uint8_t>(255 - byte);  // white is 0
    EXPECT_EQ(235, PixelsOf(MakeBmp(file))[0]);

    file.palette = GreyRampPalette();
    file.palette[4 * 9] = 200;  // the colour of an index that does not occur
    EXPECT_EQ(kSmallPixels, PixelsOf(MakeBmp(file)));

    file.palette[4 * 20] = 200;  // blue of the index of the first pixel
    MemoryImage colour;
    ASSERT_EQ("", FailureOfReading(MakeBmp(file), colour));
    ASSERT_EQ(3, colour.properties.bands);
    EXPECT_EQ(20u, colour.at(0, 0, 0));
    EXPECT_EQ(20u, colour.at(1, 0, 0));
    EXPECT_EQ(200u, colour.at(2, 0, 0));
    EXPECT_EQ(14u, colour.at(2, 4, 1));

    file.palette.clear();
    EXPECT_EQ(kSmallPixels, PixelsOf(MakeBmp(file))) << "without a palette the indices are the levels";

    file.palette = GreyRampPalette();
    file.coloursUsed = 24;
    MemoryImage outside;
    EXPECT_EQ(kOutsideText, FailureOfReading(MakeBmp(file), outside));
    EXPECT_FALSE(outside.begun);
    file.coloursUsed = 25;
    EXPECT_EQ(kSmallPixels, PixelsOf(MakeBmp(file)));
}

TEST(Bmp, PixelsPerMetreBecomeMicrons) {
    BmpFile file = Small();
    file.perMetreX = 2000000;
    file.perMetreY = 4000000;
    MemoryImage image;
    ASSERT_EQ("", FailureOfReading(MakeBmp(file), image));
    EXPECT_EQ(0.5, image.properties.micronsX);
    EXPECT_EQ(0.25, image.properties.micronsY);
    file.perMetreY = 0xFFFFFFFF;
    MemoryImage unknown;
    ASSERT_EQ("", FailureOfReading(MakeBmp(file), unknown));
    EXPECT_EQ(0.0, unknown.properties.micronsX);
    EXPECT_EQ(0.0, unknown.properties.micronsY);
}

TEST(Bmp, WhatIsWrongWithAFileIsNamedAndTheSinkNotBegun) {
    struct Case {
        const char* name;
        void (*change)(BmpFile&);
        const char* text;
    };
    for (const Case& c : {Case{"24 bits", [](BmpFile& f) { f.bits = 24; }, kBitsText},
                          Case{"1 bit", [](BmpFile& f) { f.bits = 1; }, kBitsText},
                          Case{"4 bits compressed", [](BmpFile& f) { f.bits = 4, f.compression = 2; }, kBitsText},
                          Case{"run lengths", [](BmpFile& f) { f.compression = 1; }, kCompressedText},
                          Case{"width 0", [](BmpFile& f) { f.width = 0; }, kHeaderText},
                          Case{"negative width", [](BmpFile& f) { f.width = -5; }, kHeaderText},
                          Case{"height 0", [](BmpFile& f) { f.height = 0; }, kHeaderText},
                          Case{"lowest height", [](BmpFile& f) { f.height = INT32_MIN; }, kHeaderText},
                          Case{"planes", [](BmpFile& f) { f.planes = 3; }, kHeaderText},
                          Case{"header size", [](BmpFile& f) { f.headerSize = 39; }, kHeaderText},
                          Case{"wide", [](BmpFile& f) { f.width = INT32_MAX; }, kTooShortText},
                          Case{"high", [](BmpFile& f) { f.height = INT32_MAX; }, kTooShortText},
                          Case{"both", [](BmpFile& f) { f.width = f.height = INT32_MAX; }, kTooShortText},
                          Case{"high, top-down", [](BmpFile& f) { f.height = -INT32_MAX; }, kTooShortText}}) {
        SCOPED_TRACE(c.name);
        BmpFile file = Small();
        c.change(file);
        MemoryImage image;
        EXPECT_EQ(c.text, FailureOfReading(MakeBmp(file), image));
        EXPECT_FALSE(image.begun);
    }
}

TEST(Bmp, AFileCutOffAnywhereFailsUnlessOnlyPaddingIsMissing) {
    const Bytes file = MakeBmp(Small());
    for (size_t size = 0; size <= file.size(); ++size) {
        MemoryImage image;
        const std::string text = FailureOfReading(std::span(file).first(size), image);
        if (size < 2)
            EXPECT_EQ("IImageVPAEx::CreateFromFile: unknown file format.", text) << size;
        else if (size < 14 + 40)
            EXPECT_EQ(kHeaderText, text) << size;
        else if (size + 3 < file.size())
            EXPECT_EQ(kTooShortText, text) << size;
        else
            EXPECT_EQ("", text) << size;
    }
}

TEST(Bmp, AWrongByteGivesAnErrorOrAnImageOfTheDeclaredSize) {
    const Bytes file = MakeBmp(Small());
    for (size_t at = 0; at < 60; ++at)
        for (int value = 0; value < 256; ++value) {
            Bytes damaged = file;
            damaged[at] = static_cast<uint8_t>(value);
            MemoryImage image;
            (void)FailureOfReading(damaged, image);
            EXPECT_LE(image.bytes.size(), 3 * file.size()) << "byte " << at << " value " << value;
        }
}

}  // namespace
}  // namespace orlix::test
