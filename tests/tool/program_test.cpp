// The program as its user sees it. Expected values come from the specimen's own pixels and labels.
#include "program_fixture.hpp"

#include <cmath>
#include <numeric>

using namespace tool;
using testing::HasSubstr;
using testing::Not;

TEST_F(Program, MeasuresWhatTheSpecimensPixelsSay) {
    for (const int bits : {8, 16}) {
        SCOPED_TRACE(bits);
        const samples::Specimen specimen = Make("µ試料.png", {.seed = 11, .bits = bits, .pits = 0});
        const Json document = Measured({At("µ試料.png")});
        const Json& m = document["images"][0];
        EXPECT_EQ("µ試料.png", m["file"]);
        EXPECT_EQ(std::to_string(bits) + "-bit", m["type"]);
        EXPECT_NEAR(0.5, m["micronsPerPixel"]["x"], 1e-9);

        uint64_t sum = 0;
        uint16_t least = 65535, most = 0;
        const double upper = m["phase"]["upper"];
        uint64_t dark = 0, xSum = 0, ySum = 0;
        for (size_t i = 0; i < specimen.pixels.size(); ++i) {
            const uint16_t pixel = specimen.pixels[i];
            sum += pixel;
            least = std::min(least, pixel);
            most = std::max(most, pixel);
            if (pixel > upper) continue;
            ++dark;
            xSum += i % 640;
            ySum += i / 640;
        }
        const double count = 640 * 480;
        EXPECT_EQ(count, m["grey"]["count"]);
        EXPECT_EQ(static_cast<double>(sum) / count, m["grey"]["mean"]);
        EXPECT_EQ(least, m["grey"]["minimum"]);
        EXPECT_EQ(most, m["grey"]["maximum"]);
        EXPECT_EQ(dark, m["phase"]["pixels"]);
        EXPECT_EQ(static_cast<double>(dark) / count, m["phase"]["areaFraction"]);
        EXPECT_NEAR(static_cast<double>(dark) * 0.25, m["phase"]["areaSquareMicrons"], 1e-6);
        EXPECT_EQ(static_cast<double>(xSum) / static_cast<double>(dark), m["phase"]["xCentroid"]);
        EXPECT_EQ(static_cast<double>(ySum) / static_cast<double>(dark), m["phase"]["yCentroid"]);
        // Softened edges and noise move the outlines by a fraction of a pixel.
        EXPECT_NEAR(static_cast<double>(specimen.particleArea), static_cast<double>(dark),
                    0.02 * static_cast<double>(specimen.particleArea));
        EXPECT_LE(m["histogram"]["bins"], 1024);
        const auto counts = m["histogram"]["counts"].get<std::vector<uint64_t>>();
        EXPECT_EQ(specimen.pixels.size(), std::accumulate(counts.begin(), counts.end(), uint64_t{0}));
    }
}

TEST_F(Program, TheTwoSidesOfEveryThresholdAreTheWholeRegionOrLeaveTheTrimmedMiddle) {
    Make("a.png");
    const Json document = Measured({At("a.png"), "--roi", "circle:300,200,150"});
    for (const Json& entry : document["images"][0]["thresholds"]) {
        SCOPED_TRACE(entry["method"]);
        const double both = entry["darkFraction"].get<double>() + entry["brightFraction"].get<double>();
        if (entry["method"] == "trim") {
            EXPECT_LE(entry["darkFraction"], 0.05);
            EXPECT_LE(entry["brightFraction"], 0.05);
        } else {
            EXPECT_DOUBLE_EQ(1.0, both);
        }
    }
}

TEST_F(Program, RegionsPolarityAndLevelsSelectThePixelsCountedHere) {
    const samples::Specimen specimen = Make("a.png");
    const auto counted = [&](const auto& inside) {
        int pixels = 0, phase = 0;
        for (int y = 0; y < 480; ++y)
            for (int x = 0; x < 640; ++x) {
                if (!inside(x, y)) continue;
                const int pixel = specimen.pixels[static_cast<size_t>(y * 640 + x)];
                ++pixels;
                phase += pixel >= 70 && pixel <= 90;
            }
        return std::pair{pixels, phase};
    };
    const auto measured = [&](const std::vector<std::string>& region) {
        std::vector<std::string> all = {At("a.png"), "--threshold", "69.5,90.5"};
        all.insert(all.end(), region.begin(), region.end());
        const Json document = Measured(all);
        const Json& m = document["images"][0];
        return std::pair{m["region"]["pixels"].get<int>(), m["phase"]["pixels"].get<int>()};
    };
    const auto inCircle = [](int x, int y) { return (x - 600) * (x - 600) + (y - 100) * (y - 100) <= 90 * 90; };
    EXPECT_EQ(counted(inCircle), measured({"--roi", "circle:600,100,90"}));
    EXPECT_EQ(counted([&](int x, int y) { return !inCircle(x, y); }),
              measured({"--roi", "circle:600,100,90", "--roi-polarity", "outside"}));
    EXPECT_EQ(counted([](int x, int y) { return x <= 20 && y >= 30 && y <= 400; }),
              measured({"--roi", "rect:-5,30,20,400"}));
}

TEST_F(Program, DarkAndBrightAreEachOthersComplement) {
    Make("a.png");
    for (const char* method : {"otsu", "entropy", "mixture", "minimum", "exponential:0.2"}) {
        const Json dark = Measured({At("a.png"), "--dark", "--threshold", method});
        const Json bright = Measured({At("a.png"), "--bright", "--threshold", method});
        EXPECT_EQ(640 * 480,
                  dark["images"][0]["phase"]["pixels"].get<int>() + bright["images"][0]["phase"]["pixels"].get<int>())
            << method;
    }
}

TEST_F(Program, ABatchGoesOnAfterABadFileAndReportsIt) {
    Make("a.png");
    Make("b.png", {.seed = 2});
    WriteFile(folder_ / "bad.png", "not an image");
    const Result result = Orlix({"measure", "--json", At("a.png"), At("bad.png"), At("missing.png"), At("b.png")});
    EXPECT_EQ(kFailed, result.code);
    EXPECT_THAT(result.err, HasSubstr("bad.png: IImageVPAEx::CreateFromFile: unknown file format."));
    EXPECT_THAT(result.err, HasSubstr("missing.png: IImageVPAEx::CreateFromFile: failed to open file."));
    const Json document = Json::parse(result.out);
    ASSERT_EQ(4u, document["images"].size());
    EXPECT_EQ("bad.png", document["images"][1]["file"]);
    EXPECT_EQ("IImageVPAEx::CreateFromFile: unknown file format.", document["images"][1]["error"]);
    EXPECT_EQ(2, document["summary"]["measured"]);
    EXPECT_EQ(2, document["summary"]["failed"]);
    const double a = document["images"][0]["phase"]["areaFraction"], b = document["images"][3]["phase"]["areaFraction"];
    EXPECT_DOUBLE_EQ((a + b) / 2, document["summary"]["areaFraction"]["mean"]);
    // Two values: deviation |a - b| / root 2, divided by root 2 for the mean, times Student's 12.7062.
    EXPECT_NEAR(12.7062047364 * std::abs(a - b) / 2, document["summary"]["areaFraction"]["confidence95"], 1e-9);
}

TEST_F(Program, CsvHoldsTheValuesOfTheJson) {
    Make("a, b.png");
    const Json document = Measured({At("a, b.png")});
    const Result result = Orlix({"measure", "--csv", At("a, b.png")});
    std::istringstream lines(result.out);
    std::string header, line;
    std::getline(lines, header, '\n');
    std::getline(lines, line, '\n');
    ASSERT_THAT(line, testing::StartsWith("\"a, b.png\","));
    line.erase(0, line.find("\",") + 2);
    header.erase(0, header.find(',') + 1);
    const auto fields = [](const std::string& text) {
        std::vector<std::string> out;
        std::istringstream in(text.substr(0, text.find('\r')) + ",");
        for (std::string field; std::getline(in, field, ',');) out.push_back(field);
        return out;
    };
    const auto names = fields(header), values = fields(line);
    ASSERT_EQ(names.size(), values.size());
    const Json& m = document["images"][0];
    int compared = 0;
    for (size_t i = 0; i < names.size(); ++i) {
        const double want = NumberAt(m, names[i]);
        if (std::isnan(want)) continue;
        EXPECT_EQ(Number(want), values[i]) << names[i];
        ++compared;
    }
    EXPECT_GT(compared, 25);
}

TEST_F(Program, WritesPicturesAndASelfContainedReport) {
    Make("a.png");
    const Json document = Measured({At("a.png"), "--roi", "circle:300,200,150", "--out", At("new/results")});
    const std::filesystem::path out = folder_ / "new" / "results";
    for (const char* name : {"a_bitmap.png", "a_overlay.png", "report.html"})
        EXPECT_TRUE(std::filesystem::exists(out / name));
    EXPECT_EQ(document, Json::parse(ReadFile(out / "measurement.json")));
    size_t files = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(out)) ++files;
    EXPECT_EQ(4u, files);

    // The bitmap as a picture holds the phase and nothing else.
    const Json again = Measured({Utf8(out / "a_bitmap.png"), "--threshold", "255,255"});
    EXPECT_EQ(document["images"][0]["phase"]["pixels"], again["images"][0]["phase"]["pixels"]);
    EXPECT_NEAR(0.5, again["images"][0]["micronsPerPixel"]["x"], 1e-9);
    const Json overlay = Json::parse(Orlix({"info", "--json", Utf8(out / "a_overlay.png")}).out);
    EXPECT_EQ(3, overlay["images"][0]["bands"]);

    const std::string html = ReadFile(out / "report.html");
    EXPECT_THAT(html, HasSubstr("<svg"));
    EXPECT_THAT(html, HasSubstr("src='data:image/png;base64,iVBORw0KGgo"));
    EXPECT_THAT(html, HasSubstr(Rounded(100 * NumberAt(document["images"][0], "phase.areaFraction"), 2)));
    for (const char* outside : {"http:", "https:", "src='a", "url(a", "<script"})
        EXPECT_THAT(html, Not(HasSubstr(outside)));
}

TEST_F(Program, ReportsOfABatchHaveTheirOwnNamesAndAnOverview) {
    Make("a.png");
    std::filesystem::create_directory(folder_ / "other");
    std::filesystem::copy_file(folder_ / "a.png", folder_ / "other" / "a.png");
    const Json document = Measured({At("a.png"), At("other/a.png"), "--out", At("out")});
    for (const char* name : {"a_report.html", "a_2_report.html", "report.html", "a_overlay.png", "a_2_overlay.png"})
        EXPECT_TRUE(Exists(std::string("out/") + name)) << name;
    EXPECT_EQ("other/a.png", document["images"][1]["file"]);
    EXPECT_THAT(ReadFile(folder_ / "out" / "report.html"), HasSubstr("href='a_2_report.html'"));
}

TEST_F(Program, WrongUsageIsRefusedBeforeAnythingIsDone) {
    Make("a.png");
    const std::string a = At("a.png");
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{"paint"},
                                               {"measure"},
                                               {"measure", a, "--threshold", "magic"},
                                               {"measure", a, "--threshold", "9,1"},
                                               {"measure", a, "--threshold", "1,9", "--dark"},
                                               {"measure", a, "--dark", "--bright"},
                                               {"measure", a, "--json", "--csv"},
                                               {"measure", a, "--roi", "circle:1,2"},
                                               {"measure", a, "--roi-polarity", "outside"},
                                               {"measure", a, "--pixel-size", "-1"},
                                               {"measure", a, "--luminance", "9", "1"},
                                               {"measure", a, "--luminance", "9"},
                                               {"measure", a, "--smooth", "4"},
                                               {"measure", a, "--bins", "1"},
                                               {"measure", a, "--flatten", "cone"},
                                               {"measure", a, "--flatten-robust", "0.5"},
                                               {"measure", a, "--flatten", "plane", "--flatten-robust", "0"},
                                               {"flatten", a},
                                               {"flatten", a, "--surface", "cone"},
                                               {"flatten", a, "--surface", "plane", "--robust", "0"},
                                               {"flatten", a, "--surface", "plane", "--robust", "1.5"},
                                               {"flatten", a, "--surface", "plane", "--robust", "nan"},
                                               {"flatten", a, "--surface", "plane", "--z-scale", "0"},
                                               {"flatten", a, "--surface", "plane", "--json", "--csv"},
                                               {"filter", "sobel", a},
                                               {"filter", "blur", a, "-o", At("b.png")},
                                               {"filter", "sobel", a, "-o", At("b.png"), "--out", At("c")},
                                               {"filter", "sobel", a, a, "-o", At("b.png")},
                                               {"filter", "sobel", a, "-o", At("b.png"), "--half-size", "2"},
                                               {"filter", "sobel", a, "-o", At("b.png"), "--luminance", "9", "1"},
                                               {"convert", a},
                                               {"convert", a, At("b.png"), "--type", "12"},
                                               {"convert", a, At("b.png"), "--crop", "0,0,x,1"},
                                               {"specimen", At("b.png"), "--bits", "12"}}) {
        const Result result = Orlix(arguments);
        EXPECT_EQ(kUsage, result.code) << testing::PrintToString(arguments);
        EXPECT_EQ("", result.out);
        EXPECT_NE("", result.err);
        EXPECT_FALSE(Exists("b.png"));
    }
}

TEST_F(Program, AMeasurementThatCannotBeMadeFailsWithItsReason) {
    Make("a.png");
    const std::vector<std::pair<std::vector<std::string>, const char*>> cases = {
        {{"--roi", "circle:-500,-500,10"}, "the region holds no pixel of the image"},
        {{"--band", "1"}, "the image has 1 band, so there is no band 1"},
        {{"--luminance", "0", "300"}, "the luminance range does not lie within the grey levels of an 8-bit image"},
        {{"--luminance", "1", "2"}, "no pixel lies in the luminance range"},
        {{"--threshold", "trim:0.6,0.4"},
         "IHistogram::AutoThresholdTrim: the total amount of trimming must be less than 1.0."},
    };
    for (const auto& [options, text] : cases) {
        std::vector<std::string> arguments = {"measure", At("a.png")};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const Result result = Orlix(arguments);
        EXPECT_EQ(kFailed, result.code);
        EXPECT_THAT(result.err, HasSubstr(text));
        EXPECT_EQ("", result.out);
    }
}

TEST_F(Program, ConvertsTypesBandsAndParts) {
    const samples::Specimen specimen = Make("deep.png", {.bits = 16});
    EXPECT_EQ(kDone, Orlix({"convert", At("deep.png"), At("flat.png"), "--type", "8", "--crop", "10,20,109,59"}).code);
    auto image = orlix::CreateObject<IImageVPAExPlus>("Orlix.Image");
    orlix::Check(image->CreateFromFile(orlix::Text(At("flat.png"))), image);
    const orlix::Rows<uint8_t> rows(image);
    ASSERT_EQ(100, rows.width());
    ASSERT_EQ(40, rows.height());
    for (LONG y = 0; y < 40; ++y)
        for (size_t x = 0; x < 100; ++x) {
            const double want = specimen.pixels[static_cast<size_t>(y + 20) * 640 + x + 10] / 257.0;
            ASSERT_NEAR(want, rows[y][x], 0.5);
        }
    const Json info = Json::parse(Orlix({"info", "--json", At("flat.png")}).out);
    EXPECT_NEAR(0.5, info["images"][0]["micronsPerPixel"]["x"], 1e-9);

    EXPECT_EQ(kDone, Orlix({"convert", At("flat.png"), At("wide.png"), "--range", "data"}).code);
    const Json m = Measured({At("wide.png")})["images"][0];
    EXPECT_EQ(0, m["grey"]["minimum"]);
    EXPECT_EQ(255, m["grey"]["maximum"]);
    EXPECT_EQ(kFailed, Orlix({"convert", At("flat.png"), At("c.png"), "--crop", "0,0,100,39"}).code);
    EXPECT_EQ(kFailed, Orlix({"convert", At("flat.png"), At("c.xyz")}).code);
}

TEST_F(Program, TheSpecimensTruthLiesBesideIt) {
    const samples::Specimen specimen = Make("s.png", {.seed = 4});
    const Json truth = Json::parse(ReadFile(folder_ / "s.json"));
    EXPECT_EQ(specimen.particles.size(), truth["particleCount"]);
    EXPECT_EQ(specimen.particleArea, truth["particleArea"]);
    EXPECT_EQ(specimen.particles[3].area, truth["particles"][3]["area"]);
    EXPECT_EQ(specimen.background[2], truth["background"]["k2"]);
}

TEST_F(Program, TheDoctorFindsTheLibraryWell) {
    const Result result = Orlix({"doctor"});
    EXPECT_EQ(kDone, result.code) << result.out << result.err;
    EXPECT_THAT(result.out, HasSubstr("PASS"));
    EXPECT_THAT(result.out, Not(HasSubstr("FAIL")));
    EXPECT_THAT(result.out, HasSubstr("Orlix.Image"));
    EXPECT_THAT(result.out, Not(HasSubstr("no InprocServer32")));  // every class says where it is loaded from
}

TEST_F(Program, HelpShowsExamplesAndSucceeds) {
    for (const char* command : {"measure", "flatten", "filter", "info", "convert", "specimen", "doctor"}) {
        const Result result = Orlix({command, "--help"});
        EXPECT_EQ(kDone, result.code);
        EXPECT_THAT(result.out, HasSubstr(std::string("\n  orlix ") + command));
    }
    EXPECT_THAT(Orlix({"--help"}).out, HasSubstr("Exit codes"));
}
