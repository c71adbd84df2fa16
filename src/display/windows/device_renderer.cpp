#include "display/device_renderer.hpp"

#include <cstring>

#include "component/failure.hpp"
#include "display/windows/gdi_surface.hpp"
#include "geometry/rounding.hpp"
#include "platform/memory_probe.hpp"

namespace orlix {
namespace {

// 0 for anything that is not a device context.
DWORD KindOf(HDC context) {
    const DWORD kind = GetObjectType(context);
    return kind == OBJ_DC || kind == OBJ_MEMDC || kind == OBJ_METADC || kind == OBJ_ENHMETADC ? kind : 0;
}

HDC ContextOf(void* value) {
    auto context = static_cast<HDC>(value);
    if (KindOf(context)) return context;
    if (IsReadable(value, sizeof context)) {
        std::memcpy(&context, value, sizeof context);
        if (KindOf(context)) return context;
    }
    throw Failure("IPictureEx::Render: invalid HDC");
}

// Restores the settings of a context at the end of its scope.
class SavedContext {
public:
    explicit SavedContext(HDC context) : context_(context), saved_(SaveDC(context)) {}
    ~SavedContext() {
        if (saved_) RestoreDC(context_, saved_);
    }
    SavedContext(const SavedContext&) = delete;
    SavedContext& operator=(const SavedContext&) = delete;

private:
    HDC context_;
    int saved_;
};

// Converts a logical rectangle to device coordinates; an old-style metafile has no device and keeps the coordinates.
Rectangle ToDevice(HDC context, const Rectangle& logical) {
    POINT corners[] = {{SaturateToInt32(logical.x), SaturateToInt32(logical.y)},
                       {SaturateToInt32(logical.right()), SaturateToInt32(logical.bottom())}};
    LPtoDP(context, corners, 2);
    return {corners[0].x, corners[0].y, int64_t{corners[1].x} - corners[0].x, int64_t{corners[1].y} - corners[0].y};
}

void UseDeviceCoordinates(HDC context) {
    SetLayout(context, 0);
    if (GetGraphicsMode(context) == GM_ADVANCED) ModifyWorldTransform(context, nullptr, MWT_IDENTITY);
    SetMapMode(context, MM_TEXT);
    SetWindowOrgEx(context, 0, 0, nullptr);
    SetViewportOrgEx(context, 0, 0, nullptr);
}

}  // namespace

// A bitmap in memory, selected into a context of its own.
class DeviceRenderer::BackBuffer {
public:
    BackBuffer(HDC like, int width, int height)
        : width_(width),
          height_(height),
          context_(CreateCompatibleDC(like)),
          bitmap_(CreateCompatibleBitmap(like, width, height)),
          former_(context_ && bitmap_ ? SelectObject(context_, bitmap_) : nullptr) {}
    ~BackBuffer() {
        if (former_) SelectObject(context_, former_);
        if (bitmap_) DeleteObject(bitmap_);
        if (context_) DeleteDC(context_);
    }
    BackBuffer(const BackBuffer&) = delete;
    BackBuffer& operator=(const BackBuffer&) = delete;

    bool works() const { return former_ != nullptr; }
    HDC context() const { return context_; }
    int width() const { return width_; }
    int height() const { return height_; }

private:
    int width_, height_;
    HDC context_;
    HBITMAP bitmap_;
    HGDIOBJ former_;
};

DeviceRenderer::DeviceRenderer() noexcept = default;
DeviceRenderer::~DeviceRenderer() = default;

HRESULT DeviceRenderer::Render(void* hdcDest, const Rectangle& dest, const MakeDrawing& makeDrawing,
                               const DrawOver& drawOver) {
    const HDC context = ContextOf(hdcDest);
    const DWORD kind = KindOf(context);
    const auto sourceType = static_cast<RenderSourceType>(kind);
    const SavedContext saved(context);
    const Rectangle device = ToDevice(context, dest);
    if (kind == OBJ_DC || kind == OBJ_MEMDC) UseDeviceCoordinates(context);
    const std::optional<PictureDrawing> drawing = makeDrawing(device, kind == OBJ_METADC || kind == OBJ_ENHMETADC);
    if (!drawing) return S_FALSE;

    // Taken out of buffer_ meanwhile: drawing the overlay may render again.
    std::unique_ptr<BackBuffer> buffer;
    const Rectangle covered = Normalized(device);
    if (drawOver && kind == OBJ_DC && GetDeviceCaps(context, TECHNOLOGY) != DT_RASPRINTER && covered.right() > 0 &&
        covered.bottom() > 0) {
        const auto width = static_cast<int>(covered.right()), height = static_cast<int>(covered.bottom());
        buffer = std::move(buffer_);
        if (!buffer || buffer->width() != width || buffer->height() != height)
            buffer = std::make_unique<BackBuffer>(context, width, height);
        if (!buffer->works()) buffer = nullptr;
    }
    const HDC surfaceContext = buffer ? buffer->context() : context;
    GdiSurface surface(surfaceContext);
    const bool drawn = drawing->DrawOn(surface);
    if (drawOver) {
        const SavedContext savedSurface(surfaceContext);
        drawOver(surfaceContext, sourceType);
    }
    if (buffer) {
        const PaletteScope palette(context, drawing->bitmap, drawing->colors);
        const Rectangle copied = Intersection(covered, {0, 0, buffer->width(), buffer->height()});
        const auto x = static_cast<int>(copied.x), y = static_cast<int>(copied.y);
        const bool copiedAll = BitBlt(context, x, y, static_cast<int>(copied.width), static_cast<int>(copied.height),
                                      buffer->context(), x, y, SRCCOPY);
        buffer_ = std::move(buffer);
        if (!copiedAll) throw Failure("IPictureEx::Render: unable to BitBlt");
    }
    return drawn ? S_OK : S_FALSE;
}

void* DeviceRenderer::MakeCompatible(void* context, const DisplayBitmap& bitmap, const ColorTable& colors) {
    const BitmapHeader header(bitmap, colors);
    const HDC screen = context ? nullptr : GetDC(nullptr);
    const HBITMAP made = CreateDIBitmap(screen ? screen : static_cast<HDC>(context), &header.header, CBM_INIT,
                                        bitmap.pixels.data(), header.info(), DIB_RGB_COLORS);
    if (screen) ReleaseDC(nullptr, screen);
    if (!made) throw FailedResult(E_FAIL);
    return made;
}

void* DeviceRenderer::MakeSection(const DisplayBitmap& bitmap, const ColorTable& colors, void** bits) {
    const BitmapHeader header(bitmap, colors);
    void* pixels = nullptr;
    const HBITMAP made = CreateDIBSection(nullptr, header.info(), DIB_RGB_COLORS, &pixels, nullptr, 0);
    if (!made || !pixels) throw FailedResult(E_FAIL);
    std::memcpy(pixels, bitmap.pixels.data(), bitmap.rowStride * static_cast<size_t>(bitmap.height));
    *bits = pixels;
    return made;
}

}  // namespace orlix
