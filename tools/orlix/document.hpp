// The result of a command as a tree of values, and its forms as text: JSON, CSV and the report come from the same tree.
// The text is the same on every platform: each number has the shortest form that reads back as the same double.
#pragma once

#include <nlohmann/json.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace tool {

using Json = nlohmann::ordered_json;  // keeps members in the order in which they are added

std::string Number(double value);               // "0.1"; "nan", "inf" and "-inf" for these
std::string Rounded(double value, int digits);  // for people: `digits` decimals, "–" if not finite

// A number, or null for a value that is not finite, which JSON cannot express.
Json Finite(double value);

// JSON, indented by two, with arrays of numbers on one line. Ends with a line feed.
std::string Print(const Json& document);

// A field of a CSV line (RFC 4180), quoted if necessary. Null becomes empty, numbers are as in JSON, and a list of
// warnings (see warnings.hpp) becomes its messages, separated by "; ".
std::string CsvField(const Json& value);

// Lines of a CSV file, line ends included. The columns are members of the document.
std::string CsvHeader(const std::vector<std::string>& columns);
std::string CsvLine(const std::vector<std::string>& columns, const Json& document);

// The member at a path of names joined with dots, "phase.areaFraction"; null if there is none.
const Json& Member(const Json& document, std::string_view path);
double NumberAt(const Json& document, std::string_view path);  // NaN if there is no number

std::string Escaped(std::string_view text);  // for HTML

}  // namespace tool
