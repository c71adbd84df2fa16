#include "vectors/intrinsics_avx512.hpp"

#include "filters/linear_filter_vectors.hpp"
#include "vectors/inline.hpp"

namespace orlix {
namespace {

template <int kCount>
ORLIX_INLINE __m512i Later32(const __m512i& a, const __m512i& b) {
    if constexpr (kCount == 0) return a;
    return _mm512_alignr_epi32(b, a, kCount);
}

template <>
struct LinearLanes<uint8_t> {
    using Pixel = uint8_t;
    using Wide = __m512i;
    static constexpr size_t kPixels = 64;
    static constexpr int kPhases = 2;
    __m512i lower, upper;
    ORLIX_INLINE explicit LinearLanes(const FilterParameters<uint8_t>& p)
        : lower(_mm512_set1_epi8(static_cast<char>(p.lower))), upper(_mm512_set1_epi8(static_cast<char>(p.upper))) {}

    ORLIX_INLINE static void Load(const uint8_t* from, Wide* phases) {
        const __m512i p = _mm512_loadu_si512(from);
        phases[0] = _mm512_and_si512(p, _mm512_set1_epi16(0xff));
        phases[1] = _mm512_srli_epi16(p, 8);
    }
    ORLIX_INLINE static Wide Add(const Wide& a, const Wide& b) { return _mm512_add_epi16(a, b); }
    ORLIX_INLINE static Wide Less(const Wide& a, const Wide& b) { return _mm512_subs_epu16(a, b); }
    template <int kBits>
    ORLIX_INLINE static Wide Up(const Wide& a) {
        return _mm512_slli_epi16(a, kBits);
    }
    template <int kBits>
    ORLIX_INLINE static Wide Down(const Wide& a) {
        return _mm512_srli_epi16(a, kBits);
    }
    // 10923 / 65536 exceeds 1/6 by 5.1e-6: for a <= 5100 the error stays below 1/6, so the quotient is exact.
    ORLIX_INLINE static Wide Sixth(const Wide& a) { return _mm512_mulhi_epu16(a, _mm512_set1_epi16(10923)); }
    template <int kCount>
    ORLIX_INLINE static Wide Later(const Wide& a, const Wide& b) {
        if constexpr (kCount % 2 == 0) return Later32<kCount / 2>(a, b);
        alignas(64) static constexpr uint16_t kNext[32] = {1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11,
                                                           12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22,
                                                           23, 24, 25, 26, 27, 28, 29, 30, 31, 32};
        return _mm512_permutex2var_epi16(a, _mm512_load_si512(kNext), b);
    }
    ORLIX_INLINE void Store(uint8_t* to, const Wide* phases) const {
        const __m512i most = _mm512_set1_epi16(0xff);
        const __m512i odd = _mm512_slli_epi16(_mm512_min_epu16(phases[1], most), 8);
        const __m512i v = _mm512_or_si512(_mm512_min_epu16(phases[0], most), odd);
        _mm512_storeu_si512(to,
                            _mm512_mask_mov_epi8(_mm512_min_epu8(v, upper), _mm512_cmplt_epu8_mask(v, lower), lower));
    }
};

template <>
struct LinearLanes<uint16_t> {
    using Pixel = uint16_t;
    using Wide = __m512i;
    static constexpr size_t kPixels = 32;
    static constexpr int kPhases = 2;
    __m512i lower, upper;
    ORLIX_INLINE explicit LinearLanes(const FilterParameters<uint16_t>& p)
        : lower(_mm512_set1_epi16(static_cast<short>(p.lower))),
          upper(_mm512_set1_epi16(static_cast<short>(p.upper))) {}

    ORLIX_INLINE static void Load(const uint16_t* from, Wide* phases) {
        const __m512i p = _mm512_loadu_si512(from);
        phases[0] = _mm512_and_si512(p, _mm512_set1_epi32(0xffff));
        phases[1] = _mm512_srli_epi32(p, 16);
    }
    ORLIX_INLINE static Wide Add(const Wide& a, const Wide& b) { return _mm512_add_epi32(a, b); }
    ORLIX_INLINE static Wide Less(const Wide& a, const Wide& b) {
        return _mm512_max_epi32(_mm512_sub_epi32(a, b), _mm512_setzero_si512());
    }
    template <int kBits>
    ORLIX_INLINE static Wide Up(const Wide& a) {
        return _mm512_slli_epi32(a, kBits);
    }
    template <int kBits>
    ORLIX_INLINE static Wide Down(const Wide& a) {
        return _mm512_srli_epi32(a, kBits);
    }
    ORLIX_INLINE static Wide Sixth(const Wide& a) {
        return _mm512_cvttps_epi32(_mm512_mul_ps(_mm512_cvtepi32_ps(a), _mm512_set1_ps(kSixth)));
    }
    template <int kCount>
    ORLIX_INLINE static Wide Later(const Wide& a, const Wide& b) {
        return Later32<kCount>(a, b);
    }
    ORLIX_INLINE void Store(uint16_t* to, const Wide* phases) const {
        const __m512i most = _mm512_set1_epi32(0xffff);
        const __m512i odd = _mm512_slli_epi32(_mm512_min_epu32(phases[1], most), 16);
        const __m512i v = _mm512_or_si512(_mm512_min_epu32(phases[0], most), odd);
        _mm512_storeu_si512(
            to, _mm512_mask_mov_epi16(_mm512_min_epu16(v, upper), _mm512_cmplt_epu16_mask(v, lower), lower));
    }
};

template <>
struct LinearLanes<float> {
    using Pixel = float;
    using Wide = __m512;
    static constexpr size_t kPixels = 16;
    static constexpr int kPhases = 1;
    __m512 lower, upper;
    ORLIX_INLINE explicit LinearLanes(const FilterParameters<float>& p)
        : lower(_mm512_set1_ps(p.lower)), upper(_mm512_set1_ps(p.upper)) {}

    ORLIX_INLINE static void Load(const float* from, Wide* phases) { phases[0] = _mm512_loadu_ps(from); }
    ORLIX_INLINE static Wide Add(const Wide& a, const Wide& b) { return _mm512_add_ps(a, b); }
    ORLIX_INLINE static Wide Less(const Wide& a, const Wide& b) { return _mm512_sub_ps(a, b); }
    template <int kBits>
    ORLIX_INLINE static Wide Up(const Wide& a) {
        return _mm512_mul_ps(a, _mm512_set1_ps(1 << kBits));
    }
    template <int kBits>
    ORLIX_INLINE static Wide Down(const Wide& a) {
        return _mm512_mul_ps(a, _mm512_set1_ps(1.0f / (1 << kBits)));
    }
    ORLIX_INLINE static Wide Sixth(const Wide& a) { return _mm512_div_ps(a, _mm512_set1_ps(6)); }
    template <int kCount>
    ORLIX_INLINE static Wide Later(const Wide& a, const Wide& b) {
        return _mm512_castsi512_ps(Later32<kCount>(_mm512_castps_si512(a), _mm512_castps_si512(b)));
    }
    // vminps returns its second operand when either is NaN.
    ORLIX_INLINE void Store(float* to, const Wide* phases) const {
        const __m512 v = phases[0];
        const __m512 clamped =
            _mm512_mask_mov_ps(_mm512_min_ps(upper, v), _mm512_cmp_ps_mask(v, lower, _CMP_LT_OQ), lower);
        const __m512 nan = _mm512_castsi512_ps(_mm512_set1_epi32(0x7fc00000));
        _mm512_storeu_ps(to, _mm512_mask_mov_ps(clamped, _mm512_cmp_ps_mask(v, v, _CMP_UNORD_Q), nan));
    }
};

}  // namespace

template <class T>
void Laplacian_avx512(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters) {
    FilterRow<LaplacianRule>(rows, to, n, parameters, &Laplacian_avx2);
}
template <class T>
void SharpenLow_avx512(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters) {
    FilterRow<SharpenLowRule>(rows, to, n, parameters, &SharpenLow_avx2);
}
template <class T>
void SharpenMedium_avx512(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters) {
    FilterRow<SharpenMediumRule>(rows, to, n, parameters, &SharpenMedium_avx2);
}
template <class T>
void Gaussian3x3_avx512(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters) {
    FilterRow<Gaussian3x3Rule>(rows, to, n, parameters, &Gaussian3x3_avx2);
}
template <class T>
void Gaussian5x5_avx512(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters) {
    FilterRow<Gaussian5x5Rule>(rows, to, n, parameters, &Gaussian5x5_avx2);
}

template Kernel<FilterFn<uint8_t>> Laplacian_avx512;
template Kernel<FilterFn<uint16_t>> Laplacian_avx512;
template Kernel<FilterFn<float>> Laplacian_avx512;
template Kernel<FilterFn<uint8_t>> SharpenLow_avx512;
template Kernel<FilterFn<uint16_t>> SharpenLow_avx512;
template Kernel<FilterFn<float>> SharpenLow_avx512;
template Kernel<FilterFn<uint8_t>> SharpenMedium_avx512;
template Kernel<FilterFn<uint16_t>> SharpenMedium_avx512;
template Kernel<FilterFn<float>> SharpenMedium_avx512;
template Kernel<FilterFn<uint8_t>> Gaussian3x3_avx512;
template Kernel<FilterFn<uint16_t>> Gaussian3x3_avx512;
template Kernel<FilterFn<float>> Gaussian3x3_avx512;
template Kernel<FilterFn<uint8_t>> Gaussian5x5_avx512;
template Kernel<FilterFn<uint16_t>> Gaussian5x5_avx512;
template Kernel<FilterFn<float>> Gaussian5x5_avx512;

}  // namespace orlix
