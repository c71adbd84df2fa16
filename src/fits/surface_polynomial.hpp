// Polynomial surfaces z = f(x, y) of degree 1, 2 or 3, x column and y row: representation, shift of origin and
// solution.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "numerics/linear_system.hpp"

namespace orlix {

// Monomials in the order of the records of the biquadratic and the bicubic fit:
// 1, y, x, y^2, xy, x^2, y^3, x y^2, x^2 y, x^3.
constexpr size_t MonomialIndex(int powerOfX, int powerOfY) {
    const int degree = powerOfX + powerOfY;
    return static_cast<size_t>(degree * (degree + 1) / 2 + powerOfX);
}
constexpr size_t NumberOfMonomials(int degree) { return MonomialIndex(0, degree + 1); }

// f(x, y) = sum of k[MonomialIndex(p, q)] x^p y^q; coefficients beyond the degree are 0.
struct SurfacePolynomial {
    std::array<double, 10> k = {};
    double average = 0;  // of the grey values it was fitted to

    bool finite() const;  // the coefficients and the average
};

// The coordinates of a fit: sums are taken and systems solved in u = (2x - left - right) / width, v likewise, with
// width the power of two at or above right - left (1 for a single column). So |u|, |v| <= 1; every pixel's u and v and
// the two changes of coordinates are exact, and the fit does not depend on where in the image the region lies.
class SurfaceFrame {
public:
    SurfaceFrame() = default;
    // left <= right, top <= bottom.
    SurfaceFrame(int32_t left, int32_t top, int32_t right, int32_t bottom);

    double u(double x) const { return (2 * x - xSum_) / width_; }
    double v(double y) const { return (2 * y - ySum_) / height_; }
    double width() const { return width_; }
    double height() const { return height_; }

    // Converts coefficients of a polynomial in u, v (in the order of MonomialIndex) to coefficients in x, y, each
    // rounded once.
    SurfacePolynomial InPixels(int degree, std::span<const DoublePair> coefficients) const;

private:
    double xSum_ = 0, ySum_ = 0;  // left + right, top + bottom
    double width_ = 1, height_ = 1;
};

struct SurfacePoint {
    int32_t x, y;
    double z;
};

// The polynomial through exactly as many points as it has monomials. If the points do not determine it (on a line, or
// the same point twice), the result is, among the polynomials with the least sum of squared residuals, the one with the
// shortest coefficients in u, v. The average is that of the points.
SurfacePolynomial PolynomialThrough(int degree, const SurfaceFrame& frame, std::span<const SurfacePoint> points);

// For fewer points than monomials, at least one: among the polynomials with the least sum of squared residuals (0,
// unless the points lie such that even these are too many for some curve, like five points of a line for a cubic), the
// one with the shortest coefficients in x and y themselves. No digit is lost on the way, wherever the points lie: each
// coefficient is rounded once.
SurfacePolynomial ShortestPolynomial(int degree, std::span<const SurfacePoint> points);

}  // namespace orlix
