#include "filters/extremum_sharpening_vectors.hpp"
#include "vectors/lanes_avx512.hpp"

namespace orlix {

template <class T>
void Extend_avx512(const T* pixels, ExtremaRow<const T> from, ExtremaRow<T> to, size_t n) {
    if (!Extend<PixelLanes<T>>(pixels, from, to, n)) Extend_avx2(pixels, from, to, n);
}

template <class T>
void ExtendAndJoin_avx512(const T* pixels, ExtremaRow<const T> from, ExtremaRow<T> to, ExtremaRow<const T> other,
                          ExtremaRow<T> both, size_t n) {
    if (!ExtendAndJoin<PixelLanes<T>>(pixels, from, to, other, both, n))
        ExtendAndJoin_avx2(pixels, from, to, other, both, n);
}

template <class T>
void Widen_avx512(ExtremaRow<const T> from, ExtremaRow<T> to, const size_t (&steps)[3], size_t n) {
    if (!Widen<PixelLanes<T>>(from, to, steps, n)) Widen_avx2(from, to, steps, n);
}

template <class T>
void Sharpen_avx512(const T* pixels, ExtremaRow<const T> square, size_t step, T* to, size_t n,
                    const FilterParameters<T>& limits) {
    if (!Sharpen<PixelLanes<T>>(pixels, square, step, to, n, limits)) Sharpen_avx2(pixels, square, step, to, n, limits);
}

template <class T>
void ExtremumSharpening3x3_avx512(const T* const* rows, T* to, size_t n, const FilterParameters<T>& limits) {
    if (!Sharpen3x3<PixelLanes<T>>(rows, to, n, limits)) ExtremumSharpening3x3_avx2(rows, to, n, limits);
}

template Kernel<ExtendFn<uint8_t>> Extend_avx512;
template Kernel<ExtendAndJoinFn<uint8_t>> ExtendAndJoin_avx512;
template Kernel<WidenFn<uint8_t>> Widen_avx512;
template Kernel<SharpenFn<uint8_t>> Sharpen_avx512;
template Kernel<FilterFn<uint8_t>> ExtremumSharpening3x3_avx512;
template Kernel<ExtendFn<uint16_t>> Extend_avx512;
template Kernel<ExtendAndJoinFn<uint16_t>> ExtendAndJoin_avx512;
template Kernel<WidenFn<uint16_t>> Widen_avx512;
template Kernel<SharpenFn<uint16_t>> Sharpen_avx512;
template Kernel<FilterFn<uint16_t>> ExtremumSharpening3x3_avx512;
template Kernel<ExtendFn<uint32_t>> Extend_avx512;
template Kernel<ExtendAndJoinFn<uint32_t>> ExtendAndJoin_avx512;
template Kernel<WidenFn<uint32_t>> Widen_avx512;
template Kernel<SharpenFn<uint32_t>> Sharpen_avx512;
template Kernel<FilterFn<uint32_t>> ExtremumSharpening3x3_avx512;
template Kernel<ExtendFn<float>> Extend_avx512;
template Kernel<ExtendAndJoinFn<float>> ExtendAndJoin_avx512;
template Kernel<WidenFn<float>> Widen_avx512;
template Kernel<SharpenFn<float>> Sharpen_avx512;
template Kernel<FilterFn<float>> ExtremumSharpening3x3_avx512;

}  // namespace orlix
