// What the program says about itself, what every document of --json has in common, and warnings in all forms of a
// result.
#include "batch.hpp"
#include "html_page.hpp"
#include "manual.hpp"
#include "program_fixture.hpp"
#include "synopsis.hpp"
#include "warnings.hpp"

namespace tool {
namespace {

using Commands = Program;

TEST_F(Commands, HelpManualAndCompletionsHoldEveryOption) {
    const Result help = Orlix({"--help"});
    EXPECT_EQ(kDone, help.code);
    EXPECT_EQ(help.out, Orlix({}).out);
    EXPECT_THAT(help.out, HasSubstr("Exit codes"));
    ASSERT_EQ(kDone, Orlix("man --out man1").code);
    const std::string bash = Orlix("completion bash").out, zsh = Orlix("completion zsh").out,
                      fish = Orlix("completion fish").out;
    for (const std::string command : {"particles", "measure", "flatten", "filter", "polygon", "render", "info",
                                      "convert", "save", "load", "specimen", "doctor"}) {
        SCOPED_TRACE(command);
        const std::string page = ReadFile(Path("man1/orlix-" + command + ".1"));
        EXPECT_EQ(page, Orlix({"man", command}).out);
        const Result own = Orlix({command, "--help"});
        EXPECT_EQ(kDone, own.code);
        EXPECT_THAT(own.out, HasSubstr("\n  orlix " + command)) << "an example";
        std::istringstream lines(own.out);
        int options = 0;
        for (std::string line; std::getline(lines, line);) {
            const size_t start = line.find("--");
            if (!line.starts_with("  -") || start > 8) continue;
            const std::string option = line.substr(start, line.find_first_of(" ,[", start) - start);
            ++options;
            std::string roff;
            for (const char c : option) roff += c == '-' ? "\\-" : std::string(1, c);
            EXPECT_THAT(page, HasSubstr("\\fB" + roff + "\\fR")) << option;
            for (const std::string* script : {&bash, &zsh}) EXPECT_THAT(*script, HasSubstr(option));
            EXPECT_THAT(fish, HasSubstr("from " + command + "'")) << option;
            EXPECT_THAT(fish, HasSubstr("-l " + option.substr(2)));
        }
        EXPECT_GT(options, 0);
    }
    EXPECT_THAT(bash, HasSubstr("measure:--flatten) COMPREPLY=($(compgen -W 'plane "));
}

TEST_F(Commands, TheDoctorFindsTheLibraryWellInItsTextAsInItsDocument) {
    const Json m = DocumentOf({"doctor"});
    EXPECT_EQ("pass", m["verdict"]);
    EXPECT_EQ(14u, m["classes"].size());
    const std::string text = Orlix({"doctor"}).out;
    EXPECT_THAT(text, testing::StartsWith("PASS: the library works, all 10 checks passed\n"));
    EXPECT_THAT(text, HasSubstr("Orlix.Image"));
    for (const char* trouble : {"FAIL", "no InprocServer32"}) EXPECT_THAT(text, Not(HasSubstr(trouble)));
    for (const Json& entry : m["library"]["kernels"])  // each row with two blanks at least between its columns
        EXPECT_THAT(text, testing::ContainsRegex("\n  " + entry["kernel"].get<std::string>() + "   *" +
                                                 entry["variant"].get<std::string>() + "\n"));
}

TEST_F(Commands, EveryCommandsDocumentBeginsAndEndsAlike) {
    Make("a.png");
    WriteFile(Path("a.csv"), "0,0\n4,0\n0,3\n");
    for (const Words& words : std::vector<Words>{{"measure", "a.png", "--roi-polarity", "inside"},
                                                 {"flatten", "a.png", "--surface", "plane"},
                                                 {"filter", "sobel", "a.png", "-o", "b.png"},
                                                 {"info", "a.png"},
                                                 {"render", "a.png", "-o", "c.png", "--size", "40", "30"},
                                                 {"polygon", "a.csv"}}) {
        SCOPED_TRACE(words[0]);
        const Json document = DocumentOf(words);
        ASSERT_TRUE(document.is_object());
        for (const char* name : {"tool", "version", "options"}) EXPECT_TRUE(document.contains(name)) << name;
        EXPECT_EQ(1, document["schema"]);
        EXPECT_EQ(words[0], document["command"]);
        EXPECT_EQ(Json::array(), document["warnings"]);
        const Json& results = document.contains("images") ? document["images"] : document["files"];
        ASSERT_EQ(1u, results.size());
        EXPECT_EQ(Json::array(), results[0]["warnings"]);
    }
    const Json options = DocumentOf("measure a.png --pixel-size 0.25 --bins 64 --luminance 0 200")["options"];
    for (const auto& [name, value] : {std::pair<const char*, Json>{"pixelSize", 0.25},
                                      {"bins", 64},
                                      {"luminance", {0.0, 200.0}},
                                      {"roiPolarity", "inside"},
                                      {"roi", nullptr},
                                      {"bright", false}})
        EXPECT_EQ(value, options[name]) << name;
    EXPECT_FALSE(options.contains("json"));
}

TEST_F(Commands, DoubtfulRequestsAreWarnedOf) {
    Make("a.png");  // calibrated
    for (const auto& [words, code] : std::vector<std::pair<Words, const char*>>{
             {{"convert", "a.png", "a.pgm"}, "calibration-lost"},
             {{"filter", "sobel", "a.png", "-o", "b.pgm"}, "calibration-lost"},
             {{"specimen", "c.pgm", "--pixel-size", "0.5"}, "calibration-lost"},
             {{"convert", "a.png", "d.png", "--range", "0,300"}, "levels-outside-type"},
             {{"measure", "a.png", "--threshold", "300,400"}, "levels-outside-type"},
             {{"measure", "a.png", "--threshold", "-5,100"}, "levels-outside-type"}}) {
        SCOPED_TRACE(testing::PrintToString(words));
        const Json warnings = ImageOf(words)["warnings"];
        ASSERT_EQ(1u, warnings.size());
        EXPECT_EQ(code, warnings[0]["code"]);
        const Result text = Orlix(words);
        EXPECT_EQ(kDone, text.code);
        EXPECT_THAT(text.out + text.err, HasSubstr(warnings[0]["message"].get<std::string>()));
    }
    // Nothing is lost: no calibration, or a format that holds it.
    EXPECT_EQ("", Orlix("convert a.pgm d.pgm").err + Orlix("convert a.png e.png").err);
}

TEST(Warnings, AppearInTextCsvAndPages) {
    Json document = {{"file", "a.png"}};
    EXPECT_EQ("", WarningsText(document) + WarningsSection(document) + WarningsCell(document));
    Warn(document, "first", "1 < 2");
    Warn(document, "second", "more");
    EXPECT_EQ("  warning     1 < 2\n  warning     more\n", WarningsText(document));
    EXPECT_EQ("a.png,1 < 2; more\r\n", CsvLine({"file", "warnings"}, document));
    EXPECT_THAT(WarningsSection(document), HasSubstr("<li>1 &lt; 2</li>\n<li>more</li>"));
    EXPECT_THAT(WarningsCell(document), HasSubstr("1 &lt; 2"));
    EXPECT_EQ(Json::parse(R"([{"code": "first", "message": "1 < 2"}, {"code": "second", "message": "more"}])"),
              Warnings(document));
}

}  // namespace
}  // namespace tool
