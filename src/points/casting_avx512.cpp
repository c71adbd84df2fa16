#include "vectors/intrinsics_avx512.hpp"

#include "points/casting_kernels.hpp"
#include "vectors/inline.hpp"

namespace orlix {
namespace {

constexpr size_t kLanes = 16;

// All pairs of types go through 32-bit lanes, except those of short integers that have a direct conversion. Integers()
// reads pixels as integers modulo 2^32, truncating floats toward zero first; Write() keeps the low-order bits.
ORLIX_INLINE __m512i Integers(const uint8_t* p) {
    return _mm512_cvtepu8_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
}
ORLIX_INLINE __m512i Integers(const uint16_t* p) {
    return _mm512_cvtepu16_epi32(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)));
}
ORLIX_INLINE __m512i Integers(const uint32_t* p) { return _mm512_loadu_si512(p); }
ORLIX_INLINE __m512i Integers(const float* p) {
    const __m512i converted = _mm512_cvttps_epi32(_mm512_loadu_ps(p));
    // -2^31 stands for every value that does not fit 32 bits: rare, and left to the definition.
    if (_mm512_cmpeq_epi32_mask(converted, _mm512_set1_epi32(static_cast<int>(0x80000000u))) == 0) return converted;
    uint32_t bits[kLanes];
    Cast_scalar(bits, p, kLanes);
    return Integers(bits);
}

ORLIX_INLINE void Write(uint8_t* p, const __m512i& v) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), _mm512_cvtepi32_epi8(v));
}
ORLIX_INLINE void Write(uint16_t* p, const __m512i& v) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), _mm512_cvtepi32_epi16(v));
}
ORLIX_INLINE void Write(uint32_t* p, const __m512i& v) { _mm512_storeu_si512(p, v); }

template <class From>
ORLIX_INLINE __m512 Floats(const From* p) {
    return _mm512_cvtepu32_ps(Integers(p));
}
ORLIX_INLINE __m512 Floats(const float* p) { return _mm512_loadu_ps(p); }

template <class To, class From>
void Cast(To* to, const From* from, size_t n) {
    size_t i = 0;
    for (; i + kLanes <= n; i += kLanes) Write(to + i, Integers(from + i));
    Cast_scalar(to + i, from + i, n - i);
}
template <class From>
void Cast(float* to, const From* from, size_t n) {
    size_t i = 0;
    for (; i + kLanes <= n; i += kLanes) _mm512_storeu_ps(to + i, Floats(from + i));
    Cast_scalar(to + i, from + i, n - i);
}
void Cast(uint16_t* to, const uint8_t* from, size_t n) {
    size_t i = 0;
    for (; i + 32 <= n; i += 32)
        _mm512_storeu_si512(to + i,
                            _mm512_cvtepu8_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(from + i))));
    Cast_scalar(to + i, from + i, n - i);
}
void Cast(uint8_t* to, const uint16_t* from, size_t n) {
    size_t i = 0;
    // Every second byte of two vectors.
    uint8_t order[64];
    for (int k = 0; k < 64; ++k) order[k] = static_cast<uint8_t>(2 * k);
    const __m512i even = _mm512_loadu_si512(order);
    for (; i + 64 <= n; i += 64)
        _mm512_storeu_si512(
            to + i, _mm512_permutex2var_epi8(_mm512_loadu_si512(from + i), even, _mm512_loadu_si512(from + i + 32)));
    Cast_scalar(to + i, from + i, n - i);
}

template <class To, class From>
void Plus(To* to, const From* from, size_t n) {
    size_t i = 0;
    for (; i + kLanes <= n; i += kLanes) Write(to + i, _mm512_add_epi32(Integers(to + i), Integers(from + i)));
    Plus_scalar(to + i, from + i, n - i);
}
template <class From>
void Plus(float* to, const From* from, size_t n) {
    size_t i = 0;
    for (; i + kLanes <= n; i += kLanes)
        _mm512_storeu_ps(to + i, _mm512_add_ps(_mm512_loadu_ps(to + i), Floats(from + i)));
    Plus_scalar(to + i, from + i, n - i);
}

template <class T>
struct SumLanes;
template <>
struct SumLanes<uint8_t> {
    static __m512i Add(const __m512i& a, const __m512i& b) { return _mm512_add_epi8(a, b); }
    static __m512i Load(uint64_t mask, const uint8_t* p) { return _mm512_maskz_loadu_epi8(mask, p); }
    static void Store(uint64_t mask, uint8_t* p, const __m512i& v) { _mm512_mask_storeu_epi8(p, mask, v); }
};
template <>
struct SumLanes<uint16_t> {
    static __m512i Add(const __m512i& a, const __m512i& b) { return _mm512_add_epi16(a, b); }
    static __m512i Load(uint64_t mask, const uint16_t* p) {
        return _mm512_maskz_loadu_epi16(static_cast<__mmask32>(mask), p);
    }
    static void Store(uint64_t mask, uint16_t* p, const __m512i& v) {
        _mm512_mask_storeu_epi16(p, static_cast<__mmask32>(mask), v);
    }
};
template <class T>
ORLIX_INLINE void PlusSame(T* to, const T* from, size_t n) {
    using Lanes = SumLanes<T>;
    const auto some = [](T* t, const T* f, uint64_t mask) {
        Lanes::Store(mask, t, Lanes::Add(Lanes::Load(mask, t), Lanes::Load(mask, f)));
    };
    const Head<T> head(to, n);
    if (head.pixels > 0) {
        const auto f = reinterpret_cast<uintptr_t>(from) - head.firstLane * sizeof(T);
        some(head.vector, reinterpret_cast<const T*>(f), head.mask());
    }
    size_t i = head.pixels;
    for (; i + 64 / sizeof(T) <= n; i += 64 / sizeof(T))
        _mm512_storeu_si512(to + i, Lanes::Add(_mm512_loadu_si512(to + i), _mm512_loadu_si512(from + i)));
    if (i < n) some(to + i, from + i, (uint64_t{1} << (n - i)) - 1);
}
void Plus(uint8_t* to, const uint8_t* from, size_t n) { PlusSame(to, from, n); }
void Plus(uint16_t* to, const uint16_t* from, size_t n) { PlusSame(to, from, n); }

}  // namespace

template <class To, class From>
void Cast_avx512(To* to, const From* from, size_t n) {
    Cast(to, from, n);
}
template <class To, class From>
void Plus_avx512(To* to, const From* from, size_t n) {
    Plus(to, from, n);
}

#define ORLIX_PAIR(To, From)                       \
    template Kernel<CastFn<To, From>> Cast_avx512; \
    template Kernel<CastFn<To, From>> Plus_avx512;
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
