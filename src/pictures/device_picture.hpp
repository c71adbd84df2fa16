// The picture on devices.
#pragma once

#include "pictures/picture_core.hpp"

#include "display/device_renderer.hpp"
#include "pictures/rendering.hpp"

namespace orlix {

class DevicePicture : public PicturePart<IPictureExZoom> {
public:
    STDMETHODIMP get_DestToPixelCoords(TCoordinateMap* map) noexcept override;
    STDMETHODIMP get_PixelToDestCoords(TCoordinateMap* map) noexcept override;
    STDMETHODIMP get_Width(LONG* width) noexcept override;
    STDMETHODIMP get_Height(LONG* height) noexcept override;
    STDMETHODIMP get_DestRect(RECT* rectangle) noexcept override;
    STDMETHODIMP get_Surround(OLE_COLOR* color) noexcept override;
    STDMETHODIMP put_Surround(OLE_COLOR color) noexcept override;
    STDMETHODIMP Render(void* hdcDest, LONG x, LONG y, LONG width, LONG height) noexcept override;
    STDMETHODIMP RenderTopLeft(void* hdcDest, LONG x, LONG y, LONG width, LONG height) noexcept override;
    STDMETHODIMP RenderBlt(void* hdcDest, LONG x, LONG y, LONG width, LONG height, LONG sourceX,
                           LONG sourceY) noexcept override;
    STDMETHODIMP RenderStretch(void* hdcDest, LONG x, LONG y, LONG width, LONG height, LONG sourceX, LONG sourceY,
                               LONG sourceWidth, LONG sourceHeight) noexcept override;
    STDMETHODIMP CreateHBITMAP(void* hdc, void** bitmap) noexcept override;
    STDMETHODIMP CreateDIBSection(void** bits, void** bitmap) noexcept override;
    STDMETHODIMP AttachBuffer(void* buffer, LONG width, LONG height, LONG bitsPerPixel) noexcept override;
    STDMETHODIMP GetPixelInfo(LONG destX, LONG destY, double* x, double* y, double* value,
                              OLE_COLOR* color) noexcept override;

private:
    HRESULT RenderOnDevice(void* hdcDest, const Rectangle& dest, const RenderKind& kind);

    DeviceRenderer renderer_;
};

}  // namespace orlix
