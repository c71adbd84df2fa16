#include <immintrin.h>

#include "display/raster_kernels.hpp"

namespace orlix {
namespace {

[[gnu::always_inline]] inline __m128i Load16(const uint8_t* p) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}
[[gnu::always_inline]] inline __m256i Load8(const int32_t* p) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
}
[[gnu::always_inline]] inline void Store(uint32_t* p, const __m256i& v) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v);
}

// 16 bytes, and the pixels 0..7 or 8..15 of them.
[[gnu::always_inline]] inline __m256i Words(const uint8_t* p) { return _mm256_cvtepu8_epi16(Load16(p)); }

}  // namespace

void ExpandGrey_avx2(uint32_t* to, const uint8_t* levels, size_t n) {
    const __m256i threefold = _mm256_setr_epi8(0, 0, 0, -1, 1, 1, 1, -1, 2, 2, 2, -1, 3, 3, 3, -1,  //
                                               4, 4, 4, -1, 5, 5, 5, -1, 6, 6, 6, -1, 7, 7, 7, -1);
    size_t i = 0;
    for (; i + 16 <= n; i += 16)
        for (size_t k = 0; k < 16; k += 8) {
            const __m128i eight = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(levels + i + k));
            Store(to + i + k, _mm256_shuffle_epi8(_mm256_broadcastsi128_si256(eight), threefold));
        }
    ExpandGrey_scalar(to + i, levels + i, n - i);
}

void ExpandPlanes_avx2(uint32_t* to, const uint8_t* red, const uint8_t* green, const uint8_t* blue, size_t n) {
    size_t i = 0;
    for (; i + 16 <= n; i += 16) {
        // Pixels 0-7 and 8-15 in one half each; the interleaving brings 0-3 and 8-11, 4-7 and 12-15 together.
        const __m256i blueGreen = _mm256_or_si256(Words(blue + i), _mm256_slli_epi16(Words(green + i), 8));
        const __m256i reds = Words(red + i);
        const __m256i low = _mm256_unpacklo_epi16(blueGreen, reds), high = _mm256_unpackhi_epi16(blueGreen, reds);
        Store(to + i, _mm256_permute2x128_si256(low, high, 0x20));
        Store(to + i + 8, _mm256_permute2x128_si256(low, high, 0x31));
    }
    ExpandPlanes_scalar(to + i, red + i, green + i, blue + i, n - i);
}

void ExpandTriples_avx2(uint32_t* to, const uint8_t* triples, size_t n) {
    const __m256i apart =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1));
    size_t i = 0;
    // Eight pixels are 24 bytes; the second load reaches 28.
    for (; 3 * i + 28 <= 3 * n; i += 8) {
        const __m256i twice =
            _mm256_inserti128_si256(_mm256_castsi128_si256(Load16(triples + 3 * i)), Load16(triples + 3 * i + 12), 1);
        Store(to + i, _mm256_shuffle_epi8(twice, apart));
    }
    ExpandTriples_scalar(to + i, triples + 3 * i, n - i);
}

namespace {

constexpr size_t kPicked = 16;

// As many of the columns, 16 at a time, as lie within kWindows times 16 bytes; returns where it stopped. A shuffle takes what
// it finds in its 16 bytes. least and most bound the columns.
template <int32_t kWindows>
[[gnu::always_inline]] inline size_t PickFrom(uint8_t* to, const uint8_t* row, const int32_t* columns, size_t n,
                                              size_t start, int32_t least, int32_t most) {
    constexpr int32_t kReach = 16 * kWindows;
    const int32_t lastBase = most + 1 - kReach;  // never beyond the last column
    if (lastBase < least) return start;
    size_t i = start;
    for (; i + kPicked <= n; i += kPicked) {
        const int32_t first = columns[i], last = columns[i + kPicked - 1];
        const int32_t low = first < last ? first : last, high = first < last ? last : first;
        if (high - low >= kReach) break;
        const int32_t base = low < lastBase ? low : lastBase;
        const __m256i from = _mm256_set1_epi32(base);
        const __m256i words = _mm256_packs_epi32(_mm256_sub_epi32(Load8(columns + i), from),
                                                 _mm256_sub_epi32(Load8(columns + i + 8), from));
        const __m256i ordered = _mm256_permute4x64_epi64(words, 0xd8);
        __m128i index = _mm_packus_epi16(_mm256_castsi256_si128(ordered), _mm256_extracti128_si256(ordered, 1));
        __m128i picked = _mm_setzero_si128();
        for (int32_t k = 0; k < kWindows; ++k) {
            // Bytes 0..15 become 0x70..0x7f, all others have bit 7 set, which gives 0.
            const __m128i here = _mm_adds_epu8(index, _mm_set1_epi8(0x70));
            picked = _mm_or_si128(picked, _mm_shuffle_epi8(Load16(row + base + 16 * k), here));
            index = _mm_sub_epi8(index, _mm_set1_epi8(16));
        }
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + i), picked);
    }
    return i;
}

}  // namespace

void Pick_avx2(uint8_t* to, const uint8_t* row, const int32_t* columns, size_t n) {
    size_t i = 0;
    if (n >= kPicked) {
        const int32_t least = columns[0] < columns[n - 1] ? columns[0] : columns[n - 1];
        const int32_t most = columns[0] < columns[n - 1] ? columns[n - 1] : columns[0];
        // What evenly spaced columns need; the rest, and others, step by step.
        const auto reach = static_cast<uint64_t>(most - least) * kPicked / n + 1;
        if (reach < 16)
            i = PickFrom<1>(to, row, columns, n, 0, least, most);
        else if (reach < 32)
            i = PickFrom<2>(to, row, columns, n, 0, least, most);
        else if (reach < 48)
            i = PickFrom<3>(to, row, columns, n, 0, least, most);
        else if (reach < 64)
            i = PickFrom<4>(to, row, columns, n, 0, least, most);
    }
    Pick_scalar(to + i, row, columns + i, n - i);
}

void WeighRows_avx2(uint32_t* sums, const uint8_t* a, uint32_t aWeight, const uint8_t* b, uint32_t bWeight, size_t n) {
    const __m256i weights = _mm256_set1_epi32(static_cast<int>(bWeight << 16 | aWeight));
    size_t i = 0;
    for (; i + 16 <= n; i += 16) {
        const __m128i as = Load16(a + i), bs = Load16(b + i);
        const __m256i low = _mm256_cvtepu8_epi16(_mm_unpacklo_epi8(as, bs));
        const __m256i high = _mm256_cvtepu8_epi16(_mm_unpackhi_epi8(as, bs));
        const __m256i* const at = reinterpret_cast<const __m256i*>(sums + i);
        const __m256i first = _mm256_add_epi32(_mm256_loadu_si256(at), _mm256_madd_epi16(low, weights));
        const __m256i second = _mm256_add_epi32(_mm256_loadu_si256(at + 1), _mm256_madd_epi16(high, weights));
        Store(sums + i, first);
        Store(sums + i + 8, second);
    }
    WeighRows_scalar(sums + i, a + i, aWeight, b + i, bWeight, n - i);
}

void Interpolate_avx2(uint8_t* to, const uint32_t* sums, const int32_t* left, const uint16_t* share, size_t n) {
    const __m256i half = _mm256_set1_epi32(1 << 23);
    size_t i = 0;
    for (; i + 8 <= n; i += 8) {
        const int32_t first = left[i], last = left[i + 7];
        const int32_t base = first < last ? first : last;
        const __m256i index = _mm256_sub_epi32(Load8(left + i), _mm256_set1_epi32(base));
        const __m256i* const at = reinterpret_cast<const __m256i*>(sums + base);
        const __m256i* const next = reinterpret_cast<const __m256i*>(sums + base + 1);
        const __m256i a = _mm256_permutevar8x32_epi32(_mm256_loadu_si256(at), index);
        const __m256i b = _mm256_permutevar8x32_epi32(_mm256_loadu_si256(next), index);
        const __m256i shares = _mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(share + i)));
        // a (4096 - share) + b share, modulo 2^32 in between
        const __m256i sum =
            _mm256_add_epi32(_mm256_slli_epi32(a, 12), _mm256_mullo_epi32(_mm256_sub_epi32(b, a), shares));
        const __m256i result = _mm256_srli_epi32(_mm256_add_epi32(sum, half), 24);
        const __m128i words = _mm_packus_epi32(_mm256_castsi256_si128(result), _mm256_extracti128_si256(result, 1));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(to + i), _mm_packus_epi16(words, words));
    }
    Interpolate_scalar(to + i, sums, left + i, share + i, n - i);
}

void Average_avx2(uint8_t* to, const uint32_t* sums, const int32_t* first, const uint16_t* weights, size_t taps,
                  size_t n) {
    size_t i = 0;
    for (; taps == 4 && i + 8 <= n; i += 8) {
        __m256i parts[4];  // of two pixels each
        for (size_t j = 0; j < 4; ++j) {
            const auto sumsOf = [&](size_t pixel) {
                return _mm_loadu_si128(reinterpret_cast<const __m128i*>(sums + first[i + pixel]));
            };
            const __m256i v = _mm256_inserti128_si256(_mm256_castsi128_si256(sumsOf(2 * j)), sumsOf(2 * j + 1), 1);
            const uint16_t* const weight = weights + (i + 2 * j) * 4;
            parts[j] =
                _mm256_mullo_epi32(v, _mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(weight))));
        }
        // Even pixels in the low half, odd ones in the high half.
        const __m256i sum =
            _mm256_hadd_epi32(_mm256_hadd_epi32(parts[0], parts[1]), _mm256_hadd_epi32(parts[2], parts[3]));
        const __m256i result = _mm256_srli_epi32(_mm256_add_epi32(sum, _mm256_set1_epi32(1 << 23)), 24);
        const __m128i pixels =
            _mm_or_si128(_mm256_castsi256_si128(result), _mm_slli_epi32(_mm256_extracti128_si256(result, 1), 16));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(to + i), _mm_packus_epi16(pixels, pixels));
    }
    for (; taps % 8 == 0 && i + 4 <= n; i += 4) {
        __m256i parts[4];
        for (size_t j = 0; j < 4; ++j) {
            const uint32_t* const from = sums + first[i + j];
            const uint16_t* const weight = weights + (i + j) * taps;
            __m256i part = _mm256_setzero_si256();
            for (size_t k = 0; k < taps; k += 8) {
                const __m256i w = _mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(weight + k)));
                const __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from + k));
                part = _mm256_add_epi32(part, _mm256_mullo_epi32(w, v));
            }
            parts[j] = part;
        }
        const __m256i quads =
            _mm256_hadd_epi32(_mm256_hadd_epi32(parts[0], parts[1]), _mm256_hadd_epi32(parts[2], parts[3]));
        const __m128i sum = _mm_add_epi32(_mm256_castsi256_si128(quads), _mm256_extracti128_si256(quads, 1));
        const __m128i result = _mm_srli_epi32(_mm_add_epi32(sum, _mm_set1_epi32(1 << 23)), 24);
        const __m128i words = _mm_packus_epi32(result, result);
        _mm_storeu_si32(to + i, _mm_packus_epi16(words, words));
    }
    Average_scalar(to + i, sums, first + i, weights + i * taps, taps, n - i);
}

}  // namespace orlix
