// Loading and saving as clients do it: what survives, what is reported, and that failures leave image and file as they
// were.

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "contract/support.hpp"

namespace orlix::testing {
namespace {

using ::testing::ElementsAre;

// A folder of the test's own, with characters beyond Latin-1 in its name.
class ImageFiles : public ::testing::Test {
protected:
    void SetUp() override {
        folder_ = std::filesystem::temp_directory_path() / std::filesystem::path(u8"orlix \u00B5m \u9762 \U0001F52C");
        std::filesystem::remove_all(folder_);
        std::filesystem::create_directories(folder_);
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }

    std::string Path(const char* name) const {
        const std::u8string path = (folder_ / name).u8string();
        return {path.begin(), path.end()};
    }
    void Write(const char* name, const std::string& bytes) const {
        std::ofstream(folder_ / name, std::ios::binary) << bytes;
    }
    std::string Read(const char* name) const {
        std::ifstream file(folder_ / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    size_t Files() const {
        return static_cast<size_t>(std::distance(std::filesystem::directory_iterator(folder_), {}));
    }
    Image Load(const char* name) const {
        Image image;
        Check(image->CreateFromFile(Text(Path(name))), image);
        return image;
    }
    HRESULT Save(const Image& image, const char* name, ImageFileFormat format = IFF_ByExtension) const {
        return image.file->SaveToFile(Text(Path(name)), format);
    }

    std::filesystem::path folder_;
};

TEST_F(ImageFiles, PngKeepsPixelsCalibrationAndTexts) {
    const auto image = ImageOf<uint16_t>(3, {0, 1, 256, 4095, 65534, 65535});
    ASSERT_EQ(S_OK, image.file->PutMicronsPerPixel(0.25, 0.5));
    ASSERT_EQ(S_OK, image->put_Description(Text("polished steel")));
    ASSERT_EQ(S_OK, image.entries->PutTextEntry(Text("Author"), Text("caf\xC3\xA9")));
    ASSERT_EQ(S_OK, image.entries->PutTextEntry(Text("Comment"), Text("\xE9\x9D\xA2")));
    ASSERT_EQ(S_OK, Save(image, "a.PNG"));

    const Image loaded = Load("a.PNG");
    EXPECT_EQ(image.values(), PixelsOf<uint16_t>(loaded));
    const auto [x, y] = Get(loaded.file, &IImageFile::GetMicronsPerPixel);
    EXPECT_DOUBLE_EQ(0.25, x);
    EXPECT_DOUBLE_EQ(0.5, y);
    EXPECT_EQ("polished steel", TextOf(loaded, &IImageVPAExPlus::get_Description));
    ASSERT_EQ(2, Get(loaded.entries, &IImageEntries::get_NumberOfTextEntries));
    for (const auto& [index, keyword, text] :
         {std::tuple{0, "Author", "caf\xC3\xA9"}, {1, "Comment", "\xE9\x9D\xA2"}}) {
        Text gotKeyword, gotText;
        ASSERT_EQ(S_OK, loaded.entries->GetTextEntry(index, gotKeyword.Out(), gotText.Out()));
        EXPECT_EQ(keyword, gotKeyword.Utf8());
        EXPECT_EQ(text, gotText.Utf8());
    }
    ASSERT_EQ(S_OK, Save(loaded, "b.png", IFF_PNG));
    EXPECT_EQ(Read("a.PNG"), Read("b.png"));
    EXPECT_EQ(2u, Files());
}

TEST_F(ImageFiles, EachFormatGivesBackWhatItHolds) {
    const auto grey = ImageOf<uint8_t>(2, {1, 2, 3, 255});
    const auto colour = NewImage<uint16_t>(1, 2, 3);
    for (LONG band = 0; band < 3; ++band) colour.Fill([=](LONG, LONG y) { return y * (1000 + band); }, band);
    for (const char* const name : {"g.png", "g.pgm", "plain.txt"}) {  // content decides on loading
        ASSERT_EQ(S_OK, Save(grey, name, name[0] == 'p' ? IFF_PlainPGM : IFF_ByExtension)) << name;
        EXPECT_THAT(PixelsOf<uint8_t>(Load(name)), ElementsAre(1, 2, 3, 255)) << name;
    }
    for (const char* const name : {"c.png", "c.ppm"}) {
        ASSERT_EQ(S_OK, Save(colour, name)) << name;
        EXPECT_THAT(PixelsOf<uint16_t>(Load(name), 2), ElementsAre(0, 1002)) << name;
    }
}

TEST_F(ImageFiles, FailedLoadsLeaveTheImageAsItWas) {
    const auto image = ImageOf<uint16_t>(2, {5, 6});
    ASSERT_EQ(S_OK, Save(image, "whole.png"));
    const std::string whole = Read("whole.png");
    Write("cut.png", whole.substr(0, whole.size() - 20));
    Write("header.pgm", "P5\nten 10\n255\n");
    Write("header.ppm", "P6\n10\n");
    Write("unknown.png", "no image at all");
    Write("empty.png", "");
    std::string bmp = "BM" + std::string(52, '\0');
    bmp[14] = 40, bmp[18] = 1, bmp[22] = 1, bmp[26] = 1, bmp[28] = 24;
    Write("deep.bmp", bmp);
    bmp[28] = 8, bmp[30] = 1;
    Write("packed.bmp", bmp);
    const std::string file = "IImageVPAEx::CreateFromFile: ", bitmap = "IImageVPAEx::CreateFromBmp: ";
    for (const auto& [name, text] :
         {std::pair{"missing.png", file + "failed to open file."},
          {".", file + "failed to open file."},
          {"header.pgm", file + "problems reading pgm header"},
          {"header.ppm", file + "problems reading ppm header"},
          {"unknown.png", file + "unknown file format."},
          {"empty.png", file + "unknown file format."},
          {"deep.bmp", bitmap + "only bitmaps with eight bits per pixel are currently supported."},
          {"packed.bmp", bitmap + "compressed bitmaps are not currently supported."}})
        EXPECT_TRUE(Raises(image->CreateFromFile(Text(Path(name))), text)) << name;
    EXPECT_EQ(DISP_E_EXCEPTION, image->CreateFromFile(Text(Path("cut.png"))));
    EXPECT_NE("", TakeReportedText());
    EXPECT_EQ(DISP_E_EXCEPTION, image->CreateFromFile(nullptr));
    EXPECT_THAT(image.values(), ElementsAre(5, 6));
}

// What the object was told to take at most, and no more.
TEST_F(ImageFiles, TheLimitOfSamplesIsTheObjectsOwn) {
    ASSERT_EQ(S_OK, Save(ImageOf<uint8_t>(3, {1, 2, 3, 4, 5, 6}), "six.png"));
    const auto image = ImageOf<uint16_t>(2, {5, 6});
    const auto& file = image.file;
    EXPECT_EQ(268435456, Get(file, &IImageFile::get_SampleLimit));
    EXPECT_TRUE(Fails(file->put_SampleLimit(-1), "IImageFile::put_SampleLimit: the limit must not be negative."));
    EXPECT_EQ(S_OK, file->put_SampleLimit(5));
    EXPECT_TRUE(Raises(image->CreateFromFile(Text(Path("six.png"))),
                       "IImageVPAEx::CreateFromFile: the image has 6 samples, more than the limit of 5."));
    EXPECT_THAT(image.values(), ElementsAre(5, 6));
    Load("six.png");                   // another object's is the initial one
    for (const LONG limit : {6, 0}) {  // 0: none
        EXPECT_EQ(S_OK, file->put_SampleLimit(limit));
        EXPECT_EQ(S_OK, image->CreateFromFile(Text(Path("six.png"))));
        EXPECT_EQ(limit, Get(file, &IImageFile::get_SampleLimit));
    }
}

TEST_F(ImageFiles, RefusedSavesLeaveTheOldFileAsItWas) {
    Write("old.png", "the old content");
    const std::string types = "the format holds 8- and 16-bit images only.";
    const std::string bands = "the format does not hold this number of bands.";
    const struct {
        Image image;
        const char* name;
        ImageFileFormat format;
        std::string text;
    } cases[] = {{Image(), "old.png", IFF_PNG, "no image."},
                 {NewImage<uint8_t>(1, 1), "old.doc", IFF_ByExtension, "unknown file format."},
                 {NewImage<uint16_t>(1, 1), "old.png", IFF_BMP, "the format holds 8-bit images only."},
                 {NewImage<float>(1, 1), "old.png", IFF_PNG, types},
                 {NewImage<uint32_t>(1, 1), "old.png", IFF_PGM, types},
                 {NewImage<uint8_t>(1, 1, 2), "old.png", IFF_PNG, bands},
                 {NewImage<uint8_t>(1, 1, 3), "old.png", IFF_PGM, bands},
                 {NewImage<uint8_t>(1, 1), "no/such/folder.png", IFF_PNG, "failed to write file."}};
    for (const auto& c : cases) {
        EXPECT_TRUE(Fails(Save(c.image, c.name, c.format), "IImageFile::SaveToFile: " + c.text));
        EXPECT_EQ("the old content", Read("old.png")) << c.text;
    }
    EXPECT_EQ(1u, Files());
}

TEST(ImageFileProperties, AreChecked) {
    const auto image = NewImage<uint8_t>(1, 1);
    const auto& file = image.file;
    double x = 9, y = 9;
    EXPECT_EQ(S_FALSE, file->GetMicronsPerPixel(&x, &y));
    EXPECT_EQ(0, x);
    for (const auto& [badX, badY] : {std::pair{0.0, 1.0}, {-1.0, 1.0}, {1.0, kInfinity}, {kNaN, 1.0}})
        EXPECT_TRUE(Fails(file->PutMicronsPerPixel(badX, badY),
                          "IImageFile::PutMicronsPerPixel: the pixel size must be positive."));
    ASSERT_EQ(S_OK, file->PutMicronsPerPixel(2, 3));
    const Image part;
    ASSERT_EQ(S_OK, part->CreateFromSubImage(image.get(), 0, 0, 0, 0, 0));
    EXPECT_EQ(std::tuple(2, 3), Get(part.file, &IImageFile::GetMicronsPerPixel));
    ASSERT_EQ(S_OK, file->PutMicronsPerPixel(0, 0));
    EXPECT_EQ(S_FALSE, file->GetMicronsPerPixel(&x, &y));

    const auto& entries = image.entries;
    const auto put = [&](const char* keyword, const char* text) {
        return entries->PutTextEntry(Text(keyword), Text(text));
    };
    for (const char* const bad : {"", " a", "a ", "a  b", "a\tb", "\xE9\x9D\xA2"})
        EXPECT_TRUE(Fails(put(bad, "x"), "IImageEntries::PutTextEntry: invalid keyword."));
    for (const auto& [keyword, text] : {std::pair{"Lens", "50x"}, {"Lens", "100x"}, {"Description", "seen"}})
        ASSERT_EQ(S_OK, put(keyword, text));
    EXPECT_EQ(1, Get(entries, &IImageEntries::get_NumberOfTextEntries));
    EXPECT_EQ("seen", TextOf(image, &IImageVPAExPlus::get_Description));
    Text keyword, text;
    for (const LONG index : {LONG{-1}, LONG{1}})
        EXPECT_TRUE(Fails(entries->GetTextEntry(index, keyword.Out(), text.Out()),
                          "IImageEntries::GetTextEntry: Index is out of range."));
    ASSERT_EQ(S_OK, entries->GetTextEntry(0, keyword.Out(), text.Out()));
    EXPECT_EQ("100x", text.Utf8());
    ASSERT_EQ(S_OK, entries->PutTextEntry(Text("Lens"), nullptr));
    EXPECT_EQ(0, Get(entries, &IImageEntries::get_NumberOfTextEntries));
}

}  // namespace
}  // namespace orlix::testing
