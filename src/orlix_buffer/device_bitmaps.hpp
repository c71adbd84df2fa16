// Bitmaps of the system. Outside Windows there are none: E_NOTIMPL.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace orlix {

// A packed copy of an HBITMAP, in the smallest depth that holds its own. nullopt where it is none; raises E_FAIL where
// the system gives no pixels.
std::optional<std::vector<uint8_t>> PackedSystemBitmap(void* bitmap);

}  // namespace orlix
