#include "pictures/device_picture.hpp"

#include "geometry/rounding.hpp"

namespace orlix {

HRESULT DevicePicture::RenderOnDevice(void* hdcDest, const Rectangle& dest, const RenderKind& kind) {
    const std::shared_ptr<PictureSource> source = picture().Source();  // drawing the overlay may replace it
    DeviceRenderer::DrawOver drawOver;
    if (picture().events.connected())
        drawOver = [&](void* context, RenderSourceType type) {
            picture().events.Raise<IPictureExEvents>(
                [&](IPictureExEvents* sink) { sink->OnRender(this, context, type); });
        };
    return renderer_.Render(
        hdcDest, dest,
        [&](const Rectangle& device, bool kept) {
            return DrawingOf(source.get(), kind, device, picture().surround, picture().view, kept);
        },
        drawOver);
}

STDMETHODIMP DevicePicture::get_DestToPixelCoords(TCoordinateMap* map) noexcept {
    return Guarded([&] {
        Require(map);
        *map = picture().view.toPixel;
    });
}

STDMETHODIMP DevicePicture::get_PixelToDestCoords(TCoordinateMap* map) noexcept {
    return Guarded([&] {
        Require(map);
        *map = picture().view.toDest;
    });
}

STDMETHODIMP DevicePicture::get_Width(LONG* width) noexcept {
    return Guarded([&] {
        Require(width);
        *width = picture().zoom.width();
    });
}

STDMETHODIMP DevicePicture::get_Height(LONG* height) noexcept {
    return Guarded([&] {
        Require(height);
        *height = picture().zoom.height();
    });
}

STDMETHODIMP DevicePicture::get_DestRect(RECT* rectangle) noexcept {
    return Guarded([&] {
        Require(rectangle);
        *rectangle = ToRect(picture().view.dest);
    });
}

STDMETHODIMP DevicePicture::get_Surround(OLE_COLOR* color) noexcept {
    return Guarded([&] {
        Require(color);
        *color = picture().surround;
    });
}

STDMETHODIMP DevicePicture::put_Surround(OLE_COLOR color) noexcept {
    return Guarded([&] { picture().surround = color; });
}

STDMETHODIMP DevicePicture::Render(void* hdcDest, LONG x, LONG y, LONG width, LONG height) noexcept {
    return Guarded([&] {
        return RenderOnDevice(hdcDest, {x, y, width, height}, Fit(picture().zoom, Placing::Centred));
    });
}

STDMETHODIMP DevicePicture::RenderTopLeft(void* hdcDest, LONG x, LONG y, LONG width, LONG height) noexcept {
    return Guarded([&] {
        return RenderOnDevice(hdcDest, {x, y, width, height}, Fit(picture().zoom, Placing::TopLeft));
    });
}

STDMETHODIMP DevicePicture::RenderBlt(void* hdcDest, LONG x, LONG y, LONG width, LONG height, LONG sourceX,
                                      LONG sourceY) noexcept {
    return Guarded([&] { return RenderOnDevice(hdcDest, {x, y, width, height}, Blt(sourceX, sourceY)); });
}

STDMETHODIMP DevicePicture::RenderStretch(void* hdcDest, LONG x, LONG y, LONG width, LONG height, LONG sourceX,
                                          LONG sourceY, LONG sourceWidth, LONG sourceHeight) noexcept {
    return Guarded([&] {
        return RenderOnDevice(hdcDest, {x, y, width, height}, Stretch({sourceX, sourceY, sourceWidth, sourceHeight}));
    });
}

STDMETHODIMP DevicePicture::CreateHBITMAP(void* hdc, void** bitmap) noexcept {
    return Guarded([&] {
        Require(bitmap);
        *bitmap = nullptr;
        const std::shared_ptr<PictureSource> source = picture().Source();
        constexpr const char* kNoImage = "IPictureEx::CreateHBITMAP: No image.";
        const DisplayBitmap& shown = BitmapOf(source.get(), kNoImage, kNoImage);
        *bitmap = DeviceRenderer::MakeCompatible(hdc, shown, source->Colors());
    });
}

STDMETHODIMP DevicePicture::CreateDIBSection(void** bits, void** bitmap) noexcept {
    return Guarded([&] {
        Require(bits), Require(bitmap);
        *bits = *bitmap = nullptr;
        const std::shared_ptr<PictureSource> source = picture().Source();
        constexpr const char* kNoImage = "IPictureEx::CreateDIBSection: No image.";
        const DisplayBitmap& shown = BitmapOf(source.get(), kNoImage, kNoImage);
        *bitmap = DeviceRenderer::MakeSection(shown, source->Colors(), bits);
    });
}

STDMETHODIMP DevicePicture::AttachBuffer(void* buffer, LONG width, LONG height, LONG bitsPerPixel) noexcept {
    return Guarded([&] {
        if (bitsPerPixel != 8 && bitsPerPixel != 16)
            throw Failure("IPictureEx::AttachBuffer: the picture must have 8 or 16 bits per pixel.");
        picture().AttachPicture(buffer, width, height, bitsPerPixel);
    });
}

STDMETHODIMP DevicePicture::GetPixelInfo(LONG destX, LONG destY, double* x, double* y, double* value,
                                         OLE_COLOR* color) noexcept {
    return Guarded([&]() -> HRESULT {
        Require(x), Require(y), Require(value), Require(color);
        const PixelPoint point = Apply(picture().view.toPixel, destX + 0.5, destY + 0.5);
        *x = point.x;
        *y = point.y;
        *value = 0;
        *color = 0;
        const int32_t column = RoundToInt32(point.x), row = RoundToInt32(point.y);
        if (column < 0 || row < 0 || column >= picture().zoom.width() || row >= picture().zoom.height()) return S_FALSE;
        const std::shared_ptr<PictureSource> source = picture().Source();
        if (!source) return S_FALSE;
        const std::optional<ShownPixel> shown = source->Shown(column, row);
        if (!shown) return S_FALSE;
        *value = shown->value;
        *color = shown->color;
        return S_OK;
    });
}

}  // namespace orlix
