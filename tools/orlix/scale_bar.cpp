#include "scale_bar.hpp"

#include "document.hpp"
#include "units.hpp"

#include <algorithm>
#include <array>
#include <cmath>

namespace tool {

namespace {

constexpr int32_t kGlyphWidth = 5, kGlyphHeight = 8;  // the last row is below the line

// Rows from the top, # is white.
struct Glyph {
    const char* character;  // UTF-8
    std::array<const char*, kGlyphHeight> rows;
};
constexpr Glyph kGlyphs[] = {
    {"0", {" ### ", "#   #", "#  ##", "# # #", "##  #", "#   #", " ### ", "     "}},
    {"1", {"  #  ", " ##  ", "  #  ", "  #  ", "  #  ", "  #  ", " ### ", "     "}},
    {"2", {" ### ", "#   #", "    #", "   # ", "  #  ", " #   ", "#####", "     "}},
    {"5", {"#####", "#    ", "#### ", "    #", "    #", "#   #", " ### ", "     "}},
    {"m", {"     ", "     ", "## # ", "# # #", "# # #", "# # #", "# # #", "     "}},
    {"n", {"     ", "     ", "# ## ", "##  #", "#   #", "#   #", "#   #", "     "}},
    {"µ", {"     ", "     ", "#   #", "#   #", "#   #", "##  #", "# ## ", "#    "}},
    {".", {"     ", "     ", "     ", "     ", "     ", " ##  ", " ##  ", "     "}},
    {" ", {"     ", "     ", "     ", "     ", "     ", "     ", "     ", "     "}},
};

std::vector<const Glyph*> GlyphsOf(std::string_view text) {
    std::vector<const Glyph*> glyphs;
    while (!text.empty()) {
        const Glyph* found = nullptr;
        for (const Glyph& glyph : kGlyphs)
            if (text.starts_with(glyph.character)) found = &glyph;
        text.remove_prefix(found ? std::string_view(found->character).size() : 1);
        if (found) glyphs.push_back(found);
    }
    return glyphs;
}

void Fill(Picture& picture, int32_t left, int32_t top, int32_t width, int32_t height, uint8_t level) {
    const auto channels = static_cast<size_t>(picture.channels), columns = static_cast<size_t>(picture.width);
    for (int32_t y = top; y < top + height; ++y) {
        const size_t start = (static_cast<size_t>(y) * columns + static_cast<size_t>(left)) * channels;
        std::fill_n(picture.samples.begin() + static_cast<std::ptrdiff_t>(start), static_cast<size_t>(width) * channels,
                    level);
    }
}

}  // namespace

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
    constexpr uint8_t kPaper = 0, kInk = 255;
    const double length = ScaleBarLength(picture.width, micronsPerPixel);
    if (!(length > 0)) return picture;
    const auto bar = static_cast<int32_t>(std::lround(length / micronsPerPixel));
    const std::vector<const Glyph*> text = GlyphsOf(ScaleBarText(length));
    const int32_t dot = std::max(1, (picture.width + 200) / 400);  // size of a glyph's pixel
    const int32_t textWidth = static_cast<int32_t>(text.size()) * (kGlyphWidth + 1) * dot - dot;
    const int32_t gap = 3 * dot, margin = 4 * dot;
    const int32_t width = std::max(bar, textWidth) + 2 * gap, height = kGlyphHeight * dot + 2 * dot + 3 * gap;
    const int32_t left = picture.width - margin - width, top = picture.height - margin - height;
    if (bar < 2 || left < margin || top < margin) return picture;

    Fill(picture, left, top, width, height, kPaper);
    Fill(picture, left + (width - bar) / 2, top + height - gap - 2 * dot, bar, 2 * dot, kInk);
    int32_t x = left + (width - textWidth) / 2;
    for (const Glyph* glyph : text) {
        for (int32_t row = 0; row < kGlyphHeight; ++row)
            for (int32_t column = 0; column < kGlyphWidth; ++column)
                if (glyph->rows[static_cast<size_t>(row)][column] == '#')
                    Fill(picture, x + column * dot, top + gap + row * dot, dot, dot, kInk);
        x += (kGlyphWidth + 1) * dot;
    }
    return picture;
}

}  // namespace tool
