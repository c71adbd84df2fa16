// Vectors of floats with AVX-512, see floats.hpp. Only for files of this suffix.
#pragma once

#include "vectors/floats.hpp"
#include "vectors/intrinsics_avx512.hpp"

namespace orlix {
namespace {

struct WideFloats {
    using Vector = __m512;
    static constexpr size_t kLanes = 16;
    ORLIX_INLINE static Vector Load(const uint8_t* p) {
        return _mm512_cvtepi32_ps(_mm512_cvtepu8_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))));
    }
    ORLIX_INLINE static Vector Load(const uint16_t* p) {
        return _mm512_cvtepi32_ps(_mm512_cvtepu16_epi32(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p))));
    }
    ORLIX_INLINE static Vector Load(const float* p) { return _mm512_loadu_ps(p); }
    ORLIX_INLINE static void Store(float* p, const Vector& v) { _mm512_storeu_ps(p, v); }
    ORLIX_INLINE static Vector All(float f) { return _mm512_set1_ps(f); }
    ORLIX_INLINE static Vector Counting() {
        return _mm512_set_ps(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0);
    }
    ORLIX_INLINE static Vector Magnitude(const Vector& v) { return _mm512_abs_ps(v); }
    ORLIX_INLINE static Vector Smaller(const Vector& a, const Vector& b) { return _mm512_min_ps(a, b); }
};

}  // namespace
}  // namespace orlix
