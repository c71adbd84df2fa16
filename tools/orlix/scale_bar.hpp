// A bar of known length in the lower right corner of a picture.
#pragma once

#include "pictures.hpp"

#include <string>

namespace tool {

// 1, 2 or 5 times a power of ten, in microns: the greatest that is at most a quarter as long as the picture is wide.
double ScaleBarLength(int32_t width, double micronsPerPixel);

// "50 µm", "200 nm" or "1 mm".
std::string ScaleBarText(double microns);

// White bar and text on black, so that they are read on light and on dark pictures. Without a pixel size (not a number)
// and where the picture is too small there is none.
Picture WithScaleBar(Picture picture, double micronsPerPixel);

}  // namespace tool
