// Numbers of about 106 bits, each the unevaluated sum of two doubles (T. J. Dekker, 1971). They serve sums and products
// from which differences are taken later: rounding to double would lose the digits that these need.
#pragma once

namespace orlix {

// high is the sum rounded to double, low the remainder; |low| <= ulp(high) / 2. The relative error of results is a few
// units of 2^-104. Operands may be as large as 2^990; infinities and NaN give NaN.
struct DoublePair {
    double high = 0;
    double low = 0;

    DoublePair() = default;
    DoublePair(double value) : high(value) {}  // implicit: every double is such a number
    DoublePair(double h, double l) : high(h), low(l) {}

    explicit operator double() const { return high; }
    DoublePair operator-() const { return {-high, -low}; }
};

// a + b, exactly.
inline DoublePair ExactSum(double a, double b) {
    const double sum = a + b;
    const double part = sum - a;
    return {sum, (a - (sum - part)) + (b - part)};
}

// The same for |a| >= |b| or a = 0.
inline DoublePair ExactSumOrdered(double a, double b) {
    const double sum = a + b;
    return {sum, b - (sum - a)};
}

// a b, exactly (barring underflow), from the products of halves of 26 bits.
inline DoublePair ExactProduct(double a, double b) {
    constexpr double kSplit = 134217729.0;  // 2^27 + 1
    const double product = a * b;
    const double ca = kSplit * a, cb = kSplit * b;
    const double aHigh = ca - (ca - a), bHigh = cb - (cb - b);
    const double aLow = a - aHigh, bLow = b - bHigh;
    return {product, ((aHigh * bHigh - product) + aHigh * bLow + aLow * bHigh) + aLow * bLow};
}

inline DoublePair operator+(const DoublePair& a, const DoublePair& b) {
    const DoublePair high = ExactSum(a.high, b.high);
    const DoublePair low = ExactSum(a.low, b.low);
    const DoublePair sum = ExactSumOrdered(high.high, high.low + low.high);
    return ExactSumOrdered(sum.high, sum.low + low.low);
}

inline DoublePair operator-(const DoublePair& a, const DoublePair& b) { return a + -b; }

inline DoublePair operator*(const DoublePair& a, const DoublePair& b) {
    const DoublePair product = ExactProduct(a.high, b.high);
    return ExactSumOrdered(product.high, product.low + (a.high * b.low + a.low * b.high));
}

inline DoublePair operator*(const DoublePair& a, double b) {
    const DoublePair product = ExactProduct(a.high, b);
    return ExactSumOrdered(product.high, product.low + a.low * b);
}

inline DoublePair operator/(const DoublePair& a, double b) {
    const double first = a.high / b;
    const DoublePair rest = a - ExactProduct(first, b);
    const double second = rest.high / b;
    const DoublePair further = rest - ExactProduct(second, b);
    return ExactSumOrdered(first, second) + DoublePair(further.high / b);
}

inline DoublePair& operator+=(DoublePair& a, const DoublePair& b) { return a = a + b; }
inline DoublePair& operator*=(DoublePair& a, double b) { return a = a * b; }

}  // namespace orlix
