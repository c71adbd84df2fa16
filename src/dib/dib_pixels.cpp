#include "dib/dib_pixels.hpp"

#include <algorithm>
#include <bit>
#include <cstring>

#include "image/byte_order.hpp"

namespace orlix {
namespace {

const uint8_t* RowOf(const DibView& dib, int32_t y) {
    return dib.pixels.data() + dib.layout.stride * static_cast<uint64_t>(dib.layout.StoredRow(y));
}

// Run lengths, a command of two bytes at a time. Runs may go on into the pixels that fill a row to whole words of 32
// bits: some writers encode rows with their padding.
class RunReader {
public:
    RunReader(const DibView& dib, const TakeIndices& take)
        : layout_(dib.layout), take_(take), bytes_(dib.pixels), width_(static_cast<size_t>(layout_.width)) {
        const size_t inWord = 32 / layout_.bits;
        row_.resize((width_ + inWord - 1) / inWord * inWord);
    }

    void Read() {
        while (!Complete()) {
            const uint8_t *const command = Next(2), count = command[0], value = command[1];
            if (count != 0) {
                Fill(count, value);
            } else if (value == kEndOfRow) {
                FinishRow();
                x_ = 0;
            } else if (value == kEndOfImage) {
                break;
            } else if (value == kMove) {
                const uint8_t* const by = Next(2);
                for (uint8_t i = 0; i < by[1]; ++i) FinishRow();
                x_ += by[0];
                if (x_ > row_.size()) throw DibFailure(DibFault::Runs);
            } else {
                Copy(value);
            }
        }
        while (stored_ < layout_.height) FinishRow();
    }

private:
    static constexpr uint8_t kEndOfRow = 0, kEndOfImage = 1, kMove = 2;

    bool Complete() const { return stored_ == layout_.height || (stored_ == layout_.height - 1 && x_ >= width_); }
    const uint8_t* Next(size_t n) {
        if (n > bytes_.size()) throw DibFailure(DibFault::TooShort);
        const uint8_t* const next = bytes_.data();
        bytes_ = bytes_.subspan(n);
        return next;
    }
    // n pixels from here on.
    uint8_t* Pixels(size_t n) {
        if (n > row_.size() - x_) throw DibFailure(DibFault::Runs);
        uint8_t* const pixels = row_.data() + x_;
        x_ += n;
        return pixels;
    }
    void Fill(size_t n, uint8_t value) {
        uint8_t* const pixels = Pixels(n);
        if (layout_.bits == 8) std::memset(pixels, value, n);
        // Two colours in turn.
        else
            for (size_t i = 0; i < n; ++i) pixels[i] = i % 2 == 0 ? value >> 4 : value & 15;
    }
    void Copy(size_t n) {
        const size_t size = (n * layout_.bits + 7) / 8;
        ExpandIndices(Next(size), layout_.bits, 0, n, Pixels(n));
        if (size % 2 != 0 && !bytes_.empty()) bytes_ = bytes_.subspan(1);  // to whole words
    }
    void FinishRow() {
        if (stored_ == layout_.height) throw DibFailure(DibFault::Runs);
        take_(layout_.StoredRow(stored_++), row_.data());
        std::fill(row_.begin(), row_.end(), uint8_t{0});
    }

    const DibLayout& layout_;
    const TakeIndices& take_;
    std::span<const uint8_t> bytes_;
    size_t width_;
    std::vector<uint8_t> row_;
    int32_t stored_ = 0;  // rows that are complete
    size_t x_ = 0;
};

}  // namespace

void RequirePixels(const DibView& dib) {
    const DibLayout& layout = dib.layout;
    const uint64_t there = dib.pixels.size();
    const bool enough =
        layout.compressed()
            ? static_cast<uint64_t>(layout.width) * static_cast<uint64_t>(layout.height) <= 65536 + 1024 * there
            : layout.PixelBytes() <= there;
    if (!enough) throw DibFailure(DibFault::TooShort);
}

void ExpandIndices(const uint8_t* row, uint32_t bits, size_t first, size_t n, uint8_t* indices) {
    if (bits == 8) {
        std::memcpy(indices, row + first, n);
    } else if (bits == 4) {
        for (size_t x = first; x < first + n; ++x) *indices++ = x % 2 == 0 ? row[x / 2] >> 4 : row[x / 2] & 15;
    } else {
        for (size_t x = first; x < first + n; ++x) *indices++ = row[x / 8] >> (7 - x % 8) & 1;
    }
}

void ReadIndices(const DibView& dib, const TakeIndices& take) {
    const DibLayout& layout = dib.layout;
    if (layout.compressed()) return RunReader(dib, take).Read();
    std::vector<uint8_t> indices(layout.bits == 8 ? 0 : static_cast<size_t>(layout.width));
    for (int32_t y = 0; y < layout.height; ++y) {
        const uint8_t* const row = RowOf(dib, y);
        if (layout.bits != 8) ExpandIndices(row, layout.bits, 0, indices.size(), indices.data());
        take(y, layout.bits == 8 ? row : indices.data());
    }
}

DibColours::DibColours(const DibLayout& layout) : bits_(layout.bits) {
    constexpr uint64_t kMostInTable = 1023;
    bytes_ = true;
    for (size_t i = 0; i < channels_.size(); ++i) {
        Channel& channel = channels_[i];
        channel.mask = bits_ == 24 ? 0xFF0000u >> 8 * i : layout.masks[i];
        if (channel.mask == 0) {
            bytes_ = false;
            continue;
        }
        channel.shift = std::countr_zero(channel.mask);
        channel.most = channel.mask >> channel.shift;
        bytes_ = bytes_ && channel.most == 255 && channel.shift % 8 == 0;
        place_[i] = static_cast<size_t>(channel.shift) / 8;
        if (channel.most > kMostInTable) continue;
        std::vector<uint8_t> level;
        for (uint64_t v = 0; v <= channel.most; ++v)
            level.push_back(static_cast<uint8_t>((510 * v + channel.most) / (2 * channel.most)));
        channel.level = std::move(level);
    }
}

uint8_t DibColours::Channel::operator()(uint32_t pixel) const {
    if (mask == 0) return 0;
    const uint32_t value = (pixel & mask) >> shift;
    if (!level.empty()) return level[value];
    return static_cast<uint8_t>((510 * uint64_t{value} + most) / (2 * most));
}

void DibColours::operator()(const uint8_t* row, size_t first, size_t n, uint8_t* red, uint8_t* green,
                            uint8_t* blue) const {
    uint8_t* const out[] = {red, green, blue};
    const size_t step = bits_ / 8;
    const uint8_t* const pixels = row + first * step;
    for (size_t band = 0; band < 3; ++band) {
        uint8_t* const to = out[band];
        const Channel& channel = channels_[band];
        if (bytes_)
            for (size_t x = 0; x < n; ++x) to[x] = pixels[x * step + place_[band]];
        else if (bits_ == 16)
            for (size_t x = 0; x < n; ++x) to[x] = channel(LittleEndian16(pixels + 2 * x));
        else
            for (size_t x = 0; x < n; ++x) to[x] = channel(LittleEndian32(pixels + 4 * x));
    }
}

int32_t DibBands(const DibView& dib) {
    if (!dib.layout.hasPalette()) return 3;
    UsedIndices used{};
    ReadIndices(dib, [&](int32_t, const uint8_t* indices) {
        for (int32_t x = 0; x < dib.layout.width; ++x) used[indices[x]] = true;
    });
    if (!Covers(dib.palette, used)) throw DibFailure(DibFault::Palette);
    return IsGrey(dib.palette, used) ? 1 : 3;
}

void ReadDibSamples(const DibView& dib, int32_t bands, const SampleRow& rowOf) {
    const auto width = static_cast<size_t>(dib.layout.width);
    if (dib.layout.hasPalette())
        return ReadIndices(dib, [&](int32_t y, const uint8_t* indices) {
            for (int32_t band = 0; band < bands; ++band) {
                const auto& level = dib.palette.level[static_cast<size_t>(band)];
                uint8_t* const row = rowOf(band, y);
                for (size_t x = 0; x < width; ++x) row[x] = level[indices[x]];
            }
        });
    const DibColours colours(dib.layout);
    for (int32_t y = 0; y < dib.layout.height; ++y)
        colours(RowOf(dib, y), 0, width, rowOf(0, y), rowOf(1, y), rowOf(2, y));
}

}  // namespace orlix
