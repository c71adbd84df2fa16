// The definition of the colours behind a mosaic.
#include <algorithm>

#include "frames/mosaic_kernels.hpp"

namespace orlix {

template <class T>
void Mosaic_scalar(const T* const* rows, size_t n, bool ownFirst, T most, T* own, T* green, T* other) {
    for (size_t i = 0; i < n; ++i) {
        const auto s = [&](int x, int y) { return int{rows[2 + y][static_cast<ptrdiff_t>(i) + x]}; };
        const int e = s(-1, 0) + s(1, 0), ee = s(-2, 0) + s(2, 0);
        const int v = s(0, -1) + s(0, 1), vv = s(0, -2) + s(0, 2);
        const int d = s(-1, -1) + s(1, -1) + s(-1, 1) + s(1, 1);
        const int c = s(0, 0);
        const auto rounded = [&](int sum) { return static_cast<T>(std::clamp((sum + 8) >> 4, 0, int{most})); };
        if ((i % 2 == 0) == ownFirst) {
            own[i] = static_cast<T>(c);
            green[i] = rounded(8 * c + 4 * (e + v) - 2 * (ee + vv));
            other[i] = rounded(12 * c + 4 * d - 3 * (ee + vv));
        } else {
            own[i] = rounded(10 * c + 8 * e - 2 * ee - 2 * d + vv);
            green[i] = static_cast<T>(c);
            other[i] = rounded(10 * c + 8 * v - 2 * vv - 2 * d + ee);
        }
    }
}
template Kernel<MosaicFn<uint8_t>> Mosaic_scalar;
template Kernel<MosaicFn<uint16_t>> Mosaic_scalar;

}  // namespace orlix
