// What a client may pass as a device context, and what becomes of the bitmaps that the library makes for it.
#pragma once

#include <cstdint>

namespace orlix::fuzz {

// On Windows a context of memory, null, or what is no context; elsewhere the latter two.
void* DeviceContext(uint8_t choice);
void DeleteBitmap(void* bitmap);

}  // namespace orlix::fuzz
