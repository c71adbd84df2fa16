#include "files/tiff_library.hpp"

#include <dlfcn.h>

#include <optional>

namespace orlix {
namespace {

std::optional<TiffLibrary> Load() {
    // It stays loaded: other libraries of the process may use it, too.
    void* const file = dlopen(ORLIX_TIFF_FILE, RTLD_NOW | RTLD_LOCAL);
    if (!file) return std::nullopt;
    TiffLibrary library;
#define ORLIX_FIND(name)                                                    \
    library.name = reinterpret_cast<decltype(&::name)>(dlsym(file, #name)); \
    if (!library.name) return std::nullopt;
    ORLIX_TIFF_FUNCTIONS(ORLIX_FIND)
#undef ORLIX_FIND
    return library;
}

}  // namespace

const TiffLibrary* FindTiffLibrary() {
    static const std::optional<TiffLibrary> library = Load();
    return library ? &*library : nullptr;
}

}  // namespace orlix
