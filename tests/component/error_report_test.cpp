#include "component/error_report.hpp"

#include <gtest/gtest.h>

#include <orlix/client.hpp>

#include <cstdlib>
#include <new>
#include <string>

#include "module/registry_store.hpp"

// Memory can be made short for what is allocated without exceptions.
namespace {
bool memoryIsShort = false;
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return memoryIsShort ? nullptr : std::malloc(size ? size : 1);
}
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
void* operator new[](std::size_t size) {
    void* memory = std::malloc(size ? size : 1);
    if (!memory) throw std::bad_alloc();
    return memory;
}

namespace orlix {
namespace {

constexpr CLSID kClass = {0x6a1b5f20, 0x1c2d, 0x4e3f, {0x90, 0x01, 0x10, 0x20, 0x30, 0x40, 0x50, 0x20}};
constexpr IID kInterface = {0x6a1b5f21, 0x1c2d, 0x4e3f, {0x90, 0x01, 0x10, 0x20, 0x30, 0x40, 0x50, 0x21}};
const RegistryKey kClassKey = {RegistryRoot::Classes, OLESTR("CLSID\\{6A1B5F20-1C2D-4E3F-9001-102030405020}")};

struct Reported {
    std::string description, source, helpFile;
    DWORD helpContext = 0;
    GUID guid = kInterface;
};

// Takes the thread's error information; null when there is none.
std::unique_ptr<Reported> Take() {
    ComPtr<IErrorInfo> info;
    if (GetErrorInfo(0, info.Out()) != S_OK) return nullptr;
    auto reported = std::make_unique<Reported>();
    Text text;
    info->GetDescription(text.Out());
    reported->description = text.Utf8();
    info->GetSource(text.Out());
    reported->source = text.Utf8();
    info->GetHelpFile(text.Out());
    reported->helpFile = text.Utf8();
    info->GetHelpContext(&reported->helpContext);
    info->GetGUID(&reported->guid);
    return reported;
}

class Reporter : public ::testing::Test {
protected:
    void SetUp() override { SetErrorInfo(0, nullptr); }
    void TearDown() override {
        memoryIsShort = false;
        SetErrorInfo(0, nullptr);
        OpenRegistry()->DeleteTree(kClassKey);
    }
};

TEST_F(Reporter, FillsTheErrorInformationOfTheThread) {
    EXPECT_EQ(DISP_E_EXCEPTION, ReportError(kClass, "IThing::Do: no."));
    const auto reported = Take();
    ASSERT_TRUE(reported);
    EXPECT_EQ("IThing::Do: no.", reported->description);
    EXPECT_EQ("", reported->source);
    EXPECT_EQ("", reported->helpFile);
    EXPECT_EQ(0u, reported->helpContext);
    EXPECT_TRUE(reported->guid == GUID_NULL);
    EXPECT_FALSE(Take());  // taken
}

TEST_F(Reporter, PassesInterfaceAndResultOn) {
    EXPECT_EQ(E_NOTIMPL, ReportError(kClass, "x", kInterface, E_NOTIMPL));
    EXPECT_TRUE(Take()->guid == kInterface);
    EXPECT_EQ(S_FALSE, ReportError(kClass, "x", kInterface, S_FALSE));
}

TEST_F(Reporter, NamesTheClassAsSourceWhenItIsRegistered) {
    RegistryKey name = kClassKey;
    name.path += OLESTR("\\ProgID");
    ASSERT_EQ(S_OK, OpenRegistry()->SetText(name, {}, OLESTR("Reporter.Test.1")));
    ReportError(kClass, "x");
    EXPECT_EQ("Reporter.Test.1", Take()->source);
    OpenRegistry()->DeleteTree(kClassKey);
    ReportError(kClass, "x");
    EXPECT_EQ("", Take()->source);
}

TEST_F(Reporter, ANullMessageLeavesTheErrorInformationUntouched) {
    ReportError(kClass, "before");
    EXPECT_EQ(E_POINTER, ReportError(kClass, nullptr, kInterface, E_NOTIMPL));
    EXPECT_EQ("before", Take()->description);
}

TEST_F(Reporter, ReportsMessagesOfAnyLengthInFull) {
    for (size_t length : {0u, 1u, 510u, 511u, 512u, 513u, 600u, 1023u, 1024u, 100000u}) {
        std::string message;
        for (size_t i = 0; i < length; ++i) message.push_back(static_cast<char>('a' + i % 26));
        EXPECT_EQ(DISP_E_EXCEPTION, ReportError(kClass, message.c_str()));
        EXPECT_EQ(message, Take()->description) << length;
    }
}

// 1024 bytes hold 511 characters and the terminator.
TEST_F(Reporter, NeedsMemoryForLongTextsOnlyAndReportsNothingWithoutIt) {
    const std::string onStack(511, 'x');
    const std::string onHeap(512, 'x');
    ReportError(kClass, "before");
    memoryIsShort = true;
    EXPECT_EQ(E_OUTOFMEMORY, ReportError(kClass, onHeap.c_str()));
    EXPECT_EQ(E_OUTOFMEMORY, ReportError(kClass, "x", GUID_NULL, 0, 7, onHeap.c_str()));
    EXPECT_EQ("before", Take()->description);
    EXPECT_EQ(DISP_E_EXCEPTION, ReportError(kClass, onStack.c_str(), GUID_NULL, 0, 7, onStack.c_str()));
    EXPECT_EQ(onStack, Take()->description);
}

TEST_F(Reporter, SetsHelpOnlyWhenContextAndFileAreBothGiven) {
    const struct {
        DWORD context;
        const char* file;
        bool set;
    } cases[] = {{0, nullptr, false}, {7, nullptr, false}, {0, "orlix.chm", false}, {7, "orlix.chm", true}};
    for (const auto& [context, file, set] : cases) {
        ReportError(kClass, "x", GUID_NULL, 0, context, file);
        const auto reported = Take();
        EXPECT_EQ(set ? 7u : 0u, reported->helpContext);
        EXPECT_EQ(set ? "orlix.chm" : "", reported->helpFile);
    }
}

TEST_F(Reporter, AMessageByNumberFallsBackAndMakesItsResultFromTheNumber) {
    EXPECT_EQ(static_cast<HRESULT>(0x80040000u + 4710), ReportErrorResource(kClass, 4710));
    EXPECT_EQ("Unknown Error", Take()->description);
    EXPECT_EQ(static_cast<HRESULT>(0x8004FFFFu), ReportErrorResource(kClass, 0xffff, kInterface));
    EXPECT_TRUE(Take()->guid == kInterface);
    EXPECT_EQ(E_NOTIMPL, ReportErrorResource(kClass, 4711, GUID_NULL, E_NOTIMPL));
    EXPECT_EQ("Unknown Error", Take()->description);
}

#ifndef _WIN32
TEST_F(Reporter, TakesMessagesAsUtf8AndReplacesWhatIsNot) {
    const struct {
        const char* message;
        const char16_t* text;
    } cases[] = {
        {"M\xC3\xBCller", u"M\u00FCller"},
        {"\xE2\x82\xAC 5", u"\u20AC 5"},
        {"\xF0\x9F\x94\xAC", u"\xD83D\xDD2C"},
        {"a\xFFz", u"a\uFFFDz"},
        {"a\xC3", u"a\uFFFD"},                              // cut off
        {"\xC0\xAF", u"\uFFFD\uFFFD"},                      // longer than needed
        {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},            // half a pair
        {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},  // beyond the last character
    };
    for (const auto& [message, text] : cases) {
        ReportError(kClass, message);
        ComPtr<IErrorInfo> info;
        ASSERT_EQ(S_OK, GetErrorInfo(0, info.Out()));
        Text description;
        info->GetDescription(description.Out());
        EXPECT_EQ(std::u16string(text), std::u16string(description, SysStringLen(description))) << message;
    }
}
#endif

}  // namespace
}  // namespace orlix
