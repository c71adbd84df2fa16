// Squared distances of components of a binary image, on grids of their own.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <new>
#include <vector>

#include "binary/components.hpp"
#include "binary/distance.hpp"

namespace orlix {

struct PlacedRun {
    int32_t y;
    Run run;
};

// Cells in rows, of which a part may lie outside the bitmap. A cell is a pixel of the runs or 0.
template <class T>
struct DistanceGrid {
    int32_t width = 0;
    int32_t height = 0;
    // The cells that are pixels of the bitmap.
    int32_t firstColumn = 0, lastColumn = 0, firstRow = 0, lastRow = 0;
    std::vector<PlacedRun> runs;  // in raster order
    std::vector<T> values;

    size_t Cell(int32_t x, int32_t y) const {
        return static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x);
    }
    // Gives the cells of the runs their squared distance to the nearest pixel of the bitmap that is in no run.
    void Compute();

private:
    void ComputeRow(const PlacedRun& placed);

    // Of a row's lower envelope: the column of a parabola, its height, and from which cell on it is the lowest.
    struct Parabola {
        int64_t column;
        int64_t height;
        int64_t from;
        int64_t At(int64_t x) const { return (x - column) * (x - column) + height; }
    };
    std::vector<Parabola> envelope_;
};

// A part of a bitmap, empty at first.
struct GridBounds {
    int32_t left = INT32_MAX, top = INT32_MAX, right = -1, bottom = -1;

    void Add(int32_t x1, int32_t y1, int32_t x2, int32_t y2) {
        left = std::min(left, x1);
        top = std::min(top, y1);
        right = std::max(right, x2);
        bottom = std::max(bottom, y2);
    }
    // With the ring around it.
    uint64_t Cells() const {
        return static_cast<uint64_t>(int64_t{right} - left + 3) * static_cast<uint64_t>(int64_t{bottom} - top + 3);
    }
};

// The steps to a cell's neighbours, in raster order, in rows of the given width.
struct NeighbourSteps {
    std::array<ptrdiff_t, 8> step;
    size_t count;

    NeighbourSteps(Connectivity connectivity, ptrdiff_t width) {
        if (connectivity == Connectivity::Eight) {
            step = {-width - 1, -width, -width + 1, -1, 1, width - 1, width, width + 1};
            count = 8;
        } else {
            step = {-width, -1, 1, width};
            count = 4;
        }
    }
    const ptrdiff_t* begin() const { return step.data(); }
    const ptrdiff_t* end() const { return step.data() + count; }
};

// Calls body(grid, left, top) for grids that together hold each component once: cell (x, y) is pixel (left + x, top +
// y), and a ring of cells around all pixels is 0. Most grids hold one component. The disk of pixels nearer to a pixel
// than its nearest background lies in the pixel's component, and that background pixel is beside it: so the distances
// are those in the bitmap, although a grid knows of no other component. Components that fill little of their bounding
// boxes share one grid: all cells together are at most 10 times the pixels of the bitmap, whatever the components look
// like.
template <class T, class Body>
void ForEachDistanceGrid(const BitPlane& image, Connectivity connectivity, const Body& body) {
    const Components components = Connected(RunsOf(image), connectivity);
    DistanceGrid<T> grid;
    const auto visit = [&](const GridBounds& bounds, const auto& addRuns) {
        const uint64_t cells = bounds.Cells();
        if (cells > UINT32_MAX - 16) throw std::bad_alloc();
        const int32_t left = bounds.left - 1;
        const int32_t top = bounds.top - 1;
        grid.width = bounds.right - left + 2;
        grid.height = bounds.bottom - top + 2;
        grid.firstColumn = left < 0 ? 1 : 0;
        grid.firstRow = top < 0 ? 1 : 0;
        grid.lastColumn = grid.width - (bounds.right == image.width() - 1 ? 2 : 1);
        grid.lastRow = grid.height - (bounds.bottom == image.height() - 1 ? 2 : 1);
        grid.runs.clear();
        addRuns([&](const LabelledRun& run) {
            grid.runs.push_back({run.row - top, {run.start - left, run.stop - left}});
        });
        grid.values.assign(static_cast<size_t>(cells), 0);
        grid.Compute();
        body(static_cast<const DistanceGrid<T>&>(grid), left, top);
    };
    std::vector<bool> sparse(components.count());
    GridBounds rest;
    for (uint32_t i = 0; i < components.count(); ++i) {
        GridBounds bounds;
        uint64_t area = 0;
        for (const LabelledRun& run : components.runs(i)) {
            bounds.Add(run.start, run.row, run.stop, run.row);
            area += static_cast<uint64_t>(run.length());
        }
        if (bounds.Cells() / 9 > area) {
            sparse[i] = true;
            rest.Add(bounds.left, bounds.top, bounds.right, bounds.bottom);
            continue;
        }
        visit(bounds, [&](const auto& add) {
            for (const LabelledRun& run : components.runs(i)) add(run);
        });
    }
    if (rest.right < 0) return;
    visit(rest, [&](const auto& add) {
        for (int32_t y = 0; y < image.height(); ++y)
            for (const uint32_t i : components.row(y))
                if (sparse[components.runs()[i].label]) add(components.runs()[i]);
    });
}

}  // namespace orlix
