#include <orlix/orlix.h>
#include <orlix/counted_object.hpp>

#include <new>
#include <string>

#include "text/wide_string.hpp"

namespace {

// The plain error information object: what is put into it can be read from it.
class ErrorInfo final : public orlix::CountedObject<IErrorInfo, ICreateErrorInfo> {
public:
    STDMETHODIMP GetGUID(GUID* guid) noexcept override {
        if (!guid) return E_POINTER;
        *guid = guid_;
        return S_OK;
    }
    STDMETHODIMP GetSource(BSTR* source) noexcept override { return Copy(source_, source); }
    STDMETHODIMP GetDescription(BSTR* description) noexcept override { return Copy(description_, description); }
    STDMETHODIMP GetHelpFile(BSTR* helpFile) noexcept override { return Copy(helpFile_, helpFile); }
    STDMETHODIMP GetHelpContext(DWORD* helpContext) noexcept override {
        if (!helpContext) return E_POINTER;
        *helpContext = helpContext_;
        return S_OK;
    }

    STDMETHODIMP SetGUID(REFGUID guid) noexcept override {
        guid_ = guid;
        return S_OK;
    }
    STDMETHODIMP SetSource(LPOLESTR source) noexcept override { return Store(source, source_); }
    STDMETHODIMP SetDescription(LPOLESTR description) noexcept override { return Store(description, description_); }
    STDMETHODIMP SetHelpFile(LPOLESTR helpFile) noexcept override { return Store(helpFile, helpFile_); }
    STDMETHODIMP SetHelpContext(DWORD helpContext) noexcept override {
        helpContext_ = helpContext;
        return S_OK;
    }

private:
    static HRESULT Copy(const orlix::WideString& from, BSTR* to) noexcept {
        if (!to) return E_POINTER;
        *to = nullptr;
        if (from.empty()) return S_OK;
        *to = SysAllocStringLen(from.data(), static_cast<UINT>(from.size()));
        return *to ? S_OK : E_OUTOFMEMORY;
    }
    static HRESULT Store(LPOLESTR from, orlix::WideString& to) noexcept {
        try {
            to = from ? from : u"";
            return S_OK;
        } catch (...) {
            return E_OUTOFMEMORY;
        }
    }

    GUID guid_ = GUID_NULL;
    orlix::WideString source_, description_, helpFile_;
    DWORD helpContext_ = 0;
};

thread_local orlix::ComPtr<IErrorInfo> current;

}  // namespace

HRESULT CreateErrorInfo(ICreateErrorInfo** info) {
    if (!info) return E_INVALIDARG;
    *info = new (std::nothrow) ErrorInfo;
    return *info ? S_OK : E_OUTOFMEMORY;
}

HRESULT SetErrorInfo(ULONG reserved, IErrorInfo* info) {
    if (reserved) return E_INVALIDARG;
    current = orlix::ComPtr<IErrorInfo>(info);
    return S_OK;
}

HRESULT GetErrorInfo(ULONG reserved, IErrorInfo** info) {
    if (reserved || !info) return E_INVALIDARG;
    *info = current.Detach();
    return *info ? S_OK : S_FALSE;
}
