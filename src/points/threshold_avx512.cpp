#include "vectors/intrinsics_avx512.hpp"

#include "points/threshold_kernels.hpp"
#include "vectors/inline.hpp"

namespace orlix {
namespace {

// Masks of the accessible pixels of a block of 64, bit i for pixel i. All: a constant that needs no masked loads.
struct All {};

ORLIX_INLINE __m512i Load8(All, const uint8_t* p) { return _mm512_loadu_si512(p); }
ORLIX_INLINE __m512i Load8(uint64_t there, const uint8_t* p) { return _mm512_maskz_loadu_epi8(there, p); }
ORLIX_INLINE __m512i Load16(All, const uint16_t* p, int first) { return _mm512_loadu_si512(p + first); }
ORLIX_INLINE __m512i Load16(uint64_t there, const uint16_t* p, int first) {
    return _mm512_maskz_loadu_epi16(static_cast<__mmask32>(there >> first), p + first);
}
ORLIX_INLINE __m512i Load32(All, const void* p, int first) {
    return _mm512_loadu_si512(static_cast<const uint32_t*>(p) + first);
}
ORLIX_INLINE __m512i Load32(uint64_t there, const void* p, int first) {
    return _mm512_maskz_loadu_epi32(static_cast<__mmask16>(there >> first), static_cast<const uint32_t*>(p) + first);
}

// Reverses the bits of each byte: multiplication with the mirrored unit matrix.
ORLIX_INLINE uint64_t WithReversedBytes(uint64_t bits) {
    const __m128i mirror = _mm_set1_epi64x(static_cast<long long>(0x8040201008040201));
    __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(&bits));
    bytes = _mm_gf2p8affine_epi64_epi8(bytes, mirror, 0);
    uint64_t reversed;
    _mm_storel_epi64(reinterpret_cast<__m128i*>(&reversed), bytes);
    return reversed;
}

// The bits of a block of 64 pixels that are inside or outside the bounds, as requested; NaN is neither. The first pixel
// of each eight is in the most significant bit of its byte.
template <class There>
ORLIX_INLINE uint64_t Set(There there, const uint8_t* pixels, uint8_t lo, uint8_t hi, bool inside) {
    const __m512i reverse =
        _mm512_set4_epi64(0x08090a0b0c0d0e0f, 0x0001020304050607, 0x08090a0b0c0d0e0f, 0x0001020304050607);
    const __m512i p = _mm512_shuffle_epi8(Load8(there, pixels), reverse);
    const __mmask64 enough = _mm512_cmpge_epu8_mask(p, _mm512_set1_epi8(static_cast<char>(lo)));
    const uint64_t bits = _mm512_mask_cmple_epu8_mask(enough, p, _mm512_set1_epi8(static_cast<char>(hi)));
    return inside ? bits : ~bits;
}

template <class There>
ORLIX_INLINE uint64_t Set(There there, const uint16_t* pixels, uint16_t lo, uint16_t hi, bool inside) {
    const __m512i reverse =
        _mm512_set4_epi64(0x0100030205040706, 0x09080b0a0d0c0f0e, 0x0100030205040706, 0x09080b0a0d0c0f0e);
    const auto half = [&](int first) -> uint64_t {
        const __m512i p = _mm512_shuffle_epi8(Load16(there, pixels, first), reverse);
        const __mmask32 enough = _mm512_cmpge_epu16_mask(p, _mm512_set1_epi16(static_cast<short>(lo)));
        return _mm512_mask_cmple_epu16_mask(enough, p, _mm512_set1_epi16(static_cast<short>(hi)));
    };
    const uint64_t bits = half(0) | half(32) << 32;
    return inside ? bits : ~bits;
}

template <class Sixteen>
ORLIX_INLINE uint64_t Joined(const Sixteen& sixteen) {
    return WithReversedBytes(static_cast<uint64_t>(sixteen(0)) | static_cast<uint64_t>(sixteen(16)) << 16 |
                             static_cast<uint64_t>(sixteen(32)) << 32 | static_cast<uint64_t>(sixteen(48)) << 48);
}

template <class There>
ORLIX_INLINE uint64_t Set(There there, const uint32_t* pixels, uint32_t lo, uint32_t hi, bool inside) {
    const __m512i low = _mm512_set1_epi32(static_cast<int>(lo)), high = _mm512_set1_epi32(static_cast<int>(hi));
    const uint64_t bits = Joined([&](int first) -> __mmask16 {
        const __m512i p = Load32(there, pixels, first);
        return _mm512_mask_cmple_epu32_mask(_mm512_cmpge_epu32_mask(p, low), p, high);
    });
    return inside ? bits : ~bits;
}

template <class There>
ORLIX_INLINE uint64_t Set(There there, const float* pixels, float lo, float hi, bool inside) {
    const __m512 low = _mm512_set1_ps(lo), high = _mm512_set1_ps(hi);
    return Joined([&](int first) -> __mmask16 {
        const __m512 p = _mm512_castsi512_ps(Load32(there, pixels, first));
        if (inside) return _mm512_mask_cmp_ps_mask(_mm512_cmp_ps_mask(p, low, _CMP_GE_OQ), p, high, _CMP_LE_OQ);
        return _kor_mask16(_mm512_cmp_ps_mask(p, low, _CMP_LT_OQ), _mm512_cmp_ps_mask(p, high, _CMP_GT_OQ));
    });
}

// Blocks of 64 pixels. The first block starts before the run, at a whole byte of bits and, if possible, at a cache line
// of pixels. Pixels outside the run are not read; bytes without a bit of the run are neither read nor written.
template <class T>
ORLIX_INLINE void Threshold(const T* pixels, size_t n, uint8_t* bits, unsigned firstBit, T lo, T hi, bool inside) {
    if (n == 0) return;
    const auto address = reinterpret_cast<uintptr_t>(pixels) - firstBit * sizeof(T);
    const size_t past = address % 64 / sizeof(T);
    size_t before = firstBit;
    if (past % 8 == 0) before += past;
    const auto* const start = reinterpret_cast<const T*>(reinterpret_cast<uintptr_t>(pixels) - before * sizeof(T));
    auto* const word = reinterpret_cast<uint8_t*>(reinterpret_cast<uintptr_t>(bits) - before / 8);
    const size_t end = before + n;

    // Some pixels of a block, at least one. The first block's bytes use the upper half of a vector, the last block's
    // the lower, because a masked store delays subsequent loads from anywhere in its 16 bytes.
    const auto partial = [&](size_t block, uint64_t there, unsigned half) {
        const uint64_t set = Set(there, start + block, lo, hi, inside) & WithReversedBytes(there);
        const int firstByte = __builtin_ctzll(there) / 8, lastByte = 7 - __builtin_clzll(there) / 8;
        const auto bytes = static_cast<__mmask16>(((2u << lastByte) - (1u << firstByte)) << half);
        auto* const at = reinterpret_cast<uint8_t*>(reinterpret_cast<uintptr_t>(word) + block / 8 - half);
        const __m128i added = _mm_set1_epi64x(static_cast<long long>(set));
        _mm_mask_storeu_epi8(at, bytes, _mm_or_si128(_mm_maskz_loadu_epi8(bytes, at), added));
    };
    const auto upTo = [](size_t lanes) { return lanes < 64 ? (uint64_t{1} << lanes) - 1 : ~uint64_t{0}; };

    size_t block = 0;
    if (before > 0) {
        partial(0, upTo(end) & ~upTo(before), 8);
        block = 64;
    }
    for (; block + 64 <= end; block += 64) {
        uint64_t old;
        __builtin_memcpy(&old, word + block / 8, 8);
        old |= Set(All(), start + block, lo, hi, inside);
        __builtin_memcpy(word + block / 8, &old, 8);
    }
    if (block < end) partial(block, upTo(end - block), 0);
}

}  // namespace

void Threshold_avx512(const uint8_t* pixels, size_t n, uint8_t* bits, unsigned firstBit, uint8_t lo, uint8_t hi,
                      bool inside) {
    Threshold(pixels, n, bits, firstBit, lo, hi, inside);
}
void Threshold_avx512(const uint16_t* pixels, size_t n, uint8_t* bits, unsigned firstBit, uint16_t lo, uint16_t hi,
                      bool inside) {
    Threshold(pixels, n, bits, firstBit, lo, hi, inside);
}
void Threshold_avx512(const uint32_t* pixels, size_t n, uint8_t* bits, unsigned firstBit, uint32_t lo, uint32_t hi,
                      bool inside) {
    Threshold(pixels, n, bits, firstBit, lo, hi, inside);
}
void Threshold_avx512(const float* pixels, size_t n, uint8_t* bits, unsigned firstBit, float lo, float hi,
                      bool inside) {
    Threshold(pixels, n, bits, firstBit, lo, hi, inside);
}

}  // namespace orlix
