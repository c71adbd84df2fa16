// The lengths of components along their skeletons.
#pragma once

#include <cstdint>
#include <vector>

#include "binary/components.hpp"

namespace orlix {

// Measures components of any connectivity one after the other, each thinned by itself. The time for all of them goes
// with the pixels of the image, however many boxes overlap: components are thinned in their boxes, until one of these
// takes a quarter of the image or all so far amount to it; then all at once.
class SkeletonRuler {
public:
    // Refers to the components. The sides of a pixel are sx and sy.
    SkeletonRuler(const Components& components, double sx, double sy) : components_(components), sx_(sx), sy_(sy) {}

    // See ShapeMeasurements::skeletonLength. Takes three bits for each pixel of the component's box or of the image,
    // and up to 25 bytes for each 64 of these pixels. std::bad_alloc.
    double Length(uint32_t label);

private:
    const Components& components_;
    double sx_, sy_;
    uint64_t cells_ = 0;       // of all boxes so far
    std::vector<double> all_;  // the length of each component, once they are measured all at once
};

}  // namespace orlix
