// Reference implementation of the height of a hemisphere along a row.
#include <cmath>

#include "fits/hemisphere_kernels.hpp"

namespace orlix {

void HemisphereRow_scalar(const HemisphereRow& row, double x, size_t n, double* values) {
    for (size_t i = 0; i < n; ++i) {
        const double dx = (x + static_cast<double>(i)) - row.xCenter;
        const double square = row.squares - dx * dx;
        values[i] = (row.base + row.slope * dx) + row.height * std::sqrt(square > 0 ? square : 0.0);
    }
}

}  // namespace orlix
