#include "files/jpeg.hpp"

#include <cstdlib>

#include "files/hand_made_jpeg.hpp"
#include "files/hand_made_tiff.hpp"
#include "files/reading.hpp"

namespace orlix::test {
namespace {

constexpr auto kJpegHeaderText = "IImageVPAEx::CreateFromJpeg: problems reading jpeg header";
constexpr auto kJpegKindText = "IImageVPAEx::CreateFromJpeg: the kind of compression is not supported.";

int JpegSteps(uint32_t component, uint32_t column, uint32_t row) {
    return component == 0 ? static_cast<int>(40 * column + 90 * row) : 128;
}

TEST(Jpeg, GreyBaselineAndProgressiveFilesGiveThePixels) {
    // Blocks of one level are exact with every decoder. Three components without colour are one band.
    for (const uint32_t frame : {0xC0u, 0xC1u, 0xC2u})
        for (const uint32_t components : {1u, 3u}) {
            SCOPED_TRACE(testing::Message() << frame << ' ' << components);
            const JpegPicture picture{
                .width = 21, .height = 13, .components = components, .frame = frame, .level = JpegSteps};
            const MemoryImage image = Read(MakeJpeg(picture));
            ASSERT_EQ(1, image.properties.bands);
            std::vector<uint32_t> levels;
            for (uint32_t y = 0; y < 13; ++y)
                for (uint32_t x = 0; x < 21; ++x) levels.push_back(static_cast<uint32_t>(JpegSteps(0, x / 8, y / 8)));
            EXPECT_EQ(levels, image.Levels());
        }
}

TEST(Jpeg, ColourBecomesThreeBands) {
    // R = Y + 1.402 (Cr - 128), G = Y - 0.344136 (Cb - 128) - 0.714136 (Cr - 128), B = Y + 1.772 (Cb - 128)
    static constexpr int kComponents[] = {100, 118, 148};
    const JpegPicture picture{.components = 3, .level = [](uint32_t i, uint32_t, uint32_t) { return kComponents[i]; }};
    const MemoryImage image = Read(MakeJpeg(picture));
    ASSERT_EQ(3, image.properties.bands);
    for (const auto& [band, level] : {std::pair{0u, 128}, {1u, 89}, {2u, 82}})
        EXPECT_NEAR(level, image.bytes[64 * band], 1) << band;
}

TEST(Jpeg, TheSizeOfAPixelComesFromExifOrJfif) {
    const Bytes jfif = JfifSegment(2, 20000, 10000);
    // A little-endian directory of three entries; 25 to the inch.
    const Bytes exif = ExifSegment(FromText("II") + Little16(42) + Little32(8) + Little16(3) +  //
                                   Little16(282) + Little16(5) + Little32(1) + Little32(50) +   //
                                   Little16(283) + Little16(5) + Little32(1) + Little32(50) +   //
                                   Little16(296) + Little16(3) + Little32(1) + Little32(2) +    //
                                   Little32(0) + LittleRational(50, 2));
    const struct {
        const char* name;
        Bytes segments;
        double x, y;
        const char* from;
    } cases[] = {{"none", {}, 0, 0, ""},
                 {"centimetres", jfif, 0.5, 1, "JFIF density"},
                 {"inches", JfifSegment(1, 254, 127), 100, 200, "JFIF density"},
                 {"the shape only", JfifSegment(0, 1, 2), 0, 0, ""},
                 {"zero", JfifSegment(1, 0, 127), 0, 0, ""},
                 {"Exif", exif, 1016, 1016, "Exif resolution"},
                 {"both", jfif + exif, 1016, 1016, "Exif resolution"},
                 {"damaged Exif", jfif + ExifSegment(FromText("II")), 0.5, 1, "JFIF density"}};
    for (const auto& [name, segments, x, y, from] : cases) {
        const ImageProperties kept = Read(MakeJpeg({.segments = segments})).properties.kept;
        EXPECT_DOUBLE_EQ(x, kept.micronsX) << name;
        EXPECT_DOUBLE_EQ(y, kept.micronsY) << name;
        EXPECT_STREQ(from, kept.micronsFrom) << name;
    }
    const Bytes comment = JpegSegment(0xFE, FromText("by hand") + Bytes{0});
    EXPECT_EQ(OLESTR("by hand"), Read(MakeJpeg({.segments = comment})).properties.kept.description);
}

TEST(Jpeg, WhatIsWrongWithAFileIsNamed) {
    const struct {
        const char* name;
        JpegPicture picture;
        const char* text;
    } cases[] = {{"arithmetic", {.frame = 0xC9}, kJpegKindText},
                 {"lossless", {.frame = 0xC3}, kJpegKindText},
                 {"12 bits", {.frame = 0xC1, .precision = 12}, kJpegKindText},
                 {"CMYK", {.components = 4}, "IImageVPAEx::CreateFromJpeg: images in CMYK are not supported."},
                 {"two components", {.components = 2}, kJpegHeaderText},
                 {"no components", {.components = 0}, kJpegHeaderText},
                 {"no width", {.width = 0}, kJpegHeaderText},
                 {"no height", {.height = 0}, kJpegHeaderText},
                 {"no segment", {.segments = {0xFF, 0xE5, 0, 1}}, kJpegHeaderText},
                 {"no marker", {.segments = {0xFF, 0xE5, 0, 2, 0x12}}, kJpegHeaderText}};
    for (const auto& [name, picture, text] : cases) {
        SCOPED_TRACE(name);
        ExpectRefused(text, MakeJpeg(picture));
    }
    Bytes file = MakeJpeg({.width = 8, .height = 8});
    const Bytes size = {0xFF, 0xC0, 0, 11, 8, 0, 8, 0, 8};
    const auto at = std::search(file.begin(), file.end(), size.begin(), size.end());
    ASSERT_NE(file.end(), at);
    std::fill_n(at + 5, 4, uint8_t{0xFF});
    ExpectRefused("IImageVPAEx::CreateFromJpeg: the file is too short for its image.", file, false, SampleLimit(0));
    ExpectRefused("IImageVPAEx::CreateFromFile: the image has 64 samples, more than the limit of 63.", MakeJpeg({}),
                  false, SampleLimit(63));
}

// Half a picture is not measured.
TEST(Jpeg, AFileCutOffIsRefused) {
    const Bytes file = MakeJpeg({.width = 400, .height = 300, .level = [](uint32_t, uint32_t column, uint32_t row) {
                                     return static_cast<int>((column * 31 + row * 17) % 256);
                                 }});
    for (size_t size = 3; size < file.size(); ++size) {
        MemoryImage image;
        EXPECT_NE("", FailureOfReading(std::span(file).first(size), image)) << size;
    }
}

TEST(Jpeg, AHundredScansAreTheMost) {
    const Bytes file = MakeJpeg({.width = 8, .height = 8}), marker = {0xFF, 0xDA};
    const auto scan = std::search(file.begin(), file.end(), marker.begin(), marker.end()), end = file.end() - 2;
    const auto withScans = [&](int scans) {
        Bytes bytes(file.begin(), scan);
        for (int i = 0; i < scans; ++i) bytes.insert(bytes.end(), scan, end);
        bytes.insert(bytes.end(), end, file.end());
        return bytes;
    };
    EXPECT_EQ(Read(file).Levels(), Read(withScans(100)).Levels());
    ExpectRefused("IImageVPAEx::CreateFromJpeg: problems reading jpeg pixels", withScans(101));
}

TEST(Jpeg, WritingLosesLittleOfThePixelsAndNothingElse) {
    for (const int32_t bands : {1, 3})
        for (const auto& [quality, tolerance] : {std::pair{30, 20}, {90, 6}, {100, 3}}) {
            SCOPED_TRACE(testing::Message() << bands << ' ' << quality);
            MemoryImage image(67, 45, bands, DT_BYTE,
                              [](int32_t band, int32_t x, int32_t y) { return 3 * x + y + (band == 1 ? 10 : 0); });
            ImageProperties& kept = image.properties.kept;
            kept.PutMicrons(0.0645, 1.0 / 3, "");
            kept.Keep({WideString(kDescriptionKeyword), OLESTR("caf\u00E9")});
            kept.Keep({OLESTR("Author"), OLESTR("me")});
            kept.binaries.push_back({OLESTR("large"), Bytes(200000, 0xFF)});
            WriteOptions options;
            options.quality = quality;
            FleetingSource source(image);
            const Bytes file = WriteImageFile(IFF_JPEG, image.properties, source, options);
            const MemoryImage back = Read(file);
            ASSERT_EQ(bands, back.properties.bands);
            int worst = 0;
            for (size_t i = 0; i < image.bytes.size(); ++i)
                worst = std::max(worst, std::abs(int{image.bytes[i]} - int{back.bytes[i]}));
            EXPECT_LE(worst, tolerance);
            const ImageProperties& read = back.properties.kept;
            EXPECT_EQ(kept.micronsX, read.micronsX);
            EXPECT_EQ(kept.micronsY, read.micronsY);
            EXPECT_EQ(kept.description, read.description);
            ASSERT_EQ(1u, read.texts.size());
            ASSERT_EQ(1u, read.binaries.size());
            EXPECT_EQ(kept.binaries[0].bytes, read.binaries[0].bytes);
        }
}

TEST(Jpeg, ASizeThatAllProgramsReadIsWritten) {
    MemoryImage image(8, 8, 1, DT_BYTE);
    image.properties.kept.PutMicrons(0.5, 0.0645, "");
    const Bytes file = Written(IFF_JPEG, image);
    // 20000 to the centimetre is a whole number of 16 bits; 155038.76 is not, so the header tells nothing.
    const Bytes start = Bytes{0xFF, 0xD8} + JfifSegment(0, 1, 1) + Bytes{0xFF, 0xE1};
    EXPECT_EQ(start, Part(file, 0, start.size()));
    EXPECT_NE(std::string::npos, std::string(file.begin(), file.end()).find("Exif"));
    image.properties.kept.PutMicrons(0.5, 1, "");
    const Bytes both = Bytes{0xFF, 0xD8} + JfifSegment(2, 20000, 10000);
    EXPECT_EQ(both, Part(Written(IFF_JPEG, image), 0, both.size()));
}

TEST(Jpeg, LargerImagesThanTheFormatHoldsAreRefused) {
    MemoryImage image(65501, 1, 1, DT_BYTE);
    EXPECT_THROW(Written(IFF_JPEG, image), Failure);
    MemoryImage most(65500, 1, 1, DT_BYTE);
    EXPECT_EQ(65500, Read(Written(IFF_JPEG, most)).properties.width);
}

}  // namespace
}  // namespace orlix::test
