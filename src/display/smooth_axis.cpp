#include "display/smooth_axis.hpp"

#include <algorithm>

namespace orlix {
namespace {

constexpr uint64_t kWhole = 4096;

WeightedPixel At(uint64_t position, uint64_t weight) {
    return {static_cast<int32_t>(position), static_cast<uint16_t>(weight)};
}

}  // namespace

void SmoothAxis::Get(int64_t i, std::vector<WeightedPixel>& pixels) const {
    pixels.clear();
    const auto index = static_cast<uint64_t>(i);
    if (interpolates()) {
        // The centre lies (2 i + 1) source / (2 dest) - 1/2 from that of source pixel 0.
        const uint64_t center = (2 * index + 1) * source_;
        const uint64_t fromFirst = center < dest_ ? 0 : center - dest_;
        const uint64_t left = fromFirst / (2 * dest_), rest = fromFirst % (2 * dest_);
        if (left + 1 >= source_) {
            pixels.push_back(At(source_ - 1, kWhole));
        } else {
            const uint64_t share = (2 * kWhole * rest + 2 * dest_) / (4 * dest_);
            pixels.push_back(At(left, kWhole - share));
            pixels.push_back(At(left + 1, share));
        }
    } else if (source_ <= kWhole * dest_) {
        // In units of 1 / dest source pixel: this destination pixel begins at i source and is source long.
        const uint64_t begin = index * source_, end = begin + source_;
        uint64_t before = 0;
        for (uint64_t position = begin / dest_; position * dest_ < end; ++position) {
            const uint64_t covered = std::min((position + 1) * dest_, end) - begin;
            const uint64_t sum = (2 * kWhole * covered + source_) / (2 * source_);
            pixels.push_back(At(position, sum - before));
            before = sum;
        }
    } else {
        for (uint64_t k = kWhole * index; k < kWhole * (index + 1); ++k)
            pixels.push_back(At((2 * k + 1) * source_ / (2 * kWhole * dest_), 1));
    }
}

}  // namespace orlix
