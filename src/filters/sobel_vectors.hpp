// How the Sobel vector kernels traverse a row. Included by the files of one instruction set each.
#pragma once

#include "filters/sobel_kernels.hpp"
#include "vectors/inline.hpp"

namespace orlix {
namespace {

// Specialised by each file for the pixel types:
//
//     static constexpr size_t kLanes;          pixels of a vector
//     SobelLanes(const FilterParameters<T>&);
//     void operator()(p, i, to) const;         writes the magnitudes of kLanes pixels from i on, p[k] being the rows
template <class T>
struct SobelLanes;

// Returns false, having done nothing, when n is less than one vector. The last vector ends with the row.
template <class T>
ORLIX_INLINE bool SobelRow(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters) {
    constexpr size_t kLanes = SobelLanes<T>::kLanes;
    if (n < kLanes) return false;
    const T* const p[3] = {rows[0], rows[1], rows[2]};
    const SobelLanes<T> sobel(parameters);
    for (size_t i = 0; i + kLanes <= n; i += kLanes) sobel(p, static_cast<ptrdiff_t>(i), to + i);
    if (n % kLanes != 0) sobel(p, static_cast<ptrdiff_t>(n - kLanes), to + (n - kLanes));
    return true;
}

}  // namespace
}  // namespace orlix
