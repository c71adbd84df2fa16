// The parser of the command line, as commands use it. The parser itself takes seconds to compile, so only
// subcommand.cpp and program.cpp include it.
#pragma once

#include "document.hpp"

#include <functional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace tool {

// An option or a positional argument. Its conditions are checked while the command line is parsed.
class Parameter {
public:
    explicit Parameter(CLI::Option& option) : option_(&option) {}
    const Parameter& Required() const;
    const Parameter& OneOf(const std::vector<std::string>& names) const;
    const Parameter& OneOf(const std::vector<int>& numbers) const;
    const Parameter& Between(int least, int greatest) const;
    const Parameter& NotNegative() const;
    const Parameter& Checked(const std::function<void(const std::string& value)>& check) const;  // throws UsageError
    const Parameter& Positive() const;
    const Parameter& Pair(const char* names) const;      // two values
    const Parameter& Named(const char* value) const;     // in the help
    const Parameter& Repeated(const char* value) const;  // once for each value
    const Parameter& Excludes(const Parameter& other) const;
    const Parameter& ShowDefault() const;                  // the variable's value, in the help
    const Parameter& ShowDefault(const char* text) const;  // the text instead

private:
    CLI::Option* option_;
};

// For AddOptionalValue, where no value of the option stands for the usual one.
constexpr char kDefaultValue[] = "default";

class Subcommand {
public:
    Subcommand(CLI::App& program, const char* name, const char* description, const std::string& footer);

    // The beginning of every document of --json: schema, tool, version, command, and options, with the value of each
    // option under its long name in camel case, null if it was not given and has no default. The caller adds its
    // results and, at the end, "warnings".
    Json Envelope() const;

    // The variable must outlive the parser. It keeps its value if the parameter is not given. Types: std::string,
    // double, int, long, uint64_t; std::optional of double and LONG; std::vector of std::string, double and int.
    template <class T>
    Parameter Add(const char* name, T& variable, const std::string& description);
    Parameter AddFlag(const char* name, bool& variable, const char* description);
    // An option that is given as "--name" or "--name=VALUE"; the variable is `standard` without a value, whose name
    // in the help is `value`.
    Parameter AddOptionalValue(const char* name, std::string& variable, const char* standard, const char* value,
                               const char* description);

private:
    std::string name_;
    CLI::App* command_;
    std::vector<std::function<void(Json& options)>> values_;  // each adds one option
};

}  // namespace tool
