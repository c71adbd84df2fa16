#include "geometry/orlix_shape_region_of_interest.hpp"

using namespace orlix;

// This platform has no device contexts.
STDMETHODIMP OrlixShapeRegionOfInterest::Render(IPictureEx*, void*) noexcept {
    return Guarded([] { throw FailedResult(E_NOTIMPL); });
}
