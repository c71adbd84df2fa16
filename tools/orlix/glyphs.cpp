#include "glyphs.hpp"

#include <algorithm>

namespace tool {

namespace {

// Rows from the top, # is ink.
struct Glyph {
    const char* character;  // UTF-8
    std::array<const char*, kGlyphHeight> rows;
};
constexpr Glyph kGlyphs[] = {
    {"0", {" ### ", "#   #", "#  ##", "# # #", "##  #", "#   #", " ### ", "     "}},
    {"1", {"  #  ", " ##  ", "  #  ", "  #  ", "  #  ", "  #  ", " ### ", "     "}},
    {"2", {" ### ", "#   #", "    #", "   # ", "  #  ", " #   ", "#####", "     "}},
    {"3", {"#####", "   # ", "  #  ", "   # ", "    #", "#   #", " ### ", "     "}},
    {"4", {"   # ", "  ## ", " # # ", "#  # ", "#####", "   # ", "   # ", "     "}},
    {"5", {"#####", "#    ", "#### ", "    #", "    #", "#   #", " ### ", "     "}},
    {"6", {"  ## ", " #   ", "#    ", "#### ", "#   #", "#   #", " ### ", "     "}},
    {"7", {"#####", "    #", "   # ", "  #  ", " #   ", " #   ", " #   ", "     "}},
    {"8", {" ### ", "#   #", "#   #", " ### ", "#   #", "#   #", " ### ", "     "}},
    {"9", {" ### ", "#   #", "#   #", " ####", "    #", "   # ", " ##  ", "     "}},
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

}  // namespace

void FillRectangle(Picture& picture, int32_t left, int32_t top, int32_t width, int32_t height,
                   const std::array<uint8_t, 3>& colour) {
    const auto channels = static_cast<size_t>(picture.channels), columns = static_cast<size_t>(picture.width);
    const int32_t right = std::min(left + width, picture.width), bottom = std::min(top + height, picture.height);
    for (int32_t y = std::max(top, 0); y < bottom; ++y)
        for (int32_t x = std::max(left, 0); x < right; ++x)
            std::copy_n(
                colour.begin(), channels,
                picture.samples.begin() + static_cast<std::ptrdiff_t>(
                                              (static_cast<size_t>(y) * columns + static_cast<size_t>(x)) * channels));
}

int32_t LetteringWidth(std::string_view text, int32_t dot) {
    const auto glyphs = static_cast<int32_t>(GlyphsOf(text).size());
    return glyphs == 0 ? 0 : glyphs * (kGlyphWidth + 1) * dot - dot;
}

void DrawLettering(Picture& picture, int32_t left, int32_t top, int32_t dot, std::string_view text,
                   const std::array<uint8_t, 3>& colour) {
    for (const Glyph* glyph : GlyphsOf(text)) {
        for (int32_t row = 0; row < kGlyphHeight; ++row)
            for (int32_t column = 0; column < kGlyphWidth; ++column)
                if (glyph->rows[static_cast<size_t>(row)][column] == '#')
                    FillRectangle(picture, left + column * dot, top + row * dot, dot, dot, colour);
        left += (kGlyphWidth + 1) * dot;
    }
}

}  // namespace tool
