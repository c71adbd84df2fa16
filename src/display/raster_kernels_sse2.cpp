#include <emmintrin.h>

#include "display/raster_kernels.hpp"
#include "vectors/inline.hpp"

namespace orlix {
namespace {

constexpr size_t kLanes = 16;

ORLIX_INLINE __m128i Load(const uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
ORLIX_INLINE void Store(uint32_t* p, const __m128i& v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }

ORLIX_INLINE void Write(uint32_t* to, const __m128i& red, const __m128i& green, const __m128i& blue) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i low = _mm_unpacklo_epi8(blue, green), high = _mm_unpackhi_epi8(blue, green);
    const __m128i lowRed = _mm_unpacklo_epi8(red, zero), highRed = _mm_unpackhi_epi8(red, zero);
    Store(to, _mm_unpacklo_epi16(low, lowRed));
    Store(to + 4, _mm_unpackhi_epi16(low, lowRed));
    Store(to + 8, _mm_unpacklo_epi16(high, highRed));
    Store(to + 12, _mm_unpackhi_epi16(high, highRed));
}

}  // namespace

void ExpandGrey_sse2(uint32_t* to, const uint8_t* levels, size_t n) {
    size_t i = 0;
    for (; i + kLanes <= n; i += kLanes) {
        const __m128i v = Load(levels + i);
        Write(to + i, v, v, v);
    }
    ExpandGrey_scalar(to + i, levels + i, n - i);
}

void ExpandPlanes_sse2(uint32_t* to, const uint8_t* red, const uint8_t* green, const uint8_t* blue, size_t n) {
    size_t i = 0;
    for (; i + kLanes <= n; i += kLanes) Write(to + i, Load(red + i), Load(green + i), Load(blue + i));
    ExpandPlanes_scalar(to + i, red + i, green + i, blue + i, n - i);
}

void WeighRows_sse2(uint32_t* sums, const uint8_t* a, uint32_t aWeight, const uint8_t* b, uint32_t bWeight, size_t n) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i weights = _mm_set1_epi32(static_cast<int>(bWeight << 16 | aWeight));
    size_t i = 0;
    for (; i + kLanes <= n; i += kLanes) {
        const __m128i low = _mm_unpacklo_epi8(Load(a + i), Load(b + i));
        const __m128i high = _mm_unpackhi_epi8(Load(a + i), Load(b + i));
        const __m128i words[4] = {_mm_unpacklo_epi8(low, zero), _mm_unpackhi_epi8(low, zero),
                                  _mm_unpacklo_epi8(high, zero), _mm_unpackhi_epi8(high, zero)};
        for (size_t k = 0; k < 4; ++k) {
            uint32_t* const at = sums + i + 4 * k;
            Store(at, _mm_add_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(at)),
                                    _mm_madd_epi16(words[k], weights)));
        }
    }
    WeighRows_scalar(sums + i, a + i, aWeight, b + i, bWeight, n - i);
}

}  // namespace orlix
