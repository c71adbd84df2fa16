// Linear filter kernels and their variants. T is uint8_t, uint16_t, uint32_t or float.
#pragma once

#include <cstdint>

#include "filters/filter_kernels.hpp"
#include "vectors/variants.hpp"

namespace orlix {

// With the neighbours of E named   A B C
//                                  D E F
//                                  G H I,   radius 1:
//     Laplacian      ((A + C + G + I) + 4 (B + D + F + H) - 20 E) / 6
//     SharpenLow     (6 E - (B + D + F + H)) / 2, for float E + (4 E - (B + D + F + H)) / 2
//     SharpenMedium  5 E - (B + D + F + H), for float E + (4 E - (B + D + F + H))
//     Gaussian3x3    binomial weights (1 2 1) along both axes, over 16
// and radius 2:
//     Gaussian5x5    binomial weights (1 4 6 4 1) along both axes, over 256
// Notes:
//  (1) 8 and 16 bits: integer arithmetic, the division truncates toward zero. 32 bits: double, in which the sums are
//      exact, and floor(v + 0.5) of the quotient. All results are then clamped.
//  (2) float: single precision, summed in the order of the reference kernels (linear_filters_scalar.cpp), so that
//      flat images come out exactly. NaN, and infinities that cancel, give the quiet NaN 0x7fc00000, which is not
//      clamped.
template <class T>
void Laplacian_scalar(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters);
template <class T>
void SharpenLow_scalar(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters);
template <class T>
void SharpenMedium_scalar(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters);
template <class T>
void Gaussian3x3_scalar(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters);
template <class T>
void Gaussian5x5_scalar(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters);

// Variants for all types except uint32_t, whose loops the compiler vectorises.
template <class T>
void Laplacian_sse2(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters);
template <class T>
void SharpenLow_sse2(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters);
template <class T>
void SharpenMedium_sse2(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters);
template <class T>
void Gaussian3x3_sse2(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters);
template <class T>
void Gaussian5x5_sse2(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters);
template <class T>
void Laplacian_avx2(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters);
template <class T>
void SharpenLow_avx2(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters);
template <class T>
void SharpenMedium_avx2(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters);
template <class T>
void Gaussian3x3_avx2(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters);
template <class T>
void Gaussian5x5_avx2(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters);
template <class T>
void Laplacian_avx512(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters);
template <class T>
void SharpenLow_avx512(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters);
template <class T>
void SharpenMedium_avx512(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters);
template <class T>
void Gaussian3x3_avx512(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters);
template <class T>
void Gaussian5x5_avx512(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters);

template <class T>
inline constexpr Variant<FilterFn<T>> kLaplacian[] = {
    {"avx512", Cpu::Avx512, &Laplacian_avx512},
    {"avx2", Cpu::Avx2, &Laplacian_avx2},
    {"sse2", Cpu::Sse2, &Laplacian_sse2},
    {"scalar", Cpu::Any, &Laplacian_scalar},
};
template <>
inline constexpr Variant<FilterFn<uint32_t>> kLaplacian<uint32_t>[] = {{"scalar", Cpu::Any, &Laplacian_scalar}};

template <class T>
inline constexpr Variant<FilterFn<T>> kSharpenLow[] = {
    {"avx512", Cpu::Avx512, &SharpenLow_avx512},
    {"avx2", Cpu::Avx2, &SharpenLow_avx2},
    {"sse2", Cpu::Sse2, &SharpenLow_sse2},
    {"scalar", Cpu::Any, &SharpenLow_scalar},
};
template <>
inline constexpr Variant<FilterFn<uint32_t>> kSharpenLow<uint32_t>[] = {{"scalar", Cpu::Any, &SharpenLow_scalar}};

template <class T>
inline constexpr Variant<FilterFn<T>> kSharpenMedium[] = {
    {"avx512", Cpu::Avx512, &SharpenMedium_avx512},
    {"avx2", Cpu::Avx2, &SharpenMedium_avx2},
    {"sse2", Cpu::Sse2, &SharpenMedium_sse2},
    {"scalar", Cpu::Any, &SharpenMedium_scalar},
};
template <>
inline constexpr Variant<FilterFn<uint32_t>> kSharpenMedium<uint32_t>[] = {{"scalar", Cpu::Any, &SharpenMedium_scalar}};

template <class T>
inline constexpr Variant<FilterFn<T>> kGaussian3x3[] = {
    {"avx512", Cpu::Avx512, &Gaussian3x3_avx512},
    {"avx2", Cpu::Avx2, &Gaussian3x3_avx2},
    {"sse2", Cpu::Sse2, &Gaussian3x3_sse2},
    {"scalar", Cpu::Any, &Gaussian3x3_scalar},
};
template <>
inline constexpr Variant<FilterFn<uint32_t>> kGaussian3x3<uint32_t>[] = {{"scalar", Cpu::Any, &Gaussian3x3_scalar}};

template <class T>
inline constexpr Variant<FilterFn<T>> kGaussian5x5[] = {
    {"avx512", Cpu::Avx512, &Gaussian5x5_avx512},
    {"avx2", Cpu::Avx2, &Gaussian5x5_avx2},
    {"sse2", Cpu::Sse2, &Gaussian5x5_sse2},
    {"scalar", Cpu::Any, &Gaussian5x5_scalar},
};
template <>
inline constexpr Variant<FilterFn<uint32_t>> kGaussian5x5<uint32_t>[] = {{"scalar", Cpu::Any, &Gaussian5x5_scalar}};

}  // namespace orlix
