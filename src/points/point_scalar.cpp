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

template void Sum_scalar(uint8_t*, size_t, const PointParameters<uint8_t>&);
template void Sum_scalar(uint16_t*, size_t, const PointParameters<uint16_t>&);
template void Sum_scalar(uint32_t*, size_t, const PointParameters<uint32_t>&);
template void Sum_scalar(float*, size_t, const PointParameters<float>&);
template void Ramp_scalar(uint8_t*, size_t, const PointParameters<uint8_t>&);
template void Ramp_scalar(uint16_t*, size_t, const PointParameters<uint16_t>&);
template void Ramp_scalar(uint32_t*, size_t, const PointParameters<uint32_t>&);
template void Quotient_scalar(uint8_t*, size_t, const PointParameters<uint8_t>&);
template void Quotient_scalar(uint16_t*, size_t, const PointParameters<uint16_t>&);
template void Quotient_scalar(uint32_t*, size_t, const PointParameters<uint32_t>&);
template void Quotient_scalar(float*, size_t, const PointParameters<float>&);
template void Shift_scalar(uint8_t*, size_t, const PointParameters<uint8_t>&);
template void Shift_scalar(uint16_t*, size_t, const PointParameters<uint16_t>&);
template void Shift_scalar(uint32_t*, size_t, const PointParameters<uint32_t>&);
template void Fill_scalar(uint8_t*, size_t, const PointParameters<uint8_t>&);
template void Fill_scalar(uint16_t*, size_t, const PointParameters<uint16_t>&);
template void Fill_scalar(uint32_t*, size_t, const PointParameters<uint32_t>&);
template void Fill_scalar(float*, size_t, const PointParameters<float>&);

}  // namespace orlix
