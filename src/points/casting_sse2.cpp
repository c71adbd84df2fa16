#include <emmintrin.h>

#include "points/casting_kernels.hpp"

namespace orlix {
namespace {

// Sixteen bytes of pixels made of floats, truncated toward zero, of which the low-order bits are kept.
__m128i Truncated(const float* p) { return _mm_cvttps_epi32(_mm_loadu_ps(p)); }
__m128i Packed(uint8_t, const __m128i (&v)[4]) {
    const __m128i low = _mm_set1_epi32(0xff);
    const __m128i words0 = _mm_packs_epi32(_mm_and_si128(v[0], low), _mm_and_si128(v[1], low));
    const __m128i words1 = _mm_packs_epi32(_mm_and_si128(v[2], low), _mm_and_si128(v[3], low));
    return _mm_packus_epi16(words0, words1);
}
__m128i Packed(uint16_t, const __m128i (&v)[2]) {
    const auto low = [](__m128i a) { return _mm_srai_epi32(_mm_slli_epi32(a, 16), 16); };
    return _mm_packs_epi32(low(v[0]), low(v[1]));
}
__m128i Packed(uint32_t, const __m128i (&v)[1]) { return v[0]; }

template <class To>
__m128i Pixels(const float* from) {
    __m128i v[sizeof(float) / sizeof(To)];
    // -2^31 stands for every value that does not fit 32 bits: rare, and left to the definition.
    const __m128i none = _mm_set1_epi32(INT32_MIN);
    __m128i misfits = _mm_setzero_si128();
    for (size_t k = 0; k < std::size(v); ++k) {
        v[k] = Truncated(from + 4 * k);
        misfits = _mm_or_si128(misfits, _mm_cmpeq_epi32(v[k], none));
    }
    if (_mm_movemask_epi8(misfits) == 0) return Packed(To{}, v);
    To pixels[16 / sizeof(To)];
    Cast_scalar(pixels, from, std::size(pixels));
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels));
}

__m128i Add(uint8_t, __m128i a, __m128i b) { return _mm_add_epi8(a, b); }
__m128i Add(uint16_t, __m128i a, __m128i b) { return _mm_add_epi16(a, b); }
__m128i Add(uint32_t, __m128i a, __m128i b) { return _mm_add_epi32(a, b); }

}  // namespace

template <class To>
void Cast_sse2(To* to, const float* from, size_t n) {
    constexpr size_t kLanes = 16 / sizeof(To);
    size_t i = 0;
    for (; i + kLanes <= n; i += kLanes) _mm_storeu_si128(reinterpret_cast<__m128i*>(to + i), Pixels<To>(from + i));
    Cast_scalar(to + i, from + i, n - i);
}

template <class To>
void Plus_sse2(To* to, const float* from, size_t n) {
    constexpr size_t kLanes = 16 / sizeof(To);
    size_t i = 0;
    for (; i + kLanes <= n; i += kLanes) {
        __m128i* const at = reinterpret_cast<__m128i*>(to + i);
        _mm_storeu_si128(at, Add(To{}, _mm_loadu_si128(at), Pixels<To>(from + i)));
    }
    Plus_scalar(to + i, from + i, n - i);
}
template Kernel<CastFn<uint8_t, float>> Cast_sse2;
template Kernel<CastFn<uint16_t, float>> Cast_sse2;
template Kernel<CastFn<uint32_t, float>> Cast_sse2;
template Kernel<CastFn<uint8_t, float>> Plus_sse2;
template Kernel<CastFn<uint16_t, float>> Plus_sse2;
template Kernel<CastFn<uint32_t, float>> Plus_sse2;

}  // namespace orlix
