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

// Rows with their windows of columns, as many as the window of rows has.
template <bool dilate>
void Rectangle_scalar(const MorphologyRows& rows, const MorphologyRectangle& window, uint8_t* scratch) {
    const int64_t width = WidthOf(rows);
    const auto [left, right] = window.columns;
    const auto [up, down] = window.rows;
    const int64_t kept = std::min<int64_t>(window.rows.length(), rows.height);
    const auto keptRow = [&](int64_t y) { return scratch + static_cast<size_t>(y % kept) * rows.bytes; };
    for (int64_t read = 0; read - down < rows.height; ++read) {
        if (read < rows.height) {
            const uint8_t* const row = rows.from + static_cast<ptrdiff_t>(read) * rows.fromRow;
            for (int64_t x = 0; x < width; ++x) {
                bool extreme = !dilate;
                for (int64_t i = std::max<int64_t>(0, x - left); i <= std::min(width - 1, x + right); ++i)
                    if (BitOf(row, i) == dilate) extreme = dilate;
                PutBit(keptRow(read), x, extreme);
            }
        }
        const int64_t y = read - down;
        if (y < 0) continue;
        uint8_t* const to = rows.to + static_cast<ptrdiff_t>(y) * rows.toRow;
        std::fill_n(to, rows.bytes, dilate ? 0x00 : 0xff);
        for (int64_t i = std::max<int64_t>(0, y - up); i <= std::min<int64_t>(rows.height - 1, read); ++i)
            for (size_t n = 0; n < rows.bytes; ++n)
                to[n] = static_cast<uint8_t>(dilate ? to[n] | keptRow(i)[n] : to[n] & keptRow(i)[n]);
    }
}
template Kernel<RectangleFn> Rectangle_scalar<false>;
template Kernel<RectangleFn> Rectangle_scalar<true>;

}  // namespace orlix
