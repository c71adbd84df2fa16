// What a command has found out, as a tree of values, and its forms as text. JSON, CSV and the report are made from the
// same tree. The text is the same on every platform: numbers are the shortest that read back as the same double.
#pragma once

#include <nlohmann/json.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace tool {

using Json = nlohmann::ordered_json;  // members stay in the order in which they were put

std::string Number(double value);               // "0.1"; "nan", "inf" and "-inf" for these
std::string Rounded(double value, int digits);  // for people: so many digits after the point, "–" when not finite

// A number, or null when the value is not finite: JSON has no others.
Json Finite(double value);

// Indented by two; an array of numbers stays on one line. Ends with a line feed.
std::string Print(const Json& document);

// A field of a CSV line (RFC 4180): in quotes where it needs them; null is empty, numbers as in JSON; of a list of
// warnings (see warnings.hpp) the messages with "; " between them.
std::string CsvField(const Json& value);

// Lines of a CSV file, with their ends: the columns are members of the document.
std::string CsvHeader(const std::vector<std::string>& columns);
std::string CsvLine(const std::vector<std::string>& columns, const Json& document);

// A member reached by names joined with dots, "phase.areaFraction"; null when there is none.
const Json& Member(const Json& document, std::string_view path);
double NumberAt(const Json& document, std::string_view path);  // NaN when there is none

std::string Escaped(std::string_view text);  // for HTML

}  // namespace tool
