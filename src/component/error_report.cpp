#include "component/error_report.hpp"

#include <orlix/com_ptr.hpp>

#include <cstring>
#include <memory>
#include <new>

#include "component/local_text.hpp"

namespace orlix {
namespace {

// A text in UTF-16, on the stack if it needs at most 1024 bytes.
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
    OLECHAR* get() const noexcept { return units_; }  // null when memory ran out

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
    LoadText(resource, text);
    SetCurrentError(clsid, text, iid, 0, nullptr);
    return result ? result : static_cast<HRESULT>(0x80040000u | resource);
}

}  // namespace orlix
