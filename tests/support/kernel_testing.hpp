// Shared by the kernel tests: noise, pixels between guards, awkward sizes.
#pragma once

#include "support/testing.hpp"
#include "vectors/variants.hpp"

namespace orlix {

using PixelTypes = testing::Types<uint8_t, uint16_t, uint32_t, float>;
inline constexpr float kFloatInfinity = std::numeric_limits<float>::infinity();
inline constexpr float kFloatNan = std::numeric_limits<float>::quiet_NaN();
inline constexpr size_t kAwkwardSizes[] = {0,  1,  2,  3,  4,  5,  7,  8,  9,   15,  16,  17,  23,  31,  32,  33,
                                           47, 63, 64, 65, 71, 95, 96, 97, 127, 128, 129, 191, 255, 257, 511, 1000};

// Integer types: uniform over all values. float: magnitudes typical of images with some fractions, mixed with every
// special value: zeros of both signs, denormals, the ends of the range, infinities, quiet and signalling NaN with
// payloads.
template <class T>
std::vector<T> Noise(size_t n, uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<T> pixels(n);
    for (T& pixel : pixels) {
        if constexpr (std::is_same_v<T, float>) {
            constexpr uint32_t kSpecial[] = {0x00000000, 0x80000000, 0x00000001, 0x807fffff, 0x00800000, 0x7f7fffff,
                                             0xff7fffff, 0x7f800000, 0xff800000, 0x7fc00000, 0xffc12345, 0x7f800001,
                                             0x4f000000, 0xcf000000, 0x5f000000, 0x437fffff, 0x43800000, 0xbf7fffff};
            const auto bits = static_cast<uint32_t>(random());
            if (bits % 8 == 0)
                pixel = std::bit_cast<float>(kSpecial[bits / 8 % std::size(kSpecial)]);
            else if (bits % 8 == 1)
                pixel = std::bit_cast<float>(static_cast<uint32_t>(random()));
            else
                pixel = static_cast<float>(static_cast<int32_t>(bits >> 3) - 0x08000000) / 4096.0f;
        } else {
            pixel = static_cast<T>(random());
        }
    }
    return pixels;
}

// Like Noise, without NaN and infinities.
inline std::vector<float> FiniteNoise(size_t n, uint32_t seed) {
    std::vector<float> pixels = Noise<float>(n, seed);
    for (float& pixel : pixels)
        if (!(pixel >= -1e5f && pixel <= 1e5f)) pixel = 12.5f;
    return pixels;
}

// Pixels at a given offset, in pixels, from a 64-byte boundary, between guard bytes that must not change.
template <class T>
class Guarded {
public:
    Guarded(std::span<const T> pixels, size_t offset)
        : n_(pixels.size()), storage_(kGuard + 64 + (n_ + offset) * sizeof(T) + kGuard, kGuardByte) {
        const size_t address = reinterpret_cast<size_t>(storage_.data()) + kGuard;
        first_ = (address + 63) / 64 * 64 - reinterpret_cast<size_t>(storage_.data()) + offset * sizeof(T);
        if (n_ > 0) std::memcpy(storage_.data() + first_, pixels.data(), n_ * sizeof(T));
    }
    T* data() { return reinterpret_cast<T*>(storage_.data() + first_); }
    size_t size() const { return n_; }
    bool GuardsIntact() const {
        for (size_t i = 0; i < storage_.size(); ++i)
            if ((i < first_ || i >= first_ + n_ * sizeof(T)) && storage_[i] != kGuardByte) return false;
        return true;
    }

private:
    static constexpr size_t kGuard = 64;
    static constexpr unsigned char kGuardByte = 0xa5;
    size_t n_;
    std::vector<unsigned char> storage_;
    size_t first_ = 0;
};

// Compares bits; names the first difference.
template <class T>
testing::AssertionResult SameBits(const T* want, const T* got, size_t n) {
    for (size_t i = 0; i < n; ++i)
        if (std::memcmp(want + i, got + i, sizeof(T)) != 0)
            return testing::AssertionFailure()
                   << "pixel " << i << " of " << n << " is " << +got[i] << " instead of " << +want[i];
    return testing::AssertionSuccess();
}

// The same for results of arithmetic: which NaN a sum of two passes on is not stated.
template <class T>
testing::AssertionResult SameNumbers(const T* want, T* got, size_t n) {
    for (size_t i = 0; i < n; ++i)
        if (want[i] != want[i] && got[i] != got[i]) got[i] = want[i];
    return SameBits(want, got, n);
}

// run(fn, to) with the definition, the last one of the table, and with each of its variants: what they write over
// `before`, and nothing beside it, agrees.
template <class Table, class T, class Run, class Same = testing::AssertionResult (*)(const T*, T*, size_t)>
void ExpectTheDefinition(const Table& table, const std::vector<T>& before, const Run& run,
                         const Same& same = &SameNumbers<T>) {
    std::vector<T> want = before;
    run(std::end(table)[-1].fn, want.data());
    for (const auto& variant : SupportedOnThisCpu(table)) {
        Guarded<T> got(before, before.size() % 4);
        run(variant.fn, got.data());
        ASSERT_TRUE(same(want.data(), got.data(), want.size())) << variant.name;
        ASSERT_TRUE(got.GuardsIntact()) << variant.name << ", " << want.size() << " pixels";
    }
}
// The same for results whose NaN is stated, or that are none.
template <class Table, class T, class Run>
void ExpectTheBits(const Table& table, const std::vector<T>& before, const Run& run) {
    ExpectTheDefinition(table, before, run, &SameBits<T>);
}

template <class T>
std::vector<T> AllValues() {
    std::vector<T> values(size_t{1} << 8 * sizeof(T));
    for (size_t i = 0; i < values.size(); ++i) values[i] = static_cast<T>(i);
    return values;
}

}  // namespace orlix
