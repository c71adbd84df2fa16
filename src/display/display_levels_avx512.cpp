#include "display/display_level_kernels.hpp"
#include "vectors/inline.hpp"
#include "vectors/intrinsics_avx512.hpp"

namespace orlix {
namespace {

struct Line {
    __m512d least, most, zero, scale, half;
    ORLIX_INLINE explicit Line(const LevelLine& line)
        : least(_mm512_set1_pd(line.least)),
          most(_mm512_set1_pd(line.most)),
          zero(_mm512_set1_pd(line.zero)),
          scale(_mm512_set1_pd(line.scale)),
          half(_mm512_set1_pd(line.half)) {}
    ORLIX_INLINE __m512d Clamp(const __m512d& p) const { return _mm512_min_pd(_mm512_max_pd(p, least), most); }
    ORLIX_INLINE __m512d Value(const __m512d& c) const {
        return _mm512_add_pd(_mm512_mul_pd(_mm512_sub_pd(c, zero), scale), half);
    }
};

// 8 pixels as doubles within the range, and which of them are not NaN.
ORLIX_INLINE __m512d Load(const Line& line, const uint16_t* p) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    return line.Clamp(_mm512_cvtepi32_pd(_mm256_cvtepu16_epi32(v)));
}
ORLIX_INLINE __m512d Load(const Line& line, const uint32_t* p) {
    return line.Clamp(_mm512_cvtepu32_pd(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p))));
}
ORLIX_INLINE __m512d Load(const Line& line, const float* p) { return line.Clamp(_mm512_cvtps_pd(_mm256_loadu_ps(p))); }
template <class T>
ORLIX_INLINE __mmask8 Numbers(const T*) {
    return 0xff;
}
ORLIX_INLINE __mmask8 Numbers(const float* p) {
    const __m256 v = _mm256_loadu_ps(p);
    return _mm256_cmp_ps_mask(v, v, _CMP_ORD_Q);
}

template <class T>
ORLIX_INLINE __m256i Eight(const Line& line, const T* p) {
    return _mm512_maskz_cvttpd_epi32(Numbers(p), line.Value(Load(line, p)));
}

template <class T>
void Map(const T* pixels, size_t n, const LevelRange<T>& range, uint8_t* levels) {
    const Line line{LevelLine(range)};
    size_t i = 0;
    for (; i + 16 <= n; i += 16) {
        const __m512i sixteen =
            _mm512_inserti64x4(_mm512_castsi256_si512(Eight(line, pixels + i)), Eight(line, pixels + i + 8), 1);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(levels + i), _mm512_cvtepi32_epi8(sixteen));
    }
    Levels_scalar(pixels + i, n - i, range, levels + i);
}

}  // namespace

void Levels_avx512(const uint16_t* pixels, size_t n, const LevelRange<uint16_t>& range, uint8_t* levels) {
    Map(pixels, n, range, levels);
}
void Levels_avx512(const uint32_t* pixels, size_t n, const LevelRange<uint32_t>& range, uint8_t* levels) {
    Map(pixels, n, range, levels);
}
void Levels_avx512(const float* pixels, size_t n, const LevelRange<float>& range, uint8_t* levels) {
    Map(pixels, n, range, levels);
}

}  // namespace orlix
