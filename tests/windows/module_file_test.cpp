// The loaded module: what it tells of itself, and that it may come and go. (What the file exports, imports and carries
// is looked at by tests/checks.)
#include <gtest/gtest.h>

#include <orlix/client.hpp>

#include <string>
#include <string_view>
#include <utility>

#include "windows/module_under_test.hpp"

namespace orlix::testing {
namespace {

class ModuleFile : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(ModuleUnderTest()) << "is the module registered?"; }
};

TEST_F(ModuleFile, HasABitmapForToolboxesAndTheVersionThatItTells) {
    const auto bitmap = static_cast<HBITMAP>(
        LoadImageW(ModuleUnderTest(), MAKEINTRESOURCEW(115), IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION));
    ASSERT_TRUE(bitmap);
    BITMAP record = {};
    ASSERT_NE(0, GetObjectW(bitmap, sizeof record, &record));
    EXPECT_EQ(std::pair(16L, 15L), std::pair(record.bmWidth, record.bmHeight));
    DeleteObject(bitmap);

    const Text version = Call(CreateObject<IModuleInformation>("Orlix.Image"), &IModuleInformation::get_Version);
    const HRSRC found = FindResourceW(ModuleUnderTest(), MAKEINTRESOURCEW(1), reinterpret_cast<LPCWSTR>(RT_VERSION));
    ASSERT_TRUE(found);
    const auto* resource = static_cast<const wchar_t*>(LockResource(LoadResource(ModuleUnderTest(), found)));
    const std::wstring_view content(resource, SizeofResource(ModuleUnderTest(), found) / sizeof(wchar_t));
    EXPECT_NE(std::wstring_view::npos, content.find(static_cast<BSTR>(version)));
}

TEST_F(ModuleFile, KnowsItsOwnPath) {
    const Text path = Call(CreateObject<IModuleInformation>("Orlix.Image"), &IModuleInformation::get_ModulePath);
    EXPECT_EQ(ToUtf8(RegisteredModulePath()), path.Utf8());
}

// Wine and Windows bring the graphics library along; the probe must find it and let it go again.
TEST_F(ModuleFile, FindsTheGraphicsLibraryAndLeavesItUnloaded) {
    const auto need = EntryPoint<int(WINAPI*)()>("NeedGdiPlus");
    ASSERT_TRUE(need);
    ASSERT_FALSE(GetModuleHandleW(L"gdiplus.dll"));
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(0, need());
        EXPECT_FALSE(GetModuleHandleW(L"gdiplus.dll"));
    }
}

TEST_F(ModuleFile, MayBeLoadedAndLetGoAThousandTimes) {
    const std::wstring path = RegisteredModulePath();
    const std::wstring copy = path + L".again.dll";  // a second file, as this program holds the first
    ASSERT_TRUE(CopyFileW(path.c_str(), copy.c_str(), FALSE));
    for (int i = 0; i < 1000; ++i) {
        const HMODULE module = LoadLibraryW(copy.c_str());
        ASSERT_TRUE(module) << i;
        const auto canUnload =
            reinterpret_cast<HRESULT(WINAPI*)()>(reinterpret_cast<void*>(GetProcAddress(module, "DllCanUnloadNow")));
        ASSERT_EQ(S_OK, canUnload());
        ASSERT_TRUE(FreeLibrary(module));
    }
    EXPECT_FALSE(GetModuleHandleW(copy.c_str()));
    EXPECT_TRUE(DeleteFileW(copy.c_str()));
}

}  // namespace
}  // namespace orlix::testing
