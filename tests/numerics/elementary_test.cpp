// Accuracy against values known to hundreds of digits and against series in extended precision; then the bits of many
// results as one number, which must be the same in every build.
#include "numerics/elementary.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <limits>

namespace {

using orlix::Cos;
using orlix::Exp;
using orlix::Log;
using orlix::Sin;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// ------------------------------------------------------------------------------------------------------ known answers

struct Known {
    double argument;
    double nearest;  // the double nearest to the true value, from a computation with 1400 bits
};

const Known kLog[] = {
    {0x1.0000000000000p+1, 0x1.62e42fefa39efp-1},     {0x1.4000000000000p+3, 0x1.26bb1bbb55516p+1},
    {0x1.0000000000000p-1, -0x1.62e42fefa39efp-1},    {0x1.8000000000000p+1, 0x1.193ea7aad030bp+0},
    {0x1.999999999999ap-4, -0x1.26bb1bbb55515p+1},    {0x1.0000000000001p+0, 0x1.fffffffffffffp-53},
    {0x1.fffffffffffffp-1, -0x1.0000000000000p-53},   {0x1.0200000000000p+0, 0x1.fe02a6b106789p-8},
    {0x1.fe00000000000p-1, -0x1.0080559588b35p-8},    {0x1.6000000000000p-1, -0x1.7fafa3bd8151cp-2},
    {0x1.6000000000000p+0, 0x1.4618bc21c5ec2p-2},     {0x1.0000000000000p+16, 0x1.62e42fefa39efp+3},
    {0x1.fffffffc00000p+30, 0x1.57cd0e7006820p+4},    {0x0.0000000000001p-1022, -0x1.74385446d71c3p+9},
    {0x1.0000000000000p-1022, -0x1.6232bdd7abcd2p+9}, {0x1.fffffffffffffp+1023, 0x1.62e42fefa39efp+9},
};
const Known kExp[] = {
    {0x1.0000000000000p+0, 0x1.5bf0a8b145769p+1},     {-0x1.0000000000000p+0, 0x1.78b56362cef38p-2},
    {0x1.0000000000000p-1, 0x1.a61298e1e069cp+0},     {-0x1.0000000000000p-1, 0x1.368b2fc6f960ap-1},
    {0x1.62e42fefa39efp-1, 0x1.0000000000000p+1},     {0x1.b7cdfd9d7bdbbp-34, 0x1.000000006df38p+0},
    {-0x1.56e1fc2f8f359p-997, 0x1.0000000000000p+0},  {0x1.62e42fefa39efp+9, 0x1.fffffffffff2ap+1023},
    {-0x1.6232bdd7abcd2p+9, 0x1.000000000007cp-1022}, {-0x1.74910d52d3051p+9, 0x0.0000000000001p-1022},
    {-0x1.7200000000000p+9, 0x0.0000000000055p-1022}, {-0x1.29ae147ae147bp+2, 0x1.38ec55198d0aep-7},
    {0x1.4400000000000p+4, 0x1.290d76d1966a9p+29},
};
const Known kSin[] = {
    {0x1.0000000000000p+0, 0x1.aed548f090ceep-1},     {0x1.0000000000000p-1, 0x1.eaee8744b05f0p-2},
    {0x1.0c152382d7365p-1, 0x1.fffffffffffffp-2},     {0x1.0c152382d7365p-1, 0x1.fffffffffffffp-2},
    {0x1.921fb54442d18p-1, 0x1.6a09e667f3bccp-1},     {0x1.921fb54442d18p+0, 0x1.0000000000000p+0},
    {0x1.921fb54442d18p+1, 0x1.1a62633145c07p-53},    {0x1.921fb54442d18p+2, -0x1.1a62633145c07p-52},
    {0x1.8000000000000p+1, 0x1.210386db6d55bp-3},     {-0x1.0000000000000p+1, -0x1.d18f6ead1b446p-1},
    {0x1.56e1fc2f8f359p-997, 0x1.56e1fc2f8f359p-997}, {0x1.9000000000000p+6, -0x1.03425b78c4db8p-1},
    {0x1.86a0000000000p+16, 0x1.24daa9c527e96p-5},    {0x1.86a0000000000p+17, -0x1.24aabe12ccc46p-4},
    {0x1.0f0cf064dd592p+73, -0x1.b453ab76bf397p-1},   {0x1.6ac5b262ca1ffp+849, 0x1.0000000000000p+0},
    {0x1.fffffffffffffp+1023, 0x1.452fc98b34e97p-8},
};
const Known kCos[] = {
    {0x1.0000000000000p+0, 0x1.14a280fb5068cp-1},     {0x1.0000000000000p-1, 0x1.c1528065b7d50p-1},
    {0x1.0c152382d7365p+0, 0x1.0000000000001p-1},     {0x1.0c152382d7365p+0, 0x1.0000000000001p-1},
    {0x1.921fb54442d18p-1, 0x1.6a09e667f3bcdp-1},     {0x1.921fb54442d18p+0, 0x1.1a62633145c07p-54},
    {0x1.921fb54442d18p+1, -0x1.0000000000000p+0},    {0x1.921fb54442d18p+2, 0x1.0000000000000p+0},
    {0x1.8000000000000p+1, -0x1.fae04be85e5d2p-1},    {-0x1.0000000000000p+1, -0x1.aa22657537205p-2},
    {0x1.56e1fc2f8f359p-997, 0x1.0000000000000p+0},   {0x1.9000000000000p+6, 0x1.b981dbf665fdfp-1},
    {0x1.86a0000000000p+16, -0x1.ffac3841b3da7p-1},   {0x1.86a0000000000p+17, 0x1.feb0fc71f0a89p-1},
    {0x1.0f0cf064dd592p+73, 0x1.0be2cef01c8f4p-1},    {0x1.6ac5b262ca1ffp+849, -0x1.14ae72e6ba22fp-61},
    {0x1.fffffffffffffp+1023, -0x1.fffe62ecfab75p-1},
};

template <size_t N>
void ExpectNearest(double (*function)(double), const Known (&table)[N]) {
    for (const Known& known : table) EXPECT_EQ(known.nearest, function(known.argument)) << "at " << known.argument;
}

TEST(Elementary, KnownAnswersAreTheNearestDoubles) {
    ExpectNearest(&Log, kLog);
    ExpectNearest(&Exp, kExp);
    ExpectNearest(&Sin, kSin);
    ExpectNearest(&Cos, kCos);
}

TEST(Elementary, ExactWhereTheValueIsADouble) {
    EXPECT_EQ(0.0, Log(1.0));
    EXPECT_EQ(1.0, Exp(0.0));
    EXPECT_EQ(1.0, Exp(-0.0));
    EXPECT_EQ(1.0, Cos(0.0));
    EXPECT_EQ(0.0, Sin(0.0));
    EXPECT_FALSE(std::signbit(Sin(0.0)));
    EXPECT_TRUE(std::signbit(Sin(-0.0)));
    EXPECT_EQ(5e-324, Sin(5e-324));
}

TEST(Elementary, EndsOfTheRange) {
    EXPECT_EQ(-kInfinity, Log(0.0));
    EXPECT_EQ(-kInfinity, Log(-0.0));
    EXPECT_EQ(kInfinity, Log(kInfinity));
    EXPECT_EQ(kInfinity, Exp(kInfinity));
    EXPECT_EQ(kInfinity, Exp(709.783));
    EXPECT_EQ(kInfinity, Exp(DBL_MAX));
    EXPECT_EQ(0.0, Exp(-745.2));
    EXPECT_EQ(0.0, Exp(-DBL_MAX));
    EXPECT_EQ(0.0, Exp(-kInfinity));
    for (double nan : {Log(-1.0), Log(-5e-324), Log(-kInfinity), Log(kNaN), Exp(kNaN), Sin(kNaN), Cos(kNaN),
                       Sin(kInfinity), Sin(-kInfinity), Cos(kInfinity), Cos(-kInfinity)})
        EXPECT_TRUE(std::isnan(nan));
}

// ------------------------------------------------------------------------------------------------------ the slow road

// Series in extended precision: 11 bits more than double, so their own error is below 0.01 units of the double.
static_assert(LDBL_MANT_DIG >= 64);

long double SlowLog(double x) {
    int exponent = 0;
    long double z = std::frexp(x, &exponent);
    if (z < 0.7L) {
        z *= 2;
        --exponent;
    }
    const long double y = (z - 1) / (z + 1);
    long double sum = 0;
    for (int k = 81; k > 0; k -= 2) sum = sum * y * y + 1.0L / static_cast<long double>(k);
    return 2 * y * sum + exponent * 0x1.9ef35793c7673p-41L + exponent * 0x1.62e42fefa2p-1L;
}

long double SlowExp(double x) {
    const int n = static_cast<int>(std::floor(x / 0.6931471805599453 + 0.5));
    const long double r = (x - n * 0x1.62e42fefa2p-1L) - n * 0x1.9ef35793c7673p-41L;
    long double sum = 1;
    for (int k = 30; k > 0; --k) sum = 1 + sum * r / k;
    return std::ldexp(sum, n);
}

// The sine of x + quarters pi/2.
long double SlowCircular(double x, int quarters) {
    const double n = std::floor(x / 1.5707963267948966 + 0.5);
    const long double r = ((x - n * 0x1.921fb54442p+0L) - n * 0x1.a308d31318p-41L) - n * 0x1.8a2e03707344ap-81L;
    const long double square = r * r;
    const int quadrant = (static_cast<int>(n) + quarters) & 3;
    const int first = quadrant % 2;  // 0: sine, 1: cosine
    long double sum = 1;
    for (int k = 28; k > 0; k -= 2) {
        const int top = k + 1 - first;
        sum = 1 - sum * square / (top * (top - 1));
    }
    const long double value = first == 0 ? r * sum : sum;
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

uint64_t Next(uint64_t& state) {
    state = state * 6364136223846793005u + 1442695040888963407u;
    return state >> 11;
}
double Uniform(uint64_t& state, double low, double high) {
    return low + (high - low) * (static_cast<double>(Next(state)) * 0x1p-53);
}

struct Sweep {
    const char* name;
    double (*function)(double);
    long double (*slow)(double);
    double low;
    double high;
    uint64_t bits;  // hash of the results' bits
};

// The hashes are this implementation's own results, entered after the sweeps below had passed the accuracy test.
const Sweep kSweeps[] = {
    {"log beside 1", &Log, &SlowLog, 0.98, 1.02, 0xbe10b1ec125e8937},
    {"log", &Log, &SlowLog, 0.01, 10.0, 0xafc11010876c5acd},
    {"log of counts", &Log, &SlowLog, 1.0, 2147483647.0, 0xc7fd248581c257d8},
    {"log of large values", &Log, &SlowLog, 1e9, 1e300, 0x5fea5445b9358ee0},
    {"exp beside 0", &Exp, &SlowExp, -0.7, 0.7, 0x76f839771bee5529},
    {"exp", &Exp, &SlowExp, -40.0, 40.0, 0x326edd15e37839e7},
    {"exp to the ends of the normal range", &Exp, &SlowExp, -708.0, 709.7, 0x4de2da7106a41a35},
    {"sin within the first quadrants", &Sin, &SlowSin, -0.8, 0.8, 0xe2658c28b06ddd97},
    {"sin within a turn", &Sin, &SlowSin, -7.0, 7.0, 0xc53684582d522365},
    {"sin within many turns", &Sin, &SlowSin, -2.5e5, 2.5e5, 0x95e89e7f5dbefe0b},
    {"cos within the first quadrants", &Cos, &SlowCos, -0.8, 0.8, 0xf6684ea2b511ebd6},
    {"cos within a turn", &Cos, &SlowCos, -7.0, 7.0, 0xfe09a3164ffa6c72},
    {"cos within many turns", &Cos, &SlowCos, -2.5e5, 2.5e5, 0xf82878c2b9ef09b9},
};
constexpr int kSweepLength = 20000;

TEST(Elementary, EverySweepStaysWithinOneUnitInTheLastPlace) {
    for (const Sweep& sweep : kSweeps) {
        SCOPED_TRACE(sweep.name);
        uint64_t state = 1;
        double worst = 0.0;
        double at = 0.0;
        for (int i = 0; i < kSweepLength; ++i) {
            const double x = Uniform(state, sweep.low, sweep.high);
            const double off = UnitsOff(sweep.function(x), sweep.slow(x));
            if (!(off <= worst)) {
                worst = off;
                at = x;
            }
        }
        EXPECT_LT(worst, 0.54) << "at " << at;  // 0.53 promised, 0.01 for the slow road
    }
}

uint64_t HashOfBits(double (*function)(double), double low, double high) {
    uint64_t state = 1;
    uint64_t hash = 0xcbf29ce484222325u;
    for (int i = 0; i < kSweepLength; ++i) {
        hash ^= std::bit_cast<uint64_t>(function(Uniform(state, low, high)));
        hash *= 0x100000001b3u;
    }
    return hash;
}

TEST(Elementary, EveryBuildGivesTheSameBits) {
    for (const Sweep& sweep : kSweeps)
        EXPECT_EQ(sweep.bits, HashOfBits(sweep.function, sweep.low, sweep.high)) << sweep.name;
    // Far away the slow road ends; the bits are the same there too.
    EXPECT_EQ(0xda81687d76b63002u, HashOfBits(&Sin, -1e22, 1e22));
    EXPECT_EQ(0x21bd60b48db0c7aeu, HashOfBits(&Cos, -1e300, 1e300));
    EXPECT_EQ(0x225b0785481d07fdu, HashOfBits(&Exp, -745.0, -708.0));
}

TEST(Elementary, SineIsOddAndCosineIsEvenBitForBit) {
    uint64_t state = 7;
    for (int i = 0; i < 2000; ++i) {
        const double x = Uniform(state, 0.0, 400000.0);
        EXPECT_EQ(std::bit_cast<uint64_t>(Sin(x)), std::bit_cast<uint64_t>(-Sin(-x)));
        EXPECT_EQ(std::bit_cast<uint64_t>(Cos(x)), std::bit_cast<uint64_t>(Cos(-x)));
    }
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
    }
    for (int k = 1; k < 200; ++k) rises(&Sin, k / 256.0 < 1.5 ? k / 256.0 : 1.5);
    rises(&Sin, 0.7853981633974483);
}

}  // namespace
