#include "orlix_vb_helper/orlix_vb_helper.hpp"

using orlix::LateBinding;

STDMETHODIMP OrlixVBHelper::GetTypeInfoCount(UINT* count) noexcept { return LateBinding::GetTypeInfoCount(count); }

STDMETHODIMP OrlixVBHelper::GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) noexcept {
    return LateBinding::GetTypeInfo(index, locale, info);
}

STDMETHODIMP OrlixVBHelper::GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) noexcept {
    return LateBinding::GetIDsOfNames(iid, names, count, locale, ids);
}

STDMETHODIMP OrlixVBHelper::Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* arguments,
                                   VARIANT* result, EXCEPINFO* exception, UINT* badArgument) noexcept {
    return LateBinding::Invoke(id, iid, locale, flags, arguments, result, exception, badArgument);
}
