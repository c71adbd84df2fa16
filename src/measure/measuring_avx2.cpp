#include <immintrin.h>

#include "measure/measuring_kernels.hpp"
#include "vectors/inline.hpp"

namespace orlix {
namespace {

ORLIX_INLINE __m256i Load(const void* p) { return _mm256_loadu_si256(static_cast<const __m256i*>(p)); }
ORLIX_INLINE uint64_t Sum64(const __m256i& v) {
    uint64_t lanes[4];
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(lanes), v);
    return (lanes[0] + lanes[1]) + (lanes[2] + lanes[3]);
}
// Sums of unsigned and of signed 32-bit lanes.
ORLIX_INLINE uint64_t SumU32(const __m256i& v) {
    const __m256i low = _mm256_and_si256(v, _mm256_set1_epi64x(0xffffffff));
    return Sum64(_mm256_add_epi64(low, _mm256_srli_epi64(v, 32)));
}
ORLIX_INLINE uint64_t SumI32(const __m256i& v) {
    const __m256i low = _mm256_cvtepi32_epi64(_mm256_castsi256_si128(v));
    return Sum64(_mm256_add_epi64(low, _mm256_cvtepi32_epi64(_mm256_extracti128_si256(v, 1))));
}

}  // namespace

// Blocks of 32 pixels. A running total of the partial sums gives the sum of block number times pixel: with B blocks it
// includes block b B - b times. With 65536 pixels every 32-bit lane stays below 2^31.
void Sums_avx2(const uint8_t* pixels, size_t n, double, PixelSums<uint8_t>& sums) {
    const __m256i zero = _mm256_setzero_si256(), ones = _mm256_set1_epi16(1);
    const __m256i weights = _mm256_set_epi8(31, 30, 29, 28, 27, 26, 25, 24, 23, 22, 21, 20, 19, 18, 17, 16, 15, 14, 13,
                                            12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0);
    __m256i s = zero, running = zero, q = zero, w = zero;
    size_t i = 0;
    for (; i + 32 <= n; i += 32) {
        const __m256i p = Load(pixels + i);
        const __m256i low = _mm256_unpacklo_epi8(p, zero), high = _mm256_unpackhi_epi8(p, zero);
        s = _mm256_add_epi64(s, _mm256_sad_epu8(p, zero));
        running = _mm256_add_epi64(running, s);
        q = _mm256_add_epi32(q, _mm256_add_epi32(_mm256_madd_epi16(low, low), _mm256_madd_epi16(high, high)));
        w = _mm256_add_epi32(w, _mm256_madd_epi16(_mm256_maddubs_epi16(p, weights), ones));
    }
    Sums_scalar(pixels + i, n - i, 0.0, sums);
    const uint64_t total = Sum64(s);
    sums.w += i * sums.s + 32 * (i / 32 * total - Sum64(running)) + SumU32(w);
    sums.s += total;
    sums.q += SumU32(q);
}

// Blocks of 16 pixels as t = p - 32768, which multiplies as a signed word: p^2 = t^2 + 65536 p - 2^30. The squares of a
// pair reach 2^31, as an unsigned number. The running totals would exceed 31 bits after 255 blocks.
void Sums_avx2(const uint16_t* pixels, size_t n, double, PixelSums<uint16_t>& sums) {
    constexpr size_t kPart = 128 * 16;
    const __m256i zero = _mm256_setzero_si256(), ones = _mm256_set1_epi16(1);
    const __m256i sign = _mm256_set1_epi16(static_cast<short>(0x8000));
    const __m256i half = _mm256_set1_epi64x(0xffffffff);
    const __m256i weights = _mm256_set_epi16(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0);
    __m256i q = zero;
    uint64_t sumT = 0, sumW = 0;  // modulo 2^64, as they may be negative
    size_t done = 0;
    while (n - done >= 16) {
        const size_t part = n - done < kPart ? (n - done) / 16 * 16 : kPart;
        __m256i s = zero, running = zero, w = zero;
        for (size_t i = done; i < done + part; i += 16) {
            const __m256i t = _mm256_xor_si256(Load(pixels + i), sign);
            s = _mm256_add_epi32(s, _mm256_madd_epi16(t, ones));
            running = _mm256_add_epi32(running, s);
            w = _mm256_add_epi32(w, _mm256_madd_epi16(t, weights));
            const __m256i squares = _mm256_madd_epi16(t, t);
            q = _mm256_add_epi64(q, _mm256_and_si256(squares, half));
            q = _mm256_add_epi64(q, _mm256_srli_epi64(squares, 32));
        }
        const uint64_t total = SumI32(s);
        sumT += total;
        sumW += done * total + 16 * (part / 16 * total - SumI32(running)) + SumI32(w);
        done += part;
    }
    Sums_scalar(pixels + done, n - done, 0.0, sums);
    const uint64_t blocked = done;
    const uint64_t s = sumT + 32768 * blocked;
    sums.w += blocked * sums.s + sumW + 32768 * (blocked * (blocked - 1) / 2);
    sums.q += Sum64(q) + 65536 * s - (blocked << 30);
    sums.s += s;
}

void Sums_avx2(const float* pixels, size_t n, double origin, PixelSums<float>& sums) {
    const __m256d o = _mm256_set1_pd(origin), eight = _mm256_set1_pd(8.0);
    __m256d s0 = _mm256_setzero_pd(), s1 = s0, q0 = s0, q1 = s0, w0 = s0, w1 = s0;
    __m256d x0 = _mm256_set_pd(3, 2, 1, 0), x1 = _mm256_set_pd(7, 6, 5, 4);
    size_t i = 0;
    for (; i + 8 <= n; i += 8) {
        const __m256d p0 = _mm256_cvtps_pd(_mm_loadu_ps(pixels + i));
        const __m256d p1 = _mm256_cvtps_pd(_mm_loadu_ps(pixels + i + 4));
        const __m256d d0 = _mm256_sub_pd(p0, o), d1 = _mm256_sub_pd(p1, o);
        s0 = _mm256_add_pd(s0, p0);
        s1 = _mm256_add_pd(s1, p1);
        q0 = _mm256_add_pd(q0, _mm256_mul_pd(d0, d0));
        q1 = _mm256_add_pd(q1, _mm256_mul_pd(d1, d1));
        w0 = _mm256_add_pd(w0, _mm256_mul_pd(x0, p0));
        w1 = _mm256_add_pd(w1, _mm256_mul_pd(x1, p1));
        x0 = _mm256_add_pd(x0, eight);
        x1 = _mm256_add_pd(x1, eight);
    }
    _mm256_storeu_pd(sums.s, s0);
    _mm256_storeu_pd(sums.s + 4, s1);
    _mm256_storeu_pd(sums.q, q0);
    _mm256_storeu_pd(sums.q + 4, q1);
    _mm256_storeu_pd(sums.w, w0);
    _mm256_storeu_pd(sums.w + 4, w1);
    AddRest(pixels, i, n, origin, sums);
}

}  // namespace orlix
