// orlix measure: which pixels count, what thresholds say and what is doubted about them.
#include "program_fixture.hpp"
#include "scale_bar.hpp"

#include <cmath>

namespace tool {
namespace {

using testing::Contains;
using testing::IsEmpty;

class Measure : public Program {
protected:
    // A PGM file of one row.
    static std::string Row(const std::string& name, const std::vector<int>& levels, int largest = 255) {
        WritePgm(name, static_cast<int>(levels.size()), largest, levels);
        return name;
    }
    // So many pixels of each class, normally distributed.
    struct Class {
        int pixels;
        double mean, deviation;
    };
    static std::string Mixture(const std::string& name, const std::vector<Class>& classes) {
        samples::Random random(7);
        std::vector<int> levels;
        for (const Class& c : classes)
            for (int i = 0; i < c.pixels; ++i)
                levels.push_back(
                    std::clamp(static_cast<int>(std::lround(c.mean + c.deviation * random.Normal())), 0, 255));
        return Row(name, levels);
    }
    // The warnings about the first image.
    static Words Codes(const Words& words) {
        Words codes;
        const Json image = Measured(words);
        for (const Json& warning : image["warnings"]) codes.push_back(warning["code"]);
        return codes;
    }
};

TEST_F(Measure, MaskAndIgnoredLevelsLeavePixelsOutOfEverything) {
    const std::vector<int> good = {100, 110, 120, 130, 300, 310, 320, 330};
    std::vector<int> levels = good, mask(good.size(), 7);
    levels.insert(levels.end(), {0, 65535, 0, 5000, 200});
    mask.insert(mask.end(), {1, 1, 1, 1, 0});
    const std::string all = Row("all.pgm", levels, 65535);
    const Words left = {"--ignore", ",0", "--ignore", "4000,", "--mask", Row("mask.pgm", mask)};
    const Json wanted = Measured({Row("good.pgm", good, 65535)}), m = Measured(Words{all} + left);
    EXPECT_EQ(8, m["region"]["pixels"]);
    EXPECT_EQ(5, m["region"]["pixelsLeftOut"]);
    for (const char* member : {"grey", "luminance", "histogram", "thresholds", "phase"})
        EXPECT_EQ(wanted[member], m[member]) << member;

    const auto deviation = [&](const Words& options) {
        return NumberAt(ImageOf(Words{"flatten", all, "--surface", "plane"} + options), "before.Sq");
    };
    EXPECT_NEAR(NumberAt(wanted, "grey.standardDeviation"), deviation(left), 1e-4);
    EXPECT_GT(deviation({}), 10000);
}

TEST_F(Measure, GreyFiguresAreOfAllPixelsWhateverThresholdsLookAt) {
    Make("a.png", {.bits = 16});
    const Json whole = Measured({"a.png"}), part = Measured("a.png --luminance 20000 40000");
    EXPECT_EQ(whole["grey"], part["grey"]);
    EXPECT_EQ(20000, part["luminance"]["lower"]);
    EXPECT_GT(part["histogram"]["pixelsOutside"], 0);
    EXPECT_NE(whole["thresholds"], part["thresholds"]);
}

TEST_F(Measure, ThePrintedLevelIsTheLastOfTheDarkSideAndTheBrightOneIsTheRest) {
    for (const int bits : {8, 16}) {
        SCOPED_TRACE(bits);
        const samples::Specimen specimen = Make("a.png", {.bits = bits});
        const Json m = Measured("a.png --threshold exponential:0.5");
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
        for (const char* method : {"otsu", "entropy", "mixture", "minimum", "exponential:0.2"}) {
            const Words words = {"a.png", "--roi", "circle:300,200,150", "--threshold", method};
            const Json dark = Measured(words + Words{"--dark"}), bright = Measured(words + Words{"--bright"});
            EXPECT_EQ(dark["region"]["pixels"],
                      dark["phase"]["pixels"].get<int>() + bright["phase"]["pixels"].get<int>())
                << method;
        }
    }
    EXPECT_EQ(5u, Measured({"a.png"})["thresholds"].size()) << "the exponential one only when it is chosen";
}

TEST_F(Measure, AnImageOfOneGreyLevelHasNoPhaseWhateverItsType) {
    for (const int largest : {255, 65535}) {
        Row("flat.pgm", std::vector<int>(20, 200), largest);
        const Json m = Measured("flat.pgm --out out");
        EXPECT_EQ(200, m["grey"]["median"]);
        for (const Json& entry : m["thresholds"]) EXPECT_EQ("all pixels have one grey level", entry["message"]);
        for (const char* member : {"pixels", "areaFraction", "lower", "upper"}) EXPECT_EQ(nullptr, m["phase"][member]);
        EXPECT_THAT(Codes({"flat.pgm"}), testing::ElementsAre("no-threshold"));
        for (const std::string& form :
             {Orlix("measure flat.pgm").out, Orlix("measure flat.pgm --csv").out, ReadFile(Path("out/report.html"))})
            EXPECT_THAT(form, HasSubstr("all pixels have one grey level: there is no phase"));
    }
    // It does not enter the mean of a batch.
    Row("two.pgm", {0, 0, 0, 9});
    const Json summary = DocumentOf("measure flat.pgm two.pgm two.pgm")["summary"];
    EXPECT_EQ(3, summary["measured"]);
    EXPECT_EQ(2, summary["withPhase"]);
    EXPECT_EQ(0.75, summary["areaFraction"]["mean"]);
}

TEST_F(Measure, DoubtsAreNamed) {
    const std::string two = Mixture("two.pgm", {{12000, 80, 10}, {18000, 170, 10}});
    const std::string few = Mixture("few.pgm", {{29985, 160, 8}, {15, 60, 4}});  // 0.05 % of particles
    const std::string three = Mixture("three.pgm", {{3420, 60, 8}, {14100, 120, 8}, {12480, 190, 8}});
    const std::string one = Mixture("one.pgm", {{30000, 120, 12}});
    WritePgm("uniform.pgm", 256, 100, 255, [](int x, int) { return x; });
    for (const char* method : {"otsu", "minimum", "mixture", "entropy", "trim", "80,120"})
        EXPECT_THAT(Codes({two, "--threshold", method}), IsEmpty()) << method;
    EXPECT_THAT(Codes({few, "--threshold", "0,90"}), IsEmpty());
    for (const auto& [words, doubt] :
         std::vector<std::pair<Words, const char*>>{{{few}, "one-peak"},
                                                    {{"uniform.pgm"}, "one-peak"},
                                                    {{three}, "more-than-two-peaks"},
                                                    {{two, "--threshold", "otsu:0.5,0"}, "at-search-limit"},
                                                    {{two, "--threshold", "otsu:0.6,0.6"}, "no-threshold"},
                                                    {{one, "--threshold", "mixture"}, "at-search-limit"},
                                                    {{two, "--threshold", "exponential"}, "above-all-levels"}})
        EXPECT_THAT(Codes(words), Contains(doubt)) << testing::PrintToString(words);
}

TEST_F(Measure, TailsAreCutAtTheirOwnLevels) {
    WritePgm("uniform.pgm", 256, 100, 255, [](int x, int) { return x; });
    for (const auto& [words, share] : {std::pair{"uniform.pgm --threshold trim:0.1,0.2", 0.1},
                                       {"uniform.pgm --threshold trim:0.1,0.2 --bright", 0.2}})
        EXPECT_NEAR(share, Measured(words)["phase"]["areaFraction"].get<double>(), 1.0 / 256) << words;
}

// 96 dots an inch are 3780 pixels a metre: 264.55 microns.
TEST_F(Measure, ResolutionsOfScreensAndPrintersAreDoubted) {
    Make("a.png");
    const Words bitmap = "out/a_bitmap.png --threshold 255,";
    for (const auto& [size, doubted] : {std::pair{"0.65", false}, {"352.778", true}, {"264.583", true}}) {
        EXPECT_EQ(kDone, Orlix({"measure", "a.png", "--pixel-size", size, "--out", "out"}).code);
        EXPECT_EQ(doubted ? Words{"resolution-of-paper"} : Words{}, Codes(bitmap)) << size;
    }
    EXPECT_THAT(Codes(bitmap + Words("--pixel-size 264.583")), IsEmpty());
}

// 0.299 R + 0.587 G + 0.114 B.
TEST_F(Measure, GreyIsTheLumaOfThreeBands) {
    WriteFile(Path("c.ppm"), "P3 4 1 255 10 20 30 255 0 0 0 255 0 77 77 77");
    const Json m = Measured("c.ppm --band grey");
    EXPECT_EQ("grey", m["band"]);
    EXPECT_EQ(3, m["bands"]);
    EXPECT_EQ(18, m["grey"]["minimum"]);   // 18.15
    EXPECT_EQ(150, m["grey"]["maximum"]);  // 149.685
    EXPECT_EQ((18 + 76 + 150 + 77) / 4.0, m["grey"]["mean"]);
    EXPECT_EQ(18, ImageOf("flatten c.ppm --band grey --surface plane")["before"]["minimum"]);
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

}  // namespace
}  // namespace tool
