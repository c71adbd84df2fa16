// A rectangle, an oriented rectangle or a disk, presented as its inside, its outside or its one-pixel frame.
#pragma once

#include <orlix/orlix.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "geometry/run.hpp"

namespace orlix {

// Columns and rows, both ends included; no pixels when an end lies before its beginning.
struct Box {
    int32_t left;
    int32_t top;
    int32_t right;
    int32_t bottom;
    friend bool operator==(const Box&, const Box&) = default;
};

// A shape for an image of a given size, stored as one raw run for each row of its box. Copies share the rows.
//
// A creation that fails once its size is accepted stores the size and leaves the shape without pixels; the box stays
// the old one. A creation that fails earlier, or for want of memory, changes nothing. NaN arguments give a shape
// without pixels.
class ShapeRegion {
public:
    // The limit for disks and oriented rectangles: 128 MB of runs. Beyond it: "...: the shape covers more than 16777216
    // rows."
    static constexpr int64_t kMostRows = int64_t{1} << 24;

    // Columns left..right of the rows top..bottom, clipped to the image. Outside the image the runs are reversed.
    void CreateRectangle(int32_t width, int32_t height, int32_t left, int32_t top, int32_t right, int32_t bottom);

    // Pixel centres at most radius from the centre. The box is clipped to the image, the runs are not. A row without
    // pixels has the run start = stop + 1.
    void CreateCircle(int32_t width, int32_t height, double x, double y, double radius);

    // Pixel centres in the rectangle that is `across` wide about the centre line (x1, y1)-(x2, y2). The run of a row
    // lies between its outermost edges. The search starts at the two ends of the row, so a rectangle to the left or
    // right of the image yields one pixel per row, at the near end. A width below 1 gives the one-pixel line
    // (line.hpp).
    void CreateOrientedRectangle(int32_t width, int32_t height, double x1, double y1, double x2, double y2,
                                 double across);
    // The same for a centre line through (x, y) that is `along` long in the direction `degrees`, measured from the x
    // axis toward the y axis.
    void CreateOrientedRectangleAround(int32_t width, int32_t height, double x, double y, double along, double across,
                                       double degrees);

    // Any value is kept; values other than PT_Outside and PT_Frame count as PT_Inside.
    PolarityType polarity() const { return polarity_; }
    void set_polarity(PolarityType polarity) { polarity_ = polarity; }

    int32_t width() const { return width_; }  // 0 before the first creation
    int32_t height() const { return height_; }

    // The box of all pixels: the whole image for the outside, otherwise the shape's box.
    Box BoundingBox() const;

    // The box of the shape itself, whatever the polarity.
    Box ShapeBox() const { return box_; }

    // The pixels of an image row (0 <= y < height): no, one or two runs. The two may overlap.
    //   PT_Inside   the shape's run, in the rows of its box
    //   PT_Outside  the columns left and right of the shape's run; the whole row outside the box
    //   PT_Frame    the whole run in the first and last row of the box; in between, its end pixels and all pixels that
    //               the run above or the run below does not cover
    struct RowRuns {
        std::array<RawRun, 2> runs;
        int count;
    };
    RowRuns Row(int32_t y) const;

    // The runs of the rows from y on when every row of the box is exactly its stored run, a fast path for reading row
    // after row. Otherwise empty.
    std::span<const RawRun> InsideRowsFrom(int32_t y) const {
        const int64_t i = int64_t{y} - first_;
        if (polarity_ == PT_Outside || polarity_ == PT_Frame || !rows_ || i < 0) return {};
        return std::span<const RawRun>(*rows_).subspan(std::min(static_cast<size_t>(i), rows_->size()));
    }

private:
    const RawRun& Stored(int32_t y) const {
        const int64_t i = int64_t{y} - first_;
        return rows_ && i >= 0 && i < static_cast<int64_t>(rows_->size()) ? (*rows_)[static_cast<size_t>(i)] : other_;
    }
    void Reset(int32_t width, int32_t height);
    // Uninitialised memory for the runs; at most kMostRows.
    std::vector<RawRun> RowsFor(int64_t rows, int32_t width, int32_t height, const char* tooMany);
    void CreateLine(int32_t width, int32_t height, double x1, double y1, double x2, double y2);

    int32_t width_ = 0;
    int32_t height_ = 0;
    Box box_ = {0, 0, -1, -1};
    PolarityType polarity_ = PT_Inside;
    RawRun other_ = {-1, 0};                           // of rows that are not stored; all rows of a rectangle
    int32_t first_ = 0;                                // row of the first stored run
    std::shared_ptr<const std::vector<RawRun>> rows_;  // null: none stored
};

}  // namespace orlix
