// The filters in vectors of bytes. Only for files whose suffix names an instruction set: Bytes are its vectors.
#pragma once

#include <cstring>

#include "files/png_filter.hpp"
#include "vectors/inline.hpp"

namespace orlix::png {
namespace {

// (a + b) / 2, rounded down.
template <class Bytes, class Vector>
ORLIX_INLINE Vector MeanDown(Vector a, Vector b) {
    return Bytes::Sub(Bytes::MeanUp(a, b), Bytes::And(Bytes::Xor(a, b), Bytes::One()));
}

// Paeth(a, b, c). The distances of a + b - c from a, b and c are |b - c|, |a - c| and |(b - c) + (a - c)|; the last is
// the sum of the others where c lies outside of a and b, and then at least as large as each, saturated or not.
template <class Bytes, class Vector>
ORLIX_INLINE Vector Nearest(Vector a, Vector b, Vector c) {
    const Vector fromA = Bytes::Sub(Bytes::Max(b, c), Bytes::Min(b, c));
    const Vector fromB = Bytes::Sub(Bytes::Max(a, c), Bytes::Min(a, c));
    const Vector nearer = Bytes::Min(fromA, fromB), farther = Bytes::Max(fromA, fromB);
    const Vector low = Bytes::Min(a, b), high = Bytes::Max(a, b);
    const Vector between = Bytes::And(Bytes::Equal(Bytes::Max(low, c), c), Bytes::Equal(Bytes::Min(high, c), c));
    const Vector fromC = Bytes::Select(between, Bytes::Sub(farther, nearer), Bytes::AddSaturated(fromA, fromB));
    const Vector notC = Bytes::Equal(Bytes::Max(nearer, fromC), fromC);
    return Bytes::Select(notC, Bytes::Select(Bytes::Equal(nearer, fromA), a, b), c);
}

// --------------------------------------------------------------------------------------------------- applying filters

template <Filter kFilter, class Bytes, class Vector>
ORLIX_INLINE Vector Prediction(Vector a, Vector b, Vector c) {
    if constexpr (kFilter == kSub) return a;
    if constexpr (kFilter == kUp) return b;
    if constexpr (kFilter == kAverage) return MeanDown<Bytes>(a, b);
    if constexpr (kFilter == kPaeth) return Nearest<Bytes>(a, b, c);
    return Bytes::Zero();
}

template <Filter kFilter, class Bytes>
ORLIX_INLINE uint64_t ApplyOne(const uint8_t* row, const uint8_t* above, size_t size, size_t pixel, uint8_t* filtered) {
    uint64_t sum = 0;
    const auto one = [&](size_t i) {
        const int a = i < pixel ? 0 : row[i - pixel], c = i < pixel ? 0 : above[i - pixel];
        const auto difference = static_cast<uint8_t>(row[i] - Predict(kFilter, a, above[i], c));
        sum += difference < 128 ? difference : 256u - difference;
        filtered[i] = difference;
    };
    size_t i = 0;
    for (; i < size && i < pixel; ++i) one(i);
    auto sums = Bytes::Zero();
    for (; i + Bytes::kLanes <= size; i += Bytes::kLanes) {
        const auto a = Bytes::Load(row + i - pixel), b = Bytes::Load(above + i), c = Bytes::Load(above + i - pixel);
        const auto difference = Bytes::Sub(Bytes::Load(row + i), Prediction<kFilter, Bytes>(a, b, c));
        Bytes::Store(filtered + i, difference);
        sums = Bytes::AddUp(sums, Bytes::Min(difference, Bytes::Sub(Bytes::Zero(), difference)));
    }
    for (; i < size; ++i) one(i);
    return sum + Bytes::Total(sums);
}

template <class Bytes>
ORLIX_INLINE uint64_t ApplyIn(Filter filter, const uint8_t* row, const uint8_t* above, size_t size, size_t pixel,
                              uint8_t* filtered) {
    switch (filter) {
        case kSub:
            return ApplyOne<kSub, Bytes>(row, above, size, pixel, filtered);
        case kUp:
            return ApplyOne<kUp, Bytes>(row, above, size, pixel, filtered);
        case kAverage:
            return ApplyOne<kAverage, Bytes>(row, above, size, pixel, filtered);
        case kPaeth:
            return ApplyOne<kPaeth, Bytes>(row, above, size, pixel, filtered);
        default:
            return ApplyOne<kNone, Bytes>(row, above, size, pixel, filtered);
    }
}

// ---------------------------------------------------------------------------------------------------- undoing filters
//
// As many rows at a time as vectors have bytes, row i of them i pixels behind row 0, so that each byte finds its
// neighbours done, and bytes of different rows are computed at once.

// Rows become columns within each part of 16 bytes: byte k of vector i becomes byte i of vector k.
template <class Bytes>
ORLIX_INLINE void Transpose(typename Bytes::Vector (&v)[16]) {
    // Each round interleaves the vectors i and i + 8; after four every byte has gone to its place.
    for (int round = 0; round < 4; ++round) {
        typename Bytes::Vector next[16];
        for (size_t i = 0; i < 8; ++i) {
            next[2 * i] = Bytes::InterleaveLow(v[i], v[i + 8]);
            next[2 * i + 1] = Bytes::InterleaveHigh(v[i], v[i + 8]);
        }
        for (size_t i = 0; i < 16; ++i) v[i] = next[i];
    }
}

// The filters of the rows as masks.
template <class Bytes>
struct Filters {
    explicit Filters(const uint8_t* rows, size_t stride) {
        uint8_t filters[Bytes::kLanes];
        for (size_t i = 0; i < Bytes::kLanes; ++i) {
            filters[i] = rows[i * stride];
            anyPaeth = anyPaeth || filters[i] == kPaeth;
        }
        const auto all = Bytes::Load(filters);
        sub = Bytes::Equal(all, Bytes::All(kSub));
        up = Bytes::Equal(all, Bytes::All(kUp));
        average = Bytes::Equal(all, Bytes::All(kAverage));
        paeth = Bytes::Equal(all, Bytes::All(kPaeth));
    }

    typename Bytes::Vector sub, up, average, paeth;
    bool anyPaeth = false;
};

// Undoes a part of one row, whose bytes before it are done.
inline void UndoPart(uint8_t filter, uint8_t* row, const uint8_t* above, size_t from, size_t to, size_t pixel) {
    for (size_t i = from; i < to; ++i) {
        const int a = i < pixel ? 0 : row[i - pixel], b = above[i], c = i < pixel ? 0 : above[i - pixel];
        row[i] = static_cast<uint8_t>(row[i] + Predict(static_cast<Filter>(filter), a, b, c));
    }
}

// The bytes of rows that lie `apart` from each other, column by column. kPixel: bytes of a pixel. The neighbours of the
// bytes in a vector are vectors of kPixel steps before.
template <class Bytes, size_t kPixel, bool kAnyPaeth>
ORLIX_INLINE void UndoStrip(const Filters<Bytes>& filters, uint8_t* strip, size_t apart, const uint8_t* above,
                            size_t size, typename Bytes::Vector (&left)[kPixel],
                            typename Bytes::Vector (&aboveLeft)[kPixel]) {
    using Vector = typename Bytes::Vector;
    for (size_t at = 0; at < size; at += 16) {
        Vector steps[16];
        for (size_t i = 0; i < 16; ++i) steps[i] = Bytes::LoadParts(strip + at + i * apart, 16 * apart);
        Transpose<Bytes>(steps);
        for (size_t k = 0; k < 16; ++k) {
            const Vector a = left[0], c = aboveLeft[0], b = Bytes::Next(a, above[at + k]);
            Vector prediction = Bytes::Or(Bytes::And(filters.sub, a), Bytes::And(filters.up, b));
            prediction = Bytes::Or(prediction, Bytes::And(filters.average, MeanDown<Bytes>(a, b)));
            if constexpr (kAnyPaeth)
                prediction = Bytes::Or(prediction, Bytes::And(filters.paeth, Nearest<Bytes>(a, b, c)));
            steps[k] = Bytes::Add(steps[k], prediction);
            for (size_t j = 0; j + 1 < kPixel; ++j) {
                left[j] = left[j + 1];
                aboveLeft[j] = aboveLeft[j + 1];
            }
            left[kPixel - 1] = steps[k];
            aboveLeft[kPixel - 1] = b;
        }
        Transpose<Bytes>(steps);
        for (size_t i = 0; i < 16; ++i) Bytes::StoreParts(strip + at + i * apart, 16 * apart, steps[i]);
    }
}

template <class Bytes, size_t kPixel, bool kAnyPaeth>
ORLIX_INLINE void UndoSteps(const Filters<Bytes>& filters, uint8_t* first, size_t stride, const uint8_t* above,
                            size_t from, size_t to) {
    using Vector = typename Bytes::Vector;
    Vector left[kPixel], aboveLeft[kPixel];
    for (size_t k = 0; k < kPixel; ++k) {
        uint8_t bytes[2][Bytes::kLanes];
        for (size_t i = 0; i < Bytes::kLanes; ++i) {
            const size_t at = from - i * kPixel - kPixel + k;
            bytes[0][i] = first[i * stride + at];
            bytes[1][i] = i == 0 ? above[at] : first[(i - 1) * stride + at];
        }
        left[k] = Bytes::Load(bytes[0]);
        aboveLeft[k] = Bytes::Load(bytes[1]);
    }
    // Rows of 4096 bytes share the few places that a cache has for such addresses, so strips are worked on in memory
    // of their own, where the rows lie close together.
    constexpr size_t kStrip = 256, kApart = kStrip + 16;
    alignas(64) uint8_t strip[Bytes::kLanes * kApart];
    const size_t step = stride - kPixel;  // to the byte of the next row
    for (size_t size = 0; from < to; from += size) {
        size = to - from < kStrip ? to - from : kStrip;
        for (size_t i = 0; i < Bytes::kLanes; ++i) std::memcpy(strip + i * kApart, first + from + i * step, size);
        UndoStrip<Bytes, kPixel, kAnyPaeth>(filters, strip, kApart, above + from, size, left, aboveLeft);
        for (size_t i = 0; i < Bytes::kLanes; ++i) std::memcpy(first + from + i * step, strip + i * kApart, size);
    }
}

// `first` is the first byte of the first row.
template <class Bytes, size_t kPixel>
ORLIX_INLINE void UndoRows(uint8_t* first, size_t stride, const uint8_t* above, size_t size) {
    // The rows begin and end at different places: there they are undone one after the other.
    constexpr size_t kStart = Bytes::kLanes * kPixel;
    const size_t end = size <= kStart ? 0 : kStart + (size - kStart) / 16 * 16;
    const auto eachRow = [&](size_t from, size_t to, bool lagging) {
        for (size_t i = 0; i < Bytes::kLanes; ++i) {
            uint8_t* const row = first + i * stride;
            const size_t lag = i * kPixel;
            UndoPart(row[-1], row, i == 0 ? above : row - stride, from == 0 ? 0 : from - lag, lagging ? to - lag : to,
                     kPixel);
        }
    };
    if (end <= kStart) return eachRow(0, size, false);
    eachRow(0, kStart, true);
    const Filters<Bytes> filters(first - 1, stride);
    filters.anyPaeth ? UndoSteps<Bytes, kPixel, true>(filters, first, stride, above, kStart, end)
                     : UndoSteps<Bytes, kPixel, false>(filters, first, stride, above, kStart, end);
    eachRow(end, size, false);
}

template <class Bytes>
void UndoRowsOf(uint8_t* first, size_t stride, const uint8_t* above, size_t size, size_t pixel) {
    switch (pixel) {
        case 1:
            return UndoRows<Bytes, 1>(first, stride, above, size);
        case 2:
            return UndoRows<Bytes, 2>(first, stride, above, size);
        case 3:
            return UndoRows<Bytes, 3>(first, stride, above, size);
        case 4:
            return UndoRows<Bytes, 4>(first, stride, above, size);
        case 6:
            return UndoRows<Bytes, 6>(first, stride, above, size);
        default:
            return UndoRows<Bytes, 8>(first, stride, above, size);
    }
}

// Whether some of the rows wait from byte to byte.
inline bool AnyChain(const uint8_t* rows, size_t count, size_t stride) {
    for (size_t i = 0; i < count; ++i)
        if (rows[i * stride] != kNone && rows[i * stride] != kUp) return true;
    return false;
}

// fewer(rows, count, above, size, pixel) undoes rows that are too few or too short.
template <class Bytes>
ORLIX_INLINE void UnfilterIn(uint8_t* rows, size_t count, const uint8_t* above, size_t size, size_t pixel,
                             UnfilterFn fewer) {
    const size_t stride = 1 + size;
    for (size_t step = 0; count > 0; count -= step) {
        step = count < Bytes::kLanes ? count : Bytes::kLanes;
        if (step == Bytes::kLanes && size > 2 * Bytes::kLanes * pixel && AnyChain(rows, step, stride))
            UndoRowsOf<Bytes>(rows + 1, stride, above, size, pixel);
        else
            fewer(rows, step, above, size, pixel);
        rows += step * stride;
        above = rows - size;
    }
}

}  // namespace
}  // namespace orlix::png
