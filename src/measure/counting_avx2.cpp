#include <immintrin.h>

#include "measure/counting_kernels.hpp"

namespace orlix {

// The pixel `upper` needs no test of its own: its quotient is the number of bins or, for an interval without width,
// NaN, and neither is less than the number of bins.
void Bins_avx2(const float* pixels, size_t n, const BinRule<float>& rule, uint32_t* bins) {
    const __m128 lower = _mm_set1_ps(rule.lower), upper = _mm_set1_ps(rule.upper);
    const __m256d from = _mm256_set1_pd(static_cast<double>(rule.lower));
    const __m256d width = _mm256_set1_pd(static_cast<double>(rule.upper) - static_cast<double>(rule.lower));
    const __m256d count = _mm256_set1_pd(static_cast<double>(rule.bins));
    const __m256d last = _mm256_set1_pd(static_cast<double>(rule.bins) - 1.0);
    const __m128i leftOut = _mm_set1_epi32(static_cast<int>(rule.bins));
    size_t i = 0;
    for (; i + 4 <= n; i += 4) {
        const __m128 p = _mm_loadu_ps(pixels + i);
        const __m128 counted = _mm_and_ps(_mm_cmpge_ps(p, lower), _mm_cmple_ps(p, upper));
        const __m256d above = _mm256_sub_pd(_mm256_cvtps_pd(p), from);
        const __m256d bin = _mm256_div_pd(_mm256_mul_pd(above, count), width);
        const __m256d valid = _mm256_blendv_pd(last, bin, _mm256_cmp_pd(bin, count, _CMP_LT_OQ));
        const __m128i number = _mm256_cvttpd_epi32(valid);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(bins + i),
                         _mm_blendv_epi8(leftOut, number, _mm_castps_si128(counted)));
    }
    Bins_scalar(pixels + i, n - i, rule, bins + i);
}

}  // namespace orlix
