// Drawing into a binary image: spans of a row, rectangles and disks made of them, lines.
#pragma once

#include <orlix/orlix.h>

#include <cstdint>

#include "binary/bitmap_store.hpp"
#include "geometry/disk.hpp"
#include "geometry/line.hpp"
#include "geometry/run.hpp"

namespace orlix {

// DT_On sets pixels, DT_Off clears them, any other value inverts them. Parts outside the bitmap are not drawn and cost
// no time. Rows in which pixels are written become modified. No function here can fail.
enum class Drawing {
    Drawn,
    Missed,          // entirely outside the bitmap
    WithEmptySpans,  // drawn, but in at least one row of the bitmap left > right, which draws nothing
};

// Draws a run that is not empty. Touches no byte beyond the ends of the row; padding bits are unchanged.
Drawing DrawRow(BitmapStore& bitmap, int32_t row, const RawRun& run, DrawType how);

// All ends included. A rectangle with left > right inside the bitmap has empty spans; one with top > bottom has no
// rows.
Drawing DrawRectangle(BitmapStore& bitmap, int32_t left, int32_t top, int32_t right, int32_t bottom, DrawType how);

// Draws the pixels whose centre is at most the radius from the given centre. A negative radius draws nothing; a disk of
// which an end is NaN misses.
Drawing DrawDisk(BitmapStore& bitmap, const Disk& disk, DrawType how);

void DrawLine(BitmapStore& bitmap, const Line& line, DrawType how);

}  // namespace orlix
