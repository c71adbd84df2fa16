#include "scale_bar.hpp"

#include "document.hpp"
#include "glyphs.hpp"
#include "units.hpp"

#include <algorithm>
#include <array>
#include <cmath>

namespace tool {

double ScaleBarLength(int32_t width, double micronsPerPixel) {
    const double most = width * micronsPerPixel / 4;
    if (!(most > 0) || !std::isfinite(most)) return 0;
    double power = 1;
    while (power > most) power /= 10;
    while (power * 10 <= most) power *= 10;
    return power * (5 * power <= most ? 5 : 2 * power <= most ? 2 : 1);
}

std::string ScaleBarText(double microns) {
    const Unit unit = LengthUnit(microns);
    return Number(std::round(microns * unit.scale * 1e6) / 1e6) + " " + unit.name;
}

Picture WithScaleBar(Picture picture, double micronsPerPixel) {
    constexpr std::array<uint8_t, 3> kPaper = {0, 0, 0}, kInk = {255, 255, 255};
    const double length = ScaleBarLength(picture.width, micronsPerPixel);
    if (!(length > 0)) return picture;
    const auto bar = static_cast<int32_t>(std::lround(length / micronsPerPixel));
    const std::string text = ScaleBarText(length);
    const int32_t dot = std::max(1, (picture.width + 200) / 400);  // size of a glyph's pixel
    const int32_t textWidth = LetteringWidth(text, dot);
    const int32_t gap = 3 * dot, margin = 4 * dot;
    const int32_t width = std::max(bar, textWidth) + 2 * gap, height = kGlyphHeight * dot + 2 * dot + 3 * gap;
    const int32_t left = picture.width - margin - width, top = picture.height - margin - height;
    if (bar < 2 || left < margin || top < margin) return picture;

    FillRectangle(picture, left, top, width, height, kPaper);
    FillRectangle(picture, left + (width - bar) / 2, top + height - gap - 2 * dot, bar, 2 * dot, kInk);
    DrawLettering(picture, left + (width - textWidth) / 2, top + gap, dot, text, kInk);
    return picture;
}

}  // namespace tool
