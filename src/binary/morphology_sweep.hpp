// Dilations by large elements, in a time that does not depend on their size.
#pragma once

#include <cstdint>
#include <span>

#include "binary/bit_plane.hpp"

namespace orlix {

// The dilation by the element whose row y is the columns -halfWidths[|y|] ... halfWidths[|y|], and which has no other
// rows: 0 <= halfWidths[i + 1] <= halfWidths[i], at least one. Linear in the number of pixels; takes memory for the
// result and some rows.
BitPlane DilatedByShrinkingRows(const BitPlane& plane, std::span<const int32_t> halfWidths);

}  // namespace orlix
