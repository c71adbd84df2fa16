#include <immintrin.h>

#include "points/threshold_kernels.hpp"
#include "vectors/inline.hpp"

namespace orlix {
namespace {

template <class T>
ORLIX_INLINE __m256i Load(const T* p) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
}

// Bytes of 0xff for those of 32 pixels that are inside. Each group of eight is reversed, so the sign bits put the first
// pixel in the most significant bit of each byte. Integers, with lo <= hi: inside, p - lo modulo the type's range is at
// most hi - lo.
ORLIX_INLINE __m256i Inside(const uint8_t* pixels, uint8_t lo, uint8_t hi) {
    const __m256i reverse =
        _mm256_set_epi64x(0x08090a0b0c0d0e0f, 0x0001020304050607, 0x08090a0b0c0d0e0f, 0x0001020304050607);
    const __m256i d =
        _mm256_sub_epi8(_mm256_shuffle_epi8(Load(pixels), reverse), _mm256_set1_epi8(static_cast<char>(lo)));
    return _mm256_cmpeq_epi8(_mm256_min_epu8(d, _mm256_set1_epi8(static_cast<char>(hi - lo))), d);
}

ORLIX_INLINE __m256i Inside(const uint16_t* pixels, uint16_t lo, uint16_t hi) {
    const auto sixteen = [&](const uint16_t* at) {
        const __m256i d = _mm256_sub_epi16(Load(at), _mm256_set1_epi16(static_cast<short>(lo)));
        return _mm256_cmpeq_epi16(_mm256_min_epu16(d, _mm256_set1_epi16(static_cast<short>(hi - lo))), d);
    };
    // Packing leaves groups of eight pixels in the order 0 2 1 3.
    const __m256i packed = _mm256_packs_epi16(sixteen(pixels), sixteen(pixels + 16));
    const __m256i reverse =
        _mm256_set_epi64x(0x08090a0b0c0d0e0f, 0x0001020304050607, 0x08090a0b0c0d0e0f, 0x0001020304050607);
    return _mm256_shuffle_epi8(_mm256_permute4x64_epi64(packed, 0xd8), reverse);
}

// Packs four comparisons of eight pixels into 32 bytes in the order above. Packing leaves groups of four in the order
// 0 2 4 6, 1 3 5 7.
template <class Eight>
ORLIX_INLINE __m256i Packed(const Eight& eight) {
    const __m256i packed =
        _mm256_packs_epi16(_mm256_packs_epi32(eight(0), eight(8)), _mm256_packs_epi32(eight(16), eight(24)));
    const __m256i ordered = _mm256_permutevar8x32_epi32(packed, _mm256_set_epi32(3, 7, 2, 6, 1, 5, 0, 4));
    const __m256i reverse = _mm256_set_epi32(0x0c0d0e0f, 0x08090a0b, 0x04050607, 0x00010203, 0x0c0d0e0f, 0x08090a0b,
                                             0x04050607, 0x00010203);
    return _mm256_shuffle_epi8(ordered, reverse);
}

ORLIX_INLINE __m256i Inside(const uint32_t* pixels, uint32_t lo, uint32_t hi) {
    const __m256i low = _mm256_set1_epi32(static_cast<int>(lo)), high = _mm256_set1_epi32(static_cast<int>(hi));
    return Packed([&](int first) {
        const __m256i p = Load(pixels + first);
        return _mm256_and_si256(_mm256_cmpeq_epi32(_mm256_max_epu32(p, low), p),
                                _mm256_cmpeq_epi32(_mm256_min_epu32(p, high), p));
    });
}

// The definition handles the pixels before the first whole byte of bits. The rest goes in blocks of 32, the last of
// which is read through a buffer. bitsOf(pixels) gives the bits of a block, the first pixel in the most significant bit
// of its byte.
template <class T, class BitsOf>
ORLIX_INLINE void SetBits(const T* pixels, size_t n, uint8_t* bits, unsigned firstBit, T lo, T hi, bool inside,
                          const BitsOf& bitsOf) {
    if (firstBit > 0) {
        const size_t head = n < 8 - firstBit ? n : 8 - firstBit;
        Threshold_scalar(pixels, head, bits, firstBit, lo, hi, inside);
        pixels += head;
        n -= head;
        ++bits;
    }
    size_t i = 0;
    for (; i + 32 <= n; i += 32) {
        uint32_t old;
        __builtin_memcpy(&old, bits + i / 8, 4);
        const uint32_t word = old | bitsOf(pixels + i);
        __builtin_memcpy(bits + i / 8, &word, 4);
    }
    if (i == n) return;
    T rest[32] = {};
    __builtin_memcpy(rest, pixels + i, (n - i) * sizeof(T));
    const uint32_t word = bitsOf(rest);
    for (size_t k = 0; 8 * k < n - i; ++k) {
        const size_t left = n - i - 8 * k;
        const unsigned valid = left < 8 ? 0xff00u >> left : 0xffu;
        bits[i / 8 + k] = static_cast<uint8_t>(bits[i / 8 + k] | (static_cast<unsigned>(word >> 8 * k) & valid));
    }
}

template <class T>
void Integers(const T* pixels, size_t n, uint8_t* bits, unsigned firstBit, T lo, T hi, bool inside) {
    if (lo > hi) {  // nothing is inside: as much as outside of all values
        lo = 0;
        hi = static_cast<T>(~T{0});
        inside = !inside;
    }
    const uint32_t flip = inside ? 0 : ~uint32_t{0};
    SetBits(pixels, n, bits, firstBit, lo, hi, inside,
            [&](const T* block) { return static_cast<uint32_t>(_mm256_movemask_epi8(Inside(block, lo, hi))) ^ flip; });
}

}  // namespace

void Threshold_avx2(const uint8_t* pixels, size_t n, uint8_t* bits, unsigned firstBit, uint8_t lo, uint8_t hi,
                    bool inside) {
    Integers(pixels, n, bits, firstBit, lo, hi, inside);
}
void Threshold_avx2(const uint16_t* pixels, size_t n, uint8_t* bits, unsigned firstBit, uint16_t lo, uint16_t hi,
                    bool inside) {
    Integers(pixels, n, bits, firstBit, lo, hi, inside);
}
void Threshold_avx2(const uint32_t* pixels, size_t n, uint8_t* bits, unsigned firstBit, uint32_t lo, uint32_t hi,
                    bool inside) {
    Integers(pixels, n, bits, firstBit, lo, hi, inside);
}

void Threshold_avx2(const float* pixels, size_t n, uint8_t* bits, unsigned firstBit, float lo, float hi, bool inside) {
    const __m256 low = _mm256_set1_ps(lo), high = _mm256_set1_ps(hi);
    // Comparisons with NaN fail, so outside is not the complement of inside.
    SetBits(pixels, n, bits, firstBit, lo, hi, inside, [&](const float* block) {
        const __m256i set = Packed([&](int first) {
            const __m256 p = _mm256_loadu_ps(block + first);
            return _mm256_castps_si256(
                inside ? _mm256_and_ps(_mm256_cmp_ps(p, low, _CMP_GE_OQ), _mm256_cmp_ps(p, high, _CMP_LE_OQ))
                       : _mm256_or_ps(_mm256_cmp_ps(p, low, _CMP_LT_OQ), _mm256_cmp_ps(p, high, _CMP_GT_OQ)));
        });
        return static_cast<uint32_t>(_mm256_movemask_epi8(set));
    });
}

}  // namespace orlix
