// The largest circle within the pixels of a component.
#pragma once

#include <cstdint>
#include <vector>

#include "blobs/blob_rows.hpp"
#include "numerics/plane.hpp"

namespace orlix {

struct InscribedCircle {
    Point centre;       // a multiple of 1/2
    double radius = 0;  // in the unit of x
};

// See ShapeMeasurements::inscribedCircle; in the plane (x, ratio y). `memory` takes 4 bytes a pixel.
InscribedCircle FindInscribedCircle(const BlobRows& rows, int64_t pixels, double ratio, std::vector<uint32_t>& memory);

}  // namespace orlix
