#include <orlix/orlix.h>

#include <atomic>
#include <new>
#include <string>

#include "text/wide_string.hpp"

namespace {

// The plain error information object: what is put into it can be read from it.
class ErrorInfo final : public IErrorInfo, public ICreateErrorInfo {
public:
    STDMETHODIMP QueryInterface(REFIID iid, void** object) noexcept override {
        if (!object) return E_POINTER;
        *object = nullptr;
        if (iid == __uuidof(IUnknown) || iid == __uuidof(IErrorInfo))
            *object = static_cast<IErrorInfo*>(this);
        else if (iid == __uuidof(ICreateErrorInfo))
            *object = static_cast<ICreateErrorInfo*>(this);
        if (!*object) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() noexcept override { return ++references_; }
    STDMETHODIMP_(ULONG) Release() noexcept override {
        const ULONG left = --references_;
        if (left == 0) delete this;
        return left;
    }

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
    ~ErrorInfo() = default;

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

    std::atomic<ULONG> references_{0};
    GUID guid_ = GUID_NULL;
    orlix::WideString source_, description_, helpFile_;
    DWORD helpContext_ = 0;
};

// Owns the thread's reference, so that it goes with the thread.
struct CurrentError {
    IErrorInfo* info = nullptr;
    ~CurrentError() {
        if (info) info->Release();
    }
};
thread_local CurrentError current;

}  // namespace

HRESULT CreateErrorInfo(ICreateErrorInfo** info) {
    if (!info) return E_INVALIDARG;
    *info = new (std::nothrow) ErrorInfo;
    if (!*info) return E_OUTOFMEMORY;
    (*info)->AddRef();
    return S_OK;
}

HRESULT SetErrorInfo(ULONG reserved, IErrorInfo* info) {
    if (reserved) return E_INVALIDARG;
    IErrorInfo* const old = current.info;
    if (info) info->AddRef();
    current.info = info;
    if (old) old->Release();
    return S_OK;
}

HRESULT GetErrorInfo(ULONG reserved, IErrorInfo** info) {
    if (reserved || !info) return E_INVALIDARG;
    *info = current.info;
    current.info = nullptr;
    return *info ? S_OK : S_FALSE;
}
