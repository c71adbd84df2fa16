#include "display/memory_surface.hpp"

#include <algorithm>

namespace orlix {

void MemorySurface::Fill(const Rectangle& rectangle, OLE_COLOR color) { raster_.Fill(rectangle, PixelOfColor(color)); }

bool MemorySurface::Draw(const DisplayBitmap& bitmap, const ColorTable& colors, const Rectangle& source,
                         const Rectangle& dest) {
    uint32_t pixels[256];
    std::transform(colors.begin(), colors.end(), pixels, [](const PaletteEntry& color) {
        return uint32_t{color.red} << 16 | uint32_t{color.green} << 8 | color.blue;
    });
    using Layout = RasterPicture::Layout;
    const RasterPicture picture{bitmap.bitsPerPixel == 32 ? Layout::Pixels : Layout::Levels,
                                bitmap.row(0),
                                -static_cast<ptrdiff_t>(bitmap.rowStride),
                                bitmap.width,
                                bitmap.height,
                                pixels};
    raster_.Draw(picture, source, dest, scaling_);
    return true;
}

}  // namespace orlix
