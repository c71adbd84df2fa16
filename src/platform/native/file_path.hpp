// What everything here that opens files shares.
#pragma once

#include <orlix/orlix.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <string_view>

#include "text/wide_string.hpp"

namespace orlix {

// UTF-8. Empty for a path that names no file here: an empty one, one with a character 0 or with half a surrogate pair.
inline std::string NativePath(WideStringView path) {
    if (path.find(OLECHAR{0}) != path.npos) return {};
    try {
        return std::filesystem::path(path).native();
    } catch (const std::filesystem::filesystem_error&) {
        return {};
    }
}

// A system call, again as long as a signal interrupts it.
template <class Call>
auto Retried(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR) result = call();
    return result;
}

}  // namespace orlix
