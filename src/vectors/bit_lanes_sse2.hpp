// Vectors of a bitmap's bytes with SSE2. Only for files of this suffix.
#pragma once

#include <emmintrin.h>

#include <cstring>

#include "vectors/bit_lanes.hpp"

namespace orlix {
namespace {

struct BitLanes {
    using Vector = __m128i;
    static constexpr size_t kBytes = 16;
    static Vector Load(const uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
    static void Store(uint8_t* p, Vector v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }
    static Vector LoadSome(const uint8_t* p, size_t n) {
        uint8_t bytes[kBytes] = {};
        std::memcpy(bytes, p, n);
        return Load(bytes);
    }
    static void StoreSome(uint8_t* p, Vector v, size_t n) {
        uint8_t bytes[kBytes];
        Store(bytes, v);
        std::memcpy(p, bytes, n);
    }
    static Vector All(uint8_t byte) { return _mm_set1_epi8(static_cast<char>(byte)); }
    static Vector And(Vector a, Vector b) { return _mm_and_si128(a, b); }
    static Vector Or(Vector a, Vector b) { return _mm_or_si128(a, b); }
    static Vector Xor(Vector a, Vector b) { return _mm_xor_si128(a, b); }
    static Vector AndNot(Vector a, Vector b) { return _mm_andnot_si128(b, a); }
    static Vector And(Vector a, Vector b, Vector c) { return And(And(a, b), c); }
    static Vector Or(Vector a, Vector b, Vector c) { return Or(Or(a, b), c); }
    static Vector Before(Vector a, Vector b) { return Or(_mm_slli_si128(b, 1), _mm_srli_si128(a, 15)); }
    static Vector After(Vector b, Vector c) { return Or(_mm_srli_si128(b, 1), _mm_slli_si128(c, 15)); }
    template <int n>
    static Vector Right(Vector before, Vector v) {
        const Vector stay = All(0xff >> n);
        return Or(And(_mm_srli_epi16(v, n), stay), AndNot(_mm_slli_epi16(before, 8 - n), stay));
    }
    template <int n>
    static Vector Left(Vector v, Vector after) {
        const Vector stay = All(static_cast<uint8_t>(0xff << n));
        return Or(And(_mm_slli_epi16(v, n), stay), AndNot(_mm_srli_epi16(after, 8 - n), stay));
    }
    static Vector Right(Vector before, Vector v, int n) {
        const Vector stay = All(static_cast<uint8_t>(0xff >> n));
        return Or(And(_mm_srl_epi16(v, _mm_cvtsi32_si128(n)), stay),
                  AndNot(_mm_sll_epi16(before, _mm_cvtsi32_si128(8 - n)), stay));
    }
    static Vector Full(Vector v) { return _mm_cmpeq_epi8(v, All(0xff)); }
    static Vector Trailing(Vector v) { return AndNot(v, _mm_add_epi8(v, All(1))); }
    // Each pixel that is not set clears those after it.
    static Vector Leading(Vector v) {
        Vector clear = Xor(v, All(0xff));
        clear = Or(clear, And(_mm_srli_epi16(clear, 1), All(0x7f)));
        clear = Or(clear, And(_mm_srli_epi16(clear, 2), All(0x3f)));
        clear = Or(clear, And(_mm_srli_epi16(clear, 4), All(0x0f)));
        return Xor(clear, All(0xff));
    }
};

}  // namespace
}  // namespace orlix
