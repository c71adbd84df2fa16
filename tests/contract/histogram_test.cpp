// Histograms as clients see them.
#include "contract/support.hpp"

#include <cmath>
#include <limits>

namespace {

using namespace orlix;
using namespace orlix::testing;

constexpr const char* kSource = "Orlix.Histogram.1";
constexpr double kSentinel = -12345.5;

using Histogram = ComPtr<IHistogram>;

Histogram NewHistogram() { return CreateObject<IHistogram>("Orlix.Histogram"); }

std::vector<LONG> CountsOf(const Histogram& histogram) {
    LONG* const bins = Get(histogram, &IHistogram::get_Bins);
    return {bins, bins + Get(histogram, &IHistogram::get_NumberOfBins)};
}

Histogram With(const std::vector<LONG>& counts, double left, double right) {
    auto histogram = NewHistogram();
    Check(histogram->Create(static_cast<LONG>(counts.size()), left, right), histogram);
    std::copy(counts.begin(), counts.end(), Get(histogram, &IHistogram::get_Bins));
    return histogram;
}

// Over the whole numbers 0 .. n - 1, so that locations are bins.
Histogram With(const std::vector<LONG>& counts) { return With(counts, 0, static_cast<double>(counts.size()) - 1); }

// ------------------------------------------------------------------------------------------------------------ life

TEST(HistogramContract, ANewHistogramHasNoBins) {
    const auto histogram = NewHistogram();
    EXPECT_EQ(0, Get(histogram, &IHistogram::get_NumberOfBins));
    for (const auto bins : {&IHistogram::get_Bins, &IHistogram::get_DetailBins, &IHistogram::get_SmoothBins})
        EXPECT_EQ(nullptr, Get(histogram, bins));
    EXPECT_EQ(S_OK, histogram->Zero());
    EXPECT_EQ(S_OK, histogram->Decompose());
    double a = 0;
    double b = 9;
    EXPECT_EQ(S_OK, histogram->GetBinToLocationMapping(&a, &b));
    EXPECT_EQ(1.0, a);
    EXPECT_EQ(0.0, b);
    EXPECT_EQ(0, Get(histogram, &IHistogram::get_MaximumCount));
    EXPECT_EQ(0.0, Get(histogram, &IHistogram::get_Mode));
    EXPECT_EQ(-1.0, Get(histogram, &IHistogram::get_Minimum));
    EXPECT_EQ(0.0, Get(histogram, &IHistogram::get_Maximum));
}

TEST(HistogramContract, BinsAreTheObjectsOwnStorage) {
    const auto histogram = With({1, 2, 3});
    LONG* const bins = Get(histogram, &IHistogram::get_Bins);
    bins[1] = 40;
    EXPECT_EQ(40, Get(histogram, &IHistogram::get_MaximumCount));
    EXPECT_EQ(S_OK, histogram->Zero());
    EXPECT_EQ(0, bins[1]);
}

TEST(HistogramContract, CreatingAnewDiscardsTheCountsAndTakesTheRange) {
    const auto histogram = With({1, 2, 3}, -4, 8.5);
    EXPECT_EQ(-4.0, Get(histogram, &IHistogram::get_Left));
    EXPECT_EQ(8.5, Get(histogram, &IHistogram::get_Right));
    EXPECT_EQ(S_OK, histogram->Create(3, 1, kNaN));
    EXPECT_EQ(std::vector<LONG>(3, 0), CountsOf(histogram));
    EXPECT_EQ(1.0, Get(histogram, &IHistogram::get_Left));
    EXPECT_TRUE(std::isnan(Get(histogram, &IHistogram::get_Right)));
    EXPECT_EQ(S_OK, histogram->Create(5, 9, -9));  // falling ranges are accepted
    EXPECT_EQ(std::vector<LONG>(5, 0), CountsOf(histogram));
    for (const LONG n : {LONG{0}, LONG{-1}, static_cast<LONG>(std::numeric_limits<int32_t>::min())}) {
        EXPECT_EQ(S_OK, histogram->Create(n, 0, 255));
        EXPECT_TRUE(CountsOf(histogram).empty());
        EXPECT_EQ(nullptr, Get(histogram, &IHistogram::get_Bins));
    }
}

TEST(HistogramContract, MoreBinsThanMemoryFailAndKeepTheOldOnes) {
    // 8 GiB: no 32-bit process has them; others may, and then the bins are there and zero.
    const auto histogram = With({1, 2, 3});
    const HRESULT result = histogram->Create(std::numeric_limits<int32_t>::max(), 0, 1);
    const LONG n = Get(histogram, &IHistogram::get_NumberOfBins);
    LONG* const bins = Get(histogram, &IHistogram::get_Bins);
    if (sizeof(void*) == 4 || result != S_OK) {
        EXPECT_TRUE(FailsSilently(result));
        EXPECT_EQ((std::vector<LONG>{1, 2, 3}), CountsOf(histogram));
        EXPECT_EQ(2.0, Get(histogram, &IHistogram::get_Right));
    } else {
        EXPECT_EQ(std::numeric_limits<int32_t>::max(), n);
        EXPECT_EQ(0, bins[0]);
        EXPECT_EQ(0, bins[n - 1]);
    }
}

// -------------------------------------------------------------------------------------------------------- failures

struct Call {
    const char* text;
    std::function<HRESULT(IHistogram*, double* first, double* second)> call;
    double first;   // the outputs afterwards
    double second;  // kSentinel where there is only one
};

TEST(HistogramContract, EmptyHistogramsAreReportedAndLeaveTheOutputsDefined) {
    const Call calls[] = {
        {"IHistogram::get_Entropy: empty histogram", [](auto* h, auto* a, auto*) { return h->get_Entropy(a); }, 0,
         kSentinel},
        {"IHistogram::get_Mean: empty histogram", [](auto* h, auto* a, auto*) { return h->get_Mean(a); }, 2.5,
         kSentinel},
        {"IHistogram::get_Median: empty histogram", [](auto* h, auto* a, auto*) { return h->get_Median(a); }, 2.5,
         kSentinel},
        {"IHistogram::get_Variance: empty histogram", [](auto* h, auto* a, auto*) { return h->get_Variance(a); }, 0,
         kSentinel},
        {"IHistogram::get_Skew: empty histogram", [](auto* h, auto* a, auto*) { return h->get_Skew(a); }, 0, kSentinel},
        {"IHistogram::get_Kurtosis: empty histogram", [](auto* h, auto* a, auto*) { return h->get_Kurtosis(a); }, 0,
         kSentinel},
        {"IHistogram::GetTrimmedStatistics: empty histogram",
         [](auto* h, auto* a, auto* b) { return h->GetTrimmedStatistics(0.7, a, b); }, 0, 0},
        {"IHistogram::GetMedianStatistics: empty histogram",
         [](auto* h, auto* a, auto* b) { return h->GetMedianStatistics(a, b); }, 2.5, 0},
        {"IHistogram::Trim: empty histogram", [](auto* h, auto*, auto*) { return h->Trim(0.1); }, kSentinel, kSentinel},
        {"IHistogram::AutoThresholdMinimizeVariance: empty histogram",
         [](auto* h, auto* a, auto*) { return h->AutoThresholdMinimizeVariance(0, 0, a); }, 0, kSentinel},
        {"IHistogram::AutoThresholdSearchForMinimum: no counts in bins",
         [](auto* h, auto* a, auto*) { return h->AutoThresholdSearchForMinimum(0, 0, a); }, 2,
         kSentinel},  // the middle bin
        {"IHistogram::AutoThresholdGaussianMixture: empty histogram",
         [](auto* h, auto* a, auto*) { return h->AutoThresholdGaussianMixture(0, 0, a); }, 0, kSentinel},
        {"IHistogram::AutoThresholdMaximizeEntropy: empty histogram.",
         [](auto* h, auto* a, auto*) { return h->AutoThresholdMaximizeEntropy(0, 0, a); }, 0, kSentinel},
        {"IHistogram::AutoThresholdExponential: empty histogram",
         [](auto* h, auto* a, auto*) { return h->AutoThresholdExponential(0.5, a); }, 0, kSentinel},
    };
    const auto histogram = With(std::vector<LONG>(5, 0), 10, 20);
    for (const Call& c : calls) {
        double first = kSentinel;
        double second = kSentinel;
        EXPECT_TRUE(Fails(c.call(histogram.get(), &first, &second), c.text, kSource));
        EXPECT_EQ(c.first, first) << c.text;
        EXPECT_EQ(c.second, second) << c.text;
    }
}

TEST(HistogramContract, ArgumentsOutOfRangeAreReportedInTheirOrder) {
    const char* left = "IHistogram::AutoThresholdTrim: the amount trimmed on the left must be between 0.0 and 1.0.";
    const char* right = "IHistogram::AutoThresholdTrim: the amount trimmed on the right must be between 0.0 and 1.0.";
    const char* total = "IHistogram::AutoThresholdTrim: the total amount of trimming must be less than 1.0.";
    struct Case {
        double trimLeft, trimRight;
        const char* text;
    };
    const Case cases[] = {
        {1.0, 5.0, left},  {-1e-300, 0.0, left}, {kNaN, kNaN, left},    {kInfinity, 2.0, left},
        {0.0, 1.0, right}, {0.9, -0.1, right},   {0.0, kNaN, right},    {0.9, kInfinity, right},
        {0.6, 0.4, total}, {0.5, 0.5, total},    {0.999, 0.999, total},
    };
    for (const auto& histogram : {With({1, 2, 3}, 10, 20), NewHistogram()})
        for (const Case& c : cases) {
            double low = kSentinel;
            double high = kSentinel;
            EXPECT_TRUE(Fails(histogram->AutoThresholdTrim(c.trimLeft, &low, c.trimRight, &high), c.text, kSource));
            EXPECT_EQ(Get(histogram, &IHistogram::get_Left), low);
            EXPECT_EQ(Get(histogram, &IHistogram::get_Right), high);
            double threshold = kSentinel;
            EXPECT_TRUE(
                Fails(histogram->AutoThresholdSearchForMinimum(c.trimLeft, c.trimRight, &threshold), c.text, kSource));
            EXPECT_EQ(0.0, threshold);
        }

    const char* outside =
        "IHistogram::AutoThresholdExponential: the amount trimmed on the right must be between 0.0 and 1.0.";
    for (const auto& histogram : {With({1, 2, 3}), With({0}), NewHistogram()})
        for (const double fraction : {-1e-300, 1.0000001, kNaN, kInfinity}) {
            double threshold = kSentinel;
            EXPECT_TRUE(Fails(histogram->AutoThresholdExponential(fraction, &threshold), outside, kSource));
            EXPECT_EQ(0.0, threshold);
        }
    double threshold = kSentinel, other = kSentinel;
    EXPECT_EQ(S_OK, With({1, 2, 3})->AutoThresholdTrim(-0.0, &threshold, 0.49, &other)) << "a negative zero is zero";
    EXPECT_TRUE(Fails(NewHistogram()->AutoThresholdExponential(1.0, &threshold),
                      "IHistogram::AutoThresholdExponential: No bins.", kSource));
    EXPECT_EQ(0.0, threshold);
}

TEST(HistogramContract, NullOutputsAreRefusedBeforeAnythingIsWritten) {
    const auto histogram = With({1, 2, 3});
    IHistogram* const h = histogram.get();
    double other = kSentinel;
    const HRESULT results[] = {
        h->CreateFromHistogram(nullptr),
        h->get_NumberOfBins(nullptr),
        h->get_Left(nullptr),
        h->get_Right(nullptr),
        h->get_Bins(nullptr),
        h->AutoThresholdMinimizeVariance(0, 0, nullptr),
        h->AutoThresholdTrim(0, nullptr, 0, &other),
        h->AutoThresholdTrim(0, &other, 0, nullptr),
        h->AutoThresholdTrim(5, nullptr, 0, nullptr),
        h->AutoThresholdSearchForMinimum(0, 0, nullptr),
        h->AutoThresholdGaussianMixture(0, 0, nullptr),
        h->AutoThresholdMaximizeEntropy(0, 0, nullptr),
        h->AutoThresholdExponential(0.5, nullptr),
        h->get_Entropy(nullptr),
        h->get_Skew(nullptr),
        h->get_Kurtosis(nullptr),
        h->get_MaximumCount(nullptr),
        h->get_Mean(nullptr),
        h->get_Median(nullptr),
        h->get_Mode(nullptr),
        h->get_Variance(nullptr),
        h->get_Minimum(nullptr),
        h->get_Maximum(nullptr),
        h->GetTrimmedStatistics(0, nullptr, &other),
        h->GetTrimmedStatistics(0, &other, nullptr),
        h->GetMedianStatistics(nullptr, &other),
        h->GetMedianStatistics(&other, nullptr),
        h->BinToLocation(0, nullptr),
        h->LocationToBin(0, nullptr),
        h->GetBinToLocationMapping(nullptr, &other),
        h->GetBinToLocationMapping(&other, nullptr),
        h->get_DetailBins(nullptr),
        h->get_SmoothBins(nullptr),
    };
    for (size_t i = 0; i < std::size(results); ++i) EXPECT_EQ(E_POINTER, results[i]) << "call " << i;
    EXPECT_EQ(kSentinel, other);
    EXPECT_EQ("", TakeReported().text);
    EXPECT_EQ((std::vector<LONG>{1, 2, 3}), CountsOf(histogram));
}

TEST(HistogramContract, ASuccessTakesAwayTheTextOfAnEarlierFailure) {
    const auto histogram = With({0, 0});
    double mean = 0;
    EXPECT_EQ(E_FAIL, histogram->get_Mean(&mean));
    EXPECT_EQ(0.0, Get(histogram, &IHistogram::get_Mode));
    EXPECT_EQ("", TakeReported().text);
}

// ------------------------------------------------------------------------------------------------------ statistics

TEST(HistogramContract, StatisticsComeInLocations) {
    // Bins 0 .. 3 over 10 .. 18 in steps of 2, middles 11, 13, 15, 17.
    const auto histogram = With({0, 5, 5, 0}, 10, 18);
    EXPECT_EQ(14.0, Get(histogram, &IHistogram::get_Mean));
    EXPECT_EQ(13.0, Get(histogram, &IHistogram::get_Median));
    EXPECT_EQ(13.0, Get(histogram, &IHistogram::get_Mode));
    EXPECT_EQ(1.0, Get(histogram, &IHistogram::get_Variance));
    EXPECT_EQ(13.0, Get(histogram, &IHistogram::get_Minimum));
    EXPECT_EQ(15.0, Get(histogram, &IHistogram::get_Maximum));
    EXPECT_DOUBLE_EQ(std::log(2.0), Get(histogram, &IHistogram::get_Entropy));
    EXPECT_EQ(0.0, Get(histogram, &IHistogram::get_Skew));
    EXPECT_EQ(-2.0, Get(histogram, &IHistogram::get_Kurtosis));
    EXPECT_EQ(5, Get(histogram, &IHistogram::get_MaximumCount));
    double location = 0;
    double bin = 0;
    EXPECT_EQ(S_OK, histogram->BinToLocation(0.5, &location));
    EXPECT_EQ(12.0, location);
    EXPECT_EQ(S_OK, histogram->LocationToBin(12.0, &bin));
    EXPECT_EQ(0.5, bin);
}

TEST(HistogramContract, WholeRangesMapBinsToTheirValues) {
    double a = 0;
    double b = 0;
    EXPECT_EQ(S_OK, With(std::vector<LONG>(256, 1), 0, 255)->GetBinToLocationMapping(&a, &b));
    EXPECT_EQ(1.0, a);
    EXPECT_EQ(0.0, b);
    EXPECT_EQ(S_OK, With(std::vector<LONG>(256, 1), 0, 256)->GetBinToLocationMapping(&a, &b));
    EXPECT_EQ(1.0, a);
    EXPECT_EQ(0.5, b);
    EXPECT_EQ(0.0, Get(With({9}, 7, 7), &IHistogram::get_Mean));  // a single value has no location
}

TEST(HistogramContract, EmptyHistogramsHaveTheirExtremesAtTheOppositeEnds) {
    const auto histogram = With(std::vector<LONG>(5, 0), 10, 14);
    EXPECT_EQ(14.0, Get(histogram, &IHistogram::get_Minimum));
    EXPECT_EQ(10.0, Get(histogram, &IHistogram::get_Maximum));
    EXPECT_EQ(10.0, Get(histogram, &IHistogram::get_Mode));
}

TEST(HistogramContract, FallingRangesMirrorLocationsAndKeepTheShape) {
    const auto rising = With({4, 3, 2, 1}, 0, 8);
    const auto falling = With({4, 3, 2, 1}, 8, 0);
    EXPECT_EQ(8.0, Get(rising, &IHistogram::get_Mean) + Get(falling, &IHistogram::get_Mean));
    EXPECT_EQ(Get(rising, &IHistogram::get_Skew), Get(falling, &IHistogram::get_Skew));
    EXPECT_EQ(Get(rising, &IHistogram::get_Variance), Get(falling, &IHistogram::get_Variance));
}

TEST(HistogramContract, TrimmedAndMedianStatistics) {
    const auto histogram = With({2, 3, 10, 3, 2}, 10, 14);
    double mean = 0;
    double deviation = 0;
    EXPECT_EQ(S_OK, histogram->GetTrimmedStatistics(0.0, &mean, &deviation));
    EXPECT_EQ(12.0, mean);
    EXPECT_DOUBLE_EQ(std::sqrt(22.0 / 20.0), deviation);
    EXPECT_EQ(S_OK, histogram->GetTrimmedStatistics(0.125, &mean, &deviation));
    EXPECT_EQ(12.0, mean);
    EXPECT_DOUBLE_EQ(std::sqrt(12.0 / 22.0) / 0.75, deviation);
    for (const double trim : {0.5, 1.0, kNaN, kInfinity}) {
        EXPECT_EQ(S_FALSE, histogram->GetTrimmedStatistics(trim, &mean, &deviation));
        EXPECT_EQ(0.0, mean);
        EXPECT_EQ(0.0, deviation);
    }
    double median = 0;
    EXPECT_EQ(S_OK, With({0, 0, 10, 0, 0}, 0, 2.5)->GetMedianStatistics(&median, &deviation));
    EXPECT_EQ(1.25, median);
    EXPECT_EQ(0.5, deviation);  // one bin, although bin 2 holds everything
}

TEST(HistogramContract, TrimSmoothAndDecomposeWorkInPlace) {
    const auto histogram = With({2, 3, 10, 3, 2});
    EXPECT_EQ(S_OK, histogram->Trim(0.125));
    EXPECT_EQ((std::vector<LONG>{0, 2, 10, 2, 0}), CountsOf(histogram));
    EXPECT_EQ(S_OK, histogram->Smooth3());
    EXPECT_EQ((std::vector<LONG>{1, 3, 6, 3, 1}), CountsOf(histogram));
    EXPECT_EQ(S_OK, histogram->Smooth5());
    EXPECT_EQ(S_OK, histogram->Smooth7());
    EXPECT_EQ(S_OK, histogram->Smooth9());
    const auto two = With({4, 0});  // too few bins for all but the smallest kernel
    for (const HRESULT result : {two->Smooth5(), two->Smooth7(), two->Smooth9()}) EXPECT_EQ(S_FALSE, result);
    EXPECT_EQ((std::vector<LONG>{4, 0}), CountsOf(two));
    EXPECT_EQ(S_OK, two->Smooth3());
    EXPECT_EQ((std::vector<LONG>{2, 2}), CountsOf(two));
    EXPECT_EQ(S_FALSE, With({4})->Smooth3());

    const auto steps = With({8, 2, 5, 6});
    EXPECT_EQ(S_OK, steps->Decompose());
    LONG* const detail = Get(steps, &IHistogram::get_DetailBins);
    LONG* const smooth = Get(steps, &IHistogram::get_SmoothBins);
    EXPECT_EQ((std::vector<LONG>{5, 0, -3, 0}), std::vector<LONG>(detail, detail + 4));
    EXPECT_EQ((std::vector<LONG>{5, 5, 5, 5}), std::vector<LONG>(smooth, smooth + 4));
    // They stay when the counts go, but not when there are more bins than they have entries.
    EXPECT_EQ(S_OK, steps->Create(4, 0, 1));
    EXPECT_EQ((std::vector<LONG>{5, 0, -3, 0}), std::vector<LONG>(detail, detail + 4));
    EXPECT_EQ(S_OK, steps->CreateFromHistogram(two.get()));
    EXPECT_EQ(nullptr, Get(steps, &IHistogram::get_DetailBins));
    EXPECT_EQ(nullptr, Get(steps, &IHistogram::get_SmoothBins));
}

// ------------------------------------------------------------------------------------------------------ thresholds

TEST(HistogramContract, ThresholdsComeInLocations) {
    double threshold = kSentinel;
    EXPECT_EQ(S_OK, With({10, 0, 0, 10}, 100, 103)->AutoThresholdMinimizeVariance(0, 0, &threshold));
    EXPECT_EQ(101.0, threshold);
    EXPECT_EQ(S_OK, With({0, 9, 0}, 100, 102)->AutoThresholdMinimizeVariance(0, 0, &threshold));
    EXPECT_EQ(100.0, threshold);  // no candidate: bin 0
    double left = 0;
    double right = 0;
    EXPECT_EQ(S_OK, With(std::vector<LONG>(100, 1), 0, 50)->AutoThresholdTrim(0.1, &left, 0.1, &right));
    EXPECT_EQ(5.25, left);
    EXPECT_EQ(44.75, right);
    EXPECT_EQ(S_OK, With({9, 5, 1, 5, 9}, 100, 104)->AutoThresholdSearchForMinimum(0, 0, &threshold));
    EXPECT_EQ(102.0, threshold);
    EXPECT_EQ(S_OK, With({1, 1, 1, 1, 1}, 100, 104)->AutoThresholdMaximizeEntropy(0, 0, &threshold));
    EXPECT_EQ(102.0, threshold);
    EXPECT_EQ(S_OK, With({1, 1, 1, 1, 1}, 100, 104)->AutoThresholdMaximizeEntropy(1.5, 0, &threshold));
    EXPECT_EQ(100.0, threshold);
    EXPECT_EQ(S_OK, With({10, 0, 0, 0, 0, 0, 10}, 100, 106)->AutoThresholdGaussianMixture(0, 0, &threshold));
    EXPECT_EQ(101.0, threshold);
    EXPECT_EQ(S_FALSE, With({0, 9, 0}, 100, 102)->AutoThresholdGaussianMixture(0, 0, &threshold));
    EXPECT_EQ(100.0, threshold);
}

TEST(HistogramContract, TheExponentialThresholdIsNeitherRoundedNorLimited) {
    const auto histogram = With({0, 5, 5, 0}, 10, 18);  // mean bin 1.5, location 2 bin + 11
    double threshold = 0;
    EXPECT_EQ(S_OK, histogram->AutoThresholdExponential(1.0, &threshold));
    EXPECT_EQ(11.0, threshold);
    EXPECT_EQ(S_OK, histogram->AutoThresholdExponential(0.01, &threshold));
    EXPECT_DOUBLE_EQ(3 * std::log(100.0) + 11, threshold);  // beyond Right
    EXPECT_EQ(S_OK, histogram->AutoThresholdExponential(0.0, &threshold));
    EXPECT_EQ(kInfinity, threshold);
    for (const LONG last : {0, -5}) {  // a mean of 0 or below
        EXPECT_EQ(S_OK, With({9, last}, 0, 1)->AutoThresholdExponential(0.5, &threshold));
        EXPECT_DOUBLE_EQ(1e-06 * std::log(2.0), threshold);
    }
}

// --------------------------------------------------------------------------------------------- copies of histograms

// A histogram of another component, of which only the four properties that a copy needs are there. onBins runs when the
// bins are asked for, the last of the four.
class ForeignHistogram final : public CountedObject<IHistogram> {
public:
    std::vector<LONG> counts{4, 5, 6};
    LONG n = 3;
    LONG* bins = counts.data();
    HRESULT numberResult = S_OK, leftResult = S_OK, rightResult = S_OK, binsResult = S_OK;
    std::function<void()> onBins;

    STDMETHODIMP get_NumberOfBins(LONG* value) noexcept override { return *value = n, numberResult; }
    STDMETHODIMP get_Left(double* value) noexcept override { return *value = -1, leftResult; }
    STDMETHODIMP get_Right(double* value) noexcept override { return *value = 1, rightResult; }
    STDMETHODIMP get_Bins(LONG** value) noexcept override {
        if (onBins) onBins();
        return *value = bins, binsResult;
    }

    STDMETHODIMP Create(LONG, double, double) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CreateFromHistogram(IHistogram*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Zero() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP AutoThresholdMinimizeVariance(double, double, double*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP AutoThresholdTrim(double, double*, double, double*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP AutoThresholdSearchForMinimum(double, double, double*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP AutoThresholdGaussianMixture(double, double, double*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP AutoThresholdMaximizeEntropy(double, double, double*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP AutoThresholdExponential(double, double*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_Entropy(double*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_Skew(double*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_Kurtosis(double*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_MaximumCount(LONG*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_Mean(double*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_Median(double*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_Mode(double*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_Variance(double*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_Minimum(double*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_Maximum(double*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetTrimmedStatistics(double, double*, double*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetMedianStatistics(double*, double*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP BinToLocation(double, double*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP LocationToBin(double, double*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetBinToLocationMapping(double*, double*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Smooth3() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Smooth5() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Smooth7() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Smooth9() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Trim(double) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Decompose() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_DetailBins(LONG**) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_SmoothBins(LONG**) noexcept override { return E_NOTIMPL; }
};

TEST(HistogramContract, ACopyHasItsOwnBins) {
    const auto source = With({1, 2, 3}, 10, 20);
    const auto copy = With({7, 7, 7, 7, 7});
    EXPECT_EQ(S_OK, copy->CreateFromHistogram(source.get()));
    EXPECT_EQ(S_OK, source->Zero());
    EXPECT_EQ((std::vector<LONG>{1, 2, 3}), CountsOf(copy));
    EXPECT_EQ(10.0, Get(copy, &IHistogram::get_Left));
    EXPECT_EQ(20.0, Get(copy, &IHistogram::get_Right));
    EXPECT_EQ(1u, ReferencesOf(source.get()));
    EXPECT_EQ(S_OK, copy->CreateFromHistogram(NewHistogram().get()));
    EXPECT_TRUE(CountsOf(copy).empty());
}

TEST(HistogramContract, ACopyOfItselfIsNone) {
    const auto histogram = With({1, 2, 3});
    EXPECT_EQ(S_FALSE, histogram->CreateFromHistogram(histogram.get()));
    EXPECT_EQ((std::vector<LONG>{1, 2, 3}), CountsOf(histogram));
    EXPECT_EQ(1u, ReferencesOf(histogram.get()));
}

TEST(HistogramContract, HistogramsOfOtherComponentsCanBeCopied) {
    const auto foreign = MakeCounted<ForeignHistogram>();
    const auto histogram = NewHistogram();
    EXPECT_EQ(S_OK, histogram->CreateFromHistogram(foreign.get()));
    EXPECT_EQ((std::vector<LONG>{4, 5, 6}), CountsOf(histogram));
    EXPECT_EQ(-1.0, Get(histogram, &IHistogram::get_Left));
    EXPECT_EQ(1.0, Get(histogram, &IHistogram::get_Right));
    EXPECT_EQ(1u, ReferencesOf(foreign.get()));

    foreign->n = -5;  // as Create takes it
    foreign->bins = nullptr;
    EXPECT_EQ(S_OK, histogram->CreateFromHistogram(foreign.get()));
    EXPECT_TRUE(CountsOf(histogram).empty());
}

TEST(HistogramContract, AForeignHistogramThatFailsOrLiesChangesNothing) {
    struct Case {
        const char* what;
        std::function<void(ForeignHistogram&)> spoil;
    };
    const Case cases[] = {
        {"number of bins", [](auto& f) { f.numberResult = E_NOTIMPL; }},
        {"left", [](auto& f) { f.leftResult = E_UNEXPECTED; }},
        {"right", [](auto& f) { f.rightResult = E_OUTOFMEMORY; }},
        {"bins", [](auto& f) { f.binsResult = E_FAIL; }},
        {"no bins after all", [](auto& f) { f.bins = nullptr; }},
        {"bins that are no memory", [](auto& f) { f.bins = reinterpret_cast<LONG*>(uintptr_t{16}); }},
        {"far more bins than memory holds", [](auto& f) { f.n = std::numeric_limits<int32_t>::max(); }},
    };
    for (const Case& c : cases) {
        const auto foreign = MakeCounted<ForeignHistogram>();
        c.spoil(*foreign);
        const auto histogram = With({1, 2, 3}, 10, 20);
        EXPECT_TRUE(FailsSilently(histogram->CreateFromHistogram(foreign.get()))) << c.what;
        EXPECT_EQ((std::vector<LONG>{1, 2, 3}), CountsOf(histogram)) << c.what;
        EXPECT_EQ(10.0, Get(histogram, &IHistogram::get_Left)) << c.what;
        EXPECT_EQ(20.0, Get(histogram, &IHistogram::get_Right)) << c.what;
    }
}

TEST(HistogramContract, AWrapperOfTheHistogramItselfCanBeCopied) {
    const auto histogram = With({1, 2, 3}, 10, 20);
    const auto wrapper = MakeCounted<ForeignHistogram>();
    ASSERT_EQ(S_OK, histogram->get_Bins(&wrapper->bins));
    EXPECT_EQ(S_OK, histogram->CreateFromHistogram(wrapper.get()));
    EXPECT_EQ((std::vector<LONG>{1, 2, 3}), CountsOf(histogram));
    EXPECT_EQ(-1.0, Get(histogram, &IHistogram::get_Left));
}

TEST(HistogramContract, ASourceThatChangesTheHistogramMeanwhileIsStillCopied) {
    const auto histogram = With({1, 2, 3}, 10, 20);
    const auto foreign = MakeCounted<ForeignHistogram>();
    foreign->onBins = [&] { histogram->Create(100, 0, 1); };
    EXPECT_EQ(S_OK, histogram->CreateFromHistogram(foreign.get()));
    EXPECT_EQ((std::vector<LONG>{4, 5, 6}), CountsOf(histogram));
    EXPECT_EQ(1.0, Get(histogram, &IHistogram::get_Right));
}

// ---------------------------------------------------------------------------------------------------------- extremes

TEST(HistogramContract, EveryMethodSurvivesEveryKindOfContent) {
    const LONG most = std::numeric_limits<int32_t>::max();
    const LONG least = std::numeric_limits<int32_t>::min();
    const std::vector<LONG> contents[] = {{},
                                          {0},
                                          {5},
                                          {-5},
                                          {least, least},
                                          {most, least, most, 7},
                                          {-1, 3, -1},
                                          std::vector<LONG>(300, most),
                                          std::vector<LONG>(300, least)};
    struct AnyCall {
        const char* name;
        int outputs;
        std::function<HRESULT(IHistogram*, double x, double* a, double* b)> call;
    };
    const AnyCall calls[] = {
        {"MinVariance", 1, [](auto* h, double x, auto* a, auto*) { return h->AutoThresholdMinimizeVariance(x, x, a); }},
        {"TrimTails", 2, [](auto* h, double x, auto* a, auto* b) { return h->AutoThresholdTrim(x, a, x, b); }},
        {"SearchMin", 1, [](auto* h, double x, auto* a, auto*) { return h->AutoThresholdSearchForMinimum(x, x, a); }},
        {"Mixture", 1, [](auto* h, double x, auto* a, auto*) { return h->AutoThresholdGaussianMixture(x, x, a); }},
        {"MaxEntropy", 1, [](auto* h, double x, auto* a, auto*) { return h->AutoThresholdMaximizeEntropy(x, x, a); }},
        {"Exponential", 1, [](auto* h, double x, auto* a, auto*) { return h->AutoThresholdExponential(x, a); }},
        {"Entropy", 1, [](auto* h, double, auto* a, auto*) { return h->get_Entropy(a); }},
        {"Skew", 1, [](auto* h, double, auto* a, auto*) { return h->get_Skew(a); }},
        {"Kurtosis", 1, [](auto* h, double, auto* a, auto*) { return h->get_Kurtosis(a); }},
        {"Mean", 1, [](auto* h, double, auto* a, auto*) { return h->get_Mean(a); }},
        {"Median", 1, [](auto* h, double, auto* a, auto*) { return h->get_Median(a); }},
        {"Mode", 1, [](auto* h, double, auto* a, auto*) { return h->get_Mode(a); }},
        {"Variance", 1, [](auto* h, double, auto* a, auto*) { return h->get_Variance(a); }},
        {"Minimum", 1, [](auto* h, double, auto* a, auto*) { return h->get_Minimum(a); }},
        {"Maximum", 1, [](auto* h, double, auto* a, auto*) { return h->get_Maximum(a); }},
        {"TrimmedStatistics", 2, [](auto* h, double x, auto* a, auto* b) { return h->GetTrimmedStatistics(x, a, b); }},
        {"MedianStatistics", 2, [](auto* h, double, auto* a, auto* b) { return h->GetMedianStatistics(a, b); }},
        {"BinToLocation", 1, [](auto* h, double x, auto* a, auto*) { return h->BinToLocation(x, a); }},
        {"LocationToBin", 1, [](auto* h, double x, auto* a, auto*) { return h->LocationToBin(x, a); }},
        {"BinToLocationMapping", 2, [](auto* h, double, auto* a, auto* b) { return h->GetBinToLocationMapping(a, b); }},
        {"Smooth3", 0, [](auto* h, double, auto*, auto*) { return h->Smooth3(); }},
        {"Smooth9", 0, [](auto* h, double, auto*, auto*) { return h->Smooth9(); }},
        {"Decompose", 0, [](auto* h, double, auto*, auto*) { return h->Decompose(); }},
        {"Trim", 0, [](auto* h, double x, auto*, auto*) { return h->Trim(x); }},
    };
    for (const auto& counts : contents)
        for (const double left : {0.0, 1e308, kNaN, -kInfinity})
            for (const double x : {0.0, 0.3, 0.5, 1.0, -1.0, 1e300, -1e300, kInfinity, -kInfinity, kNaN}) {
                const auto owner = With(counts, left, static_cast<double>(counts.size()) - 1);
                for (const AnyCall& c : calls) {
                    double a = kSentinel;
                    double b = kSentinel;
                    const HRESULT result = c.call(owner.get(), x, &a, &b);
                    EXPECT_TRUE(result == S_OK || result == S_FALSE || result == E_FAIL) << c.name;
                    EXPECT_EQ(c.outputs > 0, a != kSentinel) << c.name;
                    EXPECT_EQ(c.outputs > 1, b != kSentinel) << c.name;
                    EXPECT_EQ(counts.size(), CountsOf(owner).size()) << c.name;
                }
                LONG largest = -1;
                EXPECT_EQ(S_OK, owner->get_MaximumCount(&largest));
                EXPECT_LE(0, largest);
            }
}

}  // namespace
