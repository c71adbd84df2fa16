// How the vector kernels of the Sobel magnitude walk a row. For the files of one instruction set each.
#pragma once

#include "filters/sobel_kernels.hpp"

namespace orlix {
namespace {

// Whether it was done: n is at least one vector. `vector(p, i)` returns the magnitudes of kLanes pixels from i on, p[k]
// being the rows. The last vector ends with the row.
template <class Sobel, class T = typename Sobel::Pixel>
[[gnu::always_inline]] inline bool SobelRow(const T* const* rows, T* to, size_t n,
                                            const FilterParameters<T>& parameters) {
    constexpr size_t kLanes = Sobel::kLanes;
    if (n < kLanes) return false;
    const T* const p[3] = {rows[0], rows[1], rows[2]};
    const Sobel sobel(parameters);
    for (size_t i = 0; i + kLanes <= n; i += kLanes) sobel(p, static_cast<ptrdiff_t>(i), to + i);
    if (n % kLanes != 0) sobel(p, static_cast<ptrdiff_t>(n - kLanes), to + (n - kLanes));
    return true;
}

}  // namespace
}  // namespace orlix
