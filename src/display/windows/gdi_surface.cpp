#include "display/windows/gdi_surface.hpp"

#include <vfw.h>

#include <algorithm>
#include <memory>

namespace orlix {
namespace {

struct DeleteGdiObject {
    void operator()(HGDIOBJ object) const { DeleteObject(object); }
};
using Brush = std::unique_ptr<std::remove_pointer_t<HBRUSH>, DeleteGdiObject>;

// The bits per pixel of the bitmap selected into a context; 0 where there is none.
int BitsOfSelectedBitmap(HDC context) {
    BITMAP selected = {};
    const HGDIOBJ bitmap = GetCurrentObject(context, OBJ_BITMAP);
    if (!bitmap || !GetObjectW(bitmap, sizeof selected, &selected)) return 0;
    return selected.bmBitsPixel * selected.bmPlanes;
}

// Selects pixels when both bitmaps have 8 bits, averages otherwise. A context without a bitmap keeps its mode.
class StretchModeScope {
public:
    StretchModeScope(HDC context, const DisplayBitmap& bitmap) : context_(context) {
        const int bits = BitsOfSelectedBitmap(context);
        if (bits == 0) return;
        const bool choose = bits == 8 && bitmap.bitsPerPixel == 8;
        former_ = SetStretchBltMode(context, choose ? COLORONCOLOR : HALFTONE);
        if (!choose) SetBrushOrgEx(context, 0, 0, &formerOrigin_);
        halftone_ = !choose;
    }
    ~StretchModeScope() {
        if (former_) SetStretchBltMode(context_, former_);
        if (halftone_) SetBrushOrgEx(context_, formerOrigin_.x, formerOrigin_.y, nullptr);
    }
    StretchModeScope(const StretchModeScope&) = delete;
    StretchModeScope& operator=(const StretchModeScope&) = delete;

private:
    HDC context_;
    int former_ = 0;
    bool halftone_ = false;
    POINT formerOrigin_ = {};
};

struct CloseDrawDib {
    void operator()(HDRAWDIB handle) const { DrawDibClose(handle); }
};
using DrawDib = std::unique_ptr<std::remove_pointer_t<HDRAWDIB>, CloseDrawDib>;

struct Sides {
    explicit Sides(const Rectangle& rectangle)
        : x(static_cast<int>(rectangle.x)),
          y(static_cast<int>(rectangle.y)),
          width(static_cast<int>(rectangle.width)),
          height(static_cast<int>(rectangle.height)) {}
    int x, y, width, height;
};

}  // namespace

BitmapHeader::BitmapHeader(const DisplayBitmap& bitmap, const ColorTable& table) : header(), colors() {
    header.biSize = sizeof header;
    header.biWidth = bitmap.width;
    header.biHeight = bitmap.height;
    header.biPlanes = 1;
    header.biBitCount = static_cast<WORD>(bitmap.bitsPerPixel);
    header.biCompression = BI_RGB;
    // Without it metafiles store no pixels.
    header.biSizeImage = static_cast<DWORD>(bitmap.rowStride * static_cast<size_t>(bitmap.height));
    if (bitmap.bitsPerPixel != 8) return;
    header.biClrUsed = static_cast<DWORD>(table.size());
    std::transform(table.begin(), table.end(), colors, [](const PaletteEntry& entry) {
        return RGBQUAD{entry.blue, entry.green, entry.red, 0};
    });
}

PaletteScope::PaletteScope(HDC context, const DisplayBitmap& bitmap, const ColorTable& colors) : context_(context) {
    if (bitmap.bitsPerPixel != 8 || !(GetDeviceCaps(context, RASTERCAPS) & RC_PALETTE)) return;
    struct {
        LOGPALETTE head;
        PALETTEENTRY rest[255];  // the head holds the first entry
    } description = {};
    description.head.palVersion = 0x300;
    description.head.palNumEntries = static_cast<WORD>(colors.size());
    PALETTEENTRY* const entries = description.head.palPalEntry;
    std::transform(colors.begin(), colors.end(), entries, [](const PaletteEntry& entry) {
        return PALETTEENTRY{entry.red, entry.green, entry.blue, 0};
    });
    palette_ = CreatePalette(&description.head);
    if (!palette_) return;
    former_ = SelectPalette(context, palette_, TRUE);
    RealizePalette(context);
}

PaletteScope::~PaletteScope() {
    if (former_) {
        SelectPalette(context_, former_, TRUE);
        RealizePalette(context_);
    }
    if (palette_) DeleteObject(palette_);
}

void GdiSurface::Fill(const Rectangle& rectangle, OLE_COLOR color) {
    const RECT rect = ToRect(Normalized(rectangle));
    const Brush brush(CreateSolidBrush(color & 0x00ffffff));
    if (brush) FillRect(context_, &rect, brush.get());
}

bool GdiSurface::Draw(const DisplayBitmap& bitmap, const ColorTable& colors, const Rectangle& source,
                      const Rectangle& dest) {
    const BitmapHeader header(bitmap, colors);
    const PaletteScope palette(context_, bitmap, colors);
    const StretchModeScope mode(context_, bitmap);
    const Sides from(source);
    Sides to(dest);
    // For negative sizes the system draws from this pixel to the left, and upwards.
    if (to.width < 0) --to.x;
    if (to.height < 0) --to.y;
    const int drawn =
        StretchDIBits(context_, to.x, to.y, to.width, to.height, from.x, bitmap.height - from.y - from.height,
                      from.width, from.height, bitmap.pixels.data(), header.info(), DIB_RGB_COLORS, SRCCOPY);
    // GDI_ERROR is -1.
    return drawn >= from.height || DrawWithDrawDib(context_, header, bitmap, source, dest);
}

bool DrawWithDrawDib(HDC context, BitmapHeader header, const DisplayBitmap& bitmap, const Rectangle& source,
                     const Rectangle& dest) {
    if (dest.width < 0 || dest.height < 0) return false;  // DrawDib does not mirror
    const DrawDib draw(DrawDibOpen());
    if (!draw) return false;
    const Sides from(source), to(dest);
    return DrawDibDraw(draw.get(), context, to.x, to.y, to.width, to.height, &header.header, bitmap.pixels.data(),
                       from.x, from.y, from.width, from.height, 0) != FALSE;
}

}  // namespace orlix
