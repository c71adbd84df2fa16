// orlix filter: that each name calls its filter, and what is done around it.
#include "program_fixture.hpp"

using namespace tool;
using testing::HasSubstr;

namespace {

class FilterProgram : public Program {
protected:
    Json Filtered(const std::vector<std::string>& arguments) const {
        const Json document = DocumentOf("filter", arguments);
        return document.is_null() ? Json() : document["images"][0];
    }
    std::vector<int> Pixels(const std::string& name, LONG band = 0) const {
        auto image = orlix::CreateObject<IImageVPAExPlus>("Orlix.Image");
        orlix::Check(image->CreateFromFile(orlix::Text(At(name))), image);
        std::vector<int> out;
        for (const std::span<uint8_t> row : orlix::Rows<uint8_t>(image, band))
            out.insert(out.end(), row.begin(), row.end());
        return out;
    }
};

}  // namespace

// One pixel of 116 on 16, and what each filter makes of it at the pixel, beside it and at its corner.
TEST_F(FilterProgram, EveryNameIsItsFilter) {
    std::string pgm = "P2 7 7 255";
    for (int i = 0; i < 49; ++i) pgm += i == 24 ? " 116" : " 16";
    WriteFile(folder_ / "dot.pgm", pgm);
    struct Case {
        const char* name;
        int centre, beside, corner;
    };
    for (const Case& c :
         {Case{"sobel", 0, 200, 142}, Case{"laplacian", 0, 66, 16}, Case{"sharpen-low", 255, 0, 16},
          Case{"sharpen-medium", 255, 0, 16}, Case{"gaussian3x3", 41, 28, 22}, Case{"gaussian5x5", 30, 25, 22},
          Case{"extremum-sharpening", 116, 16, 16}, Case{"median3x3", 16, 16, 16}}) {
        SCOPED_TRACE(c.name);
        const Json m = Filtered({c.name, At("dot.pgm"), "-o", At("out.pgm")});
        ASSERT_FALSE(m.is_null());
        EXPECT_EQ(c.name, m["filter"]);
        const std::vector<int> pixels = Pixels("out.pgm");
        EXPECT_EQ((std::vector{c.centre, c.beside, c.corner}), (std::vector{pixels[24], pixels[25], pixels[32]}));
    }
    Filtered({"extremum-sharpening", At("dot.pgm"), "--half-size", "0", "-o", At("out.pgm")});
    EXPECT_EQ(Pixels("dot.pgm"), Pixels("out.pgm"));
}

TEST_F(FilterProgram, OtherBandsPixelsOutsideTheRegionAndTheLuminanceRangeAreKept) {
    WriteFile(folder_ / "colour.ppm", "P3 4 1 255 10 1 200 50 2 100 10 3 200 90 4 100");
    Filtered({"sharpen-medium", At("colour.ppm"), "-o", At("out.ppm"), "--band", "0", "--roi", "rect:1,0,2,0",
              "--luminance", "5", "120"});
    // 5 * 50 - 10 - 10 - 50 - 50 = 130, above 120; 5 * 10 - 50 - 90 - 10 - 10 < 5. Rows beyond the edge mirror the only
    // one.
    EXPECT_EQ((std::vector{10, 120, 5, 90}), Pixels("out.ppm", 0));
    EXPECT_EQ((std::vector{1, 2, 3, 4}), Pixels("out.ppm", 1));
    EXPECT_EQ((std::vector{200, 100, 200, 100}), Pixels("out.ppm", 2));
}

TEST_F(FilterProgram, ABatchGoesIntoItsFolderWithASummary) {
    Make("a.png");
    Make("b.png", {.seed = 2, .bits = 16});
    const Result result =
        Orlix({"filter", "gaussian5x5", At("a.png"), At("none.png"), At("b.png"), "--out", At("out")});
    EXPECT_EQ(kFailed, result.code);
    EXPECT_THAT(result.out, HasSubstr("gaussian5x5"));
    EXPECT_THAT(result.err, HasSubstr("none.png"));
    for (const char* name : {"a", "b"}) {
        const Json before = Measured({At(name + std::string(".png"))})["images"][0];
        const Json after = Measured({At(std::string("out/").append(name) + "_gaussian5x5.png")})["images"][0];
        EXPECT_EQ(before["type"], after["type"]);
        EXPECT_NEAR(NumberAt(before, "grey.mean"), NumberAt(after, "grey.mean"), 1);  // rounded down
        EXPECT_LT(NumberAt(after, "grey.standardDeviation"), NumberAt(before, "grey.standardDeviation"));
        EXPECT_NEAR(0.5, after["micronsPerPixel"]["x"], 1e-9);
    }
}
