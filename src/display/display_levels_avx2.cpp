#include <immintrin.h>

#include "display/display_level_kernels.hpp"
#include "vectors/inline.hpp"

namespace orlix {
namespace {

struct Line {
    __m256d least, most, zero, scale, half;
    ORLIX_INLINE explicit Line(const LevelLine& line)
        : least(_mm256_set1_pd(line.least)),
          most(_mm256_set1_pd(line.most)),
          zero(_mm256_set1_pd(line.zero)),
          scale(_mm256_set1_pd(line.scale)),
          half(_mm256_set1_pd(line.half)) {}
    ORLIX_INLINE __m256d Clamp(const __m256d& p) const { return _mm256_min_pd(_mm256_max_pd(p, least), most); }
    ORLIX_INLINE __m256d Value(const __m256d& c) const {
        return _mm256_add_pd(_mm256_mul_pd(_mm256_sub_pd(c, zero), scale), half);
    }
};

// Levels of four pixels.
ORLIX_INLINE __m128i Four(const Line& line, const uint32_t* p) {
    const __m128i turned = _mm_xor_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)),
                                         _mm_set1_epi32(static_cast<int>(0x80000000u)));
    const __m256d doubles = _mm256_add_pd(_mm256_cvtepi32_pd(turned), _mm256_set1_pd(0x1p31));
    return _mm256_cvttpd_epi32(line.Value(line.Clamp(doubles)));
}
ORLIX_INLINE __m128i Four(const Line& line, const float* p) {
    const __m256d v = _mm256_cvtps_pd(_mm_loadu_ps(p));
    return _mm256_cvttpd_epi32(_mm256_and_pd(line.Value(line.Clamp(v)), _mm256_cmp_pd(v, v, _CMP_ORD_Q)));
}

// Levels of eight pixels, as 16-bit numbers.
template <class T>
ORLIX_INLINE __m128i Eight(const Line& line, const T* p) {
    return _mm_packs_epi32(Four(line, p), Four(line, p + 4));
}

// See FloatLevelLine.
struct FloatLanes {
    __m256 least, most, zero, scale;
    ORLIX_INLINE FloatLanes(const LevelRange<float>& range, const FloatLevelLine& line)
        : least(_mm256_set1_ps(range.least)),
          most(_mm256_set1_ps(range.most)),
          zero(_mm256_set1_ps(line.zero)),
          scale(_mm256_set1_ps(line.scale)) {}
    ORLIX_INLINE __m128i Eight(const Line& line, const float* pixels) const {
        const __m256 p = _mm256_loadu_ps(pixels);
        const __m256 c = _mm256_min_ps(_mm256_max_ps(p, least), most);
        const __m256 value = _mm256_add_ps(_mm256_mul_ps(_mm256_sub_ps(c, zero), scale), _mm256_set1_ps(0.5f));
        const __m256 over = _mm256_sub_ps(value, _mm256_round_ps(value, _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC));
        const __m256 decided =
            _mm256_and_ps(_mm256_cmp_ps(over, _mm256_set1_ps(FloatLevelLine::kDoubt), _CMP_GE_OQ),
                          _mm256_cmp_ps(over, _mm256_set1_ps(1 - FloatLevelLine::kDoubt), _CMP_LE_OQ));
        if (_mm256_movemask_ps(decided) != 0xff) return orlix::Eight(line, pixels);
        const __m256i level = _mm256_cvttps_epi32(_mm256_and_ps(value, _mm256_cmp_ps(p, p, _CMP_ORD_Q)));
        return _mm_packs_epi32(_mm256_castsi256_si128(level), _mm256_extracti128_si256(level, 1));
    }
};

// See WordLevelLine.
struct WordLanes {
    __m256i flip, offset, length, high, low, half;
    __m128i shift;
    ORLIX_INLINE static __m256i All(int v) { return _mm256_set1_epi16(static_cast<short>(v)); }
    ORLIX_INLINE explicit WordLanes(const WordLevelLine& line)
        : flip(All(line.flip)),
          offset(All(line.offset)),
          length(All(line.length)),
          high(All(line.high)),
          low(All(line.low)),
          half(All(line.half + 1)),
          shift(_mm_cvtsi32_si128(line.shift)) {}
    // 16 levels, as 16-bit numbers.
    ORLIX_INLINE __m256i Levels(const uint16_t* pixels) const {
        const __m256i p = _mm256_xor_si256(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(pixels)), flip);
        const __m256i x = _mm256_sll_epi16(_mm256_min_epu16(_mm256_subs_epu16(p, offset), length), shift);
        const __m256i less = _mm256_add_epi16(_mm256_mulhi_epu16(x, low), All(1));
        const __m256i sum = _mm256_add_epi16(_mm256_mullo_epi16(x, high), less);
        const __m256i fits =
            _mm256_cmpeq_epi16(_mm256_subs_epu16(less, sum), _mm256_setzero_si256());  // -1 without a carry
        const __m256i whole = _mm256_add_epi16(_mm256_add_epi16(_mm256_mulhi_epu16(x, high), half), fits);
        return _mm256_srli_epi16(whole, 7);
    }
};

}  // namespace

void Levels_avx2(const uint16_t* pixels, size_t n, const LevelRange<uint16_t>& range, uint8_t* levels) {
    const WordLanes lanes{WordLevelLine(range)};
    size_t i = 0;
    for (; i + 32 <= n; i += 32) {
        const __m256i packed = _mm256_packus_epi16(lanes.Levels(pixels + i), lanes.Levels(pixels + i + 16));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(levels + i), _mm256_permute4x64_epi64(packed, 0xd8));
    }
    Levels_scalar(pixels + i, n - i, range, levels + i);
}
void Levels_avx2(const uint32_t* pixels, size_t n, const LevelRange<uint32_t>& range, uint8_t* levels) {
    const Line line{LevelLine(range)};
    size_t i = 0;
    for (; i + 16 <= n; i += 16)
        _mm_storeu_si128(reinterpret_cast<__m128i*>(levels + i),
                         _mm_packus_epi16(Eight(line, pixels + i), Eight(line, pixels + i + 8)));
    Levels_scalar(pixels + i, n - i, range, levels + i);
}

void Levels_avx2(const float* pixels, size_t n, const LevelRange<float>& range, uint8_t* levels) {
    const LevelLine exact(range);
    const Line line(exact);
    const FloatLanes lanes(range, FloatLevelLine(exact));
    size_t i = 0;
    for (; i + 16 <= n; i += 16)
        _mm_storeu_si128(reinterpret_cast<__m128i*>(levels + i),
                         _mm_packus_epi16(lanes.Eight(line, pixels + i), lanes.Eight(line, pixels + i + 8)));
    Levels_scalar(pixels + i, n - i, range, levels + i);
}

}  // namespace orlix
