// Manual pages and shell completions.
#pragma once

#include "synopsis.hpp"

#include <string>

namespace tool {

// The manual page of the program or of one of its commands, in the language of man(7).
std::string ManualPage(const Synopsis& program, const std::string& version);
std::string ManualPage(const Synopsis& program, const Synopsis& command, const std::string& version);

// A script with which the shell completes commands, options and values.
std::string BashCompletion(const Synopsis& program);
std::string ZshCompletion(const Synopsis& program);
std::string FishCompletion(const Synopsis& program);

}  // namespace tool
