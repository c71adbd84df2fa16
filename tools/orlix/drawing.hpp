// Parts of drawings in SVG.
#pragma once

#include <string>

namespace tool {

// 1, 2 or 5 times a power of ten, so that about `wanted` steps cover the range.
double TickStep(double range, double wanted);

std::string Coordinate(double value);  // in units of the drawing
std::string Line(double x1, double y1, double x2, double y2, const std::string& style);
std::string Label(double x, double y, const std::string& style, const std::string& text);  // the text is escaped

// The number of decimals that tells ticks of this step apart.
int TickDigits(double step);

}  // namespace tool
