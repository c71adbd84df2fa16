#include "orlix_image/image_events.hpp"

namespace orlix {

STDMETHODIMP ImageEvents::EnumConnectionPoints(IEnumConnectionPoints** points) noexcept {
    return core().events.EnumPoints(points);
}

STDMETHODIMP ImageEvents::FindConnectionPoint(REFIID iid, IConnectionPoint** point) noexcept {
    return core().events.FindPoint(iid, point);
}

}  // namespace orlix
