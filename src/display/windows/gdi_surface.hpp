// Draws pictures on a device context.
#pragma once

#include <windows.h>

#include "display/picture_drawing.hpp"

namespace orlix {

// The header of a device-independent bitmap with its colours.
struct BitmapHeader {
    BITMAPINFOHEADER header;
    RGBQUAD colors[256];

    BitmapHeader(const DisplayBitmap& bitmap, const ColorTable& table);
    const BITMAPINFO* info() const { return reinterpret_cast<const BITMAPINFO*>(this); }
};

// Selects the bitmap's colours as a background palette for the lifetime of this object, if the device has a palette and
// the bitmap 8 bits.
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
    // Logical coordinates of the context must equal its device coordinates. Each operation restores the stretch mode
    // and the palette.
    explicit GdiSurface(HDC context) : context_(context) {}

    void Fill(const Rectangle& rectangle, OLE_COLOR color) override;
    bool Draw(const DisplayBitmap& bitmap, const ColorTable& colors, const Rectangle& source,
              const Rectangle& dest) override;

private:
    HDC context_;
};

// Draws the source rectangle, whose y counts from the top, with Video for Windows. Returns false when that fails, as
// for mirrored rectangles.
bool DrawWithDrawDib(HDC context, BitmapHeader header, const DisplayBitmap& bitmap, const Rectangle& source,
                     const Rectangle& dest);

}  // namespace orlix
