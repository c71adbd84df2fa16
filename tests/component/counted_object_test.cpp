#include <orlix/counted_object.hpp>

#include <gtest/gtest.h>

#include <functional>

#include "support/objects.hpp"

namespace orlix {
namespace {

// Two interfaces, the first of which derives from another one. What it does at its end can be chosen.
class Both final : public CountedObject<DerivedInterface<IPersistStreamInit, IPersist>, ISupportErrorInfo> {
public:
    explicit Both(bool& destroyed) : destroyed_(destroyed) {}
    std::function<void()> onLetGo, onDestruction;
    IUnknown* first() { return static_cast<IPersistStreamInit*>(this); }

    STDMETHODIMP GetClassID(CLSID*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP IsDirty() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Load(IStream*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Save(IStream*, BOOL) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetSizeMax(ULARGE_INTEGER*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP InitNew() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP InterfaceSupportsErrorInfo(REFIID) noexcept override { return S_FALSE; }

private:
    ~Both() override {
        if (onDestruction) onDestruction();
        destroyed_ = true;
    }
    void LetGo() noexcept override {
        if (onLetGo) onLetGo();
    }
    bool& destroyed_;
};

TEST(CountedObject, AnswersItsInterfacesAndTheirParentsAsOneObject) {
    bool destroyed = false;
    const auto object = MakeCounted<Both>(destroyed);
    EXPECT_EQ(1u, ReferencesOf(object->first()));
    auto* const first = static_cast<IPersistStreamInit*>(object.get());
    auto* const second = static_cast<ISupportErrorInfo*>(object.get());
    const std::pair<IID, void*> answers[] = {{__uuidof(IUnknown), first},
                                             {__uuidof(IPersistStreamInit), first},
                                             {__uuidof(IPersist), first},
                                             {__uuidof(ISupportErrorInfo), second}};
    for (const auto& [iid, pointer] : answers)
        for (IUnknown* const asked : {static_cast<IUnknown*>(first), static_cast<IUnknown*>(second)}) {
            ComPtr<IUnknown> answered;
            EXPECT_EQ(S_OK, asked->QueryInterface(iid, answered.OutVoid()));
            EXPECT_EQ(pointer, static_cast<void*>(answered.get()));
            EXPECT_EQ(2u, ReferencesOf(asked));
        }
    void* none = first;
    EXPECT_EQ(E_NOINTERFACE, object->QueryInterface(__uuidof(IStream), &none));
    EXPECT_EQ(nullptr, none);
    EXPECT_EQ(E_POINTER, object->QueryInterface(__uuidof(IUnknown), nullptr));
    EXPECT_EQ(1u, ReferencesOf(object->first()));
}

TEST(CountedObject, IsWholeWhenItLetsGoAndGoesWithTheLastReferenceOnly) {
    for (const bool keep : {false, true}) {
        bool destroyed = false;
        int lastTimes = 0;
        ComPtr<Both> kept;
        auto object = MakeCounted<Both>(destroyed);
        Both* const raw = object.get();
        raw->onLetGo = [&] {
            ++lastTimes;
            EXPECT_EQ(1u, ReferencesOf(raw->first()));
            EXPECT_FALSE(destroyed);
            if (keep) kept = ComPtr<Both>(raw);
        };
        raw->onDestruction = [&] { EXPECT_EQ(1u, ReferencesOf(raw->first())); };
        object = nullptr;
        EXPECT_EQ(!keep, destroyed);
        if (keep) {
            EXPECT_EQ(1u, ReferencesOf(kept->first()));
        }
        kept = nullptr;
        EXPECT_TRUE(destroyed);
        EXPECT_EQ(1, lastTimes);
    }
}

}  // namespace
}  // namespace orlix
