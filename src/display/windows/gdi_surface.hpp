// Pictures on a device context.
#pragma once

#include <windows.h>

#include "display/picture_drawing.hpp"

namespace orlix {

// A device-independent bitmap's header with its colours.
struct BitmapHeader {
    BITMAPINFOHEADER header;
    RGBQUAD colors[256];

    BitmapHeader(const DisplayBitmap& bitmap, const ColorTable& table);
    const BITMAPINFO* info() const { return reinterpret_cast<const BITMAPINFO*>(this); }
};

// Where the device has a palette and the bitmap 8 bits: the bitmap's colours selected as a background palette, while
// this lives.
class PaletteScope {
public:
    PaletteScope(HDC context, const DisplayBitmap& bitmap, const ColorTable& colors);
    ~PaletteScope();
    PaletteScope(const PaletteScope&) = delete;
    PaletteScope& operator=(const PaletteScope&) = delete;

private:
    HDC context_;
    HPALETTE palette_ = nullptr;
    HPALETTE former_ = nullptr;
};

class GdiSurface final : public PictureSurface {
public:
    // Logical coordinates of the context must be its device coordinates. The stretch mode and the palette are as before
    // after each operation.
    explicit GdiSurface(HDC context) : context_(context) {}

    void Fill(const Rectangle& rectangle, OLE_COLOR color) override;
    bool Draw(const DisplayBitmap& bitmap, const ColorTable& colors, const Rectangle& source,
              const Rectangle& dest) override;

private:
    HDC context_;
};

// Video for Windows draws the source rectangle, whose y counts from the top. False when it does not, as for mirrored
// ones.
bool DrawWithDrawDib(HDC context, BitmapHeader header, const DisplayBitmap& bitmap, const Rectangle& source,
                     const Rectangle& dest);

}  // namespace orlix
