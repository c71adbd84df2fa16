#include <fstream>

#include "program_fixture.hpp"

namespace tool {
namespace {

using orlix::Check;
using orlix::CreateObject;
using orlix::Text;

class RenderProgram : public Program {
protected:
    // 4 x 2 pixels: 16 (1 + x + 4 y).
    void SetUp() override {
        Program::SetUp();
        std::ofstream(Path(At("a.pgm"))) << "P2 4 2 255\n16 32 48 64 80 96 112 128\n";
    }
    Json Rendered(std::vector<std::string> more) {
        std::vector<std::string> all = {At("a.pgm"), "-o", At("v.png"), "--nearest"};
        all.insert(all.end(), more.begin(), more.end());
        const Json document = DocumentOf("render", all);
        return document.is_null() ? document : document["images"][0];
    }
    // A character a pixel: the first hexadecimal digit of greys, '.' black, W white, R red, B blue, '?' others.
    std::vector<std::string> View() {
        const auto image = CreateObject<IImageVPAExPlus>("Orlix.Image");
        Check(image->CreateFromFile(Text(At("v.png"))), image);
        const orlix::Rows<uint8_t> red(image, 0), green(image, 1), blue(image, 2);
        std::vector<std::string> rows;
        for (LONG y = 0; y < red.height(); ++y) {
            rows.emplace_back();
            for (size_t x = 0; x < static_cast<size_t>(red.width()); ++x) {
                const int r = red[y][x], g = green[y][x], b = blue[y][x];
                const bool grey = r == g && g == b;
                rows.back() += grey && r == 0     ? '.'
                               : grey && r == 255 ? 'W'
                               : grey             ? "0123456789abcdef"[r >> 4]
                               : r == 255 && !g   ? 'R'
                               : b == 255 && !g   ? 'B'
                                                  : '?';
            }
        }
        return rows;
    }
};
using Rows = std::vector<std::string>;

TEST_F(RenderProgram, DrawsTheViewOfAWindowOfThatSize) {
    const Json m = Rendered({"--size", "8", "6", "--surround", "#ffffff", "--pixel-size", "0.5"});
    EXPECT_EQ((Rows{"WWWWWWWW", "11223344", "11223344", "55667788", "55667788", "WWWWWWWW"}), View());
    EXPECT_EQ(Json({0, 3}), m["columns"]);
    EXPECT_EQ(Json({0, 1}), m["rows"]);
    EXPECT_EQ(Json({0, 1, 8, 5}), m["picture"]);
    EXPECT_EQ(2, m["viewPixelsPerPixel"]["x"]);
    EXPECT_EQ(0.25, m["micronsPerViewPixel"]["y"]);
}

TEST_F(RenderProgram, ZoomsAboutTheCentre) {
    const Json m = Rendered({"--size", "4", "4", "--zoom", "4", "--center", "2", "1"});
    EXPECT_EQ(Json({2, 3}), m["columns"]) << "trunc(2 - 0.5 + 0.5) to trunc(2 + 0.5 + 0.5)";
    EXPECT_EQ(Json({0, 1}), m["rows"]);
    EXPECT_EQ((Rows{"3344", "3344", "7788", "7788"}), View());
}

TEST_F(RenderProgram, SpreadsGreyLevels) {
    Rendered({"--size", "4", "2", "--snap", "0"});
    EXPECT_EQ((Rows{".246", "9bdW"}), View());
    Rendered({"--size", "4", "2", "--snap", "0", "--roi", "rect:2,0,3,0"});
    EXPECT_EQ((Rows{"...W", "WWWW"}), View());
    Rendered({"--size", "4", "2", "--equalize"});
    EXPECT_EQ((Rows{"2468", "9bdW"}), View());
}

TEST_F(RenderProgram, DrawsRegionsOverThePicture) {
    Rendered({"--size", "8", "4", "--overlay-roi", "rect:1,0,2,0"});
    EXPECT_EQ((Rows{"11RRRR44", "11RRRR44", "55667788", "55667788"}), View());
    Rendered({"--size", "8", "4", "--overlay-roi", "rect:0,0,0,0", "--overlay-roi", "rect:3,1,3,1", "--overlay-color",
              "0000FF", "--overlay-polarity", "inside"});
    EXPECT_EQ((Rows{"BB223344", "BB223344", "556677BB", "556677BB"}), View());
    // Smaller than a pixel of the view, and still there; outside the view, and clipped.
    Rendered({"--size", "2", "1", "--overlay-roi", "rect:3,1,3,1"});
    EXPECT_EQ('R', View()[0][1]);
    Rendered({"--size", "4", "4", "--zoom", "4", "--center", "2", "1", "--overlay-roi", "rect:0,0,2,1",
              "--overlay-polarity", "inside"});
    EXPECT_EQ("RR44", View()[0]);
}

TEST_F(RenderProgram, SaysWhatIsWrong) {
    const struct {
        std::vector<std::string> more;
        int code;
        const char* text;
    } cases[] = {
        {{"--size", "0", "4"}, kUsage, "orlix: --size: width and height from 1 to 32767\n"},
        {{"--size", "4", "4", "--surround", "red"},
         kUsage,
         "orlix: a colour is written RRGGBB, in hexadecimal digits: red\n"},
        {{"--size", "4", "4", "--zoom", "0"}, kFailed, "orlix: IPictureZoom: zoom factor must be positive.\n"},
        {{"--size", "4", "4", "--center", "0", "1"},
         kFailed,
         "orlix: IPictureZoom::put_ZoomCenterX: x zoom center must be on the image.\n"},
        {{"--size", "4", "4", "--overlay-roi", "ball:1"}, kUsage, ""},
        {{"--size", "4", "4", "--band", "1"}, kFailed, "orlix: the image has 1 band, so there is no band 1\n"},
    };
    for (const auto& c : cases) {
        std::vector<std::string> all = {"render", At("a.pgm"), "-o", At("v.png")};
        all.insert(all.end(), c.more.begin(), c.more.end());
        const Result result = Orlix(all);
        EXPECT_EQ(c.code, result.code) << result.err;
        if (*c.text) {
            EXPECT_EQ(c.text, result.err);
        }
        EXPECT_FALSE(Exists("v.png"));
    }
    EXPECT_EQ(kFailed, Orlix({"render", At("b.png"), "--size", "4", "4", "-o", At("v.png")}).code);
}

}  // namespace
}  // namespace tool
