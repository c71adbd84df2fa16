// orlix man and orlix completion
#include "commands.hpp"
#include "console.hpp"
#include "manual.hpp"
#include "subcommand.hpp"

#include <algorithm>
#include <iostream>
#include <memory>

namespace tool {

namespace {

constexpr char kManFooter[] = R"(
Without COMMAND the page of the program. With --out the pages of the program and of all its commands,
orlix.1, orlix-measure.1 and so on, for a folder in which man looks.

Examples:
  orlix man measure | man -l -
  orlix man --out ~/.local/share/man/man1)";

constexpr char kCompletionFooter[] = R"(
The script completes commands, options and values at the tabulator key.

Examples:
  source <(orlix completion bash)
  orlix completion zsh > ~/.zfunc/_orlix
  orlix completion fish > ~/.config/fish/completions/orlix.fish)";

int PrintManual(const Synopsis& program, const std::string& name, const std::string& folder) {
    const auto command = std::find_if(program.commands.begin(), program.commands.end(),
                                      [&](const Synopsis& known) { return known.name == name; });
    if (!folder.empty()) {
        std::error_code ignored;
        std::filesystem::create_directories(Path(folder), ignored);
        WriteFile(Path(folder) / (program.name + ".1"), ManualPage(program, ORLIX_TOOL_VERSION));
        for (const Synopsis& each : program.commands)
            WriteFile(Path(folder) / (program.name + "-" + each.name + ".1"),
                      ManualPage(program, each, ORLIX_TOOL_VERSION));
    } else if (name.empty()) {
        std::cout << ManualPage(program, ORLIX_TOOL_VERSION);
    } else if (command != program.commands.end()) {
        std::cout << ManualPage(program, *command, ORLIX_TOOL_VERSION);
    } else {
        throw UsageError("there is no command " + name);
    }
    return kDone;
}

}  // namespace

Command AddManual(CLI::App& program) {
    struct Options {
        std::string command, folder;
    };
    const auto options = std::make_shared<Options>();
    Subcommand command(program, "man", "Print a manual page", kManFooter);
    command.Add("COMMAND", options->command, "One of the commands of orlix");
    command.Add("--out", options->folder, "Folder for all pages").Named("DIR");
    return [options, &program] { return PrintManual(Describe(program), options->command, options->folder); };
}

Command AddCompletion(CLI::App& program) {
    const auto shell = std::make_shared<std::string>();
    Subcommand command(program, "completion", "Print a script that completes commands in a shell", kCompletionFooter);
    command.Add("SHELL", *shell, "bash, zsh or fish").Required().OneOf(std::vector<std::string>{"bash", "zsh", "fish"});
    return [shell, &program] {
        const Synopsis synopsis = Describe(program);
        std::cout << (*shell == "bash"  ? BashCompletion(synopsis)
                      : *shell == "zsh" ? ZshCompletion(synopsis)
                                        : FishCompletion(synopsis));
        return static_cast<int>(kDone);
    };
}

}  // namespace tool
