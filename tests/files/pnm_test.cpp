#include <gtest/gtest.h>

#include "files/hand_made.hpp"
#include "files/memory_image.hpp"

namespace orlix::test {
namespace {

constexpr auto kPgmHeader = "IImageVPAEx::CreateFromFile: problems reading pgm header";
constexpr auto kPpmHeader = "IImageVPAEx::CreateFromFile: problems reading ppm header";
constexpr auto kPgmShort = "IImageVPAEx::CreateFromFile: the pgm file is too short for its image.";
constexpr auto kPpmShort = "IImageVPAEx::CreateFromFile: the ppm file is too short for its image.";
constexpr auto kPgmAbove = "IImageVPAEx::CreateFromFile: a pgm value is above the declared maximum.";
constexpr auto kPpmAbove = "IImageVPAEx::CreateFromFile: a ppm value is above the declared maximum.";
constexpr auto kPgmValues = "IImageVPAEx::CreateFromFile: problems reading pgm values";
constexpr auto kUnknown = "IImageVPAEx::CreateFromFile: unknown file format.";

using namespace std::string_view_literals;

TEST(Pnm, PlainAndRawFilesGiveTheirValues) {
    struct Case {
        std::string_view file;
        int32_t width, height, bands, bits;
        std::vector<uint32_t> values;  // band by band, row by row
    };
    for (const Case& c : {
             Case{"P2\n2 2\n255\n1 2\n3 255\n", 2, 2, 1, 8, {1, 2, 3, 255}},
             Case{"P2 2 2 255 1 2 3 4", 2, 2, 1, 8, {1, 2, 3, 4}},
             Case{"P2#c\n#\n2#w\n#\n 2\t\v\f\r\n255#m\r1#v\n 2 3#\n04", 2, 2, 1, 8, {1, 2, 3, 4}},
             Case{"P2 1 1 4095 4095", 1, 1, 1, 16, {4095}},
             Case{"P2 1 1 256 7 P2 1 1 256 8", 1, 1, 1, 16, {7}},
             Case{"P3 1 2 255 1 2 3 4 5 6", 1, 2, 3, 8, {1, 4, 2, 5, 3, 6}},
             Case{"P5 2 2 255\n\x01\x02\n\xFF"sv, 2, 2, 1, 8, {1, 2, 10, 255}},
             Case{"P5 2 1 15 \x0F\x00 and more"sv, 2, 1, 1, 8, {15, 0}},
             Case{"P5\n# c\n2 1\n255# d\n\x07\x08"sv, 2, 1, 1, 8, {7, 8}},
             Case{"P5 2 1 65535\n\x12\x34\xFF\xFF"sv, 2, 1, 1, 16, {0x1234, 0xFFFF}},
             Case{"P6 2 1 255\n\x01\x02\x03\x04\x05\x06"sv, 2, 1, 3, 8, {1, 4, 2, 5, 3, 6}},
             Case{"P6 1 1 1023\n\x00\x01\x01\x00\x03\xFF"sv, 1, 1, 3, 16, {1, 256, 1023}},
         }) {
        SCOPED_TRACE(c.file);
        MemoryImage image;
        ASSERT_EQ("", FailureOfReading(FromText(c.file), image));
        EXPECT_EQ(c.width, image.properties.width);
        EXPECT_EQ(c.height, image.properties.height);
        EXPECT_EQ(c.bands, image.properties.bands);
        ASSERT_EQ(c.bits, image.properties.bits);
        size_t i = 0;
        for (int32_t band = 0; band < c.bands; ++band)
            for (int32_t y = 0; y < c.height; ++y)
                for (int32_t x = 0; x < c.width; ++x) EXPECT_EQ(c.values[i++], image.at(band, x, y));
    }
}

TEST(Pnm, WhatIsWrongWithAFileIsNamed) {
    struct Case {
        std::string_view file;
        const char* text;
        bool begun;
    };
    for (const Case& c : {
             Case{"P1 1 1 1", kUnknown, false},
             Case{"P4 1 1 1", kUnknown, false},
             Case{"P7\n", kUnknown, false},
             Case{"P5", kUnknown, false},
             Case{"P52 2 255 abcd", kUnknown, false},
             Case{"P5 ", kPgmHeader, false},
             Case{"P5 2", kPgmHeader, false},
             Case{"P5 2 2", kPgmHeader, false},
             Case{"P5 2 2 255", kPgmHeader, false},
             Case{"P5 2 2 255# no end of line", kPgmHeader, false},
             Case{"P5 0 2 255 abcd", kPgmHeader, false},
             Case{"P5 2 0 255 abcd", kPgmHeader, false},
             Case{"P5 -2 2 255 abcd", kPgmHeader, false},
             Case{"P5 2x2 255 abcd", kPgmHeader, false},
             Case{"P5 2.0 2 255 abcd", kPgmHeader, false},
             Case{"P5 2 2 0 abcd", kPgmHeader, false},
             Case{"P5 2 2 65536 abcdefgh", kPgmHeader, false},
             Case{"P5 2 2 255abcd", kPgmHeader, false},
             Case{"P5 2147483648 1 255 abcd", kPgmHeader, false},
             Case{"P5 99999999999999999999999 1 255 abcd", kPgmHeader, false},
             Case{"P6 2 x 255 abcd", kPpmHeader, false},
             Case{"P3 2 2 0 1", kPpmHeader, false},
             Case{"P5 2 2 255 abc", kPgmShort, false},
             Case{"P5 2 2 256 abcdefg", kPgmShort, false},
             Case{"P6 2 2 255 abcdefghijk", kPpmShort, false},
             Case{"P5 2147483647 2147483647 65535 abcdefg", kPgmShort, false},
             Case{"P6 2147483647 2147483647 65535 abcdefg", kPpmShort, false},
             Case{"P2 2147483647 2147483647 65535 1 2 3", kPgmShort, false},
             Case{"P2 2 2 255 1 2 3", kPgmShort, false},
             Case{"P2 2 2 255 111 222", kPgmShort, true},
             Case{"P3 1 1 255 111 22", kPpmShort, true},
             Case{"P2 2 2 255 1 2 x 4", kPgmValues, true},
             Case{"P2 2 2 255 1 2 -3 4", kPgmValues, true},
             Case{"P2 2 2 255 1 2 3,4 5", kPgmValues, true},
             Case{"P2 2 1 255 1 4294967298", kPgmAbove, true},
             Case{"P2 2 1 255 1 99999999999999999999999", kPgmAbove, true},
             Case{"P2 2 2 15 1 2 16 4", kPgmAbove, true},
             Case{"P5 2 1 100 \x64\x65", kPgmAbove, true},
             Case{"P5 1 1 1023 \x04\x00"sv, kPgmAbove, true},
             Case{"P6 1 1 100 \x01\x02\x65", kPpmAbove, true},
         }) {
        SCOPED_TRACE(c.file);
        MemoryImage image;
        EXPECT_EQ(c.text, FailureOfReading(FromText(c.file), image));
        EXPECT_EQ(c.begun, image.begun);
    }
}

TEST(Pnm, AFileCutOffAnywhereFailsUnlessEveryValueIsThere) {
    for (const std::string_view text :
         {"P5 3 2 255\nabcdef", "P6 1 1 1000\n\x01\x02\x01\x02\x01\x02", "P2 2 2 255 1 2 3 4", "P3 1 1 255 1 2 3"}) {
        const Bytes file = FromText(text);
        for (size_t size = 0; size <= file.size(); ++size) {
            MemoryImage image;
            EXPECT_EQ(size == file.size(), FailureOfReading(std::span(file).first(size), image).empty())
                << text << size;
        }
    }
}

TEST(Pnm, PlainLinesHoldAtMostSeventyCharactersAndRowsStartOnNewOnes) {
    MemoryImage image(30, 2, 1, 16);
    for (auto& word : image.words) word = 65535;
    FleetingSource source(image);
    const Bytes file = WriteImageFile(IFF_PlainPGM, image.properties, source);
    std::string line;
    for (int i = 0; i < 11; ++i) line += "65535 ";
    line += "6553";  // 70 characters hold eleven values and blanks, and not a twelfth
    const std::string full = line.substr(0, 65) + "\n";
    const std::string last = line.substr(0, 8 * 6 - 1) + "\n";
    EXPECT_EQ("P2\n30 2\n65535\n" + full + full + last + full + full + last, std::string(file.begin(), file.end()));
}

TEST(Pnm, RawFilesAreWrittenByteForByte) {
    MemoryImage grey(2, 1, 1, 16);
    grey.words = {0x0102, 0xFFFE};
    FleetingSource greySource(grey);
    EXPECT_EQ(FromText("P5\n2 1\n65535\n\x01\x02\xFF\xFE"), WriteImageFile(IFF_PGM, grey.properties, greySource));
    MemoryImage colour(2, 1, 3, 8);
    colour.bytes = {1, 2, 3, 4, 5, 6};
    FleetingSource colourSource(colour);
    EXPECT_EQ(FromText("P6\n2 1\n255\n\x01\x03\x05\x02\x04\x06"),
              WriteImageFile(IFF_PPM, colour.properties, colourSource));
}

}  // namespace
}  // namespace orlix::test
