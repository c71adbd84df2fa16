#include "synopsis.hpp"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace tool {

namespace {

// Edit distance: the number of letters inserted, deleted or replaced and of neighbours swapped.
size_t Distance(std::string_view a, std::string_view b) {
    std::vector<std::vector<size_t>> steps(a.size() + 1, std::vector<size_t>(b.size() + 1));
    for (size_t i = 0; i <= a.size(); ++i)
        for (size_t j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                steps[i][j] = i + j;
                continue;
            }
            size_t& here = steps[i][j];
            here = std::min({steps[i - 1][j] + 1, steps[i][j - 1] + 1, steps[i - 1][j - 1] + (a[i - 1] != b[j - 1])});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                here = std::min(here, steps[i - 2][j - 2] + 1);
        }
    return steps[a.size()][b.size()];
}

}  // namespace

OptionSynopsis Describe(const CLI::Option& option) {
    OptionSynopsis out;
    for (const std::string& name : option.get_snames()) out.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames()) out.names.push_back("--" + name);
    if (option.get_positional()) out.names = {option.get_name(true)};
    // "TEXT:{a,b}": the type, and the values that a check appends to it.
    const std::string type = option.get_type_name();
    (option.get_expected_max() == 0 ? out.optionalValue : out.value) = type.substr(0, type.find(':'));
    if (const size_t open = type.find('{'), close = type.rfind('}'); open != std::string::npos && close > open)
        for (size_t at = open + 1; at <= close;) {
            const size_t end = std::min(type.find(',', at), close);
            out.choices.push_back(type.substr(at, end - at));
            at = end + 1;
        }
    out.text = option.get_description();
    out.standard = option.get_default_str();
    out.required = option.get_required();
    out.repeated = option.get_expected_max() >= CLI::detail::expected_max_vector_size;
    return out;
}

Synopsis Describe(const CLI::App& program) {
    Synopsis out;
    out.name = program.get_name();
    out.text = program.get_description();
    out.details = program.get_footer();
    for (const CLI::Option* option : program.get_options())
        (option->get_positional() ? out.arguments : out.options).push_back(Describe(*option));
    for (const CLI::App* command : program.get_subcommands([](const CLI::App*) { return true; }))
        out.commands.push_back(Describe(*command));
    return out;
}

std::string Nearest(std::string_view word, const std::vector<std::string>& known) {
    constexpr size_t kLongest = 40;  // a longer word is no misspelt option
    if (word.size() > kLongest) return {};
    size_t least = 1 + word.size() / 3;
    std::string nearest;
    for (const std::string& name : known) {
        const bool beginning = word.size() > 4 && name.starts_with(word);
        const size_t distance = beginning ? 1 : Distance(word, name);
        if (distance > least || (distance == least && !nearest.empty())) continue;
        least = distance;
        nearest = name;
    }
    return nearest;
}

}  // namespace tool
