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
    static Vector Right(Vector before, Vector v, int n) {
        const Vector stay = All(static_cast<uint8_t>(0xff >> n));
        return Or(And(_mm_srl_epi16(v, _mm_cvtsi32_si128(n)), stay),
                  AndNot(_mm_sll_epi16(before, _mm_cvtsi32_si128(8 - n)), stay));
    }
    static Vector Full(Vector v) { return _mm_cmpeq_epi8(v, All(0xff)); }
    // Each pixel that is not set clears those after it.
    static Vector AllBefore(Vector v) {
        Vector clear = And(_mm_srli_epi16(Xor(v, All(0xff)), 1), All(0x7f));
        clear = Or(clear, And(_mm_srli_epi16(clear, 1), All(0x7f)));
        clear = Or(clear, And(_mm_srli_epi16(clear, 2), All(0x3f)));
        return Xor(Or(clear, And(_mm_srli_epi16(clear, 4), All(0x0f))), All(0xff));
    }
    static Vector AllAfter(Vector v) { return Xor(v, _mm_sub_epi8(v, All(0xff))); }
    struct Seam {
        Vector a, b;
        Seam() = default;
        Seam(Vector first, Vector second) : a(first), b(second) {}
    };
    template <int n>
    static Vector BytesAhead(Vector a, const Seam& seam) {
        return Or(_mm_srli_si128(a, n), _mm_slli_si128(seam.b, 16 - n));
    }
    template <int n>
    static Vector BytesBehind(const Seam& seam, Vector b) {
        return Or(_mm_slli_si128(b, n), _mm_srli_si128(seam.a, 16 - n));
    }
    // Twice a byte, and 1 where the highest bit of the next is.
    static Vector Ordered(Vector v) { return v; }
    static Vector PixelAhead(Vector a, const Seam& seam) {
        return _mm_sub_epi8(_mm_add_epi8(a, a), _mm_cmplt_epi8(BytesAhead<1>(a, seam), _mm_setzero_si128()));
    }
    // The mean of an even byte and 255, rounded up, is half of it and 128.
    static Vector PixelBehind(const Seam& seam, Vector b) {
        const Vector one = All(1), odd = And(BytesBehind<1>(seam, b), one);
        return _mm_avg_epu8(AndNot(b, one), _mm_cmpeq_epi8(odd, one));
    }
    // The first pixel becomes the highest bit.
    static Vector Words(Vector v) {
        v = Or(_mm_srli_epi16(v, 8), _mm_slli_epi16(v, 8));
        return _mm_shufflehi_epi16(_mm_shufflelo_epi16(v, 0x1b), 0x1b);
    }
    static Vector Next(Vector v, Vector after) { return Or(_mm_srli_si128(v, 8), _mm_slli_si128(after, 8)); }
    static Vector Previous(Vector before, Vector v) { return Or(_mm_slli_si128(v, 8), _mm_srli_si128(before, 8)); }
    struct Count {
        Vector n, rest;
        explicit Count(int pixels) : n(_mm_cvtsi32_si128(pixels)), rest(_mm_cvtsi32_si128(64 - pixels)) {}
    };
    static Vector Ahead(Vector v, Vector next, const Count& count) {
        return Or(_mm_sll_epi64(v, count.n), _mm_srl_epi64(next, count.rest));
    }
    static Vector Behind(Vector previous, Vector v, const Count& count) {
        return Or(_mm_srl_epi64(v, count.n), _mm_sll_epi64(previous, count.rest));
    }
    template <int n>
    static Vector Ahead(Vector v, Vector next) {
        return Or(_mm_slli_epi64(v, n), _mm_srli_epi64(next, 64 - n));
    }
    template <int n>
    static Vector Behind(Vector previous, Vector v) {
        return Or(_mm_srli_epi64(v, n), _mm_slli_epi64(previous, 64 - n));
    }
    // Each pixel that is not set clears those after it.
    static Vector Leading(Vector v) {
        Vector clear = Xor(v, All(0xff));
        for (int n = 1; n < 64; n *= 2) clear = Or(clear, _mm_srl_epi64(clear, _mm_cvtsi32_si128(n)));
        return Xor(clear, All(0xff));
    }
    static Vector Trailing(Vector v) { return AndNot(v, _mm_add_epi64(v, _mm_set_epi32(0, 1, 0, 1))); }
    static unsigned FullWords(Vector v) {
        const Vector halves = _mm_cmpeq_epi32(v, All(0xff));
        return static_cast<unsigned>(_mm_movemask_pd(_mm_castsi128_pd(And(halves, _mm_slli_epi64(halves, 32)))));
    }
    static Vector Expand(unsigned bits) {
        const int first = -static_cast<int>(bits & 1), second = -static_cast<int>(bits >> 1 & 1);
        return _mm_set_epi32(second, second, first, first);
    }
};

}  // namespace
}  // namespace orlix
