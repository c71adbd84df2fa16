#include "filters/median_kernels.hpp"
#include "support/square_testing.hpp"

namespace orlix {
namespace {

template <class T>
class MedianKernel : public testing::Test {};
TYPED_TEST_SUITE(MedianKernel, PixelTypes, );

template <class T>
T FifthOf(std::array<T, 9> square) {
    std::sort(square.begin(), square.end(), [](T a, T b) { return std::strong_order(a, b) < 0; });
    return square[4];
}

TYPED_TEST(MedianKernel, IsTheFifthOfTheSortedSquareWhateverTheLuminanceRange) {
    using T = TypeParam;
    Squares<T> squares(5000, 5);
    const std::vector<T> medians = squares.Filtered(Median3x3_scalar<T>, {T{90}, T{80}});
    for (size_t i = 0; i < medians.size(); ++i) {
        std::array<T, 9> square;
        for (size_t k = 0; k < 9; ++k) square[k] = squares.at(static_cast<ptrdiff_t>(i + k % 3) - 1, k / 3);
        const T want = FifthOf(square);
        ASSERT_TRUE(SameBits(&want, &medians[i], 1)) << i;
    }
}

TYPED_TEST(MedianKernel, EveryVariantEqualsTheDefinitionAtEverySize) {
    ExpectVariantsAgree<TypeParam>(kMedian3x3<TypeParam>);
}

// Which pixels are low and which are high decides the way through a network of comparisons: all 512 cases.
TYPED_TEST(MedianKernel, EveryVariantFindsTheMajorityOfTwoLevels) {
    using T = TypeParam;
    std::vector<T> rows[3];
    for (unsigned bits = 0; bits < 512; ++bits)
        for (unsigned k = 0; k < 9; ++k) rows[k / 3].push_back(bits >> k & 1 ? T{200} : T{100});
    Squares<T> squares(rows[0], rows[1], rows[2]);
    for (const auto& variant : SupportedOnThisCpu(kMedian3x3<T>)) {
        const std::vector<T> medians = squares.Filtered(variant.fn, {});
        for (unsigned bits = 0; bits < 512; ++bits)
            ASSERT_EQ(__builtin_popcount(bits) > 4 ? T{200} : T{100}, medians[3 * bits]) << variant.name << " " << bits;
    }
}

TEST(Median, FewerThanFiveNanOfOneSignGiveANumber) {
    constexpr float kNan = kFloatNan, kInf = kFloatInfinity;
    const std::pair<std::array<float, 9>, float> cases[] = {
        {{kNan, 1, 2, 3, 4, 5, 6, 7, 8}, 5},
        {{1, kNan, 2, kNan, 3, kNan, 4, kNan, 5}, 5},
        {{-kNan, 1, -kNan, 2, -kNan, 3, -kNan, 4, 5}, 1},
        {{-kNan, kNan, -kNan, kNan, 7, kNan, -kNan, kNan, -kNan}, 7},
        {{kNan, kInf, kNan, kInf, kNan, kInf, kNan, kInf, -kInf}, kInf},
    };
    for (const auto& [square, want] : cases)
        EXPECT_EQ(want, Squares<float>(square).Filtered(Median3x3_scalar<float>, {})[0]);
    Squares<float> holes({kNan, kNan, 1, kNan, kNan, 1, kNan, kNan, 1});
    EXPECT_NE(0, std::isnan(holes.Filtered(Median3x3_scalar<float>, {})[0]));
}

}  // namespace
}  // namespace orlix
