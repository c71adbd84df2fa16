#include "document.hpp"
#include "console.hpp"
#include "region.hpp"
#include "thresholds.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace tool {
namespace {

using Limits = std::numeric_limits<double>;

TEST(Document, NumbersAreTheShortestThatReadBackTheSame) {
    for (const auto& [number, text] :
         {std::pair{0.1, "0.1"}, {0.1 + 0.2, "0.30000000000000004"}, {255.0, "255"}, {5e-324, "5e-324"}})
        EXPECT_EQ(text, Number(number));
    for (const auto& [number, digits, text] : {std::tuple{12.3, 2, "12.30"},
                                               {-0.001, 2, "0.00"},
                                               {-0.009, 2, "-0.01"},
                                               {Limits::quiet_NaN(), 2, "–"},
                                               {-Limits::infinity(), 0, "–"}})
        EXPECT_EQ(text, Rounded(number, digits));
    EXPECT_EQ(309u, Rounded(Limits::max(), 0).size());
}

TEST(Document, PrintsArraysOfNumbersOnOneLineAndEverythingElseIndented) {
    Json document;
    document["name"] = "a \"b\" é";
    document["values"] = {1, 0.1, Limits::quiet_NaN()};
    document["empty"] = Json::array();
    document["nested"]["on"] = true;
    document["list"].push_back({{"x", 1}});
    EXPECT_EQ(R"({
  "name": "a \"b\" é",
  "values": [1, 0.1, null],
  "empty": [],
  "nested": {
    "on": true
  },
  "list": [
    {
      "x": 1
    }
  ]
}
)",
              Print(document));
    document["values"] = {1, 0.1};
    EXPECT_EQ(document, Json::parse(Print(document)));
}

TEST(Document, CsvFieldsAreQuotedWhereTheyMustBe) {
    for (const auto& [value, field] : {std::pair<Json, const char*>{"plain", "plain"},
                                       {"a,b", "\"a,b\""},
                                       {"say \"so\"", "\"say \"\"so\"\"\""},
                                       {nullptr, ""},
                                       {0.25, "0.25"},
                                       {7, "7"}})
        EXPECT_EQ(field, CsvField(value));
}

TEST(CommandLineWords, RegionsAreReadAndMistakesNamed) {
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

TEST(CommandLineWords, ThresholdsAreReadAndMistakesNamed) {
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

}  // namespace
}  // namespace tool
