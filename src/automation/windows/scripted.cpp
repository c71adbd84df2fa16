#include "automation/windows/scripted.hpp"

#include <new>

#include <orlix/com_ptr.hpp>

#include "automation/windows/script_call.hpp"
#include "automation/windows/script_values.hpp"
#include "platform/floating_point.hpp"
#include "platform/module_file.hpp"

namespace orlix::automation {
namespace {

bool IsWellFormed(const DISPPARAMS& arguments) noexcept {
    return arguments.cNamedArgs <= arguments.cArgs && (arguments.cArgs == 0 || arguments.rgvarg) &&
           (arguments.cNamedArgs == 0 || arguments.rgdispidNamedArgs);
}

// The method that the flags ask for; null if the member has none. Only objects are set by reference.
const Method* Chosen(const Member& member, WORD flags) noexcept {
    if (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) {
        const Method* const put = member.methods[kPut];
        const bool fits = put && ((flags & DISPATCH_PROPERTYPUT) || put->parameters.back().kind == Kind::Object);
        return fits ? put : nullptr;
    }
    // A property without arguments is also read by a call, as some languages do.
    if ((flags & (DISPATCH_PROPERTYGET | DISPATCH_METHOD)) && member.methods[kGet]) return member.methods[kGet];
    return flags & DISPATCH_METHOD ? member.methods[kCall] : nullptr;
}

// The number of a parameter.
DISPID ParameterOf(const Member& member, std::string_view smallLetters) noexcept {
    for (const Method* method : member.methods) {
        if (!method) continue;
        const Parameters parameters(*method);
        for (size_t i = 0; i < parameters.numbered().size(); ++i)
            if (IsNamed(method->parameters[parameters.numbered()[i]].name, smallLetters)) return static_cast<DISPID>(i);
    }
    return DISPID_UNKNOWN;
}

// What the method reported, for a script.
HRESULT ExceptionOf(HRESULT result, EXCEPINFO* exception) noexcept {
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

// A type of the module's type library. May throw std::bad_alloc.
HRESULT FindType(REFGUID guid, ITypeInfo** info) {
    ComPtr<ITypeLib> library;
    const HRESULT loaded = LoadTypeLibEx(ModulePath().c_str(), REGKIND_NONE, library.Out());
    return FAILED(loaded) ? loaded : library->GetTypeInfoOfGuid(guid, info);
}

}  // namespace

void* Scripted::AsDispatch(REFIID iid) noexcept {
    const bool isClassInfo = iid == __uuidof(IProvideClassInfo) || iid == __uuidof(IProvideClassInfo2);
    bool isDispatch = iid == __uuidof(IDispatch);
    for (const Dispinterface& row : kDispinterfaces) isDispatch = isDispatch || *row.iid == iid;
    for (const ScriptClass& row : kScriptClasses) isDispatch = isDispatch || row.iid == iid;
    if (!isDispatch && !isClassInfo) return nullptr;
    try {
        const ClassMembers& members = Members();
        const ScriptClass* const row = members.scriptClass();
        if (isClassInfo) return row && row->coclass ? static_cast<IProvideClassInfo2*>(this) : nullptr;
        const Dispinterface* const numbered = members.dispinterface();
        const bool answers = iid == __uuidof(IDispatch)
                                 ? !members.empty()
                                 : (row && row->iid == iid) || (numbered && *numbered->iid == iid);
        return answers ? static_cast<IDispatch*>(this) : nullptr;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

STDMETHODIMP Scripted::GetTypeInfoCount(UINT* count) noexcept {
    if (!count) return E_POINTER;
    *count = 0;
    try {
        *count = Members().scriptClass() ? 1 : 0;
        return S_OK;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

STDMETHODIMP Scripted::GetTypeInfo(UINT index, LCID, ITypeInfo** info) noexcept {
    if (!info) return E_POINTER;
    *info = nullptr;
    try {
        const ScriptClass* const row = Members().scriptClass();
        if (index != 0 || !row) return DISP_E_BADINDEX;
        return FindType(row->iid, info);
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

STDMETHODIMP Scripted::GetClassInfo(ITypeInfo** info) noexcept {
    if (!info) return E_POINTER;
    *info = nullptr;
    try {
        return FindType(*Members().scriptClass()->coclass, info);  // others do not answer this interface
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

STDMETHODIMP Scripted::GetGUID(DWORD kind, GUID* guid) noexcept {
    if (!guid) return E_POINTER;
    *guid = GUID_NULL;
    if (kind != GUIDKIND_DEFAULT_SOURCE_DISP_IID) return E_INVALIDARG;
    try {
        const IID* const events = Members().scriptClass()->events;
        if (events) *guid = *events;
        return events ? S_OK : E_NOTIMPL;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

// The first name is a member's, the others those of its parameters.
STDMETHODIMP Scripted::GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID, DISPID* ids) noexcept {
    if (iid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
    if (!names || !ids) return E_POINTER;
    try {
        const Member* const member = count > 0 ? Members().Find(ScriptName(names[0]).text()) : nullptr;
        bool all = true;
        for (UINT i = 0; i < count; ++i) {
            ids[i] = !member ? DISPID_UNKNOWN : i == 0 ? member->id : ParameterOf(*member, ScriptName(names[i]).text());
            all = all && ids[i] != DISPID_UNKNOWN;
        }
        return all ? S_OK : DISP_E_UNKNOWNNAME;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

STDMETHODIMP Scripted::Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                              EXCEPINFO* exception, UINT* badArgument) noexcept {
    if (iid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
    if (!arguments) return E_POINTER;
    if (!IsWellFormed(*arguments)) return E_INVALIDARG;
    const ComPtr<IDispatch> alive(this);
    const FloatingPointScope arithmetic;
    try {
        const Member* const member = Members().Find(id);
        const Method* const method = member ? Chosen(*member, flags) : nullptr;
        if (!method) return DISP_E_MEMBERNOTFOUND;
        void* const object = Find(*method->iid);
        if (!object) return DISP_E_MEMBERNOTFOUND;
        ScriptCall call(*method, locale);
        call.Take(*arguments);
        const HRESULT called = call.Run(object);
        if (FAILED(called)) return ExceptionOf(called, exception);
        call.Give(result);
        return S_OK;
    } catch (const BadCall& bad) {
        if (badArgument) *badArgument = bad.argument;
        return bad.result;
    } catch (...) {  // arrays that are too large have exceptions of their own
        return E_OUTOFMEMORY;
    }
}

}  // namespace orlix::automation
