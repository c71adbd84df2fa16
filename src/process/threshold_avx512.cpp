#include "process/intrinsics_avx512.hpp"

#include "process/threshold_kernels.hpp"

namespace orlix {
namespace {

// Bits of 64 pixels inside, the first pixel of each eight in the most significant bit of its byte.
[[gnu::always_inline]] inline uint64_t Inside(const uint8_t* pixels, uint8_t lo, uint8_t hi) {
    const __m512i reverse =
        _mm512_set4_epi64(0x08090a0b0c0d0e0f, 0x0001020304050607, 0x08090a0b0c0d0e0f, 0x0001020304050607);
    const __m512i p = _mm512_shuffle_epi8(_mm512_loadu_si512(pixels), reverse);
    const __mmask64 enough = _mm512_cmpge_epu8_mask(p, _mm512_set1_epi8(static_cast<char>(lo)));
    return _mm512_mask_cmple_epu8_mask(enough, p, _mm512_set1_epi8(static_cast<char>(hi)));
}

[[gnu::always_inline]] inline uint64_t Inside(const uint16_t* pixels, uint16_t lo, uint16_t hi) {
    const __m512i reverse =
        _mm512_set4_epi64(0x0100030205040706, 0x09080b0a0d0c0f0e, 0x0100030205040706, 0x09080b0a0d0c0f0e);
    const auto half = [&](const uint16_t* at) -> uint64_t {
        const __m512i p = _mm512_shuffle_epi8(_mm512_loadu_si512(at), reverse);
        const __mmask32 enough = _mm512_cmpge_epu16_mask(p, _mm512_set1_epi16(static_cast<short>(lo)));
        return _mm512_mask_cmple_epu16_mask(enough, p, _mm512_set1_epi16(static_cast<short>(hi)));
    };
    return half(pixels) | half(pixels + 32) << 32;
}

// Four comparisons of 16 pixels; the bits of each byte are then reversed by multiplication with the mirrored unit matrix.
template <class Sixteen>
[[gnu::always_inline]] inline uint64_t Joined(const Sixteen& sixteen) {
    const uint64_t bits = static_cast<uint64_t>(sixteen(0)) | static_cast<uint64_t>(sixteen(16)) << 16 |
                          static_cast<uint64_t>(sixteen(32)) << 32 | static_cast<uint64_t>(sixteen(48)) << 48;
    const __m128i mirror = _mm_set1_epi64x(static_cast<long long>(0x8040201008040201));
    __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(&bits));
    bytes = _mm_gf2p8affine_epi64_epi8(bytes, mirror, 0);
    uint64_t reversed;
    _mm_storel_epi64(reinterpret_cast<__m128i*>(&reversed), bytes);
    return reversed;
}

[[gnu::always_inline]] inline uint64_t Inside(const uint32_t* pixels, uint32_t lo, uint32_t hi) {
    const __m512i low = _mm512_set1_epi32(static_cast<int>(lo)), high = _mm512_set1_epi32(static_cast<int>(hi));
    return Joined([&](int first) {
        const __m512i p = _mm512_loadu_si512(pixels + first);
        return _mm512_mask_cmple_epu32_mask(_mm512_cmpge_epu32_mask(p, low), p, high);
    });
}

// mask(i) gives the bits of the 64 pixels from i.
template <class Mask>
[[gnu::always_inline]] inline size_t SetBits(size_t bytes, uint8_t* bits, const Mask& mask) {
    size_t done = 0;
    for (; done + 8 <= bytes; done += 8) {
        uint64_t old;
        __builtin_memcpy(&old, bits + done, 8);
        const uint64_t word = old | mask(8 * done);
        __builtin_memcpy(bits + done, &word, 8);
    }
    return done;
}

template <class T>
void Integers(const T* pixels, size_t bytes, uint8_t* bits, T lo, T hi, bool inside) {
    const uint64_t flip = inside ? 0 : ~uint64_t{0};
    const size_t done = SetBits(bytes, bits, [&](size_t i) { return Inside(pixels + i, lo, hi) ^ flip; });
    Threshold_scalar(pixels + 8 * done, bytes - done, bits + done, lo, hi, inside);
}

}  // namespace

void Threshold_avx512(const uint8_t* pixels, size_t bytes, uint8_t* bits, uint8_t lo, uint8_t hi, bool inside) {
    Integers(pixels, bytes, bits, lo, hi, inside);
}
void Threshold_avx512(const uint16_t* pixels, size_t bytes, uint8_t* bits, uint16_t lo, uint16_t hi, bool inside) {
    Integers(pixels, bytes, bits, lo, hi, inside);
}
void Threshold_avx512(const uint32_t* pixels, size_t bytes, uint8_t* bits, uint32_t lo, uint32_t hi, bool inside) {
    Integers(pixels, bytes, bits, lo, hi, inside);
}

void Threshold_avx512(const float* pixels, size_t bytes, uint8_t* bits, float lo, float hi, bool inside) {
    const __m512 low = _mm512_set1_ps(lo), high = _mm512_set1_ps(hi);
    // Comparisons with NaN fail, so outside is not the complement of inside.
    const size_t done = SetBits(bytes, bits, [&](size_t i) {
        return Joined([&](int first) -> __mmask16 {
            const __m512 p = _mm512_loadu_ps(pixels + i + first);
            if (inside) return _mm512_mask_cmp_ps_mask(_mm512_cmp_ps_mask(p, low, _CMP_GE_OQ), p, high, _CMP_LE_OQ);
            return _kor_mask16(_mm512_cmp_ps_mask(p, low, _CMP_LT_OQ), _mm512_cmp_ps_mask(p, high, _CMP_GT_OQ));
        });
    });
    Threshold_scalar(pixels + 8 * done, bytes - done, bits + done, lo, hi, inside);
}

}  // namespace orlix
