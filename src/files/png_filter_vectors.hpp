// The filters in vectors of bytes. Only for files whose suffix names an instruction set: Bytes are its vectors.
#pragma once

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

}  // namespace
}  // namespace orlix::png
