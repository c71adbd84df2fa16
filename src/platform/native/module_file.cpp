#include "platform/module_file.hpp"

#include <dlfcn.h>

#include <cstdlib>
#include <memory>

#include <orlix/client.hpp>

namespace orlix {

WideString ModulePath() {
    Dl_info info = {};
    if (dladdr(reinterpret_cast<const void*>(&ModulePath), &info) == 0 || !info.dli_fname) return {};
    const std::unique_ptr<char, decltype(&std::free)> full(realpath(info.dli_fname, nullptr), &std::free);
    return ToUtf16(full ? full.get() : info.dli_fname);
}

}  // namespace orlix
