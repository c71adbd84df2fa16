// A drawing of the values along a line of an image and the surface that was fitted to them.
#pragma once

#include "units.hpp"

#include <string>
#include <vector>

namespace tool {

// The vectors have a value for each pixel of the line, NaN outside the region.
struct Profile {
    std::string axis;                            // "x, µm"
    double step = 1;                             // from pixel to pixel, in its unit
    std::string level = "grey level", residual;  // names with units
    std::vector<double> values, surface, residuals;
};

// An SVG element that takes its colours from the page (custom properties --ink, --muted, --grid, --fill, --accent),
// with values and surface above and residuals below. For a line without values, a sentence that says so.
std::string ProfilePlot(const Profile& profile);

}  // namespace tool
