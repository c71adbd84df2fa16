// What every document of --json has in common, and how warnings come into all forms of a result.
#include "warnings.hpp"
#include "batch.hpp"
#include "html_page.hpp"
#include "program_fixture.hpp"

using namespace tool;
using testing::HasSubstr;

using Documents = Program;

TEST_F(Documents, EveryCommandsDocumentBeginsAndEndsAlike) {
    Make("a.png");
    WriteFile(folder_ / "a.csv", "0,0\n4,0\n0,3\n");
    const std::vector<std::string> names = {"schema", "tool", "version", "command", "options", "warnings"};
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{"measure", At("a.png"), "--roi-polarity", "inside"},
                                               {"flatten", At("a.png"), "--surface", "plane"},
                                               {"filter", "sobel", At("a.png"), "-o", At("b.png")},
                                               {"info", At("a.png")},
                                               {"render", At("a.png"), "-o", At("c.png"), "--size", "40", "30"},
                                               {"polygon", At("a.csv")}}) {
        SCOPED_TRACE(arguments[0]);
        const Json document = DocumentOf(arguments[0], {arguments.begin() + 1, arguments.end()});
        ASSERT_TRUE(document.is_object());
        for (const std::string& name : names) EXPECT_TRUE(document.contains(name)) << name;
        EXPECT_EQ(1, document["schema"]);
        EXPECT_EQ(arguments[0], document["command"]);
        EXPECT_EQ(Json::array(), document["warnings"]);
        const Json& results = document.contains("images") ? document["images"] : document["files"];
        ASSERT_EQ(1u, results.size());
        EXPECT_EQ(Json::array(), results[0]["warnings"]);
    }
    const Json options =
        Measured({At("a.png"), "--pixel-size", "0.25", "--bins", "64", "--luminance", "0", "200"})["options"];
    EXPECT_EQ(0.25, options["pixelSize"]);
    EXPECT_EQ(64, options["bins"]);
    EXPECT_EQ(Json({0.0, 200.0}), options["luminance"]);
    EXPECT_EQ("inside", options["roiPolarity"]);
    EXPECT_EQ(nullptr, options["roi"]);
    EXPECT_EQ(false, options["bright"]);
    EXPECT_FALSE(options.contains("json"));
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
