// A band of pixels with the table that images of this library have.
#pragma once

#include "image/image_layout.hpp"
#include "image/pixel_view.hpp"
#include "support/kernel_testing.hpp"

namespace orlix {

template <class T>
struct Band {
    int32_t width, height;
    ImageLayout layout = MakeLayout(width, height, 1, std::is_same_v<T, float> ? LONG{DT_Float} : 8 * LONG{sizeof(T)});
    std::vector<VPAEntry> table = MakeOffsetTable(layout);
    std::vector<T> samples = std::vector<T>(layout.totalSize / sizeof(T), T{99});

    PixelView<T> view() { return {samples.data(), table.data() + kTableMargin, width, height}; }
    PixelView<const T> source() const { return {samples.data(), table.data() + kTableMargin, width, height}; }
    void AddNoise(uint32_t seed) { samples = Noise<T>(samples.size(), seed); }
};

}  // namespace orlix
