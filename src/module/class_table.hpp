// The classes that clients create, one row each, in the order of the type library.
#pragma once

#include <orlix/orlix.h>

#include <cstddef>
#include <span>

namespace orlix {

using CreateFunction = HRESULT (*)(IUnknown* outer, REFIID iid, void** object) noexcept;

struct ClassRow {
    const CLSID* clsid;
    WORD script;            // number of its registration script
    CreateFunction create;  // null for a class that is not built yet: it is registered, but cannot be created
};

constexpr size_t kNumberOfClasses = 14;

std::span<const ClassRow, kNumberOfClasses> ClassTable() noexcept;

}  // namespace orlix
