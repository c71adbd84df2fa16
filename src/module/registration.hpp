// Registration of all classes of the table.
#pragma once

#include <string_view>

#include "module/registry_store.hpp"

namespace orlix {

// The embedded script with that number. Throws std::out_of_range if there is none.
std::string_view RegistrationText(WORD script);

// Adds the keys of all classes. After a failure no class is left registered. Throws FailedResult with the store's
// result, or ScriptError.
void RegisterClasses(RegistryStore& store, const WideString& modulePath);

// Removes them as far as possible, and throws the first failure at the end.
void UnregisterClasses(RegistryStore& store, const WideString& modulePath);

}  // namespace orlix
