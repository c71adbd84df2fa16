// The pixels that an operation visits: the only place where processing code consumes a region.
#pragma once

#include <orlix/orlix.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "geometry/run.hpp"
#include "geometry/shape_region.hpp"

namespace orlix {

// Rows top..bottom and the runs of each, for an image of the given size; a null region stands for the whole image.
//
//     const RegionRows region(regionOfInterest, width, height);       // everything that can fail happens here
//     for (int32_t y = region.top(); y <= region.bottom(); ++y)
//         for (const Run run : region.row(y)) Kernel(view.row(y) + run.start, run.length());
//
//  (1) The rows are those of the region's bounding box that lie in the image. Runs are clipped to the image and sorted;
//      empty and reversed runs are dropped, overlapping and touching ones joined.
//  (2) It is a snapshot: only the constructor calls the region, which may change or go away afterwards. So once an
//      operation has a RegionRows, no region can stop it half-way.
//  (3) The constructor calls the region, which may be foreign code: it may even change the image. A caller that read
//      the image's size before must read it again afterwards.
//  (4) A null region and this module's OrlixShapeRegionOfInterest need no allocation and almost no time per row. Any
//      other region is read once into a single list of runs.
//
// The constructor raises FailedResult with the region's own result when the region fails; FailedResult(E_FAIL) for a
// row of more runs than width + 1 and than 65537, and for misaligned runs; std::bad_alloc. Null or reversed run lists
// and S_FALSE mean a row without runs. A width or height below 1 gives no rows.
class RegionRows {
public:
    RegionRows(IRegionOfInterest* region, int32_t width, int32_t height);

    // Both included; bottom() < top() when there are no rows.
    int32_t top() const { return top_; }
    int32_t bottom() const { return bottom_; }

    // The runs of a row; none for a row outside top()..bottom(). Valid until the next call or, with a buffer, the next
    // call with the same buffer.
    using RowBuffer = std::array<Run, 2>;
    std::span<const Run> row(int32_t y) const { return row(y, buffer_); }
    std::span<const Run> row(int32_t y, RowBuffer& buffer) const {
        if (y < top_ || y > bottom_) return {};
        if (source_ == Source::Image) return {buffer_.data(), 1};
        if (static_cast<size_t>(y - top_) < inside_.size()) {
            const RawRun run = inside_[static_cast<size_t>(y - top_)];
            buffer[0] = {std::max(run.start, 0), std::min(run.stop, width_ - 1)};
            return {buffer.data(), buffer[0].start <= buffer[0].stop ? size_t{1} : size_t{0}};
        }
        if (source_ == Source::Shape) return ShapeRow(y, buffer);
        const size_t i = static_cast<size_t>(y - top_);
        return {runs_.data() + ends_[i], ends_[i + 1] - ends_[i]};
    }

    // Whether every pixel of the image belongs to it.
    bool whole() const { return whole_; }
    // The number of pixels. Walks the rows.
    int64_t pixels() const;

private:
    enum class Source { Image, Shape, Gathered };

    std::span<const Run> ShapeRow(int32_t y, RowBuffer& buffer) const;
    void Gather(IRegionOfInterest& region);
    void GatherRow(const SRun* begin, const SRun* end);
    bool CoversImage() const;

    int32_t width_;
    int32_t height_;
    int32_t top_ = 0;
    int32_t bottom_ = -1;
    Source source_ = Source::Image;
    bool whole_ = false;
    ShapeRegion shape_;               // shares its rows with the region it was taken from
    std::span<const RawRun> inside_;  // Shape: of the rows from top on, where each row is exactly its stored run
    std::vector<Run> runs_;           // Gathered: of all rows
    std::vector<size_t> ends_;        // Gathered: row top + i holds runs ends_[i] .. ends_[i + 1] - 1
    mutable RowBuffer buffer_ = {};   // Image: the one run. Shape: the runs of the row requested last
};

}  // namespace orlix
