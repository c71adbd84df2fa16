#include "binary/row_runs.hpp"

#include <algorithm>
#include <new>

#include "binary/row_run_cache.hpp"
#include "binary/run_finder.hpp"

namespace orlix {
namespace {

// A table with room for the runs that the rows have.
template <class CountOfRow>
RunTable TableFor(int32_t width, int32_t height, const CountOfRow& countOf) {
    RunTable table;
    table.width = width;
    table.height = height;
    table.ends.resize(static_cast<size_t>(height) + 1);
    uint64_t runs = 0;
    for (int32_t y = 0; y < height; ++y) {
        runs += countOf(y);
        if (runs >= UINT32_MAX) throw std::bad_alloc();
        table.ends[static_cast<size_t>(y) + 1] = static_cast<uint32_t>(runs);
    }
    table.runs.resize(static_cast<size_t>(runs));
    return table;
}

template <class Visit>
void ForEachWordOf(const BitPlane& plane, int32_t y, Visit&& visit) {
    const uint64_t* words = plane.row(y);
    for (size_t i = 0; i < plane.wordsPerRow(); ++i) visit(words[i]);
}

}  // namespace

RunTable RunsOf(const BitRows& rows) {
    RunTable table =
        TableFor(rows.width, rows.height, [&](int32_t y) { return CountRowRuns(rows.row(y), rows.width); });
    for (int32_t y = 0; y < rows.height; ++y)
        FindRowRuns(rows.row(y), rows.width, table.runs.data() + table.ends[static_cast<size_t>(y)]);
    return table;
}

RunTable RunsOf(const BitPlane& plane) {
    RunTable table = TableFor(plane.width(), plane.height(), [&](int32_t y) {
        RunCounter counter;
        ForEachWordOf(plane, y, counter);
        return counter.starts();
    });
    for (int32_t y = 0; y < plane.height(); ++y) {
        RunFinder finder(table.runs.data() + table.ends[static_cast<size_t>(y)]);
        ForEachWordOf(plane, y, finder);
        finder.Finish(plane.width());
    }
    return table;
}

RunTable RunsOf(BitmapStore& store) {
    RunTable table = TableFor(store.width(), store.height(), [&](int32_t y) { return store.RowRuns(y).size(); });
    for (int32_t y = 0; y < store.height(); ++y) {
        const std::span<const Run> runs = store.RowRuns(y);
        std::copy(runs.begin(), runs.end(), table.runs.begin() + table.ends[static_cast<size_t>(y)]);
    }
    return table;
}

RunTable Intersection(const RunTable& table, const RegionRows& region) {
    if (region.whole()) return table;
    RunTable common = TableFor(table.width, table.height, [&](int32_t y) {
        size_t count = 0;
        ForEachCommonRun(table.row(y), region.row(y), [&](const Run&) { ++count; });
        return count;
    });
    for (int32_t y = 0; y < table.height; ++y) {
        Run* next = common.runs.data() + common.ends[static_cast<size_t>(y)];
        ForEachCommonRun(table.row(y), region.row(y), [&](const Run& run) { *next++ = run; });
    }
    return common;
}

}  // namespace orlix
