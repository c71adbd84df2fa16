#include "numerics/plane.hpp"

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "numerics/double_pair.hpp"

namespace orlix {
namespace {

// Sums of products of doubles in fixed point, from the square of the smallest denormal to that of the largest double.
class SumOfProducts {
public:
    void Add(double x, double y) { Add(x, y, 1); }
    void Subtract(double x, double y) { Add(x, y, -1); }

    // As often as 2^26 products have been added, so that no digit overflows.
    void TakeCarries() {
        int64_t carry = 0;
        for (int64_t& digit : digits_) {
            const int64_t sum = digit + carry;
            carry = sum >> 32;
            digit = sum & 0xffffffff;
        }
        digits_.back() += carry * 0x100000000;
    }

    ScaledPair Value() {
        TakeCarries();
        const bool negative = digits_.back() < 0;
        if (negative) {
            for (int64_t& digit : digits_) digit = -digit;
            TakeCarries();
        }
        int top = static_cast<int>(kDigits) - 1;
        while (top >= 0 && digits_[static_cast<size_t>(top)] == 0) --top;
        if (top < 0) return {};
        // The highest digits, of 97 to 128 bits, and whether there is more below them.
        double four[4];
        for (int i = 0; i < 4; ++i)
            four[i] = top < i ? 0.0 : static_cast<double>(digits_[static_cast<size_t>(top - i)]);
        bool more = false;
        for (int i = 0; i + 4 <= top; ++i) more = more || digits_[static_cast<size_t>(i)] != 0;
        const DoublePair upper = ExactSum(four[0] * 0x1p32, four[1]);
        const DoublePair lower = ExactSum(four[2] * 0x1p-32, (four[3] + (more ? 0.5 : 0.0)) * 0x1p-64);
        const DoublePair sum = upper + lower;
        return {negative ? -sum : sum, 32 * (top - 1) - 2 * 1074};
    }

    int Sign() {
        const double value = Value().value.high;
        return value > 0 ? 1 : value < 0 ? -1 : 0;
    }

private:
    struct Parts {
        uint32_t low, high;  // of the 53 bits
        uint32_t place;      // of the lowest one, from 2^-1074
        bool negative;
        explicit Parts(double v) {
            const auto bits = std::bit_cast<uint64_t>(v);
            const auto exponent = static_cast<uint32_t>(bits >> 52 & 0x7ff);
            low = static_cast<uint32_t>(bits);
            high = static_cast<uint32_t>(bits >> 32 & 0xfffff) | (exponent != 0 ? 0x100000 : 0);
            place = exponent != 0 ? exponent - 1 : 0;
            negative = bits >> 63 != 0;
        }
    };

    void Add(double x, double y, int64_t sign) {
        const Parts a(x), b(y);
        const size_t place = a.place + b.place;
        if (a.negative != b.negative) sign = -sign;
        AddAt(place, uint64_t{a.low} * b.low, sign);
        AddAt(place + 32, uint64_t{a.low} * b.high, sign);
        AddAt(place + 32, uint64_t{a.high} * b.low, sign);
        AddAt(place + 64, uint64_t{a.high} * b.high, sign);
    }
    void AddAt(size_t place, uint64_t value, int64_t sign) {
        const size_t shift = place % 32;
        int64_t* const digit = &digits_[place / 32];
        const uint64_t low = (value & 0xffffffff) << shift, high = (value >> 32) << shift;
        digit[0] += sign * static_cast<int64_t>(low & 0xffffffff);
        digit[1] += sign * static_cast<int64_t>((low >> 32) + (high & 0xffffffff));
        digit[2] += sign * static_cast<int64_t>(high >> 32);
    }

    // Two places of up to 2045, two factors of 53 bits, and room for the carries.
    static constexpr size_t kDigits = (2 * 2045 + 2 * 53) / 32 + 3;
    std::array<int64_t, kDigits> digits_ = {};  // of 32 bits each, carries not yet taken; lowest first
};

int ExactTurn(const Point& a, const Point& b, const Point& c) {
    SumOfProducts sum;
    sum.Add(b.x, c.y);
    sum.Subtract(b.x, a.y);
    sum.Subtract(a.x, c.y);
    sum.Subtract(b.y, c.x);
    sum.Add(b.y, a.x);
    sum.Add(a.y, c.x);
    return sum.Sign();
}

int SignOf(double v) { return v > 0 ? 1 : v < 0 ? -1 : 0; }

bool IsExactDifference(double a, double b) {
    const DoublePair difference = ExactSum(a, -b);
    return difference.low == 0;
}

}  // namespace

int TurnWithoutRounding(const Point& a, const Point& b, const Point& c) {
    const double bx = b.x - a.x, by = b.y - a.y, cx = c.x - a.x, cy = c.y - a.y;
    const double left = bx * cy, right = by * cx, turn = left - right;
    const double size = std::fabs(left) + std::fabs(right);
    // Pixel coordinates: nothing has been rounded.
    if (size < 0x1p53 && std::trunc(left) == left && std::trunc(right) == right && std::trunc(bx) == bx &&
        std::trunc(by) == by && std::trunc(cx) == cx && std::trunc(cy) == cy && IsExactDifference(b.x, a.x) &&
        IsExactDifference(b.y, a.y) && IsExactDifference(c.x, a.x) && IsExactDifference(c.y, a.y))
        return SignOf(turn);
    if (a == b || b == c || a == c) return 0;
    return ExactTurn(a, b, c);
}

ScaledPair TwiceSignedArea(std::span<const Point> outline) {
    SumOfProducts sum;
    for (size_t i = 0; i < outline.size(); ++i) {
        const Point &a = outline[i], &b = outline[i + 1 == outline.size() ? 0 : i + 1];
        sum.Add(a.x, b.y);
        sum.Subtract(b.x, a.y);
        if (i % 0x1000000 == 0xffffff) sum.TakeCarries();
    }
    return sum.Value();
}

double Hypotenuse(double dx, double dy) {
    // Below, the root is corrected by what its square lacks, to within 2^-100 of it. Here as well, without the last
    // bits of what lacks: lengths that round the same with 2^-90 more and less agree.
    const DoublePair xx = ExactProduct(dx, dx), yy = ExactProduct(dy, dy), sum = ExactSum(xx.high, yy.high);
    if (sum.high > 0x1p-700 && sum.high < 0x1p900) {
        const double length = std::sqrt(sum.high);
        const DoublePair reached = ExactProduct(length, length);
        const double lack = ((sum.high - reached.high) - reached.low) + (sum.low + (xx.low + yy.low));
        const double correction = lack / (2 * length), margin = length * 0x1p-90;
        const double lower = length + (correction - margin), upper = length + (correction + margin);
        if (lower == upper) return lower;
    }
    double a = std::fabs(dx), b = std::fabs(dy);
    if (std::isinf(a) || std::isinf(b)) return std::numeric_limits<double>::infinity();
    if (std::isnan(a) || std::isnan(b)) return std::numeric_limits<double>::quiet_NaN();
    const double largest = a > b ? a : b;
    if (largest == 0) return 0;
    // Squares, and what is missing of them, stay normal numbers; where they do not, they are too small to matter.
    constexpr double kLarge = 0x1p+480, kSmall = 0x1p-400;
    const double scale = largest > kLarge ? 0x1p-600 : largest < kSmall ? 0x1p+600 : 1;
    a *= scale;
    b *= scale;
    const DoublePair square = ExactProduct(a, a) + ExactProduct(b, b);
    const double root = std::sqrt(square.high);
    const DoublePair rest = square - ExactProduct(root, root);
    return (root + rest.high / (2 * root)) / scale;
}

}  // namespace orlix
