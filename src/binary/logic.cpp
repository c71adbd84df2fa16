#include "binary/logic.hpp"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <span>
#include <vector>

#include "binary/logic_kernels.hpp"

namespace orlix {
namespace {

CombineFn KernelOf(BitLogic how) {
    switch (how) {
        case BitLogic::And:
            return Choose(kCombine<BitLogic::And>);
        case BitLogic::Or:
            return Choose(kCombine<BitLogic::Or>);
        case BitLogic::Xor:
            return Choose(kCombine<BitLogic::Xor>);
        case BitLogic::AndNot:
            return Choose(kCombine<BitLogic::AndNot>);
        case BitLogic::Copy:
            return Choose(kCombine<BitLogic::Copy>);
        case BitLogic::Not:
            break;
    }
    return Choose(kCombine<BitLogic::Not>);
}

// The whole bytes of a run and the pixels of those that belong to it in part. whole(first, count) comes last.
template <class Part, class Whole>
void ForBytesOf(Run run, const Part& part, const Whole& whole) {
    auto first = static_cast<size_t>(run.start / 8), last = static_cast<size_t>(run.stop / 8);
    const auto from = static_cast<uint8_t>(0xff >> (run.start % 8));
    const auto to = static_cast<uint8_t>(0xff << (7 - run.stop % 8));
    if (first == last) {
        if ((from & to) != 0xff) return part(first, static_cast<uint8_t>(from & to));
        return whole(first, size_t{1});
    }
    if (from != 0xff) part(first++, from);
    if (to != 0xff) part(last--, to);
    if (first <= last) whole(first, last - first + 1);
}

}  // namespace

void Combine(BitmapStore& bitmap, BitLogic how, const BitRows& with, const RegionRows& region) {
    if (bitmap.height() == 0) return;
    const BitRows rows = RowsOf(bitmap);
    if (Overlap(rows, with)) {
        std::vector<uint8_t> copy(static_cast<size_t>(with.height) * with.usedBytes());
        const auto rowBytes = static_cast<ptrdiff_t>(with.usedBytes());
        for (int32_t y = 0; y < with.height; ++y)
            std::memcpy(copy.data() + y * rowBytes, with.row(y), with.usedBytes());
        return Combine(bitmap, how, BitRows{copy.data(), rowBytes, with.width, with.height}, region);
    }

    const CombineFn combine = KernelOf(how);
    if (region.whole() && with.rowBytes == rows.rowBytes) {
        bitmap.MarkAllModified();
        const auto before = static_cast<size_t>(bitmap.height() - 1) * static_cast<size_t>(rows.rowBytes);
        return combine(bitmap.WriteRow(0), with.first, before + rows.usedBytes());
    }
    for (int32_t y = region.top(); y <= region.bottom(); ++y) {
        const std::span<const Run> runs = region.row(y);
        if (runs.empty()) continue;
        uint8_t* to = bitmap.WriteRow(y);
        const uint8_t* other = with.row(y);
        for (const Run run : runs)
            ForBytesOf(
                run,
                [&](size_t i, uint8_t mask) {
                    uint8_t byte = to[i];
                    combine(&byte, other + i, 1);
                    to[i] = static_cast<uint8_t>((byte & mask) | (to[i] & ~mask));
                },
                [&](size_t first, size_t count) { combine(to + first, other + first, count); });
    }
}

int64_t CountPixels(const BitRows& bitmap, const RegionRows& region) {
    const CountBitsFn count = Choose(kCountBits);
    uint64_t sum = 0;
    if (region.whole() && bitmap.rowBytes * 8 == bitmap.width)
        return static_cast<int64_t>(
            count(bitmap.first, static_cast<size_t>(bitmap.rowBytes) * static_cast<size_t>(bitmap.height)));
    for (int32_t y = region.top(); y <= region.bottom(); ++y) {
        const uint8_t* row = bitmap.row(y);
        for (const Run run : region.row(y))
            ForBytesOf(
                run,
                [&](size_t i, uint8_t mask) {
                    const auto byte = static_cast<uint8_t>(row[i] & mask);
                    sum += count(&byte, 1);
                },
                [&](size_t first, size_t bytes) { sum += count(row + first, bytes); });
    }
    return static_cast<int64_t>(sum);
}

// In place, in an order in which no row is written before it has been read.
void Translate(BitmapStore& bitmap, int32_t right, int32_t down, const RegionRows& region) {
    if (bitmap.height() == 0 || region.bottom() < region.top()) return;
    const BitRows rows = RowsOf(bitmap);
    const size_t bytes = rows.usedBytes();
    const int32_t width = rows.width, height = rows.height;
    std::vector<uint8_t> here(bytes), moved(bytes);
    const MoveRowsFn move = Choose(kMoveRows);
    const bool gone = right <= -width || right >= width || down <= -height || down >= height;
    const int32_t bits = gone ? 0 : (right % 8 + 8) % 8;
    const ptrdiff_t skipped = gone ? 0 : (ptrdiff_t{right} - bits) / 8;
    const auto lastMask = static_cast<uint8_t>(0xff << (7 - (width - 1) % 8));
    const auto moveRow = [&](const uint8_t* from, uint8_t* to) {
        move({from, to, 0, 1, static_cast<ptrdiff_t>(bytes), skipped, bits, lastMask});
    };
    if (region.whole() && !gone && down != 0) {
        const int32_t kept = height - std::abs(down);
        const ptrdiff_t rowBytes = rows.rowBytes;
        uint8_t* const first = bitmap.WriteRow(0);
        if (down < 0)
            move({first - down * rowBytes, first, rowBytes, kept, static_cast<ptrdiff_t>(bytes), skipped, bits,
                  lastMask});
        else
            move({first + (kept - 1) * rowBytes, first + (height - 1) * rowBytes, -rowBytes, kept,
                  static_cast<ptrdiff_t>(bytes), skipped, bits, lastMask});
        bitmap.MarkAllModified();
        for (int32_t y = down < 0 ? kept : 0; y < (down < 0 ? height : down); ++y)
            std::memset(first + y * rowBytes, 0, bytes);
        return;
    }
    for (int32_t i = 0; i <= region.bottom() - region.top(); ++i) {
        const int32_t y = down > 0 ? region.bottom() - i : region.top() + i;
        const std::span<const Run> runs = region.row(y);
        if (runs.empty()) continue;
        const int64_t from = int64_t{y} - down;
        uint8_t* const to = bitmap.WriteRow(y);
        if (gone || from < 0 || from >= height) {
            std::fill(moved.begin(), moved.end(), uint8_t{0});
        } else {
            std::memcpy(here.data(), bitmap.Row(static_cast<int32_t>(from)), bytes);
            moveRow(here.data(), moved.data());
        }
        for (const Run run : runs)
            ForBytesOf(
                run, [&](size_t k, uint8_t mask) { to[k] = static_cast<uint8_t>((moved[k] & mask) | (to[k] & ~mask)); },
                [&](size_t first, size_t count) { std::memcpy(to + first, moved.data() + first, count); });
    }
}

}  // namespace orlix
