// orlix polygon: its files, and that each figure is the one it is called.
#include "program_fixture.hpp"
#include "vertex_list.hpp"

using namespace tool;
using testing::HasSubstr;

using PolygonProgram = Program;

TEST_F(PolygonProgram, MeasuresEachOutlineOfCsvAndJson) {
    WriteFile(folder_ / "a.csv", "x;y;z\r\n0;0;7\r\n 2 ; 0\r\n2\t2\r\n0 2\r\n\r\n\r\n1e1,1\n-3.5,1\n");
    WriteFile(folder_ / "a.json",
              R"([{"name": "square", "vertices": [[0,0],[2,0],[2,2],[0,2]]}, [[10,1],[-3.5,1.0]]])");
    for (const char* name : {"a.csv", "a.json"}) {
        SCOPED_TRACE(name);
        const Json document =
            DocumentOf("polygon", {At(name), "--point", "1", "1", "--circle", "0.9", "--smooth", "1"});
        const Json& outlines = document["files"][0]["outlines"];
        ASSERT_EQ(2u, outlines.size());
        const Json& square = outlines[0];
        EXPECT_EQ(std::string(name) == "a.csv" ? "1" : "square", square["outline"]);
        EXPECT_EQ(4, square["vertices"]);
        EXPECT_EQ(4, square["area"]);
        EXPECT_EQ(8, square["perimeter"]);
        EXPECT_EQ(Json::parse(R"({"x": 1.0, "y": 1.0})"), square["centroid"]);
        EXPECT_EQ(2, square["diameter"]["y2"]);
        EXPECT_EQ(4, square["hull"]["vertices"]);
        EXPECT_EQ(true, square["point"]["inside"]);
        EXPECT_EQ(360, square["point"]["subtendedAngle"]);
        EXPECT_NEAR(std::sqrt(2.0), square["circle"]["radius"], 1e-15);
        EXPECT_EQ(4, square["smooth"]["vertices"]);
        EXPECT_EQ(13.5, outlines[1]["diameter"]["length"]);
        EXPECT_EQ(-3.5, outlines[1]["bounds"]["left"]);
        EXPECT_EQ(nullptr, outlines[1]["circle"]);
        EXPECT_EQ(nullptr, outlines[1]["centroid"]["x"]);
    }
    const Result text = Orlix({"polygon", At("a.csv")});
    EXPECT_THAT(text.out, HasSubstr("a.csv, outline 2\n"));
    EXPECT_THAT(text.out, HasSubstr("2.8284271247461903 from 0, 0 to 2, 2"));
    const Result csv = Orlix({"polygon", "--csv", At("a.csv"), At("none.csv")});
    EXPECT_EQ(kFailed, csv.code);
    EXPECT_EQ(4, std::count(csv.out.begin(), csv.out.end(), '\n'));
}

TEST(ParseOutlines, RefusesWhatIsNoListOfVertices) {
    for (const char* text : {"", "x,y\n", "1,2\nthree,4\n", "1,2\n3\n", "1,2x\n1,2x\n", "[", "[]", "[[1,2],[3]]", "{}",
                             "[[1,\"a\"]]", "{\"vertices\": 3}", "[[[[1,2]]], 5]"})
        EXPECT_THROW(ParseOutlines(text), std::runtime_error) << text;
    EXPECT_THAT([] { ParseOutlines("1,2\n\n3;\n"); },
                testing::ThrowsMessage<std::runtime_error>("line 3 does not begin with x and y"));
}
