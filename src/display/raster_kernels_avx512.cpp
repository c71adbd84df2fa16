#include "display/raster_kernels.hpp"
#include "vectors/inline.hpp"
#include "vectors/intrinsics_avx512.hpp"

namespace orlix {
namespace {

constexpr size_t kLanes = 64;

// Byte permutations: threefold[k] takes pixels 16 k .. 16 k + 15 of 64 bytes and repeats each three times. The fourth
// byte of a pixel is masked out.
struct Indices {
    uint8_t threefold[4][64];
    uint32_t turned[16];  // double words of a 4 x 4 matrix, transposed
    constexpr Indices() : threefold(), turned() {
        for (int i = 0; i < 64; ++i)
            for (int k = 0; k < 4; ++k) threefold[k][i] = static_cast<uint8_t>(16 * k + i / 4);
        for (int i = 0; i < 16; ++i) turned[i] = static_cast<uint32_t>(i % 4 * 4 + i / 4);
    }
};
constexpr Indices kIndices;
constexpr __mmask64 kColorBytes = 0x7777777777777777;

ORLIX_INLINE __mmask64 First(size_t n) { return ~uint64_t{0} >> (64 - n); }  // 1 <= n <= 64

ORLIX_INLINE void Store(uint32_t* to, const __m512i& v, size_t n) {
    if (n >= 16)
        _mm512_storeu_si512(to, v);
    else
        _mm512_mask_storeu_epi32(to, static_cast<__mmask16>((1u << n) - 1), v);
}

// 1 <= n <= 64
ORLIX_INLINE void WriteGrey(uint32_t* to, const __m512i& v, size_t n) {
    for (size_t k = 0; k < 4; ++k)
        if (16 * k < n)
            Store(to + 16 * k, _mm512_maskz_permutexvar_epi8(kColorBytes, _mm512_loadu_si512(kIndices.threefold[k]), v),
                  n - 16 * k);
}

// 64 bytes in the order that WriteColor expects.
ORLIX_INLINE __m512i Turned(const __m512i& v) {
    return _mm512_permutexvar_epi32(_mm512_loadu_si512(kIndices.turned), v);
}

// 1 <= n <= 64
ORLIX_INLINE void WriteColor(uint32_t* to, const __m512i& red, const __m512i& green, const __m512i& blue, size_t n) {
    const __m512i zero = _mm512_setzero_si512();
    const __m512i low = _mm512_unpacklo_epi8(blue, green), high = _mm512_unpackhi_epi8(blue, green);
    const __m512i lowRed = _mm512_unpacklo_epi8(red, zero), highRed = _mm512_unpackhi_epi8(red, zero);
    Store(to, _mm512_unpacklo_epi16(low, lowRed), n);
    if (n > 16) Store(to + 16, _mm512_unpackhi_epi16(low, lowRed), n - 16);
    if (n > 32) Store(to + 32, _mm512_unpacklo_epi16(high, highRed), n - 32);
    if (n > 48) Store(to + 48, _mm512_unpackhi_epi16(high, highRed), n - 48);
}

struct Table {
    __m512i parts[4];
};
ORLIX_INLINE Table LoadTable(const uint8_t* bytes) {
    return {{_mm512_loadu_si512(bytes), _mm512_loadu_si512(bytes + 64), _mm512_loadu_si512(bytes + 128),
             _mm512_loadu_si512(bytes + 192)}};
}
ORLIX_INLINE __m512i LookUp(const Table& table, const __m512i& levels) {
    const __m512i low = _mm512_permutex2var_epi8(table.parts[0], levels, table.parts[1]);
    const __m512i high = _mm512_permutex2var_epi8(table.parts[2], levels, table.parts[3]);
    return _mm512_mask_mov_epi8(low, _mm512_movepi8_mask(levels), high);
}

// Calls body(first pixel, pixels) for 64 pixels at a time, then for the remainder.
template <class Body>
ORLIX_INLINE void ForEach64(size_t n, const Body& body) {
    size_t i = 0;
    for (; i + kLanes <= n; i += kLanes) body(i, kLanes);
    if (i < n) body(i, n - i);
}

ORLIX_INLINE __m512i Load(const uint8_t* p, size_t n) {
    return n == kLanes ? _mm512_loadu_si512(p) : _mm512_maskz_loadu_epi8(First(n), p);
}

}  // namespace

void ExpandGrey_avx512(uint32_t* to, const uint8_t* levels, size_t n) {
    ForEach64(n, [&](size_t i, size_t count) { WriteGrey(to + i, Load(levels + i, count), count); });
}

void ExpandLevels_avx512(uint32_t* to, const uint8_t* levels, size_t n, const LevelColors& colors) {
    const Table red = LoadTable(colors.red), green = LoadTable(colors.green), blue = LoadTable(colors.blue);
    ForEach64(n, [&](size_t i, size_t count) {
        const __m512i v = Turned(Load(levels + i, count));
        WriteColor(to + i, LookUp(red, v), LookUp(green, v), LookUp(blue, v), count);
    });
}

void ExpandPlanes_avx512(uint32_t* to, const uint8_t* red, const uint8_t* green, const uint8_t* blue, size_t n) {
    ForEach64(n, [&](size_t i, size_t count) {
        WriteColor(to + i, Turned(Load(red + i, count)), Turned(Load(green + i, count)), Turned(Load(blue + i, count)),
                   count);
    });
}

namespace {

// A group of picked samples. The permutation ignores the bits of its indices beyond the window.
template <int32_t kWindow>
ORLIX_INLINE __m512i Permuted(const uint8_t* from, const __m512i& index, __mmask64 kept) {
    if constexpr (kWindow == 64)
        return _mm512_maskz_permutexvar_epi8(kept, index, _mm512_loadu_si512(from));
    else
        return _mm512_maskz_permutex2var_epi8(kept, _mm512_loadu_si512(from), index, _mm512_loadu_si512(from + 64));
}

template <int32_t kWindow>
ORLIX_INLINE void Fetch(const uint8_t* from) {
    for (int32_t i = 0; i < kWindow; i += 64) __builtin_prefetch(from + i);
}

template <int32_t kWindow>
ORLIX_INLINE void PickGreys(uint32_t* to, const uint8_t* row, Picks picks, const uint8_t* next) {
    for (size_t i = 0; i < picks.n; i += 16) {
        Fetch<kWindow>(next + picks.bases[i / 16]);
        const __m512i index = _mm512_load_si512(picks.shuffles + i);
        Store(to + i, Permuted<kWindow>(row + picks.bases[i / 16], index, kColorBytes), picks.n - i);
    }
}

template <int32_t kWindow>
ORLIX_INLINE void PickColors(uint32_t* to, const uint8_t* row, Picks picks, const uint8_t* next,
                             const LevelColors& colors) {
    const Table red = LoadTable(colors.red), green = LoadTable(colors.green), blue = LoadTable(colors.blue);
    ForEach64(picks.n, [&](size_t i, size_t count) {
        __m128i parts[4];
        for (size_t k = 0; k < 4; ++k) {
            Fetch<kWindow>(next + picks.bases[i / 16 + k]);
            const __m128i index = _mm512_cvtepi32_epi8(_mm512_load_si512(picks.shuffles + i + 16 * k));
            parts[k] = _mm512_castsi512_si128(
                Permuted<kWindow>(row + picks.bases[i / 16 + k], _mm512_castsi128_si512(index), 0xffff));
        }
        const __m256i low = _mm256_inserti128_si256(_mm256_castsi128_si256(parts[0]), parts[1], 1);
        const __m256i high = _mm256_inserti128_si256(_mm256_castsi128_si256(parts[2]), parts[3], 1);
        const __m512i levels = Turned(_mm512_inserti64x4(_mm512_castsi256_si512(low), high, 1));
        WriteColor(to + i, LookUp(red, levels), LookUp(green, levels), LookUp(blue, levels), count);
    });
}

}  // namespace

void PickGrey_avx512(uint32_t* to, const uint8_t* row, Picks picks, const uint8_t* next) {
    if (picks.shape.window == 64)
        PickGreys<64>(to, row, picks, next);
    else if (picks.shape.window == 128)
        PickGreys<128>(to, row, picks, next);
    else
        PickGrey_scalar(to, row, picks, next);
}

void PickLevels_avx512(uint32_t* to, const uint8_t* row, Picks picks, const uint8_t* next, const LevelColors& colors) {
    if (picks.shape.window == 64)
        PickColors<64>(to, row, picks, next, colors);
    else if (picks.shape.window == 128)
        PickColors<128>(to, row, picks, next, colors);
    else
        PickLevels_scalar(to, row, picks, next, colors);
}

void WeighRows_avx512(uint32_t* sums, const uint8_t* a, uint32_t aWeight, const uint8_t* b, uint32_t bWeight,
                      size_t n) {
    const __m512i weights = _mm512_set1_epi32(static_cast<int>(bWeight << 16 | aWeight));
    size_t i = 0;
    for (; i + 32 <= n; i += 32) {
        // Each 128-bit part holds eight pixels of both rows.
        const __m512i as = _mm512_cvtepu8_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(a + i)));
        const __m512i bs = _mm512_cvtepu8_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(b + i)));
        const __m512i low = _mm512_madd_epi16(_mm512_unpacklo_epi16(as, bs), weights);
        const __m512i high = _mm512_madd_epi16(_mm512_unpackhi_epi16(as, bs), weights);
        const __m512i firstOrder = _mm512_setr_epi64(0, 1, 8, 9, 2, 3, 10, 11);
        const __m512i secondOrder = _mm512_setr_epi64(4, 5, 12, 13, 6, 7, 14, 15);
        const __m512i first = _mm512_permutex2var_epi64(low, firstOrder, high);
        const __m512i second = _mm512_permutex2var_epi64(low, secondOrder, high);
        _mm512_storeu_si512(sums + i, _mm512_add_epi32(_mm512_loadu_si512(sums + i), first));
        _mm512_storeu_si512(sums + i + 16, _mm512_add_epi32(_mm512_loadu_si512(sums + i + 16), second));
    }
    WeighRows_scalar(sums + i, a + i, aWeight, b + i, bWeight, n - i);
}

void Interpolate_avx512(uint8_t* to, const uint32_t* sums, const int32_t* left, const uint16_t* share, size_t n) {
    const __m512i half = _mm512_set1_epi32(1 << 23);
    size_t i = 0;
    for (; i + 16 <= n; i += 16) {
        const int32_t first = left[i], last = left[i + 15];
        const int32_t base = first < last ? first : last;
        const __m512i index = _mm512_sub_epi32(_mm512_loadu_si512(left + i), _mm512_set1_epi32(base));
        const __m512i a = _mm512_permutexvar_epi32(index, _mm512_loadu_si512(sums + base));
        const __m512i b = _mm512_permutexvar_epi32(index, _mm512_loadu_si512(sums + base + 1));
        const __m512i shares = _mm512_cvtepu16_epi32(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(share + i)));
        // a (4096 - share) + b share, modulo 2^32 in between
        const __m512i sum =
            _mm512_add_epi32(_mm512_slli_epi32(a, 12), _mm512_mullo_epi32(_mm512_sub_epi32(b, a), shares));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + i),
                         _mm512_cvtepi32_epi8(_mm512_srli_epi32(_mm512_add_epi32(sum, half), 24)));
    }
    Interpolate_scalar(to + i, sums, left + i, share + i, n - i);
}

}  // namespace orlix
