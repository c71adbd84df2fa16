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

// Rows of `bytes` >= 1 bytes from one place to another, moved to the right by `skipped` bytes (|skipped| <= bytes) and
// 0 <= bits <= 7 pixels; background moves in. The pixels of the last byte that move are those of lastMask. Rows are
// moved in order; none lies in the memory where one is written before or at its own turn.
struct MovedRows {
    const uint8_t* from;
    uint8_t* to;
    ptrdiff_t rowBytes;  // from each row to the next one, of both
    int32_t count;
    ptrdiff_t bytes;
    ptrdiff_t skipped;
    int bits;
    uint8_t lastMask;
};
using MoveRowsFn = void (*)(const MovedRows& rows);

Kernel<MoveRowsFn> MoveRows_scalar, MoveRows_sse2, MoveRows_avx2, MoveRows_avx512;

inline constexpr Variant<MoveRowsFn> kMoveRows[] = {
    {"avx512", Cpu::Avx512, &MoveRows_avx512},
    {"avx2", Cpu::Avx2, &MoveRows_avx2},
    {"sse2", Cpu::Sse2, &MoveRows_sse2},
    {"scalar", Cpu::Any, &MoveRows_scalar},
};

}  // namespace orlix
