// Kernels that combine and count the bytes of bitmaps, and their variants.
#pragma once

#include <cstddef>
#include <cstdint>

#include "binary/logic.hpp"
#include "vectors/variants.hpp"

namespace orlix {

// Each bit of `to` becomes what the operation says of it and the bit of `with`. The two are the same memory or apart.
using CombineFn = void (*)(uint8_t* to, const uint8_t* with, size_t bytes);

template <BitLogic how>
void Combine_scalar(uint8_t* to, const uint8_t* with, size_t bytes);
template <BitLogic how>
void Combine_sse2(uint8_t* to, const uint8_t* with, size_t bytes);
template <BitLogic how>
void Combine_avx2(uint8_t* to, const uint8_t* with, size_t bytes);
template <BitLogic how>
void Combine_avx512(uint8_t* to, const uint8_t* with, size_t bytes);

template <BitLogic how>
inline constexpr Variant<CombineFn> kCombine[] = {
    {"avx512", Cpu::Avx512, &Combine_avx512<how>},
    {"avx2", Cpu::Avx2, &Combine_avx2<how>},
    {"sse2", Cpu::Sse2, &Combine_sse2<how>},
    {"scalar", Cpu::Any, &Combine_scalar<how>},
};

// The number of bits that are set.
using CountBitsFn = uint64_t (*)(const uint8_t* bits, size_t bytes);

Kernel<CountBitsFn> CountBits_scalar, CountBits_sse2, CountBits_avx2, CountBits_avx512;

inline constexpr Variant<CountBitsFn> kCountBits[] = {
    {"avx512", Cpu::Avx512, &CountBits_avx512},
    {"avx2", Cpu::Avx2, &CountBits_avx2},
    {"sse2", Cpu::Sse2, &CountBits_sse2},
    {"scalar", Cpu::Any, &CountBits_scalar},
};

// Pixels from from[-1] on, moved to the right by 0 <= n <= 7: to[i] becomes the last n pixels of from[i - 1] and the
// first 8 - n pixels of from[i]. The memory of the two is apart.
using MoveBitsFn = void (*)(uint8_t* to, const uint8_t* from, size_t bytes, int n);

Kernel<MoveBitsFn> MoveBits_scalar, MoveBits_sse2, MoveBits_avx2, MoveBits_avx512;

inline constexpr Variant<MoveBitsFn> kMoveBits[] = {
    {"avx512", Cpu::Avx512, &MoveBits_avx512},
    {"avx2", Cpu::Avx2, &MoveBits_avx2},
    {"sse2", Cpu::Sse2, &MoveBits_sse2},
    {"scalar", Cpu::Any, &MoveBits_scalar},
};

}  // namespace orlix
