#include "orlix_image/image_measuring.hpp"

#include "process/measurements.hpp"

namespace orlix {

STDMETHODIMP ImageMeasuring::get_BandToProcess(LONG* band) noexcept {
    return Guarded<IImageProcessBase>([&] {
        Require(band);
        *band = Typed()->typed().bandToProcess();
    });
}

STDMETHODIMP ImageMeasuring::put_BandToProcess(LONG band) noexcept {
    return Guarded<IImageProcessBase>([&] { Typed()->typed().PutBandToProcess(band); });
}

STDMETHODIMP ImageMeasuring::get_RegionOfInterest(IRegionOfInterest** region) noexcept {
    return Guarded<IImageProcessBase>([&] {
        Require(region);
        *region = nullptr;
        *region = ComPtr<IRegionOfInterest>(Typed()->typed().region()).Detach();
    });
}

STDMETHODIMP ImageMeasuring::put_RegionOfInterest(IRegionOfInterest* region) noexcept {
    return Guarded<IImageProcessBase>([&] { Typed()->typed().PutRegion(region); });
}

STDMETHODIMP ImageMeasuring::GetLuminanceRange(double* lower, double* upper) noexcept {
    return Guarded<IImageProcessBase>([&] {
        Require(lower), Require(upper);
        WithFrame([&](auto& frame) {
            *lower = static_cast<double>(frame.settings().lower());
            *upper = static_cast<double>(frame.settings().upper());
        });
    });
}

STDMETHODIMP ImageMeasuring::get_NumberOfBins(LONG* bins) noexcept {
    return Guarded<IImageProcessBase>([&] {
        Require(bins);
        *bins = WithFrame([](auto& frame) { return frame.settings().bins(); });
    });
}

STDMETHODIMP ImageMeasuring::Threshold(double lower, double upper, LONG inside, IBitmap** bitmap) noexcept {
    return Guarded<IImageProcessBase>([&] {
        Require(bitmap);
        *bitmap = nullptr;
        *bitmap = WithFrame([&](auto& frame) {
                      const LONG band =
                          frame.SingleBand("IImageProcess::Threshold: multiband thresholding is not supported.");
                      frame.RequirePixels();
                      if (!(lower <= upper))
                          throw Failure("IImageProcess::Threshold: Lower cannot be larger than Upper.");
                      return ThresholdOf(frame.Select(band), lower, upper, inside != 0);
                  }).Detach();
    });
}

STDMETHODIMP ImageMeasuring::get_Histogram(IHistogram** histogram) noexcept {
    return Guarded<IImageProcessBase>([&] {
        Require(histogram);
        *histogram = nullptr;
        *histogram = WithFrame([](auto& frame) { return HistogramOf(frame.Select()); }).Detach();
    });
}

STDMETHODIMP ImageMeasuring::get_GrayMeasurements(GrayExtractMeasurementType desired,
                                                  SGrayMeasurements* measure) noexcept {
    return Guarded<IImageProcessBase>([&] {
        Require(measure);
        SGrayMeasurements result = WithFrame([&](auto& frame) {
            const LONG band =
                frame.SingleBand("IImageProcessBase::get_GrayMeasurements: multiband measurement is not supported.");
            return GrayMeasurementsOf(frame.Select(band), static_cast<LONG>(desired));
        });
        result.m_lSize = measure->m_lSize;
        *measure = result;
    });
}

}  // namespace orlix
