// Samples of fewer bits than a file's, which sBIT announces: 10- or 12-bit levels in a file of 16 bits.
#pragma once

#include <cstdint>
#include <vector>

namespace orlix::png {

// For each value of so many bits, 1 <= bits < depth, the sample of `depth` bits that stands for it: its bits from the
// highest down, again and again, which is less than 1 from value * (2^depth - 1) / (2^bits - 1).
inline std::vector<uint16_t> ScaledSamples(int32_t bits, int32_t depth) {
    std::vector<uint16_t> scaled(size_t{1} << bits);
    for (uint32_t value = 0; value < scaled.size(); ++value) {
        uint32_t sample = 0;
        int32_t shift = depth - bits;
        for (; shift > 0; shift -= bits) sample |= value << shift;
        scaled[value] = static_cast<uint16_t>(sample | value >> -shift);
    }
    return scaled;
}

}  // namespace orlix::png
