// Row filters. Each byte is stored as its difference, modulo 256, from a prediction. The prediction uses the bytes at
// the same position of the pixels on the left (a), above (b) and above left (c), which are 0 outside the image.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orlix::png {

enum Filter : uint8_t { kNone = 0, kSub = 1, kUp = 2, kAverage = 3, kPaeth = 4 };
constexpr uint8_t kFilters = 5;

// The one of a, b and c that is nearest to a + b - c; of equally near ones the first in the order a, b, c.
// With low = min(a, b) and high = max(a, b), that is: high if c lies below low or is at least twice as near to low as
// to high; low if c lies above high or is at least twice as near to high; c otherwise. Both conditions are linear in t
// = 3 c - (a + b). This form compiles to conditional moves, which matters because each byte waits for the one before.
constexpr uint8_t Paeth(int a, int b, int c) {
    const int low = a < b ? a : b;
    const int high = a < b ? b : a;
    const int t = 3 * c - (a + b);
    const int upper = t >= high ? low : c;
    return static_cast<uint8_t>(t <= low ? high : upper);
}

// Undoes a filter in place. `above` is the row above, already undone, or zeros. `pixel` is the number of bytes of a
// pixel: 1, 2, 3, 4, 6 or 8 (1 for pixels smaller than a byte). `size`, the bytes of a row, is a multiple of it.
// Returns false and does nothing for an unknown filter.
bool Unfilter(uint8_t filter, uint8_t* row, const uint8_t* above, size_t size, size_t pixel);

// Applies a filter. `filtered` must not overlap the rows. Returns the sum of the absolute differences, taken as signed
// bytes: a row with a smaller sum usually compresses better.
uint64_t ApplyFilter(Filter filter, const uint8_t* row, const uint8_t* above, size_t size, size_t pixel,
                     uint8_t* filtered);

}  // namespace orlix::png
