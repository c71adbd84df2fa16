#include "histogram/orlix_histogram.hpp"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "histogram/thresholds.hpp"
#include "platform/memory_probe.hpp"

using orlix::CountBuffer;
using orlix::Demand;
using orlix::FailedResult;
using orlix::Failure;
using orlix::Require;

std::span<const LONG> OrlixHistogram::CountsOr(const char* message) const {
    if (orlix::TotalCount(Counts()) < 1) throw Failure(message);
    return Counts();
}

orlix::BinMapping OrlixHistogram::Mapping() const {
    return orlix::MapBins(static_cast<int64_t>(bins_.size()), left_, right_);
}

// -------------------------------------------------------------------------------------------------- content

orlix::ComPtr<OrlixHistogram> OrlixHistogram::Make(LONG numberOfBins, double left, double right) {
    auto histogram = Make();
    histogram->bins_ = CountBuffer(numberOfBins);
    histogram->left_ = left;
    histogram->right_ = right;
    return histogram;
}

// There are as many detail and smooth bins as bins, or none.
void OrlixHistogram::Replace(CountBuffer&& bins) noexcept {
    if (bins.size() != bins_.size()) {
        detail_ = CountBuffer();
        smooth_ = CountBuffer();
    }
    bins_ = std::move(bins);
}

STDMETHODIMP OrlixHistogram::Create(LONG numberOfBins, double left, double right) noexcept {
    return Guarded([&] {
        // A camera loop creates the same histogram shape again and again.
        if (numberOfBins > 0 && static_cast<size_t>(numberOfBins) == bins_.size())
            std::ranges::fill(bins_.counts(), 0);
        else
            Replace(CountBuffer(numberOfBins));
        left_ = left;
        right_ = right;
    });
}

STDMETHODIMP OrlixHistogram::CreateFromHistogram(IHistogram* histogram) noexcept {
    return Guarded([&] {
        Require(histogram);
        if (IsSelf(histogram)) return S_FALSE;
        LONG n = 0;
        double left = 0.0;
        double right = 0.0;
        LONG* source = nullptr;
        Demand(histogram->get_NumberOfBins(&n));
        Demand(histogram->get_Left(&left));
        Demand(histogram->get_Right(&right));
        Demand(histogram->get_Bins(&source));

        // The source may be a wrapper of this very histogram, so the old bins stay until the copy is complete.
        CountBuffer bins(n);
        if (bins.size() > 0) {
            if (!orlix::IsReadable(source, bins.size() * sizeof(LONG))) throw FailedResult(E_FAIL);
            std::copy_n(source, bins.size(), bins.data());
        }
        Replace(std::move(bins));
        left_ = left;
        right_ = right;
        return S_OK;
    });
}

STDMETHODIMP OrlixHistogram::Zero() noexcept {
    return Guarded([&] { std::ranges::fill(bins_.counts(), 0); });
}

STDMETHODIMP OrlixHistogram::get_NumberOfBins(LONG* value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = static_cast<LONG>(bins_.size());
    });
}

STDMETHODIMP OrlixHistogram::get_Left(double* value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = left_;
    });
}

STDMETHODIMP OrlixHistogram::get_Right(double* value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = right_;
    });
}

STDMETHODIMP OrlixHistogram::get_Bins(LONG** value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = bins_.data();
    });
}

// ------------------------------------------------------------------------------------------------ thresholds

STDMETHODIMP OrlixHistogram::AutoThresholdMinimizeVariance(double minimumProbabilityLeft,
                                                           double minimumProbabilityRight, double* threshold) noexcept {
    return Guarded([&] {
        Require(threshold);
        *threshold = 0.0;
        const auto counts = CountsOr("IHistogram::AutoThresholdMinimizeVariance: empty histogram");
        *threshold =
            LocationOf(orlix::BinOfGreatestSeparation(counts, minimumProbabilityLeft, minimumProbabilityRight));
    });
}

STDMETHODIMP OrlixHistogram::AutoThresholdTrim(double trimLeft, double* left, double trimRight,
                                               double* right) noexcept {
    return Guarded([&] {
        Require(left);
        Require(right);
        *left = left_;
        *right = right_;
        const orlix::TailCut cut = orlix::CutTails(Counts(), trimLeft, trimRight);
        *left = LocationOf(cut.left);
        *right = LocationOf(cut.right);
    });
}

STDMETHODIMP OrlixHistogram::AutoThresholdSearchForMinimum(double trimLeft, double trimRight,
                                                           double* threshold) noexcept {
    return Guarded([&] {
        Require(threshold);
        *threshold = 0.0;
        const orlix::TailCut cut = orlix::CutTails(Counts(), trimLeft, trimRight);
        const int64_t middle = (cut.left + cut.right) / 2;
        *threshold = static_cast<double>(middle);
        const std::optional<int64_t> bin = orlix::BinOfMinimum(Counts(), cut);
        if (!bin) throw Failure("IHistogram::AutoThresholdSearchForMinimum: no counts in bins");
        *threshold = LocationOf(*bin);
    });
}

STDMETHODIMP OrlixHistogram::AutoThresholdGaussianMixture(double minimumProbabilityLeft, double minimumProbabilityRight,
                                                          double* threshold) noexcept {
    return Guarded([&] {
        Require(threshold);
        *threshold = 0.0;
        const auto counts = CountsOr("IHistogram::AutoThresholdGaussianMixture: empty histogram");
        const std::optional<int64_t> bin =
            orlix::BinOfBestClassification(counts, minimumProbabilityLeft, minimumProbabilityRight);
        *threshold = LocationOf(bin.value_or(0));
        return bin ? S_OK : S_FALSE;
    });
}

STDMETHODIMP OrlixHistogram::AutoThresholdMaximizeEntropy(double minimumProbabilityLeft, double minimumProbabilityRight,
                                                          double* threshold) noexcept {
    return Guarded([&] {
        Require(threshold);
        *threshold = 0.0;
        if (orlix::TotalCount(Counts()) == 0)
            throw Failure("IHistogram::AutoThresholdMaximizeEntropy: empty histogram.");
        *threshold = LocationOf(
            orlix::BinOfGreatestEntropy(Counts(), minimumProbabilityLeft, minimumProbabilityRight, entropies_));
    });
}

STDMETHODIMP OrlixHistogram::AutoThresholdExponential(double trimRight, double* threshold) noexcept {
    return Guarded([&] {
        Require(threshold);
        *threshold = 0.0;
        if (!(trimRight >= 0.0 && trimRight <= 1.0))
            throw Failure(
                "IHistogram::AutoThresholdExponential: the amount trimmed on the right must be between 0.0 and 1.0.");
        if (bins_.size() < 1) throw Failure("IHistogram::AutoThresholdExponential: No bins.");
        const auto counts = CountsOr("IHistogram::AutoThresholdExponential: empty histogram");
        *threshold = Mapping().Location(orlix::ExponentialTail(counts, trimRight));
    });
}

// ------------------------------------------------------------------------------------------------ statistics

STDMETHODIMP OrlixHistogram::get_Entropy(double* value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = 0.0;
        *value = orlix::EntropyOfBins(CountsOr("IHistogram::get_Entropy: empty histogram"));
    });
}

STDMETHODIMP OrlixHistogram::get_Skew(double* value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = 0.0;
        *value = orlix::SkewOfBins(CountsOr("IHistogram::get_Skew: empty histogram"));
    });
}

STDMETHODIMP OrlixHistogram::get_Kurtosis(double* value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = 0.0;
        *value = orlix::KurtosisOfBins(CountsOr("IHistogram::get_Kurtosis: empty histogram"));
    });
}

STDMETHODIMP OrlixHistogram::get_MaximumCount(LONG* value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = orlix::LargestCount(Counts());
    });
}

STDMETHODIMP OrlixHistogram::get_Mean(double* value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = HalfOfBins();
        *value = Mapping().Location(orlix::MeanBin(CountsOr("IHistogram::get_Mean: empty histogram")));
    });
}

STDMETHODIMP OrlixHistogram::get_Median(double* value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = HalfOfBins();
        *value = LocationOf(orlix::MedianBin(CountsOr("IHistogram::get_Median: empty histogram")));
    });
}

STDMETHODIMP OrlixHistogram::get_Mode(double* value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = LocationOf(orlix::ModeBin(Counts()));
    });
}

STDMETHODIMP OrlixHistogram::get_Variance(double* value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = 0.0;
        const double variance = orlix::VarianceOfBins(CountsOr("IHistogram::get_Variance: empty histogram"));
        const double a = Mapping().a;
        *value = a * a * variance;
    });
}

STDMETHODIMP OrlixHistogram::get_Minimum(double* value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = LocationOf(orlix::LowestOccupiedBin(Counts()));
    });
}

STDMETHODIMP OrlixHistogram::get_Maximum(double* value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = LocationOf(orlix::HighestOccupiedBin(Counts()));
    });
}

STDMETHODIMP OrlixHistogram::GetTrimmedStatistics(double trim, double* mean, double* standardDeviation) noexcept {
    return Guarded([&] {
        Require(mean);
        Require(standardDeviation);
        *mean = 0.0;
        *standardDeviation = 0.0;
        const auto counts = CountsOr("IHistogram::GetTrimmedStatistics: empty histogram");
        const auto statistics = orlix::StatisticsWithoutTails(counts, trim);
        if (!statistics) return S_FALSE;
        *mean = Mapping().Location(statistics->mean);
        *standardDeviation = Mapping().a * statistics->deviation;
        return S_OK;
    });
}

STDMETHODIMP OrlixHistogram::GetMedianStatistics(double* median, double* medianAbsoluteDeviation) noexcept {
    return Guarded([&] {
        Require(median);
        Require(medianAbsoluteDeviation);
        *median = HalfOfBins();
        *medianAbsoluteDeviation = 0.0;
        const auto statistics = orlix::MedianAndDeviation(CountsOr("IHistogram::GetMedianStatistics: empty histogram"));
        *median = LocationOf(statistics.median);
        *medianAbsoluteDeviation = Mapping().a * static_cast<double>(statistics.deviation);
    });
}

// ------------------------------------------------------------------------------------------- bins and locations

STDMETHODIMP OrlixHistogram::BinToLocation(double bin, double* location) noexcept {
    return Guarded([&] {
        Require(location);
        *location = Mapping().Location(bin);
    });
}

STDMETHODIMP OrlixHistogram::LocationToBin(double location, double* bin) noexcept {
    return Guarded([&] {
        Require(bin);
        *bin = Mapping().Bin(location);
    });
}

STDMETHODIMP OrlixHistogram::GetBinToLocationMapping(double* a, double* b) noexcept {
    return Guarded([&] {
        Require(a);
        Require(b);
        const orlix::BinMapping mapping = Mapping();
        *a = mapping.a;
        *b = mapping.b;
    });
}

// --------------------------------------------------------------------------------------- changes and the pyramid

HRESULT OrlixHistogram::Smooth(int width) noexcept {
    return Guarded([&] { return orlix::SmoothCounts(bins_.counts(), width, extended_) ? S_OK : S_FALSE; });
}
STDMETHODIMP OrlixHistogram::Smooth3() noexcept { return Smooth(3); }
STDMETHODIMP OrlixHistogram::Smooth5() noexcept { return Smooth(5); }
STDMETHODIMP OrlixHistogram::Smooth7() noexcept { return Smooth(7); }
STDMETHODIMP OrlixHistogram::Smooth9() noexcept { return Smooth(9); }

STDMETHODIMP OrlixHistogram::Trim(double trim) noexcept {
    return Guarded([&] {
        CountsOr("IHistogram::Trim: empty histogram");
        orlix::TrimTails(bins_.counts(), trim);
    });
}

STDMETHODIMP OrlixHistogram::Decompose() noexcept {
    return Guarded([&] {
        const auto n = static_cast<int64_t>(bins_.size());
        extended_.resize((bins_.size() + 1) / 2);
        if (detail_.size() != bins_.size()) {  // both or neither
            CountBuffer detail(n);
            smooth_ = CountBuffer(n);
            detail_ = std::move(detail);
        }
        orlix::DecomposeCounts(Counts(), detail_.counts(), smooth_.counts(), extended_);
    });
}

STDMETHODIMP OrlixHistogram::get_DetailBins(LONG** value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = detail_.data();
    });
}

STDMETHODIMP OrlixHistogram::get_SmoothBins(LONG** value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = smooth_.data();
    });
}
