#include "warnings.hpp"

#include "subject.hpp"

namespace tool {

namespace {

std::string MessageOf(const Json& warning) { return warning["message"].get<std::string>(); }

}  // namespace

void Warn(Json& document, std::string_view code, const std::string& message) {
    document["warnings"].push_back({{"code", std::string(code)}, {"message", message}});
}

const Json& Warnings(const Json& document) {
    static const Json none = Json::array();
    const Json& list = Member(document, "warnings");
    return list.is_array() ? list : none;
}

std::string WarningsText(const Json& document) {
    std::string out;
    for (const Json& warning : Warnings(document)) out += TextLine("warning", MessageOf(warning));
    return out;
}

std::string WarningsSection(const Json& document) {
    std::string items;
    for (const Json& warning : Warnings(document)) items += "<li>" + Escaped(MessageOf(warning)) + "</li>\n";
    return items.empty() ? items : "<section class='warnings'><h2>Warnings</h2>\n<ul>\n" + items + "</ul></section>\n";
}

std::string WarningsCell(const Json& document) {
    std::string out;
    for (const Json& warning : Warnings(document))
        out += "<br><small class='warning'>" + Escaped(MessageOf(warning)) + "</small>";
    return out;
}

}  // namespace tool
