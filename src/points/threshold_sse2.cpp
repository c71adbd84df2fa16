#include <emmintrin.h>

#include <limits>

#include "points/threshold_kernels.hpp"

namespace orlix {
namespace {

// 0xff for each of 16 pixels inside, in order. Integers, with lo <= hi: inside, p - lo modulo the type's range is at
// most hi - lo.
struct Inside {
    template <class T>
    static __m128i Load(const T* p) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    }
    static __m128i Of(const uint8_t* pixels, uint8_t lo, uint8_t hi) {
        const __m128i d = _mm_sub_epi8(Load(pixels), _mm_set1_epi8(static_cast<char>(lo)));
        return _mm_cmpeq_epi8(_mm_min_epu8(d, _mm_set1_epi8(static_cast<char>(hi - lo))), d);
    }
    static __m128i Of(const uint16_t* pixels, uint16_t lo, uint16_t hi) {
        const auto eight = [&](const uint16_t* at) {
            const __m128i d = _mm_sub_epi16(Load(at), _mm_set1_epi16(static_cast<short>(lo)));
            return _mm_cmpeq_epi16(_mm_subs_epu16(d, _mm_set1_epi16(static_cast<short>(hi - lo))), _mm_setzero_si128());
        };
        return _mm_packs_epi16(eight(pixels), eight(pixels + 8));
    }
    template <class Four>
    static __m128i Packed(const Four& four) {
        return _mm_packs_epi16(_mm_packs_epi32(four(0), four(4)), _mm_packs_epi32(four(8), four(12)));
    }
    static __m128i Of(const uint32_t* pixels, uint32_t lo, uint32_t hi) {
        const __m128i sign = _mm_set1_epi32(static_cast<int>(0x80000000u));
        const __m128i low = _mm_set1_epi32(static_cast<int>(lo ^ 0x80000000u));
        const __m128i high = _mm_set1_epi32(static_cast<int>(hi ^ 0x80000000u));
        const __m128i outside = Packed([&](size_t first) {
            const __m128i p = _mm_xor_si128(Load(pixels + first), sign);
            return _mm_or_si128(_mm_cmpgt_epi32(low, p), _mm_cmpgt_epi32(p, high));
        });
        return _mm_cmpeq_epi8(outside, _mm_setzero_si128());
    }
};

uint64_t WithReversedBytes(uint64_t bits) {
    bits = (bits & 0x5555555555555555) << 1 | (bits >> 1 & 0x5555555555555555);
    bits = (bits & 0x3333333333333333) << 2 | (bits >> 2 & 0x3333333333333333);
    return (bits & 0x0f0f0f0f0f0f0f0f) << 4 | (bits >> 4 & 0x0f0f0f0f0f0f0f0f);
}

// mask(first) gives 0xff for each set pixel among the 16 from first on.
template <class Mask>
uint64_t BitsOf(const Mask& mask) {
    uint64_t word = 0;
    for (unsigned part = 0; part < 4; ++part)
        word |= static_cast<uint64_t>(_mm_movemask_epi8(mask(16 * part))) << 16 * part;
    return WithReversedBytes(word);
}

// The definition handles the pixels before the first whole byte of bits. The rest goes in blocks of 64, the last of
// which is read through a buffer. bitsOf(pixels) gives the bits of a block, the first pixel in the most significant bit
// of its byte.
template <class T, class BitsOf>
void SetBits(const T* pixels, size_t n, uint8_t* bits, unsigned firstBit, T lo, T hi, bool inside,
             const BitsOf& bitsOf) {
    if (firstBit > 0) {
        const size_t head = n < 8 - firstBit ? n : 8 - firstBit;
        Threshold_scalar(pixels, head, bits, firstBit, lo, hi, inside);
        pixels += head;
        n -= head;
        ++bits;
    }
    size_t i = 0;
    for (; i + 64 <= n; i += 64) {
        uint64_t old;
        __builtin_memcpy(&old, bits + i / 8, 8);
        const uint64_t word = old | bitsOf(pixels + i);
        __builtin_memcpy(bits + i / 8, &word, 8);
    }
    if (i == n) return;
    T rest[64] = {};
    __builtin_memcpy(rest, pixels + i, (n - i) * sizeof(T));
    const uint64_t word = bitsOf(rest);
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
        hi = std::numeric_limits<T>::max();
        inside = !inside;
    }
    const uint64_t flip = inside ? 0 : ~uint64_t{0};
    SetBits(pixels, n, bits, firstBit, lo, hi, inside, [&](const T* block) {
        return BitsOf([&](size_t first) { return Inside::Of(block + first, lo, hi); }) ^ flip;
    });
}

}  // namespace

void Threshold_sse2(const uint8_t* pixels, size_t n, uint8_t* bits, unsigned firstBit, uint8_t lo, uint8_t hi,
                    bool inside) {
    Integers(pixels, n, bits, firstBit, lo, hi, inside);
}
void Threshold_sse2(const uint16_t* pixels, size_t n, uint8_t* bits, unsigned firstBit, uint16_t lo, uint16_t hi,
                    bool inside) {
    Integers(pixels, n, bits, firstBit, lo, hi, inside);
}
void Threshold_sse2(const uint32_t* pixels, size_t n, uint8_t* bits, unsigned firstBit, uint32_t lo, uint32_t hi,
                    bool inside) {
    Integers(pixels, n, bits, firstBit, lo, hi, inside);
}

void Threshold_sse2(const float* pixels, size_t n, uint8_t* bits, unsigned firstBit, float lo, float hi, bool inside) {
    const __m128 low = _mm_set1_ps(lo), high = _mm_set1_ps(hi);
    // Comparisons with NaN fail, so outside is not the complement of inside.
    SetBits(pixels, n, bits, firstBit, lo, hi, inside, [&](const float* block) {
        return BitsOf([&](size_t first) {
            return Inside::Packed([&](size_t four) {
                const __m128 p = _mm_loadu_ps(block + first + four);
                return _mm_castps_si128(inside ? _mm_and_ps(_mm_cmpge_ps(p, low), _mm_cmple_ps(p, high))
                                               : _mm_or_ps(_mm_cmplt_ps(p, low), _mm_cmpgt_ps(p, high)));
            });
        });
    });
}

}  // namespace orlix
