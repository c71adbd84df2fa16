// Methods of the contract whose subsystems are not built yet (docs/not-built-yet.md lists them): local extrema and local
// background correction. They refuse and write nothing.

#include "orlix_image/orlix_image.hpp"

STDMETHODIMP OrlixImage::get_LocalMaxima(IBitmap**) noexcept { return E_NOTIMPL; }
STDMETHODIMP OrlixImage::get_LocalMinima(IBitmap**) noexcept { return E_NOTIMPL; }
STDMETHODIMP OrlixImage::LocalBackgroundCorrect() noexcept { return E_NOTIMPL; }
