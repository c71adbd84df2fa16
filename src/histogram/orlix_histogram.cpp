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

// The detail and smooth bins are as many as the bins, or none.
void OrlixHistogram::Replace(CountBuffer&& bins) noexcept {
    if (bins.size() != bins_.size()) {
        detail_ = CountBuffer();
        smooth_ = CountBuffer();
    }
    bins_ = std::move(bins);
}

STDMETHODIMP OrlixHistogram::Create(LONG NumberOfBins, double Left, double Right) noexcept {
    return Guarded([&] {
        // A camera loop creates the same shape again and again.
        if (NumberOfBins > 0 && static_cast<size_t>(NumberOfBins) == bins_.size())
            std::ranges::fill(bins_.counts(), 0);
        else
            Replace(CountBuffer(NumberOfBins));
        left_ = Left;
        right_ = Right;
    });
}

STDMETHODIMP OrlixHistogram::CreateFromHistogram(IHistogram* Histogram) noexcept {
    return Guarded([&] {
        Require(Histogram);
        if (IsSelf(Histogram)) return S_FALSE;
        LONG n = 0;
        double left = 0.0;
        double right = 0.0;
        LONG* source = nullptr;
        Demand(Histogram->get_NumberOfBins(&n));
        Demand(Histogram->get_Left(&left));
        Demand(Histogram->get_Right(&right));
        Demand(Histogram->get_Bins(&source));

        // The source may be a wrapper of this very histogram: the old bins stay until the copy is made.
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

STDMETHODIMP OrlixHistogram::get_NumberOfBins(LONG* hVal) noexcept {
    return Guarded([&] {
        Require(hVal);
        *hVal = static_cast<LONG>(bins_.size());
    });
}

STDMETHODIMP OrlixHistogram::get_Left(double* hVal) noexcept {
    return Guarded([&] {
        Require(hVal);
        *hVal = left_;
    });
}

STDMETHODIMP OrlixHistogram::get_Right(double* hVal) noexcept {
    return Guarded([&] {
        Require(hVal);
        *hVal = right_;
    });
}

STDMETHODIMP OrlixHistogram::get_Bins(LONG** hVal) noexcept {
    return Guarded([&] {
        Require(hVal);
        *hVal = bins_.data();
    });
}

// ------------------------------------------------------------------------------------------------ thresholds

STDMETHODIMP OrlixHistogram::AutoThresholdMinimizeVariance(double MinimumProbabilityLeft,
                                                           double MinimumProbabilityRight, double* Threshold) noexcept {
    return Guarded([&] {
        Require(Threshold);
        *Threshold = 0.0;
        const auto counts = CountsOr("IHistogram::AutoThresholdMinimizeVariance: empty histogram");
        *Threshold =
            LocationOf(orlix::BinOfGreatestSeparation(counts, MinimumProbabilityLeft, MinimumProbabilityRight));
    });
}

STDMETHODIMP OrlixHistogram::AutoThresholdTrim(double TrimLeft, double* Left, double TrimRight,
                                               double* Right) noexcept {
    return Guarded([&] {
        Require(Left);
        Require(Right);
        *Left = left_;
        *Right = right_;
        const orlix::TailCut cut = orlix::CutTails(Counts(), TrimLeft, TrimRight);
        *Left = LocationOf(cut.left);
        *Right = LocationOf(cut.right);
    });
}

STDMETHODIMP OrlixHistogram::AutoThresholdSearchForMinimum(double TrimLeft, double TrimRight,
                                                           double* Threshold) noexcept {
    return Guarded([&] {
        Require(Threshold);
        *Threshold = 0.0;
        const orlix::TailCut cut = orlix::CutTails(Counts(), TrimLeft, TrimRight);
        const int64_t middle = (cut.left + cut.right) / 2;
        *Threshold = static_cast<double>(middle);
        const std::optional<int64_t> bin = orlix::BinOfMinimum(Counts(), cut);
        if (!bin) throw Failure("IHistogram::AutoThresholdSearchForMinimum: no counts in bins");
        *Threshold = LocationOf(*bin);
    });
}

STDMETHODIMP OrlixHistogram::AutoThresholdGaussianMixture(double MinimumProbabilityLeft, double MinimumProbabilityRight,
                                                          double* Threshold) noexcept {
    return Guarded([&] {
        Require(Threshold);
        *Threshold = 0.0;
        const auto counts = CountsOr("IHistogram::AutoThresholdGaussianMixture: empty histogram");
        const std::optional<int64_t> bin =
            orlix::BinOfBestClassification(counts, MinimumProbabilityLeft, MinimumProbabilityRight);
        *Threshold = LocationOf(bin.value_or(0));
        return bin ? S_OK : S_FALSE;
    });
}

STDMETHODIMP OrlixHistogram::AutoThresholdMaximizeEntropy(double MinimumProbabilityLeft, double MinimumProbabilityRight,
                                                          double* Threshold) noexcept {
    return Guarded([&] {
        Require(Threshold);
        *Threshold = 0.0;
        if (orlix::TotalCount(Counts()) == 0)
            throw Failure("IHistogram::AutoThresholdMaximizeEntropy: empty histogram.");
        *Threshold = LocationOf(
            orlix::BinOfGreatestEntropy(Counts(), MinimumProbabilityLeft, MinimumProbabilityRight, entropies_));
    });
}

STDMETHODIMP OrlixHistogram::AutoThresholdExponential(double TrimRight, double* Threshold) noexcept {
    return Guarded([&] {
        Require(Threshold);
        *Threshold = 0.0;
        if (!(TrimRight >= 0.0 && TrimRight <= 1.0))
            throw Failure(
                "IHistogram::AutoThresholdExponential: the amount trimmed on the right must be between 0.0 and 1.0.");
        if (bins_.size() < 1) throw Failure("IHistogram::AutoThresholdExponential: No bins.");
        const auto counts = CountsOr("IHistogram::AutoThresholdExponential: empty histogram");
        *Threshold = Mapping().Location(orlix::ExponentialTail(counts, TrimRight));
    });
}

// ------------------------------------------------------------------------------------------------ statistics

STDMETHODIMP OrlixHistogram::get_Entropy(double* hVal) noexcept {
    return Guarded([&] {
        Require(hVal);
        *hVal = 0.0;
        *hVal = orlix::EntropyOfBins(CountsOr("IHistogram::get_Entropy: empty histogram"));
    });
}

STDMETHODIMP OrlixHistogram::get_Skew(double* hVal) noexcept {
    return Guarded([&] {
        Require(hVal);
        *hVal = 0.0;
        *hVal = orlix::SkewOfBins(CountsOr("IHistogram::get_Skew: empty histogram"));
    });
}

STDMETHODIMP OrlixHistogram::get_Kurtosis(double* hVal) noexcept {
    return Guarded([&] {
        Require(hVal);
        *hVal = 0.0;
        *hVal = orlix::KurtosisOfBins(CountsOr("IHistogram::get_Kurtosis: empty histogram"));
    });
}

STDMETHODIMP OrlixHistogram::get_MaximumCount(LONG* hVal) noexcept {
    return Guarded([&] {
        Require(hVal);
        *hVal = orlix::LargestCount(Counts());
    });
}

STDMETHODIMP OrlixHistogram::get_Mean(double* hVal) noexcept {
    return Guarded([&] {
        Require(hVal);
        *hVal = HalfOfBins();
        *hVal = Mapping().Location(orlix::MeanBin(CountsOr("IHistogram::get_Mean: empty histogram")));
    });
}

STDMETHODIMP OrlixHistogram::get_Median(double* hVal) noexcept {
    return Guarded([&] {
        Require(hVal);
        *hVal = HalfOfBins();
        *hVal = LocationOf(orlix::MedianBin(CountsOr("IHistogram::get_Median: empty histogram")));
    });
}

STDMETHODIMP OrlixHistogram::get_Mode(double* hVal) noexcept {
    return Guarded([&] {
        Require(hVal);
        *hVal = LocationOf(orlix::ModeBin(Counts()));
    });
}

STDMETHODIMP OrlixHistogram::get_Variance(double* hVal) noexcept {
    return Guarded([&] {
        Require(hVal);
        *hVal = 0.0;
        const double variance = orlix::VarianceOfBins(CountsOr("IHistogram::get_Variance: empty histogram"));
        const double a = Mapping().a;
        *hVal = a * a * variance;
    });
}

STDMETHODIMP OrlixHistogram::get_Minimum(double* hVal) noexcept {
    return Guarded([&] {
        Require(hVal);
        *hVal = LocationOf(orlix::LowestOccupiedBin(Counts()));
    });
}

STDMETHODIMP OrlixHistogram::get_Maximum(double* hVal) noexcept {
    return Guarded([&] {
        Require(hVal);
        *hVal = LocationOf(orlix::HighestOccupiedBin(Counts()));
    });
}

STDMETHODIMP OrlixHistogram::GetTrimmedStatistics(double Trim, double* Mean, double* StandardDeviation) noexcept {
    return Guarded([&] {
        Require(Mean);
        Require(StandardDeviation);
        *Mean = 0.0;
        *StandardDeviation = 0.0;
        const auto counts = CountsOr("IHistogram::GetTrimmedStatistics: empty histogram");
        const auto statistics = orlix::StatisticsWithoutTails(counts, Trim);
        if (!statistics) return S_FALSE;
        *Mean = Mapping().Location(statistics->mean);
        *StandardDeviation = Mapping().a * statistics->deviation;
        return S_OK;
    });
}

STDMETHODIMP OrlixHistogram::GetMedianStatistics(double* Median, double* MedianAbsoluteDeviation) noexcept {
    return Guarded([&] {
        Require(Median);
        Require(MedianAbsoluteDeviation);
        *Median = HalfOfBins();
        *MedianAbsoluteDeviation = 0.0;
        const auto statistics = orlix::MedianAndDeviation(CountsOr("IHistogram::GetMedianStatistics: empty histogram"));
        *Median = LocationOf(statistics.median);
        *MedianAbsoluteDeviation = Mapping().a * static_cast<double>(statistics.deviation);
    });
}

// ------------------------------------------------------------------------------------------- bins and locations

STDMETHODIMP OrlixHistogram::BinToLocation(double Bin, double* Location) noexcept {
    return Guarded([&] {
        Require(Location);
        *Location = Mapping().Location(Bin);
    });
}

STDMETHODIMP OrlixHistogram::LocationToBin(double dLocation, double* Bin) noexcept {
    return Guarded([&] {
        Require(Bin);
        *Bin = Mapping().Bin(dLocation);
    });
}

STDMETHODIMP OrlixHistogram::GetBinToLocationMapping(double* A, double* B) noexcept {
    return Guarded([&] {
        Require(A);
        Require(B);
        const orlix::BinMapping mapping = Mapping();
        *A = mapping.a;
        *B = mapping.b;
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

STDMETHODIMP OrlixHistogram::Trim(double Trim) noexcept {
    return Guarded([&] {
        CountsOr("IHistogram::Trim: empty histogram");
        orlix::TrimTails(bins_.counts(), Trim);
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

STDMETHODIMP OrlixHistogram::get_DetailBins(LONG** hVal) noexcept {
    return Guarded([&] {
        Require(hVal);
        *hVal = detail_.data();
    });
}

STDMETHODIMP OrlixHistogram::get_SmoothBins(LONG** hVal) noexcept {
    return Guarded([&] {
        Require(hVal);
        *hVal = smooth_.data();
    });
}
