// Kernels that make samples of 16 bits, or planes of bytes, from what cameras send.
#pragma once

#include <cstddef>
#include <cstdint>

#include "vectors/variants.hpp"

namespace orlix {

// How samples of 10 to 16 bits are packed. Bytes b0, b1, ... of a group:
//     Words10..Words16   a sample: b0 + 256 b1, of which the lower 10, 12, 14 or 16 bits count
//     Lsb10              4 samples in 5 bytes: sample k is bits 10 k to 10 k + 9 of the bytes, bit 0 of b0 first
//     Lsb12              2 samples in 3 bytes: likewise, 12 bits each
//     Pairs10            2 samples in 3 bytes: 4 b0 + bits 0 and 1 of b1, 4 b2 + bits 4 and 5 of b1
//     Pairs12            2 samples in 3 bytes: 16 b0 + the lower half of b1, 16 b2 + the upper half of b1
enum class Packing : uint8_t { Words10, Words12, Words14, Words16, Lsb10, Lsb12, Pairs10, Pairs12 };

struct PackedGroup {
    size_t samples, bytes;
};
constexpr PackedGroup GroupOf(Packing packing) {
    if (packing <= Packing::Words16) return {1, 2};
    return packing == Packing::Lsb10 ? PackedGroup{4, 5} : PackedGroup{2, 3};
}

// Unpacks n samples, the first of which is sample `first` of those that begin at `groups`. Notes:
//  (1) only bytes are read that hold bits of these samples; in all packings the bytes before the end of sample i are
//      i * group.bytes / group.samples, rounded up;
//  (2) groups need no alignment, samples that of uint16_t; the two do not overlap; n may be 0.
using UnpackFn = void (*)(const uint8_t* groups, size_t first, size_t n, uint16_t* samples);

template <Packing kPacking>
void Unpack_scalar(const uint8_t* groups, size_t first, size_t n, uint16_t* samples);
template <Packing kPacking>
void Unpack_sse2(const uint8_t* groups, size_t first, size_t n, uint16_t* samples);
template <Packing kPacking>
void Unpack_avx2(const uint8_t* groups, size_t first, size_t n, uint16_t* samples);

template <Packing kPacking>
inline constexpr Variant<UnpackFn> kUnpack[] = {
    {"avx2", Cpu::Avx2, &Unpack_avx2<kPacking>},
    {"sse2", Cpu::Sse2, &Unpack_sse2<kPacking>},
    {"scalar", Cpu::Any, &Unpack_scalar<kPacking>},
};

// Calls use(kUnpack<packing>).
template <class Use>
decltype(auto) WithUnpack(Packing packing, const Use& use) {
    switch (packing) {
        case Packing::Words10:
            return use(kUnpack<Packing::Words10>);
        case Packing::Words12:
            return use(kUnpack<Packing::Words12>);
        case Packing::Words14:
            return use(kUnpack<Packing::Words14>);
        case Packing::Lsb10:
            return use(kUnpack<Packing::Lsb10>);
        case Packing::Lsb12:
            return use(kUnpack<Packing::Lsb12>);
        case Packing::Pairs10:
            return use(kUnpack<Packing::Pairs10>);
        case Packing::Pairs12:
            return use(kUnpack<Packing::Pairs12>);
        default:
            return use(kUnpack<Packing::Words16>);
    }
}

// Distributes n pixels of three bytes to three planes, which overlap neither the pixels nor each other. No alignment is
// needed; n may be 0.
using SplitFn = void (*)(const uint8_t* pixels, size_t n, uint8_t* first, uint8_t* second, uint8_t* third);

Kernel<SplitFn> Split_scalar;
Kernel<SplitFn> Split_sse2;
Kernel<SplitFn> Split_avx2;

inline constexpr Variant<SplitFn> kSplitColours[] = {
    {"avx2", Cpu::Avx2, &Split_avx2},
    {"sse2", Cpu::Sse2, &Split_sse2},
    {"scalar", Cpu::Any, &Split_scalar},
};

}  // namespace orlix
