// The colour table of an indexed image, and the rule that chooses between one band and three.
#pragma once

#include <array>
#include <cstdint>

namespace orlix {

struct Palette {
    int32_t count = 0;                                // entries in use, 0..256
    std::array<std::array<uint8_t, 256>, 3> level{};  // [red, green, blue][index]
};

// The indices that pixels use.
using UsedIndices = std::array<bool, 256>;

// Whether every index in use has an entry.
inline bool Covers(const Palette& palette, const UsedIndices& used) {
    for (size_t i = static_cast<size_t>(palette.count); i < 256; ++i)
        if (used[i]) return false;
    return true;
}

// Whether every entry in use is grey.
inline bool IsGrey(const Palette& palette, const UsedIndices& used) {
    for (size_t i = 0; i < 256; ++i)
        if (used[i] && (palette.level[0][i] != palette.level[1][i] || palette.level[0][i] != palette.level[2][i]))
            return false;
    return true;
}

}  // namespace orlix
