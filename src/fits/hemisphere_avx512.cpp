#include "vectors/intrinsics_avx512.hpp"

#include "fits/hemisphere_kernels.hpp"

namespace orlix {

void HemisphereRow_avx512(const HemisphereRow& row, double x, size_t n, double* values) {
    const __m512d center = _mm512_set1_pd(row.xCenter), base = _mm512_set1_pd(row.base),
                  slope = _mm512_set1_pd(row.slope);
    const __m512d height = _mm512_set1_pd(row.height), squares = _mm512_set1_pd(row.squares),
                  zero = _mm512_setzero_pd();
    const __m512d step = _mm512_set1_pd(8.0);
    __m512d at = _mm512_add_pd(_mm512_set1_pd(x), _mm512_set_pd(7, 6, 5, 4, 3, 2, 1, 0));
    size_t i = 0;
    for (; i + 8 <= n; i += 8) {
        const __m512d dx = _mm512_sub_pd(at, center);
        // The maximum returns its second operand when the first is NaN.
        const __m512d square = _mm512_max_pd(_mm512_sub_pd(squares, _mm512_mul_pd(dx, dx)), zero);
        const __m512d plane = _mm512_add_pd(base, _mm512_mul_pd(slope, dx));
        _mm512_storeu_pd(values + i, _mm512_add_pd(plane, _mm512_mul_pd(height, _mm512_sqrt_pd(square))));
        at = _mm512_add_pd(at, step);
    }
    HemisphereRow_scalar(row, x + static_cast<double>(i), n - i, values + i);
}

}  // namespace orlix
