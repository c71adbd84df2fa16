// Erosions and dilations of bytes for any vector type. Included by the files of one instruction set each.
#pragma once

#include <cstring>

#include "binary/morphology_kernels.hpp"
#include "vectors/bit_lanes.hpp"

namespace orlix {
namespace {

template <class Lanes, bool dilate, class... Vectors>
ORLIX_INLINE typename Lanes::Vector Extreme(const Vectors&... v) {
    if constexpr (dilate)
        return Lanes::Or(v...);
    else
        return Lanes::And(v...);
}

// The last vector of each row, 1 to kBytes bytes long; its bits outside the row become what does not take part.
template <class Lanes, bool dilate>
struct LastVector {
    size_t bytes;
    typename Lanes::Vector pixels;

    ORLIX_INLINE LastVector(size_t length, uint8_t lastMask) : bytes(length) {
        uint8_t mask[Lanes::kBytes] = {};
        for (size_t i = 0; i < Lanes::kBytes; ++i) mask[i] = i + 1 < length ? 0xff : i + 1 == length ? lastMask : 0;
        pixels = Lanes::Load(mask);
    }
    ORLIX_INLINE typename Lanes::Vector Load(const uint8_t* p) const {
        const auto v = bytes == Lanes::kBytes ? Lanes::Load(p) : Lanes::LoadSome(p, bytes);
        if constexpr (dilate)
            return Lanes::And(v, pixels);
        else
            return Lanes::Or(v, Lanes::Xor(pixels, Lanes::All(0xff)));
    }
    ORLIX_INLINE void Store(uint8_t* p, const typename Lanes::Vector& v) const {
        if (bytes == Lanes::kBytes)
            Lanes::Store(p, v);
        else
            Lanes::StoreSome(p, v, bytes);
    }
};

// Two rows at a time, from left to right: what a vector of them becomes is known when the next one has been read, so
// rows can be written where they were read. The row above is kept in scratch as it was.
template <class Lanes, bool dilate, bool eight>
ORLIX_INLINE void SquareRows(const MorphologyRows& rows, uint8_t* scratch) {
    using Vector = typename Lanes::Vector;
    constexpr size_t k = Lanes::kBytes;
    constexpr uint8_t kOutside = dilate ? 0x00 : 0xff;
    const size_t full = (rows.bytes - 1) / k * k;
    const LastVector<Lanes, dilate> last(rows.bytes - full, rows.lastMask);
    uint8_t* const above = scratch;
    uint8_t* const nothing = scratch + rows.bytes;
    uint8_t* const unused = scratch + 2 * rows.bytes;
    std::memset(above, kOutside, 2 * rows.bytes);

    // What the pixels of a vector become without their neighbours in the row, and the vector whose neighbours count.
    struct Pending {
        Vector extreme;
        Vector centre;
    };
    for (int32_t y = 0; y < rows.height; y += 2) {
        const uint8_t* const first = rows.from + y * rows.fromRow;
        const uint8_t* const second = y + 1 < rows.height ? first + rows.fromRow : nothing;
        const uint8_t* const below = y + 2 < rows.height ? second + rows.fromRow : nothing;
        uint8_t* const toFirst = rows.to + y * rows.toRow;
        uint8_t* const toSecond = y + 1 < rows.height ? toFirst + rows.toRow : unused;

        Vector before[2] = {Lanes::All(kOutside), Lanes::All(kOutside)};
        Pending now[2], next[2];
        const auto read = [&](Pending * to, const Vector& a, const Vector& b, const Vector& c, const Vector& d)
            __attribute__((always_inline)) {
            const Vector middle = Extreme<Lanes, dilate>(b, c);
            to[0].extreme = Extreme<Lanes, dilate>(a, middle);
            to[1].extreme = Extreme<Lanes, dilate>(middle, d);
            to[0].centre = eight ? to[0].extreme : b;
            to[1].centre = eight ? to[1].extreme : c;
        };
        const auto readFull = [&](Pending * to, size_t i) __attribute__((always_inline)) {
            const Vector c = Lanes::Load(second + i);
            read(to, Lanes::Load(above + i), Lanes::Load(first + i), c, Lanes::Load(below + i));
            Lanes::Store(above + i, c);
        };
        const auto readLast = [&](Pending * to) __attribute__((always_inline)) {
            const Vector c = last.Load(second + full);
            read(to, last.Load(above + full), last.Load(first + full), c, last.Load(below + full));
            last.Store(above + full, c);
        };
        const auto result = [&](int row, const Vector& after) __attribute__((always_inline)) {
            const Vector& v = now[row].centre;
            return Extreme<Lanes, dilate>(now[row].extreme, Lanes::template Right<1>(Lanes::Before(before[row], v), v),
                                          Lanes::template Left<1>(v, Lanes::After(v, after)));
        };
        const auto writeFull = [&](size_t i) __attribute__((always_inline)) {
            Lanes::Store(toFirst + i, result(0, next[0].centre));
            Lanes::Store(toSecond + i, result(1, next[1].centre));
            for (int row = 0; row < 2; ++row) {
                before[row] = now[row].centre;
                now[row] = next[row];
            }
        };
        if (full > 0) {
            readFull(now, 0);
            for (size_t i = k; i < full; i += k) {
                readFull(next, i);
                writeFull(i - k);
            }
            readLast(next);
            writeFull(full - k);
        } else {
            readLast(now);
        }
        last.Store(toFirst + full, result(0, Lanes::All(kOutside)));
        last.Store(toSecond + full, result(1, Lanes::All(kOutside)));
    }
}

// A row between margins of set pixels. Vectors may go beyond the row by up to one of them.
struct PaddedRow {
    uint8_t* first;
    PaddedRow(uint8_t*& scratch, size_t bytes) : first(scratch + bytes + kRowMargin) {
        std::memset(scratch, 0xff, 3 * bytes + 2 * kRowMargin);
        scratch += 3 * bytes + 2 * kRowMargin;
    }
};

// An erosion; for a dilation of the pixels as they are not.
//
// The window reaches `before` = 8 q + s pixels back and `after` = 8 t + u ahead (0 <= s, u < 8). When q + t > 0, it
// ends in another byte than it starts in, so a pixel stays where
//  (1) all pixels from the start of its window to the end of a byte are set: the trailing set pixels of byte -q moved
//      by s, where those of the byte before count if byte -q is full;
//  (2) the same from the start of a byte to the end of the window;
//  (3) the bytes -q + 1 ... t - 1 are full: a conjunction of bytes by doubling.
// Shorter windows are built by doubling as well, pixel by pixel.
template <class Lanes, bool dilate>
ORLIX_INLINE void RowWindows(const MorphologyRows& rows, const MorphologyWindow& window, uint8_t* scratch) {
    using Vector = typename Lanes::Vector;
    constexpr auto k = static_cast<ptrdiff_t>(Lanes::kBytes);
    const auto bytes = static_cast<ptrdiff_t>(rows.bytes);
    const ptrdiff_t full = (bytes - 1) / k * k;
    const LastVector<Lanes, false> last(static_cast<size_t>(bytes - full), rows.lastMask);
    const LastVector<Lanes, true> lastClear(static_cast<size_t>(bytes - full), rows.lastMask);
    const Vector flip = Lanes::All(dilate ? 0xff : 0x00);
    const ptrdiff_t q = window.before / 8, t = window.after / 8;
    const int s = window.before % 8, u = window.after % 8;
    const PaddedRow row(scratch, rows.bytes), left(scratch, rows.bytes), right(scratch, rows.bytes);

    for (int32_t y = 0; y < rows.height; ++y) {
        const uint8_t* const from = rows.from + y * rows.fromRow;
        uint8_t* const to = rows.to + y * rows.toRow;
        for (ptrdiff_t i = 0; i < full; i += k) Lanes::Store(row.first + i, Lanes::Xor(Lanes::Load(from + i), flip));
        if constexpr (dilate)
            Lanes::Store(row.first + full, Lanes::Xor(lastClear.Load(from + full), flip));
        else
            Lanes::Store(row.first + full, last.Load(from + full));

        const auto write = [&](const auto& result) __attribute__((always_inline)) {
            for (ptrdiff_t i = 0; i < full; i += k) Lanes::Store(to + i, Lanes::Xor(result(i), flip));
            last.Store(to + full, Lanes::Xor(result(full), flip));
        };
        if (q + t == 0) {
            // Pixels ahead, from one byte before the row on, for the pixels before the first one.
            Lanes::Store(row.first - k, Lanes::All(0xff));
            const auto total = static_cast<int>(window.length());
            int length = 1;
            while (length < total) {
                const int step = length < total - length ? length : total - length;
                for (ptrdiff_t i = -k; i < bytes; i += k) {
                    const Vector v = Lanes::Load(row.first + i);
                    const Vector ahead = Lanes::Right(v, Lanes::Load(row.first + i + 1), 8 - step);
                    Lanes::Store(row.first + i, Lanes::And(v, ahead));
                }
                length += step;
            }
            write([&](ptrdiff_t i) __attribute__((always_inline)) {
                return Lanes::Right(Lanes::Load(row.first + i - 1), Lanes::Load(row.first + i), s);
            });
            continue;
        }
        for (ptrdiff_t i = 0; i < bytes; i += k) {
            const Vector v = Lanes::Load(row.first + i), isFull = Lanes::Full(v);
            const Vector behind = Lanes::And(Lanes::Trailing(Lanes::Load(row.first + i - 1)), isFull);
            const Vector ahead = Lanes::And(Lanes::Leading(Lanes::Load(row.first + i + 1)), isFull);
            Lanes::Store(left.first + i, Lanes::Right(behind, Lanes::Trailing(v), s));
            Lanes::Store(right.first + i, Lanes::Right(Lanes::Leading(v), ahead, 8 - u));
        }
        const ptrdiff_t middle = q + t - 1;
        if (q > 1) std::memset(row.first + 1 - q, 0xff, static_cast<size_t>(q - 1));
        for (ptrdiff_t length = 1; length < middle;) {
            const ptrdiff_t step = length < middle - length ? length : middle - length;
            for (ptrdiff_t i = 1 - q; i < bytes; i += k)
                Lanes::Store(row.first + i, Lanes::And(Lanes::Load(row.first + i), Lanes::Load(row.first + i + step)));
            length += step;
        }
        const auto ends = [&](ptrdiff_t i) __attribute__((always_inline)) {
            return Lanes::And(Lanes::Load(left.first + i - q), Lanes::Load(right.first + i + t));
        };
        if (middle == 0)
            write(ends);
        else
            write([&](ptrdiff_t i) __attribute__((always_inline)) {
                return Lanes::And(ends(i), Lanes::Full(Lanes::Load(row.first + i + 1 - q)));
            });
    }
}

// Blocks of as many rows as the window has (van Herk 1992; Gil and Werman 1993): the window of a pixel is the end of a
// block and the start of the next one, whose extremes are known.
template <class Lanes, bool dilate, size_t vectors>
ORLIX_INLINE void WindowStrip(const MorphologyRows& rows, const MorphologyWindow& window, size_t at, size_t some,
                              uint8_t* scratch) {
    using Vector = typename Lanes::Vector;
    constexpr size_t k = Lanes::kBytes;
    struct Strip {
        Vector v[vectors];
    };
    const auto load = [&](const uint8_t* p) __attribute__((always_inline)) {
        Strip strip;
        for (size_t i = 0; i < vectors; ++i) strip.v[i] = some == 0 ? Lanes::Load(p + i * k) : Lanes::LoadSome(p, some);
        return strip;
    };
    const auto store = [&](uint8_t * p, const Strip& strip) __attribute__((always_inline)) {
        for (size_t i = 0; i < vectors; ++i)
            if (some == 0)
                Lanes::Store(p + i * k, strip.v[i]);
            else
                Lanes::StoreSome(p, strip.v[i], some);
    };
    const auto join = [](Strip & to, const Strip& with) __attribute__((always_inline)) {
        for (size_t i = 0; i < vectors; ++i) to.v[i] = Extreme<Lanes, dilate>(to.v[i], with.v[i]);
    };
    const auto kept = [](uint8_t* p, size_t i) { return p + i * vectors * k; };
    const auto loadKept = [&](uint8_t * p, size_t i) __attribute__((always_inline)) {
        Strip strip;
        for (size_t n = 0; n < vectors; ++n) strip.v[n] = Lanes::Load(kept(p, i) + n * k);
        return strip;
    };
    const auto length = static_cast<int64_t>(window.length());
    Strip nothing;
    for (Vector& v : nothing.v) v = Lanes::All(dilate ? 0x00 : 0xff);

    uint8_t* before = scratch;                               // ends of the block before, from each of its rows on
    uint8_t* now = scratch + window.length() * vectors * k;  // of this one
    std::memset(before, dilate ? 0x00 : 0xff, window.length() * vectors * k);
    for (int64_t block = 0; block - window.after < rows.height; block += length) {
        const int64_t rest = rows.height - block;
        const int64_t here = rest < 0 ? 0 : rest < length ? rest : length;
        Strip end = nothing;
        for (int64_t i = length - 1; i >= 0; --i) {
            if (i < here) join(end, load(rows.from + static_cast<ptrdiff_t>(block + i) * rows.fromRow + at));
            for (size_t n = 0; n < vectors; ++n) Lanes::Store(kept(now, static_cast<size_t>(i)) + n * k, end.v[n]);
        }
        Strip start = nothing;
        for (int64_t i = 0; i < length; ++i) {
            if (i < here) join(start, load(rows.from + static_cast<ptrdiff_t>(block + i) * rows.fromRow + at));
            const int64_t y = block + i - window.after;
            if (y < 0 || y >= rows.height) continue;
            Strip result = start;
            if (i + 1 < length) join(result, loadKept(before, static_cast<size_t>(i + 1)));
            store(rows.to + static_cast<ptrdiff_t>(y) * rows.toRow + at, result);
        }
        uint8_t* const swap = before;
        before = now;
        now = swap;
    }
}

// Strips of half a kilobyte are as much as 32 registers of 64 bytes hold twice.
template <class Lanes, bool dilate>
ORLIX_INLINE void ColumnWindows(const MorphologyRows& rows, const MorphologyWindow& window, uint8_t* scratch) {
    constexpr size_t k = Lanes::kBytes, kWide = k == 64 ? 8 : 4;
    size_t at = 0;
    for (; at + kWide * k <= rows.bytes; at += kWide * k)
        WindowStrip<Lanes, dilate, kWide>(rows, window, at, 0, scratch);
    for (; at + k <= rows.bytes; at += k) WindowStrip<Lanes, dilate, 1>(rows, window, at, 0, scratch);
    if (at < rows.bytes) WindowStrip<Lanes, dilate, 1>(rows, window, at, rows.bytes - at, scratch);
}

}  // namespace
}  // namespace orlix
