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
    // For use inside the library, where operations create histograms and fill their counts. Such code must not call
    // interface methods: they clear the thread's error information, which may be a client's.
    using Object::Make;
    static orlix::ComPtr<OrlixHistogram> Make(LONG numberOfBins, double left, double right);
    std::span<LONG> counts() noexcept { return bins_.counts(); }

    STDMETHODIMP Create(LONG numberOfBins, double left, double right) noexcept override;
    STDMETHODIMP CreateFromHistogram(IHistogram* histogram) noexcept override;
    STDMETHODIMP Zero() noexcept override;
    STDMETHODIMP get_NumberOfBins(LONG* value) noexcept override;
    STDMETHODIMP get_Left(double* value) noexcept override;
    STDMETHODIMP get_Right(double* value) noexcept override;
    STDMETHODIMP get_Bins(LONG** value) noexcept override;

    STDMETHODIMP AutoThresholdMinimizeVariance(double minimumProbabilityLeft, double minimumProbabilityRight,
                                               double* threshold) noexcept override;
    STDMETHODIMP AutoThresholdTrim(double trimLeft, double* left, double trimRight, double* right) noexcept override;
    STDMETHODIMP AutoThresholdSearchForMinimum(double trimLeft, double trimRight, double* threshold) noexcept override;
    STDMETHODIMP AutoThresholdGaussianMixture(double minimumProbabilityLeft, double minimumProbabilityRight,
                                              double* threshold) noexcept override;
    STDMETHODIMP AutoThresholdMaximizeEntropy(double minimumProbabilityLeft, double minimumProbabilityRight,
                                              double* threshold) noexcept override;
    STDMETHODIMP AutoThresholdExponential(double trimRight, double* threshold) noexcept override;

    STDMETHODIMP get_Entropy(double* value) noexcept override;
    STDMETHODIMP get_Skew(double* value) noexcept override;
    STDMETHODIMP get_Kurtosis(double* value) noexcept override;
    STDMETHODIMP get_MaximumCount(LONG* value) noexcept override;
    STDMETHODIMP get_Mean(double* value) noexcept override;
    STDMETHODIMP get_Median(double* value) noexcept override;
    STDMETHODIMP get_Mode(double* value) noexcept override;
    STDMETHODIMP get_Variance(double* value) noexcept override;
    STDMETHODIMP get_Minimum(double* value) noexcept override;
    STDMETHODIMP get_Maximum(double* value) noexcept override;
    STDMETHODIMP GetTrimmedStatistics(double trim, double* mean, double* standardDeviation) noexcept override;
    STDMETHODIMP GetMedianStatistics(double* median, double* medianAbsoluteDeviation) noexcept override;

    STDMETHODIMP BinToLocation(double bin, double* location) noexcept override;
    STDMETHODIMP LocationToBin(double location, double* bin) noexcept override;
    STDMETHODIMP GetBinToLocationMapping(double* a, double* b) noexcept override;

    STDMETHODIMP Smooth3() noexcept override;
    STDMETHODIMP Smooth5() noexcept override;
    STDMETHODIMP Smooth7() noexcept override;
    STDMETHODIMP Smooth9() noexcept override;
    STDMETHODIMP Trim(double trim) noexcept override;
    STDMETHODIMP Decompose() noexcept override;
    STDMETHODIMP get_DetailBins(LONG** value) noexcept override;
    STDMETHODIMP get_SmoothBins(LONG** value) noexcept override;

private:
    std::span<const LONG> Counts() const { return bins_.counts(); }
    // The counts if there is at least one, otherwise a Failure with the message.
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
    std::vector<LONG> extended_;     // scratch of smoothing and of the pyramid
    std::vector<double> entropies_;  // scratch of the entropy threshold
};
