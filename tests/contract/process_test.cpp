// The processing frame as its clients see it: band, region, luminance range, thresholds, measurements, point
// operations. The arithmetic of the kernels is tested where they are.

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <numeric>

#include "contract/support.hpp"

namespace orlix::testing {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::Pair;

// As RowsOf shows bitmaps.
std::string Thresholded(const Image& image, double lower, double upper, LONG inside = 1) {
    return RowsOf(Get(image.process, &IImageProcess::Threshold, lower, upper, inside).get());
}

ComPtr<IHistogram> HistogramOfImage(const Image& image) { return Get(image.process, &IImageProcess::get_Histogram); }

LONG SumOf(const std::vector<LONG>& counts) { return std::accumulate(counts.begin(), counts.end(), LONG{0}); }

SGrayMeasurements Measured(const Image& image, int flags) {
    SGrayMeasurements measure = {};
    measure.m_lSize = 4711;
    Check(image.process->get_GrayMeasurements(static_cast<GrayExtractMeasurementType>(flags), &measure), image.process);
    EXPECT_EQ(4711, measure.m_lSize);  // the caller's
    return measure;
}

// The two settings of the band that an operation works on or the picture shows, and the two ranges.
struct Setting {
    std::string method;
    std::function<LONG(const Image&)> band;
    std::function<HRESULT(const Image&, LONG)> putBand;
    std::function<std::pair<double, double>(const Image&)> range;
    std::function<HRESULT(const Image&, double, double)> putRange;
};
const Setting kSettings[] = {
    {"IImageProcess::put_BandToProcess", [](auto& i) { return Get(i.process, &IImageProcess::get_BandToProcess); },
     [](auto& i, LONG band) { return i.process->put_BandToProcess(band); }, [](auto& i) { return i.LuminanceRange(); },
     [](auto& i, double lower, double upper) { return i.process->PutLuminanceRange(lower, upper); }},
    {"IDisplayProcess::put_BandToDisplay", [](auto& i) { return Get(i.display, &IDisplayProcess::get_BandToDisplay); },
     [](auto& i, LONG band) { return i.display->put_BandToDisplay(band); }, [](auto& i) { return i.DisplayRange(); },
     [](auto& i, double lower, double upper) { return i.display->PutDisplayRange(lower, upper); }},
};

double TableEntry(const Image& image, LONG entry) { return Get(image.process, &IImageProcess::get_Table, entry); }

// --------------------------------------------------------------------------------------------------------------- frame

TEST(BandSettings, FollowTheNumberOfBandsAndAcceptTheBandsOfTheImage) {
    for (const Setting& setting : kSettings) {
        const auto image = NewImage<uint8_t>(2, 2, 3);
        EXPECT_EQ(BI_AllBands, setting.band(image));
        for (const LONG good : {-1, 0, 2}) {
            EXPECT_EQ(S_OK, setting.putBand(image, good));
            EXPECT_EQ(good, setting.band(image));
        }
        for (const LONG bad : {LONG{3}, LONG{-2}, kLeast, kMost})
            EXPECT_TRUE(Fails(setting.putBand(image, bad), setting.method + ": invalid band to process"));
        for (const Setting& other : kSettings)
            EXPECT_EQ(&other == &setting ? 2 : LONG{BI_AllBands}, other.band(image)) << "one does not change the other";
        ASSERT_EQ(S_OK, image->Create(2, 2, 1, DT_BYTE, 1));
        EXPECT_EQ(0, setting.band(image));
    }
}

TEST(BandToProcess, SelectsWhatAnOperationChanges) {
    const auto image = NewImage<uint8_t>(2, 1, 3);
    ASSERT_EQ(S_OK, image.process->put_BandToProcess(1));
    ASSERT_EQ(S_OK, image.process->ScalarEquals(5));
    EXPECT_THAT(image.values(0), Each(0));
    EXPECT_THAT(image.values(1), Each(5));
    ASSERT_EQ(S_OK, image.process->put_BandToProcess(BI_AllBands));
    ASSERT_EQ(S_OK, image.process->ScalarPlusEquals(1));
    EXPECT_THAT(image.values(0), Each(1));
    EXPECT_THAT(image.values(1), Each(6));
    EXPECT_EQ(6, SumOf(CountsOf(HistogramOfImage(image))));
    IBitmap* bitmap = nullptr;
    EXPECT_TRUE(Fails(image.process->Threshold(0, 1, 1, &bitmap),
                      "IImageProcess::Threshold: multiband thresholding is not supported."));
    SGrayMeasurements measure = {};
    EXPECT_TRUE(Fails(image.process->get_GrayMeasurements(GEMT_GrayLocation, &measure),
                      "IImageProcessBase::get_GrayMeasurements: multiband measurement is not supported."));
    // All bands of one band are a single one.
    const auto one = ImageOf<uint8_t>(2, {1, 3});
    ASSERT_EQ(S_OK, one.process->put_BandToProcess(BI_AllBands));
    EXPECT_EQ(".#", Thresholded(one, 2, 4));
    EXPECT_EQ(2, Measured(one, 3).m_dGrayAverage);
}

TEST(Settings, StayWhileThePixelTypeStays) {
    const auto image = NewImage<uint8_t>(4, 4, 3);
    const auto region = RectangleOf(4, 4, 0, 0, 0, 0);
    const auto color = [&] { return Get(image.display, &IDisplayProcess::get_ColorTable, LONG{7}); };
    image.SetRegion(region);
    for (const Setting& setting : kSettings) ASSERT_EQ(S_OK, setting.putRange(image, 10, 20));
    ASSERT_EQ(S_OK, image.process->put_Table(3, 99));
    ASSERT_EQ(S_OK, image.display->put_ColorTable(7, 0xff));
    ASSERT_EQ(S_OK, image->Create(8, 8, 2, DT_BYTE, 1));
    EXPECT_NE(S_OK, image->Create(0, 5, 2, DT_BYTE, 1));
    for (const Setting& setting : kSettings) EXPECT_THAT(setting.range(image), Pair(10, 20));
    EXPECT_EQ(99, TableEntry(image, 3));
    EXPECT_EQ(0xffu, color());
    EXPECT_EQ(region.get(), Get(image.process, &IImageProcess::get_RegionOfInterest).get());
    ASSERT_EQ(S_OK, image->Create(8, 8, 1, DT_WORD, 1));
    for (const Setting& setting : kSettings) EXPECT_THAT(setting.range(image), Pair(0, 65535));
    EXPECT_EQ(0x070707u, color());
    EXPECT_FALSE(Get(image.process, &IImageProcess::get_RegionOfInterest));
}

TEST(Ranges, TruncateAndKeepTheLowOrderBits) {
    constexpr double kMostFloat = std::numeric_limits<float>::max();
    const struct {
        LONG type;
        double lower, upper, gotLower, gotUpper;
    } cases[] = {{DT_BYTE, 12.9, 256, 12, 0},
                 {DT_BYTE, -1, -0.9, 255, 0},
                 {DT_BYTE, 200, 100, 200, 100},  // a negative
                 {DT_BYTE, kNaN, kInfinity, 0, 0},
                 {DT_BYTE, 0x1p62 + 1024, -1e300, 0, 0},
                 {DT_WORD, 65535.5, 65537, 65535, 1},
                 {DT_DWORD, -1, 4294967296.0 + 5, 4294967295.0, 5},
                 {DT_Float, -0.75, 0.1, -0.75, static_cast<double>(0.1f)},
                 {DT_Float, -kInfinity, 1e300, -kMostFloat, kMostFloat}};
    for (const Setting& setting : kSettings)
        for (const auto& c : cases) {
            const Image image;
            ASSERT_EQ(S_OK, image->Create(1, 1, 1, c.type, 1));
            ASSERT_EQ(S_OK, setting.putRange(image, c.lower, c.upper));
            EXPECT_THAT(setting.range(image), Pair(c.gotLower, c.gotUpper)) << setting.method << c.lower;
        }
}

TEST(NumberOfBins, IsFixedForBytesAndAboveOneForOthers) {
    const auto bytes = NewImage<uint8_t>(1, 1);
    EXPECT_EQ(S_OK, bytes.process->put_NumberOfBins(256));
    for (const LONG bad : {255, 0})
        EXPECT_TRUE(
            Fails(bytes.process->put_NumberOfBins(bad),
                  "IImageProcess::put_NumberOfBins: number of bins cannot be changed from 256 for byte images."));
    const auto floats = NewImage<float>(1, 1);
    for (const LONG bad : {LONG{1}, LONG{0}, kLeast})
        EXPECT_TRUE(Fails(floats.process->put_NumberOfBins(bad),
                          "IImageProcess::put_NumberOfBins: there must be more than one bin."));
    EXPECT_EQ(256, Get(floats.process, &IImageProcessBase::get_NumberOfBins));
    EXPECT_EQ(S_OK, floats.process->put_NumberOfBins(2));
    EXPECT_EQ(2, Get(floats.process, &IImageProcessBase::get_NumberOfBins));
    // Any number is taken, but no memory is given for more than 2^24.
    ComPtr<IHistogram> histogram;
    ASSERT_EQ(S_OK, floats.process->PutLuminanceRange(0, 1));
    for (const LONG many : {LONG{(1 << 24) + 1}, kMost}) {
        EXPECT_EQ(S_OK, floats.process->put_NumberOfBins(many));
        EXPECT_TRUE(FailsSilently(floats.process->get_Histogram(histogram.Out())));
        EXPECT_TRUE(FailsSilently(floats.process->put_Table(0, 1)));
        EXPECT_TRUE(FailsSilently(CreateObject<IHistogram>("Orlix.Histogram")->Create(many, 0, 1)));
    }
    EXPECT_EQ(S_OK, floats.process->put_NumberOfBins(1 << 24));
    EXPECT_EQ(S_OK, floats.process->get_Histogram(histogram.Out()));
}

// -------------------------------------------------------------------------------------------------------- measurements

TEST(ImageHistogram, OfBytesHasABinForEachLevelAndLeavesOutWhatTheRangeDoes) {
    const auto image = ImageOf<uint8_t>(6, {0, 10, 10, 20, 255, 30});
    std::vector<LONG> counts(256);
    for (const uint8_t level : image.values()) ++counts[level];
    EXPECT_EQ(counts, CountsOf(HistogramOfImage(image)));
    EXPECT_EQ(255, Get(HistogramOfImage(image), &IHistogram::get_Right));
    ASSERT_EQ(S_OK, image.process->PutLuminanceRange(10, 20));
    counts[0] = counts[255] = counts[30] = 0;
    EXPECT_EQ(counts, CountsOf(HistogramOfImage(image)));
}

TEST(ImageHistogram, OfWiderTypesDividesTheLuminanceRange) {
    const auto words = ImageOf<uint16_t>(5, {100, 101, 102, 110, 111});
    ASSERT_EQ(S_OK, words.process->PutLuminanceRange(100, 110));
    const auto histogram = HistogramOfImage(words);  // 11 values, 256 bins asked for: a bin for each value
    EXPECT_EQ(100, Get(histogram, &IHistogram::get_Left));
    EXPECT_EQ(110, Get(histogram, &IHistogram::get_Right));
    EXPECT_THAT(CountsOf(histogram), ElementsAre(1, 1, 1, 0, 0, 0, 0, 0, 0, 0, 1));
    ASSERT_EQ(S_OK, words.process->put_NumberOfBins(5));
    EXPECT_THAT(CountsOf(HistogramOfImage(words)), ElementsAre(2, 1, 0, 0, 1));  // floor((p - 100) 5 / 10)

    const auto floats = ImageOf<float>(7, {0.0f, 0.24f, 0.25f, 0.5f, 1.0f, 1.5f, std::nanf("")});
    ASSERT_EQ(S_OK, floats.process->PutLuminanceRange(0, 1));
    ASSERT_EQ(S_OK, floats.process->put_NumberOfBins(4));
    EXPECT_THAT(CountsOf(HistogramOfImage(floats)), ElementsAre(2, 1, 1, 1));
    ASSERT_EQ(S_OK, floats.process->PutLuminanceRange(1, 0));
    EXPECT_THAT(CountsOf(HistogramOfImage(floats)), Each(0));
}

TEST(GrayMeasurements, WeighPositionsWithTheGreyValueIfBothAreAskedFor) {
    const auto image = ImageOf<uint8_t>(3, {0, 0, 6, 0, 0, 2});
    for (const int flags : {3, int{GEMT_GrayLocation}, int{GEMT_GrayStatistics}}) {
        const SGrayMeasurements m = Measured(image, flags);
        EXPECT_EQ(6, m.m_lPixelCount) << flags;
        EXPECT_EQ(flags == 3 ? 2 : 0, m.m_dGrayXCentroid) << flags;  // no weights without the statistics
        EXPECT_EQ(flags == 3 ? 0.25 : 0, m.m_dGrayYCentroid) << flags;
        EXPECT_EQ(flags == GEMT_GrayLocation ? 0 : 8.0 / 6, m.m_dGrayAverage) << flags;
    }
    EXPECT_DOUBLE_EQ(std::sqrt(40.0 / 6 - 64.0 / 36), Measured(image, 3).m_dGrayStandardDeviation);
    image.SetRegion(RectangleOf(100, 100, 50, 50, 60, 60));
    EXPECT_EQ(0, Measured(image, 3).m_lPixelCount);
    EXPECT_EQ(0, Measured(image, 3).m_dGrayAverage);
}

// ---------------------------------------------------------------------------------------------------------- thresholds

TEST(Threshold, RoundsItsBoundsInwards) {
    const auto image = NewImage<uint8_t>(256, 1);
    image.Fill([](LONG x, LONG) { return x; });
    const struct {
        double lower, upper;
        LONG inside;
        std::string bits;
    } cases[] = {
        {10.5, 14.5, 1, std::string(11, '.') + "####" + std::string(241, '.')},
        {-5, 300, 0, std::string(256, '.')},
        {-kInfinity, kInfinity, 1, std::string(256, '#')},
        {10.2, 10.8, 1, std::string(256, '.')},  // no whole number between
        {10.2, 10.8, 0, std::string(256, '#')},
        {300, 400, 1, std::string(255, '.') + "#"},  // both clamped to the range
    };
    for (const auto& c : cases) EXPECT_EQ(c.bits, Thresholded(image, c.lower, c.upper, c.inside)) << c.lower;
    for (const auto& [lower, upper] : {std::pair{20.0, 10.0}, {kNaN, 10.0}, {0.0, kNaN}}) {
        IBitmap* bitmap = nullptr;
        EXPECT_TRUE(Fails(image.process->Threshold(lower, upper, 1, &bitmap),
                          "IImageProcess::Threshold: Lower cannot be larger than Upper."));
        EXPECT_EQ(nullptr, bitmap);
    }
    // Floats are compared as they stand, and NaN is on neither side.
    const auto floats = ImageOf<float>(5, {0.1f, 0.5f, std::nanf(""), -1.0f, HUGE_VALF});
    EXPECT_EQ("##...", Thresholded(floats, 0.1, 0.5)) << "0.1f is above 0.1";
    EXPECT_EQ("...##", Thresholded(floats, 0.1, 0.5, 0));
    EXPECT_EQ(".....", Thresholded(floats, 0.11, 0.49));
}

TEST(Threshold, LeavesBitsOutsideTheRegionClear) {
    const auto image = NewImage<uint8_t>(20, 3);
    image.SetRegion(RectangleOf(20, 3, 7, 1, 17, 1));
    EXPECT_EQ("..................../.......###########../....................", Thresholded(image, 0, 0));
}

// ---------------------------------------------------------------------------------------------------- point operations

// What each computes is tested in tests/points, by definitions.
TEST(PointOperations, OfBytesTakeTheirArgumentsAndTheRange) {
    using Process = IImageProcess&;
    struct Case {
        const char* what;
        std::function<HRESULT(Process)> call;
        std::vector<uint8_t> in, out;
    };
    const auto put = [](Process p, double lower, double upper) { return p.PutLuminanceRange(lower, upper); };
    const Case cases[] = {
        {"invert in a range", [=](Process p) { return put(p, 10, 200), p.Invert(); }, {5, 10, 255}, {200, 200, 10}},
        {"add a half", [](Process p) { return p.ScalarPlusEquals(0.5); }, {10, 255}, {11, 255}},
        {"add in a range", [=](Process p) { return put(p, 200, 100), p.ScalarPlusEquals(0); }, {50, 250}, {200, 100}},
        {"divide by 3", [](Process p) { return p.ScalarDivideEquals(3); }, {255, 10, 11}, {85, 3, 4}},
        {"divide by a half", [](Process p) { return p.ScalarDivideEquals(0.5); }, {255, 7}, {0, 0}},
        {"divide by NaN", [](Process p) { return p.ScalarDivideEquals(kNaN); }, {255, 1}, {0, 0}},
        {"fill", [](Process p) { return p.ScalarEquals(6.5); }, {1, 2}, {7, 7}},
        {"fill beyond", [](Process p) { return p.ScalarEquals(1e300); }, {1, 2}, {255, 255}},
        {"fill with NaN", [](Process p) { return p.ScalarEquals(kNaN); }, {1, 2}, {0, 0}},
        {"fill ignores the range", [=](Process p) { return put(p, 100, 200), p.ScalarEquals(3); }, {1, 2}, {3, 3}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const auto image = ImageOf<uint8_t>(static_cast<LONG>(c.in.size()), c.in);
        ASSERT_EQ(S_OK, c.call(*image.process));
        EXPECT_EQ(c.out, image.values());
    }
    const auto image = ImageOf<uint8_t>(2, {1, 2});
    for (const double zero : {0.0, -0.0})
        EXPECT_TRUE(Fails(image.process->ScalarDivideEquals(zero),
                          "IImageProcess::ScalarDivideEquals: cannot divide by zero."));
    EXPECT_THAT(image.values(), ElementsAre(1, 2));
}

TEST(PointOperations, OfWiderTypesClampToTheirOwnRange) {
    const auto words = ImageOf<uint16_t>(3, {0, 300, 65535});
    ASSERT_EQ(S_OK, words.process->Invert());
    EXPECT_THAT(words.values(), ElementsAre(65535, 65235, 0));
    const auto dwords = ImageOf<uint32_t>(3, {0, 1, 4294967295u});
    ASSERT_EQ(S_OK, dwords.process->ScalarPlusEquals(1));
    EXPECT_THAT(dwords.values(), ElementsAre(1u, 2u, 4294967295u));
    const auto floats = ImageOf<float>(3, {0.25f, -3.0f, 1e30f});
    ASSERT_EQ(S_OK, floats.process->ScalarPlusEquals(0.5));
    ASSERT_EQ(S_OK, floats.process->Invert());  // the full range: the sign changes
    EXPECT_THAT(floats.values(), ElementsAre(-0.75f, 2.5f, -1e30f));
}

TEST(PointOperations, ChangeThePixelsOfTheRegionOnly) {
    const auto image = NewImage<uint8_t>(9, 5);
    const auto region = CircleOf(9, 5, 4, 2, 2);
    image.SetRegion(region);
    ASSERT_EQ(S_OK, image.process->ScalarEquals(1));
    ASSERT_EQ(S_OK, region->put_Polarity(PT_Outside));
    ASSERT_EQ(S_OK, image.process->ScalarPlusEquals(2));
    const std::vector<uint8_t> values = image.values();
    for (LONG i = 0; i < 45; ++i)
        EXPECT_EQ(std::hypot(i % 9 - 4, i / 9 - 2) <= 2 ? 1 : 2, values[static_cast<size_t>(i)]) << i;
    // A region of another size is clipped.
    const auto small = NewImage<uint8_t>(4, 2);
    small.SetRegion(RectangleOf(100, 100, 2, 1, 50, 50));
    ASSERT_EQ(S_OK, small.process->Invert());
    EXPECT_THAT(small.values(), ElementsAre(0, 0, 0, 0, 0, 0, 255, 255));
}

TEST(LargeImages, GiveWhatTheirRowsGive) {
    constexpr LONG kWidth = 1501, kHeight = 4300;  // floats: 25.8 million bytes
    const auto image = NewImage<float>(kWidth, kHeight);
    const auto value = [](LONG x, LONG y) { return static_cast<float>((x * 7 + y * 13) % 256); };
    image.Fill(value);
    const auto region = CircleOf(kWidth, kHeight, 800, 2100, 900);  // clipped on the left and on the right
    image.SetRegion(region);
    ASSERT_EQ(S_OK, image.process->PutLuminanceRange(0, 255));
    for (const PolarityType polarity : {PT_Inside, PT_Outside}) {
        ASSERT_EQ(S_OK, region->put_Polarity(polarity));
        const SGrayMeasurements measures = Measured(image, GEMT_GrayStatistics);
        const std::string bits = Thresholded(image, 100, 199);
        ASSERT_EQ(S_OK, image.process->Invert());
        int64_t count = 0, sum = 0, set = 0, wrong = 0;
        LONG y = 0;
        for (const auto row : Rows<float>(image)) {
            for (LONG x = 0; x < kWidth; ++x) {
                const bool inside =
                    ((x - 800) * (x - 800) + (y - 2100) * (y - 2100) <= 900 * 900) == (polarity == PT_Inside);
                const float p = value(x, y);
                count += inside;
                sum += inside ? static_cast<int64_t>(p) : 0;
                set += inside && p >= 100 && p <= 199;
                wrong += row[static_cast<size_t>(x)] != (inside ? 255 - p : p);
            }
            ++y;
        }
        EXPECT_EQ(count, measures.m_lPixelCount);
        EXPECT_EQ(static_cast<double>(sum) / static_cast<double>(count), measures.m_dGrayAverage);
        EXPECT_EQ(set, std::count(bits.begin(), bits.end(), '#'));
        EXPECT_EQ(0, wrong);
        ASSERT_EQ(S_OK, image.process->Invert());
    }
}

// Rows that follow each other in memory are added as one run, but not where the source's rows are the next ones here.
TEST(PlusEquals, TakesSourcesInTheSameMemoryRowByRow) {
    constexpr LONG kWidth = 20, kHeight = 4;
    for (const bool fromAbove : {false, true}) {
        std::vector<uint8_t> rows(size_t{kWidth} * (kHeight + 1), 1);
        std::fill_n(rows.begin(), kWidth, uint8_t{10});
        const TypedImage<uint8_t> upper, lower;
        ASSERT_EQ(S_OK, upper->AttachBuffer(rows.data(), kWidth, kHeight, 1, DT_BYTE, 0));
        ASSERT_EQ(S_OK, lower->AttachBuffer(rows.data() + kWidth, kWidth, kHeight, 1, DT_BYTE, 0));
        const auto& to = fromAbove ? lower : upper;
        ASSERT_EQ(S_OK, to.process->PlusEquals((fromAbove ? upper : lower).get(), 0));
        for (LONG y = 0; y < kHeight; ++y)  // 1 + 10, 1 + 11, ... or 10 + 1, 1 + 1, ...
            for (LONG x = 0; x < kWidth; ++x)
                ASSERT_EQ(fromAbove ? 11 + y : y == 0 ? 11 : 2, to.at(x, y)) << x << ' ' << y;
    }
}

TEST(RegionsOfOthers, AreVisitedOnceForEachPixelOrPassTheirFailureOn) {
    const auto image = NewImage<uint8_t>(4, 3);
    const auto region = MakeCounted<ForeignRegion>();
    region->runs = {RunOf(2, 1000), RunOf(3, 1), RunOf(-5, 2)};
    Check(image.process->put_RegionOfInterest(region.get()), image.process);
    ASSERT_EQ(S_OK, image.process->ScalarPlusEquals(1));
    EXPECT_THAT(image.values(), Each(1));
    EXPECT_EQ(12, Measured(image, 3).m_lPixelCount);
    region->failingRow = 2;  // half way
    region->runsResult = E_UNEXPECTED;
    EXPECT_TRUE(FailsSilently(image.process->ScalarEquals(9), E_UNEXPECTED));
    EXPECT_THAT(image.values(), Each(1));
    region->boxResult = E_NOTIMPL;
    IHistogram* histogram = nullptr;
    EXPECT_TRUE(FailsSilently(image.process->get_Histogram(&histogram), E_NOTIMPL));
    Check(image.process->put_RegionOfInterest(nullptr));
}

// --------------------------------------------------------------------------------------------------------------- table

TEST(Table, HoldsConvertedValuesAndIsLookedUp) {
    const auto image = ImageOf<uint8_t>(4, {0, 1, 2, 255});
    EXPECT_EQ(200, TableEntry(image, 200));
    for (const auto& [put, got] :
         {std::pair{6.5, 7.0}, {6.49, 6.0}, {-1.0, 0.0}, {1e9, 255.0}, {kNaN, 0.0}, {kInfinity, 255.0}}) {
        ASSERT_EQ(S_OK, image.process->put_Table(1, put));
        EXPECT_EQ(got, TableEntry(image, 1));
    }
    ASSERT_EQ(S_OK, image.process->put_Table(2, 77));
    ASSERT_EQ(S_OK, image.process->LUT());
    EXPECT_THAT(image.values(), ElementsAre(0, 255, 77, 255));
    double value = 0;
    for (const LONG entry : {LONG{-1}, LONG{256}, kMost}) {
        EXPECT_TRUE(Fails(image.process->put_Table(entry, 1), "IImageProcess::put_Table: Entry is out of range."));
        EXPECT_TRUE(Fails(image.process->get_Table(entry, &value), "IImageProcess::get_Table: Entry is out of range."));
    }
}

TEST(Table, EqualizationFollowsTheCumulativeCounts) {
    const auto image = ImageOf<uint8_t>(4, {10, 10, 20, 30});
    ASSERT_EQ(S_OK, image.process->PutLuminanceRange(0, 200));
    ASSERT_EQ(S_OK, image.process->EqualizeTable(ET_Uniform));
    for (const auto& [entry, value] : {std::pair{9, 0}, {10, 100}, {29, 150}, {255, 200}})
        EXPECT_EQ(value, TableEntry(image, entry));
    ASSERT_EQ(S_OK, image.process->EqualizeTable(ET_UpperTriangular));
    EXPECT_EQ(173, TableEntry(image, 20));  // 200 sqrt(3/4) = 173.2
    ASSERT_EQ(S_OK, image.process->PutLuminanceRange(100, 110));
    EXPECT_TRUE(Fails(image.process->EqualizeTable(ET_Uniform), "IImageProcess::EqualizeTable: empty histogram"));
    EXPECT_EQ(141, TableEntry(image, 10));  // 200 sqrt(1/2) = 141.42
}

TEST(Table, Of16BitsIsReadThroughTheBinsOfTheHistogram) {
    const auto image = ImageOf<uint16_t>(6, {1000, 1001, 1002, 1003, 999, 2000});
    ASSERT_EQ(S_OK, image.process->PutLuminanceRange(1000, 1003));
    ASSERT_EQ(S_OK, image.process->LUT());  // the table that nobody filled changes nothing
    EXPECT_THAT(image.values(), ElementsAre(1000, 1001, 1002, 1003, 999, 2000));
    ASSERT_EQ(S_OK, image.process->EqualizeTable(ET_Uniform));
    ASSERT_EQ(S_OK, image.process->LUT());
    EXPECT_THAT(image.values(), ElementsAre(1001, 1002, 1002, 1003, 999, 2000));  // 1000 + 3 C / 4, rounded
    ASSERT_EQ(S_OK, image.process->put_NumberOfBins(2));
    for (const LONG bin : {0, 1}) ASSERT_EQ(S_OK, image.process->put_Table(bin, 5 + bin));
    ASSERT_EQ(S_OK, image.process->LUT());
    EXPECT_THAT(image.values(), ElementsAre(5, 6, 6, 6, 999, 2000));  // floor((p - 1000) 2 / 3)
}

// ------------------------------------------------------------------------------------------------------------ snapping

TEST(SnapLuminanceRange, TakesTheExtremesOrTheTrimmedLimits) {
    const auto image = NewImage<uint16_t>(100, 1);
    image.Fill([](LONG x, LONG) { return 1000 + x; });
    ASSERT_EQ(S_OK, image.process->SnapLuminanceRange(0, 0, 0));
    EXPECT_THAT(image.LuminanceRange(), Pair(1000, 1099));
    ASSERT_EQ(S_OK, image.process->SnapLuminanceRange(0.1, 0.2, 1));  // RoundOut means nothing here
    EXPECT_THAT(image.LuminanceRange(), Pair(1010, 1079));
    EXPECT_TRUE(Fails(image.process->SnapLuminanceRange(0.6, 0.4, 0),
                      "IHistogram::AutoThresholdTrim: the total amount of trimming must be less than 1.0.",
                      "Orlix.Histogram.1"));
    image.SetRegion(RectangleOf(1000, 10, 500, 5, 600, 6));
    EXPECT_EQ(S_FALSE, image.process->SnapLuminanceRange(0, 0, 0));
    EXPECT_THAT(image.LuminanceRange(), Pair(1010, 1079));

    const auto bytes = ImageOf<uint8_t>(3, {20, 30, 40});
    ASSERT_EQ(S_OK, bytes.process->SnapLuminanceRange(0, 0, 0));
    EXPECT_THAT(bytes.LuminanceRange(), Pair(20, 40));
    ASSERT_EQ(S_OK, bytes.process->SnapLuminanceRange(0, 0, 1));
    EXPECT_THAT(bytes.LuminanceRange(), Pair(0, 255));
}

// -------------------------------------------------------------------------------------------------------- other images

// All pairs of types are tested in tests/points.
TEST(CastAndPlus, KeepLowOrderBitsAndNeverSaturate) {
    const auto bytes = ImageOf<uint8_t>(2, {200, 7});
    ASSERT_EQ(S_OK, bytes.process->PlusEquals(ImageOf<uint8_t>(2, {100, 1}).get(), 0));
    EXPECT_THAT(bytes.values(), ElementsAre(44, 8));
    ASSERT_EQ(S_OK, bytes.process->CastEquals(ImageOf<uint16_t>(2, {300, 65535}).get(), 0));
    EXPECT_THAT(bytes.values(), ElementsAre(44, 255));
    ASSERT_EQ(S_OK, bytes.process->PlusEquals(bytes.get(), 0));  // with itself
    EXPECT_THAT(bytes.values(), ElementsAre(88, 254));
}

TEST(CastAndPlus, CheckTypeAndBands) {
    const auto image = NewImage<uint8_t>(2, 2), three = NewImage<uint8_t>(2, 2, 3);
    const auto foreign = MakeCounted<ForeignImage>();
    foreign->type = DT_Double;
    const std::string type = ": unsupported DataType.", bands = ": mismatch in the number of bands to process.";
    EXPECT_TRUE(Fails(image.process->CastEquals(foreign.get(), 0), "IImageProcess::CastEquals" + type));
    EXPECT_TRUE(Fails(image.process->PlusEquals(foreign.get(), 0), "IImageProcess::PlusEquals" + type));
    EXPECT_TRUE(Fails(image.process->CastEquals(three.get(), BI_AllBands), "IImageProcess::CastEquals" + bands));
    EXPECT_TRUE(Fails(image.process->PlusEquals(three.get(), BI_AllBands), "IImageProcess::PlusEquals" + bands));
    EXPECT_TRUE(Fails(image.process->PlusEquals(three.get(), 3), "IImageVPA::VPA: BandIndex is out of range"));
    EXPECT_EQ(S_OK, image.process->PlusEquals(three.get(), 2));
}

TEST(CastAndPlus, ReadTheMarginOfASmallerSourceAndNothingBeyond) {
    const auto image = NewImage<uint8_t>(300, 210);
    ASSERT_EQ(S_OK, image.process->ScalarEquals(9));
    ASSERT_EQ(S_OK, image.process->CastEquals(ImageOf<uint8_t>(3, {1, 2, 3}).get(), 0));
    EXPECT_EQ(1, image.at(0, 0));
    EXPECT_EQ(2, image.at(3, 200));  // column 3 mirrors column 1; row 200 is the last with an offset
    EXPECT_EQ(3, image.at(202, 0));  // 202 = 50 * 4 + 2
    EXPECT_EQ(9, image.at(203, 0));
    EXPECT_EQ(9, image.at(0, 201));
}

TEST(NotBuiltYet, MethodsSaySoAndLeaveNoTextOfAnEarlierCall) {
    const auto image = NewImage<uint8_t>(2, 2);
    ComPtr<IBitmap> extrema;
    const std::function<HRESULT()> calls[] = {[&] { return image.process->get_LocalMaxima(extrema.Out()); },
                                              [&] { return image.process->get_LocalMinima(extrema.Out()); },
                                              [&] { return image.process->LocalBackgroundCorrect(); }};
    for (const auto& call : calls) {
        EXPECT_EQ(E_FAIL, image.process->put_BandToProcess(7));
        EXPECT_TRUE(FailsSilently(call(), E_NOTIMPL));
    }
}

}  // namespace
}  // namespace orlix::testing
