// The band, region and range to process, and measurements: the first of the processing interfaces, each of which
// extends the one before.
#pragma once

#include "orlix_image/image_core.hpp"

namespace orlix {

class ImageMeasuring : public ImagePart<IOrlixImageProcess> {
public:
    STDMETHODIMP get_BandToProcess(LONG* band) noexcept override;
    STDMETHODIMP put_BandToProcess(LONG band) noexcept override;
    STDMETHODIMP get_RegionOfInterest(IRegionOfInterest** region) noexcept override;
    STDMETHODIMP put_RegionOfInterest(IRegionOfInterest* region) noexcept override;
    STDMETHODIMP GetLuminanceRange(double* lower, double* upper) noexcept override;
    STDMETHODIMP get_NumberOfBins(LONG* bins) noexcept override;
    STDMETHODIMP Threshold(double lower, double upper, LONG inside, IBitmap** bitmap) noexcept override;
    STDMETHODIMP get_Histogram(IHistogram** histogram) noexcept override;
    STDMETHODIMP get_GrayMeasurements(GrayExtractMeasurementType desired, SGrayMeasurements* measure) noexcept override;
};

}  // namespace orlix
