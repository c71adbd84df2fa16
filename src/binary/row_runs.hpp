// The runs of set pixels in all rows of a binary image.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "binary/bit_plane.hpp"
#include "geometry/region_rows.hpp"
#include "geometry/run.hpp"

namespace orlix {

// Row y has the runs runs[ends[y]] .. runs[ends[y + 1] - 1], in order and apart.
struct RunTable {
    int32_t width = 0;
    int32_t height = 0;
    std::vector<Run> runs;
    std::vector<uint32_t> ends = {0};  // height + 1 of them

    std::span<const Run> row(int32_t y) const {
        const auto i = static_cast<size_t>(y);
        return {runs.data() + ends[i], ends[i + 1] - ends[i]};
    }
};

// Takes the memory of the runs and no more: 8 bytes a run, 4 a row. std::bad_alloc; also for 2^32 - 1 runs or more.
RunTable RunsOf(const BitRows& rows);
RunTable RunsOf(const BitPlane& plane);

// The same from the runs that the store keeps: reads rows that have been modified, and takes their marks away.
RunTable RunsOf(BitmapStore& store);

// The pixels of the table that belong to the region, which has the same size.
RunTable Intersection(const RunTable& table, const RegionRows& region);

// Calls visit(run) for the common parts of two lists of runs, each in order and apart.
template <class Visit>
void ForEachCommonRun(std::span<const Run> a, std::span<const Run> b, const Visit& visit) {
    for (size_t i = 0, j = 0; i < a.size() && j < b.size();) {
        const Run common = {std::max(a[i].start, b[j].start), std::min(a[i].stop, b[j].stop)};
        if (common.start <= common.stop) visit(common);
        if (a[i].stop < b[j].stop)
            ++i;
        else
            ++j;
    }
}

}  // namespace orlix
