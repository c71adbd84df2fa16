#include "numerics/elementary.hpp"

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

// Each function reduces its argument, exactly or with an error term, to a small remainder about an entry of a table.
// The polynomial is then a small correction whose rounding hardly matters. The compiler computes the tables, in pairs
// of doubles, from the series that define them.

namespace orlix {
namespace {

// ------------------------------------------------------------------------------------------------- pairs of doubles

// The unevaluated sum high + low; |low| is at most half a unit in the last place of high.
struct Pair {
    double high = 0.0;
    double low = 0.0;
};

constexpr Pair OrderedSum(double a, double b) {  // exact; |a| >= |b| or a == 0
    const double sum = a + b;
    return {sum, (a - sum) + b};
}

constexpr Pair Sum(double a, double b) {  // exact
    const double sum = a + b;
    const double partOfB = sum - a;
    return {sum, (a - (sum - partOfB)) + (b - partOfB)};
}

// Halves of 26 bits, whose products are exact.
constexpr Pair Halves(double a) {
    const double scaled = 134217729.0 * a;  // 2^27 + 1
    const double high = scaled - (scaled - a);
    return {high, a - high};
}

constexpr Pair Product(double a, double b) {  // exact
    const double product = a * b;
    const Pair x = Halves(a);
    const Pair y = Halves(b);
    return {product, ((x.high * y.high - product) + x.high * y.low + x.low * y.high) + x.low * y.low};
}

// To about 2^-104 of the result:
constexpr Pair operator+(Pair a, Pair b) {
    const Pair sum = Sum(a.high, b.high);
    return OrderedSum(sum.high, sum.low + (a.low + b.low));
}
constexpr Pair operator*(Pair a, Pair b) {
    const Pair product = Product(a.high, b.high);
    return OrderedSum(product.high, product.low + (a.high * b.low + a.low * b.high));
}
constexpr Pair operator/(Pair a, Pair b) {
    const double first = a.high / b.high;
    const Pair rest = a + b * Pair{-first};
    return OrderedSum(first, rest.high / b.high);
}

// ------------------------------------------------------------------------------------------------------------ series

// Whether a term still changes a sum of 107 bits. The series stop where none does: each step costs the compiler time.
constexpr bool IsSignificant(Pair term, Pair sum) {
    const double size = term.high < 0.0 ? -term.high : term.high;
    const double whole = sum.high < 0.0 ? -sum.high : sum.high;
    return size > whole * 0x1p-120;
}

constexpr Pair SeriesLog(Pair x) {  // 2 artanh((x - 1) / (x + 1)), for x near 1
    const Pair y = (x + Pair{-1.0}) / (x + Pair{1.0});
    const Pair square = y * y;
    Pair power = y + y;
    Pair sum;
    for (int k = 1; IsSignificant(power, sum); k += 2, power = power * square)
        sum = sum + power / Pair{static_cast<double>(k)};
    return sum;
}

constexpr Pair SeriesExp(Pair x) {
    Pair term{1.0};
    Pair sum;
    for (int k = 1; IsSignificant(term, sum); ++k) {
        sum = sum + term;
        term = term * x / Pair{static_cast<double>(k)};
    }
    return sum;
}

// x^first / first! - x^(first + 2) / (first + 2)! + ...: the cosine for first = 0, the sine for first = 1.
constexpr Pair SeriesCircular(double x, int first) {
    const Pair square = Product(x, x) * Pair{-1.0};
    Pair term{first == 0 ? 1.0 : x};
    Pair sum;
    for (int k = first; IsSignificant(term, sum); k += 2) {
        sum = sum + term;
        term = term * square / Pair{static_cast<double>((k + 1) * (k + 2))};
    }
    return sum;
}

// The multiple of 2^-bits nearest to x; |x| below 2^(51 - bits).
constexpr double RoundTo(double x, int bits) {
    const double shift = 6755399441055744.0 / static_cast<double>(uint64_t{1} << bits);  // 1.5 * 2^52 units
    return (x + shift) - shift;
}

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kRounder = 6755399441055744.0;  // 1.5 * 2^52: adding and subtracting it rounds to an integer

// --------------------------------------------------------------------------------------------------------- logarithm

// x = 2^k z with z in [0.6875, 1.375), cut into 128 intervals by the leading bits of the mantissa. For each: c near
// 1/z, a multiple of 2^-8, and -ln c in two parts of which the first is a multiple of 2^-42, as is that of ln 2: k ln 2
// - ln c is exact in the first parts. The two intervals beside 1 have c = 1, so that the result keeps its accuracy
// there.
constexpr uint64_t kLogOrigin = std::bit_cast<uint64_t>(0.6875);
constexpr int kLogIndexShift = 52 - 7;

constexpr Pair CutLog(Pair x) {
    const double high = (x.high + kRounder / 0x1p42) - kRounder / 0x1p42;
    return {high, (x.high - high) + x.low};
}

constexpr Pair kLog2 = SeriesLog(Pair{2.0});
constexpr Pair kLog2Parts = CutLog(kLog2);

struct LogEntry {
    double reciprocal;
    Pair logarithm;
};

constexpr auto kLogTable = [] {
    std::array<LogEntry, 128> table{};
    for (std::size_t i = 0; i < table.size(); ++i) {
        const uint64_t bits = kLogOrigin + (uint64_t{i} << kLogIndexShift);
        const double middle = std::bit_cast<double>(bits + (uint64_t{1} << (kLogIndexShift - 1)));
        const bool besideOne = i == 79 || i == 80;
        const double c = besideOne ? 1.0 : RoundTo(1.0 / middle, 8);
        table[i] = {c, CutLog(SeriesLog(Pair{1.0} / Pair{c}))};
    }
    return table;
}();

// ------------------------------------------------------------------------------------------------------- exponential

constexpr int kExpSteps = 128;  // of a factor 2
constexpr double kExpStepHigh = RoundTo(kLog2.high / kExpSteps, 41);
constexpr double kExpStepLow = (kLog2.high / kExpSteps - kExpStepHigh) + kLog2.low / kExpSteps;

constexpr auto kExpTable = [] {
    std::array<Pair, kExpSteps> table{};
    for (int i = 0; i < kExpSteps; ++i)
        table[static_cast<std::size_t>(i)] = SeriesExp(kLog2 * Pair{static_cast<double>(i) / kExpSteps});
    return table;
}();

double PowerOfTwo(int exponent) {  // -1022..1023
    return std::bit_cast<double>(static_cast<uint64_t>(exponent + 1023) << 52);
}

// ------------------------------------------------------------------------------------------------- circular functions

// radians = quadrant pi/2 + angle, |angle| <= pi/4 and a little; only the last two bits of the quadrant count.
struct Reduced {
    Pair angle;
    uint32_t quadrant;
};

constexpr double kQuarterPi = 0x1.921fb54442d18p-1;
constexpr double kTwoOverPi = 0x1.45f306dc9c883p-1;
constexpr Pair kHalfPi = {0x1.921fb54442d18p+0, 0x1.1a62633145c07p-54};

// Three parts of pi/2 of 35 bits, so that their products with a quadrant below 2^17 are exact, and the rest.
constexpr double kHalfPi1 = 0x1.921fb54440000p+0;
constexpr double kHalfPi2 = 0x1.68c234c400000p-39;
constexpr double kHalfPi3 = 0x1.8cc5170100000p-72;
constexpr double kHalfPi4 = 0x1.707344a409382p-105;
constexpr double kMediumLimit = 200000.0;

// 2 / pi: word j counts 2^(-32 (j + 1)).
constexpr uint32_t kTwoOverPiWords[] = {
    0xa2f9836e, 0x4e441529, 0xfc2757d1, 0xf534ddc0, 0xdb629599, 0x3c439041, 0xfe5163ab, 0xdebbc561,
    0xb7246e3a, 0x424dd2e0, 0x06492eea, 0x09d1921c, 0xfe1deb1c, 0xb129a73e, 0xe88235f5, 0x2ebb4484,
    0xe99c7026, 0xb45f7e41, 0x3991d639, 0x835339f4, 0x9c845f8b, 0xbdf9283b, 0x1ff897ff, 0xde05980f,
    0xef2f118b, 0x5a0a6d1f, 0x6d367ecf, 0x27cb09b7, 0x4f463f66, 0x9e5fea2d, 0x7527bac7, 0xebe5f17b,
    0x3d0739f7, 0x8a5292ea, 0x6bfb5fb1, 0x1f8d5d08, 0x56033046,
};

Reduced ReduceMedium(double x) {
    const double shifted = x * kTwoOverPi + kRounder;
    const double n = shifted - kRounder;
    const Pair first = Sum(x - n * kHalfPi1, -n * kHalfPi2);
    const Pair second = Sum(first.high, -n * kHalfPi3);
    return {OrderedSum(second.high, (first.low + second.low) - n * kHalfPi4),
            static_cast<uint32_t>(std::bit_cast<uint64_t>(shifted))};
}

// Multiplies the integer mantissa by the seven words of 2 / pi whose product is neither a multiple of 4 nor too small
// to matter. At least 138 bits of the fraction are correct, and no double comes closer to a multiple of pi/2 than
// 2^-62.
Reduced ReduceLarge(double x) {
    constexpr int kWords = 7;
    const uint64_t bits = std::bit_cast<uint64_t>(x);
    const int exponent = static_cast<int>(bits >> 52 & 0x7ff) - 1075;
    const uint64_t mantissa = (bits & 0xfffffffffffff) | uint64_t{1} << 52;
    const int skipped = exponent >= 2 ? (exponent - 2) / 32 : 0;

    // limbs: the product, lowest limb first; two more limbs than words for the mantissa, one for reading beyond it.
    uint32_t limbs[kWords + 3] = {};
    for (int half = 0; half < 2; ++half) {
        const uint64_t factor = half == 0 ? mantissa & 0xffffffff : mantissa >> 32;
        uint64_t carry = 0;
        for (int i = 0; i < kWords; ++i) {
            carry += factor * kTwoOverPiWords[skipped + kWords - 1 - i] + limbs[i + half];
            limbs[i + half] = static_cast<uint32_t>(carry);
            carry >>= 32;
        }
        limbs[kWords + half] = static_cast<uint32_t>(carry);
    }

    // 32 bits of the product from a position on.
    const int fractionBits = 32 * (skipped + kWords) - exponent;
    const auto word = [&](int position) {
        const uint64_t pair = limbs[position / 32] | static_cast<uint64_t>(limbs[position / 32 + 1]) << 32;
        return static_cast<uint32_t>(pair >> position % 32);
    };
    uint32_t quadrant = word(fractionBits);
    const bool above = (word(fractionBits - 32) & 0x80000000) != 0;  // at least a half: count from the next quadrant
    if (above) ++quadrant;

    Pair fraction;
    double weight = 0x1p-32;
    for (int k = 1; k <= 5; ++k, weight *= 0x1p-32) {
        const uint32_t digits = word(fractionBits - 32 * k);
        const double value = static_cast<double>(above ? ~digits : digits);  // all ones less: 1 - fraction
        const Pair sum = Sum(fraction.high, value * weight);
        fraction = OrderedSum(sum.high, fraction.low + sum.low);
    }
    if (above) fraction = {-fraction.high, -fraction.low};
    return {fraction * kHalfPi, quadrant};
}

Reduced Reduce(double x) {
    if (x <= kQuarterPi) return {{x}, 0};
    return x <= kMediumLimit ? ReduceMedium(x) : ReduceLarge(x);
}

// Sine and cosine of i / 128; the last entry lies just beyond pi/4.
struct CircularEntry {
    Pair sine;
    Pair cosine;
};

constexpr auto kCircularTable = [] {
    std::array<CircularEntry, 102> table{};
    for (std::size_t i = 0; i < table.size(); ++i) {
        const double x = static_cast<double>(i) / 128.0;
        table[i] = {SeriesCircular(x, 1), SeriesCircular(x, 0)};
    }
    return table;
}();

// For an angle of at least 0: the entry before or after it, and the sine and 1 - cosine of the rest, |rest| < 2^-8.
struct Neighbour {
    const CircularEntry& entry;
    double rest;
    double sineLow;  // sin(rest + low) - rest
    double versine;
};

Neighbour Nearest(Pair angle) {
    const double shifted = angle.high * 128.0 + kRounder;
    const auto i = static_cast<std::size_t>(std::bit_cast<uint64_t>(shifted) & 127);
    const double rest = angle.high - (shifted - kRounder) / 128.0;
    const double square = rest * rest;
    return {kCircularTable[i], rest, angle.low + rest * square * (-1.0 / 6 + square * (1.0 / 120)),
            square * (0.5 + square * (-1.0 / 24 + square * (1.0 / 720)))};
}

double SineOfReduced(Pair angle) {
    if (angle.high < 0.0) return -SineOfReduced({-angle.high, -angle.low});
    if (angle.high < 0.125) {
        const double square = angle.high * angle.high;
        const double tail =
            -1.0 / 6 + square * (1.0 / 120 + square * (-1.0 / 5040 + square * (1.0 / 362880 - square / 39916800)));
        return angle.high + (angle.low + angle.high * square * tail);
    }
    const Neighbour n = Nearest(angle);
    const double& cosine = n.entry.cosine.high;
    return n.entry.sine.high +
           (cosine * n.rest + (n.entry.sine.low + cosine * n.sineLow - n.entry.sine.high * n.versine));
}

double CosineOfReduced(Pair angle) {
    if (angle.high < 0.0) angle = {-angle.high, -angle.low};
    const Neighbour n = Nearest(angle);
    const double& sine = n.entry.sine.high;
    return n.entry.cosine.high -
           (sine * n.rest - (n.entry.cosine.low - sine * n.sineLow - n.entry.cosine.high * n.versine));
}

}  // namespace

double Log(double x) {
    uint64_t bits = std::bit_cast<uint64_t>(x);
    double k = 0.0;
    if (!(x >= std::numeric_limits<double>::min() && x < kInfinity)) {
        if (x == 0.0) return -kInfinity;
        if (!(x > 0.0)) return kNaN;
        if (x == kInfinity) return x;
        bits = std::bit_cast<uint64_t>(x * 0x1p52);
        k = -52.0;
    }
    const int64_t distance = static_cast<int64_t>(bits - kLogOrigin);
    const LogEntry& entry = kLogTable[static_cast<std::size_t>(distance >> kLogIndexShift & 127)];
    const int64_t exponent = distance >> 52;
    k += static_cast<double>(static_cast<int32_t>(exponent));
    const uint64_t mantissa = bits - (static_cast<uint64_t>(exponent) << 52);

    // r = z c - 1, from two exact products
    const double zHigh = std::bit_cast<double>(mantissa & ~uint64_t{0x7ffffff});
    const double zLow = std::bit_cast<double>(mantissa) - zHigh;
    const Pair r = OrderedSum(zHigh * entry.reciprocal - 1.0, zLow * entry.reciprocal);

    const double x1 = r.high;
    const double x2 = x1 * x1;
    const double tail = x2 * (-0.5 + x1 * (1.0 / 3)) +
                        x2 * x2 * ((-0.25 + x1 * 0.2) + x2 * ((-1.0 / 6 + x1 * (1.0 / 7)) + x2 * (-0.125 + x1 / 9)));
    const Pair sum = OrderedSum(k * kLog2Parts.high + entry.logarithm.high, x1);
    return sum.high + ((sum.low + (k * kLog2Parts.low + entry.logarithm.low + r.low)) + tail);
}

double Exp(double x) {
    if (!(x < 709.79)) {  // beyond the logarithm of the largest double, or NaN
        return x > 0.0 ? kInfinity : kNaN;
    }
    if (x < -745.14) return 0.0;

    const double shifted = x * (kExpSteps / kLog2.high) + kRounder;
    const double steps = shifted - kRounder;
    const int32_t n = static_cast<int32_t>(static_cast<uint32_t>(std::bit_cast<uint64_t>(shifted)));
    const double r = (x - steps * kExpStepHigh) - steps * kExpStepLow;

    const Pair& power = kExpTable[static_cast<std::size_t>(n & (kExpSteps - 1))];
    const double r2 = r * r;
    const double tail = r + r2 * ((0.5 + r * (1.0 / 6)) + r2 * (1.0 / 24 + r * (1.0 / 120)));
    const double value = power.high + (power.low + power.high * tail);

    const int exponent = n >> 7;
    if (exponent < -1021) return value * PowerOfTwo(exponent + 1000) * PowerOfTwo(-1000);
    return value * PowerOfTwo(exponent - 1) * 2.0;
}

double Sin(double radians) {
    if (radians < 0.0) return -Sin(-radians);
    if (radians == 0.0) return radians;  // keeps the sign of zero
    if (!(radians < kInfinity)) return kNaN;
    const Reduced reduced = Reduce(radians);
    const double magnitude = reduced.quadrant & 1 ? CosineOfReduced(reduced.angle) : SineOfReduced(reduced.angle);
    return reduced.quadrant & 2 ? -magnitude : magnitude;
}

double Cos(double radians) {
    if (radians < 0.0) radians = -radians;
    if (!(radians < kInfinity)) return kNaN;
    const Reduced reduced = Reduce(radians);
    const double magnitude = reduced.quadrant & 1 ? SineOfReduced(reduced.angle) : CosineOfReduced(reduced.angle);
    return (reduced.quadrant + 1) & 2 ? -magnitude : magnitude;
}

// Newton's iteration for sin(angle) = slope cos(angle).
double ArcTangent(double slope) {
    constexpr double kRightAngle = 1.5707963267948966;
    const double size = std::fabs(slope);
    if (size > 0x1p54) return std::copysign(kRightAngle, slope);
    const auto start = [](double t) { return t / (1 + 0.28 * t * t); };
    double angle = size <= 1 ? start(size) : kRightAngle - start(1 / size);
    for (int i = 0; i < 4; ++i) {
        const double sine = Sin(angle), cosine = Cos(angle);
        angle -= (sine - size * cosine) / (cosine + size * sine);
    }
    return std::copysign(angle, slope);
}

double ArcTangent(double y, double x) {
    constexpr double kRightAngle = 1.5707963267948966, kHalfTurn = 3.1415926535897931;
    if (std::isnan(x) || std::isnan(y)) return x + y;
    double across = std::fabs(x), up = std::fabs(y);
    if (std::isinf(across) && std::isinf(up)) across = up = 1;
    double angle = 0;
    if (up > across)
        angle = kRightAngle - ArcTangent(across / up);
    else if (up > 0)
        angle = ArcTangent(up / across);
    if (x < 0) angle = kHalfTurn - angle;
    return std::copysign(angle, y);
}

}  // namespace orlix
