// What a client may pass where an address or a device context is wanted.
#pragma once

#include <cstdint>

namespace orlix::fuzz {

// One of: null, small numbers, the end of the address space, a page that cannot be read, one that cannot be written,
// the last bytes of one before a page that cannot be read.
void* HostileAddress(unsigned which);

// On Windows a context of memory, null, or what is no context; elsewhere the latter two.
void* DeviceContext(uint8_t choice);
// What becomes of the bitmaps that the library makes for one.
void DeleteBitmap(void* bitmap);

}  // namespace orlix::fuzz
