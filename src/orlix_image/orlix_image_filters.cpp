#include "orlix_image/orlix_image.hpp"

using namespace orlix;

STDMETHODIMP OrlixImage::Sobel(IImageVPA* source, LONG band) noexcept {
    return Guarded<IImageProcess>([&] {
        Require(source);
        Typed()->Sobel(source, band);
    });
}

STDMETHODIMP OrlixImage::Laplacian(IImageVPA* source, LONG band) noexcept {
    return Guarded<IImageProcess>([&] {
        Require(source);
        Typed()->Laplacian(source, band);
    });
}

STDMETHODIMP OrlixImage::SharpenLow(IImageVPA* source, LONG band) noexcept {
    return Guarded<IImageProcess>([&] {
        Require(source);
        Typed()->SharpenLow(source, band);
    });
}

STDMETHODIMP OrlixImage::SharpenMedium(IImageVPA* source, LONG band) noexcept {
    return Guarded<IImageProcess>([&] {
        Require(source);
        Typed()->SharpenMedium(source, band);
    });
}

STDMETHODIMP OrlixImage::Gaussian3x3(IImageVPA* source, LONG band) noexcept {
    return Guarded<IImageProcess>([&] {
        Require(source);
        Typed()->Gaussian3x3(source, band);
    });
}

STDMETHODIMP OrlixImage::Gaussian5x5(IImageVPA* source, LONG band) noexcept {
    return Guarded<IImageProcess>([&] {
        Require(source);
        Typed()->Gaussian5x5(source, band);
    });
}

STDMETHODIMP OrlixImage::ExtremumSharpening(LONG halfSize, IImageVPA* source, LONG band) noexcept {
    return Guarded<IImageProcess>([&] {
        Require(source);
        Typed()->ExtremumSharpening(halfSize, source, band);
    });
}

STDMETHODIMP OrlixImage::Median3x3(IImageVPA* source, LONG band) noexcept {
    return Guarded<IImageProcess>([&] {
        Require(source);
        Typed()->Median3x3(source, band);
    });
}
