#include "binary/drawing.hpp"

#include <algorithm>
#include <cstring>

#include "geometry/rounding.hpp"

namespace orlix {
namespace {

void Combine(uint8_t& byte, uint8_t mask, DrawType how) {
    if (how == DT_On)
        byte = static_cast<uint8_t>(byte | mask);
    else if (how == DT_Off)
        byte = static_cast<uint8_t>(byte & ~mask);
    else
        byte = static_cast<uint8_t>(byte ^ mask);
}

void CombineWhole(uint8_t* bytes, ptrdiff_t count, DrawType how) {
    if (how == DT_On || how == DT_Off) {
        std::memset(bytes, how == DT_On ? 0xff : 0x00, static_cast<size_t>(count));
        return;
    }
    for (; count >= 8; count -= 8, bytes += 8) {
        uint64_t eight;
        std::memcpy(&eight, bytes, 8);
        eight = ~eight;
        std::memcpy(bytes, &eight, 8);
    }
    for (; count > 0; --count, ++bytes) *bytes = static_cast<uint8_t>(~*bytes);
}

// Columns 0 <= left <= right < width.
void DrawSpan(uint8_t* row, int32_t left, int32_t right, DrawType how) {
    uint8_t* first = row + left / 8;
    uint8_t* last = row + right / 8;
    const auto firstMask = static_cast<uint8_t>(0xff >> (left % 8));
    const auto lastMask = static_cast<uint8_t>(0xff << (7 - right % 8));
    if (first == last) return Combine(*first, firstMask & lastMask, how);
    if (firstMask != 0xff) Combine(*first++, firstMask, how);
    CombineWhole(first, last - first, how);
    Combine(*last, lastMask, how);
}

}  // namespace

Drawing DrawRow(BitmapStore& bitmap, int32_t row, const RawRun& run, DrawType how) {
    if (!bitmap.ContainsRow(row) || run.stop < 0 || run.start > bitmap.width() - 1) return Drawing::Missed;
    DrawSpan(bitmap.WriteRow(row), std::max(run.start, 0), std::min(run.stop, bitmap.width() - 1), how);
    return Drawing::Drawn;
}

Drawing DrawRectangle(BitmapStore& bitmap, int32_t left, int32_t top, int32_t right, int32_t bottom, DrawType how) {
    if (bottom < 0 || top > bitmap.height() - 1 || left > bitmap.width() - 1 || right < 0) return Drawing::Missed;
    left = std::max(left, 0);
    right = std::min(right, bitmap.width() - 1);
    top = std::max(top, 0);
    bottom = std::min(bottom, bitmap.height() - 1);
    if (top > bottom) return Drawing::Drawn;
    if (left > right) return Drawing::WithEmptySpans;
    for (int32_t y = top; y <= bottom; ++y) DrawSpan(bitmap.WriteRow(y), left, right, how);
    return Drawing::Drawn;
}

Drawing DrawDisk(BitmapStore& bitmap, const Disk& disk, DrawType how) {
    if (!disk.Defined() || disk.Bottom() < 0 || disk.Top() > bitmap.height() - 1 ||
        FloorToInt32(disk.x - disk.radius) > bitmap.width() - 1 || CeilToInt32(disk.x + disk.radius) < 0)
        return Drawing::Missed;
    // If rounding absorbs the radius in the centre's coordinates, a negative one could still reach a row.
    if (disk.radius < 0) return Drawing::Drawn;
    const int32_t bottom = std::min(disk.Bottom(), bitmap.height() - 1);
    Drawing result = Drawing::Drawn;
    for (int32_t y = std::max(disk.Top(), 0); y <= bottom; ++y) {
        const RawRun run = disk.Row(y);
        if (run.empty())
            result = Drawing::WithEmptySpans;
        else
            DrawRow(bitmap, y, run, how);
    }
    return result;
}

void DrawLine(BitmapStore& bitmap, const Line& line, DrawType how) {
    VisibleSteps(line, bitmap.width(), bitmap.height()).ForEach([&](int32_t x, int32_t y) {
        Combine(bitmap.WriteRow(y)[x / 8], BitmapStore::MaskOf(x), how);
    });
}

}  // namespace orlix
