// Accuracy against values known to hundreds of digits and against extended precision; then the bits of many results as
// one number, which must be the same in every build.
#include "numerics/elementary.hpp"

#include <cfloat>

#include "support/special_numbers.hpp"
#include "support/testing.hpp"

namespace orlix {
namespace {

using Function = double (*)(double);

// Where the sweeps below do not come: beside 1 and 0, at the ends of the range, beside multiples of pi/2 and far away.
struct Known {
    double argument;
    double nearest;  // the double nearest to the true value, from a computation with 1400 bits
};
const Known kLog[] = {
    {0x1.0000000000001p+0, 0x1.fffffffffffffp-53},    {0x1.fffffffffffffp-1, -0x1.0000000000000p-53},
    {0x1.0200000000000p+0, 0x1.fe02a6b106789p-8},     {0x1.fe00000000000p-1, -0x1.0080559588b35p-8},
    {0x0.0000000000001p-1022, -0x1.74385446d71c3p+9}, {0x1.0000000000000p-1022, -0x1.6232bdd7abcd2p+9},
    {0x1.fffffffffffffp+1023, 0x1.62e42fefa39efp+9},
};
const Known kExp[] = {
    {0x1.b7cdfd9d7bdbbp-34, 0x1.000000006df38p+0},    {-0x1.56e1fc2f8f359p-997, 0x1.0000000000000p+0},
    {0x1.62e42fefa39efp+9, 0x1.fffffffffff2ap+1023},  {-0x1.6232bdd7abcd2p+9, 0x1.000000000007cp-1022},
    {-0x1.74910d52d3051p+9, 0x0.0000000000001p-1022}, {-0x1.7200000000000p+9, 0x0.0000000000055p-1022},
};
const Known kSin[] = {
    {0x1.0c152382d7365p-1, 0x1.fffffffffffffp-2},     {0x1.921fb54442d18p+0, 0x1.0000000000000p+0},
    {0x1.921fb54442d18p+1, 0x1.1a62633145c07p-53},    {-0x1.921fb54442d18p+2, 0x1.1a62633145c07p-52},
    {0x1.56e1fc2f8f359p-997, 0x1.56e1fc2f8f359p-997}, {0x1.86a0000000000p+17, -0x1.24aabe12ccc46p-4},
    {0x1.0f0cf064dd592p+73, -0x1.b453ab76bf397p-1},   {0x1.6ac5b262ca1ffp+849, 0x1.0000000000000p+0},
    {0x1.fffffffffffffp+1023, 0x1.452fc98b34e97p-8},
};
const Known kCos[] = {
    {0x1.0c152382d7365p+0, 0x1.0000000000001p-1},     {0x1.921fb54442d18p+0, 0x1.1a62633145c07p-54},
    {0x1.86a0000000000p+17, 0x1.feb0fc71f0a89p-1},    {0x1.0f0cf064dd592p+73, 0x1.0be2cef01c8f4p-1},
    {0x1.6ac5b262ca1ffp+849, -0x1.14ae72e6ba22fp-61}, {0x1.fffffffffffffp+1023, -0x1.fffe62ecfab75p-1},
};

TEST(Elementary, KnownAnswersAreTheNearestDoubles) {
    const auto compare = [](Function function, std::span<const Known> answers) {
        for (const Known& known : answers)
            EXPECT_EQ(known.nearest, function(known.argument)) << "at " << known.argument;
    };
    compare(&Log, kLog);
    compare(&Exp, kExp);
    compare(&Sin, kSin);
    compare(&Cos, kCos);
    EXPECT_EQ(5e-324, Sin(5e-324));
    for (const double zero : {0.0, -0.0}) {
        EXPECT_EQ(-kInfinity, Log(zero));
        EXPECT_EQ(1, Exp(zero));
        EXPECT_EQ(1, Cos(zero));
        EXPECT_TRUE(Sin(zero) == 0 && std::signbit(Sin(zero)) == std::signbit(zero));
    }
    EXPECT_EQ(0, Log(1));
    EXPECT_EQ(kInfinity, Log(kInfinity));
    for (const double large : {709.783, DBL_MAX, kInfinity}) EXPECT_EQ(kInfinity, Exp(large));
    for (const double low : {-745.2, -DBL_MAX, -kInfinity}) EXPECT_EQ(0, Exp(low));
    for (double nan : {Log(-1.0), Log(-5e-324), Log(-kInfinity), Log(kNaN), Exp(kNaN), Sin(kNaN), Cos(kNaN),
                       Sin(kInfinity), Sin(-kInfinity), Cos(kInfinity), Cos(-kInfinity)})
        EXPECT_TRUE(std::isnan(nan));
}

// The slow road is extended precision: 11 bits more than double, so its own error is below 0.01 units of the double.
static_assert(LDBL_MANT_DIG >= 64);

long double SlowLog(double x) { return std::log(static_cast<long double>(x)); }
long double SlowExp(double x) { return std::exp(static_cast<long double>(x)); }
long double SlowArcTangent(double x) { return std::atan(static_cast<long double>(x)); }

// The sine of x + quarters pi/2.
long double SlowCircular(double x, int quarters) {
    const double n = std::floor(x / 1.5707963267948966 + 0.5);
    const long double r = ((x - n * 0x1.921fb54442p+0L) - n * 0x1.a308d31318p-41L) - n * 0x1.8a2e03707344ap-81L;
    const int quadrant = (static_cast<int>(n) + quarters) & 3;
    const long double value = quadrant % 2 ? std::cos(r) : std::sin(r);
    return quadrant < 2 ? value : -value;
}
long double SlowSin(double x) { return SlowCircular(x, 0); }
long double SlowCos(double x) { return SlowCircular(x, 1); }

// Distance to the true value in units of the last place of the double nearest to it.
double UnitsOff(double got, long double wanted) {
    const double nearest = std::abs(static_cast<double>(wanted));
    const double unit = std::nextafter(nearest, kInfinity) - nearest;
    return static_cast<double>(std::abs(got - wanted) / unit);
}

double Uniform(uint64_t& state, double low, double high) {
    state = state * 6364136223846793005u + 1442695040888963407u;
    return low + (high - low) * (static_cast<double>(state >> 11) * 0x1p-53);
}

TEST(Elementary, EverySweepIsAccurateAndHasTheSameBitsInEveryBuild) {
    // 0.53 units promised and 3 for arc tangents, 0.01 for the slow road. The hashes are this implementation's own
    // results, entered after the sweeps had passed the accuracy test.
    const struct {
        const char* name;
        Function function;
        long double (*slow)(double);  // null where it ends
        double low, high, units;
        uint64_t bits;
    } sweeps[] = {
        {"log beside 1", &Log, &SlowLog, 0.98, 1.02, 0.54, 0xbe10b1ec125e8937},
        {"log", &Log, &SlowLog, 0.01, 10.0, 0.54, 0xafc11010876c5acd},
        {"log of counts", &Log, &SlowLog, 1.0, 2147483647.0, 0.54, 0xc7fd248581c257d8},
        {"log of large values", &Log, &SlowLog, 1e9, 1e300, 0.54, 0x5fea5445b9358ee0},
        {"exp beside 0", &Exp, &SlowExp, -0.7, 0.7, 0.54, 0x76f839771bee5529},
        {"exp", &Exp, &SlowExp, -40.0, 40.0, 0.54, 0x326edd15e37839e7},
        {"exp to the ends of the normal range", &Exp, &SlowExp, -708.0, 709.7, 0.54, 0x4de2da7106a41a35},
        {"exp of subnormal results", &Exp, nullptr, -745.0, -708.0, 0, 0x225b0785481d07fd},
        {"sin within the first quadrants", &Sin, &SlowSin, -0.8, 0.8, 0.54, 0xe2658c28b06ddd97},
        {"sin within a turn", &Sin, &SlowSin, -7.0, 7.0, 0.54, 0xc53684582d522365},
        {"sin within many turns", &Sin, &SlowSin, -2.5e5, 2.5e5, 0.54, 0x95e89e7f5dbefe0b},
        {"sin far away", &Sin, nullptr, -1e22, 1e22, 0, 0xda81687d76b63002},
        {"cos within the first quadrants", &Cos, &SlowCos, -0.8, 0.8, 0.54, 0xf6684ea2b511ebd6},
        {"cos within a turn", &Cos, &SlowCos, -7.0, 7.0, 0.54, 0xfe09a3164ffa6c72},
        {"cos within many turns", &Cos, &SlowCos, -2.5e5, 2.5e5, 0.54, 0xf82878c2b9ef09b9},
        {"cos far away", &Cos, nullptr, -1e300, 1e300, 0, 0x21bd60b48db0c7ae},
        {"arc tangent of gentle slopes", &ArcTangent, &SlowArcTangent, -1.5, 1.5, 3.01, 0xa0b52d8b96be63c2},
        {"arc tangent of steep slopes", &ArcTangent, &SlowArcTangent, -1e6, 1e6, 3.01, 0xe4dec5b41b980371},
    };
    for (const auto& sweep : sweeps) {
        SCOPED_TRACE(sweep.name);
        uint64_t state = 1, hash = 0xcbf29ce484222325u;
        double worst = 0, at = 0;
        for (int i = 0; i < 20000; ++i) {
            const double x = Uniform(state, sweep.low, sweep.high), value = sweep.function(x);
            hash = (hash ^ std::bit_cast<uint64_t>(value)) * 0x100000001b3u;
            if (const double off = sweep.slow ? UnitsOff(value, sweep.slow(x)) : 0; !(off <= worst)) {
                worst = off;
                at = x;
            }
        }
        EXPECT_EQ(sweep.bits, hash);
        EXPECT_LE(worst, sweep.units) << "at " << at;
    }
}

TEST(ArcTangent, KnowsTheDirectionsOfTheAxes) {
    constexpr double kRightAngle = 1.5707963267948966;
    EXPECT_EQ(kRightAngle, ArcTangent(kInfinity));
    EXPECT_EQ(-kRightAngle, ArcTangent(-1e300));
    const struct {
        double y, x, angle;
    } cases[] = {{0, 1, 0},
                 {3, 0, kRightAngle},
                 {-3, 0, -kRightAngle},
                 {0, -2, 2 * kRightAngle},
                 {-0.0, -2, -2 * kRightAngle},
                 {5, 5, kRightAngle / 2},
                 {1e300, -1e300, 1.5 * kRightAngle},
                 {-kInfinity, kInfinity, -kRightAngle / 2},
                 {-1, kInfinity, 0},
                 {0, 0, 0}};
    for (const auto& [y, x, angle] : cases) {
        EXPECT_DOUBLE_EQ(angle, ArcTangent(y, x)) << y << ", " << x;
        EXPECT_EQ(std::signbit(y), std::signbit(ArcTangent(y, x))) << y << ", " << x;
    }
    EXPECT_DOUBLE_EQ(std::atan2(-3.0, -7.0), ArcTangent(-3, -7));
    EXPECT_TRUE(std::isnan(ArcTangent(kNaN, 1)) && std::isnan(ArcTangent(1, kNaN)));
}

// Beside the seams of the reductions two different roads must agree.
TEST(Elementary, ResultsGrowSteadilyAcrossEverySeam) {
    const auto rises = [](double (*function)(double), double x) {
        for (int i = 0; i < 40; ++i) x = std::nextafter(x, 0.0);
        for (int i = 0; i < 80; ++i) {
            const double next = std::nextafter(x, kInfinity);
            ASSERT_LE(function(x), function(next)) << "at " << x;
            x = next;
        }
    };
    for (int k = 1; k < 300; ++k) {
        rises(&Log, k / 256.0);
        rises(&Exp, (k - 0.5) * 0.6931471805599453 / 128.0);
        rises(&Sin, std::min(k / 256.0, 1.5));
    }
    rises(&Sin, 0.7853981633974483);
}

}  // namespace
}  // namespace orlix
