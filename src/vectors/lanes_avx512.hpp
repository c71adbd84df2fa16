// Vectors of pixels for kernels that compare and select, with AVX-512. Only for files of this suffix.
#pragma once

#include "vectors/intrinsics_avx512.hpp"
#include "vectors/lanes.hpp"

namespace orlix {
namespace {

// Indices first, first + 1, ... as bytes, words and double words.
struct LaneIndices {
    uint8_t bytes[128];
    uint16_t words[64];
    uint32_t doubleWords[32];
    constexpr LaneIndices() : bytes(), words(), doubleWords() {
        for (int i = 0; i < 128; ++i) bytes[i] = static_cast<uint8_t>(i);
        for (int i = 0; i < 64; ++i) words[i] = static_cast<uint16_t>(i);
        for (int i = 0; i < 32; ++i) doubleWords[i] = static_cast<uint32_t>(i);
    }
};
constexpr LaneIndices kLaneIndices;

template <class T>
struct IntegerLanes {
    using Pixel = T;
    using Vector = __m512i;
    static constexpr size_t kLanes = 64 / sizeof(T);
    ORLIX_INLINE static Vector Load(const T* p) { return _mm512_loadu_si512(p); }
    ORLIX_INLINE static void Store(T* p, const Vector& v) { _mm512_storeu_si512(p, v); }
};

template <>
struct PixelLanes<uint8_t> : IntegerLanes<uint8_t> {
    ORLIX_INLINE static Vector All(Pixel p) { return _mm512_set1_epi8(static_cast<char>(p)); }
    ORLIX_INLINE static Vector Min(const Vector& a, const Vector& b) { return _mm512_min_epu8(a, b); }
    ORLIX_INLINE static Vector Max(const Vector& a, const Vector& b) { return _mm512_max_epu8(a, b); }
    ORLIX_INLINE static Vector Nearer(const Vector& p, const Vector& low, const Vector& high) {
        const __mmask64 up = _mm512_cmpge_epu8_mask(_mm512_sub_epi8(p, low), _mm512_sub_epi8(high, p));
        return _mm512_mask_mov_epi8(low, up, high);
    }
    ORLIX_INLINE static Vector Before(const Vector& a, const Vector& b) {
        return _mm512_permutex2var_epi8(a, _mm512_loadu_si512(kLaneIndices.bytes + 63), b);
    }
    ORLIX_INLINE static Vector After(const Vector& b, const Vector& c) {
        return _mm512_permutex2var_epi8(b, _mm512_loadu_si512(kLaneIndices.bytes + 1), c);
    }
    // Offsets of up to kLanes pixels: After() gives the pixels that far after those of b, where c is the vector after
    // b.
    ORLIX_INLINE static __m512i Step(size_t step) { return _mm512_loadu_si512(kLaneIndices.bytes + step); }
    ORLIX_INLINE static Vector After(const Vector& b, const Vector& c, const __m512i& step) {
        return _mm512_permutex2var_epi8(b, step, c);
    }
};

template <>
struct PixelLanes<uint16_t> : IntegerLanes<uint16_t> {
    ORLIX_INLINE static Vector All(Pixel p) { return _mm512_set1_epi16(static_cast<short>(p)); }
    ORLIX_INLINE static Vector Min(const Vector& a, const Vector& b) { return _mm512_min_epu16(a, b); }
    ORLIX_INLINE static Vector Max(const Vector& a, const Vector& b) { return _mm512_max_epu16(a, b); }
    ORLIX_INLINE static Vector Nearer(const Vector& p, const Vector& low, const Vector& high) {
        const __mmask32 up = _mm512_cmpge_epu16_mask(_mm512_sub_epi16(p, low), _mm512_sub_epi16(high, p));
        return _mm512_mask_mov_epi16(low, up, high);
    }
    ORLIX_INLINE static Vector Before(const Vector& a, const Vector& b) {
        return _mm512_permutex2var_epi16(a, _mm512_loadu_si512(kLaneIndices.words + 31), b);
    }
    ORLIX_INLINE static Vector After(const Vector& b, const Vector& c) {
        return _mm512_permutex2var_epi16(b, _mm512_loadu_si512(kLaneIndices.words + 1), c);
    }
    ORLIX_INLINE static __m512i Step(size_t step) { return _mm512_loadu_si512(kLaneIndices.words + step); }
    ORLIX_INLINE static Vector After(const Vector& b, const Vector& c, const __m512i& step) {
        return _mm512_permutex2var_epi16(b, step, c);
    }
};

template <>
struct PixelLanes<uint32_t> : IntegerLanes<uint32_t> {
    ORLIX_INLINE static Vector All(Pixel p) { return _mm512_set1_epi32(static_cast<int>(p)); }
    ORLIX_INLINE static Vector Min(const Vector& a, const Vector& b) { return _mm512_min_epu32(a, b); }
    ORLIX_INLINE static Vector Max(const Vector& a, const Vector& b) { return _mm512_max_epu32(a, b); }
    ORLIX_INLINE static Vector Nearer(const Vector& p, const Vector& low, const Vector& high) {
        const __mmask16 up = _mm512_cmpge_epu32_mask(_mm512_sub_epi32(p, low), _mm512_sub_epi32(high, p));
        return _mm512_mask_mov_epi32(low, up, high);
    }
    ORLIX_INLINE static Vector Before(const Vector& a, const Vector& b) { return _mm512_alignr_epi32(b, a, 15); }
    ORLIX_INLINE static Vector After(const Vector& b, const Vector& c) { return _mm512_alignr_epi32(c, b, 1); }
    ORLIX_INLINE static __m512i Step(size_t step) { return _mm512_loadu_si512(kLaneIndices.doubleWords + step); }
    ORLIX_INLINE static Vector After(const Vector& b, const Vector& c, const __m512i& step) {
        return _mm512_permutex2var_epi32(b, step, c);
    }
};

struct TotallyOrderedLanes {
    using Pixel = float;
    using Vector = __m512i;
    static constexpr size_t kLanes = 16;
    ORLIX_INLINE static Vector Turned(const Vector& v) {
        return _mm512_xor_si512(v, _mm512_srli_epi32(_mm512_srai_epi32(v, 31), 1));
    }
    ORLIX_INLINE static Vector Load(const Pixel* p) { return Turned(_mm512_loadu_si512(p)); }
    ORLIX_INLINE static void Store(Pixel* p, const Vector& v) { _mm512_storeu_si512(p, Turned(v)); }
    ORLIX_INLINE static Vector Min(const Vector& a, const Vector& b) { return _mm512_min_epi32(a, b); }
    ORLIX_INLINE static Vector Max(const Vector& a, const Vector& b) { return _mm512_max_epi32(a, b); }
    ORLIX_INLINE static Vector Before(const Vector& a, const Vector& b) { return _mm512_alignr_epi32(b, a, 15); }
    ORLIX_INLINE static Vector After(const Vector& b, const Vector& c) { return _mm512_alignr_epi32(c, b, 1); }
};

template <>
struct PixelLanes<float> {
    using Pixel = float;
    using Vector = __m512;
    static constexpr size_t kLanes = 16;
    ORLIX_INLINE static Vector Load(const Pixel* p) { return _mm512_loadu_ps(p); }
    ORLIX_INLINE static void Store(Pixel* p, const Vector& v) { _mm512_storeu_ps(p, v); }
    ORLIX_INLINE static Vector All(Pixel p) { return _mm512_set1_ps(p); }
    ORLIX_INLINE static Vector Min(const Vector& a, const Vector& b) { return _mm512_min_ps(a, b); }
    ORLIX_INLINE static Vector Max(const Vector& a, const Vector& b) { return _mm512_max_ps(a, b); }
    ORLIX_INLINE static Vector Nearer(const Vector& p, const Vector& low, const Vector& high) {
        const __mmask16 up = _mm512_cmp_ps_mask(_mm512_sub_ps(p, low), _mm512_sub_ps(high, p), _CMP_GE_OQ);
        const Vector nearer = _mm512_add_ps(_mm512_mask_mov_ps(low, up, high), _mm512_setzero_ps());
        const Vector nan = _mm512_castsi512_ps(_mm512_set1_epi32(0x7fc00000));
        return _mm512_mask_mov_ps(nearer, _mm512_cmp_ps_mask(p, p, _CMP_UNORD_Q), nan);
    }
    ORLIX_INLINE static Vector Before(const Vector& a, const Vector& b) {
        return _mm512_castsi512_ps(_mm512_alignr_epi32(_mm512_castps_si512(b), _mm512_castps_si512(a), 15));
    }
    ORLIX_INLINE static Vector After(const Vector& b, const Vector& c) {
        return _mm512_castsi512_ps(_mm512_alignr_epi32(_mm512_castps_si512(c), _mm512_castps_si512(b), 1));
    }
    ORLIX_INLINE static __m512i Step(size_t step) { return _mm512_loadu_si512(kLaneIndices.doubleWords + step); }
    ORLIX_INLINE static Vector After(const Vector& b, const Vector& c, const __m512i& step) {
        return _mm512_permutex2var_ps(b, step, c);
    }
};

}  // namespace
}  // namespace orlix
