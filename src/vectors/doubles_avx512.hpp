// Vectors of doubles with AVX-512, see doubles.hpp. Only for files of this suffix.
#pragma once

#include "vectors/doubles.hpp"
#include "vectors/intrinsics_avx512.hpp"

namespace orlix {
namespace {

struct WideDoubles {
    using Vector = __m512d;
    static constexpr size_t kLanes = 8;
    ORLIX_INLINE static Vector Load(const double* p) { return _mm512_loadu_pd(p); }
    ORLIX_INLINE static void Store(double* p, const Vector& v) { _mm512_storeu_pd(p, v); }
    ORLIX_INLINE static Vector All(double d) { return _mm512_set1_pd(d); }
    ORLIX_INLINE static Vector Counting() { return _mm512_set_pd(7, 6, 5, 4, 3, 2, 1, 0); }
    ORLIX_INLINE static Vector Root(const Vector& v) { return _mm512_sqrt_pd(v); }
    ORLIX_INLINE static Vector Larger(const Vector& a, const Vector& b) { return _mm512_max_pd(a, b); }
    ORLIX_INLINE static Vector WherePositive(const Vector& v, const Vector& a, const Vector& b) {
        return _mm512_mask_blend_pd(_mm512_cmp_pd_mask(v, _mm512_setzero_pd(), _CMP_GT_OQ), b, a);
    }
};

}  // namespace
}  // namespace orlix
