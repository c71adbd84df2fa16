// Runs VBScript and JScript with the system's engines.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "wscript.hpp"

namespace script_host {

// A script that cannot be begun: its file cannot be read, or there is no engine for it.
struct NoScript : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct Script {
    std::string path;    // full
    std::string engine;  // ProgID
    std::wstring text;
};

// VBScript of a file .vbs, JScript of a file .js. The text is UTF-16 or UTF-8 if the file begins so or is valid UTF-8,
// otherwise in the code page of the system. Throws NoScript.
Script ReadScript(const std::string& path);

// Runs it to its end, with the object WScript (wscript.hpp); the thread must be in an apartment. Errors are reported as
// "FILE(LINE, COLUMN) SOURCE: DESCRIPTION"; those of functions that events call do not end the script. Returns whether
// there was none. Throws NoScript.
bool Run(const Script& script, std::vector<std::string> arguments, Surroundings surroundings);

}  // namespace script_host
