// Fits of polynomial surfaces and the corrections that flatten an image with them, as clients see them.

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>

#include "contract/surface_kinds.hpp"

namespace orlix::testing {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

const SurfaceKind& KindOf(int degree) { return SurfaceKinds()[static_cast<size_t>(degree) - 1]; }

// A polynomial by its coefficients in the order 1, y, x, y^2, xy, x^2, y^3, x y^2, x^2 y, x^3.
struct Polynomial {
    double average = -1;
    std::array<double, 10> k = {};

    double At(double x, double y) const {
        return k[0] + y * (k[1] + y * (k[3] + y * k[6])) +
               x * (k[2] + y * (k[4] + y * k[7]) + x * (k[5] + y * k[8] + x * k[9]));
    }
};

HRESULT Fit(const Image& image, int degree, Polynomial& p) {
    SurfaceRecord record;
    const HRESULT result = KindOf(degree).fit(*image.process, record);
    EXPECT_EQ(4711, record.size);  // the caller's
    EXPECT_EQ(result != S_OK, record == SurfaceRecord());
    auto* const first = record.values.data() + 1;
    if (degree == 1) std::swap(first[0], first[2]);
    p.average = record.values[0];
    p.k = {};
    std::copy_n(first, KindOf(degree).numbers, p.k.begin());
    return result;
}

HRESULT Correct(const Image& image, int degree, const Polynomial& p) {
    SurfaceRecord record;
    record.values[0] = p.average;
    std::copy(p.k.begin(), p.k.end(), record.values.begin() + 1);
    if (degree == 1) std::swap(record.values[1], record.values[3]);
    return KindOf(degree).correct(*image.process, record);
}

Polynomial Fitted(const Image& image, int degree) {
    Polynomial p;
    EXPECT_EQ(S_OK, Fit(image, degree, p));
    return p;
}

// Coefficients of 1, y and x.
std::tuple<double, double, double> PlaneOf(const Polynomial& p) { return {p.k[0], p.k[1], p.k[2]}; }

std::string FitOf(int degree) { return "IOrlixImageProcess::get_" + KindOf(degree).name + "Fit: "; }

struct Position {
    LONG x, y;
};

// The pixels of the region, by a threshold that every pixel passes.
std::vector<Position> RegionPixels(const Image& image) {
    const std::string rows = RowsOf(Get(image.process, &IImageProcess::Threshold, -1e300, 1e300, 1).get());
    std::vector<Position> region;
    LONG x = 0, y = 0;
    for (const char bit : rows) {
        if (bit == '#') region.push_back({x, y});
        bit == '/' ? (x = 0, ++y) : ++x;
    }
    return region;
}

void SetRectangle(const Image& image, LONG left, LONG top, LONG right, LONG bottom) {
    const auto [bands, width, height] = image.size();
    image.SetRegion(RectangleOf(width, height, left, top, right, bottom));
}

void SetCircle(const Image& image, double x, double y, double radius) {
    const auto [bands, width, height] = image.size();
    image.SetRegion(CircleOf(width, height, x, y, radius));
}

// The independent road: the projection of the pixels onto the span of the monomials, by orthogonalising them one after
// another (twice each) in long double. It is unique, also where the coefficients are not.
template <class T>
std::vector<long double> Projection(const TypedImage<T>& image, int degree) {
    const std::vector<Position> region = RegionPixels(image);
    const size_t n = region.size();
    long double left = 0, top = 0;
    for (const Position at : region) left += at.x, top += at.y;
    left /= static_cast<long double>(n), top /= static_cast<long double>(n);
    std::vector<std::vector<long double>> basis;
    const auto dot = [&](const auto& a, const auto& b) {
        return std::inner_product(a.begin(), a.end(), b.begin(), 0.0L);
    };
    std::vector<long double> z(n), sum(n);
    const Rows<T> rows(image);
    for (size_t i = 0; i < n; ++i) z[i] = static_cast<long double>(rows[region[i].y][static_cast<size_t>(region[i].x)]);
    for (int p = 0; p <= degree; ++p)
        for (int q = 0; p + q <= degree; ++q) {
            std::vector<long double> v(n);
            for (size_t i = 0; i < n; ++i) {
                v[i] = 1;
                for (int k = 0; k < p; ++k) v[i] *= (static_cast<long double>(region[i].x) - left) / 10;
                for (int k = 0; k < q; ++k) v[i] *= (static_cast<long double>(region[i].y) - top) / 10;
            }
            const long double before = std::sqrt(dot(v, v));
            for (int pass = 0; pass < 2; ++pass)
                for (const auto& b : basis) {
                    const long double share = dot(b, v);
                    for (size_t i = 0; i < n; ++i) v[i] -= share * b[i];
                }
            const long double length = std::sqrt(dot(v, v));
            if (!(length > 1e-9L * before)) continue;  // depends on the others
            for (long double& entry : v) entry /= length;
            const long double share = dot(v, z);
            for (size_t i = 0; i < n; ++i) sum[i] += share * v[i];
            basis.push_back(v);
        }
    return sum;
}

// Largest distance of the fitted surface from the projection.
template <class T>
double Distance(const TypedImage<T>& image, int degree) {
    const Polynomial surface = Fitted(image, degree);
    const std::vector<Position> region = RegionPixels(image);
    const std::vector<long double> projection = Projection(image, degree);
    double most = 0;
    for (size_t i = 0; i < region.size(); ++i)
        most = std::max(most, std::fabs(surface.At(region[i].x, region[i].y) - static_cast<double>(projection[i])));
    return most;
}

template <class T>
void FillWithNoise(const TypedImage<T>& image, uint32_t seed, double scale) {
    std::mt19937 random(seed);
    image.Fill([&](LONG, LONG) { return scale * static_cast<double>(random() >> 8) * 0x1p-24; });
}

// --------------------------------------------------------------------------------------------------------------- fits

template <class T>
class SurfaceFit : public ::testing::Test {};
TYPED_TEST_SUITE(SurfaceFit, PixelTypes, );

TYPED_TEST(SurfaceFit, OfAPlaneGivesItsCoefficientsExactlyAndCorrectsToItsAverage) {
    const auto image = NewImage<TypeParam>(10, 10);
    image.Fill([](LONG x, LONG y) { return 2 * x + 3 * y + 5; });
    const Polynomial plane = Fitted(image, 1);
    EXPECT_EQ(std::tuple(5, 3, 2), PlaneOf(plane));
    EXPECT_EQ(27.5, plane.average);
    ASSERT_EQ(S_OK, Correct(image, 1, plane));
    EXPECT_THAT(image.values(), Each(static_cast<TypeParam>(std::is_same_v<TypeParam, float> ? 27.5 : 28)));
}

// Whole coefficients whose values fit a byte: of every degree, in regions near and far, exact to the last bit.
TYPED_TEST(SurfaceFit, OfWholeCoefficientsIsExact) {
    const auto image = NewImage<TypeParam>(640, 480);
    // Falls and rises by whole numbers within the region's 20 x 15 pixels, as products of few columns and rows.
    image.Fill([](LONG x, LONG y) {
        const LONG u = x - 610, v = y - 447;
        return 120 + 3 * u - 2 * v + v * v - u * v;
    });
    SetRectangle(image, 600, 440, 619, 454);
    // In x and y: v^2 = y^2 - 894 y + 199809, u v = x y - 447 x - 610 y + 272670.
    const double want[6] = {120 - 1830 + 894 + 199809 - 272670, -2 - 894 + 610, 3 + 447, 1, -1, 0};
    bool fits = true;
    for (const Position at : RegionPixels(image)) {
        const double z = want[0] + at.y * (want[1] + at.y) + at.x * (want[2] - at.y);
        fits = fits && z >= 0 && (sizeof(TypeParam) > 1 || z < 256) && z == static_cast<double>(image.at(at.x, at.y));
    }
    if (!fits) image.Fill([](LONG, LONG) { return 7; });  // bytes: only the constant
    for (const int degree : {2, 3}) {
        const Polynomial surface = Fitted(image, degree);
        for (size_t i = 0; i < 10; ++i)
            EXPECT_EQ(fits ? (i < 6 ? want[i] : 0.0) : (i == 0 ? 7.0 : 0.0), surface.k[i]) << degree << " " << i;
    }
}

TYPED_TEST(SurfaceFit, EqualsTheProjectionOfNoise) {
    const auto image = NewImage<TypeParam>(640, 480);
    const double scale = std::is_same_v<TypeParam, uint32_t> ? 4e9 : std::is_same_v<TypeParam, float> ? 1.0 : 250;
    FillWithNoise(image, 1, scale);
    for (const int degree : {1, 2, 3}) {
        SCOPED_TRACE(degree);
        // The value of a polynomial far from the origin has that many digits less: see the terms at (619, 454).
        SetRectangle(image, 600, 440, 619, 454);
        EXPECT_LE(Distance(image, degree), scale * (degree == 3 ? 3e-9 : degree == 2 ? 1e-11 : 1e-13));
        SetCircle(image, 15, 12, 9.3);
        EXPECT_LE(Distance(image, degree), scale * 1e-12);
        for (const auto& [left, top, right, bottom] : {std::array{2, 3, 6, 5},  // three rows: no third degree in y
                                                       {0, 7, 39, 7},
                                                       {30, 0, 30, 79},
                                                       {5, 5, 6, 6}}) {
            SetRectangle(image, left, top, right, bottom);
            EXPECT_LE(Distance(image, degree), scale * 1e-12) << right;
        }
    }
}

// The shortest solution about the centre: no slope across a line, and that of the line along it. With fewer pixels than
// coefficients: the least coefficients in x and y as they are.
TYPED_TEST(SurfaceFit, OfLinesAndFewPixelsHasTheLeastCoefficients) {
    const auto image = NewImage<TypeParam>(50, 30);
    image.Fill([](LONG x, LONG y) { return x == 3 && y == 0 ? 12 : x == 2 && y == 1 ? 200 : 2 * x + 5; });
    SetRectangle(image, 10, 12, 29, 12);
    EXPECT_EQ(std::tuple(5, 0, 2), PlaneOf(Fitted(image, 1))) << "a row";
    SetRectangle(image, 10, 12, 10, 29);
    EXPECT_EQ(std::tuple(25, 0, 0), PlaneOf(Fitted(image, 1))) << "a column";
    SetRectangle(image, 7, 3, 8, 3);
    EXPECT_EQ(std::tuple(0.5, 1.5, 2), PlaneOf(Fitted(image, 1))) << "two pixels: of a + 3 b = 5 the shortest";
    EXPECT_EQ(20, Fitted(image, 1).average);
    const auto diagonal = NewRegion();
    Check(diagonal->CreateOrientedRectangleFromCenterLine(50, 30, 3, 0, 2, 1, 0.5), diagonal);
    image.SetRegion(diagonal);
    ASSERT_EQ(2u, RegionPixels(image).size());
    const Polynomial steep = Fitted(image, 1);
    EXPECT_DOUBLE_EQ(588.0 / 11, steep.k[0]);
    EXPECT_DOUBLE_EQ(1916.0 / 11, steep.k[1]);
    EXPECT_DOUBLE_EQ(-152.0 / 11, steep.k[2]);
    SetRectangle(image, 4, 4, 4, 4);  // 13
    const Polynomial one = Fitted(image, 3);
    const double square = 1 + 2 * 16 + 3 * 256 + 4 * 4096;
    for (size_t i = 0; i < 10; ++i)
        EXPECT_DOUBLE_EQ(13 * (i == 0 ? 1 : i < 3 ? 4 : i < 6 ? 16 : 64) / square, one.k[i]) << i;
}

// Two rows hold no second degree in y: which of the surfaces through them is the shortest depends on where the height 0
// is, not on the type of the pixels.
TYPED_TEST(SurfaceFit, OfUndeterminedSurfacesIsThatOfBytes) {
    const auto fill = [](LONG x, LONG y) { return 7 * x + 3 * y + 20; };
    const auto image = NewImage<TypeParam>(6, 2);
    const auto bytes = NewImage<uint8_t>(6, 2);
    image.Fill(fill);
    bytes.Fill(fill);
    for (const int degree : {1, 2, 3}) EXPECT_EQ(Fitted(bytes, degree).k, Fitted(image, degree).k) << degree;
    EXPECT_NEAR(-75, Fitted(image, 2).k[1], 30);
}

TYPED_TEST(SurfaceFit, OfNoPixelsOrSeveralBandsIsNone) {
    const auto image = NewImage<TypeParam>(4, 4, 3);
    Polynomial surface;
    for (const int degree : {1, 2, 3})
        EXPECT_TRUE(Fails(Fit(image, degree, surface), FitOf(degree) + "multiband measurement is not supported."));
    ASSERT_EQ(S_OK, image.process->put_BandToProcess(1));
    EXPECT_EQ(S_OK, Fit(image, 1, surface));
    image.SetRegion(RectangleOf(100, 100, 50, 50, 60, 60));
    for (const int degree : {1, 2, 3}) {
        EXPECT_EQ(S_FALSE, Fit(image, degree, surface));
        EXPECT_EQ(S_OK, Correct(image, degree, surface));
    }
    EXPECT_THAT(image.values(1), Each(TypeParam{0}));
}

// Wider and higher than the tiles in which sums are gathered.
TEST(SurfaceFitOfBytes, OfALargeRectangleIsRightAcrossTiles) {
    const auto image = NewImage<uint8_t>(9000, 200);
    image.Fill([](LONG x, LONG y) { return (x / 64 + 2 * (y / 32) + (x * 7 + y * 13) % 32) % 256; });
    SetRectangle(image, 17, 3, 8990, 190);
    const double n = 8974.0 * 188, meanX = (17 + 8990) / 2.0, meanY = (3 + 190) / 2.0;
    double xx = 0, yy = 0, xz = 0, yz = 0, sum = 0;
    const Rows<uint8_t> rows(image);
    for (LONG y = 3; y <= 190; ++y)
        for (LONG x = 17; x <= 8990; ++x) {
            const double z = rows[y][static_cast<size_t>(x)], dx = x - meanX, dy = y - meanY;
            xx += dx * dx, yy += dy * dy, xz += dx * z, yz += dy * z, sum += z;
        }
    const Polynomial plane = Fitted(image, 1);
    EXPECT_DOUBLE_EQ(sum / n, plane.average);
    EXPECT_NEAR(xz / xx, plane.k[2], 1e-12 * xz / xx);
    EXPECT_NEAR(yz / yy, plane.k[1], 1e-11 * std::fabs(yz / yy));
    EXPECT_NEAR(sum / n - plane.k[2] * meanX - plane.k[1] * meanY, plane.k[0], 1e-10);
}

// -------------------------------------------------------------------------------------------------------- large images

// A cubic of range 2000 sampled as floats over 4096 x 4096 pixels: what rounding the samples to float (2e-8 of the
// range, at random) does to the coefficients is far below what is allowed here.
TEST(LargeFit, RecoversACubicToABillionthOfItsRange) {
    constexpr LONG kSize = 4096;
    const auto image = NewImage<float>(kSize, kSize);
    const auto surface = [](double x, double y) {
        const double u = (x - 2000) / 2048, v = (y - 2100) / 2048;
        return 1000 + 300 * u - 200 * v + 150 * u * v - 100 * v * v + 80 * u * u * u - 60 * u * v * v + 40 * v * v * v;
    };
    image.Fill(surface);
    const Polynomial fit = Fitted(image, 3);
    double most = 0;
    for (LONG y = 0; y < kSize; y += 45)
        for (LONG x = 0; x < kSize; x += 45) most = std::max(most, std::fabs(fit.At(x, y) - surface(x, y)));
    EXPECT_LE(most, 1e-9 * 2000);
}

// The same with samples that are exact: a cubic with whole values in 32 bits. Every coefficient comes back to the last
// bit.
TEST(LargeFit, RecoversAWholeCubicExactly) {
    constexpr LONG kSize = 1024;
    const auto image = NewImage<uint32_t>(kSize, kSize);
    image.Fill([](LONG x, LONG y) {
        const int64_t u = x - 500, v = y - 510;
        return 2000000000 + 3 * u - v + 2 * u * v + v * v - u * u + u * u * u - 2 * u * u * v + u * v * v +
               3 * v * v * v;
    });
    SetCircle(image, 511, 512, 500);
    const Polynomial fit = Fitted(image, 3);
    // y^2: v^2 + u v^2 at -500 and 3 v^3 at -3 510; x y; x^2: -1 + u^3 at -1500 and -2 u^2 v at 2 510.
    const double want[] = {1 - 500 - 9 * 510, 2 + 4 * 500 - 2 * 510, -1 - 1500 + 2 * 510, 3, 1, -2, 1};
    for (size_t i = 3; i < 10; ++i) EXPECT_EQ(want[i - 3], fit.k[i]) << i;
    EXPECT_EQ(static_cast<double>(image.at(300, 700)), fit.At(300, 700));
}

// ---------------------------------------------------------------------------------------------------------- float data

TEST(FloatFit, RefusesPixelsThatAreNoNumbers) {
    for (const float bad : {std::nanf(""), HUGE_VALF, -HUGE_VALF})
        for (const LONG at : {LONG{0}, LONG{7}})
            for (const int degree : {1, 2, 3}) {
                const auto image = NewImage<float>(4, 3);
                image.Fill([=](LONG x, LONG y) { return 4 * y + x == at ? bad : 1.0f; });
                Polynomial surface;
                EXPECT_TRUE(Fails(Fit(image, degree, surface), FitOf(degree) + "not all pixels are finite."));
                SetRectangle(image, 0, 2, 3, 2);  // without the pixel
                EXPECT_EQ(S_OK, Fit(image, degree, surface));
                EXPECT_NEAR(1, surface.average, 1e-15);
            }
}

TEST(FloatFit, OfExtremeValuesIsFinite) {
    const auto image = NewImage<float>(64, 64);
    image.Fill([most = std::numeric_limits<float>::max()](LONG x, LONG y) { return (x + y) % 2 ? most : -most; });
    for (const int degree : {1, 2, 3}) {
        const Polynomial surface = Fitted(image, degree);
        EXPECT_EQ(0, surface.average);
        for (const double k : surface.k) EXPECT_TRUE(std::isfinite(k));
    }
}

// --------------------------------------------------------------------------------------------------------- corrections

TYPED_TEST(SurfaceFit, CorrectionFollowsItsFormulaInTheRegionOnly) {
    const auto image = NewImage<TypeParam>(70, 40);
    FillWithNoise(image, 9, 200);
    const std::vector<TypeParam> before = image.values();
    for (const int degree : {1, 2, 3}) {
        const auto copy = NewImage<TypeParam>(70, 40);
        copy.Fill([&](LONG x, LONG y) { return before[static_cast<size_t>(70 * y + x)]; });
        SetCircle(copy, 33, 20, 17.5);
        ASSERT_EQ(S_OK, copy.process->PutLuminanceRange(20, 180));
        Polynomial surface;
        surface.average = 100.28713391;  // no halves: rounding is not in question
        const double k[] = {60.1, 0.7, 0.3, 0.011, -0.013, 0.002, 1e-4, -2e-4, 3e-5, -1e-5};
        std::copy_n(k, KindOf(degree).numbers, surface.k.begin());
        ASSERT_EQ(S_OK, Correct(copy, degree, surface));
        std::vector<TypeParam> want = before;
        for (const Position at : RegionPixels(copy)) {
            TypeParam& pixel = want[static_cast<size_t>(70 * at.y + at.x)];
            const double v = static_cast<double>(pixel) - surface.At(at.x, at.y) + surface.average;
            const double rounded = std::is_same_v<TypeParam, float> ? v : std::floor(v + 0.5);
            pixel = static_cast<TypeParam>(v < 20 ? 20 : v > 180 ? 180 : rounded);
        }
        const std::vector<TypeParam> got = copy.values();
        const double allowed = std::is_same_v<TypeParam, float> ? 1e-5 : 0;
        for (size_t i = 0; i < want.size(); ++i)
            ASSERT_NEAR(static_cast<double>(want[i]), static_cast<double>(got[i]), allowed)
                << degree << " at " << i % 70 << ", " << i / 70;
    }
}

TEST(Correction, WorksOnAllBandsToProcess) {
    const auto image = NewImage<uint8_t>(3, 1, 2);
    ASSERT_EQ(S_OK, image.process->ScalarEquals(50));
    Polynomial plane;
    plane.average = 10;
    plane.k[2] = 5;  // f = 5x
    ASSERT_EQ(S_OK, Correct(image, 1, plane));
    ASSERT_EQ(S_OK, image.process->put_BandToProcess(1));
    ASSERT_EQ(S_OK, Correct(image, 2, plane));
    EXPECT_THAT(image.values(0), ElementsAre(60, 55, 50));
    EXPECT_THAT(image.values(1), ElementsAre(70, 60, 50));
}

TEST(Correction, RefusesARecordThatIsNotFinite) {
    const auto image = NewImage<uint8_t>(3, 1);
    ASSERT_EQ(S_OK, image.process->ScalarEquals(50));
    for (const int degree : {1, 2, 3})
        for (size_t i = 0; i <= KindOf(degree).numbers; ++i) {
            Polynomial surface;
            (i == 0 ? surface.average : surface.k[i - 1]) = i % 2 ? HUGE_VAL : std::nan("");
            EXPECT_TRUE(Fails(Correct(image, degree, surface),
                              "IOrlixImageProcess::Correct" + KindOf(degree).name + ": the surface is not finite."));
        }
    EXPECT_THAT(image.values(), Each(50));
    Polynomial steep;  // overflows on the way: no number, or infinite
    steep.k[0] = 1e308, steep.k[2] = -1e308, steep.k[5] = 1e308;
    EXPECT_EQ(S_OK, Correct(image, 2, steep));
}

}  // namespace
}  // namespace orlix::testing
