// Runs of columns as processing code takes them.
#pragma once

#include <cstdint>

namespace orlix {

// Columns start <= x <= stop of one row, clipped to the image: 0 <= start <= stop < width. What a region hands out (SRun)
// promises none of that; RegionRows (region_rows.hpp) turns the one into the other, and every kernel takes only these.
// Hence (1) a kernel needs no bounds test; (2) the runs of a row are in order and apart, so no pixel is visited twice.
struct Run {
    int32_t start;
    int32_t stop;
    int32_t length() const { return stop - start + 1; }
    friend bool operator==(const Run&, const Run&) = default;
};

}  // namespace orlix
