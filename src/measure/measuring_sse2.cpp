#include <emmintrin.h>

#include "measure/measuring_kernels.hpp"

namespace orlix {

// Blocks of 16 pixels. A running total of the partial sums gives the sum of block number times pixel: with B blocks it
// includes block b B - b times. With 65536 pixels every 32-bit lane stays below 2^31.
void Sums_sse2(const uint8_t* pixels, size_t n, double, PixelSums<uint8_t>& sums) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i lowWeights = _mm_set_epi16(7, 6, 5, 4, 3, 2, 1, 0);
    const __m128i highWeights = _mm_set_epi16(15, 14, 13, 12, 11, 10, 9, 8);
    __m128i s = zero, running = zero, q = zero, w = zero;
    size_t i = 0;
    for (; i + 16 <= n; i += 16) {
        const __m128i p = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels + i));
        const __m128i low = _mm_unpacklo_epi8(p, zero), high = _mm_unpackhi_epi8(p, zero);
        s = _mm_add_epi64(s, _mm_sad_epu8(p, zero));
        running = _mm_add_epi64(running, s);
        q = _mm_add_epi32(q, _mm_add_epi32(_mm_madd_epi16(low, low), _mm_madd_epi16(high, high)));
        w = _mm_add_epi32(w, _mm_add_epi32(_mm_madd_epi16(low, lowWeights), _mm_madd_epi16(high, highWeights)));
    }
    const auto sum64 = [](__m128i v) {
        uint64_t lanes[2];
        _mm_storeu_si128(reinterpret_cast<__m128i*>(lanes), v);
        return lanes[0] + lanes[1];
    };
    const auto sum32 = [&](__m128i v) {
        return sum64(_mm_add_epi64(_mm_unpacklo_epi32(v, zero), _mm_unpackhi_epi32(v, zero)));
    };
    Sums_scalar(pixels + i, n - i, 0.0, sums);
    const uint64_t total = sum64(s);
    sums.w += i * sums.s + 16 * (i / 16 * total - sum64(running)) + sum32(w);
    sums.s += total;
    sums.q += sum32(q);
}

// Blocks of 8 pixels as t = p - 32768, which multiplies as a signed word: p^2 = t^2 + 65536 p - 2^30. The squares of a
// pair reach 2^31, as an unsigned number. The running totals would exceed 31 bits after 255 blocks.
void Sums_sse2(const uint16_t* pixels, size_t n, double, PixelSums<uint16_t>& sums) {
    constexpr size_t kPart = 128 * 8;
    const __m128i zero = _mm_setzero_si128(), ones = _mm_set1_epi16(1), sign = _mm_set1_epi16(INT16_MIN);
    const __m128i half = _mm_set_epi32(0, -1, 0, -1), weights = _mm_set_epi16(7, 6, 5, 4, 3, 2, 1, 0);
    const auto sum32 = [](__m128i v) {  // of signed lanes
        int32_t lanes[4];
        _mm_storeu_si128(reinterpret_cast<__m128i*>(lanes), v);
        return static_cast<uint64_t>(int64_t{lanes[0]} + lanes[1] + lanes[2] + lanes[3]);
    };
    __m128i q = zero;
    uint64_t sumT = 0, sumW = 0;  // modulo 2^64, as they may be negative
    size_t done = 0;
    while (n - done >= 8) {
        const size_t part = n - done < kPart ? (n - done) / 8 * 8 : kPart;
        __m128i s = zero, running = zero, w = zero;
        for (size_t i = done; i < done + part; i += 8) {
            const __m128i t = _mm_xor_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels + i)), sign);
            s = _mm_add_epi32(s, _mm_madd_epi16(t, ones));
            running = _mm_add_epi32(running, s);
            w = _mm_add_epi32(w, _mm_madd_epi16(t, weights));
            const __m128i squares = _mm_madd_epi16(t, t);
            q = _mm_add_epi64(q, _mm_and_si128(squares, half));
            q = _mm_add_epi64(q, _mm_srli_epi64(squares, 32));
        }
        const uint64_t total = sum32(s);
        sumT += total;
        sumW += done * total + 8 * (part / 8 * total - sum32(running)) + sum32(w);
        done += part;
    }
    Sums_scalar(pixels + done, n - done, 0.0, sums);
    uint64_t squares[2];
    _mm_storeu_si128(reinterpret_cast<__m128i*>(squares), q);
    const uint64_t blocked = done, s = sumT + 32768 * blocked;
    sums.w += blocked * sums.s + sumW + 32768 * (blocked * (blocked - 1) / 2);
    sums.q += squares[0] + squares[1] + 65536 * s - (blocked << 30);
    sums.s += s;
}

void Sums_sse2(const float* pixels, size_t n, double origin, PixelSums<float>& sums) {
    const __m128d zero = _mm_setzero_pd();
    const __m128d o = _mm_set1_pd(origin);
    __m128d s[4] = {zero, zero, zero, zero}, q[4] = {zero, zero, zero, zero}, w[4] = {zero, zero, zero, zero};
    __m128d x[4];
    for (int k = 0; k < 4; ++k) x[k] = _mm_set_pd(2 * k + 1, 2 * k);
    const __m128d eight = _mm_set1_pd(8.0);
    size_t i = 0;
    for (; i + 8 <= n; i += 8)
        for (int k = 0; k < 4; ++k) {
            const __m128 two = _mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(pixels + i + 2 * k)));
            const __m128d p = _mm_cvtps_pd(two);
            const __m128d d = _mm_sub_pd(p, o);
            s[k] = _mm_add_pd(s[k], p);
            q[k] = _mm_add_pd(q[k], _mm_mul_pd(d, d));
            w[k] = _mm_add_pd(w[k], _mm_mul_pd(x[k], p));
            x[k] = _mm_add_pd(x[k], eight);
        }
    for (int k = 0; k < 4; ++k) {
        _mm_storeu_pd(sums.s + 2 * k, s[k]);
        _mm_storeu_pd(sums.q + 2 * k, q[k]);
        _mm_storeu_pd(sums.w + 2 * k, w[k]);
    }
    AddRest(pixels, i, n, origin, sums);
}

}  // namespace orlix
