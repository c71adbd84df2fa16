// Connected components of a binary image, from the runs of its rows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "binary/connectivity.hpp"
#include "binary/row_runs.hpp"

namespace orlix {

// Columns start..stop of a row, and the component that they belong to.
struct LabelledRun {
    int32_t row;
    int32_t start;
    int32_t stop;
    uint32_t label;
    int32_t length() const { return stop - start + 1; }
    friend bool operator==(const LabelledRun&, const LabelledRun&) = default;
};

inline constexpr uint32_t kNoLabel = UINT32_MAX;

// The components of an image of the given size, labelled from 0 in raster order of their first pixels (the topmost row,
// then the leftmost column). It holds everything itself and outlives the image.
//
//  (1) `runs` has the runs of component 0 in raster order, then those of component 1, and so on.
//  (2) The runs of a component touch no other run of its row, and its rows follow one another without a gap.
//  (3) `inRow` has the indices of all runs in raster order, those of row y at rowEnds[y] .. rowEnds[y + 1] - 1.
//
// 20 bytes a run, 4 a component, 4 a row.
class Components {
public:
    int32_t width() const { return width_; }
    int32_t height() const { return height_; }
    Connectivity connectivity() const { return connectivity_; }

    uint32_t count() const { return static_cast<uint32_t>(firstRuns_.size()) - 1; }
    std::span<const LabelledRun> runs(uint32_t label) const {
        return {runs_.data() + firstRuns_[label], firstRuns_[label + 1] - firstRuns_[label]};
    }
    std::span<const LabelledRun> runs() const { return runs_; }
    // Indices into runs(), from left to right.
    std::span<const uint32_t> row(int32_t y) const {
        const auto i = static_cast<size_t>(y);
        return {inRow_.data() + rowEnds_[i], rowEnds_[i + 1] - rowEnds_[i]};
    }
    // The component of a pixel; kNoLabel if it has none or lies outside the image.
    uint32_t LabelAt(int32_t x, int32_t y) const;

private:
    friend Components Connected(const RunTable&, Connectivity, bool);

    int32_t width_ = 0;
    int32_t height_ = 0;
    Connectivity connectivity_ = Connectivity::Eight;
    std::vector<LabelledRun> runs_;
    std::vector<uint32_t> firstRuns_ = {0};  // of each component, and the number of runs
    std::vector<uint32_t> inRow_;
    std::vector<uint32_t> rowEnds_ = {0};
};

// One pass over the runs joins those that touch (A. Rosenfeld and J. L. Pfaltz, 1966) in trees of provisional labels,
// whose roots are the lowest; each tree then becomes a component. The linear time is that of the runs, not of the
// pixels. (The contract's SRun has fields for this; four pointers a run would take longer to read than the arrays used
// here.) With withoutEdge, components that reach the first or last row or column are left out. std::bad_alloc.
Components Connected(const RunTable& table, Connectivity connectivity, bool withoutEdge = false);

}  // namespace orlix
