// The file that this code was loaded from: orlix.dll, liborlix.so, or a program that the library is linked into.
#pragma once

#include <orlix/orlix.h>

#include <string>

#include "text/wide_string.hpp"

namespace orlix {

// Full path; empty when the system does not tell. On Windows of any length, without a \\?\ prefix unless the loader
// used one.
WideString ModulePath();

}  // namespace orlix
