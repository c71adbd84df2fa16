#include <emmintrin.h>

#include "fits/correction_kernels.hpp"

namespace orlix {
namespace {

// floor(s + half) of four shifts, limited to +-1024, as 32-bit integers.
struct Rounder {
    __m128d half, most = _mm_set1_pd(1024.0), least = _mm_set1_pd(-1024.0);
    explicit Rounder(double h) : half(_mm_set1_pd(h)) {}
    // maxpd and minpd return the second operand when either is NaN.
    __m128i Two(const double* shifts) const {
        const __m128d s = _mm_min_pd(_mm_max_pd(_mm_add_pd(_mm_loadu_pd(shifts), half), least), most);
        const __m128i truncated = _mm_cvttpd_epi32(s);
        // -1 where truncation rounded up.
        const __m128i above = _mm_castpd_si128(_mm_cmpgt_pd(_mm_cvtepi32_pd(truncated), s));
        return _mm_add_epi32(truncated, _mm_shuffle_epi32(above, _MM_SHUFFLE(3, 3, 2, 0)));
    }
    __m128i Four(const double* shifts) const { return _mm_unpacklo_epi64(Two(shifts), Two(shifts + 2)); }
};

}  // namespace

void Shifts_sse2(double* shifts, size_t n, double x, const RowPolynomial& row) {
    const __m128d c0 = _mm_set1_pd(row.c[0]), c1 = _mm_set1_pd(row.c[1]);
    const __m128d c2 = _mm_set1_pd(row.c[2]), c3 = _mm_set1_pd(row.c[3]);
    const __m128d two = _mm_set1_pd(2.0);
    __m128d t = _mm_add_pd(_mm_set1_pd(x), _mm_set_pd(1, 0));
    size_t i = 0;
    for (; i + 2 <= n; i += 2) {
        const __m128d inner = _mm_add_pd(c2, _mm_mul_pd(t, c3));
        const __m128d middle = _mm_add_pd(c1, _mm_mul_pd(t, inner));
        _mm_storeu_pd(shifts + i, _mm_add_pd(c0, _mm_mul_pd(t, middle)));
        t = _mm_add_pd(t, two);
    }
    Shifts_scalar(shifts + i, n - i, x + static_cast<double>(i), row);
}

void Correct_sse2(uint8_t* pixels, const double* shifts, size_t n, const CorrectionParameters<uint8_t>& parameters) {
    if (parameters.lower > parameters.upper) return Correct_scalar(pixels, shifts, n, parameters);
    const Rounder rounder(parameters.half);
    const __m128i lower = _mm_set1_epi16(parameters.lower), upper = _mm_set1_epi16(parameters.upper);
    size_t i = 0;
    for (; i + 8 <= n; i += 8) {
        const __m128i h = _mm_packs_epi32(rounder.Four(shifts + i), rounder.Four(shifts + i + 4));
        __m128i* const at = reinterpret_cast<__m128i*>(pixels + i);
        const __m128i p = _mm_unpacklo_epi8(_mm_loadl_epi64(at), _mm_setzero_si128());
        const __m128i q = _mm_min_epi16(_mm_max_epi16(_mm_add_epi16(p, h), lower), upper);
        _mm_storel_epi64(at, _mm_packus_epi16(q, q));
    }
    Correct_scalar(pixels + i, shifts + i, n - i, parameters);
}

void Correct_sse2(float* pixels, const double* shifts, size_t n, const CorrectionParameters<float>& parameters) {
    const __m128d lower = _mm_set1_pd(static_cast<double>(parameters.lower));
    const __m128d upper = _mm_set1_pd(static_cast<double>(parameters.upper));
    size_t i = 0;
    for (; i + 2 <= n; i += 2) {
        __m128i* const at = reinterpret_cast<__m128i*>(pixels + i);
        const __m128d v = _mm_add_pd(_mm_cvtps_pd(_mm_castsi128_ps(_mm_loadl_epi64(at))), _mm_loadu_pd(shifts + i));
        // min(upper, v) gives v where v is NaN.
        const __m128d below = _mm_cmplt_pd(v, lower);
        const __m128d kept = _mm_or_pd(_mm_and_pd(below, lower), _mm_andnot_pd(below, _mm_min_pd(upper, v)));
        _mm_storel_epi64(at, _mm_castps_si128(_mm_cvtpd_ps(kept)));
    }
    Correct_scalar(pixels + i, shifts + i, n - i, parameters);
}

void CorrectRow_sse2(uint8_t* pixels, size_t n, double x, const RowPolynomial& row,
                     const CorrectionParameters<uint8_t>& parameters) {
    CorrectInPieces<uint8_t>(&Shifts_sse2, &Correct_sse2, pixels, n, x, row, parameters);
}

}  // namespace orlix
