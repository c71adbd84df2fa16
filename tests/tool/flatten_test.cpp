// orlix flatten, and flattening before a measurement.
#include "program_fixture.hpp"

#include <array>
#include <cmath>
#include <cstdlib>

namespace tool {
namespace {

const double kRounding = std::sqrt(1.0 / 12);  // deviation of what rounding to whole levels adds

class FlattenProgram : public Program {
protected:
    static Json Flattened(const std::string& image, const std::string& surface, const Words& more = {}) {
        return ImageOf(Words{"flatten", image, "--surface", surface} + more);
    }
    // Nothing but the background, in 16 bits.
    static samples::Specimen Surface(const std::string& name, samples::Background background) {
        samples::SpecimenSettings settings = {.bits = 16, .particles = 0, .background = background};
        settings.backgroundSpan = 60;
        settings.scratches = settings.pits = 0;
        settings.noise = 0;
        return Make(name, settings);
    }
};

// The data are no part of this project: 640 x 480 16-bit heights of a smooth tilted surface, example data of
// ContactEngineering/SurfaceTopography (MIT; level = counts / 3), with the roughness that project's own test states.
TEST_F(FlattenProgram, ReproducesThePublishedRoughnessOfAnInterferometersHeightMap) {
    const char* const folder = std::getenv("ORLIX_MICROGRAPHS");
    if (!folder)
        GTEST_SKIP() << "ORLIX_MICROGRAPHS does not name the folder of "
                        "interferometer_height_16bit.png";
    const Json m = Flattened(Utf8(before_ / folder / "interferometer_height_16bit.png"), "biquadratic",
                             {"--z-scale", "2.6092529e-5", "--pixel-size", "1.0982520"});
    EXPECT_NEAR(75.28822, 1000 * NumberAt(m, "before.SqMicrons"), 5e-6);
    // Rounding counts to levels moves each height by up to a third of a level, 0.009 nm, and the result by its square.
    EXPECT_NEAR(3.911386, 1000 * NumberAt(m, "after.SqMicrons"), 5e-6);
    // Of the rounded heights, from normal equations in exact rational numbers; less than a millionth for the residuals
    // in float.
    EXPECT_NEAR(149.904305550907, NumberAt(m, "after.Sq"), 1e-6);
    EXPECT_NEAR(18188.648340381307, NumberAt(m, "surface.coefficients.K0"), 1e-8);
    EXPECT_NEAR(-0.015814030537371262, NumberAt(m, "surface.coefficients.K5"), 1e-14);
    EXPECT_EQ(1, m["clippedPixels"]);  // a pit 28 000 levels deep
}

TEST_F(FlattenProgram, FindsTheSpecimensBackgroundAndLeavesItsRounding) {
    const samples::Specimen tilted = Surface("tilted.png", samples::Background::Tilted);
    const Json plane = Flattened("tilted.png", "plane", {"--z-scale", "0.001"});
    // A slope's standard error from such errors: kRounding / (root N times the deviation of x) < 3e-6.
    EXPECT_NEAR(tilted.background[2], NumberAt(plane, "surface.coefficients.alpha"), 2e-5);
    EXPECT_NEAR(tilted.background[1], NumberAt(plane, "surface.coefficients.beta"), 2e-5);
    EXPECT_NEAR(tilted.background[0], NumberAt(plane, "surface.coefficients.gamma"), 1e-2);
    EXPECT_NEAR(kRounding, NumberAt(plane, "after.Sq"), 0.005);
    EXPECT_LE(NumberAt(plane, "after.Sz"), 1.02);
    EXPECT_DOUBLE_EQ(0.001 * NumberAt(plane, "after.Sq"), NumberAt(plane, "after.SqMicrons"));
    EXPECT_DOUBLE_EQ(0.001 * NumberAt(plane, "before.Sz"), NumberAt(plane, "before.SzMicrons"));
    // 0.001 microns a level and 0.5 a pixel: 2 microns a millimetre for a level a pixel.
    EXPECT_NEAR(2 * tilted.background[2], NumberAt(plane, "surface.slopeX"), 4e-5);
    EXPECT_NEAR(2 * tilted.background[1], NumberAt(plane, "surface.slopeY"), 4e-5);

    const samples::Specimen domed = Surface("domed.png", samples::Background::Domed);
    EXPECT_GT(NumberAt(Flattened("domed.png", "plane"), "after.Sq"), 1000);
    for (const char* surface : {"biquadratic", "bicubic"}) {
        SCOPED_TRACE(surface);
        const Json m = Flattened("domed.png", surface);
        EXPECT_NEAR(kRounding, NumberAt(m, "after.Sq"), 0.005);
        EXPECT_NEAR(domed.background[3], NumberAt(m, "surface.coefficients.K3"), 1e-6);
        EXPECT_NEAR(domed.background[5], NumberAt(m, "surface.coefficients.K5"), 1e-6);
        EXPECT_EQ(nullptr, Member(m, "surface.slopeX"));
    }
}

// A cap of radius R is h = R - root(R^2 - r^2) deep at the distance r from its apex.
TEST_F(FlattenProgram, KnowsTheRadiusOfABallFromItsCap) {
    constexpr double kRadius = 400, kMicrons = 0.002;  // of a grey level
    WritePgm("ball.pgm", 201, 161, 65535, [&](int x, int y) {
        const double dx = 0.5 * (x - 90), dy = 0.5 * (y - 85);
        return std::lround(30000 - (kRadius - std::sqrt(kRadius * kRadius - dx * dx - dy * dy)) / kMicrons);
    });
    // The algebraic fit is biased, more the flatter the cap.
    for (const auto& [surface, bias] : {std::pair{"hemisphere", 0.2}, {"angled-hemisphere", 0.02}}) {
        SCOPED_TRACE(surface);
        const Json m = Flattened("ball.pgm", surface, {"--z-scale", "0.002", "--pixel-size", "0.5"});
        EXPECT_NEAR(kRadius, NumberAt(m, "surface.apexRadius"), bias);
        EXPECT_NEAR(kRounding, NumberAt(m, "after.Sq"), 0.02);
        EXPECT_GT(NumberAt(m, "before.Sq"), 300);
    }
}

TEST_F(FlattenProgram, TheFlattenedFileHoldsTheFiguresAndKeepsPixelsOutsideTheRegion) {
    const samples::Specimen specimen = Make("a.png", {.backgroundSpan = 80});
    const Json m = Flattened("a.png", "plane", {"--roi", "circle:300,200,150", "--out", "out"});
    EXPECT_EQ("a_flattened.png", m["outputs"]["image"]);
    const Json inside = Measured("out/a_flattened.png --roi circle:300,200,150");
    EXPECT_EQ("8-bit", inside["type"]);
    EXPECT_NEAR(0.5, inside["micronsPerPixel"]["x"], 1e-9);
    for (const auto& [figure, measured, tolerance] : {std::tuple{"before.mean", "grey.mean", 0.01},
                                                      {"after.Sq", "grey.standardDeviation", 0.01},
                                                      {"after.minimum", "grey.minimum", 0.5},
                                                      {"after.maximum", "grey.maximum", 0.5}})
        EXPECT_NEAR(NumberAt(m, figure), NumberAt(inside, measured), tolerance) << figure;

    const std::vector<int> pixels = Pixels("out/a_flattened.png");
    int changed = 0;
    for (int i = 0; i < 640 * 480; ++i) {
        const int x = i % 640 - 300, y = i / 640 - 200;
        const bool same = pixels[static_cast<size_t>(i)] == specimen.pixels[static_cast<size_t>(i)];
        changed += !same;
        ASSERT_TRUE(same || x * x + y * y <= 150 * 150) << i;
    }
    EXPECT_GT(changed, 30000);
}

TEST_F(FlattenProgram, SaysHowManyPixelsItsTypeCannotHold) {
    // z = 25 x, with one pixel of 255 at the low end: it comes to lie about 250 above the plane, the mean is 118.
    WritePgm("spike.pgm", 10, 4, 255, [](int x, int y) { return x + y == 0 ? 255 : 25 * x; });
    const Json m = Flattened("spike.pgm", "plane", {"--out", "out"});
    EXPECT_EQ(1, m["clippedPixels"]);
    EXPECT_GT(NumberAt(m, "after.maximum"), 256);
    EXPECT_EQ(255, Measured({"out/spike_flattened.png"})["grey"]["maximum"]);
}

TEST_F(FlattenProgram, FlatColouredAndTinyImagesAreFlattenedToo) {
    WritePgm("flat.pgm", 3, 2, 255, [](int, int) { return 7; });
    WritePgm("one.pgm", 1, 65535, {300});
    for (const auto& [image, surface] : {std::pair{"flat.pgm", "biquadratic"}, {"one.pgm", "plane"}})
        EXPECT_NEAR(0, NumberAt(Flattened(image, surface, {"--out", "out"}), "after.Sq"), 1e-9);
    WriteFile(Path("colour.ppm"), "P3 4 1 255 0 10 0 0 20 0 0 30 0 0 40 9");
    const Json green = Flattened("colour.ppm", "plane", {"--band", "1", "--out", "out"});
    EXPECT_NEAR(10, NumberAt(green, "surface.coefficients.alpha"), 1e-9);
    EXPECT_EQ(1, ImageOf("info out/colour_flattened.png")["bands"]);
    EXPECT_EQ(25, Measured({"out/colour_flattened.png"})["grey"]["minimum"]);
}

// Heights of 1000 plus 0, 4 and -4 in turn: the mean of |z| is 8/3, of z^2 32/3, of z^4 512/3; and two pixels far off.
TEST_F(FlattenProgram, RoughnessIsThatOfTheStandardsDefinitions) {
    const auto level = [](int x, int y) { return 1000 + std::array{0, 4, -4}[static_cast<size_t>(x + y) % 3]; };
    WritePgm("pattern.pgm", 60, 40, 65535, level);  // no slope in rows or columns
    const Json before = Flattened("pattern.pgm", "plane", {"--z-scale", "0.5"})["before"];
    EXPECT_NEAR(8 / 3.0, NumberAt(before, "Sa"), 2e-3) << "40 rows are not a whole number of turns";
    EXPECT_NEAR(std::sqrt(32 / 3.0), NumberAt(before, "Sq"), 1e-3);
    EXPECT_NEAR(0, NumberAt(before, "Ssk"), 1e-2);
    EXPECT_NEAR(512 / 3.0 / (32 / 3.0) / (32 / 3.0), NumberAt(before, "Sku"), 1e-3);
    EXPECT_EQ(8, before["Sz"]);
    EXPECT_EQ(4, before["SzMicrons"]);

    WritePgm("pits.pgm", 60, 40, 65535, [&](int x, int y) { return y > 0 || x > 1 ? level(x, y) : x ? 60000 : 1; });
    const Json pits = Flattened("pits.pgm", "plane")["before"];
    EXPECT_EQ(59999, pits["Sz"]);
    EXPECT_EQ(8, pits["trimmedSz"]);  // two pixels at either end are left out
}

// Rounding errors are all within the limit, outliers far outside: what is left is the fit of least squares without
// outliers.
TEST_F(FlattenProgram, ARobustFitEndsWithLeastSquaresOverThePixelsOfTheSurface) {
    const auto outlier = [](int x, int y) { return (x * 7 + y * 13) % 5 == 0; };
    WritePgm("o.pgm", 90, 70, 65535, [&](int x, int y) {
        const long level = std::lround(20000 + 3.37 * x - 1.73 * y + 0.11 * x * y - 0.0031 * x * x * y);
        return level + (outlier(x, y) ? 5000 + 31 * ((90 * y + x) % 17) : 0);
    });
    WritePgm("mask.pgm", 90, 70, 1, [&](int x, int y) { return !outlier(x, y); });
    const Json robust = Flattened("o.pgm", "bicubic", {"--robust", "0.7"});
    const Json wanted = Flattened("o.pgm", "bicubic", {"--mask", "mask.pgm"});
    EXPECT_EQ(wanted["surface"]["coefficients"], robust["surface"]["coefficients"]);
    EXPECT_EQ(wanted["region"]["pixels"], robust["surface"]["refit"]["pixels"]);
    EXPECT_LT(NumberAt(robust, "surface.refit.within"), 3);
    EXPECT_EQ(nullptr, wanted["surface"]["refit"]);
}

// A hemisphere through a saddle.
TEST_F(FlattenProgram, ASurfaceThatMakesTheImageRougherIsDoubted) {
    WritePgm("saddle.pgm", 60, 60, 255, [](int x, int y) {
        return 128 + ((x - 30) * (x - 30) - (y - 30) * (y - 30)) / 20 + ((60 * y + x) * 7919 % 23);
    });
    const Json m = Flattened("saddle.pgm", "hemisphere");
    EXPECT_GT(NumberAt(m, "after.Sq"), NumberAt(m, "before.Sq"));
    ASSERT_EQ(1u, m["warnings"].size()) << m["warnings"];
    EXPECT_EQ("rougher", m["warnings"][0]["code"]);
    EXPECT_EQ("rougher", Measured("saddle.pgm --flatten hemisphere")["warnings"][0]["code"]);
    EXPECT_EQ(Json::array(), Flattened("saddle.pgm", "biquadratic")["warnings"]);
}

TEST_F(FlattenProgram, MeasuringATiltedSpecimenNeedsTheTiltRemovedFirst) {
    const Words plane = {"--flatten", "plane"}, robust = plane + Words("--flatten-robust 0.8");
    for (const int bits : {8, 16}) {
        SCOPED_TRACE(bits);
        const samples::Specimen specimen =
            Make("t.png",
                 {.seed = 5, .bits = bits, .particleContrast = -70, .backgroundSpan = 110, .scratches = 0, .pits = 0});
        const auto truth = static_cast<double>(specimen.particleArea);
        const auto area = [](const Words& options) {
            return NumberAt(Measured(Words{"t.png"} + options), "phase.pixels");
        };
        EXPECT_GT(std::fabs(area({}) - truth), 0.5 * truth);
        for (const Words& options : {plane, robust}) EXPECT_NEAR(truth, area(options), 0.03 * truth);
    }
    const Json document = DocumentOf(Words("measure t.png --out out") + robust);
    EXPECT_EQ("plane", document["options"]["flatten"]);
    EXPECT_EQ(0.8, document["options"]["flattenRobust"]);
    const Json& flatten = document["images"][0]["flatten"];
    EXPECT_EQ("plane", flatten["surface"]["kind"]);
    EXPECT_GT(flatten["before"]["Sq"], flatten["after"]["Sq"]);
    EXPECT_THAT(ReadFile(Path("out/report.html")), HasSubstr("plane, robust with 0.8"));
    EXPECT_EQ(nullptr, Measured({"t.png"})["flatten"]);
}

}  // namespace
}  // namespace tool
