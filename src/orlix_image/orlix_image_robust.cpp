#include "orlix_image/orlix_image.hpp"
#include "orlix_image/surface_records.hpp"

using namespace orlix;

namespace {

constexpr TypedImage::RobustTexts kPlanar = {
    "IOrlixImageProcess::get_RobustPlanarFit: good pixel probability must be larger than 0.0 and no larger than 1.0",
    "IOrlixImageProcess::get_RobustPlanarFit: multiband planar fit is not supported."};
constexpr TypedImage::RobustTexts kBiquadratic = {
    "IOrlixImageProcess::get_RobustBiquadraticFit: good pixel probability must be larger than 0.0 and no larger than "
    "1.0",
    "IOrlixImageProcess::get_RobustBiquadraticFit: multiband biquadratic fit is not supported."};
constexpr TypedImage::RobustTexts kBicubic = {
    "IOrlixImageProcess::get_RobustBicubicFit: good pixel probability must be larger than 0.0 and no larger than 1.0",
    "IOrlixImageProcess::get_RobustBicubicFit: multiband bicubic fit is not supported."};
constexpr TypedImage::RobustTexts kHemisphere = {
    "IOrlixImageProcess::get_RobustHemisphereFit: good pixel probability must be larger than 0.0 and no larger than "
    "1.0",
    "IOrlixImageProcess::get_RobustHemisphereFit: multiband hemisphere fit is not supported."};
constexpr TypedImage::RobustTexts kAngledHemisphere = {
    "IOrlixImageProcess::get_RobustAngledHemisphereFit: good pixel probability must be larger than 0.0 and no larger "
    "than 1.0",
    "IOrlixImageProcess::get_RobustAngledHemisphereFit: multiband angled hemisphere fit is not supported."};

template <class Surface, class Kind, class Record>
HRESULT Fit(TypedImage& image, Kind kind, double probability, const TypedImage::RobustTexts& texts, Record* fit) {
    Require(fit);
    Surface surface;
    const HRESULT result = image.RobustFit(kind, probability, texts, surface);
    if (result == S_OK) Write(surface, *fit);
    return result;
}

// Failures are those of the fit, under its name.
HRESULT Correct(TypedImage& image, int degree, double probability, const TypedImage::RobustTexts& texts,
                const char* notFinite) {
    SurfacePolynomial surface;
    const HRESULT result = image.RobustFit(degree, probability, texts, surface);
    if (result == S_OK) image.CorrectPolynomial(surface, notFinite);
    return result;
}
HRESULT Correct(TypedImage& image, bool angled, double probability, const TypedImage::RobustTexts& texts,
                const char* notFinite) {
    AveragedHemisphere surface;
    const HRESULT result = image.RobustFit(angled, probability, texts, surface);
    if (result == S_OK) image.CorrectHemisphere(surface, notFinite);
    return result;
}

}  // namespace

STDMETHODIMP OrlixImage::get_RobustPlanarFit(double probability, SPlanarFit* fit) noexcept {
    return Guarded<IOrlixImageProcess>([&] { return Fit<SurfacePolynomial>(*Typed(), 1, probability, kPlanar, fit); });
}

STDMETHODIMP OrlixImage::RobustCorrectPlanar(double probability) noexcept {
    return Guarded<IOrlixImageProcess>([&] {
        return Correct(*Typed(), 1, probability, kPlanar,
                       "IOrlixImageProcess::RobustCorrectPlanar: the surface is not finite.");
    });
}

STDMETHODIMP OrlixImage::get_RobustBiquadraticFit(double probability, SBiquadraticFit* fit) noexcept {
    return Guarded<IOrlixImageProcess>(
        [&] { return Fit<SurfacePolynomial>(*Typed(), 2, probability, kBiquadratic, fit); });
}

STDMETHODIMP OrlixImage::RobustCorrectBiquadratic(double probability) noexcept {
    return Guarded<IOrlixImageProcess>([&] {
        return Correct(*Typed(), 2, probability, kBiquadratic,
                       "IOrlixImageProcess::RobustCorrectBiquadratic: the surface is not finite.");
    });
}

STDMETHODIMP OrlixImage::get_RobustBicubicFit(double probability, SBicubicFit* fit) noexcept {
    return Guarded<IOrlixImageProcess>([&] { return Fit<SurfacePolynomial>(*Typed(), 3, probability, kBicubic, fit); });
}

STDMETHODIMP OrlixImage::RobustCorrectBicubic(double probability) noexcept {
    return Guarded<IOrlixImageProcess>([&] {
        return Correct(*Typed(), 3, probability, kBicubic,
                       "IOrlixImageProcess::RobustCorrectBicubic: the surface is not finite.");
    });
}

STDMETHODIMP OrlixImage::get_RobustHemisphereFit(double probability, SHemisphereFit* fit) noexcept {
    return Guarded<IOrlixImageProcess>(
        [&] { return Fit<AveragedHemisphere>(*Typed(), false, probability, kHemisphere, fit); });
}

STDMETHODIMP OrlixImage::RobustCorrectHemisphere(double probability) noexcept {
    return Guarded<IOrlixImageProcess>([&] {
        return Correct(*Typed(), false, probability, kHemisphere,
                       "IOrlixImageProcess::RobustCorrectHemisphere: the surface is not finite.");
    });
}

STDMETHODIMP OrlixImage::get_RobustAngledHemisphereFit(double probability, SAngledHemisphereFit* fit) noexcept {
    return Guarded<IOrlixImageProcess>(
        [&] { return Fit<AveragedHemisphere>(*Typed(), true, probability, kAngledHemisphere, fit); });
}

STDMETHODIMP OrlixImage::RobustCorrectAngledHemisphere(double probability) noexcept {
    return Guarded<IOrlixImageProcess>([&] {
        return Correct(*Typed(), true, probability, kAngledHemisphere,
                       "IOrlixImageProcess::RobustCorrectAngledHemisphere: the surface is not finite.");
    });
}
