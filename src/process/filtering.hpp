// Neighbourhood filters from a source into a selection.
#pragma once

#include <orlix/orlix.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

#include "filters/extremum_sharpening.hpp"
#include "filters/filter_table.hpp"
#include "filters/filtering.hpp"
#include "process/selection.hpp"

namespace orlix {

// filter(from, to, rows) writes the rows of a band, reading a band of the source within filter.radius() of them. A band
// that is its own source is filtered in place; any other source that shares memory with the selection is copied before
// anything is written.
template <class Pixel, class Operation>
void FilterFrom(const Selection<Pixel>& at, SourceViews<Pixel> sources, const Operation& filter) {
    constexpr bool byRows = std::is_same_v<Operation, NeighbourhoodFilter<Pixel>>;
    std::vector<SourceCopy<Pixel>> copies;
    std::optional<InPlaceRows<Pixel>> ring;
    std::vector<bool> inPlace(static_cast<size_t>(at.bands()));
    for (int32_t band = 0; band < at.bands(); ++band) {
        const auto i = static_cast<size_t>(band);
        PixelView<const Pixel>& from = sources[i];
        from = from.Within(at.width(), at.height());
        if (!SharesMemory(from, at.view(0).base(), at.end())) continue;
        if (byRows && InPlaceRows<Pixel>::Suit(from, at.view(band))) {
            inPlace[i] = true;
            if (!ring) ring.emplace(at.view(band), at.rows(), filter.radius());
            continue;
        }
        copies.emplace_back(from, at.width(), at.rows().top(), at.rows().bottom(), filter.radius());
        from = copies.back().view();
    }
    for (int32_t band = 0; band < at.bands(); ++band) {
        const auto i = static_cast<size_t>(band);
        if constexpr (byRows)
            if (inPlace[i]) {
                ring->Apply(filter, at.view(band), at.rows());
                continue;
            }
        filter(sources[i], at.view(band), at.rows());
    }
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
    const ExtremumSharpening<Pixel> filter(halfSize, range);
    if (const auto small = filter.Small())
        FilterFrom(at, std::move(sources), *small);
    else
        FilterFrom(at, std::move(sources), filter);
}

}  // namespace orlix
