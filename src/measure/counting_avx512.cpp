#include "vectors/intrinsics_avx512.hpp"

#include "measure/counting_kernels.hpp"

namespace orlix {

// The pixel `upper` needs no test of its own: its quotient is the number of bins or, for an interval without width,
// NaN, and neither is less than the number of bins.
void Bins_avx512(const float* pixels, size_t n, const BinRule<float>& rule, uint32_t* bins) {
    const __m256 lower = _mm256_set1_ps(rule.lower), upper = _mm256_set1_ps(rule.upper);
    const __m512d from = _mm512_set1_pd(static_cast<double>(rule.lower));
    const __m512d width = _mm512_set1_pd(static_cast<double>(rule.upper) - static_cast<double>(rule.lower));
    const __m512d count = _mm512_set1_pd(static_cast<double>(rule.bins));
    const __m512d last = _mm512_set1_pd(static_cast<double>(rule.bins) - 1.0);
    const __m256i leftOut = _mm256_set1_epi32(static_cast<int>(rule.bins));
    size_t i = 0;
    for (; i + 8 <= n; i += 8) {
        const __m256 p = _mm256_loadu_ps(pixels + i);
        const __mmask8 counted =
            _mm256_mask_cmp_ps_mask(_mm256_cmp_ps_mask(p, lower, _CMP_GE_OQ), p, upper, _CMP_LE_OQ);
        const __m512d above = _mm512_sub_pd(_mm512_cvtps_pd(p), from);
        const __m512d bin = _mm512_div_pd(_mm512_mul_pd(above, count), width);
        const __m512d valid = _mm512_mask_mov_pd(last, _mm512_cmp_pd_mask(bin, count, _CMP_LT_OQ), bin);
        const __m256i number = _mm256_mask_mov_epi32(leftOut, counted, _mm512_cvttpd_epi32(valid));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(bins + i), number);
    }
    Bins_scalar(pixels + i, n - i, rule, bins + i);
}

}  // namespace orlix
