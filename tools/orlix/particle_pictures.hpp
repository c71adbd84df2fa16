// Pictures of particles: their outlines with numbers on the image, and a colour for each of them.
#pragma once

#include "pictures.hpp"

#include <orlix/com_ptr.hpp>

#include <cstdint>
#include <vector>

namespace tool {

// The label image of blobs: 0 for the background, the number of the particle (from 1) for its pixels.
class LabelRows {
public:
    explicit LabelRows(const orlix::ComPtr<IBlobs>& blobs);
    int32_t width() const { return width_; }
    int32_t height() const { return height_; }
    uint32_t at(int32_t x, int32_t y) const {  // 0 outside the image
        if (x < 0 || y < 0 || x >= width_ || y >= height_) return 0;
        return labels_[static_cast<size_t>(y) * static_cast<size_t>(width_) + static_cast<size_t>(x)];
    }
    // Whether a pixel of a particle has a neighbour left, right, above or below that is not of it.
    bool AtEdge(int32_t x, int32_t y) const;

private:
    int32_t width_ = 0, height_ = 0;
    std::vector<uint32_t> labels_;
};

// Their inscribed circles and numbers of holes.
std::vector<SBinaryMeasurements> InscribedCircles(const orlix::ComPtr<IBlobs>& blobs);

// The particles outlined, each with its number in white on black: on the centre of its largest inscribed circle, or
// above a particle that is smaller than its number.
Picture OutlinesPicture(const Picture& display, const LabelRows& labels,
                        const std::vector<SBinaryMeasurements>& circles);

// A colour for each particle, on black. Neighbours in the list differ clearly.
Picture LabelsPicture(const LabelRows& labels);

}  // namespace tool
