// Kernels of grey measurements and their variants.
#pragma once

#include "measure/measuring.hpp"
#include "vectors/variants.hpp"

namespace orlix {

// Writes the sums over n <= 65536 pixels. Only float pixels use origin.
template <class T>
using SumsFn = void (*)(const T* pixels, size_t n, double origin, PixelSums<T>& sums);

template <class T>
void Sums_scalar(const T* pixels, size_t n, double origin, PixelSums<T>& sums);

// Adds the pixels first..n-1 to sums exactly as the definition does.
void AddRest(const float* pixels, size_t first, size_t n, double origin, PixelSums<float>& sums);

Kernel<SumsFn<uint8_t>> Sums_sse2, Sums_avx2, Sums_avx512;
Kernel<SumsFn<uint16_t>> Sums_sse2, Sums_avx2, Sums_avx512;
Kernel<SumsFn<float>> Sums_sse2, Sums_avx2, Sums_avx512;

template <class T>
inline constexpr Variant<SumsFn<T>> kSums[] = {
    {"avx512", Cpu::Avx512, &Sums_avx512},
    {"avx2", Cpu::Avx2, &Sums_avx2},
    {"sse2", Cpu::Sse2, &Sums_sse2},
    {"scalar", Cpu::Any, &Sums_scalar},
};
template <>
inline constexpr Variant<SumsFn<uint32_t>> kSums<uint32_t>[] = {{"scalar", Cpu::Any, &Sums_scalar}};

}  // namespace orlix
