// Corrections: subtract a surface from pixels and add the average of the pixels that it was fitted to.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

#include "fits/surface_polynomial.hpp"

namespace orlix {

// Parameters of the correction kernels (correction_kernels.hpp).
template <class T>
struct CorrectionParameters {
    T lower = 0, upper = 0;  // clamp of the result
    double half = 0.5;       // integers: rounds half up; 0 where lower > upper, see Corrector
};

// c[0] + t (c[1] + t (c[2] + t c[3])) in double, in this order; t is the column.
struct RowPolynomial {
    double c[4] = {};
};

// Replaces each pixel p by v = p + s, where s = average - f(x, y) is the shift at the pixel: v below lower gives lower,
// v above upper gives upper, all others floor(v + 0.5), or for float pixels v rounded to float. T is uint8_t, uint16_t,
// uint32_t or float.
//  (1) For a surface that is no polynomial, compute the shifts of a run, or of a piece that stays in the cache, and
//      call Apply.
//  (2) Polynomial: s = c[0] + x (c[1] + x (c[2] + x c[3])) with, per row,
//      c[0] = average - (k0 + y (k1 + y (k3 + y k6))), c[1] = -(k2 + y (k4 + y k7)), c[2] = -(k5 + y k8), c[3] = -k9.
//      This order of operations is the definition.
//  (3) Integer pixels are whole numbers, so floor(v + 0.5) = p + floor(s + 0.5), and v < lower exactly when
//      p + floor(s) < lower: the shift is rounded before it is added, and limited to +-2^33. For lower > upper the
//      clamp gives lower where v is below lower, and upper elsewhere.
//  (4) A NaN shift counts as -infinity for integers and makes a float NaN; a NaN pixel stays NaN.
template <class T>
class Corrector {
public:
    Corrector(T lower, T upper);

    void Apply(T* pixels, const double* shifts, size_t n) const { shift_(pixels, shifts, n, parameters_); }

    // Processes n pixels from (x, y) on.
    void Apply(T* pixels, size_t n, int32_t x, int32_t y, const SurfacePolynomial& surface) const;

private:
    void (*shift_)(T* pixels, const double* shifts, size_t n, const CorrectionParameters<T>& parameters);
    void (*fill_)(double* shifts, size_t n, double x, const RowPolynomial& row);
    void (*row_)(uint8_t* pixels, size_t n, double x, const RowPolynomial& row,
                 const CorrectionParameters<uint8_t>& parameters);
    CorrectionParameters<T> parameters_;
};

extern template class Corrector<uint8_t>;
extern template class Corrector<uint16_t>;
extern template class Corrector<uint32_t>;
extern template class Corrector<float>;

}  // namespace orlix
