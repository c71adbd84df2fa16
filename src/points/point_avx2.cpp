#include <immintrin.h>

#include "points/point_kernels.hpp"
#include "vectors/inline.hpp"

namespace orlix {
namespace {

// Lanes of each integer type: clamp to [first, last], then offset + p or offset - p.
template <class T>
struct RampLanes;
template <>
struct RampLanes<uint8_t> {
    __m256i first, last, offset;
    explicit RampLanes(const PointParameters<uint8_t>& p)
        : first(_mm256_set1_epi8(static_cast<char>(p.first))),
          last(_mm256_set1_epi8(static_cast<char>(p.last))),
          offset(_mm256_set1_epi8(static_cast<char>(p.offset))) {}
    __m256i Clamp(const __m256i& p) const { return _mm256_min_epu8(_mm256_max_epu8(p, first), last); }
    __m256i Rising(const __m256i& p) const { return _mm256_add_epi8(offset, Clamp(p)); }
    __m256i Falling(const __m256i& p) const { return _mm256_sub_epi8(offset, Clamp(p)); }
};

template <>
struct RampLanes<uint16_t> {
    __m256i first, last, offset;
    explicit RampLanes(const PointParameters<uint16_t>& p)
        : first(_mm256_set1_epi16(static_cast<short>(p.first))),
          last(_mm256_set1_epi16(static_cast<short>(p.last))),
          offset(_mm256_set1_epi16(static_cast<short>(p.offset))) {}
    __m256i Clamp(const __m256i& p) const { return _mm256_min_epu16(_mm256_max_epu16(p, first), last); }
    __m256i Rising(const __m256i& p) const { return _mm256_add_epi16(offset, Clamp(p)); }
    __m256i Falling(const __m256i& p) const { return _mm256_sub_epi16(offset, Clamp(p)); }
};

template <>
struct RampLanes<uint32_t> {
    __m256i first, last, offset;
    explicit RampLanes(const PointParameters<uint32_t>& p)
        : first(_mm256_set1_epi32(static_cast<int>(p.first))),
          last(_mm256_set1_epi32(static_cast<int>(p.last))),
          offset(_mm256_set1_epi32(static_cast<int>(p.offset))) {}
    __m256i Clamp(const __m256i& p) const { return _mm256_min_epu32(_mm256_max_epu32(p, first), last); }
    __m256i Rising(const __m256i& p) const { return _mm256_add_epi32(offset, Clamp(p)); }
    __m256i Falling(const __m256i& p) const { return _mm256_sub_epi32(offset, Clamp(p)); }
};

template <class T>
void Ramp(T* pixels, size_t n, const PointParameters<T>& parameters) {
    constexpr size_t kLanes = 32 / sizeof(T);
    const RampLanes<T> lanes(parameters);
    const auto at = [&](size_t i) { return reinterpret_cast<__m256i*>(pixels + i); };
    size_t i = 0;
    if (parameters.falling)
        for (; i + kLanes <= n; i += kLanes) _mm256_storeu_si256(at(i), lanes.Falling(_mm256_loadu_si256(at(i))));
    else
        for (; i + kLanes <= n; i += kLanes) _mm256_storeu_si256(at(i), lanes.Rising(_mm256_loadu_si256(at(i))));
    Ramp_scalar(pixels + i, n - i, parameters);
}

// vminps and vmaxps would not test lower first. When s is NaN both comparisons fail and s stays.
ORLIX_INLINE __m256 Clamped(const __m256& s, const __m256& lower, const __m256& upper) {
    return _mm256_blendv_ps(_mm256_min_ps(upper, s), lower, _mm256_cmp_ps(s, lower, _CMP_LT_OQ));
}
ORLIX_INLINE __m256d Clamped(const __m256d& s, const __m256d& lower, const __m256d& upper) {
    return _mm256_blendv_pd(_mm256_min_pd(upper, s), lower, _mm256_cmp_pd(s, lower, _CMP_LT_OQ));
}

// p / value, as MayMultiply() has it; a zero may have the other sign, and infinities and NaN give NaN.
struct Product {
    __m256d value, inverse;
    explicit Product(double divisor) : value(_mm256_set1_pd(divisor)), inverse(_mm256_set1_pd(1 / divisor)) {}
    ORLIX_INLINE __m256d operator()(const __m256d& p) const {
        __m256d q = _mm256_mul_pd(p, inverse);
        q = _mm256_fmadd_pd(_mm256_fnmadd_pd(q, value, p), inverse, q);
        return _mm256_fmadd_pd(_mm256_fnmadd_pd(q, value, p), inverse, q);
    }
};
struct Division {
    __m256d value;
    explicit Division(double divisor) : value(_mm256_set1_pd(divisor)) {}
    ORLIX_INLINE __m256d operator()(const __m256d& p) const { return _mm256_div_pd(p, value); }
};

// Quotients of four integers, rounded and clamped to [0, most], as 32-bit integers. Negative quotients and NaN give 0:
// maxpd returns its second operand when the first is NaN.
template <class Quotient>
struct Divider {
    Quotient quotient;
    __m256d most, half = _mm256_set1_pd(0.5), bias = _mm256_set1_pd(0x1p31);
    __m128i sign = _mm_set1_epi32(static_cast<int>(0x80000000u));
    Divider(double divisor, double greatest) : quotient(divisor), most(_mm256_set1_pd(greatest)) {}
    ORLIX_INLINE __m128i operator()(__m128i pixels) const {
        // The instructions convert signed integers only.
        const __m256d p = _mm256_add_pd(_mm256_cvtepi32_pd(_mm_xor_si128(pixels, sign)), bias);
        const __m256d q = _mm256_min_pd(_mm256_max_pd(quotient(p), _mm256_setzero_pd()), most);
        const __m256d rounded = _mm256_floor_pd(_mm256_add_pd(q, half));
        return _mm_xor_si128(_mm256_cvtpd_epi32(_mm256_sub_pd(rounded, bias)), sign);
    }
};

}  // namespace

void Ramp_avx2(uint8_t* pixels, size_t n, const PointParameters<uint8_t>& parameters) { Ramp(pixels, n, parameters); }
void Ramp_avx2(uint16_t* pixels, size_t n, const PointParameters<uint16_t>& parameters) { Ramp(pixels, n, parameters); }
void Ramp_avx2(uint32_t* pixels, size_t n, const PointParameters<uint32_t>& parameters) { Ramp(pixels, n, parameters); }

void Sum_avx2(float* pixels, size_t n, const PointParameters<float>& parameters) {
    const bool falling = parameters.falling;
    size_t i = 0;
    if (const auto value = static_cast<float>(parameters.value); IsExact(value, parameters.value)) {
        const __m256 v = _mm256_set1_ps(value);
        const __m256 lower = _mm256_set1_ps(parameters.lower), upper = _mm256_set1_ps(parameters.upper);
        for (; i + 8 <= n; i += 8) {
            const __m256 p = _mm256_loadu_ps(pixels + i);
            const __m256 s = falling ? _mm256_sub_ps(v, p) : _mm256_add_ps(p, v);
            _mm256_storeu_ps(pixels + i, Clamped(s, lower, upper));
        }
    } else {
        const __m256d v = _mm256_set1_pd(parameters.value);
        const __m256d lower = _mm256_set1_pd(static_cast<double>(parameters.lower));
        const __m256d upper = _mm256_set1_pd(static_cast<double>(parameters.upper));
        for (; i + 4 <= n; i += 4) {
            const __m256d p = _mm256_cvtps_pd(_mm_loadu_ps(pixels + i));
            const __m256d s = falling ? _mm256_sub_pd(v, p) : _mm256_add_pd(p, v);
            _mm_storeu_ps(pixels + i, _mm256_cvtpd_ps(Clamped(s, lower, upper)));
        }
    }
    Sum_scalar(pixels + i, n - i, parameters);
}

void Quotient_avx2(float* pixels, size_t n, const PointParameters<float>& parameters) {
    size_t i = 0;
    if (const auto value = static_cast<float>(parameters.value); IsExact(value, parameters.value)) {
        const __m256 v = _mm256_set1_ps(value);
        const __m256 lower = _mm256_set1_ps(-kMostFloat), upper = _mm256_set1_ps(kMostFloat);
        for (; i + 8 <= n; i += 8)
            _mm256_storeu_ps(pixels + i, Clamped(_mm256_div_ps(_mm256_loadu_ps(pixels + i), v), lower, upper));
    } else {
        const __m256d lower = _mm256_set1_pd(static_cast<double>(-kMostFloat));
        const __m256d upper = _mm256_set1_pd(static_cast<double>(kMostFloat));
        const Product product(parameters.value);
        const Division divide(parameters.value);
        const bool multiplies = MayMultiply(parameters.value);
        for (; i + 4 <= n; i += 4) {
            const __m256d p = _mm256_cvtps_pd(_mm_loadu_ps(pixels + i));
            __m256d q;
            if (multiplies) {
                // Zeros, infinities and NaN are p times a number.
                const __m256d first = _mm256_mul_pd(p, product.inverse);
                const __m256d zero = _mm256_sub_pd(first, first);  // NaN where it is not finite
                q = _mm256_blendv_pd(first, product(p), _mm256_cmp_pd(first, zero, _CMP_NEQ_OQ));
            } else {
                q = divide(p);
            }
            _mm_storeu_ps(pixels + i, _mm256_cvtpd_ps(Clamped(q, lower, upper)));
        }
    }
    Quotient_scalar(pixels + i, n - i, parameters);
}

namespace {

template <class Quotient>
void Divide(uint16_t* pixels, size_t n, const PointParameters<uint16_t>& parameters) {
    const Divider<Quotient> divide(parameters.value, 65535.0);
    size_t i = 0;
    for (; i + 8 <= n; i += 8) {
        const __m128i p = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels + i));
        const __m128i low = divide(_mm_cvtepu16_epi32(p));
        const __m128i high = divide(_mm_cvtepu16_epi32(_mm_srli_si128(p, 8)));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(pixels + i), _mm_packus_epi32(low, high));
    }
    Quotient_scalar(pixels + i, n - i, parameters);
}

template <class Quotient>
void Divide(uint32_t* pixels, size_t n, const PointParameters<uint32_t>& parameters) {
    const Divider<Quotient> divide(parameters.value, 4294967295.0);
    size_t i = 0;
    for (; i + 4 <= n; i += 4) {
        __m128i* const at = reinterpret_cast<__m128i*>(pixels + i);
        _mm_storeu_si128(at, divide(_mm_loadu_si128(at)));
    }
    Quotient_scalar(pixels + i, n - i, parameters);
}

template <class T>
void Divide(T* pixels, size_t n, const PointParameters<T>& parameters) {
    if (MayMultiply(parameters.value))
        Divide<Product>(pixels, n, parameters);
    else
        Divide<Division>(pixels, n, parameters);
}

}  // namespace

void Quotient_avx2(uint16_t* pixels, size_t n, const PointParameters<uint16_t>& parameters) {
    Divide(pixels, n, parameters);
}
void Quotient_avx2(uint32_t* pixels, size_t n, const PointParameters<uint32_t>& parameters) {
    Divide(pixels, n, parameters);
}

// A shuffle looks up 16 entries by the low four bits of an index and gives 0 when bit 7 is set. Each row of 16 entries
// is replaced by its exclusive or with the preceding row. Row k contributes when the index minus 16 k is not negative,
// so an index in row k combines the rows 0..k into the original row k. The two halves of the table are separate:
// saturation keeps pixels of the other half, which are negative as signed bytes, negative.
void LookUp_avx2(uint8_t* pixels, size_t n, const PointParameters<uint8_t>& parameters) {
    uint8_t rows[256];
    for (int i = 0; i < 256; ++i)
        rows[i] = static_cast<uint8_t>(parameters.table[i] ^ (i % 128 < 16 ? 0 : parameters.table[i - 16]));
    const __m256i top = _mm256_set1_epi8(static_cast<char>(0x80));
    const __m256i sixteen = _mm256_set1_epi8(16);
    size_t i = 0;
    for (; i + 64 <= n; i += 64) {
        __m256i* const at = reinterpret_cast<__m256i*>(pixels + i);
        __m256i low0 = _mm256_loadu_si256(at);
        __m256i low1 = _mm256_loadu_si256(at + 1);
        __m256i high0 = _mm256_xor_si256(low0, top);
        __m256i high1 = _mm256_xor_si256(low1, top);
        __m256i result0 = _mm256_setzero_si256();
        __m256i result1 = _mm256_setzero_si256();
#pragma GCC unroll 8
        for (int row = 0; row < 8; ++row) {
            const auto entries = [&](int first) {
                return _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(rows + first)));
            };
            const __m256i lowRow = entries(16 * row);
            const __m256i highRow = entries(128 + 16 * row);
            result0 = _mm256_xor_si256(result0, _mm256_shuffle_epi8(lowRow, low0));
            result1 = _mm256_xor_si256(result1, _mm256_shuffle_epi8(lowRow, low1));
            result0 = _mm256_xor_si256(result0, _mm256_shuffle_epi8(highRow, high0));
            result1 = _mm256_xor_si256(result1, _mm256_shuffle_epi8(highRow, high1));
            low0 = _mm256_subs_epi8(low0, sixteen);
            low1 = _mm256_subs_epi8(low1, sixteen);
            high0 = _mm256_subs_epi8(high0, sixteen);
            high1 = _mm256_subs_epi8(high1, sixteen);
        }
        _mm256_storeu_si256(at, result0);
        _mm256_storeu_si256(at + 1, result1);
    }
    LookUp_scalar(pixels + i, n - i, parameters);
}

}  // namespace orlix
