// The extremum sharpening kernels for any vector type. Included by the files of one instruction set each.
#pragma once

#include "filters/extremum_sharpening_kernels.hpp"
#include "vectors/inline.hpp"

namespace orlix {
namespace {

// Calls at(i) for each vector of columns starting at i; the last vector ends with column n - 1 and so may repeat some
// columns. Returns false, having done nothing, when n is less than one vector.
template <class Lanes, class At>
ORLIX_INLINE bool ForEachVector(size_t n, const At& at) {
    if (n < Lanes::kLanes) return false;
    for (size_t i = 0; i + Lanes::kLanes <= n; i += Lanes::kLanes) at(i);
    if (n % Lanes::kLanes != 0) at(n - Lanes::kLanes);
    return true;
}

template <class Lanes, class T = typename Lanes::Pixel>
ORLIX_INLINE bool Extend(const T* pixels, ExtremaRow<const T> from, ExtremaRow<T> to, size_t n) {
    return ForEachVector<Lanes>(
        n, [&](size_t i) __attribute__((always_inline)) {
            const auto p = Lanes::Load(pixels + i);
            Lanes::Store(to.low + i, Lanes::Min(p, Lanes::Load(from.low + i)));
            Lanes::Store(to.high + i, Lanes::Max(p, Lanes::Load(from.high + i)));
        });
}

template <class Lanes, class T = typename Lanes::Pixel>
ORLIX_INLINE bool ExtendAndJoin(const T* pixels, ExtremaRow<const T> from, ExtremaRow<T> to, ExtremaRow<const T> other,
                                ExtremaRow<T> both, size_t n) {
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

// Whether vectors can be shifted by any number of pixels, which avoids loads that straddle two cache lines.
template <class Lanes>
concept Shifts = requires(size_t step) {
    Lanes::Step(step);
};

// Calls use(low, high, i) for the vectors of ForEachVector(), with the extremes of the rows at i, i + steps[0],
// i + steps[1], ...
template <class Lanes, size_t kSteps, class Use, class T = typename Lanes::Pixel>
ORLIX_INLINE bool ForEachWindow(ExtremaRow<const T> from, const size_t (&steps)[kSteps], size_t n, const Use& use) {
    if (n < Lanes::kLanes) return false;
    const auto alone = [&](size_t i) __attribute__((always_inline)) {
        auto low = Lanes::Load(from.low + i), high = Lanes::Load(from.high + i);
        for (size_t k = 0; k < kSteps; ++k) {
            low = Lanes::Min(low, Lanes::Load(from.low + i + steps[k]));
            high = Lanes::Max(high, Lanes::Load(from.high + i + steps[k]));
        }
        use(low, high, i);
    };
    size_t i = 0;
    if constexpr (Shifts<Lanes>) {
        if (const size_t last = steps[kSteps - 1]; last <= Lanes::kLanes && 2 * Lanes::kLanes <= n + last) {
            auto a = Lanes::Load(from.low), b = Lanes::Load(from.high);
            decltype(Lanes::Step(0)) shifts[kSteps];
            for (size_t k = 0; k < kSteps; ++k) shifts[k] = Lanes::Step(steps[k]);
            for (; i + 2 * Lanes::kLanes <= n + last; i += Lanes::kLanes) {
                const auto c = Lanes::Load(from.low + i + Lanes::kLanes),
                           d = Lanes::Load(from.high + i + Lanes::kLanes);
                auto low = a, high = b;
                for (size_t k = 0; k < kSteps; ++k) {
                    low = Lanes::Min(low, Lanes::After(a, c, shifts[k]));
                    high = Lanes::Max(high, Lanes::After(b, d, shifts[k]));
                }
                use(low, high, i);
                a = c;
                b = d;
            }
        }
    }
    for (; i + Lanes::kLanes <= n; i += Lanes::kLanes) alone(i);
    if (i < n) alone(n - Lanes::kLanes);
    return true;
}

template <class Lanes, class T = typename Lanes::Pixel>
ORLIX_INLINE bool Widen(ExtremaRow<const T> from, ExtremaRow<T> to, const size_t (&steps)[3], size_t n) {
    return ForEachWindow<Lanes>(
        from, steps, n, [&](const auto& low, const auto& high, size_t i) __attribute__((always_inline)) {
            Lanes::Store(to.low + i, low);
            Lanes::Store(to.high + i, high);
        });
}

template <class Lanes, class T = typename Lanes::Pixel>
ORLIX_INLINE bool Sharpen(const T* pixels, ExtremaRow<const T> square, size_t step, T* to, size_t n,
                          const FilterParameters<T>& limits) {
    const auto lower = Lanes::All(limits.lower), upper = Lanes::All(limits.upper);
    return ForEachWindow<Lanes>(
        square, {step}, n, [&](const auto& low, const auto& high, size_t i) __attribute__((always_inline)) {
            Lanes::Store(to + i,
                         Lanes::Nearer(Lanes::Load(pixels + i), Lanes::Min(upper, low), Lanes::Max(lower, high)));
        });
}

// Extremes of three vertically adjacent pixels and the limits. NaN pixels must not be the second operand.
template <class Lanes, class T = typename Lanes::Pixel>
struct ColumnExtremes {
    typename Lanes::Vector low, middle, high;

    ORLIX_INLINE ColumnExtremes(const T* const* p, ptrdiff_t x, const typename Lanes::Vector& lower,
                                const typename Lanes::Vector& upper) {
        const auto a = Lanes::Load(p[0] + x), c = Lanes::Load(p[2] + x);
        middle = Lanes::Load(p[1] + x);
        low = Lanes::Min(c, Lanes::Min(middle, Lanes::Min(a, upper)));
        high = Lanes::Max(c, Lanes::Max(middle, Lanes::Max(a, lower)));
    }
};

// Like MedianRow(): inside the row, columns are shifted to their neighbours; at its ends they are loaded where they
// are.
template <class Lanes, class T = typename Lanes::Pixel>
ORLIX_INLINE bool Sharpen3x3(const T* const* rows, T* to, size_t n, const FilterParameters<T>& limits) {
    constexpr size_t kLanes = Lanes::kLanes;
    if (n < kLanes) return false;
    using Column = ColumnExtremes<Lanes>;
    const auto lower = Lanes::All(limits.lower), upper = Lanes::All(limits.upper);
    const T* const p[3] = {rows[0], rows[1], rows[2]};
    const auto alone = [&](size_t i) __attribute__((always_inline)) {
        const auto x = static_cast<ptrdiff_t>(i);
        const Column l(p, x - 1, lower, upper), c(p, x, lower, upper), r(p, x + 1, lower, upper);
        Lanes::Store(to + i, Lanes::Nearer(c.middle, Lanes::Min(Lanes::Min(l.low, c.low), r.low),
                                           Lanes::Max(Lanes::Max(l.high, c.high), r.high)));
    };
    alone(0);
    size_t i = kLanes;
    if constexpr (requires(const typename Lanes::Vector& v) { Lanes::Before(v, v); })
        if (i + 2 * kLanes <= n + 1) {
            Column l(p, 0, lower, upper), c(p, kLanes, lower, upper);
            for (; i + 2 * kLanes <= n + 1; i += kLanes) {
                const Column r(p, static_cast<ptrdiff_t>(i + kLanes), lower, upper);
                const auto low = Lanes::Min(Lanes::Min(Lanes::Before(l.low, c.low), c.low), Lanes::After(c.low, r.low));
                const auto high =
                    Lanes::Max(Lanes::Max(Lanes::Before(l.high, c.high), c.high), Lanes::After(c.high, r.high));
                Lanes::Store(to + i, Lanes::Nearer(c.middle, low, high));
                l = c;
                c = r;
            }
        }
    for (; i + kLanes <= n; i += kLanes) alone(i);
    if (i < n) alone(n - kLanes);
    return true;
}

}  // namespace
}  // namespace orlix
