// Vectors of floats with SSE2, see floats.hpp. Only for files of this suffix.
#pragma once

#include <emmintrin.h>

#include "vectors/floats.hpp"

namespace orlix {
namespace {

struct WideFloats {
    using Vector = __m128;
    static constexpr size_t kLanes = 4;
    ORLIX_INLINE static Vector FromWords(__m128i four) {  // in the low half
        return _mm_cvtepi32_ps(_mm_unpacklo_epi16(four, _mm_setzero_si128()));
    }
    ORLIX_INLINE static Vector Load(const uint8_t* p) {
        int four;
        __builtin_memcpy(&four, p, 4);
        return FromWords(_mm_unpacklo_epi8(_mm_cvtsi32_si128(four), _mm_setzero_si128()));
    }
    ORLIX_INLINE static Vector Load(const uint16_t* p) {
        return FromWords(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
    }
    ORLIX_INLINE static Vector Load(const float* p) { return _mm_loadu_ps(p); }
    ORLIX_INLINE static void Store(float* p, Vector v) { _mm_storeu_ps(p, v); }
    ORLIX_INLINE static Vector All(float f) { return _mm_set1_ps(f); }
    ORLIX_INLINE static Vector Counting() { return _mm_set_ps(3, 2, 1, 0); }
    ORLIX_INLINE static Vector Magnitude(Vector v) { return _mm_andnot_ps(_mm_set1_ps(-0.0f), v); }
    ORLIX_INLINE static Vector Smaller(Vector a, Vector b) { return _mm_min_ps(a, b); }
};

}  // namespace
}  // namespace orlix
