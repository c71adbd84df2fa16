#include "binary/bit_plane.hpp"

#include <algorithm>
#include <bit>
#include <cstring>
#include <new>

#include "component/failure.hpp"
#include "platform/memory_probe.hpp"

namespace orlix {
namespace {

uint64_t FromBytes(uint64_t bytes) {
    return std::endian::native == std::endian::little ? __builtin_bswap64(bytes) : bytes;
}

// Bits first..last of a word as pixels are counted, 0 <= first <= last <= 63.
uint64_t Span(int32_t first, int32_t last) { return ~uint64_t{0} >> first & ~uint64_t{0} << (63 - last); }

}  // namespace

BitRows RowsOf(const BitmapStore& store) { return {store.Row(0), store.rowBytes(), store.width(), store.height()}; }

bool Overlap(const BitRows& a, const BitRows& b) {
    if (a.first == b.first && a.rowBytes == b.rowBytes) return false;
    const auto begin = [](const BitRows& rows) { return reinterpret_cast<uintptr_t>(rows.first); };
    const auto end = [](const BitRows& rows) {
        return reinterpret_cast<uintptr_t>(rows.row(rows.height - 1)) + rows.usedBytes();
    };
    return begin(a) < end(b) && begin(b) < end(a);
}

BitRows ReadableRows(const BITMAP& record) {
    const BitRows rows = {static_cast<const uint8_t*>(record.bmBits), record.bmWidthBytes, record.bmWidth,
                          record.bmHeight};
    if (!rows.first || record.bmPlanes != 1 || record.bmBitsPixel != 1 || record.bmWidthBytes < 0 ||
        static_cast<size_t>(rows.rowBytes) < rows.usedBytes())
        throw FailedResult(E_FAIL);
    // Of the last row, the padding that a row of ours has too.
    const auto lastRow = std::min<uint64_t>(static_cast<uint64_t>(rows.rowBytes),
                                            static_cast<uint64_t>(BitmapStore::RowBytes(rows.width)));
    const uint64_t span = static_cast<uint64_t>(rows.rowBytes) * static_cast<uint64_t>(rows.height - 1) + lastRow;
    if (span > SIZE_MAX || !IsReadable(rows.first, static_cast<size_t>(span))) throw FailedResult(E_FAIL);
    return rows;
}

uint64_t LoadWord(const uint8_t* row, size_t i, size_t bytes) {
    uint64_t word = 0;
    if (bytes - 8 * i >= 8)
        std::memcpy(&word, row + 8 * i, 8);
    else
        std::memcpy(&word, row + 8 * i, bytes - 8 * i);
    return FromBytes(word);
}

void StoreWord(uint8_t* row, size_t i, size_t bytes, uint64_t word) {
    word = FromBytes(word);
    if (bytes - 8 * i >= 8)
        std::memcpy(row + 8 * i, &word, 8);
    else
        std::memcpy(row + 8 * i, &word, bytes - 8 * i);
}

BitPlane::BitPlane(int32_t width, int32_t height)
    : width_(width), height_(height), wordsPerRow_((static_cast<size_t>(width) + 63) / 64) {
    const uint64_t words = uint64_t{wordsPerRow_} * static_cast<uint64_t>(height);
    if (words > BitmapStore::kMostBytes / sizeof(uint64_t)) throw std::bad_alloc();
    words_.resize(static_cast<size_t>(words));
}

BitPlane::BitPlane(const BitRows& rows) : BitPlane(rows.width, rows.height) {
    if (wordsPerRow_ == 0) return;
    const size_t bytes = rows.usedBytes();
    for (int32_t y = 0; y < height_; ++y) {
        const uint8_t* from = rows.row(y);
        uint64_t* to = row(y);
        for (size_t i = 0; i < wordsPerRow_; ++i) to[i] = LoadWord(from, i, bytes);
        to[wordsPerRow_ - 1] &= lastWordMask();
    }
}

void SetRun(uint64_t* row, const Run& run) {
    const int32_t first = run.start / 64;
    const int32_t last = run.stop / 64;
    if (first == last) {
        row[first] |= Span(run.start % 64, run.stop % 64);
        return;
    }
    row[first] |= Span(run.start % 64, 63);
    std::fill(row + first + 1, row + last, ~uint64_t{0});
    row[last] |= Span(0, run.stop % 64);
}

void Store(const BitPlane& from, BitmapStore& to, const RegionRows& region) {
    const size_t bytes = RowsOf(to).usedBytes();
    for (int32_t y = region.top(); y <= region.bottom(); ++y) {
        const std::span<const Run> runs = region.row(y);
        if (runs.empty()) continue;
        const uint64_t* words = from.row(y);
        uint8_t* row = to.WriteRow(y);
        for (const Run run : runs) {
            const int32_t first = run.start / 64, last = run.stop / 64;
            for (int32_t i = first; i <= last; ++i) {
                const auto word = static_cast<size_t>(i);
                const uint64_t mask = Span(i == first ? run.start % 64 : 0, i == last ? run.stop % 64 : 63);
                if (mask == ~uint64_t{0})
                    StoreWord(row, word, bytes, words[word]);
                else
                    StoreWord(row, word, bytes, (words[word] & mask) | (LoadWord(row, word, bytes) & ~mask));
            }
        }
    }
}

}  // namespace orlix
