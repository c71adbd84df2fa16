#include <immintrin.h>

#include "files/checksums.hpp"

namespace orlix {
namespace {

// ------------------------------------------------------------------------------------------------------------- CRC-32
//
// The bytes are a polynomial over bits, the first bit of the file its highest power, of which CRC-32 is the remainder
// modulo kPolynomial. Bits are stored from the highest power down, the lowest bit of a byte first.

// x^n modulo x^32 + x^26 + ... + 1, shifted by one bit: the product of two such numbers, without carries, lacks one.
constexpr int64_t Power(unsigned n) {
    constexpr uint32_t kPolynomial = 0xEDB88320;  // without x^32
    uint32_t power = 0x80000000;                  // x^0
    for (; n > 0; --n) power = power >> 1 ^ (power & 1 ? kPolynomial : 0);
    return static_cast<int64_t>(power) << 1;
}

__m128i Load(const uint8_t* bytes) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)); }

// For bytes that lie so many bits behind: their halves are multiplied by the power of x by which they are ahead.
template <unsigned kBits>
__m128i FoldPowers() {
    constexpr int64_t kFirst = Power(kBits + 32), kSecond = Power(kBits - 32);
    return _mm_set_epi64x(kSecond, kFirst);
}

// What has the same remainder as `folded` followed by bytes, if `powers` belong to their distance.
__m128i Fold(__m128i folded, __m128i powers, __m128i bytes) {
    const __m128i first = _mm_clmulepi64_si128(folded, powers, 0x00);
    const __m128i second = _mm_clmulepi64_si128(folded, powers, 0x11);
    return _mm_xor_si128(_mm_xor_si128(first, second), bytes);
}

// ------------------------------------------------------------------------------------------------------------ Adler-32

constexpr uint32_t kAdlerModulus = 65521;

uint64_t Total(__m256i sums) {
    alignas(32) uint64_t lanes[4];
    _mm256_store_si256(reinterpret_cast<__m256i*>(lanes), sums);
    return lanes[0] + lanes[1] + lanes[2] + lanes[3];
}

}  // namespace

uint32_t Crc32_avx2(uint32_t checksum, const uint8_t* bytes, size_t size) {
    constexpr size_t kStep = 64;
    if (size < 2 * kStep) return Crc32_scalar(checksum, bytes, size);

    // The checksum is complemented, and what it stands for precedes the next bytes.
    __m128i folded[4];
    for (size_t i = 0; i < 4; ++i) folded[i] = Load(bytes + 16 * i);
    folded[0] = _mm_xor_si128(folded[0], _mm_cvtsi32_si128(static_cast<int>(~checksum)));
    const __m128i byStep = FoldPowers<8 * kStep>(), byVector = FoldPowers<128>();
    for (bytes += kStep, size -= kStep; size >= kStep; bytes += kStep, size -= kStep)
        for (size_t i = 0; i < 4; ++i) folded[i] = Fold(folded[i], byStep, Load(bytes + 16 * i));
    for (size_t i = 1; i < 4; ++i) folded[i] = Fold(folded[i - 1], byVector, folded[i]);
    for (; size >= 16; bytes += 16, size -= 16) folded[3] = Fold(folded[3], byVector, Load(bytes));

    alignas(16) uint8_t rest[16];
    _mm_store_si128(reinterpret_cast<__m128i*>(rest), folded[3]);
    return Crc32_scalar(Crc32_scalar(~uint32_t{0}, rest, sizeof rest), bytes, size);
}

// The low half is 1 plus the sum of the bytes, the high half the sum of all values that the low half had on the way.
uint32_t Adler32_avx2(uint32_t checksum, const uint8_t* bytes, size_t size) {
    constexpr size_t kStep = 32, kLargestBlock = 1024 * kStep;  // lanes of 32 bits hold 2^31 / (2 * 255 * 32) steps
    const __m256i weights = _mm256_setr_epi8(32, 31, 30, 29, 28, 27, 26, 25, 24, 23, 22, 21, 20, 19, 18, 17, 16, 15, 14,
                                             13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1);
    const __m256i ones = _mm256_set1_epi16(1), zero = _mm256_setzero_si256();
    uint64_t low = checksum & 0xFFFF, high = checksum >> 16;
    while (size >= kStep) {
        const size_t block = size < kLargestBlock ? size / kStep * kStep : kLargestBlock;
        // Of the block: the sum of the bytes, the sums of all bytes before each step, and those within the steps.
        __m256i sum = zero, before = zero, within = zero;
        for (size_t i = 0; i < block; i += kStep) {
            const __m256i step = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes + i));
            before = _mm256_add_epi64(before, sum);
            sum = _mm256_add_epi64(sum, _mm256_sad_epu8(step, zero));
            within = _mm256_add_epi32(within, _mm256_madd_epi16(_mm256_maddubs_epi16(step, weights), ones));
        }
        const __m256i pairs = _mm256_add_epi64(_mm256_srli_epi64(within, 32), _mm256_blend_epi32(within, zero, 0xAA));
        high = (high + low * block + Total(before) * kStep + Total(pairs)) % kAdlerModulus;
        low = (low + Total(sum)) % kAdlerModulus;
        bytes += block;
        size -= block;
    }
    return Adler32_scalar(static_cast<uint32_t>(high << 16 | low), bytes, size);
}

}  // namespace orlix
