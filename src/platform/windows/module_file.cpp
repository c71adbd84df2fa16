#include "platform/module_file.hpp"

#include <windows.h>

namespace orlix {

WideString ModulePath() {
    HMODULE module = nullptr;
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                            reinterpret_cast<LPCWSTR>(&ModulePath), &module))
        return {};
    // A path that fills the buffer was cut short: paths have up to 32767 units.
    for (WideString path(MAX_PATH, 0); path.size() <= 0x10000; path.resize(2 * path.size())) {
        const DWORD length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) return path.substr(0, length);
    }
    return {};
}

}  // namespace orlix
