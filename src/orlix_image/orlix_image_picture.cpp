#include <cmath>

#include "display/memory_surface.hpp"
#include "geometry/rounding.hpp"
#include "orlix_image/orlix_image.hpp"

namespace orlix {

// How a rendering chooses what it shows, and its name in a text.
struct RenderKind {
    const char* noBitmap;
    std::function<std::optional<View>(const DisplayBitmap& bitmap, const Rectangle& dest)> view;
};

namespace {

RenderKind Fit(const ZoomState& zoom, Placing placing) {
    return {"IPictureEx::Render: unable to retrieve bitmap information.",
            [=](const DisplayBitmap& bitmap, const Rectangle& dest) {
                return MakeView(bitmap.width, bitmap.height, zoom.factor(), zoom.centerX(), zoom.centerY(), dest,
                                placing);
            }};
}

RenderKind Blt(LONG sourceX, LONG sourceY) {
    return {"IPictureEx::RenderBlt: unable to retrieve bitmap information.",
            [=](const DisplayBitmap& bitmap, const Rectangle& dest) {
                return MakeUnscaledView(bitmap.width, bitmap.height, dest, sourceX, sourceY);
            }};
}

RenderKind Stretch(const Rectangle& source) {
    return {"IPictureEx::RenderStretch: unable to retrieve bitmap information.",
            [=](const DisplayBitmap& bitmap, const Rectangle& dest) -> std::optional<View> {
                if (source.width <= 0 || source.height <= 0 ||
                    source != Intersection(source, {0, 0, bitmap.width, bitmap.height}))
                    throw Failure("IPictureEx::RenderStretch: the source rectangle must lie on the image.");
                return ViewOf(source, dest);
            }};
}

// The bitmap of an image that may be missing or empty.
const DisplayBitmap& BitmapOf(DisplayedImage* image, const char* unavailable, const char* noImage) try {
    if (!image) throw Failure(noImage);
    if (image->store().refused()) throw Failure(unavailable);
    const DisplayBitmap& bitmap = image->Display();
    if (bitmap.bitsPerPixel < 8) throw Failure(noImage);
    return bitmap;
} catch (const std::bad_alloc&) {
    throw Failure(unavailable);
}

std::optional<PictureDrawing> DrawingOf(DisplayedImage* image, const RenderKind& kind, const Rectangle& dest,
                                        OLE_COLOR surround, View& lastView) {
    const DisplayBitmap& bitmap = BitmapOf(image, kind.noBitmap, "IPictureEx::Render: No image.");
    if (dest.empty()) return std::nullopt;
    PictureDrawing drawing{bitmap, image->displayState().colors, dest, kind.view(bitmap, dest), surround};
    if (drawing.view) lastView = *drawing.view;
    return drawing;
}

MemorySurface SurfaceOf(const SPictureMemory* memory) {
    Require(memory), Require(memory->m_pPixels);
    if (memory->m_lWidth <= 0 || memory->m_lHeight <= 0) throw Failure("IPictureMemory: the memory has no pixels.");
    if (std::abs(int64_t{memory->m_lStride}) < memory->m_lWidth)
        throw Failure("IPictureMemory: the stride is shorter than a row.");
    if (memory->m_lScaling != RS_Smooth && memory->m_lScaling != RS_Nearest)
        throw Failure("IPictureMemory: no such scaling.");
    return {RasterSurface(memory->m_pPixels, memory->m_lStride, memory->m_lWidth, memory->m_lHeight),
            memory->m_lScaling == RS_Nearest ? Scaling::Nearest : Scaling::Smooth};
}

}  // namespace
}  // namespace orlix

using namespace orlix;

HRESULT OrlixImage::RenderOnDevice(void* hdcDest, const orlix::Rectangle& dest, const RenderKind& kind) {
    const std::shared_ptr<DisplayedImage> typed = typed_;  // what is drawn over the picture may replace it
    DeviceRenderer::DrawOver drawOver;
    if (events_.connected())
        drawOver = [&](void* context, RenderSourceType source) {
            events_.Raise<IPictureExEvents>([&](IPictureExEvents* sink) { sink->OnRender(this, context, source); });
        };
    return renderer_.Render(
        hdcDest, dest,
        [&](const orlix::Rectangle& device) { return DrawingOf(typed.get(), kind, device, surround_, view_); },
        drawOver);
}

HRESULT OrlixImage::RenderInMemory(SPictureMemory* memory, const orlix::Rectangle& dest, const RenderKind& kind) {
    MemorySurface surface = SurfaceOf(memory);
    const auto drawing = DrawingOf(typed_.get(), kind, dest, surround_, view_);
    return drawing && drawing->DrawOn(surface) ? S_OK : S_FALSE;
}

STDMETHODIMP OrlixImage::get_DestToPixelCoords(TCoordinateMap* map) noexcept {
    return Guarded([&] {
        Require(map);
        *map = view_.toPixel;
    });
}

STDMETHODIMP OrlixImage::get_PixelToDestCoords(TCoordinateMap* map) noexcept {
    return Guarded([&] {
        Require(map);
        *map = view_.toDest;
    });
}

STDMETHODIMP OrlixImage::get_Width(LONG* width) noexcept {
    return Guarded([&] {
        Require(width);
        *width = zoom_.width();
    });
}

STDMETHODIMP OrlixImage::get_Height(LONG* height) noexcept {
    return Guarded([&] {
        Require(height);
        *height = zoom_.height();
    });
}

STDMETHODIMP OrlixImage::get_DestRect(RECT* rectangle) noexcept {
    return Guarded([&] {
        Require(rectangle);
        *rectangle = ToRect(view_.dest);
    });
}

STDMETHODIMP OrlixImage::get_Surround(OLE_COLOR* color) noexcept {
    return Guarded([&] {
        Require(color);
        *color = surround_;
    });
}

STDMETHODIMP OrlixImage::put_Surround(OLE_COLOR color) noexcept {
    return Guarded([&] { surround_ = color; });
}

STDMETHODIMP OrlixImage::Render(void* hdcDest, LONG x, LONG y, LONG width, LONG height) noexcept {
    return Guarded([&] { return RenderOnDevice(hdcDest, {x, y, width, height}, Fit(zoom_, Placing::Centred)); });
}

STDMETHODIMP OrlixImage::RenderTopLeft(void* hdcDest, LONG x, LONG y, LONG width, LONG height) noexcept {
    return Guarded([&] { return RenderOnDevice(hdcDest, {x, y, width, height}, Fit(zoom_, Placing::TopLeft)); });
}

STDMETHODIMP OrlixImage::RenderBlt(void* hdcDest, LONG x, LONG y, LONG width, LONG height, LONG sourceX,
                                   LONG sourceY) noexcept {
    return Guarded([&] { return RenderOnDevice(hdcDest, {x, y, width, height}, Blt(sourceX, sourceY)); });
}

STDMETHODIMP OrlixImage::RenderStretch(void* hdcDest, LONG x, LONG y, LONG width, LONG height, LONG sourceX,
                                       LONG sourceY, LONG sourceWidth, LONG sourceHeight) noexcept {
    return Guarded([&] {
        return RenderOnDevice(hdcDest, {x, y, width, height}, Stretch({sourceX, sourceY, sourceWidth, sourceHeight}));
    });
}

STDMETHODIMP OrlixImage::RenderToMemory(SPictureMemory* memory, LONG x, LONG y, LONG width, LONG height) noexcept {
    return Guarded([&] { return RenderInMemory(memory, {x, y, width, height}, Fit(zoom_, Placing::Centred)); });
}

STDMETHODIMP OrlixImage::RenderTopLeftToMemory(SPictureMemory* memory, LONG x, LONG y, LONG width,
                                               LONG height) noexcept {
    return Guarded([&] { return RenderInMemory(memory, {x, y, width, height}, Fit(zoom_, Placing::TopLeft)); });
}

STDMETHODIMP OrlixImage::RenderBltToMemory(SPictureMemory* memory, LONG x, LONG y, LONG width, LONG height,
                                           LONG sourceX, LONG sourceY) noexcept {
    return Guarded([&] { return RenderInMemory(memory, {x, y, width, height}, Blt(sourceX, sourceY)); });
}

STDMETHODIMP OrlixImage::RenderStretchToMemory(SPictureMemory* memory, LONG x, LONG y, LONG width, LONG height,
                                               LONG sourceX, LONG sourceY, LONG sourceWidth,
                                               LONG sourceHeight) noexcept {
    return Guarded([&] {
        return RenderInMemory(memory, {x, y, width, height}, Stretch({sourceX, sourceY, sourceWidth, sourceHeight}));
    });
}

STDMETHODIMP OrlixImage::CreateHBITMAP(void* hdc, void** bitmap) noexcept {
    return Guarded([&] {
        Require(bitmap);
        *bitmap = nullptr;
        constexpr const char* kNoImage = "IPictureEx::CreateHBITMAP: No image.";
        const DisplayBitmap& shown = BitmapOf(typed_.get(), kNoImage, kNoImage);
        *bitmap = DeviceRenderer::MakeCompatible(hdc, shown, typed_->displayState().colors);
    });
}

STDMETHODIMP OrlixImage::CreateDIBSection(void** bits, void** bitmap) noexcept {
    return Guarded([&] {
        Require(bits), Require(bitmap);
        *bits = *bitmap = nullptr;
        constexpr const char* kNoImage = "IPictureEx::CreateDIBSection: No image.";
        const DisplayBitmap& shown = BitmapOf(typed_.get(), kNoImage, kNoImage);
        *bitmap = DeviceRenderer::MakeSection(shown, typed_->displayState().colors, bits);
    });
}

STDMETHODIMP OrlixImage::AttachBuffer(void* buffer, LONG width, LONG height, LONG bitsPerPixel) noexcept {
    if (bitsPerPixel == 8 || bitsPerPixel == 16)
        return AttachBuffer(buffer, width, height, 1, bitsPerPixel == 8 ? DT_BYTE : DT_WORD, 0);
    return Guarded([] { throw Failure("IPictureEx::AttachBuffer: the picture must have 8 or 16 bits per pixel."); });
}

STDMETHODIMP OrlixImage::GetPixelInfo(LONG destX, LONG destY, double* x, double* y, double* value,
                                      OLE_COLOR* color) noexcept {
    return Guarded([&]() -> HRESULT {
        Require(x), Require(y), Require(value), Require(color);
        const PixelPoint point = Apply(view_.toPixel, destX + 0.5, destY + 0.5);
        *x = point.x;
        *y = point.y;
        *value = 0;
        *color = 0;
        const int32_t column = RoundToInt32(point.x), row = RoundToInt32(point.y);
        if (column < 0 || row < 0 || column >= zoom_.width() || row >= zoom_.height()) return S_FALSE;
        const std::optional<ShownPixel> shown = typed_->Shown(column, row);
        if (!shown) return S_FALSE;
        *value = shown->value;
        *color = shown->color;
        return S_OK;
    });
}

STDMETHODIMP OrlixImage::get_ZoomFactor(double* factor) noexcept {
    return Guarded([&] {
        Require(factor);
        *factor = zoom_.factor();
    });
}

STDMETHODIMP OrlixImage::put_ZoomFactor(double factor) noexcept {
    return Guarded([&] { zoom_.PutFactor(factor); });
}

STDMETHODIMP OrlixImage::get_ZoomCenterX(double* x) noexcept {
    return Guarded([&] {
        Require(x);
        *x = zoom_.centerX();
    });
}

STDMETHODIMP OrlixImage::put_ZoomCenterX(double x) noexcept {
    return Guarded([&] { zoom_.PutCenterX(x); });
}

STDMETHODIMP OrlixImage::get_ZoomCenterY(double* y) noexcept {
    return Guarded([&] {
        Require(y);
        *y = zoom_.centerY();
    });
}

STDMETHODIMP OrlixImage::put_ZoomCenterY(double y) noexcept {
    return Guarded([&] { zoom_.PutCenterY(y); });
}

STDMETHODIMP OrlixImage::ResetZoom() noexcept {
    return Guarded([&] { zoom_.Reset(); });
}

STDMETHODIMP OrlixImage::ZoomInFromPoint(LONG x, LONG y) noexcept {
    return Guarded([&] { zoom_.ZoomInFromPoint(view_, x, y); });
}

STDMETHODIMP OrlixImage::ZoomOutFromPoint(LONG x, LONG y) noexcept {
    return Guarded([&] { zoom_.ZoomOutFromPoint(view_, x, y); });
}

STDMETHODIMP OrlixImage::ZoomFromRectangle(LONG x, LONG y, LONG width, LONG height) noexcept {
    return Guarded([&] { zoom_.ZoomFromRectangle(view_, x, y, width, height); });
}

STDMETHODIMP OrlixImage::ZoomIn() noexcept {
    return Guarded([&] { zoom_.ZoomIn(); });
}

STDMETHODIMP OrlixImage::ZoomOut() noexcept {
    return Guarded([&] { zoom_.ZoomOut(); });
}

STDMETHODIMP OrlixImage::PanLeft() noexcept {
    return Guarded([&] { zoom_.PanLeft(view_); });
}

STDMETHODIMP OrlixImage::PanRight() noexcept {
    return Guarded([&] { zoom_.PanRight(view_); });
}

STDMETHODIMP OrlixImage::ScrollUp() noexcept {
    return Guarded([&] { zoom_.ScrollUp(view_); });
}

STDMETHODIMP OrlixImage::ScrollDown() noexcept {
    return Guarded([&] { zoom_.ScrollDown(view_); });
}

STDMETHODIMP OrlixImage::PanScrollFromPoints(LONG x1, LONG y1, LONG x2, LONG y2) noexcept {
    return Guarded([&] { zoom_.PanScrollFromPoints(view_, x1, y1, x2, y2); });
}

STDMETHODIMP OrlixImage::EnumConnectionPoints(IEnumConnectionPoints** points) noexcept {
    return events_.EnumPoints(points);
}

STDMETHODIMP OrlixImage::FindConnectionPoint(REFIID iid, IConnectionPoint** point) noexcept {
    return events_.FindPoint(iid, point);
}
