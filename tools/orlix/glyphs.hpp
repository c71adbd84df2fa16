// Short texts in pictures, in a small fixed font: digits and the letters of units.
#pragma once

#include "pictures.hpp"

#include <array>
#include <string_view>

namespace tool {

constexpr int32_t kGlyphWidth = 5, kGlyphHeight = 8;  // the last row is below the line

// Width of a text, in pixels. `dot` is the size of a pixel of the font.
int32_t LetteringWidth(std::string_view text, int32_t dot);

// Draws the digits, and the letters m, n, µ, the point and the blank; other characters are left out. `left` and `top`
// are those of the first glyph. What lies outside the picture is clipped. Grey pictures take the first of the samples.
void DrawLettering(Picture& picture, int32_t left, int32_t top, int32_t dot, std::string_view text,
                   const std::array<uint8_t, 3>& colour);

// Fills a rectangle, clipped to the picture.
void FillRectangle(Picture& picture, int32_t left, int32_t top, int32_t width, int32_t height,
                   const std::array<uint8_t, 3>& colour);

}  // namespace tool
