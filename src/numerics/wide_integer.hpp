// Integers wide enough for exact power sums and moments of any histogram.
#pragma once

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace orlix {

// A signed integer of 512 bits, two's complement. Results beyond that wrap; the sums of a histogram stay far below:
//  (1) counts are below 2^31 and so are indices: the k-th power sum over bins stays below 2^(62 + 31 k);
//  (2) the widest product made of them, in the fourth central moment or when two variances are compared, below 2^436.
class WideInteger {
public:
    WideInteger(int64_t value = 0) {
        limbs_.fill(value < 0 ? ~uint32_t{0} : 0);
        limbs_[0] = static_cast<uint32_t>(value);
        limbs_[1] = static_cast<uint32_t>(value >> 32);
    }

    WideInteger& operator+=(const WideInteger& other) {
        uint64_t carry = 0;
        for (size_t i = 0; i < kLimbs; ++i, carry >>= 32) {
            carry += uint64_t{limbs_[i]} + other.limbs_[i];
            limbs_[i] = static_cast<uint32_t>(carry);
        }
        return *this;
    }

    WideInteger& operator-=(const WideInteger& other) {
        uint64_t carry = 1;
        for (size_t i = 0; i < kLimbs; ++i, carry >>= 32) {
            carry += uint64_t{limbs_[i]} + static_cast<uint32_t>(~other.limbs_[i]);
            limbs_[i] = static_cast<uint32_t>(carry);
        }
        return *this;
    }

    // Adds factor times the other.
    void AddMultiple(const WideInteger& other, uint32_t factor) {
        uint64_t carry = 0;
        for (size_t i = 0; i < kLimbs; ++i, carry >>= 32) {
            carry += uint64_t{other.limbs_[i]} * factor + limbs_[i];
            limbs_[i] = static_cast<uint32_t>(carry);
        }
    }

    friend WideInteger operator+(WideInteger a, const WideInteger& b) { return a += b; }
    friend WideInteger operator-(WideInteger a, const WideInteger& b) { return a -= b; }

    friend WideInteger operator*(const WideInteger& a, const WideInteger& b) {
        WideInteger product;
        for (size_t i = 0; i < kLimbs; ++i) {
            if (a.limbs_[i] == 0) continue;
            uint64_t carry = 0;
            for (size_t j = 0; i + j < kLimbs; ++j, carry >>= 32) {
                carry += uint64_t{a.limbs_[i]} * b.limbs_[j] + product.limbs_[i + j];
                product.limbs_[i + j] = static_cast<uint32_t>(carry);
            }
        }
        return product;
    }

    // -1, 0 or 1.
    int Sign() const {
        if (limbs_[kLimbs - 1] >> 31) return -1;
        for (const uint32_t limb : limbs_)
            if (limb) return 1;
        return 0;
    }

    // The nearest double; of two equally near ones the even one.
    double ToDouble() const {
        if (Sign() < 0) return -(WideInteger() - *this).ToDouble();
        size_t top = kLimbs - 1;
        while (top > 0 && limbs_[top] == 0) --top;
        const int length = static_cast<int>(top) * 32 + std::bit_width(limbs_[top]);
        // The leading 62 bits. The last of them is set if anything but zeros follows, so that one rounding suffices.
        const int dropped = length > 62 ? length - 62 : 0;
        const size_t first = static_cast<size_t>(dropped) / 32;
        const int offset = dropped % 32;
        const auto limb = [&](size_t i) { return i < kLimbs ? uint64_t{limbs_[i]} : 0; };
        uint64_t leading = (limb(first) | limb(first + 1) << 32) >> offset;
        if (offset) leading |= limb(first + 2) << (64 - offset);
        bool rest = (limb(first) & ((uint64_t{1} << offset) - 1)) != 0;
        for (size_t i = 0; i < first; ++i) rest = rest || limbs_[i] != 0;
        return std::ldexp(static_cast<double>(static_cast<int64_t>(leading | (rest ? 1 : 0))), dropped);
    }

private:
    static constexpr size_t kLimbs = 16;
    std::array<uint32_t, kLimbs> limbs_;  // lowest first
};

}  // namespace orlix
