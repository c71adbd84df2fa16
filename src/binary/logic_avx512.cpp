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

void MoveBits_avx512(uint8_t* to, const uint8_t* from, size_t bytes, int n) { MoveBytes<BitLanes>(to, from, bytes, n); }

}  // namespace orlix
