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

void Threshold_sse2(const uint8_t* pixels, size_t n, uint8_t* bits, unsigned firstBit, uint8_t lo, uint8_t hi,
                    bool inside);
void Threshold_sse2(const uint16_t* pixels, size_t n, uint8_t* bits, unsigned firstBit, uint16_t lo, uint16_t hi,
                    bool inside);
void Threshold_sse2(const uint32_t* pixels, size_t n, uint8_t* bits, unsigned firstBit, uint32_t lo, uint32_t hi,
                    bool inside);
void Threshold_sse2(const float* pixels, size_t n, uint8_t* bits, unsigned firstBit, float lo, float hi, bool inside);
void Threshold_avx2(const uint8_t* pixels, size_t n, uint8_t* bits, unsigned firstBit, uint8_t lo, uint8_t hi,
                    bool inside);
void Threshold_avx2(const uint16_t* pixels, size_t n, uint8_t* bits, unsigned firstBit, uint16_t lo, uint16_t hi,
                    bool inside);
void Threshold_avx2(const uint32_t* pixels, size_t n, uint8_t* bits, unsigned firstBit, uint32_t lo, uint32_t hi,
                    bool inside);
void Threshold_avx2(const float* pixels, size_t n, uint8_t* bits, unsigned firstBit, float lo, float hi, bool inside);
void Threshold_avx512(const uint8_t* pixels, size_t n, uint8_t* bits, unsigned firstBit, uint8_t lo, uint8_t hi,
                      bool inside);
void Threshold_avx512(const uint16_t* pixels, size_t n, uint8_t* bits, unsigned firstBit, uint16_t lo, uint16_t hi,
                      bool inside);
void Threshold_avx512(const uint32_t* pixels, size_t n, uint8_t* bits, unsigned firstBit, uint32_t lo, uint32_t hi,
                      bool inside);
void Threshold_avx512(const float* pixels, size_t n, uint8_t* bits, unsigned firstBit, float lo, float hi, bool inside);

template <class T>
inline constexpr Variant<ThresholdFn<T>> kThreshold[] = {
    {"avx512", Cpu::Avx512, &Threshold_avx512},
    {"avx2", Cpu::Avx2, &Threshold_avx2},
    {"sse2", Cpu::Sse2, &Threshold_sse2},
    {"scalar", Cpu::Any, &Threshold_scalar},
};

}  // namespace orlix
