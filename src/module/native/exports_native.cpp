#include <orlix/orlix.h>

#include <mutex>
#include <string>

#include <orlix/com_ptr.hpp>

#include "module/class_factory.hpp"
#include "module/registration.hpp"
#include "module/result_of.hpp"
#include "platform/module_file.hpp"
#include "platform/process_registry.hpp"

namespace orlix {
namespace {

std::once_flag registered;

// The first look-up fills the store of the process, unless the client has already registered or unregistered the module
// itself. Failures look up the names that they report as their source, so this also serves clients that only use
// DllGetClassObject.
HRESULT EnsureRegistered() noexcept {
    return ResultOf([] { std::call_once(registered, [] { RegisterClasses(*OpenRegistry(), ModulePath()); }); });
}

[[maybe_unused]] const bool prepared = [] {
    ProcessRegistry::OfThisProcess().PrepareLookUpsWith(&EnsureRegistered);
    return true;
}();

bool IsRegistered(REFCLSID clsid) {
    OLECHAR identifier[39];
    StringFromGUID2(clsid, identifier, 39);
    return ProcessRegistry::OfThisProcess().HasKey(orlix::WideString(u"HKCR\\CLSID\\") + identifier +
                                                   u"\\InprocServer32");
}

}  // namespace
}  // namespace orlix

STDAPI DllRegisterServer() {
    return orlix::ResultOf([] {
        std::call_once(orlix::registered, [] {});
        orlix::RegisterClasses(*orlix::OpenRegistry(), orlix::ModulePath());
    });
}

STDAPI DllUnregisterServer() {
    return orlix::ResultOf([] {
        std::call_once(orlix::registered, [] {});
        orlix::UnregisterClasses(*orlix::OpenRegistry(), orlix::ModulePath());
    });
}

// There is no such library off Windows.
EXTERN_C ORLIX_API int NeedGdiPlus() { return 1; }

HRESULT CLSIDFromProgID(LPCOLESTR progid, CLSID* clsid) {
    if (!progid || !clsid) return E_INVALIDARG;
    *clsid = GUID_NULL;
    if (const HRESULT result = orlix::ProcessRegistry::OfThisProcess().PrepareLookUp(); FAILED(result)) return result;
    HRESULT found = CO_E_CLASSSTRING;
    const HRESULT result = orlix::ResultOf([&] {
        using orlix::ProcessRegistry;
        const auto text =
            ProcessRegistry::OfThisProcess().FindText(orlix::WideString(u"HKCR\\") + progid + u"\\CLSID", u"");
        if (text) found = CLSIDFromString(text->c_str(), clsid);
    });
    return FAILED(result) ? result : found;
}

HRESULT CoGetClassObject(REFCLSID clsid, DWORD context, void*, REFIID iid, void** object) {
    if (!object) return E_INVALIDARG;
    *object = nullptr;
    if (!(context & CLSCTX_INPROC_SERVER)) return REGDB_E_CLASSNOTREG;
    if (const HRESULT result = orlix::ProcessRegistry::OfThisProcess().PrepareLookUp(); FAILED(result)) return result;
    bool known = false;
    const HRESULT result = orlix::ResultOf([&] { known = orlix::IsRegistered(clsid); });
    if (FAILED(result)) return result;
    return known ? orlix::GetClassFactory(clsid, iid, object) : REGDB_E_CLASSNOTREG;
}

HRESULT CoCreateInstance(REFCLSID clsid, IUnknown* outer, DWORD context, REFIID iid, void** object) {
    if (!object) return E_POINTER;
    *object = nullptr;
    orlix::ComPtr<IClassFactory> factory;
    const HRESULT result = CoGetClassObject(clsid, context, nullptr, __uuidof(IClassFactory), factory.OutVoid());
    return FAILED(result) ? result : factory->CreateInstance(outer, iid, object);
}
