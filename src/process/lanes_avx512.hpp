// Vectors of pixels for kernels that compare and select, with AVX-512. For the files of this suffix only.
#pragma once

#include <cstddef>
#include <cstdint>

#include "process/intrinsics_avx512.hpp"

#define ORLIX_INLINE [[gnu::always_inline]] static inline

namespace orlix {
namespace {

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
};

struct Words : Integers<uint16_t> {
    ORLIX_INLINE Vector All(Pixel p) { return _mm512_set1_epi16(static_cast<short>(p)); }
    ORLIX_INLINE Vector Min(const Vector& a, const Vector& b) { return _mm512_min_epu16(a, b); }
    ORLIX_INLINE Vector Max(const Vector& a, const Vector& b) { return _mm512_max_epu16(a, b); }
    ORLIX_INLINE Vector Nearer(const Vector& p, const Vector& low, const Vector& high) {
        const __mmask32 up = _mm512_cmpge_epu16_mask(_mm512_sub_epi16(p, low), _mm512_sub_epi16(high, p));
        return _mm512_mask_mov_epi16(low, up, high);
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
};

}  // namespace
}  // namespace orlix

#undef ORLIX_INLINE
