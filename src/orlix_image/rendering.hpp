// What the renderings of a picture share: surfaces and views differ.
#pragma once

#include <orlix/orlix.h>

#include <functional>
#include <optional>

#include "display/displayed_image.hpp"
#include "display/picture_drawing.hpp"
#include "display/view_geometry.hpp"
#include "display/zoom_state.hpp"

namespace orlix {

// How a rendering chooses what it shows, and its name in a text.
struct RenderKind {
    const char* noBitmap;
    std::function<std::optional<View>(const DisplayBitmap& bitmap, const Rectangle& dest)> view;
};

RenderKind Fit(const ZoomState& zoom, Placing placing);
RenderKind Blt(LONG sourceX, LONG sourceY);
// The view raises a Failure where the source rectangle leaves the image.
RenderKind Stretch(const Rectangle& source);

// The bitmap of an image that may be missing (null) or empty; the text that fits.
const DisplayBitmap& BitmapOf(DisplayedImage* image, const char* unavailable, const char* noImage);

// Nothing for an empty destination. lastView is the view of the drawing, if it has one.
std::optional<PictureDrawing> DrawingOf(DisplayedImage* image, const RenderKind& kind, const Rectangle& dest,
                                        OLE_COLOR surround, View& lastView);

}  // namespace orlix
