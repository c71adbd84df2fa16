// Bitmaps of the system: handles and the clipboard. Outside Windows there are none: every function raises E_NOTIMPL.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace orlix {

// A packed copy of an HBITMAP, in the smallest depth that holds its own. nullopt where it is none; raises E_FAIL where
// the system gives no pixels.
std::optional<std::vector<uint8_t>> PackedSystemBitmap(void* bitmap);

// A packed copy of the bitmap on the clipboard, nullopt where there is none; and a packed bitmap to put there in place
// of everything else. Both raise MethodFailure("the clipboard is in use.").
std::optional<std::vector<uint8_t>> PackedClipboardBitmap();
void PutOnClipboard(std::span<const uint8_t> packed);

}  // namespace orlix
