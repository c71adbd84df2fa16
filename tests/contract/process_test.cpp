// The processing frame as its clients see it: band, region, luminance range, thresholds, measurements, point
// operations.

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <numeric>

#include "contract/support.hpp"

namespace orlix::testing {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::Pair;

template <class Pixel>
struct Image {
    ComPtr<IImageVPAExPlus> pixels;
    ComPtr<IImageProcess> process;
    explicit Image(const ComPtr<IImageVPAExPlus>& image) : pixels(image), process(Cast<IImageProcess>(image)) {}
    Image(LONG width, const std::vector<Pixel>& values) : Image(ImageOf<Pixel>(width, values)) {}
    std::vector<Pixel> values() const { return PixelsOf<Pixel>(pixels); }
    std::pair<double, double> range() const {
        double lower = -77, upper = -77;
        Check(process->GetLuminanceRange(&lower, &upper), process);
        return {lower, upper};
    }
};

std::vector<int> BitsOf(const ComPtr<IBitmap>& bitmap) {
    const LONG width = Get(bitmap, &IBitmap::get_Width), height = Get(bitmap, &IBitmap::get_Height);
    std::vector<int> bits;
    for (LONG y = 0; y < height; ++y)
        for (LONG x = 0; x < width; ++x) {
            LONG bit = -1;
            Check(bitmap->get_Bit(x, y, &bit), bitmap);
            bits.push_back(bit);
        }
    return bits;
}

template <class Pixel>
std::vector<int> Thresholded(const Image<Pixel>& image, double lower, double upper, LONG inside) {
    ComPtr<IBitmap> bitmap;
    Check(image.process->Threshold(lower, upper, inside, bitmap.Out()), image.process);
    return BitsOf(bitmap);
}

struct Counts {
    LONG bins = 0;
    double left = 0, right = 0;
    std::vector<LONG> counts;
};

Counts HistogramOf(const ComPtr<IImageProcess>& process) {
    ComPtr<IHistogram> histogram;
    Check(process->get_Histogram(histogram.Out()), process);
    const LONG n = Get(histogram, &IHistogram::get_NumberOfBins);
    LONG* const bins = Get(histogram, &IHistogram::get_Bins);
    return {n, Get(histogram, &IHistogram::get_Left), Get(histogram, &IHistogram::get_Right), {bins, bins + n}};
}

ComPtr<IShapeRegionOfInterest> Rectangle(LONG width, LONG height, LONG left, LONG top, LONG right, LONG bottom) {
    auto region = CreateObject<IShapeRegionOfInterest>("Orlix.ShapeRegionOfInterest");
    Check(region->CreateRectangle(width, height, left, top, right, bottom), region);
    return region;
}

SGrayMeasurements Measured(const ComPtr<IImageProcess>& process, int flags) {
    SGrayMeasurements measure = {};
    measure.m_lSize = 4711;
    Check(process->get_GrayMeasurements(static_cast<GrayExtractMeasurementType>(flags), &measure), process);
    EXPECT_EQ(4711, measure.m_lSize);  // the caller's
    return measure;
}

// --------------------------------------------------------------------------------------------------------------- frame

TEST(BandToProcess, FollowsTheNumberOfBandsAndAcceptsTheBandsOfTheImage) {
    const Image<uint8_t> one(NewImage<uint8_t>(2, 2, 1));
    EXPECT_EQ(0, Get(one.process, &IImageProcessBase::get_BandToProcess));
    const Image<uint8_t> three(NewImage<uint8_t>(2, 2, 3));
    EXPECT_EQ(BI_AllBands, Get(three.process, &IImageProcessBase::get_BandToProcess));
    for (const LONG good : {LONG{-1}, LONG{0}, LONG{2}}) {
        EXPECT_EQ(S_OK, three.process->put_BandToProcess(good));
        EXPECT_EQ(good, Get(three.process, &IImageProcessBase::get_BandToProcess));
    }
    for (const LONG bad : {LONG{3}, LONG{-2}, std::numeric_limits<LONG>::min(), std::numeric_limits<LONG>::max()})
        EXPECT_TRUE(
            Fails(three.process->put_BandToProcess(bad), "IImageProcess::put_BandToProcess: invalid band to process"));
    EXPECT_EQ(2, Get(three.process, &IImageProcessBase::get_BandToProcess));
    ASSERT_EQ(S_OK, three.pixels->Create(2, 2, 1, DT_BYTE, 1));
    EXPECT_EQ(0, Get(three.process, &IImageProcessBase::get_BandToProcess));
}

TEST(BandToProcess, SelectsWhatAnOperationChanges) {
    const Image<uint8_t> image(NewImage<uint8_t>(2, 1, 3));
    ASSERT_EQ(S_OK, image.process->put_BandToProcess(1));
    ASSERT_EQ(S_OK, image.process->ScalarEquals(5));
    EXPECT_THAT(PixelsOf<uint8_t>(image.pixels, 0), Each(0));
    EXPECT_THAT(PixelsOf<uint8_t>(image.pixels, 1), Each(5));
    ASSERT_EQ(S_OK, image.process->put_BandToProcess(BI_AllBands));
    ASSERT_EQ(S_OK, image.process->ScalarPlusEquals(1));
    EXPECT_THAT(PixelsOf<uint8_t>(image.pixels, 0), Each(1));
    EXPECT_THAT(PixelsOf<uint8_t>(image.pixels, 1), Each(6));
    const Counts histogram = HistogramOf(image.process);
    EXPECT_EQ(6, std::accumulate(histogram.counts.begin(), histogram.counts.end(), 0));
    IBitmap* bitmap = nullptr;
    EXPECT_TRUE(Fails(image.process->Threshold(0, 1, 1, &bitmap),
                      "IImageProcess::Threshold: multiband thresholding is not supported."));
    SGrayMeasurements measure = {};
    EXPECT_TRUE(Fails(image.process->get_GrayMeasurements(GEMT_GrayLocation, &measure),
                      "IImageProcessBase::get_GrayMeasurements: multiband measurement is not supported."));
}

TEST(BandToProcess, AllBandsOfOneBandCountAsASingleOne) {
    const Image<uint8_t> image(2, {1, 3});
    ASSERT_EQ(S_OK, image.process->put_BandToProcess(BI_AllBands));
    EXPECT_THAT(Thresholded(image, 2, 4, 1), ElementsAre(0, 1));
    EXPECT_EQ(2, Measured(image.process, 3).m_dGrayAverage);
}

TEST(Settings, StayWhileThePixelTypeStays) {
    const Image<uint8_t> image(NewImage<uint8_t>(4, 4));
    const auto region = Rectangle(4, 4, 0, 0, 0, 0);
    ASSERT_EQ(S_OK, image.process->put_RegionOfInterest(region.get()));
    ASSERT_EQ(S_OK, image.process->PutLuminanceRange(10, 20));
    ASSERT_EQ(S_OK, image.process->put_Table(3, 99));
    ASSERT_EQ(S_OK, image.pixels->Create(8, 8, 1, DT_BYTE, 1));
    double entry = 0;
    ComPtr<IRegionOfInterest> kept;
    ASSERT_EQ(S_OK, image.process->get_Table(3, &entry));
    ASSERT_EQ(S_OK, image.process->get_RegionOfInterest(kept.Out()));
    EXPECT_THAT(image.range(), Pair(10, 20));
    EXPECT_EQ(99, entry);
    EXPECT_EQ(static_cast<IRegionOfInterest*>(region.get()), kept.get());
    ASSERT_EQ(S_OK, image.pixels->Create(8, 8, 1, DT_WORD, 1));
    ASSERT_EQ(S_OK, image.process->get_RegionOfInterest(kept.Out()));
    EXPECT_THAT(image.range(), Pair(0, 65535));
    EXPECT_FALSE(kept);
}

template <class Pixel>
std::pair<double, double> RangeAfterPut(double lower, double upper) {
    const Image<Pixel> image(NewImage<Pixel>(1, 1));
    Check(image.process->PutLuminanceRange(lower, upper), image.process);
    return image.range();
}

TEST(LuminanceRange, TruncatesAndKeepsTheLowOrderBits) {
    EXPECT_THAT(RangeAfterPut<uint8_t>(12.9, 256), Pair(12, 0));
    EXPECT_THAT(RangeAfterPut<uint8_t>(-1, -0.9), Pair(255, 0));
    EXPECT_THAT(RangeAfterPut<uint8_t>(200, 100), Pair(200, 100));
    EXPECT_THAT(RangeAfterPut<uint8_t>(kNaN, kInfinity), Pair(0, 0));
    EXPECT_THAT(RangeAfterPut<uint8_t>(0x1p62 + 1024, -1e300), Pair(0, 0));
    EXPECT_THAT(RangeAfterPut<uint16_t>(65535.5, 65537), Pair(65535, 1));
    EXPECT_THAT(RangeAfterPut<uint32_t>(-1, 4294967296.0 + 5), Pair(4294967295.0, 5));
    EXPECT_THAT(RangeAfterPut<float>(0.5, 1e300), Pair(0.5, std::numeric_limits<float>::max()));
}

TEST(LuminanceRange, ClampTestsLowerFirstWhenItIsAboveUpper) {
    const Image<uint8_t> image(4, {50, 100, 150, 250});
    ASSERT_EQ(S_OK, image.process->PutLuminanceRange(200, 100));
    ASSERT_EQ(S_OK, image.process->ScalarPlusEquals(0));
    EXPECT_THAT(image.values(), ElementsAre(200, 200, 200, 100));
}

TEST(NumberOfBins, IsFixedForBytesAndAboveOneForOthers) {
    const Image<uint8_t> bytes(NewImage<uint8_t>(1, 1));
    const char* const fixed =
        "IImageProcess::put_NumberOfBins: number of bins cannot be changed from 256 for byte images.";
    EXPECT_EQ(S_OK, bytes.process->put_NumberOfBins(256));
    EXPECT_TRUE(Fails(bytes.process->put_NumberOfBins(255), fixed));
    EXPECT_TRUE(Fails(bytes.process->put_NumberOfBins(0), fixed));
    const Image<float> floats(NewImage<float>(1, 1));
    const char* const more = "IImageProcess::put_NumberOfBins: there must be more than one bin.";
    for (const LONG bad : {LONG{1}, LONG{0}, std::numeric_limits<LONG>::min()})
        EXPECT_TRUE(Fails(floats.process->put_NumberOfBins(bad), more));
    EXPECT_EQ(256, Get(floats.process, &IImageProcessBase::get_NumberOfBins));
    EXPECT_EQ(S_OK, floats.process->put_NumberOfBins(2));
    EXPECT_EQ(2, Get(floats.process, &IImageProcessBase::get_NumberOfBins));
    // Any number is taken, but no memory is given for more than 2^24.
    ComPtr<IHistogram> histogram;
    ASSERT_EQ(S_OK, floats.process->PutLuminanceRange(0, 1));
    for (const LONG many : {LONG{(1 << 24) + 1}, std::numeric_limits<LONG>::max()}) {
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
    const Image<uint8_t> image(6, {0, 10, 10, 20, 255, 30});
    Counts histogram = HistogramOf(image.process);
    EXPECT_EQ(256, histogram.bins);
    EXPECT_EQ(0, histogram.left);
    EXPECT_EQ(255, histogram.right);
    EXPECT_EQ(2, histogram.counts[10]);
    EXPECT_EQ(1, histogram.counts[255]);
    EXPECT_EQ(6, std::accumulate(histogram.counts.begin(), histogram.counts.end(), 0));
    ASSERT_EQ(S_OK, image.process->PutLuminanceRange(10, 20));
    histogram = HistogramOf(image.process);
    EXPECT_EQ(256, histogram.bins);
    EXPECT_EQ(3, std::accumulate(histogram.counts.begin(), histogram.counts.end(), 0));
}

TEST(ImageHistogram, OfWiderTypesDividesTheLuminanceRange) {
    const Image<uint16_t> words(5, {100, 101, 102, 110, 111});
    ASSERT_EQ(S_OK, words.process->PutLuminanceRange(100, 110));
    Counts histogram = HistogramOf(words.process);  // 11 values, 256 bins asked for: a bin for each value
    EXPECT_EQ(11, histogram.bins);
    EXPECT_EQ(100, histogram.left);
    EXPECT_EQ(110, histogram.right);
    EXPECT_THAT(histogram.counts, ElementsAre(1, 1, 1, 0, 0, 0, 0, 0, 0, 0, 1));
    ASSERT_EQ(S_OK, words.process->put_NumberOfBins(5));
    EXPECT_THAT(HistogramOf(words.process).counts, ElementsAre(2, 1, 0, 0, 1));  // floor((p - 100) 5 / 10)

    const Image<float> floats(7, {0.0f, 0.24f, 0.25f, 0.5f, 1.0f, 1.5f, std::nanf("")});
    ASSERT_EQ(S_OK, floats.process->PutLuminanceRange(0, 1));
    ASSERT_EQ(S_OK, floats.process->put_NumberOfBins(4));
    EXPECT_THAT(HistogramOf(floats.process).counts, ElementsAre(2, 1, 1, 1));
    ASSERT_EQ(S_OK, floats.process->PutLuminanceRange(1, 0));
    EXPECT_THAT(HistogramOf(floats.process).counts, Each(0));
}

TEST(GrayMeasurements, WeighPositionsWithTheGreyValue) {
    const Image<uint8_t> image(3, {0, 0, 6, 0, 0, 2});
    const SGrayMeasurements all = Measured(image.process, 3);
    EXPECT_EQ(6, all.m_lPixelCount);
    EXPECT_EQ(2, all.m_dGrayXCentroid);
    EXPECT_EQ(0.25, all.m_dGrayYCentroid);
    EXPECT_EQ(8.0 / 6, all.m_dGrayAverage);
    EXPECT_DOUBLE_EQ(std::sqrt(40.0 / 6 - 64.0 / 36), all.m_dGrayStandardDeviation);
    const SGrayMeasurements location = Measured(image.process, GEMT_GrayLocation);
    EXPECT_EQ(6, location.m_lPixelCount);
    EXPECT_EQ(0, location.m_dGrayXCentroid);  // no weights without the statistics
    EXPECT_EQ(0, location.m_dGrayYCentroid);
    const SGrayMeasurements statistics = Measured(image.process, GEMT_GrayStatistics);
    EXPECT_EQ(0, statistics.m_dGrayXCentroid);
    EXPECT_EQ(8.0 / 6, statistics.m_dGrayAverage);
}

TEST(GrayMeasurements, OfAnEmptyRegionAreZero) {
    const Image<uint16_t> image(NewImage<uint16_t>(8, 8));
    ASSERT_EQ(S_OK, image.process->put_RegionOfInterest(Rectangle(100, 100, 50, 50, 60, 60).get()));
    const SGrayMeasurements measure = Measured(image.process, 3);
    EXPECT_EQ(0, measure.m_lPixelCount);
    EXPECT_EQ(0, measure.m_dGrayAverage);
}

// ---------------------------------------------------------------------------------------------------------- thresholds

TEST(Threshold, RoundsItsBoundsInwards) {
    std::vector<uint8_t> ramp(256);
    std::iota(ramp.begin(), ramp.end(), uint8_t{0});
    const Image<uint8_t> image(256, ramp);
    const auto levels = [&](double lower, double upper, LONG inside) {
        const std::vector<int> bits = Thresholded(image, lower, upper, inside);
        std::vector<int> set;
        for (int i = 0; i < 256; ++i)
            if (bits[static_cast<size_t>(i)]) set.push_back(i);
        return set;
    };
    EXPECT_THAT(levels(10.5, 14.5, 1), ElementsAre(11, 12, 13, 14));
    EXPECT_THAT(levels(-5, 300, 0), ElementsAre());
    EXPECT_EQ(256u, levels(-kInfinity, kInfinity, 1).size());
    EXPECT_THAT(levels(2, 253, 0), ElementsAre(0, 1, 254, 255));
    EXPECT_THAT(levels(10.2, 10.8, 1), ElementsAre());  // no whole number between
    EXPECT_EQ(256u, levels(10.2, 10.8, 0).size());
    EXPECT_THAT(levels(300, 400, 1), ElementsAre(255));  // both clamped to the range
    for (const auto& [lower, upper] : {std::pair{20.0, 10.0}, {kNaN, 10.0}, {0.0, kNaN}}) {
        IBitmap* bitmap = nullptr;
        EXPECT_TRUE(Fails(image.process->Threshold(lower, upper, 1, &bitmap),
                          "IImageProcess::Threshold: Lower cannot be larger than Upper."));
        EXPECT_EQ(nullptr, bitmap);
    }
}

TEST(Threshold, OfFloatsComparesAsItStandsAndNeverSetsNaN) {
    const Image<float> image(5, {0.1f, 0.5f, std::nanf(""), -1.0f, std::numeric_limits<float>::infinity()});
    EXPECT_THAT(Thresholded(image, 0.1, 0.5, 1), ElementsAre(1, 1, 0, 0, 0));  // 0.1f is above 0.1
    EXPECT_THAT(Thresholded(image, 0.1, 0.5, 0), ElementsAre(0, 0, 0, 1, 1));
    EXPECT_THAT(Thresholded(image, 0.11, 0.49, 1), ElementsAre(0, 0, 0, 0, 0));
}

TEST(Threshold, LeavesBitsOutsideTheRegionClear) {
    const Image<uint8_t> image(NewImage<uint8_t>(20, 3));
    ASSERT_EQ(S_OK, image.process->put_RegionOfInterest(Rectangle(20, 3, 7, 1, 17, 1).get()));
    const std::vector<int> bits = Thresholded(image, 0, 0, 1);
    for (int i = 0; i < 60; ++i) EXPECT_EQ(i >= 27 && i <= 37 ? 1 : 0, bits[static_cast<size_t>(i)]) << i;
}

// ---------------------------------------------------------------------------------------------------- point operations

TEST(PointOperations, OfBytesFollowTheirFormulas) {
    struct Case {
        const char* what;
        std::function<HRESULT(IImageProcess&)> call;
        std::vector<uint8_t> in, out;
    };
    const Case cases[] = {
        {"invert", [](IImageProcess& p) { return p.Invert(); }, {0, 1, 255}, {255, 254, 0}},
        {"invert in a range",
         [](IImageProcess& p) { return p.PutLuminanceRange(10, 200), p.Invert(); },
         {5, 10, 200, 255},
         {200, 200, 10, 10}},
        {"add a half", [](IImageProcess& p) { return p.ScalarPlusEquals(0.5); }, {10, 255}, {11, 255}},
        {"add just below a half", [](IImageProcess& p) { return p.ScalarPlusEquals(0.49); }, {10, 255}, {10, 255}},
        {"subtract a lot", [](IImageProcess& p) { return p.ScalarPlusEquals(-300); }, {10, 255}, {0, 0}},
        {"add infinity", [](IImageProcess& p) { return p.ScalarPlusEquals(kInfinity); }, {10, 255}, {255, 255}},
        {"add NaN", [](IImageProcess& p) { return p.ScalarPlusEquals(kNaN); }, {10, 255}, {0, 0}},
        {"divide by 4", [](IImageProcess& p) { return p.ScalarDivideEquals(4); }, {255, 7}, {63, 1}},
        {"divide by 3", [](IImageProcess& p) { return p.ScalarDivideEquals(3); }, {255, 10, 11}, {85, 3, 4}},
        {"divide by 1", [](IImageProcess& p) { return p.ScalarDivideEquals(1); }, {255, 7}, {255, 7}},
        {"divide by a half", [](IImageProcess& p) { return p.ScalarDivideEquals(0.5); }, {255, 7}, {0, 0}},
        {"divide by -4", [](IImageProcess& p) { return p.ScalarDivideEquals(-4); }, {255, 7}, {0, 0}},
        {"divide by 1e-300", [](IImageProcess& p) { return p.ScalarDivideEquals(1e-300); }, {255, 1, 0}, {255, 255, 0}},
        {"divide by infinity", [](IImageProcess& p) { return p.ScalarDivideEquals(kInfinity); }, {255, 1}, {0, 0}},
        {"divide by NaN", [](IImageProcess& p) { return p.ScalarDivideEquals(kNaN); }, {255, 1}, {0, 0}},
        {"fill", [](IImageProcess& p) { return p.ScalarEquals(6.5); }, {1, 2}, {7, 7}},
        {"fill beyond", [](IImageProcess& p) { return p.ScalarEquals(1e300); }, {1, 2}, {255, 255}},
        {"fill with NaN", [](IImageProcess& p) { return p.ScalarEquals(kNaN); }, {1, 2}, {0, 0}},
        {"fill is not clamped to the range",
         [](IImageProcess& p) { return p.PutLuminanceRange(100, 200), p.ScalarEquals(3); },
         {1, 2},
         {3, 3}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const Image<uint8_t> image(static_cast<LONG>(c.in.size()), c.in);
        ASSERT_EQ(S_OK, c.call(*image.process));
        EXPECT_EQ(c.out, image.values());
    }
}

TEST(PointOperations, OfWiderTypesRoundAndClampToTheirOwnRange) {
    const Image<uint16_t> words(3, {0, 300, 65535});
    ASSERT_EQ(S_OK, words.process->Invert());
    EXPECT_THAT(words.values(), ElementsAre(65535, 65235, 0));
    ASSERT_EQ(S_OK, words.process->ScalarDivideEquals(256));
    EXPECT_THAT(words.values(), ElementsAre(255, 254, 0));
    const Image<uint32_t> dwords(3, {0, 1, 4294967295u});
    ASSERT_EQ(S_OK, dwords.process->ScalarPlusEquals(1));
    EXPECT_THAT(dwords.values(), ElementsAre(1u, 2u, 4294967295u));
    ASSERT_EQ(S_OK, dwords.process->ScalarDivideEquals(0.5));  // k = -1: shifted by 31
    EXPECT_THAT(dwords.values(), ElementsAre(0u, 0u, 1u));
    const Image<float> floats(3, {0.25f, -3.0f, 1e30f});
    ASSERT_EQ(S_OK, floats.process->ScalarPlusEquals(0.5));
    EXPECT_THAT(floats.values(), ElementsAre(0.75f, -2.5f, 1e30f));
    ASSERT_EQ(S_OK, floats.process->ScalarDivideEquals(0.5));
    EXPECT_THAT(floats.values(), ElementsAre(1.5f, -5.0f, 2e30f));
    ASSERT_EQ(S_OK, floats.process->Invert());  // the full range: the sign changes
    EXPECT_THAT(floats.values(), ElementsAre(-1.5f, 5.0f, -2e30f));
}

TEST(PointOperations, DivisionByZeroIsRefused) {
    const Image<uint8_t> image(2, {1, 2});
    for (const double zero : {0.0, -0.0})
        EXPECT_TRUE(Fails(image.process->ScalarDivideEquals(zero),
                          "IImageProcess::ScalarDivideEquals: cannot divide by zero."));
    EXPECT_THAT(image.values(), ElementsAre(1, 2));
}

TEST(PointOperations, ChangeThePixelsOfTheRegionOnly) {
    const Image<uint8_t> image(NewImage<uint8_t>(9, 5));
    const auto region = CreateObject<IShapeRegionOfInterest>("Orlix.ShapeRegionOfInterest");
    ASSERT_EQ(S_OK, region->CreateCircle(9, 5, 4, 2, 2));
    ASSERT_EQ(S_OK, image.process->put_RegionOfInterest(region.get()));
    ASSERT_EQ(S_OK, image.process->ScalarEquals(1));
    EXPECT_THAT(image.values(), ElementsAre(0, 0, 0, 0, 1, 0, 0, 0, 0,  //
                                            0, 0, 0, 1, 1, 1, 0, 0, 0,  //
                                            0, 0, 1, 1, 1, 1, 1, 0, 0,  //
                                            0, 0, 0, 1, 1, 1, 0, 0, 0,  //
                                            0, 0, 0, 0, 1, 0, 0, 0, 0));
    ASSERT_EQ(S_OK, region->put_Polarity(PT_Outside));
    ASSERT_EQ(S_OK, image.process->ScalarPlusEquals(2));
    const std::vector<uint8_t> values = image.values();
    EXPECT_EQ(13 * 1 + 32 * 2, std::accumulate(values.begin(), values.end(), 0));
}

TEST(PointOperations, ARegionOfAnotherSizeIsClipped) {
    const Image<uint8_t> image(NewImage<uint8_t>(4, 2));
    ASSERT_EQ(S_OK, image.process->put_RegionOfInterest(Rectangle(100, 100, 2, 1, 50, 50).get()));
    ASSERT_EQ(S_OK, image.process->Invert());
    EXPECT_THAT(image.values(), ElementsAre(0, 0, 0, 0, 0, 0, 255, 255));
}

// Beyond the caches pixels are asked for ahead and rows visited in parts; runs begin and end anywhere in these.
TEST(LargeImages, GiveWhatTheirRowsGive) {
    constexpr LONG kWidth = 1501, kHeight = 4300;  // floats: 25.8 million bytes
    const Image<float> image(NewImage<float>(kWidth, kHeight));
    const auto value = [](LONG x, LONG y) { return static_cast<float>((x * 7 + y * 13) % 256); };
    LONG y = 0;
    for (const auto row : Rows<float>(image.pixels)) {
        for (LONG x = 0; x < kWidth; ++x) row[static_cast<size_t>(x)] = value(x, y);
        ++y;
    }
    const auto region = CreateObject<IShapeRegionOfInterest>("Orlix.ShapeRegionOfInterest");
    ASSERT_EQ(S_OK, region->CreateCircle(kWidth, kHeight, 800, 2100, 900));  // clipped on the left and on the right
    const auto inside = [](LONG x, LONG row) {
        return (x - 800) * (x - 800) + (row - 2100) * (row - 2100) <= 900 * 900;
    };
    for (const PolarityType polarity : {PT_Inside, PT_Outside}) {
        ASSERT_EQ(S_OK, region->put_Polarity(polarity));
        ASSERT_EQ(S_OK, image.process->put_RegionOfInterest(region.get()));
        ASSERT_EQ(S_OK, image.process->PutLuminanceRange(0, 255));
        int64_t count = 0, sum = 0, set = 0;
        for (LONG row = 0; row < kHeight; ++row)
            for (LONG x = 0; x < kWidth; ++x)
                if (inside(x, row) == (polarity == PT_Inside)) {
                    const auto p = static_cast<int64_t>(value(x, row));
                    ++count;
                    sum += p;
                    set += p >= 100 && p <= 199;
                }
        SGrayMeasurements measures = {};
        ASSERT_EQ(S_OK, image.process->get_GrayMeasurements(GEMT_GrayStatistics, &measures));
        EXPECT_EQ(count, measures.m_lPixelCount);
        EXPECT_EQ(static_cast<double>(sum) / static_cast<double>(count), measures.m_dGrayAverage);
        const std::vector<int> bits = Thresholded(image, 100, 199, 1);
        EXPECT_EQ(set, std::accumulate(bits.begin(), bits.end(), int64_t{0}));

        ASSERT_EQ(S_OK, image.process->Invert());
        LONG wrong = 0;
        y = 0;
        for (const auto row : Rows<float>(image.pixels)) {
            for (LONG x = 0; x < kWidth; ++x) {
                const bool inverted = inside(x, y) == (polarity == PT_Inside);
                wrong += row[static_cast<size_t>(x)] != (inverted ? 255 - value(x, y) : value(x, y));
            }
            ++y;
        }
        EXPECT_EQ(0, wrong);
        ASSERT_EQ(S_OK, image.process->Invert());
    }
}

TEST(ForeignRegions, ThatFailHalfWayChangeNothing) {
    const Image<uint8_t> image(NewImage<uint8_t>(4, 3));
    const auto region = MakeCounted<ForeignRegion>();
    region->runs = {RunOf(0, 3)};
    region->failingRow = 2;
    region->runsResult = E_UNEXPECTED;
    ASSERT_EQ(S_OK, image.process->put_RegionOfInterest(region.get()));
    EXPECT_TRUE(FailsSilently(image.process->ScalarEquals(9), E_UNEXPECTED));
    EXPECT_THAT(image.values(), Each(0));
    region->boxResult = E_NOTIMPL;
    IHistogram* histogram = nullptr;
    EXPECT_TRUE(FailsSilently(image.process->get_Histogram(&histogram), E_NOTIMPL));
    ASSERT_EQ(S_OK, image.process->put_RegionOfInterest(nullptr));
}

TEST(ForeignRegions, VisitEachPixelOnceWhateverTheRuns) {
    const Image<uint8_t> image(NewImage<uint8_t>(4, 3));
    const auto region = MakeCounted<ForeignRegion>();
    region->runs = {RunOf(2, 1000), RunOf(3, 1), RunOf(-5, 2)};
    ASSERT_EQ(S_OK, image.process->put_RegionOfInterest(region.get()));
    ASSERT_EQ(S_OK, image.process->ScalarPlusEquals(1));
    EXPECT_THAT(image.values(), Each(1));
    EXPECT_EQ(12, Measured(image.process, 3).m_lPixelCount);
    ASSERT_EQ(S_OK, image.process->put_RegionOfInterest(nullptr));
}

TEST(ForeignRegions, MayReplaceTheImageThatAsksThem) {
    const Image<uint8_t> image(NewImage<uint8_t>(4, 3));
    const auto region = MakeCounted<ForeignRegion>();
    region->runs = {RunOf(0, 3)};
    ASSERT_EQ(S_OK, image.process->put_RegionOfInterest(region.get()));
    for (const LONG type : {LONG{DT_BYTE}, LONG{DT_WORD}, LONG{DT_Double}}) {
        ASSERT_EQ(S_OK, image.pixels->Create(4, 3, 1, DT_BYTE, 1));
        ASSERT_EQ(S_OK, image.process->put_RegionOfInterest(region.get()));
        region->onRuns = [&] { image.pixels->Create(1, 1, 1, type, 1); };
        image.process->ScalarEquals(1);  // no particular result, and no harm
        region->onRuns = nullptr;
    }
    ASSERT_EQ(S_OK, image.pixels->Create(4, 3, 1, DT_BYTE, 1));
    ASSERT_EQ(S_OK, image.process->put_RegionOfInterest(nullptr));
    EXPECT_EQ(S_OK, image.process->Invert());
}

// --------------------------------------------------------------------------------------------------------------- table

TEST(Table, HoldsConvertedValuesAndIsLookedUp) {
    const Image<uint8_t> image(4, {0, 1, 2, 255});
    double value = 0;
    ASSERT_EQ(S_OK, image.process->get_Table(200, &value));
    EXPECT_EQ(200, value);
    const std::pair<double, double> conversions[] = {{6.5, 7},   {6.49, 6}, {-1, 0},
                                                     {1e9, 255}, {kNaN, 0}, {kInfinity, 255}};
    for (const auto& [put, got] : conversions) {
        ASSERT_EQ(S_OK, image.process->put_Table(1, put));
        ASSERT_EQ(S_OK, image.process->get_Table(1, &value));
        EXPECT_EQ(got, value);
    }
    ASSERT_EQ(S_OK, image.process->put_Table(2, 77));
    ASSERT_EQ(S_OK, image.process->LUT());
    EXPECT_THAT(image.values(), ElementsAre(0, 255, 77, 255));
    for (const LONG entry : {LONG{-1}, LONG{256}, std::numeric_limits<LONG>::max()}) {
        EXPECT_TRUE(Fails(image.process->put_Table(entry, 1), "IImageProcess::put_Table: Entry is out of range."));
        EXPECT_TRUE(Fails(image.process->get_Table(entry, &value), "IImageProcess::get_Table: Entry is out of range."));
    }
}

TEST(Table, EqualizationFollowsTheCumulativeCounts) {
    const Image<uint8_t> image(4, {10, 10, 20, 30});
    ASSERT_EQ(S_OK, image.process->PutLuminanceRange(0, 200));
    ASSERT_EQ(S_OK, image.process->EqualizeTable(ET_Uniform));
    double value = 0;
    const auto entry = [&](LONG i) { return image.process->get_Table(i, &value), value; };
    EXPECT_EQ(0, entry(9));
    EXPECT_EQ(100, entry(10));
    EXPECT_EQ(150, entry(29));
    EXPECT_EQ(200, entry(255));
    ASSERT_EQ(S_OK, image.process->EqualizeTable(ET_UpperTriangular));
    EXPECT_EQ(141, entry(10));  // 200 sqrt(1/2) = 141.42
    EXPECT_EQ(173, entry(20));  // 200 sqrt(3/4) = 173.2
    ASSERT_EQ(S_OK, image.process->EqualizeTable(static_cast<EqualizationType>(3)));
    EXPECT_EQ(141, entry(10));
    ASSERT_EQ(S_OK, image.process->PutLuminanceRange(100, 110));
    EXPECT_TRUE(Fails(image.process->EqualizeTable(ET_Uniform), "IImageProcess::EqualizeTable: empty histogram"));
    EXPECT_EQ(141, entry(10));
}

TEST(Table, Of16BitsIsReadThroughTheBinsOfTheHistogram) {
    const Image<uint16_t> image(6, {1000, 1001, 1002, 1003, 999, 2000});
    ASSERT_EQ(S_OK, image.process->PutLuminanceRange(1000, 1003));
    ASSERT_EQ(S_OK, image.process->LUT());  // the table that nobody filled changes nothing
    EXPECT_THAT(image.values(), ElementsAre(1000, 1001, 1002, 1003, 999, 2000));
    ASSERT_EQ(S_OK, image.process->EqualizeTable(ET_Uniform));
    ASSERT_EQ(S_OK, image.process->LUT());
    EXPECT_THAT(image.values(), ElementsAre(1001, 1002, 1002, 1003, 999, 2000));  // 1000 + 3 C / 4, rounded
    ASSERT_EQ(S_OK, image.process->put_NumberOfBins(2));
    ASSERT_EQ(S_OK, image.process->put_Table(0, 5));
    ASSERT_EQ(S_OK, image.process->put_Table(1, 6));
    ASSERT_EQ(S_OK, image.process->LUT());
    EXPECT_THAT(image.values(), ElementsAre(5, 6, 6, 6, 999, 2000));  // floor((p - 1000) 2 / 3)
    ASSERT_EQ(S_OK, image.process->PutLuminanceRange(999, 999));      // one value: counted in the last bin
    ASSERT_EQ(S_OK, image.process->LUT());
    EXPECT_THAT(image.values(), ElementsAre(5, 6, 6, 6, 6, 2000));
}

// ------------------------------------------------------------------------------------------------------------ snapping

TEST(SnapLuminanceRange, TakesTheExtremesOrTheTrimmedLimits) {
    std::vector<uint16_t> ramp(100);
    std::iota(ramp.begin(), ramp.end(), uint16_t{1000});
    const Image<uint16_t> image(100, ramp);
    const auto snap = [&](double left, double right, LONG round) {
        return image.process->SnapLuminanceRange(left, right, round);
    };
    ASSERT_EQ(S_OK, snap(0, 0, 0));
    EXPECT_THAT(image.range(), Pair(1000, 1099));
    ASSERT_EQ(S_OK, snap(0.1, 0.2, 1));  // RoundOut means nothing here
    EXPECT_THAT(image.range(), Pair(1010, 1079));
    EXPECT_TRUE(Fails(snap(0.6, 0.4, 0),
                      "IHistogram::AutoThresholdTrim: the total amount of trimming must be less than 1.0.",
                      "Orlix.Histogram.1"));
    ASSERT_EQ(S_OK, image.process->put_RegionOfInterest(Rectangle(1000, 10, 500, 5, 600, 6).get()));
    EXPECT_EQ(S_FALSE, snap(0, 0, 0));
    EXPECT_THAT(image.range(), Pair(1010, 1079));
}

TEST(SnapLuminanceRange, OfBytesIsUndoneByRoundOut) {
    const Image<uint8_t> image(3, {20, 30, 40});
    ASSERT_EQ(S_OK, image.process->SnapLuminanceRange(0, 0, 0));
    EXPECT_THAT(image.range(), Pair(20, 40));
    ASSERT_EQ(S_OK, image.process->SnapLuminanceRange(0, 0, 1));
    EXPECT_THAT(image.range(), Pair(0, 255));
}

// -------------------------------------------------------------------------------------------------------- other images

TEST(CastAndPlus, KeepLowOrderBitsAndNeverSaturate) {
    const Image<uint8_t> bytes(2, {200, 7});
    ASSERT_EQ(S_OK, bytes.process->PlusEquals(ImageOf<uint8_t>(2, {100, 1}).get(), 0));
    EXPECT_THAT(bytes.values(), ElementsAre(44, 8));
    ASSERT_EQ(S_OK, bytes.process->CastEquals(ImageOf<uint16_t>(2, {300, 65535}).get(), 0));
    EXPECT_THAT(bytes.values(), ElementsAre(44, 255));
    ASSERT_EQ(S_OK, bytes.process->CastEquals(ImageOf<float>(2, {3.9f, -1.2f}).get(), 0));
    EXPECT_THAT(bytes.values(), ElementsAre(3, 255));
    ASSERT_EQ(S_OK, bytes.process->CastEquals(ImageOf<float>(2, {std::nanf(""), 1e30f}).get(), 0));
    EXPECT_THAT(bytes.values(), ElementsAre(0, 0));
    const Image<float> floats(2, {0.5f, 1.0f});
    ASSERT_EQ(S_OK, floats.process->PlusEquals(ImageOf<uint32_t>(2, {16777217, 4294967295u}).get(), 0));
    EXPECT_THAT(floats.values(), ElementsAre(16777216.0f, 4294967296.0f));
    ASSERT_EQ(S_OK, floats.process->PlusEquals(floats.pixels.get(), 0));  // with itself
    EXPECT_THAT(floats.values(), ElementsAre(33554432.0f, 8589934592.0f));
}

TEST(CastAndPlus, CheckTypeAndBands) {
    const Image<uint8_t> image(NewImage<uint8_t>(2, 2, 1));
    const auto foreign = MakeCounted<ForeignImage>();
    foreign->type = DT_Double;
    EXPECT_TRUE(Fails(image.process->CastEquals(foreign.get(), 0), "IImageProcess::CastEquals: unsupported DataType."));
    EXPECT_TRUE(Fails(image.process->PlusEquals(foreign.get(), 0), "IImageProcess::PlusEquals: unsupported DataType."));
    const auto three = NewImage<uint8_t>(2, 2, 3);
    EXPECT_TRUE(Fails(image.process->CastEquals(three.get(), BI_AllBands),
                      "IImageProcess::CastEquals: mismatch in the number of bands to process."));
    EXPECT_TRUE(Fails(image.process->PlusEquals(three.get(), BI_AllBands),
                      "IImageProcess::PlusEquals: mismatch in the number of bands to process."));
    EXPECT_TRUE(Fails(image.process->PlusEquals(three.get(), 3), "IImageVPA::VPA: BandIndex is out of range"));
    EXPECT_EQ(S_OK, image.process->PlusEquals(three.get(), 2));
}

TEST(CastAndPlus, ReadTheMarginOfASmallerSourceAndNothingBeyond) {
    const Image<uint8_t> image(NewImage<uint8_t>(300, 210));
    ASSERT_EQ(S_OK, image.process->ScalarEquals(9));
    ASSERT_EQ(S_OK, image.process->CastEquals(ImageOf<uint8_t>(3, {1, 2, 3}).get(), 0));
    const Rows<uint8_t> rows(image.pixels);
    EXPECT_EQ(1, rows[0][0]);
    EXPECT_EQ(2, rows[200][3]);  // column 3 mirrors column 1; row 200 is the last with an offset
    EXPECT_EQ(3, rows[0][202]);  // 202 = 50 * 4 + 2
    EXPECT_EQ(9, rows[0][203]);
    EXPECT_EQ(9, rows[201][0]);
}

TEST(NotBuiltYet, MethodsSaySoAndLeaveNoTextOfAnEarlierCall) {
    const Image<uint8_t> image(NewImage<uint8_t>(2, 2));
    ComPtr<IBitmap> extrema;
    const std::function<HRESULT()> calls[] = {[&] { return image.process->get_LocalMaxima(extrema.Out()); },
                                              [&] { return image.process->get_LocalMinima(extrema.Out()); },
                                              [&] { return image.process->LocalBackgroundCorrect(); }};
    for (const auto& call : calls) {
        EXPECT_EQ(E_FAIL, image.process->put_BandToProcess(7));
        EXPECT_TRUE(FailsSilently(call(), E_NOTIMPL));
    }
}

TEST(NullOutputs, AreRefused) {
    const Image<uint8_t> image(NewImage<uint8_t>(2, 2));
    double value = 3;
    EXPECT_EQ(E_POINTER, image.process->get_BandToProcess(nullptr));
    EXPECT_EQ(E_POINTER, image.process->get_RegionOfInterest(nullptr));
    EXPECT_EQ(E_POINTER, image.process->GetLuminanceRange(&value, nullptr));
    EXPECT_EQ(E_POINTER, image.process->GetLuminanceRange(nullptr, &value));
    EXPECT_EQ(E_POINTER, image.process->get_NumberOfBins(nullptr));
    EXPECT_EQ(E_POINTER, image.process->Threshold(0, 1, 1, nullptr));
    EXPECT_EQ(E_POINTER, image.process->get_Histogram(nullptr));
    EXPECT_EQ(E_POINTER, image.process->get_GrayMeasurements(GEMT_GrayLocation, nullptr));
    EXPECT_EQ(E_POINTER, image.process->get_Table(0, nullptr));
    EXPECT_EQ(E_POINTER, image.process->CastEquals(nullptr, 0));
    EXPECT_EQ(E_POINTER, image.process->PlusEquals(nullptr, 0));
    EXPECT_EQ(3, value);
}

}  // namespace
}  // namespace orlix::testing
