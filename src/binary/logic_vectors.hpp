// Logic of bytes for any vector type. Included by the files of one instruction set each, after its BitLanes.
#pragma once

#include <cstring>

#include "binary/logic_kernels.hpp"
#include "vectors/bit_lanes.hpp"

namespace orlix {
namespace {

template <class Lanes, BitLogic how>
ORLIX_INLINE typename Lanes::Vector Combined(const typename Lanes::Vector& to, const typename Lanes::Vector& with) {
    if constexpr (how == BitLogic::And) return Lanes::And(to, with);
    if constexpr (how == BitLogic::Or) return Lanes::Or(to, with);
    if constexpr (how == BitLogic::Xor) return Lanes::Xor(to, with);
    if constexpr (how == BitLogic::AndNot) return Lanes::AndNot(to, with);
    if constexpr (how == BitLogic::Copy) return with;
    if constexpr (how == BitLogic::Not) return Lanes::Xor(with, Lanes::All(0xff));
}

// A few bytes first, so that the vectors written lie within cache lines.
template <class Lanes, BitLogic how>
ORLIX_INLINE void CombineBytes(uint8_t* to, const uint8_t* with, size_t bytes) {
    constexpr size_t k = Lanes::kBytes;
    const auto some = [&](size_t i, size_t n) __attribute__((always_inline)) {
        Lanes::StoreSome(to + i, Combined<Lanes, how>(Lanes::LoadSome(to + i, n), Lanes::LoadSome(with + i, n)), n);
    };
    const auto whole = [&](size_t i) __attribute__((always_inline)) {
        Lanes::Store(to + i, Combined<Lanes, how>(Lanes::Load(to + i), Lanes::Load(with + i)));
    };
    size_t i = 0;
    if (bytes >= 8 * k) {
        i = (k - reinterpret_cast<uintptr_t>(to) % k) % k;
        if (i > 0) some(0, i);
    }
    for (; i + 4 * k <= bytes; i += 4 * k) {
        whole(i);
        whole(i + k);
        whole(i + 2 * k);
        whole(i + 3 * k);
    }
    for (; i + k <= bytes; i += k) whole(i);
    if (i < bytes) some(i, bytes - i);
}

template <class Lanes>
ORLIX_INLINE void MoveRowsOf(const MovedRows& rows) {
    using Vector = typename Lanes::Vector;
    using Seam = typename Lanes::Seam;
    constexpr auto k = static_cast<ptrdiff_t>(Lanes::kBytes);
    const ptrdiff_t bytes = rows.bytes, skipped = rows.skipped, rowBytes = rows.rowBytes;
    const int bits = rows.bits;
    const uint8_t lastMask = rows.lastMask;
    // Bytes to which whole ones move, and into the first of them background, if the first of the row does.
    const ptrdiff_t first = skipped < 0 ? 0 : skipped,
                    end = skipped > 0 || (skipped == 0 && lastMask == 0xff) ? bytes : bytes + skipped - 1;
    for (int32_t y = 0; y < rows.count; ++y) {
        const uint8_t* const from = rows.from + y * rowBytes;
        uint8_t* const to = rows.to + y * rowBytes;
        const auto move = [&](ptrdiff_t i) {
            const auto at = [&](ptrdiff_t n) {
                return n < 0 || n >= bytes ? 0u : n + 1 == bytes ? unsigned{from[n]} & lastMask : from[n];
            };
            to[i] = static_cast<uint8_t>(at(i - skipped) >> bits | at(i - skipped - 1) << (8 - bits));
        };
        const auto vector = [&](ptrdiff_t i) __attribute__((always_inline)) {
            const Vector before = Lanes::Load(from + (i - skipped - 1));
            Lanes::Store(to + i, Lanes::Right(before, Lanes::Load(from + (i - skipped)), bits));
        };
        const auto begin = [&]() __attribute__((always_inline)) {
            if (skipped < 0) return vector(0);
            const Vector v = Lanes::Load(from);
            const Vector before = Lanes::template BytesBehind<1>(Seam(Lanes::All(0), v), v);
            Lanes::Store(to + first, Lanes::Right(before, v, bits));
        };
        if (end - first > k) {
            // Vectors within cache lines; the first and the last one overlap them. Rows that are visited upwards are
            // moved from their end on: memory that is read in one direction is fetched in time.
            const ptrdiff_t start =
                first + k - static_cast<ptrdiff_t>(reinterpret_cast<uintptr_t>(to + first) % Lanes::kBytes);
            const ptrdiff_t whole = (end - start) / k;
            if (rowBytes < 0) {
                vector(end - k);
                for (ptrdiff_t n = whole; n-- > 0;) vector(start + n * k);
                begin();
            } else {
                begin();
                for (ptrdiff_t n = 0; n < whole; ++n) vector(start + n * k);
                vector(end - k);
            }
        } else if (first < end) {
            const auto count = static_cast<size_t>(end - first - 1);
            const Vector before = Lanes::LoadSome(from + (first - skipped), count);
            Lanes::StoreSome(to + first + 1,
                             Lanes::Right(before, Lanes::LoadSome(from + (first - skipped + 1), count), bits), count);
            move(first);
        }
        if (first > 0) std::memset(to, 0, static_cast<size_t>(first));
        if (end == bytes) continue;
        const ptrdiff_t rest = end < 0 ? 0 : end;
        for (ptrdiff_t i = rest; i < bytes && i < end + 2; ++i) move(i);
        if (end + 2 < bytes) std::memset(to + end + 2, 0, static_cast<size_t>(bytes - end - 2));
    }
}

}  // namespace
}  // namespace orlix
