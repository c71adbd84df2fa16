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
    std::vector<T> rows[3] = {Noise<T>(5002, 5), Noise<T>(5002, 6), Noise<T>(5002, 7)};
    if constexpr (std::is_same_v<T, float>)  // NaN of both signs, few and many of a square
        for (size_t i = 0; i < 3 * 2500; ++i)
            if (i * i % 7 < i % 8) rows[i % 3][i / 3] = i % 5 < 3 ? kFloatNan : -kFloatNan;
    Squares<T> squares(rows[0], rows[1], rows[2]);
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

}  // namespace
}  // namespace orlix
