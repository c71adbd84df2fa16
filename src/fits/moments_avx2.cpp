#include <immintrin.h>

#include "fits/moments_kernels.hpp"
#include "vectors/inline.hpp"

namespace orlix {
namespace {

ORLIX_INLINE __m256i Eight(const uint8_t* pixels) {
    return _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(pixels)));
}
ORLIX_INLINE __m256i Eight(const uint16_t* pixels) {
    return _mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels)));
}
ORLIX_INLINE uint64_t Sum64(const __m256i& v) {
    uint64_t lanes[4];
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(lanes), v);
    return (lanes[0] + lanes[1]) + (lanes[2] + lanes[3]);
}

// Sums, sums of the sums after each block, and so on; separate members because the compiler keeps arrays in memory.
template <int Degree>
struct Nested {
    __m256i s0 = _mm256_setzero_si256(), s1 = s0, s2 = s0, s3 = s0;
    ORLIX_INLINE void Add(const __m256i& p) {
        s0 = _mm256_add_epi32(s0, p);
        s1 = _mm256_add_epi32(s1, s0);
        if constexpr (Degree >= 2) s2 = _mm256_add_epi32(s2, s1);
        if constexpr (Degree >= 3) s3 = _mm256_add_epi32(s3, s2);
    }
    void Store(uint32_t (&lanes)[Degree + 1][16], size_t lane) const {
        const auto store = [](uint32_t* to, const __m256i& sums) {
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), sums);
        };
        store(lanes[0] + lane, s0);
        store(lanes[1] + lane, s1);
        if constexpr (Degree >= 2) store(lanes[2] + lane, s2);
        if constexpr (Degree >= 3) store(lanes[3] + lane, s3);
    }
};

}  // namespace

// Blocks of 16 pixels. 128 blocks of 8-bit pixels, or 32 of 16-bit pixels, keep the third nested sum, C(B + 3, 4) times
// the largest pixel, below 2^32.
template <class T, int Degree>
void Moments_avx2(const T* pixels, size_t n, uint64_t* m) {
    constexpr size_t kPart = 16 * (sizeof(T) == 1 ? 128 : 32);
    const size_t blocked = n / 16 * 16;
    Moments_scalar<T, Degree>(pixels + blocked, n - blocked, m);
    ShiftMoments(m, Degree, uint64_t{blocked});
    for (size_t done = 0; done < blocked; done += kPart) {
        const size_t end = blocked - done < kPart ? blocked : done + kPart;
        Nested<Degree> low, high;
        for (size_t i = done; i < end; i += 16) {
            low.Add(Eight(pixels + i));
            high.Add(Eight(pixels + i + 8));
        }
        uint32_t lanes[Degree + 1][16];
        low.Store(lanes, 0);
        high.Store(lanes, 8);
        AddNested<Degree>(lanes, (end - done) / 16, done, m);
    }
}

// Blocks of 32 pixels. The sum of block number times pixel comes from the running sum of the prefix sums: after B
// blocks it contains block b B - b times.
template <>
void Moments_avx2<uint8_t, 1>(const uint8_t* pixels, size_t n, uint64_t* m) {
    const __m256i zero = _mm256_setzero_si256(), ones = _mm256_set1_epi16(1);
    const __m256i weights = _mm256_set_epi8(31, 30, 29, 28, 27, 26, 25, 24, 23, 22, 21, 20, 19, 18, 17, 16, 15, 14, 13,
                                            12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0);
    __m256i s = zero, running = zero, w = zero;
    size_t i = 0;
    for (; i + 32 <= n; i += 32) {
        const __m256i p = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pixels + i));
        s = _mm256_add_epi64(s, _mm256_sad_epu8(p, zero));
        running = _mm256_add_epi64(running, s);
        w = _mm256_add_epi32(w, _mm256_madd_epi16(_mm256_maddubs_epi16(p, weights), ones));
    }
    Moments_scalar<uint8_t, 1>(pixels + i, n - i, m);
    ShiftMoments(m, 1, uint64_t{i});
    const uint64_t total = Sum64(s);
    const __m256i low = _mm256_and_si256(w, _mm256_set1_epi64x(0xffffffff));
    m[0] += total;
    m[1] += 32 * (i / 32 * total - Sum64(running)) + Sum64(_mm256_add_epi64(low, _mm256_srli_epi64(w, 32)));
}

template <int Degree>
void FloatMoments_avx2(const float* pixels, size_t n, double origin, double first, FloatMoments& m) {
    const __m256d o = _mm256_set1_pd(origin), f = _mm256_set1_pd(first), step = _mm256_set1_pd(16.0);
    __m256d t[2] = {_mm256_add_pd(f, _mm256_set_pd(6, 4, 2, 0)), _mm256_add_pd(f, _mm256_set_pd(14, 12, 10, 8))};
    __m256d sums[Degree + 1][2];
    for (auto& sum : sums) sum[0] = sum[1] = _mm256_setzero_pd();
    size_t i = 0;
    for (; i + 8 <= n; i += 8)
#pragma GCC unroll 2
        for (size_t half = 0; half < 2; ++half) {
            __m256d e = _mm256_sub_pd(_mm256_cvtps_pd(_mm_loadu_ps(pixels + i + 4 * half)), o);
            sums[0][half] = _mm256_add_pd(sums[0][half], e);
#pragma GCC unroll 3
            for (int k = 1; k <= Degree; ++k) {
                e = _mm256_mul_pd(e, t[half]);
                sums[k][half] = _mm256_add_pd(sums[k][half], e);
            }
            t[half] = _mm256_add_pd(t[half], step);
        }
    for (int k = 0; k <= Degree; ++k) {
        _mm256_storeu_pd(m.lane[k], sums[k][0]);
        _mm256_storeu_pd(m.lane[k] + 4, sums[k][1]);
    }
    AddFloatMoments<Degree>(pixels, i, n, origin, first, m);
}

template Kernel<MomentsFn<uint8_t>> Moments_avx2<uint8_t, 2>;
template Kernel<MomentsFn<uint8_t>> Moments_avx2<uint8_t, 3>;
template Kernel<MomentsFn<uint16_t>> Moments_avx2<uint16_t, 1>;
template Kernel<MomentsFn<uint16_t>> Moments_avx2<uint16_t, 2>;
template Kernel<MomentsFn<uint16_t>> Moments_avx2<uint16_t, 3>;
template Kernel<FloatMomentsFn> FloatMoments_avx2<1>;
template Kernel<FloatMomentsFn> FloatMoments_avx2<2>;
template Kernel<FloatMomentsFn> FloatMoments_avx2<3>;

}  // namespace orlix
