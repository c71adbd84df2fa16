// What a rendering draws, apart from the surface that it is drawn on.
#pragma once

#include <orlix/orlix.h>

#include <optional>

#include "display/display_bitmap.hpp"
#include "display/display_state.hpp"
#include "display/view_geometry.hpp"

namespace orlix {

// Where pictures are drawn. Rectangles are in device coordinates, and mirrored ones (see Rectangle) are allowed.
class PictureSurface {
public:
    virtual ~PictureSurface() = default;

    // color: 0x00BBGGRR, the high byte is not used.
    virtual void Fill(const Rectangle& rectangle, OLE_COLOR color) = 0;

    // The source rectangle, whose y counts from the bitmap's top row, becomes dest. Neither is empty and source lies
    // inside the bitmap. False when the system does not draw it.
    virtual bool Draw(const DisplayBitmap& bitmap, const ColorTable& colors, const Rectangle& source,
                      const Rectangle& dest) = 0;
};

// A destination with the picture in it. Bitmap and colours must outlive the drawing.
struct PictureDrawing {
    const DisplayBitmap& bitmap;
    const ColorTable& colors;
    Rectangle dest;            // not empty
    std::optional<View> view;  // inside dest; nothing where dest shows nothing of the image
    OLE_COLOR surround;

    // The picture, and the surround beside it. False when there is no view or the system does not draw it.
    bool DrawOn(PictureSurface& surface) const;
};

}  // namespace orlix
