#include <orlix/orlix.h>

#include "module/class_factory.hpp"
#include "platform/module_lock.hpp"

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** factory) {
    return orlix::GetClassFactory(clsid, iid, factory);
}

STDAPI DllCanUnloadNow() { return orlix::ModuleIsLocked() ? S_FALSE : S_OK; }
