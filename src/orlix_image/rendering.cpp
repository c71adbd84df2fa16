#include "orlix_image/rendering.hpp"

#include <new>

namespace orlix {

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

}  // namespace orlix
