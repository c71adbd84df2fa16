#include "orlix_image/orlix_image.hpp"
#include "orlix_image/surface_records.hpp"

using namespace orlix;

STDMETHODIMP OrlixImage::get_HemisphereFit(SHemisphereFit* fit) noexcept {
    return Guarded<IOrlixImageProcess>([&] {
        Require(fit);
        AveragedHemisphere surface;
        // The prefix of the interface that this one extends: so the contract says.
        const HRESULT result =
            Typed()->FitHemisphere(false,
                                   {"IImageProcess::get_HemisphereFit: multiband measurement is not supported.",
                                    "IImageProcess::get_HemisphereFit: not all pixels are finite."},
                                   surface);
        if (result == S_OK) Write(surface, *fit);
        return result;
    });
}

STDMETHODIMP OrlixImage::CorrectHemisphere(SHemisphereFit* fit) noexcept {
    return Guarded<IOrlixImageProcess>([&] {
        Require(fit);
        Typed()->CorrectHemisphere(Read(*fit), "IOrlixImageProcess::CorrectHemisphere: the surface is not finite.");
    });
}

STDMETHODIMP OrlixImage::get_AngledHemisphereFit(SAngledHemisphereFit* fit) noexcept {
    return Guarded<IOrlixImageProcess>([&] {
        Require(fit);
        AveragedHemisphere surface;
        const HRESULT result = Typed()->FitHemisphere(
            true,
            {"IOrlixImageProcess::get_AngledHemisphereFit: multiband measurement is not supported.",
             "IOrlixImageProcess::get_AngledHemisphereFit: not all pixels are finite."},
            surface);
        if (result == S_OK) Write(surface, *fit);
        return result;
    });
}

STDMETHODIMP OrlixImage::CorrectAngledHemisphere(SAngledHemisphereFit* fit) noexcept {
    return Guarded<IOrlixImageProcess>([&] {
        Require(fit);
        Typed()->CorrectHemisphere(Read(*fit),
                                   "IOrlixImageProcess::CorrectAngledHemisphere: the surface is not finite.");
    });
}
