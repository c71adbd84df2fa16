#include <immintrin.h>

#include "fits/correction_kernels.hpp"

namespace orlix {
namespace {

// floor(s + half) of eight shifts within +-2^33 as 32-bit integers, which saturate: 2^31 - 1 stands for every shift
// that raises a 16-bit pixel above the type's range, -2^31 for every shift that lowers it below.
struct Rounder {
    __m256d half, most = _mm256_set1_pd(0x1.fffffffcp30), least = _mm256_set1_pd(-0x1p31);
    explicit Rounder(double h) : half(_mm256_set1_pd(h)) {}
    // maxpd and minpd return the second operand when either is NaN.
    __m128i Four(const double* shifts) const {
        const __m256d s = _mm256_add_pd(_mm256_loadu_pd(shifts), half);
        return _mm256_cvttpd_epi32(_mm256_floor_pd(_mm256_min_pd(_mm256_max_pd(s, least), most)));
    }
    __m256i Eight(const double* shifts) const {
        return _mm256_inserti128_si256(_mm256_castsi128_si256(Four(shifts)), Four(shifts + 4), 1);
    }
};

}  // namespace

void Shifts_avx2(double* shifts, size_t n, double x, const RowPolynomial& row) {
    const __m256d c0 = _mm256_set1_pd(row.c[0]), c1 = _mm256_set1_pd(row.c[1]);
    const __m256d c2 = _mm256_set1_pd(row.c[2]), c3 = _mm256_set1_pd(row.c[3]);
    const __m256d four = _mm256_set1_pd(4.0);
    __m256d t = _mm256_add_pd(_mm256_set1_pd(x), _mm256_set_pd(3, 2, 1, 0));
    size_t i = 0;
    for (; i + 4 <= n; i += 4) {
        const __m256d inner = _mm256_add_pd(c2, _mm256_mul_pd(t, c3));
        const __m256d middle = _mm256_add_pd(c1, _mm256_mul_pd(t, inner));
        _mm256_storeu_pd(shifts + i, _mm256_add_pd(c0, _mm256_mul_pd(t, middle)));
        t = _mm256_add_pd(t, four);
    }
    Shifts_scalar(shifts + i, n - i, x + static_cast<double>(i), row);
}

void Correct_avx2(uint8_t* pixels, const double* shifts, size_t n, const CorrectionParameters<uint8_t>& parameters) {
    if (parameters.lower > parameters.upper) return Correct_scalar(pixels, shifts, n, parameters);
    const Rounder rounder(parameters.half);
    const __m256i lower = _mm256_set1_epi16(parameters.lower), upper = _mm256_set1_epi16(parameters.upper);
    size_t i = 0;
    for (; i + 16 <= n; i += 16) {
        // Packing works in each half separately: the quarters come out as 0 2 1 3.
        const __m256i packed = _mm256_packs_epi32(rounder.Eight(shifts + i), rounder.Eight(shifts + i + 8));
        const __m256i h = _mm256_permute4x64_epi64(packed, 0xd8);
        __m128i* const at = reinterpret_cast<__m128i*>(pixels + i);
        const __m256i q = _mm256_adds_epi16(_mm256_cvtepu8_epi16(_mm_loadu_si128(at)), h);
        const __m256i kept = _mm256_min_epi16(_mm256_max_epi16(q, lower), upper);
        _mm_storeu_si128(at, _mm_packus_epi16(_mm256_castsi256_si128(kept), _mm256_extracti128_si256(kept, 1)));
    }
    Correct_scalar(pixels + i, shifts + i, n - i, parameters);
}

// Shifts saturated at 2^31 - 1 would overflow when added to a pixel, so the shift is clamped instead, to the bounds
// minus the pixel.
void Correct_avx2(uint16_t* pixels, const double* shifts, size_t n, const CorrectionParameters<uint16_t>& parameters) {
    if (parameters.lower > parameters.upper) return Correct_scalar(pixels, shifts, n, parameters);
    const Rounder rounder(parameters.half);
    const __m256i lower = _mm256_set1_epi32(parameters.lower), upper = _mm256_set1_epi32(parameters.upper);
    size_t i = 0;
    for (; i + 8 <= n; i += 8) {
        __m128i* const at = reinterpret_cast<__m128i*>(pixels + i);
        const __m256i p = _mm256_cvtepu16_epi32(_mm_loadu_si128(at));
        const __m256i h = rounder.Eight(shifts + i);
        const __m256i kept =
            _mm256_min_epi32(_mm256_max_epi32(h, _mm256_sub_epi32(lower, p)), _mm256_sub_epi32(upper, p));
        const __m256i q = _mm256_add_epi32(p, kept);
        _mm_storeu_si128(at, _mm_packus_epi32(_mm256_castsi256_si128(q), _mm256_extracti128_si256(q, 1)));
    }
    Correct_scalar(pixels + i, shifts + i, n - i, parameters);
}

void Correct_avx2(float* pixels, const double* shifts, size_t n, const CorrectionParameters<float>& parameters) {
    const __m256d lower = _mm256_set1_pd(static_cast<double>(parameters.lower));
    const __m256d upper = _mm256_set1_pd(static_cast<double>(parameters.upper));
    size_t i = 0;
    for (; i + 4 <= n; i += 4) {
        const __m256d v = _mm256_add_pd(_mm256_cvtps_pd(_mm_loadu_ps(pixels + i)), _mm256_loadu_pd(shifts + i));
        // min(upper, v) gives v where v is NaN.
        const __m256d kept = _mm256_blendv_pd(_mm256_min_pd(upper, v), lower, _mm256_cmp_pd(v, lower, _CMP_LT_OQ));
        _mm_storeu_ps(pixels + i, _mm256_cvtpd_ps(kept));
    }
    Correct_scalar(pixels + i, shifts + i, n - i, parameters);
}

void CorrectRow_avx2(uint8_t* pixels, size_t n, double x, const RowPolynomial& row,
                     const CorrectionParameters<uint8_t>& parameters) {
    CorrectInPieces<uint8_t>(&Shifts_avx2, &Correct_avx2, pixels, n, x, row, parameters);
}

}  // namespace orlix
