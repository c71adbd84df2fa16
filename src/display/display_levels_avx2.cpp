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

// Levels of eight pixels, as 16-bit numbers.
template <class T>
struct LevelLanes;

// 16 bits: clamped before the conversion to double.
template <>
struct LevelLanes<uint16_t> {
    __m128i least, most;
    ORLIX_INLINE explicit LevelLanes(const LevelRange<uint16_t>& range)
        : least(_mm_set1_epi16(static_cast<short>(range.least))),
          most(_mm_set1_epi16(static_cast<short>(range.most))) {}
    ORLIX_INLINE __m128i Levels(const Line& line, const uint16_t* p) const {
        const __m128i c =
            _mm_min_epu16(_mm_max_epu16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)), least), most);
        return _mm_packs_epi32(Four(line, _mm_cvtepu16_epi32(c)),
                               Four(line, _mm_unpackhi_epi16(c, _mm_setzero_si128())));
    }
    ORLIX_INLINE static __m128i Four(const Line& line, __m128i c) {
        return _mm256_cvttpd_epi32(line.Value(_mm256_cvtepi32_pd(c)));
    }
};

template <>
struct LevelLanes<uint32_t> {
    ORLIX_INLINE explicit LevelLanes(const LevelRange<uint32_t>&) {}
    ORLIX_INLINE static __m128i Four(const Line& line, const uint32_t* p) {
        const __m128i turned = _mm_xor_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)),
                                             _mm_set1_epi32(static_cast<int>(0x80000000u)));
        const __m256d doubles = _mm256_add_pd(_mm256_cvtepi32_pd(turned), _mm256_set1_pd(0x1p31));
        return _mm256_cvttpd_epi32(line.Value(line.Clamp(doubles)));
    }
    ORLIX_INLINE __m128i Levels(const Line& line, const uint32_t* p) const {
        return _mm_packs_epi32(Four(line, p), Four(line, p + 4));
    }
};

template <>
struct LevelLanes<float> {
    ORLIX_INLINE explicit LevelLanes(const LevelRange<float>&) {}
    ORLIX_INLINE static __m128i Four(const Line& line, const float* p) {
        const __m256d v = _mm256_cvtps_pd(_mm_loadu_ps(p));
        return _mm256_cvttpd_epi32(_mm256_and_pd(line.Value(line.Clamp(v)), _mm256_cmp_pd(v, v, _CMP_ORD_Q)));
    }
    ORLIX_INLINE __m128i Levels(const Line& line, const float* p) const {
        return _mm_packs_epi32(Four(line, p), Four(line, p + 4));
    }
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

void Levels_avx2(const uint16_t* pixels, size_t n, const LevelRange<uint16_t>& range, uint8_t* levels) {
    Map(pixels, n, range, levels);
}
void Levels_avx2(const uint32_t* pixels, size_t n, const LevelRange<uint32_t>& range, uint8_t* levels) {
    Map(pixels, n, range, levels);
}
void Levels_avx2(const float* pixels, size_t n, const LevelRange<float>& range, uint8_t* levels) {
    Map(pixels, n, range, levels);
}

}  // namespace orlix
