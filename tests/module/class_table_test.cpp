#include "module/class_table.hpp"

#include <gtest/gtest.h>

#include <orlix/client.hpp>

#include "module/class_factory.hpp"
#include "module/class_rows.hpp"
#include "platform/module_lock.hpp"

namespace orlix {
namespace {

using testing::ClassFacts;
using testing::kClassFacts;

CLSID ClsidOf(const ClassFacts& facts) {
    CLSID clsid = {};
    EXPECT_EQ(S_OK, CLSIDFromString(ToUtf16(facts.clsid).c_str(), &clsid));
    return clsid;
}

TEST(ClassTable, HasItsRowsInTheOrderOfTheTypeLibrary) {
    ASSERT_EQ(std::size(kClassFacts), ClassTable().size());
    for (size_t i = 0; i < ClassTable().size(); ++i) {
        SCOPED_TRACE(kClassFacts[i].coclass);
        EXPECT_TRUE(ClsidOf(kClassFacts[i]) == *ClassTable()[i].clsid);
        EXPECT_EQ(kClassFacts[i].script, ClassTable()[i].script);
        EXPECT_EQ(kClassFacts[i].built, ClassTable()[i].create != nullptr);
    }
}

TEST(ClassFactories, AreOneObjectForEachClassWithTwoInterfaces) {
    ComPtr<IClassFactory> first;
    ComPtr<IClassFactory> second;
    ComPtr<IUnknown> identity;
    void* other = &other;
    ASSERT_EQ(S_OK, GetClassFactory(__uuidof(OrlixBitmap), __uuidof(IClassFactory), first.OutVoid()));
    ASSERT_EQ(S_OK, GetClassFactory(__uuidof(OrlixBitmap), __uuidof(IClassFactory), second.OutVoid()));
    ASSERT_EQ(S_OK, GetClassFactory(__uuidof(OrlixBitmap), __uuidof(IUnknown), identity.OutVoid()));
    EXPECT_EQ(first.get(), second.get());
    EXPECT_EQ(identity.get(), first.As<IUnknown>().get());
    EXPECT_EQ(E_NOINTERFACE, GetClassFactory(__uuidof(OrlixBitmap), __uuidof(IBitmap), &other));
    EXPECT_EQ(nullptr, other);
    EXPECT_EQ(E_POINTER, GetClassFactory(__uuidof(OrlixBitmap), __uuidof(IClassFactory), nullptr));
    EXPECT_EQ(E_POINTER, first->QueryInterface(__uuidof(IUnknown), nullptr));
}

TEST(ClassFactories, KeepTheModuleByLocksAndObjectsButNotByReferences) {
    ASSERT_FALSE(ModuleIsLocked());
    ComPtr<IClassFactory> factory;
    ASSERT_EQ(S_OK, GetClassFactory(__uuidof(OrlixBitmap), __uuidof(IClassFactory), factory.OutVoid()));
    EXPECT_FALSE(ModuleIsLocked());

    for (const BOOL lock : {TRUE, TRUE, FALSE}) EXPECT_EQ(S_OK, factory->LockServer(lock));
    EXPECT_TRUE(ModuleIsLocked());
    EXPECT_EQ(S_OK, factory->LockServer(FALSE));
    EXPECT_FALSE(ModuleIsLocked());

    ComPtr<IBitmap> bitmap;
    ASSERT_EQ(S_OK, factory->CreateInstance(nullptr, __uuidof(IBitmap), bitmap.OutVoid()));
    EXPECT_TRUE(ModuleIsLocked());
    EXPECT_EQ(E_UNEXPECTED, factory->LockServer(FALSE)) << "one too many does not unlock for others";
    EXPECT_TRUE(ModuleIsLocked());
    bitmap = nullptr;
    EXPECT_FALSE(ModuleIsLocked());
}

}  // namespace
}  // namespace orlix
