#include "binary/logic_vectors.hpp"
#include "vectors/bit_lanes_avx2.hpp"

namespace orlix {

template <BitLogic how>
void Combine_avx2(uint8_t* to, const uint8_t* with, size_t bytes) {
    CombineBytes<BitLanes, how>(to, with, bytes);
}
template Kernel<CombineFn> Combine_avx2<BitLogic::And>;
template Kernel<CombineFn> Combine_avx2<BitLogic::Or>;
template Kernel<CombineFn> Combine_avx2<BitLogic::Xor>;
template Kernel<CombineFn> Combine_avx2<BitLogic::AndNot>;
template Kernel<CombineFn> Combine_avx2<BitLogic::Copy>;
template Kernel<CombineFn> Combine_avx2<BitLogic::Not>;

void MoveRows_avx2(const MovedRows& rows) { MoveRowsOf<BitLanes>(rows); }

// The processors of this variant count the bits of a word in one instruction.
uint64_t CountBits_avx2(const uint8_t* bits, size_t bytes) {
    const auto at = [](const uint8_t* p) {
        uint64_t word;
        __builtin_memcpy(&word, p, 8);
        return static_cast<uint64_t>(__builtin_popcountll(word));
    };
    uint64_t sums[4] = {};
    size_t i = 0;
    for (; i + 32 <= bytes; i += 32)
        for (size_t k = 0; k < 4; ++k) sums[k] += at(bits + i + 8 * k);
    for (; i < bytes; ++i) sums[0] += static_cast<uint64_t>(__builtin_popcount(bits[i]));
    return sums[0] + sums[1] + sums[2] + sums[3];
}

}  // namespace orlix
