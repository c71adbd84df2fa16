#include <stdexcept>

#include "module/registration.hpp"

namespace orlix {

std::string_view RegistrationText(WORD script) {
    HMODULE module = nullptr;
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                            reinterpret_cast<LPCWSTR>(&RegistrationText), &module))
        throw std::out_of_range("the module is not known");
    const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(script), L"REGISTRY");
    const HGLOBAL loaded = found ? LoadResource(module, found) : nullptr;
    const void* text = loaded ? LockResource(loaded) : nullptr;
    if (!text) throw std::out_of_range("no registration script of this number");
    return {static_cast<const char*>(text), SizeofResource(module, found)};  // part of the module: nothing to free
}

}  // namespace orlix
