// Where clients connect to the events of the picture.
#pragma once

#include "pictures/picture_core.hpp"

namespace orlix {

class PictureEvents : public PicturePart<IConnectionPointContainer> {
public:
    STDMETHODIMP EnumConnectionPoints(IEnumConnectionPoints** points) noexcept override;
    STDMETHODIMP FindConnectionPoint(REFIID iid, IConnectionPoint** point) noexcept override;
};

}  // namespace orlix
