#include "geometry/outline_vectors.hpp"
#include "vectors/intrinsics_avx512.hpp"

namespace orlix {
namespace {

struct Avx512Doubles {
    using Vector = __m512d;
    static constexpr size_t kLanes = 8;

    // Vertices 0, 4, 1, 5, 2, 6, 3, 7.
    ORLIX_INLINE static void Split(const Point* path, Vector& x, Vector& y) {
        const Vector first = Load(&path[0].x), second = Load(&path[4].x);
        x = _mm512_unpacklo_pd(first, second);
        y = _mm512_unpackhi_pd(first, second);
    }
    ORLIX_INLINE static Vector Load(const double* p) { return _mm512_loadu_pd(p); }
    ORLIX_INLINE static void Store(double* p, const Vector& v) { _mm512_storeu_pd(p, v); }
    ORLIX_INLINE static void StoreInOrder(double* p, const Vector& v) {
        Store(p, _mm512_permutexvar_pd(_mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7), v));
    }
    ORLIX_INLINE static Vector Swapped(const Vector& v) { return _mm512_permute_pd(v, 0x55); }
    ORLIX_INLINE static Vector All(double value) { return _mm512_set1_pd(value); }
    ORLIX_INLINE static Vector Zero() { return _mm512_setzero_pd(); }
    ORLIX_INLINE static Vector Min(const Vector& a, const Vector& b) { return _mm512_min_pd(a, b); }
    ORLIX_INLINE static Vector Max(const Vector& a, const Vector& b) { return _mm512_max_pd(a, b); }
    ORLIX_INLINE static Vector Root(const Vector& v) { return _mm512_sqrt_pd(v); }
    ORLIX_INLINE static Vector Magnitude(const Vector& v) { return _mm512_abs_pd(v); }
    ORLIX_INLINE static Vector Less(const Vector& a, const Vector& b) {
        return Mask(_mm512_cmp_pd_mask(a, b, _CMP_LT_OQ));
    }
    ORLIX_INLINE static Vector Equal(const Vector& a, const Vector& b) {
        return Mask(_mm512_cmp_pd_mask(a, b, _CMP_EQ_OQ));
    }
    ORLIX_INLINE static Vector IsNan(const Vector& v) { return Mask(_mm512_cmp_pd_mask(v, v, _CMP_UNORD_Q)); }
    ORLIX_INLINE static Vector And(const Vector& a, const Vector& b) { return _mm512_and_pd(a, b); }
    ORLIX_INLINE static Vector Or(const Vector& a, const Vector& b) { return _mm512_or_pd(a, b); }
    ORLIX_INLINE static Vector AndNot(const Vector& a, const Vector& b) { return _mm512_andnot_pd(b, a); }
    ORLIX_INLINE static Vector Select(const Vector& mask, const Vector& a, const Vector& b) {
        return _mm512_mask_blend_pd(_mm512_movepi64_mask(_mm512_castpd_si512(mask)), b, a);
    }
    ORLIX_INLINE static unsigned Bits(const Vector& v) { return _mm512_movepi64_mask(_mm512_castpd_si512(v)); }
    ORLIX_INLINE static Vector Missing(const Vector& a, const Vector& b, const Vector& product) {
        return _mm512_fmsub_pd(a, b, product);
    }

private:
    ORLIX_INLINE static Vector Mask(__mmask8 lanes) { return _mm512_castsi512_pd(_mm512_movm_epi64(lanes)); }
};

}  // namespace

const OutlineKernels kOutline_avx512 = OutlineVectors<Avx512Doubles>::kAll;

}  // namespace orlix
