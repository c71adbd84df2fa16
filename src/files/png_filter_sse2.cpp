// Undoing filters: sixteen rows at a time, row i of them i pixels behind row 0, so that each byte finds its neighbours
// done, and sixteen bytes of different rows are computed at once.
#include <emmintrin.h>

#include <algorithm>

#include "files/png_filter.hpp"
#include "files/png_filter_vectors.hpp"
#include "vectors/inline.hpp"

namespace orlix::png {
namespace {

using Vector = __m128i;
constexpr size_t kRows = 16;

struct Bytes {
    using Vector = __m128i;
    static constexpr size_t kLanes = 16;
    static Vector Load(const uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
    static void Store(uint8_t* p, Vector v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }
    static Vector Zero() { return _mm_setzero_si128(); }
    static Vector One() { return _mm_set1_epi8(1); }
    static Vector AddSaturated(Vector a, Vector b) { return _mm_adds_epu8(a, b); }
    static Vector Sub(Vector a, Vector b) { return _mm_sub_epi8(a, b); }
    static Vector Min(Vector a, Vector b) { return _mm_min_epu8(a, b); }
    static Vector Max(Vector a, Vector b) { return _mm_max_epu8(a, b); }
    static Vector Equal(Vector a, Vector b) { return _mm_cmpeq_epi8(a, b); }
    static Vector And(Vector a, Vector b) { return _mm_and_si128(a, b); }
    static Vector Xor(Vector a, Vector b) { return _mm_xor_si128(a, b); }
    static Vector Select(Vector mask, Vector yes, Vector no) {
        return _mm_or_si128(_mm_and_si128(mask, yes), _mm_andnot_si128(mask, no));
    }
    static Vector MeanUp(Vector a, Vector b) { return _mm_avg_epu8(a, b); }
    // Adds the bytes to 64-bit sums.
    static Vector AddUp(Vector sums, Vector v) { return _mm_add_epi64(sums, _mm_sad_epu8(v, Zero())); }
    static uint64_t Total(Vector sums) {
        alignas(16) uint64_t parts[2];
        _mm_store_si128(reinterpret_cast<__m128i*>(parts), sums);
        return parts[0] + parts[1];
    }
};

// Rows become columns: byte k of vector i becomes byte i of vector k.
ORLIX_INLINE void Transpose(Vector (&v)[16]) {
    // Each round interleaves the vectors i and i + 8; after four every byte has gone to its place.
    for (int round = 0; round < 4; ++round) {
        Vector next[16];
        for (size_t i = 0; i < 8; ++i) {
            next[2 * i] = _mm_unpacklo_epi8(v[i], v[i + 8]);
            next[2 * i + 1] = _mm_unpackhi_epi8(v[i], v[i + 8]);
        }
        for (size_t i = 0; i < 16; ++i) v[i] = next[i];
    }
}

// The filters of sixteen rows as masks.
struct Filters {
    Vector sub, up, average, paeth;
    bool anyPaeth;
};

Filters FiltersOf(const uint8_t* rows, size_t stride) {
    alignas(16) uint8_t filters[kRows];
    for (size_t i = 0; i < kRows; ++i) filters[i] = rows[i * stride];
    const Vector all = Bytes::Load(filters);
    const auto are = [&](Filter filter) { return _mm_cmpeq_epi8(all, _mm_set1_epi8(filter)); };
    return {are(kSub), are(kUp), are(kAverage), are(kPaeth), _mm_movemask_epi8(are(kPaeth)) != 0};
}

// Undoes a part of one row, of which the first bytes from 0 on may be done.
void UndoPart(uint8_t filter, uint8_t* row, const uint8_t* above, size_t from, size_t to, size_t pixel) {
    for (size_t i = from; i < to; ++i) {
        const int a = i < pixel ? 0 : row[i - pixel], b = above[i], c = i < pixel ? 0 : above[i - pixel];
        row[i] = static_cast<uint8_t>(row[i] + Predict(static_cast<Filter>(filter), a, b, c));
    }
}

// kPixel: bytes of a pixel. The neighbours of the bytes in a vector are vectors of kPixel steps before.
template <size_t kPixel, bool kAnyPaeth>
ORLIX_INLINE void UndoSteps(const Filters& filters, uint8_t* first, size_t stride, const uint8_t* above, size_t from,
                            size_t to) {
    const auto lag = [](size_t row) { return row * kPixel; };
    Vector left[kPixel], aboveLeft[kPixel];
    for (size_t k = 0; k < kPixel; ++k) {
        alignas(16) uint8_t bytes[2][kRows];
        for (size_t i = 0; i < kRows; ++i) {
            const size_t at = from - lag(i) - kPixel + k;
            bytes[0][i] = first[i * stride + at];
            bytes[1][i] = i == 0 ? above[at] : first[(i - 1) * stride + at];
        }
        left[k] = Bytes::Load(bytes[0]);
        aboveLeft[k] = Bytes::Load(bytes[1]);
    }
    for (size_t at = from; at < to; at += 16) {
        Vector steps[16];
        for (size_t i = 0; i < kRows; ++i) steps[i] = Bytes::Load(first + i * stride + at - lag(i));
        Transpose(steps);
        for (size_t k = 0; k < 16; ++k) {
            const Vector a = left[0], c = aboveLeft[0];
            const Vector b = _mm_or_si128(_mm_slli_si128(a, 1), _mm_cvtsi32_si128(above[at + k]));
            Vector prediction = _mm_or_si128(_mm_and_si128(filters.sub, a), _mm_and_si128(filters.up, b));
            prediction = _mm_or_si128(prediction, _mm_and_si128(filters.average, MeanDown<Bytes>(a, b)));
            if constexpr (kAnyPaeth)
                prediction = _mm_or_si128(prediction, _mm_and_si128(filters.paeth, Nearest<Bytes>(a, b, c)));
            steps[k] = _mm_add_epi8(steps[k], prediction);
            for (size_t j = 0; j + 1 < kPixel; ++j) {
                left[j] = left[j + 1];
                aboveLeft[j] = aboveLeft[j + 1];
            }
            left[kPixel - 1] = steps[k];
            aboveLeft[kPixel - 1] = b;
        }
        Transpose(steps);
        for (size_t i = 0; i < kRows; ++i) Bytes::Store(first + i * stride + at - lag(i), steps[i]);
    }
}

// Sixteen rows. `first` is the first byte of the first row.
template <size_t kPixel>
void UndoRows(uint8_t* first, size_t stride, const uint8_t* above, size_t size) {
    // The rows begin and end at different places: there they are undone one after the other.
    constexpr size_t kStart = kRows * kPixel;
    const size_t end = size <= kStart ? 0 : kStart + (size - kStart) / 16 * 16;
    const auto eachRow = [&](size_t from, size_t to, bool lagging) {
        for (size_t i = 0; i < kRows; ++i) {
            uint8_t* const row = first + i * stride;
            const size_t lag = i * kPixel;
            UndoPart(row[-1], row, i == 0 ? above : row - stride, from == 0 ? 0 : from - lag, lagging ? to - lag : to,
                     kPixel);
        }
    };
    if (end <= kStart) return eachRow(0, size, false);
    eachRow(0, kStart, true);
    const Filters filters = FiltersOf(first - 1, stride);
    filters.anyPaeth ? UndoSteps<kPixel, true>(filters, first, stride, above, kStart, end)
                     : UndoSteps<kPixel, false>(filters, first, stride, above, kStart, end);
    eachRow(end, size, false);
}

void UndoRows(uint8_t* first, size_t stride, const uint8_t* above, size_t size, size_t pixel) {
    switch (pixel) {
        case 1:
            return UndoRows<1>(first, stride, above, size);
        case 2:
            return UndoRows<2>(first, stride, above, size);
        case 3:
            return UndoRows<3>(first, stride, above, size);
        case 4:
            return UndoRows<4>(first, stride, above, size);
        case 6:
            return UndoRows<6>(first, stride, above, size);
        default:
            return UndoRows<8>(first, stride, above, size);
    }
}

// Whether some of the rows wait from byte to byte.
bool AnyChain(const uint8_t* rows, size_t stride) {
    for (size_t i = 0; i < kRows; ++i)
        if (rows[i * stride] != kNone && rows[i * stride] != kUp) return true;
    return false;
}

}  // namespace

void Unfilter_sse2(uint8_t* rows, size_t count, const uint8_t* above, size_t size, size_t pixel) {
    const size_t stride = 1 + size;
    while (count > 0) {
        const size_t step = std::min(count, kRows);
        if (step == kRows && size > kRows * pixel && AnyChain(rows, stride))
            UndoRows(rows + 1, stride, above, size, pixel);
        else
            Unfilter_scalar(rows, step, above, size, pixel);
        rows += step * stride;
        above = rows - size;
        count -= step;
    }
}

uint64_t ApplyFilter_sse2(Filter filter, const uint8_t* row, const uint8_t* above, size_t size, size_t pixel,
                          uint8_t* filtered) {
    return ApplyIn<Bytes>(filter, row, above, size, pixel, filtered);
}

}  // namespace orlix::png
