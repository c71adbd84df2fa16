#include "geometry/region_rows.hpp"

#include <algorithm>
#include <new>

#include "component/failure.hpp"
#include "geometry/orlix_shape_region_of_interest.hpp"

namespace orlix {
namespace {

// Clips a run; false when nothing is left of it.
bool Clip(int32_t start, int32_t stop, int32_t width, Run& run) {
    run = {std::max(start, 0), std::min(stop, width - 1)};
    return run.start <= run.stop;
}

// A row of a region that was made for a wider image may have more runs than this image has columns. A list that is
// longer still is a lie.
constexpr int32_t kMostRuns = 65536;

bool Touches(const Run& left, const Run& right) { return right.start <= int64_t{left.stop} + 1; }

}  // namespace

RegionRows::RegionRows(IRegionOfInterest* region, int32_t width, int32_t height) : width_(width), height_(height) {
    if (width < 1 || height < 1) return;
    if (!region) {
        bottom_ = height - 1;
        buffer_[0] = {0, width - 1};
        whole_ = true;
        return;
    }
    if (const ShapeRegion* shape = OrlixShapeRegionOfInterest::ShapeOf(region)) {
        source_ = Source::Shape;
        shape_ = *shape;
        const Box box = shape_.BoundingBox();
        top_ = std::max(box.top, 0);
        bottom_ = std::min({box.bottom, height - 1, shape_.height() - 1});
        inside_ = shape_.InsideRowsFrom(top_);
    } else {
        source_ = Source::Gathered;
        Gather(*region);
    }
    whole_ = CoversImage();
}

std::span<const Run> RegionRows::ShapeRow(int32_t y, RowBuffer& buffer) const {
    const ShapeRegion::RowRuns raw = shape_.Row(y);
    size_t count = 0;
    for (int i = 0; i < raw.count; ++i)
        if (Clip(raw.runs[static_cast<size_t>(i)].start, raw.runs[static_cast<size_t>(i)].stop, width_, buffer[count]))
            ++count;
    // A shape's second run never begins before its first.
    if (count == 2 && Touches(buffer[0], buffer[1])) {
        buffer[0].stop = std::max(buffer[0].stop, buffer[1].stop);
        count = 1;
    }
    return {buffer.data(), count};
}

void RegionRows::Gather(IRegionOfInterest& region) {
    const ComPtr<IRegionOfInterest> held(&region);  // the region's methods may make its owner release it
    RECT box = {0, 0, -1, -1};
    PassOn(region.get_BoundingBox(&box));
    top_ = std::max<int32_t>(box.top, 0);
    bottom_ = std::min<int32_t>(box.bottom, height_ - 1);
    if (bottom_ < top_) return;
    ends_.reserve(static_cast<size_t>(int64_t{bottom_} - top_) + 2);
    ends_.push_back(0);
    for (int32_t y = top_; y <= bottom_; ++y) {
        SRun* begin = nullptr;
        SRun* end = nullptr;
        if (PassOn(region.GetRowRuns(y, &begin, &end)) != S_FALSE) GatherRow(begin, end);
        ends_.push_back(runs_.size());
    }
}

void RegionRows::GatherRow(const SRun* begin, const SRun* end) {
    // Compared as addresses: the pointers need not belong to one array.
    const auto first = reinterpret_cast<uintptr_t>(begin);
    const auto past = reinterpret_cast<uintptr_t>(end);
    if (first == 0 || past <= first) return;
    const size_t count = (past - first) / sizeof(SRun);
    if (first % alignof(SRun) != 0 || count > static_cast<uint64_t>(std::max(width_, kMostRuns)) + 1)
        throw FailedResult(E_FAIL);

    const size_t base = runs_.size();
    bool ordered = true;
    for (size_t i = 0; i < count; ++i) {
        Run run;
        if (!Clip(begin[i].m_lStart, begin[i].m_lStop, width_, run)) continue;
        if (runs_.size() > base && run.start < runs_.back().start) ordered = false;
        runs_.push_back(run);
    }
    const auto row = runs_.begin() + static_cast<ptrdiff_t>(base);
    if (!ordered) std::sort(row, runs_.end(), [](const Run& a, const Run& b) { return a.start < b.start; });
    size_t kept = base;
    for (size_t i = base; i < runs_.size(); ++i) {
        if (kept > base && Touches(runs_[kept - 1], runs_[i]))
            runs_[kept - 1].stop = std::max(runs_[kept - 1].stop, runs_[i].stop);
        else
            runs_[kept++] = runs_[i];
    }
    runs_.resize(kept);
}

bool RegionRows::CoversImage() const {
    if (top_ != 0 || bottom_ != height_ - 1) return false;
    for (int32_t y = top_; y <= bottom_; ++y) {
        const auto runs = row(y);
        if (runs.size() != 1 || runs[0].length() != width_) return false;
    }
    return true;
}

int64_t RegionRows::pixels() const {
    if (whole_) return int64_t{width_} * height_;
    int64_t sum = 0;
    for (int32_t y = top_; y <= bottom_; ++y)
        for (const Run run : row(y)) sum += run.length();
    return sum;
}

}  // namespace orlix
