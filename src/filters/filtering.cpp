#include "filters/filtering.hpp"

#include <algorithm>
#include <cstring>
#include <limits>

#include "component/failure.hpp"
#include "image/image_layout.hpp"

namespace orlix {
namespace {

// Columns per kernel call, so that the rows stay in the L1 cache. Prefetching much more than a kilobyte ahead stalls
// the kernel.
constexpr int64_t kDirect = 1024;

// Larger bands than this leave the L2 cache before the next row needs their samples again.
constexpr int64_t kCachedBytes = 1 << 20;

template <class T>
void Prefetch(const T* row, int64_t n) {
    for (int64_t i = 0; i < n; i += 64 / static_cast<int64_t>(sizeof(T))) __builtin_prefetch(row + i);
}

// Pixels whose samples are not contiguous, gathered through the table. Images have one or two of them at each end of a
// row, and a kernel call costs as much as dozens of pixels, so the pixels of many rows are collected and filtered in
// one call.
template <class T>
class GatheredPixels {
public:
    GatheredPixels(FilterFn<T> kernel, int32_t radius, const FilterParameters<T>& parameters)
        : kernel_(kernel), radius_(radius), parameters_(parameters) {}

    // Columns x..stop - 1 of row y. They are written to `to` by the next Filter() at the latest.
    void Add(PixelView<const T> from, int64_t x, int64_t stop, int32_t y, T* to) {
        while (x < stop) {
            const int64_t room = kSamples - used_ - 2 * radius_;
            if (room < std::min<int64_t>(stop - x, kShortest)) {
                Filter();
                continue;
            }
            const int64_t n = std::min(stop - x, room);
            const VPAEntry* const columns = from.table() + (x - radius_);
            for (int32_t k = 0; k <= 2 * radius_; ++k) {
                const T* const row = from.base() + from.table()[y + k - radius_].YEntry;
                for (int64_t i = 0; i < n + 2 * radius_; ++i) samples_[k][used_ + i] = row[columns[i].XEntry];
            }
            pieces_[count_++] = {to, used_, n};
            used_ += n + 2 * radius_;
            to += n;
            x += n;
        }
    }

    void Filter() {
        if (count_ == 0) return;
        const T* at[2 * kMostRadius + 1];
        for (int32_t k = 0; k <= 2 * radius_; ++k) at[k] = samples_[k] + radius_;
        kernel_(at, results_, static_cast<size_t>(used_ - 2 * radius_), parameters_);
        for (size_t i = 0; i < count_; ++i) std::copy_n(results_ + pieces_[i].first, pieces_[i].length, pieces_[i].to);
        count_ = 0;
        used_ = 0;
    }

private:
    static constexpr int32_t kMostRadius = NeighbourhoodFilter<T>::kMostRadius;
    static constexpr int64_t kSamples = 256;  // the five rows stay in the L1 cache
    static constexpr int64_t kShortest = 32;  // a smaller rest of the buffer is not worth splitting a piece for

    struct Piece {
        T* to;
        int64_t first, length;  // in the results
    };

    FilterFn<T> kernel_;
    int32_t radius_;
    FilterParameters<T> parameters_;
    T samples_[2 * kMostRadius + 1][kSamples];
    T results_[kSamples];
    Piece pieces_[kSamples];
    size_t count_ = 0;
    int64_t used_ = 0;
};

}  // namespace

// Row y of a source band and a destination band.
template <class T>
struct NeighbourhoodFilter<T>::Rows {
    PixelView<const T> from;
    int32_t y;
    T* to;
    const T* nextFrom;  // first needed by the next row; null: no prefetch
    const T* nextTo;
};

template <class T>
void NeighbourhoodFilter<T>::operator()(PixelView<const T> from, PixelView<T> to, const RegionRows& region) const {
    (*this)(from, from.AdjacentColumns(), to, region, region.top(), region.bottom());
}

template <class T>
void NeighbourhoodFilter<T>::operator()(PixelView<const T> from, int32_t adjacent, PixelView<T> to,
                                        const RegionRows& region, int32_t first, int32_t last) const {
    const int64_t width = int64_t{from.width()} + kTableMargin - radius_;  // columns that can be filtered
    const int32_t bottom =
        static_cast<int32_t>(std::min<int64_t>(last, int64_t{from.height()} + kTableMargin - 1 - radius_));
    const bool prefetch = int64_t{to.width()} * to.height() > kCachedBytes / static_cast<int64_t>(sizeof(T));
    GatheredPixels<T> gathered(kernel_, radius_, parameters_);
    for (int32_t y = first; y <= bottom; ++y) {
        Rows rows{from, y, to.row(y), nullptr, nullptr};
        if (prefetch && y < bottom) {
            rows.nextFrom = from.row(y + 1 + radius_);
            rows.nextTo = to.row(y + 1);
        }
        for (const Run run : region.row(y)) {
            const int64_t start = run.start, stop = std::min(int64_t{run.stop} + 1, width);
            const int64_t direct = std::clamp<int64_t>(radius_, start, std::max(start, stop));
            const int64_t directStop = std::clamp<int64_t>(adjacent - radius_, direct, std::max(direct, stop));
            gathered.Add(from, start, std::min(direct, stop), y, rows.to + start);
            Direct(rows, direct, directStop);
            gathered.Add(from, directStop, stop, y, rows.to + directStop);
        }
    }
    gathered.Filter();
}

template <class T>
void NeighbourhoodFilter<T>::Direct(const Rows& rows, int64_t x, int64_t stop) const {
    const T* at[2 * kMostRadius + 1];
    for (int32_t k = 0; k <= 2 * radius_; ++k) at[k] = rows.from.row(rows.y + k - radius_) + x;
    for (; x < stop; x += kDirect) {
        const int64_t n = std::min(stop - x, kDirect);
        if (rows.nextFrom) {
            Prefetch(rows.nextFrom + x, n);
            Prefetch(rows.nextTo + x, n);
        }
        kernel_(at, rows.to + x, static_cast<size_t>(n), parameters_);
        for (int32_t k = 0; k <= 2 * radius_; ++k) at[k] += n;
    }
}

namespace {

template <LONG VPAEntry::*axis>
bool IsMirrored(const VPAEntry* table, int32_t length) {
    for (int32_t i = 1; i <= NeighbourhoodFilter<uint8_t>::kMostRadius; ++i)
        if (table[-i].*axis != table[MirroredIndex(-i, length)].*axis ||
            table[length - 1 + i].*axis != table[MirroredIndex(length - 1 + i, length)].*axis)
            return false;
    return true;
}

// Of rows that are filtered at a time: enough to make good for the start of a call, and in the second-level cache.
constexpr int64_t kInPlaceBytes = 1 << 17;
constexpr int32_t kWidestInPlace = 1 << 27;

}  // namespace

template <class T>
bool InPlaceRows<T>::Suit(PixelView<const T> from, PixelView<T> to) {
    const VPAEntry* const table = from.table();
    if (from.base() != to.base() || table != to.table() || from.width() != to.width() || from.height() != to.height())
        return false;
    // Rows are read by 32-bit offsets: those of a ring of wide ones could be larger.
    if (from.width() > kWidestInPlace || from.AdjacentColumns() != from.width()) return false;
    for (int32_t y = 1; y < from.height(); ++y)
        if (int64_t{table[y].YEntry} - table[y - 1].YEntry < from.width()) return false;
    return IsMirrored<&VPAEntry::XEntry>(table, from.width()) && IsMirrored<&VPAEntry::YEntry>(table, from.height());
}

template <class T>
InPlaceRows<T>::InPlaceRows(PixelView<T> band, const RegionRows& region, int32_t radius) : radius_(radius) {
    int64_t left = band.width(), right = -1;
    for (int32_t y = region.top(); y <= region.bottom() && (left > 0 || right + 1 < band.width()); ++y)
        for (const Run run : region.row(y)) {
            left = std::min<int64_t>(left, run.start);
            right = std::max<int64_t>(right, run.stop);
        }
    if (left <= right) {
        first_ = std::max<int64_t>(left - radius, 0);
        count_ = std::min<int64_t>(right + radius, band.width() - 1) - first_ + 1;
    }
    // An odd number of cache lines: the rows do not compete for the same cache sets.
    constexpr int64_t kSize = sizeof(T);
    stride_ = (band.width() * kSize / 128 * 128 + 192) / kSize;
    rows_ = std::clamp<int64_t>(kInPlaceBytes / (stride_ * kSize), 4, 64);
    slots_ = std::min<int64_t>(rows_ + 2 * radius_, band.height());
    samples_ = std::make_unique_for_overwrite<T[]>(static_cast<size_t>(slots_ * stride_));
    table_.resize(static_cast<size_t>(std::max(band.width(), band.height())) + 2 * size_t{kTableMargin});
    for (int64_t x = -radius_; x < band.width() + radius_; ++x)
        table_[static_cast<size_t>(x + kTableMargin)].XEntry = static_cast<LONG>(MirroredIndex(x, band.width()));
}

template <class T>
void InPlaceRows<T>::Apply(const NeighbourhoodFilter<T>& filter, PixelView<T> band, const RegionRows& region) {
    if (count_ == 0) return;
    const int64_t height = band.height();
    VPAEntry* const table = table_.data() + kTableMargin;
    int64_t kept = std::max<int64_t>(region.top() - radius_, 0);  // the first row that is not in the ring yet
    for (int64_t y = region.top(); y <= region.bottom(); y += rows_) {
        const int64_t last = std::min<int64_t>(y + rows_ - 1, region.bottom());
        for (; kept <= std::min(last + radius_, height - 1); ++kept)
            std::memcpy(Slot(kept) + first_, band.row(static_cast<int32_t>(kept)) + first_,
                        static_cast<size_t>(count_) * sizeof(T));
        for (int64_t i = y - radius_; i <= last + radius_; ++i)
            table[i].YEntry = static_cast<LONG>(Slot(MirroredIndex(i, height)) - samples_.get());
        const PixelView<const T> rows(samples_.get(), table, band.width(), band.height());
        filter(rows, band.width(), band, region, static_cast<int32_t>(y), static_cast<int32_t>(last));
    }
}

template <class T>
SourceCopy<T>::SourceCopy(PixelView<const T> source, int32_t width, int32_t top, int32_t bottom, int32_t radius)
    : width_(source.width()), height_(source.height()) {
    struct Range {
        int64_t first, last;
        int64_t count() const { return std::max<int64_t>(last - first + 1, 0); }
        int64_t offset(int64_t i) const { return std::clamp(i, first, std::max(first, last)) - first; }
    };
    const auto readable = [&](int64_t first, int64_t last, int64_t size) {
        return Range{std::max<int64_t>(first - radius, -kTableMargin),
                     std::min<int64_t>(last + radius, size + kTableMargin - 1)};
    };
    const Range columns = readable(0, int64_t{width} - 1, width_);
    const Range rows = readable(top, bottom, height_);
    // Both factors are below 2^32.
    if (rows.count() > 0 && columns.count() > std::numeric_limits<LONG>::max() / rows.count())
        throw FailedResult(E_FAIL);
    samples_ = std::make_unique_for_overwrite<T[]>(static_cast<size_t>(columns.count() * rows.count()));

    const int64_t adjacent = source.AdjacentColumns();
    T* to = samples_.get();
    for (int64_t y = rows.first; y <= rows.last; ++y)
        for (int64_t x = columns.first; x <= columns.last;) {
            const int64_t n = x == 0 ? std::min(adjacent, columns.last + 1) : 1;
            std::memcpy(to, &source.at(static_cast<int32_t>(x), static_cast<int32_t>(y)),
                        static_cast<size_t>(n) * sizeof(T));
            to += n;
            x += n;
        }

    const int64_t length = std::max<int64_t>(width_, height_) + 2 * int64_t{kTableMargin};
    table_.reserve(static_cast<size_t>(length));
    for (int64_t i = -kTableMargin; i < length - kTableMargin; ++i)
        table_.push_back({static_cast<LONG>(columns.offset(i)), static_cast<LONG>(rows.offset(i) * columns.count())});
}

template <class T>
PixelView<const T> SourceCopy<T>::view() const {
    return {samples_.get(), table_.data() + kTableMargin, width_, height_};
}

#define ORLIX_TYPE(T)                      \
    template class NeighbourhoodFilter<T>; \
    template class InPlaceRows<T>;         \
    template class SourceCopy<T>;
ORLIX_TYPE(uint8_t)
ORLIX_TYPE(uint16_t)
ORLIX_TYPE(uint32_t)
ORLIX_TYPE(float)
#undef ORLIX_TYPE

}  // namespace orlix
