#include "display/picture_drawing.hpp"

namespace orlix {

bool PictureDrawing::DrawOn(PictureSurface& surface) const {
    if (!view) {
        surface.Fill(dest, surround);
        return false;
    }
    for (const Rectangle& band : SurroundBands(dest, view->dest))
        if (!band.empty()) surface.Fill(band, surround);
    return surface.Draw(bitmap, colors, view->source, view->dest);
}

}  // namespace orlix
