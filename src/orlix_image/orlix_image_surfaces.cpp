#include "orlix_image/orlix_image.hpp"

using namespace orlix;

namespace {

// The fields of the records but the caller's m_lSize.
void Write(const SurfacePolynomial& surface, SPlanarFit& fit) {
    fit.m_dAverage = surface.average;
    fit.m_dAlpha = surface.k[MonomialIndex(1, 0)];
    fit.m_dBeta = surface.k[MonomialIndex(0, 1)];
    fit.m_dGamma = surface.k[0];
}
SurfacePolynomial Read(const SPlanarFit& fit) { return {{fit.m_dGamma, fit.m_dBeta, fit.m_dAlpha}, fit.m_dAverage}; }

void Write(const SurfacePolynomial& surface, SBiquadraticFit& fit) {
    const auto& k = surface.k;
    fit = {fit.m_lSize, surface.average, k[0], k[1], k[2], k[3], k[4], k[5]};
}
SurfacePolynomial Read(const SBiquadraticFit& fit) {
    return {{fit.m_dK0, fit.m_dK1, fit.m_dK2, fit.m_dK3, fit.m_dK4, fit.m_dK5}, fit.m_dAverage};
}

void Write(const SurfacePolynomial& surface, SBicubicFit& fit) {
    const auto& k = surface.k;
    fit = {fit.m_lSize, surface.average, k[0], k[1], k[2], k[3], k[4], k[5], k[6], k[7], k[8], k[9]};
}
SurfacePolynomial Read(const SBicubicFit& fit) {
    return {
        {fit.m_dK0, fit.m_dK1, fit.m_dK2, fit.m_dK3, fit.m_dK4, fit.m_dK5, fit.m_dK6, fit.m_dK7, fit.m_dK8, fit.m_dK9},
        fit.m_dAverage};
}

template <class Record>
HRESULT Fit(TypedImage& image, int degree, const TypedImage::FitTexts& texts, Record* fit) {
    SurfacePolynomial surface;
    const HRESULT result = image.FitPolynomial(degree, texts, surface);
    if (result == S_OK) Write(surface, *fit);
    return result;
}

template <class Record>
void Correct(TypedImage& image, const Record* fit, const char* notFinite) {
    image.CorrectPolynomial(Read(*fit), notFinite);
}

}  // namespace

STDMETHODIMP OrlixImage::get_PlanarFit(SPlanarFit* fit) noexcept {
    return Guarded([&] {
        Require(fit);
        return Fit(*Typed(), 1,
                   {"IOrlixImageProcess::get_PlanarFit: multiband measurement is not supported.",
                    "IOrlixImageProcess::get_PlanarFit: not all pixels are finite."},
                   fit);
    });
}

STDMETHODIMP OrlixImage::CorrectPlanar(SPlanarFit* fit) noexcept {
    return Guarded([&] {
        Require(fit);
        Correct(*Typed(), fit, "IOrlixImageProcess::CorrectPlanar: the surface is not finite.");
    });
}

STDMETHODIMP OrlixImage::get_BiquadraticFit(SBiquadraticFit* fit) noexcept {
    return Guarded([&] {
        Require(fit);
        return Fit(*Typed(), 2,
                   {"IOrlixImageProcess::get_BiquadraticFit: multiband measurement is not supported.",
                    "IOrlixImageProcess::get_BiquadraticFit: not all pixels are finite."},
                   fit);
    });
}

STDMETHODIMP OrlixImage::CorrectBiquadratic(SBiquadraticFit* fit) noexcept {
    return Guarded([&] {
        Require(fit);
        Correct(*Typed(), fit, "IOrlixImageProcess::CorrectBiquadratic: the surface is not finite.");
    });
}

STDMETHODIMP OrlixImage::get_BicubicFit(SBicubicFit* fit) noexcept {
    return Guarded([&] {
        Require(fit);
        return Fit(*Typed(), 3,
                   {"IOrlixImageProcess::get_BicubicFit: multiband measurement is not supported.",
                    "IOrlixImageProcess::get_BicubicFit: not all pixels are finite."},
                   fit);
    });
}

STDMETHODIMP OrlixImage::CorrectBicubic(SBicubicFit* fit) noexcept {
    return Guarded([&] {
        Require(fit);
        Correct(*Typed(), fit, "IOrlixImageProcess::CorrectBicubic: the surface is not finite.");
    });
}
