#include "measure/measuring_kernels.hpp"
#include "support/kernel_testing.hpp"

namespace orlix {
namespace {

std::vector<size_t> SizesOfRows() {
    std::vector<size_t> sizes(std::begin(kAwkwardSizes), std::end(kAwkwardSizes));
    sizes.insert(sizes.end(), {4095, 4096, 4097, 8191, 8193, 40000, 65535, 65536});
    return sizes;
}

// What is measured in rows of these pixels, the first from (left, top) on.
template <class T>
GrayMeasures Measured(const std::vector<T>& row, int32_t left, int32_t top, int32_t rows = 1) {
    Measurer<T> measurer(true, true);
    for (int32_t y = top; y < top + rows; ++y) measurer(row.data(), row.size(), left, y);
    return measurer.Finish();
}

template <class T>
class IntegerMeasuring : public testing::Test {};
using IntegerTypes = testing::Types<uint8_t, uint16_t, uint32_t>;
TYPED_TEST_SUITE(IntegerMeasuring, IntegerTypes, );

TYPED_TEST(IntegerMeasuring, EveryVariantEqualsTheDefinition) {
    using T = TypeParam;
    for (const size_t n : SizesOfRows())
        for (const auto& pixels : {Noise<T>(n, static_cast<uint32_t>(n)), std::vector<T>(n, 0),
                                   std::vector<T>(n, std::numeric_limits<T>::max())})
            for (const size_t offset : {0, 3}) {
                Guarded<T> guarded(pixels, offset);
                ExpectTheBits(kSums<T>, std::vector<uint64_t>(4), [&](auto fn, uint64_t* to) {
                    PixelSums<T> sums;
                    sums.s = sums.q = sums.qHigh = sums.w = 77;  // overwritten, not added to
                    fn(guarded.data(), n, 0.0, sums);
                    std::ranges::copy(std::initializer_list<uint64_t>{sums.s, sums.q, sums.qHigh, sums.w}, to);
                });
            }
}

// An image of one value everywhere but in one pixel has sums that are known in closed form.
TYPED_TEST(IntegerMeasuring, SumsOfKnownImages) {
    using T = TypeParam;
    const uint64_t most = std::numeric_limits<T>::max();
    for (const size_t n : {1000u, 65536u}) {
        std::vector<T> pixels(n, 3);
        pixels[n - 7] = static_cast<T>(most);
        for (const auto& variant : SupportedOnThisCpu(kSums<T>)) {
            PixelSums<T> sums;
            variant.fn(pixels.data(), n, 0.0, sums);
            EXPECT_EQ(3 * (n - 1) + most, sums.s) << variant.name;
            EXPECT_EQ(uint64_t{3} * n * (n - 1) / 2 + (n - 7) * (most - 3), sums.w) << variant.name;
            // 9 (n - 1) + most^2, the latter up to 2^64 - 2^33 + 1.
            const uint64_t square = most * most;
            if (sizeof(T) < 4) {
                EXPECT_EQ(9 * (n - 1) + square, sums.q) << variant.name;
            } else {
                EXPECT_EQ(9 * (n - 1) + (square & 0xffffffff), sums.q) << variant.name;
                EXPECT_EQ(square >> 32, sums.qHigh) << variant.name;
            }
        }
    }
}

TYPED_TEST(IntegerMeasuring, EqualPixelsHaveNoDeviationAndACentredCentroid) {
    using T = TypeParam;
    for (const T value : {T{1}, T{77}, std::numeric_limits<T>::max()}) {
        const GrayMeasures measures = Measured(std::vector<T>(1001, value), 500, 10, 291);
        EXPECT_EQ(1001u * 291u, measures.count);
        EXPECT_EQ(1000.0, measures.xCentroid);
        EXPECT_EQ(155.0, measures.yCentroid);
        EXPECT_EQ(static_cast<double>(value), measures.average);
        EXPECT_EQ(0.0, measures.standardDeviation);
    }
}

TEST(Measuring, KnownAnswers) {
    // 1 2 3 / 4 5 6 at (10, 20): S = 21, Q = 91, variance 91/6 - 12.25 = 35/12.
    const uint8_t pixels[2][3] = {{1, 2, 3}, {4, 5, 6}};
    Measurer<uint8_t> both(true, true), statistics(false, true), location(true, false), nothing(true, true);
    for (int32_t y = 0; y < 2; ++y)
        for (auto* measurer : {&both, &statistics, &location}) (*measurer)(pixels[y], 3, 10, 20 + y);
    EXPECT_EQ(6u, both.Finish().count);
    EXPECT_EQ((10 * 5 + 11 * 7 + 12 * 9) / 21.0, both.Finish().xCentroid);
    EXPECT_EQ((20 * 6 + 21 * 15) / 21.0, both.Finish().yCentroid);
    EXPECT_EQ(3.5, both.Finish().average);
    EXPECT_DOUBLE_EQ(std::sqrt(35.0 / 12.0), both.Finish().standardDeviation);
    EXPECT_EQ(0.0, statistics.Finish().xCentroid);
    EXPECT_EQ(3.5, statistics.Finish().average);
    EXPECT_EQ(6u, location.Finish().count);
    EXPECT_EQ(0.0, location.Finish().xCentroid);
    EXPECT_EQ(0.0, location.Finish().average);
    EXPECT_EQ(0u, nothing.Finish().count);
    EXPECT_EQ(0.0, nothing.Finish().average);
}

TEST(Measuring, BlackPixelsHaveNoCentroid) {
    const GrayMeasures measures = Measured(std::vector<uint16_t>(5), 100, 100);
    EXPECT_EQ(5u, measures.count);
    EXPECT_EQ(0.0, measures.xCentroid);
    EXPECT_EQ(0.0, measures.yCentroid);
}

// White pixels at the far end of the widest image: x p sums to 2^95 and more.
TEST(Measuring, SumsPastSixtyFourBitsStayExact) {
    const std::vector<uint32_t> row(1 << 16, 0xffffffff);
    Measurer<uint32_t> measurer(true, true);
    constexpr int32_t kFar = 2147483647 - 65535;
    for (int k = 0; k < 64; ++k) measurer(row.data(), row.size(), kFar, 2147483647);
    const GrayMeasures measures = measurer.Finish();
    EXPECT_EQ(kFar + 32767.5, measures.xCentroid);
    EXPECT_EQ(2147483647.0, measures.yCentroid);
    EXPECT_EQ(4294967295.0, measures.average);
    EXPECT_EQ(0.0, measures.standardDeviation);
    const uint32_t one = 0xfffffffe;  // N Q - S^2 = N - 1 for one pixel off by one
    measurer(&one, 1, 0, 0);
    const double n = 64.0 * 65536 + 1;
    EXPECT_DOUBLE_EQ(std::sqrt(n - 1) / n, measurer.Finish().standardDeviation);
}

TEST(FloatMeasuring, EveryVariantEqualsTheDefinitionBitForBit) {
    for (const bool finite : {true, false})
        for (const double origin : {0.0, 12.25, -1e30})
            for (const size_t n : SizesOfRows()) {
                const auto seed = static_cast<uint32_t>(n);
                Guarded<float> pixels(finite ? FiniteNoise(n, seed) : Noise<float>(n, seed), n % 3);
                ExpectTheDefinition(kSums<float>, std::vector<double>(24), [&](auto fn, double* to) {
                    PixelSums<float> sums;
                    sums.s[3] = sums.q[5] = sums.w[7] = 1e9;
                    fn(pixels.data(), n, origin, sums);
                    for (const double* part : {sums.s, sums.q, sums.w}) to = std::copy_n(part, 8, to);
                });
            }
}

TEST(FloatMeasuring, LargeOffsetCostsNoDigits) {
    // 2^20 and 2^20 + 1/8 in turn: deviation 1/16 exactly.
    std::vector<float> row(1000);
    for (size_t i = 0; i < row.size(); ++i) row[i] = 1048576.0f + (i % 2 ? 0.125f : 0.0f);
    const GrayMeasures measures = Measured(row, 0, 0, 100);
    EXPECT_DOUBLE_EQ(1048576.0625, measures.average);
    EXPECT_NEAR(0.0625, measures.standardDeviation, 1e-9);
    EXPECT_NEAR(49.5, measures.yCentroid, 1e-9);
}

TEST(FloatMeasuring, EqualPixelsHaveNoDeviation) {
    for (const float value : {0.1f, -3e38f, 1e-40f}) {
        const GrayMeasures measures = Measured(std::vector<float>(777, value), 3, 0, 50);
        EXPECT_EQ(0.0, measures.standardDeviation) << value;
        EXPECT_DOUBLE_EQ(static_cast<double>(value), measures.average);
        EXPECT_NEAR(391.0, measures.xCentroid, 1e-9);
    }
}

TEST(FloatMeasuring, NanAndInfinityComeThrough) {
    constexpr float kNan = kFloatNan, kInf = kFloatInfinity;
    const std::pair<float, std::vector<float>> cases[] = {{kNan, {1, kNan, 2}},
                                                          {kNan, {kNan}},
                                                          {kInf, {kInf, 1}},
                                                          {-kInf, {1, -kInf, -kInf}},
                                                          {kNan, {1, -kInf, 3, kInf}}};
    for (const auto& [average, row] : cases) {
        const GrayMeasures measures = Measured(row, 7, 9);
        EXPECT_THAT(measures.average, testing::NanSensitiveDoubleEq(average));
        EXPECT_TRUE(std::isnan(measures.standardDeviation) && std::isnan(measures.xCentroid) &&
                    std::isnan(measures.yCentroid));
    }
}

}  // namespace
}  // namespace orlix
