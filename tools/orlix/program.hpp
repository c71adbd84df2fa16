// The program, apart from its process: what the tests run too.
#pragma once

#include <string>
#include <vector>

namespace tool {

// Runs one command line, without the program's name. Results go to std::cout, everything else to std::cerr. Returns the
// exit code, see ExitCode; throws nothing.
int Run(std::vector<std::string> arguments);

}  // namespace tool
