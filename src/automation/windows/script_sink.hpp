// Events for scripts.
#pragma once

#include <orlix/orlix.h>

#include <orlix/com_ptr.hpp>

namespace orlix::automation {

// Whether scripts connect to the events of a source interface under this identifier.
bool IsEventsForScripts(REFIID iid, REFIID source) noexcept;

// What connects a script's object to the events of a source interface: it has that interface and passes the events on.
// Null for other interfaces and objects. May throw std::bad_alloc.
ComPtr<IUnknown> ConnectScript(IUnknown* sink, REFIID source);

}  // namespace orlix::automation
