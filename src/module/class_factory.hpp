// The class factories: one for each class that is built. They live as long as the module.
#pragma once

#include <orlix/orlix.h>

namespace orlix {

// CLASS_E_CLASSNOTAVAILABLE for a class that is not in the table, and for one that is not built, which is reported:
// "This class is not built yet."
HRESULT GetClassFactory(REFCLSID clsid, REFIID iid, void** factory) noexcept;

}  // namespace orlix
