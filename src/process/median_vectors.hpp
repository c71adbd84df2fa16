// The median of nine by minima and maxima, for any vectors. For the files of one instruction set each.
#pragma once

#include "process/median_kernels.hpp"

namespace orlix {
namespace {

template <class Vector>
struct Column {
    Vector low, middle, high;
};

// The three pixels above one another at p[0], p[1], p[2], sorted.
template <class Lanes>
[[gnu::always_inline]] inline Column<typename Lanes::Vector> Sorted(const typename Lanes::Pixel* const* p,
                                                                    ptrdiff_t i) {
    const auto a = Lanes::Load(p[0] + i), b = Lanes::Load(p[1] + i), c = Lanes::Load(p[2] + i);
    const auto low = Lanes::Min(a, b), high = Lanes::Max(a, b);
    const auto rest = Lanes::Min(high, c);
    return {Lanes::Min(low, rest), Lanes::Max(low, rest), Lanes::Max(high, c)};
}

// Columns sorted, the median is that of the greatest minimum, the middle one of the middles and the smallest maximum: each
// of these three leaves four pixels that cannot be beyond it on either side.
template <class Lanes>
[[gnu::always_inline]] inline void MedianVector(const typename Lanes::Pixel* const* p, typename Lanes::Pixel* to,
                                                size_t i) {
    const auto x = static_cast<ptrdiff_t>(i);
    const auto l = Sorted<Lanes>(p, x - 1), c = Sorted<Lanes>(p, x), r = Sorted<Lanes>(p, x + 1);
    const auto median = [](const auto& u, const auto& v, const auto& w) __attribute__((always_inline)) {
        return Lanes::Max(Lanes::Min(u, v), Lanes::Min(Lanes::Max(u, v), w));
    };
    const auto low = Lanes::Max(Lanes::Max(l.low, c.low), r.low);
    const auto high = Lanes::Min(Lanes::Min(l.high, c.high), r.high);
    Lanes::Store(to + i, median(low, median(l.middle, c.middle, r.middle), high));
}

// Whether it was done: n is at least one vector. The last vector ends with the row.
template <class Lanes>
[[gnu::always_inline]] inline bool MedianRow(const typename Lanes::Pixel* const* rows, typename Lanes::Pixel* to,
                                             size_t n) {
    if (n < Lanes::kLanes) return false;
    const typename Lanes::Pixel* const p[3] = {rows[0], rows[1], rows[2]};
    for (size_t i = 0; i + Lanes::kLanes <= n; i += Lanes::kLanes) MedianVector<Lanes>(p, to, i);
    MedianVector<Lanes>(p, to, n - Lanes::kLanes);
    return true;
}

}  // namespace
}  // namespace orlix
