// Whether the graphics library can be started.
#pragma once

#include "platform/graphics_library.hpp"

namespace orlix {

// Returns 0 if the library loads, has its entry points and starts with a token, otherwise 1. Leaves it unloaded.
int ProbeGraphicsLibrary(GraphicsLibrary& library) noexcept;

}  // namespace orlix
