#include <immintrin.h>

#include "process/threshold_kernels.hpp"

namespace orlix {
namespace {

template <class T>
[[gnu::always_inline]] inline __m256i Load(const T* p) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
}

// Bytes 0xff for 32 pixels inside, each eight of them in reverse order, so that the sign bits come out with the first pixel
// in the most significant bit of each byte. Integers: nothing is left of p - hi and lo - p when they saturate at 0.
[[gnu::always_inline]] inline __m256i Inside(const uint8_t* pixels, uint8_t lo, uint8_t hi) {
    const __m256i reverse =
        _mm256_set_epi64x(0x08090a0b0c0d0e0f, 0x0001020304050607, 0x08090a0b0c0d0e0f, 0x0001020304050607);
    const __m256i p = _mm256_shuffle_epi8(Load(pixels), reverse);
    const __m256i above = _mm256_subs_epu8(p, _mm256_set1_epi8(static_cast<char>(hi)));
    const __m256i below = _mm256_subs_epu8(_mm256_set1_epi8(static_cast<char>(lo)), p);
    return _mm256_cmpeq_epi8(_mm256_or_si256(above, below), _mm256_setzero_si256());
}

[[gnu::always_inline]] inline __m256i Inside(const uint16_t* pixels, uint16_t lo, uint16_t hi) {
    const auto sixteen = [&](const uint16_t* at) {
        const __m256i p = Load(at);
        const __m256i above = _mm256_subs_epu16(p, _mm256_set1_epi16(static_cast<short>(hi)));
        const __m256i below = _mm256_subs_epu16(_mm256_set1_epi16(static_cast<short>(lo)), p);
        return _mm256_cmpeq_epi16(_mm256_or_si256(above, below), _mm256_setzero_si256());
    };
    // Packing leaves eights of pixels in the order 0 2 1 3.
    const __m256i packed = _mm256_packs_epi16(sixteen(pixels), sixteen(pixels + 16));
    const __m256i reverse =
        _mm256_set_epi64x(0x08090a0b0c0d0e0f, 0x0001020304050607, 0x08090a0b0c0d0e0f, 0x0001020304050607);
    return _mm256_shuffle_epi8(_mm256_permute4x64_epi64(packed, 0xd8), reverse);
}

// Four comparisons of eight pixels to 32 bytes in the order above. Packing leaves fours in the order 0 2 4 6, 1 3 5 7.
template <class Eight>
[[gnu::always_inline]] inline __m256i Packed(const Eight& eight) {
    const __m256i packed =
        _mm256_packs_epi16(_mm256_packs_epi32(eight(0), eight(8)), _mm256_packs_epi32(eight(16), eight(24)));
    const __m256i ordered = _mm256_permutevar8x32_epi32(packed, _mm256_set_epi32(3, 7, 2, 6, 1, 5, 0, 4));
    const __m256i reverse = _mm256_set_epi32(0x0c0d0e0f, 0x08090a0b, 0x04050607, 0x00010203, 0x0c0d0e0f, 0x08090a0b,
                                             0x04050607, 0x00010203);
    return _mm256_shuffle_epi8(ordered, reverse);
}

[[gnu::always_inline]] inline __m256i Inside(const uint32_t* pixels, uint32_t lo, uint32_t hi) {
    const __m256i low = _mm256_set1_epi32(static_cast<int>(lo)), high = _mm256_set1_epi32(static_cast<int>(hi));
    return Packed([&](int first) {
        const __m256i p = Load(pixels + first);
        return _mm256_and_si256(_mm256_cmpeq_epi32(_mm256_max_epu32(p, low), p),
                                _mm256_cmpeq_epi32(_mm256_min_epu32(p, high), p));
    });
}

// mask(i) gives 0xff for each set pixel of the 32 from i, in the order above.
template <class Mask>
[[gnu::always_inline]] inline size_t SetBits(size_t bytes, uint8_t* bits, const Mask& mask) {
    size_t done = 0;
    for (; done + 4 <= bytes; done += 4) {
        uint32_t old;
        __builtin_memcpy(&old, bits + done, 4);
        const uint32_t word = old | static_cast<uint32_t>(_mm256_movemask_epi8(mask(8 * done)));
        __builtin_memcpy(bits + done, &word, 4);
    }
    return done;
}

template <class T>
void Integers(const T* pixels, size_t bytes, uint8_t* bits, T lo, T hi, bool inside) {
    const __m256i flip = _mm256_set1_epi8(inside ? 0 : -1);
    const size_t done =
        SetBits(bytes, bits, [&](size_t i) { return _mm256_xor_si256(Inside(pixels + i, lo, hi), flip); });
    Threshold_scalar(pixels + 8 * done, bytes - done, bits + done, lo, hi, inside);
}

}  // namespace

void Threshold_avx2(const uint8_t* pixels, size_t bytes, uint8_t* bits, uint8_t lo, uint8_t hi, bool inside) {
    Integers(pixels, bytes, bits, lo, hi, inside);
}
void Threshold_avx2(const uint16_t* pixels, size_t bytes, uint8_t* bits, uint16_t lo, uint16_t hi, bool inside) {
    Integers(pixels, bytes, bits, lo, hi, inside);
}
void Threshold_avx2(const uint32_t* pixels, size_t bytes, uint8_t* bits, uint32_t lo, uint32_t hi, bool inside) {
    Integers(pixels, bytes, bits, lo, hi, inside);
}

void Threshold_avx2(const float* pixels, size_t bytes, uint8_t* bits, float lo, float hi, bool inside) {
    const __m256 low = _mm256_set1_ps(lo), high = _mm256_set1_ps(hi);
    // Comparisons with NaN fail, so outside is not the complement of inside.
    const size_t done = SetBits(bytes, bits, [&](size_t i) {
        return Packed([&](int first) {
            const __m256 p = _mm256_loadu_ps(pixels + i + first);
            return _mm256_castps_si256(
                inside ? _mm256_and_ps(_mm256_cmp_ps(p, low, _CMP_GE_OQ), _mm256_cmp_ps(p, high, _CMP_LE_OQ))
                       : _mm256_or_ps(_mm256_cmp_ps(p, low, _CMP_LT_OQ), _mm256_cmp_ps(p, high, _CMP_GT_OQ)));
        });
    });
    Threshold_scalar(pixels + 8 * done, bytes - done, bits + done, lo, hi, inside);
}

}  // namespace orlix
