// Methods of the contract whose subsystems are not built yet (docs/not-built-yet.md lists them): local extrema and
// local background correction. They refuse and write nothing.

#include "orlix_image/orlix_image.hpp"

using namespace orlix;

namespace {
void Refuse() { throw FailedResult(E_NOTIMPL); }
}  // namespace

STDMETHODIMP OrlixImage::get_LocalMaxima(IBitmap**) noexcept { return Guarded(Refuse); }
STDMETHODIMP OrlixImage::get_LocalMinima(IBitmap**) noexcept { return Guarded(Refuse); }
STDMETHODIMP OrlixImage::LocalBackgroundCorrect() noexcept { return Guarded(Refuse); }
