#include <emmintrin.h>

#include "files/png_filter.hpp"
#include "files/png_filter_vectors.hpp"
#include "vectors/lanes_sse2.hpp"

namespace orlix::png {
namespace {

struct Bytes : PixelLanes<uint8_t> {
    static Vector Zero() { return _mm_setzero_si128(); }
    static Vector One() { return _mm_set1_epi8(1); }
    static Vector Add(Vector a, Vector b) { return _mm_add_epi8(a, b); }
    static Vector AddSaturated(Vector a, Vector b) { return _mm_adds_epu8(a, b); }
    static Vector Sub(Vector a, Vector b) { return _mm_sub_epi8(a, b); }
    static Vector Equal(Vector a, Vector b) { return _mm_cmpeq_epi8(a, b); }
    static Vector And(Vector a, Vector b) { return _mm_and_si128(a, b); }
    static Vector Or(Vector a, Vector b) { return _mm_or_si128(a, b); }
    static Vector Xor(Vector a, Vector b) { return _mm_xor_si128(a, b); }
    static Vector Select(Vector mask, Vector yes, Vector no) {
        return _mm_or_si128(_mm_and_si128(mask, yes), _mm_andnot_si128(mask, no));
    }
    static Vector MeanUp(Vector a, Vector b) { return _mm_avg_epu8(a, b); }
    static Vector InterleaveLow(Vector a, Vector b) { return _mm_unpacklo_epi8(a, b); }
    static Vector InterleaveHigh(Vector a, Vector b) { return _mm_unpackhi_epi8(a, b); }
    // Parts of 16 bytes, each `step` behind the one before.
    static Vector LoadParts(const uint8_t* p, size_t) { return Load(p); }
    static void StoreParts(uint8_t* p, size_t, Vector v) { Store(p, v); }
    // Every byte one place up, and a new first one.
    static Vector Next(Vector v, uint8_t first) { return _mm_or_si128(_mm_slli_si128(v, 1), _mm_cvtsi32_si128(first)); }
    // Adds the bytes to 64-bit sums.
    static Vector AddUp(Vector sums, Vector v) { return _mm_add_epi64(sums, _mm_sad_epu8(v, Zero())); }
    static uint64_t Total(Vector sums) {
        alignas(16) uint64_t parts[2];
        _mm_store_si128(reinterpret_cast<__m128i*>(parts), sums);
        return parts[0] + parts[1];
    }
};

}  // namespace

void Unfilter_sse2(uint8_t* rows, size_t count, const uint8_t* above, size_t size, size_t pixel) {
    UnfilterIn<Bytes>(rows, count, above, size, pixel, &Unfilter_scalar);
}

uint64_t ApplyFilter_sse2(Filter filter, const uint8_t* row, const uint8_t* above, size_t size, size_t pixel,
                          uint8_t* filtered) {
    return ApplyIn<Bytes>(filter, row, above, size, pixel, filtered);
}

}  // namespace orlix::png
