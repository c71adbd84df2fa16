// All classes in the store of the process. On Windows the module's own file is tested instead: tests/windows.
#ifndef _WIN32

#include "module/registration.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "component/failure.hpp"
#include "module/class_rows.hpp"
#include "module/registration_script.hpp"
#include "module/registry_listing.hpp"
#include "platform/process_registry.hpp"

namespace orlix {
namespace {

using testing::ClassFacts;
using testing::kClassFacts;
using testing::ListRegistry;
using Lines = std::vector<std::string>;

const RegistryKey kClasses = {RegistryRoot::Classes, {}};
const WideString kModule = u"/opt/orlix library/liborlix.so";

Lines AllLines() {
    Lines lines = {"CLSID"};
    for (const ClassFacts& facts : kClassFacts) {
        const Lines own = testing::RegisteredLines(facts, "/opt/orlix library/liborlix.so");
        lines.insert(lines.end(), own.begin(), own.end());
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

class Registration : public ::testing::Test {
protected:
    void SetUp() override { ProcessRegistry::OfThisProcess().DeleteTree(u"HKCR"); }
    void TearDown() override { ProcessRegistry::OfThisProcess().DeleteTree(u"HKCR"); }
    std::unique_ptr<RegistryStore> store = OpenRegistry();
};

TEST_F(Registration, WritesExactlyTheKeysOfTheFourteenClasses) {
    RegisterClasses(*store, kModule);
    EXPECT_EQ(AllLines(), ListRegistry(kClasses));
}

TEST_F(Registration, RepeatedItRepairsWhatWasChanged) {
    RegisterClasses(*store, kModule);
    const WideString view = u"CLSID\\{C35E3781-66F8-4DEE-B487-451882355339}";
    store->SetText({RegistryRoot::Classes, view + u"\\Control"}, u"stale", u"x");
    store->DeleteTree({RegistryRoot::Classes, view + u"\\verb"});
    store->SetText({RegistryRoot::Classes, u"Orlix.Image\\CurVer"}, u"", u"Orlix.Image.0");
    RegisterClasses(*store, kModule);
    EXPECT_EQ(AllLines(), ListRegistry(kClasses));
}

TEST_F(Registration, UnregisteringLeavesOnlyWhatWasThereBefore) {
    store->SetText({RegistryRoot::Classes, u"CLSID\\{11111111-2222-3333-4444-555555555555}\\ProgID"}, u"", u"Other.1");
    store->SetText({RegistryRoot::Classes, u"Orlix.Polygon.2"}, u"", u"a later version");
    store->SetText({RegistryRoot::Classes, u"Orlix.Bitmap.1\\shell"}, u"", u"somebody's");
    store->SetText({RegistryRoot::Classes, u"TypeLib\\{9DE17042-4E68-4807-B2EE-9607EC37664C}\\2.0"}, u"", u"x");
    const Lines before = ListRegistry(kClasses);
    RegisterClasses(*store, kModule);
    UnregisterClasses(*store, kModule);
    EXPECT_EQ(before, ListRegistry(kClasses));
    UnregisterClasses(*store, kModule);
    EXPECT_EQ(before, ListRegistry(kClasses));
}

TEST_F(Registration, TheStructuringElementKeepsItsLowerCaseName) {
    RegisterClasses(*store, kModule);
    const Lines lines = ListRegistry(kClasses);
    EXPECT_THAT(lines, ::testing::Contains("orlix.StructuringElement.1"));
    EXPECT_THAT(lines, ::testing::Contains("orlix.StructuringElement"));
    EXPECT_THAT(lines, ::testing::Not(::testing::Contains("Orlix.StructuringElement.1")));
}

// A registry that takes a number of new keys and then none.
class FullStore final : public RegistryStore {
public:
    FullStore(RegistryStore& store, int keys) : store_(store), left_(keys) {}
    static constexpr HRESULT kDiskFull = static_cast<HRESULT>(0x80070070);
    HRESULT CreateKey(const RegistryKey& key) override { return left_-- > 0 ? store_.CreateKey(key) : kDiskFull; }
    HRESULT SetText(const RegistryKey& key, const WideString& name, const WideString& text) override {
        return store_.SetText(key, name, text);
    }
    HRESULT SetNumber(const RegistryKey& key, const WideString& name, uint32_t number) override {
        return store_.SetNumber(key, name, number);
    }
    HRESULT DeleteValue(const RegistryKey& key, const WideString& name) override {
        return store_.DeleteValue(key, name);
    }
    HRESULT DeleteTree(const RegistryKey& key) override { return store_.DeleteTree(key); }
    HRESULT DeleteIfEmpty(const RegistryKey& key) override { return store_.DeleteIfEmpty(key); }

private:
    RegistryStore& store_;
    int left_;
};

TEST_F(Registration, AfterAFailureNothingIsLeftRegistered) {
    for (int keys : {0, 1, 5, 20, 100}) {
        SCOPED_TRACE(keys);
        FullStore full(*store, keys);
        try {
            RegisterClasses(full, kModule);
            ADD_FAILURE() << "no failure";
        } catch (const FailedResult& failed) {
            EXPECT_EQ(FullStore::kDiskFull, failed.result());
        }
        const Lines left = ListRegistry(kClasses);
        EXPECT_TRUE(left.empty() || left == Lines{"CLSID"}) << ::testing::PrintToString(left);
    }
}

TEST_F(Registration, OnlyTheScriptsOfTheTableAreEmbedded) {
    for (int number = 0; number < 200; ++number) {
        const bool known = std::any_of(std::begin(kClassFacts), std::end(kClassFacts),
                                       [&](const ClassFacts& facts) { return facts.script == number; });
        if (known)
            EXPECT_NO_THROW(RegistrationScript(RegistrationText(static_cast<WORD>(number)), kModule)) << number;
        else
            EXPECT_THROW(RegistrationText(static_cast<WORD>(number)), std::out_of_range) << number;
    }
}

TEST_F(Registration, TheNameOfAClassIsFoundByItsIdentifier) {
    LPOLESTR name = nullptr;
    EXPECT_EQ(REGDB_E_CLASSNOTREG, ProgIDFromCLSID(__uuidof(OrlixHistogram), &name));
    EXPECT_EQ(nullptr, name);
    RegisterClasses(*store, kModule);
    ASSERT_EQ(S_OK, ProgIDFromCLSID(__uuidof(OrlixHistogram), &name));
    EXPECT_EQ(WideString(u"Orlix.Histogram.1"), name);
    CoTaskMemFree(name);
    ASSERT_EQ(S_OK, ProgIDFromCLSID(__uuidof(OrlixStructuringElement), &name));
    EXPECT_EQ(WideString(u"orlix.StructuringElement.1"), name);
    CoTaskMemFree(name);
    EXPECT_EQ(E_INVALIDARG, ProgIDFromCLSID(__uuidof(OrlixHistogram), nullptr));
}

}  // namespace
}  // namespace orlix

#endif
