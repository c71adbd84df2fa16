// Runs of columns: raw ones from shapes and regions, and clipped ones for processing code.
#pragma once

#include <cstdint>

namespace orlix {

// Columns start..stop of one row as a shape yields them. Nothing is guaranteed: stop < start means no pixels, and both
// may lie outside the image.
struct RawRun {
    int32_t start;
    int32_t stop;
    bool empty() const { return stop < start; }
    friend bool operator==(const RawRun&, const RawRun&) = default;
};

// Columns start <= x <= stop of one row, clipped to the image: 0 <= start <= stop < width. The runs that a region hands
// out (SRun) guarantee none of this; RegionRows (region_rows.hpp) converts them, and kernels take only these. Hence (1)
// a kernel needs no bounds test; (2) the runs of a row are in order and apart, so no pixel is visited twice.
struct Run {
    int32_t start;
    int32_t stop;
    int32_t length() const { return stop - start + 1; }
    friend bool operator==(const Run&, const Run&) = default;
};

}  // namespace orlix
