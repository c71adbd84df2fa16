// The program without its process, for main() and the tests.
#pragma once

#include <string>
#include <vector>

namespace tool {

// Runs a command line, given without the program's name. Results go to std::cout, everything else to std::cerr. Returns
// the exit code, see ExitCode; never throws.
int Run(std::vector<std::string> arguments);

}  // namespace tool
