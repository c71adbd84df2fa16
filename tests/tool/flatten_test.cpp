// orlix flatten, and flattening before a measurement.
#include "program_fixture.hpp"

#include <cmath>
#include <cstdlib>

using namespace tool;
using testing::HasSubstr;
using testing::Not;

namespace {

class FlattenProgram : public Program {
protected:
    Json Flattened(const std::vector<std::string>& arguments) const {
        const Json document = DocumentOf("flatten", arguments);
        return document.is_null() ? Json() : document["images"][0];
    }
    // Nothing but the background, in 16 bits.
    samples::Specimen Surface(const std::string& name, samples::Background background) const {
        return Make(name, {.bits = 16,
                           .particles = 0,
                           .background = background,
                           .backgroundSpan = 60,
                           .scratches = 0,
                           .pits = 0,
                           .noise = 0});
    }
};

}  // namespace

// The data are no part of this project: 640 x 480 16-bit heights of a smooth tilted surface, example data of
// ContactEngineering/SurfaceTopography (MIT; level = counts / 3), with the roughness that project's own test states.
TEST_F(FlattenProgram, ReproducesThePublishedRoughnessOfAnInterferometersHeightMap) {
    const char* const folder = std::getenv("ORLIX_MICROGRAPHS");
    if (!folder) GTEST_SKIP() << "ORLIX_MICROGRAPHS does not name the folder of interferometer_height_16bit.png";
    const Json m = Flattened({std::string(folder) + "/interferometer_height_16bit.png", "--surface", "biquadratic",
                              "--z-scale", "2.6092529e-5", "--pixel-size", "1.0982520"});
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
    const double levels = std::sqrt(1.0 / 12);  // deviation of what rounding to whole levels adds
    const samples::Specimen tilted = Surface("tilted.png", samples::Background::Tilted);
    const Json plane = Flattened({At("tilted.png"), "--surface", "plane", "--z-scale", "0.001"});
    // A slope's standard error from such errors: levels / (root N times the deviation of x) < 3e-6.
    EXPECT_NEAR(tilted.background[2], NumberAt(plane, "surface.coefficients.alpha"), 2e-5);
    EXPECT_NEAR(tilted.background[1], NumberAt(plane, "surface.coefficients.beta"), 2e-5);
    EXPECT_NEAR(tilted.background[0], NumberAt(plane, "surface.coefficients.gamma"), 1e-2);
    EXPECT_NEAR(levels, NumberAt(plane, "after.Sq"), 0.005);
    EXPECT_LE(NumberAt(plane, "after.Sz"), 1.02);
    EXPECT_DOUBLE_EQ(0.001 * NumberAt(plane, "after.Sq"), NumberAt(plane, "after.SqMicrons"));
    EXPECT_DOUBLE_EQ(0.001 * NumberAt(plane, "before.Sz"), NumberAt(plane, "before.SzMicrons"));
    // 0.001 microns a level and 0.5 a pixel: 2 microns a millimetre for a level a pixel.
    EXPECT_NEAR(2 * tilted.background[2], NumberAt(plane, "surface.slopeX"), 4e-5);
    EXPECT_NEAR(2 * tilted.background[1], NumberAt(plane, "surface.slopeY"), 4e-5);

    const samples::Specimen domed = Surface("domed.png", samples::Background::Domed);
    EXPECT_GT(NumberAt(Flattened({At("domed.png"), "--surface", "plane"}), "after.Sq"), 1000);
    for (const char* surface : {"biquadratic", "bicubic"}) {
        SCOPED_TRACE(surface);
        const Json m = Flattened({At("domed.png"), "--surface", surface});
        EXPECT_NEAR(levels, NumberAt(m, "after.Sq"), 0.005);
        EXPECT_NEAR(domed.background[3], NumberAt(m, "surface.coefficients.K3"), 1e-6);
        EXPECT_NEAR(domed.background[5], NumberAt(m, "surface.coefficients.K5"), 1e-6);
        EXPECT_EQ(nullptr, Member(m, "surface.slopeX"));
    }
}

// A cap of radius R is h = R - root(R^2 - r^2) deep at the distance r from its apex.
TEST_F(FlattenProgram, KnowsTheRadiusOfABallFromItsCap) {
    constexpr double kRadius = 400, kMicrons = 0.002;  // of a grey level
    std::string pgm = "P2 201 161 65535";
    for (int y = 0; y < 161; ++y)
        for (int x = 0; x < 201; ++x) {
            const double dx = 0.5 * (x - 90), dy = 0.5 * (y - 85);
            const double depth = kRadius - std::sqrt(kRadius * kRadius - dx * dx - dy * dy);
            pgm.append(" ").append(std::to_string(std::lround(30000 - depth / kMicrons)));
        }
    WriteFile(folder_ / "ball.pgm", pgm);
    for (const char* surface : {"hemisphere", "angled-hemisphere"}) {
        SCOPED_TRACE(surface);
        const Json m = Flattened({At("ball.pgm"), "--surface", surface, "--z-scale", "0.002", "--pixel-size", "0.5"});
        // The algebraic fit is biased, more the flatter the cap.
        EXPECT_NEAR(kRadius, NumberAt(m, "surface.apexRadius"), std::string(surface) == "hemisphere" ? 0.2 : 0.02);
        EXPECT_NEAR(std::sqrt(1.0 / 12), NumberAt(m, "after.Sq"), 0.02);
        EXPECT_GT(NumberAt(m, "before.Sq"), 300);
    }
}

TEST_F(FlattenProgram, TheFlattenedFileHoldsTheFiguresAndKeepsPixelsOutsideTheRegion) {
    const samples::Specimen specimen = Make("a.png", {.backgroundSpan = 80});
    const Json m = Flattened({At("a.png"), "--surface", "plane", "--roi", "circle:300,200,150", "--out", At("out")});
    EXPECT_EQ("a_flattened.png", m["outputs"]["image"]);
    const Json inside = Measured({At("out/a_flattened.png"), "--roi", "circle:300,200,150"})["images"][0];
    EXPECT_EQ("8-bit", inside["type"]);
    EXPECT_NEAR(0.5, inside["micronsPerPixel"]["x"], 1e-9);
    EXPECT_NEAR(NumberAt(m, "before.mean"), NumberAt(inside, "grey.mean"), 0.01);
    EXPECT_NEAR(NumberAt(m, "after.Sq"), NumberAt(inside, "grey.standardDeviation"), 0.01);
    EXPECT_NEAR(NumberAt(m, "after.minimum"), NumberAt(inside, "grey.minimum"), 0.5);
    EXPECT_NEAR(NumberAt(m, "after.maximum"), NumberAt(inside, "grey.maximum"), 0.5);

    auto image = orlix::CreateObject<IImageVPAExPlus>("Orlix.Image");
    orlix::Check(image->CreateFromFile(orlix::Text(At("out/a_flattened.png"))), image);
    const orlix::Rows<uint8_t> rows(image);
    int changed = 0;
    for (LONG y = 0; y < 480; ++y)
        for (LONG x = 0; x < 640; ++x) {
            const bool same = rows[y][static_cast<size_t>(x)] == specimen.pixels[static_cast<size_t>(y * 640 + x)];
            if ((x - 300) * (x - 300) + (y - 200) * (y - 200) > 150 * 150)
                ASSERT_TRUE(same) << x << ", " << y;
            else
                changed += !same;
        }
    EXPECT_GT(changed, 30000);
}

TEST_F(FlattenProgram, SaysHowManyPixelsItsTypeCannotHold) {
    // z = 25 x, with one pixel of 255 at the low end: it comes to lie about 250 above the plane, the mean is 118.
    std::string pgm = "P2 10 4 255";
    for (int i = 0; i < 40; ++i) pgm.append(" ").append(std::to_string(i ? 25 * (i % 10) : 255));
    WriteFile(folder_ / "spike.pgm", pgm);
    const Json m = Flattened({At("spike.pgm"), "--surface", "plane", "--out", At("out")});
    EXPECT_EQ(1, m["clippedPixels"]);
    EXPECT_GT(NumberAt(m, "after.maximum"), 256);
    EXPECT_EQ(255, Measured({At("out/spike_flattened.png")})["images"][0]["grey"]["maximum"]);
}

TEST_F(FlattenProgram, ReportIsSelfContainedAndABatchHasAnOverview) {
    Make("a.png");
    WriteFile(folder_ / "bad.png", "not an image");
    Flattened({At("a.png"), "--surface", "biquadratic", "--z-scale", "1e-5", "--out", At("one")});
    std::string html = ReadFile(folder_ / "one" / "report.html");
    for (const char* part : {"href='data:image/png;base64,iVBORw0KGgo", "residual, nm", "height about the mean, nm",
                             "x, µm", "Profile along row 239", "Profile along column 319"})
        EXPECT_THAT(html, HasSubstr(part));
    for (size_t at = 0; (at = html.find("base64,", at)) != std::string::npos;) html.erase(at, html.find('\'', at) - at);
    for (const char* outside : {"http:", "https:", "src='a", "url(a", "<script", ">nan", "NaN", "inf "})
        EXPECT_THAT(html, Not(HasSubstr(outside)));

    const Result result =
        Orlix({"flatten", "--csv", At("a.png"), At("bad.png"), "--surface", "plane", "--out", At("out")});
    EXPECT_EQ(kFailed, result.code);
    EXPECT_THAT(result.err, HasSubstr("bad.png: IImageVPAEx::CreateFromFile: unknown file format."));
    EXPECT_EQ(3, std::count(result.out.begin(), result.out.end(), '\n'));
    EXPECT_THAT(result.out, HasSubstr("surface.coefficients.gamma,"));
    for (const char* name : {"out/a_flattened.png", "out/a_report.html", "out/report.html"}) EXPECT_TRUE(Exists(name));
    EXPECT_THAT(ReadFile(folder_ / "out" / "report.html"), HasSubstr("href='a_report.html'"));
}

TEST_F(FlattenProgram, FlatColouredAndTinyImagesAreFlattenedToo) {
    WriteFile(folder_ / "flat.pgm", "P2 3 2 255 7 7 7 7 7 7");
    const Json flat = Flattened({At("flat.pgm"), "--surface", "biquadratic", "--out", At("out")});
    EXPECT_NEAR(0, NumberAt(flat, "after.Sq"), 1e-9);
    WriteFile(folder_ / "one.pgm", "P2 1 1 65535 300");
    EXPECT_NEAR(0, NumberAt(Flattened({At("one.pgm"), "--surface", "plane", "--out", At("out")}), "after.Sq"), 1e-9);
    WriteFile(folder_ / "colour.ppm", "P3 4 1 255 0 10 0 0 20 0 0 30 0 0 40 9");
    const Json green = Flattened({At("colour.ppm"), "--surface", "plane", "--band", "1", "--out", At("out")});
    EXPECT_NEAR(10, NumberAt(green, "surface.coefficients.alpha"), 1e-9);
    const Json info = Json::parse(Orlix({"info", "--json", At("out/colour_flattened.png")}).out);
    EXPECT_EQ(1, info["images"][0]["bands"]);
    EXPECT_EQ(25, Measured({At("out/colour_flattened.png")})["images"][0]["grey"]["minimum"]);
}

// Heights of 1000 plus 0, 4 and -4 in turn: the mean of |z| is 8/3, of z^2 32/3, of z^4 512/3; and two pixels far off.
TEST_F(FlattenProgram, RoughnessIsThatOfTheStandardsDefinitions) {
    std::string pgm = "P2 60 40 65535";
    for (int i = 0; i < 2400; ++i) {
        constexpr int kTurn[] = {0, 4, -4, 4, -4, 0, -4, 0, 4};  // no slope in rows or columns
        pgm.append(" ").append(std::to_string(1000 + kTurn[i / 60 % 3 * 3 + i % 3]));
    }
    WriteFile(folder_ / "pattern.pgm", pgm);
    const Json before = Flattened({At("pattern.pgm"), "--surface", "plane", "--z-scale", "0.5"})["before"];
    EXPECT_NEAR(8 / 3.0, NumberAt(before, "Sa"), 2e-3);  // 40 rows are not a whole number of turns
    EXPECT_NEAR(std::sqrt(32 / 3.0), NumberAt(before, "Sq"), 1e-3);
    EXPECT_NEAR(0, NumberAt(before, "Ssk"), 1e-2);
    EXPECT_NEAR(512 / 3.0 / (32 / 3.0) / (32 / 3.0), NumberAt(before, "Sku"), 1e-3);
    EXPECT_EQ(8, before["Sz"]);
    EXPECT_EQ(4, before["SzMicrons"]);

    pgm.replace(pgm.find(" 1004"), 5, " 60000");
    pgm.replace(pgm.find(" 996"), 4, " 1");
    WriteFile(folder_ / "pits.pgm", pgm);
    const Json pits = Flattened({At("pits.pgm"), "--surface", "plane"})["before"];
    EXPECT_EQ(59999, pits["Sz"]);
    EXPECT_EQ(8, pits["trimmedSz"]);  // two pixels at either end are left out
}

// Rounding errors are all within the limit, outliers far outside: what is left is the fit of least squares without
// outliers.
TEST_F(FlattenProgram, ARobustFitEndsWithLeastSquaresOverThePixelsOfTheSurface) {
    std::string pgm = "P2 90 70 65535", mask = "P2 90 70 1";
    for (int i = 0; i < 6300; ++i) {
        const int x = i % 90, y = i / 90;
        const bool outlier = (x * 7 + y * 13) % 5 == 0;
        const double z = 20000 + 3.37 * x - 1.73 * y + 0.11 * x * y - 0.0031 * x * x * y;
        pgm.append(" ").append(std::to_string(std::lround(z) + (outlier ? 5000 + 31 * (i % 17) : 0)));
        mask.append(outlier ? " 0" : " 1");
    }
    WriteFile(folder_ / "o.pgm", pgm);
    WriteFile(folder_ / "mask.pgm", mask);
    const Json robust = Flattened({At("o.pgm"), "--surface", "bicubic", "--robust", "0.7"});
    const Json wanted = Flattened({At("o.pgm"), "--surface", "bicubic", "--mask", At("mask.pgm")});
    EXPECT_EQ(wanted["surface"]["coefficients"], robust["surface"]["coefficients"]);
    EXPECT_EQ(wanted["region"]["pixels"], robust["surface"]["refit"]["pixels"]);
    EXPECT_LT(NumberAt(robust, "surface.refit.within"), 3);
    EXPECT_EQ(nullptr, wanted["surface"]["refit"]);
}

// A hemisphere through a saddle.
TEST_F(FlattenProgram, ASurfaceThatMakesTheImageRougherIsDoubted) {
    std::string pgm = "P2 60 60 255";
    for (int i = 0; i < 3600; ++i) {
        const int x = i % 60 - 30, y = i / 60 - 30;
        pgm.append(" ").append(std::to_string(128 + (x * x - y * y) / 20 + (i * 7919 % 23)));
    }
    WriteFile(folder_ / "saddle.pgm", pgm);
    const Json m = Flattened({At("saddle.pgm"), "--surface", "hemisphere"});
    EXPECT_GT(NumberAt(m, "after.Sq"), NumberAt(m, "before.Sq"));
    ASSERT_EQ(1u, m["warnings"].size()) << m["warnings"];
    EXPECT_EQ("rougher", m["warnings"][0]["code"]);
    EXPECT_EQ("rougher", Measured({At("saddle.pgm"), "--flatten", "hemisphere"})["images"][0]["warnings"][0]["code"]);
    EXPECT_EQ(Json::array(), Flattened({At("saddle.pgm"), "--surface", "biquadratic"})["warnings"]);
}

TEST_F(FlattenProgram, TooFewPixelsAreRefusedWithTheReason) {
    Make("a.png");
    for (const auto& [surface, pixels] :
         {std::pair{"plane", 3}, {"biquadratic", 6}, {"bicubic", 10}, {"hemisphere", 5}, {"angled-hemisphere", 7}}) {
        const std::string region =
            std::string("rect:10,20,").append(std::to_string(10 + pixels - 2)).append(",20");  // one too few
        const Result result = Orlix({"flatten", At("a.png"), "--surface", surface, "--robust", "0.9", "--roi", region});
        EXPECT_EQ(kFailed, result.code);
        EXPECT_EQ("", result.out);
        std::ostringstream reason;
        reason << "a.png: the region holds " << pixels - 1 << " pixels, too few for a robust " << surface
               << ", which needs " << pixels;
        EXPECT_THAT(result.err, HasSubstr(reason.str()));
    }
    EXPECT_THAT(Orlix({"flatten", At("a.png"), "--surface", "plane", "--roi", "circle:-500,-500,10"}).err,
                HasSubstr("the region holds no pixel of the image"));
}

TEST_F(FlattenProgram, MeasuringATiltedSpecimenNeedsTheTiltRemovedFirst) {
    for (const int bits : {8, 16}) {
        SCOPED_TRACE(bits);
        const samples::Specimen specimen =
            Make("t.png",
                 {.seed = 5, .bits = bits, .particleContrast = -70, .backgroundSpan = 110, .scratches = 0, .pits = 0});
        const auto truth = static_cast<double>(specimen.particleArea);
        const auto area = [&](const std::vector<std::string>& options) {
            std::vector<std::string> all = {At("t.png")};
            all.insert(all.end(), options.begin(), options.end());
            const Json document = Measured(all);
            return document.is_null() ? 0 : NumberAt(document["images"][0], "phase.pixels");
        };
        EXPECT_GT(std::fabs(area({}) - truth), 0.5 * truth);
        EXPECT_NEAR(truth, area({"--flatten", "plane"}), 0.03 * truth);
        EXPECT_NEAR(truth, area({"--flatten", "plane", "--flatten-robust", "0.8"}), 0.03 * truth);
    }
    const Json document = Measured({At("t.png"), "--flatten", "plane", "--flatten-robust", "0.8", "--out", At("out")});
    EXPECT_EQ("plane", document["options"]["flatten"]);
    EXPECT_EQ(0.8, document["options"]["flattenRobust"]);
    const Json& flatten = document["images"][0]["flatten"];
    EXPECT_EQ("plane", flatten["surface"]["kind"]);
    EXPECT_GT(flatten["before"]["Sq"], flatten["after"]["Sq"]);
    EXPECT_THAT(ReadFile(folder_ / "out" / "report.html"), HasSubstr("plane, robust with 0.8"));
    EXPECT_EQ(nullptr, Measured({At("t.png")})["images"][0]["flatten"]);
}
