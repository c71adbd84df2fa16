// A histogram as a drawing.
#pragma once

#include "document.hpp"

#include <string>

namespace tool {

// An SVG element that takes its colours from the page (custom properties --ink, --muted, --grid, --fill, --phase,
// --accent). Shows the counts on a linear scale, faintly also on a logarithmic one, the side of the phase, and every
// threshold of the document with its label; labels never overlap each other or another threshold's line. A single peak
// that would flatten everything else is cut off and says so.
std::string HistogramPlot(const Json& measurement);

}  // namespace tool
