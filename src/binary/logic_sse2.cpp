#include "binary/logic_vectors.hpp"
#include "vectors/bit_lanes_sse2.hpp"

namespace orlix {

template <BitLogic how>
void Combine_sse2(uint8_t* to, const uint8_t* with, size_t bytes) {
    CombineBytes<BitLanes, how>(to, with, bytes);
}
template Kernel<CombineFn> Combine_sse2<BitLogic::And>;
template Kernel<CombineFn> Combine_sse2<BitLogic::Or>;
template Kernel<CombineFn> Combine_sse2<BitLogic::Xor>;
template Kernel<CombineFn> Combine_sse2<BitLogic::AndNot>;
template Kernel<CombineFn> Combine_sse2<BitLogic::Copy>;
template Kernel<CombineFn> Combine_sse2<BitLogic::Not>;

void MoveRows_sse2(const MovedRows& rows) { MoveRowsOf<BitLanes>(rows); }

// Adds neighbouring bits, pairs and fours.
uint64_t CountBits_sse2(const uint8_t* bits, size_t bytes) {
    const auto all = BitLanes::All;
    __m128i sums = _mm_setzero_si128();
    const auto add = [&](__m128i v) {
        v = _mm_sub_epi8(v, _mm_and_si128(_mm_srli_epi16(v, 1), all(0x55)));
        v = _mm_add_epi8(_mm_and_si128(v, all(0x33)), _mm_and_si128(_mm_srli_epi16(v, 2), all(0x33)));
        v = _mm_and_si128(_mm_add_epi8(v, _mm_srli_epi16(v, 4)), all(0x0f));
        sums = _mm_add_epi64(sums, _mm_sad_epu8(v, _mm_setzero_si128()));
    };
    size_t i = 0;
    for (; i + 16 <= bytes; i += 16) add(BitLanes::Load(bits + i));
    if (i < bytes) add(BitLanes::LoadSome(bits + i, bytes - i));
    uint64_t halves[2];
    std::memcpy(halves, &sums, sizeof sums);
    return halves[0] + halves[1];
}

}  // namespace orlix
