// Reference implementations of the linear filters.
#include <bit>
#include <cmath>
#include <type_traits>

#include "filters/linear_filter_kernels.hpp"
#include "points/pixel_conversion.hpp"

namespace orlix {
namespace {

// The type in which sums of T are computed.
template <class T>
using Sum = std::conditional_t<kIsFloat<T>, float, std::conditional_t<std::is_same_v<T, uint32_t>, double, int32_t>>;

template <class T>
T Finished(Sum<T> sum, int divisor, const FilterParameters<T>& parameters) {
    Sum<T> v = sum / static_cast<Sum<T>>(divisor);
    if constexpr (std::is_same_v<T, uint32_t>) v = std::floor(v + 0.5);
    if (v < static_cast<Sum<T>>(parameters.lower)) return parameters.lower;
    if (v > static_cast<Sum<T>>(parameters.upper)) return parameters.upper;
    if constexpr (kIsFloat<T>)
        if (std::isnan(v)) return std::bit_cast<float>(0x7fc00000);
    return static_cast<T>(v);
}

// value(s) for each pixel, s(dx, dy) being the source sample at that offset from it.
template <int kRadius, class T, class Value>
void ForEachPixel(const T* const* rows, T* to, size_t n, const Value& value) {
    for (ptrdiff_t i = 0; i < static_cast<ptrdiff_t>(n); ++i)
        to[i] = value([&](ptrdiff_t dx, ptrdiff_t dy) { return static_cast<Sum<T>>(rows[dy + kRadius][i + dx]); });
}

// Binomial weights. For five equal values every partial sum is the value times a power of two.
template <class S>
S Weighted(S a, S b, S c) {
    return (a + c) + 2 * b;
}
template <class S>
S Weighted(S a, S b, S c, S d, S e) {
    return (((a + e) + 2 * c) + 4 * c) + 4 * (b + d);
}

}  // namespace

template <class T>
void Laplacian_scalar(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters) {
    ForEachPixel<1>(rows, to, n, [&](const auto& s) {
        const Sum<T> corners = (s(-1, -1) + s(-1, 1)) + (s(1, -1) + s(1, 1));
        const Sum<T> sides = (s(0, -1) + s(0, 1)) + (s(-1, 0) + s(1, 0));
        return Finished<T>((corners + 4 * sides) - 20 * s(0, 0), 6, parameters);
    });
}

template <class T>
void SharpenLow_scalar(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters) {
    ForEachPixel<1>(rows, to, n, [&](const auto& s) {
        const Sum<T> sides = (s(0, -1) + s(0, 1)) + (s(-1, 0) + s(1, 0));
        if constexpr (kIsFloat<T>) return Finished<T>(s(0, 0) + (4 * s(0, 0) - sides) / 2, 1, parameters);
        return Finished<T>(6 * s(0, 0) - sides, 2, parameters);
    });
}

template <class T>
void SharpenMedium_scalar(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters) {
    ForEachPixel<1>(rows, to, n, [&](const auto& s) {
        const Sum<T> sides = (s(0, -1) + s(0, 1)) + (s(-1, 0) + s(1, 0));
        return Finished<T>(s(0, 0) + (4 * s(0, 0) - sides), 1, parameters);
    });
}

template <class T>
void Gaussian3x3_scalar(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters) {
    ForEachPixel<1>(rows, to, n, [&](const auto& s) {
        const auto column = [&](int dx) { return Weighted(s(dx, -1), s(dx, 0), s(dx, 1)); };
        return Finished<T>(Weighted(column(-1), column(0), column(1)), 16, parameters);
    });
}

template <class T>
void Gaussian5x5_scalar(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters) {
    ForEachPixel<2>(rows, to, n, [&](const auto& s) {
        const auto column = [&](int dx) { return Weighted(s(dx, -2), s(dx, -1), s(dx, 0), s(dx, 1), s(dx, 2)); };
        return Finished<T>(Weighted(column(-2), column(-1), column(0), column(1), column(2)), 256, parameters);
    });
}

template Kernel<FilterFn<uint8_t>> Laplacian_scalar;
template Kernel<FilterFn<uint16_t>> Laplacian_scalar;
template Kernel<FilterFn<uint32_t>> Laplacian_scalar;
template Kernel<FilterFn<float>> Laplacian_scalar;
template Kernel<FilterFn<uint8_t>> SharpenLow_scalar;
template Kernel<FilterFn<uint16_t>> SharpenLow_scalar;
template Kernel<FilterFn<uint32_t>> SharpenLow_scalar;
template Kernel<FilterFn<float>> SharpenLow_scalar;
template Kernel<FilterFn<uint8_t>> SharpenMedium_scalar;
template Kernel<FilterFn<uint16_t>> SharpenMedium_scalar;
template Kernel<FilterFn<uint32_t>> SharpenMedium_scalar;
template Kernel<FilterFn<float>> SharpenMedium_scalar;
template Kernel<FilterFn<uint8_t>> Gaussian3x3_scalar;
template Kernel<FilterFn<uint16_t>> Gaussian3x3_scalar;
template Kernel<FilterFn<uint32_t>> Gaussian3x3_scalar;
template Kernel<FilterFn<float>> Gaussian3x3_scalar;
template Kernel<FilterFn<uint8_t>> Gaussian5x5_scalar;
template Kernel<FilterFn<uint16_t>> Gaussian5x5_scalar;
template Kernel<FilterFn<uint32_t>> Gaussian5x5_scalar;
template Kernel<FilterFn<float>> Gaussian5x5_scalar;

}  // namespace orlix
