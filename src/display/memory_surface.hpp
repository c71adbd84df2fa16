// Draws pictures into the client's memory.
#pragma once

#include "display/picture_drawing.hpp"
#include "display/raster_surface.hpp"

namespace orlix {

class MemorySurface final : public PictureSurface {
public:
    MemorySurface(const RasterSurface& raster, Scaling scaling) : raster_(raster), scaling_(scaling) {}

    void Fill(const Rectangle& rectangle, OLE_COLOR color) override;
    bool Draw(const DisplayBitmap& bitmap, const ColorTable& colors, const Rectangle& source,
              const Rectangle& dest) override;

private:
    RasterSurface raster_;
    Scaling scaling_;
};

}  // namespace orlix
