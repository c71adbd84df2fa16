#include "fits/surface_polynomial.hpp"

#include <algorithm>
#include <cmath>
#include <vector>

#include "numerics/shortest_solution.hpp"

namespace orlix {
namespace {

constexpr int kMostDegree = 3;

double PowerOfTwoAtLeast(double value) {
    double power = 1;
    while (power < value) power *= 2;
    return power;
}

// Converts coefficients c[0..degree] of a polynomial in t = scale s + by to coefficients in s. scale is a power of two.
void Substitute(DoublePair* c, int degree, double scale, double by) {
    for (int pass = 0; pass < degree; ++pass)
        for (int p = degree; p-- > pass;) c[p] += c[p + 1] * by;
    double power = 1;
    for (int p = 1; p <= degree; ++p) c[p] *= power *= scale;
}

}  // namespace

bool SurfacePolynomial::finite() const {
    return std::isfinite(average) && std::all_of(k.begin(), k.end(), [](double value) { return std::isfinite(value); });
}

SurfaceFrame::SurfaceFrame(int32_t left, int32_t top, int32_t right, int32_t bottom)
    : xSum_(static_cast<double>(left) + right),
      ySum_(static_cast<double>(top) + bottom),
      width_(PowerOfTwoAtLeast(static_cast<double>(right) - left)),
      height_(PowerOfTwoAtLeast(static_cast<double>(bottom) - top)) {}

SurfacePolynomial SurfaceFrame::InPixels(int degree, std::span<const DoublePair> coefficients) const {
    DoublePair c[kMostDegree + 1][kMostDegree + 1];  // [q][p]
    for (int q = 0; q <= degree; ++q) {
        for (int p = 0; p + q <= degree; ++p) c[q][p] = coefficients[MonomialIndex(p, q)];
        Substitute(c[q], degree - q, 2 / width_, -xSum_ / width_);
    }
    SurfacePolynomial polynomial;
    for (int p = 0; p <= degree; ++p) {
        DoublePair column[kMostDegree + 1];
        for (int q = 0; p + q <= degree; ++q) column[q] = c[q][p];
        Substitute(column, degree - p, 2 / height_, -ySum_ / height_);
        for (int q = 0; p + q <= degree; ++q) polynomial.k[MonomialIndex(p, q)] = static_cast<double>(column[q]);
    }
    return polynomial;
}

SurfacePolynomial PolynomialThrough(int degree, const SurfaceFrame& frame, std::span<const SurfacePoint> points) {
    const size_t unknowns = NumberOfMonomials(degree);
    std::array<DoublePair, kMostUnknowns * kMostUnknowns> matrix;
    std::array<DoublePair, kMostUnknowns> z, solution;
    DoublePair sum;
    for (size_t i = 0; i < unknowns; ++i) {
        const double u = frame.u(points[i].x), v = frame.v(points[i].y);
        DoublePair uPower = 1.0;
        for (int p = 0; p <= degree; ++p, uPower *= u) {
            DoublePair power = uPower;
            for (int q = 0; p + q <= degree; ++q, power *= v) matrix[i * unknowns + MonomialIndex(p, q)] = power;
        }
        z[i] = points[i].z;
        sum += z[i];
    }
    SolveRefined({matrix.data(), unknowns * unknowns}, {z.data(), unknowns}, {solution.data(), unknowns});
    SurfacePolynomial polynomial = frame.InPixels(degree, solution);
    polynomial.average = static_cast<double>(sum / static_cast<double>(unknowns));
    return polynomial;
}

SurfacePolynomial ShortestPolynomial(int degree, std::span<const SurfacePoint> points) {
    const size_t unknowns = NumberOfMonomials(degree);
    std::vector<Integer> matrix(points.size() * unknowns);
    std::vector<double> z;
    DoublePair sum;
    for (size_t i = 0; i < points.size(); ++i) {
        Integer xPower = 1;
        for (int p = 0; p <= degree; ++p, xPower = xPower * points[i].x) {
            Integer power = xPower;
            for (int q = 0; p + q <= degree; ++q, power = power * points[i].y)
                matrix[i * unknowns + MonomialIndex(p, q)] = power;
        }
        z.push_back(points[i].z);
        sum += DoublePair(points[i].z);
    }
    SurfacePolynomial polynomial;
    SolveShortest(matrix, z, {polynomial.k.data(), unknowns});
    polynomial.average = static_cast<double>(sum / static_cast<double>(points.size()));
    return polynomial;
}

}  // namespace orlix
