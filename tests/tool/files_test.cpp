// Files as the user finds them: what is replaced and what is not, names of every kind, reasons, standard input and
// output, Ctrl-C.
#include "batch.hpp"
#include "html_page.hpp"
#include "interruption.hpp"
#include "program_fixture.hpp"

#include <csignal>
#include <fstream>

#ifdef _WIN32
#include <windows.h>
#else
#include <unistd.h>
#endif

using namespace tool;
using testing::ElementsAre;
using testing::HasSubstr;

using Files = Program;

namespace {

// Standard input, while it lives.
class Given {
public:
    explicit Given(const std::string& content) : buffer_(content), old_(std::cin.rdbuf(buffer_.rdbuf())) {}
    ~Given() { std::cin.rdbuf(old_); }

private:
    std::istringstream buffer_;
    std::streambuf* old_;
};

std::string ProcessNumber() {
#ifdef _WIN32
    return std::to_string(GetCurrentProcessId());
#else
    return std::to_string(getpid());
#endif
}

}  // namespace

TEST_F(Files, ResultsReplaceResultsAndNothingElse) {
    Make("s.png");
    const std::vector<std::vector<std::string>> commands = {
        {"measure", At("s.png"), "--out", At("r")},
        {"flatten", At("s.png"), "--surface", "plane", "--out", At("r")},
        {"filter", "sobel", At("s.png"), "--out", At("r")}};
    const char* const files[] = {"r/s_bitmap.png", "r/s_flattened.png", "r/s_sobel.png"};
    for (size_t i = 0; i < commands.size(); ++i) {
        SCOPED_TRACE(files[i]);
        std::filesystem::create_directory(folder_ / "r");
        WriteFile(Path(At(files[i])), "mine");
        const Result refused = Orlix(commands[i]);
        EXPECT_EQ(kUsage, refused.code);
        EXPECT_THAT(refused.err, HasSubstr(std::string(files[i]) + " is there already"));
        EXPECT_EQ("mine", ReadFile(Path(At(files[i]))));
        std::vector<std::string> forced = commands[i];
        forced.emplace_back("--force");
        EXPECT_EQ(kDone, Orlix(forced).code);
        EXPECT_NE("mine", ReadFile(Path(At(files[i]))));
        EXPECT_EQ(kDone, Orlix(commands[i]).code) << "the second run";
    }
    WriteFile(folder_ / "r" / "report.html", "<html>mine</html>");
    EXPECT_EQ(kUsage, Orlix(commands[0]).code);
    WriteFile(folder_ / "t.json", "{}");
    EXPECT_EQ(kUsage, Orlix({"specimen", At("t.png")}).code);
    EXPECT_FALSE(Exists("t.png"));
    EXPECT_EQ(kDone, Orlix({"specimen", At("s.png")}).code) << "the truth of an earlier run";
}

TEST_F(Files, InputsAreNotReplaced) {
    Make("s.png");
    std::filesystem::copy_file(folder_ / "s.png", folder_ / "s_bitmap.png");
    const std::string before = ReadFile(folder_ / "s.png");
    const Result batch = Orlix({"measure", At("s.png"), At("s_bitmap.png"), "--out", At("."), "--force"});
    EXPECT_EQ(kUsage, batch.code);
    EXPECT_THAT(batch.err, HasSubstr("would replace the input"));
    const std::string there = At("./s.png");  // the same file by another name
    for (std::vector<std::string> arguments :
         std::vector<std::vector<std::string>>{{"filter", "sobel", At("s.png"), "-o", there},
                                               {"convert", At("s.png"), there, "--type", "16"},
                                               {"render", At("s.png"), "--size", "9", "9", "-o", there},
                                               {"save", At("s.png"), there}}) {
        EXPECT_EQ(kUsage, Orlix(arguments).code) << arguments[0];
        EXPECT_EQ(before, ReadFile(folder_ / "s.png"));
    }
    EXPECT_EQ(kDone, Orlix({"filter", "sobel", At("s.png"), "-o", there, "--force"}).code);
    EXPECT_NE(before, ReadFile(folder_ / "s.png"));
}

TEST(Names, OfABatchAreAllDifferentAndNoLongerThanNeeded) {
    EXPECT_THAT(ShownNames({"a/x/s.png", "b/x/s.png", "b/t.png", "-"}),
                ElementsAre("a/x/s.png", "b/x/s.png", "t.png", "stdin"));
    EXPECT_THAT(ShownNames({"s.png", "x/s.png", "/s.png", "/x/s.png"}),
                ElementsAre("s.png", "x/s.png", "/s.png", "/x/s.png"));
    EXPECT_THAT(ShownNames({"s.png", "s.png"}), ElementsAre("s.png", "s.png (2)"));
}

TEST(Names, InLinksAreEncoded) { EXPECT_EQ("href='a%23b%3Fc%25d%20%27%C3%A9.html'", Href("a#b?c%d '\u00e9.html")); }

TEST_F(Files, ANameInALinkLeadsToItsReport) {
    Make("50% #1.png");
    Make("b.png");
    ASSERT_EQ(kDone, Orlix({"measure", At("50% #1.png"), At("b.png"), "--out", At("m")}).code);
    ASSERT_EQ(kDone, Orlix({"flatten", At("50% #1.png"), At("b.png"), "--surface", "plane", "--out", At("f")}).code);
    for (const char* folder : {"m", "f"}) {
        EXPECT_THAT(ReadFile(folder_ / folder / "report.html"), HasSubstr("href='50%25%20%231_report.html'"));
        EXPECT_TRUE(Exists(std::string(folder) + "/50% #1_report.html"));
    }
}

#ifndef _WIN32
TEST_F(Files, NamesThatAreNoUtf8AreMeasuredAndShown) {
    Make("a.png");
    const std::string name = At("caf\xe9.png");
    std::filesystem::copy_file(folder_ / "a.png", name);
    const Json document = Measured({name, At("a.png"), "--out", At("out")});
    EXPECT_EQ("caf\ufffd.png", document["images"][0]["file"]);
    EXPECT_EQ(document["images"][1]["phase"], document["images"][0]["phase"]);
    EXPECT_TRUE(std::filesystem::exists(At("out/caf\xe9_report.html")));
    EXPECT_THAT(ReadFile(folder_ / "out" / "report.html"), HasSubstr("href='caf%E9_report.html'>caf\ufffd.png<"));
    EXPECT_THAT(Orlix({"measure", "--csv", name}).out, HasSubstr("caf\ufffd.png,"));
    EXPECT_EQ(kDone, Orlix({"convert", name, At("\xe9.pgm")}).code);
    EXPECT_TRUE(std::filesystem::exists(At("\xe9.pgm")));
}
#endif

TEST_F(Files, ReasonsAreNamed) {
    Make("a.png");
    WriteFile(folder_ / "empty.png", "");
    const auto error = [&](const std::vector<std::string>& arguments) {
        const Result result = Orlix(arguments);
        EXPECT_EQ(kFailed, result.code);
        return result.err;
    };
    const std::string text = "IImageVPAEx::CreateFromFile: failed to open file.";
    EXPECT_THAT(error({"info", At("none.png")}), HasSubstr(text + " (" + At("none.png") + ": no such file)"));
    EXPECT_THAT(error({"info", At(".")}), HasSubstr(text + " (" + At(".") + ": a folder, not a file)"));
    EXPECT_THAT(error({"info", At("empty.png")}), HasSubstr("(" + At("empty.png") + ": the file is empty)"));
    EXPECT_THAT(error({"polygon", At("none.csv")}), HasSubstr("none.csv: no such file"));
    EXPECT_THAT(error({"load", At("none.orlix"), At("b.png")}), HasSubstr("no such file"));
    EXPECT_THAT(error({"convert", At("a.png"), At("none/b.png")}),
                HasSubstr("cannot write " + At("none/b.png") + ": no such folder"));
    EXPECT_THAT(error({"convert", At("a.png"), At("a.png/b.png")}), HasSubstr("a.png is not a folder"));
    EXPECT_THAT(error({"measure", At("a.png"), "--out", At("a.png")}), HasSubstr("cannot make the folder"));
}

TEST_F(Files, TheLimitOfSamplesIsGivenAndNamed) {
    Make("a.png");  // 640 x 480
    ASSERT_EQ(kDone, Orlix({"save", At("a.png"), At("a.orlix")}).code);
    for (std::vector<std::string> arguments :
         std::vector<std::vector<std::string>>{{"info", At("a.png")}, {"load", At("a.orlix"), At("b.png")}}) {
        arguments.insert(arguments.end(), {"--max-samples", "307199"});
        const Result result = Orlix(arguments);
        EXPECT_EQ(kFailed, result.code);
        EXPECT_THAT(result.err, HasSubstr("307200 samples, more than the limit of 307199"));
        arguments.back() = "307200";
        EXPECT_EQ(kDone, Orlix(arguments).code);
    }
}

TEST_F(Files, AMeasurementStaysWhenItsPicturesCannotBeWritten) {
    Make("a.png");
    std::filesystem::create_directories(folder_ / "out" / "a_overlay.png");
    const Result result = Orlix({"measure", "--json", At("a.png"), "--out", At("out"), "--force"});
    EXPECT_EQ(kFailed, result.code);
    EXPECT_THAT(result.err, HasSubstr("a_overlay.png: a folder has that name"));
    const Json document = Json::parse(result.out);
    EXPECT_EQ(640 * 480, document["images"][0]["region"]["pixels"]);
    EXPECT_THAT(document["images"][0]["outputError"], HasSubstr("cannot write"));
    EXPECT_EQ(1, document["summary"]["measured"]);
}

TEST_F(Files, StandardInputAndOutputAreImages) {
    Make("a.png");
    const std::string png = ReadFile(folder_ / "a.png");
    Json expected = Measured({At("a.png")})["images"][0];
    expected["file"] = "stdin";
    {
        const Given input(png);
        EXPECT_EQ(expected, Measured({"-"})["images"][0]);
    }
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{"convert", "-", "-"},
                                               {"filter", "median3x3", "-", "-o", "-"},
                                               {"render", "-", "-o", "-", "--size", "32", "24"},
                                               {"specimen", "-"}}) {
        SCOPED_TRACE(arguments[0]);
        const Given input(png);
        const Result result = Orlix(arguments);
        EXPECT_EQ(kDone, result.code) << result.err;
        const Given again(result.out);
        EXPECT_EQ(kDone, Orlix({"info", "-"}).code);
    }
    std::string stream;
    {
        const Given input(png);
        stream = Orlix({"save", "-", "-"}).out;
    }
    const Given input(stream);
    EXPECT_EQ(png, Orlix({"load", "-", "-"}).out);
    const Given nothing("");
    EXPECT_THAT(Orlix({"measure", "-"}).err, HasSubstr("standard input is empty"));
}

TEST(Stopping, KeepsWhatWasMeasured) {
    const std::vector<std::string> files = {"a", "b", "c", "d"};
    size_t printed = 0;
    const Captured messages(std::cerr);
    const Batch batch = RunBatch(
        files,
        [](size_t i, const std::string& name, Progress&) {
            if (i == 1) Stoppable::Stop(SIGINT);
            return Json({{"file", name}});
        },
        [&](const Json&) { ++printed; });
    Stoppable::Stop(0);
    EXPECT_EQ(2u, batch.images.size());
    EXPECT_EQ(2u, printed);
    EXPECT_EQ(kInterrupted, batch.code());
    EXPECT_EQ("stopped", batch.warnings[0]["code"]);
    EXPECT_THAT(messages.text(), HasSubstr("stopped after 2 of 4"));
}

TEST_F(Files, UnfinishedFilesOfThisProcessAreRemoved) {
    const std::string mine = "orlix-" + ProcessNumber() + "-";
    for (const std::string& name : {"." + mine + "0.tmp", mine + "7.tmp", mine + "x.png", std::string("orlix-1-0.tmp")})
        WriteFile(Path(At(name)), "half");
    Unfinished::RememberFolder(folder_);
    Unfinished::RemoveAll();
    EXPECT_FALSE(Exists("." + mine + "0.tmp") || Exists(mine + "7.tmp"));
    EXPECT_TRUE(Exists(mine + "x.png") && Exists("orlix-1-0.tmp"));
}
