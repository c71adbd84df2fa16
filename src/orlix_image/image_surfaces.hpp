// Surface fits to the grey levels, and corrections by them.
#pragma once

#include "orlix_image/image_filters.hpp"

namespace orlix {

class ImageSurfaces : public ImageFilters {
public:
    STDMETHODIMP get_RobustPlanarFit(double probability, SPlanarFit* fit) noexcept override;
    STDMETHODIMP get_PlanarFit(SPlanarFit* fit) noexcept override;
    STDMETHODIMP CorrectPlanar(SPlanarFit* fit) noexcept override;
    STDMETHODIMP RobustCorrectPlanar(double probability) noexcept override;
    STDMETHODIMP get_RobustBiquadraticFit(double probability, SBiquadraticFit* fit) noexcept override;
    STDMETHODIMP get_BiquadraticFit(SBiquadraticFit* fit) noexcept override;
    STDMETHODIMP CorrectBiquadratic(SBiquadraticFit* fit) noexcept override;
    STDMETHODIMP RobustCorrectBiquadratic(double probability) noexcept override;
    STDMETHODIMP get_RobustBicubicFit(double probability, SBicubicFit* fit) noexcept override;
    STDMETHODIMP get_BicubicFit(SBicubicFit* fit) noexcept override;
    STDMETHODIMP CorrectBicubic(SBicubicFit* fit) noexcept override;
    STDMETHODIMP RobustCorrectBicubic(double probability) noexcept override;
    STDMETHODIMP get_RobustHemisphereFit(double probability, SHemisphereFit* fit) noexcept override;
    STDMETHODIMP get_HemisphereFit(SHemisphereFit* fit) noexcept override;
    STDMETHODIMP CorrectHemisphere(SHemisphereFit* fit) noexcept override;
    STDMETHODIMP RobustCorrectHemisphere(double probability) noexcept override;
    STDMETHODIMP get_RobustAngledHemisphereFit(double probability, SAngledHemisphereFit* fit) noexcept override;
    STDMETHODIMP get_AngledHemisphereFit(SAngledHemisphereFit* fit) noexcept override;
    STDMETHODIMP CorrectAngledHemisphere(SAngledHemisphereFit* fit) noexcept override;
    STDMETHODIMP RobustCorrectAngledHemisphere(double probability) noexcept override;
};

}  // namespace orlix
