#include <emmintrin.h>

#include "display/display_level_kernels.hpp"

namespace orlix {
namespace {

struct Line {
    __m128d least, most, zero, scale, half;
    explicit Line(const LevelLine& line)
        : least(_mm_set1_pd(line.least)),
          most(_mm_set1_pd(line.most)),
          zero(_mm_set1_pd(line.zero)),
          scale(_mm_set1_pd(line.scale)),
          half(_mm_set1_pd(line.half)) {}
    __m128d Clamp(__m128d p) const { return _mm_min_pd(_mm_max_pd(p, least), most); }
    __m128d Value(__m128d c) const { return _mm_add_pd(_mm_mul_pd(_mm_sub_pd(c, zero), scale), half); }
};

// Two pairs of values, truncated.
__m128i Truncated(__m128d low, __m128d high) {
    return _mm_unpacklo_epi64(_mm_cvttpd_epi32(low), _mm_cvttpd_epi32(high));
}
__m128i UpperHalf(__m128i v) { return _mm_shuffle_epi32(v, 0xee); }

// Levels of eight pixels, as 16-bit numbers.
template <class T>
struct LevelLanes;

// The clamped pixels are 16-bit numbers: compared as signed numbers after inverting the top bit.
template <>
struct LevelLanes<uint16_t> {
    __m128i turn, least, most;
    explicit LevelLanes(const LevelRange<uint16_t>& range)
        : turn(_mm_set1_epi16(static_cast<short>(0x8000))),
          least(_mm_set1_epi16(static_cast<short>(range.least ^ 0x8000))),
          most(_mm_set1_epi16(static_cast<short>(range.most ^ 0x8000))) {}
    __m128i Levels(const Line& line, const uint16_t* p) const {
        const __m128i keys = _mm_xor_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)), turn);
        const __m128i c = _mm_xor_si128(_mm_min_epi16(_mm_max_epi16(keys, least), most), turn);
        return _mm_packs_epi32(Levels(line, _mm_unpacklo_epi16(c, _mm_setzero_si128())),
                               Levels(line, _mm_unpackhi_epi16(c, _mm_setzero_si128())));
    }
    static __m128i Levels(const Line& line, __m128i c) {
        return Truncated(line.Value(_mm_cvtepi32_pd(c)), line.Value(_mm_cvtepi32_pd(UpperHalf(c))));
    }
};

template <>
struct LevelLanes<uint32_t> {
    explicit LevelLanes(const LevelRange<uint32_t>&) {}
    static __m128d Doubles(__m128i turned) { return _mm_add_pd(_mm_cvtepi32_pd(turned), _mm_set1_pd(0x1p31)); }
    static __m128i Four(const Line& line, const uint32_t* p) {
        const __m128i turned = _mm_xor_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)),
                                             _mm_set1_epi32(static_cast<int>(0x80000000u)));
        return Truncated(line.Value(line.Clamp(Doubles(turned))), line.Value(line.Clamp(Doubles(UpperHalf(turned)))));
    }
    __m128i Levels(const Line& line, const uint32_t* p) const {
        return _mm_packs_epi32(Four(line, p), Four(line, p + 4));
    }
};

template <>
struct LevelLanes<float> {
    explicit LevelLanes(const LevelRange<float>&) {}
    static __m128d Value(const Line& line, __m128d p) {
        return _mm_and_pd(line.Value(line.Clamp(p)), _mm_cmpord_pd(p, p));
    }
    static __m128i Four(const Line& line, const float* p) {
        const __m128 v = _mm_loadu_ps(p);
        return Truncated(Value(line, _mm_cvtps_pd(v)), Value(line, _mm_cvtps_pd(_mm_movehl_ps(v, v))));
    }
    __m128i Levels(const Line& line, const float* p) const { return _mm_packs_epi32(Four(line, p), Four(line, p + 4)); }
};

template <class T>
void Map(const T* pixels, size_t n, const LevelRange<T>& range, uint8_t* levels) {
    const Line line{LevelLine(range)};
    const LevelLanes<T> eight(range);
    size_t i = 0;
    for (; i + 16 <= n; i += 16)
        _mm_storeu_si128(reinterpret_cast<__m128i*>(levels + i),
                         _mm_packus_epi16(eight.Levels(line, pixels + i), eight.Levels(line, pixels + i + 8)));
    Levels_scalar(pixels + i, n - i, range, levels + i);
}

}  // namespace

void Levels_sse2(const uint16_t* pixels, size_t n, const LevelRange<uint16_t>& range, uint8_t* levels) {
    Map(pixels, n, range, levels);
}
void Levels_sse2(const uint32_t* pixels, size_t n, const LevelRange<uint32_t>& range, uint8_t* levels) {
    Map(pixels, n, range, levels);
}
void Levels_sse2(const float* pixels, size_t n, const LevelRange<float>& range, uint8_t* levels) {
    Map(pixels, n, range, levels);
}

}  // namespace orlix
