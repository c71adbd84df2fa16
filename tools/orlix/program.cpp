#include "program.hpp"

#include "commands.hpp"
#include "console.hpp"

#include <CLI/CLI.hpp>

#include <orlix/client.hpp>

#include <algorithm>
#include <exception>
#include <iostream>
#include <utility>
#include <vector>

namespace tool {

namespace {

constexpr char kFooter[] = R"(
Examples:
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

Results go to standard output, messages and progress to standard error.
Exit codes: 0 done; 1 a file or a measurement failed (a batch goes on after it);
            2 wrong usage; 3 the library cannot be used.
'orlix COMMAND --help' says more about a command.)";

}  // namespace

int Run(std::vector<std::string> arguments) {
    CLI::App program("Measures grey-level micrographs of polished surfaces.", "orlix");
    program.set_version_flag("--version", "orlix " ORLIX_TOOL_VERSION);
    program.require_subcommand(1);
    program.footer(kFooter);
    const std::pair<const char*, Command> commands[] = {
        {"measure", AddMeasure(program)},   {"flatten", AddFlatten(program)}, {"filter", AddFilter(program)},
        {"polygon", AddPolygon(program)},   {"render", AddRender(program)},   {"info", AddInfo(program)},
        {"convert", AddConvert(program)},   {"save", AddSave(program)},       {"load", AddLoad(program)},
        {"specimen", AddSpecimen(program)}, {"doctor", AddDoctor(program)},
    };
    try {
        std::reverse(arguments.begin(), arguments.end());  // the parser takes them from the back
        program.parse(std::move(arguments));
    } catch (const CLI::ParseError& error) {
        const int code = program.exit(error);  // writes help to standard output, errors to standard error
        return code == 0 ? kDone : kUsage;
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
