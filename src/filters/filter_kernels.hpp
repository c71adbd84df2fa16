// The contract of neighbourhood filter kernels.
#pragma once

#include <cstddef>

namespace orlix {

// Results below lower become lower, results above upper become upper; lower is tested first and may exceed upper.
template <class T>
struct FilterParameters {
    T lower;
    T upper;
};

// Filters n pixels of a row with a neighbourhood of radius r: to[i] from the source samples rows[k][i - r .. i + r],
// k = 0..2r, where rows[r] is the row of the pixel. Notes:
//  (1) rows[k] is readable from -r to n + r - 1, and no more is read;
//  (2) to[0 .. n-1] are written, each from the same samples whatever n is; to overlaps none of the rows; n may be 0;
//  (3) rows need no alignment beyond that of T, and several of them may be the same.
template <class T>
using FilterFn = void (*)(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters);

}  // namespace orlix
