// Whether the graphics library can be started.
#pragma once

#include "platform/graphics_library.hpp"

namespace orlix {

// 0 when the library loads, has its entry points and starts with a token, 1 in every other case. Leaves it unloaded.
int ProbeGraphicsLibrary(GraphicsLibrary& library) noexcept;

}  // namespace orlix
