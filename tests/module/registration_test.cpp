// All classes in the store of the process. On Windows the module's own file is tested instead: tests/windows.
#ifndef _WIN32

#include "module/registration.hpp"

#include <gtest/gtest.h>

#include <orlix/client.hpp>

#include <algorithm>

#include "module/class_rows.hpp"
#include "module/failing_store.hpp"
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
const std::string kPath = "/opt/orlix library/liborlix.so";
const WideString kModuleFile = ToUtf16(kPath);

class Registration : public ::testing::Test {
protected:
    void SetUp() override { ProcessRegistry::OfThisProcess().DeleteTree(u"HKCR"); }
    void TearDown() override { ProcessRegistry::OfThisProcess().DeleteTree(u"HKCR"); }
    std::unique_ptr<RegistryStore> store = OpenRegistry();
};

TEST_F(Registration, WritesExactlyTheKeysOfTheFourteenClassesAndRepairsThemWhenRepeated) {
    RegisterClasses(*store, kModuleFile);
    EXPECT_EQ(testing::AllRegisteredLines(kPath), ListRegistry(kClasses));
    const WideString view = u"CLSID\\{C35E3781-66F8-4DEE-B487-451882355339}";
    store->SetText({RegistryRoot::Classes, view + u"\\Control"}, u"stale", u"x");
    store->DeleteTree({RegistryRoot::Classes, view + u"\\verb"});
    store->SetText({RegistryRoot::Classes, u"Orlix.Image\\CurVer"}, u"", u"Orlix.Image.0");
    RegisterClasses(*store, kModuleFile);
    EXPECT_EQ(testing::AllRegisteredLines(kPath), ListRegistry(kClasses));
}

TEST_F(Registration, UnregisteringLeavesOnlyWhatWasThereBefore) {
    store->SetText({RegistryRoot::Classes, u"CLSID\\{11111111-2222-3333-4444-555555555555}\\ProgID"}, u"", u"Other.1");
    store->SetText({RegistryRoot::Classes, u"Orlix.Polygon.2"}, u"", u"a later version");
    store->SetText({RegistryRoot::Classes, u"Orlix.Bitmap.1\\shell"}, u"", u"somebody's");
    store->SetText({RegistryRoot::Classes, u"TypeLib\\{9DE17042-4E68-4807-B2EE-9607EC37664C}\\2.0"}, u"", u"x");
    const Lines before = ListRegistry(kClasses);
    RegisterClasses(*store, kModuleFile);
    UnregisterClasses(*store, kModuleFile);
    EXPECT_EQ(before, ListRegistry(kClasses));
    UnregisterClasses(*store, kModuleFile);
    EXPECT_EQ(before, ListRegistry(kClasses));
}

TEST_F(Registration, AfterAFailureNothingIsLeftRegistered) {
    for (int keys : {0, 1, 5, 20, 100}) {
        SCOPED_TRACE(keys);
        testing::FailingStore full(*store, [left = keys](bool creates) mutable { return creates && left-- <= 0; });
        EXPECT_EQ(full.kDiskFull, testing::ResultOf([&] { RegisterClasses(full, kModuleFile); }));
        const Lines left = ListRegistry(kClasses);
        EXPECT_TRUE(left.empty() || left == Lines{"CLSID"}) << ::testing::PrintToString(left);
    }
}

TEST_F(Registration, OnlyTheScriptsOfTheTableAreEmbedded) {
    for (WORD number = 0; number < 200; ++number) {
        const auto ofIt = [&](const ClassFacts& facts) { return facts.script == number; };
        if (std::any_of(std::begin(kClassFacts), std::end(kClassFacts), ofIt))
            EXPECT_NO_THROW(RegistrationScript(RegistrationText(number), kModuleFile)) << number;
        else
            EXPECT_THROW(RegistrationText(number), std::out_of_range) << number;
    }
}

TEST_F(Registration, TheNameOfAClassIsFoundByItsIdentifier) {
    LPOLESTR name = nullptr;
    EXPECT_EQ(REGDB_E_CLASSNOTREG, ProgIDFromCLSID(__uuidof(OrlixHistogram), &name));
    EXPECT_EQ(nullptr, name);
    RegisterClasses(*store, kModuleFile);
    for (const auto& [id, wanted] : {std::pair<CLSID, WideString>{__uuidof(OrlixHistogram), u"Orlix.Histogram.1"},
                                     {__uuidof(OrlixStructuringElement), u"orlix.StructuringElement.1"}}) {
        ASSERT_EQ(S_OK, ProgIDFromCLSID(id, &name));
        EXPECT_EQ(wanted, name);
        CoTaskMemFree(name);
    }
    EXPECT_EQ(E_INVALIDARG, ProgIDFromCLSID(__uuidof(OrlixHistogram), nullptr));
}

}  // namespace
}  // namespace orlix

#endif
