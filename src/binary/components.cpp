#include "binary/components.hpp"

#include <algorithm>
#include <utility>

namespace orlix {
namespace {

// Trees of provisional labels. A parent is never greater than its child, so the root is the lowest label of its tree.
class Trees {
public:
    explicit Trees(size_t most) { parents_.reserve(most); }

    uint32_t Add() {
        parents_.push_back(static_cast<uint32_t>(parents_.size()));
        return parents_.back();
    }
    void Join(uint32_t a, uint32_t b) {
        while (a != b) {
            if (a < b) std::swap(a, b);
            // The path from the higher label is cut short on the way (splicing: M. Rem, in E. W. Dijkstra, 1976).
            const uint32_t parent = parents_[a];
            parents_[a] = std::min(parent, b);
            if (parent == a) return;
            a = parent;
        }
    }
    // Replaces the parents by consecutive numbers of the trees in the order of their roots; a tree with the root
    // `without` gets kNoLabel. Returns the number of trees.
    uint32_t Number(uint32_t without) {
        uint32_t count = 0;
        for (size_t i = 0; i < parents_.size(); ++i) {
            const uint32_t parent = parents_[i];
            if (parent != i)
                parents_[i] = parents_[parent];
            else
                parents_[i] = i == without ? kNoLabel : count++;
        }
        return count;
    }
    uint32_t operator[](uint32_t label) const { return parents_[label]; }

private:
    std::vector<uint32_t> parents_;
};

}  // namespace

Components Connected(const RunTable& table, Connectivity connectivity, bool withoutEdge) {
    Components result;
    result.width_ = table.width;
    result.height_ = table.height;
    result.connectivity_ = connectivity;

    const int32_t reach = connectivity == Connectivity::Eight ? 1 : 0;
    std::vector<uint32_t> labels(table.runs.size());
    Trees trees(table.runs.size() / 4 + 16);
    const uint32_t edge = withoutEdge ? trees.Add() : kNoLabel;
    size_t above = 0, aboveEnd = 0;  // the runs of the row above that may still touch
    for (int32_t y = 0; y < table.height; ++y) {
        const size_t begin = table.ends[static_cast<size_t>(y)], end = table.ends[static_cast<size_t>(y) + 1];
        const bool edgeRow = y == 0 || y == table.height - 1;
        for (size_t i = begin; i < end; ++i) {
            const Run run = table.runs[i];
            const int32_t left = run.start - reach, right = run.stop + reach;
            while (above < aboveEnd && table.runs[above].stop < left) ++above;
            uint32_t label = kNoLabel;
            if (withoutEdge && (edgeRow || run.start == 0 || run.stop == table.width - 1)) label = edge;
            if (above < aboveEnd && table.runs[above].start <= right) {
                if (label == kNoLabel)
                    label = labels[above];
                else
                    trees.Join(label, labels[above]);
                // The last run that touches may touch the next run of this row as well.
                while (above + 1 < aboveEnd && table.runs[above + 1].start <= right) trees.Join(label, labels[++above]);
            } else if (label == kNoLabel) {
                label = trees.Add();
            }
            labels[i] = label;
        }
        above = begin;
        aboveEnd = end;
    }

    const uint32_t count = trees.Number(edge);
    result.firstRuns_.assign(size_t{count} + 1, 0);
    for (uint32_t& label : labels) {
        label = trees[label];
        if (label != kNoLabel) ++result.firstRuns_[label + 1];
    }
    for (size_t i = 0; i < count; ++i) result.firstRuns_[i + 1] += result.firstRuns_[i];
    result.runs_.resize(result.firstRuns_[count]);
    result.inRow_.resize(result.runs_.size());
    result.rowEnds_.resize(static_cast<size_t>(table.height) + 1);
    std::vector<uint32_t> next(result.firstRuns_.begin(), result.firstRuns_.end() - 1);
    size_t inRow = 0;
    for (int32_t y = 0; y < table.height; ++y) {
        for (size_t i = table.ends[static_cast<size_t>(y)]; i < table.ends[static_cast<size_t>(y) + 1]; ++i) {
            const uint32_t label = labels[i];
            if (label == kNoLabel) continue;
            const uint32_t place = next[label]++;
            result.runs_[place] = {y, table.runs[i].start, table.runs[i].stop, label};
            result.inRow_[inRow++] = place;
        }
        result.rowEnds_[static_cast<size_t>(y) + 1] = static_cast<uint32_t>(inRow);
    }
    return result;
}

uint32_t Components::LabelAt(int32_t x, int32_t y) const {
    if (y < 0 || y >= height_) return kNoLabel;
    const std::span<const uint32_t> indices = row(y);
    const auto found =
        std::partition_point(indices.begin(), indices.end(), [&](uint32_t i) { return runs_[i].stop < x; });
    return found != indices.end() && runs_[*found].start <= x ? runs_[*found].label : kNoLabel;
}

}  // namespace orlix
