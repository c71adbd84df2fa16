// Kernels for trimmed sums of squared residuals, and their variants.
#pragma once

#include <cstddef>
#include <cstdint>

#include "vectors/variants.hpp"

namespace orlix {

// The residual of pixel p[i] against a surface value f[i] is r = f[i] - p[i], in double, and its square r r. A NaN
// residual counts as larger than all others. T is uint8_t, uint16_t, uint32_t or float.

// Adds min(r r, limit) to lane[i % 32]: one lane after the other, the latency of additions would count.
struct ClippedSums {
    double lane[32] = {};
};
template <class T>
using ClippedSquaresFn = void (*)(const T* pixels, const double* surface, size_t n, double limit, ClippedSums& sums);

// Squares classified by an interval low <= high, either end of which may be infinite.
struct SquareClasses {
    double below[8] = {};   // sums of the squares below low; pixel i of a call goes to below[i % 8]
    uint64_t fewer = 0;     // number of squares below low
    uint64_t upToLow = 0;   // number of squares <= low
    uint64_t upToHigh = 0;  // number of squares <= high
};

// Adds n pixels to the classes and writes the squares strictly between low and high to middle, in order; returns their
// number. middle has room for n + 7 numbers, the last 7 as scratch.
template <class T>
using DivideSquaresFn = size_t (*)(const T* pixels, const double* surface, size_t n, double low, double high,
                                   SquareClasses& classes, double* middle);

template <class T>
void ClippedSquares_scalar(const T* pixels, const double* surface, size_t n, double limit, ClippedSums& sums);
template <class T>
size_t DivideSquares_scalar(const T* pixels, const double* surface, size_t n, double low, double high,
                            SquareClasses& classes, double* middle);

Kernel<ClippedSquaresFn<uint8_t>> ClippedSquares_sse2, ClippedSquares_avx2, ClippedSquares_avx512;
Kernel<ClippedSquaresFn<uint16_t>> ClippedSquares_sse2, ClippedSquares_avx2, ClippedSquares_avx512;
Kernel<ClippedSquaresFn<uint32_t>> ClippedSquares_sse2, ClippedSquares_avx2, ClippedSquares_avx512;
Kernel<ClippedSquaresFn<float>> ClippedSquares_sse2, ClippedSquares_avx2, ClippedSquares_avx512;
Kernel<DivideSquaresFn<uint8_t>> DivideSquares_sse2, DivideSquares_avx2, DivideSquares_avx512;
Kernel<DivideSquaresFn<uint16_t>> DivideSquares_sse2, DivideSquares_avx2, DivideSquares_avx512;
Kernel<DivideSquaresFn<uint32_t>> DivideSquares_sse2, DivideSquares_avx2, DivideSquares_avx512;
Kernel<DivideSquaresFn<float>> DivideSquares_sse2, DivideSquares_avx2, DivideSquares_avx512;

template <class T>
inline constexpr Variant<ClippedSquaresFn<T>> kClippedSquares[] = {
    {"avx512", Cpu::Avx512, &ClippedSquares_avx512},
    {"avx2", Cpu::Avx2, &ClippedSquares_avx2},
    {"sse2", Cpu::Sse2, &ClippedSquares_sse2},
    {"scalar", Cpu::Any, &ClippedSquares_scalar},
};
template <class T>
inline constexpr Variant<DivideSquaresFn<T>> kDivideSquares[] = {
    {"avx512", Cpu::Avx512, &DivideSquares_avx512},
    {"avx2", Cpu::Avx2, &DivideSquares_avx2},
    {"sse2", Cpu::Sse2, &DivideSquares_sse2},
    {"scalar", Cpu::Any, &DivideSquares_scalar},
};

}  // namespace orlix
