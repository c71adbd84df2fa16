#include "vectors/intrinsics_avx512.hpp"

#include "measure/measuring_kernels.hpp"
#include "vectors/inline.hpp"

namespace orlix {
namespace {

ORLIX_INLINE uint64_t Sum64(const __m512i& v) { return static_cast<uint64_t>(_mm512_reduce_add_epi64(v)); }
// Sums of unsigned and of signed 32-bit lanes.
ORLIX_INLINE uint64_t SumU32(const __m512i& v) {
    const __m512i low = _mm512_and_si512(v, _mm512_set1_epi64(0xffffffff));
    return Sum64(_mm512_add_epi64(low, _mm512_srli_epi64(v, 32)));
}
ORLIX_INLINE uint64_t SumI32(const __m512i& v) {
    const __m512i low = _mm512_cvtepi32_epi64(_mm512_castsi512_si256(v));
    return Sum64(_mm512_add_epi64(low, _mm512_cvtepi32_epi64(_mm512_extracti64x4_epi64(v, 1))));
}

alignas(16) constexpr uint8_t kCounting[64] = {0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14, 15,
                                               16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31,
                                               32, 33, 34, 35, 36, 37, 38, 39, 40, 41, 42, 43, 44, 45, 46, 47,
                                               48, 49, 50, 51, 52, 53, 54, 55, 56, 57, 58, 59, 60, 61, 62, 63};

}  // namespace

// Blocks of 64 pixels, starting at the cache line that holds the first pixel; lanes before the first and after the last
// pixel are not read and count as 0. A running total of the partial sums gives the sum of block number times pixel:
// with B blocks it includes block b B - b times. With 65536 pixels every 32-bit lane stays below 2^31.
void Sums_avx512(const uint8_t* pixels, size_t n, double, PixelSums<uint8_t>& sums) {
    const __m512i zero = _mm512_setzero_si512(), ones = _mm512_set1_epi16(1);
    const __m512i weights = _mm512_loadu_si512(kCounting);
    __m512i s = zero, running = zero, q = zero, w = zero;
    size_t blocks = 0;
    const auto add = [&](const __m512i& p) {
        const __m512i low = _mm512_unpacklo_epi8(p, zero), high = _mm512_unpackhi_epi8(p, zero);
        s = _mm512_add_epi64(s, _mm512_sad_epu8(p, zero));
        running = _mm512_add_epi64(running, s);
        q = _mm512_add_epi32(q, _mm512_add_epi32(_mm512_madd_epi16(low, low), _mm512_madd_epi16(high, high)));
        w = _mm512_add_epi32(w, _mm512_madd_epi16(_mm512_maddubs_epi16(p, weights), ones));
        ++blocks;
    };
    const size_t before = reinterpret_cast<uintptr_t>(pixels) % 64;
    const auto* const start = reinterpret_cast<const uint8_t*>(reinterpret_cast<uintptr_t>(pixels) - before);
    const size_t end = before + n;
    const auto upTo = [](size_t lanes) { return lanes < 64 ? (uint64_t{1} << lanes) - 1 : ~uint64_t{0}; };
    size_t i = 0;
    if (before > 0) {
        add(_mm512_maskz_loadu_epi8(upTo(end) & ~upTo(before), start));
        i = 64;
    }
    for (; i + 64 <= end; i += 64) add(_mm512_loadu_si512(start + i));
    if (i < end) add(_mm512_maskz_loadu_epi8(upTo(end - i), start + i));
    sums.s = Sum64(s);
    sums.q = SumU32(q);
    sums.qHigh = 0;
    sums.w = 64 * (blocks * sums.s - Sum64(running)) + SumU32(w) - before * sums.s;
}

// Blocks of 32 pixels as t = p - 32768, which multiplies as a signed word: p^2 = t^2 + 65536 p - 2^30. The squares of a
// pair reach 2^31, as an unsigned number. The running totals would exceed 31 bits after 255 blocks.
void Sums_avx512(const uint16_t* pixels, size_t n, double, PixelSums<uint16_t>& sums) {
    constexpr size_t kPart = 128 * 32;
    const __m512i zero = _mm512_setzero_si512(), ones = _mm512_set1_epi16(1);
    const __m512i sign = _mm512_set1_epi16(static_cast<short>(0x8000));
    const __m512i half = _mm512_set1_epi64(0xffffffff);
    const __m512i weights = _mm512_cvtepu8_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(kCounting)));
    __m512i q = zero;
    uint64_t sumT = 0, sumW = 0;  // modulo 2^64, as they may be negative
    for (size_t done = 0; done < n; done += kPart) {
        const size_t end = n - done < kPart ? n : done + kPart;
        __m512i s = zero, running = zero, w = zero;
        size_t blocks = 0;
        const auto add = [&](const __m512i& t) {
            s = _mm512_add_epi32(s, _mm512_madd_epi16(t, ones));
            running = _mm512_add_epi32(running, s);
            w = _mm512_add_epi32(w, _mm512_madd_epi16(t, weights));
            const __m512i squares = _mm512_madd_epi16(t, t);
            q = _mm512_add_epi64(q, _mm512_and_si512(squares, half));
            q = _mm512_add_epi64(q, _mm512_srli_epi64(squares, 32));
            ++blocks;
        };
        size_t i = done;
        for (; i + 32 <= end; i += 32) add(_mm512_xor_si512(_mm512_loadu_si512(pixels + i), sign));
        if (i < end) {
            // Lanes outside the run count as t = 0.
            const auto rest = static_cast<__mmask32>((uint64_t{1} << (end - i)) - 1);
            add(_mm512_maskz_add_epi16(rest, _mm512_maskz_loadu_epi16(rest, pixels + i), sign));
        }
        const uint64_t total = SumI32(s);
        sumT += total;
        sumW += done * total + 32 * (blocks * total - SumI32(running)) + SumI32(w);
    }
    sums.s = sumT + uint64_t{32768} * n;
    sums.q = Sum64(q) + 65536 * sums.s - (uint64_t{n} << 30);
    sums.qHigh = 0;
    sums.w = sumW + 32768 * (n == 0 ? 0 : uint64_t{n} * (n - 1) / 2);
}

void Sums_avx512(const float* pixels, size_t n, double origin, PixelSums<float>& sums) {
    const __m512d o = _mm512_set1_pd(origin), eight = _mm512_set1_pd(8.0);
    __m512d s = _mm512_setzero_pd(), q = s, w = s;
    __m512d x = _mm512_set_pd(7, 6, 5, 4, 3, 2, 1, 0);
    size_t i = 0;
    for (; i + 8 <= n; i += 8) {
        const __m512d p = _mm512_cvtps_pd(_mm256_loadu_ps(pixels + i));
        const __m512d d = _mm512_sub_pd(p, o);
        s = _mm512_add_pd(s, p);
        q = _mm512_add_pd(q, _mm512_mul_pd(d, d));
        w = _mm512_add_pd(w, _mm512_mul_pd(x, p));
        x = _mm512_add_pd(x, eight);
    }
    _mm512_storeu_pd(sums.s, s);
    _mm512_storeu_pd(sums.q, q);
    _mm512_storeu_pd(sums.w, w);
    AddRest(pixels, i, n, origin, sums);
}

}  // namespace orlix
