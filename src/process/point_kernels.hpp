// Kernels of point operations and their variants. All work in place and accept n = 0.
#pragma once

#include "process/point_operations.hpp"
#include "process/variants.hpp"

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

// q = p / value in double, clamped to the type's range (an integer result of NaN is 0), then floor(q + 0.5), for float q
// rounded to float.
template <class T>
void Quotient_scalar(T* pixels, size_t n, const PointParameters<T>& parameters);

// Integers. p >> shift, 0 when shift reaches the width of the type.
template <class T>
void Shift_scalar(T* pixels, size_t n, const PointParameters<T>& parameters);

// table[p] where 0 <= p < 256 (float: table[trunc(p)]), else p.
template <class T>
void LookUp_scalar(T* pixels, size_t n, const PointParameters<T>& parameters);

// Every pixel becomes offset.
template <class T>
void Fill_scalar(T* pixels, size_t n, const PointParameters<T>& parameters);

template <class T>
inline constexpr Variant<PointFn<T>> kSum[] = {{"scalar", Cpu::Any, &Sum_scalar}};
template <class T>
inline constexpr Variant<PointFn<T>> kRamp[] = {{"scalar", Cpu::Any, &Ramp_scalar}};
template <class T>
inline constexpr Variant<PointFn<T>> kQuotient[] = {{"scalar", Cpu::Any, &Quotient_scalar}};
template <class T>
inline constexpr Variant<PointFn<T>> kShift[] = {{"scalar", Cpu::Any, &Shift_scalar}};
template <class T>
inline constexpr Variant<PointFn<T>> kLookUp[] = {{"scalar", Cpu::Any, &LookUp_scalar}};
template <class T>
inline constexpr Variant<PointFn<T>> kFill[] = {{"scalar", Cpu::Any, &Fill_scalar}};

}  // namespace orlix
