#include "blobs/labelling.hpp"

#include <algorithm>
#include <new>
#include <span>

namespace orlix {

Labelling Label(const RunTable& table, Connectivity connectivity) { return {Connected(table, connectivity), {}}; }

Labelling Label(const RunTable& table, Connectivity connectivity, const RegionRows& region) {
    if (region.whole()) return Label(table, connectivity);
    Labelling labelling = Label(Intersection(table, region), connectivity);
    // Pixels of the region whose neighbours all belong to it or lie outside the image.
    const Components& blobs = labelling.blobs;
    std::vector<int64_t>& contacts = labelling.regionContacts;
    contacts.resize(blobs.count());
    for (const LabelledRun& run : blobs.runs()) contacts[run.label] += run.length();
    std::vector<Run> inner, narrower;
    RegionRows::RowBuffer buffer;
    const auto common = [&](int32_t y) {
        if (y < 0 || y >= table.height) return;
        const std::span<const Run> other = region.row(y, buffer);
        narrower.clear();
        ForEachCommonRun(inner, other, [&](const Run& run) { narrower.push_back(run); });
        inner.swap(narrower);
    };
    for (int32_t y = 0; y < table.height; ++y) {
        inner.clear();
        for (const Run run : region.row(y, buffer)) {
            const Run without = {run.start == 0 ? 0 : run.start + 1,
                                 run.stop == table.width - 1 ? run.stop : run.stop - 1};
            if (without.start <= without.stop) inner.push_back(without);
        }
        common(y - 1);
        common(y + 1);
        size_t i = 0;
        for (const uint32_t index : blobs.row(y)) {
            const LabelledRun& run = blobs.runs()[index];
            while (i < inner.size() && inner[i].stop < run.start) ++i;
            for (size_t k = i; k < inner.size() && inner[k].start <= run.stop; ++k)
                contacts[run.label] -= std::min(inner[k].stop, run.stop) - std::max(inner[k].start, run.start) + 1;
        }
    }
    return labelling;
}

Holes HolesOf(const Components& blobs) {
    // The runs between those of the blobs.
    RunTable background;
    background.width = blobs.width();
    background.height = blobs.height();
    background.ends.reserve(static_cast<size_t>(blobs.height()) + 1);
    const uint64_t most = blobs.runs().size() + static_cast<uint64_t>(blobs.height());
    if (most >= UINT32_MAX) throw std::bad_alloc();
    background.runs.reserve(static_cast<size_t>(most));
    for (int32_t y = 0; y < blobs.height(); ++y) {
        int32_t start = 0;
        for (const uint32_t i : blobs.row(y)) {
            if (start < blobs.runs()[i].start) background.runs.push_back({start, blobs.runs()[i].start - 1});
            start = blobs.runs()[i].stop + 1;
        }
        if (start < blobs.width()) background.runs.push_back({start, blobs.width() - 1});
        background.ends.push_back(static_cast<uint32_t>(background.runs.size()));
    }

    // The first pixel of a component, in raster order, lies on its outer border; the pixel to the left of it belongs to
    // the component around it.
    Holes result{Connected(background, Dual(blobs.connectivity()), true), {}, {}};
    const auto around = [](const Components& inside, const Components& outside) {
        std::vector<uint32_t> labels(inside.count());
        for (uint32_t i = 0; i < inside.count(); ++i)
            labels[i] = outside.LabelAt(inside.runs(i)[0].start - 1, inside.runs(i)[0].row);
        return labels;
    };
    result.blobOfHole = around(result.holes, blobs);
    result.holeOfBlob = around(blobs, result.holes);
    return result;
}

}  // namespace orlix
