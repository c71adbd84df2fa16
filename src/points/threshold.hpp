// Conversion of pixels to bits.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orlix {

// Sets the bit of each pixel with lo <= p <= hi (inside), or with p < lo or p > hi (outside). T is uint8_t, uint16_t,
// uint32_t or float. Notes:
//  (1) Bit of column x: 0x80 >> (x % 8) of byte x / 8 of the row of bits. Bits are set, never cleared; bits of columns
//      outside the run stay, and no byte without a column of the run is written.
//  (2) No pixel outside the run is read.
//  (3) lo > hi: nothing is inside, all integers are outside. NaN pixels are never set. To compare float pixels with
//      bounds in double, pass the smallest float not below the lower and the largest not above the upper.
template <class T>
class ThresholdOperation {
public:
    ThresholdOperation(T lo, T hi, bool inside);

    // n pixels from column x >= 0 on; bitRow points at the byte of column 0.
    void operator()(const T* pixels, size_t n, int32_t x, uint8_t* bitRow) const {
        setBits_(pixels, n, bitRow + x / 8, static_cast<unsigned>(x) % 8, lo_, hi_, inside_);
    }

private:
    using Fn = void (*)(const T* pixels, size_t n, uint8_t* bits, unsigned firstBit, T lo, T hi, bool inside);
    Fn setBits_;
    T lo_;
    T hi_;
    bool inside_;
};

extern template class ThresholdOperation<uint8_t>;
extern template class ThresholdOperation<uint16_t>;
extern template class ThresholdOperation<uint32_t>;
extern template class ThresholdOperation<float>;

}  // namespace orlix
