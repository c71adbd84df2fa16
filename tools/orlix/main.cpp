// orlix: measure micrographs from the command line.
#include "commands.hpp"
#include "console.hpp"

#include <CLI/CLI.hpp>

#include <orlix/client.hpp>

#include <algorithm>
#include <exception>
#include <iostream>
#include <utility>
#include <vector>

namespace {

constexpr char kFooter[] = R"(
Examples:
  orlix measure section.png
  orlix measure *.png --threshold otsu --dark --pixel-size 0.5 --out results
  orlix info section.png
  orlix specimen test.png --seed 7 --bits 16
  orlix doctor

Results go to standard output, messages and progress to standard error.
Exit codes: 0 done; 1 a file or a measurement failed (a batch goes on after it);
            2 wrong usage; 3 the library cannot be used.
'orlix COMMAND --help' says more about a command.)";

int Run(std::vector<std::string> arguments) {
    CLI::App program("Measures grey-level micrographs of polished surfaces.", "orlix");
    program.set_version_flag("--version", "orlix " ORLIX_TOOL_VERSION);
    program.require_subcommand(1);
    program.footer(kFooter);
    const std::pair<const char*, tool::Command> commands[] = {
        {"measure", tool::AddMeasure(program)}, {"info", tool::AddInfo(program)},
        {"convert", tool::AddConvert(program)}, {"specimen", tool::AddSpecimen(program)},
        {"doctor", tool::AddDoctor(program)},
    };
    try {
        std::reverse(arguments.begin(), arguments.end());  // the parser takes them from the back
        program.parse(std::move(arguments));
    } catch (const CLI::ParseError& error) {
        const int code = program.exit(error);  // writes help to standard output, errors to standard error
        return code == 0 ? tool::kDone : tool::kUsage;
    }
    try {
        for (const auto& [name, command] : commands)
            if (program.got_subcommand(name)) return command();
    } catch (const tool::UsageError& error) {
        std::cerr << "orlix: " << error.what() << std::endl;
        return tool::kUsage;
    } catch (const orlix::Error& error) {
        std::cerr << "orlix: " << error.what() << std::endl;
        const HRESULT result = error.result();
        const bool noModule =
            result == REGDB_E_CLASSNOTREG || result == CO_E_CLASSSTRING || result == CLASS_E_CLASSNOTAVAILABLE;
        return noModule ? tool::kNoModule : tool::kFailed;
    } catch (const std::exception& error) {
        std::cerr << "orlix: " << error.what() << std::endl;
        return tool::kFailed;
    }
    return tool::kUsage;
}

}  // namespace

int main(int argc, char** argv) {
    const tool::Session session;
    const int code = Run(tool::Arguments(argc, argv));
    std::cout.flush();
    return std::cout ? code : tool::kFailed;  // a full disk is not success
}
