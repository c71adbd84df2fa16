// The definitions of logic with bitmaps.
#include "binary/logic_kernels.hpp"

namespace orlix {

template <BitLogic how>
void Combine_scalar(uint8_t* to, const uint8_t* with, size_t bytes) {
    for (size_t i = 0; i < bytes; ++i) {
        const unsigned a = to[i], b = with[i];
        const unsigned result = how == BitLogic::And      ? a & b
                                : how == BitLogic::Or     ? a | b
                                : how == BitLogic::Xor    ? a ^ b
                                : how == BitLogic::AndNot ? a & ~b
                                : how == BitLogic::Copy   ? b
                                                          : ~b;
        to[i] = static_cast<uint8_t>(result);
    }
}
template Kernel<CombineFn> Combine_scalar<BitLogic::And>;
template Kernel<CombineFn> Combine_scalar<BitLogic::Or>;
template Kernel<CombineFn> Combine_scalar<BitLogic::Xor>;
template Kernel<CombineFn> Combine_scalar<BitLogic::AndNot>;
template Kernel<CombineFn> Combine_scalar<BitLogic::Copy>;
template Kernel<CombineFn> Combine_scalar<BitLogic::Not>;

uint64_t CountBits_scalar(const uint8_t* bits, size_t bytes) {
    uint64_t count = 0;
    for (size_t i = 0; i < bytes; ++i)
        for (unsigned rest = bits[i]; rest != 0; rest &= rest - 1) ++count;
    return count;
}

void MoveRows_scalar(const MovedRows& rows) {
    for (int32_t y = 0; y < rows.count; ++y) {
        const uint8_t* const from = rows.from + y * rows.rowBytes;
        const auto at = [&](ptrdiff_t i) {
            return i < 0 || i >= rows.bytes ? 0u : i + 1 == rows.bytes ? unsigned{from[i]} & rows.lastMask : from[i];
        };
        for (ptrdiff_t i = 0; i < rows.bytes; ++i)
            rows.to[y * rows.rowBytes + i] =
                static_cast<uint8_t>(at(i - rows.skipped) >> rows.bits | at(i - rows.skipped - 1) << (8 - rows.bits));
    }
}

}  // namespace orlix
