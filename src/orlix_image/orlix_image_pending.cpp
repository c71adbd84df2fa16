// Methods of the contract whose subsystems are not built yet (docs/not-built-yet.md lists them): filters, local extrema
// and local background correction. They refuse and write nothing.

#include "orlix_image/orlix_image.hpp"

STDMETHODIMP OrlixImage::get_LocalMaxima(IBitmap**) noexcept { return E_NOTIMPL; }
STDMETHODIMP OrlixImage::get_LocalMinima(IBitmap**) noexcept { return E_NOTIMPL; }
STDMETHODIMP OrlixImage::LocalBackgroundCorrect() noexcept { return E_NOTIMPL; }
STDMETHODIMP OrlixImage::Sobel(IImageVPA*, LONG) noexcept { return E_NOTIMPL; }
STDMETHODIMP OrlixImage::Laplacian(IImageVPA*, LONG) noexcept { return E_NOTIMPL; }
STDMETHODIMP OrlixImage::SharpenLow(IImageVPA*, LONG) noexcept { return E_NOTIMPL; }
STDMETHODIMP OrlixImage::SharpenMedium(IImageVPA*, LONG) noexcept { return E_NOTIMPL; }
STDMETHODIMP OrlixImage::Gaussian3x3(IImageVPA*, LONG) noexcept { return E_NOTIMPL; }
STDMETHODIMP OrlixImage::Gaussian5x5(IImageVPA*, LONG) noexcept { return E_NOTIMPL; }
STDMETHODIMP OrlixImage::ExtremumSharpening(LONG, IImageVPA*, LONG) noexcept { return E_NOTIMPL; }
STDMETHODIMP OrlixImage::Median3x3(IImageVPA*, LONG) noexcept { return E_NOTIMPL; }
