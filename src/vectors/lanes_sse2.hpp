// Vectors of pixels for kernels that compare and select, with SSE2. Only for files of this suffix.
//
// A vector holds keys that order as the pixels do: SSE2 compares 16- and 32-bit numbers only as signed, so loading and
// storing flip the top bit of unsigned pixels. Differences of keys are differences of pixels.
#pragma once

#include <emmintrin.h>

#include "vectors/lanes.hpp"

namespace orlix {
namespace {

template <>
struct PixelLanes<uint8_t> {
    using Pixel = uint8_t;
    using Vector = __m128i;
    static constexpr size_t kLanes = 16;
    static Vector Load(const Pixel* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
    static void Store(Pixel* p, Vector v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }
    static Vector All(Pixel p) { return _mm_set1_epi8(static_cast<char>(p)); }
    static Vector Min(Vector a, Vector b) { return _mm_min_epu8(a, b); }
    static Vector Max(Vector a, Vector b) { return _mm_max_epu8(a, b); }
    static Vector Nearer(Vector p, Vector low, Vector high) {
        const Vector under = _mm_sub_epi8(p, low), over = _mm_sub_epi8(high, p);
        const Vector up = _mm_cmpeq_epi8(_mm_max_epu8(under, over), under);
        return _mm_or_si128(_mm_and_si128(up, high), _mm_andnot_si128(up, low));
    }
};

template <>
struct PixelLanes<uint16_t> {
    using Pixel = uint16_t;
    using Vector = __m128i;
    static constexpr size_t kLanes = 8;
    static Vector Turned(Vector v) { return _mm_xor_si128(v, _mm_set1_epi16(static_cast<short>(0x8000))); }
    static Vector Load(const Pixel* p) { return Turned(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))); }
    static void Store(Pixel* p, Vector v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), Turned(v)); }
    static Vector All(Pixel p) { return Turned(_mm_set1_epi16(static_cast<short>(p))); }
    static Vector Min(Vector a, Vector b) { return _mm_min_epi16(a, b); }
    static Vector Max(Vector a, Vector b) { return _mm_max_epi16(a, b); }
    static Vector Nearer(Vector p, Vector low, Vector high) {
        const Vector short_of = _mm_subs_epu16(_mm_sub_epi16(high, p), _mm_sub_epi16(p, low));
        const Vector up = _mm_cmpeq_epi16(short_of, _mm_setzero_si128());
        return _mm_or_si128(_mm_and_si128(up, high), _mm_andnot_si128(up, low));
    }
};

struct SignedLanes {
    using Vector = __m128i;
    static constexpr size_t kLanes = 4;
    static Vector Select(Vector mask, Vector yes, Vector no) {
        return _mm_or_si128(_mm_and_si128(mask, yes), _mm_andnot_si128(mask, no));
    }
    static Vector Min(Vector a, Vector b) { return Select(_mm_cmpgt_epi32(a, b), b, a); }
    static Vector Max(Vector a, Vector b) { return Select(_mm_cmpgt_epi32(a, b), a, b); }
};

template <>
struct PixelLanes<uint32_t> : SignedLanes {
    using Pixel = uint32_t;
    static Vector Turned(Vector v) { return _mm_xor_si128(v, _mm_set1_epi32(static_cast<int>(0x80000000u))); }
    static Vector Load(const Pixel* p) { return Turned(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))); }
    static void Store(Pixel* p, Vector v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), Turned(v)); }
    static Vector All(Pixel p) { return Turned(_mm_set1_epi32(static_cast<int>(p))); }
    static Vector Nearer(Vector p, Vector low, Vector high) {
        const Vector under = Turned(_mm_sub_epi32(p, low)), over = Turned(_mm_sub_epi32(high, p));
        return Select(_mm_cmpgt_epi32(over, under), low, high);
    }
};

struct TotallyOrderedLanes : SignedLanes {
    using Pixel = float;
    static Vector Turned(Vector v) { return _mm_xor_si128(v, _mm_srli_epi32(_mm_srai_epi32(v, 31), 1)); }
    static Vector Load(const Pixel* p) { return Turned(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))); }
    static void Store(Pixel* p, Vector v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), Turned(v)); }
    // Cheaper than loading and turning again.
    static Vector Before(Vector a, Vector b) { return _mm_or_si128(_mm_srli_si128(a, 12), _mm_slli_si128(b, 4)); }
    static Vector After(Vector b, Vector c) { return _mm_or_si128(_mm_srli_si128(b, 4), _mm_slli_si128(c, 12)); }
    static void Order(Vector& a, Vector& b) {
        const Vector change = _mm_and_si128(_mm_cmpgt_epi32(a, b), _mm_xor_si128(a, b));
        a = _mm_xor_si128(a, change);
        b = _mm_xor_si128(b, change);
    }
};

template <>
struct PixelLanes<float> {
    using Pixel = float;
    using Vector = __m128;
    static constexpr size_t kLanes = 4;
    static Vector Load(const Pixel* p) { return _mm_loadu_ps(p); }
    static void Store(Pixel* p, Vector v) { _mm_storeu_ps(p, v); }
    static Vector All(Pixel p) { return _mm_set1_ps(p); }
    static Vector Min(Vector a, Vector b) { return _mm_min_ps(a, b); }
    static Vector Max(Vector a, Vector b) { return _mm_max_ps(a, b); }
    static Vector Nearer(Vector p, Vector low, Vector high) {
        const Vector up = _mm_cmpge_ps(_mm_sub_ps(p, low), _mm_sub_ps(high, p));
        const Vector nearer = _mm_add_ps(_mm_or_ps(_mm_and_ps(up, high), _mm_andnot_ps(up, low)), _mm_setzero_ps());
        const Vector unknown = _mm_cmpunord_ps(p, p), nan = _mm_castsi128_ps(_mm_set1_epi32(0x7fc00000));
        return _mm_or_ps(_mm_and_ps(unknown, nan), _mm_andnot_ps(unknown, nearer));
    }
};

}  // namespace
}  // namespace orlix
