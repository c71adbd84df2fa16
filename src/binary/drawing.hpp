// Drawing into a binary image: spans of a row, rectangles and disks made of them, lines.
#pragma once

#include <orlix/orlix.h>

#include <cstdint>

#include "binary/bitmap_store.hpp"
#include "geometry/disk.hpp"
#include "geometry/line.hpp"
#include "geometry/run.hpp"

namespace orlix {

// DT_On sets pixels, DT_Off clears them, any other value inverts them. What lies outside the bitmap is left out, and
// costs no time. Rows in which pixels are written become modified. Nothing here fails.
enum class Drawing {
    Drawn,
    Missed,          // wholly outside
    WithEmptySpans,  // drawn, and at least one row in the bitmap was asked for with left > right, which draws nothing
};

// The columns of a run that is not empty. Touches no byte beyond the ends of the row; padding bits stay as they are.
Drawing DrawRow(BitmapStore& bitmap, int32_t row, const RawRun& run, DrawType how);

// All ends included. A rectangle with left > right inside the bitmap has empty spans; one with top > bottom has no
// rows.
Drawing DrawRectangle(BitmapStore& bitmap, int32_t left, int32_t top, int32_t right, int32_t bottom, DrawType how);

// The pixel centres at most the radius from the centre. A negative radius draws nothing; a disk with an end that is not
// a number misses.
Drawing DrawDisk(BitmapStore& bitmap, const Disk& disk, DrawType how);

void DrawLine(BitmapStore& bitmap, const Line& line, DrawType how);

}  // namespace orlix
