#include "vectors/intrinsics_avx512.hpp"

#include "points/point_kernels.hpp"
#include "vectors/inline.hpp"

namespace orlix {
namespace {

// Lanes of each integer type: clamp to [first, last], then offset + p or offset - p. Runs end in a masked vector.
template <class T>
struct RampLanes;
template <>
struct RampLanes<uint8_t> {
    using Mask = __mmask64;
    __m512i first, last, offset;
    explicit RampLanes(const PointParameters<uint8_t>& p)
        : first(_mm512_set1_epi8(static_cast<char>(p.first))),
          last(_mm512_set1_epi8(static_cast<char>(p.last))),
          offset(_mm512_set1_epi8(static_cast<char>(p.offset))) {}
    static __m512i Load(Mask mask, const uint8_t* p) { return _mm512_maskz_loadu_epi8(mask, p); }
    static void Store(Mask mask, uint8_t* p, const __m512i& v) { _mm512_mask_storeu_epi8(p, mask, v); }
    __m512i Clamp(const __m512i& p) const { return _mm512_min_epu8(_mm512_max_epu8(p, first), last); }
    __m512i Rising(const __m512i& p) const { return _mm512_add_epi8(offset, Clamp(p)); }
    __m512i Falling(const __m512i& p) const { return _mm512_sub_epi8(offset, Clamp(p)); }
};

template <>
struct RampLanes<uint16_t> {
    using Mask = __mmask32;
    __m512i first, last, offset;
    explicit RampLanes(const PointParameters<uint16_t>& p)
        : first(_mm512_set1_epi16(static_cast<short>(p.first))),
          last(_mm512_set1_epi16(static_cast<short>(p.last))),
          offset(_mm512_set1_epi16(static_cast<short>(p.offset))) {}
    static __m512i Load(Mask mask, const uint16_t* p) { return _mm512_maskz_loadu_epi16(mask, p); }
    static void Store(Mask mask, uint16_t* p, const __m512i& v) { _mm512_mask_storeu_epi16(p, mask, v); }
    __m512i Clamp(const __m512i& p) const { return _mm512_min_epu16(_mm512_max_epu16(p, first), last); }
    __m512i Rising(const __m512i& p) const { return _mm512_add_epi16(offset, Clamp(p)); }
    __m512i Falling(const __m512i& p) const { return _mm512_sub_epi16(offset, Clamp(p)); }
};

template <>
struct RampLanes<uint32_t> {
    using Mask = __mmask16;
    __m512i first, last, offset;
    explicit RampLanes(const PointParameters<uint32_t>& p)
        : first(_mm512_set1_epi32(static_cast<int>(p.first))),
          last(_mm512_set1_epi32(static_cast<int>(p.last))),
          offset(_mm512_set1_epi32(static_cast<int>(p.offset))) {}
    static __m512i Load(Mask mask, const uint32_t* p) { return _mm512_maskz_loadu_epi32(mask, p); }
    static void Store(Mask mask, uint32_t* p, const __m512i& v) { _mm512_mask_storeu_epi32(p, mask, v); }
    __m512i Clamp(const __m512i& p) const { return _mm512_min_epu32(_mm512_max_epu32(p, first), last); }
    __m512i Rising(const __m512i& p) const { return _mm512_add_epi32(offset, Clamp(p)); }
    __m512i Falling(const __m512i& p) const { return _mm512_sub_epi32(offset, Clamp(p)); }
};

template <class T>
void Ramp(T* pixels, size_t n, const PointParameters<T>& parameters) {
    constexpr size_t kLanes = 64 / sizeof(T);
    using Lanes = RampLanes<T>;
    const Lanes lanes(parameters);
    const auto some = [&](T* vector, uint64_t bits) {
        const auto mask = static_cast<typename Lanes::Mask>(bits);
        const __m512i p = Lanes::Load(mask, vector);
        Lanes::Store(mask, vector, parameters.falling ? lanes.Falling(p) : lanes.Rising(p));
    };
    const Head<T> head(pixels, n);
    if (head.pixels > 0) some(head.vector, head.mask());
    size_t i = head.pixels;
    if (parameters.falling)
        for (; i + kLanes <= n; i += kLanes)
            _mm512_storeu_si512(pixels + i, lanes.Falling(_mm512_loadu_si512(pixels + i)));
    else
        for (; i + kLanes <= n; i += kLanes)
            _mm512_storeu_si512(pixels + i, lanes.Rising(_mm512_loadu_si512(pixels + i)));
    if (i < n) some(pixels + i, (uint64_t{1} << (n - i)) - 1);
}

// vminps and vmaxps would not test lower first. When s is NaN both comparisons fail and s stays.
ORLIX_INLINE __m512 Clamped(const __m512& s, const __m512& lower, const __m512& upper) {
    return _mm512_mask_mov_ps(_mm512_min_ps(upper, s), _mm512_cmp_ps_mask(s, lower, _CMP_LT_OQ), lower);
}
ORLIX_INLINE __m512d Clamped(const __m512d& s, const __m512d& lower, const __m512d& upper) {
    return _mm512_mask_mov_pd(_mm512_min_pd(upper, s), _mm512_cmp_pd_mask(s, lower, _CMP_LT_OQ), lower);
}

// Applies step to vectors of 16 floats, the last one masked, or to vectors of 8 floats widened to double.
template <class Step>
ORLIX_INLINE void InFloat(float* pixels, size_t n, const Step& step) {
    const auto some = [&](float* vector, uint64_t bits) {
        const auto mask = static_cast<__mmask16>(bits);
        _mm512_mask_storeu_ps(vector, mask, step(_mm512_maskz_loadu_ps(mask, vector)));
    };
    const Head<float> head(pixels, n);
    if (head.pixels > 0) some(head.vector, head.mask());
    size_t i = head.pixels;
    for (; i + 16 <= n; i += 16) _mm512_storeu_ps(pixels + i, step(_mm512_loadu_ps(pixels + i)));
    if (i < n) some(pixels + i, (uint64_t{1} << (n - i)) - 1);
}
template <class Step>
ORLIX_INLINE void InDouble(float* pixels, size_t n, const Step& step) {
    size_t i = 0;
    for (; i + 8 <= n; i += 8)
        _mm256_storeu_ps(pixels + i, _mm512_cvtpd_ps(step(_mm512_cvtps_pd(_mm256_loadu_ps(pixels + i)))));
    const auto rest = static_cast<__mmask8>((1u << (n - i)) - 1);
    const __m512d p = _mm512_cvtps_pd(_mm256_maskz_loadu_ps(rest, pixels + i));
    _mm256_mask_storeu_ps(pixels + i, rest, _mm512_cvtpd_ps(step(p)));
}

// p / value, as MayMultiply() has it; a zero may have the other sign, and infinities and NaN give NaN.
struct Product {
    __m512d value, inverse;
    explicit Product(double divisor) : value(_mm512_set1_pd(divisor)), inverse(_mm512_set1_pd(1 / divisor)) {}
    ORLIX_INLINE __m512d operator()(const __m512d& p) const {
        __m512d q = _mm512_mul_pd(p, inverse);
        q = _mm512_fmadd_pd(_mm512_fnmadd_pd(q, value, p), inverse, q);
        return _mm512_fmadd_pd(_mm512_fnmadd_pd(q, value, p), inverse, q);
    }
};
struct Division {
    __m512d value;
    explicit Division(double divisor) : value(_mm512_set1_pd(divisor)) {}
    ORLIX_INLINE __m512d operator()(const __m512d& p) const { return _mm512_div_pd(p, value); }
};

// Quotients of eight integers, rounded and clamped to [0, most]. Negative quotients and NaN give 0: vmaxpd returns its
// second operand when the first is NaN, or when both are zero.
template <class Quotient>
struct Divider {
    Quotient quotient;
    __m512d most, half = _mm512_set1_pd(0.5);
    Divider(double divisor, double greatest) : quotient(divisor), most(_mm512_set1_pd(greatest)) {}
    ORLIX_INLINE __m256i operator()(const __m256i& pixels) const {
        const __m512d q = quotient(_mm512_cvtepu32_pd(pixels));
        const __m512d clamped = _mm512_min_pd(_mm512_max_pd(q, _mm512_setzero_pd()), most);
        return _mm512_cvttpd_epu32(_mm512_add_pd(clamped, half));
    }
};

}  // namespace

void Ramp_avx512(uint8_t* pixels, size_t n, const PointParameters<uint8_t>& parameters) { Ramp(pixels, n, parameters); }
void Ramp_avx512(uint16_t* pixels, size_t n, const PointParameters<uint16_t>& parameters) {
    Ramp(pixels, n, parameters);
}
void Ramp_avx512(uint32_t* pixels, size_t n, const PointParameters<uint32_t>& parameters) {
    Ramp(pixels, n, parameters);
}

void Sum_avx512(float* pixels, size_t n, const PointParameters<float>& parameters) {
    const bool falling = parameters.falling;
    if (const auto value = static_cast<float>(parameters.value); IsExact(value, parameters.value)) {
        const __m512 v = _mm512_set1_ps(value);
        const __m512 lower = _mm512_set1_ps(parameters.lower), upper = _mm512_set1_ps(parameters.upper);
        if (falling)
            InFloat(pixels, n, [&](const __m512& p) { return Clamped(_mm512_sub_ps(v, p), lower, upper); });
        else
            InFloat(pixels, n, [&](const __m512& p) { return Clamped(_mm512_add_ps(p, v), lower, upper); });
    } else {
        const __m512d v = _mm512_set1_pd(parameters.value);
        const __m512d lower = _mm512_set1_pd(static_cast<double>(parameters.lower));
        const __m512d upper = _mm512_set1_pd(static_cast<double>(parameters.upper));
        if (falling)
            InDouble(pixels, n, [&](const __m512d& p) { return Clamped(_mm512_sub_pd(v, p), lower, upper); });
        else
            InDouble(pixels, n, [&](const __m512d& p) { return Clamped(_mm512_add_pd(p, v), lower, upper); });
    }
}

void Quotient_avx512(float* pixels, size_t n, const PointParameters<float>& parameters) {
    if (const auto value = static_cast<float>(parameters.value); IsExact(value, parameters.value)) {
        const __m512 v = _mm512_set1_ps(value);
        const __m512 lower = _mm512_set1_ps(-kMostFloat), upper = _mm512_set1_ps(kMostFloat);
        InFloat(pixels, n, [&](const __m512& p) { return Clamped(_mm512_div_ps(p, v), lower, upper); });
    } else {
        const __m512d lower = _mm512_set1_pd(static_cast<double>(-kMostFloat));
        const __m512d upper = _mm512_set1_pd(static_cast<double>(kMostFloat));
        if (const Product product(parameters.value); MayMultiply(parameters.value)) {
            InDouble(pixels, n, [&](const __m512d& p) {
                constexpr int kZeroOrNotFinite = 0x9f;
                const __mmask8 special = _mm512_fpclass_pd_mask(p, kZeroOrNotFinite);
                const __m512d q = _mm512_mask_mov_pd(product(p), special, _mm512_mul_pd(p, product.inverse));
                return Clamped(q, lower, upper);
            });
        } else {
            const Division divide(parameters.value);
            InDouble(pixels, n, [&](const __m512d& p) { return Clamped(divide(p), lower, upper); });
        }
    }
}

namespace {

template <class Quotient>
void Divide(uint16_t* pixels, size_t n, double value) {
    const Divider<Quotient> divide(value, 65535.0);
    size_t i = 0;
    for (; i + 8 <= n; i += 8) {
        __m128i* const at = reinterpret_cast<__m128i*>(pixels + i);
        _mm_storeu_si128(at, _mm256_cvtepi32_epi16(divide(_mm256_cvtepu16_epi32(_mm_loadu_si128(at)))));
    }
    const auto rest = static_cast<__mmask8>((1u << (n - i)) - 1);
    const __m128i p = _mm_maskz_loadu_epi16(rest, pixels + i);
    _mm_mask_storeu_epi16(pixels + i, rest, _mm256_cvtepi32_epi16(divide(_mm256_cvtepu16_epi32(p))));
}

template <class Quotient>
void Divide(uint32_t* pixels, size_t n, double value) {
    const Divider<Quotient> divide(value, 4294967295.0);
    size_t i = 0;
    for (; i + 8 <= n; i += 8) {
        __m256i* const at = reinterpret_cast<__m256i*>(pixels + i);
        _mm256_storeu_si256(at, divide(_mm256_loadu_si256(at)));
    }
    const auto rest = static_cast<__mmask8>((1u << (n - i)) - 1);
    _mm256_mask_storeu_epi32(pixels + i, rest, divide(_mm256_maskz_loadu_epi32(rest, pixels + i)));
}

template <class T>
void Divide(T* pixels, size_t n, const PointParameters<T>& parameters) {
    if (MayMultiply(parameters.value))
        Divide<Product>(pixels, n, parameters.value);
    else
        Divide<Division>(pixels, n, parameters.value);
}

}  // namespace

void Quotient_avx512(uint16_t* pixels, size_t n, const PointParameters<uint16_t>& parameters) {
    Divide(pixels, n, parameters);
}
void Quotient_avx512(uint32_t* pixels, size_t n, const PointParameters<uint32_t>& parameters) {
    Divide(pixels, n, parameters);
}

// The whole table is in four registers. Two permutations each look up one half, and the top bit of the pixel selects.
void LookUp_avx512(uint8_t* pixels, size_t n, const PointParameters<uint8_t>& parameters) {
    const __m512i t0 = _mm512_loadu_si512(parameters.table);
    const __m512i t1 = _mm512_loadu_si512(parameters.table + 64);
    const __m512i t2 = _mm512_loadu_si512(parameters.table + 128);
    const __m512i t3 = _mm512_loadu_si512(parameters.table + 192);
    const auto lookUp = [&](const __m512i& p) {
        const __m512i low = _mm512_permutex2var_epi8(t0, p, t1);
        const __m512i high = _mm512_permutex2var_epi8(t2, p, t3);
        return _mm512_mask_mov_epi8(low, _mm512_movepi8_mask(p), high);
    };
    const auto some = [&](uint8_t* vector, __mmask64 mask) {
        _mm512_mask_storeu_epi8(vector, mask, lookUp(_mm512_maskz_loadu_epi8(mask, vector)));
    };
    const Head<uint8_t> head(pixels, n);
    if (head.pixels > 0) some(head.vector, head.mask());
    size_t i = head.pixels;
    for (; i + 64 <= n; i += 64) _mm512_storeu_si512(pixels + i, lookUp(_mm512_loadu_si512(pixels + i)));
    if (i < n) some(pixels + i, (uint64_t{1} << (n - i)) - 1);
}

}  // namespace orlix
