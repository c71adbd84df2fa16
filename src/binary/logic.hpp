// Logic, counting and translation of whole bitmaps in place, at the speed of memory.
//
// Operations change the pixels of the region and no others, and mark its rows; a region has the bitmap's size. Bits
// beyond the width hold anything before and after.
#pragma once

#include <cstdint>

#include "binary/bit_plane.hpp"

namespace orlix {

// What a pixel becomes, given another one.
enum class BitLogic : uint8_t {
    And,     // itself and the other
    Or,      // itself or the other
    Xor,     // itself or the other, not both
    AndNot,  // itself and not the other
    Copy,    // the other
    Not,     // the opposite of the other
};

// Each pixel of the region is combined with the one at the same place of `with`, which has the bitmap's size. `with`
// may lie in the bitmap's own memory in any way: the result is as if it had been copied before. std::bad_alloc, and
// then nothing is changed. The memory from its first row to its last is readable.
void Combine(BitmapStore& bitmap, BitLogic how, const BitRows& with, const RegionRows& region);

inline void Invert(BitmapStore& bitmap, const RegionRows& region) {
    Combine(bitmap, BitLogic::Not, RowsOf(bitmap), region);
}

// The number of set pixels of the region.
int64_t CountPixels(const BitRows& bitmap, const RegionRows& region);

// Each pixel (x, y) of the region becomes what (x - right, y - down) was, background where that lies outside the
// bitmap. Any distance. std::bad_alloc, and then nothing is changed.
void Translate(BitmapStore& bitmap, int32_t right, int32_t down, const RegionRows& region);

}  // namespace orlix
