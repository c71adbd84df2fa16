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
ORLIX_INLINE __m512i Sixteen(const Line& line, const T* p) {
    return _mm512_inserti64x4(_mm512_castsi256_si512(Eight(line, p)), Eight(line, p + 8), 1);
}

ORLIX_INLINE void Store(uint8_t* to, const __m512i& sixteen) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm512_cvtepi32_epi8(sixteen));
}

ORLIX_INLINE __m512i All(uint16_t v) { return _mm512_set1_epi16(static_cast<short>(v)); }

}  // namespace

void Levels_avx512(const uint16_t* pixels, size_t n, const LevelRange<uint16_t>& range, uint8_t* levels) {
    const WordLevelLine line(range);
    const __m512i flip = All(line.flip), offset = All(line.offset), length = All(line.length), high = All(line.high),
                  low = All(line.low), half = All(line.half), one = All(1);
    const __m128i shift = _mm_cvtsi32_si128(line.shift);
    size_t i = 0;
    for (; i + 32 <= n; i += 32) {
        const __m512i p = _mm512_xor_si512(_mm512_loadu_si512(pixels + i), flip);
        const __m512i x = _mm512_sll_epi16(_mm512_min_epu16(_mm512_subs_epu16(p, offset), length), shift);
        const __m512i less = _mm512_add_epi16(_mm512_mulhi_epu16(x, low), one);
        const __m512i sum = _mm512_add_epi16(_mm512_mullo_epi16(x, high), less);
        const __m512i whole = _mm512_add_epi16(_mm512_mulhi_epu16(x, high), half);
        const __m512i level =
            _mm512_mask_add_epi16(whole, _mm512_cmplt_epu16_mask(sum, less), whole, one);  // with the sum's carry
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(levels + i), _mm512_cvtepi16_epi8(_mm512_srli_epi16(level, 7)));
    }
    Levels_scalar(pixels + i, n - i, range, levels + i);
}
void Levels_avx512(const uint32_t* pixels, size_t n, const LevelRange<uint32_t>& range, uint8_t* levels) {
    const Line line{LevelLine(range)};
    size_t i = 0;
    for (; i + 16 <= n; i += 16) Store(levels + i, Sixteen(line, pixels + i));
    Levels_scalar(pixels + i, n - i, range, levels + i);
}

void Levels_avx512(const float* pixels, size_t n, const LevelRange<float>& range, uint8_t* levels) {
    const LevelLine exact(range);
    const FloatLevelLine fast(exact);
    const Line line(exact);
    const __m512 least = _mm512_set1_ps(range.least), most = _mm512_set1_ps(range.most),
                 zero = _mm512_set1_ps(fast.zero), scale = _mm512_set1_ps(fast.scale), half = _mm512_set1_ps(0.5f),
                 doubt = _mm512_set1_ps(FloatLevelLine::kDoubt), sure = _mm512_set1_ps(1 - FloatLevelLine::kDoubt);
    size_t i = 0;
    for (; i + 16 <= n; i += 16) {
        const __m512 p = _mm512_loadu_ps(pixels + i);
        const __m512 c = _mm512_min_ps(_mm512_max_ps(p, least), most);
        const __m512 value = _mm512_fmadd_ps(_mm512_sub_ps(c, zero), scale, half);
        const __m512i level = _mm512_maskz_cvttps_epi32(_mm512_cmp_ps_mask(p, p, _CMP_ORD_Q), value);
        const __m512 over = _mm512_sub_ps(value, _mm512_roundscale_ps(value, _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC));
        const __mmask16 decided =
            _mm512_mask_cmp_ps_mask(_mm512_cmp_ps_mask(over, doubt, _CMP_GE_OQ), over, sure, _CMP_LE_OQ);
        Store(levels + i, decided == 0xffff ? level : Sixteen(line, pixels + i));
    }
    Levels_scalar(pixels + i, n - i, range, levels + i);
}

}  // namespace orlix
