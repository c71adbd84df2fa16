#include "component/error_report.hpp"

#include <orlix/com_ptr.hpp>

#include <cstring>
#include <memory>
#include <new>

namespace orlix {
namespace {

#ifdef _WIN32
// The thread's ANSI code page, which its locale decides.
UINT ThreadCodePage() {
    DWORD page = 0;
    const int found = GetLocaleInfoA(GetThreadLocale(), LOCALE_IDEFAULTANSICODEPAGE | LOCALE_RETURN_NUMBER,
                                     reinterpret_cast<LPSTR>(&page), sizeof page);
    return found > 0 && page != 0 ? page : CP_ACP;
}

// `to` holds capacity units, one for each byte of text and one for the terminator: enough for every code page.
void Widen(const char* text, OLECHAR* to, size_t capacity) {
    to[0] = 0;
    MultiByteToWideChar(ThreadCodePage(), 0, text, -1, to, static_cast<int>(capacity));
    to[capacity - 1] = 0;
}
#else
// UTF-8. A byte that belongs to no character becomes U+FFFD.
void Widen(const char* text, OLECHAR* to, size_t) {
    const auto* in = reinterpret_cast<const unsigned char*>(text);
    while (*in) {
        uint32_t c = *in++;
        int more = c < 0x80                ? 0
                   : c >= 0xc2 && c < 0xe0 ? 1
                   : c >= 0xe0 && c < 0xf0 ? 2
                   : c >= 0xf0 && c < 0xf5 ? 3
                                           : -1;
        if (more > 0) {
            uint32_t value = c & (0x3fu >> more);
            int taken = 0;
            while (taken < more && (in[taken] & 0xc0) == 0x80) value = value << 6 | (in[taken++] & 0x3fu);
            const bool shortest = value >= (more == 1 ? 0x80u : more == 2 ? 0x800u : 0x10000u);
            if (taken == more && shortest && value <= 0x10ffff && (value < 0xd800 || value > 0xdfff)) {
                in += more;
                c = value;
            } else {
                more = -1;
            }
        }
        if (more < 0) c = 0xfffd;
        if (c >= 0x10000) {
            *to++ = static_cast<OLECHAR>(0xd800 + ((c - 0x10000) >> 10));
            c = 0xdc00 + ((c - 0x10000) & 0x3ff);
        }
        *to++ = static_cast<OLECHAR>(c);
    }
    *to = 0;
}
#endif

// A text in UTF-16: on the stack while it needs at most 1024 bytes.
class WideText {
public:
    explicit WideText(const char* text) noexcept {
        const size_t units = std::strlen(text) + 1;
        if (units * sizeof(OLECHAR) > sizeof near_) {
            far_.reset(new (std::nothrow) OLECHAR[units]);
            if (!far_) return;
            units_ = far_.get();
        } else {
            units_ = near_;
        }
        Widen(text, units_, units);
    }
    OLECHAR* get() const noexcept { return units_; }  // null when memory was short

private:
    OLECHAR near_[512];
    std::unique_ptr<OLECHAR[]> far_;
    OLECHAR* units_ = nullptr;
};

void SetCurrentError(const CLSID& clsid, OLECHAR* description, const IID& iid, DWORD helpContext, OLECHAR* helpFile) {
    ComPtr<ICreateErrorInfo> info;
    if (FAILED(CreateErrorInfo(info.Out()))) return;
    info->SetGUID(iid);
    LPOLESTR source = nullptr;
    if (SUCCEEDED(ProgIDFromCLSID(clsid, &source))) {
        info->SetSource(source);
        CoTaskMemFree(source);
    }
    if (helpContext != 0 && helpFile) {
        info->SetHelpContext(helpContext);
        info->SetHelpFile(helpFile);
    }
    info->SetDescription(description);
    if (const auto error = info.As<IErrorInfo>()) SetErrorInfo(0, error.get());
}

}  // namespace

HRESULT ReportError(const CLSID& clsid, const char* message, const IID& iid, HRESULT result, DWORD helpContext,
                    const char* helpFile) noexcept {
    if (!message) return E_POINTER;
    const WideText description(message);
    if (!description.get()) return E_OUTOFMEMORY;
    const WideText help(helpFile ? helpFile : "");
    if (!help.get()) return E_OUTOFMEMORY;
    SetCurrentError(clsid, description.get(), iid, helpContext, helpFile ? help.get() : nullptr);
    return result ? result : DISP_E_EXCEPTION;
}

HRESULT ReportErrorResource(const CLSID& clsid, WORD resource, const IID& iid, HRESULT result) noexcept {
    OLECHAR text[1024] = OLESTR("Unknown Error");
#ifdef _WIN32
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&SetCurrentError), &module);
    OLECHAR loaded[1024];
    if (LoadStringW(module, resource, loaded, 1024) > 0) std::memcpy(text, loaded, sizeof text);
#endif
    SetCurrentError(clsid, text, iid, 0, nullptr);
    return result ? result : static_cast<HRESULT>(0x80040000u | resource);
}

}  // namespace orlix
