#include "binary/logic_vectors.hpp"
#include "vectors/bit_lanes_avx512.hpp"

namespace orlix {

template <BitLogic how>
void Combine_avx512(uint8_t* to, const uint8_t* with, size_t bytes) {
    CombineBytes<BitLanes, how>(to, with, bytes);
}
template Kernel<CombineFn> Combine_avx512<BitLogic::And>;
template Kernel<CombineFn> Combine_avx512<BitLogic::Or>;
template Kernel<CombineFn> Combine_avx512<BitLogic::Xor>;
template Kernel<CombineFn> Combine_avx512<BitLogic::AndNot>;
template Kernel<CombineFn> Combine_avx512<BitLogic::Copy>;
template Kernel<CombineFn> Combine_avx512<BitLogic::Not>;

uint64_t CountBits_avx512(const uint8_t* bits, size_t bytes) {
    __m512i sums[4] = {};
    const auto add = [&](size_t k, __m512i v) __attribute__((always_inline)) {
        sums[k] = _mm512_add_epi64(sums[k], _mm512_popcnt_epi64(v));
    };
    // Whole cache lines after the first bytes: vectors that straddle two take twice the loads.
    size_t i = (0 - reinterpret_cast<uintptr_t>(bits)) % 64;
    if (i > bytes) i = bytes;
    add(0, BitLanes::LoadSome(bits, i));
    for (; i + 256 <= bytes; i += 256)
        for (size_t k = 0; k < 4; ++k) add(k, BitLanes::Load(bits + i + 64 * k));
    for (; i < bytes; i += 64) add(0, BitLanes::LoadSome(bits + i, bytes - i));
    return static_cast<uint64_t>(_mm512_reduce_add_epi64(
        _mm512_add_epi64(_mm512_add_epi64(sums[0], sums[1]), _mm512_add_epi64(sums[2], sums[3]))));
}

void MoveRows_avx512(const MovedRows& rows) { MoveRowsOf<BitLanes>(rows); }

}  // namespace orlix
