// The module's only lock count: live objects plus locks on class factories.
#pragma once

namespace orlix {

void LockModule() noexcept;
void UnlockModule() noexcept;
bool ModuleIsLocked() noexcept;

}  // namespace orlix
