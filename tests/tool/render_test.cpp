// orlix render: windows, zoom, greys and regions drawn over the picture.
#include "program_fixture.hpp"

namespace tool {
namespace {

class RenderProgram : public Program {
protected:
    // 4 x 2 pixels: 16 (1 + x + 4 y).
    void SetUp() override {
        Program::SetUp();
        WritePgm("a.pgm", 4, 2, 255, [](int x, int y) { return 16 * (1 + x + 4 * y); });
    }
    static Json Rendered(const Words& more) { return ImageOf(Words("render a.pgm -o v.png --nearest") + more); }
    // The rows of the view, a character a pixel: the first hexadecimal digit of greys, '.' black, W white, R red, B
    // blue, '?' others.
    static Words View(const Words& more) {
        Rendered(more);
        const std::vector<int> red = Pixels("v.png", 0), green = Pixels("v.png", 1), blue = Pixels("v.png", 2);
        const size_t width = std::stoul(more[1]);  // of --size
        Words rows;
        for (size_t i = 0; i < red.size(); ++i) {
            if (i % width == 0) rows.emplace_back();
            const int r = red[i], g = green[i], b = blue[i];
            const bool grey = r == g && g == b;
            rows.back() += grey && r == 0     ? '.'
                           : grey && r == 255 ? 'W'
                           : grey             ? "0123456789abcdef"[r >> 4]
                           : r == 255 && !g   ? 'R'
                           : b == 255 && !g   ? 'B'
                                              : '?';
        }
        return rows;
    }
};

TEST_F(RenderProgram, DrawsTheViewOfAWindowOfThatSize) {
    const Words words = "--size 8 6 --surround #ffffff --pixel-size 0.5";
    EXPECT_EQ((Words("WWWWWWWW 11223344 11223344 55667788 55667788 WWWWWWWW")), View(words));
    const Json m = Rendered(words);
    EXPECT_EQ(Json({0, 3}), m["columns"]);
    EXPECT_EQ(Json({0, 1}), m["rows"]);
    EXPECT_EQ(Json({0, 1, 8, 5}), m["picture"]);
    EXPECT_EQ(2, m["viewPixelsPerPixel"]["x"]);
    EXPECT_EQ(0.25, m["micronsPerViewPixel"]["y"]);
}

TEST_F(RenderProgram, ZoomsAboutTheCentreAndSpreadsGreyLevels) {
    const Words zoomed = "--size 4 4 --zoom 4 --center 2 1";
    const Json m = Rendered(zoomed);
    EXPECT_EQ(Json({2, 3}), m["columns"]) << "trunc(2 - 0.5 + 0.5) to trunc(2 + 0.5 + 0.5)";
    EXPECT_EQ(Json({0, 1}), m["rows"]);
    const Words eight = {"--size", "8", "4"}, four = {"--size", "4", "2"};
    const std::pair<Words, Words> views[] = {
        {zoomed, {"3344", "3344", "7788", "7788"}},
        {four + Words("--snap 0"), {".246", "9bdW"}},
        {four + Words("--snap 0 --roi rect:2,0,3,0"), {"...W", "WWWW"}},
        {four + Words{"--equalize"}, {"2468", "9bdW"}},
        {eight + Words("--overlay-roi rect:1,0,2,0"), {"11RRRR44", "11RRRR44", "55667788", "55667788"}},
        {eight + Words("--overlay-roi rect:0,0,0,0 --overlay-roi rect:3,1,3,1 --overlay-color 0000FF "
                       "--overlay-polarity inside"),
         {"BB223344", "BB223344", "556677BB", "556677BB"}},
        // Smaller than a pixel of the view, and still there; the pixel at its left is that of (1, 1).
        {{"--size", "2", "1", "--overlay-roi", "rect:3,1,3,1"}, {"6R"}},
        // Outside the view, and clipped.
        {zoomed + Words("--overlay-roi rect:0,0,2,1 --overlay-polarity inside"), {"RR44", "RR44", "RR88", "RR88"}}};
    for (const auto& [more, view] : views) EXPECT_EQ(view, View(more)) << testing::PrintToString(more);
}

}  // namespace
}  // namespace tool
