#include "document.hpp"
#include "console.hpp"
#include "region.hpp"
#include "thresholds.hpp"

#include <gtest/gtest.h>

#include <limits>

using namespace tool;

namespace {

const double kNan = std::numeric_limits<double>::quiet_NaN();
const double kInfinity = std::numeric_limits<double>::infinity();

}  // namespace

TEST(Document, NumbersAreTheShortestThatReadBackTheSame) {
    EXPECT_EQ("0.1", Number(0.1));
    EXPECT_EQ("0.30000000000000004", Number(0.1 + 0.2));
    EXPECT_EQ("255", Number(255));
    EXPECT_EQ("5e-324", Number(5e-324));
}

TEST(Document, RoundedNumbersKeepTheirDigitsAndHaveNoNegativeZero) {
    EXPECT_EQ("12.30", Rounded(12.3, 2));
    EXPECT_EQ("0.00", Rounded(-0.001, 2));
    EXPECT_EQ("-0.01", Rounded(-0.009, 2));
    EXPECT_EQ("–", Rounded(kNan, 2));
    EXPECT_EQ("–", Rounded(-kInfinity, 0));
    EXPECT_EQ(309u, Rounded(std::numeric_limits<double>::max(), 0).size());
}

TEST(Document, PrintsArraysOfNumbersOnOneLineAndEverythingElseIndented) {
    Json document;
    document["name"] = "a \"b\" é";
    document["values"] = {1, 0.1, kNan};
    document["empty"] = Json::array();
    document["nested"]["on"] = true;
    document["list"].push_back({{"x", 1}});
    EXPECT_EQ(
        "{\n  \"name\": \"a \\\"b\\\" é\",\n  \"values\": [1, 0.1, null],\n  \"empty\": [],\n  \"nested\": {\n    "
        "\"on\": "
        "true\n  },\n  \"list\": [\n    {\n      \"x\": 1\n    }\n  ]\n}\n",
        Print(document));
    document["values"] = {1, 0.1};
    EXPECT_EQ(document, Json::parse(Print(document)));
}

TEST(Document, CsvFieldsAreQuotedWhereTheyMustBe) {
    EXPECT_EQ("plain", CsvField("plain"));
    EXPECT_EQ("\"a,b\"", CsvField("a,b"));
    EXPECT_EQ("\"say \"\"so\"\"\"", CsvField("say \"so\""));
    EXPECT_EQ("", CsvField(nullptr));
    EXPECT_EQ("0.25", CsvField(0.25));
    EXPECT_EQ("7", CsvField(7));
}

TEST(Document, MembersAreFoundByTheirPathOrAreNull) {
    const Json document = {{"a", {{"b", 2.5}}}, {"c", 1}};
    EXPECT_EQ(2.5, NumberAt(document, "a.b"));
    for (const char* path : {"a.x", "x", "c.d", "a.b.c"}) EXPECT_TRUE(Member(document, path).is_null()) << path;
}

TEST(Arguments, RegionsAreReadAndMistakesNamed) {
    const RegionShape circle = ParseRegion("circle:10.5,-2,1e2");
    EXPECT_EQ(RegionShape::Kind::Circle, circle.kind);
    EXPECT_EQ((std::array<double, 5>{10.5, -2, 100, 0, 0}), circle.values);
    EXPECT_EQ(RegionShape::Kind::Rectangle, ParseRegion("rect:0,0,9,9").kind);
    EXPECT_EQ(RegionShape::Kind::OrientedRectangle, ParseRegion("oriented:30,10,-12.5,50,60").kind);
    for (const char* text :
         {"", "circle", "circle:", "circle:1,2", "circle:1,2,3,4", "circle:1,2,x", "circle:1,2,nan", "circle:1,2,inf",
          "circle:1,,3", "rect:0,0,9.5,9", "rect:0,0,9,3000000000", "square:1,2,3"})
        EXPECT_THROW(ParseRegion(text), UsageError) << text;
    EXPECT_EQ(PT_Frame, ParsePolarity("frame"));
    EXPECT_THROW(ParsePolarity("Inside"), UsageError);
}

TEST(Arguments, ThresholdsAreReadAndMistakesNamed) {
    EXPECT_STREQ("minimize-variance", ParseThreshold("otsu").method->id);
    EXPECT_STREQ("maximize-entropy", ParseThreshold("maximize-entropy").method->id);
    EXPECT_EQ((std::array{0.1, 0.05}), ParseThreshold("trim:0.1").parameters);
    EXPECT_EQ((std::array{0.1, 0.2}), ParseThreshold("trim:0.1,0.2").parameters);
    const ThresholdChoice levels = ParseThreshold("10,20.5");
    EXPECT_EQ(nullptr, levels.method);
    EXPECT_EQ((std::array{10.0, 20.5}), levels.levels);
    EXPECT_TRUE(std::isnan(ParseThreshold(",20").levels[0]));
    EXPECT_TRUE(std::isnan(ParseThreshold("20,").levels[1]));
    for (const char* text : {"", "20", ",", "20,10", "1,2,3", "a,b", "otsu:x", "exponential:0.1,0.2", "mode"})
        EXPECT_THROW(ParseThreshold(text), UsageError) << text;
}
