// orlix particles: what is found, counted and shown of particles that are known.
#include "program_fixture.hpp"

#include <cmath>
#include <map>

namespace tool {
namespace {

using testing::DoubleNear;
using testing::ElementsAre;
using testing::IsEmpty;

class Particles : public Program {
protected:
    // An image of dark particles (#) on a bright ground.
    static void Draw(const std::string& name, const std::vector<std::string>& rows) {
        WritePgm(name, static_cast<int>(rows[0].size()), static_cast<int>(rows.size()), 255,
                 [&](int x, int y) { return rows[static_cast<size_t>(y)][static_cast<size_t>(x)] == '#' ? 10 : 200; });
    }
    static Json Found(const Words& words) { return ImageOf(Words{"particles"} + words); }
    static std::vector<int> Sizes(const Words& words) {
        std::vector<int> sizes;
        const Json image = Found(words);
        for (const Json& particle : image["particles"]) sizes.push_back(particle["pixels"]);
        return sizes;
    }
    static std::vector<std::string> Lines(const std::string& text) {
        std::vector<std::string> lines;
        std::istringstream in(text);
        for (std::string line; std::getline(in, line);) lines.push_back(line);
        return lines;
    }
    static size_t CountIn(const std::string& text, const std::string& part) {
        size_t count = 0;
        for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
        return count;
    }
};

// Where and how large they are: ParticleAccuracy.
TEST_F(Particles, OfASpecimenAreAllFoundInPixelsAndMicrons) {
    for (const int bits : {8, 16}) {
        SCOPED_TRACE(bits);
        const samples::Specimen truth = Make("a.png", {.seed = 11, .bits = bits});
        const Json m = Found("a.png --min-area 12 --flatten plane --flatten-robust 0.8");
        ASSERT_EQ(truth.particles.size(), m["particles"].size());
        EXPECT_EQ(truth.particles.size(), m["particleSummary"]["count"]);
        EXPECT_EQ("µm", m["unit"]);
        for (const Json& particle : m["particles"]) {
            EXPECT_DOUBLE_EQ(0.25 * particle["pixels"].get<double>(), particle["area"]) << "0.5 microns a pixel";
            EXPECT_GT(NumberAt(particle, "outline.levelShare"), 0.9);
            EXPECT_NEAR(NumberAt(particle, "area"), NumberAt(particle, "outline.area"),
                        0.02 * NumberAt(particle, "area") + 1);
        }
        EXPECT_EQ(NumberAt(m, "phase.upper") + 0.5, m["level"]);
    }
}

TEST_F(Particles, StepsHaveOneOrderWhateverTheOrderOfTheOptions) {
    Draw("a.pgm", {"...............",  //
                   ".#####....#....",  //
                   ".#...#.........",  //
                   ".#.#.#...####..",  //
                   ".#...#...#..#..",  //
                   ".#####...####..",  //
                   "...............",  //
                   "##.............",  //
                   "#.#............"});
    EXPECT_THAT(Sizes({"a.pgm"}), ElementsAre(16, 1, 1, 10, 4));
    EXPECT_THAT(Sizes("a.pgm --connectivity 4"), ElementsAre(16, 1, 1, 10, 3, 1));
    EXPECT_THAT(Sizes("a.pgm --fill-holes"), ElementsAre(25, 1, 12, 4));
    EXPECT_THAT(Sizes("a.pgm --fill-holes=2"), ElementsAre(16, 1, 1, 12, 4));
    EXPECT_THAT(Sizes("a.pgm --fill-holes --open 1"), IsEmpty()) << "open first: nothing remains to fill";
    EXPECT_THAT(Sizes("a.pgm --open 1e9"), IsEmpty());
    EXPECT_THAT(Sizes("a.pgm --close 1e9"), ElementsAre(135)) << "whatever has a pixel fills the image";
    EXPECT_THAT(Sizes("a.pgm --min-area 4 --max-area 10"), ElementsAre(10, 4));
    EXPECT_THAT(Sizes("a.pgm --exclude-border"), ElementsAre(16, 1, 1, 10));
    const Words steps =
        "--exclude-border --max-area 900 --split --fill-holes=3 --close 0 --open 0 --filter median3x3:2";
    const Json one = Found(Words{"a.pgm"} + steps);
    Words names;  // not the order of the options
    for (const Json& step : one["steps"]) names.push_back(step["step"]);
    EXPECT_THAT(names, ElementsAre("filter", "threshold", "open", "close", "fill-holes", "split", "area", "border"));
    EXPECT_EQ(0.75, one["steps"][5]["depth"]);
}

// 30 x 20 pixels: a particle at each side, one in two corners, one inside.
TEST_F(Particles, AreCountedOnceInATilingOfFields) {
    std::vector<std::string> rows(20, std::string(30, '.'));
    const auto square = [&](int left, int top) {
        for (int y = top; y < top + 3; ++y)
            for (int x = left; x < left + 3; ++x) rows[static_cast<size_t>(y)][static_cast<size_t>(x)] = '#';
    };
    square(0, 8), square(27, 8), square(12, 0), square(12, 17), square(0, 0), square(27, 17), square(12, 8);
    Draw("a.pgm", rows);
    Json summary = Found({"a.pgm"})["particleSummary"];
    EXPECT_EQ(7, summary["count"]);
    EXPECT_EQ(6, summary["atBorder"]);
    EXPECT_EQ("counting-frame", summary["counting"]["rule"]);
    EXPECT_EQ(4, summary["counting"]["counted"]);
    EXPECT_EQ("1/megapixel", summary["numberPerArea"]["unit"]);
    EXPECT_DOUBLE_EQ(4 / (29 * 19 * 1e-6), summary["numberPerArea"]["value"]);
    EXPECT_NEAR(1.0899 / (29 * 19 * 1e-6), NumberAt(summary, "numberPerArea.lower"), 0.5);  // 95 % of a count of 4
    EXPECT_NEAR(10.2416 / (29 * 19 * 1e-6), NumberAt(summary, "numberPerArea.upper"), 0.5);

    const Json inner = Found("a.pgm --exclude-border --pixel-size 2");
    EXPECT_EQ(1, inner["particleSummary"]["count"]);
    EXPECT_EQ(4, inner["particleSummary"]["counting"]["counted"]) << "those at the border count still";
    EXPECT_DOUBLE_EQ(4 / (29 * 19 * 4 * 1e-6), inner["particleSummary"]["numberPerArea"]["value"]);
    EXPECT_DOUBLE_EQ(600.0 / (26 * 16), inner["particles"][0]["weight"]);

    const Json half = Found("a.pgm --roi circle:13,9,9")["particleSummary"];
    EXPECT_EQ("half-of-cut", half["counting"]["rule"]);
    EXPECT_EQ(1.0 + NumberAt(half, "atBorder") / 2, half["counting"]["counted"]);
    EXPECT_EQ(2, half["atBorder"]) << "those at the top and the bottom";
    EXPECT_EQ("counting-frame", Found("a.pgm --roi rect:2,2,25,18")["particleSummary"]["counting"]["rule"]);
}

TEST_F(Particles, TouchingDiscsAreToldApart) {
    WritePgm("a.pgm", 120, 60, 255, [](int x, int y) {
        return std::hypot(x - 40, y - 30) < 18.3 || std::hypot(x - 72, y - 30) < 18.3 ? 200 : 20;
    });
    EXPECT_EQ(1u, Sizes("a.pgm --bright").size());
    EXPECT_EQ(2u, Sizes("a.pgm --bright --split").size());
    EXPECT_EQ(1u, Sizes("a.pgm --bright --split=15").size()) << "no neck is that narrow";
}

// A bright particle with dark texture, a dim one that it hides a part of, and one below the level of the threshold.
TEST_F(Particles, LocalThresholdsFollowEachParticle) {
    WritePgm("a.pgm", 100, 60, 255, [](int x, int y) {
        if (std::hypot(x - 30, y - 30) < 14.3) return x % 7 < 2 && y % 7 < 2 ? 100 : 220;
        if (std::hypot(x - 47, y - 30) < 10.3) return 110;
        return std::hypot(x - 80, y - 30) < 9.3 ? 60 : 10;
    });
    EXPECT_EQ(1u, Sizes("a.pgm --threshold 70,").size());
    const Json found = Found("a.pgm --threshold 70, --local 3,40");
    EXPECT_EQ("local", found["steps"][1]["step"]);
    ASSERT_EQ(3u, found["particles"].size());
    std::vector<double> x, areas;
    for (const Json& particle : found["particles"]) {
        x.push_back(particle["x"]);
        areas.push_back(particle["area"]);
        EXPECT_TRUE(particle["outline"].is_null()) << "it needs one level";
    }
    EXPECT_THAT(x, ElementsAre(DoubleNear(30, 0.2), DoubleNear(51, 1), DoubleNear(80, 0.01)));
    EXPECT_THAT(areas, ElementsAre(DoubleNear(642, 10), DoubleNear(200, 40), DoubleNear(272, 5)));
}

TEST_F(Particles, ResultsAreTheSameInEveryForm) {
    Make("a.png", {.scratches = 0, .pits = 0});
    const Json document = DocumentOf("particles a.png --out out"), m = document["images"][0];
    const size_t count = m["particles"].size();
    EXPECT_EQ(70u, count);
    const std::string csv = Orlix("particles a.png --csv").out;
    EXPECT_EQ(csv, ReadFile(Path("out/particles.csv")));
    EXPECT_EQ(document, Json::parse(ReadFile(Path("out/particles.json"))));
    const std::vector<std::string> lines = Lines(csv);
    ASSERT_EQ(count + 1, lines.size());
    EXPECT_THAT(lines[0], testing::StartsWith("file,error,unit,number,x,y,left,"));
    EXPECT_THAT(lines[1], testing::StartsWith("a.png,,µm,1," + Number(m["particles"][0]["x"]) + ","));
    for (const std::string& line : lines)
        EXPECT_EQ(CountIn(lines[0], ","), CountIn(line, ",")) << "no field has a comma of its own";
    EXPECT_THAT(lines[0], HasSubstr(",grey.mean,"));
    EXPECT_THAT(lines[0], HasSubstr(",outline.area,"));
    const std::string text = Orlix("particles a.png").out;
    EXPECT_THAT(text, HasSubstr("particles   70, 0 at the border"));
    EXPECT_THAT(text, HasSubstr("d50 "));
    EXPECT_EQ(kDone, Orlix("particles a.png --out out").code) << "a later run replaces its own files";

    const std::string page = ReadFile(Path("out/report.html"));
    EXPECT_EQ(count, CountIn(page, "<path id='p"));
    EXPECT_EQ(count, CountIn(page, "<tr id='r"));
    for (const char* part :
         {"data:image/png", "Size distribution", "aria-label='Size distribution'", "addEventListener"})
        EXPECT_THAT(page, HasSubstr(part));
    for (const char* outside : {"http:", "https:", ">nan", "'nan", "src='/"})
        EXPECT_THAT(page, Not(HasSubstr(outside)));

    // A colour for each particle where it is, black elsewhere; outlines where colours end, numbers in white.
    std::map<std::array<int, 3>, int> colours;
    const std::vector<int> red = Pixels("out/a_labels.png", 0), green = Pixels("out/a_labels.png", 1),
                           blue = Pixels("out/a_labels.png", 2);
    for (size_t i = 0; i < red.size(); ++i) ++colours[{red[i], green[i], blue[i]}];
    EXPECT_EQ(count + 1, colours.size());
    EXPECT_EQ(m["particleSummary"]["pixels"], 640 * 480 - (colours[{0, 0, 0}]));
    const std::vector<int> outlines = Pixels("out/a_outlines.png", 1);
    for (const Json& particle : m["particles"]) {
        const size_t left = particle["left"], y = particle["top"];
        bool found = false;  // the first row of the particle is outline, or covered by a number or its black edge
        for (size_t x = left; x <= particle["right"].get<size_t>(); ++x)
            found = found || std::ranges::count(std::array{106, 255, 0}, outlines[y * 640 + x]) > 0;
        EXPECT_TRUE(found) << particle["number"];
    }
}

TEST_F(Particles, AreMeasuredAsTheyAreAskedFor) {
    Make("a.png");
    const auto header = [](const std::string& list) {
        return Lines(Orlix(Words{"particles", "a.png", "--csv", "--measure", list}).out)[0];
    };
    EXPECT_EQ("file,error,unit,number,area,circularity,grey.mean,trust.valley.fate\r",
              header("trust.valley.fate,gray.mean,circularity,area"));
    EXPECT_EQ(header("all"), header("shape,grey,outline,trust"));
    EXPECT_EQ(header("usual"), Lines(Orlix("particles a.png --csv").out)[0]);
    EXPECT_EQ(header("usual"), header("usual,x,number,usual"));
    EXPECT_EQ("file,error,unit,number\r", Lines(Orlix("particles a.png --csv --measure trust --no-trust").out)[0]);
    const Json all = Found("a.png --measure all"),
               few = Found("a.png --measure meanWidth,grey.mode,outline.x --out out");
    EXPECT_EQ(all["particleSummary"], few["particleSummary"]);
    ASSERT_EQ(all["particles"].size(), few["particles"].size());
    for (size_t i = 0; i < all["particles"].size(); ++i)
        for (const auto& [name, value] : few["particles"][i].items()) {
            const Json& of = all["particles"][i][name];
            if (name == "grey" || name == "outline") {
                EXPECT_EQ(1u, value.size());
                EXPECT_EQ(of[value.items().begin().key()], *value.begin());
            } else {
                EXPECT_EQ(of, value) << name;
            }
        }
    EXPECT_FALSE(few["particles"][0].contains("perimeter"));
    EXPECT_THAT(ReadFile(Path("out/report.html")), Not(HasSubstr("Circularity")));
    const Result wrong = Orlix("particles a.png --measure area,size");
    EXPECT_EQ(kUsage, wrong.code);
    EXPECT_THAT(wrong.err, HasSubstr("--measure: 'size' is not one of usual, all, shape, grey, outline, trust, x, y,"));
}

TEST_F(Particles, ABatchPutsItsFieldsTogether) {
    Make("a.png", {.seed = 1, .particles = 40, .pits = 0});
    Make("b.png", {.seed = 2, .particles = 60, .pits = 0});
    WriteFile(Path("bad.png"), "no image");
    const Result result = Orlix("particles a.png bad.png b.png --min-area 12 --json --out out");
    EXPECT_EQ(kFailed, result.code);
    const Json document = Json::parse(result.out), summary = document["summary"];
    const auto number = [&](size_t i) {
        return NumberAt(document["images"][i], "particleSummary.numberPerArea.value");
    };
    EXPECT_EQ(2, summary["measured"]);
    EXPECT_EQ(1, summary["failed"]);
    EXPECT_EQ(100, summary["particles"]);
    EXPECT_DOUBLE_EQ((number(0) + number(2)) / 2, summary["numberPerArea"]["mean"]);
    EXPECT_EQ(100, summary["diameter"]["byNumber"]["count"]);
    const double d50 = NumberAt(summary, "diameter.byNumber.d50");
    EXPECT_LT(d50, NumberAt(summary, "diameter.byArea.d50")) << "large particles have most of the area";
    for (const char* file : {"report.html", "a_report.html", "b_report.html", "a_labels.png", "b_outlines.png"})
        EXPECT_TRUE(Exists("out/" + std::string(file))) << file;
    EXPECT_THAT(ReadFile(Path("out/report.html")), HasSubstr("<a href='b_report.html'>"));
    EXPECT_EQ(102u, Lines(ReadFile(Path("out/particles.csv"))).size());
    // Microns and pixels have no common distribution.
    WritePgm("c.pgm", 20, 20, 255, [](int x, int y) { return x / 4 == 2 && y / 4 == 2 ? 0 : 200; });
    const Json mixed = DocumentOf("particles a.png c.pgm")["summary"];
    for (const char* member : {"unit", "numberPerArea", "diameter"}) EXPECT_EQ(nullptr, mixed[member]) << member;
}

// Each particle meets another fate when the level, 100, moves by one.
TEST_F(Particles, AreFollowedWhereTheThresholdMoves) {
    const std::vector<std::string> rows = {"###..###.###.#.-.+",  // + 101: only in the wider phase
                                           "###+.###+###......",  // - 100: not in the narrower one
                                           "###..###.###......",  //
                                           "..................",  //
                                           ".##-##..######....",  //
                                           ".##.##..######+#..",  // a speck is no part of a large particle
                                           "........######...."};
    for (const bool bright : {false, true}) {
        WritePgm("a.pgm", 18, 7, 255, [&](int x, int y) {
            const char pixel = rows[static_cast<size_t>(y)][static_cast<size_t>(x)];
            const int level = pixel == '#' ? 50 : pixel == '-' ? 100 : pixel == '+' ? 101 : 200;
            return bright ? 255 - level : level;
        });
        const Json m = Found(Words{"a.pgm", "--pixel-size", "2", "--threshold", bright ? "155," : ",100"});
        Words seen;
        for (const Json& particle : m["particles"]) {
            const Json& trust = particle["trust"]["oneLevel"];
            seen.push_back(particle["pixels"].dump() + " " + trust["narrowerArea"].dump() + " " +
                           trust["widerArea"].dump() + " " + trust["fate"].get<std::string>());
            EXPECT_EQ(nullptr, particle["trust"]["valley"]);
        }
        EXPECT_THAT(seen, ElementsAre("9 36 40 same", "9 36 null merges", "9 36 null merges", "1 4 4 same",
                                      "1 0 4 vanishes", "9 32 36 splits", "18 72 80 same", "1 4 null merges"));
        const Json& moved = m["trust"]["oneLevel"];
        EXPECT_EQ(R"({"same":3,"splits":1,"merges":3,"vanishes":1})", moved["particles"].dump());
        EXPECT_EQ(Json::parse(bright ? "[156, 255, 154, 255]" : "[0, 99, 0, 101]"),
                  Json({moved["narrower"]["lower"], moved["narrower"]["upper"], moved["wider"]["lower"],
                        moved["wider"]["upper"]}));
        EXPECT_EQ(8, moved["narrower"]["count"]);
        EXPECT_EQ(7, moved["wider"]["count"]);
        EXPECT_EQ(4 * 55, moved["narrower"]["area"]);
        EXPECT_EQ(4 * 61, moved["wider"]["area"]);
        EXPECT_DOUBLE_EQ(4 / 57.0, moved["change"]["area"]);
    }
    const Json range = Found("a.pgm --threshold 155,155")["trust"];
    EXPECT_EQ(0, range["oneLevel"]["narrower"]["count"]) << "no level is left";
    EXPECT_EQ("the phase lies between two levels", range["noValley"]);
    EXPECT_EQ(nullptr, Found("a.pgm --no-trust")["trust"]);
    EXPECT_THAT(Orlix("particles a.pgm --no-trust").out, Not(HasSubstr("trust")));
}

// What is said of a moved threshold is what that threshold gives.
TEST_F(Particles, AreFoundAgainWithAllStepsWhereTheThresholdMoves) {
    Make("a.png", {.seed = 5});
    Make("b.png", {.seed = 5, .bits = 16, .particleContrast = 50});
    for (const Words& image : {Words("a.png"), Words("a.png --flatten plane"), Words("b.png --bright")}) {
        const Words steps = image +
                            "--filter median3x3 --open 1.5 --close 1 --fill-holes --split --min-area 9 "
                            "--roi circle:300,200,180 --exclude-border";
        const Json m = Found(steps), trust = m["trust"];
        EXPECT_GT(trust["valley"]["shift"], 5 * trust["oneLevel"]["shift"].get<double>());
        EXPECT_EQ(std::max(1.0, NumberAt(m, "histogram.binWidth")), trust["oneLevel"]["shift"]);
        for (const char* move : {"oneLevel", "valley"})
            for (const char* phase : {"narrower", "wider"}) {
                SCOPED_TRACE(image[0] + " " + move + " " + phase);
                const Json& moved = trust[move][phase];
                const double sign = std::string(phase) == "wider" ? 1 : -1;
                const char* const end = image.back() == "--bright" ? "lower" : "upper";
                EXPECT_EQ(NumberAt(m["phase"], end) +
                              (end == std::string("upper") ? sign : -sign) * trust[move]["shift"].get<double>(),
                          moved[end]);
                Words again = {"--threshold", moved["lower"].dump() + "," + moved["upper"].dump()};
                for (const std::string& word : steps)
                    if (word != "--bright") again.push_back(word);
                const Json summary = Found(again)["particleSummary"];
                EXPECT_EQ(summary["count"], moved["count"]);
                EXPECT_EQ(summary["pixels"], moved["pixels"]);
                EXPECT_NEAR(NumberAt(summary, "area"), NumberAt(moved, "area"), 1e-6);
                EXPECT_NEAR(NumberAt(summary, "diameter.byNumber.d50"), NumberAt(moved, "d50ByNumber"), 1e-9);
                EXPECT_NEAR(NumberAt(summary, "diameter.byArea.d50"), NumberAt(moved, "d50ByArea"), 1e-9);
            }
    }
    const Json batch = DocumentOf("particles a.png b.png --bright");
    double most = 0;
    for (const Json& image : batch["images"]) most = std::max(most, NumberAt(image, "trust.oneLevel.change.area"));
    EXPECT_EQ(most, batch["summary"]["trust"]["oneLevel"]["area"]);
}

TEST_F(Particles, AnImageWithoutParticlesHasNone) {
    WritePgm("flat.pgm", 6, 255, std::vector<int>(36, 200));
    WritePgm("full.pgm", 6, 255, std::vector<int>(36, 0));
    const Json flat = Found("flat.pgm --fill-holes --split --open 2 --exclude-border --out out");
    EXPECT_THAT(flat["particles"], IsEmpty());
    EXPECT_EQ(0, flat["particleSummary"]["numberPerArea"]["value"]);
    EXPECT_EQ(nullptr, flat["particleSummary"]["diameter"]["byNumber"]["d50"]);
    EXPECT_EQ("no-threshold", flat["warnings"][0]["code"]);
    EXPECT_TRUE(Exists("out/report.html"));
    EXPECT_EQ(kDone, Orlix("particles flat.pgm").code);
    EXPECT_EQ(1u, Lines(Orlix("particles flat.pgm --csv").out).size());
    const Json full = Found("full.pgm --threshold 0,9 --split --exclude-border");
    EXPECT_EQ("all-at-border", full["warnings"][0]["code"]);
    WritePgm("specks.pgm", 16, 16, 255, [](int x, int y) { return x % 4 == 1 && y % 4 == 1 ? 0 : 200; });
    EXPECT_EQ("specks", Found({"specks.pgm"})["warnings"].back()["code"]);
}

}  // namespace
}  // namespace tool
