// What a rendering draws, independent of the surface that it is drawn on.
#pragma once

#include <orlix/orlix.h>

#include <optional>

#include "display/display_bitmap.hpp"
#include "display/display_state.hpp"
#include "display/view_geometry.hpp"

namespace orlix {

// A surface to draw pictures on. Rectangles are in device coordinates and may be mirrored (see Rectangle).
class PictureSurface {
public:
    virtual ~PictureSurface() = default;

    // color: 0x00BBGGRR; the high byte is ignored.
    virtual void Fill(const Rectangle& rectangle, OLE_COLOR color) = 0;

    // Draws the source rectangle, whose y counts from the bitmap's top row, into dest. Neither is empty, and source
    // lies inside the bitmap. Returns false when the system does not draw it.
    virtual bool Draw(const DisplayBitmap& bitmap, const ColorTable& colors, const Rectangle& source,
                      const Rectangle& dest) = 0;
};

// A destination and the picture in it. Bitmap and colours must outlive the drawing.
struct PictureDrawing {
    const DisplayBitmap& bitmap;
    const ColorTable& colors;
    Rectangle dest;            // not empty
    std::optional<View> view;  // inside dest; nullopt where dest shows nothing of the image
    OLE_COLOR surround;

    // Draws the picture and its surround. Returns false when there is no view or the system does not draw it.
    bool DrawOn(PictureSurface& surface) const;
};

}  // namespace orlix
