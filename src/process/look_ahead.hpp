// Prefetching of pixels before an operation reaches them. Prefetches change no result and cannot fail.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

#include "geometry/region_rows.hpp"
#include "image/pixel_view.hpp"

namespace orlix {

constexpr int64_t kCacheLine = 64;  // bytes

// Prefetches the beginning of a run in the given row, which the next row's run often resembles: hardware prefetchers
// detect a run only after its first cache lines.
template <class Pixel>
void FetchStart(const Pixel* row, const Run& run) {
    const auto* const first = reinterpret_cast<const char*>(row + run.start);
    const int64_t bytes = std::min<int64_t>(int64_t{run.length()} * sizeof(Pixel), 8 * kCacheLine);
    for (int64_t i = 0; i < bytes; i += kCacheLine) __builtin_prefetch(first + i);
}

// Walks the runs of a region some distance ahead of an operation that visits them in order, and prefetches their
// pixels. For images beyond the caches, hardware that loses track at the end of every run costs up to half of the
// bandwidth, and even whole rows gain by a third. For images that fit the cache, prefetching costs more than it gains,
// and the walk does nothing; nor does it pay for operations on two images.
template <class Pixel>
class LookAhead {
public:
    // Operations should split runs at columns that are a multiple of this: short enough to stay close behind.
    static constexpr int32_t kPart = static_cast<int32_t>(2048 / sizeof(Pixel));

    LookAhead(const RegionRows& rows, const PixelView<Pixel>& view, size_t bytes)
        : rows_(rows), view_(view), y_(rows.top()), active_(bytes > kCached) {}

    bool active() const { return active_; }

    // To be called before n more pixels are visited.
    void Advance(int64_t n) {
        for (n += std::exchange(distance_, 0); n > 0;) {
            if (next_ == runs_.size()) {
                if (y_ > rows_.bottom()) return;
                runs_ = rows_.row(y_++, buffer_);
                next_ = 0;
                continue;
            }
            const Run run = runs_[next_];
            const int64_t part = std::min(n, run.length() - done_);
            const auto* const first = reinterpret_cast<const char*>(view_.row(y_ - 1) + run.start + done_);
            for (int64_t i = 0; i < part * static_cast<int64_t>(sizeof(Pixel)); i += kCacheLine)
                __builtin_prefetch(first + i);
            n -= part;
            done_ += part;
            if (done_ == run.length()) {
                ++next_;
                done_ = 0;
            }
        }
    }

private:
    static constexpr size_t kCached = size_t{24} << 20;  // bytes; L3 caches of today's processors hold 32 MiB

    const RegionRows& rows_;
    PixelView<Pixel> view_;
    RegionRows::RowBuffer buffer_ = {};
    std::span<const Run> runs_;  // of row y_ - 1; the first done_ pixels of run next_ have been prefetched
    size_t next_ = 0;
    int64_t done_ = 0;
    int64_t distance_ =
        static_cast<int64_t>(8192 / sizeof(Pixel));  // the lead in pixels, gained by the first Advance()
    int32_t y_;
    bool active_;
};

}  // namespace orlix
