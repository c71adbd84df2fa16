// The display of an image as its clients see it: band, dirty flag, colour table, range, snapping and equalising.

#include <gmock/gmock.h>

#include <array>
#include <cmath>
#include <limits>

#include "contract/support.hpp"

namespace orlix::testing {
namespace {

using ::testing::Pair;

constexpr float kFloatNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kFloatInfinity = std::numeric_limits<float>::infinity();

struct Image {
    ComPtr<IImageVPAExPlus> pixels;
    ComPtr<IImageProcess> process;
    ComPtr<IDisplayProcess> display;
    explicit Image(const ComPtr<IImageVPAExPlus>& image)
        : pixels(image), process(Cast<IImageProcess>(image)), display(Cast<IDisplayProcess>(image)) {}

    LONG dirty() const {
        LONG value = -1;
        Check(display->get_DisplayDirty(&value), display);
        return value;
    }
    // Whether the call, which succeeds, sets the flag.
    template <class Call>
    bool GetsDirty(const Call& call) const {
        Check(display->put_DisplayDirty(0), display);
        EXPECT_EQ(S_OK, call());
        return dirty() == 1;
    }
    LONG band() const {
        LONG value = -99;
        Check(display->get_BandToDisplay(&value), display);
        return value;
    }
    std::pair<double, double> range() const {
        double lower = -99, upper = -99;
        Check(display->GetDisplayRange(&lower, &upper), display);
        return {lower, upper};
    }
    std::pair<double, double> Put(double lower, double upper) const {
        Check(display->PutDisplayRange(lower, upper), display);
        return range();
    }
    std::pair<double, double> Snapped(double left, double right, LONG roundOut) const {
        Check(display->SnapDisplayRange(left, right, roundOut), display);
        return range();
    }
    OLE_COLOR color(LONG entry) const {
        OLE_COLOR value = 0xdeadbeef;
        Check(display->get_ColorTable(entry, &value), display);
        return value;
    }
    bool TableIsARamp() const {
        for (LONG i = 0; i < 256; ++i)
            if (color(i) != static_cast<OLE_COLOR>(i) * 0x010101) return false;
        return true;
    }
    // The grey that an equalised table gives a level.
    int Grey(LONG entry) const {
        const OLE_COLOR value = color(entry);
        EXPECT_EQ((value & 0xff) * 0x010101, value) << entry;
        return static_cast<int>(value & 0xff);
    }
    void Restrict(LONG left, LONG right) const {  // columns of a one-row image; none when left is beyond
        LONG bands = 0, width = 0, height = 0;
        Check(pixels->Dimensions(&bands, &width, &height), pixels);
        auto region = CreateObject<IShapeRegionOfInterest>("Orlix.ShapeRegionOfInterest");
        Check(region->CreateRectangle(width + 9, height, left, 0, right, height - 1), region);
        Check(process->put_RegionOfInterest(region.get()), process);
    }
};

template <class Pixel>
Image RowOf(const std::vector<Pixel>& pixels) {
    return Image(ImageOf<Pixel>(static_cast<LONG>(pixels.size()), pixels));
}

// ------------------------------------------------------------------------------------------------- band and dirty flag

TEST(BandToDisplay, FollowsTheNumberOfBandsAndAcceptsTheBandsOfTheImage) {
    EXPECT_EQ(0, Image(NewImage<uint8_t>(2, 2, 1)).band());
    const Image image(NewImage<uint8_t>(2, 2, 3));
    EXPECT_EQ(BI_AllBands, image.band());
    for (const LONG good : {LONG{-1}, LONG{0}, LONG{2}}) {
        EXPECT_TRUE(image.GetsDirty([&] { return image.display->put_BandToDisplay(good); }));
        EXPECT_EQ(good, image.band());
    }
    ASSERT_EQ(S_OK, image.display->put_DisplayDirty(0));
    for (const LONG bad : {LONG{3}, LONG{-2}, std::numeric_limits<LONG>::min(), std::numeric_limits<LONG>::max()})
        EXPECT_TRUE(Fails(image.display->put_BandToDisplay(bad),
                          "IDisplayProcess::put_BandToDisplay: invalid band to process"));
    EXPECT_EQ(2, image.band());
    EXPECT_EQ(0, image.dirty());
    EXPECT_EQ(BI_AllBands, Get(image.process, &IImageProcessBase::get_BandToProcess));  // another setting
    ASSERT_EQ(S_OK, image.pixels->Create(2, 2, 1, DT_BYTE, 1));
    EXPECT_EQ(0, image.band());
}

TEST(DisplayDirty, IsOneOrZeroAndFollowsWhatChangesThePicture) {
    const Image image = RowOf<uint8_t>({1, 2, 3});
    EXPECT_EQ(1, image.dirty());
    for (const LONG value : {LONG{5}, LONG{-1}, std::numeric_limits<LONG>::min()}) {
        EXPECT_TRUE(image.GetsDirty([&] { return image.display->put_DisplayDirty(value); }));
        EXPECT_EQ(1, image.dirty());
    }
    EXPECT_FALSE(image.GetsDirty([&] { return image.display->put_DisplayDirty(0); }));
    EXPECT_TRUE(image.GetsDirty([&] { return image.process->Invert(); }));
    EXPECT_TRUE(image.GetsDirty([&] { return image.process->Gaussian3x3(image.pixels.get(), 0); }));
    EXPECT_TRUE(image.GetsDirty([&] { return image.display->PutDisplayRange(0, 255); }));
    EXPECT_TRUE(image.GetsDirty([&] { return image.display->SnapDisplayRange(0, 0, 0); }));
    EXPECT_TRUE(image.GetsDirty([&] { return image.process->put_BandToProcess(0); })) << "the same band again";
    EXPECT_TRUE(image.GetsDirty([&] { return image.pixels->Create(3, 1, 1, DT_BYTE, 1); }));
    EXPECT_TRUE(image.GetsDirty([&] { return image.pixels->CreateFromImage(RowOf<uint8_t>({4}).pixels.get(), 0); }));
    // Neither the pixels nor their levels.
    image.Put(0, 255);
    EXPECT_FALSE(image.GetsDirty([&] { return image.display->put_ColorTable(1, 0xff); }));
    EXPECT_FALSE(image.GetsDirty([&] { return image.display->EqualizeColorTable(); }));
    EXPECT_FALSE(image.GetsDirty([&] { return image.process->PutLuminanceRange(1, 2); }));
}

// -------------------------------------------------------------------------------------------------------- colour table

TEST(ColorTable, IsAGreyRampThatTakesRedGreenAndBlue) {
    const Image image = RowOf<uint8_t>({0});
    EXPECT_TRUE(image.TableIsARamp());
    ASSERT_EQ(S_OK, image.display->put_ColorTable(3, 0x00FF8040));
    EXPECT_EQ(0x00FF8040u, image.color(3));
    ASSERT_EQ(S_OK, image.display->put_ColorTable(255, 0xAB010203));
    EXPECT_EQ(0x00010203u, image.color(255));
    for (const LONG bad : {LONG{256}, LONG{-1}, std::numeric_limits<LONG>::min(), std::numeric_limits<LONG>::max()}) {
        OLE_COLOR color = 0x1234;
        EXPECT_TRUE(
            Fails(image.display->get_ColorTable(bad, &color), "IDisplayProcess: color table entry is out of range."));
        EXPECT_EQ(0x1234u, color);
        EXPECT_TRUE(
            Fails(image.display->put_ColorTable(bad, 0), "IDisplayProcess: color table entry is out of range."));
    }
    ASSERT_EQ(S_OK, image.display->put_ColorTable(3, 0x030303));
    ASSERT_EQ(S_OK, image.display->put_ColorTable(255, 0xffffff));
    EXPECT_TRUE(image.TableIsARamp());
}

// --------------------------------------------------------------------------------------------------------------- range

TEST(DisplayRange, IsStoredInThePixelType) {
    const Image bytes(NewImage<uint8_t>(1, 1));
    EXPECT_THAT(bytes.range(), Pair(0, 255));
    EXPECT_THAT(bytes.Put(10.9, 200.2), Pair(10, 200));
    EXPECT_THAT(bytes.Put(256, -1), Pair(0, 255));
    EXPECT_THAT(bytes.Put(-0.9, 255.9), Pair(0, 255));
    EXPECT_THAT(bytes.Put(200, 100), Pair(200, 100));  // a negative
    EXPECT_THAT(bytes.Put(kNaN, kInfinity), Pair(0, 0));
    EXPECT_THAT(bytes.Put(-1e300, 1e300), Pair(0, 0));

    const Image words(NewImage<uint16_t>(1, 1));
    EXPECT_THAT(words.range(), Pair(0, 65535));
    EXPECT_THAT(words.Put(65536.5, -1.5), Pair(0, 65535));
    EXPECT_THAT(words.Put(1000.9, 70000), Pair(1000, 4464));

    const Image integers(NewImage<uint32_t>(1, 1));
    EXPECT_THAT(integers.range(), Pair(0, 4294967295.0));
    EXPECT_THAT(integers.Put(4294967296.0, -2), Pair(0, 4294967294.0));

    const Image floats(NewImage<float>(1, 1));
    EXPECT_THAT(floats.range(), Pair(0, 255));
    EXPECT_THAT(floats.Put(-0.75, 0.1), Pair(-0.75, static_cast<double>(0.1f)));
    EXPECT_THAT(floats.Put(-kInfinity, 1e300), Pair(-static_cast<double>(std::numeric_limits<float>::max()),
                                                    static_cast<double>(std::numeric_limits<float>::max())));
    EXPECT_TRUE(std::isnan(floats.Put(kNaN, 1).first));
}

TEST(DisplaySettings, StayWhileThePixelTypeStays) {
    const Image image(NewImage<uint8_t>(2, 1, 3));
    image.Put(10, 20);
    ASSERT_EQ(S_OK, image.display->put_ColorTable(7, 0xff));
    ASSERT_EQ(S_OK, image.display->put_BandToDisplay(1));
    ASSERT_EQ(S_OK, image.pixels->Create(5, 5, 2, DT_BYTE, 1));
    EXPECT_THAT(image.range(), Pair(10, 20));
    EXPECT_EQ(0xffu, image.color(7));
    EXPECT_EQ(BI_AllBands, image.band());
    EXPECT_NE(S_OK, image.pixels->Create(0, 5, 2, DT_BYTE, 1));
    EXPECT_THAT(image.range(), Pair(10, 20));
    ASSERT_EQ(S_OK, image.pixels->Create(5, 5, 1, DT_WORD, 1));
    EXPECT_THAT(image.range(), Pair(0, 65535));
    EXPECT_TRUE(image.TableIsARamp());
    EXPECT_EQ(0, image.band());
}

// ------------------------------------------------------------------------------------------------------------ snapping

TEST(SnapDisplayRange, TakesTheExtremesWhereNothingIsTrimmed) {
    EXPECT_THAT(RowOf<uint8_t>({9, 7, 180, 8}).Snapped(0, 0, 0), Pair(7, 180));
    EXPECT_THAT(RowOf<uint16_t>({700, 300, 60001}).Snapped(0, 0, 0), Pair(300, 60001));
    EXPECT_THAT(RowOf<uint32_t>({4294967295u, 3000000001u}).Snapped(0, 0, 0), Pair(3000000001.0, 4294967295.0));
    EXPECT_THAT(RowOf<float>({0.1f, -0.3f, kFloatNaN, 1e-30f}).Snapped(0, 0, 0),
                Pair(static_cast<double>(-0.3f), static_cast<double>(0.1f)));
    EXPECT_THAT(RowOf<uint8_t>({42}).Snapped(0, 0, 0), Pair(42, 42));
    EXPECT_THAT(RowOf<uint16_t>({4200, 4200}).Snapped(0.3, 0.3, 0), Pair(4200, 4200));
}

TEST(SnapDisplayRange, TrimsTheTailsOfTheHistogram) {
    std::vector<uint8_t> bytes(100);  // one pixel of each level 0 to 99
    std::vector<uint16_t> words(100);
    std::vector<float> floats(1024);
    for (size_t i = 0; i < 100; ++i) bytes[i] = static_cast<uint8_t>(i);
    for (size_t i = 0; i < 100; ++i) words[i] = static_cast<uint16_t>(5000 + i);  // a bin for each value
    for (size_t i = 0; i < 1024; ++i) floats[i] = static_cast<float>(i) / 1023;
    EXPECT_THAT(RowOf(bytes).Snapped(0.1, 0.1, 0), Pair(10, 89));
    EXPECT_THAT(RowOf(bytes).Snapped(0, 0.1, 0), Pair(0, 89));
    EXPECT_THAT(RowOf(words).Snapped(0.1, 0.2, 0), Pair(5010, 5079));
    // 1024 bins, a pixel in each, whatever the number of bins of the image's own histogram.
    const Image image = RowOf(floats);
    ASSERT_EQ(S_OK, image.process->put_NumberOfBins(2));
    const auto [lower, upper] = image.Snapped(0.25, 0.5, 0);
    EXPECT_NEAR(0.25, lower, 1.0 / 1024);
    EXPECT_NEAR(0.5, upper, 1.0 / 1024);
}

TEST(SnapDisplayRange, RoundsOutToAStandardSpan) {
    EXPECT_THAT(RowOf<uint8_t>({0, 1, 1}).Snapped(0, 0, 1), Pair(0, 1));
    EXPECT_THAT(RowOf<uint8_t>({1, 1}).Snapped(0, 0, -7), Pair(0, 1));
    EXPECT_THAT(RowOf<uint8_t>({90, 180}).Snapped(0, 0, 1), Pair(0, 255));
    EXPECT_THAT(RowOf<uint8_t>({1, 2}).Snapped(0, 0, 1), Pair(0, 255));
    EXPECT_THAT(RowOf<uint16_t>({40, 255}).Snapped(0, 0, 1), Pair(0, 255));
    EXPECT_THAT(RowOf<uint16_t>({40, 256}).Snapped(0, 0, 1), Pair(0, 1023));
    EXPECT_THAT(RowOf<uint16_t>({40, 1024}).Snapped(0, 0, 1), Pair(0, 4095));
    EXPECT_THAT(RowOf<uint16_t>({40, 4096}).Snapped(0, 0, 1), Pair(0, 65535));
    EXPECT_THAT(RowOf<uint32_t>({40, 65535}).Snapped(0, 0, 1), Pair(0, 65535));
    EXPECT_THAT(RowOf<uint32_t>({40, 65536}).Snapped(0, 0, 1), Pair(40, 65536));
    EXPECT_THAT(RowOf<float>({0.25f, 0.5f}).Snapped(0, 0, 1), Pair(0, 1));
    EXPECT_THAT(RowOf<float>({0.25f, 1.5f}).Snapped(0, 0, 1), Pair(0, 255));
    EXPECT_THAT(RowOf<float>({-0.25f, 0.5f}).Snapped(0, 0, 1), Pair(0, 255));
    EXPECT_THAT(RowOf<float>({-8, 65535.5f}).Snapped(0, 0, 1), Pair(-8, 65535.5));
}

TEST(SnapDisplayRange, LooksAtTheRegionOfTheBandToDisplay) {
    const Image image(NewImage<uint8_t>(4, 1, 2));
    uint8_t next = 10;
    for (LONG band = 0; band < 2; ++band)
        for (const auto row : Rows<uint8_t>(image.pixels, band))
            for (uint8_t& pixel : row) pixel = next++;
    ASSERT_EQ(S_OK, image.process->put_BandToProcess(0));
    EXPECT_THAT(image.Snapped(0, 0, 0), Pair(10, 17));  // all bands
    ASSERT_EQ(S_OK, image.display->put_BandToDisplay(1));
    EXPECT_THAT(image.Snapped(0, 0, 0), Pair(14, 17));
    image.Restrict(1, 2);
    EXPECT_THAT(image.Snapped(0, 0, 0), Pair(15, 16));
}

TEST(SnapDisplayRange, ChangesNothingForARegionWithoutPixelsOrWrongTrims) {
    for (const Image& image : {RowOf<uint8_t>({1, 2}), RowOf<float>({1, 2})}) {
        image.Put(5, 6);
        ASSERT_EQ(S_OK, image.display->put_DisplayDirty(0));
        const struct {
            double left, right;
            const char* text;
        } cases[] = {
            {-0.1, 0, "IHistogram::AutoThresholdTrim: the amount trimmed on the left must be between 0.0 and 1.0."},
            {1, 2, "IHistogram::AutoThresholdTrim: the amount trimmed on the left must be between 0.0 and 1.0."},
            {kNaN, 0, "IHistogram::AutoThresholdTrim: the amount trimmed on the left must be between 0.0 and 1.0."},
            {0, 1, "IHistogram::AutoThresholdTrim: the amount trimmed on the right must be between 0.0 and 1.0."},
            {0, kNaN, "IHistogram::AutoThresholdTrim: the amount trimmed on the right must be between 0.0 and 1.0."},
            {0.6, 0.4, "IHistogram::AutoThresholdTrim: the total amount of trimming must be less than 1.0."}};
        for (const auto& c : cases) {
            const HRESULT result = image.display->SnapDisplayRange(c.left, c.right, 1);
            EXPECT_EQ(E_FAIL, result);
            EXPECT_EQ(c.text, TakeReported().text);
        }
        image.Restrict(5, 6);
        EXPECT_EQ(S_FALSE, image.display->SnapDisplayRange(0, 0, 1));
        EXPECT_THAT(image.range(), Pair(5, 6));
        EXPECT_EQ(0, image.dirty());
    }
    EXPECT_EQ(S_FALSE, RowOf<float>({kFloatNaN}).display->SnapDisplayRange(0, 0, 0));
}

TEST(SnapDisplayRange, IsFiniteAlsoForInfinitePixels) {
    constexpr double kMost = std::numeric_limits<float>::max();
    const Image image = RowOf<float>({-kFloatInfinity, 1, kFloatInfinity});
    EXPECT_THAT(image.Snapped(0, 0, 0), Pair(-kMost, kMost));
    const auto [lower, upper] = image.Snapped(0.4, 0.4, 0);
    EXPECT_TRUE(std::isfinite(lower) && std::isfinite(upper)) << lower << " " << upper;
    EXPECT_THAT(RowOf<float>({kFloatInfinity}).Snapped(0.4, 0.4, 0), Pair(kMost, kMost));
}

// ---------------------------------------------------------------------------------------------------------- equalising

TEST(EqualizeColorTable, SpreadsTheGreysOverTheLevels) {
    const Image image = RowOf<uint8_t>({10, 10, 20, 200});  // cumulated: 2, 3, 4 of 4
    ASSERT_EQ(S_OK, image.display->EqualizeColorTable());
    for (LONG i = 0; i < 256; ++i) EXPECT_EQ(i < 10 ? 0 : i < 20 ? 128 : i < 200 ? 191 : 255, image.Grey(i)) << i;
    EXPECT_THAT(image.range(), Pair(0, 255));
}

TEST(EqualizeColorTable, CountsTheLevelsOfPixelsWithinTheRange) {
    const Image words = RowOf<uint16_t>({999, 1000, 1510, 1511});
    words.Put(1000, 1510);
    ASSERT_EQ(S_OK, words.display->EqualizeColorTable());
    EXPECT_EQ(128, words.Grey(0));
    EXPECT_EQ(128, words.Grey(254));
    EXPECT_EQ(255, words.Grey(255));

    const Image floats = RowOf<float>({-1, 0, 0.5f, 1, 2, kFloatNaN, kFloatInfinity});
    floats.Put(0, 1);
    ASSERT_EQ(S_OK, floats.display->EqualizeColorTable());
    EXPECT_EQ(85, floats.Grey(127));
    EXPECT_EQ(170, floats.Grey(128));  // 0.5 has level 128
    EXPECT_EQ(170, floats.Grey(254));

    const Image negative = RowOf<uint8_t>({9, 10, 14, 20, 21});
    negative.Put(20, 10);  // 20 has level 0, 14 has 153, 10 has 255
    ASSERT_EQ(S_OK, negative.display->EqualizeColorTable());
    EXPECT_EQ(85, negative.Grey(152));
    EXPECT_EQ(170, negative.Grey(153));
}

TEST(EqualizeColorTable, LooksAtTheRegionOfTheBandToDisplay) {
    const Image image(NewImage<uint8_t>(4, 1, 2));
    for (const auto row : Rows<uint8_t>(image.pixels, 1)) {
        row[1] = 100;
        row[3] = 50;
    }
    ASSERT_EQ(S_OK, image.display->EqualizeColorTable());  // six zeros of eight
    EXPECT_EQ(191, image.Grey(0));
    ASSERT_EQ(S_OK, image.display->put_BandToDisplay(1));
    ASSERT_EQ(S_OK, image.display->EqualizeColorTable());
    EXPECT_EQ(128, image.Grey(0));
    image.Restrict(1, 1);
    ASSERT_EQ(S_OK, image.display->EqualizeColorTable());
    EXPECT_EQ(0, image.Grey(99));
    EXPECT_EQ(255, image.Grey(100));
}

TEST(EqualizeColorTable, FailsWhenNoPixelLiesWithinAndKeepsTheTable) {
    constexpr const char* kEmpty = "IDisplayProcess::EqualizeColorTable: empty histogram";
    const Image bytes = RowOf<uint8_t>({5, 100});
    bytes.Put(6, 99);
    EXPECT_TRUE(Fails(bytes.display->EqualizeColorTable(), kEmpty));
    EXPECT_TRUE(bytes.TableIsARamp());
    bytes.Put(0, 255);
    bytes.Restrict(5, 6);
    EXPECT_TRUE(Fails(bytes.display->EqualizeColorTable(), kEmpty));
    const Image floats = RowOf<float>({5, kFloatNaN});
    floats.Put(kNaN, 10);
    EXPECT_TRUE(Fails(floats.display->EqualizeColorTable(), kEmpty));
    floats.Put(0, kNaN);
    EXPECT_TRUE(Fails(floats.display->EqualizeColorTable(), kEmpty));
    EXPECT_TRUE(floats.TableIsARamp());
}

// --------------------------------------------------------------------------------------------------------- odd clients

TEST(DisplayProcess, NeedsAnImageAndPlacesForItsResults) {
    const Image image = RowOf<uint8_t>({1});
    double bound = 77;
    EXPECT_TRUE(FailsSilently(image.display->get_BandToDisplay(nullptr), E_POINTER));
    EXPECT_TRUE(FailsSilently(image.display->get_DisplayDirty(nullptr), E_POINTER));
    EXPECT_TRUE(FailsSilently(image.display->get_ColorTable(300, nullptr), E_POINTER));
    EXPECT_TRUE(FailsSilently(image.display->GetDisplayRange(nullptr, &bound), E_POINTER));
    EXPECT_TRUE(FailsSilently(image.display->GetDisplayRange(&bound, nullptr), E_POINTER));
    EXPECT_EQ(77, bound);

    const Image none(CreateObject<IImageVPAExPlus>("Orlix.Image"));
    LONG number = 0;
    OLE_COLOR color = 0;
    EXPECT_TRUE(FailsSilently(none.display->get_BandToDisplay(&number)));
    EXPECT_TRUE(FailsSilently(none.display->put_BandToDisplay(-1)));
    EXPECT_TRUE(FailsSilently(none.display->get_DisplayDirty(&number)));
    EXPECT_TRUE(FailsSilently(none.display->put_DisplayDirty(1)));
    EXPECT_TRUE(FailsSilently(none.display->get_ColorTable(0, &color)));
    EXPECT_TRUE(FailsSilently(none.display->put_ColorTable(0, 0)));
    EXPECT_TRUE(FailsSilently(none.display->GetDisplayRange(&bound, &bound)));
    EXPECT_TRUE(FailsSilently(none.display->PutDisplayRange(0, 1)));
    EXPECT_TRUE(FailsSilently(none.display->SnapDisplayRange(0, 0, 0)));
    EXPECT_TRUE(FailsSilently(none.display->EqualizeColorTable()));

    // A refused creation of another type leaves an image without pixels.
    EXPECT_NE(S_OK, none.pixels->Create(0, 1, 1, DT_WORD, 0));
    EXPECT_THAT(none.Put(1, 2), Pair(1, 2));
    EXPECT_TRUE(FailsSilently(none.display->SnapDisplayRange(0, 0, 0)));
    EXPECT_TRUE(FailsSilently(none.display->EqualizeColorTable()));
    EXPECT_TRUE(
        Fails(none.display->put_BandToDisplay(0), "IDisplayProcess::put_BandToDisplay: invalid band to process"));
}

}  // namespace
}  // namespace orlix::testing
