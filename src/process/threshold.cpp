#include "process/threshold.hpp"

#include <algorithm>

#include "process/threshold_kernels.hpp"

namespace orlix {

template <class T>
void Threshold_scalar(const T* pixels, size_t bytes, uint8_t* bits, T lo, T hi, bool inside) {
    for (size_t i = 0; i < 8 * bytes; ++i)
        if (IsSet(pixels[i], lo, hi, inside)) bits[i / 8] = static_cast<uint8_t>(bits[i / 8] | 0x80 >> i % 8);
}

template <class T>
ThresholdOperation<T>::ThresholdOperation(T lo, T hi, bool inside)
    : wholeBytes_(Choose(kThreshold<T>)), lo_(lo), hi_(hi), inside_(inside) {}

template <class T>
void ThresholdOperation<T>::Apply(const T* pixels, size_t n, uint8_t* bits, unsigned firstBit) const {
    const auto someBits = [&](size_t count) {
        unsigned byte = 0;
        for (size_t i = 0; i < count; ++i)
            if (IsSet(pixels[i], lo_, hi_, inside_)) byte |= 0x80u >> (firstBit + i);
        *bits = static_cast<uint8_t>(*bits | byte);
    };
    if (firstBit > 0) {
        const size_t head = std::min<size_t>(n, 8 - firstBit);
        someBits(head);
        pixels += head;
        n -= head;
        if (n == 0) return;
        ++bits;
        firstBit = 0;
    }
    wholeBytes_(pixels, n / 8, bits, lo_, hi_, inside_);
    pixels += n - n % 8;
    bits += n / 8;
    if (n % 8 > 0) someBits(n % 8);
}

template void Threshold_scalar(const uint8_t*, size_t, uint8_t*, uint8_t, uint8_t, bool);
template void Threshold_scalar(const uint16_t*, size_t, uint8_t*, uint16_t, uint16_t, bool);
template void Threshold_scalar(const uint32_t*, size_t, uint8_t*, uint32_t, uint32_t, bool);
template void Threshold_scalar(const float*, size_t, uint8_t*, float, float, bool);
template class ThresholdOperation<uint8_t>;
template class ThresholdOperation<uint16_t>;
template class ThresholdOperation<uint32_t>;
template class ThresholdOperation<float>;

}  // namespace orlix
