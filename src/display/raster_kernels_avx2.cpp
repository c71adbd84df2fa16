#include <immintrin.h>

#include <cstring>

#include "display/raster_kernels.hpp"
#include "vectors/inline.hpp"

namespace orlix {
namespace {

ORLIX_INLINE __m128i Load16(const uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
ORLIX_INLINE __m256i Load8(const int32_t* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }
ORLIX_INLINE void Store(uint32_t* p, const __m256i& v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }

// 16 bytes, and their pixels 0..7 or 8..15.
ORLIX_INLINE __m256i Words(const uint8_t* p) { return _mm256_cvtepu8_epi16(Load16(p)); }

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
        // Pixels 0-7 and 8-15 in one half each; interleaving brings 0-3 and 8-11, and 4-7 and 12-15, together.
        const __m256i blueGreen = _mm256_or_si256(Words(blue + i), _mm256_slli_epi16(Words(green + i), 8));
        const __m256i reds = Words(red + i);
        const __m256i low = _mm256_unpacklo_epi16(blueGreen, reds), high = _mm256_unpackhi_epi16(blueGreen, reds);
        Store(to + i, _mm256_permute2x128_si256(low, high, 0x20));
        Store(to + i + 8, _mm256_permute2x128_si256(low, high, 0x31));
    }
    ExpandPlanes_scalar(to + i, red + i, green + i, blue + i, n - i);
}

namespace {

// Looks up a table of greys for 32 levels at a time. A shuffle returns the entry selected by the low half of a byte, or
// 0 where bit 7 is set; each step subtracts 16. A byte b below 128 thus selects from the rows 0 .. b / 16 of its half
// of the table: each row is the exclusive or of the row wanted there and the one before.
class GreyTable {
public:
    explicit GreyTable(const uint8_t* greys) {
        for (size_t i = 0; i < 256; i += 16) {
            const __m128i row = Load16(greys + i), before = i % 128 == 0 ? _mm_setzero_si128() : Load16(greys + i - 16);
            _mm_store_si128(reinterpret_cast<__m128i*>(rows_ + i), _mm_xor_si128(row, before));
        }
    }
    ORLIX_INLINE __m256i LookUp(const __m256i& levels) const {
        __m256i low = levels, high = _mm256_xor_si256(levels, _mm256_set1_epi8(static_cast<char>(0x80)));
        __m256i greys = _mm256_setzero_si256();
#pragma GCC unroll 8
        for (size_t row = 0; row < 128; row += 16) {
            greys = _mm256_xor_si256(greys, _mm256_shuffle_epi8(Row(row), low));
            greys = _mm256_xor_si256(greys, _mm256_shuffle_epi8(Row(128 + row), high));
            low = _mm256_subs_epi8(low, _mm256_set1_epi8(16));
            high = _mm256_subs_epi8(high, _mm256_set1_epi8(16));
        }
        return greys;
    }

private:
    ORLIX_INLINE __m256i Row(size_t first) const {
        return _mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(rows_ + first)));
    }
    alignas(16) uint8_t rows_[256];
};

// Stores 32 greys as pixels; the lower half of greys holds the first four of each eight, the upper half the others.
ORLIX_INLINE void StoreGreys(uint32_t* to, const __m256i& greys) {
    const __m256i threefold =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 0, 0, -1, 1, 1, 1, -1, 2, 2, 2, -1, 3, 3, 3, -1));
    for (int k = 0; k < 4; ++k)
        Store(to + 8 * k, _mm256_shuffle_epi8(greys, _mm256_add_epi8(threefold, _mm256_set1_epi32(k * 0x040404))));
}

// Stores four entries of a table of pixels. Combining them saves three of four stores.
ORLIX_INLINE void StoreFour(uint32_t* to, const uint32_t* table, uint8_t a, uint8_t b, uint8_t c, uint8_t d) {
    __m128i v = _mm_cvtsi32_si128(static_cast<int>(table[a]));
    v = _mm_insert_epi32(v, static_cast<int>(table[b]), 1);
    v = _mm_insert_epi32(v, static_cast<int>(table[c]), 2);
    v = _mm_insert_epi32(v, static_cast<int>(table[d]), 3);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), v);
}

// Eight picked samples as greys.
template <size_t kGroup>
ORLIX_INLINE __m256i Picked8(const uint8_t* row, Picks picks, size_t i) {
    const int32_t* const bases = picks.bases + i / kGroup;
    const __m128i first = Load16(row + bases[0]);
    const __m256i samples = kGroup == 8
                                ? _mm256_broadcastsi128_si256(first)
                                : _mm256_inserti128_si256(_mm256_castsi128_si256(first), Load16(row + bases[1]), 1);
    return _mm256_shuffle_epi8(samples, _mm256_load_si256(reinterpret_cast<const __m256i*>(picks.shuffles + i)));
}

// Calls body(to, first) for kPixels picks at a time; anything written beyond the last pick is cut off.
template <size_t kPixels, class Body>
ORLIX_INLINE void ForEachPick(uint32_t* to, size_t n, const Body& body) {
    size_t i = 0;
    for (; i + kPixels <= n; i += kPixels) body(to + i, i);
    if (i == n) return;
    uint32_t last[kPixels];
    body(last, i);
    std::memcpy(to + i, last, (n - i) * sizeof *to);
}

template <size_t kGroup>
ORLIX_INLINE void PickGreys(uint32_t* to, const uint8_t* row, Picks picks, const uint8_t* next) {
    ForEachPick<16>(to, picks.n, [=](uint32_t* pixels, size_t i) {
        __builtin_prefetch(next + picks.bases[i / kGroup]);
        Store(pixels, Picked8<kGroup>(row, picks, i));
        Store(pixels + 8, Picked8<kGroup>(row, picks, i + 8));
    });
}

template <size_t kGroup>
ORLIX_INLINE void PickFromTable(uint32_t* to, const uint8_t* row, Picks picks, const uint8_t* next,
                                const GreyTable& table) {
    ForEachPick<32>(to, picks.n, [=, &table](uint32_t* pixels, size_t i) {
        const auto levels = [&](size_t k) {
            return _mm256_and_si256(Picked8<kGroup>(row, picks, i + 8 * k), _mm256_set1_epi32(0xff));
        };
        __builtin_prefetch(next + picks.bases[i / kGroup]);
        __builtin_prefetch(next + picks.bases[(i + 16) / kGroup]);
        const __m256i low = _mm256_packs_epi32(levels(0), levels(1)), high = _mm256_packs_epi32(levels(2), levels(3));
        StoreGreys(pixels, table.LookUp(_mm256_packus_epi16(low, high)));
    });
}

}  // namespace

void ExpandLevels_avx2(uint32_t* to, const uint8_t* levels, size_t n, const LevelColors& colors) {
    size_t i = 0;
    if (colors.grey) {
        const GreyTable table(colors.blue);
        const __m256i order = _mm256_setr_epi32(0, 2, 4, 6, 1, 3, 5, 7);
        for (; i + 32 <= n; i += 32) {
            const __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(levels + i));
            StoreGreys(to + i, table.LookUp(_mm256_permutevar8x32_epi32(v, order)));
        }
    }
    for (; i + 8 <= n; i += 8)
        for (size_t k = i; k < i + 8; k += 4)
            StoreFour(to + k, colors.pixels, levels[k], levels[k + 1], levels[k + 2], levels[k + 3]);
    ExpandLevels_scalar(to + i, levels + i, n - i, colors);
}

void PickGrey_avx2(uint32_t* to, const uint8_t* row, Picks picks, const uint8_t* next) {
    if (picks.shape.group == 8)
        PickGreys<8>(to, row, picks, next);
    else if (picks.shape.group == 4)
        PickGreys<4>(to, row, picks, next);
    else
        PickGrey_scalar(to, row, picks, next);
}

void PickLevels_avx2(uint32_t* to, const uint8_t* row, Picks picks, const uint8_t* next, const LevelColors& colors) {
    if (colors.grey && picks.shape.group == 8) return PickFromTable<8>(to, row, picks, next, GreyTable(colors.blue));
    if (colors.grey && picks.shape.group == 4) return PickFromTable<4>(to, row, picks, next, GreyTable(colors.blue));
    size_t i = 0;
    for (; i + 16 <= picks.n; i += 16) {
        __builtin_prefetch(next + picks.columns[i]);
        for (size_t k = i; k < i + 16; k += 4) {
            const int32_t* const at = picks.columns + k;
            StoreFour(to + k, colors.pixels, row[at[0]], row[at[1]], row[at[2]], row[at[3]]);
        }
    }
    for (; i < picks.n; ++i) to[i] = colors.pixels[row[picks.columns[i]]];
}

void PickPixels_avx2(uint32_t* to, const uint32_t* row, Picks picks, const uint32_t* next) {
    if (picks.shape == kUngrouped) {
        for (size_t i = 0; i < picks.n; ++i) {
            if (i % 2 == 0) __builtin_prefetch(next + picks.columns[i]);
            to[i] = row[picks.columns[i]];
        }
        return;
    }
    ForEachPick<8>(to, picks.n, [=](uint32_t* eight, size_t i) {
        const int32_t* const bases = picks.bases + i / 4;
        __builtin_prefetch(next + bases[0]);
        for (size_t k = 0; k < 2; ++k) {
            const __m256i from = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(row + bases[k]));
            const __m128i index = _mm_load_si128(reinterpret_cast<const __m128i*>(picks.shuffles + i + 4 * k));
            const __m256i four = _mm256_permutevar8x32_epi32(from, _mm256_castsi128_si256(index));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(eight + 4 * k), _mm256_castsi256_si128(four));
        }
    });
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
