// Files as the user finds them: what is replaced and what is not, names of every kind, standard input and output,
// Ctrl-C.
#include "batch.hpp"
#include "html_page.hpp"
#include "interruption.hpp"
#include "program_fixture.hpp"

#include <csignal>

#ifdef _WIN32
#include <windows.h>
#else
#include <unistd.h>
#endif

namespace tool {
namespace {

using testing::ElementsAre;
using Files = Program;

TEST_F(Files, ResultsReplaceResultsAndNothingElse) {
    Make("s.png");
    const Words measure = "measure s.png --out r";
    std::filesystem::create_directory("r");
    for (const auto& [words, file] : {std::pair<Words, std::string>{measure, "r/s_bitmap.png"},
                                      {{"flatten", "s.png", "--surface", "plane", "--out", "r"}, "r/s_flattened.png"},
                                      {{"filter", "sobel", "s.png", "--out", "r"}, "r/s_sobel.png"}}) {
        SCOPED_TRACE(file);
        WriteFile(Path(file), "mine");
        const Result refused = Orlix(words);
        EXPECT_EQ(kUsage, refused.code);
        EXPECT_THAT(refused.err, HasSubstr(file + " is there already"));
        EXPECT_EQ("mine", ReadFile(Path(file)));
        EXPECT_EQ(kDone, Orlix(words + Words{"--force"}).code);
        EXPECT_NE("mine", ReadFile(Path(file)));
        EXPECT_EQ(kDone, Orlix(words).code) << "the second run";
    }
    WriteFile(Path("r/report.html"), "<html>mine</html>");
    EXPECT_EQ(kUsage, Orlix(measure).code);
    WriteFile(Path("t.json"), "{}");
    EXPECT_EQ(kUsage, Orlix("specimen t.png").code);
    EXPECT_FALSE(Exists("t.png"));
    EXPECT_EQ(kDone, Orlix("specimen s.png").code) << "the truth of an earlier run";
}

TEST_F(Files, InputsAreNotReplaced) {
    Make("s.png");
    std::filesystem::copy_file("s.png", "s_bitmap.png");
    const std::string before = ReadFile(Path("s.png"));
    const Result batch = Orlix("measure s.png s_bitmap.png --out . --force");
    EXPECT_EQ(kUsage, batch.code);
    EXPECT_THAT(batch.err, HasSubstr("would replace the input"));
    const std::string there = At("s.png");  // the same file by another name
    const Words filter = {"filter", "sobel", "s.png", "-o", there};
    for (const Words& words : {filter,
                               {"convert", "s.png", there, "--type", "16"},
                               {"render", "s.png", "--size", "9", "9", "-o", there},
                               {"save", "s.png", there}}) {
        EXPECT_EQ(kUsage, Orlix(words).code) << words[0];
        EXPECT_EQ(before, ReadFile(Path("s.png")));
    }
    EXPECT_EQ(kDone, Orlix(filter + Words{"--force"}).code);
    EXPECT_NE(before, ReadFile(Path("s.png")));
}

TEST(Names, OfABatchAreAllDifferentAndNoLongerThanNeeded) {
    EXPECT_THAT(ShownNames({"a/x/s.png", "b/x/s.png", "b/t.png", "-"}),
                ElementsAre("a/x/s.png", "b/x/s.png", "t.png", "stdin"));
    EXPECT_THAT(ShownNames({"s.png", "x/s.png", "/s.png", "/x/s.png"}),
                ElementsAre("s.png", "x/s.png", "/s.png", "/x/s.png"));
    EXPECT_THAT(ShownNames({"s.png", "s.png"}), ElementsAre("s.png", "s.png (2)"));
    EXPECT_EQ("href='a%23b%3Fc%25d%20%27%C3%A9.html'", Href("a#b?c%d '\u00e9.html"));
}

TEST_F(Files, ReportsOfABatchHaveTheirOwnNamesAndAnOverviewWithLinks) {
    Make("50% #1.png");
    std::filesystem::create_directory("other");
    std::filesystem::copy_file("50% #1.png", "other/50% #1.png");
    WriteFile(Path("bad.png"), "not an image");
    const Words images = {"--csv", "50% #1.png", "bad.png", "other/50% #1.png"};
    for (const auto& [words, folder, picture, column] :
         {std::tuple<Words, std::string, const char*, const char*>{{"measure"}, "m", "_overlay.png", "grey.mean,"},
          {{"flatten", "--surface", "plane"}, "f", "_flattened.png", "surface.coefficients.gamma,"}}) {
        SCOPED_TRACE(folder);
        const Result result = Orlix(words + images + Words{"--out", folder});
        EXPECT_EQ(kFailed, result.code);
        EXPECT_THAT(result.err, HasSubstr("bad.png: IImageVPAEx::CreateFromFile: unknown file format."));
        EXPECT_EQ(4, std::count(result.out.begin(), result.out.end(), '\n'));
        EXPECT_THAT(result.out, HasSubstr(column));
        for (const char* name : {"50% #1", "50% #1_2"})
            EXPECT_TRUE(Exists(folder + "/" + name + "_report.html") && Exists(folder + "/" + name + picture)) << name;
        const std::string overview = ReadFile(Path(folder + "/report.html"));
        for (const char* part : {"href='50%25%20%231_report.html'", "href='50%25%20%231_2_report.html'", "bad.png"})
            EXPECT_THAT(overview, HasSubstr(part));
    }
}

#ifndef _WIN32
TEST_F(Files, NamesThatAreNoUtf8AreMeasuredAndShown) {
    Make("a.png");
    const std::string name = At("caf\xe9.png");
    std::filesystem::copy_file("a.png", name);
    const Json images = DocumentOf({"measure", name, "a.png", "--out", "out"})["images"];
    EXPECT_EQ("caf\ufffd.png", images[0]["file"]);
    EXPECT_EQ(images[1]["phase"], images[0]["phase"]);
    EXPECT_TRUE(Exists("out/caf\xe9_report.html"));
    EXPECT_THAT(ReadFile("out/report.html"), HasSubstr("href='caf%E9_report.html'>caf\ufffd.png<"));
    EXPECT_THAT(Orlix({"measure", "--csv", name}).out, HasSubstr("caf\ufffd.png,"));
    EXPECT_EQ(kDone, Orlix({"convert", name, "\xe9.pgm"}).code);
    EXPECT_TRUE(Exists("\xe9.pgm"));
}
#endif

TEST_F(Files, AMeasurementStaysWhenItsPicturesCannotBeWritten) {
    Make("a.png");
    std::filesystem::create_directories("out/a_overlay.png");
    const Result result = Orlix("measure --json a.png --out out --force");
    EXPECT_EQ(kFailed, result.code);
    EXPECT_THAT(result.err, HasSubstr("a_overlay.png: a folder has that name"));
    const Json document = Json::parse(result.out);
    EXPECT_EQ(640 * 480, document["images"][0]["region"]["pixels"]);
    EXPECT_THAT(document["images"][0]["outputError"], HasSubstr("cannot write"));
    EXPECT_EQ(1, document["summary"]["measured"]);
}

TEST_F(Files, StandardInputAndOutputAreImages) {
    Make("a.png");
    const std::string png = ReadFile(Path("a.png"));
    Json expected = Measured({"a.png"});
    expected["file"] = "stdin";
    EXPECT_EQ(expected, ImageOf("measure -", png));
    for (const Words& words : std::vector<Words>{{"convert", "-", "-"},
                                                 {"filter", "median3x3", "-", "-o", "-"},
                                                 {"render", "-", "-o", "-", "--size", "32", "24"},
                                                 {"specimen", "-"}}) {
        SCOPED_TRACE(words[0]);
        const Result result = Orlix(words, png);
        EXPECT_EQ(kDone, result.code) << result.err;
        EXPECT_EQ(kDone, Orlix({"info", "-"}, result.out).code);
    }
    const std::string stream = Orlix("save - -", png).out;
    EXPECT_EQ("qelo", stream.substr(0, 4));
    EXPECT_EQ(png, Orlix("load - -", stream).out);
    for (const Words& words :
         std::vector<Words>{{"save", "a.png", "a.orlix"}, {"load", "a.orlix", "b.orlix"}, {"load", "a.orlix", "b.PNG"}})
        EXPECT_EQ(kDone, Orlix(words).code);
    EXPECT_EQ(stream, ReadFile(Path("a.orlix")));
    EXPECT_EQ(stream, ReadFile(Path("b.orlix")));
    EXPECT_EQ(png, ReadFile(Path("b.PNG")));
}

TEST(Stopping, KeepsWhatWasMeasured) {
    size_t printed = 0;
    const Redirected messages(std::cerr);
    const Batch batch = RunBatch(
        {"a", "b", "c", "d"},
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
#ifdef _WIN32
    const auto process = GetCurrentProcessId();
#else
    const auto process = getpid();
#endif
    const std::string mine = "orlix-" + std::to_string(process) + "-";
    const Words gone = {"." + mine + "0.tmp", mine + "7.tmp"}, kept = {mine + "x.png", "orlix-1-0.tmp"};
    for (const std::string& name : gone + kept) WriteFile(Path(name), "half");
    Unfinished::RememberFolder(folder_);
    Unfinished::RemoveAll();
    for (const std::string& name : gone) EXPECT_FALSE(Exists(name)) << name;
    for (const std::string& name : kept) EXPECT_TRUE(Exists(name)) << name;
}

}  // namespace
}  // namespace tool
