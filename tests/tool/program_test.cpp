// The program as its user sees it. Expected values come from the specimen's own pixels and labels.
#include "program_fixture.hpp"

#include <cmath>
#include <numeric>

namespace tool {
namespace {

TEST_F(Program, MeasuresWhatTheSpecimensPixelsSay) {
    for (const int bits : {8, 16}) {
        SCOPED_TRACE(bits);
        const samples::Specimen specimen = Make("µ試料.png", {.seed = 11, .bits = bits, .pits = 0});
        const Json m = Measured({At("µ試料.png")});
        EXPECT_EQ("µ試料.png", m["file"]);
        EXPECT_EQ(std::to_string(bits) + "-bit", m["type"]);
        EXPECT_NEAR(0.5, m["micronsPerPixel"]["x"], 1e-9);

        const double upper = m["phase"]["upper"];
        double dark = 0, xSum = 0, ySum = 0;
        for (size_t i = 0; i < specimen.pixels.size(); ++i) {
            if (specimen.pixels[i] > upper) continue;
            ++dark;
            xSum += static_cast<double>(i % 640);
            ySum += static_cast<double>(i / 640);
        }
        const auto [least, most] = std::minmax_element(specimen.pixels.begin(), specimen.pixels.end());
        const double count = 640 * 480;
        const auto truth = static_cast<double>(specimen.particleArea);
        EXPECT_EQ(count, m["grey"]["count"]);
        EXPECT_EQ(std::accumulate(specimen.pixels.begin(), specimen.pixels.end(), 0.0) / count, m["grey"]["mean"]);
        EXPECT_EQ(*least, m["grey"]["minimum"]);
        EXPECT_EQ(*most, m["grey"]["maximum"]);
        EXPECT_EQ(dark, m["phase"]["pixels"]);
        EXPECT_EQ(dark / count, m["phase"]["areaFraction"]);
        EXPECT_NEAR(dark * 0.25, m["phase"]["areaSquareMicrons"], 1e-6);
        EXPECT_EQ(xSum / dark, m["phase"]["xCentroid"]);
        EXPECT_EQ(ySum / dark, m["phase"]["yCentroid"]);
        EXPECT_NEAR(truth, dark, 0.02 * truth) << "softened edges and noise move outlines by a fraction of a pixel";
        EXPECT_LE(m["histogram"]["bins"], 1024);
        const auto counts = m["histogram"]["counts"].get<std::vector<double>>();
        EXPECT_EQ(count, std::accumulate(counts.begin(), counts.end(), 0.0));
    }
}

TEST_F(Program, RegionsPolarityAndLevelsSelectThePixelsCountedHere) {
    const samples::Specimen specimen = Make("a.png");
    const auto inCircle = [](int x, int y) { return (x - 600) * (x - 600) + (y - 100) * (y - 100) <= 90 * 90; };
    const struct {
        Words region;
        std::function<bool(int, int)> inside;
    } cases[] = {{{"--roi", "circle:600,100,90"}, inCircle},
                 {{"--roi", "circle:600,100,90", "--roi-polarity", "outside"}, std::not_fn(inCircle)},
                 {{"--roi", "rect:-5,30,20,400"}, [](int x, int y) { return x <= 20 && y >= 30 && y <= 400; }}};
    for (const auto& [region, inside] : cases) {
        SCOPED_TRACE(testing::PrintToString(region));
        int pixels = 0, phase = 0;
        for (int i = 0; i < 640 * 480; ++i) {
            const int pixel = specimen.pixels[static_cast<size_t>(i)];
            pixels += inside(i % 640, i / 640);
            phase += inside(i % 640, i / 640) && pixel >= 70 && pixel <= 90;
        }
        const Json m = Measured(Words("a.png --threshold 69.5,90.5") + region);
        EXPECT_EQ(pixels, m["region"]["pixels"]);
        EXPECT_EQ(phase, m["phase"]["pixels"]);
    }
}

TEST_F(Program, ABatchGoesOnAfterABadFileAndReportsIt) {
    Make("a.png");
    Make("b.png", {.seed = 2});
    WriteFile(Path("bad.png"), "not an image");
    const Result result = Orlix("measure --json a.png bad.png missing.png b.png");
    EXPECT_EQ(kFailed, result.code);
    EXPECT_THAT(result.err, HasSubstr("bad.png: IImageVPAEx::CreateFromFile: unknown file format."));
    EXPECT_THAT(result.err, HasSubstr("missing.png: IImageVPAEx::CreateFromFile: failed to open file."));
    const Json document = Json::parse(result.out), summary = document["summary"], images = document["images"];
    ASSERT_EQ(4u, images.size());
    EXPECT_EQ("bad.png", images[1]["file"]);
    EXPECT_EQ("IImageVPAEx::CreateFromFile: unknown file format.", images[1]["error"]);
    EXPECT_EQ(2, summary["measured"]);
    EXPECT_EQ(2, summary["failed"]);
    const double a = images[0]["phase"]["areaFraction"], b = images[3]["phase"]["areaFraction"];
    EXPECT_DOUBLE_EQ((a + b) / 2, summary["areaFraction"]["mean"]);
    // Two values: deviation |a - b| / root 2, divided by root 2 for the mean, times Student's 12.7062.
    EXPECT_NEAR(12.7062047364 * std::abs(a - b) / 2, summary["areaFraction"]["confidence95"], 1e-9);
}

TEST_F(Program, CsvHoldsTheValuesOfTheJson) {
    Make("a, b.png");
    const Json m = Measured({"a, b.png"});
    std::istringstream lines(Orlix({"measure", "--csv", "a, b.png"}).out);
    std::string header, line;
    std::getline(lines, header, '\r');
    std::getline(lines >> std::ws, line, '\r');
    ASSERT_THAT(header, testing::StartsWith("file,"));
    ASSERT_THAT(line, testing::StartsWith("\"a, b.png\","));
    header.erase(0, 5);
    line.erase(0, 11);
    EXPECT_EQ(std::count(header.begin(), header.end(), ','), std::count(line.begin(), line.end(), ','));
    std::istringstream names(header), values(line);
    int compared = 0;
    for (std::string name, value; std::getline(names, name, ',') && std::getline(values, value, ',');) {
        const double want = NumberAt(m, name);
        if (std::isnan(want)) continue;
        EXPECT_EQ(Number(want), value) << name;
        ++compared;
    }
    EXPECT_GT(compared, 25);
}

TEST_F(Program, WritesPicturesAndSelfContainedReports) {
    Make("a.png");
    const std::string out = At("new/results");
    const Json document = DocumentOf({"measure", "a.png", "--roi", "circle:300,200,150", "--out", out});
    const Json& m = document["images"][0];
    EXPECT_EQ(document, Json::parse(ReadFile(Path(out + "/measurement.json"))));
    size_t files = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(Path(out))) ++files;
    EXPECT_EQ(4u, files) << "the document, the report and two pictures";

    // The bitmap as a picture holds the phase and nothing else.
    const Json bitmap = Measured({out + "/a_bitmap.png", "--threshold", "255,255"});
    EXPECT_EQ(m["phase"]["pixels"], bitmap["phase"]["pixels"]);
    EXPECT_NEAR(0.5, bitmap["micronsPerPixel"]["x"], 1e-9);
    EXPECT_EQ(3, ImageOf({"info", out + "/a_overlay.png"})["bands"]);

    ImageOf("flatten a.png --surface biquadratic --z-scale 1e-5 --out f");
    for (const auto& [folder, parts] :
         {std::pair<std::string, Words>{
              out,
              {"<svg", "src='data:image/png;base64,iVBORw0KGgo", Rounded(100 * NumberAt(m, "phase.areaFraction"), 2)}},
          {"f",
           {"href='data:image/png;base64,iVBORw0KGgo", "residual, nm", "height about the mean, nm", "x, µm",
            "Profile along row 239", "Profile along column 319"}}}) {
        std::string html = ReadFile(Path(folder + "/report.html"));
        for (const std::string& part : parts) EXPECT_THAT(html, HasSubstr(part));
        for (size_t at = 0; (at = html.find("base64,", at)) != std::string::npos;)
            html.erase(at, html.find('\'', at) - at);
        for (const char* outside : {"http:", "https:", "src='a", "url(a", "<script", ">nan", "NaN", "inf "})
            EXPECT_THAT(html, Not(HasSubstr(outside)));
    }
}

TEST_F(Program, ConvertsTypesBandsAndParts) {
    const samples::Specimen specimen = Make("deep.png", {.bits = 16});
    EXPECT_EQ(kDone, Orlix("convert deep.png flat.png --type 8 --crop 10,20,109,59").code);
    const std::vector<int> pixels = Pixels("flat.png");
    ASSERT_EQ(100u * 40, pixels.size());
    for (size_t i = 0; i < pixels.size(); ++i)
        ASSERT_NEAR(specimen.pixels[(i / 100 + 20) * 640 + i % 100 + 10] / 257.0, pixels[i], 0.5);
    EXPECT_NEAR(0.5, ImageOf("info flat.png")["micronsPerPixel"]["x"], 1e-9);

    EXPECT_EQ(kDone, Orlix("convert flat.png wide.png --range data").code);
    const Json grey = Measured({"wide.png"})["grey"];
    EXPECT_EQ(0, grey["minimum"]);
    EXPECT_EQ(255, grey["maximum"]);
    EXPECT_EQ(kFailed, Orlix("convert flat.png c.png --crop 0,0,100,39").code);
}

TEST_F(Program, TheSpecimensTruthLiesBesideIt) {
    const samples::Specimen specimen = Make("s.png", {.seed = 4});
    const Json truth = Json::parse(ReadFile(Path("s.json")));
    EXPECT_EQ(specimen.particles.size(), truth["particleCount"]);
    EXPECT_EQ(specimen.particleArea, truth["particleArea"]);
    EXPECT_EQ(specimen.particles[3].area, truth["particles"][3]["area"]);
    EXPECT_EQ(specimen.background[2], truth["background"]["k2"]);
}

}  // namespace
}  // namespace tool
