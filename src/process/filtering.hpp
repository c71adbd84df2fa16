// Neighbourhood filters from a source into a selection.
#pragma once

#include <orlix/orlix.h>

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "filters/extremum_sharpening.hpp"
#include "filters/filter_table.hpp"
#include "filters/filtering.hpp"
#include "process/selection.hpp"

namespace orlix {

// filter(from, to, rows) writes the rows of a band, reading a band of the source within filter.radius() of them. A
// source that shares memory with the selection, in particular the same image, is copied before anything is written.
template <class Pixel, class Operation>
void FilterFrom(const Selection<Pixel>& at, SourceViews<Pixel> sources, const Operation& filter) {
    std::vector<SourceCopy<Pixel>> copies;
    for (PixelView<const Pixel>& from : sources) {
        if (!SharesMemory(from, at.view(0).base(), at.end())) continue;
        copies.emplace_back(from, at.width(), at.rows().top(), at.rows().bottom(), filter.radius());
        from = copies.back().view();
    }
    for (int32_t band = 0; band < at.bands(); ++band)
        filter(sources[static_cast<size_t>(band)], at.view(band), at.rows());
}

template <class Pixel>
void FilterBy(const Selection<Pixel>& at, SourceViews<Pixel> sources, FilterKind kind) {
    const FilterRow<Pixel>& row = RowOf<Pixel>(kind);
    const FilterParameters<Pixel> range = {at.settings().lower(), at.settings().upper()};
    FilterFrom(at, std::move(sources), NeighbourhoodFilter<Pixel>(Choose(row.kernels), row.radius, range));
}

template <class Pixel>
void SharpenByExtrema(const Selection<Pixel>& at, SourceViews<Pixel> sources, LONG halfSize) {
    const FilterParameters<Pixel> range = {at.settings().lower(), at.settings().upper()};
    FilterFrom(at, std::move(sources), ExtremumSharpening<Pixel>(halfSize, range));
}

}  // namespace orlix
