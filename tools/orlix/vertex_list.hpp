// Outlines in files.
#pragma once

#include <orlix/orlix.h>

#include <string>
#include <string_view>
#include <vector>

namespace tool {

struct NamedOutline {
    std::string name;  // from the file, or else its number, from 1
    std::vector<SVertice> vertices;
};

// CSV has x and y in each line, separated by a comma, semicolon, tab or blank. An empty line ends an outline. A first
// line that does not begin with a number is a header. Further columns are ignored. JSON is [[x, y], ...], {"name": ...,
// "vertices": [[x, y], ...]}, or an array of these. Throws std::runtime_error, with the line's number for CSV, for
// anything else and for a text without vertices.
std::vector<NamedOutline> ParseOutlines(std::string_view text);

}  // namespace tool
