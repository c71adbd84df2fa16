// The source pixels that contribute to a destination pixel, and their weights, along one axis of smooth scaling.
#pragma once

#include <cstdint>
#include <vector>

namespace orlix {

struct WeightedPixel {
    int32_t position;
    uint16_t weight;  // of 4096
};

// Scales source pixels to dest pixels; 0 < source < 2^31, 0 < dest <= 2^32. Destination pixel i covers the source from
// i source / dest to (i + 1) source / dest.
//   dest >= source           linear interpolation at its centre between the centres of two neighbours. The right one
//                            has the weight round(4096 f), where f is its share, the left one the rest; beyond the
//                            outermost centres it is the outermost pixel.
//   dest < source            the mean of the covered source: up to the end of any source pixel the weights sum to
//                            round(4096 o), where o is the share that lies before that end.
//   4096 dest < source       4096 pixels of equal weight, evenly spaced: floor((2 k + 1) source / (8192 dest)),
//                            k = 4096 i .. 4096 i + 4095.
// Halves are rounded up; everything is computed in integers. The weights of a pixel sum to 4096.
class SmoothAxis {
public:
    SmoothAxis(int64_t source, int64_t dest)
        : source_(static_cast<uint64_t>(source)), dest_(static_cast<uint64_t>(dest)) {}

    // True: there are at most two source pixels per destination pixel, and the first advances by at most 1 per pixel.
    bool interpolates() const { return dest_ >= source_; }

    // Lists the pixels in ascending positions, consecutive except in the last case. The pixels of adjacent destination
    // pixels overlap or adjoin.
    void Get(int64_t i, std::vector<WeightedPixel>& pixels) const;

private:
    uint64_t source_, dest_;
};

}  // namespace orlix
