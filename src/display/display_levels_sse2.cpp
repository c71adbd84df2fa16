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

// Levels of four pixels.
__m128d Doubles(__m128i turned) { return _mm_add_pd(_mm_cvtepi32_pd(turned), _mm_set1_pd(0x1p31)); }
__m128i Four(const Line& line, const uint32_t* p) {
    const __m128i turned = _mm_xor_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)),
                                         _mm_set1_epi32(static_cast<int>(0x80000000u)));
    return Truncated(line.Value(line.Clamp(Doubles(turned))), line.Value(line.Clamp(Doubles(UpperHalf(turned)))));
}
__m128d Value(const Line& line, __m128d p) { return _mm_and_pd(line.Value(line.Clamp(p)), _mm_cmpord_pd(p, p)); }
__m128i Four(const Line& line, const float* p) {
    const __m128 v = _mm_loadu_ps(p);
    return Truncated(Value(line, _mm_cvtps_pd(v)), Value(line, _mm_cvtps_pd(_mm_movehl_ps(v, v))));
}

// See FloatLevelLine.
struct FloatLanes {
    __m128 least, most, zero, scale;
    FloatLanes(const LevelRange<float>& range, const FloatLevelLine& line)
        : least(_mm_set1_ps(range.least)),
          most(_mm_set1_ps(range.most)),
          zero(_mm_set1_ps(line.zero)),
          scale(_mm_set1_ps(line.scale)) {}
    __m128i Four(const Line& line, const float* pixels) const {
        const __m128 p = _mm_loadu_ps(pixels);
        const __m128 c = _mm_min_ps(_mm_max_ps(p, least), most);
        const __m128 value = _mm_add_ps(_mm_mul_ps(_mm_sub_ps(c, zero), scale), _mm_set1_ps(0.5f));
        const __m128 over = _mm_sub_ps(value, _mm_cvtepi32_ps(_mm_cvttps_epi32(value)));
        const __m128 decided = _mm_and_ps(_mm_cmpge_ps(over, _mm_set1_ps(FloatLevelLine::kDoubt)),
                                          _mm_cmple_ps(over, _mm_set1_ps(1 - FloatLevelLine::kDoubt)));
        if (_mm_movemask_ps(decided) != 0xf) return orlix::Four(line, pixels);
        return _mm_cvttps_epi32(_mm_and_ps(value, _mm_cmpord_ps(p, p)));
    }
};

// Levels of eight pixels, as 16-bit numbers.
template <class T>
__m128i Eight(const Line& line, const T* p) {
    return _mm_packs_epi32(Four(line, p), Four(line, p + 4));
}

// See WordLevelLine.
struct WordLanes {
    __m128i flip, offset, length, high, low, half;
    __m128i shift;
    static __m128i All(int v) { return _mm_set1_epi16(static_cast<short>(v)); }
    explicit WordLanes(const WordLevelLine& line)
        : flip(All(line.flip)),
          offset(All(line.offset)),
          length(All(line.length)),
          high(All(line.high)),
          low(All(line.low)),
          half(All(line.half + 1)),
          shift(_mm_cvtsi32_si128(line.shift)) {}
    // 8 levels, as 16-bit numbers.
    __m128i Levels(const uint16_t* pixels) const {
        const __m128i p = _mm_xor_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels)), flip);
        const __m128i above = _mm_subs_epu16(p, offset);
        const __m128i x = _mm_sll_epi16(_mm_sub_epi16(above, _mm_subs_epu16(above, length)), shift);
        const __m128i less = _mm_add_epi16(_mm_mulhi_epu16(x, low), All(1));
        const __m128i sum = _mm_add_epi16(_mm_mullo_epi16(x, high), less);
        const __m128i fits = _mm_cmpeq_epi16(_mm_subs_epu16(less, sum), _mm_setzero_si128());  // -1 without a carry
        const __m128i whole = _mm_add_epi16(_mm_add_epi16(_mm_mulhi_epu16(x, high), half), fits);
        return _mm_srli_epi16(whole, 7);
    }
};

}  // namespace

void Levels_sse2(const uint16_t* pixels, size_t n, const LevelRange<uint16_t>& range, uint8_t* levels) {
    const WordLanes lanes{WordLevelLine(range)};
    size_t i = 0;
    for (; i + 16 <= n; i += 16) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(levels + i),
                         _mm_packus_epi16(lanes.Levels(pixels + i), lanes.Levels(pixels + i + 8)));
    }
    Levels_scalar(pixels + i, n - i, range, levels + i);
}
void Levels_sse2(const uint32_t* pixels, size_t n, const LevelRange<uint32_t>& range, uint8_t* levels) {
    const Line line{LevelLine(range)};
    size_t i = 0;
    for (; i + 16 <= n; i += 16)
        _mm_storeu_si128(reinterpret_cast<__m128i*>(levels + i),
                         _mm_packus_epi16(Eight(line, pixels + i), Eight(line, pixels + i + 8)));
    Levels_scalar(pixels + i, n - i, range, levels + i);
}

void Levels_sse2(const float* pixels, size_t n, const LevelRange<float>& range, uint8_t* levels) {
    const LevelLine exact(range);
    const Line line(exact);
    const FloatLanes lanes(range, FloatLevelLine(exact));
    const auto eight = [&](const float* p) { return _mm_packs_epi32(lanes.Four(line, p), lanes.Four(line, p + 4)); };
    size_t i = 0;
    for (; i + 16 <= n; i += 16)
        _mm_storeu_si128(reinterpret_cast<__m128i*>(levels + i),
                         _mm_packus_epi16(eight(pixels + i), eight(pixels + i + 8)));
    Levels_scalar(pixels + i, n - i, range, levels + i);
}

}  // namespace orlix
