// Vectors of doubles with SSE2, see doubles.hpp. Only for files of this suffix.
#pragma once

#include <emmintrin.h>

#include "vectors/doubles.hpp"

namespace orlix {
namespace {

struct WideDoubles {
    using Vector = __m128d;
    static constexpr size_t kLanes = 2;
    ORLIX_INLINE static Vector Load(const double* p) { return _mm_loadu_pd(p); }
    ORLIX_INLINE static void Store(double* p, Vector v) { _mm_storeu_pd(p, v); }
    ORLIX_INLINE static Vector All(double d) { return _mm_set1_pd(d); }
    ORLIX_INLINE static Vector Counting() { return _mm_set_pd(1, 0); }
    ORLIX_INLINE static Vector Root(Vector v) { return _mm_sqrt_pd(v); }
    ORLIX_INLINE static Vector Larger(Vector a, Vector b) { return _mm_max_pd(a, b); }
    ORLIX_INLINE static Vector WherePositive(Vector v, Vector a, Vector b) {
        const Vector positive = _mm_cmpgt_pd(v, _mm_setzero_pd());
        return _mm_or_pd(_mm_and_pd(positive, a), _mm_andnot_pd(positive, b));
    }
};

}  // namespace
}  // namespace orlix
