#include "dib/dib_memory.hpp"

#include <algorithm>
#include <cstring>

#include "image/byte_order.hpp"
#include "image/pixel_size.hpp"

namespace orlix {
namespace {

constexpr size_t kPerMetreAt = 24;  // in all headers but BITMAPCOREHEADER

// The layout of the header that MakeDibHeader() gives.
DibLayout PackedLayout(const DibLayout& like, std::span<const uint8_t> header) {
    DibLayout layout = ReadDibLayout(ReadDibFields(header), header);
    layout.micronsX = like.micronsX;
    layout.micronsY = like.micronsY;
    return layout;
}

// Indices as pixels of 4 bits, two to a byte.
void JoinNibbles(const uint8_t* indices, size_t n, uint8_t* row) {
    for (size_t x = 0; x < n; ++x) row[x / 2] = static_cast<uint8_t>(row[x / 2] | indices[x] << (x % 2 == 0 ? 4 : 0));
}

std::vector<uint8_t> EntriesOf(const Palette& palette) {
    std::vector<uint8_t> entries(4 * static_cast<size_t>(palette.count));
    for (size_t i = 0; i < entries.size(); ++i)
        if (i % 4 != 3) entries[i] = palette.level[2 - i % 4][i / 4];
    return entries;
}

}  // namespace

DibMemory::DibMemory(const DibLayout& like, std::span<const uint8_t> entries, uint8_t* pixels) {
    const std::vector<uint8_t> header = MakeDibHeader(like, entries);
    layout_ = PackedLayout(like, header);
    const auto size = static_cast<size_t>(layout_.stride * static_cast<uint64_t>(layout_.height));
    owned_.Resize(header.size() + (pixels ? 0 : size));
    header_ = owned_.data();
    pixels_ = pixels ? pixels : header_ + header.size();
    std::copy(header.begin(), header.end(), header_);
}

DibMemory DibMemory::CopyOf(const DibView& dib) {
    DibMemory copy(dib.layout, EntriesOf(dib.palette));
    const DibLayout& layout = copy.layout_;
    if (!dib.layout.compressed()) {
        std::memcpy(copy.pixels_, dib.pixels.data(), static_cast<size_t>(layout.PixelBytes()));
    } else {
        const auto width = static_cast<size_t>(layout.width);
        ReadIndices(dib, [&](int32_t y, const uint8_t* indices) {
            if (layout.bits == 8)
                std::memcpy(copy.row(y), indices, width);
            else
                JoinNibbles(indices, width, copy.row(y));
        });
    }
    return copy;
}

bool DibMemory::HoldsPixels(const DibLayout& layout) {
    return layout.stride <= INT32_MAX / static_cast<uint64_t>(layout.height);
}

size_t DibMemory::Entries(const DibLayout& layout) {
    if (!layout.hasPalette()) return 0;
    return static_cast<size_t>(std::min(layout.PaletteEntries(), uint64_t{1} << layout.bits));
}

DibView DibMemory::View() const {
    DibView view{layout_, {}, {pixels_, static_cast<size_t>(layout_.PixelBytes())}};
    if (layout_.hasPalette()) view.palette = ReadDibPalette(layout_, {entry(0), entries() * layout_.entryBytes});
    return view;
}

void DibMemory::PutMicrons(double x, double y) {
    layout_.micronsX = x;
    layout_.micronsY = y;
    if (layout_.core()) return;
    const int32_t perMetreX = PixelsPerMetre(x), perMetreY = PixelsPerMetre(y);
    const bool known = perMetreX != 0 && perMetreY != 0;
    PutLittleEndian32(header_ + kPerMetreAt, known ? static_cast<uint32_t>(perMetreX) : 0);
    PutLittleEndian32(header_ + kPerMetreAt + 4, known ? static_cast<uint32_t>(perMetreY) : 0);
}

std::vector<uint8_t> DibMemory::PackedHeader(DibHeaderKind kind) const {
    return MakeDibHeader(layout_, EntriesOf(View().palette), kind);
}

void DibMemory::CopyPixels(uint8_t* to) const {
    const auto used = static_cast<size_t>(layout_.PixelBytes());
    std::memmove(to, pixels_, used);  // a client may pass memory of the bitmap
    std::memset(to + used, 0, static_cast<size_t>(layout_.stride - layout_.rowBytes));
}

DibView ReadPackedDib(std::span<const uint8_t> bytes) {
    DibView dib{ReadDibLayout(ReadDibFields(bytes), bytes), {}, {}};
    const uint64_t header = DibMemory::HeaderBytes(dib.layout);
    if (header > bytes.size()) throw DibFailure(DibFault::TooShort);
    dib.pixels = bytes.subspan(static_cast<size_t>(header));
    RequirePixels(dib);
    if (dib.layout.hasPalette())
        dib.palette = ReadDibPalette(
            dib.layout, bytes.subspan(dib.layout.paletteStart, static_cast<size_t>(header) - dib.layout.paletteStart));
    return dib;
}

}  // namespace orlix
