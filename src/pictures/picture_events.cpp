#include "pictures/picture_events.hpp"

namespace orlix {

STDMETHODIMP PictureEvents::EnumConnectionPoints(IEnumConnectionPoints** points) noexcept {
    return picture().events.EnumPoints(points);
}

STDMETHODIMP PictureEvents::FindConnectionPoint(REFIID iid, IConnectionPoint** point) noexcept {
    return picture().events.FindPoint(iid, point);
}

}  // namespace orlix
