// The file that this code was loaded from: orlix.dll, liborlix.so, or a program that the library is linked into.
#pragma once

#include <orlix/orlix.h>

#include <string>

#include "text/wide_string.hpp"

namespace orlix {

// The full path; empty if the system does not tell it. On Windows it may have any length, and has a \\?\ prefix only if
// the loader used one.
WideString ModulePath();

}  // namespace orlix
