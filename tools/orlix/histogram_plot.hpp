// A histogram as a drawing.
#pragma once

#include "document.hpp"

#include <string>

namespace tool {

// An SVG element that takes its colours from the page (custom properties --ink, --muted, --grid, --fill, --phase,
// --accent). It shows the counts on a linear scale and faintly on a logarithmic one, the side of the phase, and every
// threshold of the document with its label. Labels never overlap each other or the line of another threshold. A single
// peak that would flatten everything else is cut off, with a note.
std::string HistogramPlot(const Json& measurement);

}  // namespace tool
