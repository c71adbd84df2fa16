// 3x3 median kernels and their variants.
#pragma once

#include "filters/filter_kernels.hpp"
#include "vectors/variants.hpp"

namespace orlix {

// The fifth smallest of the nine pixels of each square, not clamped to the luminance range. Floats follow the total
// order of IEEE 754: NaN lies beyond the infinity of its sign, -0 before 0. So the result is bit-identical to one of
// the nine pixels, and it is NaN only when at least five of them are NaN of the same sign.
template <class T>
void Median3x3_scalar(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters);

template <class T>
void Median3x3_sse2(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters);
template <class T>
void Median3x3_avx2(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters);
template <class T>
void Median3x3_avx512(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters);

template <class T>
inline constexpr Variant<FilterFn<T>> kMedian3x3[] = {
    {"avx512", Cpu::Avx512, &Median3x3_avx512},
    {"avx2", Cpu::Avx2, &Median3x3_avx2},
    {"sse2", Cpu::Sse2, &Median3x3_sse2},
    {"scalar", Cpu::Any, &Median3x3_scalar},
};

}  // namespace orlix
