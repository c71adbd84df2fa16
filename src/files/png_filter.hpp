// Row filters. Each byte is stored as its difference, modulo 256, from a prediction. The prediction uses the bytes at
// the same position of the pixels on the left (a), above (b) and above left (c), which are 0 outside the image.
#pragma once

#include <cstddef>
#include <cstdint>

#include "vectors/inline.hpp"
#include "vectors/variants.hpp"

namespace orlix::png {

enum Filter : uint8_t { kNone = 0, kSub = 1, kUp = 2, kAverage = 3, kPaeth = 4 };
constexpr uint8_t kFilters = 5;

// The one of a, b and c that is nearest to a + b - c; of equally near ones the first in the order a, b, c.
// With low = min(a, b) and high = max(a, b), that is: high if c lies below low or is at least twice as near to low as
// to high; low if c lies above high or is at least twice as near to high; c otherwise. Both conditions are linear in t
// = 3 c - (a + b). This form compiles to conditional moves, which matters because each byte waits for the one before.
ORLIX_INLINE constexpr uint8_t Paeth(int a, int b, int c) {
    const int low = a < b ? a : b;
    const int high = a < b ? b : a;
    const int t = 3 * c - (a + b);
    const int upper = t >= high ? low : c;
    return static_cast<uint8_t>(t <= low ? high : upper);
}

// The prediction of a byte, by its definition.
ORLIX_INLINE constexpr uint8_t Predict(Filter filter, int a, int b, int c) {
    switch (filter) {
        case kSub:
            return static_cast<uint8_t>(a);
        case kUp:
            return static_cast<uint8_t>(b);
        case kAverage:
            return static_cast<uint8_t>((a + b) >> 1);
        case kPaeth:
            return Paeth(a, b, c);
        default:
            return 0;
    }
}

// In both kernels `pixel` is the number of bytes of a pixel: 1, 2, 3, 4, 6 or 8 (1 for pixels smaller than a byte), and
// `size`, the bytes of a row, is a multiple of it.
//
// Undoes the filters of rows in place. Each row stands behind the byte that names its filter, one of the five; the next
// one follows at once. `above` is the row above the first, already undone, or zeros.
using UnfilterFn = void (*)(uint8_t* rows, size_t count, const uint8_t* above, size_t size, size_t pixel);

// Applies a filter. `filtered` must not overlap the rows. Returns the sum of the absolute differences, taken as signed
// bytes: a row with a smaller sum usually compresses better.
using ApplyFilterFn = uint64_t (*)(Filter filter, const uint8_t* row, const uint8_t* above, size_t size, size_t pixel,
                                   uint8_t* filtered);

Kernel<UnfilterFn> Unfilter_scalar, Unfilter_sse2, Unfilter_avx2;
Kernel<ApplyFilterFn> ApplyFilter_scalar, ApplyFilter_sse2, ApplyFilter_avx2;

// A byte waits for the one before it, so vectors hold bytes of different rows: kUnfilterRows of them at most.
inline constexpr size_t kUnfilterRows = 32;
inline constexpr Variant<UnfilterFn> kUnfilter[] = {
    {"avx2", Cpu::Avx2, &Unfilter_avx2},
    {"sse2", Cpu::Sse2, &Unfilter_sse2},
    {"scalar", Cpu::Any, &Unfilter_scalar},
};
inline constexpr Variant<ApplyFilterFn> kApplyFilter[] = {
    {"avx2", Cpu::Avx2, &ApplyFilter_avx2},
    {"sse2", Cpu::Sse2, &ApplyFilter_sse2},
    {"scalar", Cpu::Any, &ApplyFilter_scalar},
};

}  // namespace orlix::png
