#include <fstream>
#include <iterator>

#include "program_fixture.hpp"

namespace tool {
namespace {

using StreamCommands = Program;

std::string ContentOf(const std::string& file) {
    std::ifstream stream(Path(file), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

TEST_F(StreamCommands, SaveAndLoadGiveTheImageBack) {
    Make("a.png");
    ASSERT_EQ(kDone, Orlix({"save", At("a.png"), At("a.orlix")}).code);
    EXPECT_EQ("qelo", ContentOf(At("a.orlix")).substr(0, 4));
    ASSERT_EQ(kDone, Orlix({"load", At("a.orlix"), At("b.PNG")}).code);
    EXPECT_EQ(ContentOf(At("a.png")), ContentOf(At("b.PNG")));
    ASSERT_EQ(kDone, Orlix({"load", At("a.orlix"), At("b.orlix")}).code);
    EXPECT_EQ(ContentOf(At("a.orlix")), ContentOf(At("b.orlix")));
}

TEST_F(StreamCommands, SayWhatIsWrong) {
    Make("a.png");
    Result result = Orlix({"load", At("a.png"), At("b.png")});
    EXPECT_EQ(kFailed, result.code);
    EXPECT_EQ("orlix: IPersistStreamInit::Load: not an image stream.\n", result.err);
    EXPECT_FALSE(Exists("b.png"));
    EXPECT_EQ(kFailed, Orlix({"load", At("missing.orlix"), At("b.png")}).code);
    EXPECT_EQ(kFailed, Orlix({"save", At("missing.png"), At("b.orlix")}).code);
    EXPECT_FALSE(Exists("b.orlix"));
}

}  // namespace
}  // namespace tool
