// Images from the frames of cameras.
#pragma once

#include "orlix_image/image_core.hpp"

namespace orlix {

class ImageFrames : public ImagePart<IImageFrames> {
public:
    STDMETHODIMP CreateFromFrame(SFrame* frame) noexcept override;
};

}  // namespace orlix
