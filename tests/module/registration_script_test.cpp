#include "module/registration_script.hpp"

#include <gtest/gtest.h>

#include <string>

#include "module/failing_store.hpp"
#include "module/registry_listing.hpp"

namespace orlix {
namespace {

using testing::ListRegistry;
using Lines = std::vector<std::string>;

const RegistryKey kHome = {RegistryRoot::CurrentUser, OLESTR("Software\\Registration script test")};
const WideString kModule = OLESTR("C:\\Program Files\\It's\\100% orlix.dll");

RegistryKey Below(const WideString& path) { return {kHome.root, kHome.path + OLESTR('\\') + path}; }

// Scripts below one key of the current user.
std::string At(const std::string& keys) {
    return "HKCU { NoRemove Software { NoRemove 'Registration script test' {\n" + keys + "\n} } }";
}

class RegistrationScripts : public ::testing::Test {
protected:
    void SetUp() override { store->DeleteTree(kHome); }
    void TearDown() override { store->DeleteTree(kHome); }

    void Add(const std::string& keys) { RegistrationScript(At(keys), kModule).Add(*store); }
    void Remove(const std::string& keys) { RegistrationScript(At(keys), kModule).Remove(*store); }
    Lines Left() const { return ListRegistry(kHome); }

    std::unique_ptr<RegistryStore> store = OpenRegistry();
};

// Scripts one after the other, "+" to add and "-" to remove, and what is there at the end.
TEST_F(RegistrationScripts, LeaveWhatTheyAddAndTakeAwayWhatIsTheirs) {
    const std::string
        twice = "+A = s 'x' { val v = s 'y' ForceRemove B { C } }",
        nested = "A = s 'x' { B = s 'y' { C { D = s 'z' } val n = d 1 } E } ForceRemove F { G { H } val v = s 'x' }",
        own = "A { Own } B { Own { val own = s 'z' } } C { Own }",
        marked = "NoRemove Shared = s 'text' { NoRemove val kept = s 'x' val own = s 'y' Own = s 'z' }";
    const struct {
        const char* rule;
        std::vector<std::string> scripts;
        Lines left;
    } cases[] = {
        {"keys, default values and named values",
         {R"(+Shape = s 'A shape'
             {
                 val Sides = d 3
                 val Limit = d 4294967295
                 val Mask = d 0x1F
                 val 'Full name' = s 'A plane shape'
                 Corner { Angle = s '60' }
                 Empty
             })"},
         {"Shape", "Shape : Full name = A plane shape", "Shape : Limit = #4294967295", "Shape : Mask = #31",
          "Shape : Sides = #3", "Shape = A shape", "Shape\\Corner", "Shape\\Corner\\Angle", "Shape\\Corner\\Angle = 60",
          "Shape\\Empty"}},
        {"words may be quoted, and placeholders stand for the module",
         {"+'Two words' = s 'it''s %module%, 115' '{' = s '' 'val' = s 'NoRemove' Rate%% = s '50 %%'"},
         {"Rate%", "Rate% = 50 %", "Two words", "Two words = it's C:\\Program Files\\It's\\100% orlix.dll, 115", "val",
          "val = NoRemove", "{", "{ = "}},
        {"adding twice is adding once", {twice, twice}, {"A", "A : v = y", "A = x", "A\\B", "A\\B\\C"}},
        {"adding overwrites values and keeps what it does not name",
         {"+A = s 'old' { val v = s 'old' val other = s 'other' Foreign }", "+A = s 'new' { val v = d 1 }"},
         {"A", "A : other = other", "A : v = #1", "A = new", "A\\Foreign"}},
        {"ForceRemove adds its key anew",
         {"+A { Stale { Deep = s 'x' } val stale = s 'y' }", "+ForceRemove A = s 'fresh' { New }"},
         {"A", "A = fresh", "A\\New"}},
        {"Delete removes a tree when adding and does nothing when removing",
         {"+A { B { C } } D", "+Delete A", "-Delete D"},
         {"D"}},
        {"removing takes away what adding wrote", {"+" + nested, "-" + nested}, {}},
        {"removing leaves everything foreign",
         {"+A { Foreign { Deep = s 'x' } } B { val foreign = s 'y' } C = s 'default' D", "+" + own, "-" + own},
         {"A", "A\\Foreign", "A\\Foreign\\Deep", "A\\Foreign\\Deep = x", "B", "B : foreign = y", "C", "C = default",
          "D"}},
        {"removing a tree by force takes foreign keys below it too",
         {"+ForceRemove A { Own }", "+A { Foreign { Deep } }", "-ForceRemove A { Own }"},
         {}},
        {"keys and values marked so are kept, what is below them is not",
         {"+" + marked, "-" + marked},
         {"Shared", "Shared : kept = x", "Shared = text"}},
        {"a key with a kept value stays",
         {"+A { NoRemove val kept = d 5 }", "-A { NoRemove val kept = d 5 }"},
         {"A", "A : kept = #5"}},
        {"removing what is not there", {"-A = s 'x' { B { val v = s 'y' } } ForceRemove C { D }"}, {}},
        {"the case of names does not count",
         {"+Orlix.Shape.1 { CLSID = s 'x' }", "-orlix.shape.1 { clsid = s 'x' }"},
         {}},
        {"names that begin alike are kept apart",
         {"+A { B } 'A B' { C } AB 'A-' { D }", "-ForceRemove A"},
         {"A B", "A B\\C", "A-", "A-\\D", "AB"}},
    };
    for (const auto& [rule, scripts, left] : cases) {
        SCOPED_TRACE(rule);
        store->DeleteTree(kHome);
        for (const std::string& script : scripts) script[0] == '+' ? Add(script.substr(1)) : Remove(script.substr(1));
        EXPECT_EQ(left, Left());
    }
}

TEST_F(RegistrationScripts, MayUseSeveralRootsInAnyCaseOfTheKeywordsAndMayBeEmpty) {
    RegistrationScript(
        "hkcu { noremove Software { NOREMOVE 'Registration script test' { A = S 'x' { VAL b = D 7 } } } }\n" + At("B"),
        kModule)
        .Add(*store);
    const Lines both = {"A", "A : b = #7", "A = x", "B"};
    EXPECT_EQ(both, Left());
    for (const char* empty : {"", " \r\n\t ", "HKCR { }"}) {
        const RegistrationScript script(empty, kModule);
        script.Add(*store);
        script.Remove(*store);
    }
    EXPECT_EQ(both, Left());
}

TEST_F(RegistrationScripts, AnErrorNamesItsLineAndNothingIsWritten) {
    std::string deep = "HKCU\n{";
    for (int i = 0; i < 5000; ++i) deep += " a {";
    const struct {
        std::string script;
        int line;
        const char* what;
    } cases[] = {
        {"HKXX { }", 1, "a root is missing"},
        {"'HKCR' { }", 1, "a root is missing"},
        {"\n\nHKCR", 3, "an opening brace is missing"},
        {"HKCR A", 1, "an opening brace is missing"},
        {"HKCR\n{\n A\n", 4, "a closing brace is missing"},
        {"HKCR { } }", 1, "a root is missing"},
        {"HKCR {\n A = }", 2, "the type of a value is neither s nor d"},
        {"HKCR {\n A = b 'x' }", 2, "the type of a value is neither s nor d"},
        {"HKCR {\n A = s", 2, "a value is missing"},
        {"HKCR {\n A = d x }", 2, "a number is not one below 2^32"},
        {"HKCR {\n A = d 4294967296 }", 2, "a number is not one below 2^32"},
        {"HKCR {\n A = d -1 }", 2, "a number is not one below 2^32"},
        {"HKCR {\n A = d 0x }", 2, "a number is not one below 2^32"},
        {"HKCR {\n A = d '' }", 2, "a number is not one below 2^32"},
        {"HKCR {\n A = d", 2, "a number is missing"},
        {"HKCR {\n\n val v = s 'x' }", 3, "a root takes no values"},
        {"HKCR { A {\n val = s 'x' } }", 2, "the name of a value is missing"},
        {"HKCR { A {\n val v s 'x' } }", 2, "an equals sign is missing"},
        {"HKCR { A {\n ForceRemove val v = s 'x' } }", 2, "the name of a key is missing"},
        {"HKCR { NoRemove\n ForceRemove A }", 2, "the name of a key is missing"},
        {"HKCR { Delete\n }", 2, "the name of a key is missing"},
        {"HKCR { Delete A\n { B } }", 2, "the name of a key is missing"},
        {"HKCR { Delete A\n = s 'x' }", 2, "the name of a key is missing"},
        {"HKCR {\n {", 2, "the name of a key is missing"},
        {"HKCR {\n '' = s 'x' }", 2, "the name of a key is empty"},
        {"HKCR {\n A\\B }", 2, "the name of a key holds a backslash"},
        {"HKCR { %MODULE% }", 1, "the name of a key holds a backslash"},
        {"HKCR {\n A = s 'open\n }", 2, "a quote is not closed"},
        {"HKCR {\n A = s 'x'y }", 2, "no blank after a quote"},
        {"HKCR { A =\n s '%MODULES%' }", 2, "a placeholder is unknown"},
        {"HKCR {\n A = s '50 %' }", 2, "a percent sign is not closed"},
        {"HKCR {\n M\xC3\xBCller }", 2, "a character is not ASCII"},
        {std::string("HKCR {\n A\0 }", 12), 2, "a character is not ASCII"},
        {deep, 2, "too many braces are open"},
    };
    const Lines before = ListRegistry({RegistryRoot::CurrentUser, {}});
    for (const auto& [script, line, what] : cases) {
        SCOPED_TRACE(script.substr(0, 60));
        try {
            RegistrationScript(script, kModule).Add(*store);
            ADD_FAILURE() << "no error";
        } catch (const ScriptError& error) {
            EXPECT_EQ(line, error.line());
            EXPECT_EQ("line " + std::to_string(line) + ": " + what, error.what());
        }
    }
    EXPECT_EQ(before, ListRegistry({RegistryRoot::CurrentUser, {}}));
}

TEST_F(RegistrationScripts, ThePositionOfAScriptThatEndsEarlyIsItsLastLine) {
    const std::string whole = "HKCU\n{\n A = s 'x'\n {\n  val v = d 1\n }\n}";
    for (size_t length = 1; length < whole.size(); ++length) {
        const std::string_view part = std::string_view(whole).substr(0, length);
        try {
            const RegistrationScript script(part, kModule);
            ADD_FAILURE() << "no error for " << part;
        } catch (const ScriptError& error) {
            EXPECT_LE(1, error.line());
            EXPECT_GE(1 + std::count(part.begin(), part.end(), '\n'), error.line());
        }
    }
}

TEST_F(RegistrationScripts, AFailureOfTheStoreComesBackAsItsResult) {
    using testing::FailingStore;
    const auto failingAt = [&](int call) { return FailingStore(*store, [call](bool) mutable { return --call == 0; }); };
    const RegistrationScript script(At("A = s 'x' { val n = d 1 ForceRemove B }"), kModule);
    constexpr int kCallsOfAdding = 7;  // Software, test key, A, its text, its number, B's tree, B
    for (int call = 1; call <= kCallsOfAdding + 1; ++call) {
        FailingStore failing = failingAt(call);
        EXPECT_EQ(call > kCallsOfAdding ? S_OK : failing.kDiskFull, testing::ResultOf([&] { script.Add(failing); }));
    }
    script.Remove(*store);
    // Removing goes on: the value of B, which is removed first, stays.
    const RegistrationScript two(At("A { val v = s 'x' } B { val v = s 'y' }"), kModule);
    two.Add(*store);
    FailingStore failing = failingAt(1);
    EXPECT_EQ(failing.kDiskFull, testing::ResultOf([&] { two.Remove(failing); }));
    EXPECT_EQ((Lines{"B", "B : v = y"}), Left());
}

TEST_F(RegistrationScripts, TheStoreTellsWhetherThereWasSomethingToDelete) {
    EXPECT_EQ(S_FALSE, store->DeleteTree(Below(OLESTR("A"))));
    EXPECT_EQ(S_FALSE, store->DeleteIfEmpty(Below(OLESTR("A"))));
    EXPECT_EQ(S_FALSE, store->DeleteValue(Below(OLESTR("A")), OLESTR("v")));
    EXPECT_EQ(S_OK, store->SetText(Below(OLESTR("A\\B")), OLESTR("v"), OLESTR("x")));
    EXPECT_EQ(S_FALSE, store->DeleteIfEmpty(Below(OLESTR("A"))));
    EXPECT_EQ(S_FALSE, store->DeleteIfEmpty(Below(OLESTR("A\\B"))));
    EXPECT_EQ(S_FALSE, store->DeleteValue(Below(OLESTR("A\\B")), OLESTR("w")));
    EXPECT_EQ(S_OK, store->DeleteValue(Below(OLESTR("a\\b")), OLESTR("V")));
    EXPECT_EQ(S_OK, store->DeleteIfEmpty(Below(OLESTR("A\\B"))));
    EXPECT_EQ(S_OK, store->DeleteTree(Below(OLESTR("A"))));
    EXPECT_EQ(S_OK, store->CreateKey(Below(OLESTR("A"))));
    EXPECT_EQ(S_OK, store->CreateKey(Below(OLESTR("a"))));
    EXPECT_EQ((Lines{"A"}), Left());
}

}  // namespace
}  // namespace orlix
