// The bitmap as an image, where its pixels are grey levels of 8 bits.
#pragma once

#include "orlix_buffer/buffer_core.hpp"

namespace orlix {

class BufferPixels : public BufferPart<IImageVPA> {
public:
    STDMETHODIMP Dimensions(LONG* bands, LONG* width, LONG* height) noexcept override;
    STDMETHODIMP DataType(LONG bandIndex, LONG* dataType) noexcept override;
    STDMETHODIMP VPA(LONG bandIndex, void** base, VPAEntry** table) noexcept override;
    STDMETHODIMP GetCoords(TCoordinateMap* coordinateMap) noexcept override;
    STDMETHODIMP SetCoords(TCoordinateMap coordinateMap) noexcept override;

private:
    DibPicture& Grey();
};

}  // namespace orlix
