#include "orlix_vb_helper/file_measurement.hpp"

#include <cmath>
#include <cstdint>
#include <limits>

#include <orlix/measure.hpp>

#include "component/failure.hpp"
#include "histogram/orlix_histogram.hpp"
#include "orlix_image/orlix_image.hpp"

namespace orlix {
namespace {

constexpr LONG kFineBins = 65536;      // one for every value of a 16-bit image
constexpr LONG kThresholdBins = 1024;  // most bins that a threshold is chosen on
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

ThresholdMethod MethodOf(AutoThresholdType type) {
    switch (type) {
        case TM_MinimizeVariance:
            return ThresholdMethod::MinimizeVariance;
        case TM_Trim:
            return ThresholdMethod::Trim;
        case TM_SearchForMinimum:
            return ThresholdMethod::SearchForMinimum;
        case TM_GaussianMixture:
            return ThresholdMethod::GaussianMixture;
        case TM_MaximizeEntropy:
            return ThresholdMethod::MaximizeEntropy;
        case TM_Exponential:
            return ThresholdMethod::Exponential;
    }
    throw MethodFailure("unknown threshold.");
}

class FileMeasuring {
public:
    FileMeasuring(BSTR fileName, ThresholdMethod method, bool bright, LONG band)
        : method_(method), bright_(bright), image_(OrlixImage::Make().get()) {
        const auto file = Cast<IImageFile>(image_);
        Check(file->LoadFromFile(fileName, 0), file);
        Check(image_->Dimensions(&result_.m_lBands, &result_.m_lWidth, &result_.m_lHeight), image_);
        if (band < 0 || band >= result_.m_lBands) throw MethodFailure("the image has no such band.");
        Check(image_->DataType(band, &result_.m_lDataType), image_);
        Check(file->GetMicronsPerPixel(&result_.m_dMicronsPerPixelX, &result_.m_dMicronsPerPixelY), file);
        Check(process_->put_BandToProcess(band), process_);
    }

    SFileMeasurements Run() {
        Grey();
        Phase();
        return result_;
    }

private:
    void Grey() {
        SGrayMeasurements grey = {};
        Check(process_->get_GrayMeasurements(
                  static_cast<GrayExtractMeasurementType>(GEMT_GrayLocation | GEMT_GrayStatistics), &grey),
              process_);
        if (result_.m_lDataType != DT_BYTE) {
            Check(process_->SnapLuminanceRange(0, 0, 0), process_);
            Check(process_->put_NumberOfBins(kFineBins), process_);
        }
        Check(process_->get_Histogram(fine_.Out()), process_);
        result_.m_lPixelCount = grey.m_lPixelCount;
        result_.m_dGrayAverage = grey.m_dGrayAverage;
        result_.m_dGrayStandardDeviation = grey.m_dGrayStandardDeviation;
        result_.m_dGrayXCentroid = grey.m_dGrayXCentroid;
        result_.m_dGrayYCentroid = grey.m_dGrayYCentroid;
        Check(fine_->get_Minimum(&result_.m_dGrayMinimum), fine_);
        Check(fine_->get_Maximum(&result_.m_dGrayMaximum), fine_);
        Check(fine_->get_Median(&result_.m_dGrayMedian), fine_);
        Check(fine_->get_Mode(&result_.m_dGrayMode), fine_);
        Check(fine_->get_Skew(&result_.m_dGraySkew), fine_);
        Check(fine_->get_Kurtosis(&result_.m_dGrayExcessKurtosis), fine_);
        Check(fine_->get_Entropy(&result_.m_dGrayEntropy), fine_);
    }

    void Phase() {
        for (double* const figure :
             {&result_.m_dThreshold, &result_.m_dDarkFraction, &result_.m_dBrightFraction, &result_.m_dPhaseFraction,
              &result_.m_dPhaseArea, &result_.m_dPhaseXCentroid, &result_.m_dPhaseYCentroid})
            *figure = kNaN;
        int64_t inside = 0;
        for (const LONG count : Bins(fine_)) inside += count;
        result_.m_dDip = inside > 0 ? Dip(Bins(fine_)) : kNaN;
        result_.m_dLeastDipOfTwoPeaks = inside > 0 ? LeastDipOfTwoPeaks(inside) : kNaN;
        if (inside == 0) return;

        const ComPtr<IHistogram> histogram(OrlixHistogram::Make().get());
        Regroup(fine_, kThresholdBins, histogram);
        const auto [first, second] = UsualParameters(method_);
        const AutoThreshold found = FindAutoThreshold(histogram, method_, first, second);
        if (found.status != AutoThreshold::Status::Found) return;
        result_.m_lThresholdFound = 1;
        const bool whole = result_.m_lDataType != DT_Float;
        result_.m_dThreshold = whole ? std::floor(found.darkCut) : found.darkCut;
        if (whole && method_ == ThresholdMethod::Trim) result_.m_dThreshold += 1;

        const BinaryMeasurements dark = MeasureBitmap(Side(found.darkCut, false));
        const BinaryMeasurements bright = MeasureBitmap(Side(found.brightCut, true));
        const BinaryMeasurements& phase = bright_ ? bright : dark;
        result_.m_dDarkFraction = Fraction(dark);
        result_.m_dBrightFraction = Fraction(bright);
        result_.m_dPhaseFraction = Fraction(phase);
        result_.m_lPhasePixels = static_cast<LONG>(phase.pixelCount);
        const double square = result_.m_dMicronsPerPixelX * result_.m_dMicronsPerPixelY;
        if (square > 0) result_.m_dPhaseArea = static_cast<double>(phase.pixelCount) * square;
        result_.m_dPhaseXCentroid = phase.xCentroid;
        result_.m_dPhaseYCentroid = phase.yCentroid;
    }

    ComPtr<IBitmap> Side(double cut, bool bright) const { return SideOf(process_, result_.m_lDataType, cut, bright); }

    double Fraction(const BinaryMeasurements& bits) const {
        return static_cast<double>(bits.pixelCount) / static_cast<double>(result_.m_lPixelCount);
    }

    ThresholdMethod method_;
    bool bright_;
    ComPtr<IImageVPAExPlus> image_;
    ComPtr<IImageProcess> process_ = Cast<IImageProcess>(image_);
    ComPtr<IHistogram> fine_;
    SFileMeasurements result_ = {};
};

}  // namespace

SFileMeasurements MeasureImageFile(BSTR fileName, AutoThresholdType threshold, bool bright, LONG band) {
    return FileMeasuring(fileName, MethodOf(threshold), bright, band).Run();
}

}  // namespace orlix
