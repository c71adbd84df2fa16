// Draws pictures on the system's device contexts. Outside Windows there are none: every operation raises E_NOTIMPL.
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

    // What to draw on a device rectangle. nullopt: there is nothing to draw, and Render returns S_FALSE. kept: the
    // context, a metafile's, keeps the whole bitmap.
    using MakeDrawing = std::function<std::optional<PictureDrawing>(const Rectangle& dest, bool kept)>;
    // Draws the overlay on the context (HDC): the picture's own, or a memory context that is then copied to it. kind is
    // the kind of the client's context.
    using DrawOver = std::function<void(void* context, RenderSourceType kind)>;

    // hdcDest is an HDC or the address of one; dest is in its logical coordinates. The context keeps its settings, also
    // when a failure is raised. An empty drawOver means that there is no overlay. On a display (not a printer) a
    // picture with an overlay is drawn through a bitmap in memory, which is kept until another size is needed, or
    // directly where the system cannot make that bitmap.
    // Returns S_FALSE when the system does not draw the picture. Failures:
    //   "IPictureEx::Render: invalid HDC", "IPictureEx::Render: unable to BitBlt"
    HRESULT Render(void* hdcDest, const Rectangle& dest, const MakeDrawing& makeDrawing, const DrawOver& drawOver);

    // Make new bitmaps (HBITMAP) with the pixels of the bitmap: MakeCompatible in the format of the context (null: of
    // the screen); MakeSection with memory of their own, whose address it stores in *bits. E_FAIL when the system
    // cannot make one.
    static void* MakeCompatible(void* context, const DisplayBitmap& bitmap, const ColorTable& colors);
    static void* MakeSection(const DisplayBitmap& bitmap, const ColorTable& colors, void** bits);

private:
    class BackBuffer;
    std::unique_ptr<BackBuffer> buffer_;
};

}  // namespace orlix
