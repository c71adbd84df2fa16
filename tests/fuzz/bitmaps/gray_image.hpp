// Grey images for operations that take one.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "fuzz/bitmaps/picture.hpp"
#include "fuzz/bitmaps/world.hpp"

namespace orlix::fuzz {

// An image of any type, of whole grey levels, so that sums are exact.
struct GrayImage {
    ComPtr<IImageVPA> image;
    std::vector<double> pixels;
    int32_t width;
    double At(int32_t x, int32_t y) const { return pixels[static_cast<size_t>(y * width + x)]; }
};

template <class Pixel>
void FillWith(World& world, GrayImage& gray, int levels) {
    for (const std::span<Pixel> row : Rows<Pixel>(gray.image))
        for (Pixel& pixel : row) {
            pixel = static_cast<Pixel>(world.choices.Byte() % levels);
            gray.pixels.push_back(pixel);
        }
}

inline GrayImage AnyGrayImage(World& world, const Picture& size) {
    const auto image = CreateObject<IImageVPAExPlus>("Orlix.Image");
    const LONG type = world.Among({DT_BYTE, DT_WORD, DT_DWORD, DT_Float});
    Check(image->Create(size.width(), size.height(), 1, type, 1), image);
    GrayImage gray{Cast<IImageVPA>(image), {}, size.width()};
    const int levels = 1 + world.choices.Byte();
    if (type == DT_BYTE) FillWith<uint8_t>(world, gray, levels);
    if (type == DT_WORD) FillWith<uint16_t>(world, gray, levels);
    if (type == DT_DWORD) FillWith<uint32_t>(world, gray, levels);
    if (type == DT_Float) FillWith<float>(world, gray, levels);
    return gray;
}

}  // namespace orlix::fuzz
