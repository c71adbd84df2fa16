#include "orlix_bitmap/run_region.hpp"

#include <algorithm>

namespace orlix {

RunRegion::RunRegion(LONG width, LONG height, std::span<const LabelledRun> runs)
    : width_(width), height_(height), box_{width - 1, runs.front().row, 0, runs.back().row} {
    runs_.reserve(runs.size());
    for (const LabelledRun& run : runs) {
        // The rows of a component follow one another without a gap.
        if (firstRuns_.size() <= static_cast<size_t>(run.row - box_.top))
            firstRuns_.push_back(static_cast<uint32_t>(runs_.size()));
        runs_.push_back({run.start, run.stop, 0, nullptr, nullptr, nullptr, nullptr});
        box_.left = std::min<LONG>(box_.left, run.start);
        box_.right = std::max<LONG>(box_.right, run.stop);
    }
    firstRuns_.push_back(static_cast<uint32_t>(runs_.size()));
}

STDMETHODIMP RunRegion::get_Width(LONG* value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = width_;
    });
}

STDMETHODIMP RunRegion::get_Height(LONG* value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = height_;
    });
}

STDMETHODIMP RunRegion::get_BoundingBox(RECT* value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = box_;
    });
}

STDMETHODIMP RunRegion::GetRowRuns(LONG row, SRun** begin, SRun** end) noexcept {
    return Guarded([&] {
        Require(begin), Require(end);
        *begin = *end = nullptr;
        if (row < 0 || row >= height_) return S_FALSE;
        if (row < box_.top || row > box_.bottom) return S_OK;
        const auto i = static_cast<size_t>(row - box_.top);
        *begin = runs_.data() + firstRuns_[i];
        *end = runs_.data() + firstRuns_[i + 1];
        return S_OK;
    });
}

}  // namespace orlix
