// Logic of bytes for any vector type. Included by the files of one instruction set each, after its BitLanes.
#pragma once

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
    constexpr auto k = static_cast<ptrdiff_t>(Lanes::kBytes);
    const ptrdiff_t bytes = rows.bytes, skipped = rows.skipped;
    const int bits = rows.bits;
    // Bytes to which two move, neither of them the last; those at the ends take the rest of the first or last.
    const ptrdiff_t first = skipped < 0 ? 0 : skipped + 1, end = skipped <= 0 ? bytes + skipped - 1 : bytes;
    for (int32_t y = 0; y < rows.count; ++y) {
        const uint8_t* const from = rows.from + y * rows.rowBytes;
        uint8_t* const to = rows.to + y * rows.rowBytes;
        const auto move = [&](ptrdiff_t i) {
            const auto at = [&](ptrdiff_t n) {
                return n < 0 || n >= bytes ? 0u : n + 1 == bytes ? unsigned{from[n]} & rows.lastMask : from[n];
            };
            to[i] = static_cast<uint8_t>(at(i - skipped) >> bits | at(i - skipped - 1) << (8 - bits));
        };
        const auto some = [&](ptrdiff_t i, ptrdiff_t n) __attribute__((always_inline)) {
            const auto count = static_cast<size_t>(n);
            const auto before = Lanes::LoadSome(from + i - skipped - 1, count);
            Lanes::StoreSome(to + i, Lanes::Right(before, Lanes::LoadSome(from + i - skipped, count), bits), count);
        };
        // A few bytes first, so that the vectors written lie within cache lines.
        ptrdiff_t i = first;
        if (end - first >= 4 * k) {
            i += static_cast<ptrdiff_t>((0 - reinterpret_cast<uintptr_t>(to + first)) % Lanes::kBytes);
            some(first, i - first);
        }
        for (; i + k <= end; i += k) {
            const auto before = Lanes::Load(from + i - skipped - 1);
            Lanes::Store(to + i, Lanes::Right(before, Lanes::Load(from + i - skipped), bits));
        }
        if (i < end) some(i, end - i);
        for (ptrdiff_t n = 0; n < first && n < bytes; ++n) move(n);
        for (ptrdiff_t n = end < first ? first : end; n < bytes; ++n) move(n);
    }
}

}  // namespace
}  // namespace orlix
