#include <emmintrin.h>

#include "fits/correction_blocks.hpp"
#include "vectors/inline.hpp"

namespace orlix {
namespace {

// floor(s + half) of four shifts, limited to +-2^20, as 32-bit integers.
struct Rounder {
    __m128d half, most = _mm_set1_pd(0x1p20), least = _mm_set1_pd(-0x1p20);
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

constexpr size_t kBlock = 16;

template <int Degree>
size_t CorrectBlocks(uint8_t* pixels, size_t n, const Expansion& expansion, size_t column,
                     const CorrectionParameters<uint8_t>& parameters) {
    // Added to a float below 2^22, this leaves the nearest integer in the low bits.
    const __m128 magic = _mm_set1_ps(0x1.8p23f), sign = _mm_set1_ps(-0.0f);
    const __m128 limit = _mm_set1_ps(static_cast<float>(0.5 - expansion.error));
    __m128 f[4];
    for (int k = 0; k <= Degree; ++k) f[k] = _mm_set1_ps(static_cast<float>(expansion.a[k]));
    const __m128i lower = _mm_set1_epi8(static_cast<char>(parameters.lower));
    const __m128i upper = _mm_set1_epi8(static_cast<char>(parameters.upper));
    const __m128i lowWord = _mm_set1_epi32(0xffff);
    // Columns relative to the middle: the even ones of eight, then the odd ones.
    const __m128 start = _mm_set1_ps(static_cast<float>(column) - static_cast<float>(kMiddle));
    __m128 even = _mm_add_ps(start, _mm_set_ps(6, 4, 2, 0));
    const __m128 one = _mm_set1_ps(1), eight = _mm_set1_ps(8), nine = _mm_set1_ps(9), next = _mm_set1_ps(kBlock);
    for (size_t i = 0; i < n; i += kBlock) {
        __m128 farthest = _mm_setzero_ps();
        const auto shifts = [&](__m128 t) {
            __m128 g = f[Degree];
            for (int k = Degree - 1; k >= 0; --k) g = _mm_add_ps(_mm_mul_ps(g, t), f[k]);
            const __m128 raised = _mm_add_ps(g, magic);
            const __m128 off = _mm_sub_ps(g, _mm_sub_ps(raised, magic));
            farthest = _mm_max_ps(farthest, _mm_andnot_ps(sign, off));
            return _mm_castps_si128(raised);
        };
        // The low words of both.
        const auto words = [&](__m128i a, __m128i b) {
            return _mm_or_si128(_mm_and_si128(a, lowWord), _mm_slli_epi32(b, 16));
        };
        const __m128i low = words(shifts(even), shifts(_mm_add_ps(even, one)));
        const __m128i high = words(shifts(_mm_add_ps(even, eight)), shifts(_mm_add_ps(even, nine)));
        even = _mm_add_ps(even, next);
        if (_mm_movemask_ps(_mm_cmpnlt_ps(farthest, limit)) != 0) return i;

        __m128i* const at = reinterpret_cast<__m128i*>(pixels + i);
        const __m128i p = _mm_loadu_si128(at), none = _mm_setzero_si128();
        const __m128i q0 = _mm_add_epi16(_mm_unpacklo_epi8(p, none), low);
        const __m128i q1 = _mm_add_epi16(_mm_unpackhi_epi8(p, none), high);
        _mm_storeu_si128(at, _mm_min_epu8(_mm_max_epu8(_mm_packus_epi16(q0, q1), lower), upper));
    }
    return n;
}

template <int Degree>
ORLIX_INLINE size_t FillShifts(double* shifts, size_t n, double x, const RowPolynomial& row) {
    const __m128d c0 = _mm_set1_pd(row.c[0]), c1 = _mm_set1_pd(row.c[1]);
    const __m128d c2 = _mm_set1_pd(row.c[2]), c3 = _mm_set1_pd(row.c[3]);
    const __m128d next = _mm_set1_pd(4.0);
    // Two vectors in turn: the latency of one that steps along the row would count.
    __m128d t[2] = {_mm_add_pd(_mm_set1_pd(x), _mm_set_pd(1, 0)), _mm_add_pd(_mm_set1_pd(x), _mm_set_pd(3, 2))};
    size_t i = 0;
    for (; i + 4 <= n; i += 4)
        for (size_t k = 0; k < 2; ++k) {
            __m128d sum = Degree == 3 ? _mm_add_pd(c2, _mm_mul_pd(t[k], c3)) : c2;
            if constexpr (Degree >= 2) sum = _mm_add_pd(c1, _mm_mul_pd(t[k], sum));
            if constexpr (Degree == 1) sum = c1;
            _mm_storeu_pd(shifts + i + 2 * k, _mm_add_pd(c0, _mm_mul_pd(t[k], sum)));
            t[k] = _mm_add_pd(t[k], next);
        }
    return i;
}

}  // namespace

void Shifts_sse2(double* shifts, size_t n, double x, const RowPolynomial& row) {
    const int degree = DegreeOf(row);
    const size_t done = degree == 1   ? FillShifts<1>(shifts, n, x, row)
                        : degree == 2 ? FillShifts<2>(shifts, n, x, row)
                                      : FillShifts<3>(shifts, n, x, row);
    Shifts_scalar(shifts + done, n - done, x + static_cast<double>(done), row);
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
        const __m128i q = _mm_min_epi16(_mm_max_epi16(_mm_adds_epi16(p, h), lower), upper);
        _mm_storel_epi64(at, _mm_packus_epi16(q, q));
    }
    Correct_scalar(pixels + i, shifts + i, n - i, parameters);
}

void Correct_sse2(uint16_t* pixels, const double* shifts, size_t n, const CorrectionParameters<uint16_t>& parameters) {
    if (parameters.lower > parameters.upper) return Correct_scalar(pixels, shifts, n, parameters);
    const Rounder rounder(parameters.half);
    // Sums about 2^15, because packing and comparing treat words as signed.
    const __m128i about = _mm_set1_epi32(0x8000), turn = _mm_set1_epi16(INT16_MIN), zero = _mm_setzero_si128();
    const __m128i lower = _mm_set1_epi16(static_cast<short>(parameters.lower - 0x8000));
    const __m128i upper = _mm_set1_epi16(static_cast<short>(parameters.upper - 0x8000));
    size_t i = 0;
    for (; i + 8 <= n; i += 8) {
        __m128i* const at = reinterpret_cast<__m128i*>(pixels + i);
        const __m128i p = _mm_loadu_si128(at);
        const __m128i low = _mm_add_epi32(_mm_unpacklo_epi16(p, zero), rounder.Four(shifts + i));
        const __m128i high = _mm_add_epi32(_mm_unpackhi_epi16(p, zero), rounder.Four(shifts + i + 4));
        const __m128i q = _mm_packs_epi32(_mm_sub_epi32(low, about), _mm_sub_epi32(high, about));
        _mm_storeu_si128(at, _mm_xor_si128(_mm_min_epi16(_mm_max_epi16(q, lower), upper), turn));
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
    CorrectInBlocks({&CorrectBlocks<1>, &CorrectBlocks<2>, &CorrectBlocks<3>}, kBlock, kRounding, &Shifts_sse2,
                    &Correct_sse2, pixels, n, x, row, parameters);
}

}  // namespace orlix
