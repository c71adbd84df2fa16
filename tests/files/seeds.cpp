#include "files/corpus.hpp"

#include <algorithm>

#include "files/hand_made_jpeg.hpp"
#include "files/hand_made_tiff.hpp"

namespace orlix::test {
namespace {

void AddPng(std::vector<Seed>& seeds) {
    const auto add = [&](const std::string& name, const Bytes& bytes) { seeds.push_back({"png-" + name, bytes}); };
    Bytes palette;
    for (int i = 0; i < 256; ++i)
        palette = palette + Bytes{static_cast<uint8_t>(i), static_cast<uint8_t>(i / 2), static_cast<uint8_t>(255 - i)};
    for (const auto& [colourType, depth] : kPngKinds)
        for (const bool interlaced : {false, true}) {
            const uint32_t most = (1u << depth) - 1;
            const auto value = [=](uint32_t x, uint32_t y, uint32_t s) {
                return (37 * x + 11 * y * y + 91 * s) & most;
            };
            const Bytes chunk = PngChunk("PLTE", Part(palette, 0, 3u << std::min(depth, 8u)));
            add(std::to_string(colourType) + "-" + std::to_string(depth) + (interlaced ? "-interlaced" : ""),
                MakePng({9, 6, depth, colourType, interlaced, value}, colourType == 3 ? chunk : Bytes{}));
        }
    const auto text = [](std::string_view type, const Bytes& rest) {
        return PngChunk(type, FromText("Title") + Bytes{0} + rest);
    };
    add("chunks", PngSignature() + PngHeader(3, 1, 8, 0) + PngChunk("pHYs", Big32(1000) + Big32(2000) + Bytes{1}) +
                      PngChunk("gAMA", Big32(45455)) + text("tEXt", FromText("text")) +
                      text("zTXt", Bytes{0} + PackedStream(Bytes(600, 'x'))) +
                      text("iTXt", Bytes{0, 0, 0, 0, 0xC3, 0xA9}) +
                      text("iTXt", Bytes{1, 0, 'e', 'n', 0, 't', 0} + StoredStream({0xE2, 0x82, 0xAC})) +
                      PngChunk("IDAT", {0x78}) + PngChunk("IDAT", {}) +
                      PngChunk("IDAT", Part(StoredStream({0, 1, 2, 3}, 2), 1)) + PngEnd() + FromText("behind"));
    const auto ours = [](std::string_view type, const Bytes& rest) {
        return PngChunk(type, FromText("Orlix") + Bytes{1} + rest);
    };
    const Bytes one = {0x3F, 0xF0, 0, 0, 0, 0, 0, 0}, none(8);
    const Bytes range = none + Bytes{0x40, 0x6F, 0xE0, 0, 0, 0, 0, 0};  // 0 and 255
    add("private", PngSignature() + PngHeader(3, 1, 8, 0) + PngChunk("sBIT", {4}) +
                       PngChunk("pHYs", Big32(1000000) + Big32(1000000) + Bytes{1}) +
                       ours("caLB", one + one + none + none + one + none + none + one + Bytes{4}) +
                       ours("seTT", range + Big32(0) + Big32(256) + range + Big32(0xFFFFFFFFu) + Bytes(28)) +
                       ours("biNe", Big32(1) + Bytes{0, 'k', 1, 2, 3}) +
                       ours("teXe", Big32(1) + Bytes{0, 'k', 0xD8, 0x34}) + PngChunk("heRe", {1, 2}) +
                       PngChunk("IDAT", StoredStream({0, 0x11, 0x22, 0xFF})) + PngEnd());
    // Some bytes of the file for many pixels, in one band and in three.
    for (const uint8_t blue : {uint8_t{9}, uint8_t{10}})
        add(blue == 9 ? "wide-grey" : "wide-colour",
            PngFile(PngHeader(4001, 30, 1, 3), PackedStream(Bytes(30 * 502)), PngChunk("PLTE", {9, 9, blue, 1, 2, 3})));
    add("flat", PngFile(PngHeader(80, 80, 8, 0), PackedStream(Bytes(80 * 81))));
}

void AddBmp(std::vector<Seed>& seeds) {
    for (const auto& [headerSize, height] : {std::pair{12u, 3}, {40u, 3}, {40u, -3}, {108u, 3}, {124u, -3}}) {
        const int entry = headerSize == 12 ? 3 : 4;
        BmpFile file{.headerSize = headerSize, .width = 5, .height = height};
        file.perMetreX = file.perMetreY = 2000000;
        file.coloursUsed = 16;
        file.palette = Part(GreyRampPalette(entry), 0, static_cast<size_t>(16 * entry));
        for (uint32_t i = 0; i < 24; ++i) file.rows.push_back(static_cast<uint8_t>(i % 16));
        const std::string name = "bmp-" + std::to_string(headerSize) + (height < 0 ? "-down" : "");
        seeds.push_back({name, MakeBmp(file)});
        file.palette[1] = 99;
        seeds.push_back({name + "-colour", MakeBmp(file)});
        for (const uint32_t bits : {1u, 4u, 24u, 32u}) {
            if (headerSize == 12 && bits == 32) continue;
            file.bits = bits;
            file.rows.resize(60);
            seeds.push_back({name + "-" + std::to_string(bits), MakeBmp(file)});
        }
    }
    BmpFile masked{
        .width = 2, .bits = 16, .compression = 3, .masks = Little32(0xF800) + Little32(0x7E0) + Little32(0x1F)};
    masked.rows = {1, 2, 3, 4};
    seeds.push_back({"bmp-565", MakeBmp(masked)});
    masked.bits = 32;
    masked.compression = 6;
    masked.masks = masked.masks + Little32(0xFF000000);
    masked.rows.resize(8);
    seeds.push_back({"bmp-alpha", MakeBmp(masked)});
    BmpFile runs{.width = 6, .height = 3, .compression = 1, .palette = GreyRampPalette()};
    runs.rows = {3, 7, 0, 3, 1, 2, 3, 0, 0, 0, 1, 9, 0, 2, 2, 1, 1, 8, 0, 1};
    seeds.push_back({"bmp-runs-8", MakeBmp(runs)});
    runs.bits = 4;
    runs.rows = {3, 7, 0, 3, 0x12, 0x30, 0, 0, 1, 9, 0, 2, 2, 1, 1, 8, 0, 1};
    runs.compression = 2;
    runs.palette.resize(64);
    seeds.push_back({"bmp-runs-4", MakeBmp(runs)});
}

void AddPnm(std::vector<Seed>& seeds) {
    using namespace std::string_view_literals;
    int number = 0;
    for (const std::string_view text :
         {"P2\n# c\n3 2\n255\n1 2 3\n4 5 255\n"sv, "P2 2 1 65535 1 65535"sv, "P3 1 2 15 1 2 3 4 5 15"sv,
          "P5 3 2 255\nabcdef"sv, "P5#c\n2 1\n1023\n\x03\xFF\x00\x01"sv, "P6 2 1 255\nabcdef"sv,
          "P6 1 1 65535\n\x01\x02\x03\x04\x05\x06"sv, "P2 1 1 255 5 P2 1 1 255 6"sv,
          "P7\nWIDTH 2\nHEIGHT 1\nDEPTH 4\nMAXVAL 255\nTUPLTYPE RGB_ALPHA\nENDHDR\nabcdefgh"sv,
          "P7\n# c\nWIDTH 3\nHEIGHT 1\nDEPTH 1\nMAXVAL 1\nTUPLTYPE BLACKANDWHITE\nENDHDR\n\0\1\1"sv,
          "P7\nMAXVAL 4095\nDEPTH 2\nWIDTH 1\nHEIGHT 2\nENDHDR\n\1\2\3\4\1\2\3\4"sv, "Pf 2 1 -2.5\nabcdefgh"sv,
          "PF\n1 1\n1e-3\nabcdefghijkl"sv})
        seeds.push_back({"pnm-" + std::to_string(number++), FromText(text)});
}

void AddTiff(std::vector<Seed>& seeds) {
    const auto value = [](uint32_t x, uint32_t y, uint32_t s) { return 37 * x + 11 * y * y + 91 * s; };
    const auto add = [&](const std::string& name, TiffPage page, bool bigEndian = false, bool large = false) {
        page.value = value;
        seeds.push_back({"tiff-" + name, MakeTiff(TiffFile{{bigEndian}, large, {page}})});
    };
    for (const uint32_t bits : {1u, 4u, 8u, 12u, 16u, 32u})
        add(std::to_string(bits), {.width = 9, .height = 6, .bits = bits}, bits == 16, bits == 12);
    add("lzw-predictor", {.width = 9, .height = 6, .bits = 16, .compression = kTiffLzw, .predictor = 2});
    add("deflate-float", {.width = 9,
                          .height = 6,
                          .bits = 32,
                          .format = 3,
                          .compression = kTiffDeflate,
                          .predictor = 3,
                          .rowsPerStrip = 2});
    add("packbits-colour", {.width = 9, .height = 6, .samples = 3, .photometric = 2, .compression = kTiffPackBits});
    add("planar-white", {.width = 9, .height = 6, .samples = 2, .photometric = 0, .planar = true}, true);
    add("tiles", {.width = 20, .height = 18, .compression = kTiffDeflate, .tileWidth = 16, .tileHeight = 16});
    Bytes colours;
    for (uint32_t i = 0; i < 48; ++i) colours = colours + Little16(i * 1300);
    add("palette", {.width = 9, .height = 6, .bits = 4, .photometric = 3, .more = {{320, 3, 48, colours}}});
    add("texts", {.more = {TiffAscii(270, "ImageJ=1\nunit=micron\n"),
                           TiffAscii(315, "me"),
                           TiffShort(296, 1),
                           {282, 5, 1, LittleRational(4, 1)},
                           {283, 5, 1, LittleRational(8, 3)}}});
    add("ome", {.more = {TiffAscii(270, "<OME><Pixels PhysicalSizeX='1' PhysicalSizeXUnit='nm' PhysicalSizeY='2'>")}});
    seeds.push_back({"tiff-pages", MakeTiff(TiffFile{.pages = {{}, {.width = 2}}})});
}

void AddJpeg(std::vector<Seed>& seeds) {
    const auto level = [](uint32_t i, uint32_t column, uint32_t row) {
        return static_cast<int>((40 * column + 90 * row + 120 * i) % 256);
    };
    int number = 0;
    for (const auto& [components, frame] : {std::pair{1u, 0xC0u}, {3u, 0xC0u}, {1u, 0xC2u}, {3u, 0xC2u}})
        seeds.push_back({"jpeg-" + std::to_string(number++),
                         MakeJpeg({.width = 21,
                                   .height = 13,
                                   .components = components,
                                   .frame = frame,
                                   .segments = JfifSegment(2, 20000, 10000) + JpegSegment(0xFE, FromText("text")),
                                   .level = level})});
    const Bytes exif = FromText("II") + Little16(42) + Little32(8) + Little16(1) + Little16(282) + Little16(5) +
                       Little32(1) + Little32(26) + Little32(0) + LittleRational(50, 2);
    seeds.push_back({"jpeg-exif", MakeJpeg({.segments = ExifSegment(exif)})});
}

}  // namespace

std::vector<Seed> MakeSeeds() {
    std::vector<Seed> seeds;
    AddPng(seeds);
    AddBmp(seeds);
    AddPnm(seeds);
    AddTiff(seeds);
    AddJpeg(seeds);
    return seeds;
}

}  // namespace orlix::test
