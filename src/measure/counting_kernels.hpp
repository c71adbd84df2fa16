// Kernels of histograms and their variants.
#pragma once

#include "measure/counting.hpp"
#include "vectors/variants.hpp"

namespace orlix {

// The bin of each pixel; rule.bins for excluded pixels.
template <class T>
using BinsFn = void (*)(const T* pixels, size_t n, const BinRule<T>& rule, uint32_t* bins);

template <class T>
void Bins_scalar(const T* pixels, size_t n, const BinRule<T>& rule, uint32_t* bins);

Kernel<BinsFn<float>> Bins_avx2, Bins_avx512;

template <class T>
inline constexpr Variant<BinsFn<T>> kBins[] = {{"scalar", Cpu::Any, &Bins_scalar}};
template <>
inline constexpr Variant<BinsFn<float>> kBins<float>[] = {
    {"avx512", Cpu::Avx512, &Bins_avx512},
    {"avx2", Cpu::Avx2, &Bins_avx2},
    {"scalar", Cpu::Any, &Bins_scalar},
};

// Value counters in plain C++. Whatever the instruction set, one store per clock is the limit, and the danger is a load
// that waits for the preceding store to the same counter. "Pairs" makes one update for two pixels.
constexpr size_t kByteTables = 8;
void CountBytes(const uint8_t* pixels, size_t n, uint32_t* counts);  // 8 tables of 256, pixel i in any of them
constexpr size_t kPairSize = 65536 + 256;
void CountBytePairs(const uint8_t* pixels, size_t n,
                    uint32_t* counts);  // [first | second << 8], then 256 of single bytes
constexpr size_t kWordTables = 2;
void CountWords(const uint16_t* pixels, size_t n, uint32_t* counts);  // 2 tables of 65536

}  // namespace orlix
