// The registered module, loaded.
#pragma once

#include <orlix/orlix.h>

#include <string>

namespace orlix::testing {

// The file that the registry names for the histogram class; empty when nothing is registered.
std::wstring RegisteredModulePath();

// Loaded for the rest of the program; null when it cannot be.
HMODULE ModuleUnderTest();

template <class Function>
Function EntryPoint(const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(ModuleUnderTest(), name)));
}

}  // namespace orlix::testing
