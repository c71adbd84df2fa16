#include "display/pick_plan.hpp"

#include <algorithm>
#include <utility>

namespace orlix {

PickPlan::PickPlan(std::vector<int32_t> columns, int32_t rowLength, const PickShape& shape)
    : columns_(std::move(columns)) {
    if (shape.group == 0 || columns_.empty()) return;
    blocks_.resize((columns_.size() + kPickBlock - 1) / kPickBlock);
    bases_.resize(blocks_.size() * kPickBlock / shape.group);
    for (int32_t window = shape.least; window <= shape.most && window_ == 0; window *= 2)
        if (Group(rowLength, shape.group, window)) window_ = window;
}

bool PickPlan::Group(int32_t rowLength, size_t group, int32_t window) {
    if (rowLength < window) return false;
    const auto columnAt = [&](size_t i) { return columns_[std::min(i, columns_.size() - 1)]; };
    for (size_t g = 0; g < bases_.size(); ++g) {
        const size_t first = g * group;
        const auto [low, high] = std::minmax({columnAt(first), columnAt(first + group - 1)});
        const int32_t base = std::min(low, rowLength - window);
        if (high - base >= window) return false;
        bases_[g] = base;
        for (size_t i = first; i < first + group; ++i)
            blocks_[i / kPickBlock].shuffles[i % kPickBlock] =
                0x80000000 | static_cast<uint32_t>(columnAt(i) - base) * 0x010101;
    }
    return true;
}

Picks PickPlan::picks() const {
    return {columns_.data(), columns_.size(), window_, bases_.data(), window_ ? blocks_.front().shuffles : nullptr};
}

}  // namespace orlix
