// Scripts that tools/orlixscript runs with the system's engines.
#include <filesystem>
#include <fstream>

#include "automation/script.hpp"
#include "script_object.hpp"
#include "script_run.hpp"

namespace orlix::testing {
namespace {

struct Played {
    std::string printed, reported;
    std::vector<int> codes;  // of WScript.Quit
    bool succeeded = false;
};

Played Play(const char* engine, const char* text, std::vector<std::string> arguments = {}) {
    Played played;
    const auto held = std::make_shared<int>();  // by all that the run has made
    played.succeeded = script_host::Run(
        {"C:\\played.txt", engine, orlix::ToUtf16(text)}, std::move(arguments),
        {[&, held](std::string_view line) { played.printed += line; },
         [&](std::string_view line) { played.reported += line; }, [&](int code) { played.codes.push_back(code); }});
    EXPECT_EQ(1, held.use_count());
    return played;
}

TEST(ScriptHost, RunsVBScript) {
    ASSERT_TRUE(ModuleUnderTest()) << "is the module registered?";
    const Played played = Play("VBScript", R"(
Set image = CreateObject("Orlix.Image")
image.Create 8, 4
image.ScalarEquals 7
WScript.Echo image.Dimensions.Width & " x " & image.Height & ", " & image.GrayMeasurements.GrayAverage
Set bitmap = image.Threshold(5, 9, True)
bitmap.Bit(2, 3) = 0
For Each blob In bitmap.FindBlobs(4)
  WScript.Echo "area " & blob.Area & ", moment " & blob.RawMoments(0)
Next
Dim bands, width, height
image.Dimensions bands, width, height
WScript.Echo bands & " " & width & " " & height
Class Surface
  Public Average
  Public Alpha
  Public Beta
  Public Gamma
End Class
Set plane = New Surface
plane.Average = 0: plane.Alpha = 1: plane.Beta = 0: plane.Gamma = 0
image.CorrectPlanar plane
WScript.Echo image.Histogram.Bins(7) & " " & image.PlanarFit.Alpha
Dim corners(5)
corners(0) = 0: corners(1) = 0: corners(2) = 4: corners(3) = 0: corners(4) = 4: corners(5) = 3
Set polygon = CreateObject("Orlix.Polygon")
polygon.Create corners
WScript.Echo polygon.Area
On Error Resume Next
image.Create 0, 4
WScript.Echo Err.Source & ": " & Err.Description
)");
    EXPECT_EQ(
        "8 x 4, 7\r\narea 31, moment 31\r\n1 8 4\r\n4 -1\r\n6\r\n"
        "Orlix.Image.1: IImageVPAEx::Create: Width must be positive.\r\n",
        played.printed);
    EXPECT_TRUE(played.succeeded) << played.reported;
}

bool ToldOnce(const std::string& reported) {
    constexpr std::string_view kError = "IImageVPAEx::Create: Width must be positive.\r\n";
    return reported.find(kError) + kError.size() == reported.size() && reported.find('\n') + 1 == reported.size();
}

// The script draws on a device context of this test.
TEST(ScriptHost, EventsCallFunctionsOfTheScript) {
    const HDC device = CreateCompatibleDC(nullptr);
    const std::string handle = std::to_string(reinterpret_cast<intptr_t>(device));
    constexpr char kVBScript[] = R"(
Set image = WScript.CreateObject("Orlix.Image", "first_")
image.Create 6, 4
WScript.ConnectObject image, "second_"
WScript.ConnectObject image, "none_"
Sub Draw
  image.Render CLng(WScript.Arguments(0)), 0, 0, 6, 4
End Sub
Draw
WScript.DisconnectObject image
WScript.DisconnectObject image
Draw
WScript.ConnectObject image, "failing_"
Draw
WScript.Echo "end"
Sub first_OnRender(picture, dc, kind)
  WScript.Echo "first", picture Is image, dc <> 0, kind
End Sub
Sub second_OnRender(picture, dc, kind)
  WScript.Echo "second", picture.Width
End Sub
Sub failing_OnRender(picture, dc, kind)
  WScript.DisconnectObject picture
  picture.Create 0, 4
End Sub
)";
    Played played = Play("VBScript", kVBScript, {handle});
    // 10 is RST_Memory.
    EXPECT_EQ("first -1 -1 10\r\nsecond 6\r\nend\r\n", played.printed);
    EXPECT_FALSE(played.succeeded);
    EXPECT_TRUE(ToldOnce(played.reported)) << played.reported;

    constexpr char kJScript[] = R"(
var image = new ActiveXObject("Orlix.Image");
image.Create(6, 4);
WScript.ConnectObject(image, "image_");
function image_OnRender(picture, dc, kind) { WScript.Echo("drawn", picture.Height, kind); }
image.Render(Number(WScript.Arguments(0)), 0, 0, 6, 4);
WScript.ConnectObject(image, "failing_");
function failing_OnRender() { image.Create(0, 4); }
image.Render(Number(WScript.Arguments(0)), 0, 0, 6, 4);
WScript.Echo("end");
)";
    played = Play("JScript", kJScript, {handle});
    EXPECT_EQ("drawn 4 10\r\ndrawn 4 10\r\nend\r\n", played.printed);
    EXPECT_TRUE(ToldOnce(played.reported)) << played.reported;
    DeleteDC(device);
    EXPECT_TRUE(ModuleIsUnlocked());
}

// Engines may leave it to their caller to report an error.
TEST(ScriptHost, FailuresOfFunctionsThatEventsCallAreTold) {
    const HDC device = CreateCompatibleDC(nullptr);
    const Script image = NewScriptImage(6, 4);
    std::vector<std::string> told;
    script_host::EventConnections connections([&](HRESULT result, const EXCEPINFO& exception) {
        EXPECT_EQ(DISP_E_EXCEPTION, result);
        told.push_back(ToUtf8(exception.bstrDescription));
    });
    const auto functions = script_host::MakeScriptObject(
        {{L"on_onrender", 1, 3, 3, [](const script_host::Arguments& given) -> script_host::Value {
              throw Error(E_FAIL, "function " + given.Text(2), {});
          }}});
    connections.Connect(image.get().As<IUnknown>(), "On_", functions);
    const auto handle = static_cast<int>(reinterpret_cast<intptr_t>(device));
    image("Render", {handle, 0, 0, 6, 4});
    EXPECT_EQ(std::vector<std::string>{"function 10"}, told);
    connections.Clear();
    image("Render", {handle, 0, 0, 6, 4});
    EXPECT_EQ(1u, told.size());
    DeleteDC(device);
}

TEST(ScriptHost, ArgumentsAreCountedIndexedAndWalkedOver) {
    constexpr char kVBScript[] = R"(
Set all = WScript.Arguments
WScript.Echo all.Count, all.Length, all.Item(1), all(0), WScript.Arguments(2)
For Each one In all
  WScript.StdOut.Write one & ";"
Next
WScript.StdOut.WriteLine
WScript.Echo WScript.ScriptName, WScript.ScriptFullName, Null, Empty
)";
    const Played played = Play("VBScript", kVBScript, {"\u00e4", "b c", ""});
    EXPECT_EQ("3 3 b c \u00e4 \r\n\u00e4;b c;;\r\nplayed.txt C:\\played.txt null \r\n", played.printed);
    EXPECT_TRUE(played.succeeded) << played.reported;
}

TEST(ScriptHost, WrongCallsOfWScriptHaveTheirErrors) {
    constexpr struct {
        const char *call, *error;
    } kRows[] = {
        {"WScript.Echo WScript", "13 "},
        {"WScript.Arguments(0)", "-2147352565 no argument 0: there are 0."},
        {"WScript.Arguments.Item -1", "-2147352565 no argument -1: there are 0."},
        {"WScript.Arguments.Item \"x\"", "13 "},
        {"WScript.Arguments = 3", "438 "},
        {"WScript.None", "438 "},
        {"WScript.CreateObject", "450 "},
        {"WScript.CreateObject \"No.Such\"",
         "-2147221005 No.Such: CO_E_CLASSSTRING (no class of this name is registered)"},
        {"WScript.CreateObject \"Orlix.ImageView\"", "-2147221231 Orlix.ImageView: This class is not built yet."},
        {"WScript.CreateObject \"Orlix.Polygon\", \"x_\"", "-2147467262 the object has no events for scripts."},
        {"WScript.ConnectObject WScript, \"x_\"", "-2147467262 the object has no events for scripts."},
        {"WScript.ConnectObject Nothing, \"x_\"", "13 "},
        {"WScript.ConnectObject WScript", "450 "},
        {"WScript.DisconnectObject 7", "13 "},
        {"WScript.Sleep -1", "-2147024809 milliseconds must not be negative."},
        {"WScript.Sleep 1E10", "6 "},
        {"WScript.Quit Null", "13 "},
        {"WScript.Quit 7", "-2147467260 the script has quit."}};
    for (const auto& row : kRows) {
        const Played played = Play("VBScript", (std::string("On Error Resume Next\n") + row.call +
                                                "\nWScript.Echo Err.Number & \" \" & Err.Description")
                                                   .c_str());
        EXPECT_TRUE(played.printed.starts_with(row.error)) << row.call << ": " << played.printed;
        EXPECT_EQ(std::string_view(row.call) == "WScript.Quit 7" ? std::vector{7} : std::vector<int>(), played.codes);
    }
    EXPECT_TRUE(ModuleIsUnlocked());
}

TEST(ScriptHost, MessagesAreDispatchedWhileAScriptSleeps) {
    static int ticks = 0;
    struct Timer {
        static void CALLBACK Tick(HWND, UINT, UINT_PTR, DWORD) { ++ticks; }
    };
    const UINT_PTR timer = SetTimer(nullptr, 0, 10, &Timer::Tick);
    const ULONGLONG begun = GetTickCount64();
    EXPECT_TRUE(Play("JScript", "WScript.Sleep(100)").succeeded);
    EXPECT_GE(GetTickCount64() - begun, 100u);
    EXPECT_GT(ticks, 0);
    KillTimer(nullptr, timer);
}

TEST(ScriptHost, ErrorsHaveTheirPlace) {
    constexpr struct {
        const char *engine, *text, *error;
    } kRows[] = {
        {"VBScript", "x = 1\nx = = 3", "C:\\played.txt(2, 5) Microsoft VBScript compilation error: "},
        {"VBScript", "\nCreateObject(\"Orlix.Image\").Invert",
         "C:\\played.txt(2, 1) Orlix.Image.1: IImageProcess::Invert: no image.\r\n"},
        {"JScript", "var x = 1;\n  x = = 3;", "C:\\played.txt(2, 7) Microsoft JScript compilation error: Syntax error"},
        {"JScript", "\n\n  none.member;", "C:\\played.txt(3, 3) Microsoft JScript runtime error: 'none' is undefined"},
        {"JScript", "function f() { return f() + 1; }\nf();",
         "C:\\played.txt(1, 16) Microsoft JScript runtime error: Out of stack space"}};
    for (const auto& row : kRows) {
        const Played played = Play(row.engine, row.text);
        EXPECT_FALSE(played.succeeded);
        EXPECT_TRUE(played.reported.starts_with(row.error)) << played.reported;
    }
    EXPECT_THROW(Play("No.Engine", ""), script_host::NoScript);
}

TEST(ScriptHost, FilesAreReadInTheirEncoding) {
    const std::filesystem::path path = std::filesystem::temp_directory_path() / L"pr\u00fcfung.JS";
    const std::string name = orlix::ToUtf8(path.native());
    const auto read = [&](std::string_view bytes) {
        std::ofstream(path, std::ios::binary) << bytes;
        return script_host::ReadScript(name);
    };
    for (const std::string_view bytes :
         {std::string_view("x\xc3\xa4"), std::string_view("\xef\xbb\xbfx\xc3\xa4"),
          std::string_view("\xff\xfex\0\xe4\0", 6), std::string_view("\xff\xfex\0\xe4\0!", 7)}) {
        const script_host::Script script = read(bytes);
        EXPECT_EQ(L"x\u00e4", script.text);
        EXPECT_EQ("JScript", script.engine);
        EXPECT_EQ(name, script.path);
    }
    const std::wstring western = read("x\xe4").text;
    EXPECT_TRUE(western.size() == 2 && western[1] != L'\ufffd') << "a code page of the system, of whatever language";
    EXPECT_EQ(L"", read("").text);
    EXPECT_THROW(read(std::string_view("x\0y", 3)), script_host::NoScript);
    std::filesystem::remove(path);
    for (const char* const missing : {"C:\\none.vbs", "C:\\none.txt", "C:\\", ""})
        EXPECT_THROW(script_host::ReadScript(missing), script_host::NoScript) << missing;
}

}  // namespace
}  // namespace orlix::testing
