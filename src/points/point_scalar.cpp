// The definitions of the point kernels.
#include <algorithm>
#include <cmath>

#include "points/pixel_conversion.hpp"
#include "points/point_kernels.hpp"

namespace orlix {

template <class T>
void Sum_scalar(T* pixels, size_t n, const PointParameters<T>& parameters) {
    const double lower = static_cast<double>(parameters.lower);
    const double upper = static_cast<double>(parameters.upper);
    for (size_t i = 0; i < n; ++i) {
        const double p = static_cast<double>(pixels[i]);
        const double s = parameters.falling ? parameters.value - p : p + parameters.value;
        const double clamped = s < lower ? lower : s > upper ? upper : s;
        pixels[i] = static_cast<T>(kIsFloat<T> ? clamped : std::floor(clamped + 0.5));
    }
}

template <class T>
void Ramp_scalar(T* pixels, size_t n, const PointParameters<T>& parameters) {
    for (size_t i = 0; i < n; ++i) {
        const T q = std::clamp(pixels[i], parameters.first, parameters.last);
        pixels[i] = static_cast<T>(parameters.falling ? parameters.offset - q : parameters.offset + q);
    }
}

template <class T>
void Quotient_scalar(T* pixels, size_t n, const PointParameters<T>& parameters) {
    for (size_t i = 0; i < n; ++i) pixels[i] = ToPixel<T>(static_cast<double>(pixels[i]) / parameters.value);
}

template <class T>
void Shift_scalar(T* pixels, size_t n, const PointParameters<T>& parameters) {
    const unsigned shift = parameters.shift;
    for (size_t i = 0; i < n; ++i)
        pixels[i] = shift < 32 ? static_cast<T>(static_cast<uint32_t>(pixels[i]) >> shift) : T{0};
}

void LookUp_scalar(uint8_t* pixels, size_t n, const PointParameters<uint8_t>& parameters) {
    for (size_t i = 0; i < n; ++i) pixels[i] = parameters.table[pixels[i]];
}

template <class T>
void Fill_scalar(T* pixels, size_t n, const PointParameters<T>& parameters) {
    std::fill_n(pixels, n, parameters.offset);
}

template Kernel<PointFn<uint8_t>> Sum_scalar;
template Kernel<PointFn<uint16_t>> Sum_scalar;
template Kernel<PointFn<uint32_t>> Sum_scalar;
template Kernel<PointFn<float>> Sum_scalar;
template Kernel<PointFn<uint8_t>> Ramp_scalar;
template Kernel<PointFn<uint16_t>> Ramp_scalar;
template Kernel<PointFn<uint32_t>> Ramp_scalar;
template Kernel<PointFn<uint8_t>> Quotient_scalar;
template Kernel<PointFn<uint16_t>> Quotient_scalar;
template Kernel<PointFn<uint32_t>> Quotient_scalar;
template Kernel<PointFn<float>> Quotient_scalar;
template Kernel<PointFn<uint8_t>> Shift_scalar;
template Kernel<PointFn<uint16_t>> Shift_scalar;
template Kernel<PointFn<uint32_t>> Shift_scalar;
template Kernel<PointFn<uint8_t>> Fill_scalar;
template Kernel<PointFn<uint16_t>> Fill_scalar;
template Kernel<PointFn<uint32_t>> Fill_scalar;
template Kernel<PointFn<float>> Fill_scalar;

}  // namespace orlix
