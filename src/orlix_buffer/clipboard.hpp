// The system's clipboard. Outside Windows there is none: every function raises E_NOTIMPL.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace orlix {

enum class ClipboardFormat {
    Bitmap,  // CF_DIB: header, colour table and bits
    Png,     // a PNG file, by the name that programs have agreed upon
    Text,    // CF_UNICODETEXT: UTF-16 with a terminator
};

struct ClipboardItem {
    ClipboardFormat format;
    std::span<const uint8_t> bytes;
};

// All functions raise MethodFailure("the clipboard is in use.").

// A copy of what is there in a format, nullopt for nothing. The system may append bytes.
std::optional<std::vector<uint8_t>> FromClipboard(ClipboardFormat format);

// Puts the same thing there in several formats, in place of everything else. After a failure the clipboard may be
// empty.
void ToClipboard(std::span<const ClipboardItem> items);

}  // namespace orlix
