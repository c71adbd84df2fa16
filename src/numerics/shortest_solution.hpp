// The shortest least-squares solution of a small system of whole numbers, without rounding.
#pragma once

#include <span>

#include "numerics/integer.hpp"

namespace orlix {

// Of all x for which |A x - b| is least the shortest one (R. Penrose, 1956); a row of A for each entry of b, finite,
// and a column for each of x, entry (row, column) at matrix[row * columns + column]. Computed in rational numbers
// (fraction-free elimination, E. H. Bareiss, 1968) and rounded once, so neither the rank nor a digit depends on how ill
// the matrix is conditioned. For up to some ten rows: the numbers have as many digits as the product of the squared
// rows.
void SolveShortest(std::span<const Integer> matrix, std::span<const double> b, std::span<double> x);

}  // namespace orlix
