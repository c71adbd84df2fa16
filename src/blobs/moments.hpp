// Exact sums over the pixels of a component.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "blobs/labelling.hpp"
#include "geometry/shape_region.hpp"
#include "numerics/double_pair.hpp"
#include "numerics/plane.hpp"

namespace orlix {

// sum(x^p y^q) of a component's pixels, as the order of ShapeMeasurements names them.
enum Moment { M00, M10, M01, M20, M11, M02, M30, M21, M12, M03, kMoments };

struct PixelMoments {
    Point centroid;
    // About pixel (0, 0), each the nearest double.
    std::array<double, kMoments> raw = {};
    // About the centroid; M10 and M01 are 0.
    std::array<double, kMoments> central = {};
    // central / N for M20, M11 and M02, in some 104 bits.
    DoublePair covarianceX, covarianceXy, covarianceY;
};

// The runs of a component, its bounding box and the number of its pixels. Sums are integers of 64 bits where the box
// and the number show that these suffice, and of 512 bits elsewhere.
Point CentroidOf(std::span<const LabelledRun> runs, const Box& box, int64_t pixels);
PixelMoments MomentsOf(std::span<const LabelledRun> runs, const Box& box, int64_t pixels);

}  // namespace orlix
