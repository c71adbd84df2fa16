// Vectors of pixels for kernels that compare and select, with AVX-512. For the files of this suffix only.
#pragma once

#include <cstddef>
#include <cstdint>

#include "vectors/intrinsics_avx512.hpp"

#define ORLIX_INLINE [[gnu::always_inline]] static inline

namespace orlix {
namespace {

// Indices first, first + 1, ... of bytes, words and double words.
struct Counting {
    uint8_t bytes[128];
    uint16_t words[64];
    uint32_t doubleWords[32];
    constexpr Counting() : bytes(), words(), doubleWords() {
        for (int i = 0; i < 128; ++i) bytes[i] = static_cast<uint8_t>(i);
        for (int i = 0; i < 64; ++i) words[i] = static_cast<uint16_t>(i);
        for (int i = 0; i < 32; ++i) doubleWords[i] = static_cast<uint32_t>(i);
    }
};
constexpr Counting kCounting;

template <class T>
struct Integers {
    using Pixel = T;
    using Vector = __m512i;
    static constexpr size_t kLanes = 64 / sizeof(T);
    ORLIX_INLINE Vector Load(const T* p) { return _mm512_loadu_si512(p); }
    ORLIX_INLINE void Store(T* p, const Vector& v) { _mm512_storeu_si512(p, v); }
};

struct Bytes : Integers<uint8_t> {
    ORLIX_INLINE Vector All(Pixel p) { return _mm512_set1_epi8(static_cast<char>(p)); }
    ORLIX_INLINE Vector Min(const Vector& a, const Vector& b) { return _mm512_min_epu8(a, b); }
    ORLIX_INLINE Vector Max(const Vector& a, const Vector& b) { return _mm512_max_epu8(a, b); }
    // high where p - low >= high - p, else low; low <= p <= high.
    ORLIX_INLINE Vector Nearer(const Vector& p, const Vector& low, const Vector& high) {
        const __mmask64 up = _mm512_cmpge_epu8_mask(_mm512_sub_epi8(p, low), _mm512_sub_epi8(high, p));
        return _mm512_mask_mov_epi8(low, up, high);
    }
    // The pixels just before and just after those of b, of the vectors a, b, c side by side.
    ORLIX_INLINE Vector Before(const Vector& a, const Vector& b) {
        return _mm512_permutex2var_epi8(a, _mm512_loadu_si512(kCounting.bytes + 63), b);
    }
    ORLIX_INLINE Vector After(const Vector& b, const Vector& c) {
        return _mm512_permutex2var_epi8(b, _mm512_loadu_si512(kCounting.bytes + 1), c);
    }
    // Steps of up to kLanes pixels: the pixels that far after those of b, c being the vector after b.
    ORLIX_INLINE __m512i Step(size_t step) { return _mm512_loadu_si512(kCounting.bytes + step); }
    ORLIX_INLINE Vector After(const Vector& b, const Vector& c, const __m512i& step) {
        return _mm512_permutex2var_epi8(b, step, c);
    }
};

struct Words : Integers<uint16_t> {
    ORLIX_INLINE Vector All(Pixel p) { return _mm512_set1_epi16(static_cast<short>(p)); }
    ORLIX_INLINE Vector Min(const Vector& a, const Vector& b) { return _mm512_min_epu16(a, b); }
    ORLIX_INLINE Vector Max(const Vector& a, const Vector& b) { return _mm512_max_epu16(a, b); }
    ORLIX_INLINE Vector Nearer(const Vector& p, const Vector& low, const Vector& high) {
        const __mmask32 up = _mm512_cmpge_epu16_mask(_mm512_sub_epi16(p, low), _mm512_sub_epi16(high, p));
        return _mm512_mask_mov_epi16(low, up, high);
    }
    ORLIX_INLINE Vector Before(const Vector& a, const Vector& b) {
        return _mm512_permutex2var_epi16(a, _mm512_loadu_si512(kCounting.words + 31), b);
    }
    ORLIX_INLINE Vector After(const Vector& b, const Vector& c) {
        return _mm512_permutex2var_epi16(b, _mm512_loadu_si512(kCounting.words + 1), c);
    }
    ORLIX_INLINE __m512i Step(size_t step) { return _mm512_loadu_si512(kCounting.words + step); }
    ORLIX_INLINE Vector After(const Vector& b, const Vector& c, const __m512i& step) {
        return _mm512_permutex2var_epi16(b, step, c);
    }
};

struct DoubleWords : Integers<uint32_t> {
    ORLIX_INLINE Vector All(Pixel p) { return _mm512_set1_epi32(static_cast<int>(p)); }
    ORLIX_INLINE Vector Min(const Vector& a, const Vector& b) { return _mm512_min_epu32(a, b); }
    ORLIX_INLINE Vector Max(const Vector& a, const Vector& b) { return _mm512_max_epu32(a, b); }
    ORLIX_INLINE Vector Nearer(const Vector& p, const Vector& low, const Vector& high) {
        const __mmask16 up = _mm512_cmpge_epu32_mask(_mm512_sub_epi32(p, low), _mm512_sub_epi32(high, p));
        return _mm512_mask_mov_epi32(low, up, high);
    }
    ORLIX_INLINE Vector Before(const Vector& a, const Vector& b) { return _mm512_alignr_epi32(b, a, 15); }
    ORLIX_INLINE Vector After(const Vector& b, const Vector& c) { return _mm512_alignr_epi32(c, b, 1); }
    ORLIX_INLINE __m512i Step(size_t step) { return _mm512_loadu_si512(kCounting.doubleWords + step); }
    ORLIX_INLINE Vector After(const Vector& b, const Vector& c, const __m512i& step) {
        return _mm512_permutex2var_epi32(b, step, c);
    }
};

// Keys in the total order of IEEE 754: negative NaN, -infinity, ..., -0, 0, ..., infinity, NaN.
struct TotallyOrdered {
    using Pixel = float;
    using Vector = __m512i;
    static constexpr size_t kLanes = 16;
    ORLIX_INLINE Vector Turned(const Vector& v) {
        return _mm512_xor_si512(v, _mm512_srli_epi32(_mm512_srai_epi32(v, 31), 1));
    }
    ORLIX_INLINE Vector Load(const Pixel* p) { return Turned(_mm512_loadu_si512(p)); }
    ORLIX_INLINE void Store(Pixel* p, const Vector& v) { _mm512_storeu_si512(p, Turned(v)); }
    ORLIX_INLINE Vector Min(const Vector& a, const Vector& b) { return _mm512_min_epi32(a, b); }
    ORLIX_INLINE Vector Max(const Vector& a, const Vector& b) { return _mm512_max_epi32(a, b); }
    ORLIX_INLINE Vector Before(const Vector& a, const Vector& b) { return _mm512_alignr_epi32(b, a, 15); }
    ORLIX_INLINE Vector After(const Vector& b, const Vector& c) { return _mm512_alignr_epi32(c, b, 1); }
};

// Min and Max return the second operand when one is NaN.
struct Floats {
    using Pixel = float;
    using Vector = __m512;
    static constexpr size_t kLanes = 16;
    ORLIX_INLINE Vector Load(const Pixel* p) { return _mm512_loadu_ps(p); }
    ORLIX_INLINE void Store(Pixel* p, const Vector& v) { _mm512_storeu_ps(p, v); }
    ORLIX_INLINE Vector All(Pixel p) { return _mm512_set1_ps(p); }
    ORLIX_INLINE Vector Min(const Vector& a, const Vector& b) { return _mm512_min_ps(a, b); }
    ORLIX_INLINE Vector Max(const Vector& a, const Vector& b) { return _mm512_max_ps(a, b); }
    // The quiet NaN where p is NaN. Zeros lose their sign.
    ORLIX_INLINE Vector Nearer(const Vector& p, const Vector& low, const Vector& high) {
        const __mmask16 up = _mm512_cmp_ps_mask(_mm512_sub_ps(p, low), _mm512_sub_ps(high, p), _CMP_GE_OQ);
        const Vector nearer = _mm512_add_ps(_mm512_mask_mov_ps(low, up, high), _mm512_setzero_ps());
        const Vector nan = _mm512_castsi512_ps(_mm512_set1_epi32(0x7fc00000));
        return _mm512_mask_mov_ps(nearer, _mm512_cmp_ps_mask(p, p, _CMP_UNORD_Q), nan);
    }
    ORLIX_INLINE Vector Before(const Vector& a, const Vector& b) {
        return _mm512_castsi512_ps(_mm512_alignr_epi32(_mm512_castps_si512(b), _mm512_castps_si512(a), 15));
    }
    ORLIX_INLINE Vector After(const Vector& b, const Vector& c) {
        return _mm512_castsi512_ps(_mm512_alignr_epi32(_mm512_castps_si512(c), _mm512_castps_si512(b), 1));
    }
    ORLIX_INLINE __m512i Step(size_t step) { return _mm512_loadu_si512(kCounting.doubleWords + step); }
    ORLIX_INLINE Vector After(const Vector& b, const Vector& c, const __m512i& step) {
        return _mm512_permutex2var_ps(b, step, c);
    }
};

}  // namespace
}  // namespace orlix

#undef ORLIX_INLINE
