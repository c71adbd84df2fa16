#include "component/object.hpp"

#include <gtest/gtest.h>

#include <orlix/counted_object.hpp>

#include <functional>
#include <new>
#include <stdexcept>

#include "support/objects.hpp"

// Two interfaces and a class of the contract's shape.
struct ITestFirst : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE First(LONG* value) = 0;
};
struct ITestOther : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Other(LONG* value) = 0;
};
struct ITestUnanswered : IUnknown {};
class TestClass;
__CRT_UUID_DECL(ITestFirst, 0x6a1b5f01, 0x1c2d, 0x4e3f, 0x90, 0x01, 0x10, 0x20, 0x30, 0x40, 0x50, 0x01)
__CRT_UUID_DECL(ITestOther, 0x6a1b5f03, 0x1c2d, 0x4e3f, 0x90, 0x01, 0x10, 0x20, 0x30, 0x40, 0x50, 0x03)
__CRT_UUID_DECL(ITestUnanswered, 0x6a1b5f04, 0x1c2d, 0x4e3f, 0x90, 0x01, 0x10, 0x20, 0x30, 0x40, 0x50, 0x04)
__CRT_UUID_DECL(TestClass, 0x6a1b5f05, 0x1c2d, 0x4e3f, 0x90, 0x01, 0x10, 0x20, 0x30, 0x40, 0x50, 0x05)

class TestClass final : public orlix::Object<TestClass, ITestFirst, ITestOther> {
public:
    TestClass() {
        if (onConstruction) onConstruction();
        ++alive;
    }
    ~TestClass() {
        --alive;
        if (onDestruction) onDestruction(*this);
    }

    STDMETHODIMP First(LONG* value) noexcept override { return Put(1, value); }
    STDMETHODIMP Other(LONG* value) noexcept override { return Put(2, value); }

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

// Identity, references and reports of whole classes: tests/contract/activation_test.cpp.
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

TEST_F(Objects, KnowThemselvesBehindAnyInterface) {
    const auto object = TestClass::Make();
    const auto stranger = TestClass::Make();
    EXPECT_TRUE(object->IsSelf(object.As<ITestOther>().get()));
    EXPECT_TRUE(object->IsSelf(object.As<ITestFirst>().get()));
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

TEST_F(Objects, InsideAnotherSpeakForItButForTheirOwnIdentityAndDieWithIt) {
    auto outer = MakeCounted<Outer>();
    ASSERT_EQ(S_OK, outer->Hold());
    EXPECT_EQ(1u, ReferencesOf(outer.get()));  // the inner object does not count its owner
    auto first = outer.As<ITestFirst>();
    ASSERT_TRUE(first);
    EXPECT_EQ(outer.As<IUnknown>().get(), first.As<IUnknown>().get());
    EXPECT_EQ(2u, ReferencesOf(first.get()));

    LONG value = 0;
    EXPECT_EQ(S_OK, first->First(&value));
    EXPECT_EQ(1, value);
    EXPECT_EQ(S_OK, first.As<ITestOther>()->Other(&value));
    EXPECT_EQ(30, value) << "the outer object's own";

    IUnknown* const inner = outer->inner();
    EXPECT_NE(inner, outer.As<IUnknown>().get());
    EXPECT_EQ(inner, ComPtr<IUnknown>(inner).As<IUnknown>().get());
    EXPECT_EQ(S_OK, ComPtr<IUnknown>(inner).As<ITestOther>()->Other(&value));
    EXPECT_EQ(2, value) << "asked directly, the inner object answers itself";

    outer = nullptr;
    EXPECT_EQ(1, Outer::alive) << "kept by an interface of the inner object";
    EXPECT_EQ(1, TestClass::alive);
    first = nullptr;
    EXPECT_EQ(0, Outer::alive);
}

}  // namespace
}  // namespace orlix
