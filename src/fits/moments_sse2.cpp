#include <emmintrin.h>

#include "fits/moments_kernels.hpp"
#include "vectors/inline.hpp"

namespace orlix {
namespace {

ORLIX_INLINE __m128i Words(const uint8_t* pixels) {
    return _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(pixels)), _mm_setzero_si128());
}
ORLIX_INLINE __m128i Words(const uint16_t* pixels) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels)); }
ORLIX_INLINE uint64_t Sum64(const __m128i& v) {
    uint64_t lanes[2];
    _mm_storeu_si128(reinterpret_cast<__m128i*>(lanes), v);
    return lanes[0] + lanes[1];
}

// Sums, sums of the sums after each block, and so on; separate members because the compiler keeps arrays in memory.
template <int Degree>
struct Nested {
    __m128i s0 = _mm_setzero_si128(), s1 = s0, s2 = s0, s3 = s0;
    ORLIX_INLINE void Add(const __m128i& p) {
        s0 = _mm_add_epi32(s0, p);
        s1 = _mm_add_epi32(s1, s0);
        if constexpr (Degree >= 2) s2 = _mm_add_epi32(s2, s1);
        if constexpr (Degree >= 3) s3 = _mm_add_epi32(s3, s2);
    }
    void Store(uint32_t (&lanes)[Degree + 1][8], size_t lane) const {
        const auto store = [](uint32_t* to, const __m128i& sums) {
            _mm_storeu_si128(reinterpret_cast<__m128i*>(to), sums);
        };
        store(lanes[0] + lane, s0);
        store(lanes[1] + lane, s1);
        if constexpr (Degree >= 2) store(lanes[2] + lane, s2);
        if constexpr (Degree >= 3) store(lanes[3] + lane, s3);
    }
};

}  // namespace

// Blocks of 8 pixels. 128 blocks of 8-bit pixels, or 32 of 16-bit pixels, keep the third nested sum, C(B + 3, 4) times
// the largest pixel, below 2^32.
template <class T, int Degree>
void Moments_sse2(const T* pixels, size_t n, uint64_t* m) {
    constexpr size_t kPart = 8 * (sizeof(T) == 1 ? 128 : 32);
    const size_t blocked = n / 8 * 8;
    Moments_scalar<T, Degree>(pixels + blocked, n - blocked, m);
    ShiftMoments(m, Degree, uint64_t{blocked});
    const __m128i zero = _mm_setzero_si128();
    for (size_t done = 0; done < blocked; done += kPart) {
        const size_t end = blocked - done < kPart ? blocked : done + kPart;
        Nested<Degree> low, high;
        for (size_t i = done; i < end; i += 8) {
            const __m128i p = Words(pixels + i);
            low.Add(_mm_unpacklo_epi16(p, zero));
            high.Add(_mm_unpackhi_epi16(p, zero));
        }
        uint32_t lanes[Degree + 1][8];
        low.Store(lanes, 0);
        high.Store(lanes, 4);
        AddNested<Degree>(lanes, (end - done) / 8, done, m);
    }
}

// Blocks of 16 pixels. The sum of block number times pixel comes from the running sum of the prefix sums: after B
// blocks it contains block b B - b times.
template <>
void Moments_sse2<uint8_t, 1>(const uint8_t* pixels, size_t n, uint64_t* m) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i lowWeights = _mm_set_epi16(7, 6, 5, 4, 3, 2, 1, 0);
    const __m128i highWeights = _mm_set_epi16(15, 14, 13, 12, 11, 10, 9, 8);
    __m128i s = zero, running = zero, w = zero;
    size_t i = 0;
    for (; i + 16 <= n; i += 16) {
        const __m128i p = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels + i));
        const __m128i low = _mm_unpacklo_epi8(p, zero), high = _mm_unpackhi_epi8(p, zero);
        s = _mm_add_epi64(s, _mm_sad_epu8(p, zero));
        running = _mm_add_epi64(running, s);
        w = _mm_add_epi32(w, _mm_add_epi32(_mm_madd_epi16(low, lowWeights), _mm_madd_epi16(high, highWeights)));
    }
    Moments_scalar<uint8_t, 1>(pixels + i, n - i, m);
    ShiftMoments(m, 1, uint64_t{i});
    const uint64_t total = Sum64(s);
    m[0] += total;
    m[1] += 16 * (i / 16 * total - Sum64(running)) +
            Sum64(_mm_add_epi64(_mm_unpacklo_epi32(w, zero), _mm_unpackhi_epi32(w, zero)));
}

template <int Degree>
void FloatMoments_sse2(const float* pixels, size_t n, double origin, double first, FloatMoments& m) {
    const __m128d o = _mm_set1_pd(origin), step = _mm_set1_pd(16.0);
    __m128d t[4], sums[Degree + 1][4];
    for (int pair = 0; pair < 4; ++pair) t[pair] = _mm_add_pd(_mm_set1_pd(first), _mm_set_pd(4 * pair + 2, 4 * pair));
    for (auto& sum : sums) sum[0] = sum[1] = sum[2] = sum[3] = _mm_setzero_pd();
    size_t i = 0;
    for (; i + 8 <= n; i += 8)
        for (size_t pair = 0; pair < 4; ++pair) {
            const __m128i two = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(pixels + i + 2 * pair));
            __m128d e = _mm_sub_pd(_mm_cvtps_pd(_mm_castsi128_ps(two)), o);
            sums[0][pair] = _mm_add_pd(sums[0][pair], e);
            for (int k = 1; k <= Degree; ++k) {
                e = _mm_mul_pd(e, t[pair]);
                sums[k][pair] = _mm_add_pd(sums[k][pair], e);
            }
            t[pair] = _mm_add_pd(t[pair], step);
        }
    for (int k = 0; k <= Degree; ++k)
        for (int pair = 0; pair < 4; ++pair) _mm_storeu_pd(m.lane[k] + 2 * pair, sums[k][pair]);
    AddFloatMoments<Degree>(pixels, i, n, origin, first, m);
}

template Kernel<MomentsFn<uint8_t>> Moments_sse2<uint8_t, 2>;
template Kernel<MomentsFn<uint8_t>> Moments_sse2<uint8_t, 3>;
template Kernel<MomentsFn<uint16_t>> Moments_sse2<uint16_t, 1>;
template Kernel<MomentsFn<uint16_t>> Moments_sse2<uint16_t, 2>;
template Kernel<MomentsFn<uint16_t>> Moments_sse2<uint16_t, 3>;
template Kernel<FloatMomentsFn> FloatMoments_sse2<1>;
template Kernel<FloatMomentsFn> FloatMoments_sse2<2>;
template Kernel<FloatMomentsFn> FloatMoments_sse2<3>;

}  // namespace orlix
