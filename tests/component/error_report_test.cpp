#include "component/error_report.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <string>

#include "module/registry_store.hpp"
#include "support/objects.hpp"

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

class Reporter : public ::testing::Test {
protected:
    void SetUp() override { SetErrorInfo(0, nullptr); }
    void TearDown() override {
        memoryIsShort = false;
        SetErrorInfo(0, nullptr);
        OpenRegistry()->DeleteTree(kClassKey);
    }
};

TEST_F(Reporter, FillsTheErrorInformationOfTheThreadAndPassesInterfaceAndResultOn) {
    EXPECT_EQ(DISP_E_EXCEPTION, ReportError(kClass, "IThing::Do: no."));
    const auto reported = TakeErrorReport();
    ASSERT_TRUE(reported);
    EXPECT_EQ("IThing::Do: no.", reported->description);
    EXPECT_EQ("", reported->source);
    EXPECT_EQ("", reported->helpFile);
    EXPECT_EQ(0u, reported->helpContext);
    EXPECT_TRUE(reported->guid == GUID_NULL);
    EXPECT_FALSE(TakeErrorReport());  // taken
    for (const HRESULT result : {E_NOTIMPL, S_FALSE}) {
        EXPECT_EQ(result, ReportError(kClass, "x", kInterface, result));
        EXPECT_TRUE(TakeErrorReport()->guid == kInterface);
    }
}

TEST_F(Reporter, NamesTheClassAsSourceWhenItIsRegistered) {
    RegistryKey name = kClassKey;
    name.path += OLESTR("\\ProgID");
    ASSERT_EQ(S_OK, OpenRegistry()->SetText(name, {}, OLESTR("Reporter.Test.1")));
    ReportError(kClass, "x");
    EXPECT_EQ("Reporter.Test.1", TakeErrorReport()->source);
    OpenRegistry()->DeleteTree(kClassKey);
    ReportError(kClass, "x");
    EXPECT_EQ("", TakeErrorReport()->source);
}

TEST_F(Reporter, ANullMessageLeavesTheErrorInformationUntouched) {
    ReportError(kClass, "before");
    EXPECT_EQ(E_POINTER, ReportError(kClass, nullptr, kInterface, E_NOTIMPL));
    EXPECT_EQ("before", TakeErrorReport()->description);
}

TEST_F(Reporter, ReportsMessagesOfAnyLengthInFull) {
    for (size_t length : {0u, 1u, 510u, 511u, 512u, 513u, 600u, 1023u, 1024u, 100000u}) {
        std::string message;
        for (size_t i = 0; i < length; ++i) message.push_back(static_cast<char>('a' + i % 26));
        EXPECT_EQ(DISP_E_EXCEPTION, ReportError(kClass, message.c_str()));
        EXPECT_EQ(message, TakeErrorReport()->description) << length;
    }
}

// 1024 bytes hold 511 characters and the terminator.
TEST_F(Reporter, NeedsMemoryForLongTextsOnlyAndReportsNothingWithoutIt) {
    const std::string onStack(511, 'x'), onHeap(512, 'x');
    ReportError(kClass, "before");
    memoryIsShort = true;
    EXPECT_EQ(E_OUTOFMEMORY, ReportError(kClass, onHeap.c_str()));
    EXPECT_EQ(E_OUTOFMEMORY, ReportError(kClass, "x", GUID_NULL, 0, 7, onHeap.c_str()));
    EXPECT_EQ("before", TakeErrorReport()->description);
    EXPECT_EQ(DISP_E_EXCEPTION, ReportError(kClass, onStack.c_str(), GUID_NULL, 0, 7, onStack.c_str()));
    EXPECT_EQ(onStack, TakeErrorReport()->description);
}

TEST_F(Reporter, SetsHelpOnlyWhenContextAndFileAreBothGiven) {
    const struct {
        DWORD context;
        const char* file;
        bool set;
    } cases[] = {{0, nullptr, false}, {7, nullptr, false}, {0, "orlix.chm", false}, {7, "orlix.chm", true}};
    for (const auto& [context, file, set] : cases) {
        ReportError(kClass, "x", GUID_NULL, 0, context, file);
        const auto reported = TakeErrorReport();
        EXPECT_EQ(set ? 7u : 0u, reported->helpContext);
        EXPECT_EQ(set ? "orlix.chm" : "", reported->helpFile);
    }
}

TEST_F(Reporter, AMessageByNumberFallsBackAndMakesItsResultFromTheNumber) {
    EXPECT_EQ(static_cast<HRESULT>(0x80040000u + 4710), ReportErrorResource(kClass, 4710));
    EXPECT_EQ("Unknown Error", TakeErrorReport()->description);
    EXPECT_EQ(static_cast<HRESULT>(0x8004FFFFu), ReportErrorResource(kClass, 0xffff, kInterface));
    EXPECT_TRUE(TakeErrorReport()->guid == kInterface);
    EXPECT_EQ(E_NOTIMPL, ReportErrorResource(kClass, 4711, GUID_NULL, E_NOTIMPL));
    EXPECT_EQ("Unknown Error", TakeErrorReport()->description);
}

#ifndef _WIN32
TEST_F(Reporter, TakesMessagesAsUtf8AndReplacesWhatIsNot) {
    ReportError(kClass, "M\xC3\xBCller a\xFFz");
    EXPECT_EQ("M\xC3\xBCller a\xEF\xBF\xBDz", TakeErrorReport()->description);
}
#endif

}  // namespace
}  // namespace orlix
