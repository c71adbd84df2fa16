#include "windows/module_under_test.hpp"

namespace orlix::testing {

std::wstring RegisteredModulePath() {
    wchar_t path[1024];
    DWORD bytes = sizeof path;
    const LSTATUS found =
        RegGetValueW(HKEY_CLASSES_ROOT, L"CLSID\\{9CC2D5EE-E548-46B4-86D0-6D11326DA63F}\\InprocServer32", nullptr,
                     RRF_RT_REG_SZ, nullptr, path, &bytes);
    return found == ERROR_SUCCESS ? path : L"";
}

HMODULE ModuleUnderTest() {
    static const HMODULE module = LoadLibraryW(RegisteredModulePath().c_str());
    return module;
}

}  // namespace orlix::testing
