#include <emmintrin.h>

#include "fits/hemisphere_kernels.hpp"

namespace orlix {

void HemisphereRow_sse2(const HemisphereRow& row, double x, size_t n, double* values) {
    const __m128d center = _mm_set1_pd(row.xCenter), base = _mm_set1_pd(row.base), slope = _mm_set1_pd(row.slope);
    const __m128d height = _mm_set1_pd(row.height), squares = _mm_set1_pd(row.squares), zero = _mm_setzero_pd();
    const __m128d step = _mm_set1_pd(2.0);
    __m128d at = _mm_add_pd(_mm_set1_pd(x), _mm_set_pd(1, 0));
    size_t i = 0;
    for (; i + 2 <= n; i += 2) {
        const __m128d dx = _mm_sub_pd(at, center);
        // The maximum returns its second operand when the first is NaN.
        const __m128d square = _mm_max_pd(_mm_sub_pd(squares, _mm_mul_pd(dx, dx)), zero);
        const __m128d plane = _mm_add_pd(base, _mm_mul_pd(slope, dx));
        _mm_storeu_pd(values + i, _mm_add_pd(plane, _mm_mul_pd(height, _mm_sqrt_pd(square))));
        at = _mm_add_pd(at, step);
    }
    HemisphereRow_scalar(row, x + static_cast<double>(i), n - i, values + i);
}

}  // namespace orlix
