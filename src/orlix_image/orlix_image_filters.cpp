#include "orlix_image/orlix_image.hpp"

using namespace orlix;

STDMETHODIMP OrlixImage::Laplacian(IImageVPA* source, LONG band) noexcept {
    return Guarded([&] {
        Require(source);
        Typed()->Laplacian(source, band);
    });
}

STDMETHODIMP OrlixImage::SharpenLow(IImageVPA* source, LONG band) noexcept {
    return Guarded([&] {
        Require(source);
        Typed()->SharpenLow(source, band);
    });
}

STDMETHODIMP OrlixImage::SharpenMedium(IImageVPA* source, LONG band) noexcept {
    return Guarded([&] {
        Require(source);
        Typed()->SharpenMedium(source, band);
    });
}

STDMETHODIMP OrlixImage::Gaussian3x3(IImageVPA* source, LONG band) noexcept {
    return Guarded([&] {
        Require(source);
        Typed()->Gaussian3x3(source, band);
    });
}

STDMETHODIMP OrlixImage::Gaussian5x5(IImageVPA* source, LONG band) noexcept {
    return Guarded([&] {
        Require(source);
        Typed()->Gaussian5x5(source, band);
    });
}
