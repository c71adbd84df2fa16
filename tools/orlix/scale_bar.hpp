// A bar of known length in the lower right corner of a picture.
#pragma once

#include "pictures.hpp"

#include <string>

namespace tool {

// The largest length, in microns, of 1, 2 or 5 times a power of ten that covers at most a quarter of the picture's
// width.
double ScaleBarLength(int32_t width, double micronsPerPixel);

// "50 µm", "200 nm" or "1 mm".
std::string ScaleBarText(double microns);

// The picture with a white bar and text on black, legible on light and dark pictures. Without a pixel size (NaN or not
// above 0) and if the picture is too small, the picture is returned unchanged.
Picture WithScaleBar(Picture picture, double micronsPerPixel);

}  // namespace tool
