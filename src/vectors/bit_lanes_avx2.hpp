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
    ORLIX_INLINE static Vector Before(const Vector& a, const Vector& b) {
        return _mm256_alignr_epi8(b, _mm256_permute2x128_si256(a, b, 0x21), 15);
    }
    ORLIX_INLINE static Vector After(const Vector& b, const Vector& c) {
        return _mm256_alignr_epi8(_mm256_permute2x128_si256(b, c, 0x21), b, 1);
    }
    template <int n>
    ORLIX_INLINE static Vector Right(const Vector& before, const Vector& v) {
        const Vector stay = All(0xff >> n);
        return Or(And(_mm256_srli_epi16(v, n), stay), AndNot(_mm256_slli_epi16(before, 8 - n), stay));
    }
    template <int n>
    ORLIX_INLINE static Vector Left(const Vector& v, const Vector& after) {
        const Vector stay = All(static_cast<uint8_t>(0xff << n));
        return Or(And(_mm256_slli_epi16(v, n), stay), AndNot(_mm256_srli_epi16(after, 8 - n), stay));
    }
    ORLIX_INLINE static Vector Right(const Vector& before, const Vector& v, int n) {
        const Vector stay = All(static_cast<uint8_t>(0xff >> n));
        return Or(And(_mm256_srl_epi16(v, _mm_cvtsi32_si128(n)), stay),
                  AndNot(_mm256_sll_epi16(before, _mm_cvtsi32_si128(8 - n)), stay));
    }
    ORLIX_INLINE static Vector Full(const Vector& v) { return _mm256_cmpeq_epi8(v, All(0xff)); }
    ORLIX_INLINE static Vector Trailing(const Vector& v) { return AndNot(v, _mm256_add_epi8(v, All(1))); }
    // Each pixel that is not set clears those after it.
    ORLIX_INLINE static Vector Leading(const Vector& v) {
        Vector clear = Xor(v, All(0xff));
        clear = Or(clear, And(_mm256_srli_epi16(clear, 1), All(0x7f)));
        clear = Or(clear, And(_mm256_srli_epi16(clear, 2), All(0x3f)));
        clear = Or(clear, And(_mm256_srli_epi16(clear, 4), All(0x0f)));
        return Xor(clear, All(0xff));
    }
};

}  // namespace
}  // namespace orlix
