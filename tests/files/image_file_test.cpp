#include "files/image_file.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>

#include "files/hand_made.hpp"
#include "files/memory_image.hpp"
#include "platform/file_io.hpp"

#ifndef _WIN32
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#endif

namespace orlix::test {
namespace {

namespace fs = std::filesystem;

// A folder of its own, removed with what is in it.
class ImageFile : public testing::Test {
protected:
    void SetUp() override {
        const auto* info = testing::UnitTest::GetInstance()->current_test_info();
        const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
        folder_ = fs::temp_directory_path() / (std::string("orlix-") + info->name() + "-" + std::to_string(now));
        fs::create_directories(folder_);
    }
    void TearDown() override {
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
    }

    WideString PathOf(const WideString& name) const { return AsString(folder_ / fs::path(name)); }
    static WideString AsString(const fs::path& path) {
        WideString text = path.string<OLECHAR>();
        return text;
    }
    size_t FilesInFolder() const {
        return static_cast<size_t>(std::distance(fs::directory_iterator(folder_), fs::directory_iterator()));
    }
    static Bytes Content(const WideString& path) {
        FileContent content;
        EXPECT_EQ(ReadStatus::Done, ReadWholeFile(path, content));
        return {content.bytes().begin(), content.bytes().end()};
    }

    fs::path folder_;
};

MemoryImage Ramp(int32_t bands, int32_t bits) {
    MemoryImage image(6, 4, bands, bits);
    for (int32_t band = 0; band < bands; ++band)
        for (int32_t y = 0; y < 4; ++y)
            for (int32_t x = 0; x < 6; ++x) image.set(band, x, y, static_cast<uint32_t>(x + 10 * y + 100 * band));
    return image;
}

void Save(const WideString& path, ImageFileFormat format, MemoryImage& image) {
    FleetingSource source(image);
    SaveImageFile(path, format, image.properties, source);
}
Bytes Written(ImageFileFormat format, MemoryImage& image) {
    FleetingSource source(image);
    return WriteImageFile(format, image.properties, source);
}

std::string FailureOf(const std::function<void()>& action, HRESULT result) {
    try {
        action();
        return "";
    } catch (const Failure& failure) {
        EXPECT_EQ(result, failure.result());
        return failure.what();
    }
}

TEST_F(ImageFile, SavedImagesLoadAgainUnderAnyNameAndExtension) {
    for (const WideString& name :
         {WideString(OLESTR("a.png")), WideString(OLESTR("B.PNG")), WideString(OLESTR("c.pgm")),
          WideString(OLESTR("d.Pgm")), WideString(OLESTR("\u00B5-\u0416-\u4E2D\u6587-\U0001F52C.png"))}) {
        MemoryImage image = Ramp(1, 16), back;
        Save(PathOf(name), IFF_ByExtension, image);
        LoadImageFile(PathOf(name), back);
        EXPECT_TRUE(back.SamePixels(image));
    }
    MemoryImage colour = Ramp(3, 8), back;
    Save(PathOf(OLESTR("e.ppm")), IFF_ByExtension, colour);
    LoadImageFile(PathOf(OLESTR("e.ppm")), back);
    EXPECT_TRUE(back.SamePixels(colour));

    MemoryImage other;
    Save(PathOf(OLESTR("f.pgm")), IFF_PNG, colour);
    LoadImageFile(PathOf(OLESTR("f.pgm")), other);
    EXPECT_TRUE(other.SamePixels(colour)) << "the content tells the format, not the name";
}

TEST_F(ImageFile, PathsLongerThanTheClassicalLimitWork) {
    WideString path = AsString(folder_);
    for (int i = 0; i < 6; ++i) path += OLECHAR{fs::path::preferred_separator} + WideString(60, OLECHAR{'d'});
#ifdef _WIN32
    fs::create_directories(fs::path(L"\\\\?\\" + path));
#else
    fs::create_directories(fs::path(path));
#endif
    path += OLECHAR{fs::path::preferred_separator} + WideString(OLESTR("image.png"));
    ASSERT_GT(path.size(), 260u);
    MemoryImage image = Ramp(1, 8), back;
    Save(path, IFF_PNG, image);
    LoadImageFile(path, back);
    EXPECT_TRUE(back.SamePixels(image));
}

TEST_F(ImageFile, WhatCannotBeOpenedIsSaidSo) {
    constexpr auto kText = "IImageVPAEx::CreateFromFile: failed to open file.";
    const WideString here = PathOf(OLESTR("a.png"));
    MemoryImage image = Ramp(1, 8);
    Save(here, IFF_PNG, image);
    const WideString half = {0xD800};
    for (const WideString& path : {WideString(), PathOf(OLESTR("missing.png")), AsString(folder_),
                                   here + WideString(1, 0) + WideString(OLESTR("x")), PathOf(OLESTR("no folder/a.png")),
                                   WideString(OLESTR("/dev/zero")), WideString(OLESTR("/dev/null")),
                                   AsString(folder_ / "x") + half, WideString(OLESTR("NUL"))}) {
        MemoryImage none;
        EXPECT_EQ(kText, FailureOf([&] { LoadImageFile(path, none); }, DISP_E_EXCEPTION));
        EXPECT_FALSE(none.begun);
    }
}

TEST_F(ImageFile, AFileThatIsNoImageIsOfUnknownFormat) {
    for (const char* content : {"", "B", "P", "hello, world", "GIF89a..."}) {
        const WideString path = PathOf(OLESTR("a.png"));
        ASSERT_TRUE(WriteWholeFile(path, FromText(content)));
        MemoryImage none;
        EXPECT_EQ("IImageVPAEx::CreateFromFile: unknown file format.",
                  FailureOf([&] { LoadImageFile(path, none); }, DISP_E_EXCEPTION));
    }
}

// Two rows of three, in one band or three, in every format; and rows without end.
TEST(SampleLimits, RefuseAnImageBeforeTheSinkHearsOfIt) {
    const auto file = [](uint32_t colourType, const Bytes& chunks = {}) {
        return MakePng({3, 2, 8, colourType, true, [](uint32_t x, uint32_t, uint32_t) { return x; }}, chunks);
    };
    BmpFile bmp;
    bmp.width = 3;
    bmp.height = 2;
    bmp.rows = {0, 1, 2, 0, 0, 1, 2, 0};
    BmpFile colourBmp = bmp;
    colourBmp.coloursUsed = 3;
    colourBmp.palette = {1, 2, 3, 0, 4, 4, 4, 0, 5, 5, 5, 0};
    const struct {
        const char* what;
        Bytes bytes;
        int32_t samples;
    } cases[] = {{"grey PNG", file(0), 6},
                 {"colour PNG", file(2), 18},
                 {"grey palette", file(3, PngChunk("PLTE", {1, 1, 1, 2, 2, 2, 3, 3, 3})), 6},
                 {"colour palette", file(3, PngChunk("PLTE", {1, 1, 1, 2, 2, 2, 3, 4, 5})), 18},
                 {"BMP", MakeBmp(bmp), 6},
                 {"colour BMP", MakeBmp(colourBmp), 18},
                 {"PGM", FromText("P5 3 2 255\nabcdef"), 6},
                 {"plain PPM", FromText("P3 3 2 9 1 2 3 4 5 6 7 8 9 1 2 3 4 5 6 7 8 9"), 18}};
    for (const auto& [what, bytes, samples] : cases) {
        SCOPED_TRACE(what);
        for (const int32_t enough : {0, samples, 0x7FFFFFFF}) {
            MemoryImage image;
            EXPECT_EQ("", FailureOfReading(bytes, image, SampleLimit(enough)));
        }
        for (const int32_t less : {samples - 1, 1}) {
            // That a palette makes three bands of the pixels is known when they are.
            const int32_t known = std::string(what) == "colour palette" && less == 1 ? 6 : samples;
            MemoryImage none;
            EXPECT_EQ("IImageVPAEx::CreateFromFile: the image has " + std::to_string(known) +
                          " samples, more than the limit of " + std::to_string(less) + ".",
                      FailureOfReading(bytes, none, SampleLimit(less)));
            EXPECT_FALSE(none.begun);
        }
    }
    // 50 kilobytes that are an image of 1.2 thousand million samples, and rightly so.
    MemoryImage none;
    const std::string large = FailureOfReading(
        PngSignature() + PngHeader(20000, 20000, 1, 0) + PngChunk("IDAT", Bytes(48500)) + PngEnd(), none);
    EXPECT_EQ("IImageVPAEx::CreateFromFile: the image has 400000000 samples, more than the limit of 268435456.", large);
    const Bytes column = FromText("P5 1 16777217 255\n") + Bytes(16777217);
    EXPECT_EQ("IImageVPAEx::CreateFromFile: the image has 16777217 rows or columns, more than the limit of 16777216.",
              FailureOfReading(column, none));
    EXPECT_FALSE(none.begun);
    EXPECT_EQ("", FailureOfReading(column, none, SampleLimit(0)));
}

TEST_F(ImageFile, SavingChecksTheImageThenTheFormatThenBitsThenBands) {
    const auto save = [&](int format, int32_t width, int32_t bits, int32_t bands) {
        MemoryImage image(1, 1, 1, 8);
        FleetingSource source(image);
        FileProperties properties = image.properties;
        properties.width = width;
        properties.bits = bits;
        properties.bands = bands;
        return FailureOf([&] { WriteImageFile(static_cast<ImageFileFormat>(format), properties, source); }, E_FAIL);
    };
    constexpr auto kNoImage = "IImageFile::SaveToFile: no image.";
    constexpr auto kFormat = "IImageFile::SaveToFile: unknown file format.";
    constexpr auto kBits = "IImageFile::SaveToFile: the format holds 8- and 16-bit images only.";
    constexpr auto kBands = "IImageFile::SaveToFile: the format does not hold this number of bands.";
    EXPECT_EQ(kNoImage, save(IFF_BMP, 0, 32, 2));
    for (const int format : {0, 6, 7, -1, 1000}) EXPECT_EQ(kFormat, save(format, 1, 32, 2));
    for (const int bits : {0, 1, 32, -8}) EXPECT_EQ(kBits, save(IFF_PNG, 1, bits, 2));
    for (const int bands : {0, 2, 4}) EXPECT_EQ(kBands, save(IFF_PNG, 1, 8, bands));
    EXPECT_EQ(kBands, save(IFF_PGM, 1, 8, 3));
    EXPECT_EQ(kBands, save(IFF_PlainPGM, 1, 8, 3));
    EXPECT_EQ(kBands, save(IFF_PPM, 1, 8, 1));
    EXPECT_EQ(kBands, save(IFF_PlainPPM, 1, 8, 1));

    MemoryImage image = Ramp(1, 8);
    for (const auto* name : {OLESTR("a.bmp"), OLESTR("a"), OLESTR("png"), OLESTR("a.png.tif")})
        EXPECT_EQ(kFormat, FailureOf([&] { Save(PathOf(name), IFF_ByExtension, image); }, E_FAIL));
    EXPECT_EQ(0u, FilesInFolder());
}

TEST_F(ImageFile, AFailedSaveLeavesTheOldFileAndNothingElse) {
    const WideString path = PathOf(OLESTR("a.png"));
    ASSERT_TRUE(WriteWholeFile(path, FromText("old")));
    MemoryImage image = Ramp(1, 8);

    class FailingSource final : public PixelSource {
        const void* Row(int32_t, int32_t) override { throw std::bad_alloc(); }
    } failing;
    EXPECT_THROW(SaveImageFile(path, IFF_PNG, image.properties, failing), std::bad_alloc);
    EXPECT_EQ(FromText("old"), Content(path));

    constexpr auto kText = "IImageFile::SaveToFile: failed to write file.";
    fs::create_directories(folder_ / "folder.png");
    for (const WideString& bad :
         {PathOf(OLESTR("folder.png")), PathOf(OLESTR("missing/a.png")), WideString(), path + WideString(1, 0)})
        EXPECT_EQ(kText, FailureOf([&] { Save(bad, IFF_PNG, image); }, E_FAIL));
    EXPECT_EQ(2u, FilesInFolder());
    EXPECT_TRUE(fs::is_directory(folder_ / "folder.png"));
    EXPECT_EQ(FromText("old"), Content(path));
}

TEST_F(ImageFile, SavingReplacesALongerFileWhole) {
    const WideString path = PathOf(OLESTR("a.pgm"));
    ASSERT_TRUE(WriteWholeFile(path, Bytes(100000, 1)));
    MemoryImage image = Ramp(1, 8);
    Save(path, IFF_PGM, image);
    EXPECT_EQ(Written(IFF_PGM, image), Content(path));
    EXPECT_EQ(1u, FilesInFolder());
}

TEST_F(ImageFile, AnEmptyFileAndTheStartOfALongOneAreRead) {
    const WideString path = PathOf(OLESTR("a"));
    ASSERT_TRUE(WriteWholeFile(path, {}));
    EXPECT_TRUE(Content(path).empty());
    ASSERT_TRUE(WriteWholeFile(path, FromText("0123456789")));
    FileContent content;
    EXPECT_EQ(ReadStatus::Done, ReadWholeFile(path, content, 4));
    EXPECT_EQ(FromText("0123"), Bytes(content.bytes().begin(), content.bytes().end()));
}

#ifndef _WIN32
TEST_F(ImageFile, AWriteThatFailsHalfwayLeavesTheOldFileAndNothingElse) {
    const WideString path = PathOf(OLESTR("a"));
    ASSERT_TRUE(WriteWholeFile(path, FromText("old")));
    rlimit before;
    ASSERT_EQ(0, getrlimit(RLIMIT_FSIZE, &before));
    rlimit small = before;
    small.rlim_cur = 10000;
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(0, setrlimit(RLIMIT_FSIZE, &small));
    const bool written = WriteWholeFile(path, Bytes(100000, 1));
    ASSERT_EQ(0, setrlimit(RLIMIT_FSIZE, &before));
    std::signal(SIGXFSZ, handler);
    EXPECT_FALSE(written);
    EXPECT_EQ(FromText("old"), Content(path));
    EXPECT_EQ(1u, FilesInFolder());
}

TEST_F(ImageFile, APipeIsRefusedWithoutWaitingForItsWriter) {
    const fs::path pipe = folder_ / "pipe.png";
    ASSERT_EQ(0, mkfifo(pipe.c_str(), 0600));
    FileContent content;
    EXPECT_EQ(ReadStatus::CannotOpen, ReadWholeFile(AsString(pipe), content));
    EXPECT_FALSE(WriteWholeFile(AsString(pipe), FromText("x")));
    EXPECT_TRUE(fs::is_fifo(pipe));
}

TEST_F(ImageFile, ALinkStaysAndTheFileItLeadsToIsReplaced) {
    const WideString path = PathOf(OLESTR("a.pgm"));
    ASSERT_TRUE(WriteWholeFile(path, FromText("old")));
    fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink(path, folder_ / "link");
    ASSERT_TRUE(WriteWholeFile(PathOf(OLESTR("link")), FromText("new")));
    EXPECT_TRUE(fs::is_symlink(folder_ / "link"));
    EXPECT_EQ(FromText("new"), Content(path));
    EXPECT_EQ(fs::perms::owner_read | fs::perms::owner_write, fs::status(path).permissions());
}
#endif

TEST(FileKeyword, HasOneToSeventyNinePrintableLatinCharactersWithoutSpareBlanks) {
    for (const WideString& good : {WideString(OLESTR("Title")), WideString(OLESTR("Creation Time")),
                                   WideString(OLESTR("\u00C5\u00FF!~")), WideString(79, OLECHAR{'x'})})
        EXPECT_TRUE(IsFileKeyword(good));
    for (const WideString& bad :
         {WideString(), WideString(80, OLECHAR{'x'}), WideString(OLESTR(" a")), WideString(OLESTR("a ")),
          WideString(OLESTR("a  b")), WideString(OLESTR("a\tb")), WideString(OLESTR("\u0100")),
          WideString(OLESTR("\u00A0")), WideString(OLESTR("\u007F")), WideString(OLESTR("a\0b"), 3),
          WideString(1, OLECHAR{' '})})
        EXPECT_FALSE(IsFileKeyword(bad));
}

}  // namespace
}  // namespace orlix::test
