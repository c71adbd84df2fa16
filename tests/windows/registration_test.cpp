// What the module's registration writes and takes away. It runs on a key of its own in the place of the classes' root.
#include <gtest/gtest.h>

#include <orlix/client.hpp>

#include <algorithm>
#include <string>
#include <vector>

#include "module/class_rows.hpp"
#include "module/registry_listing.hpp"
#include "windows/module_under_test.hpp"

namespace orlix::testing {
namespace {

using Lines = std::vector<std::string>;
using RegistrationFunction = HRESULT(WINAPI*)();

constexpr wchar_t kScratch[] = L"Software\\Orlix registration test";

class ModuleRegistration : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(ModuleUnderTest()) << "is the module registered?";
        path_ = ToUtf8(RegisteredModulePath());
        register_ = EntryPoint<RegistrationFunction>("DllRegisterServer");
        unregister_ = EntryPoint<RegistrationFunction>("DllUnregisterServer");
        ASSERT_TRUE(register_ && unregister_);
        RegDeleteTreeW(HKEY_CURRENT_USER, kScratch);
        ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(HKEY_CURRENT_USER, kScratch, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                                                 &scratch_, nullptr));
        ASSERT_EQ(ERROR_SUCCESS, RegOverridePredefKey(HKEY_CLASSES_ROOT, scratch_));
        // Roots that every system has; what is registered below them goes, they stay.
        for (const wchar_t* root : {L"CLSID", L"TypeLib", L"Interface"}) Put(root, L"");
    }
    void TearDown() override {
        RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr);
        RegCloseKey(scratch_);
        RegDeleteTreeW(HKEY_CURRENT_USER, kScratch);
    }

    static void Put(const wchar_t* key, const std::wstring& text) {
        HKEY open = nullptr;
        ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyW(HKEY_CLASSES_ROOT, key, &open));
        if (!text.empty())
            RegSetValueExW(open, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                           static_cast<DWORD>(2 * (text.size() + 1)));
        RegCloseKey(open);
    }

    static Lines All() { return ListRegistry({RegistryRoot::Classes, {}}); }

    // Without what belongs to the type library.
    static Lines Classes() {
        Lines lines = All();
        std::erase_if(lines, [](const std::string& line) {
            return line.starts_with("TypeLib") || line.starts_with("Interface");
        });
        return lines;
    }

    std::string path_;
    RegistrationFunction register_ = nullptr;
    RegistrationFunction unregister_ = nullptr;
    HKEY scratch_ = nullptr;
};

TEST_F(ModuleRegistration, WritesExactlyTheKeysOfTheFourteenClassesAndOnceMoreTheSame) {
    ASSERT_EQ(S_OK, register_());
    EXPECT_EQ(AllRegisteredLines(path_), Classes());
    const Lines once = All();
    ASSERT_EQ(S_OK, register_());
    EXPECT_EQ(once, All());
}

TEST_F(ModuleRegistration, RegistersTheTypeLibraryForThisBitWidth) {
    ASSERT_EQ(S_OK, register_());
    const std::string library = std::string("TypeLib\\") + kTypeLibraryId + "\\1.0";
    const Lines all = All();
    for (const std::string& line : {library + " = Orlix image processing library",
                                    library + "\\0\\" + (sizeof(void*) == 8 ? "win64" : "win32") + " = " + path_})
        EXPECT_TRUE(std::find(all.begin(), all.end(), line) != all.end()) << line;
}

TEST_F(ModuleRegistration, UnregisteringTakesAwayWhatRegisteringWroteAndNothingElse) {
    Put(L"CLSID\\{11111111-2222-3333-4444-555555555555}\\ProgID", L"Other.1");
    Put(L"Orlix.Polygon.2", L"a later version");
    Put(L"Orlix.Bitmap.1\\shell", L"somebody's");
    Put(L"TypeLib\\{11111111-2222-3333-4444-555555555555}\\1.0", L"Other library");
    const Lines before = All();
    ASSERT_EQ(S_OK, register_());
    EXPECT_NE(before, All());
    ASSERT_EQ(S_OK, unregister_());
    EXPECT_EQ(before, All());
    EXPECT_EQ(S_OK, unregister_());  // nothing left to do is no failure
    EXPECT_EQ(before, All());
}

// Below a key that lives only until the next start of the system no lasting key can be made.
TEST_F(ModuleRegistration, AKeyThatCannotBeWrittenIsTheResultAndNothingStays) {
    ASSERT_EQ(ERROR_SUCCESS, RegDeleteKeyW(HKEY_CLASSES_ROOT, L"CLSID"));
    HKEY passing = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(HKEY_CLASSES_ROOT, L"CLSID", 0, nullptr, REG_OPTION_VOLATILE,
                                             KEY_ALL_ACCESS, nullptr, &passing, nullptr));
    RegCloseKey(passing);
    const Lines before = All();
    EXPECT_EQ(HRESULT_FROM_WIN32(ERROR_CHILD_MUST_BE_VOLATILE), register_());
    EXPECT_EQ(before, All());
}

}  // namespace
}  // namespace orlix::testing
