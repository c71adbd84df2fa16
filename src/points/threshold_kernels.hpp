// Kernels of the threshold and their variants.
#pragma once

#include "points/threshold.hpp"
#include "vectors/variants.hpp"

namespace orlix {

// Sets bits: pixel i < n gives bit firstBit + i, bit k being 0x80 >> (k % 8) of bits[k / 8]; firstBit < 8.
template <class T>
using ThresholdFn = void (*)(const T* pixels, size_t n, uint8_t* bits, unsigned firstBit, T lo, T hi, bool inside);

template <class T>
void Threshold_scalar(const T* pixels, size_t n, uint8_t* bits, unsigned firstBit, T lo, T hi, bool inside);

Kernel<ThresholdFn<uint8_t>> Threshold_sse2, Threshold_avx2, Threshold_avx512;
Kernel<ThresholdFn<uint16_t>> Threshold_sse2, Threshold_avx2, Threshold_avx512;
Kernel<ThresholdFn<uint32_t>> Threshold_sse2, Threshold_avx2, Threshold_avx512;
Kernel<ThresholdFn<float>> Threshold_sse2, Threshold_avx2, Threshold_avx512;

template <class T>
inline constexpr Variant<ThresholdFn<T>> kThreshold[] = {
    {"avx512", Cpu::Avx512, &Threshold_avx512},
    {"avx2", Cpu::Avx2, &Threshold_avx2},
    {"sse2", Cpu::Sse2, &Threshold_sse2},
    {"scalar", Cpu::Any, &Threshold_scalar},
};

}  // namespace orlix
