#include <orlix/orlix.h>

#include "component/module_lock.hpp"
#include "module/class_factory.hpp"

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** factory) {
    return orlix::GetClassFactory(clsid, iid, factory);
}

STDAPI DllCanUnloadNow() { return orlix::ModuleIsLocked() ? S_FALSE : S_OK; }
