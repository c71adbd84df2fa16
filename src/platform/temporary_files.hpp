// Where temporary files go.
#pragma once

#include "text/wide_string.hpp"

namespace orlix {

// The folder for temporary files, with a separator behind it.
WideString TemporaryFolder();

// Whether a file, a folder or anything else has this path.
bool PathExists(WideStringView path);

}  // namespace orlix
