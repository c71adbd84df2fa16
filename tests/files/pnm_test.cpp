#include "files/reading.hpp"

namespace orlix::test {
namespace {

using namespace std::string_view_literals;

TEST(Pnm, PlainAndRawFilesGiveTheirValues) {
    const struct {
        std::string_view file;
        int32_t width, height, bands;
        LONG bits;
        std::vector<uint32_t> levels;
    } cases[] = {
        {"P2\n2 2\n255\n1 2\n3 255\n", 2, 2, 1, 8, {1, 2, 3, 255}},
        {"P2 2 2 255 1 2 3 4", 2, 2, 1, 8, {1, 2, 3, 4}},
        {"P2#c\n#\n2#w\n#\n 2\t\v\f\r\n255#m\r1#v\n 2 3#\n04", 2, 2, 1, 8, {1, 2, 3, 4}},
        {"P2 1 1 4095 4095", 1, 1, 1, 16, {4095}},
        {"P2 1 1 256 7 P2 1 1 256 8", 1, 1, 1, 16, {7}},
        {"P3 1 2 255 1 2 3 4 5 6", 1, 2, 3, 8, {1, 4, 2, 5, 3, 6}},
        {"P5 2 2 255\n\x01\x02\n\xFF"sv, 2, 2, 1, 8, {1, 2, 10, 255}},
        {"P5 2 1 15 \x0F\x00 and more"sv, 2, 1, 1, 8, {15, 0}},
        {"P5\n# c\n2 1\n255# d\n\x07\x08"sv, 2, 1, 1, 8, {7, 8}},
        {"P5 2 1 65535\n\x12\x34\xFF\xFF"sv, 2, 1, 1, 16, {0x1234, 0xFFFF}},
        {"P6 2 1 255\n\x01\x02\x03\x04\x05\x06"sv, 2, 1, 3, 8, {1, 4, 2, 5, 3, 6}},
        {"P6 1 1 1023\n\x00\x01\x01\x00\x03\xFF"sv, 1, 1, 3, 16, {1, 256, 1023}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file);
        const MemoryImage image = Read(FromText(c.file));
        const FileProperties& p = image.properties;
        EXPECT_EQ(std::tuple(c.width, c.height, c.bands, c.bits), std::tuple(p.width, p.height, p.bands, p.dataType));
        EXPECT_EQ(c.levels, image.Levels());
    }
}

TEST(Pnm, WhatIsWrongWithAFileIsNamed) {
    const struct {
        std::string text;
        bool begun;
        std::vector<std::string_view> files;
    } cases[] = {
        {"unknown file format.", false, {"P1 1 1 1", "P4 1 1 1", "P7\n", "P5", "P52 2 255 abcd"}},
        {"problems reading pgm header",
         false,
         {"P5 ", "P5 2", "P5 2 2", "P5 2 2 255", "P5 2 2 255# no end of line", "P5 0 2 255 abcd", "P5 2 0 255 abcd",
          "P5 -2 2 255 abcd", "P5 2x2 255 abcd", "P5 2.0 2 255 abcd", "P5 2 2 0 abcd", "P5 2 2 65536 abcdefgh",
          "P5 2 2 255abcd", "P5 2147483648 1 255 abcd", "P5 99999999999999999999999 1 255 abcd"}},
        {"problems reading ppm header", false, {"P6 2 x 255 abcd", "P3 2 2 0 1"}},
        {"the pgm file is too short for its image.",
         false,
         {"P5 2 2 255 abc", "P5 2 2 256 abcdefg", "P5 2147483647 2147483647 65535 abcdefg",
          "P2 2147483647 2147483647 65535 1 2 3", "P2 2 2 255 1 2 3"}},
        {"the ppm file is too short for its image.",
         false,
         {"P6 2 2 255 abcdefghijk", "P6 2147483647 2147483647 65535 abcdefg"}},
        {"the pgm file is too short for its image.", true, {"P2 2 2 255 111 222"}},
        {"the ppm file is too short for its image.", true, {"P3 1 1 255 111 22"}},
        {"problems reading pgm values", true, {"P2 2 2 255 1 2 x 4", "P2 2 2 255 1 2 -3 4", "P2 2 2 255 1 2 3,4 5"}},
        {"a pgm value is above the declared maximum.",
         true,
         {"P2 2 1 255 1 4294967298", "P2 2 1 255 1 99999999999999999999999", "P2 2 2 15 1 2 16 4",
          "P5 2 1 100 \x64\x65", "P5 1 1 1023 \x04\x00"sv}},
        {"a ppm value is above the declared maximum.", true, {"P6 1 1 100 \x01\x02\x65"}},
    };
    for (const auto& [text, begun, files] : cases)
        for (const std::string_view file : files) {
            SCOPED_TRACE(file);
            ExpectRefused("IImageVPAEx::CreateFromFile: " + text, FromText(file), begun);
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
    MemoryImage image(30, 2, 1, 16, [](auto...) { return 65535u; });
    std::string line;
    for (int i = 0; i < 11; ++i) line += "65535 ";
    line += "6553";  // 70 characters hold eleven values and blanks, and not a twelfth
    const std::string full = line.substr(0, 65) + "\n", last = line.substr(0, 8 * 6 - 1) + "\n";
    EXPECT_EQ(FromText("P2\n30 2\n65535\n" + full + full + last + full + full + last), Written(IFF_PlainPGM, image));
}

TEST(Pnm, RawFilesAreWrittenByteForByte) {
    MemoryImage grey(2, 1, 1, 16), colour(2, 1, 3, 8);
    grey.words = {0x0102, 0xFFFE};
    colour.bytes = {1, 2, 3, 4, 5, 6};
    EXPECT_EQ(FromText("P5\n2 1\n65535\n\x01\x02\xFF\xFE"), Written(IFF_PGM, grey));
    EXPECT_EQ(FromText("P6\n2 1\n255\n\x01\x03\x05\x02\x04\x06"), Written(IFF_PPM, colour));
}

}  // namespace
}  // namespace orlix::test
