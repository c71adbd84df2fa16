#include "vectors/intrinsics_avx512.hpp"

#include "filters/sobel_roots.hpp"
#include "filters/sobel_vectors.hpp"
#include "vectors/inline.hpp"

namespace orlix {
namespace {

// To the nearest integer, halves up. One root of the wide tables is an exact half in single precision, which rounding
// to even would round down.
ORLIX_INLINE __m512i Rounded(const __m512& v) { return _mm512_cvttps_epi32(_mm512_add_ps(v, _mm512_set1_ps(0.5f))); }

// 64 table entries starting at `first`.
ORLIX_INLINE __m512i Entries(const uint8_t* table, size_t first) { return _mm512_loadu_si512(table + first); }

// A table of 256 bytes.
struct Table {
    __m512i quarter[4];
    ORLIX_INLINE explicit Table(const uint8_t* t)
        : quarter{Entries(t, 0), Entries(t, 64), Entries(t, 128), Entries(t, 192)} {}
    ORLIX_INLINE __m512i operator[](const __m512i& index) const {
        const __m512i low = _mm512_permutex2var_epi8(quarter[0], index, quarter[1]);
        const __m512i high = _mm512_permutex2var_epi8(quarter[2], index, quarter[3]);
        return _mm512_mask_mov_epi8(low, _mm512_movepi8_mask(index), high);
    }
};

template <>
struct SobelLanes<uint8_t> {
    using Pixel = uint8_t;
    static constexpr size_t kLanes = 64;
    Table exact{kRoots.exact}, byBits4{kRoots.byBits4}, byBits8{kRoots.byBits8};
    __m512i lower, upper;

    ORLIX_INLINE explicit SobelLanes(const FilterParameters<uint8_t>& p)
        : lower(_mm512_set1_epi8(static_cast<char>(p.lower))), upper(_mm512_set1_epi8(static_cast<char>(p.upper))) {}

    // Pairs of pixels are weighted and added in one instruction; packing restores the order that unpacking changed.
    ORLIX_INLINE void operator()(const Pixel* const* p, ptrdiff_t i, Pixel* to) const {
        const auto load = [&](int k, ptrdiff_t dx) { return _mm512_loadu_si512(p[k] + i + dx); };
        const __m512i a = load(0, -1), b = load(0, 0), c = load(0, 1), d = load(1, -1), f = load(1, 1);
        const __m512i g = load(2, -1), h = load(2, 0), l = load(2, 1);
        const __m512i once = _mm512_set1_epi16(0x01ff), twice = _mm512_set1_epi16(0x02fe);
        const auto sum = [&](const __m512i& al, const __m512i& gc, const __m512i& df, const __m512i& bh) {
            const __m512i s = _mm512_maddubs_epi16(al, once), t = _mm512_maddubs_epi16(gc, once);
            const __m512i x = _mm512_add_epi16(_mm512_add_epi16(s, t), _mm512_maddubs_epi16(df, twice));
            const __m512i y = _mm512_add_epi16(_mm512_sub_epi16(s, t), _mm512_maddubs_epi16(bh, twice));
            return _mm512_add_epi16(_mm512_mullo_epi16(x, x), _mm512_mullo_epi16(y, y));
        };
        const __m512i v = sum(_mm512_unpacklo_epi8(a, l), _mm512_unpacklo_epi8(g, c), _mm512_unpacklo_epi8(d, f),
                              _mm512_unpacklo_epi8(b, h));
        const __m512i w = sum(_mm512_unpackhi_epi8(a, l), _mm512_unpackhi_epi8(g, c), _mm512_unpackhi_epi8(d, f),
                              _mm512_unpackhi_epi8(b, h));
        const __m512i byte = _mm512_set1_epi16(0xff);
        const __m512i top = _mm512_packus_epi16(_mm512_srli_epi16(v, 8), _mm512_srli_epi16(w, 8));
        const __m512i middle = _mm512_packus_epi16(_mm512_and_si512(_mm512_srli_epi16(v, 4), byte),
                                                   _mm512_and_si512(_mm512_srli_epi16(w, 4), byte));
        const __m512i low = _mm512_packus_epi16(_mm512_and_si512(v, byte), _mm512_and_si512(w, byte));
        __m512i root = _mm512_mask_mov_epi8(exact[low], _mm512_test_epi8_mask(top, top), byBits4[middle]);
        root = _mm512_mask_mov_epi8(root, _mm512_test_epi8_mask(top, _mm512_set1_epi8(static_cast<char>(0xf0))),
                                    byBits8[top]);
        const __mmask64 under = _mm512_cmplt_epu8_mask(root, lower);
        _mm512_storeu_si512(to, _mm512_mask_mov_epi8(_mm512_min_epu8(root, upper), under, lower));
    }
};

template <>
struct SobelLanes<uint16_t> {
    using Pixel = uint16_t;
    static constexpr size_t kLanes = 16;
    __m512i lower, upper;

    ORLIX_INLINE explicit SobelLanes(const FilterParameters<uint16_t>& p)
        : lower(_mm512_set1_epi32(p.lower)), upper(_mm512_set1_epi32(p.upper)) {}

    ORLIX_INLINE void operator()(const Pixel* const* p, ptrdiff_t i, Pixel* to) const {
        const auto load = [&](int k, ptrdiff_t dx) {
            return _mm512_cvtepu16_epi32(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p[k] + i + dx)));
        };
        const __m512i d = _mm512_sub_epi32(load(2, 1), load(0, -1)), e = _mm512_sub_epi32(load(0, 1), load(2, -1));
        const __m512i x = _mm512_sub_epi32(load(1, 1), load(1, -1)), y = _mm512_sub_epi32(load(2, 0), load(0, 0));
        const __m512i gx = _mm512_add_epi32(_mm512_add_epi32(d, e), _mm512_add_epi32(x, x));
        const __m512i gy = _mm512_add_epi32(_mm512_sub_epi32(d, e), _mm512_add_epi32(y, y));

        // 64-bit sums of the even and of the odd lanes.
        const __m512i ox = _mm512_srli_epi64(gx, 32), oy = _mm512_srli_epi64(gy, 32);
        const __m512i even = _mm512_add_epi64(_mm512_mul_epi32(gx, gx), _mm512_mul_epi32(gy, gy));
        const __m512i odd = _mm512_add_epi64(_mm512_mul_epi32(ox, ox), _mm512_mul_epi32(oy, oy));
        const __m512i v = _mm512_mask_shuffle_epi32(even, 0xaaaa, odd, static_cast<_MM_PERM_ENUM>(0xa0));
        const __m512i over = _mm512_mask_shuffle_epi32(odd, 0x5555, even, static_cast<_MM_PERM_ENUM>(0xf5));

        // The centre of the bucket: the significant bits, followed by a one. It has at most 9 bits, so it is exact in a
        // float.
        const auto reach = [&](uint32_t least) {
            return _mm512_cmpge_epu32_mask(v, _mm512_set1_epi32(static_cast<int>(least)));
        };
        __m512i low = _mm512_setzero_si512();  // the insignificant bits
        low = _mm512_mask_mov_epi32(low, reach(1u << 8), _mm512_set1_epi32(0xf));
        low = _mm512_mask_mov_epi32(low, reach(1u << 12), _mm512_set1_epi32(0xff));
        const __mmask16 wide = reach(1u << 16);
        low = _mm512_mask_mov_epi32(low, wide, _mm512_set1_epi32(0xffff));
        low = _mm512_mask_mov_epi32(low, reach(1u << 24), _mm512_set1_epi32(0xffffff));
        const __m512i middle = _mm512_sub_epi32(_mm512_or_si512(v, low), _mm512_srli_epi32(low, 1));
        __m512i root = Rounded(_mm512_sqrt_ps(_mm512_cvtepu32_ps(middle)));
        root = _mm512_mask_min_epi32(root, static_cast<__mmask16>(~wide), root, _mm512_set1_epi32(255));
        root = _mm512_mask_mov_epi32(root, _mm512_test_epi32_mask(over, over), _mm512_set1_epi32(65535));

        const __mmask16 under = _mm512_cmplt_epi32_mask(root, lower);
        const __m512i clamped = _mm512_mask_mov_epi32(_mm512_min_epi32(root, upper), under, lower);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), _mm512_cvtepi32_epi16(clamped));
    }
};

template <>
struct SobelLanes<float> {
    using Pixel = float;
    static constexpr size_t kLanes = 16;
    __m512 lower, upper;

    ORLIX_INLINE explicit SobelLanes(const FilterParameters<float>& p)
        : lower(_mm512_set1_ps(p.lower)), upper(_mm512_set1_ps(p.upper)) {}

    ORLIX_INLINE void operator()(const Pixel* const* p, ptrdiff_t i, Pixel* to) const {
        const auto load = [&](int k, ptrdiff_t dx) { return _mm512_loadu_ps(p[k] + i + dx); };
        const __m512 d = _mm512_sub_ps(load(2, 1), load(0, -1)), e = _mm512_sub_ps(load(0, 1), load(2, -1));
        const __m512 x = _mm512_sub_ps(load(1, 1), load(1, -1)), y = _mm512_sub_ps(load(2, 0), load(0, 0));
        const __m512 gx = _mm512_add_ps(_mm512_add_ps(d, e), _mm512_add_ps(x, x));
        const __m512 gy = _mm512_add_ps(_mm512_sub_ps(d, e), _mm512_add_ps(y, y));
        const __m512 v = _mm512_sqrt_ps(_mm512_add_ps(_mm512_mul_ps(gx, gx), _mm512_mul_ps(gy, gy)));
        const __m512 nan = _mm512_castsi512_ps(_mm512_set1_epi32(0x7fc00000));
        __m512 clamped = _mm512_min_ps(upper, v);  // v when it or the limit is NaN
        clamped = _mm512_mask_mov_ps(clamped, _mm512_cmp_ps_mask(v, lower, _CMP_LT_OQ), lower);
        _mm512_storeu_ps(to, _mm512_mask_mov_ps(clamped, _mm512_cmp_ps_mask(v, v, _CMP_UNORD_Q), nan));
    }
};

}  // namespace

template <class T>
void Sobel_avx512(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters) {
    if (!SobelRow(rows, to, n, parameters)) Sobel_avx2(rows, to, n, parameters);
}

template Kernel<FilterFn<uint8_t>> Sobel_avx512;
template Kernel<FilterFn<uint16_t>> Sobel_avx512;
template Kernel<FilterFn<float>> Sobel_avx512;

}  // namespace orlix
