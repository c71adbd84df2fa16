#include <emmintrin.h>

#include "points/point_kernels.hpp"

namespace orlix {
namespace {

// Lanes of each integer type: clamp to [first, last], then offset + p or offset - p.
template <class T>
struct RampLanes;
template <>
struct RampLanes<uint8_t> {
    __m128i first, last, offset;
    explicit RampLanes(const PointParameters<uint8_t>& p)
        : first(_mm_set1_epi8(static_cast<char>(p.first))),
          last(_mm_set1_epi8(static_cast<char>(p.last))),
          offset(_mm_set1_epi8(static_cast<char>(p.offset))) {}
    __m128i Clamp(__m128i p) const { return _mm_min_epu8(_mm_max_epu8(p, first), last); }
    __m128i Rising(__m128i p) const { return _mm_add_epi8(offset, Clamp(p)); }
    __m128i Falling(__m128i p) const { return _mm_sub_epi8(offset, Clamp(p)); }
};

template <>
struct RampLanes<uint16_t> {
    __m128i first, last, offset;
    explicit RampLanes(const PointParameters<uint16_t>& p)
        : first(_mm_set1_epi16(static_cast<short>(p.first))),
          last(_mm_set1_epi16(static_cast<short>(p.last))),
          offset(_mm_set1_epi16(static_cast<short>(p.offset))) {}
    // SSE2 has no unsigned 16-bit minimum (SSE4.1 does), so saturating differences are used.
    __m128i Clamp(__m128i p) const {
        p = _mm_add_epi16(_mm_subs_epu16(p, first), first);
        return _mm_sub_epi16(p, _mm_subs_epu16(p, last));
    }
    __m128i Rising(__m128i p) const { return _mm_add_epi16(offset, Clamp(p)); }
    __m128i Falling(__m128i p) const { return _mm_sub_epi16(offset, Clamp(p)); }
};

template <>
struct RampLanes<uint32_t> {
    __m128i first, last, offset, sign = _mm_set1_epi32(static_cast<int>(0x80000000u));
    explicit RampLanes(const PointParameters<uint32_t>& p)
        : first(_mm_set1_epi32(static_cast<int>(p.first))),
          last(_mm_set1_epi32(static_cast<int>(p.last))),
          offset(_mm_set1_epi32(static_cast<int>(p.offset))) {}
    __m128i Greater(__m128i a, __m128i b) const {
        return _mm_cmpgt_epi32(_mm_xor_si128(a, sign), _mm_xor_si128(b, sign));
    }
    static __m128i Choose(__m128i mask, __m128i yes, __m128i no) {
        return _mm_or_si128(_mm_and_si128(mask, yes), _mm_andnot_si128(mask, no));
    }
    __m128i Clamp(__m128i p) const {
        p = Choose(Greater(first, p), first, p);
        return Choose(Greater(p, last), last, p);
    }
    __m128i Rising(__m128i p) const { return _mm_add_epi32(offset, Clamp(p)); }
    __m128i Falling(__m128i p) const { return _mm_sub_epi32(offset, Clamp(p)); }
};

template <class T>
void Ramp(T* pixels, size_t n, const PointParameters<T>& parameters) {
    constexpr size_t kLanes = 16 / sizeof(T);
    const RampLanes<T> lanes(parameters);
    const auto at = [&](size_t i) { return reinterpret_cast<__m128i*>(pixels + i); };
    size_t i = 0;
    if (parameters.falling)
        for (; i + kLanes <= n; i += kLanes) _mm_storeu_si128(at(i), lanes.Falling(_mm_loadu_si128(at(i))));
    else
        for (; i + kLanes <= n; i += kLanes) _mm_storeu_si128(at(i), lanes.Rising(_mm_loadu_si128(at(i))));
    Ramp_scalar(pixels + i, n - i, parameters);
}

// minps and maxps would not test lower first. When s is NaN both comparisons fail and s stays.
__m128 Clamped(__m128 s, __m128 lower, __m128 upper) {
    const __m128 below = _mm_cmplt_ps(s, lower);
    return _mm_or_ps(_mm_and_ps(below, lower), _mm_andnot_ps(below, _mm_min_ps(upper, s)));
}
__m128d Clamped(__m128d s, __m128d lower, __m128d upper) {
    const __m128d below = _mm_cmplt_pd(s, lower);
    return _mm_or_pd(_mm_and_pd(below, lower), _mm_andnot_pd(below, _mm_min_pd(upper, s)));
}

}  // namespace

void Ramp_sse2(uint8_t* pixels, size_t n, const PointParameters<uint8_t>& parameters) { Ramp(pixels, n, parameters); }
void Ramp_sse2(uint16_t* pixels, size_t n, const PointParameters<uint16_t>& parameters) { Ramp(pixels, n, parameters); }
void Ramp_sse2(uint32_t* pixels, size_t n, const PointParameters<uint32_t>& parameters) { Ramp(pixels, n, parameters); }

void Sum_sse2(float* pixels, size_t n, const PointParameters<float>& parameters) {
    const bool falling = parameters.falling;
    size_t i = 0;
    if (const auto value = static_cast<float>(parameters.value); IsExact(value, parameters.value)) {
        const __m128 v = _mm_set1_ps(value);
        const __m128 lower = _mm_set1_ps(parameters.lower), upper = _mm_set1_ps(parameters.upper);
        for (; i + 4 <= n; i += 4) {
            const __m128 p = _mm_loadu_ps(pixels + i);
            _mm_storeu_ps(pixels + i, Clamped(falling ? _mm_sub_ps(v, p) : _mm_add_ps(p, v), lower, upper));
        }
    } else {
        const __m128d v = _mm_set1_pd(parameters.value);
        const __m128d lower = _mm_set1_pd(static_cast<double>(parameters.lower));
        const __m128d upper = _mm_set1_pd(static_cast<double>(parameters.upper));
        const auto sum = [&](__m128 two) {
            const __m128d p = _mm_cvtps_pd(two);
            return _mm_cvtpd_ps(Clamped(falling ? _mm_sub_pd(v, p) : _mm_add_pd(p, v), lower, upper));
        };
        for (; i + 4 <= n; i += 4) {
            const __m128 p = _mm_loadu_ps(pixels + i);
            _mm_storeu_ps(pixels + i, _mm_movelh_ps(sum(p), sum(_mm_movehl_ps(p, p))));
        }
    }
    Sum_scalar(pixels + i, n - i, parameters);
}

void Quotient_sse2(float* pixels, size_t n, const PointParameters<float>& parameters) {
    size_t i = 0;
    if (const auto value = static_cast<float>(parameters.value); IsExact(value, parameters.value)) {
        const __m128 v = _mm_set1_ps(value);
        const __m128 lower = _mm_set1_ps(-kMostFloat), upper = _mm_set1_ps(kMostFloat);
        for (; i + 4 <= n; i += 4)
            _mm_storeu_ps(pixels + i, Clamped(_mm_div_ps(_mm_loadu_ps(pixels + i), v), lower, upper));
    }
    Quotient_scalar(pixels + i, n - i, parameters);
}

void Quotient_sse2(uint16_t* pixels, size_t n, const PointParameters<uint16_t>& parameters) {
    const __m128d value = _mm_set1_pd(parameters.value), most = _mm_set1_pd(65535.0), half = _mm_set1_pd(0.5);
    const __m128i zero = _mm_setzero_si128(), about = _mm_set1_epi32(0x8000), turn = _mm_set1_epi16(INT16_MIN);
    // Two quotients in the low half, minus 2^15 for packing. The maximum is 0 where the quotient is NaN; truncation is
    // floor from there on.
    const auto two = [&](__m128i p) {
        const __m128d q = _mm_div_pd(_mm_cvtepi32_pd(p), value);
        const __m128d kept = _mm_min_pd(_mm_max_pd(q, _mm_setzero_pd()), most);
        return _mm_sub_epi32(_mm_cvttpd_epi32(_mm_add_pd(kept, half)), about);
    };
    const auto four = [&](__m128i p) { return _mm_unpacklo_epi64(two(p), two(_mm_unpackhi_epi64(p, p))); };
    size_t i = 0;
    for (; i + 8 <= n; i += 8) {
        __m128i* const at = reinterpret_cast<__m128i*>(pixels + i);
        const __m128i p = _mm_loadu_si128(at);
        const __m128i low = four(_mm_unpacklo_epi16(p, zero)), high = four(_mm_unpackhi_epi16(p, zero));
        _mm_storeu_si128(at, _mm_xor_si128(_mm_packs_epi32(low, high), turn));
    }
    Quotient_scalar(pixels + i, n - i, parameters);
}

}  // namespace orlix
