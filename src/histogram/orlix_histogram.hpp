// The component class of histograms. The interface is documented in the contract, the formulas in statistics.hpp and
// thresholds.hpp.
#pragma once

#include <orlix/orlix.h>

#include <span>
#include <vector>

#include "component/object.hpp"
#include "histogram/count_buffer.hpp"
#include "histogram/statistics.hpp"

class OrlixHistogram final : public orlix::Object<OrlixHistogram, IHistogram> {
public:
    // For the library's own code, which makes histograms and fills their counts in the middle of operations. No method
    // of the interface may be called there: it clears the thread's error information, which may be a client's.
    using Object::Make;
    static orlix::ComPtr<OrlixHistogram> Make(LONG numberOfBins, double left, double right);
    std::span<LONG> counts() noexcept { return bins_.counts(); }

    STDMETHODIMP Create(LONG NumberOfBins, double Left, double Right) noexcept override;
    STDMETHODIMP CreateFromHistogram(IHistogram* Histogram) noexcept override;
    STDMETHODIMP Zero() noexcept override;
    STDMETHODIMP get_NumberOfBins(LONG* hVal) noexcept override;
    STDMETHODIMP get_Left(double* hVal) noexcept override;
    STDMETHODIMP get_Right(double* hVal) noexcept override;
    STDMETHODIMP get_Bins(LONG** hVal) noexcept override;

    STDMETHODIMP AutoThresholdMinimizeVariance(double MinimumProbabilityLeft, double MinimumProbabilityRight,
                                               double* Threshold) noexcept override;
    STDMETHODIMP AutoThresholdTrim(double TrimLeft, double* Left, double TrimRight, double* Right) noexcept override;
    STDMETHODIMP AutoThresholdSearchForMinimum(double TrimLeft, double TrimRight, double* Threshold) noexcept override;
    STDMETHODIMP AutoThresholdGaussianMixture(double MinimumProbabilityLeft, double MinimumProbabilityRight,
                                              double* Threshold) noexcept override;
    STDMETHODIMP AutoThresholdMaximizeEntropy(double MinimumProbabilityLeft, double MinimumProbabilityRight,
                                              double* Threshold) noexcept override;
    STDMETHODIMP AutoThresholdExponential(double TrimRight, double* Threshold) noexcept override;

    STDMETHODIMP get_Entropy(double* hVal) noexcept override;
    STDMETHODIMP get_Skew(double* hVal) noexcept override;
    STDMETHODIMP get_Kurtosis(double* hVal) noexcept override;
    STDMETHODIMP get_MaximumCount(LONG* hVal) noexcept override;
    STDMETHODIMP get_Mean(double* hVal) noexcept override;
    STDMETHODIMP get_Median(double* hVal) noexcept override;
    STDMETHODIMP get_Mode(double* hVal) noexcept override;
    STDMETHODIMP get_Variance(double* hVal) noexcept override;
    STDMETHODIMP get_Minimum(double* hVal) noexcept override;
    STDMETHODIMP get_Maximum(double* hVal) noexcept override;
    STDMETHODIMP GetTrimmedStatistics(double Trim, double* Mean, double* StandardDeviation) noexcept override;
    STDMETHODIMP GetMedianStatistics(double* Median, double* MedianAbsoluteDeviation) noexcept override;

    STDMETHODIMP BinToLocation(double Bin, double* Location) noexcept override;
    STDMETHODIMP LocationToBin(double dLocation, double* Bin) noexcept override;
    STDMETHODIMP GetBinToLocationMapping(double* A, double* B) noexcept override;

    STDMETHODIMP Smooth3() noexcept override;
    STDMETHODIMP Smooth5() noexcept override;
    STDMETHODIMP Smooth7() noexcept override;
    STDMETHODIMP Smooth9() noexcept override;
    STDMETHODIMP Trim(double Trim) noexcept override;
    STDMETHODIMP Decompose() noexcept override;
    STDMETHODIMP get_DetailBins(LONG** hVal) noexcept override;
    STDMETHODIMP get_SmoothBins(LONG** hVal) noexcept override;

private:
    std::span<const LONG> Counts() const { return bins_.counts(); }
    // The counts when there is at least one, else a Failure with the message.
    std::span<const LONG> CountsOr(const char* message) const;
    orlix::BinMapping Mapping() const;
    double LocationOf(int64_t bin) const { return Mapping().Location(static_cast<double>(bin)); }
    double HalfOfBins() const { return 0.5 * static_cast<double>(bins_.size()); }
    HRESULT Smooth(int width) noexcept;
    void Replace(orlix::CountBuffer&& bins) noexcept;

    orlix::CountBuffer bins_;
    double left_ = 0.0;
    double right_ = 0.0;
    orlix::CountBuffer detail_;
    orlix::CountBuffer smooth_;
    std::vector<LONG> extended_;     // scratch of the smoothing and of the pyramid
    std::vector<double> entropies_;  // scratch of the entropy threshold
};
