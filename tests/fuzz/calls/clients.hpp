// Objects of other components that lie and call back: whatever the library calls of a client is a chance to call the
// library.
#pragma once

#include "fuzz/calls/world.hpp"

namespace orlix::fuzz {

// A new client that answers the interface, null when no client of the library implements it.
ComPtr<IUnknown> MakeClientOf(World& world, const IID& iid);
// Whether the object is one of these.
bool IsClient(IUnknown* object);
// An outer object around a new object of the class: its own IUnknown. Null when the class is not made that way.
ComPtr<IUnknown> MakeOuter(World& world, const CLSID& clsid);

}  // namespace orlix::fuzz
