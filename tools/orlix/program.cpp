#include "program.hpp"

#include "commands.hpp"
#include "console.hpp"
#include "synopsis.hpp"

#include <CLI/CLI.hpp>

#include <orlix/client.hpp>

#include <algorithm>
#include <exception>
#include <iostream>
#include <utility>
#include <vector>

namespace tool {

namespace {

constexpr char kProgramFooter[] = R"(
Examples:
  orlix particles powder.png --bright --min-area 20
  orlix measure section.png
  orlix measure *.png --threshold otsu --dark --pixel-size 0.5 --out results
  orlix flatten height.png --surface biquadratic --z-scale 2.6e-5 --out results
  orlix filter median3x3 noisy.png -o clean.png
  orlix polygon outline.csv
  orlix render section.png --size 800 600 --zoom 2 -o view.png
  orlix info section.png
  orlix save section.png section.orlix
  orlix specimen test.png --seed 7 --bits 16
  orlix doctor
  orlix measure --help

Results go to standard output, messages and progress to standard error.
Exit codes: 0 done; 1 a file or a measurement failed (a batch goes on after it);
            2 wrong usage; 3 the library cannot be used; 130 stopped by Ctrl-C.
An IMAGE may be -, standard input; a file to write may be -, standard output.
'orlix COMMAND --help' says more about a command.)";

// Shows options with the name and default of their value. The description states which values are accepted.
class HelpFormatter : public CLI::Formatter {
public:
    HelpFormatter() {
        label("Positionals", "Arguments");
        label("Subcommands", "Commands");
        label("SUBCOMMAND", "COMMAND");
        label("OPTIONS", "options");
    }
    std::string make_option_opts(const CLI::Option* option) const override {
        const OptionSynopsis synopsis = Describe(*option);
        if (option->get_positional()) return synopsis.repeated ? " ..." : "";
        return synopsis.optionalValue + (synopsis.value.empty() ? "" : " " + synopsis.value) +
               (synopsis.standard.empty() ? "" : "=" + synopsis.standard);
    }
    // Without the value of a flag that is given without one, which the parser's own form has.
    std::string make_option_name(const CLI::Option* option, bool positional) const override {
        if (positional) return CLI::Formatter::make_option_name(option, positional);
        std::string names;
        for (const std::string& name : Describe(*option).names) names += (names.empty() ? "" : ",") + name;
        return names;
    }
    std::string make_option_desc(const CLI::Option* option) const override {
        const bool given = option->get_required() && !option->get_positional();
        return option->get_description() + (given ? " (required)" : "");
    }
};

// The parser's own message, unless a word is a misspelling of one that we know.
std::string Complaint(const Synopsis& program, const std::vector<std::string>& arguments, const std::string& message) {
    const auto name = std::find_if(arguments.begin(), arguments.end(),
                                   [](const std::string& argument) { return !argument.starts_with('-'); });
    const std::string all = "\n'orlix --help' lists the commands.";
    if (name == arguments.end()) return message + all;
    std::vector<std::string> known;
    const Synopsis* command = nullptr;
    for (const Synopsis& each : program.commands) {
        known.push_back(each.name);
        if (each.name == *name) command = &each;
    }
    if (!command) {
        const std::string nearest = Nearest(*name, known);
        return "there is no command " + *name + (nearest.empty() ? "." : "; did you mean " + nearest + "?") + all;
    }
    const std::string more = "\n'orlix " + *name + " --help' lists its options.";
    known.clear();
    for (const OptionSynopsis& option : command->options)
        known.insert(known.end(), option.names.begin(), option.names.end());
    for (auto argument = name + 1; argument != arguments.end(); ++argument) {
        const std::string option = argument->substr(0, argument->find('='));
        if (!option.starts_with("--") || option == "--" || std::count(known.begin(), known.end(), option)) continue;
        const std::string nearest = Nearest(option, known);
        return *name + " has no option " + option + (nearest.empty() ? "." : "; did you mean " + nearest + "?") + more;
    }
    return message + more;
}

}  // namespace

int Run(std::vector<std::string> arguments) {
    CLI::App program("Measures grey-level micrographs of polished surfaces.", "orlix");
    program.set_version_flag("--version", "orlix " ORLIX_TOOL_VERSION);
    program.require_subcommand(1);
    program.formatter(std::make_shared<HelpFormatter>());
    program.footer(kProgramFooter);
    const std::pair<const char*, Command> commands[] = {
        {"particles", AddParticles(program)}, {"measure", AddMeasure(program)},       {"flatten", AddFlatten(program)},
        {"filter", AddFilter(program)},       {"polygon", AddPolygon(program)},       {"render", AddRender(program)},
        {"info", AddInfo(program)},           {"convert", AddConvert(program)},       {"save", AddSave(program)},
        {"load", AddLoad(program)},           {"specimen", AddSpecimen(program)},     {"doctor", AddDoctor(program)},
        {"man", AddManual(program)},          {"completion", AddCompletion(program)},
    };
    if (arguments.empty()) {
        std::cout << program.help();
        return kDone;
    }
    try {
        program.parse(
            std::vector<std::string>(arguments.rbegin(), arguments.rend()));  // the parser expects reverse order
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) return program.exit(error);  // a request for help
        std::cerr << "orlix: " << Complaint(Describe(program), arguments, error.what()) << std::endl;
        return kUsage;
    }
    try {
        for (const auto& [name, command] : commands)
            if (program.got_subcommand(name)) return command();
    } catch (const UsageError& error) {
        std::cerr << "orlix: " << error.what() << std::endl;
        return kUsage;
    } catch (const orlix::Error& error) {
        std::cerr << "orlix: " << error.what() << std::endl;
        const HRESULT result = error.result();
        const bool noModule =
            result == REGDB_E_CLASSNOTREG || result == CO_E_CLASSSTRING || result == CLASS_E_CLASSNOTAVAILABLE;
        return noModule ? kNoModule : kFailed;
    } catch (const std::exception& error) {
        std::cerr << "orlix: " << error.what() << std::endl;
        return kFailed;
    }
    return kUsage;
}

}  // namespace tool
