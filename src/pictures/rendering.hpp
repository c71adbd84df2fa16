// The steps common to all renderings of a picture, whatever the surface and the view.
#pragma once

#include <orlix/orlix.h>

#include <functional>
#include <optional>

#include "display/picture_drawing.hpp"
#include "display/picture_source.hpp"
#include "display/view_geometry.hpp"
#include "display/zoom_state.hpp"

namespace orlix {

// How a rendering chooses its view, and the text of its failure without a bitmap.
struct RenderKind {
    const char* noBitmap;
    std::function<std::optional<View>(const DisplayBitmap& bitmap, const Rectangle& dest)> view;
};

RenderKind Fit(const ZoomState& zoom, Placing placing);
RenderKind Blt(LONG sourceX, LONG sourceY);
// The view raises a Failure where the source rectangle extends beyond the image.
RenderKind Stretch(const Rectangle& source);

// The bitmap of an image that may be missing (null) or empty; either raises its own text.
const DisplayBitmap& BitmapOf(PictureSource* image, const char* unavailable, const char* noImage);

// nullopt for an empty destination. lastView is set to the view of the drawing, if it has one. Of the bitmap only what
// is drawn is current, or all of it (whole).
std::optional<PictureDrawing> DrawingOf(PictureSource* image, const RenderKind& kind, const Rectangle& dest,
                                        OLE_COLOR surround, View& lastView, bool whole = false);

}  // namespace orlix
