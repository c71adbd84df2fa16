#include <emmintrin.h>

#include <array>
#include <utility>

#include "frames/unpacking_vectors.hpp"

namespace orlix {
namespace {

// Bits of four samples, as a number of 64 bits holds them, and how far up they move to a lane of 16 bits each.
struct Move {
    uint64_t mask;
    int up;
};
template <Packing kPacking>
constexpr auto kMoves = std::array<Move, 0>();
template <>
constexpr auto kMoves<Packing::Lsb10> =
    std::array<Move, 4>{{{0x3ff, 0}, {0x3ffull << 10, 6}, {0x3ffull << 20, 12}, {0x3ffull << 30, 18}}};
template <>
constexpr auto kMoves<Packing::Lsb12> =
    std::array<Move, 4>{{{0xfff, 0}, {0xfffull << 12, 4}, {0xfffull << 24, 8}, {0xfffull << 36, 12}}};
// The second sample of a pair of 12 bits lies in order already.
template <>
constexpr auto kMoves<Packing::Pairs12> = std::array<Move, 5>{
    {{0xff, 4}, {0xf00, -8}, {0xfff000, 4}, {0xfull << 32, 0}, {0xffull << 24 | 0xfffull << 36, 12}}};
template <>
constexpr auto kMoves<Packing::Pairs10> = std::array<Move, 6>{
    {{0xff00ff, 2}, {0x300, -8}, {0x3000, 4}, {0x3ull << 32, 0}, {0xff00ffull << 24, 10}, {0x3ull << 36, 12}}};

template <Move kMove>
ORLIX_INLINE __m128i Moved(const __m128i& v) {
    const __m128i bits = _mm_and_si128(v, _mm_set1_epi64x(static_cast<int64_t>(kMove.mask)));
    if constexpr (kMove.up == 0) return bits;
    if constexpr (kMove.up < 0) return _mm_srli_epi64(bits, -kMove.up);
    return _mm_slli_epi64(bits, kMove.up);
}

// Four samples in each half.
template <Packing kPacking>
struct Block {
    static constexpr size_t kHalf = 4 / GroupOf(kPacking).samples * GroupOf(kPacking).bytes;
    static constexpr size_t kSamples = 8;
    static constexpr size_t kReads = kHalf + 8;
    ORLIX_INLINE static void Unpack(const uint8_t* groups, uint16_t* samples) {
        const __m128i v = _mm_unpacklo_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(groups)),
                                             _mm_loadl_epi64(reinterpret_cast<const __m128i*>(groups + kHalf)));
        const auto all = [&]<size_t... k>(std::index_sequence<k...>) {
            __m128i sum = _mm_setzero_si128();
            ((sum = _mm_or_si128(sum, Moved<kMoves<kPacking>[k]>(v))), ...);
            return sum;
        };
        _mm_storeu_si128(reinterpret_cast<__m128i*>(samples), all(std::make_index_sequence<kMoves<kPacking>.size()>()));
    }
};

template <int kMask>
struct Words {
    static constexpr size_t kSamples = 8, kReads = 16;
    ORLIX_INLINE static void Unpack(const uint8_t* groups, uint16_t* samples) {
        _mm_storeu_si128(
            reinterpret_cast<__m128i*>(samples),
            _mm_and_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(groups)), _mm_set1_epi16(kMask)));
    }
};
template <>
struct Block<Packing::Words10> : Words<0x3ff> {};
template <>
struct Block<Packing::Words12> : Words<0xfff> {};
template <>
struct Block<Packing::Words14> : Words<0x3fff> {};
template <>
struct Block<Packing::Words16> : Words<-1> {};

}  // namespace

template <Packing kPacking>
void Unpack_sse2(const uint8_t* groups, size_t first, size_t n, uint16_t* samples) {
    UnpackInBlocks<kPacking>(groups, first, n, samples);
}
template Kernel<UnpackFn> Unpack_sse2<Packing::Words10>;
template Kernel<UnpackFn> Unpack_sse2<Packing::Words12>;
template Kernel<UnpackFn> Unpack_sse2<Packing::Words14>;
template Kernel<UnpackFn> Unpack_sse2<Packing::Words16>;
template Kernel<UnpackFn> Unpack_sse2<Packing::Lsb10>;
template Kernel<UnpackFn> Unpack_sse2<Packing::Lsb12>;
template Kernel<UnpackFn> Unpack_sse2<Packing::Pairs10>;
template Kernel<UnpackFn> Unpack_sse2<Packing::Pairs12>;

// 48 bytes are dealt to three planes by four rounds. Each takes the bytes as two halves of 24 and interleaves them, so
// that byte i comes to 2 i modulo 47; after four rounds byte 3 k + j, j < 3, is at 16 j + k.
void Split_sse2(const uint8_t* pixels, size_t n, uint8_t* first, uint8_t* second, uint8_t* third) {
    size_t i = 0;
    for (; i + 16 <= n; i += 16) {
        const auto* const from = reinterpret_cast<const __m128i*>(pixels + 3 * i);
        __m128i a = _mm_loadu_si128(from), b = _mm_loadu_si128(from + 1), c = _mm_loadu_si128(from + 2);
        for (int round = 0; round < 4; ++round) {
            const __m128i low = _mm_unpacklo_epi8(a, _mm_unpackhi_epi64(b, b));
            const __m128i middle = _mm_unpacklo_epi8(_mm_unpackhi_epi64(a, a), c);
            const __m128i high = _mm_unpacklo_epi8(b, _mm_unpackhi_epi64(c, c));
            a = low, b = middle, c = high;
        }
        _mm_storeu_si128(reinterpret_cast<__m128i*>(first + i), a);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(second + i), b);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(third + i), c);
    }
    Split_scalar(pixels + 3 * i, n - i, first + i, second + i, third + i);
}

}  // namespace orlix
