#include "pictures/rendering.hpp"

#include <new>

#include "component/failure.hpp"

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

namespace {

// show() gives the bitmap of an image that is there.
template <class Show>
const DisplayBitmap& BitmapOf(PictureSource* image, const char* unavailable, const char* noImage,
                              const Show& show) try {
    if (!image) throw Failure(noImage);
    if (image->Refused()) throw Failure(unavailable);
    const DisplayBitmap& bitmap = show();
    if (bitmap.bitsPerPixel < 8) throw Failure(noImage);
    return bitmap;
} catch (const std::bad_alloc&) {
    throw Failure(unavailable);
}

}  // namespace

const DisplayBitmap& BitmapOf(PictureSource* image, const char* unavailable, const char* noImage) {
    return BitmapOf(image, unavailable, noImage, [&]() -> const DisplayBitmap& { return image->Display(); });
}

std::optional<PictureDrawing> DrawingOf(PictureSource* image, const RenderKind& kind, const Rectangle& dest,
                                        OLE_COLOR surround, View& lastView, bool whole) {
    std::optional<View> view;
    const DisplayBitmap& bitmap =
        BitmapOf(image, kind.noBitmap, "IPictureEx::Render: No image.", [&]() -> const DisplayBitmap& {
            const DisplayBitmap& shown = image->Bitmap();
            if (shown.bitsPerPixel != 0 && !dest.empty()) {
                view = kind.view(shown, dest);
                if (view) image->Show(whole ? Rectangle{0, 0, shown.width, shown.height} : view->source);
            }
            return shown;
        });
    if (dest.empty()) return std::nullopt;
    PictureDrawing drawing{bitmap, image->Colors(), dest, view, surround};
    if (drawing.view) lastView = *drawing.view;
    return drawing;
}

}  // namespace orlix
