// Reference implementations of the extremum sharpening kernels.
#include "filters/extremum_sharpening_kernels.hpp"
#include "filters/extremum_sharpening_nearer.hpp"

namespace orlix {
namespace {

// `sofar` when the pixel is NaN.
template <class T>
T Least(T pixel, T sofar) {
    return pixel < sofar ? pixel : sofar;
}
template <class T>
T Most(T pixel, T sofar) {
    return pixel > sofar ? pixel : sofar;
}

}  // namespace

template <class T>
void Extend_scalar(const T* pixels, ExtremaRow<const T> from, ExtremaRow<T> to, size_t n) {
    for (size_t i = 0; i < n; ++i) {
        to.low[i] = Least(pixels[i], from.low[i]);
        to.high[i] = Most(pixels[i], from.high[i]);
    }
}

template <class T>
void ExtendAndJoin_scalar(const T* pixels, ExtremaRow<const T> from, ExtremaRow<T> to, ExtremaRow<const T> other,
                          ExtremaRow<T> both, size_t n) {
    Extend_scalar(pixels, from, to, n);
    for (size_t i = 0; i < n; ++i) {
        both.low[i] = Least(to.low[i], other.low[i]);
        both.high[i] = Most(to.high[i], other.high[i]);
    }
}

template <class T>
void Widen_scalar(ExtremaRow<const T> from, ExtremaRow<T> to, const size_t (&steps)[3], size_t n) {
    for (size_t i = 0; i < n; ++i) {
        T low = from.low[i], high = from.high[i];
        for (const size_t step : steps) {
            low = Least(from.low[i + step], low);
            high = Most(from.high[i + step], high);
        }
        to.low[i] = low;
        to.high[i] = high;
    }
}

template <class T>
void Sharpen_scalar(const T* pixels, ExtremaRow<const T> square, size_t step, T* to, size_t n,
                    const FilterParameters<T>& limits) {
    for (size_t i = 0; i < n; ++i)
        to[i] = NearerExtreme(pixels[i], Least(limits.upper, Least(square.low[i], square.low[i + step])),
                              Most(limits.lower, Most(square.high[i], square.high[i + step])));
}

template <class T>
void ExtremumSharpening3x3_scalar(const T* const* rows, T* to, size_t n, const FilterParameters<T>& limits) {
    for (size_t i = 0; i < n; ++i) {
        T low = limits.upper, high = limits.lower;
        for (int k = 0; k < 3; ++k)
            for (ptrdiff_t dx = -1; dx <= 1; ++dx) {
                const T pixel = rows[k][static_cast<ptrdiff_t>(i) + dx];
                low = Least(pixel, low);
                high = Most(pixel, high);
            }
        to[i] = NearerExtreme(rows[1][i], low, high);
    }
}

template Kernel<ExtendFn<uint8_t>> Extend_scalar;
template Kernel<ExtendAndJoinFn<uint8_t>> ExtendAndJoin_scalar;
template Kernel<WidenFn<uint8_t>> Widen_scalar;
template Kernel<SharpenFn<uint8_t>> Sharpen_scalar;
template Kernel<FilterFn<uint8_t>> ExtremumSharpening3x3_scalar;
template Kernel<ExtendFn<uint16_t>> Extend_scalar;
template Kernel<ExtendAndJoinFn<uint16_t>> ExtendAndJoin_scalar;
template Kernel<WidenFn<uint16_t>> Widen_scalar;
template Kernel<SharpenFn<uint16_t>> Sharpen_scalar;
template Kernel<FilterFn<uint16_t>> ExtremumSharpening3x3_scalar;
template Kernel<ExtendFn<uint32_t>> Extend_scalar;
template Kernel<ExtendAndJoinFn<uint32_t>> ExtendAndJoin_scalar;
template Kernel<WidenFn<uint32_t>> Widen_scalar;
template Kernel<SharpenFn<uint32_t>> Sharpen_scalar;
template Kernel<FilterFn<uint32_t>> ExtremumSharpening3x3_scalar;
template Kernel<ExtendFn<float>> Extend_scalar;
template Kernel<ExtendAndJoinFn<float>> ExtendAndJoin_scalar;
template Kernel<WidenFn<float>> Widen_scalar;
template Kernel<SharpenFn<float>> Sharpen_scalar;
template Kernel<FilterFn<float>> ExtremumSharpening3x3_scalar;

}  // namespace orlix
