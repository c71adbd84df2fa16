#include "binary/area_filter.hpp"

#include <cstddef>
#include <span>

#include "binary/components.hpp"
#include "binary/reconstruction.hpp"
#include "binary/row_runs.hpp"

namespace orlix {
namespace {

int64_t Area(std::span<const LabelledRun> runs) {
    int64_t area = 0;
    for (const LabelledRun& run : runs) area += run.length();
    return area;
}

void SetRuns(BitPlane& plane, std::span<const LabelledRun> runs) {
    for (const LabelledRun& run : runs) SetRun(plane.row(run.row), {run.start, run.stop});
}

}  // namespace

BitPlane KeepByArea(const BitPlane& image, Connectivity connectivity, int64_t minimum, int64_t maximum) {
    const Components components = Connected(RunsOf(image), connectivity);
    BitPlane kept(image.width(), image.height());
    for (uint32_t i = 0; i < components.count(); ++i) {
        const int64_t area = Area(components.runs(i));
        if (area >= minimum && area <= maximum) SetRuns(kept, components.runs(i));
    }
    return kept;
}

BitPlane FillHolesUpTo(const BitPlane& image, Connectivity connectivity, int64_t maximum) {
    // The pixels that filling adds are the holes, each a component of its own.
    BitPlane holes = FillHoles(image, connectivity);
    for (int32_t y = 0; y < image.height(); ++y) {
        uint64_t* hole = holes.row(y);
        const uint64_t* row = image.row(y);
        for (size_t i = 0; i < image.wordsPerRow(); ++i) hole[i] &= ~row[i];
    }
    const Components components = Connected(RunsOf(holes), Dual(connectivity));
    BitPlane filled = image;
    for (uint32_t i = 0; i < components.count(); ++i)
        if (Area(components.runs(i)) <= maximum) SetRuns(filled, components.runs(i));
    return filled;
}

}  // namespace orlix
