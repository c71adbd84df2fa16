#include <emmintrin.h>

#include "filters/linear_filter_vectors.hpp"
#include "vectors/inline.hpp"

namespace orlix {
namespace {

template <int kBytes>
ORLIX_INLINE __m128i LaterBytes(const __m128i& a, const __m128i& b) {
    if constexpr (kBytes == 0) return a;
    if constexpr (kBytes == 16) return b;
    return _mm_or_si128(_mm_srli_si128(a, kBytes), _mm_slli_si128(b, 16 - kBytes));
}

template <class T>
ORLIX_INLINE __m128i LoadVector(const T* from) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}
template <class T>
ORLIX_INLINE void StoreVector(T* to, const __m128i& v) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), v);
}
ORLIX_INLINE __m128i Choose(const __m128i& mask, const __m128i& yes, const __m128i& no) {
    return _mm_or_si128(_mm_and_si128(mask, yes), _mm_andnot_si128(mask, no));
}

template <>
struct LinearLanes<uint8_t> {
    using Pixel = uint8_t;
    using Wide = __m128i;
    static constexpr size_t kPixels = 16;
    static constexpr int kPhases = 2;
    __m128i lower, upper;
    ORLIX_INLINE explicit LinearLanes(const FilterParameters<uint8_t>& p)
        : lower(_mm_set1_epi8(static_cast<char>(p.lower))), upper(_mm_set1_epi8(static_cast<char>(p.upper))) {}

    ORLIX_INLINE static void Load(const uint8_t* from, Wide* phases) {
        const __m128i p = LoadVector(from);
        phases[0] = _mm_and_si128(p, _mm_set1_epi16(0xff));
        phases[1] = _mm_srli_epi16(p, 8);
    }
    ORLIX_INLINE static Wide Add(const Wide& a, const Wide& b) { return _mm_add_epi16(a, b); }
    ORLIX_INLINE static Wide Less(const Wide& a, const Wide& b) { return _mm_subs_epu16(a, b); }
    template <int kBits>
    ORLIX_INLINE static Wide Up(const Wide& a) {
        return _mm_slli_epi16(a, kBits);
    }
    template <int kBits>
    ORLIX_INLINE static Wide Down(const Wide& a) {
        return _mm_srli_epi16(a, kBits);
    }
    // 10923 / 65536 exceeds 1/6 by 5.1e-6: for a <= 5100 the error stays below 1/6, so the quotient is exact.
    ORLIX_INLINE static Wide Sixth(const Wide& a) { return _mm_mulhi_epu16(a, _mm_set1_epi16(10923)); }
    template <int kCount>
    ORLIX_INLINE static Wide Later(const Wide& a, const Wide& b) {
        return LaterBytes<2 * kCount>(a, b);
    }
    // Results are below 2^15, except those of the Gaussians, which need no limit and are below 256.
    ORLIX_INLINE void Store(uint8_t* to, const Wide* phases) const {
        const __m128i most = _mm_set1_epi16(0xff);
        const __m128i odd = _mm_slli_epi16(_mm_min_epi16(phases[1], most), 8);
        const __m128i v = _mm_or_si128(_mm_min_epi16(phases[0], most), odd);
        const __m128i notBelow = _mm_cmpeq_epi8(_mm_max_epu8(v, lower), v);
        StoreVector(to, Choose(notBelow, _mm_min_epu8(v, upper), lower));
    }
};

template <>
struct LinearLanes<uint16_t> {
    using Pixel = uint16_t;
    using Wide = __m128i;
    static constexpr size_t kPixels = 8;
    static constexpr int kPhases = 2;
    __m128i lower, upper;
    ORLIX_INLINE explicit LinearLanes(const FilterParameters<uint16_t>& p)
        : lower(_mm_set1_epi16(static_cast<short>(p.lower))), upper(_mm_set1_epi16(static_cast<short>(p.upper))) {}

    ORLIX_INLINE static void Load(const uint16_t* from, Wide* phases) {
        const __m128i p = LoadVector(from);
        phases[0] = _mm_and_si128(p, _mm_set1_epi32(0xffff));
        phases[1] = _mm_srli_epi32(p, 16);
    }
    ORLIX_INLINE static Wide Add(const Wide& a, const Wide& b) { return _mm_add_epi32(a, b); }
    ORLIX_INLINE static Wide Less(const Wide& a, const Wide& b) {
        const __m128i difference = _mm_sub_epi32(a, b);
        return _mm_andnot_si128(_mm_srai_epi32(difference, 31), difference);
    }
    template <int kBits>
    ORLIX_INLINE static Wide Up(const Wide& a) {
        return _mm_slli_epi32(a, kBits);
    }
    template <int kBits>
    ORLIX_INLINE static Wide Down(const Wide& a) {
        return _mm_srli_epi32(a, kBits);
    }
    ORLIX_INLINE static Wide Sixth(const Wide& a) {
        return _mm_cvttps_epi32(_mm_mul_ps(_mm_cvtepi32_ps(a), _mm_set1_ps(kSixth)));
    }
    template <int kCount>
    ORLIX_INLINE static Wide Later(const Wide& a, const Wide& b) {
        return LaterBytes<4 * kCount>(a, b);
    }
    // All 16 low bits set where a sum exceeds 65535.
    ORLIX_INLINE static Wide Limited(const Wide& a) {
        return _mm_or_si128(a, _mm_cmpgt_epi32(a, _mm_set1_epi32(0xffff)));
    }
    ORLIX_INLINE void Store(uint16_t* to, const Wide* phases) const {
        const __m128i even = _mm_and_si128(Limited(phases[0]), _mm_set1_epi32(0xffff));
        const __m128i v = _mm_or_si128(even, _mm_slli_epi32(Limited(phases[1]), 16));
        const __m128i notBelow = _mm_cmpeq_epi16(_mm_subs_epu16(lower, v), _mm_setzero_si128());
        const __m128i notAbove = _mm_sub_epi16(v, _mm_subs_epu16(v, upper));
        StoreVector(to, Choose(notBelow, notAbove, lower));
    }
};

template <>
struct LinearLanes<float> {
    using Pixel = float;
    using Wide = __m128;
    static constexpr size_t kPixels = 4;
    static constexpr int kPhases = 1;
    __m128 lower, upper;
    ORLIX_INLINE explicit LinearLanes(const FilterParameters<float>& p)
        : lower(_mm_set1_ps(p.lower)), upper(_mm_set1_ps(p.upper)) {}

    ORLIX_INLINE static void Load(const float* from, Wide* phases) { phases[0] = _mm_loadu_ps(from); }
    ORLIX_INLINE static Wide Add(const Wide& a, const Wide& b) { return _mm_add_ps(a, b); }
    ORLIX_INLINE static Wide Less(const Wide& a, const Wide& b) { return _mm_sub_ps(a, b); }
    template <int kBits>
    ORLIX_INLINE static Wide Up(const Wide& a) {
        return _mm_mul_ps(a, _mm_set1_ps(1 << kBits));
    }
    template <int kBits>
    ORLIX_INLINE static Wide Down(const Wide& a) {
        return _mm_mul_ps(a, _mm_set1_ps(1.0f / (1 << kBits)));
    }
    ORLIX_INLINE static Wide Sixth(const Wide& a) { return _mm_div_ps(a, _mm_set1_ps(6)); }
    template <int kCount>
    ORLIX_INLINE static Wide Later(const Wide& a, const Wide& b) {
        return _mm_castsi128_ps(LaterBytes<4 * kCount>(_mm_castps_si128(a), _mm_castps_si128(b)));
    }
    // minps returns its second operand when either is NaN.
    ORLIX_INLINE void Store(float* to, const Wide* phases) const {
        const __m128 v = phases[0];
        const auto choose = [](const __m128& mask, const __m128& yes, const __m128& no) {
            return _mm_or_ps(_mm_and_ps(mask, yes), _mm_andnot_ps(mask, no));
        };
        const __m128 clamped = choose(_mm_cmplt_ps(v, lower), lower, _mm_min_ps(upper, v));
        const __m128 nan = _mm_castsi128_ps(_mm_set1_epi32(0x7fc00000));
        _mm_storeu_ps(to, choose(_mm_cmpunord_ps(v, v), nan, clamped));
    }
};

}  // namespace

template <class T>
void Laplacian_sse2(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters) {
    FilterRow<LaplacianRule>(rows, to, n, parameters, &Laplacian_scalar);
}
template <class T>
void SharpenLow_sse2(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters) {
    FilterRow<SharpenLowRule>(rows, to, n, parameters, &SharpenLow_scalar);
}
template <class T>
void SharpenMedium_sse2(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters) {
    FilterRow<SharpenMediumRule>(rows, to, n, parameters, &SharpenMedium_scalar);
}
template <class T>
void Gaussian3x3_sse2(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters) {
    FilterRow<Gaussian3x3Rule>(rows, to, n, parameters, &Gaussian3x3_scalar);
}
template <class T>
void Gaussian5x5_sse2(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters) {
    FilterRow<Gaussian5x5Rule>(rows, to, n, parameters, &Gaussian5x5_scalar);
}

template Kernel<FilterFn<uint8_t>> Laplacian_sse2;
template Kernel<FilterFn<uint16_t>> Laplacian_sse2;
template Kernel<FilterFn<float>> Laplacian_sse2;
template Kernel<FilterFn<uint8_t>> SharpenLow_sse2;
template Kernel<FilterFn<uint16_t>> SharpenLow_sse2;
template Kernel<FilterFn<float>> SharpenLow_sse2;
template Kernel<FilterFn<uint8_t>> SharpenMedium_sse2;
template Kernel<FilterFn<uint16_t>> SharpenMedium_sse2;
template Kernel<FilterFn<float>> SharpenMedium_sse2;
template Kernel<FilterFn<uint8_t>> Gaussian3x3_sse2;
template Kernel<FilterFn<uint16_t>> Gaussian3x3_sse2;
template Kernel<FilterFn<float>> Gaussian3x3_sse2;
template Kernel<FilterFn<uint8_t>> Gaussian5x5_sse2;
template Kernel<FilterFn<uint16_t>> Gaussian5x5_sse2;
template Kernel<FilterFn<float>> Gaussian5x5_sse2;

}  // namespace orlix
