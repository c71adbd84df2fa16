#include "subcommand.hpp"

#include "console.hpp"
#include "synopsis.hpp"

#include <CLI/CLI.hpp>

#include <orlix/orlix.h>

#include <algorithm>
#include <cstdint>
#include <optional>

namespace tool {

namespace {

// Version of the documents: incremented when a member is removed, renamed or changes its meaning, but not for new ones.
constexpr int kSchema = 1;

// "--roi-polarity" becomes "roiPolarity".
std::string Key(const CLI::Option& option) {
    std::string key;
    bool capital = false;
    for (const char c : option.get_lnames().front()) {
        if (c != '-') key += capital ? static_cast<char>(c - 'a' + 'A') : c;
        capital = c == '-';
    }
    return key;
}

// The name of a value in the help.
const char* ValueName(const std::string&) { return "TEXT"; }
const char* ValueName(double) { return "NUMBER"; }
const char* ValueName(int) { return "N"; }
const char* ValueName(long) { return "N"; }
const char* ValueName(uint64_t) { return "N"; }
template <class T>
const char* ValueName(const std::optional<T>&) {
    return ValueName(T());
}
template <class T>
const char* ValueName(const std::vector<T>&) {
    return ValueName(T());
}

Json ValueOf(const std::string& value) { return value.empty() ? Json(nullptr) : Json(value); }
Json ValueOf(double value) { return Finite(value); }
template <class T>
Json ValueOf(const T& value) {
    return value;
}
template <class T>
Json ValueOf(const std::optional<T>& value) {
    return value ? ValueOf(*value) : Json(nullptr);
}
template <class T>
Json ValueOf(const std::vector<T>& value) {
    return value.empty() ? Json(nullptr) : Json(value);
}

}  // namespace

const Parameter& Parameter::Required() const {
    option_->required();
    return *this;
}

const Parameter& Parameter::OneOf(const std::vector<std::string>& names) const {
    std::string list;
    for (const std::string& name : names) list += (list.empty() ? "" : ",") + name;
    option_->check(CLI::Validator(
        [names, list](const std::string& value) -> std::string {
            if (std::find(names.begin(), names.end(), value) != names.end()) return {};
            const std::string nearest = Nearest(value, names);
            return value + " is not one of " + list + (nearest.empty() ? "" : "; did you mean " + nearest + "?");
        },
        "{" + list + "}"));
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

const Parameter& Parameter::Checked(const std::function<void(const std::string& value)>& check) const {
    option_->check([check](const std::string& value) -> std::string {
        try {
            check(value);
            return {};
        } catch (const UsageError& error) {
            return error.what();
        }
    });
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

Subcommand::Subcommand(CLI::App& program, const char* name, const char* description, const std::string& footer)
    : name_(name), command_(program.add_subcommand(name, description)) {
    command_->footer(footer);
}

Json Subcommand::Envelope() const {
    Json out;
    out["schema"] = kSchema;
    out["tool"] = "orlix";
    out["version"] = ORLIX_TOOL_VERSION;
    out["command"] = name_;
    Json& options = out["options"] = Json::object();
    for (const auto& put : values_) put(options);
    return out;
}

template <class T>
Parameter Subcommand::Add(const char* name, T& variable, const std::string& description) {
    CLI::Option* const option = command_->add_option(name, variable, description);
    if (!option->get_positional())
        values_.push_back([key = Key(*option), &variable](Json& options) { options[key] = ValueOf(variable); });
    option->type_name(ValueName(variable));
    return Parameter(*option);
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
    CLI::Option* const option = command_->add_flag(name, variable, description);
    const std::string key = Key(*option);
    if (key != "json" && key != "csv") values_.push_back([key, &variable](Json& options) { options[key] = variable; });
    return Parameter(*option);
}

Parameter Subcommand::AddOptionalValue(const char* name, std::string& variable, const char* standard, const char* value,
                                       const char* description) {
    CLI::Option* const option = command_->add_flag(std::string(name) + "{" + standard + "}", variable, description);
    option->type_name(std::string("[=") + value + "]");
    values_.push_back([key = Key(*option), &variable](Json& options) { options[key] = ValueOf(variable); });
    return Parameter(*option);
}

}  // namespace tool
