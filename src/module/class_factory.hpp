// The class factories: one for each class that is built. They live as long as the module.
#pragma once

#include <orlix/orlix.h>

namespace orlix {

// CLASS_E_CLASSNOTAVAILABLE for a class that is not in the table or not built.
HRESULT GetClassFactory(REFCLSID clsid, REFIID iid, void** factory) noexcept;

}  // namespace orlix
