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
        {"P7\nWIDTH 2\nHEIGHT 1\nDEPTH 1\nMAXVAL 255\nTUPLTYPE GRAYSCALE\nENDHDR\n\x0A\x0B"sv, 2, 1, 1, 8, {10, 11}},
        {"P7\n# c\n\n MAXVAL\t1023 \r\nDEPTH 2\nHEIGHT 2\nWIDTH 1\nENDHDR\n\x03\xFF\xFF\xFF\x00\x01\x00\x00"sv,
         1,
         2,
         1,
         16,
         {1023, 1}},
        {"P7\nWIDTH 1\nHEIGHT 1\nDEPTH 4\nMAXVAL 9\nTUPLTYPE RGB_ALPHA\nENDHDR\n\1\2\3\4"sv, 1, 1, 3, 8, {1, 2, 3}},
        {"P7\nWIDTH 1\nHEIGHT 1\nDEPTH 3\nMAXVAL 9\nENDHDR\n\1\2\3\4"sv, 1, 1, 3, 8, {1, 2, 3}},
        {"P7\nWIDTH 2\nHEIGHT 1\nDEPTH 1\nMAXVAL 1\nTUPLTYPE BLACKANDWHITE\nENDHDR\n\0\1"sv, 2, 1, 1, 8, {0, 255}},
        {"P7\nWIDTH 1\nHEIGHT 1\nDEPTH 2\nMAXVAL 1\nTUPLTYPE BLACKANDWHITE_ALPHA\nENDHDR\n\1\0"sv, 1, 1, 1, 8, {255}},
        {"Pf 1 2 -1.0\n\x01\x00\xC0\x7F\x00\x00\x80\x3F"sv, 1, 2, 1, DT_Float, {0x3F800000, 0x7FC00001}},
        {"Pf\n2 1\n+1e0\n\x3F\x80\x00\x00\x7F\xA0\x00\x01 more"sv, 2, 1, 1, DT_Float, {0x3F800000, 0x7FA00001}},
        {"PF 1 1 1\n\x00\x00\x00\x01\x00\x00\x00\x02\x80\x00\x00\x00"sv, 1, 1, 3, DT_Float, {1, 2, 0x80000000}},
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
        {"unknown file format.",
         false,
         {"P1 1 1 1", "P4 1 1 1", "P7 332", "P5", "Pf", "Pg 1 1 1\nabcd", "P52 2 255 abcd"}},
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
        {"problems reading pam header",
         false,
         {"P7\n", "P7\nENDHDR\n", "P7\nWIDTH 1\nHEIGHT 1\nDEPTH 1\nMAXVAL 255\n",
          "P7\nWIDTH 1\nHEIGHT 1\nDEPTH 1\nMAXVAL 255\nENDHDR", "P7\nWIDTH 1\nHEIGHT 1\nDEPTH 1\nENDHDR\na",
          "P7\nWIDTH 1\nHEIGHT 1\nWIDTH 1\nDEPTH 1\nMAXVAL 255\nENDHDR\na",
          "P7\nWIDTH 1x\nHEIGHT 1\nDEPTH 1\nMAXVAL 255\nENDHDR\na", "P7\nWIDTH 2147483648\n", "P7\nWIDTH -1\n",
          "P7\nWIDTH 0\n", "P7\nSIZE 1\n", "P7\nWIDTH 1\nHEIGHT 1\nDEPTH 1\nMAXVAL 65536\nENDHDR\nabcd",
          "P7\nWIDTH 1\nHEIGHT 1\nDEPTH 1\nMAXVAL 2\nTUPLTYPE BLACKANDWHITE\nENDHDR\na"}},
        {"unknown type of pam tuples.",
         false,
         {"P7\nWIDTH 1\nHEIGHT 1\nDEPTH 4\nMAXVAL 255\nTUPLTYPE CMYK\nENDHDR\nabcd",
          "P7\nWIDTH 1\nHEIGHT 1\nDEPTH 1\nMAXVAL 255\nTUPLTYPE _ALPHA\nENDHDR\nabcd",
          "P7\nWIDTH 1\nHEIGHT 1\nDEPTH 3\nMAXVAL 255\nTUPLTYPE RGB_ALPHA\nENDHDR\nabcd",
          "P7\nWIDTH 1\nHEIGHT 1\nDEPTH 5\nMAXVAL 255\nENDHDR\nabcdefgh"}},
        {"the pam file is too short for its image.",
         false,
         {"P7\nWIDTH 1\nHEIGHT 1\nDEPTH 4\nMAXVAL 256\nENDHDR\nabcdefg",
          "P7\nWIDTH 2147483647\nHEIGHT 2147483647\nDEPTH 4\nMAXVAL 65535\nENDHDR\nabcdefg"}},
        {"a pam value is above the declared maximum.",
         true,
         {"P7\nWIDTH 2\nHEIGHT 1\nDEPTH 1\nMAXVAL 97\nENDHDR\nab",
          "P7\nWIDTH 1\nHEIGHT 1\nDEPTH 1\nMAXVAL 1\nTUPLTYPE BLACKANDWHITE\nENDHDR\n\2"}},
        {"problems reading pfm header",
         false,
         {"Pf ", "Pf 1 1 1", "Pf 1 1\nabcd", "Pf 1 1 0\nabcd", "Pf 1 1 -0.0\nabcd", "Pf 1 1 inf\nabcd",
          "Pf 1 1 nan\nabcd", "Pf 1 1 1e999\nabcd", "Pf 1 1 --1\nabcd", "Pf 1 1 1.0x\nabcd", "Pf 1 1x 1\nabcd",
          "Pf 1 0 1\nabcd", "PF 2147483648 1 1\nabcd"}},
        {"the pfm file is too short for its image.",
         false,
         {"Pf 1 1 1\nabc", "PF 1 1 1\nabcdefghijk", "PF 2147483647 2147483647 1\nabcd"}},
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
    EXPECT_EQ(FromText("P7\nWIDTH 2\nHEIGHT 1\nDEPTH 3\nMAXVAL 255\nTUPLTYPE RGB\nENDHDR\n\x01\x03\x05\x02\x04\x06"),
              Written(IFF_PAM, colour));
    MemoryImage floats(1, 2, 1, DT_Float);
    floats.dwords = {0x3F800000, 0x7FA00001};  // 1 and a signalling NaN
    EXPECT_EQ(FromText("Pf\n1 2\n-1.0\n\x01\x00\xA0\x7F\x00\x00\x80\x3F"sv), Written(IFF_PFM, floats));
}

TEST(Pnm, TheUnitOfFloatsIsATextAndComesBack) {
    for (const auto& [scale, kept] : {std::pair{"-2.50", "2.50"}, {"0.001", "0.001"}, {"-1.00", "1.0"}}) {
        MemoryImage image = Read(FromText("Pf 1 1 " + std::string(scale) + "\nabcd"));
        EXPECT_EQ(std::string(kept) == "1.0" ? 0u : 1u, image.properties.kept.texts.size());
        const Bytes file = Written(IFF_PFM, image);
        EXPECT_EQ(FromText("Pf\n1 1\n-" + std::string(kept) + "\n"), Part(file, 0, file.size() - 4));
    }
    MemoryImage image = Read(FromText("Pf 1 1 2\nabcd"));
    for (const OLECHAR* nonsense : {OLESTR("-2"), OLESTR("0"), OLESTR("nan"), OLESTR("2\n"), OLESTR("")}) {
        image.properties.kept.texts[0].text = nonsense;
        EXPECT_EQ(FromText("Pf\n1 1\n-1.0\nabcd").size(), Written(IFF_PFM, image).size());
    }
}

}  // namespace
}  // namespace orlix::test
