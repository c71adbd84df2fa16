// Fits of polynomial surfaces and the corrections that flatten an image with them, as clients see them.

#include <gmock/gmock.h>

#include <array>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>

#include "contract/support.hpp"

namespace orlix::testing {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

// The three fits behind one face: coefficients in the order 1, y, x, y^2, xy, x^2, y^3, x y^2, x^2 y, x^3.
struct Surface {
    LONG size = 4711;
    double average = -1;
    std::array<double, 10> k;
    Surface() { k.fill(0); }

    double At(double x, double y) const {
        return k[0] + y * (k[1] + y * (k[3] + y * k[6])) +
               x * (k[2] + y * (k[4] + y * k[7]) + x * (k[5] + y * k[8] + x * k[9]));
    }
};
constexpr size_t kTerms[] = {0, 3, 6, 10};
constexpr const char* kNames[] = {"", "Planar", "Biquadratic", "Bicubic"};

SPlanarFit Planar(const Surface& s) { return {s.size, s.average, s.k[2], s.k[1], s.k[0]}; }
SBiquadraticFit Biquadratic(const Surface& s) {
    return {s.size, s.average, s.k[0], s.k[1], s.k[2], s.k[3], s.k[4], s.k[5]};
}
SBicubicFit Bicubic(const Surface& s) {
    return {s.size, s.average, s.k[0], s.k[1], s.k[2], s.k[3], s.k[4], s.k[5], s.k[6], s.k[7], s.k[8], s.k[9]};
}

HRESULT Fit(const ComPtr<IOrlixImageProcess>& process, int degree, Surface& s) {
    if (degree == 1) {
        SPlanarFit fit = Planar(s);
        const HRESULT result = process->get_PlanarFit(&fit);
        s.size = fit.m_lSize, s.average = fit.m_dAverage;
        s.k = {fit.m_dGamma, fit.m_dBeta, fit.m_dAlpha};
        return result;
    }
    if (degree == 2) {
        SBiquadraticFit fit = Biquadratic(s);
        const HRESULT result = process->get_BiquadraticFit(&fit);
        s.size = fit.m_lSize, s.average = fit.m_dAverage;
        s.k = {fit.m_dK0, fit.m_dK1, fit.m_dK2, fit.m_dK3, fit.m_dK4, fit.m_dK5};
        return result;
    }
    SBicubicFit fit = Bicubic(s);
    const HRESULT result = process->get_BicubicFit(&fit);
    s.size = fit.m_lSize, s.average = fit.m_dAverage;
    s.k = {fit.m_dK0, fit.m_dK1, fit.m_dK2, fit.m_dK3, fit.m_dK4,
           fit.m_dK5, fit.m_dK6, fit.m_dK7, fit.m_dK8, fit.m_dK9};
    return result;
}

HRESULT Correct(const ComPtr<IOrlixImageProcess>& process, int degree, const Surface& s) {
    SPlanarFit planar = Planar(s);
    SBiquadraticFit biquadratic = Biquadratic(s);
    SBicubicFit bicubic = Bicubic(s);
    return degree == 1   ? process->CorrectPlanar(&planar)
           : degree == 2 ? process->CorrectBiquadratic(&biquadratic)
                         : process->CorrectBicubic(&bicubic);
}

struct Pixel {
    LONG x, y;
};

template <class T>
struct Image {
    ComPtr<IImageVPAExPlus> pixels;
    ComPtr<IOrlixImageProcess> process;
    LONG width, height;

    Image(LONG w, LONG h, LONG bands = 1)
        : pixels(NewImage<T>(w, h, bands)), process(Cast<IOrlixImageProcess>(pixels)), width(w), height(h) {}

    template <class Value>
    void Fill(Value&& value) {
        LONG y = 0;
        for (const auto row : Rows<T>(pixels)) {
            for (LONG x = 0; x < width; ++x) row[static_cast<size_t>(x)] = static_cast<T>(value(x, y));
            ++y;
        }
    }
    T at(LONG x, LONG y) const { return Rows<T>(pixels)[static_cast<size_t>(y)][static_cast<size_t>(x)]; }

    void SetRegion(const ComPtr<IShapeRegionOfInterest>& region) { Check(process->put_RegionOfInterest(region.get())); }
    ComPtr<IShapeRegionOfInterest> Rectangle(LONG left, LONG top, LONG right, LONG bottom) {
        auto region = CreateObject<IShapeRegionOfInterest>("Orlix.ShapeRegionOfInterest");
        Check(region->CreateRectangle(width, height, left, top, right, bottom), region);
        SetRegion(region);
        return region;
    }
    ComPtr<IShapeRegionOfInterest> Circle(double x, double y, double radius) {
        auto region = CreateObject<IShapeRegionOfInterest>("Orlix.ShapeRegionOfInterest");
        Check(region->CreateCircle(width, height, x, y, radius), region);
        SetRegion(region);
        return region;
    }
    // The pixels of the region, by a threshold that every pixel passes.
    std::vector<Pixel> Region() const {
        ComPtr<IBitmap> bitmap;
        Check(process->Threshold(-1e300, 1e300, 1, bitmap.Out()), process);
        std::vector<Pixel> region;
        for (LONG y = 0; y < height; ++y)
            for (LONG x = 0; x < width; ++x) {
                LONG bit = 0;
                Check(bitmap->get_Bit(x, y, &bit));
                if (bit) region.push_back({x, y});
            }
        return region;
    }
    Surface Fitted(int degree) const {
        Surface surface;
        Check(Fit(process, degree, surface), process);
        EXPECT_EQ(4711, surface.size);  // the caller's
        return surface;
    }
};

// The independent road: the projection of the pixels onto the span of the monomials, by orthogonalising them one after
// another (twice each) in long double. It is unique, also where the coefficients are not.
template <class T>
std::vector<long double> Projection(const Image<T>& image, int degree) {
    const std::vector<Pixel> region = image.Region();
    const size_t n = region.size();
    long double left = 0, top = 0;
    for (const Pixel at : region) left += at.x, top += at.y;
    left /= static_cast<long double>(n), top /= static_cast<long double>(n);
    std::vector<std::vector<long double>> basis;
    const auto dot = [&](const auto& a, const auto& b) {
        return std::inner_product(a.begin(), a.end(), b.begin(), 0.0L);
    };
    std::vector<long double> z(n), sum(n);
    for (size_t i = 0; i < n; ++i) z[i] = static_cast<long double>(image.at(region[i].x, region[i].y));
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
double Distance(const Image<T>& image, int degree) {
    const Surface surface = image.Fitted(degree);
    const std::vector<Pixel> region = image.Region();
    const std::vector<long double> projection = Projection(image, degree);
    double most = 0;
    for (size_t i = 0; i < region.size(); ++i)
        most = std::max(most, std::fabs(surface.At(region[i].x, region[i].y) - static_cast<double>(projection[i])));
    return most;
}

template <class T>
void FillWithNoise(Image<T>& image, uint32_t seed, double scale) {
    std::mt19937 random(seed);
    image.Fill([&](LONG, LONG) { return scale * static_cast<double>(random() >> 8) * 0x1p-24; });
}

// -------------------------------------------------------------------------------------------------------------------
// fits

template <class T>
class SurfaceFit : public ::testing::Test {};
TYPED_TEST_SUITE(SurfaceFit, PixelTypes, );

TYPED_TEST(SurfaceFit, OfAPlaneGivesItsCoefficientsExactlyAndCorrectsToItsAverage) {
    Image<TypeParam> image(10, 10);
    image.Fill([](LONG x, LONG y) { return 2 * x + 3 * y + 5; });
    const Surface plane = image.Fitted(1);
    EXPECT_EQ(2, plane.k[2]);
    EXPECT_EQ(3, plane.k[1]);
    EXPECT_EQ(5, plane.k[0]);
    EXPECT_EQ(27.5, plane.average);
    ASSERT_EQ(S_OK, Correct(image.process, 1, plane));
    EXPECT_THAT(PixelsOf<TypeParam>(image.pixels),
                Each(static_cast<TypeParam>(std::is_same_v<TypeParam, float> ? 27.5 : 28)));
}

// Whole coefficients whose values fit a byte: of every degree, in regions near and far, exact to the last bit.
TYPED_TEST(SurfaceFit, OfWholeCoefficientsIsExact) {
    Image<TypeParam> image(640, 480);
    // Falls and rises by whole numbers within the region's 20 x 15 pixels, as products of few columns and rows.
    image.Fill([](LONG x, LONG y) {
        const LONG u = x - 610, v = y - 447;
        return 120 + 3 * u - 2 * v + v * v - u * v;
    });
    image.Rectangle(600, 440, 619, 454);
    // In x and y: v^2 = y^2 - 894 y + 199809, u v = x y - 447 x - 610 y + 272670.
    const double want[6] = {120 - 1830 + 894 + 199809 - 272670, -2 - 894 + 610, 3 + 447, 1, -1, 0};
    bool fits = true;
    for (const Pixel at : image.Region()) {
        const double z = want[0] + at.y * (want[1] + at.y) + at.x * (want[2] - at.y);
        fits = fits && z >= 0 && (sizeof(TypeParam) > 1 || z < 256) && z == static_cast<double>(image.at(at.x, at.y));
    }
    if (!fits) image.Fill([](LONG, LONG) { return 7; });  // bytes: only the constant
    for (const int degree : {2, 3}) {
        const Surface surface = image.Fitted(degree);
        for (size_t i = 0; i < 10; ++i)
            EXPECT_EQ(fits ? (i < 6 ? want[i] : 0.0) : (i == 0 ? 7.0 : 0.0), surface.k[i]) << degree << " " << i;
    }
}

TYPED_TEST(SurfaceFit, EqualsTheProjectionOfNoise) {
    Image<TypeParam> image(640, 480);
    const double scale = std::is_same_v<TypeParam, uint32_t> ? 4e9 : std::is_same_v<TypeParam, float> ? 1.0 : 250;
    FillWithNoise(image, 1, scale);
    for (const int degree : {1, 2, 3}) {
        SCOPED_TRACE(degree);
        // The value of a polynomial far from the origin has that many digits less: see the terms at (619, 454).
        image.Rectangle(600, 440, 619, 454);
        EXPECT_LE(Distance(image, degree), scale * (degree == 3 ? 3e-9 : degree == 2 ? 1e-11 : 1e-13));
        image.Circle(15, 12, 9.3);
        EXPECT_LE(Distance(image, degree), scale * 1e-12);
        image.Rectangle(2, 3, 6, 5);  // three rows: no third degree in y
        EXPECT_LE(Distance(image, degree), scale * 1e-12);
        image.Rectangle(0, 7, 39, 7);  // one row
        EXPECT_LE(Distance(image, degree), scale * 1e-12);
        image.Rectangle(30, 0, 30, 79);  // one column
        EXPECT_LE(Distance(image, degree), scale * 1e-12);
        image.Rectangle(5, 5, 6, 6);  // four pixels
        EXPECT_LE(Distance(image, degree), scale * 1e-12);
    }
}

TYPED_TEST(SurfaceFit, AddingAConstantShiftsOnlyTheOffset) {
    Image<TypeParam> image(60, 50);
    image.Circle(30, 25, 21);
    for (const int degree : {1, 2, 3}) {
        std::mt19937 random(5);
        const auto noise = [&](LONG x, LONG y) { return 20 + static_cast<int>(random() % 64) + (x * y) % 7; };
        image.Fill(noise);
        const Surface before = image.Fitted(degree);
        random.seed(5);
        image.Fill([&](LONG x, LONG y) { return noise(x, y) + 100; });
        const Surface after = image.Fitted(degree);
        EXPECT_NEAR(before.average + 100, after.average, 1e-13);
        EXPECT_NEAR(before.k[0] + 100, after.k[0], 1e-11);
        for (size_t i = 1; i < kTerms[degree]; ++i)
            EXPECT_NEAR(before.k[i], after.k[i], 1e-12 * std::fabs(before.k[i])) << i;
    }
}

// The shortest solution about the centre: no slope across a line, and that of the line along it.
TYPED_TEST(SurfaceFit, OfOneRowHasNoSlopeAcrossIt) {
    Image<TypeParam> image(50, 30);
    image.Fill([](LONG x, LONG) { return 2 * x + 5; });
    image.Rectangle(10, 12, 29, 12);
    const Surface plane = image.Fitted(1);
    EXPECT_EQ(0, plane.k[1]);
    EXPECT_EQ(2, plane.k[2]);
    EXPECT_EQ(5, plane.k[0]);
    image.Rectangle(10, 12, 10, 29);
    EXPECT_EQ(0, image.Fitted(1).k[1]);
    EXPECT_EQ(0, image.Fitted(1).k[2]);
    EXPECT_EQ(25, image.Fitted(1).k[0]);
}

// Fewer pixels than coefficients: the least coefficients in x and y as they are.
TYPED_TEST(SurfaceFit, OfFewPixelsPassesThroughThemWithTheLeastCoefficients) {
    Image<TypeParam> image(20, 20);
    image.Fill([](LONG x, LONG y) { return x == 3 && y == 0 ? 12 : x == 2 && y == 1 ? 200 : 10 * x; });
    image.Rectangle(7, 3, 8, 3);
    const Surface plane = image.Fitted(1);
    EXPECT_EQ(10, plane.k[2]);
    EXPECT_EQ(0, plane.k[1]);
    EXPECT_EQ(0, plane.k[0]);
    EXPECT_EQ(75, plane.average);
    auto diagonal = CreateObject<IShapeRegionOfInterest>("Orlix.ShapeRegionOfInterest");
    Check(diagonal->CreateOrientedRectangleFromCenterLine(20, 20, 3, 0, 2, 1, 0.5), diagonal);
    image.SetRegion(diagonal);
    ASSERT_EQ(2u, image.Region().size());
    const Surface steep = image.Fitted(1);
    EXPECT_DOUBLE_EQ(-152.0 / 11, steep.k[2]);
    EXPECT_DOUBLE_EQ(1916.0 / 11, steep.k[1]);
    EXPECT_DOUBLE_EQ(588.0 / 11, steep.k[0]);
    image.Rectangle(4, 4, 4, 4);
    const Surface one = image.Fitted(3);
    const double square = 1 + 2 * 16 + 3 * 256 + 4 * 4096;
    for (size_t i = 0; i < 10; ++i)
        EXPECT_DOUBLE_EQ(40 * (i == 0 ? 1 : i < 3 ? 4 : i < 6 ? 16 : 64) / square, one.k[i]) << i;
}

// Two rows hold no second degree in y: which of the surfaces through them is the shortest depends on where the height 0
// is, not on the type of the pixels.
TYPED_TEST(SurfaceFit, OfUndeterminedSurfacesIsThatOfBytes) {
    const auto fill = [](LONG x, LONG y) { return 7 * x + 3 * y + 20; };
    Image<TypeParam> image(6, 2);
    Image<uint8_t> bytes(6, 2);
    image.Fill(fill);
    bytes.Fill(fill);
    for (const int degree : {1, 2, 3}) EXPECT_EQ(bytes.Fitted(degree).k, image.Fitted(degree).k) << degree;
    EXPECT_NEAR(-75, image.Fitted(2).k[1], 30);
}

TYPED_TEST(SurfaceFit, OfNoPixelsAnswersFalseAndLeavesTheRecord) {
    Image<TypeParam> image(10, 10);
    auto region = CreateObject<IShapeRegionOfInterest>("Orlix.ShapeRegionOfInterest");
    Check(region->CreateRectangle(100, 100, 50, 50, 60, 60), region);
    image.SetRegion(region);
    for (const int degree : {1, 2, 3}) {
        Surface surface;
        surface.k[1] = 77;
        EXPECT_EQ(S_FALSE, Fit(image.process, degree, surface));
        EXPECT_EQ(-1, surface.average);
        EXPECT_EQ(77, surface.k[1]);
        EXPECT_EQ(S_OK, Correct(image.process, degree, surface));
    }
    EXPECT_THAT(PixelsOf<TypeParam>(image.pixels), Each(TypeParam{0}));
}

TYPED_TEST(SurfaceFit, OfSeveralBandsIsRefused) {
    Image<TypeParam> image(4, 4, 3);
    for (const int degree : {1, 2, 3}) {
        Surface surface;
        surface.k[1] = 77;
        const std::string text =
            std::string("IOrlixImageProcess::get_") + kNames[degree] + "Fit: multiband measurement is not supported.";
        EXPECT_TRUE(Fails(Fit(image.process, degree, surface), text));
        EXPECT_EQ(-1, surface.average);
        EXPECT_EQ(77, surface.k[1]);
    }
    ASSERT_EQ(S_OK, image.process->put_BandToProcess(1));
    Surface surface;
    EXPECT_EQ(S_OK, Fit(image.process, 1, surface));
}

TEST(SurfaceFitOfBytes, OfALargeCircleIsRightAcrossTiles) {
    // Wider and higher than the tiles in which sums are gathered.
    Image<uint8_t> image(9000, 200);
    image.Fill([](LONG x, LONG y) { return (x / 64 + 2 * (y / 32) + (x * 7 + y * 13) % 32) % 256; });
    image.Rectangle(17, 3, 8990, 190);
    double mean[2] = {}, n = 0, xx = 0, yy = 0, xz = 0, yz = 0, sum = 0;
    for (LONG y = 3; y <= 190; ++y)
        for (LONG x = 17; x <= 8990; ++x) mean[0] += x, mean[1] += y, ++n;
    mean[0] /= n, mean[1] /= n;
    const Rows<uint8_t> rows(image.pixels);
    for (LONG y = 3; y <= 190; ++y)
        for (LONG x = 17; x <= 8990; ++x) {
            const double z = rows[static_cast<size_t>(y)][static_cast<size_t>(x)], dx = x - mean[0], dy = y - mean[1];
            xx += dx * dx, yy += dy * dy, xz += dx * z, yz += dy * z, sum += z;
        }
    const Surface plane = image.Fitted(1);
    EXPECT_DOUBLE_EQ(sum / n, plane.average);
    EXPECT_NEAR(xz / xx, plane.k[2], 1e-12 * xz / xx);
    EXPECT_NEAR(yz / yy, plane.k[1], 1e-11 * std::fabs(yz / yy));
    EXPECT_NEAR(sum / n - plane.k[2] * mean[0] - plane.k[1] * mean[1], plane.k[0], 1e-10);
}

// ------------------------------------------------------------------------------------------------------------ large
// images

// A cubic of range 2000 sampled as floats over 4096 x 4096 pixels: what rounding the samples to float (2e-8 of the
// range, at random) does to the coefficients is far below what is allowed here.
TEST(LargeFit, RecoversACubicToABillionthOfItsRange) {
    constexpr LONG kSize = 4096;
    Image<float> image(kSize, kSize);
    const auto surface = [](double x, double y) {
        const double u = (x - 2000) / 2048, v = (y - 2100) / 2048;
        return 1000 + 300 * u - 200 * v + 150 * u * v - 100 * v * v + 80 * u * u * u - 60 * u * v * v + 40 * v * v * v;
    };
    image.Fill(surface);
    const Surface fit = image.Fitted(3);
    double most = 0;
    for (LONG y = 0; y < kSize; y += 45)
        for (LONG x = 0; x < kSize; x += 45) most = std::max(most, std::fabs(fit.At(x, y) - surface(x, y)));
    EXPECT_LE(most, 1e-9 * 2000);
}

// The same with samples that are exact: a cubic with whole values in 32 bits. Every coefficient comes back to the last
// bit.
TEST(LargeFit, RecoversAWholeCubicExactly) {
    constexpr LONG kSize = 1024;
    Image<uint32_t> image(kSize, kSize);
    image.Fill([](LONG x, LONG y) {
        const int64_t u = x - 500, v = y - 510;
        return 2000000000 + 3 * u - v + 2 * u * v + v * v - u * u + u * u * u - 2 * u * u * v + u * v * v +
               3 * v * v * v;
    });
    image.Circle(511, 512, 500);
    const Surface fit = image.Fitted(3);
    EXPECT_EQ(3, fit.k[6]);
    EXPECT_EQ(1, fit.k[7]);
    EXPECT_EQ(-2, fit.k[8]);
    EXPECT_EQ(1, fit.k[9]);
    // y^2: v^2 + u v^2 at -500 and 3 v^3 at -3 510; x y; x^2: -1 + u^3 at -1500 and -2 u^2 v at 2 510.
    EXPECT_EQ(1 - 500 - 9 * 510, fit.k[3]);
    EXPECT_EQ(2 + 4 * 500 - 2 * 510, fit.k[4]);
    EXPECT_EQ(-1 - 1500 + 2 * 510, fit.k[5]);
    EXPECT_EQ(static_cast<double>(image.at(300, 700)), fit.At(300, 700));
}

// -------------------------------------------------------------------------------------------------------------- float
// data

TEST(FloatFit, RefusesPixelsThatAreNoNumbers) {
    for (const float bad : {std::nanf(""), HUGE_VALF, -HUGE_VALF})
        for (const LONG at : {LONG{0}, LONG{7}})
            for (const int degree : {1, 2, 3}) {
                Image<float> image(4, 3);
                image.Fill([=](LONG x, LONG y) { return 4 * y + x == at ? bad : 1.0f; });
                Surface surface;
                const std::string text =
                    std::string("IOrlixImageProcess::get_") + kNames[degree] + "Fit: not all pixels are finite.";
                EXPECT_TRUE(Fails(Fit(image.process, degree, surface), text));
                EXPECT_EQ(-1, surface.average);
                image.Rectangle(0, 2, 3, 2);  // without the pixel
                EXPECT_EQ(S_OK, Fit(image.process, degree, surface));
                EXPECT_NEAR(1, surface.average, 1e-15);
            }
}

TEST(FloatFit, OfExtremeValuesIsFinite) {
    Image<float> image(64, 64);
    const float most = std::numeric_limits<float>::max();
    image.Fill([=](LONG x, LONG y) { return (x + y) % 2 ? most : -most; });
    for (const int degree : {1, 2, 3}) {
        const Surface surface = image.Fitted(degree);
        EXPECT_EQ(0, surface.average);
        for (const double k : surface.k) EXPECT_TRUE(std::isfinite(k));
    }
}

// -------------------------------------------------------------------------------------------------------------
// corrections

TYPED_TEST(SurfaceFit, CorrectionFollowsItsFormulaInTheRegionOnly) {
    Image<TypeParam> image(70, 40);
    FillWithNoise(image, 9, 200);
    const std::vector<TypeParam> before = PixelsOf<TypeParam>(image.pixels);
    const auto region = image.Circle(33, 20, 17.5);
    ASSERT_EQ(S_OK, image.process->PutLuminanceRange(20, 180));
    for (const int degree : {1, 2, 3}) {
        Image<TypeParam> copy(70, 40);
        copy.Fill([&](LONG x, LONG y) { return before[static_cast<size_t>(70 * y + x)]; });
        copy.SetRegion(region);
        ASSERT_EQ(S_OK, copy.process->PutLuminanceRange(20, 180));
        Surface surface;
        surface.average = 100.28713391;  // no halves: rounding is not in question
        const double k[] = {60.1, 0.7, 0.3, 0.011, -0.013, 0.002, 1e-4, -2e-4, 3e-5, -1e-5};
        std::copy_n(k, kTerms[degree], surface.k.begin());
        ASSERT_EQ(S_OK, Correct(copy.process, degree, surface));
        std::vector<TypeParam> want = before;
        for (const Pixel at : copy.Region()) {
            TypeParam& pixel = want[static_cast<size_t>(70 * at.y + at.x)];
            const double v = static_cast<double>(pixel) - surface.At(at.x, at.y) + surface.average;
            const double rounded = std::is_same_v<TypeParam, float> ? v : std::floor(v + 0.5);
            pixel = static_cast<TypeParam>(v < 20 ? 20 : v > 180 ? 180 : rounded);
        }
        const std::vector<TypeParam> got = PixelsOf<TypeParam>(copy.pixels);
        const double allowed = std::is_same_v<TypeParam, float> ? 1e-5 : 0;
        for (size_t i = 0; i < want.size(); ++i)
            ASSERT_NEAR(static_cast<double>(want[i]), static_cast<double>(got[i]), allowed)
                << kNames[degree] << " at " << i % 70 << ", " << i / 70;
    }
}

TYPED_TEST(SurfaceFit, CorrectionLeavesNothingToFit) {
    Image<TypeParam> image(300, 200);
    std::mt19937 random(3);
    image.Fill([&](LONG x, LONG y) {
        const double u = (x - 150) / 150.0, v = (y - 100) / 100.0;
        return 120 + 40 * u - 30 * v + 20 * u * v - 10 * u * u * u + 5 * v * v + static_cast<double>(random() % 9);
    });
    const Surface before = image.Fitted(3);
    ASSERT_EQ(S_OK, Correct(image.process, 3, before));
    const Surface after = image.Fitted(3);
    for (LONG y = 0; y < 200; y += 13)
        for (LONG x = 0; x < 300; x += 13)
            ASSERT_NEAR(before.average, after.At(x, y), 0.1);  // roundings to whole levels
}

TEST(Correction, WorksOnAllBandsToProcess) {
    Image<uint8_t> image(3, 1, 2);
    ASSERT_EQ(S_OK, image.process->ScalarEquals(50));
    Surface plane;
    plane.average = 10;
    plane.k[2] = 5;  // f = 5x
    ASSERT_EQ(S_OK, Correct(image.process, 1, plane));
    EXPECT_THAT(PixelsOf<uint8_t>(image.pixels, 0), ElementsAre(60, 55, 50));
    EXPECT_THAT(PixelsOf<uint8_t>(image.pixels, 1), ElementsAre(60, 55, 50));
    ASSERT_EQ(S_OK, image.process->put_BandToProcess(1));
    ASSERT_EQ(S_OK, Correct(image.process, 2, plane));
    EXPECT_THAT(PixelsOf<uint8_t>(image.pixels, 0), ElementsAre(60, 55, 50));
    EXPECT_THAT(PixelsOf<uint8_t>(image.pixels, 1), ElementsAre(70, 60, 50));
}

TEST(Correction, RefusesARecordThatIsNotFinite) {
    Image<uint8_t> image(3, 1);
    ASSERT_EQ(S_OK, image.process->ScalarEquals(50));
    for (const int degree : {1, 2, 3})
        for (size_t i = 0; i <= kTerms[degree]; ++i) {
            Surface surface;
            (i == 0 ? surface.average : surface.k[i - 1]) = i % 2 ? HUGE_VAL : std::nan("");
            const std::string text =
                std::string("IOrlixImageProcess::Correct") + kNames[degree] + ": the surface is not finite.";
            EXPECT_TRUE(Fails(Correct(image.process, degree, surface), text));
        }
    EXPECT_THAT(PixelsOf<uint8_t>(image.pixels), Each(50));
    Surface steep;  // overflows on the way: no number, or infinite
    steep.k[0] = 1e308, steep.k[2] = -1e308, steep.k[5] = 1e308;
    EXPECT_EQ(S_OK, Correct(image.process, 2, steep));
}

TEST(SurfaceRecords, MayNotBeNull) {
    Image<uint8_t> image(3, 1);
    EXPECT_EQ(E_POINTER, image.process->get_PlanarFit(nullptr));
    EXPECT_EQ(E_POINTER, image.process->CorrectPlanar(nullptr));
    EXPECT_EQ(E_POINTER, image.process->get_BiquadraticFit(nullptr));
    EXPECT_EQ(E_POINTER, image.process->CorrectBiquadratic(nullptr));
    EXPECT_EQ(E_POINTER, image.process->get_BicubicFit(nullptr));
    EXPECT_EQ(E_POINTER, image.process->CorrectBicubic(nullptr));
}

}  // namespace
}  // namespace orlix::testing
