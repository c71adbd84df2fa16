#include <immintrin.h>

#include "fits/correction_blocks.hpp"
#include "vectors/inline.hpp"

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

constexpr size_t kBlock = 32;

// The polynomial of eight columns t.
template <int Degree>
ORLIX_INLINE __m256 Polynomial(const __m256 (&f)[4], const __m256& t) {
    __m256 g = f[Degree];
    for (int k = Degree - 1; k >= 0; --k) g = _mm256_fmadd_ps(g, t, f[k]);
    return g;
}

template <int Degree>
size_t CorrectBlocks(uint8_t* pixels, size_t n, const Expansion& expansion, size_t column,
                     const CorrectionParameters<uint8_t>& parameters) {
    // Added to a float below 2^22, this leaves the nearest integer in the low bits.
    const __m256 magic = _mm256_set1_ps(0x1.8p23f), sign = _mm256_set1_ps(-0.0f);
    const __m256 limit = _mm256_set1_ps(static_cast<float>(0.5 - expansion.error));
    __m256 f[4];
    for (int k = 0; k <= Degree; ++k) f[k] = _mm256_set1_ps(static_cast<float>(expansion.a[k]));
    const __m256i lower = _mm256_set1_epi8(static_cast<char>(parameters.lower));
    const __m256i upper = _mm256_set1_epi8(static_cast<char>(parameters.upper));
    // Columns relative to the middle, in the order in which unpacking bytes to words leaves them in each half: the even
    // ones of eight, then the odd ones.
    const __m256 start = _mm256_set1_ps(static_cast<float>(column) - static_cast<float>(kMiddle));
    __m256 even = _mm256_add_ps(start, _mm256_set_ps(22, 20, 18, 16, 6, 4, 2, 0));
    const __m256 one = _mm256_set1_ps(1), eight = _mm256_set1_ps(8), nine = _mm256_set1_ps(9);
    const __m256 next = _mm256_set1_ps(kBlock), zero = _mm256_setzero_ps();
    for (size_t i = 0; i < n; i += kBlock) {
        __m256 farthest = zero;
        const auto shifts = [&](const __m256& t) {
            const __m256 g = Polynomial<Degree>(f, t);
            const __m256 raised = _mm256_add_ps(g, magic);
            const __m256 off = _mm256_sub_ps(g, _mm256_sub_ps(raised, magic));
            farthest = _mm256_max_ps(farthest, _mm256_andnot_ps(sign, off));
            return _mm256_castps_si256(raised);
        };
        // The low words of both.
        const auto words = [](const __m256i& a, const __m256i& b) {
            return _mm256_blend_epi16(a, _mm256_slli_epi32(b, 16), 0xaa);
        };
        const __m256i low0 = shifts(even), low1 = shifts(_mm256_add_ps(even, one));
        const __m256i high0 = shifts(_mm256_add_ps(even, eight)), high1 = shifts(_mm256_add_ps(even, nine));
        even = _mm256_add_ps(even, next);
        if (_mm256_movemask_ps(_mm256_cmp_ps(farthest, limit, _CMP_NLT_UQ)) != 0) return i;

        __m256i* const at = reinterpret_cast<__m256i*>(pixels + i);
        const __m256i p = _mm256_loadu_si256(at), none = _mm256_setzero_si256();
        const __m256i q0 = _mm256_add_epi16(_mm256_unpacklo_epi8(p, none), words(low0, low1));
        const __m256i q1 = _mm256_add_epi16(_mm256_unpackhi_epi8(p, none), words(high0, high1));
        _mm256_storeu_si256(at, _mm256_min_epu8(_mm256_max_epu8(_mm256_packus_epi16(q0, q1), lower), upper));
    }
    return n;
}

template <int Degree>
ORLIX_INLINE size_t FillShifts(double* shifts, size_t n, double x, const RowPolynomial& row) {
    const __m256d c0 = _mm256_set1_pd(row.c[0]), c1 = _mm256_set1_pd(row.c[1]);
    const __m256d c2 = _mm256_set1_pd(row.c[2]), c3 = _mm256_set1_pd(row.c[3]);
    const __m256d next = _mm256_set1_pd(8.0);
    // Two vectors in turn: the latency of one that steps along the row would count.
    __m256d t[2] = {_mm256_add_pd(_mm256_set1_pd(x), _mm256_set_pd(3, 2, 1, 0)),
                    _mm256_add_pd(_mm256_set1_pd(x), _mm256_set_pd(7, 6, 5, 4))};
    size_t i = 0;
    for (; i + 8 <= n; i += 8)
        for (size_t k = 0; k < 2; ++k) {
            __m256d sum = Degree == 3 ? _mm256_add_pd(c2, _mm256_mul_pd(t[k], c3)) : c2;
            if constexpr (Degree >= 2) sum = _mm256_add_pd(c1, _mm256_mul_pd(t[k], sum));
            if constexpr (Degree == 1) sum = c1;
            _mm256_storeu_pd(shifts + i + 4 * k, _mm256_add_pd(c0, _mm256_mul_pd(t[k], sum)));
            t[k] = _mm256_add_pd(t[k], next);
        }
    return i;
}

}  // namespace

void Shifts_avx2(double* shifts, size_t n, double x, const RowPolynomial& row) {
    const int degree = DegreeOf(row);
    const size_t done = degree == 1   ? FillShifts<1>(shifts, n, x, row)
                        : degree == 2 ? FillShifts<2>(shifts, n, x, row)
                                      : FillShifts<3>(shifts, n, x, row);
    Shifts_scalar(shifts + done, n - done, x + static_cast<double>(done), row);
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
    CorrectInBlocks({&CorrectBlocks<1>, &CorrectBlocks<2>, &CorrectBlocks<3>}, kBlock, kFusedRounding, &Shifts_avx2,
                    &Correct_avx2, pixels, n, x, row, parameters);
}

}  // namespace orlix
