// Vectors of pixels for kernels that compare and select, with AVX2. For the files of this suffix only.
#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#define ORLIX_INLINE [[gnu::always_inline]] static inline

namespace orlix {
namespace {

// The pixels just before and just after those of b, of the vectors a, b, c side by side.
template <int bytes>
[[gnu::always_inline]] inline __m256i Before(const __m256i& a, const __m256i& b) {
    return _mm256_alignr_epi8(b, _mm256_permute2x128_si256(a, b, 0x21), 16 - bytes);
}
template <int bytes>
[[gnu::always_inline]] inline __m256i After(const __m256i& b, const __m256i& c) {
    return _mm256_alignr_epi8(_mm256_permute2x128_si256(b, c, 0x21), b, bytes);
}

template <class T>
struct Integers {
    using Pixel = T;
    using Vector = __m256i;
    static constexpr size_t kLanes = 32 / sizeof(T);
    ORLIX_INLINE Vector Load(const T* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }
    ORLIX_INLINE void Store(T* p, const Vector& v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }
    ORLIX_INLINE Vector Before(const Vector& a, const Vector& b) { return orlix::Before<sizeof(T)>(a, b); }
    ORLIX_INLINE Vector After(const Vector& b, const Vector& c) { return orlix::After<sizeof(T)>(b, c); }
};

struct Bytes : Integers<uint8_t> {
    ORLIX_INLINE Vector All(Pixel p) { return _mm256_set1_epi8(static_cast<char>(p)); }
    ORLIX_INLINE Vector Min(const Vector& a, const Vector& b) { return _mm256_min_epu8(a, b); }
    ORLIX_INLINE Vector Max(const Vector& a, const Vector& b) { return _mm256_max_epu8(a, b); }
    // high where p - low >= high - p, else low; low <= p <= high.
    ORLIX_INLINE Vector Nearer(const Vector& p, const Vector& low, const Vector& high) {
        const Vector under = _mm256_sub_epi8(p, low), over = _mm256_sub_epi8(high, p);
        return _mm256_blendv_epi8(low, high, _mm256_cmpeq_epi8(_mm256_max_epu8(under, over), under));
    }
};

struct Words : Integers<uint16_t> {
    ORLIX_INLINE Vector All(Pixel p) { return _mm256_set1_epi16(static_cast<short>(p)); }
    ORLIX_INLINE Vector Min(const Vector& a, const Vector& b) { return _mm256_min_epu16(a, b); }
    ORLIX_INLINE Vector Max(const Vector& a, const Vector& b) { return _mm256_max_epu16(a, b); }
    ORLIX_INLINE Vector Nearer(const Vector& p, const Vector& low, const Vector& high) {
        const Vector under = _mm256_sub_epi16(p, low), over = _mm256_sub_epi16(high, p);
        return _mm256_blendv_epi8(low, high, _mm256_cmpeq_epi16(_mm256_max_epu16(under, over), under));
    }
};

struct DoubleWords : Integers<uint32_t> {
    ORLIX_INLINE Vector All(Pixel p) { return _mm256_set1_epi32(static_cast<int>(p)); }
    ORLIX_INLINE Vector Min(const Vector& a, const Vector& b) { return _mm256_min_epu32(a, b); }
    ORLIX_INLINE Vector Max(const Vector& a, const Vector& b) { return _mm256_max_epu32(a, b); }
    ORLIX_INLINE Vector Nearer(const Vector& p, const Vector& low, const Vector& high) {
        const Vector under = _mm256_sub_epi32(p, low), over = _mm256_sub_epi32(high, p);
        return _mm256_blendv_epi8(low, high, _mm256_cmpeq_epi32(_mm256_max_epu32(under, over), under));
    }
};

// Keys in the total order of IEEE 754: negative NaN, -infinity, ..., -0, 0, ..., infinity, NaN.
struct TotallyOrdered {
    using Pixel = float;
    using Vector = __m256i;
    static constexpr size_t kLanes = 8;
    ORLIX_INLINE Vector Turned(const Vector& v) {
        return _mm256_xor_si256(v, _mm256_srli_epi32(_mm256_srai_epi32(v, 31), 1));
    }
    ORLIX_INLINE Vector Load(const Pixel* p) { return Turned(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p))); }
    ORLIX_INLINE void Store(Pixel* p, const Vector& v) {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), Turned(v));
    }
    ORLIX_INLINE Vector Min(const Vector& a, const Vector& b) { return _mm256_min_epi32(a, b); }
    ORLIX_INLINE Vector Max(const Vector& a, const Vector& b) { return _mm256_max_epi32(a, b); }
    ORLIX_INLINE Vector Before(const Vector& a, const Vector& b) { return orlix::Before<4>(a, b); }
    ORLIX_INLINE Vector After(const Vector& b, const Vector& c) { return orlix::After<4>(b, c); }
};

// Min and Max return the second operand when one is NaN.
struct Floats {
    using Pixel = float;
    using Vector = __m256;
    static constexpr size_t kLanes = 8;
    ORLIX_INLINE Vector Load(const Pixel* p) { return _mm256_loadu_ps(p); }
    ORLIX_INLINE void Store(Pixel* p, const Vector& v) { _mm256_storeu_ps(p, v); }
    ORLIX_INLINE Vector All(Pixel p) { return _mm256_set1_ps(p); }
    ORLIX_INLINE Vector Min(const Vector& a, const Vector& b) { return _mm256_min_ps(a, b); }
    ORLIX_INLINE Vector Max(const Vector& a, const Vector& b) { return _mm256_max_ps(a, b); }
    // The quiet NaN where p is NaN. Zeros lose their sign.
    ORLIX_INLINE Vector Nearer(const Vector& p, const Vector& low, const Vector& high) {
        const Vector up = _mm256_cmp_ps(_mm256_sub_ps(p, low), _mm256_sub_ps(high, p), _CMP_GE_OQ);
        const Vector nearer = _mm256_add_ps(_mm256_blendv_ps(low, high, up), _mm256_setzero_ps());
        const Vector nan = _mm256_castsi256_ps(_mm256_set1_epi32(0x7fc00000));
        return _mm256_blendv_ps(nearer, nan, _mm256_cmp_ps(p, p, _CMP_UNORD_Q));
    }
    ORLIX_INLINE Vector Before(const Vector& a, const Vector& b) {
        return _mm256_castsi256_ps(orlix::Before<4>(_mm256_castps_si256(a), _mm256_castps_si256(b)));
    }
    ORLIX_INLINE Vector After(const Vector& b, const Vector& c) {
        return _mm256_castsi256_ps(orlix::After<4>(_mm256_castps_si256(b), _mm256_castps_si256(c)));
    }
};

}  // namespace
}  // namespace orlix

#undef ORLIX_INLINE
