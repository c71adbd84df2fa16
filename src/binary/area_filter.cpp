#include "binary/area_filter.hpp"

#include <cstddef>

#include "binary/components.hpp"
#include "binary/reconstruction.hpp"

namespace orlix {

BitPlane KeepByArea(const BitPlane& image, Connectivity connectivity, int64_t minimum, int64_t maximum) {
    BitPlane kept(image.width(), image.height());
    const Components components = Connected(RunsOf(image), connectivity);
    for (uint32_t i = 0; i < components.count(); ++i) {
        int64_t area = 0;
        for (const LabelledRun& run : components.runs(i)) area += run.length();
        if (area < minimum || area > maximum) continue;
        for (const LabelledRun& run : components.runs(i)) SetRun(kept.row(run.row), {run.start, run.stop});
    }
    return kept;
}

BitPlane FillHolesUpTo(const BitPlane& image, Connectivity connectivity, int64_t maximum) {
    // The pixels that filling adds are the holes, each a component of its own.
    BitPlane result = FillHoles(image, connectivity);
    for (int32_t y = 0; y < image.height(); ++y)
        for (size_t i = 0; i < image.wordsPerRow(); ++i) result.row(y)[i] &= ~image.row(y)[i];
    result = KeepByArea(result, Dual(connectivity), 0, maximum);
    for (int32_t y = 0; y < image.height(); ++y)
        for (size_t i = 0; i < image.wordsPerRow(); ++i) result.row(y)[i] |= image.row(y)[i];
    return result;
}

}  // namespace orlix
