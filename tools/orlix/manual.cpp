#include "manual.hpp"

#include <algorithm>
#include <sstream>

namespace tool {

namespace {

std::string Replaced(std::string_view text, char old, std::string_view by) {
    std::string out;
    for (const char c : text) out += c == old ? std::string(by) : std::string(1, c);
    return out;
}

std::string Joined(const std::vector<std::string>& words, const std::string& between) {
    std::string out;
    for (const std::string& word : words) out += (out.empty() ? "" : between) + word;
    return out;
}

std::string Upper(std::string text) {
    for (char& c : text) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    return text;
}

// -------------------------------------------------------------------------------------------------------- manual pages

// Escapes text for the formatter. A point or quote at the beginning of a line would be a request to it.
std::string Roff(std::string_view text) {
    std::string out = Replaced(Replaced(text, '\\', "\\e"), '-', "\\-");
    return out.starts_with('.') || out.starts_with('\'') ? "\\&" + out : out;
}

std::string Header(const std::string& name, const std::string& text, const std::string& version) {
    return ".TH " + Upper(name) + " 1 \"\" \"Orlix " + version + "\" \"Orlix\"\n.SH NAME\n" + Roff(name) + " \\- " +
           Roff(text) + "\n";
}

std::string OptionsSection(const char* title, const std::vector<OptionSynopsis>& options) {
    if (options.empty()) return {};
    std::string out = std::string(".SH ") + title + "\n";
    for (const OptionSynopsis& option : options) {
        std::vector<std::string> names;
        for (const std::string& name : option.names) names.push_back("\\fB" + Roff(name) + "\\fR");
        const bool argument = option.names.front().front() != '-';
        out += ".TP\n" + Joined(names, ", ");
        out += Roff(option.optionalValue);
        if (!argument && !option.value.empty()) out += " \\fI" + Roff(option.value) + "\\fR";
        if (option.repeated) out += " ...";
        out += "\n" + Roff(option.text);
        if (!option.choices.empty() && option.text.find(option.choices.front()) == std::string::npos)
            out += "; one of " + Roff(Joined(option.choices, ", "));
        if (!option.standard.empty()) out += " (default " + Roff(option.standard) + ")";
        out += option.required && !argument ? ". Required.\n" : "\n";
    }
    return out;
}

// The text after the options. A line at the left margin above indented ones is a heading; other lines keep their
// layout.
std::string DetailsSection(const std::string& details) {
    std::vector<std::string> lines;
    std::istringstream in(details);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    std::string out;
    bool inBlock = false;
    const auto block = [&](bool open) {
        if (open != inBlock) out += open ? ".nf\n" : ".fi\n";
        inBlock = open;
    };
    const bool startsWithText = !lines.empty();
    if (startsWithText) out += ".SH DESCRIPTION\n";
    for (size_t i = 0; i < lines.size(); ++i) {
        const std::string& line = lines[i];
        const bool last = i + 1 == lines.size();
        const bool heading = !line.empty() && line[0] != ' ' && !last && lines[i + 1].starts_with("  ") &&
                             (i == 0 || lines[i - 1].empty());
        if (heading) {
            block(false);
            out += ".SS \"" +
                   Replaced(Roff(line.ends_with(':') ? line.substr(0, line.size() - 1) : line), '"', "\\(dq") + "\"\n";
        } else if (line.empty()) {
            block(false);
            if (!last && i > 0) out += ".PP\n";
        } else {
            block(line[0] == ' ' || inBlock);
            out += Roff(line) + "\n";
        }
    }
    block(false);
    return out;
}

std::string Usage(const Synopsis& program, const Synopsis& command) {
    std::string out = ".SH SYNOPSIS\n.B " + Roff(program.name + " " + command.name) + "\n";
    for (const OptionSynopsis& argument : command.arguments)
        out += ".I " + Roff(argument.names.front()) + (argument.repeated ? " ...\n" : "\n");
    return out + "[\\fIoptions\\fR]\n";
}

// --------------------------------------------------------------------------------------------------------- completions

std::vector<std::string> AllNames(const Synopsis& command) {
    std::vector<std::string> names;
    for (const OptionSynopsis& option : command.options)
        names.insert(names.end(), option.names.begin(), option.names.end());
    return names;
}

std::vector<std::string> CommandNames(const Synopsis& program) {
    std::vector<std::string> names;
    for (const Synopsis& command : program.commands) names.push_back(command.name);
    return names;
}

std::vector<std::string> ArgumentChoices(const Synopsis& command) {
    return command.arguments.empty() ? std::vector<std::string>() : command.arguments.front().choices;
}

bool IsFolder(const OptionSynopsis& option) { return option.names.back() == "--out"; }

// Text for single quotes of zsh and fish, with the shell's special characters (brackets and colons in zsh) escaped.
std::string Quoted(std::string_view text, std::string_view special) {
    std::string out;
    for (const char c : text) {
        if (c == '\'')
            out += "'\\''";
        else
            out += special.find(c) != std::string_view::npos ? std::string("\\") + c : std::string(1, c);
    }
    return out;
}

}  // namespace

std::string ManualPage(const Synopsis& program, const std::string& version) {
    std::string out = Header(program.name, program.text, version) + ".SH SYNOPSIS\n.B " + Roff(program.name) +
                      "\n\\fICOMMAND\\fR [\\fIoptions\\fR]\n.SH COMMANDS\n";
    for (const Synopsis& command : program.commands)
        out += ".TP\n\\fB" + Roff(command.name) + "\\fR\n" + Roff(command.text) + "; see \\fB" +
               Roff(program.name + "-" + command.name) + "\\fR(1)\n";
    return out + OptionsSection("OPTIONS", program.options) + DetailsSection(program.details);
}

std::string ManualPage(const Synopsis& program, const Synopsis& command, const std::string& version) {
    return Header(program.name + "-" + command.name, command.text, version) + Usage(program, command) +
           OptionsSection("ARGUMENTS", command.arguments) + OptionsSection("OPTIONS", command.options) +
           DetailsSection(command.details) + ".SH SEE ALSO\n\\fB" + Roff(program.name) + "\\fR(1)\n";
}

std::string BashCompletion(const Synopsis& program) {
    std::string values, options, choices;
    for (const Synopsis& command : program.commands) {
        for (const OptionSynopsis& option : command.options) {
            if (option.value.empty()) continue;
            std::vector<std::string> patterns;
            for (const std::string& name : option.names) patterns.push_back(command.name + ":" + name);
            values += "        " + Joined(patterns, " | ") + ") ";
            if (!option.choices.empty())
                values += "COMPREPLY=($(compgen -W '" + Joined(option.choices, " ") + "' -- \"$current\")); ";
            else if (IsFolder(option))
                values += "compopt -o dirnames; ";
            values += "return ;;\n";
        }
        options += "        " + command.name + ") words='" + Joined(AllNames(command), " ") + "' ;;\n";
        if (const auto words = ArgumentChoices(command); !words.empty())
            choices += "        " + command.name + ") words='" + Joined(words, " ") + "' ;;\n";
    }
    return "# Completion of " + program.name + " for bash.\n_" + program.name +
           R"(() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} command= at=0 words= i
    COMPREPLY=()
    for ((i = 1; i < COMP_CWORD; i++)); do
        case ${COMP_WORDS[i]} in
            -*) ;;
            *) command=${COMP_WORDS[i]} at=$i; break ;;
        esac
    done
    case $command:$previous in
)" + values +
           R"(    esac
    case $command in
        '') words=')" +
           Joined(CommandNames(program), " ") + " " + Joined(AllNames(program), " ") + "' ;;\n" + options +
           R"(    esac
    if [[ -n $command && $current != -* ]]; then
        words=
        ((COMP_CWORD == at + 1)) && case $command in
)" + choices +
           R"(        esac
    fi
    [[ -z $words ]] || COMPREPLY=($(compgen -W "$words" -- "$current"))
}
complete -o default -o bashdefault -F _)" +
           program.name + " " + program.name + "\n";
}

std::string ZshCompletion(const Synopsis& program) {
    const auto action = [](const OptionSynopsis& option) {
        return !option.choices.empty() ? "(" + Joined(option.choices, " ") + ")"
               : IsFolder(option)      ? std::string("_files -/")
                                       : std::string("_files");
    };
    std::string commands, cases;
    for (const Synopsis& command : program.commands) {
        commands += "                '" + Quoted(command.name + ":" + command.text, "") + "'\n";
        cases += "                " + command.name + ") _arguments";
        for (const OptionSynopsis& option : command.options)
            for (const std::string& name : option.names) {
                const std::string repeated = option.repeated ? "*" : "";
                cases += " \\\n                    '" + repeated + name + "[" + Quoted(option.text, "[]:\\") + "]";
                if (!option.value.empty()) cases += ":" + Quoted(option.value, "[]:\\") + ":" + action(option);
                cases += "'";
            }
        size_t number = 0;
        for (const OptionSynopsis& argument : command.arguments)
            cases += " \\\n                    '" + (argument.repeated ? "*" : std::to_string(++number)) + ":" +
                     argument.names.front() + ":" + action(argument) + "'";
        cases += " ;;\n";
    }
    return "#compdef " + program.name + "\n# Completion of " + program.name + " for zsh.\n_" + program.name +
           R"(() {
    local context state state_descr line
    typeset -A opt_args
    _arguments -C '(- *)--help[Print help]' '(- *)--version[Print the version]' \
        '1:command:->command' '*::argument:->argument'
    case $state in
        command)
            local -a commands=(
)" + commands +
           R"(            )
            _describe command commands
            ;;
        argument)
            case $words[1] in
)" + cases +
           R"(            esac
            ;;
    esac
}
_)" + program.name +
           " \"$@\"\n";
}

std::string FishCompletion(const Synopsis& program) {
    std::string out = "# Completion of " + program.name + " for fish.\n";
    for (const Synopsis& command : program.commands) {
        out += "complete -c " + program.name + " -n __fish_use_subcommand -f -a " + command.name + " -d '" +
               Quoted(command.text, "\\") + "'\n";
        const std::string here =
            "complete -c " + program.name + " -n '__fish_seen_subcommand_from " + command.name + "'";
        for (const OptionSynopsis& option : command.options) {
            out += here;
            for (const std::string& name : option.names)
                out += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
            if (!option.choices.empty())
                out += " -x -a '" + Joined(option.choices, " ") + "'";
            else if (IsFolder(option))
                out += " -x -a '(__fish_complete_directories)'";
            else if (!option.value.empty())
                out += " -r";
            out += " -d '" + Quoted(option.text, "\\") + "'\n";
        }
        if (const auto words = ArgumentChoices(command); !words.empty())
            out += here + " -f -a '" + Joined(words, " ") + "'\n";
    }
    return out;
}

}  // namespace tool
