#include <immintrin.h>

#include "frames/mosaic_vectors.hpp"

namespace orlix {
namespace {

template <>
struct MosaicLanes<uint8_t> {
    using Pixel = uint8_t;
    using Vector = __m256i;
    static constexpr size_t kPixels = 32;
    ORLIX_INLINE explicit MosaicLanes(uint8_t) {}
    ORLIX_INLINE static Vector Load(const uint8_t* from) {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
    }
    ORLIX_INLINE static void Store(uint8_t* to, const Vector& v) {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), v);
    }
    ORLIX_INLINE static Vector Low(const Vector& v) { return _mm256_unpacklo_epi8(v, _mm256_setzero_si256()); }
    ORLIX_INLINE static Vector High(const Vector& v) { return _mm256_unpackhi_epi8(v, _mm256_setzero_si256()); }
    ORLIX_INLINE static Vector Add(const Vector& a, const Vector& b) { return _mm256_add_epi16(a, b); }
    ORLIX_INLINE static Vector Less(const Vector& a, const Vector& b) { return _mm256_sub_epi16(a, b); }
    template <int kBits>
    ORLIX_INLINE static Vector Up(const Vector& a) {
        return _mm256_slli_epi16(a, kBits);
    }
    ORLIX_INLINE Vector Finish(const Vector& low, const Vector& high) const {
        const Vector half = _mm256_set1_epi16(8);
        return _mm256_packus_epi16(_mm256_srai_epi16(Add(low, half), 4), _mm256_srai_epi16(Add(high, half), 4));
    }
    ORLIX_INLINE static Vector Alternate(bool odd, const Vector& a, const Vector& b) {
        const __m256i swap = _mm256_set1_epi32(odd ? -1 : 0);
        return _mm256_blendv_epi8(b, a, _mm256_xor_si256(_mm256_set1_epi16(0xff), swap));
    }
};

template <>
struct MosaicLanes<uint16_t> {
    using Pixel = uint16_t;
    using Vector = __m256i;
    static constexpr size_t kPixels = 16;
    Vector most;  // as a signed number: minus 2^15
    ORLIX_INLINE explicit MosaicLanes(uint16_t limit) : most(_mm256_set1_epi16(static_cast<short>(limit - 0x8000))) {}
    ORLIX_INLINE static Vector Load(const uint16_t* from) {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
    }
    ORLIX_INLINE static void Store(uint16_t* to, const Vector& v) {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), v);
    }
    ORLIX_INLINE static Vector Low(const Vector& v) { return _mm256_unpacklo_epi16(v, _mm256_setzero_si256()); }
    ORLIX_INLINE static Vector High(const Vector& v) { return _mm256_unpackhi_epi16(v, _mm256_setzero_si256()); }
    ORLIX_INLINE static Vector Add(const Vector& a, const Vector& b) { return _mm256_add_epi32(a, b); }
    ORLIX_INLINE static Vector Less(const Vector& a, const Vector& b) { return _mm256_sub_epi32(a, b); }
    template <int kBits>
    ORLIX_INLINE static Vector Up(const Vector& a) {
        return _mm256_slli_epi32(a, kBits);
    }
    // Packing saturates signed numbers, so that 2^15 is taken off before and added after.
    ORLIX_INLINE Vector Finish(const Vector& low, const Vector& high) const {
        const Vector shift = _mm256_set1_epi32(8 - 16 * 0x8000);
        const Vector v =
            _mm256_packs_epi32(_mm256_srai_epi32(Add(low, shift), 4), _mm256_srai_epi32(Add(high, shift), 4));
        return _mm256_xor_si256(_mm256_min_epi16(v, most), _mm256_set1_epi16(static_cast<short>(0x8000)));
    }
    ORLIX_INLINE static Vector Alternate(bool odd, const Vector& a, const Vector& b) {
        const __m256i swap = _mm256_set1_epi32(odd ? -1 : 0);
        return _mm256_blendv_epi8(b, a, _mm256_xor_si256(_mm256_set1_epi32(0xffff), swap));
    }
};

}  // namespace

template <class T>
void Mosaic_avx2(const T* const* rows, size_t n, bool ownFirst, T most, T* own, T* green, T* other) {
    CompleteMosaic(rows, n, ownFirst, most, own, green, other);
}
template Kernel<MosaicFn<uint8_t>> Mosaic_avx2;
template Kernel<MosaicFn<uint16_t>> Mosaic_avx2;

}  // namespace orlix
