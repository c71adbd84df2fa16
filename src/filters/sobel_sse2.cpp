#include <emmintrin.h>

#include "filters/sobel_vectors.hpp"
#include "vectors/inline.hpp"

namespace orlix {
namespace {

// To the nearest integer, halves up. One root of the wide tables is an exact half in single precision, which rounding
// to even would round down.
inline __m128i Rounded(__m128 v) { return _mm_cvttps_epi32(_mm_add_ps(v, _mm_set1_ps(0.5f))); }

__m128i Select(__m128i mask, __m128i yes, __m128i no) {
    return _mm_or_si128(_mm_and_si128(mask, yes), _mm_andnot_si128(mask, no));
}

// gx and gy from the eight neighbours.
template <class Load, class Add, class Sub, class V>
ORLIX_INLINE void Gradient(const Load& at, const Add& add, const Sub& sub, V& gx, V& gy) {
    const V d = sub(at(2, 1), at(0, -1)), e = sub(at(0, 1), at(2, -1));
    const V x = sub(at(1, 1), at(1, -1)), y = sub(at(2, 0), at(0, 0));
    gx = add(add(d, e), add(x, x));
    gy = add(sub(d, e), add(y, y));
}

template <>
struct SobelLanes<uint8_t> {
    using Pixel = uint8_t;
    static constexpr size_t kLanes = 16;
    __m128i lower, upper;

    explicit SobelLanes(const FilterParameters<uint8_t>& p)
        : lower(_mm_set1_epi8(static_cast<char>(p.lower))), upper(_mm_set1_epi8(static_cast<char>(p.upper))) {}

    void operator()(const Pixel* const* p, ptrdiff_t i, Pixel* to) const {
        const __m128i zero = _mm_setzero_si128();
        const auto load = [&](int k, ptrdiff_t dx) {
            return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p[k] + i + dx));
        };
        const __m128i v = Roots([&](int k, ptrdiff_t dx) { return _mm_unpacklo_epi8(load(k, dx), zero); });
        const __m128i w = Roots([&](int k, ptrdiff_t dx) { return _mm_unpackhi_epi8(load(k, dx), zero); });
        const __m128i root = _mm_packus_epi16(v, w);  // a root of 256 becomes 255
        const __m128i enough = _mm_cmpeq_epi8(_mm_max_epu8(root, lower), root);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), Select(enough, _mm_min_epu8(root, upper), lower));
    }

    // The table entries are the rounded roots of bucket centres: the significant bits of the sum, followed by a one.
    template <class At>
    ORLIX_INLINE static __m128i Roots(const At& at) {
        __m128i x, y;
        Gradient(
            at, [](__m128i a, __m128i b) { return _mm_add_epi16(a, b); },
            [](__m128i a, __m128i b) { return _mm_sub_epi16(a, b); }, x, y);
        const __m128i v = _mm_add_epi16(_mm_mullo_epi16(x, x), _mm_mullo_epi16(y, y));
        const __m128i zero = _mm_setzero_si128();
        const __m128i below256 = _mm_cmpeq_epi16(_mm_srli_epi16(v, 8), zero);
        const __m128i below4096 = _mm_cmpeq_epi16(_mm_srli_epi16(v, 12), zero);
        // The insignificant bits: 0, 4 or 8 low ones.
        const __m128i low = _mm_andnot_si128(below256, Select(below4096, _mm_set1_epi16(0xf), _mm_set1_epi16(0xff)));
        const __m128i middle = _mm_sub_epi16(_mm_or_si128(v, low), _mm_srli_epi16(low, 1));
        const auto root = [](__m128i m) { return Rounded(_mm_sqrt_ps(_mm_cvtepi32_ps(m))); };
        return _mm_packs_epi32(root(_mm_unpacklo_epi16(middle, zero)), root(_mm_unpackhi_epi16(middle, zero)));
    }
};

template <>
struct SobelLanes<uint16_t> {
    using Pixel = uint16_t;
    static constexpr size_t kLanes = 8;
    FilterParameters<uint16_t> range;

    explicit SobelLanes(const FilterParameters<uint16_t>& p) : range(p) {}

    void operator()(const Pixel* const* p, ptrdiff_t i, Pixel* to) const {
        const __m128i zero = _mm_setzero_si128();
        const auto load = [&](int k, ptrdiff_t dx) {
            return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p[k] + i + dx));
        };
        const __m128i v = Roots([&](int k, ptrdiff_t dx) { return _mm_unpacklo_epi16(load(k, dx), zero); });
        const __m128i w = Roots([&](int k, ptrdiff_t dx) { return _mm_unpackhi_epi16(load(k, dx), zero); });
        // Packing saturates signed numbers, so 32768 is subtracted first and restored afterwards.
        const __m128i half = _mm_set1_epi32(32768);
        const __m128i words = _mm_packs_epi32(_mm_sub_epi32(v, half), _mm_sub_epi32(w, half));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_xor_si128(words, _mm_set1_epi16(-32768)));
    }

    template <class At>
    ORLIX_INLINE __m128i Roots(const At& at) const {
        __m128i gx, gy;
        Gradient(
            at, [](__m128i a, __m128i b) { return _mm_add_epi32(a, b); },
            [](__m128i a, __m128i b) { return _mm_sub_epi32(a, b); }, gx, gy);
        const auto magnitude = [](__m128i g) {
            const __m128i sign = _mm_srai_epi32(g, 31);
            return _mm_sub_epi32(_mm_xor_si128(g, sign), sign);
        };
        gx = magnitude(gx);
        gy = magnitude(gy);

        // 64-bit sums of the even and of the odd lanes.
        const __m128i ox = _mm_srli_epi64(gx, 32), oy = _mm_srli_epi64(gy, 32);
        const __m128i even = _mm_add_epi64(_mm_mul_epu32(gx, gx), _mm_mul_epu32(gy, gy));
        const __m128i odd = _mm_add_epi64(_mm_mul_epu32(ox, ox), _mm_mul_epu32(oy, oy));
        const __m128i evenLanes = _mm_set_epi32(0, -1, 0, -1);
        const __m128i v = Select(evenLanes, even, _mm_slli_epi64(odd, 32));
        const __m128i over = Select(evenLanes, _mm_srli_epi64(even, 32), odd);

        // The centre of the bucket: the significant bits, followed by a one. It has at most 9 bits, so it is exact in a
        // float, also when 2^32 is added to a sum that was converted as a negative number.
        const __m128i zero = _mm_setzero_si128();
        const auto below = [&](int bits) { return _mm_cmpeq_epi32(_mm_srli_epi32(v, bits), zero); };
        const __m128i narrow = below(16);
        __m128i low = _mm_set1_epi32(0xffffff);  // the insignificant bits
        low = _mm_andnot_si128(_mm_andnot_si128(_mm_set1_epi32(0xffff), below(24)), low);
        low = _mm_andnot_si128(_mm_andnot_si128(_mm_set1_epi32(0xff), narrow), low);
        low = _mm_andnot_si128(_mm_andnot_si128(_mm_set1_epi32(0xf), below(12)), low);
        low = _mm_andnot_si128(below(8), low);
        const __m128i middle = _mm_sub_epi32(_mm_or_si128(v, low), _mm_srli_epi32(low, 1));
        const __m128 wrapped = _mm_and_ps(_mm_castsi128_ps(_mm_srai_epi32(middle, 31)), _mm_set1_ps(4294967296.0f));
        __m128i root = Rounded(_mm_sqrt_ps(_mm_add_ps(_mm_cvtepi32_ps(middle), wrapped)));
        const __m128i most = _mm_set1_epi32(255);
        root = Select(_mm_and_si128(narrow, _mm_cmpgt_epi32(root, most)), most, root);
        root = Select(_mm_cmpeq_epi32(over, zero), root, _mm_set1_epi32(65535));

        const __m128i lower = _mm_set1_epi32(range.lower), upper = _mm_set1_epi32(range.upper);
        return Select(_mm_cmpgt_epi32(lower, root), lower, Select(_mm_cmpgt_epi32(root, upper), upper, root));
    }
};

template <>
struct SobelLanes<float> {
    using Pixel = float;
    static constexpr size_t kLanes = 4;
    __m128 lower, upper;

    explicit SobelLanes(const FilterParameters<float>& p) : lower(_mm_set1_ps(p.lower)), upper(_mm_set1_ps(p.upper)) {}

    void operator()(const Pixel* const* p, ptrdiff_t i, Pixel* to) const {
        __m128 gx, gy;
        Gradient([&](int k, ptrdiff_t dx) { return _mm_loadu_ps(p[k] + i + dx); },
                 [](__m128 a, __m128 b) { return _mm_add_ps(a, b); },
                 [](__m128 a, __m128 b) { return _mm_sub_ps(a, b); }, gx, gy);
        const __m128 v = _mm_sqrt_ps(_mm_add_ps(_mm_mul_ps(gx, gx), _mm_mul_ps(gy, gy)));
        const __m128 nan = _mm_castsi128_ps(_mm_set1_epi32(0x7fc00000));
        const __m128 least = _mm_min_ps(upper, v);  // v when it or the limit is NaN
        const __m128 under = _mm_cmplt_ps(v, lower), unknown = _mm_cmpunord_ps(v, v);
        const __m128 clamped = _mm_or_ps(_mm_and_ps(under, lower), _mm_andnot_ps(under, least));
        _mm_storeu_ps(to, _mm_or_ps(_mm_and_ps(unknown, nan), _mm_andnot_ps(unknown, clamped)));
    }
};

}  // namespace

template <class T>
void Sobel_sse2(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters) {
    if (!SobelRow(rows, to, n, parameters)) Sobel_scalar(rows, to, n, parameters);
}

template Kernel<FilterFn<uint8_t>> Sobel_sse2;
template Kernel<FilterFn<uint16_t>> Sobel_sse2;
template Kernel<FilterFn<float>> Sobel_sse2;

}  // namespace orlix
