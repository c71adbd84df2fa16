// The picture in the client's memory.
#pragma once

#include "pictures/picture_core.hpp"

#include "pictures/rendering.hpp"

namespace orlix {

class MemoryPicture : public PicturePart<IPictureMemory> {
public:
    STDMETHODIMP RenderToMemory(SPictureMemory* memory, LONG x, LONG y, LONG width, LONG height) noexcept override;
    STDMETHODIMP RenderTopLeftToMemory(SPictureMemory* memory, LONG x, LONG y, LONG width,
                                       LONG height) noexcept override;
    STDMETHODIMP RenderBltToMemory(SPictureMemory* memory, LONG x, LONG y, LONG width, LONG height, LONG sourceX,
                                   LONG sourceY) noexcept override;
    STDMETHODIMP RenderStretchToMemory(SPictureMemory* memory, LONG x, LONG y, LONG width, LONG height, LONG sourceX,
                                       LONG sourceY, LONG sourceWidth, LONG sourceHeight) noexcept override;

private:
    HRESULT RenderInMemory(SPictureMemory* memory, const Rectangle& dest, const RenderKind& kind);
};

}  // namespace orlix
