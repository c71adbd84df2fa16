// Extremum sharpening kernels and their variants. T is uint8_t, uint16_t, uint32_t or float.
#pragma once

#include "filters/filter_kernels.hpp"
#include "vectors/variants.hpp"

namespace orlix {

// A row of minima and a row of maxima.
template <class T>
struct ExtremaRow {
    T* low;
    T* high;

    ExtremaRow operator+(size_t columns) const { return {low + columns, high + columns}; }
    operator ExtremaRow<const T>() const { return {low, high}; }
};

// The steps of ExtremumSharpening. Each processes n columns and accesses nothing beyond the stated range. Extrema are
// never NaN; NaN pixels are ignored. The sign of a float extreme that is zero is unspecified.

// to = from extended by the pixels. to may be the same row as from.
template <class T>
using ExtendFn = void (*)(const T* pixels, ExtremaRow<const T> from, ExtremaRow<T> to, size_t n);

// to = from extended by the pixels; both = the extremes of to and other. to may be the same row as from.
template <class T>
using ExtendAndJoinFn = void (*)(const T* pixels, ExtremaRow<const T> from, ExtremaRow<T> to, ExtremaRow<const T> other,
                                 ExtremaRow<T> both, size_t n);

// to[i] = the extremes of from[i], from[i + steps[0]], from[i + steps[1]] and from[i + steps[2]]; from is readable that
// far.
template <class T>
using WidenFn = void (*)(ExtremaRow<const T> from, ExtremaRow<T> to, const size_t (&steps)[3], size_t n);

// to[i] = the extreme nearer to pixels[i], out of square[i], square[i + step] and the limits.
template <class T>
using SharpenFn = void (*)(const T* pixels, ExtremaRow<const T> square, size_t step, T* to, size_t n,
                           const FilterParameters<T>& limits);

template <class T>
struct ExtremumKernels {
    ExtendFn<T> extend;
    ExtendAndJoinFn<T> extendAndJoin;
    WidenFn<T> widen;
    SharpenFn<T> sharpen;
};

template <class T>
void Extend_scalar(const T* pixels, ExtremaRow<const T> from, ExtremaRow<T> to, size_t n);
template <class T>
void ExtendAndJoin_scalar(const T* pixels, ExtremaRow<const T> from, ExtremaRow<T> to, ExtremaRow<const T> other,
                          ExtremaRow<T> both, size_t n);
template <class T>
void Widen_scalar(ExtremaRow<const T> from, ExtremaRow<T> to, const size_t (&steps)[3], size_t n);
template <class T>
void Sharpen_scalar(const T* pixels, ExtremaRow<const T> square, size_t step, T* to, size_t n,
                    const FilterParameters<T>& limits);
// The complete filter for 3x3 squares. The limits are not NaN.
template <class T>
void ExtremumSharpening3x3_scalar(const T* const* rows, T* to, size_t n, const FilterParameters<T>& limits);

template <class T>
void Extend_sse2(const T* pixels, ExtremaRow<const T> from, ExtremaRow<T> to, size_t n);
template <class T>
void ExtendAndJoin_sse2(const T* pixels, ExtremaRow<const T> from, ExtremaRow<T> to, ExtremaRow<const T> other,
                        ExtremaRow<T> both, size_t n);
template <class T>
void Widen_sse2(ExtremaRow<const T> from, ExtremaRow<T> to, const size_t (&steps)[3], size_t n);
template <class T>
void Sharpen_sse2(const T* pixels, ExtremaRow<const T> square, size_t step, T* to, size_t n,
                  const FilterParameters<T>& limits);
template <class T>
void ExtremumSharpening3x3_sse2(const T* const* rows, T* to, size_t n, const FilterParameters<T>& limits);

template <class T>
void Extend_avx2(const T* pixels, ExtremaRow<const T> from, ExtremaRow<T> to, size_t n);
template <class T>
void ExtendAndJoin_avx2(const T* pixels, ExtremaRow<const T> from, ExtremaRow<T> to, ExtremaRow<const T> other,
                        ExtremaRow<T> both, size_t n);
template <class T>
void Widen_avx2(ExtremaRow<const T> from, ExtremaRow<T> to, const size_t (&steps)[3], size_t n);
template <class T>
void Sharpen_avx2(const T* pixels, ExtremaRow<const T> square, size_t step, T* to, size_t n,
                  const FilterParameters<T>& limits);
template <class T>
void ExtremumSharpening3x3_avx2(const T* const* rows, T* to, size_t n, const FilterParameters<T>& limits);

template <class T>
void Extend_avx512(const T* pixels, ExtremaRow<const T> from, ExtremaRow<T> to, size_t n);
template <class T>
void ExtendAndJoin_avx512(const T* pixels, ExtremaRow<const T> from, ExtremaRow<T> to, ExtremaRow<const T> other,
                          ExtremaRow<T> both, size_t n);
template <class T>
void Widen_avx512(ExtremaRow<const T> from, ExtremaRow<T> to, const size_t (&steps)[3], size_t n);
template <class T>
void Sharpen_avx512(const T* pixels, ExtremaRow<const T> square, size_t step, T* to, size_t n,
                    const FilterParameters<T>& limits);
template <class T>
void ExtremumSharpening3x3_avx512(const T* const* rows, T* to, size_t n, const FilterParameters<T>& limits);

template <class T>
inline constexpr Variant<ExtremumKernels<T>> kExtremum[] = {
    {"avx512", Cpu::Avx512, {&Extend_avx512, &ExtendAndJoin_avx512, &Widen_avx512, &Sharpen_avx512}},
    {"avx2", Cpu::Avx2, {&Extend_avx2, &ExtendAndJoin_avx2, &Widen_avx2, &Sharpen_avx2}},
    {"sse2", Cpu::Sse2, {&Extend_sse2, &ExtendAndJoin_sse2, &Widen_sse2, &Sharpen_sse2}},
    {"scalar", Cpu::Any, {&Extend_scalar, &ExtendAndJoin_scalar, &Widen_scalar, &Sharpen_scalar}},
};

template <class T>
inline constexpr Variant<FilterFn<T>> kExtremumSharpening3x3[] = {
    {"avx512", Cpu::Avx512, &ExtremumSharpening3x3_avx512},
    {"avx2", Cpu::Avx2, &ExtremumSharpening3x3_avx2},
    {"sse2", Cpu::Sse2, &ExtremumSharpening3x3_sse2},
    {"scalar", Cpu::Any, &ExtremumSharpening3x3_scalar},
};

}  // namespace orlix
