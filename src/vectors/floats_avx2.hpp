// Vectors of floats with AVX2, see floats.hpp. Only for files of this suffix.
#pragma once

#include <immintrin.h>

#include "vectors/floats.hpp"

namespace orlix {
namespace {

struct WideFloats {
    using Vector = __m256;
    static constexpr size_t kLanes = 8;
    ORLIX_INLINE static Vector Load(const uint8_t* p) {
        return _mm256_cvtepi32_ps(_mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p))));
    }
    ORLIX_INLINE static Vector Load(const uint16_t* p) {
        return _mm256_cvtepi32_ps(_mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))));
    }
    ORLIX_INLINE static Vector Load(const float* p) { return _mm256_loadu_ps(p); }
    ORLIX_INLINE static void Store(float* p, const Vector& v) { _mm256_storeu_ps(p, v); }
    ORLIX_INLINE static Vector All(float f) { return _mm256_set1_ps(f); }
    ORLIX_INLINE static Vector Counting() { return _mm256_set_ps(7, 6, 5, 4, 3, 2, 1, 0); }
    ORLIX_INLINE static Vector Magnitude(const Vector& v) { return _mm256_andnot_ps(_mm256_set1_ps(-0.0f), v); }
    ORLIX_INLINE static Vector Smaller(const Vector& a, const Vector& b) { return _mm256_min_ps(a, b); }
};

}  // namespace
}  // namespace orlix
