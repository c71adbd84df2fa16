#include "orlix_vb_helper/orlix_vb_helper.hpp"

// There are no scripts.
STDMETHODIMP OrlixVBHelper::GetTypeInfoCount(UINT* count) noexcept {
    if (!count) return E_POINTER;
    *count = 0;
    return S_OK;
}

STDMETHODIMP OrlixVBHelper::GetTypeInfo(UINT, LCID, ITypeInfo** info) noexcept {
    if (!info) return E_POINTER;
    *info = nullptr;
    return E_NOTIMPL;
}

STDMETHODIMP OrlixVBHelper::GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) noexcept { return E_NOTIMPL; }

STDMETHODIMP OrlixVBHelper::Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) noexcept {
    return E_NOTIMPL;
}
