// The median of nine by minima and maxima, for any vector type. Included by the files of one instruction set each.
#pragma once

#include <cstring>

#include "filters/median_kernels.hpp"
#include "vectors/inline.hpp"

namespace orlix {
namespace {

template <class Lanes>
struct Column {
    typename Lanes::Vector low, middle, high;
};

template <class Lanes, class Vector = typename Lanes::Vector>
ORLIX_INLINE void Order(Vector& a, Vector& b) {
    if constexpr (requires { Lanes::Order(a, b); }) {
        Lanes::Order(a, b);
    } else {
        const Vector low = Lanes::Min(a, b);
        b = Lanes::Max(a, b);
        a = low;
    }
}

// The three vertically adjacent pixels at p[0], p[1], p[2], sorted.
template <class Lanes>
ORLIX_INLINE Column<Lanes> Sorted(const typename Lanes::Pixel* const* p, ptrdiff_t i) {
    auto a = Lanes::Load(p[0] + i), b = Lanes::Load(p[1] + i), c = Lanes::Load(p[2] + i);
    Order<Lanes>(a, b);
    Order<Lanes>(b, c);
    Order<Lanes>(a, b);
    return {a, b, c};
}

template <class Lanes>
ORLIX_INLINE typename Lanes::Vector MiddleOf(const typename Lanes::Vector& a, const typename Lanes::Vector& b,
                                             const typename Lanes::Vector& c) {
    auto low = a, high = b;
    Order<Lanes>(low, high);
    return Lanes::Max(low, Lanes::Min(high, c));
}

// With sorted columns, the median of nine is the median of the greatest minimum, the median of the middle values and
// the smallest maximum: of the other six pixels, three have at least five pixels not below them, and three at least
// five not above them.
template <class Lanes>
ORLIX_INLINE typename Lanes::Vector MedianOf(const Column<Lanes>& l, const Column<Lanes>& c, const Column<Lanes>& r) {
    return MiddleOf<Lanes>(Lanes::Max(Lanes::Max(l.low, c.low), r.low), MiddleOf<Lanes>(l.middle, c.middle, r.middle),
                           Lanes::Min(Lanes::Min(l.high, c.high), r.high));
}

// A row shorter than a vector, as the start of one.
template <class Lanes, class T = typename Lanes::Pixel>
ORLIX_INLINE void ShortMedianRow(const T* const* rows, T* to, size_t n) {
    T pixels[3][Lanes::kLanes + 2] = {}, result[Lanes::kLanes];
    for (size_t k = 0; k < 3; ++k) std::memcpy(pixels[k], rows[k] - 1, (n + 2) * sizeof(T));
    const T* const p[3] = {pixels[0] + 1, pixels[1] + 1, pixels[2] + 1};
    Lanes::Store(result, MedianOf(Sorted<Lanes>(p, -1), Sorted<Lanes>(p, 0), Sorted<Lanes>(p, 1)));
    std::memcpy(to, result, n * sizeof(T));
}

// Inside the row each column is sorted once and shifted to its neighbours; at the ends columns are loaded where they
// are, and the last vector ends with the row. A shift takes SSE2 three instructions, so it loads all columns where they
// are, except those of floats.
template <class Lanes, class T = typename Lanes::Pixel>
ORLIX_INLINE void MedianRow(const T* const* rows, T* to, size_t n) {
    constexpr size_t kLanes = Lanes::kLanes;
    if (n < kLanes) return ShortMedianRow<Lanes>(rows, to, n);
    const T* const p[3] = {rows[0], rows[1], rows[2]};
    const auto alone = [&](size_t i) __attribute__((always_inline)) {
        const auto x = static_cast<ptrdiff_t>(i);
        Lanes::Store(to + i, MedianOf(Sorted<Lanes>(p, x - 1), Sorted<Lanes>(p, x), Sorted<Lanes>(p, x + 1)));
    };
    alone(0);
    size_t i = kLanes;
    if constexpr (requires(const typename Lanes::Vector& v) { Lanes::Before(v, v); })
        if (i + 2 * kLanes <= n + 1) {
            auto l = Sorted<Lanes>(p, 0), c = Sorted<Lanes>(p, kLanes);
            for (; i + 2 * kLanes <= n + 1; i += kLanes) {
                const auto r = Sorted<Lanes>(p, static_cast<ptrdiff_t>(i + kLanes));
                const Column<Lanes> before = {Lanes::Before(l.low, c.low), Lanes::Before(l.middle, c.middle),
                                              Lanes::Before(l.high, c.high)};
                const Column<Lanes> after = {Lanes::After(c.low, r.low), Lanes::After(c.middle, r.middle),
                                             Lanes::After(c.high, r.high)};
                Lanes::Store(to + i, MedianOf(before, c, after));
                l = c;
                c = r;
            }
        }
    for (; i + kLanes <= n; i += kLanes) alone(i);
    if (i < n) alone(n - kLanes);
}

}  // namespace
}  // namespace orlix
