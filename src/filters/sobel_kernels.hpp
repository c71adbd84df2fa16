// Sobel gradient magnitude kernels and their variants.
#pragma once

#include "filters/filter_kernels.hpp"
#include "vectors/variants.hpp"

namespace orlix {

// With the neighbours  A B C
//                      D E F
//                      G H I,  gx = (C + 2F + I) - (A + 2D + G) and gy = (G + 2H + I) - (A + 2B + C), the magnitude is
//   8 bits   the table root (sobel_roots.hpp) of the low 16 bits of gx^2 + gy^2: sums of 65536 and more wrap;
//   16 bits  the table root of the sum, 65535 from 2^32 on;
//   32 bits  floor(sqrt(gx^2 + gy^2) + 0.5) in double precision, the differences exact;
//   float    sqrt(gx^2 + gy^2) in single precision, every step rounded: with d = I - A and e = C - G,
//            gx = (d + e) + 2(F - D), gy = (d - e) + 2(H - B). NaN, also from infinite neighbours, becomes the
//            quiet NaN 7fc00000. Squares of gradients beyond 1.8e19 are infinite.
// The magnitude is then clamped; NaN is kept.
template <class T>
void Sobel_scalar(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters);

// For all types except uint32_t.
template <class T>
void Sobel_sse2(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters);
template <class T>
void Sobel_avx2(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters);
template <class T>
void Sobel_avx512(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters);

template <class T>
inline constexpr Variant<FilterFn<T>> kSobel[] = {
    {"avx512", Cpu::Avx512, &Sobel_avx512},
    {"avx2", Cpu::Avx2, &Sobel_avx2},
    {"sse2", Cpu::Sse2, &Sobel_sse2},
    {"scalar", Cpu::Any, &Sobel_scalar},
};
template <>
inline constexpr Variant<FilterFn<uint32_t>> kSobel<uint32_t>[] = {{"scalar", Cpu::Any, &Sobel_scalar}};

}  // namespace orlix
