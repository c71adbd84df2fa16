// Erosions and dilations of bytes for any vector type. Included by the files of one instruction set each.
#pragma once

#include <cstring>
#include <utility>

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
        return Clean(bytes == Lanes::kBytes ? Lanes::Load(p) : Lanes::LoadSome(p, bytes));
    }
    ORLIX_INLINE typename Lanes::Vector Clean(const typename Lanes::Vector& v) const {
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
// rows can be written where they were read. Then the row above is kept in scratch as it was.
template <class Lanes, bool dilate, bool eight, bool inPlace>
ORLIX_INLINE void SquareRows(const MorphologyRows& rows, uint8_t* scratch) {
    using Vector = typename Lanes::Vector;
    using Seam = typename Lanes::Seam;
    constexpr size_t k = Lanes::kBytes;
    constexpr uint8_t kOutside = dilate ? 0x00 : 0xff;
    const size_t full = (rows.bytes - 1) / k * k;
    const LastVector<Lanes, dilate> last(rows.bytes - full, rows.lastMask);
    uint8_t* const kept = scratch;
    uint8_t* const nothing = scratch + rows.bytes;
    uint8_t* const unused = scratch + 2 * rows.bytes;
    std::memset(kept, kOutside, 2 * rows.bytes);

    // What the pixels of a vector become without their neighbours in the row, and the vector whose neighbours count.
    struct Pending {
        Vector extreme;
        Vector centre;
    };
    for (int32_t y = 0; y < rows.height; y += 2) {
        const uint8_t* const first = rows.from + y * rows.fromRow;
        const uint8_t* const second = y + 1 < rows.height ? first + rows.fromRow : nothing;
        const uint8_t* const below = y + 2 < rows.height ? second + rows.fromRow : nothing;
        const uint8_t* const above = inPlace || y == 0 ? kept : first - rows.fromRow;
        uint8_t* const toFirst = rows.to + y * rows.toRow;
        uint8_t* const toSecond = y + 1 < rows.height ? toFirst + rows.toRow : unused;

        const auto read = [&](Pending * to, const Vector& a, const Vector& b, const Vector& c, const Vector& d)
            __attribute__((always_inline)) {
            const Vector middle = Extreme<Lanes, dilate>(b, c);
            to[0].extreme = Lanes::Ordered(Extreme<Lanes, dilate>(a, middle));
            to[1].extreme = Lanes::Ordered(Extreme<Lanes, dilate>(middle, d));
            to[0].centre = eight ? to[0].extreme : Lanes::Ordered(b);
            to[1].centre = eight ? to[1].extreme : Lanes::Ordered(c);
        };
        const auto readFull = [&](Pending * to, size_t i) __attribute__((always_inline)) {
            const Vector c = Lanes::Load(second + i);
            read(to, Lanes::Load(above + i), Lanes::Load(first + i), c, Lanes::Load(below + i));
            if (inPlace) Lanes::Store(kept + i, c);
        };
        const auto readLast = [&](Pending * to) __attribute__((always_inline)) {
            const Vector c = last.Load(second + full);
            read(to, last.Load(above + full), last.Load(first + full), c, last.Load(below + full));
            if (inPlace) last.Store(kept + full, c);
        };
        const auto result = [&](const Pending& now, const Seam& before, const Seam& after)
            __attribute__((always_inline)) {
            return Lanes::Ordered(Extreme<Lanes, dilate>(now.extreme, Lanes::PixelBehind(before, now.centre),
                                                         Lanes::PixelAhead(now.centre, after)));
        };
        const Vector outside = Lanes::All(kOutside);
        Pending now[2];
        if (full > 0)
            readFull(now, 0);
        else
            readLast(now);
        Seam before[2] = {Seam(outside, now[0].centre), Seam(outside, now[1].centre)};
        const auto write = [&](size_t i, const Pending* next) __attribute__((always_inline)) {
            const Seam after[2] = {Seam(now[0].centre, next[0].centre), Seam(now[1].centre, next[1].centre)};
            Lanes::Store(toFirst + i, result(now[0], before[0], after[0]));
            Lanes::Store(toSecond + i, result(now[1], before[1], after[1]));
            for (int row = 0; row < 2; ++row) {
                before[row] = after[row];
                now[row] = next[row];
            }
        };
        if (full > 0) {
            Pending next[2];
            for (size_t i = k; i < full; i += k) {
                readFull(next, i);
                write(i - k, next);
            }
            readLast(next);
            write(full - k, next);
        }
        last.Store(toFirst + full, result(now[0], before[0], Seam(now[0].centre, outside)));
        last.Store(toSecond + full, result(now[1], before[1], Seam(now[1].centre, outside)));
    }
}
template <class Lanes, bool dilate, bool eight>
ORLIX_INLINE void Squares(const MorphologyRows& rows, uint8_t* scratch) {
    if (rows.from == rows.to)
        SquareRows<Lanes, dilate, eight, true>(rows, scratch);
    else
        SquareRows<Lanes, dilate, eight, false>(rows, scratch);
}

// A row of vectors, of which the last one ends with it.
template <class Lanes, bool dilate>
struct RowShape {
    using Vector = typename Lanes::Vector;
    size_t full;  // bytes before the last vector
    LastVector<Lanes, dilate> last;

    ORLIX_INLINE explicit RowShape(const MorphologyRows& rows)
        : full((rows.bytes - 1) / Lanes::kBytes * Lanes::kBytes), last(rows.bytes - full, rows.lastMask) {}
    size_t stride() const { return full + Lanes::kBytes; }
    ORLIX_INLINE Vector Load(const uint8_t* row, size_t i) const {
        return i < full ? Lanes::Load(row + i) : last.Load(row + full);
    }
    ORLIX_INLINE void Store(uint8_t* row, size_t i, const Vector& v) const {
        if (i < full)
            Lanes::Store(row + i, v);
        else
            last.Store(row + full, last.Clean(v));
    }
    // Calls work(i, load) for each vector; load(row) is that of a row.
    template <class Work>
    ORLIX_INLINE void ForVectors(const Work& work) const {
        for (size_t i = 0; i < full; i += Lanes::kBytes) work(i, InRow{i});
        work(full, AtEnd{*this});
    }
    struct InRow {
        size_t i;
        ORLIX_INLINE Vector operator()(const uint8_t* row) const { return Lanes::Load(row + i); }
    };
    struct AtEnd {
        const RowShape& shape;
        ORLIX_INLINE Vector operator()(const uint8_t* row) const { return shape.last.Load(row + shape.full); }
    };
    // Stores vector(i) for each of the row.
    template <class MakeVector>
    ORLIX_INLINE void ForEach(uint8_t* row, const MakeVector& vector) const {
        for (size_t i = 0; i < full; i += Lanes::kBytes) Lanes::Store(row + i, vector(i));
        last.Store(row + full, last.Clean(vector(full)));
    }
};

// Windows of columns of rows whose vectors row(i) gives, each once and in order, from left to right or back.
template <class Lanes, bool dilate>
class ColumnWindow {
    using Vector = typename Lanes::Vector;
    using Count = typename Lanes::Count;
    using Shape = RowShape<Lanes, dilate>;
    static constexpr size_t k = Lanes::kBytes;
    static constexpr uint8_t kOutside = dilate ? 0x00 : 0xff;

public:
    // Takes what it needs of the scratch.
    ColumnWindow(const Shape& shape, const MorphologyWindow& window, uint8_t*& scratch)
        : shape_(shape), window_(window) {
        while (window.after >= int64_t{1} << steps_) ++steps_;
        if (window.before > 0 && steps_ == 0) steps_ = 1;
        if (window.before > 63 || window.after > 63) steps_ = kLong;
        if (window.before == window.after && window.after % 8 == 7 && window.after <= 31)
            steps_ = kBytes + window.after / 8;
        if (steps_ == kLong) {
            // Each between as many set pixels as a window may reach.
            const size_t stride = shape.stride(), words = stride / 64 + 8;
            left_ = scratch + stride;
            right_ = left_ + stride;
            bits_ = reinterpret_cast<uint64_t*>(right_ + 2 * stride) + words;
            const size_t taken = 4 * stride + 3 * words * sizeof(uint64_t);
            std::memset(scratch, 0xff, taken);
            scratch += (taken + k - 1) / k * k;
        }
    }

    // Whether it takes two rows at a time as well: then row(i, v) gives the vectors of all.
    bool takesTwo() const { return steps_ >= kBytes; }

    template <size_t count, class Row>
    ORLIX_INLINE void operator()(const Row& row, uint8_t* const (&to)[count]) const {
        switch (steps_) {
            case kBytes:
                return Bytes<0>(row, to);
            case kBytes + 1:
                return Bytes<1>(row, to);
            case kBytes + 2:
                return Bytes<2>(row, to);
            case kBytes + 3:
                return Bytes<3>(row, to);
            default:
                break;
        }
        if constexpr (count == 1) {
            const Shape shape = shape_;
            const auto one = [ row, shape ](size_t i) __attribute__((always_inline)) {
                Vector v[1];
                if (i < shape.full)
                    row(i, typename Shape::InRow{i}, v);
                else
                    row(i, typename Shape::AtEnd{shape}, v);
                return v[0];
            };
            switch (steps_) {
                case 0:
                    return shape.ForEach(to[0], one);
                case 1:
                    return Steps<1>(one, to[0]);
                case 2:
                    return Steps<2>(one, to[0]);
                case 3:
                    return Steps<3>(one, to[0]);
                case 4:
                    return Steps<4>(one, to[0]);
                case 5:
                    return Steps<5>(one, to[0]);
                case 6:
                    return Steps<6>(one, to[0]);
                default:
                    return Long(one, to[0]);
            }
        }
    }

private:
    static constexpr int kLong = 7, kBytes = 8;

    // An erosion, or that of the pixels as they are not. Windows of 8 n + 7 pixels in either direction: of each byte's
    // pixels all reach over n bytes on both sides, and then as far into the next byte as their place in their own.
    template <int n, size_t count, class Row>
    ORLIX_INLINE_PART void Bytes(const Row row, uint8_t* const (&to)[count]) const {
        using Seam = typename Lanes::Seam;
        const Shape shape = shape_;
        const Vector flip = Lanes::All(dilate ? 0xff : 0x00), outside = Lanes::All(0xff);
        const auto read = [&](size_t i, const auto& load, Vector(&v)[count]) __attribute__((always_inline)) {
            row(i, load, v);
            for (Vector& each : v) each = Lanes::Xor(each, flip);
        };
        const auto result = [&](const Seam& before, const Vector& v, const Seam& after) __attribute__((always_inline)) {
            Vector whole = v;
            [&]<int... m>(std::integer_sequence<int, m...>) __attribute__((always_inline)) {
                ((whole = Lanes::And(whole, Lanes::template BytesBehind<m + 1>(before, v),
                                     Lanes::template BytesAhead<m + 1>(v, after))),
                 ...);
            }
            (std::make_integer_sequence<int, n>());
            return Lanes::Xor(
                Lanes::And(Lanes::Full(whole), Lanes::AllAfter(Lanes::template BytesBehind<n + 1>(before, v)),
                           Lanes::AllBefore(Lanes::template BytesAhead<n + 1>(v, after))),
                flip);
        };
        Vector v[count], next[count];
        Seam before[count];
        const typename Shape::AtEnd atEnd{shape};
        const auto write = [&](size_t i) __attribute__((always_inline)) {
            for (size_t y = 0; y < count; ++y) {
                const Seam after(v[y], next[y]);
                Lanes::Store(to[y] + i, result(before[y], v[y], after));
                before[y] = after;
                v[y] = next[y];
            }
        };
        if (shape.full > 0)
            read(0, typename Shape::InRow{0}, v);
        else
            read(0, atEnd, v);
        for (size_t y = 0; y < count; ++y) before[y] = Seam(outside, v[y]);
        if (shape.full > 0) {
            for (size_t i = k; i < shape.full; i += k) {
                read(i, typename Shape::InRow{i}, next);
                write(i - k);
            }
            read(shape.full, atEnd, next);
            write(shape.full - k);
        }
        for (size_t y = 0; y < count; ++y) shape.Store(to[y], shape.full, result(before[y], v[y], Seam(v[y], outside)));
    }

    // At most 63 pixels in either direction: extremes of 1, 2, 4 ... pixels from each one on, at last of `after` + 1,
    // then those joined with the ones that lie `before` pixels before. What lies behind a vector stays in registers.
    template <int steps, class Row>
    ORLIX_INLINE_PART void Steps(const Row row, uint8_t* to) const {
        const Shape shape = shape_;
        const Count lastStep(window_.after + 1 - (1 << (steps - 1))), before(window_.before);
        const auto result = [&](const Vector& left, const Vector& v) __attribute__((always_inline)) {
            return Lanes::Words(Extreme<Lanes, dilate>(v, Lanes::Behind(Lanes::Previous(left, v), v, before)));
        };
        Vector behind[steps + 1];  // before each step, and after the last
        for (Vector& v : behind) v = Lanes::All(kOutside);
        const auto ahead = [&](Vector v) __attribute__((always_inline)) {
            [&]<size_t... n>(std::index_sequence<n...>) __attribute__((always_inline)) {
                (Step<static_cast<int>(n), steps>(v, behind[n], lastStep), ...);
            }
            (std::make_index_sequence<steps>());
            return v;
        };
        for (size_t i = shape.full + k; i > 0; i -= k) {
            const Vector v = ahead(Lanes::Words(row(i - k)));
            if (i <= shape.full) shape.Store(to, i, result(v, behind[steps]));
            behind[steps] = v;
        }
        // Windows that start before the row reach into it.
        shape.Store(to, 0, result(ahead(Lanes::All(kOutside)), behind[steps]));
    }
    template <int n, int steps>
    ORLIX_INLINE static void Step(Vector& v, Vector& behind, const Count& last) {
        const Vector next = Lanes::Next(v, behind);
        behind = v;
        if constexpr (n + 1 < steps)
            v = Extreme<Lanes, dilate>(v, Lanes::template Ahead<1 << n>(v, next));
        else
            v = Extreme<Lanes, dilate>(v, Lanes::Ahead(v, next, last));
    }

    // An erosion; for a dilation of the pixels as they are not. A window that reaches 64 q + s pixels back and 64 t + u
    // ahead (0 <= s, u < 64, q + t > 0) ends in another word than it starts in, so a pixel stays where
    //  (1) all pixels from the start of its window to the end of a word are set: the set pixels at the end of word -q,
    //      moved by s, with those of the word before if word -q is full;
    //  (2) the same from the start of a word to the end of the window;
    //  (3) the words -q + 1 ... t - 1 are full: a bit for each word, conjunctions by doubling.
    template <class Row>
    ORLIX_INLINE_PART void Long(const Row row, uint8_t* to) const {
        constexpr size_t kWords = k / 8;
        // Copies: the compiler takes bytes that are stored for members that may change.
        const Shape shape = shape_;
        uint8_t* const left = left_;
        uint8_t* const right = right_;
        uint64_t* const bits = bits_;
        const ptrdiff_t q = window_.before / 64, t = window_.after / 64, middle = q + t - 1;
        const Count back(window_.before % 64), ahead(window_.after % 64);
        const Vector flip = Lanes::All(dilate ? 0xff : 0x00), ones = Lanes::All(0xff);

        // The word before a vector is known one vector later.
        Vector start = ones;
        uint64_t full = 0;
        const auto storeLeft = [&](size_t i, const Vector& end, const Vector& endBefore)
            __attribute__((always_inline)) {
            const Vector previous =
                Lanes::And(Lanes::Previous(endBefore, end), Lanes::Expand(static_cast<unsigned>(full)));
            Lanes::Store(left + i, Lanes::Behind(previous, end, back));
        };
        Vector end = ones;
        for (size_t i = shape.full + k; i > 0; i -= k) {
            const Vector v = Lanes::Words(Lanes::Xor(row(i - k), flip));
            const Vector endHere = Lanes::Trailing(v), startHere = Lanes::Leading(v);
            if (i <= shape.full) storeLeft(i, end, endHere);
            end = endHere;
            full = Lanes::FullWords(v);
            const Vector next = Lanes::And(Lanes::Next(startHere, start), Lanes::Expand(static_cast<unsigned>(full)));
            Lanes::Store(right + i - k, Lanes::Ahead(startHere, next, ahead));
            start = startHere;
            const size_t word = (i - k) / 8;
            const uint64_t place = ((uint64_t{1} << kWords) - 1) << word % 64;
            bits[word / 64] = (bits[word / 64] & ~place) | full << word % 64;
        }
        storeLeft(0, end, ones);

        const auto words = static_cast<ptrdiff_t>(shape.full / 512 + 1), first = -(q / 64) - 1;
        const auto bitsAt = [&](ptrdiff_t i) {
            const uint64_t* const p = bits + (i >> 6);
            return i % 64 == 0 ? p[0] : p[0] >> (i & 63) | p[1] << (64 - (i & 63));
        };
        for (ptrdiff_t i = first; i < 0; ++i) bits[i] = ~uint64_t{0};
        for (ptrdiff_t length = 1; length < middle;) {
            const ptrdiff_t step = middle - length < length ? middle - length : length;
            for (ptrdiff_t i = first; i < words; ++i) bits[i] &= bitsAt(64 * i + step);
            length += step;
        }
        shape.ForEach(
            to, [&](size_t i) __attribute__((always_inline)) {
                const auto x = static_cast<ptrdiff_t>(i);
                const auto inside = middle == 0 ? ~0u : static_cast<unsigned>(bitsAt(x / 8 + 1 - q));
                const Vector ends = Lanes::And(Lanes::Load(left + x - 8 * q), Lanes::Load(right + x + 8 * t));
                return Lanes::Xor(Lanes::Words(Lanes::And(ends, Lanes::Expand(inside))), flip);
            });
    }

    const Shape& shape_;
    MorphologyWindow window_;
    int steps_ = 0;
    uint8_t* left_ = nullptr;
    uint8_t* right_ = nullptr;
    uint64_t* bits_ = nullptr;
};

// Windows of rows in blocks of as many rows as the window has (van Herk 1992; Gil and Werman 1993): the window of a
// pixel is the end of a block and the start of the next one, whose extremes are known. Each row is read twice, soon
// after each other, and takes its window of columns on the way to its place.
template <class Lanes, bool dilate>
ORLIX_INLINE void RowWindows(const MorphologyRows& rows, const MorphologyWindow& window,
                             const RowShape<Lanes, dilate>& shape, const ColumnWindow<Lanes, dilate>& columns,
                             uint8_t* scratch) {
    using Vector = typename Lanes::Vector;
    constexpr uint8_t kOutside = dilate ? 0x00 : 0xff;
    const size_t stride = shape.stride();
    const int64_t length = window.length(), most = length < rows.height ? length : rows.height;
    uint8_t* const nothing = scratch;
    uint8_t* const start = nothing + stride;  // of the block, up to the row that is read
    // The ends of the block before, and of this one, from each of their rows on.
    uint8_t* before = start + stride;
    uint8_t* now = before + static_cast<size_t>(most) * stride;
    std::memset(nothing, kOutside, stride);
    int64_t ends = 0;  // rows of the block before
    for (int64_t block = 0; block - window.after < rows.height; block += length) {
        const int64_t rest = rows.height - block, here = rest < 0 ? 0 : rest < length ? rest : length;
        const auto rowAt = [&](int64_t i) {
            return i < here ? rows.from + static_cast<ptrdiff_t>(block + i) * rows.fromRow : nothing;
        };
        const uint8_t* next = nothing;
        for (int64_t i = here; i > 0;) {  // mostly two at a time: what lies below is read once
            const uint8_t *const below = next, *const lower = rowAt(--i);
            uint8_t* const end = now + static_cast<size_t>(i) * stride;
            next = end;
            if (i == 0) {
                shape.ForVectors([&](size_t x, const auto& load) __attribute__((always_inline)) {
                    Lanes::Store(end + x, Extreme<Lanes, dilate>(load(lower), Lanes::Load(below + x)));
                });
                break;
            }
            const uint8_t* const upper = rowAt(--i);
            uint8_t* const upperEnd = end - stride;
            next = upperEnd;
            shape.ForVectors([&](size_t x, const auto& load) __attribute__((always_inline)) {
                const Vector v = Extreme<Lanes, dilate>(load(lower), Lanes::Load(below + x));
                Lanes::Store(end + x, v);
                Lanes::Store(upperEnd + x, Extreme<Lanes, dilate>(load(upper), v));
            });
        }
        std::memset(start, kOutside, stride);
        const auto endAt = [&](int64_t i) {
            return i + 1 < ends ? before + static_cast<size_t>(i + 1) * stride : nothing;
        };
        const auto toAt = [&](int64_t i) {
            return rows.to + static_cast<ptrdiff_t>(block + i - window.after) * rows.toRow;
        };
        const int64_t stop = length < rows.height + window.after - block ? length : rows.height + window.after - block;
        for (int64_t i = 0; i < stop; ++i) {
            if (block + i < window.after) {
                const uint8_t* const row = rowAt(i);
                shape.ForVectors([&](size_t x, const auto& load) __attribute__((always_inline)) {
                    Lanes::Store(start + x, Extreme<Lanes, dilate>(Lanes::Load(start + x), load(row)));
                });
            } else if (columns.takesTwo() && i + 1 < stop) {
                const uint8_t *const first = rowAt(i), *const second = rowAt(i + 1), *const firstEnd = endAt(i),
                                     *const secondEnd = endAt(i + 1);
                columns(
                    [=](size_t x, const auto& load, Vector(&v)[2]) __attribute__((always_inline)) {
                        const Vector one = Extreme<Lanes, dilate>(Lanes::Load(start + x), load(first));
                        const Vector two = Extreme<Lanes, dilate>(one, load(second));
                        Lanes::Store(start + x, two);
                        v[0] = Extreme<Lanes, dilate>(one, Lanes::Load(firstEnd + x));
                        v[1] = Extreme<Lanes, dilate>(two, Lanes::Load(secondEnd + x));
                    },
                    {toAt(i), toAt(i + 1)});
                ++i;
            } else {
                const uint8_t *const row = rowAt(i), *const end = endAt(i);
                columns(
                    [=](size_t x, const auto& load, Vector(&v)[1]) __attribute__((always_inline)) {
                        const Vector one = Extreme<Lanes, dilate>(Lanes::Load(start + x), load(row));
                        Lanes::Store(start + x, one);
                        v[0] = Extreme<Lanes, dilate>(one, Lanes::Load(end + x));
                    },
                    {toAt(i)});
            }
        }
        uint8_t* const swap = before;
        before = now;
        now = swap;
        ends = here;
    }
}

// The row above is kept in scratch as it was.
template <class Lanes, bool dilate>
ORLIX_INLINE void ThreeRows(const MorphologyRows& rows, const RowShape<Lanes, dilate>& shape, uint8_t* scratch) {
    using Vector = typename Lanes::Vector;
    uint8_t* const above = scratch;
    uint8_t* const nothing = above + shape.stride();
    std::memset(scratch, dilate ? 0x00 : 0xff, 2 * shape.stride());
    for (int32_t y = 0; y < rows.height; ++y) {
        const uint8_t* const row = rows.from + y * rows.fromRow;
        const uint8_t* const below = y + 1 < rows.height ? row + rows.fromRow : nothing;
        shape.ForEach(
            rows.to + y * rows.toRow, [&](size_t x) __attribute__((always_inline)) {
                const Vector v = shape.Load(row, x);
                const Vector extreme = Extreme<Lanes, dilate>(Lanes::Load(above + x), v, shape.Load(below, x));
                Lanes::Store(above + x, v);
                return extreme;
            });
    }
}

template <class Lanes, bool dilate>
ORLIX_INLINE void Rectangles(const MorphologyRows& rows, const MorphologyRectangle& window, uint8_t* scratch) {
    using Vector = typename Lanes::Vector;
    scratch += (0 - reinterpret_cast<uintptr_t>(scratch)) % Lanes::kBytes;
    const RowShape<Lanes, dilate> shape(rows);
    if (window.columns.length() == 1 && window.rows.before == 1 && window.rows.after == 1)
        return ThreeRows<Lanes, dilate>(rows, shape, scratch);
    const ColumnWindow<Lanes, dilate> columns(shape, window.columns, scratch);
    if (window.rows.length() > 1) return RowWindows<Lanes, dilate>(rows, window.rows, shape, columns, scratch);
    for (int32_t y = 0; y < rows.height; ++y) {
        const uint8_t* const from = rows.from + y * rows.fromRow;
        columns([=](size_t, const auto& load, Vector(&v)[1]) __attribute__((always_inline)) { v[0] = load(from); },
                {rows.to + y * rows.toRow});
    }
}

}  // namespace
}  // namespace orlix
