#include "fits/correction_kernels.hpp"

#include "support/kernel_testing.hpp"
#include "support/special_numbers.hpp"

namespace orlix {
namespace {

// Shifts that a surface may have, and among them halves, neighbours of halves, and what no surface should have.
std::vector<double> ShiftNoise(size_t n, uint32_t seed, double scale) {
    const double special[2][8] = {{0, 0.5, 1.5, 2.5, 0x1.fffffffffffffp-2, 0x1.0000000000001p-1, 32767.5, 2147483646.5},
                                  {255, 65535, 0x1p31, 0x1p33, 1e-310, 1e300, kInfinity, kNaN}};
    std::mt19937 random(seed);
    std::vector<double> shifts(n);
    for (double& shift : shifts) {
        const double any = static_cast<double>(static_cast<int32_t>(random())) * 0x1p-31 * scale;
        shift = random() % 4 == 0 ? std::copysign(special[random() % 2][random() % 8], any) : any;
    }
    return shifts;
}

template <class T>
class Correcting : public testing::Test {};
TYPED_TEST_SUITE(Correcting, PixelTypes, );

TYPED_TEST(Correcting, EveryVariantEqualsTheDefinition) {
    using T = TypeParam;
    const T most = std::is_same_v<T, float> ? T{255} : std::numeric_limits<T>::max();
    const T ranges[][2] = {{std::numeric_limits<T>::lowest(), std::numeric_limits<T>::max()},
                           {static_cast<T>(most / 16), static_cast<T>(most / 4 * 3)},
                           {static_cast<T>(most / 2), static_cast<T>(most / 4)}};
    for (const size_t n : kAwkwardSizes)
        for (const auto& [lower, upper] : ranges)
            for (const double scale : {2.0, static_cast<double>(most)}) {
                const std::vector<double> shifts = ShiftNoise(n, static_cast<uint32_t>(n + 1), scale);
                const CorrectionParameters<T> parameters{lower, upper, lower > upper ? 0.0 : 0.5};
                ExpectTheDefinition(kCorrect<T>, Noise<T>(n, static_cast<uint32_t>(n)),
                                    [&](auto correct, T* pixels) { correct(pixels, shifts.data(), n, parameters); });
            }
}

TEST(Shifts, EveryVariantEqualsTheDefinitionBitForBit) {
    // The last ones have zeros of both signs.
    for (const RowPolynomial& row :
         {RowPolynomial{{12.3, -0.75, 1e-3, -2e-7}}, RowPolynomial{{12.3, -0.75, 1e-3, -0.0}},
          RowPolynomial{{12.3, -0.75, 0, 0}}, RowPolynomial{{12.3, 0, 0, -0.0}}, RowPolynomial{{-0.0, -0.75, 0, 0}},
          RowPolynomial{{-0.0, -0.0, -0.0, -0.0}}})
        for (const size_t n : kAwkwardSizes)
            for (const double x : {0.0, 600.0, 2147483000.0})
                ExpectTheDefinition(kShifts, std::vector<double>(n, 1.0),
                                    [&](auto shifts, double* to) { shifts(to, n, x, row); });
}

// Gentle and steep rows, constants at and beside a half, slopes that pass through halves exactly, and rows beyond all
// bounds.
TEST(CorrectRow, EveryVariantEqualsTheDefinition) {
    const RowPolynomial rows[] = {{{3.3, 0.01, -2e-6, 3e-10}},
                                  {{0.5, 0, 0, 0}},
                                  {{std::nextafter(-0.5, 0), 0, 0, 0}},
                                  {{-20.25, 0.0625, 0, 0}},
                                  {{12, -0.03125, 0x1p-15, 0}},
                                  {{100, -0.3, 1e-4, 1e-8}},
                                  {{-1e6, 1e3, 0.2, -1e-4}},
                                  {{40000, 0, 0, 0}},
                                  {{-16400, 32.03125, 0, 0}},
                                  {{32700, 0.0625, 0, 0}},
                                  {{1e300, -1e300, 1e300, 1e300}},
                                  {{0, 0, kNaN, 0}}};
    std::vector<size_t> sizes(std::begin(kAwkwardSizes), std::end(kAwkwardSizes));
    sizes.push_back(4096);
    for (const RowPolynomial& row : rows)
        for (const size_t n : sizes)
            for (const double x : {0.0, 37.0, 100000.0})
                for (const uint8_t lower : {uint8_t{0}, uint8_t{20}, uint8_t{240}}) {
                    const CorrectionParameters<uint8_t> parameters{lower, 230, lower > 230 ? 0.0 : 0.5};
                    ExpectTheDefinition(kCorrectRow, Noise<uint8_t>(n, static_cast<uint32_t>(n)),
                                        [&](auto correct, uint8_t* pixels) { correct(pixels, n, x, row, parameters); });
                }
}

// v = p + s at p = 10: rounded half up, clamped, and for a range turned round below lower or not.
TEST(Correction, KnownAnswers) {
    const double shifts[] = {0.49, 0.5, -0.5, -0.51, -7.5, -7.51, 9.7, kNaN, kInfinity, -kInfinity};
    uint8_t bytes[10];
    std::fill_n(bytes, 10, uint8_t{10});
    Corrector<uint8_t>(3, 18).Apply(bytes, shifts, 10);
    EXPECT_EQ((std::vector<int>{10, 11, 10, 9, 3, 3, 18, 3, 18, 3}), std::vector<int>(bytes, bytes + 10));

    std::fill_n(bytes, 10, uint8_t{10});
    Corrector<uint8_t>(10, 4).Apply(bytes, shifts, 10);
    EXPECT_EQ((std::vector<int>{4, 4, 10, 10, 10, 10, 4, 10, 4, 10}), std::vector<int>(bytes, bytes + 10));

    float floats[4] = {10, 10, 10, std::numeric_limits<float>::quiet_NaN()};
    const double some[] = {0.25, -9.0, kNaN, 0.0};
    Corrector<float>(2, 18).Apply(floats, some, 4);
    EXPECT_EQ(10.25f, floats[0]);
    EXPECT_EQ(2.0f, floats[1]);
    EXPECT_TRUE(std::isnan(floats[2]));
    EXPECT_TRUE(std::isnan(floats[3]));
}

TEST(Correction, SubtractsThePolynomialInAnyNumberOfPieces) {
    // f = 1 + 2y + 3x + y^2 at y = 2: 9 + 3x; average 100.
    SurfacePolynomial surface;
    surface.k = {1, 2, 3, 1};
    surface.average = 100;
    std::vector<uint32_t> pixels(1200);
    for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<uint32_t>(9 + 3 * (i + 50) + i % 7);
    Corrector<uint32_t>(0, 4294967295u).Apply(pixels.data(), pixels.size(), 50, 2, surface);
    for (size_t i = 0; i < pixels.size(); ++i) ASSERT_EQ(100 + i % 7, pixels[i]) << i;
}

}  // namespace
}  // namespace orlix
