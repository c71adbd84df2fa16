#include "points/point_kernels.hpp"
#include "points/table_look_up.hpp"
#include "support/kernel_testing.hpp"
#include "support/special_numbers.hpp"

namespace orlix {
namespace {

constexpr float kLargest = std::numeric_limits<float>::max();

template <class T>
T Applied(const PointOperation<T>& operation, T pixel) {
    operation(&pixel, 1);
    return pixel;
}

template <class T, class Table>
void ExpectVariantsEqualScalar(const Table& table, const PointParameters<T>& parameters) {
    for (const size_t n : kAwkwardSizes)
        for (const uint32_t seed : {0u, 1u, 3u})
            ExpectTheDefinition(table, Noise<T>(n, static_cast<uint32_t>(n) + seed),
                                [&](auto fn, T* pixels) { fn(pixels, n, parameters); });
}

template <class T>
class IntegerPoint : public testing::Test {};
using IntegerTypes = testing::Types<uint8_t, uint16_t, uint32_t>;
TYPED_TEST_SUITE(IntegerPoint, IntegerTypes, );

TYPED_TEST(IntegerPoint, EveryVariantOfTheRampEqualsTheDefinition) {
    using T = TypeParam;
    constexpr T kMost = std::numeric_limits<T>::max();
    const struct {
        T first, last, offset;
    } ramps[] = {{0, kMost, 0},
                 {0, kMost, kMost},
                 {10, 200, 210},
                 {0, 0, 77},
                 {kMost, kMost, 1},
                 {T(kMost / 2), T(kMost / 2 + 1), T(kMost / 3)},
                 {1, T(kMost - 1), T(kMost / 2 + 1)}};
    for (const auto& ramp : ramps)
        for (const bool falling : {false, true}) {
            PointParameters<T> parameters;
            parameters.first = ramp.first;
            parameters.last = ramp.last;
            parameters.offset = ramp.offset;
            parameters.falling = falling;
            ExpectVariantsEqualScalar<T>(kRamp<T>, parameters);
        }
}

TYPED_TEST(IntegerPoint, EveryVariantOfTheQuotientEqualsTheDefinition) {
    for (const double value :
         {3.0, 0.3, 1.0, 255.5, 1e-300, -4.0, 1e300, kInfinity, -kInfinity, kNaN, 65536.5, 0.99999999, 5e-324}) {
        PointParameters<TypeParam> parameters;
        parameters.value = value;
        if constexpr (!std::is_same_v<TypeParam, uint8_t>)
            ExpectVariantsEqualScalar<TypeParam>(kQuotient<TypeParam>, parameters);
    }
}

// Variants multiply where a division would take longer: the last bit of each double must be that of the division.
TEST(WordPoint, EveryVariantOfTheQuotientRoundsAsADivisionDoes) {
    std::mt19937_64 random(1);
    const std::vector<uint16_t> all = AllValues<uint16_t>();
    for (int i = 0; i < 300; ++i) {
        PointParameters<uint16_t> parameters;
        // A third is m / 8, where many quotients lie half way between two integers.
        parameters.value = i % 3 == 0 ? static_cast<double>(random() % 80 + 1) / 8
                                      : std::ldexp(static_cast<double>(random() >> 11), -53 + static_cast<int>(i % 20));
        SCOPED_TRACE(parameters.value);
        ExpectTheBits(kQuotient<uint16_t>, all, [&](auto fn, uint16_t* to) { fn(to, all.size(), parameters); });
    }
}

TEST(FloatPoint, EveryVariantOfSumAndQuotientEqualsTheDefinition) {
    for (const double value : {0.0, -0.0, 1.0, -17.25, 0.1, -1.01, 3.0, 0x1.fffffffffffffp3, 0x1.0000000000001p-7,
                               1e-300, 1e300, 1e-45, 3.4e38, kInfinity, -kInfinity}) {
        PointParameters<float> parameters;
        parameters.value = value;
        ExpectVariantsEqualScalar<float>(kQuotient<float>, parameters);
        const struct { float lower, upper; } ranges[] = {{-kLargest, kLargest}, {0, 100}, {100, 0}, {-0.1f, -0.1f}};
        for (const auto& range : ranges)
            for (const bool falling : {false, true}) {
                parameters.lower = range.lower;
                parameters.upper = range.upper;
                parameters.falling = falling;
                ExpectVariantsEqualScalar<float>(kSum<float>, parameters);
            }
    }
    PointParameters<float> parameters;
    parameters.value = kNaN;
    ExpectVariantsEqualScalar<float>(kQuotient<float>, parameters);
}

TEST(BytePoint, EveryVariantOfTheTableEqualsTheDefinition) {
    PointParameters<uint8_t> parameters;
    for (uint32_t seed : {1, 2, 3}) {
        std::mt19937 random(seed);
        for (uint8_t& entry : parameters.table) entry = static_cast<uint8_t>(random());
        ExpectVariantsEqualScalar<uint8_t>(kLookUp, parameters);
    }
}

// Every operation on integer pixels against the rules as the interface states them, taken literally.
template <class T>
std::vector<T> ManyValues() {
    if constexpr (sizeof(T) < 4) {
        return AllValues<T>();
    } else {
        std::vector<T> values = Noise<T>(20000, 5);
        for (uint32_t i = 0; i < 300; ++i) {
            values.push_back(i);
            values.push_back(~i);
            values.push_back(0x80000000 - 150 + i);
        }
        return values;
    }
}

template <class T, class Rule, class... Parameters>
void ExpectRule(const PointOperation<T>& operation, const Rule& rule, const Parameters&... parameters) {
    SCOPED_TRACE(testing::PrintToString(std::tuple(parameters...)));
    const std::vector<T> before = ManyValues<T>();
    std::vector<T> after = before;
    operation(after.data(), after.size());
    for (size_t i = 0; i < before.size(); ++i) ASSERT_EQ(rule(before[i]), after[i]) << +before[i];
}

template <class T>
std::vector<std::pair<T, T>> Ranges() {
    constexpr T kMost = std::numeric_limits<T>::max();
    return {{0, kMost}, {10, 200}, {200, 10}, {0, 0}, {kMost, kMost}, {kMost, 0}, {T(kMost - 3), T(kMost - 1)}, {5, 6}};
}

TYPED_TEST(IntegerPoint, InvertIsUpperLessPixelPlusLowerClampedFromBelowFirst) {
    using T = TypeParam;
    for (const auto& [lower, upper] : Ranges<T>())
        ExpectRule<T>(
            PointOperation<T>::Invert(lower, upper),
            [&, lower = lower, upper = upper](T p) {
                const int64_t v = int64_t{upper} - p + lower;
                return v < lower ? lower : v > upper ? upper : static_cast<T>(v);
            },
            lower, upper);
}

TYPED_TEST(IntegerPoint, AddIsTheRoundedClampedSumInDouble) {
    using T = TypeParam;
    const double most = std::numeric_limits<T>::max();
    std::vector<double> values = {0.0, -7.7, 300, -300, 1e18, -1e18, 1e300, kInfinity, -kInfinity};
    for (const double value : {1.0, 0.5, 10.5, 0.3, most, most + 0.5, most - 0.4, 2 * most, 123.4995, 123.5005})
        values.insert(values.end(), {value, -value});
    for (const double value : {0.49999999999999994, 0.50000001, 0.5 + 0x1p-17, 0.5 - 0x1p-40, 0x1p-1074})
        values.insert(values.end(), {value, -value});
    for (const double value : values)
        for (const auto& [lower, upper] : Ranges<T>())
            ExpectRule<T>(
                PointOperation<T>::Add(value, lower, upper),
                [&, lower = lower, upper = upper](T p) {
                    const double s = static_cast<double>(p) + value;
                    return s < lower ? lower : s > upper ? upper : static_cast<T>(std::floor(s + 0.5));
                },
                value, lower, upper);
}

TYPED_TEST(IntegerPoint, DivideShiftsByPowersOfTwoAndRoundsOtherwise) {
    using T = TypeParam;
    const double most = std::numeric_limits<T>::max();
    for (int k = -1074; k <= 1023; ++k) {
        if (k > 40 && k < 1020) continue;
        const int shift = k < 0 ? (k % 32 + 32) % 32 : k;
        ExpectRule<T>(
            PointOperation<T>::Divide(std::ldexp(1.0, k)),
            [&](T p) { return shift > 31 ? T{0} : static_cast<T>(uint64_t{p} >> shift); }, k);
        if (k < -40) k += 37;
    }
    for (const double value : {3.0, 7.0, 0.1, 255.0, 1e-300, 1e300, 6.5, 3.9999999999999996, 4.000000000000001})
        ExpectRule<T>(
            PointOperation<T>::Divide(value),
            [&](T p) {
                const double q = static_cast<double>(p) / value;
                return q > most ? static_cast<T>(most) : static_cast<T>(std::floor(q + 0.5));
            },
            value);
    for (const double value : {-1.0, -0.25, -kInfinity, kInfinity, kNaN})
        ExpectRule<T>(
            PointOperation<T>::Divide(value), [](T) { return T{0}; }, value);
}

TEST(BytePoint, TablesThatAreNearlyRampsStayTables) {
    // One wrong entry at either end of the slope, or a step of two, must not be taken for a ramp.
    for (int changed = 0; changed < 256; ++changed)
        for (const bool falling : {false, true}) {
            uint8_t table[256];
            for (int i = 0; i < 256; ++i) {
                const int v = std::clamp(falling ? 230 - i : i - 20, 5, 190);
                table[i] = static_cast<uint8_t>(i == changed ? v + 1 : v);
            }
            ExpectRule<uint8_t>(
                PointOperation<uint8_t>::LookUp(table), [&](uint8_t p) { return table[p]; }, changed, falling);
        }
}

TEST(BytePoint, AddingNanGivesLowerAndFillingTheLevel) {
    EXPECT_EQ(9, Applied<uint8_t>(PointOperation<uint8_t>::Add(kNaN, 9, 255), 10));
    EXPECT_EQ(77, Applied<uint8_t>(PointOperation<uint8_t>::Fill(77), 0));
}

TEST(FloatPoint, KnownAnswers) {
    using Float = PointOperation<float>;
    EXPECT_EQ(-100.25f, Applied(Float::Invert(-kLargest, kLargest), 100.25f));
    EXPECT_EQ(0.75f, Applied(Float::Invert(0, 1), 0.25f));
    EXPECT_EQ(1.0f, Applied(Float::Invert(0, 1), -3.0f));
    EXPECT_EQ(0.25f, Applied(Float::Add(0.25, -kLargest, kLargest), 0.0f));  // not rounded to whole numbers
    EXPECT_EQ(kLargest, Applied(Float::Add(1e300, -kLargest, kLargest), 1.0f));
    EXPECT_EQ(-2.0f, Applied(Float::Add(kNaN, -2, 2), 1.0f));
    EXPECT_EQ(0.5f, Applied(Float::Divide(2), 1.0f));  // no shift
    EXPECT_EQ(-kLargest, Applied(Float::Divide(1e-300), -1.0f));
    EXPECT_TRUE(std::isnan(Applied(Float::Divide(kNaN), 1.0f)));
    EXPECT_TRUE(std::isnan(Applied(Float::Add(1, 0, 10), std::numeric_limits<float>::quiet_NaN())));
}

// Counted bins, pixel by pixel, and a table of all values are two ways to the same result.
TEST(TableLookUp, IsTheSameForFewPixelsAndForMany) {
    for (const auto& [lower, upper, bins] : {std::tuple<uint16_t, uint16_t, int32_t>{0, 65535, 256},
                                             {100, 355, 256},
                                             {7, 60000, 999},
                                             {9, 9, 16},
                                             {9, 7, 16}}) {
        const HistogramShape shape = ShapeOfHistogram<uint16_t>(lower, upper, bins);
        std::vector<uint16_t> table(static_cast<size_t>(shape.bins));
        std::iota(table.begin(), table.end(), uint16_t{1000});
        std::vector<uint16_t> few(65536);
        std::iota(few.begin(), few.end(), uint16_t{0});
        std::vector<uint16_t> many = few;
        TableLookUp<uint16_t>(lower, upper, shape, table, 0)(few.data(), few.size());
        TableLookUp<uint16_t>(lower, upper, shape, table, 1 << 20)(many.data(), many.size());
        EXPECT_EQ(few, many);
        EXPECT_EQ(lower < upper ? 1000 : lower == upper ? 1015 : lower, few[lower]);
    }
}

}  // namespace
}  // namespace orlix
