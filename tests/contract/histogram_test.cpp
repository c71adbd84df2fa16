// Histograms as clients see them.
#include "contract/support.hpp"

#include <cmath>

namespace orlix::testing {
namespace {

constexpr const char* kHistogramSource = "Orlix.Histogram.1";
constexpr double kSentinel = -12345.5;

using Histogram = ComPtr<IHistogram>;

Histogram NewHistogram() { return CreateObject<IHistogram>("Orlix.Histogram"); }

// Over the whole numbers 0 .. n - 1, so that locations are bins.
Histogram With(const std::vector<LONG>& counts) {
    return HistogramOf(counts, 0, static_cast<double>(counts.size()) - 1);
}

void ExpectHolds(const Histogram& histogram, const std::vector<LONG>& counts, double left, double right) {
    EXPECT_EQ(counts, CountsOf(histogram));
    EXPECT_EQ(left, Get(histogram, &IHistogram::get_Left));
    EXPECT_EQ(right, Get(histogram, &IHistogram::get_Right));
}

// ------------------------------------------------------------------------------------------------------------ life

TEST(HistogramContract, ANewHistogramHasNoBins) {
    const auto histogram = NewHistogram();
    EXPECT_EQ(0, Get(histogram, &IHistogram::get_NumberOfBins));
    for (const auto bins : {&IHistogram::get_Bins, &IHistogram::get_DetailBins, &IHistogram::get_SmoothBins})
        EXPECT_EQ(nullptr, Get(histogram, bins));
    EXPECT_EQ(S_OK, histogram->Zero());
    EXPECT_EQ(S_OK, histogram->Decompose());
    EXPECT_EQ(std::tuple(1, 0), Get(histogram, &IHistogram::GetBinToLocationMapping));
    EXPECT_EQ(0, Get(histogram, &IHistogram::get_MaximumCount));
    EXPECT_EQ(-1, Get(histogram, &IHistogram::get_Minimum));
}

TEST(HistogramContract, BinsAreTheObjectsOwnStorageWhichCreatingDiscards) {
    const auto histogram = HistogramOf({1, 2, 3}, -4, 8.5);
    ExpectHolds(histogram, {1, 2, 3}, -4, 8.5);
    LONG* const bins = Get(histogram, &IHistogram::get_Bins);
    bins[1] = 40;
    EXPECT_EQ(40, Get(histogram, &IHistogram::get_MaximumCount));
    EXPECT_EQ(S_OK, histogram->Zero());
    EXPECT_EQ(0, bins[1]);
    bins[1] = 40;
    EXPECT_EQ(S_OK, histogram->Create(3, 1, kNaN));
    EXPECT_EQ(std::vector<LONG>(3, 0), CountsOf(histogram));
    EXPECT_TRUE(std::isnan(Get(histogram, &IHistogram::get_Right)));
    EXPECT_EQ(S_OK, histogram->Create(5, 9, -9)) << "falling ranges are accepted";
    ExpectHolds(histogram, {0, 0, 0, 0, 0}, 9, -9);
    for (const LONG n : {LONG{0}, LONG{-1}, kLeast}) {
        EXPECT_EQ(S_OK, histogram->Create(n, 0, 255));
        EXPECT_TRUE(CountsOf(histogram).empty());
        EXPECT_EQ(nullptr, Get(histogram, &IHistogram::get_Bins));
    }
}

// 8 GiB: no 32-bit process has them; others may, and then the bins are there and zero.
TEST(HistogramContract, MoreBinsThanMemoryFailAndKeepTheOldOnes) {
    const auto histogram = With({1, 2, 3});
    const HRESULT result = histogram->Create(kMost, 0, 1);
    if (sizeof(void*) == 4 || result != S_OK) {
        EXPECT_TRUE(FailsSilently(result));
        ExpectHolds(histogram, {1, 2, 3}, 0, 2);
    } else {
        LONG* const bins = Get(histogram, &IHistogram::get_Bins);
        EXPECT_EQ(kMost, Get(histogram, &IHistogram::get_NumberOfBins));
        EXPECT_TRUE(bins[0] == 0 && bins[kMost - 1] == 0);
    }
}

// -------------------------------------------------------------------------------------------------------- failures

// A method that writes up to two numbers.
struct HistogramCall {
    const char* name;
    const char* failure;   // its text for an empty histogram, behind the name
    double first, second;  // what it writes then; kSentinel where it writes nothing
    std::function<HRESULT(IHistogram*, double x, double* a, double* b)> call;
};

const HistogramCall kCalls[] = {
    {"get_Entropy", "empty histogram", 0, kSentinel, [](auto* h, double, auto* a, auto*) { return h->get_Entropy(a); }},
    {"get_Mean", "empty histogram", 2.5, kSentinel, [](auto* h, double, auto* a, auto*) { return h->get_Mean(a); }},
    {"get_Median", "empty histogram", 2.5, kSentinel, [](auto* h, double, auto* a, auto*) { return h->get_Median(a); }},
    {"get_Variance", "empty histogram", 0, kSentinel,
     [](auto* h, double, auto* a, auto*) { return h->get_Variance(a); }},
    {"get_Skew", "empty histogram", 0, kSentinel, [](auto* h, double, auto* a, auto*) { return h->get_Skew(a); }},
    {"get_Kurtosis", "empty histogram", 0, kSentinel,
     [](auto* h, double, auto* a, auto*) { return h->get_Kurtosis(a); }},
    {"GetTrimmedStatistics", "empty histogram", 0, 0,
     [](auto* h, double x, auto* a, auto* b) { return h->GetTrimmedStatistics(x, a, b); }},
    {"GetMedianStatistics", "empty histogram", 2.5, 0,
     [](auto* h, double, auto* a, auto* b) { return h->GetMedianStatistics(a, b); }},
    {"Trim", "empty histogram", kSentinel, kSentinel, [](auto* h, double x, auto*, auto*) { return h->Trim(x); }},
    {"AutoThresholdMinimizeVariance", "empty histogram", 0, kSentinel,
     [](auto* h, double x, auto* a, auto*) { return h->AutoThresholdMinimizeVariance(x, x, a); }},
    {"AutoThresholdSearchForMinimum", "no counts in bins", 2, kSentinel,  // the middle bin
     [](auto* h, double x, auto* a, auto*) { return h->AutoThresholdSearchForMinimum(x, x, a); }},
    {"AutoThresholdGaussianMixture", "empty histogram", 0, kSentinel,
     [](auto* h, double x, auto* a, auto*) { return h->AutoThresholdGaussianMixture(x, x, a); }},
    {"AutoThresholdMaximizeEntropy", "empty histogram.", 0, kSentinel,
     [](auto* h, double x, auto* a, auto*) { return h->AutoThresholdMaximizeEntropy(x, x, a); }},
    {"AutoThresholdExponential", "empty histogram", 0, kSentinel,
     [](auto* h, double x, auto* a, auto*) { return h->AutoThresholdExponential(x, a); }},
    // No failure: the middles of the first and the last of the five bins, which are 2 wide.
    {"AutoThresholdTrim", nullptr, 11, 19,
     [](auto* h, double x, auto* a, auto* b) { return h->AutoThresholdTrim(x, a, x, b); }},
    {"get_Mode", nullptr, 11, kSentinel, [](auto* h, double, auto* a, auto*) { return h->get_Mode(a); }},
    {"get_Minimum", nullptr, 19, kSentinel, [](auto* h, double, auto* a, auto*) { return h->get_Minimum(a); }},
    {"get_Maximum", nullptr, 11, kSentinel, [](auto* h, double, auto* a, auto*) { return h->get_Maximum(a); }},
    {"BinToLocation", nullptr, 11.2, kSentinel,
     [](auto* h, double x, auto* a, auto*) { return h->BinToLocation(x, a); }},
    {"LocationToBin", nullptr, -5.45, kSentinel,
     [](auto* h, double x, auto* a, auto*) { return h->LocationToBin(x, a); }},
    {"GetBinToLocationMapping", nullptr, 2, 11,
     [](auto* h, double, auto* a, auto* b) { return h->GetBinToLocationMapping(a, b); }},
    {"Smooth3", nullptr, kSentinel, kSentinel, [](auto* h, double, auto*, auto*) { return h->Smooth3(); }},
    {"Smooth9", nullptr, kSentinel, kSentinel, [](auto* h, double, auto*, auto*) { return h->Smooth9(); }},
    {"Decompose", nullptr, kSentinel, kSentinel, [](auto* h, double, auto*, auto*) { return h->Decompose(); }},
};

TEST(HistogramContract, EmptyHistogramsAreReportedAndLeaveTheOutputsDefined) {
    const auto histogram = HistogramOf(std::vector<LONG>(5, 0), 10, 20);
    for (const HistogramCall& c : kCalls) {
        SCOPED_TRACE(c.name);
        double first = kSentinel, second = kSentinel;
        const HRESULT result = c.call(histogram.get(), 0.1, &first, &second);
        const std::string text = c.failure ? std::string("IHistogram::") + c.name + ": " + c.failure : "";
        EXPECT_TRUE(c.failure ? Fails(result, text, kHistogramSource) : ::testing::AssertionResult(result != E_FAIL));
        EXPECT_DOUBLE_EQ(c.first, first);
        EXPECT_DOUBLE_EQ(c.second, second);
    }
    double mean = 0;
    EXPECT_EQ(E_FAIL, histogram->get_Mean(&mean));
    EXPECT_EQ(11, Get(histogram, &IHistogram::get_Mode));
    EXPECT_EQ("", TakeReportedText()) << "a success takes away the text of an earlier failure";
}

TEST(HistogramContract, ArgumentsOutOfRangeAreReportedInTheirOrder) {
    const std::string trim = "IHistogram::AutoThresholdTrim: the ",
                      exponential = "IHistogram::AutoThresholdExponential: ";
    const std::string left = trim + "amount trimmed on the left must be between 0.0 and 1.0.";
    const std::string right = trim + "amount trimmed on the right must be between 0.0 and 1.0.";
    const std::string total = trim + "total amount of trimming must be less than 1.0.";
    const std::tuple<double, double, std::string> cases[] = {
        {1.0, 5.0, left},  {-1e-300, 0.0, left}, {kNaN, kNaN, left},    {kInfinity, 2.0, left},
        {0.0, 1.0, right}, {0.9, -0.1, right},   {0.0, kNaN, right},    {0.9, kInfinity, right},
        {0.6, 0.4, total}, {0.5, 0.5, total},    {0.999, 0.999, total},
    };
    double low = kSentinel, high = kSentinel, threshold = kSentinel;
    for (const auto& histogram : {HistogramOf({1, 2, 3}, 10, 20), With({0}), NewHistogram()}) {
        for (const auto& [trimLeft, trimRight, text] : cases) {
            EXPECT_TRUE(Fails(histogram->AutoThresholdTrim(trimLeft, &low, trimRight, &high), text, kHistogramSource));
            EXPECT_EQ(Get(histogram, &IHistogram::get_Left), low);
            EXPECT_EQ(Get(histogram, &IHistogram::get_Right), high);
            threshold = kSentinel;
            EXPECT_TRUE(Fails(histogram->AutoThresholdSearchForMinimum(trimLeft, trimRight, &threshold), text,
                              kHistogramSource));
            EXPECT_EQ(0.0, threshold);
        }
        for (const double fraction : {-1e-300, 1.0000001, kNaN, kInfinity}) {
            threshold = kSentinel;
            EXPECT_TRUE(Fails(histogram->AutoThresholdExponential(fraction, &threshold),
                              exponential + "the amount trimmed on the right must be between 0.0 and 1.0.",
                              kHistogramSource));
            EXPECT_EQ(0.0, threshold);
        }
    }
    EXPECT_EQ(S_OK, With({1, 2, 3})->AutoThresholdTrim(-0.0, &low, 0.49, &high)) << "a negative zero is zero";
    EXPECT_TRUE(
        Fails(NewHistogram()->AutoThresholdExponential(1.0, &threshold), exponential + "No bins.", kHistogramSource));
}

// ------------------------------------------------------------------------------------------------------ statistics

// The arithmetic is that of tests/histogram; here the bins become locations.
TEST(HistogramContract, StatisticsComeInLocations) {
    // Bins 0 .. 3 over 10 .. 18 in steps of 2, middles 11, 13, 15, 17.
    const auto histogram = HistogramOf({0, 5, 5, 0}, 10, 18);
    const std::pair<HRESULT (STDMETHODCALLTYPE IHistogram::*)(double*), double> expected[] = {
        {&IHistogram::get_Mean, 14},    {&IHistogram::get_Median, 13},   {&IHistogram::get_Mode, 13},
        {&IHistogram::get_Variance, 1}, {&IHistogram::get_Minimum, 13},  {&IHistogram::get_Maximum, 15},
        {&IHistogram::get_Skew, 0},     {&IHistogram::get_Kurtosis, -2}, {&IHistogram::get_Entropy, std::log(2.0)}};
    for (const auto& [property, value] : expected) EXPECT_DOUBLE_EQ(value, Get(histogram, property)) << value;
    EXPECT_EQ(5, Get(histogram, &IHistogram::get_MaximumCount));
    EXPECT_EQ(12, Get(histogram, &IHistogram::BinToLocation, 0.5));
    EXPECT_EQ(0.5, Get(histogram, &IHistogram::LocationToBin, 12.0));

    EXPECT_EQ(std::tuple(1, 0.5),
              Get(HistogramOf(std::vector<LONG>(256, 1), 0, 256), &IHistogram::GetBinToLocationMapping));
}

TEST(HistogramContract, TrimmedAndMedianStatistics) {
    const auto histogram = HistogramOf({2, 3, 10, 3, 2}, 10, 14);
    const auto [mean, deviation] = Get(histogram, &IHistogram::GetTrimmedStatistics, 0.125);
    EXPECT_EQ(12, mean);
    EXPECT_DOUBLE_EQ(std::sqrt(12.0 / 22) / 0.75, deviation);
    double none[] = {kSentinel, kSentinel};
    EXPECT_EQ(S_FALSE, histogram->GetTrimmedStatistics(0.5, none, none + 1));
    EXPECT_TRUE(none[0] == 0 && none[1] == 0);
    // The deviation is one bin, although bin 2 holds everything.
    EXPECT_EQ(std::tuple(1.25, 0.5), Get(HistogramOf({0, 0, 10, 0, 0}, 0, 2.5), &IHistogram::GetMedianStatistics));
}

TEST(HistogramContract, TrimSmoothAndDecomposeWorkInPlace) {
    const auto histogram = With({2, 3, 10, 3, 2});
    EXPECT_EQ(S_OK, histogram->Trim(0.125));
    EXPECT_EQ((std::vector<LONG>{0, 2, 10, 2, 0}), CountsOf(histogram));
    // The rows of Pascal's triangle; too few bins for all but the smallest kernel are left alone.
    const std::pair<HRESULT (STDMETHODCALLTYPE IHistogram::*)(), std::vector<LONG>> kernels[] = {
        {&IHistogram::Smooth3, {0, 0, 0, 64, 128, 64, 0, 0, 0}},
        {&IHistogram::Smooth5, {0, 0, 16, 64, 96, 64, 16, 0, 0}},
        {&IHistogram::Smooth7, {0, 4, 24, 60, 80, 60, 24, 4, 0}},
        {&IHistogram::Smooth9, {2, 8, 28, 56, 70, 56, 28, 8, 2}}};
    for (const auto& [smooth, want] : kernels) {
        const auto peak = With({0, 0, 0, 0, 256, 0, 0, 0, 0}), two = With({4, 0});
        EXPECT_EQ(S_OK, (peak.get()->*smooth)());
        EXPECT_EQ(want, CountsOf(peak));
        const bool suits = want[3] == 64 && want[2] == 0;
        EXPECT_EQ(suits ? S_OK : S_FALSE, (two.get()->*smooth)());
        EXPECT_EQ(suits ? (std::vector<LONG>{2, 2}) : (std::vector<LONG>{4, 0}), CountsOf(two));
    }
    const auto steps = With({8, 2, 5, 6});
    EXPECT_EQ(S_OK, steps->Decompose());
    LONG* const detail = Get(steps, &IHistogram::get_DetailBins);
    LONG* const smooth = Get(steps, &IHistogram::get_SmoothBins);
    EXPECT_EQ((std::vector<LONG>{5, 5, 5, 5}), std::vector<LONG>(smooth, smooth + 4));
    // They stay when the counts go, but not when there are more bins than they have entries.
    EXPECT_EQ(S_OK, steps->Create(4, 0, 1));
    EXPECT_EQ((std::vector<LONG>{5, 0, -3, 0}), std::vector<LONG>(detail, detail + 4));
    EXPECT_EQ(S_OK, steps->CreateFromHistogram(With({2, 2}).get()));
    EXPECT_EQ(nullptr, Get(steps, &IHistogram::get_DetailBins));
    EXPECT_EQ(nullptr, Get(steps, &IHistogram::get_SmoothBins));
}

// ------------------------------------------------------------------------------------------------------ thresholds

TEST(HistogramContract, ThresholdsComeInLocations) {
    const struct {
        HRESULT (STDMETHODCALLTYPE IHistogram::*method)(double, double, double*);
        std::vector<LONG> counts;  // from 100 in steps of 1
        double parameter, threshold;
        HRESULT result;
    } cases[] = {{&IHistogram::AutoThresholdMinimizeVariance, {10, 0, 0, 10}, 0, 101, S_OK},
                 {&IHistogram::AutoThresholdMinimizeVariance, {0, 9, 0}, 0, 100, S_OK},  // no candidate: bin 0
                 {&IHistogram::AutoThresholdSearchForMinimum, {9, 5, 1, 5, 9}, 0, 102, S_OK},
                 {&IHistogram::AutoThresholdMaximizeEntropy, {1, 1, 1, 1, 1}, 0, 102, S_OK},
                 {&IHistogram::AutoThresholdMaximizeEntropy, {1, 1, 1, 1, 1}, 1.5, 100, S_OK},
                 {&IHistogram::AutoThresholdGaussianMixture, {10, 0, 0, 0, 0, 0, 10}, 0, 101, S_OK},
                 {&IHistogram::AutoThresholdGaussianMixture, {0, 9, 0}, 0, 100, S_FALSE}};
    double threshold = kSentinel, right = 0;
    for (const auto& c : cases) {
        const auto histogram = HistogramOf(c.counts, 100, 99 + static_cast<double>(c.counts.size()));
        EXPECT_EQ(c.result, (histogram.get()->*c.method)(c.parameter, 0, &threshold)) << c.threshold;
        EXPECT_EQ(c.threshold, threshold);
    }
    EXPECT_EQ(S_OK, HistogramOf(std::vector<LONG>(100, 1), 0, 50)->AutoThresholdTrim(0.1, &threshold, 0.1, &right));
    EXPECT_EQ(std::pair(5.25, 44.75), std::pair(threshold, right));
    // Neither rounded nor limited. The mean bin is 1.5, the location 2 bin + 11.
    const auto histogram = HistogramOf({0, 5, 5, 0}, 10, 18);
    for (const auto& [share, want] : {std::pair{1.0, 11.0}, {0.01, 3 * std::log(100.0) + 11}, {0.0, kInfinity}}) {
        EXPECT_EQ(S_OK, histogram->AutoThresholdExponential(share, &threshold));
        EXPECT_DOUBLE_EQ(want, threshold);
    }
}

// --------------------------------------------------------------------------------------------- copies of histograms

// A histogram of another component, of which only the four properties that a copy needs are there. onBins runs when the
// bins are asked for, the last of the four.
class ForeignHistogram final : public CountedObject<Refusing<IHistogram>> {
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
};

TEST(HistogramContract, ACopyHasItsOwnBins) {
    const auto source = HistogramOf({1, 2, 3}, 10, 20);
    const auto copy = With({7, 7, 7, 7, 7});
    EXPECT_EQ(S_OK, copy->CreateFromHistogram(source.get()));
    EXPECT_EQ(S_OK, source->Zero());
    ExpectHolds(copy, {1, 2, 3}, 10, 20);
    EXPECT_EQ(S_FALSE, copy->CreateFromHistogram(copy.get())) << "itself";
    ExpectHolds(copy, {1, 2, 3}, 10, 20);
    EXPECT_EQ(1u, ReferencesOf(source.get()));
    EXPECT_EQ(1u, ReferencesOf(copy.get()));
    EXPECT_EQ(S_OK, copy->CreateFromHistogram(NewHistogram().get()));
    EXPECT_TRUE(CountsOf(copy).empty());
}

TEST(HistogramContract, HistogramsOfOtherComponentsCanBeCopied) {
    const auto foreign = MakeCounted<ForeignHistogram>();
    const auto histogram = NewHistogram();
    EXPECT_EQ(S_OK, histogram->CreateFromHistogram(foreign.get()));
    ExpectHolds(histogram, {4, 5, 6}, -1, 1);
    EXPECT_EQ(1u, ReferencesOf(foreign.get()));
    foreign->onBins = [&] { histogram->Create(100, 0, 1); };
    EXPECT_EQ(S_OK, histogram->CreateFromHistogram(foreign.get())) << "it changes the histogram meanwhile";
    ExpectHolds(histogram, {4, 5, 6}, -1, 1);
    foreign->onBins = nullptr;
    foreign->bins = Get(histogram, &IHistogram::get_Bins);
    foreign->bins[0] = 9;
    EXPECT_EQ(S_OK, histogram->CreateFromHistogram(foreign.get())) << "it wraps the histogram itself";
    ExpectHolds(histogram, {9, 5, 6}, -1, 1);

    foreign->n = -5;  // as Create takes it
    foreign->bins = nullptr;
    EXPECT_EQ(S_OK, histogram->CreateFromHistogram(foreign.get()));
    EXPECT_TRUE(CountsOf(histogram).empty());
}

TEST(HistogramContract, AForeignHistogramThatFailsOrLiesChangesNothing) {
    const std::pair<const char*, void (*)(ForeignHistogram&)> cases[] = {
        {"number of bins", [](auto& f) { f.numberResult = E_NOTIMPL; }},
        {"left", [](auto& f) { f.leftResult = E_UNEXPECTED; }},
        {"right", [](auto& f) { f.rightResult = E_OUTOFMEMORY; }},
        {"bins", [](auto& f) { f.binsResult = E_FAIL; }},
        {"no bins after all", [](auto& f) { f.bins = nullptr; }},
        {"bins that are no memory", [](auto& f) { f.bins = reinterpret_cast<LONG*>(uintptr_t{16}); }},
        {"far more bins than memory holds", [](auto& f) { f.n = kMost; }},
    };
    for (const auto& [what, spoil] : cases) {
        SCOPED_TRACE(what);
        const auto foreign = MakeCounted<ForeignHistogram>();
        spoil(*foreign);
        const auto histogram = HistogramOf({1, 2, 3}, 10, 20);
        EXPECT_TRUE(FailsSilently(histogram->CreateFromHistogram(foreign.get())));
        ExpectHolds(histogram, {1, 2, 3}, 10, 20);
    }
}

// ---------------------------------------------------------------------------------------------------------- extremes

TEST(HistogramContract, EveryMethodSurvivesEveryKindOfContent) {
    const std::vector<LONG> contents[] = {{},
                                          {0},
                                          {5},
                                          {-5},
                                          {kLeast, kLeast},
                                          {kMost, kLeast, kMost, 7},
                                          {-1, 3, -1},
                                          std::vector<LONG>(300, kMost),
                                          std::vector<LONG>(300, kLeast)};
    for (const auto& counts : contents)
        for (const double left : {0.0, 1e308, kNaN, -kInfinity})
            for (const double x : {0.0, 0.3, 0.5, 1.0, -1.0, 1e300, -1e300, kInfinity, -kInfinity, kNaN}) {
                const auto owner = HistogramOf(counts, left, static_cast<double>(counts.size()) - 1);
                for (const HistogramCall& c : kCalls) {
                    double a = kSentinel, b = kSentinel;
                    const HRESULT result = c.call(owner.get(), x, &a, &b);
                    EXPECT_TRUE(result == S_OK || result == S_FALSE || result == E_FAIL) << c.name;
                    EXPECT_EQ(c.first != kSentinel, a != kSentinel) << c.name;
                    EXPECT_EQ(c.second != kSentinel, b != kSentinel) << c.name;
                    EXPECT_EQ(counts.size(), CountsOf(owner).size()) << c.name;
                }
                EXPECT_LE(0, Get(owner, &IHistogram::get_MaximumCount));
            }
}

}  // namespace
}  // namespace orlix::testing
