// JPEG files built from the format's definition, slowly and without a codec: blocks of 8 x 8 pixels, each of one level.
#pragma once

#include <functional>

#include "files/hand_made.hpp"

namespace orlix::test {

struct JpegPicture {
    uint32_t width = 8, height = 8, components = 1;
    uint32_t frame = 0xC0;  // marker: baseline; 0xC2 progressive
    uint32_t precision = 8;
    Bytes segments = {};  // between the start and the tables
    // Of a component at a block: grey, or Y, Cb and Cr.
    std::function<int(uint32_t component, uint32_t column, uint32_t row)> level = [](uint32_t, uint32_t, uint32_t) {
        return 128;
    };
};
Bytes MakeJpeg(const JpegPicture& picture);

// A segment with its length; for segments of programs the name belongs to the data.
Bytes JpegSegment(uint32_t marker, const Bytes& data);
// Density of the JFIF header: unit 0 none, 1 inch, 2 centimetre.
Bytes JfifSegment(uint32_t unit, uint32_t x, uint32_t y);
// Exif data: a directory in the form of TIFF files.
Bytes ExifSegment(const Bytes& directory);

}  // namespace orlix::test
