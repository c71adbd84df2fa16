#include "subcommand.hpp"

#include <CLI/CLI.hpp>

#include <orlix/orlix.h>

#include <cstdint>
#include <optional>

namespace tool {

const Parameter& Parameter::Required() const {
    option_->required();
    return *this;
}

const Parameter& Parameter::OneOf(const std::vector<std::string>& names) const {
    option_->check(CLI::IsMember(names));
    return *this;
}

const Parameter& Parameter::OneOf(const std::vector<int>& numbers) const {
    option_->check(CLI::IsMember(numbers));
    return *this;
}

const Parameter& Parameter::Between(int least, int greatest) const {
    option_->check(CLI::Range(least, greatest));
    return *this;
}

const Parameter& Parameter::NotNegative() const {
    option_->check(CLI::NonNegativeNumber);
    return *this;
}

const Parameter& Parameter::Positive() const {
    option_->check(CLI::PositiveNumber);
    return *this;
}

const Parameter& Parameter::Pair(const char* names) const {
    option_->expected(2)->type_name(names);
    return *this;
}

const Parameter& Parameter::Named(const char* value) const {
    option_->type_name(value);
    return *this;
}

const Parameter& Parameter::Repeated(const char* value) const {
    option_->type_name(value)->allow_extra_args(false);
    return *this;
}

const Parameter& Parameter::Excludes(const Parameter& other) const {
    option_->excludes(other.option_);
    return *this;
}

const Parameter& Parameter::ShowDefault() const {
    option_->capture_default_str();
    return *this;
}

const Parameter& Parameter::ShowDefault(const char* text) const {
    option_->default_str(text);
    return *this;
}

Subcommand::Subcommand(CLI::App& program, const char* name, const char* description, const char* footer)
    : command_(program.add_subcommand(name, description)) {
    command_->footer(footer);
}

template <class T>
Parameter Subcommand::Add(const char* name, T& variable, const std::string& description) {
    return Parameter(*command_->add_option(name, variable, description));
}

template Parameter Subcommand::Add(const char*, std::string&, const std::string&);
template Parameter Subcommand::Add(const char*, double&, const std::string&);
template Parameter Subcommand::Add(const char*, int&, const std::string&);
template Parameter Subcommand::Add(const char*, long&, const std::string&);  // LONG is one or the other
template Parameter Subcommand::Add(const char*, uint64_t&, const std::string&);
template Parameter Subcommand::Add(const char*, std::optional<double>&, const std::string&);
template Parameter Subcommand::Add(const char*, std::optional<LONG>&, const std::string&);
template Parameter Subcommand::Add(const char*, std::vector<std::string>&, const std::string&);
template Parameter Subcommand::Add(const char*, std::vector<double>&, const std::string&);
template Parameter Subcommand::Add(const char*, std::vector<int>&, const std::string&);

Parameter Subcommand::AddFlag(const char* name, bool& variable, const char* description) {
    return Parameter(*command_->add_flag(name, variable, description));
}

}  // namespace tool
