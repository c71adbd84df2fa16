// Formats of image files at the command line: what is read, what a file without a header is said to hold, and what an
// image carries from one format to the next.
#include "program_fixture.hpp"

#include <bit>

namespace tool {
namespace {

using namespace orlix;
using namespace std::string_literals;
using Formats = Program;
using testing::ElementsAre;

ComPtr<IImageVPAExPlus> Loaded(const std::string& name) {
    const auto image = CreateObject<IImageVPAExPlus>("Orlix.Image");
    const auto file = Cast<IImageFile>(image);
    Check(file->LoadFromFile(Text(name), 0), file);
    return image;
}

// The levels of the first band.
std::vector<double> Levels(const std::string& name) {
    const auto image = Loaded(name);
    LONG type = 0;
    Check(image->DataType(0, &type), image);
    std::vector<double> levels;
    const auto add = [&]<class Pixel>(Pixel) {
        for (const std::span<Pixel> row : Rows<Pixel>(image)) levels.insert(levels.end(), row.begin(), row.end());
    };
    type == DT_BYTE    ? add(uint8_t{})
    : type == DT_WORD  ? add(uint16_t{})
    : type == DT_DWORD ? add(uint32_t{})
                       : add(0.f);
    return levels;
}

TEST_F(Formats, FilesWithoutAHeaderAreReadAsTheCommandLineSays) {
    const struct {
        std::string layout, bytes;
        std::vector<double> levels;
    } cases[] = {
        {"2x2:u8", "\1\2\3\xff", {1, 2, 3, 255}},
        {"2x1:u8:3", "abc\1\2", {1, 2}},
        {"2x2:u8:1:3", "a\1\2p\3\4", {1, 2, 3, 4}},  // the padding behind the last row may be missing
        {"2x2:u8:0:-2", "\1\2\3\4", {3, 4, 1, 2}},
        {"2x1:u16le", "\1\2\xff\0"s, {0x201, 0xff}},
        {"2x1:u16be", "\1\2\xff\0"s, {0x102, 0xff00}},
        {"1x2:u32le:0:6", "\1\2\3\4pp\0\0\0\x80"s, {0x4030201, 0x80000000}},
        {"1x1:u32be", "\1\2\3\4", {0x1020304}},
        {"2x1:f32le", "\0\0\x80\x3f\0\0\0\xc0"s, {1, -2}},
        {"1x1:f32be", "\xbf\0\0\0"s, {-0.5}},
        // Mono12p: low bits first, so 0x321 and 0x654. Mono12Packed: high bytes outside, so 0x214 and 0x653; the rows
        // are one stream, or begin in new bytes.
        {"1x2:Mono12p", "\x21\x43\x65", {0x321, 0x654}},
        {"1x2:Mono12Packed:1:-2", "h\x21\x04\x65\x03", {0x653, 0x214}},
        {"2x1:Mono14", "\1\2\3\4", {0x201, 0x403}},
    };
    for (const auto& [layout, bytes, levels] : cases) {
        SCOPED_TRACE(layout);
        WriteFile(Path("dump"), bytes);
        const bool integer = layout.find("32") == std::string::npos;
        // Doublewords go through the levels of floats.
        const Words words = {"convert", "dump", integer ? "a.png" : "a.pfm", "--raw", layout};
        const Result result = Orlix(words + (integer ? Words() : Words("--float")));
        ASSERT_EQ(kDone, result.code) << result.err;
        std::vector<double> rounded;
        for (const double level : levels) rounded.push_back(integer ? level : static_cast<float>(level));
        EXPECT_EQ(rounded, Levels("a." + std::string(integer ? "png" : "pfm")));
    }
    WriteFile(Path("dump"), "h\1\2\3\4\5\6x");
    const Json colour = ImageOf("info dump --raw 2x2:BayerRG8:1");
    EXPECT_EQ(3, colour["bands"]);
    EXPECT_EQ(12, ImageOf("info dump --raw 1x1:Mono12p")["significantBits"]);
    EXPECT_EQ(kFailed, Orlix("info dump --raw 2x2:BayerRG8 --max-samples 11").code);
    for (int page = 0; page < 3; ++page) {
        const Words raw = {"--raw", "2x1:u8:1", "--page", std::to_string(page)};
        const Json info = ImageOf(Words("info dump") + raw);
        EXPECT_EQ(3, info["pages"]);
        EXPECT_EQ(page, info["page"]);
        EXPECT_EQ(kDone, Orlix(Words("convert - a.pgm") + raw, ReadFile(Path("dump"))).code);
        EXPECT_THAT(Levels("a.pgm"), ElementsAre(2 * page + 1, 2 * page + 2));
        EXPECT_EQ(2 * page + 1.5, Measured(Words("dump --threshold 1,9") + raw)["grey"]["mean"]);
    }
}

TEST_F(Formats, ThePagesOfATiffFileAreChosenByNumber) {
    const auto little = [](uint32_t value, int bytes) {
        std::string text;
        for (int i = 0; i < bytes; ++i) text += static_cast<char>(value >> 8 * i);
        return text;
    };
    // One pixel each, 5 and 9, behind the header.
    std::string file = "II*" + little(0, 1) + little(10, 4) + "\5\11";
    for (uint32_t page = 0; page < 2; ++page) {
        file += little(9, 2);
        for (const auto& [tag, value] : std::vector<std::pair<uint32_t, uint32_t>>{
                 {256, 1}, {257, 1}, {258, 8}, {259, 1}, {262, 1}, {273, 8 + page}, {277, 1}, {278, 1}, {279, 1}})
            file += little(tag, 2) + little(4, 2) + little(1, 4) + little(value, 4);
        file += little(page == 0 ? static_cast<uint32_t>(file.size()) + 4 : 0, 4);
    }
    WriteFile(Path("pages.tif"), file);
    for (int page = 0; page < 2; ++page) {
        const Words words = {"--page", std::to_string(page)};
        EXPECT_EQ(2, ImageOf(Words("info pages.tif") + words)["pages"]);
        EXPECT_EQ(kDone, Orlix(Words("convert pages.tif a.pgm") + words).code);
        EXPECT_THAT(Levels("a.pgm"), ElementsAre(page == 0 ? 5 : 9));
    }
    const Result result = Orlix("convert pages.tif a.pgm --page 2");
    EXPECT_EQ(kFailed, result.code);
    EXPECT_THAT(result.err, HasSubstr("IImageFile::LoadFromFile: the file has no such page."));
}

TEST_F(Formats, LevelsAreSpreadBetweenAllTypes) {
    WriteFile(Path("f"), "\0\0\x80\x3f\0\0\xc0\x7f\0\0\x80\x40\0\0\x40\x40\0\0\x80\xff"s);  // 1, NaN, 4, 3, -infinity
    const Words raw = {"--raw", "5x1:f32le"};
    for (const auto& [words, levels] : std::vector<std::pair<Words, std::vector<double>>>{
             {"convert f a.png --type 8 --range data", {0, 0, 255, 170, 0}},
             {"convert f a.png --type 16 --range 0,2", {32768, 0, 65535, 65535, 0}}}) {
        EXPECT_EQ(kDone, Orlix(words + raw).code);
        EXPECT_EQ(levels, Levels("a.png"));
    }
    EXPECT_EQ(kUsage, Orlix(Words("convert f b.png --type 8") + raw).code) << "floats have no full range";
    WriteFile(Path("f"), "\0\0\0\0\0\0\0\x80\xff\xff\xff\xff"s);
    EXPECT_EQ(kDone, Orlix("convert f a.png --type 8 --raw 3x1:u32le").code);
    EXPECT_THAT(Levels("a.png"), ElementsAre(0, 128, 255));
    EXPECT_EQ(kDone, Orlix("convert a.png a.pfm --float").code);
    EXPECT_THAT(Levels("a.pfm"), ElementsAre(0, 128, 255));
}

// A file with all that an image can carry: 12-bit samples of a calibrated camera.
void MakeCarrier(const std::string& name) {
    const auto image = CreateObject<IImageVPAExPlus>("Orlix.Image");
    Check(image->Create(2, 1, 1, DT_WORD, 0), image);
    const Rows<uint16_t> rows(image);
    rows[0][0] = 7, rows[0][1] = 4095;
    Check(image->put_Description(Text("grüner Stahl")), image);
    Check(image->SetCoords({1, -2, {0.5, 0, 0, 0.25}}), image);
    const auto file = Cast<IImageFile>(image);
    Check(file->PutMicronsPerPixel(0.123456789, 0.25), file);
    Check(file->put_SignificantBits(12), file);
    const auto entries = Cast<IImageEntries>(image);
    Check(entries->PutTextEntry(Text("Author"), Text("Müller")), entries);
    unsigned char bytes[] = {1, 0, 2};
    Check(entries->PutBinaryEntry(Text("camera"), 3, bytes), entries);
    const auto process = Cast<IImageProcess>(image);
    Check(process->PutLuminanceRange(16, 4000), process);
    const auto display = Cast<IDisplayProcess>(image);
    Check(display->PutDisplayRange(100, 200), display);
    Check(display->put_ColorTable(3, 0x0000ff), display);
    Check(file->SaveToFile(Text(name), IFF_PNG), file);
}

TEST_F(Formats, InfoSaysAllThatAnImageCarries) {
    MakeCarrier("a.png");
    const Json expected = Json::parse(R"({
        "file": "a.png", "width": 2, "height": 1, "bands": 1, "type": "16-bit", "page": 0, "pages": 1,
        "significantBits": 12, "coordinates": {"origin": [1.0, -2.0], "matrix": [0.5, 0.0, 0.0, 0.25]},
        "luminanceRange": {"lower": 16.0, "upper": 4000.0}, "bins": 256, "bandToProcess": 0,
        "displayRange": {"lower": 100.0, "upper": 200.0}, "bandToDisplay": 0, "colourTable": "own",
        "description": "grüner Stahl", "texts": {"Author": "Müller"}, "binaries": [{"keyword": "camera", "bytes": 3}],
        "warnings": []})");
    Json info = ImageOf("info a.png");
    const Json size = info["micronsPerPixel"];
    EXPECT_EQ(0.123456789, size["x"]);
    EXPECT_EQ(0.25, size["y"]);
    EXPECT_THAT(std::string(size["source"]), HasSubstr("PNG"));
    info.erase("micronsPerPixel");
    EXPECT_EQ(expected, info);
    const std::string text = Orlix("info a.png").out;
    for (const std::string part :
         {"2 x 1 pixels, 16-bit, 1 band, 12 significant bits\n", "0.123456789 x 0.25 µm per pixel (PNG ",
          "origin 1 -2, matrix 0.5 0 0 0.25\n", "16 to 4000\n", "100 to 200\n", "a table of its own\n",
          "grüner Stahl\n", "Author: Müller\n", "camera: 3 bytes\n"})
        EXPECT_THAT(text, HasSubstr(part));

    WritePgm("b.pgm", 2, 255, {1, 2});
    const Json plain = ImageOf("info b.pgm");
    for (const char* name : {"micronsPerPixel", "significantBits", "coordinates", "description"})
        EXPECT_TRUE(plain[name].is_null()) << name;
    EXPECT_THAT(Orlix("info b.pgm").out, HasSubstr("not calibrated\n"));
}

// From a PNG file through another format to PNG again. PNG and streams lose nothing; every other format keeps what it
// has a place for, and the program warns of the rest.
TEST_F(Formats, WhatAnImageCarriesSurvivesWhereTheFormatHasAPlaceForIt) {
    MakeCarrier("a.png");
    const Json all = ImageOf("info a.png");
    const struct {
        Words there, back;
        std::vector<const char*> kept, warnings;
        double scale;  // of the levels
    } cases[] = {
        {"save a.png x.orlix",
         "load x.orlix b.png",
         {"significantBits", "micronsPerPixel", "coordinates", "luminanceRange", "displayRange", "colourTable",
          "description", "texts", "binaries"},
         {},
         1},
        {"convert a.png x.png",
         "convert x.png b.png",
         {"significantBits", "micronsPerPixel", "coordinates", "luminanceRange", "displayRange", "colourTable",
          "description", "texts", "binaries"},
         {},
         1},
        {"convert a.png x.tif",
         "convert x.tif b.png",
         {"significantBits", "micronsPerPixel", "coordinates", "luminanceRange", "displayRange", "colourTable",
          "description", "texts", "binaries"},
         {},
         1},
        {"convert a.png x.pgm",
         "convert x.pgm b.png",
         {"significantBits"},
         {"calibration-lost", "coordinates-lost", "texts-lost"},
         1},
        {"convert a.png x.pam",
         "convert x.pam b.png",
         {"significantBits"},
         {"calibration-lost", "coordinates-lost", "texts-lost"},
         1},
        // Whole pixels per metre: 8100000.07 and 4000000.
        {"convert a.png x.bmp --type 8 --range 0,4095",
         "convert x.bmp b.png",
         {},
         {"coordinates-lost", "texts-lost"},
         255.0 / 4095},
    };
    for (const auto& [there, back, kept, warnings, scale] : cases) {
        SCOPED_TRACE(there[2]);
        const Json document = ImageOf(there);
        std::vector<std::string> codes;
        for (const Json& warning : document["warnings"]) codes.push_back(warning["code"]);
        EXPECT_THAT(codes, testing::ElementsAreArray(warnings));
        ASSERT_EQ(kDone, Orlix(back).code);
        EXPECT_THAT(Levels("b.png"), ElementsAre(std::floor(7 * scale + 0.5), std::floor(4095 * scale + 0.5)));
        const Json found = ImageOf("info b.png");
        for (const char* name : {"significantBits", "coordinates", "description", "texts", "binaries", "luminanceRange",
                                 "displayRange", "colourTable", "micronsPerPixel"}) {
            const bool same = std::string(name) == "micronsPerPixel" && !found[name].is_null()
                                  ? all[name]["x"] == found[name]["x"] && all[name]["y"] == found[name]["y"]
                                  : all[name] == found[name];
            EXPECT_EQ(std::count(kept.begin(), kept.end(), std::string_view(name)) != 0, same) << name;
        }
    }
    const Json size = ImageOf("info x.bmp")["micronsPerPixel"];
    EXPECT_EQ(1e6 / 8100000, size["x"]);
    EXPECT_EQ(0.25, size["y"]);
    EXPECT_THAT(std::string(size["source"]), HasSubstr("BMP"));
}

TEST_F(Formats, QualityDecidesTheSizeOfJpegFiles) {
    Make("a.png");
    for (const char* quality : {"20", "90", "99"})
        EXPECT_EQ(kDone, Orlix({"convert", "a.png", quality + ".jpg"s, "--quality", quality}).code);
    EXPECT_EQ(kDone, Orlix("convert a.png usual.jpg").code);
#ifndef _WIN32  // there the system writes them, and Wine's takes no notice of the quality
    EXPECT_LT(2 * std::filesystem::file_size("20.jpg"), std::filesystem::file_size("90.jpg"));
    EXPECT_LT(std::filesystem::file_size("90.jpg"), std::filesystem::file_size("99.jpg"));
#endif
    EXPECT_EQ(ReadFile("90.jpg"), ReadFile("usual.jpg"));
}

TEST_F(Formats, ConvertedImagesCarryAllThatTheyCan) {
    MakeCarrier("a.png");
    const Json all = ImageOf("info a.png");
    for (const Words& words : {Words("--type 8"), Words("--crop 0,0,0,0"), Words("--band 0")}) {
        SCOPED_TRACE(words[0]);
        ASSERT_EQ(kDone, Orlix(Words("convert a.png b.png") + words).code);
        const Json found = ImageOf("info b.png");
        for (const char* name : {"description", "texts", "binaries"}) EXPECT_EQ(all[name], found[name]) << name;
        EXPECT_EQ(all["micronsPerPixel"]["x"], found["micronsPerPixel"]["x"]);
        EXPECT_EQ(words[0] != "--crop", all["coordinates"] == found["coordinates"]);
    }
}

}  // namespace
}  // namespace tool
