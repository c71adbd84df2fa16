// Reference implementation of the Sobel magnitude.
#include <cmath>
#include <limits>

#include "filters/sobel_kernels.hpp"
#include "filters/sobel_roots.hpp"

namespace orlix {
namespace {

uint8_t RootOf(uint16_t v) {
    if (v >> 12) return kRoots.byBits8[v >> 8];
    if (v >> 8) return kRoots.byBits4[v >> 4];
    return kRoots.exact[v];
}

uint16_t RootOf(uint64_t v) {
    if (v >> 32) return 65535;
    if (v >> 24) return kRoots.byBits24[v >> 24];
    if (v >> 16) return kRoots.byBits16[v >> 16];
    return RootOf(static_cast<uint16_t>(v));
}

uint8_t Magnitude(uint8_t, int64_t gx, int64_t gy) { return RootOf(static_cast<uint16_t>(gx * gx + gy * gy)); }
uint16_t Magnitude(uint16_t, int64_t gx, int64_t gy) { return RootOf(static_cast<uint64_t>(gx * gx + gy * gy)); }
double Magnitude(uint32_t, int64_t gx, int64_t gy) {
    const auto x = static_cast<double>(gx), y = static_cast<double>(gy);
    return std::floor(std::sqrt(x * x + y * y) + 0.5);
}
float Magnitude(float, float gx, float gy) {
    const float v = std::sqrt(gx * gx + gy * gy);
    return std::isnan(v) ? std::numeric_limits<float>::quiet_NaN() : v;
}

template <class T>
using Difference = std::conditional_t<std::is_same_v<T, float>, float, int64_t>;

}  // namespace

template <class T>
void Sobel_scalar(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters) {
    for (size_t i = 0; i < n; ++i) {
        const auto at = [&](int row, ptrdiff_t dx) {
            return static_cast<Difference<T>>(rows[row][static_cast<ptrdiff_t>(i) + dx]);
        };
        const auto d = at(2, 1) - at(0, -1), e = at(0, 1) - at(2, -1);
        const auto gx = (d + e) + 2 * (at(1, 1) - at(1, -1));
        const auto gy = (d - e) + 2 * (at(2, 0) - at(0, 0));
        const auto v = Magnitude(T{}, gx, gy);
        to[i] = v < parameters.lower ? parameters.lower : v > parameters.upper ? parameters.upper : static_cast<T>(v);
    }
}

template Kernel<FilterFn<uint8_t>> Sobel_scalar;
template Kernel<FilterFn<uint16_t>> Sobel_scalar;
template Kernel<FilterFn<uint32_t>> Sobel_scalar;
template Kernel<FilterFn<float>> Sobel_scalar;

}  // namespace orlix
