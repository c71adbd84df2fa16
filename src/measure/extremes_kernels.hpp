// Kernels of the extremes scan and their variants.
#pragma once

#include "measure/extremes.hpp"
#include "vectors/variants.hpp"

namespace orlix {

// Extends [min, max] by n pixels, ignoring NaN. The sign of a zero in a float result is unspecified.
template <class T>
using ExtremesFn = void (*)(const T* pixels, size_t n, T& min, T& max);

template <class T>
void Extremes_scalar(const T* pixels, size_t n, T& min, T& max);

Kernel<ExtremesFn<uint8_t>> Extremes_sse2, Extremes_avx2, Extremes_avx512;
Kernel<ExtremesFn<uint16_t>> Extremes_sse2, Extremes_avx2, Extremes_avx512;
Kernel<ExtremesFn<uint32_t>> Extremes_sse2, Extremes_avx2, Extremes_avx512;
Kernel<ExtremesFn<float>> Extremes_sse2, Extremes_avx2, Extremes_avx512;

template <class T>
inline constexpr Variant<ExtremesFn<T>> kExtremes[] = {
    {"avx512", Cpu::Avx512, &Extremes_avx512},
    {"avx2", Cpu::Avx2, &Extremes_avx2},
    {"sse2", Cpu::Sse2, &Extremes_sse2},
    {"scalar", Cpu::Any, &Extremes_scalar},
};

}  // namespace orlix
