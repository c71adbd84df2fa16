#include "files/image_file.hpp"

#include <chrono>
#include <filesystem>
#include <fstream>

#include "files/reading.hpp"
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

    WideString PathOf(const fs::path& name) const { return (folder_ / name).string<OLECHAR>(); }
    size_t FilesInFolder() const {
        return static_cast<size_t>(std::distance(fs::directory_iterator(folder_), fs::directory_iterator()));
    }
    static Bytes Content(const WideString& path, size_t most = SIZE_MAX) {
        FileContent content;
        EXPECT_EQ(ReadStatus::Done, ReadWholeFile(path, content, most));
        return {content.bytes().begin(), content.bytes().end()};
    }
    // A file of another content.
    WideString OldFile(const fs::path& name) const {
        EXPECT_TRUE(WriteWholeFile(PathOf(name), FromText("old")));
        return PathOf(name);
    }

    fs::path folder_;
};

MemoryImage Ramp(int32_t bands, int32_t bits) {
    return {6, 4, bands, bits,
            [](int32_t band, int32_t x, int32_t y) { return static_cast<uint32_t>(x + 10 * y + 100 * band); }};
}

void Save(const WideString& path, ImageFileFormat format, MemoryImage& image) {
    FleetingSource source(image);
    SaveImageFile(path, format, image.properties, source);
}
void ExpectSaved(const WideString& path, ImageFileFormat format, MemoryImage image) {
    MemoryImage back;
    Save(path, format, image);
    LoadImageFile(path, back);
    EXPECT_TRUE(back.SamePixels(image)) << fs::path(path);
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

void ExpectNotLoaded(const std::string& text, const WideString& path) {
    MemoryImage none;
    EXPECT_EQ(text, FailureOf([&] { LoadImageFile(path, none); }, DISP_E_EXCEPTION)) << fs::path(path);
    EXPECT_FALSE(none.begun);
}

TEST_F(ImageFile, SavedImagesLoadAgainUnderAnyNameAndExtension) {
    for (const fs::path name : {u"a.png", u"B.PNG", u"c.pgm", u"d.Pgm", u"\u00B5-\u0416-\u4E2D\u6587-\U0001F52C.png"})
        ExpectSaved(PathOf(name), IFF_ByExtension, Ramp(1, 16));
    ExpectSaved(PathOf("e.ppm"), IFF_ByExtension, Ramp(3, 8));
    ExpectSaved(PathOf("f.pgm"), IFF_PNG, Ramp(3, 8));  // the content tells the format, not the name

    fs::path deep = folder_;  // longer than the classical limit
    for (int i = 0; i < 6; ++i) deep /= std::string(60, 'd');
#ifdef _WIN32
    fs::create_directories(fs::path(L"\\\\?\\" + deep.wstring()));
#else
    fs::create_directories(deep);
#endif
    ASSERT_GT(deep.native().size(), 260u);
    ExpectSaved(PathOf(deep / "image.png"), IFF_PNG, Ramp(1, 8));
}

TEST_F(ImageFile, WhatCannotBeOpenedOrIsNoImageIsSaidSo) {
    const WideString here = OldFile("a.png");
    for (const WideString& path :
         {WideString(), PathOf("missing.png"), PathOf(folder_), PathOf("no folder/a.png"),
          here + WideString(1, 0) + OLECHAR{'x'}, PathOf("x") + OLECHAR{0xD800}, WideString(OLESTR("/dev/zero")),
          WideString(OLESTR("/dev/null")), WideString(OLESTR("NUL"))})
        ExpectNotLoaded("IImageVPAEx::CreateFromFile: failed to open file.", path);
    for (const char* content : {"", "B", "P", "hello, world", "GIF9..."}) {
        ASSERT_TRUE(WriteWholeFile(here, FromText(content)));
        ExpectNotLoaded("IImageVPAEx::CreateFromFile: unknown file format.", here);
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
        MemoryImage images[3];
        EXPECT_EQ("", FailureOfReading(bytes, images[0], SampleLimit(0)));
        EXPECT_EQ("", FailureOfReading(bytes, images[1], SampleLimit(samples)));
        EXPECT_EQ("", FailureOfReading(bytes, images[2], SampleLimit(0x7FFFFFFF)));
        for (const int32_t less : {samples - 1, 1}) {
            // That a palette makes three bands of the pixels is known when they are.
            const int32_t known = std::string(what) == "colour palette" && less == 1 ? 6 : samples;
            ExpectRefused("IImageVPAEx::CreateFromFile: the image has " + std::to_string(known) +
                              " samples, more than the limit of " + std::to_string(less) + ".",
                          bytes, false, SampleLimit(less));
        }
    }
    // 50 kilobytes that are an image of 1.2 thousand million samples, and rightly so.
    ExpectRefused("IImageVPAEx::CreateFromFile: the image has 400000000 samples, more than the limit of 268435456.",
                  PngFile(PngHeader(20000, 20000, 1, 0), Bytes(48500)));
    const Bytes column = FromText("P5 1 16777217 255\n") + Bytes(16777217);
    ExpectRefused(
        "IImageVPAEx::CreateFromFile: the image has 16777217 rows or columns, more than the limit of 16777216.",
        column);
    MemoryImage unlimited;
    EXPECT_EQ("", FailureOfReading(column, unlimited, SampleLimit(0)));
}

TEST_F(ImageFile, SavingChecksTheImageThenTheFormatThenBitsThenBands) {
    const auto save = [&](int format, int32_t width, int32_t bits, int32_t bands) {
        MemoryImage image(1, 1, 1, 8);
        FleetingSource source(image);
        FileProperties properties = image.properties;
        properties.width = width;
        properties.dataType = bits;
        properties.bands = bands;
        return FailureOf([&] { WriteImageFile(static_cast<ImageFileFormat>(format), properties, source); }, E_FAIL);
    };
    constexpr auto kNoImage = "IImageFile::SaveToFile: no image.";
    constexpr auto kFormat = "IImageFile::SaveToFile: unknown file format.";
    constexpr auto kBits = "IImageFile::SaveToFile: the format holds 8- and 16-bit images only.";
    constexpr auto kBands = "IImageFile::SaveToFile: the format does not hold this number of bands.";
    EXPECT_EQ(kNoImage, save(IFF_BMP, 0, 32, 2));
    for (const int format : {0, 99, -1, 1000}) EXPECT_EQ(kFormat, save(format, 1, 32, 2));
    for (const int bits : {0, 1, 32, -8}) EXPECT_EQ(kBits, save(IFF_PNG, 1, bits, 2));
    for (const auto& [format, bands] : {std::pair{IFF_PNG, 0},
                                        {IFF_PNG, 2},
                                        {IFF_PNG, 4},
                                        {IFF_PGM, 3},
                                        {IFF_PlainPGM, 3},
                                        {IFF_PPM, 1},
                                        {IFF_PlainPPM, 1}})
        EXPECT_EQ(kBands, save(format, 1, 8, bands)) << format;

    MemoryImage image = Ramp(1, 8);
    for (const char* name : {"a.doc", "a", "png", "a.png.x"})
        EXPECT_EQ(kFormat, FailureOf([&] { Save(PathOf(name), IFF_ByExtension, image); }, E_FAIL));
    EXPECT_EQ(0u, FilesInFolder());
}

TEST_F(ImageFile, AFailedSaveLeavesTheOldFileAndNothingElse) {
    const WideString path = OldFile("a.png");
    MemoryImage image = Ramp(1, 8);

    class FailingSource final : public PixelSource {
        const void* Row(int32_t, int32_t) override { throw std::bad_alloc(); }
    } failing;
    EXPECT_THROW(SaveImageFile(path, IFF_PNG, image.properties, failing), std::bad_alloc);
    EXPECT_EQ(FromText("old"), Content(path));

    constexpr auto kText = "IImageFile::SaveToFile: failed to write file.";
    fs::create_directories(folder_ / "folder.png");
    for (const WideString& bad : {PathOf("folder.png"), PathOf("missing/a.png"), WideString(), path + WideString(1, 0)})
        EXPECT_EQ(kText, FailureOf([&] { Save(bad, IFF_PNG, image); }, E_FAIL));
    EXPECT_EQ(2u, FilesInFolder());
    EXPECT_TRUE(fs::is_directory(folder_ / "folder.png"));
    EXPECT_EQ(FromText("old"), Content(path));
}

TEST_F(ImageFile, FilesAreReplacedAndReadWholeOrToALimit) {
    const WideString path = PathOf("a.pgm");
    ASSERT_TRUE(WriteWholeFile(path, Bytes(100000, 1)));
    MemoryImage image = Ramp(1, 8);
    Save(path, IFF_PGM, image);
    EXPECT_EQ(Written(IFF_PGM, image), Content(path));
    EXPECT_EQ(1u, FilesInFolder());
    ASSERT_TRUE(WriteWholeFile(path, FromText("0123456789")));
    EXPECT_EQ(FromText("0123"), Content(path, 4));
    ASSERT_TRUE(WriteWholeFile(path, {}));
    EXPECT_TRUE(Content(path).empty());
}

#ifndef _WIN32
TEST_F(ImageFile, AWriteThatFailsHalfwayLeavesTheOldFileAndNothingElse) {
    const WideString path = OldFile("a");
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
    EXPECT_EQ(ReadStatus::CannotOpen, ReadWholeFile(PathOf(pipe), content));
    EXPECT_FALSE(WriteWholeFile(PathOf(pipe), FromText("x")));
    EXPECT_TRUE(fs::is_fifo(pipe));
}

TEST_F(ImageFile, ALinkStaysAndTheFileItLeadsToIsReplaced) {
    const WideString path = OldFile("a.pgm");
    fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink(path, folder_ / "link");
    ASSERT_TRUE(WriteWholeFile(PathOf("link"), FromText("new")));
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
