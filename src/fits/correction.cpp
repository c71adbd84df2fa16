#include "fits/correction.hpp"

#include <cmath>

#include "fits/correction_kernels.hpp"
#include "points/pixel_conversion.hpp"

namespace orlix {

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

template class Corrector<uint8_t>;
template class Corrector<uint16_t>;
template class Corrector<uint32_t>;
template class Corrector<float>;

}  // namespace orlix
