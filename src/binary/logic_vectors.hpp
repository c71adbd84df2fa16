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
ORLIX_INLINE void MoveBytes(uint8_t* to, const uint8_t* from, size_t bytes, int n) {
    constexpr size_t k = Lanes::kBytes;
    size_t i = 0;
    for (; i + k <= bytes; i += k)
        Lanes::Store(to + i, Lanes::Right(Lanes::Load(from + i - 1), Lanes::Load(from + i), n));
    const size_t rest = bytes - i;
    if (rest > 0)
        Lanes::StoreSome(to + i, Lanes::Right(Lanes::LoadSome(from + i - 1, rest), Lanes::LoadSome(from + i, rest), n),
                         rest);
}

}  // namespace
}  // namespace orlix
