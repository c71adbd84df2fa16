// Reference implementations of the trimmed sum kernels.
#include "fits/trimming_kernels.hpp"

namespace orlix {

template <class T>
void ClippedSquares_scalar(const T* pixels, const double* surface, size_t n, double limit, ClippedSums& sums) {
    for (size_t i = 0; i < n; ++i) {
        const double r = surface[i] - static_cast<double>(pixels[i]);
        const double square = r * r;
        sums.lane[i % 32] += square < limit ? square : limit;
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

template Kernel<ClippedSquaresFn<uint8_t>> ClippedSquares_scalar;
template Kernel<ClippedSquaresFn<uint16_t>> ClippedSquares_scalar;
template Kernel<ClippedSquaresFn<uint32_t>> ClippedSquares_scalar;
template Kernel<ClippedSquaresFn<float>> ClippedSquares_scalar;
template Kernel<DivideSquaresFn<uint8_t>> DivideSquares_scalar;
template Kernel<DivideSquaresFn<uint16_t>> DivideSquares_scalar;
template Kernel<DivideSquaresFn<uint32_t>> DivideSquares_scalar;
template Kernel<DivideSquaresFn<float>> DivideSquares_scalar;

}  // namespace orlix
