#include <immintrin.h>

#include "filters/linear_filter_vectors.hpp"
#include "vectors/inline.hpp"

namespace orlix {
namespace {

template <int kBytes>
ORLIX_INLINE __m256i LaterBytes(const __m256i& a, const __m256i& b) {
    if constexpr (kBytes == 0) return a;
    const __m256i middle = _mm256_permute2x128_si256(a, b, 0x21);
    if constexpr (kBytes == 16) return middle;
    return _mm256_alignr_epi8(middle, a, kBytes);
}

template <class T>
ORLIX_INLINE __m256i LoadVector(const T* from) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
}
template <class T>
ORLIX_INLINE void StoreVector(T* to, const __m256i& v) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), v);
}

template <>
struct LinearLanes<uint8_t> {
    using Pixel = uint8_t;
    using Wide = __m256i;
    static constexpr size_t kPixels = 32;
    static constexpr int kPhases = 2;
    __m256i lower, upper;
    ORLIX_INLINE explicit LinearLanes(const FilterParameters<uint8_t>& p)
        : lower(_mm256_set1_epi8(static_cast<char>(p.lower))), upper(_mm256_set1_epi8(static_cast<char>(p.upper))) {}

    ORLIX_INLINE static void Load(const uint8_t* from, Wide* phases) {
        const __m256i p = LoadVector(from);
        phases[0] = _mm256_and_si256(p, _mm256_set1_epi16(0xff));
        phases[1] = _mm256_srli_epi16(p, 8);
    }
    ORLIX_INLINE static Wide Add(const Wide& a, const Wide& b) { return _mm256_add_epi16(a, b); }
    ORLIX_INLINE static Wide Less(const Wide& a, const Wide& b) { return _mm256_subs_epu16(a, b); }
    template <int kBits>
    ORLIX_INLINE static Wide Up(const Wide& a) {
        return _mm256_slli_epi16(a, kBits);
    }
    template <int kBits>
    ORLIX_INLINE static Wide Down(const Wide& a) {
        return _mm256_srli_epi16(a, kBits);
    }
    // 10923 / 65536 exceeds 1/6 by 5.1e-6: for a <= 5100 the error stays below 1/6, so the quotient is exact.
    ORLIX_INLINE static Wide Sixth(const Wide& a) { return _mm256_mulhi_epu16(a, _mm256_set1_epi16(10923)); }
    template <int kCount>
    ORLIX_INLINE static Wide Later(const Wide& a, const Wide& b) {
        return LaterBytes<2 * kCount>(a, b);
    }
    ORLIX_INLINE void Store(uint8_t* to, const Wide* phases) const {
        const __m256i most = _mm256_set1_epi16(0xff);
        const __m256i odd = _mm256_slli_epi16(_mm256_min_epu16(phases[1], most), 8);
        const __m256i v = _mm256_or_si256(_mm256_min_epu16(phases[0], most), odd);
        const __m256i notBelow = _mm256_cmpeq_epi8(_mm256_max_epu8(v, lower), v);
        StoreVector(to, _mm256_blendv_epi8(lower, _mm256_min_epu8(v, upper), notBelow));
    }
};

template <>
struct LinearLanes<uint16_t> {
    using Pixel = uint16_t;
    using Wide = __m256i;
    static constexpr size_t kPixels = 16;
    static constexpr int kPhases = 2;
    __m256i lower, upper;
    ORLIX_INLINE explicit LinearLanes(const FilterParameters<uint16_t>& p)
        : lower(_mm256_set1_epi16(static_cast<short>(p.lower))),
          upper(_mm256_set1_epi16(static_cast<short>(p.upper))) {}

    ORLIX_INLINE static void Load(const uint16_t* from, Wide* phases) {
        const __m256i p = LoadVector(from);
        phases[0] = _mm256_and_si256(p, _mm256_set1_epi32(0xffff));
        phases[1] = _mm256_srli_epi32(p, 16);
    }
    ORLIX_INLINE static Wide Add(const Wide& a, const Wide& b) { return _mm256_add_epi32(a, b); }
    ORLIX_INLINE static Wide Less(const Wide& a, const Wide& b) {
        return _mm256_max_epi32(_mm256_sub_epi32(a, b), _mm256_setzero_si256());
    }
    template <int kBits>
    ORLIX_INLINE static Wide Up(const Wide& a) {
        return _mm256_slli_epi32(a, kBits);
    }
    template <int kBits>
    ORLIX_INLINE static Wide Down(const Wide& a) {
        return _mm256_srli_epi32(a, kBits);
    }
    ORLIX_INLINE static Wide Sixth(const Wide& a) {
        return _mm256_cvttps_epi32(_mm256_mul_ps(_mm256_cvtepi32_ps(a), _mm256_set1_ps(kSixth)));
    }
    template <int kCount>
    ORLIX_INLINE static Wide Later(const Wide& a, const Wide& b) {
        return LaterBytes<4 * kCount>(a, b);
    }
    ORLIX_INLINE void Store(uint16_t* to, const Wide* phases) const {
        const __m256i most = _mm256_set1_epi32(0xffff);
        const __m256i odd = _mm256_slli_epi32(_mm256_min_epu32(phases[1], most), 16);
        const __m256i v = _mm256_or_si256(_mm256_min_epu32(phases[0], most), odd);
        const __m256i notBelow = _mm256_cmpeq_epi16(_mm256_max_epu16(v, lower), v);
        StoreVector(to, _mm256_blendv_epi8(lower, _mm256_min_epu16(v, upper), notBelow));
    }
};

template <>
struct LinearLanes<float> {
    using Pixel = float;
    using Wide = __m256;
    static constexpr size_t kPixels = 8;
    static constexpr int kPhases = 1;
    __m256 lower, upper;
    ORLIX_INLINE explicit LinearLanes(const FilterParameters<float>& p)
        : lower(_mm256_set1_ps(p.lower)), upper(_mm256_set1_ps(p.upper)) {}

    ORLIX_INLINE static void Load(const float* from, Wide* phases) { phases[0] = _mm256_loadu_ps(from); }
    ORLIX_INLINE static Wide Add(const Wide& a, const Wide& b) { return _mm256_add_ps(a, b); }
    ORLIX_INLINE static Wide Less(const Wide& a, const Wide& b) { return _mm256_sub_ps(a, b); }
    template <int kBits>
    ORLIX_INLINE static Wide Up(const Wide& a) {
        return _mm256_mul_ps(a, _mm256_set1_ps(1 << kBits));
    }
    template <int kBits>
    ORLIX_INLINE static Wide Down(const Wide& a) {
        return _mm256_mul_ps(a, _mm256_set1_ps(1.0f / (1 << kBits)));
    }
    ORLIX_INLINE static Wide Sixth(const Wide& a) { return _mm256_div_ps(a, _mm256_set1_ps(6)); }
    template <int kCount>
    ORLIX_INLINE static Wide Later(const Wide& a, const Wide& b) {
        return _mm256_castsi256_ps(LaterBytes<4 * kCount>(_mm256_castps_si256(a), _mm256_castps_si256(b)));
    }
    // vminps returns its second operand when either is NaN.
    ORLIX_INLINE void Store(float* to, const Wide* phases) const {
        const __m256 v = phases[0];
        const __m256 clamped = _mm256_blendv_ps(_mm256_min_ps(upper, v), lower, _mm256_cmp_ps(v, lower, _CMP_LT_OQ));
        const __m256 nan = _mm256_castsi256_ps(_mm256_set1_epi32(0x7fc00000));
        _mm256_storeu_ps(to, _mm256_blendv_ps(clamped, nan, _mm256_cmp_ps(v, v, _CMP_UNORD_Q)));
    }
};

}  // namespace

template <class T>
void Laplacian_avx2(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters) {
    FilterRow<LaplacianRule>(rows, to, n, parameters, &Laplacian_sse2);
}
template <class T>
void SharpenLow_avx2(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters) {
    FilterRow<SharpenLowRule>(rows, to, n, parameters, &SharpenLow_sse2);
}
template <class T>
void SharpenMedium_avx2(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters) {
    FilterRow<SharpenMediumRule>(rows, to, n, parameters, &SharpenMedium_sse2);
}
template <class T>
void Gaussian3x3_avx2(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters) {
    FilterRow<Gaussian3x3Rule>(rows, to, n, parameters, &Gaussian3x3_sse2);
}
template <class T>
void Gaussian5x5_avx2(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters) {
    FilterRow<Gaussian5x5Rule>(rows, to, n, parameters, &Gaussian5x5_sse2);
}

template Kernel<FilterFn<uint8_t>> Laplacian_avx2;
template Kernel<FilterFn<uint16_t>> Laplacian_avx2;
template Kernel<FilterFn<float>> Laplacian_avx2;
template Kernel<FilterFn<uint8_t>> SharpenLow_avx2;
template Kernel<FilterFn<uint16_t>> SharpenLow_avx2;
template Kernel<FilterFn<float>> SharpenLow_avx2;
template Kernel<FilterFn<uint8_t>> SharpenMedium_avx2;
template Kernel<FilterFn<uint16_t>> SharpenMedium_avx2;
template Kernel<FilterFn<float>> SharpenMedium_avx2;
template Kernel<FilterFn<uint8_t>> Gaussian3x3_avx2;
template Kernel<FilterFn<uint16_t>> Gaussian3x3_avx2;
template Kernel<FilterFn<float>> Gaussian3x3_avx2;
template Kernel<FilterFn<uint8_t>> Gaussian5x5_avx2;
template Kernel<FilterFn<uint16_t>> Gaussian5x5_avx2;
template Kernel<FilterFn<float>> Gaussian5x5_avx2;

}  // namespace orlix
