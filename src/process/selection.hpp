// The pixels and settings that an operation of the frame works on.
#pragma once

#include <orlix/orlix.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "geometry/region_rows.hpp"
#include "image/pixel_view.hpp"
#include "image/source_image.hpp"
#include "process/frame_settings.hpp"
#include "process/look_ahead.hpp"

namespace orlix {

template <class Pixel>
class Frame;

// The source bands that correspond to the bands of a selection.
template <class From>
using SourceViews = std::vector<PixelView<const From>>;

// The clients' answers so far: the rows to visit, for the image as it was when they were asked.
struct Gathered {
    int32_t width;
    int32_t height;
    BandRange bands;
    RegionRows rows;
};

// The pixels that an operation visits, and the settings that it uses. Notes:
//  (1) Regions and source images are clients' code, which may call the image back and change anything. So every client
//      is asked before a selection is made (Gathered), and none is called while one is in use. From then on the
//      library's own objects are used without their interfaces, since any method clears the thread's error information,
//      which may be a client's.
//  (2) Only the frame makes selections: it checks that the image still has the pixels that were gathered, and reads the
//      settings then. Operations are free functions of a selection, so none can work on anything read earlier.
template <class Pixel>
class Selection {
public:
    int32_t width() const { return gathered_.width; }
    int32_t height() const { return gathered_.height; }
    const RegionRows& rows() const { return gathered_.rows; }
    const FrameSettings<Pixel>& settings() const { return settings_; }

    // The number of bands to work on, which are numbered from 0.
    int32_t bands() const { return gathered_.bands.count(); }
    PixelView<Pixel> view(int32_t band) const {
        return {first_.base() + static_cast<size_t>(band) * bandSamples_, first_.table(), width(), height()};
    }
    // One past the last byte of the bands.
    const void* end() const { return view(bands()).base(); }

    int64_t pixels() const { return rows().pixels() * bands(); }

    // Calls visit(pixels, n, x, y) for n pixels from (x, y) on, band by band, top to bottom, left to right. Runs of
    // large images are split into parts.
    template <class Visit>
    void ForEachRun(const Visit& visit) const {
        for (int32_t band = 0; band < bands(); ++band) ForEachRunOf(view(band), visit);
    }
    // Calls operation(pixels, n) on all pixels. Whole rows that follow each other in memory are one run,
    // in which hardware prefetchers need no help.
    template <class Operation>
    void Apply(Operation&& operation) const {
        const auto visit = [&](Pixel* pixels, size_t n, auto...) { operation(pixels, n); };
        if (!rows().whole()) return ForEachRun(visit);
        for (int32_t band = 0; band < bands(); ++band)
            for (int32_t y = 0; y < height();) {
                const int32_t end = view(band).EndOfBlock(y, height());
                operation(view(band).row(y), static_cast<size_t>(end - y) * static_cast<size_t>(width()));
                y = end;
            }
    }

private:
    friend class Frame<Pixel>;

    size_t bandBytes() const { return bandSamples_ * sizeof(Pixel); }

    Selection(Gathered&& gathered, const FrameSettings<Pixel>& settings, PixelView<Pixel> first, size_t bandSize)
        : gathered_(std::move(gathered)), settings_(settings), first_(first), bandSamples_(bandSize / sizeof(Pixel)) {}

    template <class Visit>
    void ForEachRunOf(const PixelView<Pixel>& view, const Visit& visit) const {
        constexpr int32_t kPart = LookAhead<Pixel>::kPart;
        LookAhead ahead(rows(), view, bandBytes());
        for (int32_t y = rows().top(); y <= rows().bottom(); ++y)
            for (const Run run : rows().row(y)) {
                Pixel* const row = view.row(y);
                if (!ahead.active()) {
                    if (y < rows().bottom()) FetchStart(view.row(y + 1), run);
                    visit(row + run.start, static_cast<size_t>(run.length()), run.start, y);
                    continue;
                }
                for (int64_t x = run.start; x <= run.stop;) {
                    const int64_t n = std::min<int64_t>(run.stop - x + 1, kPart - x % kPart);
                    ahead.Advance(n);
                    visit(row + x, static_cast<size_t>(n), static_cast<int32_t>(x), y);
                    x += n;
                }
            }
    }

    Gathered gathered_;
    FrameSettings<Pixel> settings_;
    PixelView<Pixel> first_;  // of the first band to work on
    size_t bandSamples_;      // from one band to the next
};

}  // namespace orlix
