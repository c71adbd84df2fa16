// Which source pixels a destination pixel is made of, and with what weights, along one axis of smooth scaling.
#pragma once

#include <cstdint>
#include <vector>

namespace orlix {

struct WeightedPixel {
    int32_t position;
    uint16_t weight;  // of 4096
};

// source pixels become dest pixels; 0 < source < 2^31, 0 < dest <= 2^32. Destination pixel i covers the source from
// i source / dest to (i + 1) source / dest.
//   dest >= source           linear interpolation between the centres of two neighbours at its own centre. The right
//                            one has the weight round(4096 f), f its share, the left one the rest; beyond the outermost
//                            centres the outermost pixel.
//   dest < source            the mean over what it covers: up to the end of any source pixel the weights sum to
//                            round(4096 o), o the share that lies before that end.
//   4096 dest < source       4096 pixels of equal weight, evenly spaced: floor((2 k + 1) source / (8192 dest)),
//                            k = 4096 i .. 4096 i + 4095.
// Halves are rounded up; everything is computed in integers. The weights of a pixel sum to 4096.
class SmoothAxis {
public:
    SmoothAxis(int64_t source, int64_t dest)
        : source_(static_cast<uint64_t>(source)), dest_(static_cast<uint64_t>(dest)) {}

    // At most two source pixels for each destination pixel, and the first moves on by at most 1 from pixel to pixel.
    bool interpolates() const { return dest_ >= source_; }

    // In ascending positions; consecutive ones but in the last case. From pixel to pixel they overlap or follow each
    // other.
    void Get(int64_t i, std::vector<WeightedPixel>& pixels) const;

private:
    uint64_t source_, dest_;
};

}  // namespace orlix
