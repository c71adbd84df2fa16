// The runs of one component, by rows.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "blobs/labelling.hpp"

namespace orlix {

class BlobRows {
public:
    // The runs of a component, as Components has them: at least one. `memory` holds the index of the rows.
    BlobRows(std::span<const LabelledRun> runs, std::vector<uint32_t>& memory) : runs_(runs) {
        memory.clear();
        for (size_t i = 0; i < runs.size(); ++i)
            if (i == 0 || runs[i].row != runs[i - 1].row) memory.push_back(static_cast<uint32_t>(i));
        memory.push_back(static_cast<uint32_t>(runs.size()));
        first_ = memory;
    }

    std::span<const LabelledRun> runs() const { return runs_; }
    int32_t top() const { return runs_[0].row; }
    size_t count() const { return first_.size() - 1; }
    // Row top() + i.
    std::span<const LabelledRun> operator[](size_t i) const {
        return runs_.subspan(first_[i], first_[i + 1] - first_[i]);
    }
    uint32_t first(size_t i) const { return first_[i]; }

private:
    std::span<const LabelledRun> runs_;
    std::span<const uint32_t> first_;
};

// Calls visit(a, b) for the runs of two rows that have columns in common, or columns at most `reach` apart, once b is
// moved to the right by `shift`.
template <class Visit>
void ForEachOverlap(std::span<const LabelledRun> above, std::span<const LabelledRun> below, int32_t shift,
                    int32_t reach, const Visit& visit) {
    for (size_t i = 0, j = 0; i < above.size() && j < below.size();) {
        const LabelledRun &a = above[i], &b = below[j];
        const int64_t start = int64_t{b.start} + shift, stop = int64_t{b.stop} + shift;
        if (a.start <= stop + reach && start <= int64_t{a.stop} + reach) visit(a, b);
        if (a.stop < stop)
            ++i;
        else
            ++j;
    }
}

}  // namespace orlix
