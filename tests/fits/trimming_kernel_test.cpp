#include <numeric>

#include "fits/hemisphere_kernels.hpp"
#include "fits/hemisphere_sums_kernels.hpp"
#include "fits/quick_sums_kernels.hpp"
#include "fits/trimmed_score.hpp"
#include "fits/trimming_kernels.hpp"

#include "support/kernel_testing.hpp"
#include "support/region_picture.hpp"
#include "support/special_numbers.hpp"

namespace orlix {
namespace {

template <class T>
class Trimming : public testing::Test {};
TYPED_TEST_SUITE(Trimming, PixelTypes, );

// Near the pixels, so that all classes occur; some values exactly on them, some not finite.
template <class T>
std::vector<double> SurfaceNear(std::span<const T> pixels, uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<double> surface(pixels.size());
    for (size_t i = 0; i < surface.size(); ++i) {
        surface[i] = static_cast<double>(pixels[i]) + (static_cast<int>(random() % 65) - 32) / 8.0;
        if (random() % 50 == 0) surface[i] = random() % 2 ? kInfinity : std::nan("");
    }
    return surface;
}

TYPED_TEST(Trimming, EveryVariantEqualsTheDefinition) {
    using T = TypeParam;
    const double limits[] = {-1, 0, 1.0 / 64, 1, 4, kInfinity};
    for (const size_t n : kAwkwardSizes)
        for (const size_t offset : {0, 1}) {
            Guarded<T> pixels(Noise<T>(n, static_cast<uint32_t>(n)), offset);
            Guarded<double> surface(SurfaceNear<T>({pixels.data(), n}, 7), offset);
            for (const double low : limits) {
                SCOPED_TRACE(low);
                ExpectTheDefinition(kClippedSquares<T>, std::vector<double>(32), [&](auto add, double* to) {
                    ClippedSums sums;
                    std::iota(std::begin(sums.lane), std::end(sums.lane), 1.0);
                    add(pixels.data(), surface.data(), n, low, sums);
                    std::copy_n(sums.lane, 32, to);
                });
                for (const double high : limits)
                    if (high >= low)
                        ExpectTheDefinition(kDivideSquares<T>, std::vector<double>(n + 12), [&](auto fn, double* to) {
                            Guarded<double> middle(std::vector<double>(n + 7), 1);
                            SquareClasses classes;
                            classes.below[3] = 5;
                            classes.fewer = 3;
                            const size_t kept = fn(pixels.data(), surface.data(), n, low, high, classes, middle.data());
                            EXPECT_TRUE(middle.GuardsIntact());
                            for (const uint64_t count :
                                 {uint64_t{kept}, classes.fewer, classes.upToLow, classes.upToHigh})
                                *to++ = static_cast<double>(count);
                            std::copy_n(middle.data(), kept, std::copy_n(classes.below, 8, to));
                        });
            }
        }
}

template <class T>
class QuickSumming : public testing::Test {};
using QuickTypes = testing::Types<uint8_t, uint16_t, float>;
TYPED_TEST_SUITE(QuickSumming, QuickTypes, );

TYPED_TEST(QuickSumming, EveryVariantEqualsTheDefinition) {
    const QuickRow rows[] = {
        {{128, 0.25f, 0, 0}, -511.5f}, {{9.1f, 0.3f, 1e-3f, 0}, 3}, {{9.1f, 0, 0, -1e-6f}, -511.5f}};
    for (const QuickRow& row : rows)
        for (const size_t n : kAwkwardSizes)
            for (const float most : {1e-3f, 30.0f, 1e9f}) {
                const std::vector<TypeParam> pixels = Noise<TypeParam>(n, static_cast<uint32_t>(n));
                ExpectTheDefinition(kQuickSums<TypeParam>, std::vector<float>(32, 1.5f), [&](auto add, float* to) {
                    QuickSums sums;
                    std::copy_n(to, 32, sums.lane);
                    add(pixels.data(), n, row, most, sums);
                    std::copy_n(sums.lane, 32, to);
                });
            }
}

// A surface without a slope.
struct Level {
    double height;
    RowPolynomial Row(int32_t) const { return {{height}}; }
    void Values(int32_t, int32_t, size_t n, double* values) const { std::fill_n(values, n, height); }
};

// Squares of few sizes and all pixels good: the bound is as good as the score. At 10100 floats are 0.001 apart; a
// surface that wins by 1e-9 must not lose because single precision takes it for another.
TEST(TrimmedScore, SinglePrecisionDecidesOnlyWhatItCan) {
    const RegionPicture<uint16_t> picture(300, 200,
                                          [](int x, int y) { return 10100 + (x + y) % 2 + (x % 64 == 0 ? 3 : 0); });
    const RegionPixels<uint16_t> region = picture.region();
    for (int k = 0; k < 50; ++k) {
        const double height = 10100.8 + 0.00137 * k;
        TrimmedScore<uint16_t, Level> score(region, region.count());
        EXPECT_TRUE(score.Improves({height}));
        EXPECT_TRUE(score.Improves({height - 1e-9})) << k;
        EXPECT_FALSE(score.Improves({height})) << k;
        const int64_t before = score.visits();
        EXPECT_FALSE(score.Improves({height + 1})) << k;
        EXPECT_LT(score.visits() - before, region.count() / 2);
    }
}

// Residuals 0, 1, 2, 3, -1, NaN.
TEST(Trimming, KnownSums) {
    const float pixels[] = {5, 5, 5, 5, 5, std::nanf("")};
    const double surface[] = {5, 6, 7, 8, 4, 5};
    ClippedSums sums;
    ClippedSquares_scalar(pixels, surface, 6, 5.0, sums);
    for (size_t i = 0; i < 6; ++i) EXPECT_EQ((std::vector<double>{0, 1, 4, 5, 1, 5})[i], sums.lane[i]);
    SquareClasses classes;
    double middle[13];
    EXPECT_EQ(1u, DivideSquares_scalar(pixels, surface, 6, 1.0, 9.0, classes, middle));
    EXPECT_EQ(4.0, middle[0]);
    EXPECT_EQ(1u, classes.fewer);
    EXPECT_EQ(3u, classes.upToLow);
    EXPECT_EQ(5u, classes.upToHigh);
}

TEST(HemisphereRow, EveryVariantEqualsTheDefinition) {
    const HemisphereRow rows[] = {{5.25, 3, 0.01, 0.5, 900},
                                  {-4e5, 1e6, -2, -3e3, 1e12},
                                  {12, 0, 0, 1, -5},
                                  {12, 0, 0, std::nan(""), 5},
                                  {0, 0, 0, 1, kInfinity}};
    for (const HemisphereRow& row : rows)
        for (const size_t n : kAwkwardSizes)
            ExpectTheDefinition(kHemisphereRow, std::vector<double>(n),
                                [&](auto values, double* to) { values(row, 7, n, to); });
}

// Inside the cap, at its rim, where it is steep, and outside; halves of a column for a rim that is hit exactly.
TEST(HemisphereSums, EveryVariantEqualsTheDefinition) {
    const auto expect = [](const auto& table, const auto& row) {
        using Sums = LaneSums<std::remove_cvref_t<decltype(row)>>;
        for (const size_t n : kAwkwardSizes)
            for (const double first : {-80.0, 3.0}) {
                Guarded<double> values(SurfaceNear<uint8_t>(Noise<uint8_t>(n, 5), 6), n % 4);
                ExpectTheDefinition(table, std::vector<double>(sizeof(Sums) / sizeof(double), 0.25),
                                    [&](auto add, double* to) {
                                        Sums sums;
                                        std::copy_n(to, std::size(sums.lane) * 8, sums.lane[0]);
                                        add(row, values.data(), n, first, n % 3 == 0 ? 4.0 : 1.0, sums);
                                        std::copy_n(sums.lane[0], std::size(sums.lane) * 8, to);
                                    });
            }
    };
    expect(kAlgebraicSums, AlgebraicRow{49, 128.375});
    expect(kRestSums, RestRow{49, 128.375, 0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8});
    for (const double q : {0.04, 4.0, 1e-9})
        expect(kCapSums, CapRow{1.0 / 64, 0.25, 0.0625, q, 1 / q, -1 / (q * q), 3.5, 0.75, 120, 7});
}

// At X = 3 / 4 of a = 0, Y^2 = 7 / 16, q = 3 / 4: s = 1 and the root is 1 / 2. Outside at X = 2.
TEST(HemisphereSums, TermsWorkedOutByHand) {
    const CapRow row{0.25, 0, 0.4375, 0.75, 4.0 / 3, -16.0 / 9, 10, 4, 6, 2};
    for (const bool outside : {false, true}) {
        LaneSums<CapRow> sums;
        const double z = 1;
        CapSums_scalar(row, &z, 1, outside ? 8 : 3, 1, sums);
        const double x = outside ? 2 : 0.75, phi = outside ? 4.0 / 3 : 2.0 / 3, e = outside ? 0 : 1;
        const double m = outside ? -16.0 / 9 : 4.0 / 9, r = 10 + 4 * x - 6 * phi - (1 - 2);
        const double single[] = {e * x, e, m, phi, r}, d = single[0];
        const double products[] = {d * d,   d * e, e * e,     d * m,   e * m, d * phi, e * phi, d * x,   e * x, m * m,
                                   m * phi, m * x, phi * phi, phi * x, d * r, e * r,   m * r,   phi * r, x * r, r * r};
        for (size_t j = 0; j < CapRow::kTerms; ++j)
            EXPECT_NEAR(j < 5 ? single[j] : products[j - 5], sums.Total(j), 1e-13) << j;
    }
}

}  // namespace
}  // namespace orlix
