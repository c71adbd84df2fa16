// The bitmap that a picture of an image is drawn from.
#pragma once

#include <cstddef>
#include <cstdint>

#include "image/pixel_buffer.hpp"

namespace orlix {

// A device-independent bitmap. Notes:
//  (1) 8 bits per pixel: display levels, which the entries of the colour table turn into colours. 32 bits: blue, green,
//      red and 0, with the colour table already applied to each channel. 0 bits and no width: there is no image.
//  (2) Bottom-up, as the system's drawing functions expect, with rows padded with zeros to a multiple of 4 bytes.
struct DisplayBitmap {
    int32_t width = 0;
    int32_t height = 0;
    int32_t bitsPerPixel = 0;
    size_t rowStride = 0;
    PixelBuffer pixels;

    // y counts from the top.
    uint8_t* row(int32_t y) const { return pixels.data() + static_cast<size_t>(height - 1 - y) * rowStride; }
};

}  // namespace orlix
