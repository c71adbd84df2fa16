#include "display/pick_plan.hpp"

#include <algorithm>
#include <utility>

namespace orlix {

PickPlan::PickPlan(std::vector<int32_t> columns, int32_t rowLength, std::span<const PickShape> shapes)
    : columns_(std::move(columns)) {
    if (columns_.empty()) return;
    blocks_.resize((columns_.size() + kPickBlock - 1) / kPickBlock);
    for (const PickShape& shape : shapes)
        if (shape_ == kUngrouped && Group(rowLength, shape)) shape_ = shape;
}

bool PickPlan::Group(int32_t rowLength, const PickShape& shape) {
    const auto& [group, window] = shape;
    if (rowLength < window) return false;
    bases_.resize(blocks_.size() * kPickBlock / group);
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
    return {columns_.data(), columns_.size(), shape_, bases_.data(),
            blocks_.empty() ? nullptr : blocks_.front().shuffles};
}

}  // namespace orlix
