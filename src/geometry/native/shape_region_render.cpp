#include "geometry/orlix_shape_region_of_interest.hpp"

// There are no device contexts here.
STDMETHODIMP OrlixShapeRegionOfInterest::Render(IPictureEx*, void*) noexcept { return E_NOTIMPL; }
