// Vectors of a bitmap's bytes with AVX-512. Only for files of this suffix.
#pragma once

#include "vectors/bit_lanes.hpp"
#include "vectors/intrinsics_avx512.hpp"

namespace orlix {
namespace {

// Bytes -1, 0, 1, ... 64 of the middle one of two adjacent vectors, as _mm512_permutex2var_epi8 counts them.
struct ByteNeighbours {
    uint8_t before[64];
    uint8_t after[64];
    constexpr ByteNeighbours() : before(), after() {
        for (int i = 0; i < 64; ++i) {
            before[i] = static_cast<uint8_t>(63 + i);
            after[i] = static_cast<uint8_t>(1 + i);
        }
    }
};
constexpr ByteNeighbours kByteNeighbours;

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
    ORLIX_INLINE static Vector Before(const Vector& a, const Vector& b) {
        return _mm512_permutex2var_epi8(a, _mm512_loadu_si512(kByteNeighbours.before), b);
    }
    ORLIX_INLINE static Vector After(const Vector& b, const Vector& c) {
        return _mm512_permutex2var_epi8(b, _mm512_loadu_si512(kByteNeighbours.after), c);
    }
    // mask ? a : b
    ORLIX_INLINE static Vector Select(const Vector& mask, const Vector& a, const Vector& b) {
        return _mm512_ternarylogic_epi64(mask, a, b, 0xca);
    }
    template <int n>
    ORLIX_INLINE static Vector Right(const Vector& before, const Vector& v) {
        return Select(All(0xff >> n), _mm512_srli_epi16(v, n), _mm512_slli_epi16(before, 8 - n));
    }
    template <int n>
    ORLIX_INLINE static Vector Left(const Vector& v, const Vector& after) {
        return Select(All(static_cast<uint8_t>(0xff << n)), _mm512_slli_epi16(v, n), _mm512_srli_epi16(after, 8 - n));
    }
    ORLIX_INLINE static Vector Right(const Vector& before, const Vector& v, int n) {
        return Select(All(static_cast<uint8_t>(0xff >> n)), _mm512_srl_epi16(v, _mm_cvtsi32_si128(n)),
                      _mm512_sll_epi16(before, _mm_cvtsi32_si128(8 - n)));
    }
    ORLIX_INLINE static Vector Full(const Vector& v) { return _mm512_movm_epi8(_mm512_cmpeq_epi8_mask(v, All(0xff))); }
    ORLIX_INLINE static Vector Trailing(const Vector& v) { return AndNot(v, _mm512_add_epi8(v, All(1))); }
    // Multiplication with the mirrored unit matrix reverses the pixels of a byte.
    ORLIX_INLINE static Vector Leading(const Vector& v) {
        const Vector mirror = _mm512_set1_epi64(static_cast<long long>(0x8040201008040201));
        return _mm512_gf2p8affine_epi64_epi8(Trailing(_mm512_gf2p8affine_epi64_epi8(v, mirror, 0)), mirror, 0);
    }
};

}  // namespace
}  // namespace orlix
