// Where clients connect to the events of the picture.
#pragma once

#include "orlix_image/image_core.hpp"

namespace orlix {

class ImageEvents : public ImagePart<IConnectionPointContainer> {
public:
    STDMETHODIMP EnumConnectionPoints(IEnumConnectionPoints** points) noexcept override;
    STDMETHODIMP FindConnectionPoint(REFIID iid, IConnectionPoint** point) noexcept override;
};

}  // namespace orlix
