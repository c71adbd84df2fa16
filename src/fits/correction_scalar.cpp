// Reference implementations of the correction kernels.
#include <cmath>

#include "fits/correction_kernels.hpp"
#include "points/pixel_conversion.hpp"

namespace orlix {

void Shifts_scalar(double* shifts, size_t n, double x, const RowPolynomial& row) {
    for (size_t i = 0; i < n; ++i) {
        const double t = x + static_cast<double>(i);
        shifts[i] = row.c[0] + t * (row.c[1] + t * (row.c[2] + t * row.c[3]));
    }
}

template <class T>
void Correct_scalar(T* pixels, const double* shifts, size_t n, const CorrectionParameters<T>& parameters) {
    const double lower = static_cast<double>(parameters.lower);
    const double upper = static_cast<double>(parameters.upper);
    for (size_t i = 0; i < n; ++i) {
        double shift = shifts[i];
        if constexpr (!kIsFloat<T>) {
            constexpr double kMost = 0x1p33;
            shift += parameters.half;
            shift = shift > -kMost ? shift : -kMost;
            shift = std::floor(shift < kMost ? shift : kMost);
        }
        const double v = static_cast<double>(pixels[i]) + shift;
        pixels[i] = static_cast<T>(v < lower ? lower : v > upper ? upper : v);
    }
}

void CorrectRow_scalar(uint8_t* pixels, size_t n, double x, const RowPolynomial& row,
                       const CorrectionParameters<uint8_t>& parameters) {
    CorrectInPieces<uint8_t>(&Shifts_scalar, &Correct_scalar, pixels, n, x, row, parameters);
}

template Kernel<CorrectFn<uint8_t>> Correct_scalar;
template Kernel<CorrectFn<uint16_t>> Correct_scalar;
template Kernel<CorrectFn<uint32_t>> Correct_scalar;
template Kernel<CorrectFn<float>> Correct_scalar;

}  // namespace orlix
