// The module as a file: what it exports, imports and carries, and its entry points.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <orlix/client.hpp>

#include <algorithm>
#include <cctype>
#include <set>
#include <string>
#include <vector>

#include "module/class_rows.hpp"
#include "windows/module_under_test.hpp"

namespace orlix::testing {
namespace {

// A loaded module's headers and tables.
class LoadedFile {
public:
    explicit LoadedFile(HMODULE module) : base_(reinterpret_cast<const BYTE*>(module)) {}

    std::vector<std::string> Exports() const {
        std::vector<std::string> names;
        const auto* table = Table<IMAGE_EXPORT_DIRECTORY>(IMAGE_DIRECTORY_ENTRY_EXPORT);
        const auto* offsets = reinterpret_cast<const DWORD*>(base_ + table->AddressOfNames);
        for (DWORD i = 0; i < table->NumberOfNames; ++i)
            names.push_back(reinterpret_cast<const char*>(base_ + offsets[i]));
        return names;
    }
    std::vector<std::string> Imports() const {
        std::vector<std::string> names;
        const auto* table = Table<IMAGE_IMPORT_DESCRIPTOR>(IMAGE_DIRECTORY_ENTRY_IMPORT);
        for (; table->Name; ++table) names.push_back(reinterpret_cast<const char*>(base_ + table->Name));
        return names;
    }

private:
    template <class Entry>
    const Entry* Table(int directory) const {
        const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base_);
        const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base_ + dos->e_lfanew);
        return reinterpret_cast<const Entry*>(base_ + headers->OptionalHeader.DataDirectory[directory].VirtualAddress);
    }
    const BYTE* base_;
};

std::wstring_view Resource(int number, LPCWSTR type) {
    const HRSRC found = FindResourceW(ModuleUnderTest(), MAKEINTRESOURCEW(number), type);
    if (!found) return {};
    return {static_cast<const wchar_t*>(LockResource(LoadResource(ModuleUnderTest(), found))),
            SizeofResource(ModuleUnderTest(), found) / sizeof(wchar_t)};
}

class ModuleFile : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(ModuleUnderTest()) << "is the module registered?"; }
};

TEST_F(ModuleFile, ExportsTheFiveEntryPointsUnderTheirPlainNames) {
    EXPECT_THAT(LoadedFile(ModuleUnderTest()).Exports(),
                ::testing::UnorderedElementsAre("DllCanUnloadNow", "DllGetClassObject", "DllRegisterServer",
                                                "DllUnregisterServer", "NeedGdiPlus"));
}

TEST_F(ModuleFile, ImportsLibrariesOfTheSystemOnly) {
    const std::set<std::string> system = {"advapi32.dll", "gdi32.dll", "kernel32.dll", "msvcrt.dll",
                                          "msvfw32.dll",  "ole32.dll", "oleaut32.dll", "user32.dll"};
    for (std::string name : LoadedFile(ModuleUnderTest()).Imports()) {
        std::transform(name.begin(), name.end(), name.begin(),
                       [](char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); });
        EXPECT_TRUE(system.contains(name)) << name;
    }
}

TEST_F(ModuleFile, CarriesScriptsTypeLibraryBitmapAndVersion) {
    for (const ClassFacts& facts : kClassFacts)
        EXPECT_FALSE(Resource(facts.script, L"REGISTRY").empty()) << facts.script;
    EXPECT_FALSE(Resource(1, L"TYPELIB").empty());

    const auto bitmap = static_cast<HBITMAP>(
        LoadImageW(ModuleUnderTest(), MAKEINTRESOURCEW(115), IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION));
    ASSERT_TRUE(bitmap);
    BITMAP record = {};
    ASSERT_NE(0, GetObjectW(bitmap, sizeof record, &record));
    EXPECT_EQ(16, record.bmWidth);
    EXPECT_EQ(15, record.bmHeight);
    DeleteObject(bitmap);

    const auto information = CreateObject<IModuleInformation>("Orlix.Image");
    Text version;
    ASSERT_EQ(S_OK, information->get_Version(version.Out()));
    EXPECT_NE(std::wstring_view::npos,
              Resource(1, reinterpret_cast<LPCWSTR>(RT_VERSION)).find(static_cast<BSTR>(version)));
}

TEST_F(ModuleFile, KnowsItsOwnPath) {
    const auto information = CreateObject<IModuleInformation>("Orlix.Image");
    Text path;
    ASSERT_EQ(S_OK, information->get_ModulePath(path.Out()));
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
