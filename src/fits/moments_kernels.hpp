// Kernels of the surface fits: moments of runs of pixels. All accept n = 0.
#pragma once

#include <cstddef>
#include <cstdint>

#include "vectors/variants.hpp"

namespace orlix {

// Maximum number of integer pixels per call: the sum of i^3 p[i] stays below 2^54, so that 64 rows of it fit in 64
// bits.
template <class T>
inline constexpr size_t kMostOfMoments = sizeof(T) == 1   ? 4096
                                         : sizeof(T) == 2 ? 1024
                                                          : 64;

// m[k] = sum of i^k p[i], i = 0..n-1, for k = 0..Degree, exact.
template <class T>
using MomentsFn = void (*)(const T* pixels, size_t n, uint64_t* m);

template <class T, int Degree>
void Moments_scalar(const T* pixels, size_t n, uint64_t* m);
template <class T, int Degree>
void Moments_sse2(const T* pixels, size_t n, uint64_t* m);
template <class T, int Degree>
void Moments_avx2(const T* pixels, size_t n, uint64_t* m);
template <class T, int Degree>
void Moments_avx512(const T* pixels, size_t n, uint64_t* m);

template <>
void Moments_sse2<uint8_t, 1>(const uint8_t* pixels, size_t n, uint64_t* m);
template <>
void Moments_avx2<uint8_t, 1>(const uint8_t* pixels, size_t n, uint64_t* m);
template <>
void Moments_avx512<uint8_t, 1>(const uint8_t* pixels, size_t n, uint64_t* m);

// Float: d = p - origin and t = first + 2i in double; e = d, then e = e t for each further k; lane i % 8 of m[k]
// accumulates e in order of i. The lanes of m are overwritten.
struct FloatMoments {
    double lane[4][8];
};
using FloatMomentsFn = void (*)(const float* pixels, size_t n, double origin, double first, FloatMoments& m);

template <int Degree>
void FloatMoments_scalar(const float* pixels, size_t n, double origin, double first, FloatMoments& m);
template <int Degree>
void FloatMoments_sse2(const float* pixels, size_t n, double origin, double first, FloatMoments& m);
template <int Degree>
void FloatMoments_avx2(const float* pixels, size_t n, double origin, double first, FloatMoments& m);
template <int Degree>
void FloatMoments_avx512(const float* pixels, size_t n, double origin, double first, FloatMoments& m);

// Adds the pixels begin..n-1 to lanes as the reference kernel does.
template <int Degree>
void AddFloatMoments(const float* pixels, size_t begin, size_t n, double origin, double first, FloatMoments& m);

template <class T, int Degree>
inline constexpr Variant<MomentsFn<T>> kMoments[] = {
    {"avx512", Cpu::Avx512, &Moments_avx512<T, Degree>},
    {"avx2", Cpu::Avx2, &Moments_avx2<T, Degree>},
    {"sse2", Cpu::Sse2, &Moments_sse2<T, Degree>},
    {"scalar", Cpu::Any, &Moments_scalar<T, Degree>},
};
template <int Degree>
inline constexpr Variant<MomentsFn<uint32_t>> kMoments<uint32_t, Degree>[] = {
    {"scalar", Cpu::Any, &Moments_scalar<uint32_t, Degree>}};

template <int Degree>
inline constexpr Variant<FloatMomentsFn> kFloatMoments[] = {
    {"avx512", Cpu::Avx512, &FloatMoments_avx512<Degree>},
    {"avx2", Cpu::Avx2, &FloatMoments_avx2<Degree>},
    {"sse2", Cpu::Sse2, &FloatMoments_sse2<Degree>},
    {"scalar", Cpu::Any, &FloatMoments_scalar<Degree>},
};

namespace {  // used in files of every instruction set: each keeps its own copy

// Converts sums m[p] of weights times t^p, p = 0..degree, to sums of weights times (t + by)^p. T: DoublePair by double,
// or integers modulo 2^64.
template <class T, class By>
void ShiftMoments(T* m, int degree, By by) {
    for (int pass = 0; pass < degree; ++pass)
        for (int p = degree; p > pass; --p) m[p] += m[p - 1] * by;
}

template <size_t Lanes>
struct LanePowers {
    uint32_t of[4][Lanes] = {};  // [r][i]: i^r
    constexpr LanePowers() {
        for (uint32_t i = 0; i < Lanes; ++i)
            for (uint32_t r = 0, power = 1; r < 4; ++r, power *= i) of[r][i] = power;
    }
};

// Converts nested running sums to moments. Pixels come in blocks of `Lanes`; after B blocks, a[0] is for each lane the
// sum of its pixels, a[1] the sum of the values of a[0] after each block, and so on: block b was added to a[q]
// C(B - b + q - 1, q) times. Adds the moments of these pixels, the first of which has the index `first`, to m. Modulo
// 2^64 throughout; only the result has to fit.
template <int Degree, size_t Lanes>
void AddNested(const uint32_t (&a)[Degree + 1][Lanes], uint64_t blocks, uint64_t first, uint64_t* m) {
    uint64_t t[4][4] = {};  // [q][r]: sum over lanes i of i^r a[q][i]
    static constexpr LanePowers<Lanes> kPowers;
    for (int q = 0; q <= Degree; ++q)
        for (int r = 0; r + q <= Degree; ++r)
            for (size_t i = 0; i < Lanes; ++i) t[q][r] += uint64_t{a[q][i]} * kPowers.of[r][i];
    for (int r = 0; r <= Degree; ++r) {
        // Powers of c = B - b from the binomials, then of the block's start first + Lanes B - Lanes c.
        const uint64_t c[4] = {t[0][r], t[1][r], 2 * t[2][r] - t[1][r], 6 * t[3][r] - 6 * t[2][r] + t[1][r]};
        uint64_t starts[4];
        uint64_t scale = 1;
        for (int q = 0; q + r <= Degree; ++q, scale *= uint64_t{0} - Lanes) starts[q] = c[q] * scale;
        ShiftMoments(starts, Degree - r, first + Lanes * blocks);
        // (start + i)^k has C(k, r) start^(k - r) i^r.
        constexpr uint64_t kBinomial[4][4] = {{1, 0, 0, 0}, {1, 1, 0, 0}, {1, 2, 1, 0}, {1, 3, 3, 1}};
        for (int k = r; k <= Degree; ++k) m[k] += kBinomial[k][r] * starts[k - r];
    }
}

}  // namespace

}  // namespace orlix
