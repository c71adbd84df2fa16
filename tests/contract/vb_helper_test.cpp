// The object that helps scripts, as compiled clients use it: streams, names, the clipboard, and a measurement.
#include <cmath>
#include <filesystem>
#include <fstream>

#include "contract/support.hpp"

namespace orlix::testing {
namespace {

constexpr const char* kSource = "Orlix.VBHelper.1";

class VBHelper : public ::testing::Test {
protected:
    void SetUp() override {
        folder_ = std::filesystem::temp_directory_path() / std::filesystem::path(u8"orlix helper \u00B5m \u9762");
        std::filesystem::remove_all(folder_);
        std::filesystem::create_directories(folder_);
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }

    Text Path(const char* name) const {
        const std::u8string path = (folder_ / name).u8string();
        return Text(std::string(path.begin(), path.end()));
    }
    ComPtr<IUnknown> Open(const char* name, FileStreamMode mode) const {
        return Get(helper_, &IVBHelper::OpenFileStream, static_cast<BSTR>(Path(name)), mode);
    }
    std::string Content(const char* name) const {
        std::ifstream file(folder_ / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    std::string TextIn(const std::string& bytes) const {
        const auto stream = CreateMemoryStream();
        Check(stream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), nullptr));
        SeekStart(stream);
        Text text;
        Check(helper_->ReadText(stream.get(), text.Out()), helper_);
        return text.Utf8();
    }
    SFileMeasurements Measure(const Image& image, AutoThresholdType threshold = TM_MinimizeVariance,
                              LONG bright = 0) const {
        const Text name = Path("measured.tif");
        Check(image.file->SaveToFile(name, IFF_ByExtension), image.file);
        return Get(helper_, &IVBHelper::MeasureFile, static_cast<BSTR>(name), threshold, bright, 0);
    }

    ComPtr<IVBHelper> helper_ = CreateObject<IVBHelper>("Orlix.VBHelper");
    std::filesystem::path folder_;
};

// ------------------------------------------------------------------------------------------------------------- streams

TEST_F(VBHelper, OpensFilesAsStreams) {
    const auto expectSize = [&](const ComPtr<IUnknown>& stream, double size) {
        EXPECT_EQ(size, Get(helper_, &IVBHelper::get_StreamSize, stream.get()));
    };
    {
        const auto created = Open("a.txt", FSM_Create);
        ASSERT_EQ(S_OK, helper_->WriteText(created.get(), Text("caf\xC3\xA9 \xF0\x9F\x94\xAC")));
        EXPECT_EQ(10, Get(helper_, &IVBHelper::get_StreamPosition, created.get()));
        ASSERT_EQ(S_OK, helper_->put_StreamPosition(created.get(), 3));
        Text text;
        ASSERT_EQ(S_OK, helper_->ReadText(created.get(), text.Out()));
        EXPECT_EQ("\xC3\xA9 \xF0\x9F\x94\xAC", text.Utf8());
        ASSERT_EQ(S_OK, helper_->ReadText(created.get(), text.Out()));
        EXPECT_EQ("", text.Utf8());
        expectSize(created, 10);
    }
    {
        const auto updated = Open("a.txt", FSM_Update);
        expectSize(updated, 10);
        ASSERT_EQ(S_OK, helper_->WriteText(updated.get(), Text("C")));
    }
    EXPECT_EQ("Caf\xC3\xA9 \xF0\x9F\x94\xAC", Content("a.txt"));
    {
        const auto read = Open("a.txt", FSM_Read);
        EXPECT_TRUE(FAILED(helper_->WriteText(read.get(), Text("x"))));
        expectSize(read, 10);
    }
    expectSize(Open("a.txt", FSM_Create), 0);
    EXPECT_EQ("", Content("a.txt")) << "emptied";

    IUnknown* stream = nullptr;
    for (const char* name : {"none.txt", "none/none.txt", ""})
        for (const FileStreamMode mode : {FSM_Read, FSM_Update}) {
            EXPECT_TRUE(FAILED(helper_->OpenFileStream(Path(name), mode, &stream))) << name;
            EXPECT_EQ("", TakeReportedText());
        }
    EXPECT_TRUE(FAILED(helper_->OpenFileStream(nullptr, FSM_Create, &stream)));
    for (const LONG mode : {LONG{-1}, LONG{3}, kLeast, kMost})
        EXPECT_TRUE(Fails(helper_->OpenFileStream(Path("b.txt"), static_cast<FileStreamMode>(mode), &stream),
                          "IVBHelper::OpenFileStream: unknown mode.", kSource));
    EXPECT_FALSE(std::filesystem::exists(folder_ / "b.txt"));
}

TEST_F(VBHelper, ReadsTextInEachOfItsForms) {
    using namespace std::string_literals;
    EXPECT_EQ("", TextIn(""));
    EXPECT_EQ("a\nb", TextIn("\xEF\xBB\xBF"s + "a\nb"));
    EXPECT_EQ("\xE9\x9D\xA2", TextIn("\xFF\xFE\x62\x97"));
    EXPECT_EQ("\xE9\x9D\xA2", TextIn("\xFE\xFF\x97\x62\x00"s)) << "half a unit is left out";
    EXPECT_EQ("a\xEF\xBF\xBD", TextIn("a\xE9")) << "no UTF-8";
    std::string long_(200'000, 'x');
    long_[131'071] = 'y';
    EXPECT_EQ(long_, TextIn(long_));
}

TEST_F(VBHelper, KeepsStreamsWithinBounds) {
    const auto stream = Get(helper_, &IVBHelper::CreateMemoryStream);
    for (const double position : {-1.0, 0.5, kNaN, kInfinity, 9007199254740994.0})
        EXPECT_TRUE(Fails(helper_->put_StreamPosition(stream.get(), position),
                          "IVBHelper::put_StreamPosition: the position must be a whole number of bytes.", kSource));
    EXPECT_EQ(0, Get(helper_, &IVBHelper::get_StreamPosition, stream.get()));
    const auto bitmap = Cast<IUnknown>(NewBitmap(1, 1));
    Text text;
    EXPECT_TRUE(FailsSilently(helper_->ReadText(bitmap.get(), text.Out()), E_NOINTERFACE));
    EXPECT_TRUE(FailsSilently(helper_->WriteText(bitmap.get(), text), E_NOINTERFACE));
}

TEST_F(VBHelper, ImagesTravelThroughItsStreams) {
    const auto image = ImageOf<uint16_t>(3, {1, 2, 3, 400, 500, 600});
    const auto stream = Cast<IStream>(Get(helper_, &IVBHelper::CreateMemoryStream));
    ASSERT_EQ(S_OK, image.persist->Save(stream.get(), TRUE));
    ASSERT_EQ(S_OK, helper_->put_StreamPosition(stream.get(), 0));
    const Image loaded;
    ASSERT_EQ(S_OK, loaded.persist->Load(stream.get()));
    EXPECT_EQ(image.values(), PixelsOf<uint16_t>(loaded));
}

TEST_F(VBHelper, NamesFilesThatDoNotExist) {
    const auto name = [&](const char* extension) {
        Text made;
        Check(helper_->TemporaryName(Text(extension), made.Out()), helper_);
        return made.Utf8();
    };
    const std::string folder = TextOf(helper_, &IVBHelper::get_TemporaryFolder), one = name(".png"), two = name(".png");
    EXPECT_TRUE(std::filesystem::is_directory(folder)) << folder;
    EXPECT_TRUE(folder.ends_with('/') || folder.ends_with('\\'));
    EXPECT_TRUE(one.starts_with(folder) && one.ends_with(".png")) << one;
    EXPECT_NE(one, two);
    EXPECT_FALSE(std::filesystem::exists(one));
    std::ofstream(name("")) << "x";
    for (const char* extension : {"/x", "..\\x", "c:x"}) {
        Text made;
        EXPECT_TRUE(Fails(helper_->TemporaryName(Text(extension), made.Out()),
                          "IVBHelper::TemporaryName: the extension must not hold a folder.", kSource));
    }
}

// -------------------------------------------------------------------------------------------------------- measurements

// A dark plate of 6 x 5 with a bright stripe of two columns on its right side: 30 pixels of 40, 10 of 200.
template <class Pixel>
TypedImage<Pixel> Plate() {
    const auto image = NewImage<Pixel>(8, 5);
    image.Fill([](LONG x, LONG) { return x < 6 ? 40 : 200; });
    Check(image.file->PutMicronsPerPixel(0.5, 2));
    return image;
}

TEST_F(VBHelper, MeasuresFilesOfEachType) {
    const auto expectPlate = [&](const Image& image, LONG type) {
        SCOPED_TRACE(type);
        const SFileMeasurements dark = Measure(image), bright = Measure(image, TM_MinimizeVariance, 1);
        EXPECT_EQ(std::tuple(8, 5, 1, type, 40),
                  std::tuple(dark.m_lWidth, dark.m_lHeight, dark.m_lBands, dark.m_lDataType, dark.m_lPixelCount));
        EXPECT_EQ(80, dark.m_dGrayAverage);
        EXPECT_NEAR(std::sqrt(192'000.0 / 40), dark.m_dGrayStandardDeviation, 1.0);
        EXPECT_EQ(std::tuple(0.5, 2.0), std::tuple(dark.m_dMicronsPerPixelX, dark.m_dMicronsPerPixelY));
        EXPECT_EQ(1, dark.m_lThresholdFound);
        EXPECT_TRUE(dark.m_dThreshold >= 40 && dark.m_dThreshold < 200) << dark.m_dThreshold;
        EXPECT_EQ(std::tuple(0.75, 0.25), std::tuple(dark.m_dDarkFraction, dark.m_dBrightFraction));
        EXPECT_EQ(std::tuple(30, 0.75, 30.0, 2.5, 2.0),
                  std::tuple(dark.m_lPhasePixels, dark.m_dPhaseFraction, dark.m_dPhaseArea, dark.m_dPhaseXCentroid,
                             dark.m_dPhaseYCentroid));
        EXPECT_EQ(std::tuple(10, 0.25, 10.0, 6.5, 2.0),
                  std::tuple(bright.m_lPhasePixels, bright.m_dPhaseFraction, bright.m_dPhaseArea,
                             bright.m_dPhaseXCentroid, bright.m_dPhaseYCentroid));
    };
    expectPlate(Plate<uint8_t>(), DT_BYTE);
    expectPlate(Plate<uint16_t>(), DT_WORD);
    expectPlate(Plate<uint32_t>(), DT_DWORD);
    expectPlate(Plate<float>(), DT_Float);
}

TEST_F(VBHelper, SaysWhereThereIsNoThreshold) {
    const auto flat = NewImage<uint8_t>(3, 3);
    flat.Fill([](LONG, LONG) { return 7; });
    const SFileMeasurements found = Measure(flat);
    EXPECT_EQ(0, found.m_lThresholdFound);
    EXPECT_EQ(7, found.m_dGrayAverage);
    EXPECT_EQ(0, found.m_dMicronsPerPixelX);
    for (const double figure : {found.m_dThreshold, found.m_dDarkFraction, found.m_dPhaseFraction, found.m_dPhaseArea})
        EXPECT_TRUE(std::isnan(figure));

    const auto plate = Plate<uint8_t>();
    ASSERT_EQ(S_OK, plate.file->PutMicronsPerPixel(0, 0));
    const SFileMeasurements uncalibrated = Measure(plate);
    EXPECT_EQ(30, uncalibrated.m_lPhasePixels);
    EXPECT_TRUE(std::isnan(uncalibrated.m_dPhaseArea));
}

TEST_F(VBHelper, RefusesWhatItCannotMeasure) {
    Measure(Plate<uint8_t>());
    SFileMeasurements kept = {}, measurements = {};
    kept.m_lSize = measurements.m_lSize = 4711;
    const auto measure = [&](const char* name, LONG threshold, LONG band) {
        return helper_->MeasureFile(Path(name), static_cast<AutoThresholdType>(threshold), 0, band, &measurements);
    };
    for (const LONG threshold : {LONG{-1}, LONG{6}, kLeast})
        EXPECT_TRUE(
            Fails(measure("measured.tif", threshold, 0), "IVBHelper::MeasureFile: unknown threshold.", kSource));
    for (const LONG band : {LONG{-1}, LONG{1}, kLeast, kMost})
        EXPECT_TRUE(
            Fails(measure("measured.tif", 0, band), "IVBHelper::MeasureFile: the image has no such band.", kSource));
    EXPECT_TRUE(Raises(measure("none.tif", 0, 0), "IImageVPAEx::CreateFromFile: failed to open file.", kSource));
    EXPECT_EQ(0, std::memcmp(&kept, &measurements, sizeof kept)) << "nothing is written";
    ASSERT_EQ(S_OK, measure("measured.tif", TM_MaximizeEntropy, 0));
    EXPECT_EQ(4711, measurements.m_lSize);
}

TEST_F(VBHelper, CopiesNoImageThatHasNoPixels) {
    const Image image;
    for (const LONG width : {LONG{1}, LONG{0}}) {
        EXPECT_TRUE(Fails(helper_->CopyImage(image.get()), "IVBHelper::CopyImage: no image.", kSource)) << width;
        (void)image->Create(0, 2, 1, DT_WORD, 0);  // from then on it has a type
    }
}

// ------------------------------------------------------------------------------------------------- what Windows has

#ifdef _WIN32

TEST_F(VBHelper, CopiesAndPastesTexts) {
    ASSERT_EQ(S_OK, helper_->put_ClipboardText(Text("caf\xC3\xA9\n\xF0\x9F\x94\xAC")));
    EXPECT_EQ("caf\xC3\xA9\n\xF0\x9F\x94\xAC", TextOf(helper_, &IVBHelper::get_ClipboardText));
    IImageVPA* image = nullptr;
    EXPECT_EQ(S_FALSE, helper_->PasteImage(&image));
    EXPECT_EQ(nullptr, image);
    ASSERT_TRUE(OpenClipboard(nullptr) && EmptyClipboard() && CloseClipboard());
    EXPECT_EQ("", TextOf(helper_, &IVBHelper::get_ClipboardText));
}

TEST_F(VBHelper, CopiesAndPastesImages) {
    const auto words = ImageOf<uint16_t>(3, {0, 1, 256, 4095, 65534, 65535});
    ASSERT_EQ(S_OK, words->put_Description(Text("polished steel")));
    ASSERT_EQ(S_OK, helper_->CopyImage(words.get()));
    const auto pasted = Cast<IImageVPAExPlus>(Get(helper_, &IVBHelper::PasteImage));
    EXPECT_EQ(words.values(), PixelsOf<uint16_t>(pasted)) << "by way of PNG";
    EXPECT_EQ("polished steel", TextOf(pasted, &IImageVPAExPlus::get_Description));

    // Programs that know bitmaps only see 16 bits as a picture, from the smallest to the largest level.
    const auto buffer = CreateObject<IDIBImage>("Orlix.OrlixBuffer");
    ASSERT_EQ(S_OK, buffer->CreateFromClipboard());
    const auto shown = Cast<IImageVPA>(Get(buffer, &IDIBImage::CreateImage));
    const std::vector<uint8_t> levels = PixelsOf<uint8_t>(shown);
    EXPECT_EQ((std::vector<uint8_t>{0, 0, 1}), std::vector(levels.begin(), levels.begin() + 3));
    EXPECT_EQ(255, levels.back());

    // A bitmap by another program; float images have no PNG file.
    const auto bytes = ImageOf<uint8_t>(3, {1, 2, 3, 4, 5, 255});
    ASSERT_EQ(S_OK, buffer->CreateFromImage(bytes.get()));
    ASSERT_EQ(S_OK, buffer->CopyToClipboard());
    EXPECT_EQ(bytes.values(), PixelsOf<uint8_t>(Get(helper_, &IVBHelper::PasteImage)));
    ASSERT_EQ(S_OK, helper_->CopyImage(ImageOf<float>(2, {-1, 1}).get()));
    EXPECT_EQ((std::vector<uint8_t>{0, 255}), PixelsOf<uint8_t>(Get(helper_, &IVBHelper::PasteImage)));
}

#else

TEST_F(VBHelper, NeedsWindowsForClipboardDialogAndArrays) {
    const auto stream = Get(helper_, &IVBHelper::CreateMemoryStream);
    Text text;
    IImageVPA* image = nullptr;
    VARIANT value = {};
    EXPECT_TRUE(FailsSilently(helper_->get_ClipboardText(text.Out()), E_NOTIMPL));
    EXPECT_TRUE(FailsSilently(helper_->put_ClipboardText(text), E_NOTIMPL));
    EXPECT_TRUE(FailsSilently(helper_->CopyImage(NewImage<uint8_t>(1, 1).get()), E_NOTIMPL));
    EXPECT_TRUE(FailsSilently(helper_->PasteImage(&image), E_NOTIMPL));
    EXPECT_TRUE(FailsSilently(helper_->BrowseForFolder(text, text, text.Out()), E_NOTIMPL));
    EXPECT_TRUE(FailsSilently(helper_->ReadBytes(stream.get(), -1, &value), E_NOTIMPL));
    EXPECT_TRUE(FailsSilently(helper_->WriteBytes(stream.get(), value), E_NOTIMPL));
}

#endif

}  // namespace
}  // namespace orlix::testing
