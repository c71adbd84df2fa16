#include "vertex_list.hpp"

#include "document.hpp"

#include <charconv>
#include <optional>
#include <stdexcept>
#include <utility>

namespace tool {

namespace {

constexpr std::string_view kBlanks = " \t\r";
constexpr std::string_view kSeparators = " \t\r,;";

// Removes a number from the beginning of the line.
std::optional<double> TakeNumber(std::string_view& line) {
    double value = 0;
    const char* const end = line.data() + line.size();
    const auto [next, error] = std::from_chars(line.data(), end, value);
    if (error != std::errc() || (next != end && kSeparators.find(*next) == std::string_view::npos)) return std::nullopt;
    line.remove_prefix(static_cast<size_t>(next - line.data()));
    return value;
}

std::string_view WithoutBlanks(std::string_view line) {
    const size_t first = line.find_first_not_of(kBlanks);
    return first == std::string_view::npos ? std::string_view() : line.substr(first);
}

std::optional<SVertice> VertexOf(std::string_view line) {
    line = WithoutBlanks(line);
    const std::optional<double> x = TakeNumber(line);
    if (!x) return std::nullopt;
    line = WithoutBlanks(line);
    if (!line.empty() && (line[0] == ',' || line[0] == ';')) line.remove_prefix(1);
    line = WithoutBlanks(line);
    const std::optional<double> y = TakeNumber(line);
    if (!y) return std::nullopt;
    return SVertice{*x, *y};
}

std::vector<NamedOutline> ParseCsv(std::string_view text) {
    std::vector<NamedOutline> outlines;
    bool open = false;
    for (int number = 1; !text.empty(); ++number) {
        const size_t end = text.find('\n');
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (WithoutBlanks(line).empty()) {
            open = false;
            continue;
        }
        const std::optional<SVertice> vertex = VertexOf(line);
        if (!vertex) {
            if (number == 1) continue;
            throw std::runtime_error("line " + std::to_string(number) + " does not begin with x and y");
        }
        if (!open) outlines.push_back({std::to_string(outlines.size() + 1), {}});
        open = true;
        outlines.back().vertices.push_back(*vertex);
    }
    return outlines;
}

bool IsVertex(const Json& json) {
    return json.is_array() && json.size() == 2 && json[0].is_number() && json[1].is_number();
}

void AddJson(const Json& json, std::vector<NamedOutline>& outlines) {
    const bool named = json.is_object();
    if (named && !json.contains("vertices")) throw std::runtime_error("an object without the member vertices");
    const Json& list = named ? json["vertices"] : json;
    if (!list.is_array()) throw std::runtime_error("neither an array nor an object");
    if (!named && !list.empty() && !IsVertex(list[0])) {
        for (const Json& outline : list) AddJson(outline, outlines);
        return;
    }
    NamedOutline outline{std::to_string(outlines.size() + 1), {}};
    if (named && json.contains("name") && json["name"].is_string()) outline.name = json["name"];
    for (const Json& vertex : list) {
        if (!IsVertex(vertex)) throw std::runtime_error("a vertex that is not a pair of numbers");
        outline.vertices.push_back({vertex[0], vertex[1]});
    }
    outlines.push_back(std::move(outline));
}

}  // namespace

std::vector<NamedOutline> ParseOutlines(std::string_view text) {
    std::vector<NamedOutline> outlines;
    const size_t first = text.find_first_not_of(" \t\r\n");
    if (first != std::string_view::npos && (text[first] == '[' || text[first] == '{')) {
        const Json json = Json::parse(text, nullptr, false);
        if (json.is_discarded()) throw std::runtime_error("not JSON although it begins with a bracket");
        AddJson(json, outlines);
    } else {
        outlines = ParseCsv(text);
    }
    std::erase_if(outlines, [](const NamedOutline& outline) { return outline.vertices.empty(); });
    if (outlines.empty()) throw std::runtime_error("no vertices");
    return outlines;
}

}  // namespace tool
