// The frame of a report and what its parts have in common. Pages need nothing beside themselves, follow the reader's
// light or dark setting and print on white.
#pragma once

#include "document.hpp"

#include <string>

namespace tool {

// The body is HTML, the title plain text.
std::string Page(const std::string& title, const std::string& body, const std::string& version);

std::string Href(std::string_view file);  // of a link to a file beside the page, in quotes: percent-encoded

std::string Card(const std::string& value, const std::string& caption, bool main = false);
std::string Row(const std::string& name, const std::string& value);  // of a table of two columns

// Numbers for people.
std::string Significant(double value);           // five significant digits or so, never more than whole numbers need
std::string Plain(double value);                 // whole numbers without a point
std::string Grouped(const std::string& digits);  // 1 234 567
std::string Percent(double fraction);
std::string SquareMicrons(double area);

// What the document of an image says in micronsPerPixel, region and bands.
std::string Calibration(const Json& image);
std::string RegionText(const Json& image);
std::string PixelsText(const Json& image);                       // "1 234 567", and how many were left out
std::string BandsText(const Json& image, const char* measured);  // "3, measured: 1"

}  // namespace tool
