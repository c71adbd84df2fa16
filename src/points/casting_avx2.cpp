#include <immintrin.h>

#include "points/casting_kernels.hpp"
#include "vectors/inline.hpp"

namespace orlix {
namespace {

constexpr size_t kLanes = 8;

// All pairs of types go through 32-bit lanes, except those of short integers that have a direct conversion. Integers()
// reads pixels as integers modulo 2^32, truncating floats toward zero first; Write() keeps the low-order bits.
ORLIX_INLINE __m256i Integers(const uint8_t* p) {
    return _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
}
ORLIX_INLINE __m256i Integers(const uint16_t* p) {
    return _mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
}
ORLIX_INLINE __m256i Integers(const uint32_t* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }
ORLIX_INLINE __m256i Integers(const float* p) {
    const __m256i converted = _mm256_cvttps_epi32(_mm256_loadu_ps(p));
    // -2^31 stands for every value that does not fit 32 bits: rare, and left to the definition.
    const __m256i misfit = _mm256_cmpeq_epi32(converted, _mm256_set1_epi32(static_cast<int>(0x80000000u)));
    if (_mm256_testz_si256(misfit, misfit)) return converted;
    uint32_t bits[kLanes];
    Cast_scalar(bits, p, kLanes);
    return Integers(bits);
}

ORLIX_INLINE void Write(uint8_t* p, const __m256i& v) {
    const __m256i low = _mm256_and_si256(v, _mm256_set1_epi32(0xff));
    const __m128i words = _mm_packus_epi32(_mm256_castsi256_si128(low), _mm256_extracti128_si256(low, 1));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(p), _mm_packus_epi16(words, words));
}
ORLIX_INLINE void Write(uint16_t* p, const __m256i& v) {
    const __m256i low = _mm256_and_si256(v, _mm256_set1_epi32(0xffff));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p),
                     _mm_packus_epi32(_mm256_castsi256_si128(low), _mm256_extracti128_si256(low, 1)));
}
ORLIX_INLINE void Write(uint32_t* p, const __m256i& v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }

ORLIX_INLINE __m256 Floats(const uint8_t* p) { return _mm256_cvtepi32_ps(Integers(p)); }
ORLIX_INLINE __m256 Floats(const uint16_t* p) { return _mm256_cvtepi32_ps(Integers(p)); }
// The instructions convert signed integers only. Both halves are exact; their sum is rounded once.
ORLIX_INLINE __m256 Floats(const uint32_t* p) {
    const __m256i v = Integers(p);
    const __m256 low = _mm256_cvtepi32_ps(_mm256_and_si256(v, _mm256_set1_epi32(0xffff)));
    const __m256 high = _mm256_cvtepi32_ps(_mm256_srli_epi32(v, 16));
    return _mm256_add_ps(_mm256_mul_ps(high, _mm256_set1_ps(65536.0f)), low);
}
ORLIX_INLINE __m256 Floats(const float* p) { return _mm256_loadu_ps(p); }

template <class To, class From>
void Cast(To* to, const From* from, size_t n) {
    size_t i = 0;
    for (; i + kLanes <= n; i += kLanes) Write(to + i, Integers(from + i));
    Cast_scalar(to + i, from + i, n - i);
}
template <class From>
void Cast(float* to, const From* from, size_t n) {
    size_t i = 0;
    for (; i + kLanes <= n; i += kLanes) _mm256_storeu_ps(to + i, Floats(from + i));
    Cast_scalar(to + i, from + i, n - i);
}
void Cast(uint16_t* to, const uint8_t* from, size_t n) {
    size_t i = 0;
    for (; i + 16 <= n; i += 16)
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(to + i),
                            _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from + i))));
    Cast_scalar(to + i, from + i, n - i);
}
void Cast(uint8_t* to, const uint16_t* from, size_t n) {
    size_t i = 0;
    const __m256i low = _mm256_set1_epi16(0xff);
    for (; i + 32 <= n; i += 32) {
        const __m256i* const at = reinterpret_cast<const __m256i*>(from + i);
        const __m256i packed = _mm256_packus_epi16(_mm256_and_si256(_mm256_loadu_si256(at), low),
                                                   _mm256_and_si256(_mm256_loadu_si256(at + 1), low));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(to + i), _mm256_permute4x64_epi64(packed, 0xd8));
    }
    Cast_scalar(to + i, from + i, n - i);
}

template <class To, class From>
void Plus(To* to, const From* from, size_t n) {
    size_t i = 0;
    for (; i + kLanes <= n; i += kLanes) Write(to + i, _mm256_add_epi32(Integers(to + i), Integers(from + i)));
    Plus_scalar(to + i, from + i, n - i);
}
template <class From>
void Plus(float* to, const From* from, size_t n) {
    size_t i = 0;
    for (; i + kLanes <= n; i += kLanes)
        _mm256_storeu_ps(to + i, _mm256_add_ps(_mm256_loadu_ps(to + i), Floats(from + i)));
    Plus_scalar(to + i, from + i, n - i);
}
void Plus(uint8_t* to, const uint8_t* from, size_t n) {
    size_t i = 0;
    for (; i + 32 <= n; i += 32) {
        __m256i* const at = reinterpret_cast<__m256i*>(to + i);
        const __m256i other = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from + i));
        _mm256_storeu_si256(at, _mm256_add_epi8(_mm256_loadu_si256(at), other));
    }
    Plus_scalar(to + i, from + i, n - i);
}
void Plus(uint16_t* to, const uint16_t* from, size_t n) {
    size_t i = 0;
    for (; i + 16 <= n; i += 16) {
        __m256i* const at = reinterpret_cast<__m256i*>(to + i);
        const __m256i other = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from + i));
        _mm256_storeu_si256(at, _mm256_add_epi16(_mm256_loadu_si256(at), other));
    }
    Plus_scalar(to + i, from + i, n - i);
}

}  // namespace

template <class To, class From>
void Cast_avx2(To* to, const From* from, size_t n) {
    Cast(to, from, n);
}
template <class To, class From>
void Plus_avx2(To* to, const From* from, size_t n) {
    Plus(to, from, n);
}

#define ORLIX_PAIR(To, From)                     \
    template Kernel<CastFn<To, From>> Cast_avx2; \
    template Kernel<CastFn<To, From>> Plus_avx2;
#define ORLIX_PAIRS(To)      \
    ORLIX_PAIR(To, uint8_t)  \
    ORLIX_PAIR(To, uint16_t) \
    ORLIX_PAIR(To, uint32_t) \
    ORLIX_PAIR(To, float)
ORLIX_PAIRS(uint8_t)
ORLIX_PAIRS(uint16_t)
ORLIX_PAIRS(uint32_t)
ORLIX_PAIRS(float)
#undef ORLIX_PAIRS
#undef ORLIX_PAIR

}  // namespace orlix
