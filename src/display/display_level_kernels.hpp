// Kernels that map pixels to display levels, and their variants.
#pragma once

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

// Parameters of the vector variants, which compute floor((c - zero) scale + half) in double. For integers half is
// slightly more than 0.5, so that rounding the scale and the product cannot take an exact half below the next integer:
// every value that is not a half is at least 1 / (2 d) >= 2^-33 away from one, and the rounding errors amount to less
// than 2^-42.
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

}  // namespace

}  // namespace orlix
