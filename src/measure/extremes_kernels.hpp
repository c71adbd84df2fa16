// Kernels of the scan for extremes and their variants.
#pragma once

#include "measure/extremes.hpp"
#include "vectors/variants.hpp"

namespace orlix {

// Extends [min, max] by n pixels that are not NaN. Which zero represents 0 in a float result is not stated.
template <class T>
using ExtremesFn = void (*)(const T* pixels, size_t n, T& min, T& max);

template <class T>
void Extremes_scalar(const T* pixels, size_t n, T& min, T& max);

void Extremes_sse2(const uint8_t* pixels, size_t n, uint8_t& min, uint8_t& max);
void Extremes_sse2(const uint16_t* pixels, size_t n, uint16_t& min, uint16_t& max);
void Extremes_sse2(const uint32_t* pixels, size_t n, uint32_t& min, uint32_t& max);
void Extremes_sse2(const float* pixels, size_t n, float& min, float& max);
void Extremes_avx2(const uint8_t* pixels, size_t n, uint8_t& min, uint8_t& max);
void Extremes_avx2(const uint16_t* pixels, size_t n, uint16_t& min, uint16_t& max);
void Extremes_avx2(const uint32_t* pixels, size_t n, uint32_t& min, uint32_t& max);
void Extremes_avx2(const float* pixels, size_t n, float& min, float& max);
void Extremes_avx512(const uint8_t* pixels, size_t n, uint8_t& min, uint8_t& max);
void Extremes_avx512(const uint16_t* pixels, size_t n, uint16_t& min, uint16_t& max);
void Extremes_avx512(const uint32_t* pixels, size_t n, uint32_t& min, uint32_t& max);
void Extremes_avx512(const float* pixels, size_t n, float& min, float& max);

template <class T>
inline constexpr Variant<ExtremesFn<T>> kExtremes[] = {
    {"avx512", Cpu::Avx512, &Extremes_avx512},
    {"avx2", Cpu::Avx2, &Extremes_avx2},
    {"sse2", Cpu::Sse2, &Extremes_sse2},
    {"scalar", Cpu::Any, &Extremes_scalar},
};

}  // namespace orlix
