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

// Columns and rows with both ends included; no pixel when an end lies before its beginning.
struct Box {
    int32_t left;
    int32_t top;
    int32_t right;
    int32_t bottom;
    friend bool operator==(const Box&, const Box&) = default;
};

// A shape made for an image of a size, as one raw run for each row of its box. Copies share the rows.
//
// Each creation stores the size first and leaves the shape without pixels when it then fails; the box stays the old
// one. Before that, and when memory runs out, nothing changes. Arguments that are not numbers give a shape without
// pixels.
class ShapeRegion {
public:
    // What a disk or an oriented rectangle may cover, in 128 MB. Beyond: "...: the shape covers more than 16777216
    // rows."
    static constexpr int64_t kMostRows = int64_t{1} << 24;

    // Columns left..right of the rows top..bottom, clipped to the image. Beside the image: reversed runs.
    void CreateRectangle(int32_t width, int32_t height, int32_t left, int32_t top, int32_t right, int32_t bottom);

    // Pixel centres at most radius from the centre. The box is clipped to the image, the runs are not. A row that holds
    // no pixel has the run start = stop + 1.
    void CreateCircle(int32_t width, int32_t height, double x, double y, double radius);

    // Pixel centres in the rectangle about the centre line (x1, y1)-(x2, y2) that is `across` wide, found between the
    // outermost edges of the rows. The search starts at the two ends of the row, so a rectangle that lies beside the
    // image, at rows within it, has one pixel a row at the near end. Below a width of 1: the one-pixel line (line.hpp).
    void CreateOrientedRectangle(int32_t width, int32_t height, double x1, double y1, double x2, double y2,
                                 double across);
    // The same about the centre line through (x, y) that is `along` long in the direction of `degrees`, from the x axis
    // toward the y axis.
    void CreateOrientedRectangleAround(int32_t width, int32_t height, double x, double y, double along, double across,
                                       double degrees);

    // Any value is kept; what is neither PT_Outside nor PT_Frame counts as PT_Inside.
    PolarityType polarity() const { return polarity_; }
    void set_polarity(PolarityType polarity) { polarity_ = polarity; }

    int32_t width() const { return width_; }  // 0 before the first creation
    int32_t height() const { return height_; }

    // Where the pixels are: for the outside the whole image, else the shape's box.
    Box BoundingBox() const;

    // The box of the shape itself, whatever the polarity.
    Box ShapeBox() const { return box_; }

    // What a row of the image (0 <= y < height) consists of: no, one or two runs. The two may overlap.
    //   PT_Inside   the shape's run, in the rows of its box
    //   PT_Outside  what lies left and right of it; the whole row outside the box
    //   PT_Frame    the whole run in the first and last row of the box; between them its end pixels and all pixels that
    //               the run above or the run below does not cover
    struct RowRuns {
        std::array<RawRun, 2> runs;
        int count;
    };
    RowRuns Row(int32_t y) const;

    // The runs of the rows from y on where every row of the box has just its stored run: a fast way for whoever reads
    // row after row. Empty where it is otherwise.
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
    // Memory for the runs, not set yet; no more than kMostRows.
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
