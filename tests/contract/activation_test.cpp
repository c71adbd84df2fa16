// Objects as clients get them: by class and by name, through factories, inside other objects.
#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "contract/support.hpp"
#include "module/class_rows.hpp"

namespace orlix::testing {
namespace {

constexpr HRESULT kNoAggregation = static_cast<HRESULT>(0x80040110);
constexpr HRESULT kInvalidClassText = static_cast<HRESULT>(0x800401F3);

// What a class that can be created answers: its default interface first. IUnknown and ISupportErrorInfo come on top.
struct Creatable {
    const char* name;
    CLSID clsid;
    std::vector<IID> interfaces;
};

std::vector<Creatable> Creatables() {
    std::vector<Creatable> all = {
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
          __uuidof(IPictureExZoomDisp),
#endif
          __uuidof(IImageFrames), __uuidof(IModuleInformation)}},
        {"Orlix.OrlixBuffer",
         __uuidof(OrlixBuffer),
         {__uuidof(IDIBImage), __uuidof(IImageVPA), __uuidof(IPictureExZoom), __uuidof(IPictureEx),
#ifdef _WIN32
          __uuidof(IPictureExZoomDisp),
#endif
          __uuidof(IPictureMemory), __uuidof(IConnectionPointContainer)}},
        {"Orlix.VBHelper", __uuidof(OrlixVBHelper), {__uuidof(IVBHelper)}},
    };
#ifdef _WIN32
    for (Creatable& creatable : all) creatable.interfaces.push_back(__uuidof(IDispatch));
#endif
    return all;
}

// Every interface of the contract that some class answers.
std::vector<IID> AllInterfaces() {
    std::vector<IID> all;
    for (const Creatable& creatable : Creatables())
        all.insert(all.end(), creatable.interfaces.begin(), creatable.interfaces.end());
    return all;
}

HRESULT Create(const CLSID& clsid, const IID& iid, ComPtr<IUnknown>& object) {
    return CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, iid, object.OutVoid());
}

// Whether the call fails with the result and leaves no object.
template <class Call>
bool Refuses(HRESULT result, const Call& call) {
    void* object = &object;
    return call(&object) == result && !object;
}

bool Contains(const std::vector<IID>& interfaces, const IID& iid) {
    return std::find(interfaces.begin(), interfaces.end(), iid) != interfaces.end();
}

// What the mean of an empty histogram reports.
::testing::AssertionResult Reports(const ComPtr<IHistogram>& histogram, const char* source = "Orlix.Histogram.1") {
    double mean = 0;
    return Fails(histogram->get_Mean(&mean), "IHistogram::get_Mean: empty histogram", source);
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

TEST(Activation, AllFourteenNamesLeadToTheirClassesAndBackBuiltOrNot) {
    for (const ClassFacts& facts : kClassFacts) {
        SCOPED_TRACE(facts.coclass);
        const std::string versioned = std::string(facts.progId) + ".1";
        CLSID want = {};
        ASSERT_EQ(S_OK, CLSIDFromString(ToUtf16(facts.clsid).c_str(), &want));
        EXPECT_TRUE(want == ClassOf(facts.progId));
        EXPECT_TRUE(want == ClassOf(versioned));
        EXPECT_EQ(versioned, NameOf(want));
        if (facts.built) continue;
        EXPECT_TRUE(Refuses(kClassNotAvailable, [&](void** object) {
            return CoCreateInstance(want, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IUnknown), object);
        }));
        ComPtr<IErrorInfo> info;
        ASSERT_EQ(S_OK, GetErrorInfo(0, info.Out()));
        Text text, source;
        info->GetDescription(text.Out());
        info->GetSource(source.Out());
        EXPECT_EQ("This class is not built yet.", text.Utf8());
        EXPECT_EQ(versioned, source.Utf8());
    }
}

TEST(Activation, WhatIsNotRegisteredIsNotFound) {
    constexpr CLSID kUnknown = {0x6a1b5f30, 0x1c2d, 0x4e3f, {0x90, 0x01, 0x10, 0x20, 0x30, 0x40, 0x50, 0x30}};
    EXPECT_TRUE(Refuses(kClassNotRegistered, [&](void** object) {
        return CoCreateInstance(kUnknown, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IUnknown), object);
    }));
    EXPECT_TRUE(Refuses(kClassNotRegistered, [&](void** factory) {
        return CoGetClassObject(kUnknown, CLSCTX_INPROC_SERVER, nullptr, __uuidof(IClassFactory), factory);
    }));
    for (const OLECHAR* name : {OLESTR("Orlix.Nothing"), OLESTR("Orlix.Histogram.2"), OLESTR("Orlix")}) {
        CLSID clsid = kUnknown;
        EXPECT_EQ(kInvalidClassText, CLSIDFromProgID(name, &clsid));
    }
    EXPECT_THROW(ClassOf("Orlix.Nothing"), Error);
}

TEST(Client, NamesWhatFailedWithoutAText) {
    const ComPtr<IBitmap> bitmap = Cast<IBitmap>(NewBitmap(1, 1));
    const struct {
        std::function<void()> call;
        HRESULT result;
        const char* text;
    } cases[] = {
        {[] { CreateObject<IUnknown>("Orlix.SplineImage.1"); }, kClassNotAvailable,
         "Orlix.SplineImage.1: CLASS_E_CLASSNOTAVAILABLE (the class is not built)"},
        {[] { CreateObject<IUnknown>(__uuidof(OrlixImageView)); }, kClassNotAvailable,
         "Orlix.ImageView.1: CLASS_E_CLASSNOTAVAILABLE (the class is not built)"},
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

TEST(Client, CallReturnsWhatAMethodWrites) {
    const auto image = CreateObject<IImageVPAExPlus>("Orlix.Image");
    Check(image->Create(4, 3, 1, DT_BYTE, 0), image);
    const auto [bands, width, height] = Call(image, &IImageVPA::Dimensions);  // of a base, several values
    EXPECT_EQ(std::tuple(1, 4, 3), std::tuple(bands, width, height));
    Check(image->put_Description(Text("pores")), image);
    const Text description = Call(image, &IImageVPAExPlus::get_Description);
    EXPECT_EQ("pores", description.Utf8());
    const auto process = Cast<IImageProcess>(image);
    ComPtr<IBitmap> bitmap = Call(process, &IImageProcess::Threshold, 0, 1, 1);  // the only reference
    EXPECT_EQ(0u, bitmap.Detach()->Release());
    const auto copy = CreateObject<IImageProcess>("Orlix.Image");
    EXPECT_THROW(Call(copy, &IImageProcess::Threshold, 0, 1, 1), Error);
    EXPECT_THROW(Call(ComPtr<IImageProcess>(), &IImageProcess::Threshold, 0, 1, 1), Error);
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
            for (const IID& other : AllInterfaces())
                EXPECT_TRUE(Contains(answered, other) || Refuses(E_NOINTERFACE, [&](void** result) {
                                return first->QueryInterface(other, result);
                            }));
            EXPECT_EQ(E_POINTER, first->QueryInterface(__uuidof(IUnknown), nullptr));
        }
        EXPECT_EQ(1u, ReferencesOf(object.get()));
        const auto support = object.As<ISupportErrorInfo>();
        ASSERT_TRUE(support);
        for (const IID& iid : AllInterfaces())
            EXPECT_EQ(Contains(creatable.interfaces, iid) ? S_OK : S_FALSE, support->InterfaceSupportsErrorInfo(iid));
    }
    EXPECT_TRUE(Refuses(E_NOINTERFACE, [](void** object) {
        return CoCreateInstance(__uuidof(OrlixBitmap), nullptr, CLSCTX_INPROC_SERVER, __uuidof(IHistogram), object);
    }));
    EXPECT_EQ(S_OK, CanUnloadNow());
}

TEST(Factories, MakeObjectsOfTheirClass) {
    for (const Creatable& creatable : Creatables()) {
        SCOPED_TRACE(creatable.name);
        EXPECT_TRUE(creatable.clsid == ClassOf(creatable.name));
        const auto factory = FactoryOf(creatable.clsid);
        ASSERT_TRUE(factory);
        for (const IID& iid : creatable.interfaces) {
            ComPtr<IUnknown> object, made;
            EXPECT_EQ(S_OK, Create(creatable.clsid, iid, object));
            EXPECT_EQ(S_OK, factory->CreateInstance(nullptr, iid, made.OutVoid()));
            EXPECT_EQ(1u, ReferencesOf(made.get()));
            EXPECT_TRUE(Refuses(E_NOINTERFACE, [&](void** refused) { return factory->QueryInterface(iid, refused); }));
        }
        EXPECT_EQ(E_POINTER, factory->CreateInstance(nullptr, creatable.interfaces.front(), nullptr));
    }
}

// Also those that a method made, and an enumerator of connections: unlike a connection point, which is a part of its
// image, it may be the last thing that a client holds.
TEST(Factories, KeepTheModuleLockedAsLongAsObjectsOrLocksLive) {
    const auto factory = FactoryOf(__uuidof(OrlixHistogram));
    EXPECT_EQ(S_OK, CanUnloadNow());
    const std::function<ComPtr<IUnknown>()> makers[] = {
        [] { return CreateObject<IUnknown>(__uuidof(OrlixHistogram)); },
        [] { return Get(NewImage<uint8_t>(4, 3).process, &IImageProcess::Threshold, 0, 10, 1).As<IUnknown>(); },
        [] { return Get(PointOf(NewImage<uint8_t>(4, 3)), &IConnectionPoint::EnumConnections).As<IUnknown>(); },
        [] {
            const auto connections = Get(PointOf(NewImage<uint8_t>(4, 3)), &IConnectionPoint::EnumConnections);
            return Get(connections, &IEnumConnections::Clone).As<IUnknown>();
        }};
    for (const auto& make : makers) {
        const ComPtr<IUnknown> object = make();
        EXPECT_EQ(S_FALSE, CanUnloadNow()) << &make - makers;
    }
    EXPECT_EQ(S_OK, CanUnloadNow());
    EXPECT_EQ(S_OK, factory->LockServer(TRUE));
    EXPECT_EQ(S_FALSE, CanUnloadNow());
    EXPECT_EQ(S_OK, factory->LockServer(FALSE));
    EXPECT_EQ(S_OK, CanUnloadNow());
}

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
        EXPECT_TRUE(Refuses(kNoAggregation, [&](void** refused) {
            return CoCreateInstance(creatable.clsid, holder.get(), CLSCTX_INPROC_SERVER, creatable.interfaces.front(),
                                    refused);
        }));
    }
    EXPECT_EQ(S_OK, CanUnloadNow());
}

TEST(Aggregation, AnObjectInsideAnotherWorksAndReports) {
    const auto holder = MakeCounted<Holder>();
    ASSERT_EQ(S_OK, holder->Hold(__uuidof(OrlixHistogram)));
    const auto histogram = Cast<IHistogram>(holder);
    EXPECT_EQ(S_OK, histogram->Create(4, 0, 3));
    EXPECT_EQ(S_FALSE, histogram->CreateFromHistogram(histogram.get()));  // itself, seen through its owner
    EXPECT_TRUE(Reports(histogram));
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
    EXPECT_TRUE(Reports(histogram, "")) << "no name to give";
    EXPECT_EQ(S_OK, DllUnregisterServer());

    EXPECT_EQ(S_OK, DllRegisterServer());
    EXPECT_EQ(S_OK, DllRegisterServer());
    EXPECT_EQ(S_OK, Create(clsid, __uuidof(IUnknown), object));
    EXPECT_TRUE(Reports(histogram));
}

TEST(EntryPoints, RefuseWhatMakesNoSense) {
    const CLSID& known = __uuidof(OrlixHistogram);
    EXPECT_EQ(E_POINTER, DllGetClassObject(known, __uuidof(IClassFactory), nullptr));
    EXPECT_TRUE(Refuses(kClassNotAvailable,
                        [](void** object) { return DllGetClassObject(GUID_NULL, __uuidof(IClassFactory), object); }));
    EXPECT_EQ(E_POINTER, CoCreateInstance(known, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IUnknown), nullptr));
    EXPECT_EQ(E_INVALIDARG, CoGetClassObject(known, CLSCTX_INPROC_SERVER, nullptr, __uuidof(IClassFactory), nullptr));
    EXPECT_TRUE(Refuses(kClassNotRegistered, [&](void** object) {  // 4 asks for a server in another process
        return CoCreateInstance(known, nullptr, 4, __uuidof(IUnknown), object);
    }));
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
        const auto verdict = Reports(histogram);
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
