// Values along a line of an image, with the surface that was fitted to them, as a drawing.
#pragma once

#include "units.hpp"

#include <string>
#include <vector>

namespace tool {

// All of the same length, one for each pixel of the line; not a number outside the region.
struct Profile {
    std::string axis;                            // "x, µm"
    double step = 1;                             // from pixel to pixel, in its unit
    std::string level = "grey level", residual;  // names with units
    std::vector<double> values, surface, residuals;
};

// An SVG element that takes its colours from the page (custom properties --ink, --muted, --grid, --fill, --accent):
// above the values and the surface, below what is left. A line without values says so.
std::string ProfilePlot(const Profile& profile);

}  // namespace tool
