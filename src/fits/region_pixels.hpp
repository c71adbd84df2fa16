// The pixels of a region in one band, for operations that visit them several times or individually.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "fits/surface_polynomial.hpp"
#include "geometry/region_rows.hpp"
#include "image/pixel_view.hpp"

namespace orlix {

// Borrows the rows. T is a pixel type.
template <class T>
class RegionPixels {
public:
    using Pixel = T;
    RegionPixels(PixelView<T> view, const RegionRows& rows) : view_(view), rows_(rows) {
        starts_.push_back(0);
        for (int32_t y = rows.top(); y <= rows.bottom(); ++y) {
            int64_t pixels = 0;
            for (const Run run : rows.row(y)) pixels += run.length();
            starts_.push_back(starts_.back() + pixels);
        }
    }

    int64_t count() const { return starts_.back(); }

    // Calls visit(pixels, n, x, y) for n >= 1 pixels from (x, y) on; top to bottom, left to right. This is the run
    // order.
    template <class Visit>
    void ForEachRun(Visit&& visit) const {
        for (int32_t y = rows_.top(); y <= rows_.bottom(); ++y) ForEachRunOf(y, visit);
    }
    // Like ForEachRun, but stops after the row for which more() returns false.
    template <class Visit, class More>
    void ForEachRun(Visit&& visit, More&& more) const {
        for (int32_t y = rows_.top(); y <= rows_.bottom(); ++y) {
            ForEachRunOf(y, visit);
            if (!more()) return;
        }
    }

    // Pixel number `index` in run order, 0 <= index < count(). Requires a search over the rows.
    SurfacePoint At(int64_t index) const {
        const auto after = std::upper_bound(starts_.begin(), starts_.end(), index);
        const auto row = static_cast<int32_t>(after - starts_.begin()) - 1;
        const int32_t y = rows_.top() + row;
        int64_t rest = index - starts_[static_cast<size_t>(row)];
        for (const Run run : rows_.row(y)) {
            if (rest < run.length()) {
                const int32_t x = run.start + static_cast<int32_t>(rest);
                return {x, y, static_cast<double>(view_.row(y)[x])};
            }
            rest -= run.length();
        }
        return {};
    }

private:
    template <class Visit>
    void ForEachRunOf(int32_t y, Visit& visit) const {
        for (const Run run : rows_.row(y))
            visit(static_cast<const T*>(view_.row(y) + run.start), static_cast<size_t>(run.length()), run.start, y);
    }

    PixelView<T> view_;
    const RegionRows& rows_;
    std::vector<int64_t> starts_;  // index of the first pixel of each row, then the total number of pixels
};

// A few pixels, presented as runs of one.
class PointRuns {
public:
    using Pixel = double;
    explicit PointRuns(std::span<const SurfacePoint> points) : points_(points) {}

    int64_t count() const { return static_cast<int64_t>(points_.size()); }
    template <class Visit>
    void ForEachRun(Visit&& visit) const {
        for (const SurfacePoint& point : points_) visit(&point.z, size_t{1}, point.x, point.y);
    }

private:
    std::span<const SurfacePoint> points_;
};

}  // namespace orlix
