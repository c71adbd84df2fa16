#include <immintrin.h>

#include "filters/sobel_vectors.hpp"
#include "vectors/inline.hpp"

namespace orlix {
namespace {

// To the nearest integer, halves up. One root of the wide tables is an exact half in single precision, which rounding
// to even would round down.
ORLIX_INLINE __m256i Rounded(const __m256& v) { return _mm256_cvttps_epi32(_mm256_add_ps(v, _mm256_set1_ps(0.5f))); }

template <>
struct SobelLanes<uint8_t> {
    using Pixel = uint8_t;
    static constexpr size_t kLanes = 32;
    __m256i lower, upper;

    ORLIX_INLINE explicit SobelLanes(const FilterParameters<uint8_t>& p)
        : lower(_mm256_set1_epi8(static_cast<char>(p.lower))), upper(_mm256_set1_epi8(static_cast<char>(p.upper))) {}

    // Pairs of pixels are weighted and added in one instruction; packing restores the order that unpacking changed.
    ORLIX_INLINE void operator()(const Pixel* const* p, ptrdiff_t i, Pixel* to) const {
        const auto load = [&](int k, ptrdiff_t dx) {
            return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p[k] + i + dx));
        };
        const __m256i a = load(0, -1), b = load(0, 0), c = load(0, 1), d = load(1, -1), f = load(1, 1);
        const __m256i g = load(2, -1), h = load(2, 0), l = load(2, 1);
        const __m256i v = Roots(_mm256_unpacklo_epi8(a, l), _mm256_unpacklo_epi8(g, c), _mm256_unpacklo_epi8(d, f),
                                _mm256_unpacklo_epi8(b, h));
        const __m256i w = Roots(_mm256_unpackhi_epi8(a, l), _mm256_unpackhi_epi8(g, c), _mm256_unpackhi_epi8(d, f),
                                _mm256_unpackhi_epi8(b, h));
        const __m256i root = _mm256_packus_epi16(v, w);  // a root of 256 becomes 255
        const __m256i enough = _mm256_cmpeq_epi8(_mm256_max_epu8(root, lower), root);
        const __m256i clamped = _mm256_blendv_epi8(lower, _mm256_min_epu8(root, upper), enough);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), clamped);
    }

    // Pairs of bytes (A, I), (G, C), (D, F) and (B, H). The table entries are the rounded roots of bucket centres: the
    // significant bits of the sum, followed by a one.
    ORLIX_INLINE static __m256i Roots(const __m256i& al, const __m256i& gc, const __m256i& df, const __m256i& bh) {
        const __m256i once = _mm256_set1_epi16(0x01ff), twice = _mm256_set1_epi16(0x02fe);
        const __m256i s = _mm256_maddubs_epi16(al, once), t = _mm256_maddubs_epi16(gc, once);
        const __m256i x = _mm256_add_epi16(_mm256_add_epi16(s, t), _mm256_maddubs_epi16(df, twice));
        const __m256i y = _mm256_add_epi16(_mm256_sub_epi16(s, t), _mm256_maddubs_epi16(bh, twice));
        const __m256i v = _mm256_add_epi16(_mm256_mullo_epi16(x, x), _mm256_mullo_epi16(y, y));

        const __m256i zero = _mm256_setzero_si256();
        const __m256i below256 = _mm256_cmpeq_epi16(_mm256_srli_epi16(v, 8), zero);
        const __m256i below4096 = _mm256_cmpeq_epi16(_mm256_srli_epi16(v, 12), zero);
        // The insignificant bits: 0, 4 or 8 low ones.
        const __m256i low = _mm256_andnot_si256(
            below256, _mm256_blendv_epi8(_mm256_set1_epi16(0xff), _mm256_set1_epi16(0xf), below4096));
        const __m256i middle = _mm256_sub_epi16(_mm256_or_si256(v, low), _mm256_srli_epi16(low, 1));
        const auto root = [](const __m256i& m) { return Rounded(_mm256_sqrt_ps(_mm256_cvtepi32_ps(m))); };
        return _mm256_packs_epi32(root(_mm256_unpacklo_epi16(middle, zero)), root(_mm256_unpackhi_epi16(middle, zero)));
    }
};

template <>
struct SobelLanes<uint16_t> {
    using Pixel = uint16_t;
    static constexpr size_t kLanes = 8;
    __m256i lower, upper;

    ORLIX_INLINE explicit SobelLanes(const FilterParameters<uint16_t>& p)
        : lower(_mm256_set1_epi32(p.lower)), upper(_mm256_set1_epi32(p.upper)) {}

    ORLIX_INLINE void operator()(const Pixel* const* p, ptrdiff_t i, Pixel* to) const {
        const auto load = [&](int k, ptrdiff_t dx) {
            return _mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p[k] + i + dx)));
        };
        const __m256i d = _mm256_sub_epi32(load(2, 1), load(0, -1)), e = _mm256_sub_epi32(load(0, 1), load(2, -1));
        const __m256i x = _mm256_sub_epi32(load(1, 1), load(1, -1)), y = _mm256_sub_epi32(load(2, 0), load(0, 0));
        const __m256i gx = _mm256_add_epi32(_mm256_add_epi32(d, e), _mm256_add_epi32(x, x));
        const __m256i gy = _mm256_add_epi32(_mm256_sub_epi32(d, e), _mm256_add_epi32(y, y));

        // 64-bit sums of the even and of the odd lanes.
        const __m256i ox = _mm256_srli_epi64(gx, 32), oy = _mm256_srli_epi64(gy, 32);
        const __m256i even = _mm256_add_epi64(_mm256_mul_epi32(gx, gx), _mm256_mul_epi32(gy, gy));
        const __m256i odd = _mm256_add_epi64(_mm256_mul_epi32(ox, ox), _mm256_mul_epi32(oy, oy));
        const __m256i v = _mm256_blend_epi32(even, _mm256_slli_epi64(odd, 32), 0xaa);
        const __m256i over = _mm256_blend_epi32(_mm256_srli_epi64(even, 32), odd, 0xaa);

        // The centre of the bucket: the significant bits, followed by a one. It has at most 9 bits, so it is exact in a
        // float, also when 2^32 is added to a sum that was converted as a negative number.
        const __m256i zero = _mm256_setzero_si256();
        const auto below = [&](int bits) { return _mm256_cmpeq_epi32(_mm256_srli_epi32(v, bits), zero); };
        const __m256i narrow = below(16);
        __m256i low = _mm256_set1_epi32(0xffffff);  // the insignificant bits
        low = _mm256_blendv_epi8(low, _mm256_set1_epi32(0xffff), below(24));
        low = _mm256_blendv_epi8(low, _mm256_set1_epi32(0xff), narrow);
        low = _mm256_blendv_epi8(low, _mm256_set1_epi32(0xf), below(12));
        low = _mm256_andnot_si256(below(8), low);
        const __m256i middle = _mm256_sub_epi32(_mm256_or_si256(v, low), _mm256_srli_epi32(low, 1));
        const __m256 wrapped = _mm256_castsi256_ps(
            _mm256_and_si256(_mm256_srai_epi32(middle, 31), _mm256_castps_si256(_mm256_set1_ps(4294967296.0f))));
        __m256i root = Rounded(_mm256_sqrt_ps(_mm256_add_ps(_mm256_cvtepi32_ps(middle), wrapped)));
        root = _mm256_blendv_epi8(root, _mm256_min_epi32(root, _mm256_set1_epi32(255)), narrow);
        root = _mm256_blendv_epi8(_mm256_set1_epi32(65535), root, _mm256_cmpeq_epi32(over, zero));

        const __m256i under = _mm256_cmpgt_epi32(lower, root);
        const __m256i clamped = _mm256_blendv_epi8(_mm256_min_epi32(root, upper), lower, under);
        const __m256i words = _mm256_permute4x64_epi64(_mm256_packus_epi32(clamped, clamped), 0x08);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm256_castsi256_si128(words));
    }
};

template <>
struct SobelLanes<float> {
    using Pixel = float;
    static constexpr size_t kLanes = 8;
    __m256 lower, upper;

    ORLIX_INLINE explicit SobelLanes(const FilterParameters<float>& p)
        : lower(_mm256_set1_ps(p.lower)), upper(_mm256_set1_ps(p.upper)) {}

    ORLIX_INLINE void operator()(const Pixel* const* p, ptrdiff_t i, Pixel* to) const {
        const auto load = [&](int k, ptrdiff_t dx) { return _mm256_loadu_ps(p[k] + i + dx); };
        const __m256 d = _mm256_sub_ps(load(2, 1), load(0, -1)), e = _mm256_sub_ps(load(0, 1), load(2, -1));
        const __m256 x = _mm256_sub_ps(load(1, 1), load(1, -1)), y = _mm256_sub_ps(load(2, 0), load(0, 0));
        const __m256 gx = _mm256_add_ps(_mm256_add_ps(d, e), _mm256_add_ps(x, x));
        const __m256 gy = _mm256_add_ps(_mm256_sub_ps(d, e), _mm256_add_ps(y, y));
        const __m256 v = _mm256_sqrt_ps(_mm256_add_ps(_mm256_mul_ps(gx, gx), _mm256_mul_ps(gy, gy)));
        const __m256 nan = _mm256_castsi256_ps(_mm256_set1_epi32(0x7fc00000));
        __m256 clamped = _mm256_min_ps(upper, v);  // v when it or the limit is NaN
        clamped = _mm256_blendv_ps(clamped, lower, _mm256_cmp_ps(v, lower, _CMP_LT_OQ));
        _mm256_storeu_ps(to, _mm256_blendv_ps(clamped, nan, _mm256_cmp_ps(v, v, _CMP_UNORD_Q)));
    }
};

}  // namespace

template <class T>
void Sobel_avx2(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters) {
    if (!SobelRow(rows, to, n, parameters)) Sobel_sse2(rows, to, n, parameters);
}

template Kernel<FilterFn<uint8_t>> Sobel_avx2;
template Kernel<FilterFn<uint16_t>> Sobel_avx2;
template Kernel<FilterFn<float>> Sobel_avx2;

}  // namespace orlix
