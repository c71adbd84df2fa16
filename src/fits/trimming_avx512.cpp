#include "vectors/intrinsics_avx512.hpp"

#include "fits/trimming_kernels.hpp"
#include "vectors/inline.hpp"

namespace orlix {
namespace {

// Eight pixels as doubles.
ORLIX_INLINE __m512d Load(const uint8_t* p) {
    return _mm512_cvtepi32_pd(_mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p))));
}
ORLIX_INLINE __m512d Load(const uint16_t* p) {
    return _mm512_cvtepi32_pd(_mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))));
}
ORLIX_INLINE __m512d Load(const uint32_t* p) {
    return _mm512_cvtepu32_pd(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)));
}
ORLIX_INLINE __m512d Load(const float* p) { return _mm512_cvtps_pd(_mm256_loadu_ps(p)); }

template <class T>
ORLIX_INLINE __m512d Square(const T* pixel, const double* surface) {
    const __m512d r = _mm512_sub_pd(_mm512_loadu_pd(surface), Load(pixel));
    return _mm512_mul_pd(r, r);
}

// A group of eight pixels goes to lanes 8 k to 8 k + 7, k = 0..3 in turn.
template <class T>
ORLIX_INLINE void Clipped(const T* pixels, const double* surface, size_t n, double limit, ClippedSums& sums) {
    const __m512d most = _mm512_set1_pd(limit);
    __m512d sum[4];
    for (size_t k = 0; k < 4; ++k) sum[k] = _mm512_loadu_pd(sums.lane + 8 * k);
    // The minimum returns its second operand when the first is NaN.
    const auto add = [&](size_t i, size_t k) __attribute__((always_inline)) {
        sum[k] = _mm512_add_pd(sum[k], _mm512_min_pd(Square(pixels + i, surface + i), most));
    };
    size_t i = 0;
    for (; i + 32 <= n; i += 32)
        for (size_t k = 0; k < 4; ++k) add(i + 8 * k, k);
    for (size_t k = 0; k < 3 && i + 8 <= n; ++k, i += 8) add(i, k);
    for (size_t k = 0; k < 4; ++k) _mm512_storeu_pd(sums.lane + 8 * k, sum[k]);
    // The rest starts in the lane i % 32, which is not the first.
    for (; i < n; ++i) {
        const double r = surface[i] - static_cast<double>(pixels[i]), square = r * r;
        sums.lane[i % 32] += square < limit ? square : limit;
    }
}

template <class T>
ORLIX_INLINE size_t Divide(const T* pixels, const double* surface, size_t n, double low, double high,
                           SquareClasses& classes, double* middle) {
    const __m512d lower = _mm512_set1_pd(low), upper = _mm512_set1_pd(high);
    const __m512i one = _mm512_set1_epi64(1);
    __m512d below = _mm512_loadu_pd(classes.below);
    __m512i fewer = _mm512_setzero_si512(), upToLow = fewer, upToHigh = fewer;
    size_t i = 0, kept = 0;
    for (; i + 8 <= n; i += 8) {
        const __m512d square = Square(pixels + i, surface + i);
        const __mmask8 less = _mm512_cmp_pd_mask(square, lower, _CMP_LT_OQ);
        const __mmask8 atMost = _mm512_cmp_pd_mask(square, lower, _CMP_LE_OQ);
        const __mmask8 inside = _mm512_cmp_pd_mask(square, upper, _CMP_LE_OQ);
        const __mmask8 between = static_cast<__mmask8>(
            _mm512_mask_cmp_pd_mask(_mm512_cmp_pd_mask(square, lower, _CMP_GT_OQ), square, upper, _CMP_LT_OQ));
        below = _mm512_mask_add_pd(below, less, below, square);
        fewer = _mm512_mask_add_epi64(fewer, less, fewer, one);
        upToLow = _mm512_mask_add_epi64(upToLow, atMost, upToLow, one);
        upToHigh = _mm512_mask_add_epi64(upToHigh, inside, upToHigh, one);
        if (between) {
            _mm512_storeu_pd(middle + kept, _mm512_maskz_compress_pd(between, square));
            kept += static_cast<size_t>(_mm_popcnt_u32(between));
        }
    }
    _mm512_storeu_pd(classes.below, below);
    classes.fewer += static_cast<uint64_t>(_mm512_reduce_add_epi64(fewer));
    classes.upToLow += static_cast<uint64_t>(_mm512_reduce_add_epi64(upToLow));
    classes.upToHigh += static_cast<uint64_t>(_mm512_reduce_add_epi64(upToHigh));
    return kept + DivideSquares_scalar(pixels + i, surface + i, n - i, low, high, classes, middle + kept);
}

}  // namespace

void ClippedSquares_avx512(const uint8_t* pixels, const double* surface, size_t n, double limit, ClippedSums& sums) {
    Clipped(pixels, surface, n, limit, sums);
}
void ClippedSquares_avx512(const uint16_t* pixels, const double* surface, size_t n, double limit, ClippedSums& sums) {
    Clipped(pixels, surface, n, limit, sums);
}
void ClippedSquares_avx512(const uint32_t* pixels, const double* surface, size_t n, double limit, ClippedSums& sums) {
    Clipped(pixels, surface, n, limit, sums);
}
void ClippedSquares_avx512(const float* pixels, const double* surface, size_t n, double limit, ClippedSums& sums) {
    Clipped(pixels, surface, n, limit, sums);
}
size_t DivideSquares_avx512(const uint8_t* pixels, const double* surface, size_t n, double low, double high,
                            SquareClasses& classes, double* middle) {
    return Divide(pixels, surface, n, low, high, classes, middle);
}
size_t DivideSquares_avx512(const uint16_t* pixels, const double* surface, size_t n, double low, double high,
                            SquareClasses& classes, double* middle) {
    return Divide(pixels, surface, n, low, high, classes, middle);
}
size_t DivideSquares_avx512(const uint32_t* pixels, const double* surface, size_t n, double low, double high,
                            SquareClasses& classes, double* middle) {
    return Divide(pixels, surface, n, low, high, classes, middle);
}
size_t DivideSquares_avx512(const float* pixels, const double* surface, size_t n, double low, double high,
                            SquareClasses& classes, double* middle) {
    return Divide(pixels, surface, n, low, high, classes, middle);
}

}  // namespace orlix
