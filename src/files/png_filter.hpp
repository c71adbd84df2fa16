// Row filters: each byte is stored as the difference, modulo 256, to a prediction from the bytes at its left (a), above
// it (b) and above left (c), in the same position of the neighbouring pixels. Outside the image they are 0.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orlix::png {

enum Filter : uint8_t { kNone = 0, kSub = 1, kUp = 2, kAverage = 3, kPaeth = 4 };
constexpr uint8_t kFilters = 5;

// The one of a, b and c that is nearest to a + b - c; a before b before c when they are equally near.
// With low and high the smaller and the larger of a and b, that is: high when c lies below low or is at least twice as
// near to low as to high; low when it lies above high or is at least twice as near to high; c otherwise. Both
// conditions are linear in t = 3 c - (a + b). Written so that it compiles to conditional moves: undoing a row waits for
// every byte.
constexpr uint8_t Paeth(int a, int b, int c) {
    const int low = a < b ? a : b;
    const int high = a < b ? b : a;
    const int t = 3 * c - (a + b);
    const int upper = t >= high ? low : c;
    return static_cast<uint8_t>(t <= low ? high : upper);
}

// Undoes a filter in place. `above` is the row above, already undone, or zeros; size: bytes of a row, a multiple of
// pixel; pixel: bytes of a whole pixel, 1, 2, 3, 4, 6 or 8 (1 for pixels smaller than a byte).
// False, and nothing done, for a filter that does not exist.
bool Unfilter(uint8_t filter, uint8_t* row, const uint8_t* above, size_t size, size_t pixel);

// Applies a filter. `filtered` must not overlap the rows. Returns the sum of the differences taken as signed bytes,
// without their signs: the smaller it is, the better a row usually compresses.
uint64_t ApplyFilter(Filter filter, const uint8_t* row, const uint8_t* above, size_t size, size_t pixel,
                     uint8_t* filtered);

}  // namespace orlix::png
