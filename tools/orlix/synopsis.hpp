// The program and its commands as the parser knows them, without the parser. Manual pages, completions and advice about
// misspelt words are made from this, so they follow every change of an option.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace tool {

struct OptionSynopsis {
    std::vector<std::string> names;  // "-o", "--output"; an argument has one name
    std::string value;               // the name of its value, "W H"; empty for a flag
    std::string optionalValue;       // "[=MAX]" of a flag that may have a value; else empty
    std::vector<std::string> choices;
    std::string text;
    std::string standard;  // the default; empty if there is none to show
    bool required = false;
    bool repeated = false;
};

struct Synopsis {
    std::string name, text;
    std::string details;  // the text after the options in the help
    std::vector<OptionSynopsis> options, arguments;
    std::vector<Synopsis> commands;
};

Synopsis Describe(const CLI::App& program);
OptionSynopsis Describe(const CLI::Option& option);

// The known word that is closest to a misspelt one: a few letters replaced, missing, added or swapped. Empty if none is
// close.
std::string Nearest(std::string_view word, const std::vector<std::string>& known);

}  // namespace tool
