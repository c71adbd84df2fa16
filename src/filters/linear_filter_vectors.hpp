// The linear filters on vectors, for the suffixed files. Each of these supplies its lanes:
//
//     template <>
//     struct LinearLanes<Pixel> {
//         using Pixel;                       uint8_t, uint16_t or float
//         using Wide;                        a vector of sums: lanes of twice the size of integer pixels, float for
//                                            float
//         static constexpr size_t kPixels;   pixels of a block
//         static constexpr int kPhases;      pixels that share a lane, 2 or 1: lane j of phase p holds pixel
//                                            kPhases j + p
//         LinearLanes(const FilterParameters<Pixel>&);
//         static void Load(const Pixel* from, Wide* phases);
//         static Wide Add(a, b), Less(a, b); Less: integers saturate at 0, to which negative values are clamped anyway
//         static Wide Up<bits>(a), Down<bits>(a);  multiplies or divides by 2^bits; integers are rounded down
//         static Wide Sixth(a);                    a / 6; integers are rounded down
//         static Wide Later<n>(a, b);        lanes n, n + 1, ... of a followed by b
//         void Store(Pixel* to, const Wide* phases) const;  with the clamp
//     };
//
// A filter computes a block in two steps: sums down the columns (the planes), then sums along the row. The columns of
// the previous block are not summed again; its lanes are shifted.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "filters/linear_filter_kernels.hpp"
#include "vectors/inline.hpp"

namespace orlix {
namespace {

template <class T>
struct LinearLanes;

// Slightly above 1/6. For an integer a below 2^21 the product is at least a / 6 and exceeds it by less than 0.1, so
// truncation gives the quotient.
[[maybe_unused]] constexpr float kSixth = 1.0f / 6;

// Sums of powers of two, which round as a single product does.
template <class L, int kFactor>
ORLIX_INLINE typename L::Wide Times(const typename L::Wide& a) {
    if constexpr (kFactor == 2) return L::Add(a, a);
    if constexpr (kFactor == 4) return L::template Up<2>(a);
    if constexpr (kFactor == 5) return L::Add(a, L::template Up<2>(a));
    if constexpr (kFactor == 6) return L::Add(L::Add(a, a), L::template Up<2>(a));
    if constexpr (kFactor == 20) return L::template Up<2>(Times<L, 5>(a));
}

// The neighbours above and below, and the pixels themselves.
struct Cross {
    static constexpr int kRadius = 1;
    static constexpr int kPlanes = 2;
    template <class L>
    ORLIX_INLINE static void Planes(const typename L::Wide (&in)[3][L::kPhases],
                                    typename L::Wide (&planes)[2][L::kPhases]) {
        for (int p = 0; p < L::kPhases; ++p) {
            planes[0][p] = L::Add(in[0][p], in[2][p]);
            planes[1][p] = in[1][p];
        }
    }
    template <class L>
    ORLIX_INLINE static typename L::Wide Sides(const typename L::Wide* ends, const typename L::Wide* row) {
        return L::Add(ends[1], L::Add(row[0], row[2]));
    }
};

struct LaplacianRule : Cross {
    template <class L, int kColumns>
    ORLIX_INLINE static typename L::Wide Along(const typename L::Wide (&planes)[2][kColumns], int p) {
        const auto *const ends = planes[0] + p, *const row = planes[1] + p;
        const typename L::Wide around = L::Add(L::Add(ends[0], ends[2]), Times<L, 4>(Sides<L>(ends, row)));
        return L::Sixth(L::Less(around, Times<L, 20>(row[1])));
    }
};

struct SharpenLowRule : Cross {
    template <class L, int kColumns>
    ORLIX_INLINE static typename L::Wide Along(const typename L::Wide (&planes)[2][kColumns], int p) {
        const auto* const row = planes[1] + p;
        const typename L::Wide sides = Sides<L>(planes[0] + p, row);
        if constexpr (std::is_same_v<typename L::Pixel, float>)
            return L::Add(row[1], L::template Down<1>(L::Less(Times<L, 4>(row[1]), sides)));
        else
            return L::template Down<1>(L::Less(Times<L, 6>(row[1]), sides));
    }
};

struct SharpenMediumRule : Cross {
    template <class L, int kColumns>
    ORLIX_INLINE static typename L::Wide Along(const typename L::Wide (&planes)[2][kColumns], int p) {
        const auto* const row = planes[1] + p;
        const typename L::Wide sides = Sides<L>(planes[0] + p, row);
        if constexpr (std::is_same_v<typename L::Pixel, float>)
            return L::Add(row[1], L::Less(Times<L, 4>(row[1]), sides));
        else
            return L::Less(Times<L, 5>(row[1]), sides);
    }
};

template <class L>
ORLIX_INLINE typename L::Wide Weighted(const typename L::Wide& a, const typename L::Wide& b,
                                       const typename L::Wide& c) {
    return L::Add(L::Add(a, c), Times<L, 2>(b));
}
template <class L>
ORLIX_INLINE typename L::Wide Weighted(const typename L::Wide& a, const typename L::Wide& b, const typename L::Wide& c,
                                       const typename L::Wide& d, const typename L::Wide& e) {
    const typename L::Wide outer = L::Add(L::Add(a, e), Times<L, 2>(c));
    return L::Add(L::Add(outer, Times<L, 4>(c)), Times<L, 4>(L::Add(b, d)));
}

struct Gaussian3x3Rule {
    static constexpr int kRadius = 1;
    static constexpr int kPlanes = 1;
    template <class L>
    ORLIX_INLINE static void Planes(const typename L::Wide (&in)[3][L::kPhases],
                                    typename L::Wide (&planes)[1][L::kPhases]) {
        for (int p = 0; p < L::kPhases; ++p) planes[0][p] = Weighted<L>(in[0][p], in[1][p], in[2][p]);
    }
    template <class L, int kColumns>
    ORLIX_INLINE static typename L::Wide Along(const typename L::Wide (&planes)[1][kColumns], int p) {
        const auto* const v = planes[0] + p;
        return L::template Down<4>(Weighted<L>(v[0], v[1], v[2]));
    }
};

struct Gaussian5x5Rule {
    static constexpr int kRadius = 2;
    static constexpr int kPlanes = 1;
    template <class L>
    ORLIX_INLINE static void Planes(const typename L::Wide (&in)[5][L::kPhases],
                                    typename L::Wide (&planes)[1][L::kPhases]) {
        for (int p = 0; p < L::kPhases; ++p)
            planes[0][p] = Weighted<L>(in[0][p], in[1][p], in[2][p], in[3][p], in[4][p]);
    }
    template <class L, int kColumns>
    ORLIX_INLINE static typename L::Wide Along(const typename L::Wide (&planes)[1][kColumns], int p) {
        const auto* const v = planes[0] + p;
        return L::template Down<8>(Weighted<L>(v[0], v[1], v[2], v[3], v[4]));
    }
};

// Filters rows of at least one block.
template <class L, class Rule>
class RowFilter {
public:
    using Pixel = typename L::Pixel;
    using Wide = typename L::Wide;
    static constexpr int kRadius = Rule::kRadius;
    static constexpr int kPlanes = Rule::kPlanes;
    static constexpr int kPhases = L::kPhases;
    static constexpr size_t kPixels = L::kPixels;

    ORLIX_INLINE RowFilter(const Pixel* const* rows, Pixel* to, const FilterParameters<Pixel>& parameters)
        : to_(to), lanes_(parameters) {
        for (int k = 0; k <= 2 * kRadius; ++k) rows_[k] = rows[k] - kRadius;
    }

    // The first block, then whole vectors of the destination, then the block that ends the row. The last block that
    // looks at the columns following it does not read beyond n + kRadius - 1.
    ORLIX_INLINE void operator()(size_t n) const {
        Block(0);
        size_t i = LaneToLine();
        if (i + 2 * kPixels <= n + 2 * kRadius) {
            Wide planes[kPlanes][kPhases];
            Planes(i, planes);
            do {
                Wide next[kPlanes][kPhases];
                Planes(i + kPixels, next);
                Wide columns[kPlanes][kColumns];
                Shift<0>(planes, next, columns);
                Finish(columns, i);
                for (int q = 0; q < kPlanes; ++q)
                    for (int p = 0; p < kPhases; ++p) planes[q][p] = next[q][p];
                i += kPixels;
            } while (i + 2 * kPixels <= n + 2 * kRadius);
        }
        for (; i < n; i += kPixels) Block(i < n - kPixels ? i : n - kPixels);
    }

private:
    static constexpr int kColumns = 2 * kRadius + kPhases;

    // Pixels of the first block that precede a vector boundary of the destination, at least 1.
    ORLIX_INLINE size_t LaneToLine() const {
        constexpr size_t kBytes = kPixels * sizeof(Pixel);
        return kPixels - reinterpret_cast<uintptr_t>(to_) % kBytes / sizeof(Pixel);
    }

    // Planes of the columns of a block, starting kRadius before its first pixel.
    ORLIX_INLINE void Planes(size_t first, Wide (&planes)[kPlanes][kPhases]) const {
        Wide in[2 * kRadius + 1][kPhases];
        for (int k = 0; k <= 2 * kRadius; ++k) L::Load(rows_[k] + first, in[k]);
        Rule::template Planes<L>(in, planes);
    }

    template <int kColumn>
    ORLIX_INLINE static void Shift(const Wide (&planes)[kPlanes][kPhases], const Wide (&next)[kPlanes][kPhases],
                                   Wide (&columns)[kPlanes][kColumns]) {
        constexpr int p = kColumn % kPhases;
        for (int q = 0; q < kPlanes; ++q)
            columns[q][kColumn] = L::template Later<kColumn / kPhases>(planes[q][p], next[q][p]);
        if constexpr (kColumn + 1 < kColumns) Shift<kColumn + 1>(planes, next, columns);
    }

    ORLIX_INLINE void Finish(const Wide (&columns)[kPlanes][kColumns], size_t first) const {
        Wide results[kPhases];
        for (int p = 0; p < kPhases; ++p) results[p] = Rule::template Along<L>(columns, p);
        lanes_.Store(to_ + first, results);
    }

    // A block on its own.
    ORLIX_INLINE void Block(size_t first) const {
        Wide columns[kPlanes][kColumns];
        for (int k = 0; k < kColumns; k += kPhases) {
            Wide planes[kPlanes][kPhases];
            Planes(first + static_cast<size_t>(k), planes);
            for (int q = 0; q < kPlanes; ++q)
                for (int p = 0; p < kPhases; ++p) columns[q][k + p] = planes[q][p];
        }
        Finish(columns, first);
    }

    const Pixel* rows_[2 * kRadius + 1];  // kRadius columns to the left of the first one
    Pixel* to_;
    L lanes_;
};

// Rows shorter than a block go to the next narrower variant.
template <class Rule, class T>
ORLIX_INLINE void FilterRow(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters,
                            FilterFn<T> narrower) {
    using L = LinearLanes<T>;
    if (n < L::kPixels) return narrower(rows, to, n, parameters);
    RowFilter<L, Rule>(rows, to, parameters)(n);
}

}  // namespace
}  // namespace orlix
