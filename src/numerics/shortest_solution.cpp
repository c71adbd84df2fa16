#include "numerics/shortest_solution.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace orlix {
namespace {

// A symmetric matrix without negative eigenvalues, and a right-hand side.
struct System {
    size_t size;
    std::vector<Integer> matrix, right;

    System(size_t n) : size(n), matrix(n * n), right(n) {}
    Integer& at(size_t i, size_t j) { return matrix[i * size + j]; }

    // Gauss-Jordan elimination along the diagonal. Rows that depend on those before them have a zero there, and in such
    // a matrix zeros in all the row: they are left out. Those that were not are returned; for them right / the result's
    // divisor solves the system without the others.
    std::vector<size_t> Eliminate(Integer& divisor) {
        std::vector<size_t> independent;
        divisor = 1;
        for (size_t k = 0; k < size; ++k) {
            const Integer pivot = at(k, k);
            if (pivot.IsZero()) continue;
            independent.push_back(k);
            for (size_t i = 0; i < size; ++i) {
                if (i == k) continue;
                const Integer factor = at(i, k);
                for (size_t j = k + 1; j < size; ++j)
                    at(i, j) = (pivot * at(i, j) - factor * at(k, j)).DividedExactly(divisor);
                right[i] = (pivot * right[i] - factor * right[k]).DividedExactly(divisor);
            }
            divisor = pivot;
        }
        return independent;
    }
};

// The fraction a / b times 2^exponent.
double Quotient(const Integer& a, const Integer& b, int exponent) {
    int ofA = 0, ofB = 0;
    DoublePair rest = a.ToPair(ofA);
    const DoublePair divisor = b.ToPair(ofB);
    DoublePair quotient;
    for (int digit = 0; digit < 3; ++digit) {
        const double part = rest.high / divisor.high;
        quotient += DoublePair(part);
        rest += -(divisor * part);
    }
    return std::ldexp(static_cast<double>(quotient), ofA - ofB + exponent);
}

}  // namespace

void SolveShortest(std::span<const Integer> matrix, std::span<const double> b, std::span<double> x) {
    const size_t rows = b.size(), columns = x.size();
    // b as whole numbers times 2^exponent: a double has 53 bits.
    int exponent = 0;
    bool any = false;
    for (const double value : b) {
        if (value == 0) continue;
        int ofValue = 0;
        std::frexp(value, &ofValue);
        exponent = any ? std::min(exponent, ofValue - 53) : ofValue - 53;
        any = true;
    }
    std::vector<Integer> z;
    for (const double value : b) z.push_back(Integer::Scaled(value, exponent));

    // x = A^T y lies among the rows, with A A^T y = b.
    std::vector<Integer> gram(rows * rows);
    for (size_t i = 0; i < rows; ++i)
        for (size_t j = 0; j < rows; ++j)
            for (size_t k = 0; k < columns; ++k)
                gram[i * rows + j] = gram[i * rows + j] + matrix[i * columns + k] * matrix[j * columns + k];
    System system(rows);
    system.matrix = gram;
    system.right = z;
    Integer divisor;
    const std::vector<size_t> independent = system.Eliminate(divisor);
    if (independent.size() < rows) {
        // With B the independent rows and H = A B^T: x = B^T y, and the least squares of H y - b.
        const auto h = [&](size_t i, size_t j) -> const Integer& { return gram[i * rows + independent[j]]; };
        System squares(independent.size());
        for (size_t i = 0; i < squares.size; ++i)
            for (size_t k = 0; k < rows; ++k) {
                squares.right[i] = squares.right[i] + h(k, i) * z[k];
                for (size_t j = 0; j < squares.size; ++j) squares.at(i, j) = squares.at(i, j) + h(k, i) * h(k, j);
            }
        squares.Eliminate(divisor);
        system.right = squares.right;
    }
    for (size_t k = 0; k < columns; ++k) {
        Integer sum;
        for (size_t j = 0; j < independent.size(); ++j)
            sum = sum + matrix[independent[j] * columns + k] * system.right[j];
        x[k] = Quotient(sum, divisor, exponent);
    }
}

}  // namespace orlix
