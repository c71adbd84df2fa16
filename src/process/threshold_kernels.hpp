// Kernels of the threshold and their variants.
#pragma once

#include "process/threshold.hpp"
#include "process/variants.hpp"

namespace orlix {

// Sets bits of whole bytes: pixel i < 8 * bytes gives bit 0x80 >> (i % 8) of bits[i / 8].
template <class T>
using ThresholdFn = void (*)(const T* pixels, size_t bytes, uint8_t* bits, T lo, T hi, bool inside);

template <class T>
constexpr bool IsSet(T p, T lo, T hi, bool inside) {
    return inside ? p >= lo && p <= hi : p < lo || p > hi;
}

template <class T>
void Threshold_scalar(const T* pixels, size_t bytes, uint8_t* bits, T lo, T hi, bool inside);

void Threshold_sse2(const uint8_t* pixels, size_t bytes, uint8_t* bits, uint8_t lo, uint8_t hi, bool inside);
void Threshold_sse2(const uint16_t* pixels, size_t bytes, uint8_t* bits, uint16_t lo, uint16_t hi, bool inside);
void Threshold_sse2(const uint32_t* pixels, size_t bytes, uint8_t* bits, uint32_t lo, uint32_t hi, bool inside);
void Threshold_sse2(const float* pixels, size_t bytes, uint8_t* bits, float lo, float hi, bool inside);
void Threshold_avx2(const uint8_t* pixels, size_t bytes, uint8_t* bits, uint8_t lo, uint8_t hi, bool inside);
void Threshold_avx2(const uint16_t* pixels, size_t bytes, uint8_t* bits, uint16_t lo, uint16_t hi, bool inside);
void Threshold_avx2(const uint32_t* pixels, size_t bytes, uint8_t* bits, uint32_t lo, uint32_t hi, bool inside);
void Threshold_avx2(const float* pixels, size_t bytes, uint8_t* bits, float lo, float hi, bool inside);
void Threshold_avx512(const uint8_t* pixels, size_t bytes, uint8_t* bits, uint8_t lo, uint8_t hi, bool inside);
void Threshold_avx512(const uint16_t* pixels, size_t bytes, uint8_t* bits, uint16_t lo, uint16_t hi, bool inside);
void Threshold_avx512(const uint32_t* pixels, size_t bytes, uint8_t* bits, uint32_t lo, uint32_t hi, bool inside);
void Threshold_avx512(const float* pixels, size_t bytes, uint8_t* bits, float lo, float hi, bool inside);

template <class T>
inline constexpr Variant<ThresholdFn<T>> kThreshold[] = {
    {"avx512", Cpu::Avx512, &Threshold_avx512},
    {"avx2", Cpu::Avx2, &Threshold_avx2},
    {"sse2", Cpu::Sse2, &Threshold_sse2},
    {"scalar", Cpu::Any, &Threshold_scalar},
};

}  // namespace orlix
