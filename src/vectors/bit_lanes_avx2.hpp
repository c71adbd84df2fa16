// Vectors of a bitmap's bytes with AVX2. Only for files of this suffix.
#pragma once

#include <immintrin.h>

#include "vectors/bit_lanes.hpp"

namespace orlix {
namespace {

struct BitLanes {
    using Vector = __m256i;
    static constexpr size_t kBytes = 32;
    ORLIX_INLINE static Vector Load(const uint8_t* p) {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
    }
    ORLIX_INLINE static void Store(uint8_t* p, const Vector& v) {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v);
    }
    ORLIX_INLINE static Vector LoadSome(const uint8_t* p, size_t n) {
        uint8_t bytes[kBytes] = {};
        __builtin_memcpy(bytes, p, n);
        return Load(bytes);
    }
    ORLIX_INLINE static void StoreSome(uint8_t* p, const Vector& v, size_t n) {
        uint8_t bytes[kBytes];
        Store(bytes, v);
        __builtin_memcpy(p, bytes, n);
    }
    ORLIX_INLINE static Vector All(uint8_t byte) { return _mm256_set1_epi8(static_cast<char>(byte)); }
    ORLIX_INLINE static Vector And(const Vector& a, const Vector& b) { return _mm256_and_si256(a, b); }
    ORLIX_INLINE static Vector Or(const Vector& a, const Vector& b) { return _mm256_or_si256(a, b); }
    ORLIX_INLINE static Vector Xor(const Vector& a, const Vector& b) { return _mm256_xor_si256(a, b); }
    ORLIX_INLINE static Vector AndNot(const Vector& a, const Vector& b) { return _mm256_andnot_si256(b, a); }
    ORLIX_INLINE static Vector And(const Vector& a, const Vector& b, const Vector& c) { return And(And(a, b), c); }
    ORLIX_INLINE static Vector Or(const Vector& a, const Vector& b, const Vector& c) { return Or(Or(a, b), c); }
    ORLIX_INLINE static Vector Right(const Vector& before, const Vector& v, int n) {
        const Vector stay = All(static_cast<uint8_t>(0xff >> n));
        return Or(And(_mm256_srl_epi16(v, _mm_cvtsi32_si128(n)), stay),
                  AndNot(_mm256_sll_epi16(before, _mm_cvtsi32_si128(8 - n)), stay));
    }
    ORLIX_INLINE static Vector Full(const Vector& v) { return _mm256_cmpeq_epi8(v, All(0xff)); }
    // The first four pixels of a byte decide, and if they are set the others.
    ORLIX_INLINE static Vector AllBefore(const Vector& v) {
        const Vector low = All(0x0f);
        const __m128i first =
            _mm_set_epi8(-1, -16, -32, -32, -64, -64, -64, -64, -128, -128, -128, -128, -128, -128, -128, -128);
        const __m128i rest = _mm_set_epi8(-1, -1, -2, -2, -4, -4, -4, -4, -8, -8, -8, -8, -8, -8, -8, -8);
        return And(_mm256_shuffle_epi8(_mm256_broadcastsi128_si256(first), And(_mm256_srli_epi16(v, 4), low)),
                   _mm256_shuffle_epi8(_mm256_broadcastsi128_si256(rest), And(v, low)));
    }
    ORLIX_INLINE static Vector AllAfter(const Vector& v) { return Xor(v, _mm256_sub_epi8(v, All(0xff))); }
    struct Seam {
        Vector middle;  // the second half of a, the first of b
        Seam() = default;
        ORLIX_INLINE Seam(const Vector& a, const Vector& b) : middle(_mm256_permute2x128_si256(a, b, 0x21)) {}
    };
    template <int n>
    ORLIX_INLINE static Vector BytesAhead(const Vector& a, const Seam& seam) {
        return _mm256_alignr_epi8(seam.middle, a, n);
    }
    template <int n>
    ORLIX_INLINE static Vector BytesBehind(const Seam& seam, const Vector& b) {
        return _mm256_alignr_epi8(b, seam.middle, 16 - n);
    }
    // Sums and means share no units with exchanges of bytes. Twice a byte, and 1 where the highest bit of the next is.
    ORLIX_INLINE static Vector Ordered(const Vector& v) { return v; }
    ORLIX_INLINE static Vector PixelAhead(const Vector& a, const Seam& seam) {
        return _mm256_sub_epi8(_mm256_add_epi8(a, a),
                               _mm256_cmpgt_epi8(_mm256_setzero_si256(), BytesAhead<1>(a, seam)));
    }
    // The mean of an even byte and 255, rounded up, is half of it and 128.
    ORLIX_INLINE static Vector PixelBehind(const Seam& seam, const Vector& b) {
        const Vector one = All(1), odd = And(BytesBehind<1>(seam, b), one);
        return _mm256_avg_epu8(AndNot(b, one), _mm256_cmpeq_epi8(odd, one));
    }
    // The first pixel becomes the highest bit.
    ORLIX_INLINE static Vector Words(const Vector& v) {
        const __m128i reversed = _mm_set_epi8(8, 9, 10, 11, 12, 13, 14, 15, 0, 1, 2, 3, 4, 5, 6, 7);
        return _mm256_shuffle_epi8(v, _mm256_broadcastsi128_si256(reversed));
    }
    ORLIX_INLINE static Vector Next(const Vector& v, const Vector& after) {
        return _mm256_alignr_epi8(_mm256_permute2x128_si256(v, after, 0x21), v, 8);
    }
    ORLIX_INLINE static Vector Previous(const Vector& before, const Vector& v) {
        return _mm256_alignr_epi8(v, _mm256_permute2x128_si256(before, v, 0x21), 8);
    }
    struct Count {
        __m128i n, rest;
        ORLIX_INLINE explicit Count(int pixels) : n(_mm_cvtsi32_si128(pixels)), rest(_mm_cvtsi32_si128(64 - pixels)) {}
    };
    ORLIX_INLINE static Vector Ahead(const Vector& v, const Vector& next, const Count& count) {
        return Or(_mm256_sll_epi64(v, count.n), _mm256_srl_epi64(next, count.rest));
    }
    ORLIX_INLINE static Vector Behind(const Vector& previous, const Vector& v, const Count& count) {
        return Or(_mm256_srl_epi64(v, count.n), _mm256_sll_epi64(previous, count.rest));
    }
    template <int n>
    ORLIX_INLINE static Vector Ahead(const Vector& v, const Vector& next) {
        return Or(_mm256_slli_epi64(v, n), _mm256_srli_epi64(next, 64 - n));
    }
    template <int n>
    ORLIX_INLINE static Vector Behind(const Vector& previous, const Vector& v) {
        return Or(_mm256_srli_epi64(v, n), _mm256_slli_epi64(previous, 64 - n));
    }
    // Each pixel that is not set clears those after it.
    ORLIX_INLINE static Vector Leading(const Vector& v) {
        Vector clear = Xor(v, All(0xff));
        for (int n = 1; n < 64; n *= 2) clear = Or(clear, _mm256_srl_epi64(clear, _mm_cvtsi32_si128(n)));
        return Xor(clear, All(0xff));
    }
    ORLIX_INLINE static Vector Trailing(const Vector& v) {
        return AndNot(v, _mm256_add_epi64(v, _mm256_set1_epi64x(1)));
    }
    ORLIX_INLINE static unsigned FullWords(const Vector& v) {
        return static_cast<unsigned>(_mm256_movemask_pd(_mm256_castsi256_pd(_mm256_cmpeq_epi64(v, All(0xff)))));
    }
    ORLIX_INLINE static Vector Expand(unsigned bits) {
        const Vector bitOf = _mm256_set_epi64x(8, 4, 2, 1);
        return _mm256_cmpeq_epi64(And(_mm256_set1_epi64x(bits), bitOf), bitOf);
    }
};

}  // namespace
}  // namespace orlix
