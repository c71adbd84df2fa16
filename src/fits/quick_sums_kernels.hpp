// Kernels for clipped sums of residuals from a polynomial in single precision, and their variants.
#pragma once

#include <cstddef>
#include <cstdint>

#include "vectors/variants.hpp"

namespace orlix {

// f(t) = c[0] + t (c[1] + t (c[2] + t c[3])), in float and in this order; the first pixel is at t = first.
struct QuickRow {
    float c[4];
    float first;
};

// Adds min(|f - p|, most)^2 to lane[i % 32], in order of i, all in float; NaN counts as most. T is uint8_t, uint16_t or
// float.
struct QuickSums {
    float lane[32] = {};
};
template <class T>
using QuickSumsFn = void (*)(const T* pixels, size_t n, const QuickRow& row, float most, QuickSums& sums);

template <class T>
void QuickSums_scalar(const T* pixels, size_t n, const QuickRow& row, float most, QuickSums& sums);
template <class T>
void QuickSums_sse2(const T* pixels, size_t n, const QuickRow& row, float most, QuickSums& sums);
template <class T>
void QuickSums_avx2(const T* pixels, size_t n, const QuickRow& row, float most, QuickSums& sums);
template <class T>
void QuickSums_avx512(const T* pixels, size_t n, const QuickRow& row, float most, QuickSums& sums);

template <class T>
inline constexpr Variant<QuickSumsFn<T>> kQuickSums[] = {
    {"avx512", Cpu::Avx512, &QuickSums_avx512},
    {"avx2", Cpu::Avx2, &QuickSums_avx2},
    {"sse2", Cpu::Sse2, &QuickSums_sse2},
    {"scalar", Cpu::Any, &QuickSums_scalar},
};

}  // namespace orlix
