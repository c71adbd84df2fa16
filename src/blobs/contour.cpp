#include "blobs/contour.hpp"

#include <algorithm>
#include <array>
#include <limits>
#include <new>
#include <utility>

namespace orlix {
namespace {

constexpr uint32_t kPassed = std::numeric_limits<uint32_t>::max();

// Paths go up the left sides of runs and down the right ones.
bool IsRight(uint32_t side) { return side % 2 != 0; }

int32_t ColumnOf(std::span<const LabelledRun> runs, uint32_t side) {
    const LabelledRun& run = runs[side / 2];
    return IsRight(side) ? run.stop + 1 : run.start;
}

// The first pixel to the right of the path.
Point FirstPixel(std::span<const PixelPaths::Corner> path) {
    const PixelPaths::Corner &a = path[0], &b = path[1];
    return b.y > a.y ? Point{a.x - 1.0, a.y * 1.0} : Point{a.x * 1.0, a.y * 1.0};
}

std::vector<Point> OutlineOf(std::span<const PixelPaths::Corner> path, Connectivity connectivity, OutlineKind kind) {
    std::vector<Point> outline;
    if (kind == OutlineKind::PixelEdges) {
        outline.reserve(path.size());
        for (const PixelPaths::Corner& corner : path) outline.push_back({corner.x - 0.5, corner.y - 0.5});
        return outline;
    }
    constexpr std::array<int, 8> kX = {1, 1, 0, -1, -1, -1, 0, 1}, kY = {0, 1, 1, 1, 0, -1, -1, -1};
    Point pixel = FirstPixel(path);
    outline.push_back(pixel);
    ForEachChainStep(path, connectivity, [&](int direction, int64_t steps) {
        for (int64_t i = 0; i < steps; ++i) {
            pixel.x += kX[static_cast<size_t>(direction)];
            pixel.y += kY[static_cast<size_t>(direction)];
            outline.push_back(pixel);
        }
    });
    if (outline.size() > 1) outline.pop_back();  // the last step leads back to the first pixel
    return outline;
}

}  // namespace

// Links the sides that end at the line between two rows with those that begin there: the ends of the runs above
// (above <= i < row) and below (row <= i < end), from left to right, are joined in pairs by the horizontal edges
// between them. Where a run above and a run below touch at a corner, their order decides whether the path passes over.
void PixelPaths::LinkRows(std::span<const LabelledRun> runs, size_t above, size_t row, size_t end, bool eight) {
    auto a = static_cast<uint32_t>(2 * above), b = static_cast<uint32_t>(2 * row);
    const auto aEnd = static_cast<uint32_t>(2 * row), bEnd = static_cast<uint32_t>(2 * end);
    const auto pop = [&] {
        if (b == bEnd) return a++;
        if (a == aEnd) return b++;
        const int32_t xa = ColumnOf(runs, a), xb = ColumnOf(runs, b);
        if (xa != xb) return xa < xb ? a++ : b++;
        return IsRight(a) != eight ? a++ : b++;
    };
    while (a < aEnd || b < bEnd) {
        const uint32_t first = pop(), second = pop();
        // Right sides above and left sides below end at this line.
        if ((first < aEnd) == IsRight(first))
            next_[first] = second;
        else
            next_[second] = first;
    }
}

void PixelPaths::Trace(std::span<const LabelledRun> runs, Connectivity connectivity) {
    if (runs.size() > kPassed / 2) throw std::bad_alloc();
    next_.resize(2 * runs.size());
    corners_.clear();
    ends_.assign(1, 0);
    const bool eight = connectivity == Connectivity::Eight;
    size_t above = 0, row = 0;
    while (row < runs.size()) {
        size_t end = row + 1;
        while (end < runs.size() && runs[end].row == runs[row].row) ++end;
        LinkRows(runs, above, row, end, eight);
        above = row;
        row = end;
    }
    LinkRows(runs, above, row, row, eight);

    for (uint32_t first = 0; first < next_.size(); ++first) {
        if (next_[first] == kPassed) continue;
        for (uint32_t side = first; next_[side] != kPassed;) {
            const uint32_t next = next_[side];
            next_[side] = kPassed;
            const int32_t from = ColumnOf(runs, side), to = ColumnOf(runs, next);
            const int32_t y = runs[side / 2].row + (IsRight(side) ? 1 : 0);
            if (from != to) {
                corners_.push_back({from, y});
                corners_.push_back({to, y});
            }
            side = next;
        }
        // The walk around a hole ends, that around the component begins with the upper left corner.
        if (IsRight(first))
            std::rotate(corners_.begin() + static_cast<ptrdiff_t>(ends_.back()), corners_.end() - 1, corners_.end());
        ends_.push_back(corners_.size());
    }
}

Outlines OutlinesOf(std::span<const LabelledRun> runs, Connectivity connectivity, OutlineKind kind) {
    PixelPaths paths;
    paths.Trace(runs, connectivity);
    Outlines outlines;
    for (size_t i = 0; i < paths.count(); ++i) {
        std::vector<Point> outline = OutlineOf(paths.path(i), connectivity, kind);
        if (i == 0)
            outlines.outer = std::move(outline);
        else
            outlines.holes.push_back(std::move(outline));
    }
    return outlines;
}

}  // namespace orlix
