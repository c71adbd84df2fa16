#include <immintrin.h>

#include "geometry/outline_vectors.hpp"

namespace orlix {
namespace {

struct Avx2Doubles {
    using Vector = __m256d;
    static constexpr size_t kLanes = 4;

    // Vertices 0, 2, 1 and 3.
    ORLIX_INLINE static void Split(const Point* path, Vector& x, Vector& y) {
        const Vector first = Load(&path[0].x), second = Load(&path[2].x);
        x = _mm256_unpacklo_pd(first, second);
        y = _mm256_unpackhi_pd(first, second);
    }
    ORLIX_INLINE static Vector Load(const double* p) { return _mm256_loadu_pd(p); }
    ORLIX_INLINE static void Store(double* p, const Vector& v) { _mm256_storeu_pd(p, v); }
    ORLIX_INLINE static void StoreInOrder(double* p, const Vector& v) { Store(p, _mm256_permute4x64_pd(v, 0xd8)); }
    ORLIX_INLINE static Vector Swapped(const Vector& v) { return _mm256_permute_pd(v, 5); }
    ORLIX_INLINE static Vector All(double value) { return _mm256_set1_pd(value); }
    ORLIX_INLINE static Vector Zero() { return _mm256_setzero_pd(); }
    ORLIX_INLINE static Vector Min(const Vector& a, const Vector& b) { return _mm256_min_pd(a, b); }
    ORLIX_INLINE static Vector Max(const Vector& a, const Vector& b) { return _mm256_max_pd(a, b); }
    ORLIX_INLINE static Vector Root(const Vector& v) { return _mm256_sqrt_pd(v); }
    ORLIX_INLINE static Vector Magnitude(const Vector& v) { return _mm256_andnot_pd(_mm256_set1_pd(-0.0), v); }
    ORLIX_INLINE static Vector Less(const Vector& a, const Vector& b) { return _mm256_cmp_pd(a, b, _CMP_LT_OQ); }
    ORLIX_INLINE static Vector Equal(const Vector& a, const Vector& b) { return _mm256_cmp_pd(a, b, _CMP_EQ_OQ); }
    ORLIX_INLINE static Vector IsNan(const Vector& v) { return _mm256_cmp_pd(v, v, _CMP_UNORD_Q); }
    ORLIX_INLINE static Vector And(const Vector& a, const Vector& b) { return _mm256_and_pd(a, b); }
    ORLIX_INLINE static Vector Or(const Vector& a, const Vector& b) { return _mm256_or_pd(a, b); }
    ORLIX_INLINE static Vector AndNot(const Vector& a, const Vector& b) { return _mm256_andnot_pd(b, a); }
    ORLIX_INLINE static Vector Select(const Vector& mask, const Vector& a, const Vector& b) {
        return _mm256_blendv_pd(b, a, mask);
    }
    ORLIX_INLINE static unsigned Bits(const Vector& v) { return static_cast<unsigned>(_mm256_movemask_pd(v)); }
    ORLIX_INLINE static Vector Missing(const Vector& a, const Vector& b, const Vector& product) {
        return _mm256_fmsub_pd(a, b, product);
    }
};

}  // namespace

const OutlineKernels kOutline_avx2 = OutlineVectors<Avx2Doubles>::kAll;

}  // namespace orlix
