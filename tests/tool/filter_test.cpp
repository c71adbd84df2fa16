// orlix filter: that each name calls its filter, and what is done around it.
#include "program_fixture.hpp"

namespace tool {
namespace {

using FilterProgram = Program;

// One pixel of 116 on 16, and what each filter makes of it at the pixel, beside it and at its corner.
TEST_F(FilterProgram, EveryNameIsItsFilter) {
    WritePgm("dot.pgm", 7, 7, 255, [](int x, int y) { return x == 3 && y == 3 ? 116 : 16; });
    struct Case {
        const char* name;
        int centre, beside, corner;
    };
    for (const Case& c :
         {Case{"sobel", 0, 200, 142}, Case{"laplacian", 0, 66, 16}, Case{"sharpen-low", 255, 0, 16},
          Case{"sharpen-medium", 255, 0, 16}, Case{"gaussian3x3", 41, 28, 22}, Case{"gaussian5x5", 30, 25, 22},
          Case{"extremum-sharpening", 116, 16, 16}, Case{"median3x3", 16, 16, 16}}) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.name, ImageOf({"filter", c.name, "dot.pgm", "-o", "out.pgm"})["filter"]);
        const std::vector<int> pixels = Pixels("out.pgm");
        EXPECT_EQ((std::vector{c.centre, c.beside, c.corner}), (std::vector{pixels[24], pixels[25], pixels[32]}));
    }
    ImageOf("filter extremum-sharpening dot.pgm --half-size 0 -o out.pgm");
    EXPECT_EQ(Pixels("dot.pgm"), Pixels("out.pgm"));
}

TEST_F(FilterProgram, OtherBandsPixelsOutsideTheRegionAndTheLuminanceRangeAreKept) {
    WriteFile(Path("colour.ppm"), "P3 4 1 255 10 1 200 50 2 100 10 3 200 90 4 100");
    ImageOf("filter sharpen-medium colour.ppm -o out.ppm --band 0 --roi rect:1,0,2,0 --luminance 5 120");
    // 5 * 50 - 10 - 10 - 50 - 50 = 130, above 120; 5 * 10 - 50 - 90 - 10 - 10 < 5. Rows beyond the edge mirror the only
    // one.
    EXPECT_EQ((std::vector{10, 120, 5, 90}), Pixels("out.ppm", 0));
    EXPECT_EQ((std::vector{1, 2, 3, 4}), Pixels("out.ppm", 1));
    EXPECT_EQ((std::vector{200, 100, 200, 100}), Pixels("out.ppm", 2));
}

TEST_F(FilterProgram, ABatchGoesIntoItsFolderWithASummary) {
    Make("a.png");
    Make("b.png", {.seed = 2, .bits = 16});
    const Result result = Orlix("filter gaussian5x5 a.png none.png b.png --out out");
    EXPECT_EQ(kFailed, result.code);
    EXPECT_THAT(result.out, HasSubstr("gaussian5x5"));
    EXPECT_THAT(result.err, HasSubstr("none.png"));
    for (const std::string name : {"a", "b"}) {
        const Json before = Measured({name + ".png"}), after = Measured({"out/" + name + "_gaussian5x5.png"});
        EXPECT_EQ(before["type"], after["type"]);
        EXPECT_NEAR(NumberAt(before, "grey.mean"), NumberAt(after, "grey.mean"),
                    1);  // rounded down
        EXPECT_LT(NumberAt(after, "grey.standardDeviation"), NumberAt(before, "grey.standardDeviation"));
        EXPECT_NEAR(0.5, after["micronsPerPixel"]["x"], 1e-9);
    }
}

}  // namespace
}  // namespace tool
