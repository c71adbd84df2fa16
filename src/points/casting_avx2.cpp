#include <immintrin.h>

#include "points/casting_kernels.hpp"
#include "vectors/inline.hpp"

namespace orlix {
namespace {

constexpr size_t kLanes = 8;

// Integers() reads pixels as integers modulo 2^32, truncating floats toward zero first.
ORLIX_INLINE __m256i Load(const void* p) { return _mm256_loadu_si256(static_cast<const __m256i*>(p)); }
ORLIX_INLINE __m256i Integers(const uint8_t* p) {
    return _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
}
ORLIX_INLINE __m256i Integers(const uint16_t* p) {
    return _mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
}
ORLIX_INLINE __m256i Integers(const uint32_t* p) { return Load(p); }
ORLIX_INLINE __m256i Integers(const float* p) { return _mm256_cvttps_epi32(_mm256_loadu_ps(p)); }

// Packs keep the low-order bits. Packing works in each half separately.
ORLIX_INLINE __m256i Pack(uint8_t, const __m256i (&v)[4]) {
    const __m256i low = _mm256_set1_epi32(0xff);
    const __m256i words0 = _mm256_packus_epi32(_mm256_and_si256(v[0], low), _mm256_and_si256(v[1], low));
    const __m256i words1 = _mm256_packus_epi32(_mm256_and_si256(v[2], low), _mm256_and_si256(v[3], low));
    return _mm256_permutevar8x32_epi32(_mm256_packus_epi16(words0, words1), _mm256_set_epi32(7, 3, 6, 2, 5, 1, 4, 0));
}
ORLIX_INLINE __m256i Pack(uint16_t, const __m256i (&v)[2]) {
    const __m256i low = _mm256_set1_epi32(0xffff);
    return _mm256_permute4x64_epi64(_mm256_packus_epi32(_mm256_and_si256(v[0], low), _mm256_and_si256(v[1], low)),
                                    0xd8);
}
ORLIX_INLINE __m256i Pack(uint32_t, const __m256i (&v)[1]) { return v[0]; }

// A vector of pixels To; the first argument only chooses the type.
template <class To, class From>
ORLIX_INLINE __m256i Pixels(To, const From* from) {
    __m256i v[4 / sizeof(To)];
    // -2^31 stands for every float that does not fit 32 bits: rare, and left to the definition.
    const __m256i none = _mm256_set1_epi32(INT32_MIN);
    __m256i misfits = _mm256_setzero_si256();
    for (size_t k = 0; k < 4 / sizeof(To); ++k) {
        v[k] = Integers(from + 8 * k);
        if constexpr (std::is_same_v<From, float>) misfits = _mm256_or_si256(misfits, _mm256_cmpeq_epi32(v[k], none));
    }
    if constexpr (std::is_same_v<From, float>)
        if (!_mm256_testz_si256(misfits, misfits)) {
            To pixels[32 / sizeof(To)];
            Cast_scalar(pixels, from, 32 / sizeof(To));
            return Load(pixels);
        }
    return Pack(To{}, v);
}
ORLIX_INLINE __m256i Pixels(uint16_t, const uint8_t* from) {
    return _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from)));
}
ORLIX_INLINE __m256i Pixels(uint8_t, const uint16_t* from) {
    const __m256i low = _mm256_set1_epi16(0xff);
    const __m256i packed =
        _mm256_packus_epi16(_mm256_and_si256(Load(from), low), _mm256_and_si256(Load(from + 16), low));
    return _mm256_permute4x64_epi64(packed, 0xd8);
}
ORLIX_INLINE __m256i Pixels(uint8_t, const uint8_t* from) { return Load(from); }
ORLIX_INLINE __m256i Pixels(uint16_t, const uint16_t* from) { return Load(from); }

ORLIX_INLINE __m256i Add(uint8_t, const __m256i& a, const __m256i& b) { return _mm256_add_epi8(a, b); }
ORLIX_INLINE __m256i Add(uint16_t, const __m256i& a, const __m256i& b) { return _mm256_add_epi16(a, b); }
ORLIX_INLINE __m256i Add(uint32_t, const __m256i& a, const __m256i& b) { return _mm256_add_epi32(a, b); }

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
    constexpr size_t kPixels = 32 / sizeof(To);
    size_t i = 0;
    for (; i + kPixels <= n; i += kPixels)
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(to + i), Pixels(To{}, from + i));
    Cast_scalar(to + i, from + i, n - i);
}
template <class From>
void Cast(float* to, const From* from, size_t n) {
    size_t i = 0;
    for (; i + kLanes <= n; i += kLanes) _mm256_storeu_ps(to + i, Floats(from + i));
    Cast_scalar(to + i, from + i, n - i);
}

template <class To, class From>
void Plus(To* to, const From* from, size_t n) {
    constexpr size_t kPixels = 32 / sizeof(To);
    size_t i = 0;
    for (; i + kPixels <= n; i += kPixels)
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(to + i), Add(To{}, Load(to + i), Pixels(To{}, from + i)));
    Plus_scalar(to + i, from + i, n - i);
}
template <class From>
void Plus(float* to, const From* from, size_t n) {
    size_t i = 0;
    for (; i + kLanes <= n; i += kLanes)
        _mm256_storeu_ps(to + i, _mm256_add_ps(_mm256_loadu_ps(to + i), Floats(from + i)));
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
