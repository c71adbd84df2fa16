// Manual pages and shell completions.
#pragma once

#include "synopsis.hpp"

#include <string>

namespace tool {

// In the language of man(7): the page of the program itself, or of one of its commands.
std::string ManualPage(const Synopsis& program, const std::string& version);
std::string ManualPage(const Synopsis& program, const Synopsis& command, const std::string& version);

// A script that teaches the shell the commands, options and values.
std::string BashCompletion(const Synopsis& program);
std::string ZshCompletion(const Synopsis& program);
std::string FishCompletion(const Synopsis& program);

}  // namespace tool
