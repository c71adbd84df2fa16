// Late binding: scripts call the methods of all interfaces of an object by name, through IDispatch.
#pragma once

#include <orlix/orlix.h>

#include "automation/windows/class_members.hpp"

namespace orlix::automation {

// Base of the objects that scripts can use. It needs nothing from them but their interfaces. Notes:
//  (1) Arguments are given by position, by name, or both. Parameters for results are left out, or all those before them
//      are given too; then they are variables to which the results are written. A single result is the call's, several
//      are an object with a field for each.
//  (2) Parameters that have a value for it may be left out (idl/make_dispatch.py); others must not.
//  (3) Methods report as ever; a failure becomes DISP_E_EXCEPTION, whose record has result, text and source.
//  (4) Objects of classes that clients create say which class they are and what its events are.
class Scripted : public IDispatch, public IProvideClassInfo2 {
public:
    STDMETHODIMP GetTypeInfoCount(UINT* count) noexcept override;
    STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) noexcept override;
    STDMETHODIMP GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) noexcept override;
    STDMETHODIMP Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                        EXCEPINFO* exception, UINT* badArgument) noexcept override;
    STDMETHODIMP GetClassInfo(ITypeInfo** info) noexcept override;
    // GUIDKIND_DEFAULT_SOURCE_DISP_IID only: E_INVALIDARG for other kinds, E_NOTIMPL for a class without events.
    STDMETHODIMP GetGUID(DWORD kind, GUID* guid) noexcept override;

protected:
    ~Scripted() = default;

    // This base as IDispatch or as the dispatch interface of the class, or as IProvideClassInfo(2); null for other
    // interfaces, and where scripts cannot call anything.
    void* AsDispatch(REFIID iid) noexcept;

private:
    // May throw std::bad_alloc.
    virtual const ClassMembers& Members() const = 0;
    // The object's own interface, without a reference; null where it does not have it.
    virtual void* Find(REFIID iid) noexcept = 0;
};

}  // namespace orlix::automation
