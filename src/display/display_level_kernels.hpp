// Kernels that map pixels to display levels, and their variants.
#pragma once

#include <bit>
#include <cmath>
#include <limits>

#include "display/display_levels.hpp"
#include "vectors/variants.hpp"

namespace orlix {

template <class T>
using LevelFn = void (*)(const T* pixels, size_t n, const LevelRange<T>& range, uint8_t* levels);

// c = p clamped to the range, x = c - least, or most - c when falling, d = most - least.
// Integers: floor(255 x / d + 1/2), exact. float: floor(x (255 / d) + 0.5) in double; NaN gives level 0. All levels are
// 0 when d is 0.
template <class T>
void Levels_scalar(const T* pixels, size_t n, const LevelRange<T>& range, uint8_t* levels);

Kernel<LevelFn<uint16_t>> Levels_sse2, Levels_avx2, Levels_avx512;
Kernel<LevelFn<uint32_t>> Levels_sse2, Levels_avx2, Levels_avx512;
Kernel<LevelFn<float>> Levels_sse2, Levels_avx2, Levels_avx512;

// 8 bits: the look-up table, see LevelMapping.
template <class T>
inline constexpr Variant<LevelFn<T>> kLevels[] = {
    {"avx512", Cpu::Avx512, &Levels_avx512},
    {"avx2", Cpu::Avx2, &Levels_avx2},
    {"sse2", Cpu::Sse2, &Levels_sse2},
    {"scalar", Cpu::Any, &Levels_scalar},
};

namespace {  // used in files of every instruction set: each keeps its own copy

// Parameters of the vector variants of 32 bits and float, which compute floor((c - zero) scale + half) in double. For
// integers half is slightly more than 0.5, so that rounding the scale and the product cannot take an exact half below
// the next integer: every value that is not a half is at least 1 / (2 d) >= 2^-33 away from one, and the rounding
// errors amount to less than 2^-42.
struct LevelLine {
    double least, most, zero, scale, half;
    template <class T>
    explicit LevelLine(const LevelRange<T>& range)
        : least(range.least),
          most(range.most),
          zero(range.falling ? most : least),
          scale(most > least ? (range.falling ? -255.0 : 255.0) / (most - least) : 0.0),
          half(T(0.5f) > 0 ? 0.5 : 0.5 + 0x1p-36) {}
};

// The same line in single precision, which decides most levels of float: three roundings of 2^-24 each, of values up to
// 255, and one of 2^-17 are less than kDoubt. Where a value is that near to an integer, or not finite, it is computed
// in double.
struct FloatLevelLine {
    static constexpr float kDoubt = 0x1p-13f;
    float zero, scale;
    explicit FloatLevelLine(const LevelLine& line)
        : zero(static_cast<float>(line.zero)),
          scale(std::abs(line.scale) <= static_cast<double>(std::numeric_limits<float>::max())
                    ? static_cast<float>(line.scale)
                    : std::numeric_limits<float>::quiet_NaN()) {}
};

// Parameters of the vector variants of 16 bits, which compute levels in 16-bit numbers, in units of 2^-23:
//   x = min((p ^ flip) - offset, or 0 where that is less, length) 2^shift
//   level = (65536 high x + floor(low x / 65536) + 1 + 65536 half) / 2^23, rounded down
// high and low are the halves of 255 2^39 / (d 2^shift), rounded up, which is below 2^32 because d 2^shift is at least
// 2^15. The sum exceeds 255 x / d + 1/2 by more than 0 and less than 2 units, and a value below an integer is at least
// 1 / (2 d) > 64 units below it.
struct WordLevelLine {
    uint16_t flip, offset, length, high = 0, low = 0, half = 0;
    int shift = 0;
    explicit WordLevelLine(const LevelRange<uint16_t>& range)
        : flip(range.falling ? 0xffff : 0),
          offset(static_cast<uint16_t>((range.falling ? range.most : range.least) ^ flip)),
          length(static_cast<uint16_t>(range.most - range.least)) {
        if (length == 0) return;
        shift = std::countl_zero(length);
        const uint32_t scaled = uint32_t{length} << shift;
        const uint64_t factor = ((uint64_t{255} << 39) + scaled - 1) / scaled;
        high = static_cast<uint16_t>(factor >> 16);
        low = static_cast<uint16_t>(factor);
        half = 1 << 6;
    }
};

}  // namespace

}  // namespace orlix
