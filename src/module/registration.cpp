#include "module/registration.hpp"

#include <exception>

#include "module/class_table.hpp"
#include "module/registration_script.hpp"

namespace orlix {

void RegisterClasses(RegistryStore& store, const WideString& modulePath) {
    try {
        for (const ClassRow& row : ClassTable())
            RegistrationScript(RegistrationText(row.script), modulePath).Add(store);
    } catch (...) {
        const std::exception_ptr failure = std::current_exception();
        try {
            UnregisterClasses(store, modulePath);
        } catch (...) {  // keys that cannot be written cannot be removed either; the first failure says more
        }
        std::rethrow_exception(failure);
    }
}

void UnregisterClasses(RegistryStore& store, const WideString& modulePath) {
    std::exception_ptr failure;
    for (const ClassRow& row : ClassTable()) {
        try {
            RegistrationScript(RegistrationText(row.script), modulePath).Remove(store);
        } catch (...) {
            if (!failure) failure = std::current_exception();
        }
    }
    if (failure) std::rethrow_exception(failure);
}

}  // namespace orlix
