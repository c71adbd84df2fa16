#include "blobs/level_outline.hpp"

#include "binary/binary_pictures.hpp"
#include "support/special_numbers.hpp"

#include <numbers>

namespace orlix {
namespace {

// A picture of grey levels; what is above a level is foreground.
struct LevelPicture {
    int32_t width, height;
    std::vector<double> grey;

    double at(int32_t x, int32_t y) const { return grey[static_cast<size_t>(y * width + x)]; }

    LevelOutline Outline(double level, Connectivity connectivity = Connectivity::Eight) const {
        const auto above = EachPixel<BitPlane>(width, height, [&](int32_t x, int32_t y) { return at(x, y) > level; });
        PixelPaths paths;
        const Components found = Connected(RunsOf(above), connectivity);
        paths.Trace(found.runs(0), connectivity);
        return LevelOutlineOf(paths, width, height, level, [&](int32_t x, int32_t y) { return at(x, y); });
    }
};

// Pixels are covered by the inside of x^2 / a^2 + y^2 / b^2 = 1 about the centre: their means along 100 columns.
LevelPicture AreaSampledEllipse(double a, double b, double xCentre, double yCentre) {
    const auto size = static_cast<int32_t>(2 * std::max(a, b) + 8);
    LevelPicture picture = {size, size, std::vector<double>(static_cast<size_t>(size * size))};
    for (int32_t y = 0; y < size; ++y)
        for (int32_t x = 0; x < size; ++x) {
            double covered = 0;
            for (int i = 0; i < 100; ++i) {
                const double column = (x - 0.495 + i / 100.0 - xCentre) / a;
                if (column * column >= 1) continue;
                const double half = b * std::sqrt(1 - column * column);
                covered += std::max(0.0, std::min(half, y + 0.5 - yCentre) - std::max(-half, y - 0.5 - yCentre));
            }
            picture.grey[static_cast<size_t>(y * size + x)] = covered / 100;
        }
    return picture;
}

TEST(LevelOutline, CrossesEachPixelEdgeWhereTheInterpolatedLevelLies) {
    // One pixel of 100 over 0, 50, 20 and -100 at the right, below, on the left and above.
    const LevelPicture picture = {3, 3, {0, -100, 0, 20, 100, 0, 0, 50, 0}};
    const LevelOutline outline = picture.Outline(75);
    ASSERT_EQ(1u, outline.paths.size());
    EXPECT_EQ(4, outline.interpolated);
    const std::vector<Point> expected = {{1, 0.875}, {1.25, 1}, {1, 1.5}, {0.6875, 1}};
    EXPECT_EQ(expected, outline.paths[0]);
    const LevelMeasurements measured = MeasureLevelOutline(outline, 1, 1);
    const double width = 1.25 - 0.6875, height = 1.5 - 0.875;
    EXPECT_NEAR((0.6875 + 1.25 + 1) / 3, measured.xCentroid, 1e-12);
    EXPECT_NEAR((0.875 + 1.5 + 1) / 3, measured.yCentroid, 1e-12);
    EXPECT_GT(measured.area, width * height / 2);
}

// The corner of the image, a hole that no grey level explains, and a pixel that is not a number.
TEST(LevelOutline, RunsAlongThePixelWhereTheLevelDoesNotLieBetweenTwo) {
    LevelPicture picture = {3, 3, std::vector<double>(9, 8.0)};
    const LevelOutline whole = picture.Outline(4);
    EXPECT_EQ(12, whole.vertices);
    EXPECT_EQ(0, whole.interpolated);
    EXPECT_EQ((Point{0, -0.5}), whole.paths[0][0]);

    picture.grey[4] = 0;
    const LevelOutline ring = picture.Outline(4);
    ASSERT_EQ(2u, ring.paths.size());
    EXPECT_EQ(4, ring.interpolated);
    picture.grey[4] = kNaN;
    EXPECT_EQ(0, picture.Outline(4).interpolated);
}

TEST(LevelOutline, PassesDiagonalPixelsAsTheLabellingDoes) {
    const LevelPicture picture = {4, 4, {0, 0, 0, 0, 0, 9, 0, 0, 0, 0, 9, 0, 0, 0, 0, 0}};
    EXPECT_EQ(8, picture.Outline(3).vertices);
    EXPECT_EQ(4, picture.Outline(3, Connectivity::Four).vertices);
}

// Positions at random. The bounds are three times the deviations that docs/accuracy.md states for one outline, over the
// root of their number.
TEST(LevelOutline, HasTheAreaAndPerimeterOfDiscs) {
    const struct {
        double radius, areaDeviation, perimeterBound;
    } table[] = {{3, 0.0082, 0.006}, {5, 0.0040, 0.002}, {20, 0.0006, 0.0007}};
    std::mt19937 random(1);
    const auto part = [&] { return static_cast<double>(random()) / 4294967296.0; };
    for (const auto& row : table) {
        constexpr int kDiscs = 40;
        double area = 0, perimeter = 0, farthest = 0;
        for (int i = 0; i < kDiscs; ++i) {
            const double x = row.radius + 3 + part(), y = row.radius + 3 + part();
            const LevelOutline outline = AreaSampledEllipse(row.radius, row.radius, x, y).Outline(0.5);
            EXPECT_EQ(outline.vertices, outline.interpolated);
            const LevelMeasurements measured = MeasureLevelOutline(outline, 1, 1);
            area += measured.area / (std::numbers::pi * row.radius * row.radius) - 1;
            perimeter += measured.perimeter / (2 * std::numbers::pi * row.radius) - 1;
            farthest = std::max(farthest, std::hypot(measured.xCentroid - x, measured.yCentroid - y));
        }
        EXPECT_NEAR(0, area / kDiscs, 3 * row.areaDeviation / std::sqrt(kDiscs)) << row.radius;
        EXPECT_NEAR(0, perimeter / kDiscs, row.perimeterBound) << row.radius;
        EXPECT_LT(farthest, 0.06) << row.radius;
    }
}

// The gain of the area does not depend on the shape, and the moments are those of an ellipse: a^2 / 4, b^2 / 4.
TEST(LevelOutline, HasTheAreaAndMomentsOfAnEllipseInTheCalibratedPlane) {
    const LevelOutline outline = AreaSampledEllipse(24, 8, 28.3, 28.6).Outline(0.5);
    const LevelMeasurements measured = MeasureLevelOutline(outline, 0.5, 2);
    EXPECT_NEAR(std::numbers::pi * 12 * 16, measured.area, 0.003 * std::numbers::pi * 12 * 16);
    EXPECT_NEAR(36, measured.xx, 0.01 * 36);
    EXPECT_NEAR(64, measured.yy, 0.01 * 64);
    EXPECT_NEAR(0, measured.xy, 0.3);
    EXPECT_NEAR(28.3, measured.xCentroid, 0.05);
    EXPECT_NEAR(32, measured.majorAxis, 0.1);
    EXPECT_NEAR(24, measured.minorAxis, 0.1);
    EXPECT_NEAR(90, measured.angle, 1);
    EXPECT_NEAR(32, measured.feretMaximum, 0.1);
    EXPECT_NEAR(90, measured.feretMaximumAngle, 6);
    EXPECT_NEAR(24, measured.feretMinimum, 0.1);
    EXPECT_NEAR(0, std::fabs(std::remainder(measured.feretMinimumAngle, 180)), 6);
}

}  // namespace
}  // namespace orlix
