#include "binary/component_hulls.hpp"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "binary/components.hpp"

namespace orlix {
namespace {

struct Corner {
    int64_t x, y;
};

// Quotient rounded down, for a positive divisor.
int64_t FloorDivide(int64_t a, int64_t b) { return a / b - (a % b < 0); }

// Replaces the ends of a component's rows by those of its hull, on the right side of it; with sign -1 and negated
// columns on the left. Every row of a component has pixels.
template <class End>
void Widen(size_t rows, int32_t sign, std::vector<Corner>& corners, const End& end) {
    corners.clear();
    for (size_t y = 0; y < rows; ++y) {
        const Corner next = {int64_t{sign} * end(y), static_cast<int64_t>(y)};
        // A corner that the line past it reaches is none. |coordinates| < 2^31, so products stay below 2^63.
        const auto hidden = [&](const Corner& a, const Corner& b) {
            return (b.x - a.x) * (next.y - a.y) <= (next.x - a.x) * (b.y - a.y);
        };
        while (corners.size() > 1 && hidden(corners[corners.size() - 2], corners.back())) corners.pop_back();
        corners.push_back(next);
    }
    for (size_t i = 0; i + 1 < corners.size(); ++i) {
        const auto [x, top] = corners[i];
        const int64_t dx = corners[i + 1].x - x;
        const int64_t dy = corners[i + 1].y - top;
        for (int64_t k = 1; k < dy; ++k)
            end(static_cast<size_t>(top + k)) = sign * static_cast<int32_t>(x + FloorDivide(dx * k, dy));
    }
}

}  // namespace

BitPlane ConvexHulls(const BitPlane& image, Connectivity connectivity) {
    const Components components = Connected(RunsOf(image), connectivity);
    // The rows of each component, one component after another: that is, in the order of their first rows.
    struct Rows {
        int32_t top;
        int32_t bottom;
        size_t first;
        size_t size() const { return static_cast<size_t>(bottom - top) + 1; }
    };
    std::vector<Rows> rows;
    std::vector<Run> ends;
    for (uint32_t i = 0; i < components.count(); ++i) {
        const std::span<const LabelledRun> runs = components.runs(i);
        rows.push_back({runs.front().row, runs.back().row, ends.size()});
        ends.resize(ends.size() + rows.back().size(), {image.width(), -1});
        for (const LabelledRun& run : runs) {
            Run& row = ends[rows.back().first + static_cast<size_t>(run.row - rows.back().top)];
            row.start = std::min(row.start, run.start);
            row.stop = std::max(row.stop, run.stop);
        }
    }
    std::vector<Corner> corners;
    for (const Rows& component : rows) {
        Run* const first = ends.data() + component.first;
        Widen(component.size(), 1, corners, [&](size_t y) -> int32_t& { return first[y].stop; });
        Widen(component.size(), -1, corners, [&](size_t y) -> int32_t& { return first[y].start; });
    }

    // Row by row. Hulls may lie one in another by the thousand, so a row's spans are joined before they are drawn.
    BitPlane result(image.width(), image.height());
    std::vector<uint64_t> starts(image.wordsPerRow());
    std::vector<int32_t> farthest(static_cast<size_t>(image.width()));  // of the spans that start at a column
    std::vector<size_t> present;                                        // the components that have the row
    size_t next = 0;
    for (int32_t y = 0; y < image.height(); ++y) {
        for (; next < rows.size() && rows[next].top == y; ++next) present.push_back(next);
        std::erase_if(present, [&](size_t i) { return rows[i].bottom < y; });
        for (const size_t i : present) {
            const Run& span = ends[rows[i].first + static_cast<size_t>(y - rows[i].top)];
            const auto start = static_cast<size_t>(span.start);
            uint64_t& word = starts[start / 64];
            const uint64_t bit = BitPlane::MaskOf(span.start);
            farthest[start] = word & bit ? std::max(farthest[start], span.stop) : span.stop;
            word |= bit;
        }
        int32_t done = -1;
        for (size_t i = 0; i < starts.size(); ++i)
            for (; starts[i] != 0;) {
                const int32_t x = static_cast<int32_t>(64 * i) + std::countl_zero(starts[i]);
                starts[i] &= ~BitPlane::MaskOf(x);
                const int32_t stop = farthest[static_cast<size_t>(x)];
                if (stop <= done) continue;
                SetRun(result.row(y), {std::max(x, done + 1), stop});
                done = stop;
            }
    }
    return result;
}

}  // namespace orlix
