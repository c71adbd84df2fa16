#include "fits/trimming_kernels.hpp"

namespace orlix {

template <class T>
void ClippedSquares_scalar(const T* pixels, const double* surface, size_t n, double limit, double (&sums)[8]) {
    for (size_t i = 0; i < n; ++i) {
        const double r = surface[i] - static_cast<double>(pixels[i]);
        const double square = r * r;
        sums[i % 8] += square < limit ? square : limit;
    }
}

template <class T>
size_t DivideSquares_scalar(const T* pixels, const double* surface, size_t n, double low, double high,
                            SquareClasses& classes, double* middle) {
    size_t kept = 0;
    for (size_t i = 0; i < n; ++i) {
        const double r = surface[i] - static_cast<double>(pixels[i]);
        const double square = r * r;
        if (square < low) {
            classes.below[i % 8] += square;
            ++classes.fewer;
        }
        classes.upToLow += square <= low;
        classes.upToHigh += square <= high;
        if (square > low && square < high) middle[kept++] = square;
    }
    return kept;
}

template void ClippedSquares_scalar(const uint8_t*, const double*, size_t, double, double (&)[8]);
template void ClippedSquares_scalar(const uint16_t*, const double*, size_t, double, double (&)[8]);
template void ClippedSquares_scalar(const uint32_t*, const double*, size_t, double, double (&)[8]);
template void ClippedSquares_scalar(const float*, const double*, size_t, double, double (&)[8]);
template size_t DivideSquares_scalar(const uint8_t*, const double*, size_t, double, double, SquareClasses&, double*);
template size_t DivideSquares_scalar(const uint16_t*, const double*, size_t, double, double, SquareClasses&, double*);
template size_t DivideSquares_scalar(const uint32_t*, const double*, size_t, double, double, SquareClasses&, double*);
template size_t DivideSquares_scalar(const float*, const double*, size_t, double, double, SquareClasses&, double*);

}  // namespace orlix
