#include "display/raster_surface.hpp"

#include <algorithm>
#include <cstring>
#include <vector>

#include "display/raster_kernels.hpp"
#include "display/smooth_axis.hpp"

namespace orlix {
namespace {

using Layout = RasterPicture::Layout;

// A place on the surface to a source pixel, along one axis.
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

    // From where the destination begins; and back, which is the same for mirrored ones.
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

LevelColors Prepared(const uint32_t* colors) {
    LevelColors prepared;
    prepared.grey = true;
    for (size_t i = 0; i < 256; ++i) {
        prepared.pixels[i] = colors[i] & 0xffffff;
        prepared.red[i] = static_cast<uint8_t>(colors[i] >> 16);
        prepared.green[i] = static_cast<uint8_t>(colors[i] >> 8);
        prepared.blue[i] = static_cast<uint8_t>(colors[i]);
        prepared.grey = prepared.grey && prepared.red[i] == prepared.green[i] && prepared.red[i] == prepared.blue[i];
    }
    return prepared;
}

bool IsRamp(const LevelColors& colors) {
    for (uint32_t i = 0; i < 256; ++i)
        if (colors.pixels[i] != i * 0x010101u) return false;
    return true;
}

// The picture with the kernels that its layout asks for.
class Rows {
public:
    explicit Rows(const RasterPicture& picture) : picture_(picture) {
        if (picture.layout == Layout::Levels) {
            colors_ = Prepared(picture.colors);
            ramp_ = IsRamp(colors_);
        }
    }

    // 1 when all channels are equal.
    size_t channels() const { return picture_.layout == Layout::Levels && colors_.grey ? 1 : 3; }

    // Columns first .. first + n - 1.
    void Expand(uint32_t* to, int32_t row, int32_t first, size_t n) const {
        switch (picture_.layout) {
            case Layout::Levels:
                return ExpandLevels(to, RowOf(0, row) + first, n);
            case Layout::Planes:
                return expandPlanes_(to, RowOf(0, row) + first, RowOf(1, row) + first, RowOf(2, row) + first, n);
            case Layout::Triples:
                return expandTriples_(to, RowOf(0, row) + 3 * ptrdiff_t{first}, n);
        }
    }

    // Columns in any monotone order. scratch holds three bytes a column.
    void ExpandPicked(uint32_t* to, int32_t row, const std::vector<int32_t>& columns, uint8_t* scratch) const {
        const size_t n = columns.size();
        switch (picture_.layout) {
            case Layout::Levels:
                pick_(scratch, RowOf(0, row), columns.data(), n);
                return ExpandLevels(to, scratch, n);
            case Layout::Planes:
                for (size_t k = 0; k < 3; ++k) pick_(scratch + k * n, RowOf(k, row), columns.data(), n);
                return expandPlanes_(to, scratch, scratch + n, scratch + 2 * n, n);
            case Layout::Triples:
                const uint8_t* const triples = RowOf(0, row);
                for (size_t i = 0; i < n; ++i) {
                    const uint8_t* const at = triples + 3 * ptrdiff_t{columns[i]};
                    to[i] = uint32_t{at[2]} << 16 | uint32_t{at[1]} << 8 | at[0];
                }
                return;
        }
    }

    // One channel (0 red, 1 green, 2 blue) of ascending columns: a pointer into the picture, or to scratch (a byte a column).
    const uint8_t* Channel(size_t channel, int32_t row, const std::vector<int32_t>& columns, uint8_t* scratch) const {
        const size_t n = columns.size();
        const bool dense = columns.back() - columns.front() == static_cast<int32_t>(n) - 1;
        if (picture_.layout == Layout::Triples) {
            const uint8_t* const triples = RowOf(0, row) + (2 - channel);
            for (size_t i = 0; i < n; ++i) scratch[i] = triples[3 * ptrdiff_t{columns[i]}];
            return scratch;
        }
        const uint8_t* samples = RowOf(picture_.layout == Layout::Planes ? channel : 0, row);
        if (dense) {
            samples += columns.front();
        } else {
            pick_(scratch, samples, columns.data(), n);
            samples = scratch;
        }
        if (picture_.layout == Layout::Planes || ramp_) return samples;
        const uint8_t* const table = channel == 0 ? colors_.red : channel == 1 ? colors_.green : colors_.blue;
        for (size_t i = 0; i < n; ++i) scratch[i] = table[samples[i]];
        return scratch;
    }

    // Of as many channels as channels() says, n bytes each.
    void Join(uint32_t* to, const uint8_t* samples, size_t n) const {
        if (channels() == 1)
            expandGrey_(to, samples, n);
        else
            expandPlanes_(to, samples, samples + n, samples + 2 * n, n);
    }

private:
    const uint8_t* RowOf(size_t plane, int32_t row) const {
        return picture_.planes[plane] + ptrdiff_t{row} * picture_.stride;
    }
    void ExpandLevels(uint32_t* to, const uint8_t* levels, size_t n) const {
        if (ramp_)
            expandGrey_(to, levels, n);
        else
            expandLevels_(to, levels, n, colors_);
    }

    const RasterPicture& picture_;
    LevelColors colors_ = {};
    bool ramp_ = false;
    ExpandGreyFn expandGrey_ = Choose(kExpandGrey);
    ExpandLevelsFn expandLevels_ = Choose(kExpandLevels);
    ExpandPlanesFn expandPlanes_ = Choose(kExpandPlanes);
    ExpandTriplesFn expandTriples_ = Choose(kExpandTriples);
    PickFn pick_ = Choose(kPick);
};

// Neighbouring destination columns with the source columns that they are made of.
class ColumnTile {
public:
    // Destination pixels from index `first` on, up to `end` or until enough source columns have come together. The sums of
    // so many columns stay in the processor's fastest memory.
    ColumnTile(const SmoothAxis& axis, int64_t origin, int64_t first, int64_t end, bool mirrored) : first_(first) {
        constexpr size_t kEnough = 8192;
        std::vector<WeightedPixel> pixels;
        int64_t i = first;
        for (; i < end && (i == first || columns_.size() < kEnough); ++i) {
            axis.Get(i, pixels);
            const auto positionOf = [&](const WeightedPixel& pixel) {
                return static_cast<int32_t>(origin + pixel.position);
            };
            size_t at = columns_.size();
            while (at > 0 && columns_[at - 1] >= positionOf(pixels.front())) --at;
            spans_.push_back({at, pixels.size(), weights_.size()});
            for (const WeightedPixel& pixel : pixels) {
                if (columns_.empty() || columns_.back() < positionOf(pixel)) columns_.push_back(positionOf(pixel));
                weights_.push_back(pixel.weight);
            }
        }
        end_ = i;
        if (mirrored) std::reverse(spans_.begin(), spans_.end());
    }

    int64_t first() const { return first_; }
    int64_t end() const { return end_; }
    const std::vector<int32_t>& columns() const { return columns_; }
    size_t size() const { return spans_.size(); }

    // sums: of weighted rows, one a source column.
    void Reduce(uint8_t* to, const uint32_t* sums) const {
        for (size_t i = 0; i < spans_.size(); ++i) {
            const Span& span = spans_[i];
            uint32_t sum = 1u << 23;
            for (size_t k = 0; k < span.count; ++k) sum += weights_[span.weight + k] * sums[span.column + k];
            to[i] = static_cast<uint8_t>(sum >> 24);
        }
    }

private:
    struct Span {
        size_t column, count, weight;
    };
    int64_t first_, end_;
    std::vector<int32_t> columns_;
    std::vector<Span> spans_;
    std::vector<uint16_t> weights_;
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
    std::vector<int32_t> columns;
    std::vector<uint8_t> scratch;
    if (!alongX.straight()) {
        columns.resize(n);
        scratch.resize(3 * n);
        for (size_t i = 0; i < n; ++i) columns[i] = alongX.Nearest(visible.x + static_cast<int64_t>(i));
    }
    const int32_t firstColumn = alongX.Nearest(visible.x);
    int32_t previous = -1;
    for (int64_t y = visible.y; y < visible.bottom(); ++y) {
        uint32_t* const to = PixelAt(visible.x, y);
        const int32_t row = alongY.Nearest(y);
        if (row == previous)
            std::memcpy(to, PixelAt(visible.x, y - 1), n * sizeof *to);
        else if (alongX.straight())
            rows.Expand(to, row, firstColumn, n);
        else
            rows.ExpandPicked(to, row, columns, scratch.data());
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
    std::vector<WeightedPixel> taps;
    std::vector<uint8_t> scratch, reduced;
    std::vector<uint32_t> sums;
    for (int64_t index = firstIndex; index <= lastIndex;) {
        const ColumnTile tile(smoothX, source.x, index, lastIndex + 1, alongX.mirrored());
        index = tile.end();
        const int64_t left = alongX.mirrored() ? dest.x - tile.end() : dest.x + tile.first();
        const std::vector<int32_t>& columns = tile.columns();
        const size_t n = columns.size();
        scratch.resize(2 * n);
        reduced.resize(3 * tile.size());
        for (int64_t y = visible.y; y < visible.bottom(); ++y) {
            smoothY.Get(alongY.Index(y), taps);
            for (size_t channel = 0; channel < rows.channels(); ++channel) {
                sums.assign(n, 0);
                for (size_t k = 0; k < taps.size(); k += 2) {
                    const auto channelOf = [&](const WeightedPixel& tap, uint8_t* space) {
                        return rows.Channel(channel, static_cast<int32_t>(source.y + tap.position), columns, space);
                    };
                    const uint8_t* const a = channelOf(taps[k], scratch.data());
                    if (k + 1 == taps.size())
                        weighRows(sums.data(), a, taps[k].weight, a, 0, n);
                    else
                        weighRows(sums.data(), a, taps[k].weight, channelOf(taps[k + 1], scratch.data() + n),
                                  taps[k + 1].weight, n);
                }
                tile.Reduce(reduced.data() + channel * tile.size(), sums.data());
            }
            rows.Join(PixelAt(left, y), reduced.data(), tile.size());
        }
    }
}

}  // namespace orlix
