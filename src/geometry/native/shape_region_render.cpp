#include "geometry/orlix_shape_region_of_interest.hpp"

using namespace orlix;

// There are no device contexts here.
STDMETHODIMP OrlixShapeRegionOfInterest::Render(IPictureEx*, void*) noexcept {
    return Guarded([] { throw FailedResult(E_NOTIMPL); });
}
