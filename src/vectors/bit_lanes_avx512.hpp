// Vectors of a bitmap's bytes with AVX-512. Only for files of this suffix.
#pragma once

#include "vectors/bit_lanes.hpp"
#include "vectors/intrinsics_avx512.hpp"

namespace orlix {
namespace {

struct BitLanes {
    using Vector = __m512i;
    static constexpr size_t kBytes = 64;
    ORLIX_INLINE static Vector Load(const uint8_t* p) { return _mm512_loadu_si512(p); }
    ORLIX_INLINE static void Store(uint8_t* p, const Vector& v) { _mm512_storeu_si512(p, v); }
    ORLIX_INLINE static __mmask64 First(size_t n) { return n < 64 ? (uint64_t{1} << n) - 1 : ~uint64_t{0}; }
    ORLIX_INLINE static Vector LoadSome(const uint8_t* p, size_t n) { return _mm512_maskz_loadu_epi8(First(n), p); }
    ORLIX_INLINE static void StoreSome(uint8_t* p, const Vector& v, size_t n) {
        _mm512_mask_storeu_epi8(p, First(n), v);
    }
    ORLIX_INLINE static Vector All(uint8_t byte) { return _mm512_set1_epi8(static_cast<char>(byte)); }
    ORLIX_INLINE static Vector And(const Vector& a, const Vector& b) { return _mm512_and_si512(a, b); }
    ORLIX_INLINE static Vector Or(const Vector& a, const Vector& b) { return _mm512_or_si512(a, b); }
    ORLIX_INLINE static Vector Xor(const Vector& a, const Vector& b) { return _mm512_xor_si512(a, b); }
    ORLIX_INLINE static Vector AndNot(const Vector& a, const Vector& b) {
        return _mm512_ternarylogic_epi64(a, b, b, 0x30);
    }
    ORLIX_INLINE static Vector And(const Vector& a, const Vector& b, const Vector& c) {
        return _mm512_ternarylogic_epi64(a, b, c, 0x80);
    }
    ORLIX_INLINE static Vector Or(const Vector& a, const Vector& b, const Vector& c) {
        return _mm512_ternarylogic_epi64(a, b, c, 0xfe);
    }
    // mask ? a : b
    ORLIX_INLINE static Vector Select(const Vector& mask, const Vector& a, const Vector& b) {
        return _mm512_ternarylogic_epi64(mask, a, b, 0xca);
    }
    ORLIX_INLINE static Vector Right(const Vector& before, const Vector& v, int n) {
        return Select(All(static_cast<uint8_t>(0xff >> n)), _mm512_srl_epi16(v, _mm_cvtsi32_si128(n)),
                      _mm512_sll_epi16(before, _mm_cvtsi32_si128(8 - n)));
    }
    ORLIX_INLINE static Vector Full(const Vector& v) { return _mm512_movm_epi8(_mm512_cmpeq_epi8_mask(v, All(0xff))); }
    // A sum carries towards the highest bit, which is the first pixel.
    ORLIX_INLINE static Vector AllBefore(const Vector& v) { return Words(AllAfter(Words(v))); }
    ORLIX_INLINE static Vector AllAfter(const Vector& v) { return Xor(v, _mm512_sub_epi8(v, All(0xff))); }
    struct Seam {
        Vector next, previous;  // words after those of a, before those of b
        Seam() = default;
        ORLIX_INLINE Seam(const Vector& a, const Vector& b) : next(Next(a, b)), previous(Previous(a, b)) {}
    };
    template <int n>
    ORLIX_INLINE static Vector BytesAhead(const Vector& a, const Seam& seam) {
        return Ahead<8 * n>(a, seam.next);
    }
    template <int n>
    ORLIX_INLINE static Vector BytesBehind(const Seam& seam, const Vector& b) {
        return Behind<8 * n>(seam.previous, b);
    }
    ORLIX_INLINE static Vector Ordered(const Vector& v) { return Words(v); }
    ORLIX_INLINE static Vector PixelAhead(const Vector& a, const Seam& seam) { return Ahead<1>(a, seam.next); }
    ORLIX_INLINE static Vector PixelBehind(const Seam& seam, const Vector& b) { return Behind<1>(seam.previous, b); }
    // The first pixel becomes the lowest bit: multiplication with the mirrored unit matrix reverses those of a byte.
    ORLIX_INLINE static Vector Words(const Vector& v) {
        return _mm512_gf2p8affine_epi64_epi8(v, _mm512_set1_epi64(static_cast<long long>(0x8040201008040201)), 0);
    }
    ORLIX_INLINE static Vector Next(const Vector& v, const Vector& after) { return _mm512_alignr_epi64(after, v, 1); }
    ORLIX_INLINE static Vector Previous(const Vector& before, const Vector& v) {
        return _mm512_alignr_epi64(v, before, 7);
    }
    struct Count {
        Vector n;
        ORLIX_INLINE explicit Count(int pixels) : n(_mm512_set1_epi64(pixels)) {}
    };
    ORLIX_INLINE static Vector Ahead(const Vector& v, const Vector& next, const Count& count) {
        return _mm512_shrdv_epi64(v, next, count.n);
    }
    ORLIX_INLINE static Vector Behind(const Vector& previous, const Vector& v, const Count& count) {
        return _mm512_shldv_epi64(v, previous, count.n);
    }
    template <int n>
    ORLIX_INLINE static Vector Ahead(const Vector& v, const Vector& next) {
        return _mm512_shrdi_epi64(v, next, n);
    }
    template <int n>
    ORLIX_INLINE static Vector Behind(const Vector& previous, const Vector& v) {
        return _mm512_shldi_epi64(v, previous, n);
    }
    ORLIX_INLINE static Vector Leading(const Vector& v) { return AndNot(v, _mm512_add_epi64(v, _mm512_set1_epi64(1))); }
    // The bits above the highest one that is clear.
    ORLIX_INLINE static Vector Trailing(const Vector& v) {
        const Vector set = _mm512_lzcnt_epi64(Xor(v, All(0xff)));
        return Xor(_mm512_srlv_epi64(All(0xff), set), All(0xff));
    }
    ORLIX_INLINE static unsigned FullWords(const Vector& v) { return _mm512_cmpeq_epi64_mask(v, All(0xff)); }
    ORLIX_INLINE static Vector Expand(unsigned bits) { return _mm512_movm_epi64(static_cast<__mmask8>(bits)); }
};

}  // namespace
}  // namespace orlix
