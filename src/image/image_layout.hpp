// Geometry of an image's storage.
#pragma once

#include <orlix/orlix.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace orlix {

// Margin of the offset table on each side, in entries. Neighbourhood operations rely on it.
inline constexpr int32_t kTableMargin = 200;

// Bytes per sample: the bits of the type code (its low nine bits), rounded up to whole bytes; 3 becomes 4, and 5 to 7
// become 8. More than 64 bits raise FailedResult(E_FAIL). Codes of fewer than 8 bits give 1 or 0: callers refuse them
// first.
int32_t BytesPerSample(LONG dataType);

// Planar storage: bands one after the other, rows top-down within a band, samples adjacent within a row. Each row is
// padded to a multiple of 4 bytes. All sizes are in bytes.
struct ImageLayout {
    int32_t width = 0;
    int32_t height = 0;
    int32_t bands = 0;
    int32_t bytesPerSample = 1;
    int64_t rowStride = 0;
    size_t bandSize = 0;   // height rows
    size_t totalSize = 0;  // all bands

    friend bool operator==(const ImageLayout&, const ImageLayout&) = default;
};

// Width, height and bands must be positive. Raises FailedResult(E_FAIL) when the row offsets exceed 32 bits or the
// storage exceeds the address space.
ImageLayout MakeLayout(int32_t width, int32_t height, int32_t bands, LONG dataType);

// Where an index outside an axis of length n is mirrored to, without repeating the edge: i -> |i| mod 2(n - 1), and
// results above n - 1 -> 2(n - 1) - i; 0 when n is 1.
int64_t MirroredIndex(int64_t index, int64_t length);

// Entry `index` of the offset table, -kTableMargin <= index < max(width, height) + kTableMargin. Indices outside an
// axis are mirrored. Entries of the shorter axis beyond n + kTableMargin - 1 have no meaning and are 0.
VPAEntry OffsetTableEntry(const ImageLayout& layout, int64_t index);
constexpr bool HasColumnEntry(const ImageLayout& layout, int64_t index) {
    return index < layout.width + int64_t{kTableMargin};
}
constexpr bool HasRowEntry(const ImageLayout& layout, int64_t index) {
    return index < layout.height + int64_t{kTableMargin};
}

// The number of entries, and the whole table, in which entry 0 is element kTableMargin.
constexpr int64_t OffsetTableSize(const ImageLayout& layout) {
    return (layout.width > layout.height ? layout.width : layout.height) + 2 * int64_t{kTableMargin};
}
std::vector<VPAEntry> MakeOffsetTable(const ImageLayout& layout);

}  // namespace orlix
