// Paths, for all code here that opens files.
#pragma once

#include <orlix/orlix.h>

#include <filesystem>
#include <string>
#include <string_view>

#include "text/wide_string.hpp"

namespace orlix {

// The path in UTF-8. Empty for a path that cannot name a file: empty, with a character 0 or with half a surrogate pair.
inline std::string NativePath(WideStringView path) {
    if (path.find(OLECHAR{0}) != path.npos) return {};
    try {
        return std::filesystem::path(path).native();
    } catch (const std::filesystem::filesystem_error&) {
        return {};
    }
}

}  // namespace orlix
