// The definitions of erosions and dilations: pixel by pixel, from copies of what has been overwritten.
#include <algorithm>

#include "binary/morphology_kernels.hpp"

namespace orlix {
namespace {

bool BitOf(const uint8_t* row, int64_t x) { return (row[x / 8] & (0x80 >> (x % 8))) != 0; }

int64_t WidthOf(const MorphologyRows& rows) {
    return 8 * static_cast<int64_t>(rows.bytes) - 8 + __builtin_popcount(rows.lastMask);
}

void PutBit(uint8_t* row, int64_t x, bool bit) {
    const int mask = 0x80 >> (x % 8);
    row[x / 8] = static_cast<uint8_t>(bit ? row[x / 8] | mask : row[x / 8] & ~mask);
}

}  // namespace

template <bool dilate, bool eight>
void Square_scalar(const MorphologyRows& rows, uint8_t* scratch) {
    const int64_t width = WidthOf(rows);
    uint8_t* const above = scratch;
    uint8_t* const current = scratch + rows.bytes;
    for (int32_t y = 0; y < rows.height; ++y) {
        const uint8_t* const row = rows.from + y * rows.fromRow;
        std::copy_n(row, rows.bytes, current);
        for (int64_t x = 0; x < width; ++x) {
            bool extreme = BitOf(current, x);
            const auto join = [&](const uint8_t* neighbours, int64_t column) {
                if (column >= 0 && column < width && BitOf(neighbours, column) == dilate) extreme = dilate;
            };
            for (int64_t dx = -1; dx <= 1; ++dx) {
                join(current, x + dx);
                if (!eight && dx != 0) continue;
                if (y > 0) join(above, x + dx);
                if (y + 1 < rows.height) join(row + rows.fromRow, x + dx);
            }
            PutBit(rows.to + y * rows.toRow, x, extreme);
        }
        std::copy_n(current, rows.bytes, above);
    }
}
template Kernel<SquareFn> Square_scalar<false, false>;
template Kernel<SquareFn> Square_scalar<false, true>;
template Kernel<SquareFn> Square_scalar<true, false>;
template Kernel<SquareFn> Square_scalar<true, true>;

template <bool dilate>
void RowWindow_scalar(const MorphologyRows& rows, const MorphologyWindow& window, uint8_t* scratch) {
    const int64_t width = WidthOf(rows);
    for (int32_t y = 0; y < rows.height; ++y) {
        std::copy_n(rows.from + y * rows.fromRow, rows.bytes, scratch);
        for (int64_t x = 0; x < width; ++x) {
            const int64_t end = std::min(width - 1, x + window.after);
            bool extreme = !dilate;
            for (int64_t i = std::max<int64_t>(0, x - window.before); i <= end; ++i)
                if (BitOf(scratch, i) == dilate) extreme = dilate;
            PutBit(rows.to + y * rows.toRow, x, extreme);
        }
    }
}
template Kernel<RowWindowFn> RowWindow_scalar<false>;
template Kernel<RowWindowFn> RowWindow_scalar<true>;

// Column by column of bytes: scratch keeps as many of them as the window has.
template <bool dilate>
void ColumnWindow_scalar(const MorphologyRows& rows, const MorphologyWindow& window, uint8_t* scratch) {
    const auto length = static_cast<int64_t>(window.length());
    for (size_t i = 0; i < rows.bytes; ++i) {
        const auto keep = [&](int64_t y) {
            if (y < rows.height)
                scratch[y % length] = rows.from[static_cast<ptrdiff_t>(y) * rows.fromRow + static_cast<ptrdiff_t>(i)];
        };
        for (int64_t y = 0; y < window.after; ++y) keep(y);
        for (int64_t y = 0; y < rows.height; ++y) {
            keep(y + window.after);
            const int64_t end = std::min<int64_t>(rows.height - 1, y + window.after);
            unsigned extreme = dilate ? 0x00 : 0xff;
            for (int64_t k = std::max<int64_t>(0, y - window.before); k <= end; ++k)
                extreme = dilate ? extreme | scratch[k % length] : extreme & scratch[k % length];
            rows.to[static_cast<ptrdiff_t>(y) * rows.toRow + static_cast<ptrdiff_t>(i)] = static_cast<uint8_t>(extreme);
        }
    }
}
template Kernel<ColumnWindowFn> ColumnWindow_scalar<false>;
template Kernel<ColumnWindowFn> ColumnWindow_scalar<true>;

}  // namespace orlix
