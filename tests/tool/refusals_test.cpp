// What the program refuses, and the words that it has for it.
#include "program_fixture.hpp"

namespace tool {
namespace {

class Refusals : public Program {
protected:
    void SetUp() override {
        Program::SetUp();
        Make("a.png");  // 640 x 480
        Orlix("save a.png a.orlix");
        WriteFile(Path("empty.png"), "");
        WritePgm("row.pgm", 2, 255, {1, 2});
        files_ = Files();
    }
    // Each is refused with this code, a message that holds the text, no output and no file.
    struct Case {
        Words words;
        std::string text = {};
    };
    void ExpectRefused(int code, const std::vector<Case>& cases) const {
        for (const Case& c : cases) {
            SCOPED_TRACE(testing::PrintToString(c.words));
            const Result result = Orlix(c.words);
            EXPECT_EQ(code, result.code);
            EXPECT_EQ("", result.out);
            EXPECT_NE("", result.err);
            EXPECT_THAT(result.err, HasSubstr(c.text));
            EXPECT_EQ(files_, Files());
        }
    }

private:
    size_t Files() const {
        return static_cast<size_t>(
            std::distance(std::filesystem::directory_iterator(folder_), std::filesystem::directory_iterator()));
    }
    size_t files_ = 0;
};

TEST_F(Refusals, WrongUsageIsRefusedBeforeAnythingIsDone) {
    const std::vector<std::pair<const char*, std::vector<const char*>>> unexplained = {
        {"", {"paint", "man xyzzy", "measure", "flatten a.png", "convert a.png", "filter sobel a.png"}},
        {"measure a.png --threshold", {"magic", "9,1", "1,9 --dark"}},
        {"measure a.png --roi", {"circle:1,2"}},
        {"measure a.png --flatten", {"cone", "plane --flatten-robust 0"}},
        {"measure a.png",
         {"--dark --bright", "--json --csv", "--flatten-robust 0.5", "--roi-polarity outside", "--pixel-size -1",
          "--pixel-size 0", "--luminance 9 1", "--luminance 9", "--smooth 4", "--bins 1", "--band gray1", "--ignore 5",
          "--ignore 9,1", "--ignore ,", "--ignore a,b"}},
        {"particles", {"", "a.png --json --csv", "a.png --dark --bright", "a.png a.png --connectivity 6"}},
        {"particles a.png",
         {"--open -1",
          "--open nan",
          "--close inf",
          "--fill-holes=-1",
          "--fill-holes=1,2",
          "--fill-holes=0.5",
          "--fill-holes=99999999999",

          "--local 3",
          "--local 0,9",
          "--local 1.5,9",
          "--local 3,0",
          "--local 3,nan",
          "--local 3,9 --threshold 5,9",
          "--split=-1",
          "--split=1,2",
          "--split=1,0,0",
          "--split=nan",
          "--split=x",
          "--min-area -1",
          "--min-area 9 --max-area 8",
          "--max-area 99999999999",
          "--filter blur",
          "--filter sobel:0",
          "--filter sobel:1001",
          "--filter sobel:2x",
          "--threshold 9,1"}},
        {"flatten a.png --surface",
         {"cone", "plane --robust 0", "plane --robust 1.5", "plane --robust nan", "plane --z-scale 0",
          "plane --json --csv"}},
        {"filter -o b.png",
         {"blur a.png", "sobel a.png --out c", "sobel a.png a.png", "sobel a.png --half-size 2",
          "sobel a.png --luminance 9 1", "sobel a.png --band grey"}},
        {"convert a.png b.png", {"--type 12", "--crop 0,0,x,1", "--plain"}},
        {"specimen b.png", {"--bits 12"}},
        {"render a.png --size 4 4", {"-o b.jpg", "-o b.png --overlay-roi ball:1"}}};
    for (const auto& [start, endings] : unexplained)
        for (const char* ending : endings) ExpectRefused(kUsage, {{Words(start) + Words(ending)}});
    ExpectRefused(kUsage,
                  {{"mesure a.png", "there is no command mesure; did you mean measure?"},
                   {"xyzzy", "there is no command xyzzy.\n"},
                   {"measure a.png --treshold otsu", "measure has no option --treshold; did you mean --threshold?"},
                   {"measure a.png --xyzzy", "measure has no option --xyzzy.\n'orlix measure --help'"},
                   {"flatten a.png --surface plan", "did you mean plane?"},
                   {"info a.png --raw 9:u8", "--raw is WIDTHxHEIGHT:TYPE"},
                   {"info a.png --raw 0x9:u8", "--raw is WIDTHxHEIGHT:TYPE"},
                   {"info a.png --raw 9x9", "--raw knows no type ''; there are u8, u16le, "},
                   {"info a.png --raw 9x9:u12", "--raw knows no type 'u12'"},
                   {"info a.png --raw 9x9:u8:", "--raw is WIDTHxHEIGHT:TYPE"},
                   {"info a.png --raw 9x9:u8:-1", "--raw is WIDTHxHEIGHT:TYPE"},
                   {"info a.png --raw 9x9:u8:0:", "--raw is WIDTHxHEIGHT:TYPE"},
                   {"info a.png --raw 9x9:u8:0:9:9", "--raw is WIDTHxHEIGHT:TYPE"},
                   {"info a.png --raw 9x9:u8:99999999999999", "--raw is WIDTHxHEIGHT:TYPE"},
                   {"info a.png --raw 65536x65536:u8", "at most 2147483647 pixels"},
                   {"info a.png --raw 9x9:u16le:0:17", "a row of pixels has 18 bytes, more than ROWBYTES"},
                   {"info a.png --page -1", "--page"},
                   {"convert a.png b.png --quality 0", "--quality"},
                   {"convert a.png b.png --float --type 8", "--type"},
                   {"convert a.png b.pfm --float --range 0,1", "--range has no place"},
                   {"convert a.png b.bmp --plain", "--plain is for PGM and PPM, not for .bmp"},
                   {"flatten a.png --surfcae=plane", "flatten has no option --surfcae; did you mean --surface?"},
                   {"filter sobol a.png -o b.png", "did you mean sobel?"},
                   {"render a.png -o b.png --size 0 4", "orlix: --size: width and height from 1 to 32767\n"},
                   {"render a.png -o b.png --size 4 4 --surround red",
                    "orlix: a colour is written RRGGBB, in hexadecimal digits: red\n"}});
}

TEST_F(Refusals, WhatCannotBeDoneFailsWithItsReason) {
    const std::string a = "a.png", open = "IImageVPAEx::CreateFromFile: failed to open file.";
    const Words render = {"render", a, "-o", "b.png", "--size", "4", "4"};
    ExpectRefused(
        kFailed, {{"measure a.png --roi circle:-500,-500,10", "the region holds no pixel of the image"},
                  {"particles a.png --roi circle:-500,-500,10", "the region holds no pixel of the image"},
                  {"measure a.png --band 1", "the image has 1 band, so there is no band 1"},
                  {"measure a.png --luminance 0 300",
                   "the luminance range does not lie within the grey levels of an 8-bit image"},
                  {"measure a.png --luminance 1 2", "no pixel lies in the luminance range"},
                  {"measure a.png --threshold trim:0.6,0.4",
                   "IHistogram::AutoThresholdTrim: the total amount of trimming must be less than 1.0."},
                  {"measure a.png --mask row.pgm", "the mask has 2 x 1 pixels, the image 640 x 480"},
                  {"measure a.png --mask none.pgm", "the mask "},
                  {"measure a.png --ignore 0,255", "all pixels of the region are left out"},
                  {"measure a.png --out a.png", "cannot make the folder"},
                  {"measure -", "standard input is empty"},
                  {"flatten a.png --surface plane --roi circle:-500,-500,10", "the region holds no pixel of the image"},
                  {{"info", At("none.png")}, open + " (" + At("none.png") + ": no such file)"},
                  {{"info", At(".")}, open + " (" + At(".") + ": a folder, not a file)"},
                  {"info empty.png", "(empty.png: the file is empty)"},
                  {"info a.png --page 1", "IImageFile::LoadFromFile: the file has no such page."},
                  {"info a.png --raw 99999x9:u8", " bytes, but --raw 99999x9:u8 needs 899991"},
                  {"info a.png --raw 9x9:u8 --page 9999", "of --raw 9x9:u8, so there is no page 9999"},
                  {"info a.png --raw 9x9:u8:99999999", "needs 100000080"},
                  {"info a.png --raw 9x9:u8 --max-samples 80", "81 samples, more than the limit of 80"},
                  {"info none.dat --raw 9x9:u8", "cannot read none.dat: no such file"},
                  {{"info", At("."), "--raw", "9x9:u8"}, "a folder, not a file"},
                  {"info - --raw 9x9:u8", "standard input is empty"},
                  {"convert a.png b.pfm", "the format does not hold this type of pixels."},
                  {"info a.png --max-samples 307199", "307200 samples, more than the limit of 307199"},
                  {"load a.orlix b.png --max-samples 307199", "307200 samples, more than the limit of 307199"},
                  {"load none.orlix b.png", "no such file"},
                  {"load a.png b.png", "orlix: IPersistStreamInit::Load: not an image stream.\n"},
                  {"save none.png b.orlix"},
                  {"polygon none.csv", "none.csv: no such file"},
                  {"convert a.png b.png --crop 0,0,640,39"},
                  {"convert a.png b.xyz"},
                  {"convert a.png none/b.png", "cannot write none/b.png: no such folder"},
                  {"convert a.png a.png/b.png", "a.png is not a folder"},
                  {render + Words("--zoom 0"), "orlix: IPictureZoom: zoom factor must be positive.\n"},
                  {render + Words("--center 0 1"),
                   "orlix: IPictureZoom::put_ZoomCenterX: x zoom center must be on the image.\n"},
                  {render + Words("--band 1"), "orlix: the image has 1 band, so there is no band 1\n"},
                  {{"render", "none.png", "-o", "b.png", "--size", "4", "4"}}});
    for (const auto& [surface, pixels] :
         {std::pair{"plane", 3}, {"biquadratic", 6}, {"bicubic", 10}, {"hemisphere", 5}, {"angled-hemisphere", 7}}) {
        const std::string few = std::to_string(pixels - 1), last = std::to_string(10 + pixels - 2);
        ExpectRefused(kFailed,
                      {{{"flatten", a, "--surface", surface, "--robust", "0.9", "--roi", "rect:10,20," + last + ",20"},
                        "a.png: the region holds " + few + " pixels, too few for a robust " + surface +
                            ", which needs " + std::to_string(pixels)}});
    }
    for (const Words& words : {Words{"info", a}, Words("load a.orlix b.png")})
        EXPECT_EQ(kDone, Orlix(words + Words("--max-samples 307200")).code);
}

}  // namespace
}  // namespace tool
