// Settings of processing, and operations on single pixels.
#pragma once

#include "orlix_image/image_measuring.hpp"

namespace orlix {

class ImagePoints : public ImageMeasuring {
public:
    STDMETHODIMP put_NumberOfBins(LONG bins) noexcept override;
    STDMETHODIMP PutLuminanceRange(double lower, double upper) noexcept override;
    STDMETHODIMP SnapLuminanceRange(double trimLower, double trimUpper, LONG roundOut) noexcept override;
    STDMETHODIMP get_LocalMaxima(IBitmap** bitmap) noexcept override;
    STDMETHODIMP get_LocalMinima(IBitmap** bitmap) noexcept override;
    STDMETHODIMP get_Table(LONG entry, double* value) noexcept override;
    STDMETHODIMP put_Table(LONG entry, double value) noexcept override;
    STDMETHODIMP EqualizeTable(EqualizationType type) noexcept override;
    STDMETHODIMP LUT() noexcept override;
    STDMETHODIMP Invert() noexcept override;
    STDMETHODIMP LocalBackgroundCorrect() noexcept override;
    STDMETHODIMP ScalarEquals(double value) noexcept override;
    STDMETHODIMP ScalarDivideEquals(double value) noexcept override;
    STDMETHODIMP ScalarPlusEquals(double value) noexcept override;
    STDMETHODIMP CastEquals(IImageVPA* source, LONG band) noexcept override;
    STDMETHODIMP PlusEquals(IImageVPA* source, LONG band) noexcept override;
};

}  // namespace orlix
