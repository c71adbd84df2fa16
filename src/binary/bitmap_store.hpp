// The memory of a binary image.
#pragma once

#include <orlix/orlix.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "binary/row_run_cache.hpp"
#include "image/pixel_buffer.hpp"

namespace orlix {

// One bit per pixel, as the system's monochrome bitmaps have it:
//  (1) rows lie top-down, RowBytes(width) bytes each, a multiple of 2;
//  (2) pixel x is the bit 0x80 >> (x mod 8) of byte x / 8 of its row; 1 is foreground;
//  (3) bits beyond the width hold anything, and nobody may count or read them.
// A store starts without pixels (width and height 0). Row pointers stay valid until the next Create or CopyFrom.
class BitmapStore {
public:
    // Reads up to this many bytes or rows beyond an edge find the nearest one.
    static constexpr int32_t kMargin = 200;
    // More than a process can address is refused without an attempt.
    static constexpr uint64_t kMostBytes = std::min<uint64_t>(PTRDIFF_MAX, uint64_t{1} << 46);

    struct IndexEntry {
        int32_t column;    // in bytes
        ptrdiff_t offset;  // of a row, in bytes from the first
    };

    BitmapStore() = default;
    BitmapStore(BitmapStore&&) = default;
    BitmapStore& operator=(BitmapStore&&) = default;

    static int32_t RowBytes(int32_t width) { return (width / 8 + (width % 8 != 0) + 1) / 2 * 2; }

    // Bytes that the store already had keep their values under the new geometry, added ones are 0; zero clears them
    // all. All rows become modified. "CBITMAP::Create: width must be positive", "CBITMAP::Create: height must be
    // positive"; after these and std::bad_alloc the store is as it was.
    void Create(int32_t width, int32_t height, bool zero);

    // Becomes a copy of the bitmap that a record describes, which may lie in this store's memory. Its rows may be
    // longer or shorter than here; bytes it does not have are 0. Fails as Create does, and with FailedResult(E_FAIL)
    // for a record that has no bits, bits that cannot be read, not one bit a pixel or rows too short for its width.
    void CopyFrom(const BITMAP& source);

    // All bytes, padding included. Marks no row; runs that were kept are forgotten.
    void Fill(uint8_t value);

    int32_t width() const { return record_.bmWidth; }
    int32_t height() const { return record_.bmHeight; }
    ptrdiff_t rowBytes() const { return record_.bmWidthBytes; }
    const BITMAP& record() const { return record_; }

    bool ContainsRow(int32_t y) const { return y >= 0 && y < height(); }
    bool Contains(int32_t x, int32_t y) const { return x >= 0 && x < width() && ContainsRow(y); }

    // The first byte of row 0 <= y < height. WriteRow marks the row.
    const uint8_t* Row(int32_t y) const { return bytes_.data() + y * rowBytes(); }
    uint8_t* WriteRow(int32_t y) {
        MarkModified(y);
        return bytes_.data() + y * rowBytes();
    }

    // Pixels of the bitmap. SetBit marks the row.
    bool Bit(int32_t x, int32_t y) const { return (Row(y)[x / 8] & MaskOf(x)) != 0; }
    void SetBit(int32_t x, int32_t y, bool bit) {
        uint8_t& target = WriteRow(y)[x / 8];
        target = static_cast<uint8_t>(bit ? target | MaskOf(x) : target & ~MaskOf(x));
    }

    static uint8_t MaskOf(int32_t x) { return static_cast<uint8_t>(0x80 >> (x % 8)); }

    // Whoever keeps something derived from a row makes it anew when the row is marked, and takes the mark away. The
    // only one to do so is RowRuns.
    bool Modified(int32_t y) const { return modified_[static_cast<size_t>(y)]; }
    void MarkModified(int32_t y) { modified_[static_cast<size_t>(y)] = true; }
    void MarkAllModified() { std::fill(modified_.begin(), modified_.end(), true); }
    void ClearModified(int32_t y) { modified_[static_cast<size_t>(y)] = lent(y); }

    // A row whose address goes to somebody who may write to it at any later time: it stays marked until the next
    // creation.
    void Lend(int32_t y) {
        if (lent_.empty()) lent_.resize(modified_.size());
        lent_[static_cast<size_t>(y)] = true;
        MarkModified(y);
    }

    // The runs of set pixels of a row, in order and apart. They are kept until the row is modified, from the first call
    // on; a bitmap of which nobody asks for runs spends nothing on them. Valid until the next call and until the bitmap
    // changes.
    std::span<const Run> RowRuns(int32_t y);

    // Byte column and row offset for an index from -kMargin to max(rowBytes, height) + kMargin - 1, each held inside.
    // Not a table: that of a bitmap a few pixels wide would be many times as large as the bitmap.
    IndexEntry Index(int64_t i) const {
        return {static_cast<int32_t>(std::clamp<int64_t>(i, 0, record_.bmWidthBytes - 1)),
                static_cast<ptrdiff_t>(rowBytes() * std::clamp<int64_t>(i, 0, record_.bmHeight - 1))};
    }

private:
    bool lent(int32_t y) const { return !lent_.empty() && lent_[static_cast<size_t>(y)]; }

    BITMAP record_ = {};
    PixelBuffer bytes_;
    std::vector<bool> modified_;  // of each row: a bit, for there are bitmaps of two bytes a row
    std::vector<bool> lent_;      // empty: none
    std::unique_ptr<RowRunCache> runs_;
};

}  // namespace orlix
