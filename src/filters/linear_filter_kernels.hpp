// Kernels of the linear filters and their variants. T is uint8_t, uint16_t, uint32_t or float.
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
//  (1) 8 and 16 bits: integers, the division truncates toward zero. 32 bits: double, in which the sums are exact,
//      floor(v + 0.5) of the quotient. All are then clamped.
//  (2) float: single precision, summed in the order of the definitions in linear_filters.cpp, which lets a flat image
//      come out as it is. NaN, and infinities that cancel, give the quiet NaN 0x7fc00000; it is not clamped.
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

#define ORLIX_VARIANT(Name, T, variant) \
    void Name##_##variant(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters);
#define ORLIX_VARIANTS(Name, T)  \
    ORLIX_VARIANT(Name, T, sse2) \
    ORLIX_VARIANT(Name, T, avx2) \
    ORLIX_VARIANT(Name, T, avx512)
// The compiler's own vectors serve 32 bits.
#define ORLIX_LINEAR_FILTER(Name)                       \
    ORLIX_VARIANTS(Name, uint8_t)                       \
    ORLIX_VARIANTS(Name, uint16_t)                      \
    ORLIX_VARIANTS(Name, float)                         \
    template <class T>                                  \
    inline constexpr Variant<FilterFn<T>> k##Name[] = { \
        {"avx512", Cpu::Avx512, &Name##_avx512},        \
        {"avx2", Cpu::Avx2, &Name##_avx2},              \
        {"sse2", Cpu::Sse2, &Name##_sse2},              \
        {"scalar", Cpu::Any, &Name##_scalar},           \
    };                                                  \
    template <>                                         \
    inline constexpr Variant<FilterFn<uint32_t>> k##Name<uint32_t>[] = {{"scalar", Cpu::Any, &Name##_scalar}};
ORLIX_LINEAR_FILTER(Laplacian)
ORLIX_LINEAR_FILTER(SharpenLow)
ORLIX_LINEAR_FILTER(SharpenMedium)
ORLIX_LINEAR_FILTER(Gaussian3x3)
ORLIX_LINEAR_FILTER(Gaussian5x5)
#undef ORLIX_LINEAR_FILTER
#undef ORLIX_VARIANTS
#undef ORLIX_VARIANT

}  // namespace orlix
