#include "component/object.hpp"

#include <gtest/gtest.h>

#include <orlix/counted_object.hpp>

#include <functional>
#include <new>
#include <stdexcept>
#include <vector>

// Two independent interfaces, one of them derived, and a class of the contract's shape.
struct ITestBase : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Base(LONG* value) = 0;
};
struct ITestDerived : ITestBase {
    virtual HRESULT STDMETHODCALLTYPE Derived(LONG* value) = 0;
};
struct ITestOther : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Other(LONG* value) = 0;
};
struct ITestUnanswered : IUnknown {};
class TestClass;
__CRT_UUID_DECL(ITestBase, 0x6a1b5f01, 0x1c2d, 0x4e3f, 0x90, 0x01, 0x10, 0x20, 0x30, 0x40, 0x50, 0x01)
__CRT_UUID_DECL(ITestDerived, 0x6a1b5f02, 0x1c2d, 0x4e3f, 0x90, 0x01, 0x10, 0x20, 0x30, 0x40, 0x50, 0x02)
__CRT_UUID_DECL(ITestOther, 0x6a1b5f03, 0x1c2d, 0x4e3f, 0x90, 0x01, 0x10, 0x20, 0x30, 0x40, 0x50, 0x03)
__CRT_UUID_DECL(ITestUnanswered, 0x6a1b5f04, 0x1c2d, 0x4e3f, 0x90, 0x01, 0x10, 0x20, 0x30, 0x40, 0x50, 0x04)
__CRT_UUID_DECL(TestClass, 0x6a1b5f05, 0x1c2d, 0x4e3f, 0x90, 0x01, 0x10, 0x20, 0x30, 0x40, 0x50, 0x05)

class TestClass final : public orlix::Object<TestClass, orlix::Answers<ITestDerived, ITestBase>, ITestOther> {
public:
    TestClass() {
        if (onConstruction) onConstruction();
        ++alive;
    }
    ~TestClass() {
        --alive;
        if (onDestruction) onDestruction(*this);
    }

    STDMETHODIMP Base(LONG* value) noexcept override { return Put(1, value); }
    STDMETHODIMP Derived(LONG* value) noexcept override { return Put(2, value); }
    STDMETHODIMP Other(LONG* value) noexcept override { return Put(3, value); }

    static inline int alive = 0;
    static inline void (*onConstruction)() = nullptr;
    static inline void (*onDestruction)(TestClass&) = nullptr;
    using Object::IsSelf;

private:
    HRESULT Put(LONG what, LONG* value) noexcept {
        return Guarded([&] {
            orlix::Require(value);
            *value = what;
        });
    }
};

namespace orlix {
namespace {

const IID kAnswered[] = {__uuidof(IUnknown), __uuidof(ITestBase), __uuidof(ITestDerived), __uuidof(ITestOther),
                         __uuidof(ISupportErrorInfo)};

ULONG ReferencesOf(IUnknown* object) {
    object->AddRef();
    return object->Release();
}

class Objects : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(0, TestClass::alive); }
    void TearDown() override {
        TestClass::onConstruction = nullptr;
        TestClass::onDestruction = nullptr;
        EXPECT_EQ(0, TestClass::alive);
        EXPECT_FALSE(ModuleIsLocked());
    }
};

TEST_F(Objects, AnswerTheirInterfacesFromEachOfThemWithOneIdentity) {
    ComPtr<IUnknown> object;
    ASSERT_EQ(S_OK, TestClass::CreateInstance(nullptr, __uuidof(IUnknown), object.OutVoid()));
    for (const IID& from : kAnswered) {
        ComPtr<IUnknown> first;
        ASSERT_EQ(S_OK, object->QueryInterface(from, first.OutVoid()));
        for (const IID& to : kAnswered) {
            ComPtr<IUnknown> second;
            ComPtr<IUnknown> back;
            ASSERT_EQ(S_OK, first->QueryInterface(to, second.OutVoid()));
            ASSERT_EQ(S_OK, second->QueryInterface(from, back.OutVoid()));
            EXPECT_EQ(first.get(), back.get());
            EXPECT_EQ(object.get(), second.As<IUnknown>().get());
        }
        void* refused = &refused;
        EXPECT_EQ(E_NOINTERFACE, first->QueryInterface(__uuidof(ITestUnanswered), &refused));
        EXPECT_EQ(nullptr, refused);
        EXPECT_EQ(E_POINTER, first->QueryInterface(__uuidof(IUnknown), nullptr));
    }
    EXPECT_EQ(1u, ReferencesOf(object.get()));
}

TEST_F(Objects, EachInterfaceReachesItsOwnMethods) {
    const ComPtr<TestClass> object = TestClass::Make();
    LONG value = 0;
    EXPECT_EQ(S_OK, object.As<ITestBase>()->Base(&value));
    EXPECT_EQ(1, value);
    EXPECT_EQ(S_OK, object.As<ITestDerived>()->Derived(&value));
    EXPECT_EQ(2, value);
    EXPECT_EQ(S_OK, object.As<ITestOther>()->Other(&value));
    EXPECT_EQ(3, value);
}

TEST_F(Objects, ShareOneCountOfReferencesAndDieWithTheLast) {
    ComPtr<ITestOther> other;
    ASSERT_EQ(S_OK, TestClass::CreateInstance(nullptr, __uuidof(ITestOther), other.OutVoid()));
    auto base = other.As<ITestBase>();
    EXPECT_EQ(2u, ReferencesOf(base.get()));
    EXPECT_EQ(2u, ReferencesOf(other.get()));
    other = nullptr;
    EXPECT_EQ(1, TestClass::alive);
    EXPECT_EQ(1u, ReferencesOf(base.get()));
    base = nullptr;
    EXPECT_EQ(0, TestClass::alive);
}

TEST_F(Objects, LockTheModuleWhileTheyLive) {
    EXPECT_FALSE(ModuleIsLocked());
    auto first = TestClass::Make();
    auto second = TestClass::Make();
    first = nullptr;
    EXPECT_TRUE(ModuleIsLocked());
    second = nullptr;
    EXPECT_FALSE(ModuleIsLocked());
}

TEST_F(Objects, AFailedCreationLeavesNoObjectAndNoPointer) {
    void* object = &object;
    EXPECT_EQ(E_NOINTERFACE, TestClass::CreateInstance(nullptr, __uuidof(ITestUnanswered), &object));
    EXPECT_EQ(nullptr, object);
    EXPECT_EQ(E_POINTER, TestClass::CreateInstance(nullptr, __uuidof(IUnknown), nullptr));

    const struct {
        void (*throws)();
        HRESULT result;
    } cases[] = {
        {[] { throw std::bad_alloc(); }, E_OUTOFMEMORY},
        {[] { throw std::runtime_error("no"); }, E_FAIL},
        {[] { throw 7; }, E_FAIL},
    };
    for (const auto& [throws, result] : cases) {
        TestClass::onConstruction = throws;
        object = &object;
        EXPECT_EQ(result, TestClass::CreateInstance(nullptr, __uuidof(IUnknown), &object));
        EXPECT_EQ(nullptr, object);
        EXPECT_FALSE(ModuleIsLocked());
    }
}

TEST_F(Objects, MayTakeAndGiveBackReferencesToThemselvesWhileDying) {
    TestClass::onDestruction = [](TestClass& object) {
        object.AddRef();
        object.Release();
    };
    TestClass::Make();
    EXPECT_EQ(0, TestClass::alive);
}

TEST_F(Objects, SupportErrorInformationForTheirInterfacesOnly) {
    const auto object = TestClass::Make();
    const auto support = object.As<ISupportErrorInfo>();
    ASSERT_TRUE(support);
    for (const IID& iid : {__uuidof(ITestBase), __uuidof(ITestDerived), __uuidof(ITestOther)})
        EXPECT_EQ(S_OK, support->InterfaceSupportsErrorInfo(iid));
    for (const IID& iid : {__uuidof(IUnknown), __uuidof(ITestUnanswered), GUID_NULL})
        EXPECT_EQ(S_FALSE, support->InterfaceSupportsErrorInfo(iid));
}

TEST_F(Objects, KnowThemselvesBehindAnyInterface) {
    const auto object = TestClass::Make();
    const auto stranger = TestClass::Make();
    EXPECT_TRUE(object->IsSelf(object.As<ITestOther>().get()));
    EXPECT_TRUE(object->IsSelf(object.As<ITestBase>().get()));
    EXPECT_FALSE(object->IsSelf(stranger.As<ITestOther>().get()));
    EXPECT_FALSE(object->IsSelf(nullptr));
}

// Holds a TestClass inside and answers its interfaces as its own, but for ITestOther, which it answers itself.
class Outer final : public CountedObject<ITestOther> {
public:
    static inline int alive = 0;
    Outer() { ++alive; }

    HRESULT Hold() { return TestClass::CreateInstance(this, __uuidof(IUnknown), inner_.OutVoid()); }
    IUnknown* inner() const { return inner_.get(); }

    STDMETHODIMP QueryInterface(REFIID iid, void** object) noexcept override {
        const HRESULT own = CountedObject::QueryInterface(iid, object);
        return own == E_NOINTERFACE ? inner_->QueryInterface(iid, object) : own;
    }
    STDMETHODIMP Other(LONG* value) noexcept override {
        *value = 30;
        return S_OK;
    }

private:
    ~Outer() override { --alive; }
    void LetGo() noexcept override { inner_ = nullptr; }

    ComPtr<IUnknown> inner_;
};

TEST_F(Objects, AggregatedSpeakForTheOuterObject) {
    auto outer = MakeCounted<Outer>();
    ASSERT_EQ(S_OK, outer->Hold());
    EXPECT_EQ(1u, ReferencesOf(outer.get()));  // the inner object does not count its owner

    const auto identity = outer.As<IUnknown>();
    const auto base = outer.As<ITestBase>();
    ASSERT_TRUE(base);
    EXPECT_EQ(identity.get(), base.As<IUnknown>().get());
    EXPECT_EQ(3u, ReferencesOf(base.get()));

    LONG value = 0;
    EXPECT_EQ(S_OK, base->Base(&value));
    EXPECT_EQ(1, value);
    EXPECT_EQ(S_OK, base.As<ITestOther>()->Other(&value));  // the outer object's own
    EXPECT_EQ(30, value);
    EXPECT_EQ(S_OK, base.As<ITestDerived>()->Derived(&value));
    EXPECT_EQ(2, value);
}

TEST_F(Objects, AggregatedKeepAnIdentityOfTheirOwnForTheOuterObjectOnly) {
    const auto outer = MakeCounted<Outer>();
    ASSERT_EQ(S_OK, outer->Hold());
    IUnknown* const inner = outer->inner();
    EXPECT_NE(inner, outer.As<IUnknown>().get());
    ComPtr<IUnknown> again;
    ASSERT_EQ(S_OK, inner->QueryInterface(__uuidof(IUnknown), again.OutVoid()));
    EXPECT_EQ(inner, again.get());
    ComPtr<ITestOther> own;  // asked directly, the inner object answers itself
    ASSERT_EQ(S_OK, inner->QueryInterface(__uuidof(ITestOther), own.OutVoid()));
    LONG value = 0;
    EXPECT_EQ(S_OK, own->Other(&value));
    EXPECT_EQ(3, value);
}

TEST_F(Objects, AggregatedDieWithTheirOuterObject) {
    auto outer = MakeCounted<Outer>();
    ASSERT_EQ(S_OK, outer->Hold());
    auto base = outer.As<ITestBase>();
    outer = nullptr;
    EXPECT_EQ(1, Outer::alive);  // kept by an interface of the inner object
    EXPECT_EQ(1, TestClass::alive);
    base = nullptr;
    EXPECT_EQ(0, Outer::alive);
    EXPECT_EQ(0, TestClass::alive);
}

TEST_F(Objects, AreAggregatedByTheirIdentityOnly) {
    const auto outer = MakeCounted<Outer>();
    for (const IID& iid : kAnswered) {
        if (iid == __uuidof(IUnknown)) continue;
        void* object = &object;
        EXPECT_EQ(CLASS_E_NOAGGREGATION, TestClass::CreateInstance(outer.get(), iid, &object));
        EXPECT_EQ(nullptr, object);
    }
    ASSERT_EQ(S_OK, outer->Hold());  // for its destructor's sake as much as for its own
}

}  // namespace
}  // namespace orlix
