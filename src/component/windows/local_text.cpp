#include "component/local_text.hpp"

#include <cstring>

namespace orlix {
namespace {

// The thread's ANSI code page, as determined by its locale.
UINT ThreadCodePage() {
    DWORD page = 0;
    const int found = GetLocaleInfoA(GetThreadLocale(), LOCALE_IDEFAULTANSICODEPAGE | LOCALE_RETURN_NUMBER,
                                     reinterpret_cast<LPSTR>(&page), sizeof page);
    return found > 0 && page != 0 ? page : CP_ACP;
}

}  // namespace

void Widen(const char* text, OLECHAR* to, size_t capacity) noexcept {
    to[0] = 0;
    MultiByteToWideChar(ThreadCodePage(), 0, text, -1, to, static_cast<int>(capacity));
    to[capacity - 1] = 0;
}

void LoadText(WORD resource, OLECHAR (&text)[1024]) noexcept {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&LoadText), &module);
    OLECHAR loaded[1024];
    if (LoadStringW(module, resource, loaded, 1024) > 0) std::memcpy(text, loaded, sizeof text);
}

}  // namespace orlix
