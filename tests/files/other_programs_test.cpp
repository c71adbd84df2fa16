// Files that the library writes, in the eyes of libpng's, netpbm's and ImageMagick's programs, and files that these
// write, in the eyes of the library. The programs are Debian's, so natively only.
#ifndef _WIN32
#include "files/other_programs.hpp"

#include <cmath>
#include <cstring>

#include "files/file_formats.hpp"
#include "files/reading.hpp"

namespace orlix::test {
namespace {

// Samples pixel by pixel in red, green and blue, 16 bits each, as ImageMagick sees them. `source` names the format:
// "png:-". Samples of fewer bits are scaled to 65535.
std::optional<std::vector<uint32_t>> SeenByImageMagick(const std::string& source, const Bytes& file) {
    const auto bytes = OutputOf(kConvert + source + " -alpha off -depth 16 -endian MSB rgb:-", file);
    if (!bytes) return std::nullopt;
    std::vector<uint32_t> samples;
    for (size_t i = 0; i + 1 < bytes->size(); i += 2)
        samples.push_back(static_cast<uint32_t>((*bytes)[i] << 8 | (*bytes)[i + 1]));
    return samples;
}

// The image in the same form.
std::vector<uint32_t> Interleaved(const MemoryImage& image) {
    const std::vector<uint32_t> levels = image.Levels();
    const size_t pixels = levels.size() / static_cast<size_t>(image.properties.bands);
    std::vector<uint32_t> samples;
    for (size_t i = 0; i < pixels; ++i)
        for (size_t channel = 0; channel < 3; ++channel) {
            uint32_t level = levels[image.properties.bands == 3 ? channel * pixels + i : i];
            if (image.properties.dataType == DT_BYTE) level *= 257;
            if (image.properties.dataType == DT_Float) {
                float value = 0;
                std::memcpy(&value, &level, sizeof value);
                level = static_cast<uint32_t>(std::lround(value * 65535.0));
            }
            samples.push_back(level);
        }
    return samples;
}

MemoryImage NoiseImage(int32_t width, int32_t height, int32_t bands, LONG type) {
    Noise noise(3);
    return MemoryImage(width, height, bands, type, [&](int32_t, int32_t, int32_t) {
        if (type != DT_Float) return noise();
        const float value = static_cast<float>(noise.below(65536)) / 65535.f;  // others round floats to 16 bits
        uint32_t bits = 0;
        std::memcpy(&bits, &value, sizeof bits);
        return bits;
    });
}

// All that a file can keep.
void Furnish(FileProperties& properties) {
    properties.kept.PutMicrons(0.123456789, 0.25, "");
    properties.kept.description = OLESTR("plain text");
    properties.kept.hasDescription = true;
    properties.kept.texts = {{OLESTR("Latin"), OLESTR("\u00e9t\u00e9")},
                             {OLESTR("Other"), OLESTR("\u9762\u0416")},
                             {OLESTR("Long"), WideString(5000, u'x')}};
    properties.kept.binaries = {{OLESTR("bytes"), Bytes(300, 7)}, {OLESTR("none"), {}}};
    properties.coordinates = TCoordinateMap{1, 2, {3, 4, 5, 6}};
}

// ImageMagick and netpbm by the name of a format.
struct Reader {
    ImageFileFormat code;
    const char* imageMagick;
    const char* netpbm;  // makes PAM of it; null for PFM, of which it keeps 8 bits
};
constexpr Reader kReaders[] = {
    {IFF_PNG, "png:-", "pngtopam"}, {IFF_BMP, "bmp:-", "bmptopnm"},      {IFF_PGM, "pgm:-", "pamtopam"},
    {IFF_PPM, "ppm:-", "pamtopam"}, {IFF_PlainPGM, "pgm:-", "pamtopam"}, {IFF_PlainPPM, "ppm:-", "pamtopam"},
    {IFF_PAM, "pam:-", "pamtopam"}, {IFF_PFM, "pfm:-", nullptr},
};

TEST(OtherPrograms, SeeThePixelsThatTheLibraryWrites) {
    if (!IsInstalled("identify")) GTEST_SKIP() << "ImageMagick is not installed";
    if (!IsInstalled("pngtopam")) GTEST_SKIP() << "netpbm is not installed";
    for (const FileFormat& format : FileFormats())
        for (const Reader& reader : kReaders)
            for (const int32_t bands : format.bands)
                for (const LONG type : format.types)
                    for (const auto& [width, height] : {std::pair{1, 1}, {13, 7}, {64, 33}}) {
                        if (reader.code != format.code) continue;
                        SCOPED_TRACE(testing::Message() << format.name << ' ' << bands << ' ' << type << ' ' << width);
                        MemoryImage image = NoiseImage(width, height, bands, type);
                        Furnish(image.properties);
                        const Bytes file = Written(format.code, image);
                        const auto seen = SeenByImageMagick(reader.imageMagick, file);
                        ASSERT_TRUE(seen);
                        EXPECT_EQ(Interleaved(image), *seen);
                        if (!reader.netpbm) continue;
                        const auto pam = OutputOf(reader.netpbm, file);
                        ASSERT_TRUE(pam);
                        EXPECT_EQ(Interleaved(image), Interleaved(Read(*pam)));
                    }
}

TEST(OtherPrograms, FindNothingWrongWithPngFilesOfAnyContent) {
    if (!IsInstalled("pngcheck")) GTEST_SKIP() << "pngcheck is not installed";
    if (!IsInstalled("identify")) GTEST_SKIP() << "ImageMagick is not installed";
    for (const int32_t bands : {1, 3})
        for (const int32_t bits : {0, 1, 7, 10, 12, 15}) {
            SCOPED_TRACE(testing::Message() << bands << ' ' << bits);
            const LONG type = bits == 0 || bits > 8 ? DT_WORD : DT_BYTE;
            const uint32_t most = bits == 0 ? 65535 : (1u << bits) - 1;
            Noise noise(8);
            MemoryImage image(40, 30, bands, type, [&](int32_t, int32_t, int32_t) { return noise.below(most + 1); });
            Furnish(image.properties);
            image.properties.kept.significantBits = bits;
            const Bytes file = Written(IFF_PNG, image);
            {
                const InputFile named(file);
                EXPECT_EQ(0, std::system(("pngcheck -q '" + named.path() + "' >/dev/null").c_str()));
            }
            // Others see samples of fewer bits scaled to all levels of the type: their bits are repeated.
            std::vector<uint32_t> wanted = Interleaved(image);
            for (uint32_t& level : wanted) {
                const uint32_t sample = type == DT_WORD ? level : level / 257;
                const int given = bits == 0 ? static_cast<int>(type) : bits;
                level = 0;
                for (int i = 0; i < type; ++i) level = level << 1 | (sample >> (given - 1 - i % given) & 1);
                if (type == DT_BYTE) level *= 257;
            }
            EXPECT_EQ(wanted, SeenByImageMagick("png:-", file));
            EXPECT_TRUE(Read(file).SamePixels(image));
            EXPECT_EQ(bits, Read(file).properties.kept.significantBits);

            const auto texts = OutputOf("identify -format '%[Latin]|%[Long]|%[Description]' png:-", file);
            ASSERT_TRUE(texts);
            EXPECT_EQ(FromText("\xe9t\xe9|" + std::string(5000, 'x') + "|plain text"), *texts);
        }
}

// The library sees in a file of others what ImageMagick sees in it.
void ExpectSeenAlike(const std::string& command, const std::string& format, const Bytes& input) {
    SCOPED_TRACE(command);
    const auto file = OutputOf(command, input);
    ASSERT_TRUE(file && !file->empty());
    const auto seen = SeenByImageMagick(format, *file);
    ASSERT_TRUE(seen);
    EXPECT_EQ(*seen, Interleaved(Read(*file)));
}

TEST(OtherPrograms, WriteFilesThatTheLibraryReads) {
    if (!IsInstalled("identify")) GTEST_SKIP() << "ImageMagick is not installed";
    MemoryImage picture = NoiseImage(11, 9, 3, DT_WORD);
    const Bytes ppm = Written(IFF_PPM, picture);
    const auto make = [](const std::string& options) { return kConvert + "ppm:- " + options; };
    for (const std::string interlaced : {"", "-interlace PNG "}) {
        for (const auto& [colourType, depths] :
             {std::pair{0, std::vector{1, 2, 4, 8, 16}}, {2, {8, 16}}, {3, {1, 2, 4, 8}}, {4, {8, 16}}, {6, {8, 16}}})
            for (const int depth : depths)
                ExpectSeenAlike(
                    make(interlaced + (colourType == 3 ? "-colors " + std::to_string(1 << depth) + " " : "") +
                         (colourType == 0 || colourType == 4 ? "-colorspace gray " : "") +
                         (colourType == 4 || colourType == 6 ? "-alpha set -channel A -evaluate set 60% " : "") +
                         "-depth " + std::to_string(depth) + " -define png:color-type=" + std::to_string(colourType) +
                         " -define png:bit-depth=" + std::to_string(depth) + " png:-"),
                    "png:-", ppm);
    }
    for (const auto& [options, formats] : {std::pair{"", std::vector{"bmp:-", "bmp2:-", "pam:-", "pfm:-"}},
                                           {"-depth 8 ", {"pam:-", "ppm:-"}},
                                           {"-colorspace gray ", {"bmp3:-", "pam:-", "pfm:-", "pgm:-"}},
                                           {"-compress none ", {"pgm:-", "ppm:-"}},
                                           {"-colors 16 ", {"bmp3:-"}},
                                           {"-type bilevel ", {"bmp3:-", "pam:-"}}})
        for (const char* format : formats) ExpectSeenAlike(make(options + std::string(format)), format, ppm);
    // Its run lengths cover the padding of rows, too.
    ExpectSeenAlike(make("-colors 200 -compress RLE bmp3:-"), "bmp3:-", ppm);
}

TEST(OtherPrograms, WriteTextsAndResolutionsThatTheLibraryReads) {
    if (!IsInstalled("pnmtopng")) GTEST_SKIP() << "netpbm is not installed";
    if (!IsInstalled("identify")) GTEST_SKIP() << "ImageMagick is not installed";
    MemoryImage picture = NoiseImage(3, 2, 1, DT_BYTE);
    const Bytes pgm = Written(IFF_PGM, picture);
    const InputFile texts(FromText("Notes\tx  y\nOther\ta longer text\n"), ".txt");
    const std::string x(3000, 'x');
    const struct {
        std::string command, chunk, keyword;
        WideString text;
    } cases[] = {{"pnmtopng -text='" + texts.path() + "'", "tEXtNotes", "Notes", OLESTR("x  y")},
                 {"pnmtopng -ztxt='" + texts.path() + "'", "zTXtOther", "Other", OLESTR("a longer text")},
                 {kConvert + "pgm:- -set Title 'a b' png:-", "tEXtTitle", "Title", OLESTR("a b")},
                 {kConvert + "pgm:- -set Title " + x + " png:-", "zTXtTitle", "Title", WideString(3000, u'x')}};
    for (const auto& [command, chunk, keyword, text] : cases) {
        SCOPED_TRACE(chunk);
        const auto file = OutputOf(command, pgm);
        ASSERT_TRUE(file);
        EXPECT_NE(std::string::npos, std::string(file->begin(), file->end()).find(chunk));
        int found = 0;
        for (const TextEntry& entry : Read(*file).properties.kept.texts)
            if (std::equal(entry.keyword.begin(), entry.keyword.end(), keyword.begin(), keyword.end()))
                found += entry.text == text;
        EXPECT_EQ(1, found);
    }
    for (const char* format : {"png:-", "bmp:-"}) {
        const auto file =
            OutputOf(kConvert + "pgm:- -units PixelsPerCentimeter -density 20000x40000 " + std::string(format), pgm);
        ASSERT_TRUE(file);
        const ImageProperties kept = Read(*file).properties.kept;
        EXPECT_EQ(std::pair(0.5, 0.25), std::pair(kept.micronsX, kept.micronsY)) << format;
    }
}

}  // namespace
}  // namespace orlix::test
#endif
