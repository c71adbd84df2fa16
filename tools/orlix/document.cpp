#include "document.hpp"

#include "console.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace tool {

std::string Number(double value) {
    char buffer[40];
    return {buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr};
}

std::string Rounded(double value, int digits) {
    if (!std::isfinite(value)) return "–";
    char buffer[400];  // the largest double has 309 digits before the point
    std::string text(buffer,
                     std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, digits).ptr);
    if (text.find_first_not_of("-0.") == std::string::npos && text.front() == '-') text.erase(0, 1);
    return text;
}

Json Finite(double value) { return std::isfinite(value) ? Json(value) : Json(nullptr); }

namespace {

// File names need not be UTF-8.
std::string Dumped(const Json& value) { return value.dump(-1, ' ', false, Json::error_handler_t::replace); }

void PrintValue(const Json& value, size_t depth, std::string& out) {
    if (value.is_number_float()) {
        const double number = value.get<double>();
        out += std::isfinite(number) ? Number(number) : "null";
        return;
    }
    if (!value.is_structured() || value.empty()) {
        out += Dumped(value);
        return;
    }
    const bool oneLine =
        value.is_array() && std::all_of(value.begin(), value.end(), [](const Json& item) { return item.is_number(); });
    const auto newLine = [&](size_t level) {
        if (oneLine) return;
        out += '\n';
        out.append(2 * level, ' ');
    };
    out += value.is_array() ? '[' : '{';
    bool first = true;
    for (const auto& [name, item] : value.items()) {
        if (!first) out += oneLine ? ", " : ",";
        first = false;
        newLine(depth + 1);
        if (value.is_object()) out += Dumped(name) + ": ";
        PrintValue(item, depth + 1, out);
    }
    newLine(depth);
    out += value.is_array() ? ']' : '}';
}

}  // namespace

std::string Print(const Json& document) {
    std::string out;
    PrintValue(document, 0, out);
    return out + '\n';
}

std::string CsvField(const Json& value) {
    if (value.is_null()) return {};
    if (value.is_number_float())
        return std::isfinite(value.get<double>()) ? Number(value.get<double>()) : std::string();
    if (value.is_array()) {
        std::string joined;
        for (const Json& item : value)
            joined += (joined.empty() ? "" : "; ") + Member(item, "message").get<std::string>();
        return CsvField(joined);
    }
    if (!value.is_string()) return value.dump();
    const std::string text = ValidUtf8(value.get_ref<const std::string&>());
    if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
    std::string quoted = "\"";
    for (const char c : text) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    return quoted + '"';
}

std::string CsvHeader(const std::vector<std::string>& columns) {
    std::string line;
    for (const std::string& column : columns) line += (line.empty() ? "" : ",") + column;
    return line + "\r\n";
}

std::string CsvLine(const std::vector<std::string>& columns, const Json& document) {
    std::string line;
    for (size_t i = 0; i < columns.size(); ++i) line += (i ? "," : "") + CsvField(Member(document, columns[i]));
    return line + "\r\n";
}

const Json& Member(const Json& document, std::string_view path) {
    static const Json none;
    const Json* at = &document;
    while (!path.empty()) {
        const size_t dot = std::min(path.find('.'), path.size());
        if (!at->is_object()) return none;
        const auto found = at->find(std::string(path.substr(0, dot)));
        if (found == at->end()) return none;
        at = &*found;
        path.remove_prefix(std::min(dot + 1, path.size()));
    }
    return *at;
}

double NumberAt(const Json& document, std::string_view path) {
    const Json& value = Member(document, path);
    return value.is_number() ? value.get<double>() : std::numeric_limits<double>::quiet_NaN();
}

std::string Escaped(std::string_view text) {
    std::string out;
    for (const char c : ValidUtf8(text)) {
        if (c == '&')
            out += "&amp;";
        else if (c == '<')
            out += "&lt;";
        else if (c == '>')
            out += "&gt;";
        else if (c == '"')
            out += "&quot;";
        else
            out += c;
    }
    return out;
}

}  // namespace tool
