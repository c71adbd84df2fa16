#include "filters/extremum_sharpening_vectors.hpp"
#include "vectors/lanes_avx512.hpp"

namespace orlix {

#define ORLIX_EXTREMUM(T, Lanes)                                                                                      \
    void Extend_avx512(const T* pixels, ExtremaRow<const T> from, ExtremaRow<T> to, size_t n) {                       \
        if (!Extend<Lanes>(pixels, from, to, n)) Extend_avx2(pixels, from, to, n);                                    \
    }                                                                                                                 \
    void ExtendAndJoin_avx512(const T* pixels, ExtremaRow<const T> from, ExtremaRow<T> to, ExtremaRow<const T> other, \
                              ExtremaRow<T> both, size_t n) {                                                         \
        if (!ExtendAndJoin<Lanes>(pixels, from, to, other, both, n))                                                  \
            ExtendAndJoin_avx2(pixels, from, to, other, both, n);                                                     \
    }                                                                                                                 \
    void Widen_avx512(ExtremaRow<const T> from, ExtremaRow<T> to, const size_t(&steps)[3], size_t n) {                \
        if (!Widen<Lanes>(from, to, steps, n)) Widen_avx2(from, to, steps, n);                                        \
    }                                                                                                                 \
    void Sharpen_avx512(const T* pixels, ExtremaRow<const T> square, size_t step, T* to, size_t n,                    \
                        const FilterParameters<T>& limits) {                                                          \
        if (!Sharpen<Lanes>(pixels, square, step, to, n, limits)) Sharpen_avx2(pixels, square, step, to, n, limits);  \
    }                                                                                                                 \
    void ExtremumSharpening3x3_avx512(const T* const* rows, T* to, size_t n, const FilterParameters<T>& limits) {     \
        if (!Sharpen3x3<Lanes>(rows, to, n, limits)) ExtremumSharpening3x3_avx2(rows, to, n, limits);                 \
    }
ORLIX_EXTREMUM(uint8_t, Bytes)
ORLIX_EXTREMUM(uint16_t, Words)
ORLIX_EXTREMUM(uint32_t, DoubleWords)
ORLIX_EXTREMUM(float, Floats)
#undef ORLIX_EXTREMUM

}  // namespace orlix
