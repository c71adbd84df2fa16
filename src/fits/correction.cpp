#include "fits/correction.hpp"

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

template <class T>
Corrector<T>::Corrector(T lower, T upper)
    : shift_(Choose(kCorrect<T>)), fill_(Choose(kShifts)), row_(Choose(kCorrectRow)) {
    parameters_.lower = lower;
    parameters_.upper = upper;
    parameters_.half = lower > upper ? 0.0 : 0.5;
}

template <class T>
void Corrector<T>::Apply(T* pixels, size_t n, int32_t x, int32_t y, const SurfacePolynomial& surface) const {
    const auto& k = surface.k;
    const double v = static_cast<double>(y);
    const RowPolynomial row = {{surface.average - (k[0] + v * (k[1] + v * (k[3] + v * k[6]))),
                                -(k[2] + v * (k[4] + v * k[7])), -(k[5] + v * k[8]), -k[9]}};
    if constexpr (std::is_same_v<T, uint8_t>)
        row_(pixels, n, x, row, parameters_);
    else
        CorrectInPieces(fill_, shift_, pixels, n, x, row, parameters_);
}

template void Correct_scalar(uint8_t*, const double*, size_t, const CorrectionParameters<uint8_t>&);
template void Correct_scalar(uint16_t*, const double*, size_t, const CorrectionParameters<uint16_t>&);
template void Correct_scalar(uint32_t*, const double*, size_t, const CorrectionParameters<uint32_t>&);
template void Correct_scalar(float*, const double*, size_t, const CorrectionParameters<float>&);
template class Corrector<uint8_t>;
template class Corrector<uint16_t>;
template class Corrector<uint32_t>;
template class Corrector<float>;

}  // namespace orlix
