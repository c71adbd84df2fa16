// Kernels of point operations and their variants. All work in place and accept n = 0. Which NaN float arithmetic gives
// is the compiler's choice.
#pragma once

#include "points/point_operations.hpp"
#include "vectors/inline.hpp"
#include "vectors/variants.hpp"

namespace orlix {

template <class T>
using PointFn = void (*)(T* pixels, size_t n, const PointParameters<T>& parameters);

// s = value + p, or value - p when falling, in double; s < lower gives lower, else s > upper gives upper, else
// floor(s + 0.5), for float s rounded to float. value is not NaN.
template <class T>
void Sum_scalar(T* pixels, size_t n, const PointParameters<T>& parameters);

// Integers. q = p clamped to [first, last], first <= last; offset + q, or offset - q when falling, modulo 2^bits.
template <class T>
void Ramp_scalar(T* pixels, size_t n, const PointParameters<T>& parameters);

// q = p / value in double, clamped to the type's range (an integer result of NaN is 0), then floor(q + 0.5), for float
// q rounded to float.
template <class T>
void Quotient_scalar(T* pixels, size_t n, const PointParameters<T>& parameters);

// Integers. p >> shift, 0 when shift reaches the width of the type.
template <class T>
void Shift_scalar(T* pixels, size_t n, const PointParameters<T>& parameters);

// table[p].
Kernel<PointFn<uint8_t>> LookUp_scalar;

// Every pixel becomes offset.
template <class T>
void Fill_scalar(T* pixels, size_t n, const PointParameters<T>& parameters);

Kernel<PointFn<uint8_t>> Ramp_sse2, Ramp_avx2, Ramp_avx512;
Kernel<PointFn<uint16_t>> Ramp_sse2, Ramp_avx2, Ramp_avx512;
Kernel<PointFn<uint32_t>> Ramp_sse2, Ramp_avx2, Ramp_avx512;

// When value is a float, float arithmetic gives the bits of double arithmetic rounded to float: a double has more than
// twice the digits, so double rounding cannot change a sum or a quotient of floats.
Kernel<PointFn<float>> Sum_sse2, Sum_avx2, Sum_avx512;
Kernel<PointFn<float>> Quotient_sse2, Quotient_avx2, Quotient_avx512;
Kernel<PointFn<uint16_t>> Quotient_sse2, Quotient_avx2, Quotient_avx512;
Kernel<PointFn<uint32_t>> Quotient_avx2, Quotient_avx512;
Kernel<PointFn<uint8_t>> LookUp_avx2, LookUp_avx512;

namespace {  // used in files of every instruction set: each keeps its own copy

constexpr float kMostFloat = 0x1.fffffep127f;

ORLIX_INLINE bool IsExact(float narrow, double value) {
    return !(static_cast<double>(narrow) < value) && !(static_cast<double>(narrow) > value) && value == value;
}

// Whether p / value may be computed by multiplications for every pixel p of any type: no step overflows or leaves the
// normal numbers. The product with the reciprocal is within two units in the last place of the quotient. Its remainder
// p - q value is exact (a fused multiplication and addition), and the correction by it gives one of the two doubles
// next to the quotient; a second correction then rounds as a division does (Markstein 1990). Five steps that start
// every clock take less time than a division.
ORLIX_INLINE bool MayMultiply(double value) {
    const double magnitude = value < 0 ? -value : value;
    return magnitude > 0x1p-500 && magnitude < 0x1p500;
}

}  // namespace

template <class T>
inline constexpr Variant<PointFn<T>> kRamp[] = {
    {"avx512", Cpu::Avx512, &Ramp_avx512},
    {"avx2", Cpu::Avx2, &Ramp_avx2},
    {"sse2", Cpu::Sse2, &Ramp_sse2},
    {"scalar", Cpu::Any, &Ramp_scalar},
};

template <class T>
inline constexpr Variant<PointFn<T>> kSum[] = {{"scalar", Cpu::Any, &Sum_scalar}};
template <>
inline constexpr Variant<PointFn<float>> kSum<float>[] = {
    {"avx512", Cpu::Avx512, &Sum_avx512},
    {"avx2", Cpu::Avx2, &Sum_avx2},
    {"sse2", Cpu::Sse2, &Sum_sse2},
    {"scalar", Cpu::Any, &Sum_scalar},
};

template <class T>
inline constexpr Variant<PointFn<T>> kQuotient[] = {
    {"avx512", Cpu::Avx512, &Quotient_avx512},
    {"avx2", Cpu::Avx2, &Quotient_avx2},
    {"scalar", Cpu::Any, &Quotient_scalar},
};
template <>
inline constexpr Variant<PointFn<uint16_t>> kQuotient<uint16_t>[] = {
    {"avx512", Cpu::Avx512, &Quotient_avx512},
    {"avx2", Cpu::Avx2, &Quotient_avx2},
    {"sse2", Cpu::Sse2, &Quotient_sse2},
    {"scalar", Cpu::Any, &Quotient_scalar},
};
template <>
inline constexpr Variant<PointFn<float>> kQuotient<float>[] = {
    {"avx512", Cpu::Avx512, &Quotient_avx512},
    {"avx2", Cpu::Avx2, &Quotient_avx2},
    {"sse2", Cpu::Sse2, &Quotient_sse2},
    {"scalar", Cpu::Any, &Quotient_scalar},
};

inline constexpr Variant<PointFn<uint8_t>> kLookUp[] = {
    {"avx512", Cpu::Avx512, &LookUp_avx512},
    {"avx2", Cpu::Avx2, &LookUp_avx2},
    {"scalar", Cpu::Any, &LookUp_scalar},
};

// For these, the compiler's own vectors already reach memory bandwidth.
template <class T>
inline constexpr Variant<PointFn<T>> kShift[] = {{"scalar", Cpu::Any, &Shift_scalar}};
template <class T>
inline constexpr Variant<PointFn<T>> kFill[] = {{"scalar", Cpu::Any, &Fill_scalar}};

}  // namespace orlix
