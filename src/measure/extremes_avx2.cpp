#include <immintrin.h>

#include "measure/extremes_kernels.hpp"

namespace orlix {
namespace {

struct Bytes {
    using Vector = __m256i;
    static Vector Load(const uint8_t* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }
    static Vector Min(const Vector& a, const Vector& b) { return _mm256_min_epu8(a, b); }
    static Vector Max(const Vector& a, const Vector& b) { return _mm256_max_epu8(a, b); }
    static void Store(uint8_t* p, const Vector& v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }
};
struct Words {
    using Vector = __m256i;
    static Vector Load(const uint16_t* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }
    static Vector Min(const Vector& a, const Vector& b) { return _mm256_min_epu16(a, b); }
    static Vector Max(const Vector& a, const Vector& b) { return _mm256_max_epu16(a, b); }
    static void Store(uint16_t* p, const Vector& v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }
};
struct DoubleWords {
    using Vector = __m256i;
    static Vector Load(const uint32_t* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }
    static Vector Min(const Vector& a, const Vector& b) { return _mm256_min_epu32(a, b); }
    static Vector Max(const Vector& a, const Vector& b) { return _mm256_max_epu32(a, b); }
    static void Store(uint32_t* p, const Vector& v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }
};
// The minimum and maximum of floats return their second operand when one is NaN: a pixel that is NaN changes nothing.
struct Floats {
    using Vector = __m256;
    static Vector Load(const float* p) { return _mm256_loadu_ps(p); }
    static Vector Min(const Vector& pixels, const Vector& sofar) { return _mm256_min_ps(pixels, sofar); }
    static Vector Max(const Vector& pixels, const Vector& sofar) { return _mm256_max_ps(pixels, sofar); }
    static void Store(float* p, const Vector& v) { _mm256_storeu_ps(p, v); }
};

template <class Lanes, class T>
void Scan(const T* pixels, size_t n, T& min, T& max) {
    constexpr size_t kLanes = 32 / sizeof(T);
    size_t i = 0;
    if (n >= kLanes) {
        T least[kLanes], most[kLanes];
        for (size_t lane = 0; lane < kLanes; ++lane) {
            least[lane] = min;
            most[lane] = max;
        }
        typename Lanes::Vector low = Lanes::Load(least), low2 = low;
        typename Lanes::Vector high = Lanes::Load(most), high2 = high;
        for (; i + 2 * kLanes <= n; i += 2 * kLanes) {
            const typename Lanes::Vector p = Lanes::Load(pixels + i), p2 = Lanes::Load(pixels + i + kLanes);
            low = Lanes::Min(p, low);
            high = Lanes::Max(p, high);
            low2 = Lanes::Min(p2, low2);
            high2 = Lanes::Max(p2, high2);
        }
        Lanes::Store(least, Lanes::Min(low, low2));
        Lanes::Store(most, Lanes::Max(high, high2));
        for (size_t lane = 0; lane < kLanes; ++lane) {
            min = least[lane] < min ? least[lane] : min;
            max = most[lane] > max ? most[lane] : max;
        }
    }
    Extremes_scalar(pixels + i, n - i, min, max);
}

}  // namespace

void Extremes_avx2(const uint8_t* pixels, size_t n, uint8_t& min, uint8_t& max) { Scan<Bytes>(pixels, n, min, max); }
void Extremes_avx2(const uint16_t* pixels, size_t n, uint16_t& min, uint16_t& max) { Scan<Words>(pixels, n, min, max); }
void Extremes_avx2(const uint32_t* pixels, size_t n, uint32_t& min, uint32_t& max) {
    Scan<DoubleWords>(pixels, n, min, max);
}
void Extremes_avx2(const float* pixels, size_t n, float& min, float& max) { Scan<Floats>(pixels, n, min, max); }

}  // namespace orlix
