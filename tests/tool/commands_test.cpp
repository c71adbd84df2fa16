// What the program says to people about itself, and doubtful requests.
#include "manual.hpp"
#include "program_fixture.hpp"
#include "synopsis.hpp"

using namespace tool;
using testing::HasSubstr;

using Commands = Program;

TEST(Advice, AloneShowsItsHelp) {
    const Result result = Orlix({});
    EXPECT_EQ(kDone, result.code);
    EXPECT_EQ(Orlix({"--help"}).out, result.out);
}

TEST(Advice, AdvisesAboutMisspeltWords) {
    const struct {
        std::vector<std::string> arguments;
        const char* text;
    } cases[] = {
        {{"mesure", "a.png"}, "there is no command mesure; did you mean measure?"},
        {{"xyzzy"}, "there is no command xyzzy.\n"},
        {{"measure", "a.png", "--treshold", "otsu"}, "measure has no option --treshold; did you mean --threshold?"},
        {{"flatten", "a.png", "--surfcae=plane"}, "flatten has no option --surfcae; did you mean --surface?"},
        {{"flatten", "a.png", "--surface", "plan"}, "did you mean plane?"},
        {{"filter", "sobol", "a.png", "-o", "b.png"}, "did you mean sobel?"},
        {{"measure", "a.png", "--xyzzy"}, "measure has no option --xyzzy.\n'orlix measure --help'"},
    };
    for (const auto& c : cases) {
        const Result result = Orlix(c.arguments);
        EXPECT_EQ(kUsage, result.code);
        EXPECT_THAT(result.err, HasSubstr(c.text));
        EXPECT_EQ("", result.out);
    }
}

TEST_F(Commands, DoubtfulRequestsAreRefusedOrWarnedOf) {
    Make("a.png");  // calibrated
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{"measure", At("a.png"), "--pixel-size", "0"},
                                               {"render", At("a.png"), "--size", "9", "9", "-o", At("z.jpg")},
                                               {"convert", At("a.png"), At("z.png"), "--plain"}})
        EXPECT_EQ(kUsage, Orlix(arguments).code) << arguments[0];
    const struct {
        std::vector<std::string> arguments;
        const char* code;
    } cases[] = {
        {{"convert", At("a.png"), At("a.pgm")}, "calibration-lost"},
        {{"filter", "sobel", At("a.png"), "-o", At("b.pgm")}, "calibration-lost"},
        {{"specimen", At("c.pgm"), "--pixel-size", "0.5"}, "calibration-lost"},
        {{"convert", At("a.png"), At("d.png"), "--range", "0,300"}, "levels-outside-type"},
        {{"measure", At("a.png"), "--threshold", "300,400"}, "levels-outside-type"},
        {{"measure", At("a.png"), "--threshold", "-5,100"}, "levels-outside-type"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.arguments));
        const Json warnings =
            DocumentOf(c.arguments[0], {c.arguments.begin() + 1, c.arguments.end()})["images"][0]["warnings"];
        ASSERT_EQ(1u, warnings.size());
        EXPECT_EQ(c.code, warnings[0]["code"]);
        const Result text = Orlix(c.arguments);
        EXPECT_EQ(kDone, text.code);
        EXPECT_THAT(text.out + text.err, HasSubstr(warnings[0]["message"].get<std::string>()));
    }
    for (const char* name : {"d.pgm", "e.png"})  // nothing is lost: no calibration, or a format that holds it
        EXPECT_EQ("", Orlix({"convert", At(name[0] == 'd' ? "a.pgm" : "a.png"), At(name)}).err);
}

TEST_F(Commands, ManualAndCompletionsHoldEveryOption) {
    const std::string help = Orlix({"--help"}).out;
    ASSERT_EQ(kDone, Orlix({"man", "--out", At("man1")}).code);
    const std::string bash = Orlix({"completion", "bash"}).out, zsh = Orlix({"completion", "zsh"}).out,
                      fish = Orlix({"completion", "fish"}).out;
    for (const char* command : {"measure", "flatten", "filter", "polygon", "render", "info", "convert", "save", "load",
                                "specimen", "doctor"}) {
        SCOPED_TRACE(command);
        const std::string page = ReadFile(folder_ / "man1" / ("orlix-" + std::string(command) + ".1"));
        EXPECT_EQ(page, Orlix({"man", command}).out);
        std::istringstream lines(Orlix({command, "--help"}).out);
        int options = 0;
        for (std::string line; std::getline(lines, line);) {
            const size_t start = line.find("--");
            if (!line.starts_with("  -") || start > 8) continue;
            const std::string option = line.substr(start, line.find_first_of(" ,", start) - start);
            ++options;
            std::string roff;
            for (const char c : option) roff += c == '-' ? "\\-" : std::string(1, c);
            EXPECT_THAT(page, HasSubstr("\\fB" + roff + "\\fR")) << option;
            for (const std::string* script : {&bash, &zsh}) EXPECT_THAT(*script, HasSubstr(option));
            EXPECT_THAT(fish, HasSubstr(std::string("from ") + command + "'")) << option;
            EXPECT_THAT(fish, HasSubstr("-l " + option.substr(2)));
        }
        EXPECT_GT(options, 0);
    }
    EXPECT_THAT(bash, HasSubstr("measure:--flatten) COMPREPLY=($(compgen -W 'plane "));
    EXPECT_EQ(kUsage, Orlix({"man", "xyzzy"}).code);
}

TEST_F(Commands, TheDoctorsDocumentSaysWhatItsTextSays) {
    const Json m = DocumentOf("doctor", {});
    EXPECT_EQ("pass", m["verdict"]);
    EXPECT_EQ(14u, m["classes"].size());
    const std::string text = Orlix({"doctor"}).out;
    EXPECT_THAT(text, testing::StartsWith("PASS: the library works, all 10 checks passed\n"));
    for (const Json& entry : m["library"]["kernels"])  // each row with two blanks at least between its columns
        EXPECT_THAT(text, testing::ContainsRegex("\n  " + entry["kernel"].get<std::string>() + "   *" +
                                                 entry["variant"].get<std::string>() + "\n"));
}
