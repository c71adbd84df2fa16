#include "filters/sobel_kernels.hpp"
#include "filters/sobel_roots.hpp"
#include "support/square_testing.hpp"

namespace orlix {
namespace {

template <class T>
FilterParameters<T> Whole() {
    return LuminanceRanges<T>()[0];
}

// Squares with given gradients, three columns for each, so result 3j belongs to pair j. Gradients of integer images are
// both even or both odd; beyond that a pair may be out of the type's reach, and is left out.
template <class T>
class Gradients {
public:
    // 0 <= gx, 0 <= gy. Returns whether it could be had.
    bool Add(int64_t gx, int64_t gy) {
        constexpr int64_t most = sizeof(T) < 4 ? std::numeric_limits<T>::max() : 1 << 22;
        const int64_t x = std::min(gx / 2, most), y = std::min(gy / 2, most);
        const int64_t d = (gx - 2 * x + gy - 2 * y) / 2, e = (gx - 2 * x - gy + 2 * y) / 2;
        if ((gx + gy) % 2 != 0 || std::max(std::abs(d), std::abs(e)) > most) return false;
        const auto pixel = [](int64_t difference) { return static_cast<T>(std::max<int64_t>(difference, 0)); };
        rows_[0].insert(rows_[0].end(), {pixel(-d), T{0}, pixel(e)});
        rows_[1].insert(rows_[1].end(), {T{0}, T{99}, static_cast<T>(x)});
        rows_[2].insert(rows_[2].end(), {pixel(-e), static_cast<T>(y), pixel(d)});
        return true;
    }
    Squares<T> squares() const { return {rows_[0], rows_[1], rows_[2]}; }

private:
    std::vector<T> rows_[3];
};

template <class T>
T SobelOf(int64_t gx, int64_t gy, const FilterParameters<T>& parameters = Whole<T>()) {
    Gradients<T> gradients;
    EXPECT_TRUE(gradients.Add(gx, gy)) << gx << " " << gy;
    return gradients.squares().Filtered(Sobel_scalar<T>, parameters)[0];
}

template <class T>
class SobelKernel : public testing::Test {};
TYPED_TEST_SUITE(SobelKernel, PixelTypes, );

TYPED_TEST(SobelKernel, EveryVariantEqualsTheDefinitionAtEverySizeAndRange) {
    ExpectVariantsAgree<TypeParam>(kSobel<TypeParam>);
}

TYPED_TEST(SobelKernel, AFlatSquareGivesLower) {
    using T = TypeParam;
    EXPECT_EQ(T{0}, SobelOf<T>(0, 0));
    EXPECT_EQ(T{9}, SobelOf<T>(0, 0, {T{9}, T{200}}));
    EXPECT_EQ(T{200}, SobelOf<T>(100, 0, {T{200}, T{9}})) << "lower is tested first";
    EXPECT_EQ(T{9}, SobelOf<T>(220, 0, {T{200}, T{9}}));
}

// Every difference has its own weight, so that no two terms can be mistaken for one another.
TYPED_TEST(SobelKernel, WeighsTheNeighbours) {
    using T = TypeParam;
    const struct {
        std::array<T, 9> square;
        double gx, gy;
    } cases[] = {
        {{10, 0, 0, 0, 0, 0, 0, 0, 0}, -10, -10}, {{0, 3, 0, 0, 0, 0, 0, 0, 0}, 0, -6},
        {{0, 0, 7, 0, 0, 0, 0, 0, 0}, 7, -7},     {{0, 0, 0, 4, 0, 0, 0, 0, 0}, -8, 0},
        {{0, 0, 0, 0, 50, 0, 0, 0, 0}, 0, 0},     {{0, 0, 0, 0, 0, 6, 0, 0, 0}, 12, 0},
        {{0, 0, 0, 0, 0, 0, 5, 0, 0}, -5, 5},     {{0, 0, 0, 0, 0, 0, 0, 2, 0}, 0, 4},
        {{0, 0, 0, 0, 0, 0, 0, 0, 9}, 9, 9},      {{1, 2, 3, 1, 2, 3, 1, 3, 4}, 9, 3},
    };
    for (const auto& c : cases) {
        const double root = std::sqrt(c.gx * c.gx + c.gy * c.gy);
        const T got = Squares<T>(c.square).Filtered(Sobel_scalar<T>, Whole<T>())[0];
        const double bound = std::is_same_v<T, float> ? 1e-6 : sizeof(T) == 4 ? 0.5 : 0.51;
        EXPECT_NEAR(root, static_cast<double>(got), bound) << c.gx << " " << c.gy;
    }
}

TEST(SobelRoots, TablesAreTheStatedOnes) {
    for (int i = 0; i < 256; ++i) {
        const auto root = [](double middle) { return static_cast<int>(std::floor(std::sqrt(middle) + 0.5)); };
        EXPECT_EQ(root(i), kRoots.exact[i]);
        EXPECT_EQ(root(16.0 * i + 8), kRoots.byBits4[i]);
        EXPECT_EQ(i == 255 ? 255 : root(256.0 * i + 128), kRoots.byBits8[i]);
        EXPECT_EQ(root(65536.0 * i + 32768), kRoots.byBits16[i]);
        EXPECT_EQ(root(16777216.0 * i + 8388608), kRoots.byBits24[i]);
    }
}

TEST(Sobel, BytesGiveTheValuesWorkedOutByHand) {
    EXPECT_EQ(240, SobelOf<uint8_t>(1020, 0)) << "1040400 wraps to 57360";
    EXPECT_EQ(101, SobelOf<uint8_t>(100, 0));
    EXPECT_EQ(0, SobelOf<uint8_t>(256, 0)) << "65536 wraps to 0";
    EXPECT_EQ(255, SobelOf<uint8_t>(254, 26)) << "65192, whose bucket's root would be 255.5";
    EXPECT_EQ(16, SobelOf<uint8_t>(16, 0)) << "256 is in a bucket of 16";
    EXPECT_EQ(15, SobelOf<uint8_t>(15, 3)) << "234, looked up itself: 15.3";
}

TEST(Sobel, BytesAgreeOnEveryGradientThereIs) {
    for (int64_t gx = 0; gx <= 1020; ++gx) {
        Gradients<uint8_t> gradients;
        for (int64_t gy = gx % 2; gy <= 1020; gy += 2) gradients.Add(gx, gy);
        Squares<uint8_t> squares = gradients.squares();
        ExpectVariantsAgree(kSobel<uint8_t>, squares, Whole<uint8_t>());
    }
}

TEST(Sobel, WordsTakeFiveTablesAndSaturate) {
    EXPECT_EQ(101, SobelOf<uint16_t>(100, 0)) << "as bytes";
    EXPECT_EQ(255, SobelOf<uint16_t>(255, 1)) << "65026";
    EXPECT_EQ(314, SobelOf<uint16_t>(256, 0)) << "65536: root of 98304";
    EXPECT_EQ(314, SobelOf<uint16_t>(362, 0)) << "131044, the end of that bucket";
    EXPECT_EQ(405, SobelOf<uint16_t>(362, 8)) << "131108: root of 163840";
    EXPECT_EQ(4092, SobelOf<uint16_t>(4095, 1)) << "16769026: root of 16744448";
    EXPECT_EQ(5017, SobelOf<uint16_t>(4096, 0)) << "16777216: root of 25165824";
    EXPECT_EQ(65472, SobelOf<uint16_t>(65535, 361)) << "4294966546: root of 4286578688";
    EXPECT_EQ(65535, SobelOf<uint16_t>(65535, 363)) << "4294967994, beyond 32 bits";
    EXPECT_EQ(65535, SobelOf<uint16_t>(65536, 0));
    EXPECT_EQ(65535, SobelOf<uint16_t>(262140, 0)) << "a step from 0 to 65535";
}

TEST(Sobel, WordsAgreeOnGradientsOfEverySize) {
    std::mt19937 random(3);
    Gradients<uint16_t> gradients;
    for (int i = 0; i < 100000; ++i) {
        const auto x = random() >> (14 + random() % 18), y = random() >> (14 + random() % 18);
        gradients.Add(static_cast<int64_t>(x), static_cast<int64_t>(y));
    }
    for (int64_t k = 1; k < 256; ++k)
        for (const double edge : {65536.0, 16777216.0})
            for (int64_t more = -2; more <= 2; ++more)
                gradients.Add(static_cast<int64_t>(std::sqrt(edge * static_cast<double>(k))) + more, k % 7);
    Squares<uint16_t> squares = gradients.squares();
    for (const FilterParameters<uint16_t>& range : LuminanceRanges<uint16_t>())
        ExpectVariantsAgree(kSobel<uint16_t>, squares, range);
}

TEST(Sobel, DoubleWordsRoundHalvesUpAndReachBeyondTheType) {
    EXPECT_EQ(100u, SobelOf<uint32_t>(100, 0));
    EXPECT_EQ(1581140u, SobelOf<uint32_t>(1000000, 1224746)) << "1581139.57";
    const uint32_t low[3] = {0, 7, 0xffffffff};
    Squares<uint32_t> step(low, low, low);
    EXPECT_EQ(0xffffffffu, step.Filtered(Sobel_scalar<uint32_t>, Whole<uint32_t>())[0]);
    EXPECT_EQ(1000u, step.Filtered(Sobel_scalar<uint32_t>, {5, 1000})[0]);
}

TEST(Sobel, FloatsKeepFractionsAndNanStaysNan) {
    const auto sobel = [](float left, float right, const FilterParameters<float>& range) {
        const float row[3] = {left, 0, right};
        return Squares<float>(row, row, row).Filtered(Sobel_scalar<float>, range)[0];
    };
    EXPECT_EQ(1.5f, sobel(-0.125f, 0.25f, Whole<float>()));
    EXPECT_EQ(1.0f, sobel(-0.125f, 0.25f, {0.0f, 1.0f}));
    EXPECT_EQ(-2.0f, sobel(0, 0, {-3.0f, -2.0f}));
    Squares<float> infinite({0, 0, 0, 0, 0, kFloatInfinity, 0, 0, 0});
    EXPECT_EQ(7.0f, infinite.Filtered(Sobel_scalar<float>, {0.0f, 7.0f})[0]);
    EXPECT_EQ(7.0f, sobel(0, 1e30f, {0.0f, 7.0f})) << "the square is infinite";
    for (const float bad : {kFloatNan, -kFloatNan, kFloatInfinity}) {
        const float got = sobel(bad, bad, {0.0f, 1.0f});
        EXPECT_TRUE(SameBits(&kFloatNan, &got, 1));
    }
}

}  // namespace
}  // namespace orlix
