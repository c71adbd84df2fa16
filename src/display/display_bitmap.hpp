// What a picture of an image is drawn from.
#pragma once

#include <cstddef>
#include <cstdint>

#include "image/pixel_buffer.hpp"

namespace orlix {

// Display levels. Notes:
//  (1) One plane: the colour of a level is its entry of the colour table. Three planes: red, green and blue, each through its
//      own component of the table. No plane and no width: there is no image.
//  (2) Rows are top-down and padded with zeros to a multiple of 4 bytes, as a device-independent bitmap has them.
struct DisplayBitmap {
    int32_t width = 0;
    int32_t height = 0;
    int32_t planes = 0;
    size_t rowStride = 0;
    PixelBuffer levels;

    uint8_t* row(int32_t plane, int32_t y) const {
        return levels.data() +
               (static_cast<size_t>(plane) * static_cast<size_t>(height) + static_cast<size_t>(y)) * rowStride;
    }
};

}  // namespace orlix
