// Addresses that a client may pass although nothing, or less than it says, is there.
#pragma once

#include <cstddef>

namespace orlix::fuzz {

// One of: null, small numbers, the end of the address space, a page that cannot be read, one that cannot be written,
// the last bytes of one before a page that cannot be read.
void* HostileAddress(unsigned which);

}  // namespace orlix::fuzz
