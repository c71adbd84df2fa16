// The size distribution of particles as a drawing (SVG) for reports.
#pragma once

#include "document.hpp"

#include <string>
#include <vector>

namespace tool {

// The share of the particles, and of their area, in bins of the diameter, and both as cumulative curves. The axis is
// logarithmic if the largest particle is more than 30 times as wide as the smallest. `particles`: their documents;
// `unit`: of the diameters. Empty without particles.
std::string SizePlot(const std::vector<const Json*>& particles, const std::string& unit);

}  // namespace tool
