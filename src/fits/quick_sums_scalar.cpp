// Reference implementation of the clipped sums in single precision.
#include <cmath>

#include "fits/quick_sums_kernels.hpp"

namespace orlix {

template <class T>
void QuickSums_scalar(const T* pixels, size_t n, const QuickRow& row, float most, QuickSums& sums) {
    for (size_t i = 0; i < n; ++i) {
        const float t = row.first + static_cast<float>(i);
        const float f = row.c[0] + t * (row.c[1] + t * (row.c[2] + t * row.c[3]));
        const float r = std::fabs(f - static_cast<float>(pixels[i]));
        const float kept = r < most ? r : most;
        sums.lane[i % 32] += kept * kept;
    }
}

template Kernel<QuickSumsFn<uint8_t>> QuickSums_scalar;
template Kernel<QuickSumsFn<uint16_t>> QuickSums_scalar;
template Kernel<QuickSumsFn<float>> QuickSums_scalar;

}  // namespace orlix
