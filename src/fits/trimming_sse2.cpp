#include <emmintrin.h>

#include "fits/trimming_kernels.hpp"
#include "vectors/inline.hpp"

namespace orlix {
namespace {

// Eight pixels as four pairs of doubles.
struct Pairs {
    __m128d pair[4];
};
ORLIX_INLINE Pairs FromInt32(__m128i low, __m128i high) {
    return {{_mm_cvtepi32_pd(low), _mm_cvtepi32_pd(_mm_unpackhi_epi64(low, low)), _mm_cvtepi32_pd(high),
             _mm_cvtepi32_pd(_mm_unpackhi_epi64(high, high))}};
}
ORLIX_INLINE Pairs FromWords(__m128i words) {
    const __m128i zero = _mm_setzero_si128();
    return FromInt32(_mm_unpacklo_epi16(words, zero), _mm_unpackhi_epi16(words, zero));
}
ORLIX_INLINE Pairs Load(const uint8_t* p) {
    const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p));
    return FromWords(_mm_unpacklo_epi8(bytes, _mm_setzero_si128()));
}
ORLIX_INLINE Pairs Load(const uint16_t* p) { return FromWords(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))); }
ORLIX_INLINE Pairs Load(const uint32_t* p) {
    // Converted as signed numbers about 2^31, which is exact.
    const __m128i sign = _mm_set1_epi32(INT32_MIN);
    const auto about = [&](const uint32_t* q) {
        return _mm_xor_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(q)), sign);
    };
    Pairs pixels = FromInt32(about(p), about(p + 4));
    for (__m128d& pair : pixels.pair) pair = _mm_add_pd(pair, _mm_set1_pd(0x1p31));
    return pixels;
}
ORLIX_INLINE Pairs Load(const float* p) {
    const __m128 low = _mm_loadu_ps(p), high = _mm_loadu_ps(p + 4);
    return {{_mm_cvtps_pd(low), _mm_cvtps_pd(_mm_movehl_ps(low, low)), _mm_cvtps_pd(high),
             _mm_cvtps_pd(_mm_movehl_ps(high, high))}};
}

template <class T>
ORLIX_INLINE Pairs Squares(const T* pixels, const double* surface) {
    Pairs squares = Load(pixels);
    for (size_t k = 0; k < 4; ++k) {
        const __m128d r = _mm_sub_pd(_mm_loadu_pd(surface + 2 * k), squares.pair[k]);
        squares.pair[k] = _mm_mul_pd(r, r);
    }
    return squares;
}

// A group of eight pixels goes to lanes 8 k to 8 k + 7, k = 0..3 in turn.
template <class T>
ORLIX_INLINE void Clipped(const T* pixels, const double* surface, size_t n, double limit, ClippedSums& sums) {
    const __m128d most = _mm_set1_pd(limit);
    __m128d sum[16];
    for (size_t k = 0; k < 16; ++k) sum[k] = _mm_loadu_pd(sums.lane + 2 * k);
    // The minimum returns its second operand when the first is NaN.
    const auto add = [&](size_t i, size_t k) __attribute__((always_inline)) {
        const Pairs squares = Squares(pixels + i, surface + i);
        for (size_t j = 0; j < 4; ++j) sum[4 * k + j] = _mm_add_pd(sum[4 * k + j], _mm_min_pd(squares.pair[j], most));
    };
    size_t i = 0;
    for (; i + 32 <= n; i += 32)
        for (size_t k = 0; k < 4; ++k) add(i + 8 * k, k);
    for (size_t k = 0; k < 3 && i + 8 <= n; ++k, i += 8) add(i, k);
    for (size_t k = 0; k < 16; ++k) _mm_storeu_pd(sums.lane + 2 * k, sum[k]);
    // The rest starts in the lane i % 32, which is not the first.
    for (; i < n; ++i) {
        const double r = surface[i] - static_cast<double>(pixels[i]), square = r * r;
        sums.lane[i % 32] += square < limit ? square : limit;
    }
}

template <class T>
ORLIX_INLINE size_t Divide(const T* pixels, const double* surface, size_t n, double low, double high,
                           SquareClasses& classes, double* middle) {
    const __m128d lower = _mm_set1_pd(low), upper = _mm_set1_pd(high);
    __m128d below[4];
    for (size_t k = 0; k < 4; ++k) below[k] = _mm_loadu_pd(classes.below + 2 * k);
    __m128i fewer = _mm_setzero_si128(), upToLow = fewer, upToHigh = fewer;
    size_t i = 0, kept = 0;
    for (; i + 8 <= n; i += 8) {
        const Pairs squares = Squares(pixels + i, surface + i);
        for (size_t k = 0; k < 4; ++k) {
            const __m128d square = squares.pair[k];
            const __m128d less = _mm_cmplt_pd(square, lower), atMost = _mm_cmple_pd(square, lower);
            // A square that is not below low adds +0, which changes no sum of squares.
            below[k] = _mm_add_pd(below[k], _mm_and_pd(less, square));
            fewer = _mm_sub_epi64(fewer, _mm_castpd_si128(less));
            upToLow = _mm_sub_epi64(upToLow, _mm_castpd_si128(atMost));
            upToHigh = _mm_sub_epi64(upToHigh, _mm_castpd_si128(_mm_cmple_pd(square, upper)));
            const int between = _mm_movemask_pd(_mm_andnot_pd(atMost, _mm_cmplt_pd(square, upper)));
            if (between & 1) middle[kept++] = _mm_cvtsd_f64(square);
            if (between & 2) middle[kept++] = _mm_cvtsd_f64(_mm_unpackhi_pd(square, square));
        }
    }
    for (size_t k = 0; k < 4; ++k) _mm_storeu_pd(classes.below + 2 * k, below[k]);
    const auto total = [](__m128i counts) {
        uint64_t lanes[2];
        _mm_storeu_si128(reinterpret_cast<__m128i*>(lanes), counts);
        return lanes[0] + lanes[1];
    };
    classes.fewer += total(fewer);
    classes.upToLow += total(upToLow);
    classes.upToHigh += total(upToHigh);
    return kept + DivideSquares_scalar(pixels + i, surface + i, n - i, low, high, classes, middle + kept);
}

}  // namespace

void ClippedSquares_sse2(const uint8_t* pixels, const double* surface, size_t n, double limit, ClippedSums& sums) {
    Clipped(pixels, surface, n, limit, sums);
}
void ClippedSquares_sse2(const uint16_t* pixels, const double* surface, size_t n, double limit, ClippedSums& sums) {
    Clipped(pixels, surface, n, limit, sums);
}
void ClippedSquares_sse2(const uint32_t* pixels, const double* surface, size_t n, double limit, ClippedSums& sums) {
    Clipped(pixels, surface, n, limit, sums);
}
void ClippedSquares_sse2(const float* pixels, const double* surface, size_t n, double limit, ClippedSums& sums) {
    Clipped(pixels, surface, n, limit, sums);
}
size_t DivideSquares_sse2(const uint8_t* pixels, const double* surface, size_t n, double low, double high,
                          SquareClasses& classes, double* middle) {
    return Divide(pixels, surface, n, low, high, classes, middle);
}
size_t DivideSquares_sse2(const uint16_t* pixels, const double* surface, size_t n, double low, double high,
                          SquareClasses& classes, double* middle) {
    return Divide(pixels, surface, n, low, high, classes, middle);
}
size_t DivideSquares_sse2(const uint32_t* pixels, const double* surface, size_t n, double low, double high,
                          SquareClasses& classes, double* middle) {
    return Divide(pixels, surface, n, low, high, classes, middle);
}
size_t DivideSquares_sse2(const float* pixels, const double* surface, size_t n, double low, double high,
                          SquareClasses& classes, double* middle) {
    return Divide(pixels, surface, n, low, high, classes, middle);
}

}  // namespace orlix
