#include "pictures/windows/picture_scripts.hpp"

// The zoom for scripts: IPictureExZoomDisp.

#include <algorithm>
#include <iterator>

#include "platform/module_file.hpp"

namespace orlix {

namespace {

// Numbered by the contract.
enum Property : DISPID { kWidth = 1, kHeight, kZoomFactor, kZoomCenterX, kZoomCenterY };

constexpr struct {
    const wchar_t* name;
    Property id;
} kProperties[] = {{L"Width", kWidth},
                   {L"Height", kHeight},
                   {L"ZoomFactor", kZoomFactor},
                   {L"ZoomCenterX", kZoomCenterX},
                   {L"ZoomCenterY", kZoomCenterY}};

HRESULT GetProperty(const ZoomState& zoom, DISPID id, VARIANT& result) {
    switch (id) {
        case kWidth:
        case kHeight:
            result.vt = VT_I4;
            result.lVal = id == kWidth ? zoom.width() : zoom.height();
            return S_OK;
        case kZoomFactor:
        case kZoomCenterX:
        case kZoomCenterY:
            result.vt = VT_R8;
            result.dblVal = id == kZoomFactor ? zoom.factor() : id == kZoomCenterX ? zoom.centerX() : zoom.centerY();
            return S_OK;
        default:
            return DISP_E_MEMBERNOTFOUND;
    }
}

HRESULT PutProperty(ZoomState& zoom, DISPID id, double value) {
    switch (id) {
        case kZoomFactor:
            zoom.PutFactor(value);
            return S_OK;
        case kZoomCenterX:
            zoom.PutCenterX(value);
            return S_OK;
        case kZoomCenterY:
            zoom.PutCenterY(value);
            return S_OK;
        default:
            return DISP_E_MEMBERNOTFOUND;
    }
}

// Translates the reported result of a property's put or get for a script.
HRESULT ExceptionOf(HRESULT result, EXCEPINFO* exception) {
    if (SUCCEEDED(result) || result == DISP_E_MEMBERNOTFOUND) return result;
    if (!exception) return DISP_E_EXCEPTION;
    *exception = {};
    exception->scode = result;
    ComPtr<IErrorInfo> info;
    if (GetErrorInfo(0, info.Out()) == S_OK) {
        info->GetSource(&exception->bstrSource);
        info->GetDescription(&exception->bstrDescription);
    }
    return DISP_E_EXCEPTION;
}

}  // namespace

STDMETHODIMP PictureScripts::GetTypeInfoCount(UINT* count) noexcept {
    if (!count) return E_POINTER;
    *count = 1;
    return S_OK;
}

STDMETHODIMP PictureScripts::GetTypeInfo(UINT index, LCID, ITypeInfo** info) noexcept {
    if (!info) return E_POINTER;
    *info = nullptr;
    if (index != 0) return DISP_E_BADINDEX;
    return Guarded([&] {
        ComPtr<ITypeLib> library;
        PassOn(LoadTypeLibEx(ModulePath().c_str(), REGKIND_NONE, library.Out()));
        PassOn(library->GetTypeInfoOfGuid(__uuidof(IPictureExZoomDisp), info));
    });
}

STDMETHODIMP PictureScripts::GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID, DISPID* ids) noexcept {
    if (iid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
    if (!names || !ids) return E_POINTER;
    bool all = true;
    for (UINT i = 0; i < count; ++i) {
        const auto found = std::find_if(std::begin(kProperties), std::end(kProperties), [&](const auto& property) {
            // Only the first name can be a property; the others name arguments, of which there are none.
            return i == 0 && names[i] && lstrcmpiW(names[i], property.name) == 0;
        });
        ids[i] = DISPID_UNKNOWN;
        if (found != std::end(kProperties)) ids[i] = found->id;
        all = all && found != std::end(kProperties);
    }
    return all ? S_OK : DISP_E_UNKNOWNNAME;
}

STDMETHODIMP PictureScripts::Invoke(DISPID id, REFIID iid, LCID, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                                    EXCEPINFO* exception, UINT* badArgument) noexcept {
    if (iid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
    if (!arguments) return E_POINTER;
    // Numbers are set by value: DISPATCH_PROPERTYPUTREF is not supported.
    if (flags & DISPATCH_PROPERTYPUT) {
        if (arguments->cArgs != 1) return DISP_E_BADPARAMCOUNT;
        VARIANT number;
        VariantInit(&number);
        const HRESULT changed = VariantChangeType(&number, &arguments->rgvarg[0], 0, VT_R8);
        if (FAILED(changed)) {
            if (badArgument) *badArgument = 0;
            return changed;
        }
        return ExceptionOf(Guarded([&] { return PutProperty(picture().zoom, id, number.dblVal); }), exception);
    }
    if (!(flags & (DISPATCH_PROPERTYGET | DISPATCH_METHOD))) return DISP_E_MEMBERNOTFOUND;
    if (arguments->cArgs != 0) return DISP_E_BADPARAMCOUNT;
    VARIANT value;
    VariantInit(&value);
    const HRESULT got = Guarded([&] { return GetProperty(picture().zoom, id, value); });
    if (SUCCEEDED(got) && result) *result = value;
    return ExceptionOf(got, exception);
}

}  // namespace orlix
