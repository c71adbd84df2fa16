#include <immintrin.h>

#include "fits/trimming_kernels.hpp"
#include "vectors/inline.hpp"

namespace orlix {
namespace {

// Four pixels as doubles.
ORLIX_INLINE __m256d Load(const uint8_t* p) { return _mm256_cvtepi32_pd(_mm_cvtepu8_epi32(_mm_loadu_si32(p))); }
ORLIX_INLINE __m256d Load(const uint16_t* p) {
    return _mm256_cvtepi32_pd(_mm_cvtepu16_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p))));
}
ORLIX_INLINE __m256d Load(const uint32_t* p) {
    // Converted as signed numbers about 2^31, which is exact.
    const __m128i about =
        _mm_xor_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)), _mm_set1_epi32(INT32_MIN));
    return _mm256_add_pd(_mm256_cvtepi32_pd(about), _mm256_set1_pd(0x1p31));
}
ORLIX_INLINE __m256d Load(const float* p) { return _mm256_cvtps_pd(_mm_loadu_ps(p)); }

template <class T>
ORLIX_INLINE __m256d Square(const T* pixel, const double* surface) {
    const __m256d r = _mm256_sub_pd(_mm256_loadu_pd(surface), Load(pixel));
    return _mm256_mul_pd(r, r);
}

// A group of eight pixels goes to lanes 8 k to 8 k + 7, k = 0..3 in turn.
template <class T>
ORLIX_INLINE void Clipped(const T* pixels, const double* surface, size_t n, double limit, ClippedSums& sums) {
    const __m256d most = _mm256_set1_pd(limit);
    __m256d sum[8];
    for (size_t k = 0; k < 8; ++k) sum[k] = _mm256_loadu_pd(sums.lane + 4 * k);
    // The minimum returns its second operand when the first is NaN.
    const auto add = [&](size_t i, size_t k) __attribute__((always_inline)) {
        for (size_t half = 0; half < 2; ++half, i += 4)
            sum[2 * k + half] = _mm256_add_pd(sum[2 * k + half], _mm256_min_pd(Square(pixels + i, surface + i), most));
    };
    size_t i = 0;
    for (; i + 32 <= n; i += 32)
        for (size_t k = 0; k < 4; ++k) add(i + 8 * k, k);
    for (size_t k = 0; k < 3 && i + 8 <= n; ++k, i += 8) add(i, k);
    for (size_t k = 0; k < 8; ++k) _mm256_storeu_pd(sums.lane + 4 * k, sum[k]);
    // The rest starts in the lane i % 32, which is not the first.
    for (; i < n; ++i) {
        const double r = surface[i] - static_cast<double>(pixels[i]), square = r * r;
        sums.lane[i % 32] += square < limit ? square : limit;
    }
}

template <class T>
ORLIX_INLINE size_t Divide(const T* pixels, const double* surface, size_t n, double low, double high,
                           SquareClasses& classes, double* middle) {
    const __m256d lower = _mm256_set1_pd(low), upper = _mm256_set1_pd(high);
    __m256d below[2] = {_mm256_loadu_pd(classes.below), _mm256_loadu_pd(classes.below + 4)};
    __m256i fewer = _mm256_setzero_si256(), upToLow = fewer, upToHigh = fewer;
    size_t i = 0, kept = 0;
    for (; i + 8 <= n; i += 8)
        for (size_t half = 0; half < 2; ++half) {
            const __m256d square = Square(pixels + i + 4 * half, surface + i + 4 * half);
            const __m256d less = _mm256_cmp_pd(square, lower, _CMP_LT_OQ);
            const __m256d atMost = _mm256_cmp_pd(square, lower, _CMP_LE_OQ);
            const __m256d inside = _mm256_cmp_pd(square, upper, _CMP_LE_OQ);
            // A square that is not below low adds +0, which changes no sum of squares.
            below[half] = _mm256_add_pd(below[half], _mm256_and_pd(less, square));
            fewer = _mm256_sub_epi64(fewer, _mm256_castpd_si256(less));
            upToLow = _mm256_sub_epi64(upToLow, _mm256_castpd_si256(atMost));
            upToHigh = _mm256_sub_epi64(upToHigh, _mm256_castpd_si256(inside));
            const __m256d under = _mm256_cmp_pd(square, upper, _CMP_LT_OQ);
            auto between = static_cast<unsigned>(_mm256_movemask_pd(_mm256_andnot_pd(atMost, under)));
            if (between) {
                double squares[4];
                _mm256_storeu_pd(squares, square);
                for (; between; between &= between - 1) middle[kept++] = squares[_tzcnt_u32(between)];
            }
        }
    _mm256_storeu_pd(classes.below, below[0]);
    _mm256_storeu_pd(classes.below + 4, below[1]);
    const auto total = [](const __m256i& counts) {
        uint64_t lanes[4];
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(lanes), counts);
        return lanes[0] + lanes[1] + lanes[2] + lanes[3];
    };
    classes.fewer += total(fewer);
    classes.upToLow += total(upToLow);
    classes.upToHigh += total(upToHigh);
    return kept + DivideSquares_scalar(pixels + i, surface + i, n - i, low, high, classes, middle + kept);
}

}  // namespace

void ClippedSquares_avx2(const uint8_t* pixels, const double* surface, size_t n, double limit, ClippedSums& sums) {
    Clipped(pixels, surface, n, limit, sums);
}
void ClippedSquares_avx2(const uint16_t* pixels, const double* surface, size_t n, double limit, ClippedSums& sums) {
    Clipped(pixels, surface, n, limit, sums);
}
void ClippedSquares_avx2(const uint32_t* pixels, const double* surface, size_t n, double limit, ClippedSums& sums) {
    Clipped(pixels, surface, n, limit, sums);
}
void ClippedSquares_avx2(const float* pixels, const double* surface, size_t n, double limit, ClippedSums& sums) {
    Clipped(pixels, surface, n, limit, sums);
}
size_t DivideSquares_avx2(const uint8_t* pixels, const double* surface, size_t n, double low, double high,
                          SquareClasses& classes, double* middle) {
    return Divide(pixels, surface, n, low, high, classes, middle);
}
size_t DivideSquares_avx2(const uint16_t* pixels, const double* surface, size_t n, double low, double high,
                          SquareClasses& classes, double* middle) {
    return Divide(pixels, surface, n, low, high, classes, middle);
}
size_t DivideSquares_avx2(const uint32_t* pixels, const double* surface, size_t n, double low, double high,
                          SquareClasses& classes, double* middle) {
    return Divide(pixels, surface, n, low, high, classes, middle);
}
size_t DivideSquares_avx2(const float* pixels, const double* surface, size_t n, double low, double high,
                          SquareClasses& classes, double* middle) {
    return Divide(pixels, surface, n, low, high, classes, middle);
}

}  // namespace orlix
