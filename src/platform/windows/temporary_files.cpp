#include "platform/temporary_files.hpp"

#include <windows.h>

namespace orlix {

WideString TemporaryFolder() {
    WideString path(MAX_PATH + 1, 0);
    const DWORD length = GetTempPathW(static_cast<DWORD>(path.size()), path.data());
    path.resize(length <= MAX_PATH ? length : 0);
    return path;
}

bool PathExists(WideStringView path) { return GetFileAttributesW(WideString(path).c_str()) != INVALID_FILE_ATTRIBUTES; }

}  // namespace orlix
