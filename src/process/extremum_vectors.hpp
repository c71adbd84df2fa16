// The kernels of the extremum sharpening for any vectors. For the files of one instruction set each.
#pragma once

#include "process/extremum_kernels.hpp"

namespace orlix {
namespace {

// at(i) for vectors from i on; the last one ends with column n and so may repeat some. False, and nothing was done, where n is
// less than one vector.
template <class Lanes, class At>
[[gnu::always_inline]] inline bool ForEachVector(size_t n, const At& at) {
    if (n < Lanes::kLanes) return false;
    for (size_t i = 0; i + Lanes::kLanes <= n; i += Lanes::kLanes) at(i);
    if (n % Lanes::kLanes != 0) at(n - Lanes::kLanes);
    return true;
}

template <class Lanes, class T = typename Lanes::Pixel>
[[gnu::always_inline]] inline bool Extend(const T* pixels, ExtremaRow<const T> from, ExtremaRow<T> to, size_t n) {
    return ForEachVector<Lanes>(
        n, [&](size_t i) __attribute__((always_inline)) {
            const auto p = Lanes::Load(pixels + i);
            Lanes::Store(to.low + i, Lanes::Min(p, Lanes::Load(from.low + i)));
            Lanes::Store(to.high + i, Lanes::Max(p, Lanes::Load(from.high + i)));
        });
}

template <class Lanes, class T = typename Lanes::Pixel>
[[gnu::always_inline]] inline bool ExtendAndJoin(const T* pixels, ExtremaRow<const T> from, ExtremaRow<T> to,
                                                 ExtremaRow<const T> other, ExtremaRow<T> both, size_t n) {
    return ForEachVector<Lanes>(
        n, [&](size_t i) __attribute__((always_inline)) {
            const auto p = Lanes::Load(pixels + i);
            const auto low = Lanes::Min(p, Lanes::Load(from.low + i)), high = Lanes::Max(p, Lanes::Load(from.high + i));
            Lanes::Store(to.low + i, low);
            Lanes::Store(to.high + i, high);
            Lanes::Store(both.low + i, Lanes::Min(low, Lanes::Load(other.low + i)));
            Lanes::Store(both.high + i, Lanes::Max(high, Lanes::Load(other.high + i)));
        });
}

template <class Lanes, class T = typename Lanes::Pixel>
[[gnu::always_inline]] inline bool Widen(ExtremaRow<const T> from, ExtremaRow<T> to, const size_t (&steps)[3],
                                         size_t n) {
    const size_t a = steps[0], b = steps[1], c = steps[2];
    return ForEachVector<Lanes>(
        n, [&](size_t i) __attribute__((always_inline)) {
            const T *const low = from.low + i, *const high = from.high + i;
            Lanes::Store(to.low + i, Lanes::Min(Lanes::Min(Lanes::Load(low), Lanes::Load(low + a)),
                                                Lanes::Min(Lanes::Load(low + b), Lanes::Load(low + c))));
            Lanes::Store(to.high + i, Lanes::Max(Lanes::Max(Lanes::Load(high), Lanes::Load(high + a)),
                                                 Lanes::Max(Lanes::Load(high + b), Lanes::Load(high + c))));
        });
}

template <class Lanes, class T = typename Lanes::Pixel>
[[gnu::always_inline]] inline bool Sharpen(const T* pixels, ExtremaRow<const T> square, size_t step, T* to, size_t n,
                                           const FilterParameters<T>& limits) {
    const auto lower = Lanes::All(limits.lower), upper = Lanes::All(limits.upper);
    return ForEachVector<Lanes>(
        n, [&](size_t i) __attribute__((always_inline)) {
            const T *const low = square.low + i, *const high = square.high + i;
            Lanes::Store(to + i,
                         Lanes::Nearer(Lanes::Load(pixels + i),
                                       Lanes::Min(upper, Lanes::Min(Lanes::Load(low), Lanes::Load(low + step))),
                                       Lanes::Max(lower, Lanes::Max(Lanes::Load(high), Lanes::Load(high + step)))));
        });
}

template <class Lanes, class T = typename Lanes::Pixel>
[[gnu::always_inline]] inline bool Sharpen3x3(const T* const* rows, T* to, size_t n,
                                              const FilterParameters<T>& limits) {
    const auto lower = Lanes::All(limits.lower), upper = Lanes::All(limits.upper);
    const T *const top = rows[0], *const middle = rows[1], *const bottom = rows[2];
    return ForEachVector<Lanes>(
        n, [&](size_t i) __attribute__((always_inline)) {
            auto low = upper, high = lower;
            typename Lanes::Vector centre;
            for (ptrdiff_t dx = -1; dx <= 1; ++dx) {
                const ptrdiff_t x = static_cast<ptrdiff_t>(i) + dx;
                const auto a = Lanes::Load(top + x), b = Lanes::Load(middle + x), c = Lanes::Load(bottom + x);
                low = Lanes::Min(Lanes::Min(c, Lanes::Min(b, Lanes::Min(a, upper))), low);
                high = Lanes::Max(Lanes::Max(c, Lanes::Max(b, Lanes::Max(a, lower))), high);
                if (dx == 0) centre = b;
            }
            Lanes::Store(to + i, Lanes::Nearer(centre, low, high));
        });
}

}  // namespace
}  // namespace orlix
