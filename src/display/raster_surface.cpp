#include "display/raster_surface.hpp"

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include "display/pick_plan.hpp"
#include "display/raster_kernels.hpp"
#include "display/smooth_axis.hpp"
#include "points/point_operations.hpp"
#include "process/look_ahead.hpp"

namespace orlix {
namespace {

using Layout = RasterPicture::Layout;

// Maps surface positions to source pixels along one axis.
class Axis {
public:
    Axis(int64_t source, int64_t sourceLength, int64_t dest, int64_t destLength)
        : source_(source),
          sourceLength_(sourceLength),
          dest_(dest),
          length_(std::abs(destLength)),
          mirrored_(destLength < 0) {}

    bool mirrored() const { return mirrored_; }
    bool straight() const { return !mirrored_ && length_ == sourceLength_; }
    int64_t length() const { return length_; }
    int64_t source() const { return source_; }
    int64_t sourceLength() const { return sourceLength_; }

    // Distance from where the destination begins. For a mirrored destination the function is its own inverse.
    int64_t Index(int64_t at) const { return mirrored_ ? dest_ - 1 - at : at - dest_; }
    int32_t Nearest(int64_t at) const {
        const uint64_t doubled = 2 * static_cast<uint64_t>(Index(at)) + 1;  // below 2^33
        const uint64_t offset = doubled * static_cast<uint64_t>(sourceLength_) / (2 * static_cast<uint64_t>(length_));
        return static_cast<int32_t>(source_ + static_cast<int64_t>(offset));
    }

private:
    int64_t source_, sourceLength_, dest_, length_;
    bool mirrored_;
};

LevelColors ColorsOf(const RasterPicture& picture) {
    LevelColors colors = {};
    if (picture.layout != Layout::Levels) return colors;
    colors.grey = true;
    for (size_t i = 0; i < 256; ++i) {
        colors.pixels[i] = picture.colors[i] & 0xffffff;
        colors.red[i] = static_cast<uint8_t>(picture.colors[i] >> 16);
        colors.green[i] = static_cast<uint8_t>(picture.colors[i] >> 8);
        colors.blue[i] = static_cast<uint8_t>(picture.colors[i]);
        colors.grey = colors.grey && colors.pixels[i] == colors.blue[i] * 0x010101u;
    }
    return colors;
}

// The picture with the kernels for its layout.
class Rows {
public:
    explicit Rows(const RasterPicture& picture)
        : picture_(picture),
          colors_(ColorsOf(picture)),
          tables_{PointOperation<uint8_t>::LookUp(colors_.red), PointOperation<uint8_t>::LookUp(colors_.green),
                  PointOperation<uint8_t>::LookUp(colors_.blue)} {
        ramp_ = colors_.grey;
        for (uint32_t i = 0; i < 256; ++i) ramp_ = ramp_ && colors_.blue[i] == i;
    }

    // 1 when all channels are equal.
    size_t channels() const { return colors_.grey ? 1 : 3; }

    // Expands columns first .. first + n - 1. next is the row that will follow, here and in ExpandPicked.
    void Expand(uint32_t* to, int32_t row, int32_t first, size_t n, int32_t next) const {
        if (picture_.layout == Layout::Pixels) {
            for (size_t i = 0; i < n; i += kCacheLine / sizeof *to) __builtin_prefetch(PixelsOf(next) + first + i);
            std::memcpy(to, PixelsOf(row) + first, n * sizeof *to);
        } else if (ramp_) {
            expandGrey_(to, RowOf(row) + first, n);
        } else {
            expandLevels_(to, RowOf(row) + first, n, colors_);
        }
    }

    // Plans columns in any monotone order, for ExpandPicked.
    PickPlan Plan(std::vector<int32_t> columns) const {
        return {std::move(columns), picture_.width,
                picture_.layout == Layout::Pixels ? pickPixels_.shapes
                : ramp_                           ? pickGrey_.shapes
                                                  : pickLevels_.shapes};
    }
    void ExpandPicked(uint32_t* to, int32_t row, const Picks& picks, int32_t next) const {
        if (picture_.layout == Layout::Pixels)
            pickPixels_.fn(to, PixelsOf(row), picks, PixelsOf(next));
        else if (ramp_)
            pickGrey_.fn(to, RowOf(row), picks, RowOf(next));
        else
            pickLevels_.fn(to, RowOf(row), picks, RowOf(next), colors_);
    }

    // One channel (0 red, 1 green, 2 blue) of ascending columns: returns a pointer into the picture, or to scratch (one
    // byte per column).
    const uint8_t* Channel(size_t channel, int32_t row, const std::vector<int32_t>& columns, uint8_t* scratch) const {
        const size_t n = columns.size();
        const bool dense = columns.back() - columns.front() == static_cast<int32_t>(n) - 1;
        if (picture_.layout == Layout::Pixels) {
            const uint32_t* const pixels = PixelsOf(row);
            const int shift = 16 - 8 * static_cast<int>(channel);
            if (dense) {  // a loop that compilers turn into vectors
                const uint32_t* const first = pixels + columns.front();
                for (size_t i = 0; i < n; ++i) scratch[i] = static_cast<uint8_t>(first[i] >> shift);
            } else {
                for (size_t i = 0; i < n; ++i) scratch[i] = static_cast<uint8_t>(pixels[columns[i]] >> shift);
            }
            return scratch;
        }
        const uint8_t* samples = RowOf(row);
        if (dense) {
            samples += columns.front();
        } else {
            for (size_t i = 0; i < n; ++i) scratch[i] = samples[columns[i]];
            samples = scratch;
        }
        if (ramp_) return samples;
        if (samples != scratch) std::memcpy(scratch, samples, n);
        tables_[channel](scratch, n);
        return scratch;
    }

    // Joins channels() channels of n bytes each.
    void Join(uint32_t* to, const uint8_t* samples, size_t n) const {
        if (channels() == 1)
            expandGrey_(to, samples, n);
        else
            expandPlanes_(to, samples, samples + n, samples + 2 * n, n);
    }

private:
    const uint8_t* RowOf(int32_t row) const { return picture_.samples + ptrdiff_t{row} * picture_.stride; }
    const uint32_t* PixelsOf(int32_t row) const { return reinterpret_cast<const uint32_t*>(RowOf(row)); }

    const RasterPicture& picture_;
    LevelColors colors_;  // of levels, likewise all members up to ramp_
    PointOperation<uint8_t> tables_[3];
    bool ramp_;  // each level is its own grey
    ExpandGreyFn expandGrey_ = Choose(kExpandGrey);
    ExpandLevelsFn expandLevels_ = Choose(kExpandLevels);
    ExpandPlanesFn expandPlanes_ = Choose(kExpandPlanes);
    Picking<PickGreyFn> pickGrey_ = Choose(kPickGrey);
    Picking<PickLevelsFn> pickLevels_ = Choose(kPickLevels);
    Picking<PickPixelsFn> pickPixels_ = Choose(kPickPixels);
};

// Channels of selected columns of rows. Keeps the last two rows, which neighbouring surface rows mostly share.
class ChannelRows {
public:
    ChannelRows(const Rows& rows, const std::vector<int32_t>& columns)
        : rows_(rows), columns_(columns), scratch_(2 * rows.channels() * columns.size()) {}

    // Valid until two other rows of the channel have been asked for.
    const uint8_t* Get(size_t channel, int32_t row) {
        Kept& kept = kept_[channel][row == kept_[channel][0].row   ? 0
                                    : row == kept_[channel][1].row ? 1
                                                                   : next_[channel]];
        const auto slot = static_cast<size_t>(&kept - kept_[channel]);
        if (kept.row != row) {
            uint8_t* const scratch = scratch_.data() + (2 * channel + slot) * columns_.size();
            kept = {row, rows_.Channel(channel, row, columns_, scratch)};
        }
        next_[channel] = 1 - slot;
        return kept.samples;
    }

private:
    struct Kept {
        int32_t row = -1;
        const uint8_t* samples = nullptr;
    };
    const Rows& rows_;
    const std::vector<int32_t>& columns_;
    std::vector<uint8_t> scratch_;
    Kept kept_[3][2];
    size_t next_[3] = {};
};

// Neighbouring destination columns with the source columns that they are computed from.
class ColumnTile {
public:
    // Covers destination pixels from index `first` on, up to `end` or until there are enough source columns: the sums
    // of that many columns stay in the L1 cache.
    ColumnTile(const SmoothAxis& axis, int64_t origin, int64_t first, int64_t end, bool mirrored)
        : interpolates_(axis.interpolates()), first_(first) {
        constexpr size_t kEnough = 8192;
        std::vector<std::vector<WeightedPixel>> pixels;
        for (end_ = first; end_ < end && (end_ == first || columns_.size() < kEnough); ++end_) {
            axis.Get(end_, pixels.emplace_back());
            size_t at = columns_.size();
            while (at > 0 && columns_[at - 1] >= origin + pixels.back().front().position) --at;
            starts_.push_back(static_cast<int32_t>(at));
            for (const WeightedPixel& pixel : pixels.back()) {
                const auto column = static_cast<int32_t>(origin + pixel.position);
                if (columns_.empty() || columns_.back() < column) columns_.push_back(column);
            }
            taps_ = std::max(taps_, pixels.back().size());
        }
        if (mirrored) {
            std::reverse(starts_.begin(), starts_.end());
            std::reverse(pixels.begin(), pixels.end());
        }
        taps_ = taps_ <= 4 ? 4 : (taps_ + 7) / 8 * 8;
        for (const std::vector<WeightedPixel>& of : pixels) {
            if (interpolates_) {
                weights_.push_back(of.size() == 2 ? of[1].weight : uint16_t{0});
                continue;
            }
            for (const WeightedPixel& pixel : of) weights_.push_back(pixel.weight);
            weights_.resize(weights_.size() + taps_ - of.size());
        }
    }

    int64_t first() const { return first_; }
    int64_t end() const { return end_; }
    size_t size() const { return starts_.size(); }
    const std::vector<int32_t>& columns() const { return columns_; }
    // The number of sums that Reduce may read: those of the columns, and some beyond.
    size_t sums() const { return columns_.size() + std::max(taps_, kBeyond); }

    // sums: of weighted rows, one per source column.
    void Reduce(uint8_t* to, const uint32_t* sums) const {
        if (interpolates_)
            interpolate_(to, sums, starts_.data(), weights_.data(), size());
        else
            average_(to, sums, starts_.data(), weights_.data(), taps_, size());
    }

private:
    bool interpolates_;
    int64_t first_, end_;
    std::vector<int32_t> columns_;
    std::vector<int32_t> starts_;    // index of the first source column of each destination column, left to right
    size_t taps_ = 0;                // source columns for each of them
    std::vector<uint16_t> weights_;  // taps_ each; when interpolating, only the weight of the second one
    InterpolateFn interpolate_ = Choose(kInterpolate);
    AverageFn average_ = Choose(kAverage);
};

}  // namespace

RasterSurface::RasterSurface(uint32_t* pixels, ptrdiff_t stride, int32_t width, int32_t height)
    : pixels_(pixels), stride_(stride), bounds_{0, 0, std::max(width, 0), std::max(height, 0)} {}

void RasterSurface::Fill(const Rectangle& rectangle, uint32_t pixel) {
    const Rectangle visible = Intersection(Normalized(rectangle), bounds_);
    for (int64_t y = visible.y; y < visible.bottom(); ++y)
        std::fill_n(PixelAt(visible.x, y), static_cast<size_t>(visible.width), pixel);
}

void RasterSurface::Draw(const RasterPicture& picture, const Rectangle& source, const Rectangle& dest,
                         Scaling scaling) {
    constexpr int64_t kLargest = int64_t{1} << 32;
    if (source.width <= 0 || source.height <= 0 ||
        source != Intersection(source, {0, 0, picture.width, picture.height}))
        return;
    if (std::abs(dest.width) > kLargest || std::abs(dest.height) > kLargest) return;
    const Rectangle visible = Intersection(Normalized(dest), bounds_);
    if (visible.empty()) return;
    const bool sameSize = std::abs(dest.width) == source.width && std::abs(dest.height) == source.height;
    if (scaling == Scaling::Nearest || sameSize)
        DrawNearest(picture, source, dest, visible);
    else
        DrawSmooth(picture, source, dest, visible);
}

void RasterSurface::DrawNearest(const RasterPicture& picture, const Rectangle& source, const Rectangle& dest,
                                const Rectangle& visible) {
    const Rows rows(picture);
    const Axis alongX(source.x, source.width, dest.x, dest.width), alongY(source.y, source.height, dest.y, dest.height);
    const auto n = static_cast<size_t>(visible.width);
    std::vector<int32_t> columns(alongX.straight() ? 0 : n);
    for (size_t i = 0; i < columns.size(); ++i) columns[i] = alongX.Nearest(visible.x + static_cast<int64_t>(i));
    const PickPlan plan = rows.Plan(std::move(columns));
    const Picks picks = plan.picks();
    const int32_t firstColumn = alongX.Nearest(visible.x);
    int32_t previous = -1;
    for (int64_t y = visible.y; y < visible.bottom(); ++y) {
        uint32_t* const to = PixelAt(visible.x, y);
        const int32_t row = alongY.Nearest(y);
        const int32_t next = alongY.Nearest(std::min(y + 1, visible.bottom() - 1));
        if (row == previous)
            std::memcpy(to, PixelAt(visible.x, y - 1), n * sizeof *to);
        else if (alongX.straight())
            rows.Expand(to, row, firstColumn, n, next);
        else
            rows.ExpandPicked(to, row, picks, next);
        previous = row;
    }
}

void RasterSurface::DrawSmooth(const RasterPicture& picture, const Rectangle& source, const Rectangle& dest,
                               const Rectangle& visible) {
    const Rows rows(picture);
    const WeighRowsFn weighRows = Choose(kWeighRows);
    const Axis alongX(source.x, source.width, dest.x, dest.width), alongY(source.y, source.height, dest.y, dest.height);
    const SmoothAxis smoothX(alongX.sourceLength(), alongX.length()), smoothY(alongY.sourceLength(), alongY.length());
    const auto [firstIndex, lastIndex] = std::minmax({alongX.Index(visible.x), alongX.Index(visible.right() - 1)});
    const size_t channels = rows.channels();
    std::vector<WeightedPixel> taps;
    std::vector<uint8_t> reduced;
    std::vector<uint32_t> sums;
    for (int64_t index = firstIndex; index <= lastIndex;) {
        const ColumnTile tile(smoothX, source.x, index, lastIndex + 1, alongX.mirrored());
        index = tile.end();
        const int64_t left = alongX.mirrored() ? dest.x - tile.end() : dest.x + tile.first();
        ChannelRows channelRows(rows, tile.columns());
        sums.assign(tile.sums(), 0);
        reduced.resize(channels * tile.size());
        for (int64_t y = visible.y; y < visible.bottom(); ++y) {
            smoothY.Get(alongY.Index(y), taps);
            const auto rowOf = [&](size_t k) { return static_cast<int32_t>(source.y + taps[k].position); };
            for (size_t channel = 0; channel < channels; ++channel) {
                std::fill_n(sums.begin(), tile.columns().size(), 0u);
                for (size_t k = 0; k < taps.size(); k += 2) {
                    const uint8_t* const a = channelRows.Get(channel, rowOf(k));
                    if (k + 1 == taps.size())
                        weighRows(sums.data(), a, taps[k].weight, a, 0, tile.columns().size());
                    else
                        weighRows(sums.data(), a, taps[k].weight, channelRows.Get(channel, rowOf(k + 1)),
                                  taps[k + 1].weight, tile.columns().size());
                }
                tile.Reduce(reduced.data() + channel * tile.size(), sums.data());
            }
            rows.Join(PixelAt(left, y), reduced.data(), tile.size());
        }
    }
}

}  // namespace orlix
