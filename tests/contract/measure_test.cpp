// Measurements on top of the interfaces: orlix/measure.hpp.
#include "contract/support.hpp"

#include <orlix/measure.hpp>

#include <algorithm>
#include <cmath>

namespace orlix::testing {
namespace {

HRESULT ResultOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const Error& error) {
        return error.result();
    }
    return S_OK;
}

TEST(MeasureBitmap, CountsBitsAndNotTheirPadding) {
    for (const LONG width : {11, 16}) {
        const auto bitmap = Cast<IBitmap>(NewBitmap(width, 3));
        EXPECT_EQ(0, MeasureBitmap(bitmap).pixelCount);
        EXPECT_TRUE(std::isnan(MeasureBitmap(bitmap).xCentroid) && std::isnan(MeasureBitmap(bitmap).yCentroid));
        for (const auto& [x, y] : {std::pair{0, 0}, {7, 0}, {8, 2}, {10, 2}}) Check(bitmap->put_Bit(x, y, 1), bitmap);
        if (width % 8) Get(bitmap, &IBitmap::GetRowPtr, 1)[1] |= 0x1f;
        const BinaryMeasurements measurements = MeasureBitmap(bitmap);
        EXPECT_EQ(4, measurements.pixelCount);
        EXPECT_EQ(25 / 4.0, measurements.xCentroid);
        EXPECT_EQ(1, measurements.yCentroid);
    }
    // Words of 64 pixels, empty, full and mixed.
    for (const LONG width : {64, 131, 200}) {
        const auto bitmap = Cast<IBitmap>(NewBitmap(width, 3));
        int64_t count = 0, xSum = 0, ySum = 0;
        for (LONG y = 0; y < 3; ++y)
            for (LONG x = 0; x < width; ++x)
                if (y == 0 ? x >= 64 : y == 2 && x * x % 7 < 3) {
                    Check(bitmap->put_Bit(x, y, 1), bitmap);
                    ++count, xSum += x, ySum += y;
                }
        const BinaryMeasurements measurements = MeasureBitmap(bitmap);
        EXPECT_EQ(count, measurements.pixelCount);
        EXPECT_EQ(static_cast<double>(xSum) / static_cast<double>(count), measurements.xCentroid);
        EXPECT_EQ(static_cast<double>(ySum) / static_cast<double>(count), measurements.yCentroid);
    }
}

TEST(RegroupedHistogram, AddsEqualNumbersOfNeighbours) {
    const auto fine = HistogramOf({1, 2, 3, 4, 5, 6, 7, INT32_MAX, 9, 10}, 99, 119);  // bins 2 wide
    const auto coarse = Regrouped(fine, 4);
    const std::span<LONG> sums = Bins(coarse);
    EXPECT_EQ((std::vector<LONG>{6, 15, INT32_MAX, 10}), std::vector<LONG>(sums.begin(), sums.end()));
    EXPECT_EQ(std::tuple(6, 102), Get(coarse, &IHistogram::GetBinToLocationMapping)) << "the middle of 100 and 104";
    for (const LONG most : {10, 11, INT32_MAX}) {
        const auto copy = Regrouped(fine, most);
        EXPECT_TRUE(std::ranges::equal(Bins(fine), Bins(copy))) << most;
        EXPECT_NE(Bins(fine).data(), Bins(copy).data());
    }
    EXPECT_EQ(1u, Bins(Regrouped(fine, 1)).size());

    // Four bins from 100 to 103 would be the whole numbers 100, 101, 102 and 103 and not intervals of 0.75.
    const auto three = Regrouped(HistogramOf(std::vector<LONG>(12, 1), 100, 103), 4);
    EXPECT_EQ(3u, Bins(three).size());
    EXPECT_EQ(std::tuple(1, 100.5), Get(three, &IHistogram::GetBinToLocationMapping));
    for (const LONG most : {0, -1, INT32_MIN})
        EXPECT_EQ(E_INVALIDARG, ResultOf([&] { Regrouped(fine, most); })) << most;
}

TEST(AutoThresholds, CutBetweenBins) {
    using enum AutoThreshold::Status;
    using enum ThresholdMethod;
    // 30 dark pixels in the bins 0 to 2, 46 bright ones in 6 to 8. Bins are 2 wide, the first is centred at 50.
    const auto pair = HistogramOf({5, 20, 5, 0, 0, 0, 8, 30, 8}, 49, 67);
    for (const ThresholdMethod method : {MinimizeVariance, SearchForMinimum, GaussianMixture}) {
        SCOPED_TRACE(static_cast<int>(method));
        const AutoThreshold found = FindAutoThreshold(pair, method, 0.005, 0.005);
        EXPECT_EQ(Found, found.status);
        EXPECT_FALSE(found.atSearchLimit);
        EXPECT_EQ(found.darkCut, found.brightCut);
        EXPECT_TRUE(found.darkCut >= 55 && found.darkCut <= 61) << found.darkCut;
        EXPECT_EQ(0, std::fmod(found.darkCut - 49, 2)) << "the edge of a bin";
    }
    // A tenth of 76 pixels lies below bin 1, and a tenth above bin 7.
    const AutoThreshold tails = FindAutoThreshold(pair, Trim, 0.1, 0.1);
    EXPECT_EQ(51, tails.darkCut);
    EXPECT_EQ(65, tails.brightCut);

    const auto one = HistogramOf({0, 7, 0}, 0, 2), two = HistogramOf({5, 20, 5, 0, 8, 30, 8}, 0, 6);
    const std::tuple<ComPtr<IHistogram>, ThresholdMethod, double, double, AutoThreshold::Status, bool> cases[] = {
        {one, MinimizeVariance, 0, 0, OneLevel, false},
        {two, MinimizeVariance, 0.6, 0.6, FractionsNotLeft, false},
        {two, MinimizeVariance, 0.5, 0, Found, true},
        {two, MaximizeEntropy, 0, 0.8, Found, true}};
    for (const auto& [histogram, method, first, second, status, atLimit] : cases) {
        const AutoThreshold found = FindAutoThreshold(histogram, method, first, second);
        EXPECT_EQ(status, found.status) << second;
        EXPECT_EQ(atLimit, found.atSearchLimit) << second;
        EXPECT_EQ(status == OneLevel, std::isnan(found.darkCut)) << second;
    }
    EXPECT_EQ(E_FAIL, ResultOf([&] { FindAutoThreshold(pair, Trim, -1, 0); }));
    EXPECT_EQ(E_INVALIDARG, ResultOf([&] { FindAutoThreshold(pair, static_cast<ThresholdMethod>(99), 0, 0); }));
}

TEST(RegionMask, HasTheRunsClippedToTheImage) {
    const auto region = MakeCounted<ForeignRegion>();
    region->runs = {RunOf(-3, 0), RunOf(2, 1), RunOf(3, INT32_MAX)};
    const ComPtr<IRegionOfInterest> asked(region.get());
    EXPECT_EQ((std::vector<uint8_t>{1, 0, 0, 1, 1, 0, 0, 1}), RegionMask(asked, 4, 2));
    EXPECT_EQ((std::vector<uint8_t>{0, 0, 0, 0, 1, 0, 0, 1, 0}),
              RegionMask(Cast<IRegionOfInterest>(RectangleOf(3, 3, 1, 1, 1, 2)), 3, 3));
    EXPECT_EQ(std::vector<uint8_t>(6, 1), RegionMask(nullptr, 2, 3));
    EXPECT_TRUE(RegionMask(asked, 0, 3).empty());
    EXPECT_EQ(E_INVALIDARG, ResultOf([&] { RegionMask(asked, -1, 3); }));
    EXPECT_EQ(E_INVALIDARG, ResultOf([&] { RegionMask(nullptr, 1, INT32_MIN); }));
}

TEST(RegionOfMask, HasThePixelsThatAreNotZero) {
    const std::vector<uint8_t> mask = {0, 0, 0, 0, 0, 7, 1, 0, 0, 1, 0, 255};
    const auto region = RegionOfMask(mask, 4, 3);
    EXPECT_EQ((std::vector<uint8_t>{0, 0, 0, 0, 0, 1, 1, 0, 0, 1, 0, 1}), RegionMask(region, 4, 3));
    EXPECT_EQ((std::vector<LONG>{1, 1, 3, 2}), Edges(Get(region, &IRegionOfInterest::get_BoundingBox)));
    SRun *begin = nullptr, *end = nullptr;
    for (const LONG row : {-1, 3, INT32_MIN, INT32_MAX}) EXPECT_EQ(S_FALSE, region->GetRowRuns(row, &begin, &end));
    EXPECT_EQ(E_POINTER, region->GetRowRuns(0, nullptr, &end));

    // The library measures these pixels: 10, 20, 30 and 40 of a ramp.
    const auto image = ImageOf<uint8_t>(4, {0, 0, 0, 0, 0, 10, 20, 0, 0, 30, 0, 40});
    Check(image.process->put_RegionOfInterest(region.get()), image.process);
    const auto grey = Get(image.process, &IImageProcess::get_GrayMeasurements, GEMT_GrayStatistics);
    EXPECT_EQ(4, grey.m_lPixelCount);
    EXPECT_EQ(25, grey.m_dGrayAverage);

    const RECT none = Get(RegionOfMask({}, 0, 5), &IRegionOfInterest::get_BoundingBox);
    EXPECT_LT(none.right, none.left);
    EXPECT_EQ(E_INVALIDARG, ResultOf([&] { RegionOfMask(mask, 4, 2); }));
    EXPECT_EQ(E_INVALIDARG, ResultOf([&] { RegionOfMask(mask, -4, -3); }));
}

}  // namespace
}  // namespace orlix::testing
