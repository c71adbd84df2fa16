#include "vectors/intrinsics_avx512.hpp"

#include "fits/moments_kernels.hpp"
#include "vectors/inline.hpp"

namespace orlix {
namespace {

ORLIX_INLINE __m512i Pixels(const uint8_t* pixels, __mmask16 which) {
    return _mm512_cvtepu8_epi32(_mm_maskz_loadu_epi8(which, pixels));
}
ORLIX_INLINE __m512i Pixels(const uint16_t* pixels, __mmask16 which) {
    return _mm512_cvtepu16_epi32(_mm256_maskz_loadu_epi16(which, pixels));
}
ORLIX_INLINE uint64_t Sum64(const __m512i& v) { return static_cast<uint64_t>(_mm512_reduce_add_epi64(v)); }

// Sums, sums of the sums after each block, and so on; separate members because the compiler keeps arrays in memory.
template <int Degree>
struct Nested {
    __m512i s0 = _mm512_setzero_si512(), s1 = s0, s2 = s0, s3 = s0;
    ORLIX_INLINE void Add(const __m512i& p) {
        s0 = _mm512_add_epi32(s0, p);
        s1 = _mm512_add_epi32(s1, s0);
        if constexpr (Degree >= 2) s2 = _mm512_add_epi32(s2, s1);
        if constexpr (Degree >= 3) s3 = _mm512_add_epi32(s3, s2);
    }
    void Store(uint32_t (&lanes)[Degree + 1][32], size_t lane) const {
        _mm512_storeu_si512(lanes[0] + lane, s0);
        _mm512_storeu_si512(lanes[1] + lane, s1);
        if constexpr (Degree >= 2) _mm512_storeu_si512(lanes[2] + lane, s2);
        if constexpr (Degree >= 3) _mm512_storeu_si512(lanes[3] + lane, s3);
    }
};

alignas(16) constexpr uint8_t kCounting[64] = {0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14, 15,
                                               16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31,
                                               32, 33, 34, 35, 36, 37, 38, 39, 40, 41, 42, 43, 44, 45, 46, 47,
                                               48, 49, 50, 51, 52, 53, 54, 55, 56, 57, 58, 59, 60, 61, 62, 63};

}  // namespace

// Blocks of 32 pixels; pixels after the last one count as 0 and are not read. 128 blocks of 8-bit pixels, or 32 of
// 16-bit pixels, keep the third nested sum, C(B + 3, 4) times the largest pixel, below 2^32.
template <class T, int Degree>
void Moments_avx512(const T* pixels, size_t n, uint64_t* m) {
    for (int k = 0; k <= Degree; ++k) m[k] = 0;
    Nested<Degree> low, high;
    size_t i = 0;
    for (; i + 32 <= n; i += 32) {
        low.Add(Pixels(pixels + i, 0xffff));
        high.Add(Pixels(pixels + i + 16, 0xffff));
    }
    if (i < n) {
        const uint32_t rest = (uint32_t{1} << (n - i)) - 1;
        low.Add(Pixels(pixels + i, static_cast<__mmask16>(rest)));
        high.Add(Pixels(pixels + i + 16, static_cast<__mmask16>(rest >> 16)));
    }
    uint32_t lanes[Degree + 1][32];
    low.Store(lanes, 0);
    high.Store(lanes, 16);
    AddNested<Degree>(lanes, (n + 31) / 32, 0, m);
}

// Blocks of 64 pixels. The sum of block number times pixel comes from the running sum of the prefix sums: after B
// blocks it contains block b B - b times.
template <>
void Moments_avx512<uint8_t, 1>(const uint8_t* pixels, size_t n, uint64_t* m) {
    const __m512i zero = _mm512_setzero_si512(), ones = _mm512_set1_epi16(1);
    const __m512i weights = _mm512_loadu_si512(kCounting);
    __m512i s = zero, running = zero, w = zero;
    uint64_t blocks = 0;
    const auto add = [&](const __m512i& p) {
        s = _mm512_add_epi64(s, _mm512_sad_epu8(p, zero));
        running = _mm512_add_epi64(running, s);
        w = _mm512_add_epi32(w, _mm512_madd_epi16(_mm512_maddubs_epi16(p, weights), ones));
        ++blocks;
    };
    size_t i = 0;
    for (; i + 64 <= n; i += 64) add(_mm512_loadu_si512(pixels + i));
    if (i < n) add(_mm512_maskz_loadu_epi8((uint64_t{1} << (n - i)) - 1, pixels + i));
    m[0] = Sum64(s);
    const __m512i low = _mm512_and_si512(w, _mm512_set1_epi64(0xffffffff));
    m[1] = 64 * (blocks * m[0] - Sum64(running)) + Sum64(_mm512_add_epi64(low, _mm512_srli_epi64(w, 32)));
}

template <int Degree>
void FloatMoments_avx512(const float* pixels, size_t n, double origin, double first, FloatMoments& m) {
    const __m512d o = _mm512_set1_pd(origin), step = _mm512_set1_pd(16.0);
    __m512d t = _mm512_add_pd(_mm512_set1_pd(first), _mm512_set_pd(14, 12, 10, 8, 6, 4, 2, 0));
    __m512d sums[Degree + 1];
    for (auto& sum : sums) sum = _mm512_setzero_pd();
    size_t i = 0;
    for (; i + 8 <= n; i += 8) {
        __m512d e = _mm512_sub_pd(_mm512_cvtps_pd(_mm256_loadu_ps(pixels + i)), o);
        sums[0] = _mm512_add_pd(sums[0], e);
#pragma GCC unroll 3
        for (int k = 1; k <= Degree; ++k) {
            e = _mm512_mul_pd(e, t);
            sums[k] = _mm512_add_pd(sums[k], e);
        }
        t = _mm512_add_pd(t, step);
    }
    for (int k = 0; k <= Degree; ++k) _mm512_storeu_pd(m.lane[k], sums[k]);
    AddFloatMoments<Degree>(pixels, i, n, origin, first, m);
}

template Kernel<MomentsFn<uint8_t>> Moments_avx512<uint8_t, 2>;
template Kernel<MomentsFn<uint8_t>> Moments_avx512<uint8_t, 3>;
template Kernel<MomentsFn<uint16_t>> Moments_avx512<uint16_t, 1>;
template Kernel<MomentsFn<uint16_t>> Moments_avx512<uint16_t, 2>;
template Kernel<MomentsFn<uint16_t>> Moments_avx512<uint16_t, 3>;
template Kernel<FloatMomentsFn> FloatMoments_avx512<1>;
template Kernel<FloatMomentsFn> FloatMoments_avx512<2>;
template Kernel<FloatMomentsFn> FloatMoments_avx512<3>;

}  // namespace orlix
