#include "process/intrinsics_avx512.hpp"

#include "process/correction_kernels.hpp"

namespace orlix {
namespace {

// floor(s + half) of sixteen shifts within +-2^33 as 32-bit integers, which saturate: 2^31 - 1 stands for everything that lifts a
// pixel of 16 bits over the type's range, -2^31 for what takes it below.
struct Rounder {
    __m512d half, most = _mm512_set1_pd(0x1.fffffffcp30), least = _mm512_set1_pd(-0x1p31);
    explicit Rounder(double h) : half(_mm512_set1_pd(h)) {}
    // maxpd and minpd return the second operand where one is NaN.
    __m256i Eight(const double* shifts) const {
        const __m512d s = _mm512_add_pd(_mm512_loadu_pd(shifts), half);
        const __m512d kept = _mm512_min_pd(_mm512_max_pd(s, least), most);
        return _mm512_cvt_roundpd_epi32(kept, _MM_FROUND_TO_NEG_INF | _MM_FROUND_NO_EXC);
    }
    __m512i Sixteen(const double* shifts) const {
        return _mm512_inserti64x4(_mm512_castsi256_si512(Eight(shifts)), Eight(shifts + 8), 1);
    }
};

}  // namespace

void Shifts_avx512(double* shifts, size_t n, double x, const RowPolynomial& row) {
    const __m512d c0 = _mm512_set1_pd(row.c[0]), c1 = _mm512_set1_pd(row.c[1]);
    const __m512d c2 = _mm512_set1_pd(row.c[2]), c3 = _mm512_set1_pd(row.c[3]);
    const __m512d eight = _mm512_set1_pd(8.0);
    __m512d t = _mm512_add_pd(_mm512_set1_pd(x), _mm512_set_pd(7, 6, 5, 4, 3, 2, 1, 0));
    size_t i = 0;
    for (; i + 8 <= n; i += 8) {
        const __m512d inner = _mm512_add_pd(c2, _mm512_mul_pd(t, c3));
        const __m512d middle = _mm512_add_pd(c1, _mm512_mul_pd(t, inner));
        _mm512_storeu_pd(shifts + i, _mm512_add_pd(c0, _mm512_mul_pd(t, middle)));
        t = _mm512_add_pd(t, eight);
    }
    Shifts_scalar(shifts + i, n - i, x + static_cast<double>(i), row);
}

void Correct_avx512(uint8_t* pixels, const double* shifts, size_t n, const CorrectionParameters<uint8_t>& parameters) {
    if (parameters.lower > parameters.upper) return Correct_scalar(pixels, shifts, n, parameters);
    const Rounder rounder(parameters.half);
    const __m512i lower = _mm512_set1_epi16(parameters.lower), upper = _mm512_set1_epi16(parameters.upper);
    size_t i = 0;
    for (; i + 32 <= n; i += 32) {
        const __m256i low = _mm512_cvtsepi32_epi16(rounder.Sixteen(shifts + i));
        const __m256i high = _mm512_cvtsepi32_epi16(rounder.Sixteen(shifts + i + 16));
        const __m512i h = _mm512_inserti64x4(_mm512_castsi256_si512(low), high, 1);
        __m256i* const at = reinterpret_cast<__m256i*>(pixels + i);
        const __m512i q = _mm512_adds_epi16(_mm512_cvtepu8_epi16(_mm256_loadu_si256(at)), h);
        _mm256_storeu_si256(at, _mm512_cvtepi16_epi8(_mm512_min_epi16(_mm512_max_epi16(q, lower), upper)));
    }
    Correct_scalar(pixels + i, shifts + i, n - i, parameters);
}

// Shifts saturated at 2^31 - 1 would overflow when a pixel is added: the shift is, instead, clamped to bounds less the pixel.
void Correct_avx512(uint16_t* pixels, const double* shifts, size_t n,
                    const CorrectionParameters<uint16_t>& parameters) {
    if (parameters.lower > parameters.upper) return Correct_scalar(pixels, shifts, n, parameters);
    const Rounder rounder(parameters.half);
    const __m512i lower = _mm512_set1_epi32(parameters.lower), upper = _mm512_set1_epi32(parameters.upper);
    size_t i = 0;
    for (; i + 16 <= n; i += 16) {
        __m256i* const at = reinterpret_cast<__m256i*>(pixels + i);
        const __m512i p = _mm512_cvtepu16_epi32(_mm256_loadu_si256(at));
        const __m512i h = rounder.Sixteen(shifts + i);
        const __m512i kept =
            _mm512_min_epi32(_mm512_max_epi32(h, _mm512_sub_epi32(lower, p)), _mm512_sub_epi32(upper, p));
        _mm256_storeu_si256(at, _mm512_cvtepi32_epi16(_mm512_add_epi32(p, kept)));
    }
    Correct_scalar(pixels + i, shifts + i, n - i, parameters);
}

void Correct_avx512(float* pixels, const double* shifts, size_t n, const CorrectionParameters<float>& parameters) {
    const __m512d lower = _mm512_set1_pd(static_cast<double>(parameters.lower));
    const __m512d upper = _mm512_set1_pd(static_cast<double>(parameters.upper));
    size_t i = 0;
    for (; i + 8 <= n; i += 8) {
        const __m512d v = _mm512_add_pd(_mm512_cvtps_pd(_mm256_loadu_ps(pixels + i)), _mm512_loadu_pd(shifts + i));
        // min(upper, v) gives v where v is NaN.
        const __m512d kept =
            _mm512_mask_blend_pd(_mm512_cmp_pd_mask(v, lower, _CMP_LT_OQ), _mm512_min_pd(upper, v), lower);
        _mm256_storeu_ps(pixels + i, _mm512_cvtpd_ps(kept));
    }
    Correct_scalar(pixels + i, shifts + i, n - i, parameters);
}

}  // namespace orlix
