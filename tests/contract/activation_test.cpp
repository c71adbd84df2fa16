// Objects as clients get them: by class and by name, through factories, inside other objects.
#include <gtest/gtest.h>

#include <orlix/client.hpp>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "contract/support.hpp"
#include "module/class_rows.hpp"

namespace orlix::testing {
namespace {

constexpr HRESULT kClassNotAvailable = static_cast<HRESULT>(0x80040111);
constexpr HRESULT kClassNotRegistered = static_cast<HRESULT>(0x80040154);
constexpr HRESULT kNoAggregation = static_cast<HRESULT>(0x80040110);
constexpr HRESULT kInvalidClassText = static_cast<HRESULT>(0x800401F3);

// What a class that can be created answers: its default interface first. IUnknown and ISupportErrorInfo come on top.
struct Creatable {
    const char* name;
    CLSID clsid;
    std::vector<IID> interfaces;
};

std::vector<Creatable> Creatables() {
    return {
        {"Orlix.Histogram", __uuidof(OrlixHistogram), {__uuidof(IHistogram)}},
        {"Orlix.Bitmap", __uuidof(OrlixBitmap), {__uuidof(IBitmap), __uuidof(IBitmapProcess)}},
        {"Orlix.Polygon", __uuidof(OrlixPolygon), {__uuidof(IPolygon)}},
        {"orlix.StructuringElement", __uuidof(OrlixStructuringElement), {__uuidof(IStructuringElement)}},
        {"Orlix.ShapeRegionOfInterest",
         __uuidof(OrlixShapeRegionOfInterest),
         {__uuidof(IShapeRegionOfInterest), __uuidof(IRegionOfInterest), __uuidof(IGraphicOverlay)}},
        {"Orlix.Image",
         __uuidof(OrlixImage),
         {__uuidof(IImageVPAEx), __uuidof(IImageVPA), __uuidof(IImageVPAExPlus), __uuidof(IImageFile),
          __uuidof(IImageEntries), __uuidof(IPersist), __uuidof(IPersistStreamInit), __uuidof(IPersistStreamInitEx),
          __uuidof(IImageProcessBase), __uuidof(IImageProcess), __uuidof(IOrlixImageProcess), __uuidof(IDisplayProcess),
          __uuidof(IPictureExZoom), __uuidof(IPictureEx), __uuidof(IPictureMemory), __uuidof(IConnectionPointContainer),
#ifdef _WIN32
          __uuidof(IPictureExZoomDisp), __uuidof(IDispatch),
#endif
          __uuidof(IModuleInformation)}},
    };
}

// Every interface of the contract that some class answers.
std::vector<IID> AllInterfaces() {
    std::vector<IID> all;
    for (const Creatable& creatable : Creatables())
        all.insert(all.end(), creatable.interfaces.begin(), creatable.interfaces.end());
    return all;
}

HRESULT Create(const CLSID& clsid, const IID& iid, ComPtr<IUnknown>& object, IUnknown* outer = nullptr) {
    return CoCreateInstance(clsid, outer, CLSCTX_INPROC_SERVER, iid, object.OutVoid());
}

ComPtr<IClassFactory> FactoryOf(const CLSID& clsid) {
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(S_OK, CoGetClassObject(clsid, CLSCTX_INPROC_SERVER, nullptr, __uuidof(IClassFactory), factory.OutVoid()));
    return factory;
}

// As the runtime asks before it lets the module go.
HRESULT CanUnloadNow() {
#ifdef _WIN32
    const HMODULE module = GetModuleHandleW(L"orlix.dll");
    const auto ask =
        module
            ? reinterpret_cast<HRESULT(WINAPI*)()>(reinterpret_cast<void*>(GetProcAddress(module, "DllCanUnloadNow")))
            : nullptr;
    return ask ? ask() : E_FAIL;
#else
    return DllCanUnloadNow();
#endif
}

TEST(Activation, EachClassIsCreatedByIdentifierAndByBothItsNames) {
    for (const Creatable& creatable : Creatables()) {
        SCOPED_TRACE(creatable.name);
        EXPECT_TRUE(creatable.clsid == ClassOf(creatable.name));
        EXPECT_TRUE(creatable.clsid == ClassOf(std::string(creatable.name) + ".1"));
        for (const IID& iid : creatable.interfaces) {
            ComPtr<IUnknown> object;
            EXPECT_EQ(S_OK, Create(creatable.clsid, iid, object));
            EXPECT_TRUE(object);
        }
    }
}

TEST(Activation, AllFourteenNamesLeadToTheirClassesAndBack) {
    for (const ClassFacts& facts : kClassFacts) {
        SCOPED_TRACE(facts.coclass);
        const std::string versioned = std::string(facts.progId) + ".1";
        CLSID want = {};
        ASSERT_EQ(S_OK, CLSIDFromString(ToUtf16(facts.clsid).c_str(), &want));
        EXPECT_TRUE(want == ClassOf(facts.progId));
        EXPECT_TRUE(want == ClassOf(versioned));
        LPOLESTR name = nullptr;
        ASSERT_EQ(S_OK, ProgIDFromCLSID(want, &name));
        EXPECT_EQ(versioned, ToUtf8(name));
        CoTaskMemFree(name);
    }
}

TEST(Activation, AClassThatIsNotBuiltIsRefused) {
    for (const ClassFacts& facts : kClassFacts) {
        if (facts.built) continue;
        SCOPED_TRACE(facts.coclass);
        void* object = &object;
        EXPECT_EQ(kClassNotAvailable,
                  CoCreateInstance(ClassOf(facts.progId), nullptr, CLSCTX_INPROC_SERVER, __uuidof(IUnknown), &object));
        EXPECT_EQ(nullptr, object);
    }
}

TEST(Activation, WhatIsNotRegisteredIsNotFound) {
    constexpr CLSID kUnknown = {0x6a1b5f30, 0x1c2d, 0x4e3f, {0x90, 0x01, 0x10, 0x20, 0x30, 0x40, 0x50, 0x30}};
    ComPtr<IUnknown> object;
    EXPECT_EQ(kClassNotRegistered, Create(kUnknown, __uuidof(IUnknown), object));
    EXPECT_FALSE(object);
    void* factory = &factory;
    EXPECT_EQ(kClassNotRegistered,
              CoGetClassObject(kUnknown, CLSCTX_INPROC_SERVER, nullptr, __uuidof(IClassFactory), &factory));
    EXPECT_EQ(nullptr, factory);
    for (const OLECHAR* name : {OLESTR("Orlix.Nothing"), OLESTR("Orlix.Histogram.2"), OLESTR("Orlix")}) {
        CLSID clsid = kUnknown;
        EXPECT_EQ(kInvalidClassText, CLSIDFromProgID(name, &clsid));
    }
    EXPECT_THROW(ClassOf("Orlix.Nothing"), Error);
}

TEST(Activation, AnInterfaceThatTheClassLacksIsRefused) {
    ComPtr<IUnknown> object;
    EXPECT_EQ(E_NOINTERFACE, Create(__uuidof(OrlixBitmap), __uuidof(IHistogram), object));
    EXPECT_FALSE(object);
    EXPECT_EQ(E_NOINTERFACE, Create(__uuidof(OrlixImage), __uuidof(IPictureExEvents), object));
    EXPECT_FALSE(object);
}

TEST(Client, NamesWhatFailedWithoutAText) {
    const auto bitmap = CreateObject<IBitmap>("Orlix.Bitmap");
    const struct {
        std::function<void()> call;
        HRESULT result;
        const char* text;
    } cases[] = {
        {[] { CreateObject<IUnknown>("Orlix.SplineImage.1"); }, kClassNotAvailable,
         "Orlix.SplineImage.1: CLASS_E_CLASSNOTAVAILABLE (the class is not built)"},
        {[] { CreateObject<IUnknown>(__uuidof(OrlixVBHelper)); }, kClassNotAvailable,
         "Orlix.VBHelper.1: CLASS_E_CLASSNOTAVAILABLE (the class is not built)"},
        {[] { CreateObject<IUnknown>(__uuidof(IBitmap)); }, kClassNotRegistered,
         "{AE6999A0-D64B-4593-9D8D-FA914CD4FA65}: REGDB_E_CLASSNOTREG (the class is not registered)"},
        {[&] { Cast<IPolygon>(bitmap); }, E_NOINTERFACE,
         "IPolygon: E_NOINTERFACE (the object does not have this interface)"},
        {[] { Cast<IPolygon>(ComPtr<IBitmap>()); }, E_POINTER, "IPolygon: E_POINTER (a null pointer was given)"},
        {[&] { Check(bitmap->get_Width(nullptr), bitmap); }, E_POINTER, "E_POINTER (a null pointer was given)"},
        {[] { Check(static_cast<HRESULT>(0x80abcdef)); }, static_cast<HRESULT>(0x80abcdef), "result 0x80abcdef"},
    };
    for (const auto& [call, result, text] : cases) {
        SCOPED_TRACE(text);
        try {
            call();
            ADD_FAILURE() << "did not fail";
        } catch (const Error& error) {
            EXPECT_EQ(result, error.result());
            EXPECT_STREQ(text, error.what());
            EXPECT_EQ("", error.message()) << "the object reported none";
        }
    }
}

TEST(Activation, InterfacesOfAnObjectReachEachOtherAndNoOthers) {
    for (const Creatable& creatable : Creatables()) {
        SCOPED_TRACE(creatable.name);
        ComPtr<IUnknown> object;
        ASSERT_EQ(S_OK, Create(creatable.clsid, __uuidof(IUnknown), object));
        std::vector<IID> answered = creatable.interfaces;
        answered.push_back(__uuidof(IUnknown));
        answered.push_back(__uuidof(ISupportErrorInfo));
        for (const IID& from : answered) {
            ComPtr<IUnknown> first;
            ASSERT_EQ(S_OK, object->QueryInterface(from, first.OutVoid()));
            for (const IID& to : answered) {
                ComPtr<IUnknown> second;
                ComPtr<IUnknown> back;
                ASSERT_EQ(S_OK, first->QueryInterface(to, second.OutVoid()));
                ASSERT_EQ(S_OK, second->QueryInterface(from, back.OutVoid()));
                EXPECT_EQ(first.get(), back.get());
                EXPECT_EQ(object.get(), second.As<IUnknown>().get());
            }
            for (const IID& other : AllInterfaces()) {
                if (std::find(answered.begin(), answered.end(), other) != answered.end()) continue;
                void* refused = &refused;
                EXPECT_EQ(E_NOINTERFACE, first->QueryInterface(other, &refused));
                EXPECT_EQ(nullptr, refused);
            }
            EXPECT_EQ(E_POINTER, first->QueryInterface(__uuidof(IUnknown), nullptr));
        }
        EXPECT_EQ(1u, ReferencesOf(object.get()));
    }
}

TEST(Activation, EachObjectReportsForItsInterfaces) {
    for (const Creatable& creatable : Creatables()) {
        SCOPED_TRACE(creatable.name);
        ComPtr<IUnknown> object;
        ASSERT_EQ(S_OK, Create(creatable.clsid, __uuidof(IUnknown), object));
        const auto support = object.As<ISupportErrorInfo>();
        ASSERT_TRUE(support);
        for (const IID& iid : AllInterfaces()) {
            const bool own =
                std::find(creatable.interfaces.begin(), creatable.interfaces.end(), iid) != creatable.interfaces.end();
            EXPECT_EQ(own ? S_OK : S_FALSE, support->InterfaceSupportsErrorInfo(iid));
        }
    }
}

TEST(Activation, TheTextOfAFailureNamesItsClassByTheVersionedName) {
    const auto histogram = CreateObject<IHistogram>("Orlix.Histogram");
    double mean = -1;
    EXPECT_TRUE(Fails(histogram->get_Mean(&mean), "IHistogram::get_Mean: empty histogram", "Orlix.Histogram.1"));
    const auto bitmap = CreateObject<IBitmap>("Orlix.Bitmap");
    EXPECT_TRUE(Fails(bitmap->Create(0, 1, 0), "CBITMAP::Create: width must be positive", "Orlix.Bitmap.1"));
}

TEST(Factories, MakeObjectsOfTheirClass) {
    for (const Creatable& creatable : Creatables()) {
        SCOPED_TRACE(creatable.name);
        const auto factory = FactoryOf(creatable.clsid);
        ASSERT_TRUE(factory);
        ComPtr<IUnknown> object;
        EXPECT_EQ(S_OK, factory->CreateInstance(nullptr, creatable.interfaces.front(), object.OutVoid()));
        EXPECT_EQ(1u, ReferencesOf(object.get()));
        EXPECT_EQ(E_POINTER, factory->CreateInstance(nullptr, creatable.interfaces.front(), nullptr));
        void* refused = &refused;
        EXPECT_EQ(E_NOINTERFACE, factory->QueryInterface(creatable.interfaces.front(), &refused));
        EXPECT_EQ(nullptr, refused);
    }
}

TEST(Factories, KeepTheModuleLockedAsLongAsObjectsOrLocksLive) {
    const auto factory = FactoryOf(__uuidof(OrlixHistogram));
    ASSERT_TRUE(factory);
    EXPECT_EQ(S_OK, CanUnloadNow());

    ComPtr<IUnknown> object;
    ASSERT_EQ(S_OK, factory->CreateInstance(nullptr, __uuidof(IUnknown), object.OutVoid()));
    EXPECT_EQ(S_FALSE, CanUnloadNow());
    object = nullptr;
    EXPECT_EQ(S_OK, CanUnloadNow());

    EXPECT_EQ(S_OK, factory->LockServer(TRUE));
    EXPECT_EQ(S_FALSE, CanUnloadNow());
    EXPECT_EQ(S_OK, factory->LockServer(FALSE));
    EXPECT_EQ(S_OK, CanUnloadNow());
}

TEST(Factories, AnObjectMadeByAMethodLocksTheModuleToo) {
    auto image = NewImage<uint8_t>(4, 3);
    auto process = Cast<IImageProcess>(image);
    ComPtr<IBitmap> bitmap;
    ASSERT_EQ(S_OK, process->Threshold(0, 10, 1, bitmap.Out()));
    process = nullptr;
    image = nullptr;
    EXPECT_EQ(S_FALSE, CanUnloadNow());
    bitmap = nullptr;
    EXPECT_EQ(S_OK, CanUnloadNow());
}

// Unlike a connection point, which is a part of its image, it may be the last thing that a client holds.
TEST(Factories, AnEnumeratorOfConnectionsLocksTheModuleToo) {
    auto image = CreateObject<IImageVPAExPlus>("Orlix.Image");
    ComPtr<IConnectionPoint> point;
    ComPtr<IEnumConnections> connections, clone;
    ASSERT_EQ(S_OK,
              Cast<IConnectionPointContainer>(image)->FindConnectionPoint(__uuidof(IPictureExEvents), point.Out()));
    ASSERT_EQ(S_OK, point->EnumConnections(connections.Out()));
    image = nullptr;
    point = nullptr;
    EXPECT_EQ(S_FALSE, CanUnloadNow());
    ASSERT_EQ(S_OK, connections->Clone(clone.Out()));
    connections = nullptr;
    EXPECT_EQ(S_FALSE, CanUnloadNow());
    clone = nullptr;
    EXPECT_EQ(S_OK, CanUnloadNow());
}

// An object of a client that holds one of this library inside and answers everything through it.
class Holder final : public CountedObject<IUnknown> {
public:
    HRESULT Hold(const CLSID& clsid) { return Create(clsid, __uuidof(IUnknown), inner_, this); }

    STDMETHODIMP QueryInterface(REFIID iid, void** object) noexcept override {
        return iid == __uuidof(IUnknown) ? CountedObject::QueryInterface(iid, object)
                                         : inner_->QueryInterface(iid, object);
    }

private:
    void LetGo() noexcept override { inner_ = nullptr; }
    ComPtr<IUnknown> inner_;
};

TEST(Aggregation, EachClassCanBePartOfAnotherObject) {
    for (const Creatable& creatable : Creatables()) {
        SCOPED_TRACE(creatable.name);
        const auto holder = MakeCounted<Holder>();
        ASSERT_EQ(S_OK, holder->Hold(creatable.clsid));
        for (const IID& iid : creatable.interfaces) {
            ComPtr<IUnknown> part;
            ASSERT_EQ(S_OK, holder->QueryInterface(iid, part.OutVoid()));
            EXPECT_EQ(holder.get(), part.As<IUnknown>().get());
            EXPECT_EQ(2u, ReferencesOf(part.get()));
        }
        EXPECT_EQ(1u, ReferencesOf(holder.get()));
        void* refused = &refused;
        EXPECT_EQ(kNoAggregation, CoCreateInstance(creatable.clsid, holder.get(), CLSCTX_INPROC_SERVER,
                                                   creatable.interfaces.front(), &refused));
        EXPECT_EQ(nullptr, refused);
    }
    EXPECT_EQ(S_OK, CanUnloadNow());
}

TEST(Aggregation, AnObjectInsideAnotherWorksAndReports) {
    const auto holder = MakeCounted<Holder>();
    ASSERT_EQ(S_OK, holder->Hold(__uuidof(OrlixHistogram)));
    const auto histogram = holder.As<IHistogram>();
    ASSERT_TRUE(histogram);
    EXPECT_EQ(S_OK, histogram->Create(4, 0, 3));
    LONG bins = 0;
    EXPECT_EQ(S_OK, histogram->get_NumberOfBins(&bins));
    EXPECT_EQ(4, bins);
    EXPECT_EQ(S_FALSE, histogram->CreateFromHistogram(histogram.get()));  // itself, seen through its owner
    double mean = 0;
    EXPECT_TRUE(Fails(histogram->get_Mean(&mean), "IHistogram::get_Mean: empty histogram", "Orlix.Histogram.1"));
}

#ifndef _WIN32
// What regsvr32 and the registry do on Windows happens inside the process here.
class OwnRegistration : public ::testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(S_OK, DllRegisterServer()); }
};

TEST_F(OwnRegistration, CanBeTakenBackAndRepeated) {
    const CLSID clsid = __uuidof(OrlixHistogram);
    const auto histogram = CreateObject<IHistogram>("Orlix.Histogram");
    ComPtr<IUnknown> object;
    EXPECT_EQ(S_OK, DllUnregisterServer());
    EXPECT_EQ(kClassNotRegistered, Create(clsid, __uuidof(IUnknown), object));
    EXPECT_THROW(ClassOf("Orlix.Histogram"), Error);
    double mean = 0;
    EXPECT_TRUE(Fails(histogram->get_Mean(&mean), "IHistogram::get_Mean: empty histogram", ""));  // no name to give
    EXPECT_EQ(S_OK, DllUnregisterServer());

    EXPECT_EQ(S_OK, DllRegisterServer());
    EXPECT_EQ(S_OK, DllRegisterServer());
    EXPECT_EQ(S_OK, Create(clsid, __uuidof(IUnknown), object));
    EXPECT_TRUE(Fails(histogram->get_Mean(&mean), "IHistogram::get_Mean: empty histogram", "Orlix.Histogram.1"));
}

TEST(EntryPoints, RefuseWhatMakesNoSense) {
    void* object = &object;
    EXPECT_EQ(E_POINTER, DllGetClassObject(__uuidof(OrlixHistogram), __uuidof(IClassFactory), nullptr));
    EXPECT_EQ(kClassNotAvailable, DllGetClassObject(GUID_NULL, __uuidof(IClassFactory), &object));
    EXPECT_EQ(nullptr, object);
    EXPECT_EQ(E_POINTER,
              CoCreateInstance(__uuidof(OrlixHistogram), nullptr, CLSCTX_INPROC_SERVER, __uuidof(IUnknown), nullptr));
    EXPECT_EQ(E_INVALIDARG, CoGetClassObject(__uuidof(OrlixHistogram), CLSCTX_INPROC_SERVER, nullptr,
                                             __uuidof(IClassFactory), nullptr));
    object = &object;  // 4 asks for a server in another process
    EXPECT_EQ(kClassNotRegistered, CoCreateInstance(__uuidof(OrlixHistogram), nullptr, 4, __uuidof(IUnknown), &object));
    EXPECT_EQ(nullptr, object);
    CLSID clsid = {};
    EXPECT_EQ(E_INVALIDARG, CLSIDFromProgID(nullptr, &clsid));
    EXPECT_EQ(E_INVALIDARG, CLSIDFromProgID(OLESTR("Orlix.Histogram"), nullptr));
}

// In a process of its own, in which nothing has been looked up yet.
TEST(EntryPointsDeathTest, TheFactoryIsEnoughForTextsWithASource) {
    const auto useFactoryOnly = [] {
        ComPtr<IClassFactory> factory;
        ComPtr<IHistogram> histogram;
        Check(DllGetClassObject(__uuidof(OrlixHistogram), __uuidof(IClassFactory), factory.OutVoid()));
        Check(factory->CreateInstance(nullptr, __uuidof(IHistogram), histogram.OutVoid()));
        double mean = 0;
        const auto verdict =
            Fails(histogram->get_Mean(&mean), "IHistogram::get_Mean: empty histogram", "Orlix.Histogram.1");
        std::fputs(verdict ? "source given" : verdict.message(), stderr);
        std::_Exit(0);
    };
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(useFactoryOnly(), ::testing::ExitedWithCode(0), "source given");
}

TEST(EntryPoints, ThereIsNoGraphicsLibraryHere) { EXPECT_EQ(1, NeedGdiPlus()); }
#endif

}  // namespace
}  // namespace orlix::testing
