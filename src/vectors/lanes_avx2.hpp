// Vectors of pixels for kernels that compare and select, with AVX2. Only for files of this suffix.
#pragma once

#include <immintrin.h>

#include "vectors/lanes.hpp"

namespace orlix {
namespace {

// The pixels just before and just after those of b, where a, b, c are adjacent vectors.
template <int bytes>
ORLIX_INLINE __m256i Before(const __m256i& a, const __m256i& b) {
    return _mm256_alignr_epi8(b, _mm256_permute2x128_si256(a, b, 0x21), 16 - bytes);
}
template <int bytes>
ORLIX_INLINE __m256i After(const __m256i& b, const __m256i& c) {
    return _mm256_alignr_epi8(_mm256_permute2x128_si256(b, c, 0x21), b, bytes);
}

template <class T>
struct IntegerLanes {
    using Pixel = T;
    using Vector = __m256i;
    static constexpr size_t kLanes = 32 / sizeof(T);
    ORLIX_INLINE static Vector Load(const T* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }
    ORLIX_INLINE static void Store(T* p, const Vector& v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }
    ORLIX_INLINE static Vector Before(const Vector& a, const Vector& b) { return orlix::Before<sizeof(T)>(a, b); }
    ORLIX_INLINE static Vector After(const Vector& b, const Vector& c) { return orlix::After<sizeof(T)>(b, c); }
};

template <>
struct PixelLanes<uint8_t> : IntegerLanes<uint8_t> {
    ORLIX_INLINE static Vector All(Pixel p) { return _mm256_set1_epi8(static_cast<char>(p)); }
    ORLIX_INLINE static Vector Min(const Vector& a, const Vector& b) { return _mm256_min_epu8(a, b); }
    ORLIX_INLINE static Vector Max(const Vector& a, const Vector& b) { return _mm256_max_epu8(a, b); }
    ORLIX_INLINE static Vector Nearer(const Vector& p, const Vector& low, const Vector& high) {
        const Vector under = _mm256_sub_epi8(p, low), over = _mm256_sub_epi8(high, p);
        return _mm256_blendv_epi8(low, high, _mm256_cmpeq_epi8(_mm256_max_epu8(under, over), under));
    }
};

template <>
struct PixelLanes<uint16_t> : IntegerLanes<uint16_t> {
    ORLIX_INLINE static Vector All(Pixel p) { return _mm256_set1_epi16(static_cast<short>(p)); }
    ORLIX_INLINE static Vector Min(const Vector& a, const Vector& b) { return _mm256_min_epu16(a, b); }
    ORLIX_INLINE static Vector Max(const Vector& a, const Vector& b) { return _mm256_max_epu16(a, b); }
    ORLIX_INLINE static Vector Nearer(const Vector& p, const Vector& low, const Vector& high) {
        const Vector under = _mm256_sub_epi16(p, low), over = _mm256_sub_epi16(high, p);
        return _mm256_blendv_epi8(low, high, _mm256_cmpeq_epi16(_mm256_max_epu16(under, over), under));
    }
};

template <>
struct PixelLanes<uint32_t> : IntegerLanes<uint32_t> {
    ORLIX_INLINE static Vector All(Pixel p) { return _mm256_set1_epi32(static_cast<int>(p)); }
    ORLIX_INLINE static Vector Min(const Vector& a, const Vector& b) { return _mm256_min_epu32(a, b); }
    ORLIX_INLINE static Vector Max(const Vector& a, const Vector& b) { return _mm256_max_epu32(a, b); }
    ORLIX_INLINE static Vector Nearer(const Vector& p, const Vector& low, const Vector& high) {
        const Vector under = _mm256_sub_epi32(p, low), over = _mm256_sub_epi32(high, p);
        return _mm256_blendv_epi8(low, high, _mm256_cmpeq_epi32(_mm256_max_epu32(under, over), under));
    }
};

struct TotallyOrderedLanes {
    using Pixel = float;
    using Vector = __m256i;
    static constexpr size_t kLanes = 8;
    ORLIX_INLINE static Vector Turned(const Vector& v) {
        return _mm256_xor_si256(v, _mm256_srli_epi32(_mm256_srai_epi32(v, 31), 1));
    }
    ORLIX_INLINE static Vector Load(const Pixel* p) {
        return Turned(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)));
    }
    ORLIX_INLINE static void Store(Pixel* p, const Vector& v) {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), Turned(v));
    }
    ORLIX_INLINE static Vector Min(const Vector& a, const Vector& b) { return _mm256_min_epi32(a, b); }
    ORLIX_INLINE static Vector Max(const Vector& a, const Vector& b) { return _mm256_max_epi32(a, b); }
    ORLIX_INLINE static Vector Before(const Vector& a, const Vector& b) { return orlix::Before<4>(a, b); }
    ORLIX_INLINE static Vector After(const Vector& b, const Vector& c) { return orlix::After<4>(b, c); }
};

template <>
struct PixelLanes<float> {
    using Pixel = float;
    using Vector = __m256;
    static constexpr size_t kLanes = 8;
    ORLIX_INLINE static Vector Load(const Pixel* p) { return _mm256_loadu_ps(p); }
    ORLIX_INLINE static void Store(Pixel* p, const Vector& v) { _mm256_storeu_ps(p, v); }
    ORLIX_INLINE static Vector All(Pixel p) { return _mm256_set1_ps(p); }
    ORLIX_INLINE static Vector Min(const Vector& a, const Vector& b) { return _mm256_min_ps(a, b); }
    ORLIX_INLINE static Vector Max(const Vector& a, const Vector& b) { return _mm256_max_ps(a, b); }
    ORLIX_INLINE static Vector Nearer(const Vector& p, const Vector& low, const Vector& high) {
        const Vector up = _mm256_cmp_ps(_mm256_sub_ps(p, low), _mm256_sub_ps(high, p), _CMP_GE_OQ);
        const Vector nearer = _mm256_add_ps(_mm256_blendv_ps(low, high, up), _mm256_setzero_ps());
        const Vector nan = _mm256_castsi256_ps(_mm256_set1_epi32(0x7fc00000));
        return _mm256_blendv_ps(nearer, nan, _mm256_cmp_ps(p, p, _CMP_UNORD_Q));
    }
    ORLIX_INLINE static Vector Before(const Vector& a, const Vector& b) {
        return _mm256_castsi256_ps(orlix::Before<4>(_mm256_castps_si256(a), _mm256_castps_si256(b)));
    }
    ORLIX_INLINE static Vector After(const Vector& b, const Vector& c) {
        return _mm256_castsi256_ps(orlix::After<4>(_mm256_castps_si256(b), _mm256_castps_si256(c)));
    }
};

}  // namespace
}  // namespace orlix
