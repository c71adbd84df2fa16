// Clipped sums for any vector type. Included by the files of one instruction set each.
#pragma once

#include "fits/quick_sums_kernels.hpp"
#include "vectors/inline.hpp"

namespace orlix {
namespace {

// Terms of higher degree would add zeros, whose sign no magnitude shows.
template <class F, int Degree, class T>
ORLIX_INLINE void AddQuick(const T* pixels, size_t n, const QuickRow& row, float most, QuickSums& sums) {
    using V = typename F::Vector;
    constexpr size_t kParts = 32 / F::kLanes;
    V c[4];
    for (size_t k = 0; k < 4; ++k) c[k] = F::All(row.c[k]);
    const V cap = F::All(most), start = F::All(row.first) + F::Counting(), next = F::All(32.0f);
    V sum[kParts], t[kParts];
#pragma GCC unroll 8
    for (size_t k = 0; k < kParts; ++k) {
        sum[k] = F::Load(sums.lane + k * F::kLanes);
        t[k] = start + F::All(static_cast<float>(k * F::kLanes));
    }
    size_t i = 0;
    for (; i + 32 <= n; i += 32)
#pragma GCC unroll 8
        for (size_t k = 0; k < kParts; ++k) {
            V f = c[Degree];
#pragma GCC unroll 3
            for (int d = Degree - 1; d >= 0; --d) f = c[d] + t[k] * f;
            const V r = F::Smaller(F::Magnitude(f - F::Load(pixels + i + k * F::kLanes)), cap);
            sum[k] = sum[k] + r * r;
            t[k] = t[k] + next;
        }
#pragma GCC unroll 8
    for (size_t k = 0; k < kParts; ++k) F::Store(sums.lane + k * F::kLanes, sum[k]);
    QuickRow rest = row;
    rest.first += static_cast<float>(i);
    QuickSums_scalar(pixels + i, n - i, rest, most, sums);
}

template <class F, class T>
ORLIX_INLINE void AddQuick(const T* pixels, size_t n, const QuickRow& row, float most, QuickSums& sums) {
    if (row.c[3] != 0) return AddQuick<F, 3>(pixels, n, row, most, sums);
    if (row.c[2] != 0) return AddQuick<F, 2>(pixels, n, row, most, sums);
    AddQuick<F, 1>(pixels, n, row, most, sums);
}

}  // namespace
}  // namespace orlix
