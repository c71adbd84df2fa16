#include <immintrin.h>

#include "fits/hemisphere_kernels.hpp"

namespace orlix {

void HemisphereRow_avx2(const HemisphereRow& row, double x, size_t n, double* values) {
    const __m256d center = _mm256_set1_pd(row.xCenter), base = _mm256_set1_pd(row.base),
                  slope = _mm256_set1_pd(row.slope);
    const __m256d height = _mm256_set1_pd(row.height), squares = _mm256_set1_pd(row.squares),
                  zero = _mm256_setzero_pd();
    const __m256d step = _mm256_set1_pd(4.0);
    __m256d at = _mm256_add_pd(_mm256_set1_pd(x), _mm256_set_pd(3, 2, 1, 0));
    size_t i = 0;
    for (; i + 4 <= n; i += 4) {
        const __m256d dx = _mm256_sub_pd(at, center);
        // The maximum returns its second operand when the first is NaN.
        const __m256d square = _mm256_max_pd(_mm256_sub_pd(squares, _mm256_mul_pd(dx, dx)), zero);
        const __m256d plane = _mm256_add_pd(base, _mm256_mul_pd(slope, dx));
        _mm256_storeu_pd(values + i, _mm256_add_pd(plane, _mm256_mul_pd(height, _mm256_sqrt_pd(square))));
        at = _mm256_add_pd(at, step);
    }
    HemisphereRow_scalar(row, x + static_cast<double>(i), n - i, values + i);
}

}  // namespace orlix
