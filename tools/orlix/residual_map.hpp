// Residuals of a fitted surface in colour: blue below the surface, red above it, white on it.
#pragma once

#include "document.hpp"
#include "pictures.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace tool {

// The end of the symmetric colour scale, in grey levels, above 0. It is a round number of units, of which a grey level
// has `unit`. At most one residual in 200 exceeds it, so that a few deep pits do not turn everything else white.
double ResidualLimit(const std::vector<float>& residual, double unit);

// Residuals are in grey levels, row by row from the top. Beyond the limit they get the end colours; NaN, outside the
// region, becomes grey. Residuals are averaged to reduce sides of more than kLargestInReport pixels.
Picture ResidualPicture(const std::vector<float>& residual, int32_t width, int32_t height, double limit);

// An SVG element: the picture (a data URI) with axes, the lines of the two profiles (positions in pixels) and the
// colour scale. Axes are in a unit of length if the document has the pixel size, otherwise in pixels.
std::string ResidualMap(const Json& document, const std::string& pictureUri, double limit, int32_t row, int32_t column);

}  // namespace tool
