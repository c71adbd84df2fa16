#include <immintrin.h>

#include "frames/unpacking_vectors.hpp"

namespace orlix {
namespace {

// Sixteen samples, eight in each half of a vector. Each lane of 16 bits gets the two bytes that hold its sample.
ORLIX_INLINE __m256i Pairs(const uint8_t* groups, size_t half, const __m128i& order) {
    const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(groups));
    const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(groups + half));
    return _mm256_shuffle_epi8(_mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1),
                               _mm256_broadcastsi128_si256(order));
}
ORLIX_INLINE void Put(uint16_t* samples, const __m256i& v) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(samples), v);
}
// a in even lanes, b in odd ones.
ORLIX_INLINE __m256i Alternating(int a, int b) { return _mm256_set1_epi32(a | b << 16); }

template <size_t kHalf>
struct Sixteen {
    static constexpr size_t kSamples = 16;
    static constexpr size_t kReads = kHalf + 16;
};

// A multiplication moves each sample to the top of its lane.
template <>
struct Block<Packing::Lsb10> : Sixteen<10> {
    ORLIX_INLINE static void Unpack(const uint8_t* groups, uint16_t* samples) {
        const __m256i v = Pairs(groups, 10, _mm_setr_epi8(0, 1, 1, 2, 2, 3, 3, 4, 5, 6, 6, 7, 7, 8, 8, 9));
        const __m256i up = _mm256_set1_epi64x(64 | 16 << 16 | int64_t{4} << 32 | int64_t{1} << 48);
        Put(samples, _mm256_srli_epi16(_mm256_mullo_epi16(v, up), 6));
    }
};
template <>
struct Block<Packing::Lsb12> : Sixteen<12> {
    ORLIX_INLINE static void Unpack(const uint8_t* groups, uint16_t* samples) {
        const __m256i v = Pairs(groups, 12, _mm_setr_epi8(0, 1, 1, 2, 3, 4, 4, 5, 6, 7, 7, 8, 9, 10, 10, 11));
        Put(samples, _mm256_srli_epi16(_mm256_mullo_epi16(v, Alternating(16, 1)), 4));
    }
};

// Lanes of 256 b0 + b1 and 256 b2 + b1.
ORLIX_INLINE __m256i SharedLow(const uint8_t* groups) {
    return Pairs(groups, 12, _mm_setr_epi8(1, 0, 1, 2, 4, 3, 4, 5, 7, 6, 7, 8, 10, 9, 10, 11));
}
template <>
struct Block<Packing::Pairs10> : Sixteen<12> {
    ORLIX_INLINE static void Unpack(const uint8_t* groups, uint16_t* samples) {
        const __m256i v = SharedLow(groups);
        const __m256i high = _mm256_and_si256(_mm256_srli_epi16(v, 6), _mm256_set1_epi16(0x3fc));
        const __m256i even = _mm256_and_si256(v, Alternating(3, 0));
        const __m256i odd = _mm256_and_si256(_mm256_srli_epi16(v, 4), Alternating(0, 3));
        Put(samples, _mm256_or_si256(high, _mm256_or_si256(even, odd)));
    }
};
template <>
struct Block<Packing::Pairs12> : Sixteen<12> {
    ORLIX_INLINE static void Unpack(const uint8_t* groups, uint16_t* samples) {
        const __m256i v = SharedLow(groups);
        const __m256i high = _mm256_and_si256(_mm256_srli_epi16(v, 4), Alternating(0xff0, 0xfff));
        Put(samples, _mm256_or_si256(high, _mm256_and_si256(v, Alternating(15, 0))));
    }
};

template <int kMask>
struct Words {
    static constexpr size_t kSamples = 16, kReads = 32;
    ORLIX_INLINE static void Unpack(const uint8_t* groups, uint16_t* samples) {
        const __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(groups));
        Put(samples, _mm256_and_si256(v, _mm256_set1_epi16(kMask)));
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

// The bytes of plane j, j < 3, among bytes 16 k to 16 k + 15 of 48, at their places in the plane; else 0.
template <int j, int k>
ORLIX_INLINE __m128i Dealt(const __m128i& v) {
    const auto from = [](int i) {
        const int byte = 3 * i + j - 16 * k;
        return static_cast<char>(byte >= 0 && byte < 16 ? byte : -1);
    };
    return _mm_shuffle_epi8(
        v, _mm_setr_epi8(from(0), from(1), from(2), from(3), from(4), from(5), from(6), from(7), from(8), from(9),
                         from(10), from(11), from(12), from(13), from(14), from(15)));
}
template <int j>
ORLIX_INLINE void PutPlane(uint8_t* plane, const __m128i& a, const __m128i& b, const __m128i& c) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(plane),
                     _mm_or_si128(Dealt<j, 0>(a), _mm_or_si128(Dealt<j, 1>(b), Dealt<j, 2>(c))));
}

}  // namespace

template <Packing kPacking>
void Unpack_avx2(const uint8_t* groups, size_t first, size_t n, uint16_t* samples) {
    UnpackInBlocks<kPacking>(groups, first, n, samples);
}
template Kernel<UnpackFn> Unpack_avx2<Packing::Words10>;
template Kernel<UnpackFn> Unpack_avx2<Packing::Words12>;
template Kernel<UnpackFn> Unpack_avx2<Packing::Words14>;
template Kernel<UnpackFn> Unpack_avx2<Packing::Words16>;
template Kernel<UnpackFn> Unpack_avx2<Packing::Lsb10>;
template Kernel<UnpackFn> Unpack_avx2<Packing::Lsb12>;
template Kernel<UnpackFn> Unpack_avx2<Packing::Pairs10>;
template Kernel<UnpackFn> Unpack_avx2<Packing::Pairs12>;

void Split_avx2(const uint8_t* pixels, size_t n, uint8_t* first, uint8_t* second, uint8_t* third) {
    size_t i = 0;
    for (; i + 16 <= n; i += 16) {
        const auto* const from = reinterpret_cast<const __m128i*>(pixels + 3 * i);
        const __m128i a = _mm_loadu_si128(from), b = _mm_loadu_si128(from + 1), c = _mm_loadu_si128(from + 2);
        PutPlane<0>(first + i, a, b, c);
        PutPlane<1>(second + i, a, b, c);
        PutPlane<2>(third + i, a, b, c);
    }
    Split_scalar(pixels + 3 * i, n - i, first + i, second + i, third + i);
}

}  // namespace orlix
