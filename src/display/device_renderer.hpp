// Pictures on device contexts of the system. Off Windows there are none: every operation raises E_NOTIMPL.
#pragma once

#include <orlix/orlix.h>

#include <functional>
#include <memory>
#include <optional>

#include "display/picture_drawing.hpp"

namespace orlix {

class DeviceRenderer {
public:
    DeviceRenderer() noexcept;
    ~DeviceRenderer();
    DeviceRenderer(const DeviceRenderer&) = delete;
    DeviceRenderer& operator=(const DeviceRenderer&) = delete;

    // What to draw on a device rectangle. Nothing: there is nothing to be done, S_FALSE.
    using MakeDrawing = std::function<std::optional<PictureDrawing>(const Rectangle& dest)>;
    // Draws what belongs over the picture on the context (HDC), the picture's own or one of memory that is then copied
    // to it. kind is the client's context's.
    using DrawOver = std::function<void(void* context, RenderSourceType kind)>;

    // hdcDest is an HDC or the address of one; dest is in its logical coordinates. The context is left with the
    // settings that it had, also when something is raised. An empty drawOver: nothing belongs over the picture.
    // A display (not a printer) on which something is drawn over the picture is drawn through a bitmap in memory, which
    // is kept until another size is needed; where the system makes no such bitmap, directly.
    // S_FALSE when the system does not draw the picture. Failures:
    //   "IPictureEx::Render: invalid HDC", "IPictureEx::Render: unable to BitBlt"
    HRESULT Render(void* hdcDest, const Rectangle& dest, const MakeDrawing& makeDrawing, const DrawOver& drawOver);

    // New bitmaps (HBITMAP) with the pixels of the bitmap: in the format of the context, null for the screen; and with
    // memory of their own, whose address *bits becomes. E_FAIL when the system makes none.
    static void* MakeCompatible(void* context, const DisplayBitmap& bitmap, const ColorTable& colors);
    static void* MakeSection(const DisplayBitmap& bitmap, const ColorTable& colors, void** bits);

private:
    class BackBuffer;
    std::unique_ptr<BackBuffer> buffer_;
};

}  // namespace orlix
