// The shortest least-squares solution of a small system, without rounding.
#pragma once

#include <span>

#include "numerics/integer.hpp"

namespace orlix {

// The shortest of all x that minimise |A x - b| (R. Penrose, 1956). All entries are finite; A has a row for each entry
// of b and a column for each of x, entry (row, column) at matrix[row * columns + column]. Computed in rational numbers
// (fraction-free elimination, E. H. Bareiss, 1968) and rounded once, so rank and digits do not depend on the condition
// of the matrix. For up to about ten rows: the numbers have as many digits as the product of the squared rows.
void SolveShortest(std::span<const Integer> matrix, std::span<const double> b, std::span<double> x);

}  // namespace orlix
