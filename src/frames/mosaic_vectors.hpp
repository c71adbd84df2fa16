// Colours behind a mosaic on vectors, for the suffixed files. Each of these supplies
//
//     template <>
//     struct MosaicLanes<Pixel> {
//         using Pixel, Vector;
//         static constexpr size_t kPixels;               of a vector; even
//         explicit MosaicLanes(Pixel most);
//         static Vector Load(const Pixel*);
//         static void Store(Pixel*, Vector);
//         static Vector Low(v), High(v);                 half of the pixels, in lanes of twice their size
//         static Vector Add(a, b), Less(a, b), Up<bits>(a);  on these lanes; Less: a - b, Up: a times 2^bits
//         Vector Finish(low, high) const;                pixels again: over 16 with rounding, clamped
//         static Vector Alternate(odd, a, b);            a in even lanes and b in odd ones, or the other way round
//     };
#pragma once

#include "frames/mosaic_kernels.hpp"
#include "vectors/inline.hpp"

namespace orlix {
namespace {

template <class T>
struct MosaicLanes;

// The sums of the definition, for half of the pixels of a vector.
template <class L>
struct MosaicSums {
    using Vector = typename L::Vector;
    Vector crossGreen, alongRow, alongColumn, diagonal;

    // half() widens; r[k][2 + x] are the pixels x columns further in row k - 2, as far as they are needed.
    template <class Half>
    ORLIX_INLINE MosaicSums(const Vector (&r)[5][5], const Half& half) {
        const Vector c = half(r[2][2]);
        const Vector e = L::Add(half(r[2][1]), half(r[2][3])), ee = L::Add(half(r[2][0]), half(r[2][4]));
        const Vector v = L::Add(half(r[1][2]), half(r[3][2])), vv = L::Add(half(r[0][2]), half(r[4][2]));
        const Vector d = L::Add(L::Add(half(r[1][1]), half(r[1][3])), L::Add(half(r[3][1]), half(r[3][3])));
        const Vector outer = L::Add(ee, vv);
        const Vector c4 = L::template Up<2>(c), c8 = L::template Up<1>(c4);
        crossGreen = L::Less(L::Add(c8, L::template Up<2>(L::Add(e, v))), L::template Up<1>(outer));
        diagonal = L::Less(L::Add(L::Add(c8, c4), L::template Up<2>(d)), L::Add(outer, L::template Up<1>(outer)));
        // 10c - 2d
        const Vector shared = L::Less(L::Add(c8, L::template Up<1>(c)), L::template Up<1>(d));
        alongRow = L::Add(shared, L::Add(L::Less(L::template Up<3>(e), L::template Up<1>(ee)), vv));
        alongColumn = L::Add(shared, L::Add(L::Less(L::template Up<3>(v), L::template Up<1>(vv)), ee));
    }
};

template <class T>
ORLIX_INLINE void CompleteMosaic(const T* const* rows, size_t n, bool ownFirst, T most, T* own, T* green, T* other) {
    using L = MosaicLanes<T>;
    using Vector = typename L::Vector;
    const L lanes(most);
    size_t i = 0;
    for (; i + L::kPixels <= n; i += L::kPixels) {
        const auto load = [&](int row, int x) { return L::Load(rows[row] + (static_cast<ptrdiff_t>(i) + x)); };
        Vector r[5][5];
        r[0][2] = load(0, 0);
        r[4][2] = load(4, 0);
        for (int x = -1; x <= 1; ++x) {
            r[1][2 + x] = load(1, x);
            r[3][2 + x] = load(3, x);
        }
        for (int x = -2; x <= 2; ++x) r[2][2 + x] = load(2, x);
        const MosaicSums<L> low(r, [](const Vector& v) { return L::Low(v); });
        const MosaicSums<L> high(r, [](const Vector& v) { return L::High(v); });
        const Vector alongRow = lanes.Finish(low.alongRow, high.alongRow);
        const Vector alongColumn = lanes.Finish(low.alongColumn, high.alongColumn);
        const Vector cross = lanes.Finish(low.crossGreen, high.crossGreen);
        const Vector diagonal = lanes.Finish(low.diagonal, high.diagonal);
        L::Store(own + i, L::Alternate(!ownFirst, r[2][2], alongRow));
        L::Store(green + i, L::Alternate(!ownFirst, cross, r[2][2]));
        L::Store(other + i, L::Alternate(!ownFirst, diagonal, alongColumn));
    }
    const T* const rest[] = {rows[0] + i, rows[1] + i, rows[2] + i, rows[3] + i, rows[4] + i};
    Mosaic_scalar(rest, n - i, ownFirst, most, own + i, green + i, other + i);  // i is even
}

}  // namespace
}  // namespace orlix
