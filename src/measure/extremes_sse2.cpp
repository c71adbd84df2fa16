#include <emmintrin.h>

#include "measure/extremes_kernels.hpp"

namespace orlix {
namespace {

// Unsigned words and double words are compared as signed ones with the top bit changed.
struct Bytes {
    static __m128i Load(const uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
    static __m128i Min(__m128i a, __m128i b) { return _mm_min_epu8(a, b); }
    static __m128i Max(__m128i a, __m128i b) { return _mm_max_epu8(a, b); }
    static void Store(uint8_t* p, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }
};
struct Words {
    static __m128i Sign() { return _mm_set1_epi16(static_cast<short>(0x8000)); }
    static __m128i Load(const uint16_t* p) {
        return _mm_xor_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)), Sign());
    }
    static __m128i Min(__m128i a, __m128i b) { return _mm_min_epi16(a, b); }
    static __m128i Max(__m128i a, __m128i b) { return _mm_max_epi16(a, b); }
    static void Store(uint16_t* p, __m128i v) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(p), _mm_xor_si128(v, Sign()));
    }
};
struct DoubleWords {
    static __m128i Sign() { return _mm_set1_epi32(static_cast<int>(0x80000000u)); }
    static __m128i Load(const uint32_t* p) {
        return _mm_xor_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)), Sign());
    }
    static __m128i Choose(__m128i mask, __m128i yes, __m128i no) {
        return _mm_or_si128(_mm_and_si128(mask, yes), _mm_andnot_si128(mask, no));
    }
    static __m128i Min(__m128i a, __m128i b) { return Choose(_mm_cmpgt_epi32(a, b), b, a); }
    static __m128i Max(__m128i a, __m128i b) { return Choose(_mm_cmpgt_epi32(a, b), a, b); }
    static void Store(uint32_t* p, __m128i v) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(p), _mm_xor_si128(v, Sign()));
    }
};
// minps and maxps return their second operand when one is NaN: a pixel that is NaN changes nothing.
struct Floats {
    static __m128 Load(const float* p) { return _mm_loadu_ps(p); }
    static __m128 Min(__m128 pixels, __m128 sofar) { return _mm_min_ps(pixels, sofar); }
    static __m128 Max(__m128 pixels, __m128 sofar) { return _mm_max_ps(pixels, sofar); }
    static void Store(float* p, __m128 v) { _mm_storeu_ps(p, v); }
};

template <class Lanes, class T>
void Scan(const T* pixels, size_t n, T& min, T& max) {
    constexpr size_t kLanes = 16 / sizeof(T);
    size_t i = 0;
    if (n >= kLanes) {
        T least[kLanes], most[kLanes];
        for (size_t lane = 0; lane < kLanes; ++lane) {
            least[lane] = min;
            most[lane] = max;
        }
        auto low = Lanes::Load(least);
        auto high = Lanes::Load(most);
        for (; i + kLanes <= n; i += kLanes) {
            const auto p = Lanes::Load(pixels + i);
            low = Lanes::Min(p, low);
            high = Lanes::Max(p, high);
        }
        Lanes::Store(least, low);
        Lanes::Store(most, high);
        for (size_t lane = 0; lane < kLanes; ++lane) {
            min = least[lane] < min ? least[lane] : min;
            max = most[lane] > max ? most[lane] : max;
        }
    }
    Extremes_scalar(pixels + i, n - i, min, max);
}

}  // namespace

void Extremes_sse2(const uint8_t* pixels, size_t n, uint8_t& min, uint8_t& max) { Scan<Bytes>(pixels, n, min, max); }
void Extremes_sse2(const uint16_t* pixels, size_t n, uint16_t& min, uint16_t& max) { Scan<Words>(pixels, n, min, max); }
void Extremes_sse2(const uint32_t* pixels, size_t n, uint32_t& min, uint32_t& max) {
    Scan<DoubleWords>(pixels, n, min, max);
}
void Extremes_sse2(const float* pixels, size_t n, float& min, float& max) { Scan<Floats>(pixels, n, min, max); }

}  // namespace orlix
