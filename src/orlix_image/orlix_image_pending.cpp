// Methods of the contract whose subsystems are not built yet (docs/not-built-yet.md lists them): local extrema, local
// background correction and surface fits. They refuse and write nothing.

#include "orlix_image/orlix_image.hpp"

STDMETHODIMP OrlixImage::get_LocalMaxima(IBitmap**) noexcept { return E_NOTIMPL; }
STDMETHODIMP OrlixImage::get_LocalMinima(IBitmap**) noexcept { return E_NOTIMPL; }
STDMETHODIMP OrlixImage::LocalBackgroundCorrect() noexcept { return E_NOTIMPL; }
STDMETHODIMP OrlixImage::get_RobustPlanarFit(double, SPlanarFit*) noexcept { return E_NOTIMPL; }
STDMETHODIMP OrlixImage::RobustCorrectPlanar(double) noexcept { return E_NOTIMPL; }
STDMETHODIMP OrlixImage::get_RobustBiquadraticFit(double, SBiquadraticFit*) noexcept { return E_NOTIMPL; }
STDMETHODIMP OrlixImage::RobustCorrectBiquadratic(double) noexcept { return E_NOTIMPL; }
STDMETHODIMP OrlixImage::get_RobustBicubicFit(double, SBicubicFit*) noexcept { return E_NOTIMPL; }
STDMETHODIMP OrlixImage::RobustCorrectBicubic(double) noexcept { return E_NOTIMPL; }
STDMETHODIMP OrlixImage::get_RobustHemisphereFit(double, SHemisphereFit*) noexcept { return E_NOTIMPL; }
STDMETHODIMP OrlixImage::get_HemisphereFit(SHemisphereFit*) noexcept { return E_NOTIMPL; }
STDMETHODIMP OrlixImage::CorrectHemisphere(SHemisphereFit*) noexcept { return E_NOTIMPL; }
STDMETHODIMP OrlixImage::RobustCorrectHemisphere(double) noexcept { return E_NOTIMPL; }
STDMETHODIMP OrlixImage::get_RobustAngledHemisphereFit(double, SAngledHemisphereFit*) noexcept { return E_NOTIMPL; }
STDMETHODIMP OrlixImage::get_AngledHemisphereFit(SAngledHemisphereFit*) noexcept { return E_NOTIMPL; }
STDMETHODIMP OrlixImage::CorrectAngledHemisphere(SAngledHemisphereFit*) noexcept { return E_NOTIMPL; }
STDMETHODIMP OrlixImage::RobustCorrectAngledHemisphere(double) noexcept { return E_NOTIMPL; }
