// What a surface has left of an image, as colours: blue below the surface, red above it, white on it.
#pragma once

#include "document.hpp"
#include "pictures.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace tool {

// The end of the colour scale, which is symmetric: a round number of units that at most one residual in 200 exceeds, so
// that a few deep pits do not turn all the rest white. `unit` units make a grey level. The result is in grey levels and
// above 0.
double ResidualLimit(const std::vector<float>& residual, double unit);

// Residuals in grey levels, row by row from the top. Beyond the limit they have the end colours; what is not a number
// (outside the region) is grey. A side of more than kLargestInReport pixels is reduced by averaging residuals.
Picture ResidualPicture(const std::vector<float>& residual, int32_t width, int32_t height, double limit);

// An SVG element: the picture (a data URI) with axes in pixels or, where the document knows their size, in a unit of
// length, the two profiles' lines and the colour scale. Positions of the lines in pixels.
std::string ResidualMap(const Json& document, const std::string& pictureUri, double limit, int32_t row, int32_t column);

}  // namespace tool
