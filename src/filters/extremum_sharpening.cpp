#include "filters/extremum_sharpening.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>
#include <vector>

#include "filters/extremum_sharpening_kernels.hpp"
#include "filters/extremum_sharpening_nearer.hpp"
#include "filters/filtering.hpp"
#include "image/image_layout.hpp"
#include "image/pixel_buffer.hpp"

namespace orlix {
namespace {

// For a square without pixels.
template <class T>
void ChooseLimit(const T* const* rows, T* to, size_t n, const FilterParameters<T>& limits) {
    for (size_t i = 0; i < n; ++i) to[i] = NearerExtreme(rows[0][i], limits.upper, limits.lower);
}

// The identities of min and max: every pixel replaces them.
template <class T>
constexpr T kFirst = std::numeric_limits<T>::has_infinity ? -std::numeric_limits<T>::infinity()
                                                          : std::numeric_limits<T>::lowest();
template <class T>
constexpr T kLast = std::numeric_limits<T>::has_infinity ? std::numeric_limits<T>::infinity()
                                                         : std::numeric_limits<T>::max();

template <class T>
FilterParameters<T> WithoutNan(FilterParameters<T> limits) {
    if constexpr (std::is_same_v<T, float>) {
        if (std::isnan(limits.lower)) limits.lower = kFirst<T>;
        if (std::isnan(limits.upper)) limits.upper = kLast<T>;
    }
    return limits;
}

struct Range {
    int64_t first, last;
    int64_t count() const { return last - first + 1; }
};

// Rows and columns of the results: the bounding box of the runs, reduced to the pixels whose squares are readable.
template <class T>
void FindResults(PixelView<const T> from, const RegionRows& region, int64_t h, Range& rows, Range& columns) {
    rows = {std::max<int64_t>(region.top(), h - kTableMargin),
            std::min<int64_t>(region.bottom(), int64_t{from.height()} + kTableMargin - 1 - h)};
    columns = {std::numeric_limits<int32_t>::max(), -1};
    for (int64_t y = rows.first; y <= rows.last; ++y)
        for (const Run run : region.row(static_cast<int32_t>(y))) {
            columns.first = std::min<int64_t>(columns.first, run.start);
            columns.last = std::max<int64_t>(columns.last, run.stop);
        }
    columns.first = std::max(columns.first, h - kTableMargin);
    columns.last = std::min(columns.last, int64_t{from.width()} + kTableMargin - 1 - h);
}

// One call of ExtremumSharpening. Works in strips of columns, each from top to bottom, so that the blocks of rows
// behind the running extremes stay in the L2 cache as long as h permits.
template <class T>
class Sharpener {
public:
    Sharpener(PixelView<const T> from, PixelView<T> to, const RegionRows& region, int64_t h,
              const FilterParameters<T>& limits, const Range& rows, const Range& columns, PixelBuffer& scratch)
        : kernels_(Choose(kExtremum<T>)),
          from_(from),
          to_(to),
          region_(region),
          h_(h),
          side_(2 * h + 1),
          limits_(limits),
          rows_(rows),
          columns_(columns),
          adjacent_(from.AdjacentColumns()),
          slots_(std::min(side_, rows.count())),
          scratch_(scratch) {
        margins_.reserve(2 * kTableMargin);
        // Neighbouring strips share 2h columns, so strips are at least 4h wide where the image allows.
        const auto size = static_cast<int64_t>(sizeof(T));
        const int64_t fitting = std::min(kSlotBytes / (2 * slots_ * size), kRowBytes / size) - 2 * h_;
        width_ = std::min(columns.count(), std::max({fitting, 4 * h_, int64_t{512}}));
        // An odd number of cache lines: rows do not compete for the same cache sets.
        stride_ = ((width_ + 2 * h_) * size / 128 * 128 + 320) / size;
        const int64_t samples = (2 * slots_ + 9) * stride_;
        if (static_cast<uint64_t>(samples) > std::numeric_limits<size_t>::max() / sizeof(T)) throw std::bad_alloc();
        scratch_.Resize(static_cast<size_t>(samples) * sizeof(T));
        running_ = Row(slots_);
        joined_ = Row(slots_ + 1);
        widened_ = Row(slots_ + 2);
        nothing_ = Row(slots_ + 3);
        std::fill_n(nothing_.low, stride_, kLast<T>);
        std::fill_n(nothing_.high, stride_, kFirst<T>);
        gathered_ = Row(slots_ + 4).low;
    }

    void operator()() {
        for (int64_t x = columns_.first; x <= columns_.last; x += width_)
            Strip({x, std::min(x + width_ - 1, columns_.last)});
    }

private:
    // Columns first..first + count - 1 of a row repeat columns origin, origin + step, ...
    struct Margin {
        int64_t first, origin, count, step;

        bool Append(int64_t to, int64_t from) {
            const int64_t last = origin + step * (count - 1);
            if (to != first + count || (from != last - 1 && from != last + 1)) return false;
            if (count > 1 && from - last != step) return false;
            step = from - last;
            ++count;
            return true;
        }
        void Fill(T* row) const {
            const T* const from = row + origin;
            T* const to = row + first;
            if (step < 0)
                std::reverse_copy(from - count + 1, from + 1, to);
            else
                std::copy_n(from, count, to);
        }
    };

    static constexpr int64_t kSlotBytes = 1 << 18;
    static constexpr int64_t kRowBytes = 2048 + 512;

    ExtremaRow<T> Row(int64_t i) const {
        T* const low = reinterpret_cast<T*>(scratch_.data()) + 2 * i * stride_;
        return {low, low + stride_};
    }

    // Calls work(i, count) for columns i..i + count - 1 of n, one short piece at a time, and prefetches the same piece
    // of the row needed next. `next` may be null.
    template <class Work>
    static void Ahead(const T* next, size_t n, const Work& work) {
        constexpr size_t kPiece = 1024 / sizeof(T), kLine = 64 / sizeof(T);
        for (size_t i = 0; i < n; i += kPiece) {
            const size_t count = std::min(kPiece, n - i);
            if (next)
                for (size_t k = 0; k < count; k += kLine) __builtin_prefetch(next + i + k);
            work(i, count);
        }
    }

    // Columns first..last of row y where they are contiguous in memory, else null. The row may be beyond the table.
    const T* InPlace(int64_t y, const Range& columns) const {
        if (columns.first < 0 || columns.last >= adjacent_ || y >= int64_t{from_.height()} + kTableMargin)
            return nullptr;
        return from_.row(static_cast<int32_t>(y)) + columns.first;
    }

    // The same columns, gathered through the table where they are not contiguous. The row is in the table.
    const T* Pixels(int64_t y, const Range& columns) const {
        if (const T* const pixels = InPlace(y, columns)) return pixels;
        const auto row = static_cast<int32_t>(y);
        T* to = gathered_;
        for (int64_t x = columns.first; x <= columns.last;) {
            if (x >= 0 && x < adjacent_) {
                const int64_t n = std::min(columns.last + 1, adjacent_) - x;
                to = std::copy_n(from_.row(row) + x, n, to);
                x += n;
            } else {
                *to++ = from_.at(static_cast<int32_t>(x++), row);
            }
        }
        return gathered_;
    }

    void Strip(const Range& strip) {
        const Range read = {strip.first - h_, strip.last + h_};
        const Range core = FindMargins(read);
        const auto n = static_cast<size_t>(core.count());
        // The core begins on a cache line.
        const size_t offset = static_cast<size_t>(core.first - read.first);
        joined_ = Row(slots_ + 1) + (-offset * sizeof(T)) % 64 / sizeof(T);
        ExtremaRow<const T> prefix = nothing_;
        for (int64_t y = rows_.first; y <= rows_.last; ++y) {
            // The square covers the last side_ - phase rows of a block and the first `phase` rows of the next.
            const int64_t phase = (y - rows_.first) % side_;
            const Range span = Span(y, strip);
            if (phase == 0) {
                FindSuffixes(y, core, joined_ + offset);
                prefix = nothing_;
            } else if (span.count() > 0) {
                const T* const pixels = Pixels(y + h_, core);
                Ahead(InPlace(y + h_ + 1, core), n, [&](size_t i, size_t count) {
                    kernels_.extendAndJoin(pixels + i, prefix + i, running_ + i, Row(phase) + i, joined_ + offset + i,
                                           count);
                });
                prefix = running_;
            } else {
                kernels_.extend(Pixels(y + h_, core), prefix, running_, n);
                prefix = running_;
            }
            if (span.count() <= 0) continue;
            for (const Margin& margin : margins_) {
                margin.Fill(joined_.low);
                margin.Fill(joined_.high);
            }
            SharpenRow(y, strip, span);
        }
    }

    // Slot j receives the extremes of rows y - h + j .. y + h, and `whole` those of all side_ rows.
    void FindSuffixes(int64_t y, const Range& columns, ExtremaRow<T> whole) {
        const int64_t slots = std::min(side_, rows_.last - y + 1);
        ExtremaRow<const T> last = nothing_;
        for (int64_t j = side_ - 1; j >= 0; --j) {
            const ExtremaRow<T> to = j == 0 ? whole : Row(std::min(j, slots - 1));
            const T* const pixels = Pixels(y - h_ + j, columns);
            Ahead(j > 0 ? InPlace(y - h_ + j - 1, columns) : nullptr, static_cast<size_t>(columns.count()),
                  [&](size_t i, size_t count) { kernels_.extend(pixels + i, last + i, to + i, count); });
            last = to;
        }
    }

    // Mirrored columns are not read: their extremes are those of the columns they mirror. Returns the columns to read;
    // all of them where the table is not a simple mirror.
    Range FindMargins(const Range& columns) {
        margins_.clear();
        const Range core = {std::max<int64_t>(columns.first, 0), std::min(columns.last, adjacent_ - 1)};
        const VPAEntry* const table = from_.table();
        for (int64_t x = columns.first; x <= columns.last; ++x) {
            if (x == core.first && core.count() > 0) x = core.last + 1;
            if (x > columns.last) break;
            const int64_t origin = int64_t{table[x].XEntry} - table[0].XEntry;
            const int64_t to = x - columns.first, from = origin - columns.first;
            if (!margins_.empty() && origin >= core.first && origin <= core.last && margins_.back().Append(to, from))
                continue;
            if (origin < core.first || origin > core.last || margins_.size() == margins_.capacity()) {
                margins_.clear();
                return columns;
            }
            margins_.push_back({to, from, 1, 0});
        }
        return core;
    }

    // From the region's first column to its last in row y, within the strip.
    Range Span(int64_t y, const Range& strip) const {
        Range span = {strip.last + 1, strip.first - 1};
        for (const Run run : region_.row(static_cast<int32_t>(y))) {
            if (run.stop < strip.first || run.start > strip.last) continue;
            span.first = std::max(strip.first, std::min<int64_t>(span.first, run.start));
            span.last = std::min<int64_t>(strip.last, run.stop);
        }
        return span;
    }

    // joined_ holds the extremes of each column over the square's rows, from column strip.first - h on.
    void SharpenRow(int64_t y, const Range& strip, const Range& span) {
        ExtremaRow<const T> window = joined_ + static_cast<size_t>(span.first - strip.first);
        ExtremaRow<T> to = widened_, other = joined_;
        int64_t width = 1;
        int64_t n = span.count() + side_ - 1;
        while (2 * width < side_) {
            const int64_t wider = std::min(4 * width, h_ + 1), last = wider - width;
            n -= last;
            const size_t steps[3] = {static_cast<size_t>(std::min(width, last)),
                                     static_cast<size_t>(std::min(2 * width, last)), static_cast<size_t>(last)};
            kernels_.widen(window, to, steps, static_cast<size_t>(n));
            window = to;
            std::swap(to, other);
            width = wider;
        }
        const T* const pixels = Pixels(y, span);
        T* const row = to_.row(static_cast<int32_t>(y));
        for (const Run run : region_.row(static_cast<int32_t>(y))) {
            const int64_t start = std::max<int64_t>(run.start, span.first);
            const int64_t stop = std::min<int64_t>(run.stop, span.last);
            if (start > stop) continue;
            const auto i = static_cast<size_t>(start - span.first);
            Ahead(y < rows_.last ? to_.row(static_cast<int32_t>(y + 1)) + start : nullptr,
                  static_cast<size_t>(stop - start + 1), [&](size_t k, size_t count) {
                      kernels_.sharpen(pixels + i + k, window + i + k, static_cast<size_t>(side_ - width),
                                       row + start + k, count, limits_);
                  });
        }
    }

    ExtremumKernels<T> kernels_;
    PixelView<const T> from_;
    PixelView<T> to_;
    const RegionRows& region_;
    int64_t h_;
    int64_t side_;
    FilterParameters<T> limits_;
    Range rows_;
    Range columns_;
    int64_t adjacent_;
    int64_t slots_;   // rows of extremes kept for a block
    int64_t width_;   // of a strip
    int64_t stride_;  // of a row in the scratch memory
    PixelBuffer& scratch_;
    ExtremaRow<T> running_, joined_, widened_, nothing_;
    T* gathered_;
    std::vector<Margin> margins_;
};

}  // namespace

template <class T>
ExtremumSharpening<T>::ExtremumSharpening(int32_t halfSize, const FilterParameters<T>& limits)
    : halfSize_(halfSize), limits_(WithoutNan(limits)) {}

template <class T>
void ExtremumSharpening<T>::operator()(PixelView<const T> from, PixelView<T> to, const RegionRows& region) const {
    if (const auto small = Small())
        (*small)(from, to, region);
    else
        AnySize(from, to, region);
}

template <class T>
std::optional<NeighbourhoodFilter<T>> ExtremumSharpening<T>::Small() const {
    if (halfSize_ < 0) return {{&ChooseLimit<T>, 0, limits_}};
    if (halfSize_ == 1) return {{Choose(kExtremumSharpening3x3<T>), 1, limits_}};
    return {};
}

template <class T>
void ExtremumSharpening<T>::AnySize(PixelView<const T> from, PixelView<T> to, const RegionRows& region) const {
    Range rows, columns;
    FindResults(from, region, halfSize_, rows, columns);
    if (rows.count() <= 0 || columns.count() <= 0) return;
    Sharpener<T>(from, to, region, halfSize_, limits_, rows, columns, scratch_)();
}

template class ExtremumSharpening<uint8_t>;
template class ExtremumSharpening<uint16_t>;
template class ExtremumSharpening<uint32_t>;
template class ExtremumSharpening<float>;

}  // namespace orlix
