#include <emmintrin.h>

#include "frames/mosaic_vectors.hpp"

namespace orlix {
namespace {

template <>
struct MosaicLanes<uint8_t> {
    using Pixel = uint8_t;
    using Vector = __m128i;
    static constexpr size_t kPixels = 16;
    ORLIX_INLINE explicit MosaicLanes(uint8_t) {}
    ORLIX_INLINE static Vector Load(const uint8_t* from) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
    }
    ORLIX_INLINE static void Store(uint8_t* to, const Vector& v) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), v);
    }
    ORLIX_INLINE static Vector Low(const Vector& v) { return _mm_unpacklo_epi8(v, _mm_setzero_si128()); }
    ORLIX_INLINE static Vector High(const Vector& v) { return _mm_unpackhi_epi8(v, _mm_setzero_si128()); }
    ORLIX_INLINE static Vector Add(const Vector& a, const Vector& b) { return _mm_add_epi16(a, b); }
    ORLIX_INLINE static Vector Less(const Vector& a, const Vector& b) { return _mm_sub_epi16(a, b); }
    template <int kBits>
    ORLIX_INLINE static Vector Up(const Vector& a) {
        return _mm_slli_epi16(a, kBits);
    }
    ORLIX_INLINE Vector Finish(const Vector& low, const Vector& high) const {
        const Vector half = _mm_set1_epi16(8);
        return _mm_packus_epi16(_mm_srai_epi16(Add(low, half), 4), _mm_srai_epi16(Add(high, half), 4));
    }
    ORLIX_INLINE static Vector Alternate(bool odd, const Vector& a, const Vector& b) {
        const __m128i swap = _mm_set1_epi32(odd ? -1 : 0);
        const __m128i even = _mm_xor_si128(_mm_set1_epi16(0xff), swap);
        return _mm_or_si128(_mm_and_si128(even, a), _mm_andnot_si128(even, b));
    }
};

template <>
struct MosaicLanes<uint16_t> {
    using Pixel = uint16_t;
    using Vector = __m128i;
    static constexpr size_t kPixels = 8;
    Vector most;  // as a signed number: minus 2^15
    ORLIX_INLINE explicit MosaicLanes(uint16_t limit) : most(_mm_set1_epi16(static_cast<short>(limit - 0x8000))) {}
    ORLIX_INLINE static Vector Load(const uint16_t* from) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
    }
    ORLIX_INLINE static void Store(uint16_t* to, const Vector& v) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), v);
    }
    ORLIX_INLINE static Vector Low(const Vector& v) { return _mm_unpacklo_epi16(v, _mm_setzero_si128()); }
    ORLIX_INLINE static Vector High(const Vector& v) { return _mm_unpackhi_epi16(v, _mm_setzero_si128()); }
    ORLIX_INLINE static Vector Add(const Vector& a, const Vector& b) { return _mm_add_epi32(a, b); }
    ORLIX_INLINE static Vector Less(const Vector& a, const Vector& b) { return _mm_sub_epi32(a, b); }
    template <int kBits>
    ORLIX_INLINE static Vector Up(const Vector& a) {
        return _mm_slli_epi32(a, kBits);
    }
    // Packing saturates signed numbers, so that 2^15 is taken off before and added after.
    ORLIX_INLINE Vector Finish(const Vector& low, const Vector& high) const {
        const Vector shift = _mm_set1_epi32(8 - 16 * 0x8000);
        const Vector v = _mm_packs_epi32(_mm_srai_epi32(Add(low, shift), 4), _mm_srai_epi32(Add(high, shift), 4));
        return _mm_xor_si128(_mm_min_epi16(v, most), _mm_set1_epi16(static_cast<short>(0x8000)));
    }
    ORLIX_INLINE static Vector Alternate(bool odd, const Vector& a, const Vector& b) {
        const __m128i swap = _mm_set1_epi32(odd ? -1 : 0);
        const __m128i even = _mm_xor_si128(_mm_set1_epi32(0xffff), swap);
        return _mm_or_si128(_mm_and_si128(even, a), _mm_andnot_si128(even, b));
    }
};

}  // namespace

template <class T>
void Mosaic_sse2(const T* const* rows, size_t n, bool ownFirst, T most, T* own, T* green, T* other) {
    CompleteMosaic(rows, n, ownFirst, most, own, green, other);
}
template Kernel<MosaicFn<uint8_t>> Mosaic_sse2;
template Kernel<MosaicFn<uint16_t>> Mosaic_sse2;

}  // namespace orlix
