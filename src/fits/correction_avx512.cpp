#include "vectors/intrinsics_avx512.hpp"

#include "fits/correction_blocks.hpp"
#include "vectors/inline.hpp"

namespace orlix {
namespace {

// floor(s + half) of sixteen shifts within +-2^33 as 32-bit integers, which saturate: 2^31 - 1 stands for every shift
// that raises a 16-bit pixel above the type's range, -2^31 for every shift that lowers it below.
struct Rounder {
    __m512d half, most = _mm512_set1_pd(0x1.fffffffcp30), least = _mm512_set1_pd(-0x1p31);
    explicit Rounder(double h) : half(_mm512_set1_pd(h)) {}
    // maxpd and minpd return the second operand when either is NaN.
    __m256i Eight(const double* shifts) const {
        const __m512d s = _mm512_add_pd(_mm512_loadu_pd(shifts), half);
        const __m512d kept = _mm512_min_pd(_mm512_max_pd(s, least), most);
        return _mm512_cvt_roundpd_epi32(kept, _MM_FROUND_TO_NEG_INF | _MM_FROUND_NO_EXC);
    }
    __m512i Sixteen(const double* shifts) const {
        return _mm512_inserti64x4(_mm512_castsi256_si512(Eight(shifts)), Eight(shifts + 8), 1);
    }
};

constexpr size_t kBlock = 64;

// Columns of a segment, relative to its middle. In each block of 64, the groups of eight are in the order 0 2 4 6, then
// 1 3 5 7, as unpacking bytes to words leaves them in two registers.
struct Columns {
    alignas(64) float t[kSegment];
    constexpr Columns() : t() {
        for (size_t k = 0; k < kSegment; ++k) {
            const size_t eight = k % kBlock / 8, column = k / kBlock * kBlock + 8 * (eight % 4 * 2 + eight / 4) + k % 8;
            t[k] = static_cast<float>(column) - static_cast<float>(kMiddle);
        }
    }
};
constexpr Columns kColumns;

// Processes blocks of 64 pixels up to the first with a value too close to a half; returns the number of pixels done.
template <int Degree>
size_t CorrectBlocks(uint8_t* pixels, size_t n, const Expansion& expansion, size_t column,
                     const CorrectionParameters<uint8_t>& parameters) {
    // Added to a float below 2^22, this leaves the nearest integer in the low bits.
    const __m512 magic = _mm512_set1_ps(0x1.8p23f);
    const __m512 f0 = _mm512_set1_ps(static_cast<float>(expansion.a[0]));
    const __m512 f1 = _mm512_set1_ps(static_cast<float>(expansion.a[1]));
    const __m512 f2 = _mm512_set1_ps(static_cast<float>(expansion.a[2]));
    const __m512 f3 = _mm512_set1_ps(static_cast<float>(expansion.a[3]));
    const __m512 limit = _mm512_set1_ps(static_cast<float>(0.5 - expansion.error));
    const __m512i lower = _mm512_set1_epi8(static_cast<char>(parameters.lower));
    const __m512i upper = _mm512_set1_epi8(static_cast<char>(parameters.upper));
    const __m512i lowWords = _mm512_set_epi16(62, 60, 58, 56, 54, 52, 50, 48, 46, 44, 42, 40, 38, 36, 34, 32, 30, 28,
                                              26, 24, 22, 20, 18, 16, 14, 12, 10, 8, 6, 4, 2, 0);
    for (size_t i = 0; i < n; i += kBlock) {
        __m512 farthest = _mm512_setzero_ps();
        const auto shifts = [&](size_t first) {
            const __m512 t = _mm512_load_ps(kColumns.t + column + i + first);
            __m512 g;
            if constexpr (Degree == 1) g = _mm512_fmadd_ps(f1, t, f0);
            if constexpr (Degree == 2) g = _mm512_fmadd_ps(_mm512_fmadd_ps(f2, t, f1), t, f0);
            if constexpr (Degree == 3) g = _mm512_fmadd_ps(_mm512_fmadd_ps(_mm512_fmadd_ps(f3, t, f2), t, f1), t, f0);
            const __m512 raised = _mm512_add_ps(g, magic);
            farthest =
                _mm512_range_ps(farthest, _mm512_sub_ps(g, _mm512_sub_ps(raised, magic)), 0xb);  // larger magnitude
            return _mm512_castps_si512(raised);
        };
        const __m512i low0 = shifts(0), low1 = shifts(16), high0 = shifts(32), high1 = shifts(48);
        if (_mm512_cmp_ps_mask(farthest, limit, _CMP_NLT_UQ) != 0) return i;

        const __m512i p = _mm512_loadu_si512(pixels + i);
        const __m512i zero = _mm512_setzero_si512();
        const __m512i q0 =
            _mm512_add_epi16(_mm512_unpacklo_epi8(p, zero), _mm512_permutex2var_epi16(low0, lowWords, low1));
        const __m512i q1 =
            _mm512_add_epi16(_mm512_unpackhi_epi8(p, zero), _mm512_permutex2var_epi16(high0, lowWords, high1));
        const __m512i q = _mm512_min_epu8(_mm512_max_epu8(_mm512_packus_epi16(q0, q1), lower), upper);
        _mm512_storeu_si512(pixels + i, q);
    }
    return n;
}

template <int Degree>
ORLIX_INLINE size_t FillShifts(double* shifts, size_t n, double x, const RowPolynomial& row) {
    const __m512d c0 = _mm512_set1_pd(row.c[0]), c1 = _mm512_set1_pd(row.c[1]);
    const __m512d c2 = _mm512_set1_pd(row.c[2]), c3 = _mm512_set1_pd(row.c[3]);
    const __m512d next = _mm512_set1_pd(16.0);
    // Two vectors in turn: the latency of one that steps along the row would count.
    __m512d t[2] = {_mm512_add_pd(_mm512_set1_pd(x), _mm512_set_pd(7, 6, 5, 4, 3, 2, 1, 0)),
                    _mm512_add_pd(_mm512_set1_pd(x), _mm512_set_pd(15, 14, 13, 12, 11, 10, 9, 8))};
    size_t i = 0;
    for (; i + 16 <= n; i += 16)
        for (size_t k = 0; k < 2; ++k) {
            __m512d sum = Degree == 3 ? _mm512_add_pd(c2, _mm512_mul_pd(t[k], c3)) : c2;
            if constexpr (Degree >= 2) sum = _mm512_add_pd(c1, _mm512_mul_pd(t[k], sum));
            if constexpr (Degree == 1) sum = c1;
            _mm512_storeu_pd(shifts + i + 8 * k, _mm512_add_pd(c0, _mm512_mul_pd(t[k], sum)));
            t[k] = _mm512_add_pd(t[k], next);
        }
    return i;
}

}  // namespace

void Shifts_avx512(double* shifts, size_t n, double x, const RowPolynomial& row) {
    const int degree = DegreeOf(row);
    const size_t done = degree == 1   ? FillShifts<1>(shifts, n, x, row)
                        : degree == 2 ? FillShifts<2>(shifts, n, x, row)
                                      : FillShifts<3>(shifts, n, x, row);
    Shifts_scalar(shifts + done, n - done, x + static_cast<double>(done), row);
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

// Shifts saturated at 2^31 - 1 would overflow when added to a pixel, so the shift is clamped instead, to the bounds
// minus the pixel.
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

void CorrectRow_avx512(uint8_t* pixels, size_t n, double x, const RowPolynomial& row,
                       const CorrectionParameters<uint8_t>& parameters) {
    CorrectInBlocks({&CorrectBlocks<1>, &CorrectBlocks<2>, &CorrectBlocks<3>}, kBlock, kFusedRounding, &Shifts_avx512,
                    &Correct_avx512, pixels, n, x, row, parameters);
}

}  // namespace orlix
