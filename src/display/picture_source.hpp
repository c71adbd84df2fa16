// What pictures show: the display bitmap of an image.
#pragma once

#include <orlix/orlix.h>

#include <optional>

#include "display/display_bitmap.hpp"
#include "display/display_state.hpp"
#include "display/view_geometry.hpp"

namespace orlix {

// A pixel of an image and the colour that shows it, 0x00BBGGRR.
struct ShownPixel {
    double value;
    OLE_COLOR color;
};

class PictureSource {
public:
    virtual ~PictureSource() = default;

    // The pixels must not be touched; the other functions are not called then.
    virtual bool Refused() const = 0;

    // The bitmap in its current size. Its pixels are current where Show() was called for them since the last change.
    // Valid until the next call and until the source is released. Raises std::bad_alloc.
    virtual const DisplayBitmap& Bitmap() = 0;
    // Computes what has changed of a part of the bitmap; empty, or inside it. Raises std::bad_alloc.
    virtual void Show(const Rectangle& part) = 0;
    // The whole bitmap.
    const DisplayBitmap& Display();

    // The colours of a bitmap of 8 bits.
    virtual const ColorTable& Colors() const = 0;

    // (x, y) lies on the image. nullopt for an image whose pixels may not be accessed.
    virtual std::optional<ShownPixel> Shown(int32_t x, int32_t y) = 0;
};

inline const DisplayBitmap& PictureSource::Display() {
    const DisplayBitmap& bitmap = Bitmap();
    Show({0, 0, bitmap.width, bitmap.height});
    return bitmap;
}

}  // namespace orlix
