#include "orlix_image/image_surfaces.hpp"

#include <cmath>

#include "orlix_image/surface_records.hpp"
#include "process/surfaces.hpp"

namespace orlix {

namespace {

struct FitTexts {
    const char* multiband;
    const char* notFinite;
};

struct RobustTexts {
    const char* probability;
    const char* multiband;
};

constexpr RobustTexts kRobustPlanar = {
    "IOrlixImageProcess::get_RobustPlanarFit: good pixel probability must be larger than 0.0 and no larger than 1.0",
    "IOrlixImageProcess::get_RobustPlanarFit: multiband planar fit is not supported."};
constexpr RobustTexts kRobustBiquadratic = {
    "IOrlixImageProcess::get_RobustBiquadraticFit: good pixel probability must be larger than 0.0 and no larger than "
    "1.0",
    "IOrlixImageProcess::get_RobustBiquadraticFit: multiband biquadratic fit is not supported."};
constexpr RobustTexts kRobustBicubic = {
    "IOrlixImageProcess::get_RobustBicubicFit: good pixel probability must be larger than 0.0 and no larger than 1.0",
    "IOrlixImageProcess::get_RobustBicubicFit: multiband bicubic fit is not supported."};
constexpr RobustTexts kRobustHemisphere = {
    "IOrlixImageProcess::get_RobustHemisphereFit: good pixel probability must be larger than 0.0 and no larger than "
    "1.0",
    "IOrlixImageProcess::get_RobustHemisphereFit: multiband hemisphere fit is not supported."};
constexpr RobustTexts kRobustAngledHemisphere = {
    "IOrlixImageProcess::get_RobustAngledHemisphereFit: good pixel probability must be larger than 0.0 and no larger "
    "than 1.0",
    "IOrlixImageProcess::get_RobustAngledHemisphereFit: multiband angled hemisphere fit is not supported."};

// Fits of the two families. kind is the degree of a polynomial, or whether a hemisphere is tilted.
template <class Pixel>
HRESULT FitTo(Frame<Pixel>& frame, int degree, const FitTexts& texts, SurfacePolynomial& surface) {
    return PolynomialOf(frame.Select(frame.SingleBand(texts.multiband)), degree, texts.notFinite, surface);
}
template <class Pixel>
HRESULT FitTo(Frame<Pixel>& frame, bool angled, const FitTexts& texts, AveragedHemisphere& surface) {
    return HemisphereOf(frame.Select(frame.SingleBand(texts.multiband)), angled, texts.notFinite, surface);
}
template <class Pixel, class Kind, class Surface>
HRESULT RobustFitTo(Frame<Pixel>& frame, Kind kind, double probability, const RobustTexts& texts, Surface& surface) {
    if (!(probability > 0.0 && probability <= 1.0)) throw Failure(texts.probability);
    return RobustSurfaceOf(frame.Select(frame.SingleBand(texts.multiband)), kind, probability, surface);
}

template <class Pixel>
void CorrectBy(Frame<Pixel>& frame, const SurfacePolynomial& surface, const char* notFinite) {
    if (!surface.finite()) throw Failure(notFinite);
    frame.Change([&](const auto& at) { SubtractPolynomial(at, surface); });
}
template <class Pixel>
void CorrectBy(Frame<Pixel>& frame, const AveragedHemisphere& surface, const char* notFinite) {
    const HemisphereSurface heights(surface.hemisphere);
    if (!heights.finite() || !std::isfinite(surface.average)) throw Failure(notFinite);
    frame.Change([&](const auto& at) { SubtractHemisphere(at, heights, surface.average); });
}

// Operations on the image's frame, for WithFrame().
template <class Record, class Kind>
auto Fitting(Record* fit, Kind kind, const FitTexts& texts) {
    return [=](auto& frame) {
        decltype(Read(*fit)) surface;
        const HRESULT result = FitTo(frame, kind, texts, surface);
        if (result == S_OK) Write(surface, *fit);
        return result;
    };
}
template <class Record, class Kind>
auto FittingRobustly(Record* fit, Kind kind, double probability, const RobustTexts& texts) {
    return [=](auto& frame) {
        Require(fit);
        decltype(Read(*fit)) surface;
        const HRESULT result = RobustFitTo(frame, kind, probability, texts, surface);
        if (result == S_OK) Write(surface, *fit);
        return result;
    };
}
template <class Record>
auto Correcting(const Record* fit, const char* notFinite) {
    return [=](auto& frame) { CorrectBy(frame, Read(*fit), notFinite); };
}
// Failures are reported as those of the fit.
template <class Surface, class Kind>
auto CorrectingRobustly(Kind kind, double probability, const RobustTexts& texts, const char* notFinite) {
    return [=](auto& frame) {
        Surface surface;
        const HRESULT result = RobustFitTo(frame, kind, probability, texts, surface);
        if (result == S_OK) CorrectBy(frame, surface, notFinite);
        return result;
    };
}

}  // namespace

STDMETHODIMP ImageSurfaces::get_PlanarFit(SPlanarFit* fit) noexcept {
    constexpr FitTexts kTexts = {"IOrlixImageProcess::get_PlanarFit: multiband measurement is not supported.",
                                 "IOrlixImageProcess::get_PlanarFit: not all pixels are finite."};
    return Guarded<IOrlixImageProcess>([&] {
        Require(fit);
        return WithFrame(Fitting(fit, 1, kTexts));
    });
}

STDMETHODIMP ImageSurfaces::CorrectPlanar(SPlanarFit* fit) noexcept {
    return Guarded<IOrlixImageProcess>([&] {
        Require(fit);
        WithFrame(Correcting(fit, "IOrlixImageProcess::CorrectPlanar: the surface is not finite."));
    });
}

STDMETHODIMP ImageSurfaces::get_RobustPlanarFit(double probability, SPlanarFit* fit) noexcept {
    return Guarded<IOrlixImageProcess>([&] { return WithFrame(FittingRobustly(fit, 1, probability, kRobustPlanar)); });
}

STDMETHODIMP ImageSurfaces::RobustCorrectPlanar(double probability) noexcept {
    return Guarded<IOrlixImageProcess>([&] {
        return WithFrame(CorrectingRobustly<SurfacePolynomial>(
            1, probability, kRobustPlanar, "IOrlixImageProcess::RobustCorrectPlanar: the surface is not finite."));
    });
}

STDMETHODIMP ImageSurfaces::get_BiquadraticFit(SBiquadraticFit* fit) noexcept {
    constexpr FitTexts kTexts = {"IOrlixImageProcess::get_BiquadraticFit: multiband measurement is not supported.",
                                 "IOrlixImageProcess::get_BiquadraticFit: not all pixels are finite."};
    return Guarded<IOrlixImageProcess>([&] {
        Require(fit);
        return WithFrame(Fitting(fit, 2, kTexts));
    });
}

STDMETHODIMP ImageSurfaces::CorrectBiquadratic(SBiquadraticFit* fit) noexcept {
    return Guarded<IOrlixImageProcess>([&] {
        Require(fit);
        WithFrame(Correcting(fit, "IOrlixImageProcess::CorrectBiquadratic: the surface is not finite."));
    });
}

STDMETHODIMP ImageSurfaces::get_RobustBiquadraticFit(double probability, SBiquadraticFit* fit) noexcept {
    return Guarded<IOrlixImageProcess>(
        [&] { return WithFrame(FittingRobustly(fit, 2, probability, kRobustBiquadratic)); });
}

STDMETHODIMP ImageSurfaces::RobustCorrectBiquadratic(double probability) noexcept {
    return Guarded<IOrlixImageProcess>([&] {
        return WithFrame(CorrectingRobustly<SurfacePolynomial>(
            2, probability, kRobustBiquadratic,
            "IOrlixImageProcess::RobustCorrectBiquadratic: the surface is not finite."));
    });
}

STDMETHODIMP ImageSurfaces::get_BicubicFit(SBicubicFit* fit) noexcept {
    constexpr FitTexts kTexts = {"IOrlixImageProcess::get_BicubicFit: multiband measurement is not supported.",
                                 "IOrlixImageProcess::get_BicubicFit: not all pixels are finite."};
    return Guarded<IOrlixImageProcess>([&] {
        Require(fit);
        return WithFrame(Fitting(fit, 3, kTexts));
    });
}

STDMETHODIMP ImageSurfaces::CorrectBicubic(SBicubicFit* fit) noexcept {
    return Guarded<IOrlixImageProcess>([&] {
        Require(fit);
        WithFrame(Correcting(fit, "IOrlixImageProcess::CorrectBicubic: the surface is not finite."));
    });
}

STDMETHODIMP ImageSurfaces::get_RobustBicubicFit(double probability, SBicubicFit* fit) noexcept {
    return Guarded<IOrlixImageProcess>([&] { return WithFrame(FittingRobustly(fit, 3, probability, kRobustBicubic)); });
}

STDMETHODIMP ImageSurfaces::RobustCorrectBicubic(double probability) noexcept {
    return Guarded<IOrlixImageProcess>([&] {
        return WithFrame(CorrectingRobustly<SurfacePolynomial>(
            3, probability, kRobustBicubic, "IOrlixImageProcess::RobustCorrectBicubic: the surface is not finite."));
    });
}

STDMETHODIMP ImageSurfaces::get_HemisphereFit(SHemisphereFit* fit) noexcept {
    // The prefix is that of the interface that this one extends, as the contract requires.
    constexpr FitTexts kTexts = {"IImageProcess::get_HemisphereFit: multiband measurement is not supported.",
                                 "IImageProcess::get_HemisphereFit: not all pixels are finite."};
    return Guarded<IOrlixImageProcess>([&] {
        Require(fit);
        return WithFrame(Fitting(fit, false, kTexts));
    });
}

STDMETHODIMP ImageSurfaces::CorrectHemisphere(SHemisphereFit* fit) noexcept {
    return Guarded<IOrlixImageProcess>([&] {
        Require(fit);
        WithFrame(Correcting(fit, "IOrlixImageProcess::CorrectHemisphere: the surface is not finite."));
    });
}

STDMETHODIMP ImageSurfaces::get_RobustHemisphereFit(double probability, SHemisphereFit* fit) noexcept {
    return Guarded<IOrlixImageProcess>(
        [&] { return WithFrame(FittingRobustly(fit, false, probability, kRobustHemisphere)); });
}

STDMETHODIMP ImageSurfaces::RobustCorrectHemisphere(double probability) noexcept {
    return Guarded<IOrlixImageProcess>([&] {
        return WithFrame(CorrectingRobustly<AveragedHemisphere>(
            false, probability, kRobustHemisphere,
            "IOrlixImageProcess::RobustCorrectHemisphere: the surface is not finite."));
    });
}

STDMETHODIMP ImageSurfaces::get_AngledHemisphereFit(SAngledHemisphereFit* fit) noexcept {
    constexpr FitTexts kTexts = {"IOrlixImageProcess::get_AngledHemisphereFit: multiband measurement is not supported.",
                                 "IOrlixImageProcess::get_AngledHemisphereFit: not all pixels are finite."};
    return Guarded<IOrlixImageProcess>([&] {
        Require(fit);
        return WithFrame(Fitting(fit, true, kTexts));
    });
}

STDMETHODIMP ImageSurfaces::CorrectAngledHemisphere(SAngledHemisphereFit* fit) noexcept {
    return Guarded<IOrlixImageProcess>([&] {
        Require(fit);
        WithFrame(Correcting(fit, "IOrlixImageProcess::CorrectAngledHemisphere: the surface is not finite."));
    });
}

STDMETHODIMP ImageSurfaces::get_RobustAngledHemisphereFit(double probability, SAngledHemisphereFit* fit) noexcept {
    return Guarded<IOrlixImageProcess>(
        [&] { return WithFrame(FittingRobustly(fit, true, probability, kRobustAngledHemisphere)); });
}

STDMETHODIMP ImageSurfaces::RobustCorrectAngledHemisphere(double probability) noexcept {
    return Guarded<IOrlixImageProcess>([&] {
        return WithFrame(CorrectingRobustly<AveragedHemisphere>(
            true, probability, kRobustAngledHemisphere,
            "IOrlixImageProcess::RobustCorrectAngledHemisphere: the surface is not finite."));
    });
}

}  // namespace orlix
