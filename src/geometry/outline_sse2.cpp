#include <emmintrin.h>

#include "geometry/outline_vectors.hpp"

namespace orlix {
namespace {

struct Sse2Doubles {
    using Vector = __m128d;
    static constexpr size_t kLanes = 2;

    ORLIX_INLINE static void Split(const Point* path, Vector& x, Vector& y) {
        const Vector first = Load(&path[0].x), second = Load(&path[1].x);
        x = _mm_unpacklo_pd(first, second);
        y = _mm_unpackhi_pd(first, second);
    }
    ORLIX_INLINE static Vector Load(const double* p) { return _mm_loadu_pd(p); }
    ORLIX_INLINE static void Store(double* p, const Vector& v) { _mm_storeu_pd(p, v); }
    ORLIX_INLINE static void StoreInOrder(double* p, const Vector& v) { Store(p, v); }
    ORLIX_INLINE static Vector Swapped(const Vector& v) { return _mm_shuffle_pd(v, v, 1); }
    ORLIX_INLINE static Vector All(double value) { return _mm_set1_pd(value); }
    ORLIX_INLINE static Vector Zero() { return _mm_setzero_pd(); }
    ORLIX_INLINE static Vector Min(const Vector& a, const Vector& b) { return _mm_min_pd(a, b); }
    ORLIX_INLINE static Vector Max(const Vector& a, const Vector& b) { return _mm_max_pd(a, b); }
    ORLIX_INLINE static Vector Root(const Vector& v) { return _mm_sqrt_pd(v); }
    ORLIX_INLINE static Vector Magnitude(const Vector& v) { return _mm_andnot_pd(_mm_set1_pd(-0.0), v); }
    ORLIX_INLINE static Vector Less(const Vector& a, const Vector& b) { return _mm_cmplt_pd(a, b); }
    ORLIX_INLINE static Vector Equal(const Vector& a, const Vector& b) { return _mm_cmpeq_pd(a, b); }
    ORLIX_INLINE static Vector IsNan(const Vector& v) { return _mm_cmpunord_pd(v, v); }
    ORLIX_INLINE static Vector And(const Vector& a, const Vector& b) { return _mm_and_pd(a, b); }
    ORLIX_INLINE static Vector Or(const Vector& a, const Vector& b) { return _mm_or_pd(a, b); }
    ORLIX_INLINE static Vector AndNot(const Vector& a, const Vector& b) { return _mm_andnot_pd(b, a); }
    ORLIX_INLINE static Vector Select(const Vector& mask, const Vector& a, const Vector& b) {
        return Or(And(mask, a), AndNot(b, mask));
    }
    ORLIX_INLINE static unsigned Bits(const Vector& v) { return static_cast<unsigned>(_mm_movemask_pd(v)); }
    // From the upper 26 and the lower 27 bits: only the product of the lower ones may be rounded.
    ORLIX_INLINE static Vector Missing(const Vector& a, const Vector& b, const Vector& product) {
        const Vector upper = _mm_castsi128_pd(_mm_set1_epi64x(-0x8000000));
        const Vector aHigh = And(a, upper), bHigh = And(b, upper), aLow = a - aHigh, bLow = b - bHigh;
        return (((aHigh * bHigh - product) + aHigh * bLow) + aLow * bHigh) + aLow * bLow;
    }
};

}  // namespace

const OutlineKernels kOutline_sse2 = OutlineVectors<Sse2Doubles>::kAll;

}  // namespace orlix
