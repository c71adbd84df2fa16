#include "orlix_image/orlix_image.hpp"
#include "orlix_image/surface_records.hpp"

using namespace orlix;

namespace {

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
    return Guarded<IOrlixImageProcess>([&] {
        Require(fit);
        return Fit(*Typed(), 1,
                   {"IOrlixImageProcess::get_PlanarFit: multiband measurement is not supported.",
                    "IOrlixImageProcess::get_PlanarFit: not all pixels are finite."},
                   fit);
    });
}

STDMETHODIMP OrlixImage::CorrectPlanar(SPlanarFit* fit) noexcept {
    return Guarded<IOrlixImageProcess>([&] {
        Require(fit);
        Correct(*Typed(), fit, "IOrlixImageProcess::CorrectPlanar: the surface is not finite.");
    });
}

STDMETHODIMP OrlixImage::get_BiquadraticFit(SBiquadraticFit* fit) noexcept {
    return Guarded<IOrlixImageProcess>([&] {
        Require(fit);
        return Fit(*Typed(), 2,
                   {"IOrlixImageProcess::get_BiquadraticFit: multiband measurement is not supported.",
                    "IOrlixImageProcess::get_BiquadraticFit: not all pixels are finite."},
                   fit);
    });
}

STDMETHODIMP OrlixImage::CorrectBiquadratic(SBiquadraticFit* fit) noexcept {
    return Guarded<IOrlixImageProcess>([&] {
        Require(fit);
        Correct(*Typed(), fit, "IOrlixImageProcess::CorrectBiquadratic: the surface is not finite.");
    });
}

STDMETHODIMP OrlixImage::get_BicubicFit(SBicubicFit* fit) noexcept {
    return Guarded<IOrlixImageProcess>([&] {
        Require(fit);
        return Fit(*Typed(), 3,
                   {"IOrlixImageProcess::get_BicubicFit: multiband measurement is not supported.",
                    "IOrlixImageProcess::get_BicubicFit: not all pixels are finite."},
                   fit);
    });
}

STDMETHODIMP OrlixImage::CorrectBicubic(SBicubicFit* fit) noexcept {
    return Guarded<IOrlixImageProcess>([&] {
        Require(fit);
        Correct(*Typed(), fit, "IOrlixImageProcess::CorrectBicubic: the surface is not finite.");
    });
}
