// orlix polygon: its files, and that each figure is the one it is called.
#include "program_fixture.hpp"
#include "vertex_list.hpp"

namespace tool {
namespace {

using PolygonProgram = Program;

TEST_F(PolygonProgram, MeasuresEachOutlineOfCsvAndJson) {
    WriteFile(Path("a.csv"), "x;y;z\r\n0;0;7\r\n 2 ; 0\r\n2\t2\r\n0 2\r\n\r\n\r\n1e1,1\n-3.5,1\n");
    WriteFile(Path("a.json"), R"([{"name": "square", "vertices": [[0,0],[2,0],[2,2],[0,2]]}, [[10,1],[-3.5,1.0]]])");
    for (const auto& [file, name] : {std::pair{"a.csv", "1"}, {"a.json", "square"}}) {
        SCOPED_TRACE(file);
        const Json outlines = DocumentOf(
            {"polygon", file, "--point", "1", "1", "--circle", "0.9", "--smooth", "1"})["files"][0]["outlines"];
        ASSERT_EQ(2u, outlines.size());
        for (const auto& [figure, value] : {std::pair<const char*, Json>{"outline", name},
                                            {"vertices", 4},
                                            {"area", 4},
                                            {"perimeter", 8},
                                            {"centroid.x", 1},
                                            {"centroid.y", 1},
                                            {"diameter.y2", 2},
                                            {"hull.vertices", 4},
                                            {"point.inside", true},
                                            {"point.subtendedAngle", 360},
                                            {"smooth.vertices", 4}})
            EXPECT_EQ(value, Member(outlines[0], figure)) << figure;
        EXPECT_NEAR(std::sqrt(2.0), outlines[0]["circle"]["radius"], 1e-15);
        for (const auto& [figure, value] : {std::pair<const char*, Json>{"diameter.length", 13.5},
                                            {"bounds.left", -3.5},
                                            {"circle", nullptr},
                                            {"centroid.x", nullptr}})
            EXPECT_EQ(value, Member(outlines[1], figure)) << figure;
    }
    const std::string text = Orlix("polygon a.csv").out;
    for (const char* part : {"a.csv, outline 2\n", "2.8284271247461903 from 0, 0 to 2, 2"})
        EXPECT_THAT(text, HasSubstr(part));
    const Result csv = Orlix("polygon --csv a.csv none.csv");
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

}  // namespace
}  // namespace tool
