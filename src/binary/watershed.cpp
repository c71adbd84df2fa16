#include "binary/watershed.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <vector>

#include "binary/distance_grid.hpp"

namespace orlix {
namespace {

// Labels of cells that are not those of a marker, 1 to the number of markers.
enum : uint32_t {
    kNone = 0,
    kQueued = UINT32_MAX,
    kLine = UINT32_MAX - 1,
    kNoMarker = UINT32_MAX - 2,  // connected with a higher maximum above the threshold
};

// The buffers are kept from component to component.
template <class T>
class Split {
public:
    Split(Connectivity connectivity, const SplitDepth& depth)
        : connectivity_(connectivity),
          pixels_(depth.pixels > 0 ? depth.pixels : 0),
          factor_(1 - (depth.share > 0 ? std::min(depth.share, 1.0) : 0)) {}

    // Sets the pixels of the parts.
    void Run(const DistanceGrid<T>& grid, int32_t left, int32_t top, BitPlane& result) {
        Rank(grid);
        const NeighbourSteps steps(connectivity_, grid.width);
        labels_.assign(level_.size(), kNone);
        const uint32_t markers = FindMarkers(steps);
        const bool whole = markers <= 1;
        if (!whole) Flood(grid, steps, markers);
        for (const auto& [y, run] : grid.runs) {
            uint64_t* row = result.row(top + y);
            if (whole) {
                SetRun(row, {left + run.start, left + run.stop});
                continue;
            }
            for (int32_t x = run.start; x <= run.stop; ++x)
                if (labels_[grid.Cell(x, y)] - 1 < markers) row[(left + x) / 64] |= BitPlane::MaskOf(left + x);
        }
    }

private:
    // Replaces the distances by their places 1, 2, ... in ascending order, and orders the cells: those of the highest
    // level first, and of one level in raster order.
    void Rank(const DistanceGrid<T>& grid) {
        order_.clear();
        T largest = 0;
        for (const auto& [y, run] : grid.runs) {
            const auto cell = static_cast<uint32_t>(grid.Cell(run.start, y));
            for (uint32_t i = 0; i < static_cast<uint32_t>(run.length()); ++i) {
                order_.push_back(cell + i);
                largest = std::max(largest, grid.values[cell + i]);
            }
        }
        const auto value = [&](uint32_t cell) { return grid.values[cell]; };
        // The disk within the largest distance lies in the component, unless the edge of the bitmap cuts most of it
        // off: counting takes less time than comparing.
        if (static_cast<uint64_t>(largest) <= 2 * uint64_t{order_.size()}) {
            std::vector<uint32_t>& places = labels_;
            places.assign(static_cast<size_t>(largest) + 1, 0);
            for (const uint32_t cell : order_) ++places[static_cast<size_t>(largest - value(cell))];
            std::exclusive_scan(places.begin(), places.end(), places.begin(), uint32_t{0});
            scratch_.resize(order_.size());
            for (const uint32_t cell : order_) scratch_[places[static_cast<size_t>(largest - value(cell))]++] = cell;
            order_.swap(scratch_);
        } else {
            std::stable_sort(order_.begin(), order_.end(), [&](uint32_t a, uint32_t b) { return value(a) > value(b); });
        }
        level_.assign(grid.values.size(), 0);
        roots_.assign(1, 0.0);
        for (size_t i = order_.size(); i-- > 0;) {
            if (i + 1 == order_.size() || value(order_[i]) != value(order_[i + 1]))
                roots_.push_back(std::sqrt(static_cast<double>(value(order_[i]))));
            level_[order_[i]] = static_cast<uint32_t>(roots_.size() - 1);
        }
    }

    // Labels the markers. A maximum of height D is one where the cells from which it can be reached without going
    // below M(D), its plateau of R, hold no higher maximum. Maxima are visited from the highest down, so a plateau that
    // holds a higher one, or reaches one, meets cells that were visited before; each cell is visited once.
    uint32_t FindMarkers(const NeighbourSteps& steps) {
        std::vector<uint32_t>& plateau = scratch_;
        uint32_t markers = 0;
        auto threshold = static_cast<uint32_t>(roots_.size() - 1);
        for (const uint32_t peak : order_) {
            if (labels_[peak] != kNone) continue;
            const double least = factor_ * roots_[level_[peak]] - pixels_;
            threshold = std::min(threshold, level_[peak]);
            while (threshold > 1 && roots_[threshold - 1] >= least) --threshold;
            const uint32_t label = markers + 1;
            bool alone = true;
            plateau.assign(1, peak);
            labels_[peak] = label;
            for (size_t i = 0; i < plateau.size(); ++i) {
                for (const ptrdiff_t step : steps) {
                    const auto cell = static_cast<uint32_t>(plateau[i] + step);
                    if (level_[cell] < threshold || labels_[cell] == label) continue;
                    if (labels_[cell] != kNone) {
                        alone = false;
                        continue;
                    }
                    labels_[cell] = label;
                    plateau.push_back(cell);
                }
            }
            if (alone)
                ++markers;
            else
                for (const uint32_t cell : plateau) labels_[cell] = kNoMarker;
        }
        return markers;
    }

    void Flood(const DistanceGrid<T>& grid, const NeighbourSteps& steps, uint32_t markers) {
        const auto isPart = [&](uint32_t label) { return label - 1 < markers; };
        // A list for each level; a cell is in one list at most.
        std::vector<uint32_t>& next = scratch_;
        next.resize(level_.size());
        lists_.assign(roots_.size(), {});
        const auto queue = [&](uint32_t cell, uint32_t level) {
            List& list = lists_[level];
            (list.first == 0 ? list.first : next[list.last]) = cell;
            list.last = cell;
            next[cell] = 0;  // the first cell is in the ring around all pixels
            labels_[cell] = kQueued;
        };
        for (const auto& [y, run] : grid.runs)
            for (size_t cell = grid.Cell(run.start, y); cell <= grid.Cell(run.stop, y); ++cell) {
                if (isPart(labels_[cell])) continue;
                labels_[cell] = kNone;
                for (const ptrdiff_t step : steps)
                    if (isPart(labels_[static_cast<size_t>(static_cast<ptrdiff_t>(cell) + step)])) {
                        queue(static_cast<uint32_t>(cell), level_[cell]);
                        break;
                    }
            }
        for (auto level = static_cast<uint32_t>(roots_.size() - 1); level > 0; --level)
            while (lists_[level].first != 0) {
                const uint32_t cell = lists_[level].first;
                lists_[level].first = next[cell];
                uint32_t label = kNone;
                for (const ptrdiff_t step : steps) {
                    const uint32_t other = labels_[static_cast<size_t>(cell + step)];
                    if (!isPart(other) || other == label) continue;
                    label = label == kNone ? other : kLine;
                    if (label == kLine) break;
                }
                labels_[cell] = label;
                if (label == kLine) continue;
                for (const ptrdiff_t step : steps) {
                    const auto other = static_cast<uint32_t>(cell + step);
                    if (level_[other] != 0 && labels_[other] == kNone) queue(other, std::min(level_[other], level));
                }
            }
    }

    struct List {
        uint32_t first = 0, last = 0;
    };

    const Connectivity connectivity_;
    const double pixels_, factor_;
    std::vector<uint32_t> order_;
    std::vector<uint32_t> level_;  // of each cell: 0 in the background
    std::vector<double> roots_;    // of each level: D
    std::vector<uint32_t> labels_;
    std::vector<uint32_t> scratch_;  // serves the ordering, the plateaus and the lists in turn
    std::vector<List> lists_;
};

template <class T>
BitPlane SplitIn(const BitPlane& image, Connectivity connectivity, const SplitDepth& depth) {
    BitPlane result(image.width(), image.height());
    Split<T> split(connectivity, depth);
    ForEachDistanceGrid<T>(image, connectivity, [&](const DistanceGrid<T>& grid, int32_t left, int32_t top) {
        split.Run(grid, left, top, result);
    });
    return result;
}

}  // namespace

BitPlane WatershedSplit(const BitPlane& image, Connectivity connectivity, const SplitDepth& depth) {
    return DistancesFitInt32(image.width(), image.height()) ? SplitIn<int32_t>(image, connectivity, depth)
                                                            : SplitIn<int64_t>(image, connectivity, depth);
}

}  // namespace orlix
