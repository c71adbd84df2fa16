// Runs of columns: as shapes and regions yield them, and as processing code takes them.
#pragma once

#include <cstdint>

namespace orlix {

// Columns start..stop of one row as a shape yields them. Nothing is promised: stop < start says that there is no pixel,
// and both may lie outside the image.
struct RawRun {
    int32_t start;
    int32_t stop;
    bool empty() const { return stop < start; }
    friend bool operator==(const RawRun&, const RawRun&) = default;
};

// Columns start <= x <= stop of one row, clipped to the image: 0 <= start <= stop < width. What a region hands out
// (SRun) promises none of that; RegionRows (region_rows.hpp) turns the one into the other, and every kernel takes only
// these. Hence (1) a kernel needs no bounds test; (2) the runs of a row are in order and apart, so no pixel is visited
// twice.
struct Run {
    int32_t start;
    int32_t stop;
    int32_t length() const { return stop - start + 1; }
    friend bool operator==(const Run&, const Run&) = default;
};

}  // namespace orlix
