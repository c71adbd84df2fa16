// The display of an image as its clients see it: band, dirty flag, colour table, range, snapping and equalising.

#include <gmock/gmock.h>

#include <cmath>

#include "contract/support.hpp"

namespace orlix::testing {
namespace {

using ::testing::Pair;

constexpr float kFloatNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kFloatInfinity = std::numeric_limits<float>::infinity();
constexpr double kMostFloat = std::numeric_limits<float>::max();

template <class Pixel>
TypedImage<Pixel> RowOf(const std::vector<Pixel>& pixels) {
    return ImageOf<Pixel>(static_cast<LONG>(pixels.size()), pixels);
}

LONG Dirty(const Image& image) { return Get(image.display, &IDisplayProcess::get_DisplayDirty); }
OLE_COLOR Color(const Image& image, LONG entry) { return Get(image.display, &IDisplayProcess::get_ColorTable, entry); }

std::pair<double, double> Put(const Image& image, double lower, double upper) {
    Check(image.display->PutDisplayRange(lower, upper), image.display);
    return image.DisplayRange();
}

std::pair<double, double> Snapped(const Image& image, double left, double right, LONG roundOut) {
    Check(image.display->SnapDisplayRange(left, right, roundOut), image.display);
    return image.DisplayRange();
}

// Whether the call, which succeeds, sets the flag.
template <class Call>
bool GetsDirty(const Image& image, const Call& call) {
    Check(image.display->put_DisplayDirty(0), image.display);
    EXPECT_EQ(S_OK, call());
    return Dirty(image) == 1;
}

bool TableIsARamp(const Image& image) {
    for (LONG i = 0; i < 256; ++i)
        if (Color(image, i) != static_cast<OLE_COLOR>(i) * 0x010101) return false;
    return true;
}

// The greys that an equalised table gives to the levels.
void ExpectGreys(const Image& image, std::initializer_list<std::pair<LONG, OLE_COLOR>> greys) {
    ASSERT_EQ(S_OK, image.display->EqualizeColorTable());
    for (const auto& [level, grey] : greys) EXPECT_EQ(grey * 0x010101, Color(image, level)) << level;
}

// Columns of a one-row image; none when left is beyond.
void Restrict(const Image& image, LONG left, LONG right) {
    const auto [bands, width, height] = image.size();
    image.SetRegion(RectangleOf(width + 9, height, left, 0, right, height - 1));
}

// ------------------------------------------------------------------------------------------------- band and dirty flag

TEST(DisplayDirty, IsOneOrZeroAndFollowsWhatChangesThePicture) {
    const auto image = RowOf<uint8_t>({1, 2, 3});
    EXPECT_EQ(1, Dirty(image));
    const auto other = RowOf<uint8_t>({4});
    const auto& process = image.process;
    const auto& display = image.display;
    const struct {
        const char* what;
        std::function<HRESULT()> call;
        bool dirty;
    } cases[] = {
        {"put 5", [&] { return display->put_DisplayDirty(5); }, true},
        {"put the least number", [&] { return display->put_DisplayDirty(kLeast); }, true},
        {"put 0", [&] { return display->put_DisplayDirty(0); }, false},
        {"pixels", [&] { return process->Invert(); }, true},
        {"a filter", [&] { return process->Gaussian3x3(image.get(), 0); }, true},
        {"a band", [&] { return display->put_BandToDisplay(-1); }, true},
        {"the range", [&] { return display->PutDisplayRange(1, 2); }, true},
        {"snapping", [&] { return display->SnapDisplayRange(0, 0, 0); }, true},
        {"the same band again", [&] { return process->put_BandToProcess(0); }, true},
        {"creation", [&] { return image->Create(3, 1, 1, DT_BYTE, 1); }, true},
        {"a copy", [&] { return image->CreateFromImage(other.get(), 0); }, true},
        {"the whole range", [&] { return display->PutDisplayRange(0, 255); }, true},
        // Neither the pixels nor their levels.
        {"a colour", [&] { return display->put_ColorTable(1, 0xff); }, false},
        {"equalising", [&] { return display->EqualizeColorTable(); }, false},
        {"the luminance range", [&] { return process->PutLuminanceRange(1, 2); }, false},
    };
    for (const auto& c : cases) EXPECT_EQ(c.dirty, GetsDirty(image, c.call)) << c.what;
}

// -------------------------------------------------------------------------------------------------------- colour table

TEST(ColorTable, IsAGreyRampThatTakesRedGreenAndBlue) {
    const auto image = RowOf<uint8_t>({0});
    EXPECT_TRUE(TableIsARamp(image));
    for (const auto& [entry, color, got] :
         {std::tuple{3, 0x00FF8040u, 0x00FF8040u}, {255, 0xAB010203u, 0x00010203u}, {3, 0x030303u, 0x030303u}}) {
        ASSERT_EQ(S_OK, image.display->put_ColorTable(entry, color));
        EXPECT_EQ(got, Color(image, entry));
    }
    for (const LONG bad : {LONG{256}, LONG{-1}, kLeast, kMost}) {
        OLE_COLOR color = 0x1234;
        const std::string text = "IDisplayProcess: color table entry is out of range.";
        EXPECT_TRUE(Fails(image.display->get_ColorTable(bad, &color), text));
        EXPECT_EQ(0x1234u, color);
        EXPECT_TRUE(Fails(image.display->put_ColorTable(bad, 0), text));
    }
    ASSERT_EQ(S_OK, image.display->put_ColorTable(255, 0xffffff));
    EXPECT_TRUE(TableIsARamp(image));
}

// --------------------------------------------------------------------------------------------------------------- range

TEST(DisplayRange, BeginsWithThatOfTheTypeAndTakesNaNForFloats) {
    for (const auto& [type, upper] :
         {std::pair<LONG, double>{DT_BYTE, 255}, {DT_WORD, 65535}, {DT_DWORD, 4294967295.0}, {DT_Float, 255}}) {
        const Image image;
        ASSERT_EQ(S_OK, image->Create(1, 1, 1, type, 1));
        EXPECT_THAT(image.DisplayRange(), Pair(0, upper));
    }
    EXPECT_TRUE(std::isnan(Put(RowOf<float>({0}), kNaN, 1).first));
}

// ------------------------------------------------------------------------------------------------------------ snapping

TEST(SnapDisplayRange, TakesTheExtremesOrTheTrimmedLimitsOrAStandardSpan) {
    std::vector<uint8_t> bytes;  // one pixel of each level 0 to 99
    std::vector<uint16_t> words;
    for (uint8_t i = 0; i < 100; ++i) {
        bytes.push_back(i);
        words.push_back(static_cast<uint16_t>(5000 + i));  // a bin for each value
    }
    const struct {
        Image image;
        double left, right;
        LONG roundOut;
        double lower, upper;
    } cases[] = {
        {RowOf<uint8_t>({9, 7, 180, 8}), 0, 0, 0, 7, 180},
        {RowOf<uint32_t>({4294967295u, 3000000001u}), 0, 0, 0, 3000000001.0, 4294967295.0},
        {RowOf<float>({0.25f, -0.5f, kFloatNaN, 1e-30f}), 0, 0, 0, -0.5, 0.25},
        {RowOf<uint16_t>({4200, 4200}), 0.3, 0.3, 0, 4200, 4200},
        {RowOf(bytes), 0.1, 0.1, 0, 10, 89},
        {RowOf(bytes), 0, 0.1, 0, 0, 89},
        {RowOf(words), 0.1, 0.2, 0, 5010, 5079},
        {RowOf<uint8_t>({0, 1, 1}), 0, 0, 1, 0, 1},
        {RowOf<uint8_t>({1, 1}), 0, 0, -7, 0, 1},
        {RowOf<uint8_t>({1, 2}), 0, 0, 1, 0, 255},
        {RowOf<uint16_t>({40, 255}), 0, 0, 1, 0, 255},
        {RowOf<uint16_t>({40, 256}), 0, 0, 1, 0, 1023},
        {RowOf<uint16_t>({40, 1024}), 0, 0, 1, 0, 4095},
        {RowOf<uint16_t>({40, 4096}), 0, 0, 1, 0, 65535},
        {RowOf<uint32_t>({40, 65535}), 0, 0, 1, 0, 65535},
        {RowOf<uint32_t>({40, 65536}), 0, 0, 1, 40, 65536},
        {RowOf<float>({0.25f, 0.5f}), 0, 0, 1, 0, 1},
        {RowOf<float>({0.25f, 1.5f}), 0, 0, 1, 0, 255},
        {RowOf<float>({-0.25f, 0.5f}), 0, 0, 1, 0, 255},
        {RowOf<float>({-8, 65535.5f}), 0, 0, 1, -8, 65535.5},
        {RowOf<float>({-kFloatInfinity, 1, kFloatInfinity}), 0, 0, 0, -kMostFloat, kMostFloat},
        {RowOf<float>({kFloatInfinity}), 0.4, 0.4, 0, kMostFloat, kMostFloat},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        EXPECT_THAT(Snapped(c.image, c.left, c.right, c.roundOut), Pair(c.lower, c.upper));
    }
    // 1024 bins, a pixel in each, whatever the number of bins of the image's own histogram.
    const auto floats = NewImage<float>(1024, 1);
    floats.Fill([](LONG x, LONG) { return static_cast<float>(x) / 1023; });
    ASSERT_EQ(S_OK, floats.process->put_NumberOfBins(2));
    const auto trimmed = Snapped(floats, 0.25, 0.5, 0);
    EXPECT_NEAR(0.25, trimmed.first, 1.0 / 1024);
    EXPECT_NEAR(0.5, trimmed.second, 1.0 / 1024);
    const auto infinite = Snapped(RowOf<float>({-kFloatInfinity, 1, kFloatInfinity}), 0.4, 0.4, 0);
    EXPECT_TRUE(std::isfinite(infinite.first) && std::isfinite(infinite.second));
}

TEST(Display, LooksAtTheRegionOfTheBandToDisplay) {
    const auto image = NewImage<uint8_t>(4, 1, 2);
    for (LONG band = 0; band < 2; ++band) image.Fill([=](LONG x, LONG) { return 10 + 4 * band + x; }, band);
    ASSERT_EQ(S_OK, image.process->put_BandToProcess(0));
    EXPECT_THAT(Snapped(image, 0, 0, 0), Pair(10, 17));  // all bands
    ExpectGreys(image, {{0, 32}, {204, 191}});           // of eight levels 36.4 apart: one, and six
    ASSERT_EQ(S_OK, image.display->put_BandToDisplay(1));
    EXPECT_THAT(Snapped(image, 0, 0, 0), Pair(14, 17));
    ExpectGreys(image, {{0, 64}, {84, 64}, {85, 128}});
    Restrict(image, 1, 2);
    EXPECT_THAT(Snapped(image, 0, 0, 0), Pair(15, 16));
    ExpectGreys(image, {{0, 128}, {254, 128}, {255, 255}});
}

TEST(SnapDisplayRange, ChangesNothingForARegionWithoutPixelsOrWrongTrims) {
    const std::string total = "IHistogram::AutoThresholdTrim: the total amount of trimming must be less than 1.0.";
    for (const Image& image : std::initializer_list<Image>{RowOf<uint8_t>({1, 2}), RowOf<float>({1, 2})}) {
        Put(image, 5, 6);
        ASSERT_EQ(S_OK, image.display->put_DisplayDirty(0));
        EXPECT_EQ(E_FAIL, image.display->SnapDisplayRange(0.6, 0.4, 1));
        EXPECT_EQ(total, TakeReportedText());
        for (const auto& [left, right] : {std::pair{-0.1, 0.0}, {1, 2}, {kNaN, 0}, {0, 1}, {0, kNaN}})
            EXPECT_EQ(E_FAIL, image.display->SnapDisplayRange(left, right, 1)) << left << right;
        Restrict(image, 5, 6);
        EXPECT_EQ(S_FALSE, image.display->SnapDisplayRange(0, 0, 1));
        EXPECT_THAT(image.DisplayRange(), Pair(5, 6));
        EXPECT_EQ(0, Dirty(image));
    }
    EXPECT_EQ(S_FALSE, RowOf<float>({kFloatNaN}).display->SnapDisplayRange(0, 0, 0));
    // A refused creation leaves an image without pixels.
    const Image none;
    EXPECT_NE(S_OK, none->Create(0, 1, 1, DT_WORD, 0));
    EXPECT_THAT(Put(none, 1, 2), Pair(1, 2));
    EXPECT_TRUE(FailsSilently(none.display->SnapDisplayRange(0, 0, 0)));
    EXPECT_TRUE(FailsSilently(none.display->EqualizeColorTable()));
    EXPECT_TRUE(
        Fails(none.display->put_BandToDisplay(0), "IDisplayProcess::put_BandToDisplay: invalid band to process"));
}

// ---------------------------------------------------------------------------------------------------------- equalising

TEST(EqualizeColorTable, SpreadsTheGreysOverTheLevelsOfPixelsWithinTheRange) {
    const auto image = RowOf<uint8_t>({10, 10, 20, 200});  // cumulated: 2, 3, 4 of 4
    ExpectGreys(image, {{0, 0}, {9, 0}, {10, 128}, {19, 128}, {20, 191}, {199, 191}, {200, 255}, {255, 255}});
    EXPECT_THAT(image.DisplayRange(), Pair(0, 255));

    const auto words = RowOf<uint16_t>({999, 1000, 1510, 1511});
    Put(words, 1000, 1510);
    ExpectGreys(words, {{0, 128}, {254, 128}, {255, 255}});

    const auto floats = RowOf<float>({-1, 0, 0.5f, 1, 2, kFloatNaN, kFloatInfinity});
    Put(floats, 0, 1);
    ExpectGreys(floats, {{127, 85}, {128, 170}, {254, 170}});  // 0.5 has level 128

    const auto negative = RowOf<uint8_t>({9, 10, 14, 20, 21});
    Put(negative, 20, 10);  // 20 has level 0, 14 has 153, 10 has 255
    ExpectGreys(negative, {{152, 85}, {153, 170}});
}

TEST(EqualizeColorTable, FailsWhenNoPixelLiesWithinAndKeepsTheTable) {
    const auto bytes = RowOf<uint8_t>({5, 100});
    const auto floats = RowOf<float>({5, kFloatNaN});
    const auto fails = [](const Image& image) {
        EXPECT_TRUE(Fails(image.display->EqualizeColorTable(), "IDisplayProcess::EqualizeColorTable: empty histogram"));
        EXPECT_TRUE(TableIsARamp(image));
    };
    Put(bytes, 6, 99);
    fails(bytes);
    Put(bytes, 0, 255);
    Restrict(bytes, 5, 6);
    fails(bytes);
    for (const auto& [lower, upper] : {std::pair{kNaN, 10.0}, {0.0, kNaN}}) {
        Put(floats, lower, upper);
        fails(floats);
    }
}

}  // namespace
}  // namespace orlix::testing
