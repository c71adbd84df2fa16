// The program and its commands as the parser knows them, without the parser: manual pages, completions and advice about
// misspelt words are made from this, so that they follow every change of an option.
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
    std::vector<std::string> names;  // "-o", "--output"; of an argument its one name
    std::string value;               // what follows, "W H"; empty for a flag
    std::vector<std::string> choices;
    std::string text;
    std::string standard;  // the value when it is not given; empty when there is none to show
    bool required = false;
    bool repeated = false;
};

struct Synopsis {
    std::string name, text;
    std::string details;  // what the help says after the options
    std::vector<OptionSynopsis> options, arguments;
    std::vector<Synopsis> commands;
};

Synopsis Describe(const CLI::App& program);
OptionSynopsis Describe(const CLI::Option& option);

// The known word that was most likely meant: a few letters wrong, missing, added or changed over. Empty when none is
// near.
std::string Nearest(std::string_view word, const std::vector<std::string>& known);

}  // namespace tool
