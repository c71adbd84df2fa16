// Vectors of doubles with AVX2, see doubles.hpp. Only for files of this suffix.
#pragma once

#include <immintrin.h>

#include "vectors/doubles.hpp"

namespace orlix {
namespace {

struct WideDoubles {
    using Vector = __m256d;
    static constexpr size_t kLanes = 4;
    ORLIX_INLINE static Vector Load(const double* p) { return _mm256_loadu_pd(p); }
    ORLIX_INLINE static void Store(double* p, const Vector& v) { _mm256_storeu_pd(p, v); }
    ORLIX_INLINE static Vector All(double d) { return _mm256_set1_pd(d); }
    ORLIX_INLINE static Vector Counting() { return _mm256_set_pd(3, 2, 1, 0); }
    ORLIX_INLINE static Vector Root(const Vector& v) { return _mm256_sqrt_pd(v); }
    ORLIX_INLINE static Vector Larger(const Vector& a, const Vector& b) { return _mm256_max_pd(a, b); }
    ORLIX_INLINE static Vector WherePositive(const Vector& v, const Vector& a, const Vector& b) {
        return _mm256_blendv_pd(b, a, _mm256_cmp_pd(v, _mm256_setzero_pd(), _CMP_GT_OQ));
    }
};

}  // namespace
}  // namespace orlix
