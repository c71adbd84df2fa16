// Registration of all classes of the table.
#pragma once

#include <string_view>

#include "module/registry_store.hpp"

namespace orlix {

// The script of that number, embedded in the module. std::out_of_range when there is none.
std::string_view RegistrationText(WORD script);

// Adds the keys of every class. After a failure, which is raised, nothing of the classes is left registered.
// FailedResult with what the store answered; ScriptError.
void RegisterClasses(RegistryStore& store, const WideString& modulePath);

// Removes them, as far as possible, and raises the first failure at the end.
void UnregisterClasses(RegistryStore& store, const WideString& modulePath);

}  // namespace orlix
