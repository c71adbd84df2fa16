// The frame of reports and their common parts. Pages are self-contained, follow the reader's light or dark setting and
// print on white.
#pragma once

#include "document.hpp"

#include <string>

namespace tool {

// The body is HTML, the title plain text.
std::string Page(const std::string& title, const std::string& body, const std::string& version);

std::string Href(std::string_view file);  // the attribute of a link to a file in the page's folder, percent-encoded

std::string Card(const std::string& value, const std::string& caption, bool main = false);
std::string Row(const std::string& name, const std::string& value);  // of a table of two columns

// Numbers for people.
std::string Significant(double value);           // about five significant digits; no decimals for numbers that large
std::string Plain(double value);                 // whole numbers without a point
std::string Grouped(const std::string& digits);  // 1 234 567
std::string Percent(double fraction);
std::string SquareMicrons(double area);

// The members micronsPerPixel, region and bands of an image's document, as text.
std::string Calibration(const Json& image);
std::string RegionText(const Json& image);
std::string PixelsText(const Json& image);                       // "1 234 567", and the number left out
std::string BandsText(const Json& image, const char* measured);  // "3, measured: 1"

}  // namespace tool
