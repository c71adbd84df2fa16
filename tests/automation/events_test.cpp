// Events that reach scripts.
#include <algorithm>
#include <vector>

#include <orlix/counted_object.hpp>

#include "automation/script.hpp"

namespace orlix::testing {
namespace {

struct Event {
    DISPID id;
    std::vector<Variant> arguments;  // in the order of the event
};

// A script engine's object: IDispatch, also under the identifier of the events for which it was made.
class EngineSink final : public CountedObject<IDispatch> {
public:
    EngineSink(REFIID events, std::vector<Event>& got) : events_(events), got_(got) {}

    STDMETHODIMP QueryInterface(REFIID iid, void** object) noexcept override {
        return CountedObject::QueryInterface(iid == events_ ? __uuidof(IDispatch) : iid, object);
    }
    STDMETHODIMP GetTypeInfoCount(UINT*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* given, VARIANT*, EXCEPINFO*,
                        UINT*) noexcept override {
        Event event{id, {}};
        for (UINT i = given->cArgs; i-- > 0;) {
            event.arguments.emplace_back();
            VariantCopy(&event.arguments.back(), &given->rgvarg[i]);
        }
        got_.push_back(std::move(event));
        return S_OK;
    }

private:
    IID events_;
    std::vector<Event>& got_;
};

TEST(ScriptEvents, AScriptLearnsOfEachDrawing) {
    for (const char* const progId : {"Orlix.Image", "Orlix.OrlixBuffer"}) {
        SCOPED_TRACE(progId);
        const Script picture(progId);
        picture("Create", progId[6] == 'I' ? Arguments{6, 4} : Arguments{6, 4, 8});
        IID events = {};
        const auto classInfo = Cast<IProvideClassInfo2>(picture.get());
        ASSERT_EQ(S_OK, classInfo->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &events));
        std::vector<Event> got;
        const auto sink = MakeCounted<EngineSink>(events, got);
        const auto point = Call(Cast<IConnectionPointContainer>(picture.get()),
                                &IConnectionPointContainer::FindConnectionPoint, events);
        const DWORD cookie = Call(point, &IConnectionPoint::Advise, static_cast<IUnknown*>(sink.get()));

        const HDC device = CreateCompatibleDC(nullptr);
        const auto handle = static_cast<int>(reinterpret_cast<intptr_t>(device));
        picture("Render", {handle, 0, 0, 6, 4});
        ASSERT_EQ(1u, got.size());
        EXPECT_EQ(1, got[0].id);
        ASSERT_EQ(3u, got[0].arguments.size());
        EXPECT_EQ(picture.get().get(), got[0].arguments[0].pdispVal);
        EXPECT_NE(0, got[0].arguments[1].number()) << "a device context to draw on";
        EXPECT_EQ(RST_Memory, got[0].arguments[2].number());
        ASSERT_EQ(S_OK, point->Unadvise(cookie));
        picture("Render", {handle, 0, 0, 6, 4});
        EXPECT_EQ(1u, got.size());
        DeleteDC(device);

        DWORD refused = 7;
        const auto other = MakeCounted<EngineSink>(GUID_NULL, got);
        EXPECT_EQ(static_cast<HRESULT>(0x80040202), point->Advise(other.get(), &refused)) << "does not know the events";
        EXPECT_EQ(0u, refused);
    }
    EXPECT_TRUE(ModuleIsUnlocked());
}

TEST(ScriptEvents, ObjectsSayTheirClass) {
    const Script image("Orlix.Image"), polygon("Orlix.Polygon");
    for (const auto& [object, name] : {std::pair{image, "OrlixImage"}, {polygon, "OrlixPolygon"}}) {
        const auto info = Call(Cast<IProvideClassInfo2>(object.get()), &IProvideClassInfo2::GetClassInfo);
        Text found;
        ASSERT_EQ(S_OK, info->GetDocumentation(MEMBERID_NIL, found.Out(), nullptr, nullptr, nullptr));
        EXPECT_EQ(name, found.Utf8());
    }
    const auto info = Cast<IProvideClassInfo2>(polygon.get());
    GUID events = IID_IUnknown;
    EXPECT_EQ(E_NOTIMPL, info->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &events));
    EXPECT_TRUE(events == GUID_NULL);
    EXPECT_EQ(E_INVALIDARG, info->GetGUID(0, &events));
    EXPECT_EQ(E_POINTER, info->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, nullptr));
    EXPECT_EQ(E_POINTER, info->GetClassInfo(nullptr));
    const Script bitmap("Orlix.Bitmap");
    bitmap("Create", {2, 2});
    ComPtr<IProvideClassInfo> none;
    EXPECT_EQ(E_NOINTERFACE,
              Script(bitmap("FindBlobs")).get()->QueryInterface(__uuidof(IProvideClassInfo), none.OutVoid()))
        << "scripts do not create these";
}

}  // namespace
}  // namespace orlix::testing
