// orlix measure: which pixels count, what thresholds say and what is doubted about them.
#include "program_fixture.hpp"
#include "scale_bar.hpp"

#include <cmath>
#include <numeric>
#include <random>

using namespace tool;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

class Measure : public Program {
protected:
    // A PGM file of one row.
    std::string Row(const std::string& name, const std::vector<int>& levels, int largest = 255) const {
        std::string pgm = "P2 " + std::to_string(levels.size()) + " 1 " + std::to_string(largest);
        for (const int level : levels) pgm.append(" ").append(std::to_string(level));
        WriteFile(folder_ / Path(name), pgm);
        return At(name);
    }
    static Json Image(const std::vector<std::string>& arguments) {
        const Json document = Measured(arguments);
        return document.is_null() ? Json() : document["images"][0];
    }
    static std::vector<std::string> Codes(const Json& image) {
        std::vector<std::string> codes;
        if (image.contains("warnings"))
            for (const Json& warning : image["warnings"]) codes.push_back(warning["code"]);
        return codes;
    }
};

// So many pixels of each class, normally distributed.
struct Class {
    int pixels;
    double mean, deviation;
};
std::vector<int> Mixture(const std::vector<Class>& classes) {
    std::mt19937 random(7);
    std::vector<int> levels;
    for (const Class& c : classes)
        for (int i = 0; i < c.pixels; ++i) {
            double sum = -6;  // twelve uniform numbers: the same on every system
            for (int k = 0; k < 12; ++k) sum += static_cast<double>(random()) / 4294967296.0;
            levels.push_back(std::clamp(static_cast<int>(std::lround(c.mean + c.deviation * sum)), 0, 255));
        }
    return levels;
}

}  // namespace

TEST_F(Measure, MaskAndIgnoredLevelsLeavePixelsOutOfEverything) {
    const std::vector<int> good = {100, 110, 120, 130, 300, 310, 320, 330};
    std::vector<int> levels = good, mask(good.size(), 7);
    levels.insert(levels.end(), {0, 65535, 0, 5000, 200});
    mask.insert(mask.end(), {1, 1, 1, 1, 0});
    const std::string all = Row("all.pgm", levels, 65535);
    const Json wanted = Image({Row("good.pgm", good, 65535)});
    const Json m = Image({all, "--ignore", ",0", "--ignore", "4000,", "--mask", Row("mask.pgm", mask)});
    EXPECT_EQ(8, m["region"]["pixels"]);
    EXPECT_EQ(5, m["region"]["pixelsLeftOut"]);
    for (const char* member : {"grey", "luminance", "histogram", "thresholds", "phase"})
        EXPECT_EQ(wanted[member], m[member]) << member;

    const auto deviation = [&](std::vector<std::string> options) {
        options.insert(options.begin(), {all, "--surface", "plane"});
        return NumberAt(DocumentOf("flatten", options)["images"][0], "before.Sq");
    };
    EXPECT_NEAR(NumberAt(wanted, "grey.standardDeviation"),
                deviation({"--ignore", ",0", "--ignore", "4000,", "--mask", At("mask.pgm")}), 1e-4);
    EXPECT_GT(deviation({}), 10000);

    for (const auto& [option, value, reason] :
         {std::tuple{"--mask", Row("short.pgm", {1, 2}), "the mask has 2 x 1 pixels, the image 13 x 1"},
          {"--mask", At("none.pgm"), "the mask "},
          {"--ignore", std::string("0,65535"), "all pixels of the region are left out"}}) {
        const Result result = Orlix({"measure", all, option, value});
        EXPECT_EQ(kFailed, result.code);
        EXPECT_THAT(result.err, HasSubstr(reason));
    }
    for (const char* range : {"5", "9,1", ",", "a,b"})
        EXPECT_EQ(kUsage, Orlix({"measure", all, "--ignore", range}).code) << range;
}

TEST_F(Measure, GreyFiguresAreOfAllPixelsWhateverThresholdsLookAt) {
    Make("a.png", {.bits = 16});
    const Json whole = Image({At("a.png")}), part = Image({At("a.png"), "--luminance", "20000", "40000"});
    EXPECT_EQ(whole["grey"], part["grey"]);
    EXPECT_EQ(20000, part["luminance"]["lower"]);
    EXPECT_GT(part["histogram"]["pixelsOutside"], 0);
    EXPECT_NE(whole["thresholds"], part["thresholds"]);
}

TEST_F(Measure, ThePrintedLevelIsTheLastOfTheDarkSide) {
    for (const int bits : {8, 16}) {
        SCOPED_TRACE(bits);
        const samples::Specimen specimen = Make("a.png", {.bits = bits});
        const Json m = Image({At("a.png"), "--threshold", "exponential:0.5"});
        const auto fraction = [&](const auto& condition) {
            return static_cast<double>(std::count_if(specimen.pixels.begin(), specimen.pixels.end(), condition)) /
                   static_cast<double>(specimen.pixels.size());
        };
        EXPECT_EQ(6u, m["thresholds"].size());
        for (const Json& entry : m["thresholds"]) {
            SCOPED_TRACE(entry["method"]);
            const bool tails = entry.contains("left");
            const double dark = tails ? entry["left"].get<double>() - 1 : entry["threshold"].get<double>();
            const double bright = tails ? entry["right"].get<double>() : dark;
            EXPECT_EQ(std::floor(dark), dark);
            EXPECT_EQ(fraction([&](double level) { return level <= dark; }), entry["darkFraction"]);
            EXPECT_EQ(fraction([&](double level) { return level > bright; }), entry["brightFraction"]);
        }
        EXPECT_EQ(m["phase"]["upper"], m["thresholds"][5]["threshold"]);
    }
    EXPECT_EQ(5u, Image({At("a.png")})["thresholds"].size()) << "the exponential one only when it is chosen";
}

TEST_F(Measure, AnImageOfOneGreyLevelHasNoPhaseWhateverItsType) {
    for (const int largest : {255, 65535}) {
        Row("flat.pgm", std::vector<int>(20, 200), largest);
        const Json m = Image({At("flat.pgm"), "--out", At("out")});
        EXPECT_EQ(200, m["grey"]["median"]);
        for (const Json& entry : m["thresholds"]) EXPECT_EQ("all pixels have one grey level", entry["message"]);
        for (const char* member : {"pixels", "areaFraction", "lower", "upper"}) EXPECT_EQ(nullptr, m["phase"][member]);
        EXPECT_THAT(Codes(m), testing::ElementsAre("no-threshold"));
        for (const std::string& form :
             {Orlix({"measure", At("flat.pgm")}).out, Orlix({"measure", At("flat.pgm"), "--csv"}).out,
              ReadFile(folder_ / "out" / "report.html")})
            EXPECT_THAT(form, HasSubstr("all pixels have one grey level: there is no phase"));
    }
    // It does not enter the mean of a batch.
    Row("two.pgm", {0, 0, 0, 9});
    const Json summary = Measured({At("flat.pgm"), At("two.pgm"), At("two.pgm")})["summary"];
    EXPECT_EQ(3, summary["measured"]);
    EXPECT_EQ(2, summary["withPhase"]);
    EXPECT_EQ(0.75, summary["areaFraction"]["mean"]);
}

TEST_F(Measure, DoubtsAreNamed) {
    const std::string two = Row("two.pgm", Mixture({{12000, 80, 10}, {18000, 170, 10}}));
    const std::string few = Row("few.pgm", Mixture({{29985, 160, 8}, {15, 60, 4}}));  // 0.05 % of particles
    const std::string three = Row("three.pgm", Mixture({{3420, 60, 8}, {14100, 120, 8}, {12480, 190, 8}}));
    const std::string flat = Row("uniform.pgm", [] {
        std::vector<int> levels(25600);
        for (size_t i = 0; i < levels.size(); ++i) levels[i] = static_cast<int>(i % 256);
        return levels;
    }());
    const auto codes = [](std::vector<std::string> arguments) { return Codes(Image(arguments)); };
    for (const char* method : {"otsu", "minimum", "mixture", "entropy", "trim", "80,120"})
        EXPECT_THAT(codes({two, "--threshold", method}), IsEmpty()) << method;
    EXPECT_THAT(codes({few}), Contains("one-peak"));
    EXPECT_THAT(codes({flat}), Contains("one-peak"));
    EXPECT_THAT(codes({few, "--threshold", "0,90"}), IsEmpty());
    EXPECT_THAT(codes({three}), Contains("more-than-two-peaks"));
    EXPECT_THAT(codes({two, "--threshold", "otsu:0.5,0"}), Contains("at-search-limit"));
    EXPECT_THAT(codes({two, "--threshold", "otsu:0.6,0.6"}), Contains("no-threshold"));
    const std::string one = Row("one.pgm", Mixture({{30000, 120, 12}}));
    EXPECT_THAT(codes({one, "--threshold", "mixture"}), Contains("at-search-limit"));
    EXPECT_THAT(codes({two, "--threshold", "exponential"}), Contains("above-all-levels"));
    EXPECT_THAT(codes({two, "--threshold", "300,400"}), Contains("levels-outside-type"));
}

// 96 dots an inch are 3780 pixels a metre: 264.55 microns.
TEST_F(Measure, ResolutionsOfScreensAndPrintersAreDoubted) {
    Make("a.png");
    const auto codes = [&](const std::string& size) {
        EXPECT_EQ(kDone, Orlix({"measure", At("a.png"), "--pixel-size", size, "--out", At("out")}).code);
        return Codes(Image({At("out/a_bitmap.png"), "--threshold", "255,"}));
    };
    EXPECT_THAT(codes("264.583"), Contains("resolution-of-paper"));
    EXPECT_THAT(codes("352.778"), Contains("resolution-of-paper"));
    EXPECT_THAT(codes("0.65"), IsEmpty());
    EXPECT_THAT(Codes(Image({At("out/a_bitmap.png"), "--threshold", "255,", "--pixel-size", "264.583"})), IsEmpty());
}

// 0.299 R + 0.587 G + 0.114 B.
TEST_F(Measure, GreyIsTheLumaOfThreeBands) {
    WriteFile(folder_ / "c.ppm", "P3 4 1 255 10 20 30 255 0 0 0 255 0 77 77 77");
    const Json m = Image({At("c.ppm"), "--band", "grey"});
    EXPECT_EQ("grey", m["band"]);
    EXPECT_EQ(3, m["bands"]);
    EXPECT_EQ(18, m["grey"]["minimum"]);   // 18.15
    EXPECT_EQ(150, m["grey"]["maximum"]);  // 149.685
    EXPECT_EQ((18 + 76 + 150 + 77) / 4.0, m["grey"]["mean"]);
    EXPECT_EQ(18, DocumentOf("flatten", {At("c.ppm"), "--band", "grey", "--surface", "plane", "--out",
                                         At("out")})["images"][0]["before"]["minimum"]);
    EXPECT_EQ(kUsage, Orlix({"measure", At("c.ppm"), "--band", "gray1"}).code);
    EXPECT_EQ(kUsage, Orlix({"filter", "sobel", At("c.ppm"), "-o", At("d.png"), "--band", "grey"}).code);
}

TEST(ScaleBar, HasTheGreatestRoundLengthWithinAQuarterOfThePicture) {
    for (const auto& [width, microns, text] : {std::tuple{640, 0.5, "50 µm"},
                                               {1000, 0.8, "200 µm"},
                                               {1000, 0.0195, "2 µm"},
                                               {500, 0.0008, "100 nm"},
                                               {1400, 264.6, "50 mm"},
                                               {400, 5.0, "500 µm"}})
        EXPECT_EQ(text, ScaleBarText(ScaleBarLength(width, microns)));
    for (const uint8_t paper : {uint8_t{0}, uint8_t{255}}) {
        const Picture plain = {640, 480, 1, std::vector<uint8_t>(640 * 480, paper)};
        const Picture picture = WithScaleBar(plain, 0.5);
        int longest = 0;  // run of white in black
        for (size_t y = 0; y < 480; ++y)
            for (size_t x = 1, run = 0; x < 640; ++x) {
                const uint8_t *row = picture.samples.data() + y * 640, level = row[x];
                run = level == 255 && (run > 0 || row[x - 1] == 0) ? run + 1 : 0;
                if (x + 1 < 640 && row[x + 1] == 0) longest = std::max(longest, static_cast<int>(run));
            }
        EXPECT_EQ(100, longest) << "50 microns";
        for (const double unknown : {0.0, -1.0, std::nan("")})
            EXPECT_EQ(plain.samples, WithScaleBar(plain, unknown).samples);
    }
    EXPECT_EQ(std::vector<uint8_t>(12, 9), WithScaleBar({2, 2, 3, std::vector<uint8_t>(12, 9)}, 0.5).samples);
}
