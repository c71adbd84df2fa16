#include "binary/distance.hpp"

#include <algorithm>
#include <utility>

#include "binary/distance_grid.hpp"
#include "binary/row_runs.hpp"

namespace orlix {

template <class T>
void DistanceGrid<T>::Compute() {
    // Distances along columns. Larger than any that exists, and one more for each row does not overflow.
    constexpr T kNone = kInfiniteDistance<T> / 2;
    for (const auto& [y, run] : runs) {
        T* row = values.data() + Cell(0, y);
        if (y == firstRow)
            std::fill(row + run.start, row + run.stop + 1, kNone);
        else
            for (int32_t x = run.start; x <= run.stop; ++x) row[x] = row[x - width] + 1;
    }
    for (size_t i = runs.size(); i-- > 0;) {
        const auto& [y, run] = runs[i];
        if (y == lastRow) continue;
        T* row = values.data() + Cell(0, y);
        for (int32_t x = run.start; x <= run.stop; ++x) row[x] = std::min(row[x], static_cast<T>(row[x + width] + 1));
    }
    for (const PlacedRun& placed : runs) ComputeRow(placed);
}

// The background pixels at the ends of a run are nearer than anything beyond them, so each run is a row of its own.
template <class T>
void DistanceGrid<T>::ComputeRow(const PlacedRun& placed) {
    T* row = values.data() + Cell(0, placed.y);
    const int32_t start = placed.run.start;
    const int32_t stop = placed.run.stop;
    envelope_.clear();
    const auto add = [&](int64_t column, int64_t at) {
        while (!envelope_.empty()) {
            const Parabola& last = envelope_.back();
            if (last.At(last.from) > (last.from - column) * (last.from - column) + at) {
                envelope_.pop_back();
                continue;
            }
            // From where on the new one is lower: the crossing does not lie before last.from.
            const int64_t from =
                1 + (column * column - last.column * last.column + at - last.height) / (2 * (column - last.column));
            if (from <= stop) envelope_.push_back({column, at, from});
            return;
        }
        envelope_.push_back({column, at, start});
    };
    if (start > firstColumn) add(start - 1, 0);
    for (int32_t x = start; x <= stop; ++x)
        if (row[x] < kInfiniteDistance<T> / 2) add(x, static_cast<int64_t>(row[x]) * row[x]);
    if (stop < lastColumn) add(stop + 1, 0);

    if (envelope_.empty()) {
        std::fill(row + start, row + stop + 1, kInfiniteDistance<T>);
        return;
    }
    for (size_t i = 0; i < envelope_.size(); ++i) {
        const int64_t end = i + 1 < envelope_.size() ? envelope_[i + 1].from : int64_t{stop} + 1;
        for (int64_t x = envelope_[i].from; x < end; ++x) row[x] = static_cast<T>(envelope_[i].At(x));
    }
}

template struct DistanceGrid<int32_t>;
template struct DistanceGrid<int64_t>;

template <class T>
std::vector<T> SquaredDistances(const BitPlane& image) {
    DistanceGrid<T> grid;
    grid.width = image.width();
    grid.height = image.height();
    grid.lastColumn = grid.width - 1;
    grid.lastRow = grid.height - 1;
    const RunTable table = RunsOf(image);
    for (int32_t y = 0; y < image.height(); ++y)
        for (const Run& run : table.row(y)) grid.runs.push_back({y, run});
    grid.values.resize(grid.Cell(0, grid.height));
    grid.Compute();
    return std::move(grid.values);
}

template std::vector<int32_t> SquaredDistances(const BitPlane& image);
template std::vector<int64_t> SquaredDistances(const BitPlane& image);

namespace {

template <class T>
BitPlane UltimatePointsIn(const BitPlane& image, Connectivity connectivity) {
    BitPlane result(image.width(), image.height());
    // A neighbour, or a pixel connected at equal distance, has a larger one. (Bytes: assigning to bits would clear all
    // memory that the largest component once took, for each small one.)
    std::vector<uint8_t> lower;
    std::vector<size_t> stack;
    ForEachDistanceGrid<T>(image, connectivity, [&](const DistanceGrid<T>& grid, int32_t left, int32_t top) {
        const NeighbourSteps steps(connectivity, grid.width);
        const T* values = grid.values.data();
        lower.assign(grid.values.size(), 0);
        for (const auto& [y, run] : grid.runs) {
            for (size_t cell = grid.Cell(run.start, y); cell <= grid.Cell(run.stop, y); ++cell) {
                if (lower[cell] || std::none_of(steps.begin(), steps.end(), [&](ptrdiff_t step) {
                        return values[static_cast<ptrdiff_t>(cell) + step] > values[cell];
                    }))
                    continue;
                lower[cell] = 1;
                for (stack.push_back(cell); !stack.empty();) {
                    const auto at = static_cast<ptrdiff_t>(stack.back());
                    stack.pop_back();
                    for (const ptrdiff_t step : steps) {
                        const auto other = static_cast<size_t>(at + step);
                        if (values[other] != values[cell] || lower[other]) continue;
                        lower[other] = 1;
                        stack.push_back(other);
                    }
                }
            }
        }
        for (const auto& [y, run] : grid.runs)
            for (int32_t x = run.start; x <= run.stop; ++x)
                if (!lower[grid.Cell(x, y)] && values[grid.Cell(x, y)] != kInfiniteDistance<T>)
                    result.setBit(left + x, top + y, true);
    });
    return result;
}

}  // namespace

BitPlane UltimatePoints(const BitPlane& image, Connectivity connectivity) {
    return DistancesFitInt32(image.width(), image.height()) ? UltimatePointsIn<int32_t>(image, connectivity)
                                                            : UltimatePointsIn<int64_t>(image, connectivity);
}

}  // namespace orlix
