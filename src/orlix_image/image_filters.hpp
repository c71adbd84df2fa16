// Neighbourhood filters.
#pragma once

#include "orlix_image/image_points.hpp"

namespace orlix {

class ImageFilters : public ImagePoints {
public:
    STDMETHODIMP Sobel(IImageVPA* source, LONG band) noexcept override {
        return Filter(FilterKind::Sobel, source, band);
    }
    STDMETHODIMP Laplacian(IImageVPA* source, LONG band) noexcept override {
        return Filter(FilterKind::Laplacian, source, band);
    }
    STDMETHODIMP SharpenLow(IImageVPA* source, LONG band) noexcept override {
        return Filter(FilterKind::SharpenLow, source, band);
    }
    STDMETHODIMP SharpenMedium(IImageVPA* source, LONG band) noexcept override {
        return Filter(FilterKind::SharpenMedium, source, band);
    }
    STDMETHODIMP Gaussian3x3(IImageVPA* source, LONG band) noexcept override {
        return Filter(FilterKind::Gaussian3x3, source, band);
    }
    STDMETHODIMP Gaussian5x5(IImageVPA* source, LONG band) noexcept override {
        return Filter(FilterKind::Gaussian5x5, source, band);
    }
    STDMETHODIMP ExtremumSharpening(LONG halfSize, IImageVPA* source, LONG band) noexcept override;
    STDMETHODIMP Median3x3(IImageVPA* source, LONG band) noexcept override {
        return Filter(FilterKind::Median3x3, source, band);
    }

private:
    // The calling method's name appears in the failure texts.
    HRESULT Filter(FilterKind kind, IImageVPA* source, LONG band, const char* method = __builtin_FUNCTION()) noexcept;
};

}  // namespace orlix
