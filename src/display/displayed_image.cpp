#include "display/displayed_image.hpp"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <type_traits>
#include <utility>
#include <vector>

#include "display/display_levels.hpp"
#include "display/raster_kernels.hpp"
#include "points/point_operations.hpp"
#include "process/frame.hpp"
#include "process/look_ahead.hpp"
#include "process/measurements.hpp"

namespace orlix {

namespace {

// A part of the picture: columns x to end - 1 of the rows y to bottom - 1.
struct Part {
    int32_t x, end, y, bottom;
    size_t width() const { return static_cast<size_t>(end - x); }
};

// Prefetches a row that will be mapped next. The rows of a part lie apart, and hardware prefetchers detect each of them
// anew; the second cache is near enough, and takes more requests at a time than the first.
template <class Pixel>
void Fetch(const PixelView<Pixel>& view, int32_t y, const Part& part) {
    if (y >= part.bottom) return;
    const auto* const bytes = reinterpret_cast<const char*>(view.row(y) + part.x);
    for (size_t i = 0; i < part.width() * sizeof(Pixel); i += kCacheLine) __builtin_prefetch(bytes + i, 0, 2);
}

// The levels of a band, with rows padded with zeros.
template <class Pixel>
void ComputeLevels(const PixelView<Pixel>& view, const LevelMapping<Pixel>& levelsOf, const Part& part,
                   const DisplayBitmap& bitmap) {
    const bool last = part.end == bitmap.width;
    for (int32_t y = part.y; y < part.bottom; ++y) {
        uint8_t* const row = bitmap.row(y);
        Fetch(view, y + 1, part);
        levelsOf(view.row(y) + part.x, part.width(), row + part.x);
        if (last) std::fill(row + part.end, row + bitmap.rowStride, uint8_t{0});
    }
}

// The levels of three bands as red, green and blue, each looked up in its component of the colour table.
template <class Pixel>
class ColorLevels {
public:
    ColorLevels(const LevelMapping<Pixel>& levelsOf, const ColorTable& colors)
        : levelsOf_(levelsOf), tables_{TableOf(colors, 0), TableOf(colors, 1), TableOf(colors, 2)} {
        for (size_t i = 0; i < colors.size(); ++i)
            grey_ = grey_ && colors[i].red == i && colors[i].green == i && colors[i].blue == i;
    }

    void operator()(Frame<Pixel>& frame, const Part& part, const DisplayBitmap& bitmap) const {
        const size_t width = part.width();
        const ExpandPlanesFn join = Choose(kExpandPlanes);
        const PixelView<Pixel> bands[] = {frame.view(0), frame.view(1), frame.view(2)};
        std::vector<uint8_t> levels(3 * width);
        const uint8_t* planes[3];
        for (int32_t y = part.y; y < part.bottom; ++y) {
            for (size_t channel = 0; channel < 3; ++channel) {
                Fetch(bands[channel], y + 1, part);
                planes[channel] = Plane(bands[channel].row(y) + part.x, width, channel, levels.data());
            }
            join(reinterpret_cast<uint32_t*>(bitmap.row(y)) + part.x, planes[0], planes[1], planes[2], width);
        }
    }

private:
    // channel: 0 red, 1 green, 2 blue.
    static PointOperation<uint8_t> TableOf(const ColorTable& colors, size_t channel) {
        uint8_t table[256];
        std::transform(colors.begin(), colors.end(), table, [&](const PaletteEntry& color) {
            return channel == 0 ? color.red : channel == 1 ? color.green : color.blue;
        });
        return PointOperation<uint8_t>::LookUp(table);
    }
    // In the memory for three planes, or the pixels themselves where each is its own level and colour.
    const uint8_t* Plane(const Pixel* pixels, size_t width, size_t channel, uint8_t* memory) const {
        if constexpr (std::is_same_v<Pixel, uint8_t>)
            if (grey_ && levelsOf_.copies()) return pixels;
        uint8_t* const plane = memory + channel * width;
        levelsOf_(pixels, width, plane);
        if (!grey_) tables_[channel](plane, width);
        return plane;
    }

    const LevelMapping<Pixel>& levelsOf_;
    PointOperation<uint8_t> tables_[3];
    bool grey_ = true;  // each entry of the colour table is the grey of its number
};

template <class Pixel>
LevelMapping<Pixel> LevelsOf(const DisplayState& state) {
    return {static_cast<Pixel>(state.lower), static_cast<Pixel>(state.upper)};
}

// Adds the pixels inside the range to the counts of their levels.
template <class Pixel>
void CountLevels(const Selection<Pixel>& at, const DisplayState& state, uint64_t (&counts)[256]) {
    constexpr size_t kPart = 512;  // the levels stay in the L1 cache
    const auto levelsOf = LevelsOf<Pixel>(state);
    const auto least = static_cast<Pixel>(std::min(state.lower, state.upper));
    const auto most = static_cast<Pixel>(std::max(state.lower, state.upper));
    uint64_t found[2][256] = {};  // outside, inside
    at.Apply([&](const Pixel* pixels, size_t n) {
        uint8_t levels[kPart];
        for (size_t done = 0; done < n; done += kPart) {
            const size_t part = std::min(n - done, kPart);
            levelsOf(pixels + done, part, levels);
            for (size_t i = 0; i < part; ++i) {
                const Pixel p = pixels[done + i];
                ++found[p >= least && p <= most][levels[i]];
            }
        }
    });
    std::copy(std::begin(found[1]), std::end(found[1]), counts);
}

}  // namespace

std::unique_ptr<DisplayedImage> DisplayedImage::Make(LONG dataType, Changes& changes) {
    std::unique_ptr<TypedImage> typed = TypedImage::Make(dataType, changes);
    return std::unique_ptr<DisplayedImage>(typed ? new DisplayedImage(std::move(typed)) : nullptr);
}

DisplayedImage::DisplayedImage(std::unique_ptr<TypedImage> typed) : typed_(std::move(typed)) {
    WithFrame(*typed_, [&]<class Pixel>(Frame<Pixel>&) {
        // Float images are mostly converted from bytes and keep their grey levels.
        if constexpr (kIsFloat<Pixel>) return;
        state_.lower = static_cast<double>(kTypeMinimum<Pixel>);
        state_.upper = static_cast<double>(kTypeMaximum<Pixel>);
    });
    PutDisplayDirty(true);
}

void DisplayedImage::ContentReplaced() {
    typed_->ContentReplaced();
    state_.band = typed_->bandToProcess();
    PutDisplayDirty(true);
}

const DisplayBitmap& DisplayedImage::Bitmap() {
    if (current_ && !DisplayDirty()) return bitmap_;
    if (store().empty() || store().refused()) {
        bitmap_ = DisplayBitmap();
    } else {
        const ImageLayout& layout = store().layout();
        const auto width = static_cast<size_t>(layout.width);
        const auto height = static_cast<size_t>(layout.height);
        // At most 4/3 of the size of the image itself, as a colour display needs at least three bands: the product
        // below does not overflow.
        const size_t rowStride = ShowsColor() ? 4 * width : (width + 3) / 4 * 4;
        current_ = false;
        bitmap_.pixels.Resize(height * rowStride);
        bitmap_.width = layout.width;
        bitmap_.height = layout.height;
        bitmap_.bitsPerPixel = ShowsColor() ? 32 : 8;
        bitmap_.rowStride = rowStride;
        stale_.Reset(layout.width, layout.height);
    }
    PutDisplayDirty(false);
    current_ = true;
    return bitmap_;
}

void DisplayedImage::Show(const Rectangle& part) {
    if (Bitmap().bitsPerPixel == 0 || part.empty()) return;
    WithFrame(*typed_, [&]<class Pixel>(Frame<Pixel>& frame) {
        const auto levelsOf = LevelsOf<Pixel>(state_);
        if (!ShowsColor()) {
            const PixelView<Pixel> view = frame.view(ShownBand());
            return stale_.Take(part, [&](auto... edges) { ComputeLevels(view, levelsOf, {edges...}, bitmap_); });
        }
        const ColorLevels<Pixel> colorsOf(levelsOf, state_.colors);
        stale_.Take(part, [&](auto... edges) { colorsOf(frame, {edges...}, bitmap_); });
    });
}

std::optional<ShownPixel> DisplayedImage::Shown(int32_t x, int32_t y) {
    const DisplayBitmap& bitmap = Bitmap();
    if (bitmap.bitsPerPixel == 0) return std::nullopt;
    Show({x, y, 1, 1});
    const double value =
        WithFrame(*typed_, [&](auto& frame) { return static_cast<double>(frame.view(ShownBand()).row(y)[x]); });
    const uint8_t* const row = bitmap.row(y);
    if (bitmap.bitsPerPixel == 8) return ShownPixel{value, GetColor(row[x])};
    const uint8_t* const pixel = row + 4 * static_cast<ptrdiff_t>(x);
    return ShownPixel{value, static_cast<OLE_COLOR>(pixel[0] << 16 | pixel[1] << 8 | pixel[2])};
}

bool DisplayedImage::ShowsColor() { return state_.band == BI_AllBands && store().layout().bands >= 3; }

void DisplayedImage::PutDisplayState(const DisplayState& state) {
    state_ = state;
    PutDisplayRange(state.lower, state.upper);
}

void DisplayedImage::PutBandToDisplay(LONG band) {
    if (band != BI_AllBands && (band < 0 || band >= store().layout().bands))
        throw Failure("IDisplayProcess::put_BandToDisplay: invalid band to process");
    state_.band = band;
    ++store().changes().kept;
    PutDisplayDirty(true);
}

void DisplayedImage::PutDisplayDirty(bool dirty) {
    current_ = false;
    Changes& changes = store().changes();
    shown_ = changes;
    if (dirty) ++changes.display;
}

OLE_COLOR DisplayedImage::GetColor(LONG entry) const {
    if (entry < 0 || entry > 255) throw Failure("IDisplayProcess: color table entry is out of range.");
    const PaletteEntry& color = state_.colors[static_cast<size_t>(entry)];
    return static_cast<OLE_COLOR>(color.blue << 16 | color.green << 8 | color.red);
}

void DisplayedImage::PutColor(LONG entry, OLE_COLOR color) {
    if (entry < 0 || entry > 255) throw Failure("IDisplayProcess: color table entry is out of range.");
    state_.colors[static_cast<size_t>(entry)] = {static_cast<uint8_t>(color >> 16), static_cast<uint8_t>(color >> 8),
                                                 static_cast<uint8_t>(color), 0};
    ++store().changes().kept;
    if (bitmap_.bitsPerPixel == 32) current_ = false;
}

void DisplayedImage::PutDisplayRange(double lower, double upper) {
    WithFrame(*typed_, [&]<class Pixel>(Frame<Pixel>&) {
        state_.lower = static_cast<double>(TruncateToPixel<Pixel>(lower));
        state_.upper = static_cast<double>(TruncateToPixel<Pixel>(upper));
    });
    ++store().changes().kept;
    PutDisplayDirty(true);
}

HRESULT DisplayedImage::SnapDisplayRange(double trimLeft, double trimRight, bool roundOut) {
    constexpr LONG kBins = 1024;
    const auto range = WithFrame(
        *typed_, [&](auto& frame) { return TrimmedRange(frame.Select(bandToDisplay()), trimLeft, trimRight, kBins); });
    if (!range) return S_FALSE;
    PutDisplayRange(range->lower, range->upper);
    if (!roundOut) return S_OK;
    if (state_.lower >= 0 && state_.upper <= 1) {
        PutDisplayRange(0, 1);
        return S_OK;
    }
    const double steps[] = {255.0, 1023.0, 4095.0, 65535.0};
    const auto most = std::find_if(std::begin(steps), std::end(steps), [&](double v) { return state_.upper <= v; });
    if (most != std::end(steps)) PutDisplayRange(0, *most);
    return S_OK;
}

void DisplayedImage::EqualizeColorTable() {
    uint64_t counts[256] = {};
    WithFrame(*typed_, [&](auto& frame) {
        const auto at = frame.Select(bandToDisplay());  // before the range is read: clients may set it
        CountLevels(at, state_, counts);
    });
    const uint64_t total = std::accumulate(std::begin(counts), std::end(counts), uint64_t{0});
    if (total < 1) throw Failure("IDisplayProcess::EqualizeColorTable: empty histogram");
    uint64_t sum = 0;
    for (LONG i = 0; i < 256; ++i) {
        sum += counts[i];
        PutColor(i, static_cast<OLE_COLOR>((510 * sum + total) / (2 * total) * 0x010101));
    }
}

}  // namespace orlix
