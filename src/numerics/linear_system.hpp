// Linear systems of up to ten unknowns. Only + - * / and square roots, in a fixed order: the same bits in every build.
#pragma once

#include <array>
#include <cstddef>
#include <span>

#include "numerics/double_pair.hpp"

namespace orlix {

inline constexpr size_t kMostUnknowns = 10;
inline constexpr double kSingularValueCut = 1e-12;  // of the largest

// Entry (row, column) of a matrix of `columns` columns is matrix[row * columns + column] throughout.

// P A = L U of a square matrix, with partial pivoting: the largest entry of the column, the first of equal ones. A
// pivot that is exactly zero is replaced by 1e-20, so that nothing is divided by zero.
class LuDecomposition {
public:
    explicit LuDecomposition(std::span<const double> matrix, size_t size);

    // A x = b by forward and back substitution. x and b may be the same.
    void Solve(std::span<const double> b, std::span<double> x) const;

    // The Frobenius norm of the inverse, which is at least 1 / (smallest singular value) and at most sqrt(size) times
    // as much.
    double NormOfInverse() const;

private:
    size_t size_;
    std::array<double, kMostUnknowns* kMostUnknowns> lu_ = {};
    std::array<size_t, kMostUnknowns> row_ = {};  // of A, in the order of elimination
};

// A = U S V^T of any matrix of up to ten rows and columns, by one-sided Jacobi rotations (M. R. Hestenes, 1958): A is
// multiplied from the right by rotations until its columns are orthogonal.
class SingularValueDecomposition {
public:
    SingularValueDecomposition(std::span<const double> matrix, size_t rows, size_t columns);

    // The shortest of all x that minimise |A x - b|. Singular values up to kSingularValueCut times the largest count as
    // zero. b has an entry for each row, x one for each column; they must not overlap.
    void Solve(std::span<const double> b, std::span<double> x) const;

    // In the order of the columns, not sorted.
    std::span<const double> singularValues() const { return {values_.data(), columns_}; }
    size_t Rank() const;

private:
    size_t rows_, columns_;
    double cut_ = 0;
    std::array<double, kMostUnknowns* kMostUnknowns> w_ = {};  // column j, one after another: U S
    std::array<double, kMostUnknowns* kMostUnknowns> v_ = {};  // column j
    std::array<double, kMostUnknowns> values_ = {};
};

// A x = b of a square matrix whose entries have more digits than a double. The decomposition of the rounded matrix
// gives a first solution, which is refined with residuals in DoublePair until it no longer changes (iterative
// refinement, J. H. Wilkinson, 1963). If a solution of few digits explains the data, it is found exactly.
//
// LU is used if |A| |A^-1| < 1e11 (Frobenius norms). These norms are upper bounds of the singular values and of their
// inverses, so the cut at 1e-12 would drop none of them. Otherwise the singular values decide: the result is then the
// shortest least-squares solution, which is the solution of LU if no singular value is dropped.
void SolveRefined(std::span<const DoublePair> matrix, std::span<const DoublePair> b, std::span<DoublePair> x);

}  // namespace orlix
