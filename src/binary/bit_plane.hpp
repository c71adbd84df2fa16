// Binary images as operations see them: rows in the memory of a bitmap, and planes of 64-bit words.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "binary/bitmap_store.hpp"
#include "geometry/region_rows.hpp"
#include "geometry/run.hpp"

namespace orlix {

// Rows in the layout of a bitmap (bitmap_store.hpp), to be read: width and height of at least 1, or both 0. Of each row
// the first (width + 7) / 8 bytes are read; bits beyond the width hold anything.
struct BitRows {
    const uint8_t* first;
    ptrdiff_t rowBytes;
    int32_t width;
    int32_t height;

    const uint8_t* row(int32_t y) const { return first + y * rowBytes; }
    size_t usedBytes() const { return (static_cast<size_t>(width) + 7) / 8; }
};

// Valid until the next Create or CopyFrom of the store.
BitRows RowsOf(const BitmapStore& store);

// Whether two views share memory without being the same rows.
bool Overlap(const BitRows& a, const BitRows& b);

// The rows that a record with pixels (sizes of at least 1) describes. FailedResult(E_FAIL) when it has no bits, bits
// that cannot be read, not one bit a pixel, or rows too short for its width.
BitRows ReadableRows(const BITMAP& record);

// A binary image in words: pixel x is bit 63 - x mod 64 of word x / 64 of its row, so that a shift to the right moves
// pixels to the right. Bits beyond the width are 0; who writes words keeps them so (lastWordMask).
class BitPlane {
public:
    BitPlane() = default;  // no pixels
    // All 0. width and height of at least 0. std::bad_alloc.
    BitPlane(int32_t width, int32_t height);
    explicit BitPlane(const BitRows& rows);

    int32_t width() const { return width_; }
    int32_t height() const { return height_; }
    size_t wordsPerRow() const { return wordsPerRow_; }

    // Rows follow one another: row(y) + wordsPerRow() == row(y + 1).
    uint64_t* row(int32_t y) { return words_.data() + static_cast<size_t>(y) * wordsPerRow_; }
    const uint64_t* row(int32_t y) const { return words_.data() + static_cast<size_t>(y) * wordsPerRow_; }

    // The bits of a row's last word that are pixels.
    uint64_t lastWordMask() const { return ~uint64_t{0} << (63 - (static_cast<uint32_t>(width_) + 63) % 64); }

    static uint64_t MaskOf(int32_t x) { return uint64_t{1} << (63 - x % 64); }
    bool bit(int32_t x, int32_t y) const { return (row(y)[x / 64] & MaskOf(x)) != 0; }
    void setBit(int32_t x, int32_t y, bool bit) {
        uint64_t& word = row(y)[x / 64];
        word = bit ? word | MaskOf(x) : word & ~MaskOf(x);
    }

    friend bool operator==(const BitPlane&, const BitPlane&) = default;

private:
    int32_t width_ = 0;
    int32_t height_ = 0;
    size_t wordsPerRow_ = 0;
    std::vector<uint64_t> words_;
};

// The word of pixels 64 i .. 64 i + 63 of a row whose first `bytes` bytes exist; bytes that do not exist are 0, or are
// not stored. 8 i < bytes.
uint64_t LoadWord(const uint8_t* row, size_t i, size_t bytes);
void StoreWord(uint8_t* row, size_t i, size_t bytes, uint64_t word);

// Sets the pixels of a run of a row of a plane.
void SetRun(uint64_t* row, const Run& run);

// Stores the plane's pixels of the region; all others stay. Marks the rows that the region has. The plane, the store
// and the region have the same size.
void Store(const BitPlane& from, BitmapStore& to, const RegionRows& region);

}  // namespace orlix
