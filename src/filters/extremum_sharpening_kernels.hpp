// Kernels of the extremum sharpening and their variants. T is uint8_t, uint16_t, uint32_t or float.
#pragma once

#include "filters/filter_kernels.hpp"
#include "vectors/variants.hpp"

namespace orlix {

// Minima and maxima side by side.
template <class T>
struct ExtremaRow {
    T* low;
    T* high;

    ExtremaRow operator+(size_t columns) const { return {low + columns, high + columns}; }
    operator ExtremaRow<const T>() const { return {low, high}; }
};

// What ExtremumSharpening is made of. All work on n columns and neither read nor write beyond what is said. Extrema are
// never NaN, pixels that are NaN change none. Which zero an extreme of float is, is not stated.
template <class T>
struct ExtremumKernels {
    // to = from extended by the pixels. to may be from.
    void (*extend)(const T* pixels, ExtremaRow<const T> from, ExtremaRow<T> to, size_t n);

    // to = from extended by the pixels; both = to and other together. to may be from.
    void (*extendAndJoin)(const T* pixels, ExtremaRow<const T> from, ExtremaRow<T> to, ExtremaRow<const T> other,
                          ExtremaRow<T> both, size_t n);

    // to[i] = from[i], from[i + steps[0]], from[i + steps[1]] and from[i + steps[2]] together. from is readable that
    // far.
    void (*widen)(ExtremaRow<const T> from, ExtremaRow<T> to, const size_t (&steps)[3], size_t n);

    // to[i] = the nearer of the extremes of square[i], square[i + step] and the limits, seen from pixels[i].
    void (*sharpen)(const T* pixels, ExtremaRow<const T> square, size_t step, T* to, size_t n,
                    const FilterParameters<T>& limits);
};

#define ORLIX_EXTREMUM(T, suffix)                                                                       \
    void Extend_##suffix(const T* pixels, ExtremaRow<const T> from, ExtremaRow<T> to, size_t n);        \
    void ExtendAndJoin_##suffix(const T* pixels, ExtremaRow<const T> from, ExtremaRow<T> to,            \
                                ExtremaRow<const T> other, ExtremaRow<T> both, size_t n);               \
    void Widen_##suffix(ExtremaRow<const T> from, ExtremaRow<T> to, const size_t(&steps)[3], size_t n); \
    void Sharpen_##suffix(const T* pixels, ExtremaRow<const T> square, size_t step, T* to, size_t n,    \
                          const FilterParameters<T>& limits);                                           \
    /* The whole for squares of 3x3. The limits are not NaN. */                                         \
    void ExtremumSharpening3x3_##suffix(const T* const* rows, T* to, size_t n, const FilterParameters<T>& limits);
#define ORLIX_EXTREMUM_TYPES(suffix) \
    ORLIX_EXTREMUM(uint8_t, suffix)  \
    ORLIX_EXTREMUM(uint16_t, suffix) \
    ORLIX_EXTREMUM(uint32_t, suffix) \
    ORLIX_EXTREMUM(float, suffix)
ORLIX_EXTREMUM_TYPES(scalar)
ORLIX_EXTREMUM_TYPES(sse2)
ORLIX_EXTREMUM_TYPES(avx2)
ORLIX_EXTREMUM_TYPES(avx512)
#undef ORLIX_EXTREMUM_TYPES
#undef ORLIX_EXTREMUM

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
