#include "platform/temporary_files.hpp"

#include <sys/stat.h>

#include <cstdlib>
#include <string_view>

#include "platform/native/file_path.hpp"
#include "text/encoding.hpp"

namespace orlix {

WideString TemporaryFolder() {
    const char* const named = std::getenv("TMPDIR");
    const std::string_view folder = named && *named ? named : "/tmp";
    WideString path = FromUtf8({reinterpret_cast<const uint8_t*>(folder.data()), folder.size()});
    if (path.back() != u'/') path += u'/';
    return path;
}

bool PathExists(WideStringView path) {
    const std::string name = NativePath(path);
    struct stat status;
    return !name.empty() && ::lstat(name.c_str(), &status) == 0;
}

}  // namespace orlix
