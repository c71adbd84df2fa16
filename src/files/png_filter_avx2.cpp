#include <immintrin.h>

#include "files/png_filter.hpp"
#include "files/png_filter_vectors.hpp"
#include "vectors/lanes_avx2.hpp"

namespace orlix::png {
namespace {

struct WideBytes : PixelLanes<uint8_t> {
    static Vector Zero() { return _mm256_setzero_si256(); }
    static Vector One() { return _mm256_set1_epi8(1); }
    static Vector Add(Vector a, Vector b) { return _mm256_add_epi8(a, b); }
    static Vector AddSaturated(Vector a, Vector b) { return _mm256_adds_epu8(a, b); }
    static Vector Sub(Vector a, Vector b) { return _mm256_sub_epi8(a, b); }
    static Vector Equal(Vector a, Vector b) { return _mm256_cmpeq_epi8(a, b); }
    static Vector And(Vector a, Vector b) { return _mm256_and_si256(a, b); }
    static Vector Or(Vector a, Vector b) { return _mm256_or_si256(a, b); }
    static Vector Xor(Vector a, Vector b) { return _mm256_xor_si256(a, b); }
    static Vector Select(Vector mask, Vector yes, Vector no) { return _mm256_blendv_epi8(no, yes, mask); }
    static Vector MeanUp(Vector a, Vector b) { return _mm256_avg_epu8(a, b); }
    static Vector InterleaveLow(Vector a, Vector b) { return _mm256_unpacklo_epi8(a, b); }
    static Vector InterleaveHigh(Vector a, Vector b) { return _mm256_unpackhi_epi8(a, b); }
    static Vector LoadParts(const uint8_t* p, size_t step) {
        return _mm256_loadu2_m128i(reinterpret_cast<const __m128i*>(p + step), reinterpret_cast<const __m128i*>(p));
    }
    static void StoreParts(uint8_t* p, size_t step, Vector v) {
        _mm256_storeu2_m128i(reinterpret_cast<__m128i*>(p + step), reinterpret_cast<__m128i*>(p), v);
    }
    static Vector Next(Vector v, uint8_t first) {
        const Vector before = _mm256_inserti128_si256(_mm256_setzero_si256(), _mm256_castsi256_si128(v), 1);
        return Or(_mm256_alignr_epi8(v, before, 15), _mm256_zextsi128_si256(_mm_cvtsi32_si128(first)));
    }
    static Vector AddUp(Vector sums, Vector v) { return _mm256_add_epi64(sums, _mm256_sad_epu8(v, Zero())); }
    static uint64_t Total(Vector sums) {
        alignas(32) uint64_t parts[4];
        _mm256_store_si256(reinterpret_cast<__m256i*>(parts), sums);
        return parts[0] + parts[1] + parts[2] + parts[3];
    }
};

}  // namespace

void Unfilter_avx2(uint8_t* rows, size_t count, const uint8_t* above, size_t size, size_t pixel) {
    UnfilterIn<WideBytes>(rows, count, above, size, pixel, &Unfilter_sse2);
}

uint64_t ApplyFilter_avx2(Filter filter, const uint8_t* row, const uint8_t* above, size_t size, size_t pixel,
                          uint8_t* filtered) {
    return ApplyIn<WideBytes>(filter, row, above, size, pixel, filtered);
}

}  // namespace orlix::png
