// Outlines from files.
#pragma once

#include <orlix/orlix.h>

#include <string>
#include <string_view>
#include <vector>

namespace tool {

struct NamedOutline {
    std::string name;  // as the file gives it, else its number from 1 on
    std::vector<SVertice> vertices;
};

// CSV: x and y a line, separated by a comma, semicolon, tab or blank; an empty line ends an outline; a first line that
// does not begin with a number is a header; further columns are left out. JSON: [[x, y], ...], {"name": ...,
// "vertices": [[x, y], ...]}, or an array of these. std::runtime_error, with the number of the line in CSV, for
// anything else and for a text without vertices.
std::vector<NamedOutline> ParseOutlines(std::string_view text);

}  // namespace tool
