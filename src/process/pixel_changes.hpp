// Operations that change each pixel of a selection on its own, or with the source pixel at the same place.
#pragma once

#include <orlix/orlix.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "measure/counting.hpp"
#include "points/casting.hpp"
#include "points/pixel_conversion.hpp"
#include "points/point_operations.hpp"
#include "points/table_look_up.hpp"
#include "process/look_ahead.hpp"
#include "process/measurements.hpp"
#include "process/selection.hpp"

namespace orlix {

template <class Pixel>
void Invert(const Selection<Pixel>& at) {
    at.Apply(PointOperation<Pixel>::Invert(at.settings().lower(), at.settings().upper()));
}

template <class Pixel>
void Fill(const Selection<Pixel>& at, double value) {
    at.Apply(PointOperation<Pixel>::Fill(ToPixel<Pixel>(value)));
}

template <class Pixel>
void Add(const Selection<Pixel>& at, double value) {
    at.Apply(PointOperation<Pixel>::Add(value, at.settings().lower(), at.settings().upper()));
}

// Divides by a value other than 0.
template <class Pixel>
void Divide(const Selection<Pixel>& at, double value) {
    at.Apply(PointOperation<Pixel>::Divide(value));
}

// --------------------------------------------------------------------------------------------------- the look-up table

// The table that spreads the counts of the selection over the luminance range; nullopt for a type outside
// EqualizationType. "IImageProcess::EqualizeTable: empty histogram".
template <class Pixel>
std::optional<std::vector<Pixel>> EqualizedTable(const Selection<Pixel>& at, LONG type) {
    const ComPtr<OrlixHistogram> histogram = HistogramOf(at);
    const std::span<const LONG> counts = histogram->counts();
    int64_t total = 0;
    for (const LONG c : counts) total += c;
    if (total < 1) throw Failure("IImageProcess::EqualizeTable: empty histogram");
    if (type != ET_Uniform && type != ET_UpperTriangular) return {};

    std::vector<Pixel> table = at.settings().WholeTable();
    const auto lower = static_cast<double>(at.settings().lower());
    const double range = static_cast<double>(at.settings().upper()) - lower;
    int64_t cumulative = 0;
    for (size_t i = 0; i < counts.size(); ++i) {
        cumulative += counts[i];
        const auto c = static_cast<double>(cumulative);
        const auto t = static_cast<double>(total);
        table[i] = ToPixel<Pixel>(lower + (type == ET_Uniform ? range * c / t : range * std::sqrt(c / t)));
    }
    return table;
}

template <class Pixel>
void LookUp(const Selection<Pixel>& at) {
    const FrameSettings<Pixel>& settings = at.settings();
    if constexpr (std::is_same_v<Pixel, BYTE>) {
        const std::vector<Pixel> table = settings.WholeTable();
        Pixel entries[256];
        std::copy(table.begin(), table.end(), entries);
        at.Apply(PointOperation<Pixel>::LookUp(entries));
    } else {
        const HistogramShape shape = ShapeOfHistogram(settings.lower(), settings.upper(), settings.bins());
        const std::span<const Pixel> entries =
            settings.table() ? std::span<const Pixel>(*settings.table()) : std::span<const Pixel>();
        at.Apply(TableLookUp<Pixel>(settings.lower(), settings.upper(), shape, entries, at.pixels()));
    }
}

// ------------------------------------------------------------------------------------------------------- with a source

// Contiguous source columns are read in place, others are gathered through the table into a short buffer. Pixels beyond
// the source's margin stay unchanged.
template <class Pixel, class From, class Operation>
void CombineRun(const Operation& operation, PixelView<const From> from, int32_t adjacent, Pixel* row, Run run,
                int32_t y) {
    int64_t x = run.start;
    const int64_t stop = std::min(int64_t{run.stop} + 1, int64_t{from.width()} + kTableMargin);
    if (const int64_t direct = std::min<int64_t>(stop, adjacent); x < direct) {
        operation(row + x, from.row(y) + x, static_cast<size_t>(direct - x));
        x = direct;
    }
    From buffer[256];
    while (x < stop) {
        const int64_t n = std::min<int64_t>(stop - x, 256);
        for (int64_t i = 0; i < n; ++i) buffer[i] = from.at(static_cast<int32_t>(x + i), y);
        operation(row + x, buffer, static_cast<size_t>(n));
        x += n;
    }
}

// The end of the block of rows from y on that follow each other in memory, in the destination and in the source; y when
// there is none that can be one run: the source is smaller, or shares some of the block's memory in another place.
template <class Pixel, class From>
int32_t EndOfBlock(const PixelView<Pixel>& to, const PixelView<const From>& from, int32_t y) {
    if (from.width() != to.width() || from.height() < to.height()) return y;
    const int32_t end = from.EndOfBlock(y, to.EndOfBlock(y, to.height()));
    const void *const first = to.row(y), *const source = from.row(y);
    const size_t n = static_cast<size_t>(end - y) * static_cast<size_t>(to.width());
    const bool apart = std::less_equal<>()(static_cast<const void*>(to.row(y) + n), source) ||
                       std::less_equal<>()(static_cast<const void*>(from.row(y) + n), first);
    return apart || (first == source && sizeof(Pixel) == sizeof(From)) ? end : y;
}

// Calls operation(to, from, n) on the pixels of the selection and the source pixels at the same places.
template <class Pixel, class From, class Operation>
void CombineWith(const Selection<Pixel>& at, const SourceViews<From>& sources, const Operation& operation) {
    const RegionRows& rows = at.rows();
    for (int32_t band = 0; band < at.bands(); ++band) {
        const PixelView<Pixel> to = at.view(band);
        const PixelView<const From>& from = sources[static_cast<size_t>(band)];
        const int32_t adjacent = from.AdjacentColumns();
        const auto bottom =
            static_cast<int32_t>(std::min<int64_t>(rows.bottom(), int64_t{from.height()} + kTableMargin - 1));
        const bool whole = rows.whole() && adjacent >= to.width();
        for (int32_t y = rows.top(); y <= bottom; ++y) {
            if (const int32_t end = whole ? EndOfBlock(to, from, y) : y; end > y) {
                operation(to.row(y), from.row(y), static_cast<size_t>(end - y) * static_cast<size_t>(to.width()));
                y = end - 1;
                continue;
            }
            for (const Run run : rows.row(y)) {
                if (y < bottom) {
                    FetchStart(to.row(y + 1), run);
                    if (run.start < adjacent) FetchStart(from.row(y + 1), run);
                }
                CombineRun(operation, from, adjacent, to.row(y), run, y);
            }
        }
    }
}

template <class Pixel, class From>
void Cast(const Selection<Pixel>& at, const SourceViews<From>& sources) {
    CombineWith(at, sources, CastOperation<Pixel, From>());
}
template <class Pixel, class From>
void Add(const Selection<Pixel>& at, const SourceViews<From>& sources) {
    CombineWith(at, sources, PlusOperation<Pixel, From>());
}

}  // namespace orlix
