#include "orlix_image/image_picture.hpp"

#include "geometry/rounding.hpp"

namespace orlix {

HRESULT ImagePicture::RenderOnDevice(void* hdcDest, const Rectangle& dest, const RenderKind& kind) {
    const std::shared_ptr<DisplayedImage> typed = core().typed();  // drawing the overlay may replace it
    DeviceRenderer::DrawOver drawOver;
    if (core().events.connected())
        drawOver = [&](void* context, RenderSourceType source) {
            core().events.Raise<IPictureExEvents>(
                [&](IPictureExEvents* sink) { sink->OnRender(this, context, source); });
        };
    return renderer_.Render(
        hdcDest, dest,
        [&](const Rectangle& device, bool kept) {
            return DrawingOf(typed.get(), kind, device, core().surround, core().view, kept);
        },
        drawOver);
}

STDMETHODIMP ImagePicture::get_DestToPixelCoords(TCoordinateMap* map) noexcept {
    return Guarded([&] {
        Require(map);
        *map = core().view.toPixel;
    });
}

STDMETHODIMP ImagePicture::get_PixelToDestCoords(TCoordinateMap* map) noexcept {
    return Guarded([&] {
        Require(map);
        *map = core().view.toDest;
    });
}

STDMETHODIMP ImagePicture::get_Width(LONG* width) noexcept {
    return Guarded([&] {
        Require(width);
        *width = core().zoom.width();
    });
}

STDMETHODIMP ImagePicture::get_Height(LONG* height) noexcept {
    return Guarded([&] {
        Require(height);
        *height = core().zoom.height();
    });
}

STDMETHODIMP ImagePicture::get_DestRect(RECT* rectangle) noexcept {
    return Guarded([&] {
        Require(rectangle);
        *rectangle = ToRect(core().view.dest);
    });
}

STDMETHODIMP ImagePicture::get_Surround(OLE_COLOR* color) noexcept {
    return Guarded([&] {
        Require(color);
        *color = core().surround;
    });
}

STDMETHODIMP ImagePicture::put_Surround(OLE_COLOR color) noexcept {
    return Guarded([&] { core().surround = color; });
}

STDMETHODIMP ImagePicture::Render(void* hdcDest, LONG x, LONG y, LONG width, LONG height) noexcept {
    return Guarded([&] { return RenderOnDevice(hdcDest, {x, y, width, height}, Fit(core().zoom, Placing::Centred)); });
}

STDMETHODIMP ImagePicture::RenderTopLeft(void* hdcDest, LONG x, LONG y, LONG width, LONG height) noexcept {
    return Guarded([&] { return RenderOnDevice(hdcDest, {x, y, width, height}, Fit(core().zoom, Placing::TopLeft)); });
}

STDMETHODIMP ImagePicture::RenderBlt(void* hdcDest, LONG x, LONG y, LONG width, LONG height, LONG sourceX,
                                     LONG sourceY) noexcept {
    return Guarded([&] { return RenderOnDevice(hdcDest, {x, y, width, height}, Blt(sourceX, sourceY)); });
}

STDMETHODIMP ImagePicture::RenderStretch(void* hdcDest, LONG x, LONG y, LONG width, LONG height, LONG sourceX,
                                         LONG sourceY, LONG sourceWidth, LONG sourceHeight) noexcept {
    return Guarded([&] {
        return RenderOnDevice(hdcDest, {x, y, width, height}, Stretch({sourceX, sourceY, sourceWidth, sourceHeight}));
    });
}

STDMETHODIMP ImagePicture::CreateHBITMAP(void* hdc, void** bitmap) noexcept {
    return Guarded([&] {
        Require(bitmap);
        *bitmap = nullptr;
        const std::shared_ptr<DisplayedImage>& typed = core().typed();
        constexpr const char* kNoImage = "IPictureEx::CreateHBITMAP: No image.";
        const DisplayBitmap& shown = BitmapOf(typed.get(), kNoImage, kNoImage);
        *bitmap = DeviceRenderer::MakeCompatible(hdc, shown, typed->displayState().colors);
    });
}

STDMETHODIMP ImagePicture::CreateDIBSection(void** bits, void** bitmap) noexcept {
    return Guarded([&] {
        Require(bits), Require(bitmap);
        *bits = *bitmap = nullptr;
        const std::shared_ptr<DisplayedImage>& typed = core().typed();
        constexpr const char* kNoImage = "IPictureEx::CreateDIBSection: No image.";
        const DisplayBitmap& shown = BitmapOf(typed.get(), kNoImage, kNoImage);
        *bitmap = DeviceRenderer::MakeSection(shown, typed->displayState().colors, bits);
    });
}

STDMETHODIMP ImagePicture::AttachBuffer(void* buffer, LONG width, LONG height, LONG bitsPerPixel) noexcept {
    return Guarded([&] {
        if (bitsPerPixel != 8 && bitsPerPixel != 16)
            throw Failure("IPictureEx::AttachBuffer: the picture must have 8 or 16 bits per pixel.");
        core().Attach(buffer, width, height, 1, bitsPerPixel == 8 ? DT_BYTE : DT_WORD, false);
    });
}

STDMETHODIMP ImagePicture::GetPixelInfo(LONG destX, LONG destY, double* x, double* y, double* value,
                                        OLE_COLOR* color) noexcept {
    return Guarded([&]() -> HRESULT {
        Require(x), Require(y), Require(value), Require(color);
        const PixelPoint point = Apply(core().view.toPixel, destX + 0.5, destY + 0.5);
        *x = point.x;
        *y = point.y;
        *value = 0;
        *color = 0;
        const int32_t column = RoundToInt32(point.x), row = RoundToInt32(point.y);
        if (column < 0 || row < 0 || column >= core().zoom.width() || row >= core().zoom.height()) return S_FALSE;
        const std::optional<ShownPixel> shown = Typed()->Shown(column, row);
        if (!shown) return S_FALSE;
        *value = shown->value;
        *color = shown->color;
        return S_OK;
    });
}

}  // namespace orlix
