// Calls by name: arguments, results, errors.
#include <array>
#include <limits>
#include <map>

#include <orlix/counted_object.hpp>

#include "automation/script.hpp"

namespace orlix::testing {
namespace {

// Leaves no object behind.
class LateBinding : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(ModuleUnderTest()) << "is the module registered?"; }
    void TearDown() override { EXPECT_TRUE(ModuleIsUnlocked()); }
};

TEST_F(LateBinding, FindsMembersInAnyCaseAndTheirParameters) {
    const Script image("Orlix.Image");
    EXPECT_EQ(image.IdsOf("CREATEFROMsubimage"), image.IdsOf("CreateFromSubImage"));
    EXPECT_EQ((std::vector<DISPID>{image.IdsOf("Threshold")[0], 2, 0, DISPID_UNKNOWN}),
              image.IdsOf("threshold", {"BINSIDE", "lower", "hVal"}));
    // Raw memory is out of sight, and names belong to the objects that have them.
    for (const char* const name :
         {"VPA", "AttachBuffer", "CreateDIBSection", "RenderToMemory", "QueryInterface", "", "NumberOfVertices",
          "a name that is longer than any that the contract has, by far, in fact"})
        EXPECT_EQ(DISPID_UNKNOWN, image.IdsOf(name)[0]) << name;
    // Every number is one member's.
    std::map<DISPID, std::string> members;
    for (std::string name : kContractMethods) {
        if (name.starts_with("get_") || name.starts_with("put_")) name.erase(0, 4);
        const DISPID id = image.IdsOf(name.c_str())[0];
        if (id != DISPID_UNKNOWN) {
            EXPECT_EQ(name, members.try_emplace(id, name).first->second);
        }
    }
    EXPECT_LT(100u, members.size());
}

TEST_F(LateBinding, EveryKindOfObjectTakesPart) {
    const Script image = NewScriptImage(8, 6);
    image("ScalarEquals", {9});
    const Script bitmap(image("Threshold", {5, 10}));
    const Script blobs(bitmap("FindBlobs"));
    EXPECT_EQ(48, bitmap("PixelCount").number());
    EXPECT_EQ(1, blobs("Count").number());
    EXPECT_EQ(8, Script(blobs("Region", {0}))("Width").number());
    EXPECT_EQ(DT_DWORD, Script(blobs("LabelImage"))("DataType").number());
    EXPECT_EQ(48, Script(blobs("Outline", {0}))("Area").number());
    EXPECT_EQ(255, Script(image("Histogram"))("Right").number());
    const Script element("Orlix.StructuringElement");
    element("CreateDisk", {1.5});
    EXPECT_EQ(9, element("NumberOfElements").number());
    const Script buffer("Orlix.OrlixBuffer");
    buffer("CreateFromImage", {image});
    EXPECT_EQ(8, Script(buffer("GetFormat"))("BitsPerPixel").number());
    EXPECT_EQ(8, buffer("Width").number());
    const Script region("Orlix.ShapeRegionOfInterest");
    region("CreateCircle", {8, 6, 4, 3, 2});
    region.Put("Color", {-1});
    EXPECT_EQ(-1, region("Color").lVal);
    EXPECT_EQ(PT_Inside, region("Polarity").number());
    image.Put("RegionOfInterest", {region});
    EXPECT_EQ(13, Script(image("GrayMeasurements"))("PixelCount").number());
    EXPECT_EQ(region.get().get(), image("RegionOfInterest").pdispVal);
    for (const Variant& nothing : {Variant(ComPtr<IDispatch>()), Variant(), Variant::Of(VT_NULL)}) {
        EXPECT_EQ(S_OK, image.Try("RegionOfInterest", {nothing}, DISPATCH_PROPERTYPUT).result);
        const Variant none = image("RegionOfInterest");
        EXPECT_TRUE(none.vt == VT_DISPATCH && !none.pdispVal);
    }
}

TEST_F(LateBinding, ConvertsWhatAScriptHas) {
    const Script image = NewScriptImage(4, 4);
    Variant small = 5;
    small.vt = VT_UI1;
    Variant variable = "6";
    Variant inner = 7.5;
    Variant real = Variant::Of(VT_BYREF | VT_R8);
    real.pdblVal = &inner.dblVal;
    const struct {
        Variant given;
        double want;
    } values[] = {{3, 3},      {2.5, 2.5},  {small, 5}, {Variant::To(variable), 6},
                  {real, 7.5}, {"1e1", 10}, {true, -1}, {Variant(), 0}};
    const Script histogram("Orlix.Histogram");
    for (const auto& [given, want] : values) {
        histogram("Create", {2, given, 100});
        EXPECT_EQ(want, histogram("Left").number()) << "type " << given.vt;
    }
    // Flags count by being 0 or not; whole numbers are rounded, halves to the even one.
    EXPECT_EQ(16, Script(image("Threshold", {0, 1, true}))("PixelCount").number());
    image("Create", {Variant::To(real), 2.5});
    EXPECT_EQ(8, image("Width").number());
    EXPECT_EQ(2, image("Height").number());
    // Texts in the language of the call, German here.
    EXPECT_EQ(S_OK, histogram.Try("Create", {2, "2,5", 9}, kCallIt, {}, 0x407).result);
    EXPECT_EQ(2.5, histogram("Left").number());
    // Handles of the system are numbers.
    const Variant handle = image("CreateHBITMAP", {0});
    EXPECT_TRUE(DeleteObject(reinterpret_cast<HGDIOBJ>(static_cast<intptr_t>(handle.lVal)))) << "type " << handle.vt;
    EXPECT_EQ("IPictureEx::Render: invalid HDC", image.Try("Render", {77, 0, 0, 4, 4}).text);
    image.Put("Description", {12});
    EXPECT_EQ("12", image("Description").text());
    image.Put("Description", {Variant::Of(VT_NULL)});
    EXPECT_FALSE(image("Description").bstrVal);
}

TEST_F(LateBinding, RefusesWhatDoesNotFitAndSaysWhich) {
    const Script image = NewScriptImage(4, 4);
    const Variant big = 3e9, none = Variant::Of(VT_NULL), text = "three";
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const struct {
        const char* name;
        Arguments arguments;
        HRESULT result;
        UINT bad;
        WORD how = kCallIt;
        Names names = {};
    } cases[] = {
        {"Create", {1, big}, DISP_E_OVERFLOW, 1},
        {"Create", {nan, 1}, DISP_E_OVERFLOW, 0},
        {"Create", {1, text}, DISP_E_TYPEMISMATCH, 1},
        {"Create", {none, 1}, DISP_E_TYPEMISMATCH, 0},
        {"Create", {Variant::Of(VT_BYREF | VT_I4), 1}, DISP_E_TYPEMISMATCH, 0},
        {"Create", {Variant::Of(VT_BYREF | VT_VARIANT), 1}, DISP_E_TYPEMISMATCH, 0},
        {"Create", {1}, DISP_E_BADPARAMCOUNT, 99},
        {"Create", {1, 1, 1, 8, 1, 1}, DISP_E_BADPARAMCOUNT, 99},
        {"Create", {1, Variant::Missing()}, DISP_E_PARAMNOTOPTIONAL, 1},
        {"Create", {1, 2, 1}, DISP_E_BADPARAMCOUNT, 99, kCallIt, {"Width"}},
        {"Create", {3, 1, 1}, DISP_E_PARAMNOTFOUND, 1, kCallIt, {"Width", "Width"}},
        {"Sobel", {3}, DISP_E_TYPEMISMATCH, 0},
        {"Sobel", {Script("Orlix.Polygon")}, DISP_E_TYPEMISMATCH, 0},
        {"Create", {1, 1}, DISP_E_MEMBERNOTFOUND, 99, DISPATCH_PROPERTYGET},
        {"Version", {"9"}, DISP_E_MEMBERNOTFOUND, 99, DISPATCH_PROPERTYPUT},
        {"BandToProcess", {0}, DISP_E_MEMBERNOTFOUND, 99, DISPATCH_PROPERTYPUTREF},
        {"Version", {}, DISP_E_MEMBERNOTFOUND, 99, 0},
        {"GetTextEntry", {0, 1, 2}, DISP_E_TYPEMISMATCH, 1},
        {"CorrectPlanar", {Variant(ComPtr<IDispatch>())}, DISP_E_TYPEMISMATCH, 0},
        {"CorrectPlanar", {image}, DISP_E_TYPEMISMATCH, 0},
    };
    for (const auto& [name, arguments, result, bad, how, names] : cases) {
        const Outcome outcome = image.Try(name, arguments, how, names);
        EXPECT_EQ(result, outcome.result) << name;
        EXPECT_TRUE(bad == 99 || bad == outcome.badArgument) << name << outcome.badArgument;
    }
    EXPECT_EQ(4, image("Width").number()) << "nothing was called";
    EXPECT_EQ(DISP_E_PARAMNOTFOUND, image.TryId(image.IdsOf("Create")[0], {1, 2}, kCallIt, {7}).result);
    EXPECT_EQ(DISP_E_MEMBERNOTFOUND, image.TryId(DISPID_VALUE, {}, kCallIt).result);
    DISPPARAMS broken[] = {{nullptr, nullptr, 1, 0}, {nullptr, nullptr, 0, 1}};
    for (DISPPARAMS& given : broken)
        EXPECT_EQ(E_INVALIDARG, image.get()->Invoke(1, IID_NULL, 0, kCallIt, &given, nullptr, nullptr, nullptr));
}

TEST_F(LateBinding, TakesArgumentsByNameAndInAnyOrderAndLeavesOthersOut) {
    const Script image("Orlix.Image");
    image("Create", {5, 3, DT_WORD}, {"Height", "Width", "DataType"});
    EXPECT_EQ(3, image("Width").number());
    EXPECT_EQ(DT_WORD, image("DataType").number());
    image("Create", {2, 3, Variant::Missing(), DT_Float});
    EXPECT_EQ(DT_Float, image("DataType", {0}).number());
    const Script copy("Orlix.Image");
    copy("CreateFromImage", {image});
    EXPECT_EQ(3, copy("Height").number());
    image.Put("Table", {3, 77});
    EXPECT_EQ(77, image("Table", {3}).number());
    EXPECT_EQ(77, image("Table", {3}, {"Entry"}).number());
}

TEST_F(LateBinding, GivesResultsAsValuesAndObjectsAndInVariables) {
    const Script image = NewScriptImage(7, 5, 3);
    const Script sizes(image("Dimensions"));
    EXPECT_EQ((std::array<double, 3>{3, 7, 5}),
              (std::array{sizes("Bands").number(), sizes("width").number(), sizes("HEIGHT").number()}));
    sizes.Put("Width", {"wide"});
    EXPECT_EQ("wide", sizes("Width").text());
    EXPECT_EQ(DISPID_UNKNOWN, sizes.IdsOf("Depth")[0]);
    Variant bands = "before", width, height = image;
    image("Dimensions", {Variant::To(bands), Variant::To(width), Variant::To(height)});
    EXPECT_EQ(3, bands.lVal);
    EXPECT_EQ(7, width.lVal);
    EXPECT_EQ(5, height.lVal) << "and its object was released";
    Variant real = Variant::Of(VT_BYREF | VT_R8), shortOne = Variant::Of(VT_BYREF | VT_I2);
    double number = 0;
    SHORT sixteen = 0;
    real.pdblVal = &number;
    shortOne.piVal = &sixteen;
    image("Dimensions", {real, shortOne});
    EXPECT_EQ(3, number);
    EXPECT_EQ(7, sixteen);
    const Script histogram("Orlix.Histogram");
    histogram("Create", {4, 0, 40});
    EXPECT_EQ(10, Script(histogram("GetBinToLocationMapping"))("A").number());
    EXPECT_EQ(5, histogram("BinToLocation", {0}).number()) << "a single output is the result";
    // With what lies between results, by position: all, or only what goes in.
    Variant left, right;
    image("Create", {2, 1});
    image("ScalarEquals", {9});
    const Script counted(image("Histogram"));
    EXPECT_EQ(9, Script(counted("AutoThresholdTrim", {0.1, 0.1}))("Left").number());
    counted("AutoThresholdTrim", {0.1, Variant::To(left), 0.1, Variant::To(right)});
    EXPECT_EQ(9, left.number());
}

TEST_F(LateBinding, PassesTextsOfFailuresOn) {
    const Script image("Orlix.Image");
    const Outcome failed = image.Try("Invert", {});
    EXPECT_EQ(DISP_E_EXCEPTION, failed.result);
    EXPECT_EQ(E_FAIL, failed.scode);
    EXPECT_EQ("IImageProcess::Invert: no image.", failed.text);
    EXPECT_EQ("Orlix.Image.1", failed.source);
    EXPECT_EQ(E_POINTER, image.Try("CreateFromImage", {Variant()}).scode);
    EXPECT_EQ(E_NOTIMPL, NewScriptImage(1, 1).Try("LocalMaxima", {}).scode);
    EXPECT_EQ("", image.Try("LocalBackgroundCorrect", {}).text) << "not that of an earlier failure";
    const Script unknown(NewScriptImage(1, 1)("GetMicronsPerPixel"));
    EXPECT_EQ(0, unknown("X").number()) << "S_FALSE is a success";
}

TEST_F(LateBinding, ShowsRecordsWithTheirFields) {
    const Script image = NewScriptImage(6, 5);
    const Script map(image("GetCoords"));
    EXPECT_EQ(1, Script(map("Matrix"))("A11").number());
    Script(map("Matrix")).Put("A12", {0.25});
    map.Put("OrgX", {"-3"});
    image("SetCoords", {map});
    EXPECT_EQ(-3, Script(image("GetCoords"))("OrgX").number());
    EXPECT_EQ(0.25, Script(Script(image("GetCoords"))("Matrix"))("A12").number());
    const Script wide(image("DestRect"));
    EXPECT_EQ(0, wide("Left").number());
    image("ScalarEquals", {40});
    const Script fit(image("PlanarFit"));
    EXPECT_EQ(40, fit("Gamma").number());
    EXPECT_EQ(40, fit("m_dGamma").number());
    EXPECT_EQ(DISPID_UNKNOWN, fit.IdsOf("Size")[0]);
    EXPECT_EQ(DISPID_UNKNOWN, fit.IdsOf("m_lSize")[0]);
    EXPECT_EQ(DISP_E_TYPEMISMATCH, fit.Try("Alpha", {"steep"}, DISPATCH_PROPERTYPUT).result);
    image("CorrectPlanar", {fit});
    const Script robust(image("RobustPlanarFit", {0.5}));
    EXPECT_EQ(0, robust("Alpha").number());
}

// An object of a script with the fields of a plane: m_dAverage, Alpha, Beta and Gamma.
class ScriptPlane final : public CountedObject<IDispatch> {
public:
    STDMETHODIMP GetTypeInfoCount(UINT*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) noexcept override {
        const wchar_t* const known[] = {L"m_dAverage", L"Alpha", L"Beta", L"Gamma"};
        for (DISPID id = 0; id < 4; ++id)
            if (lstrcmpiW(names[0], known[id]) == 0) return *ids = id, S_OK;
        return DISP_E_UNKNOWNNAME;
    }
    STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*,
                        UINT*) noexcept override {
        *result = Variant(id * 2.0);  // 0, 2 x + 4 y + 6
        return id == failing ? E_FAIL : S_OK;
    }
    DISPID failing = -1;
};

TEST_F(LateBinding, ReadsRecordsFromObjectsOfTheScript) {
    const auto plane = MakeCounted<ScriptPlane>();
    const ComPtr<IDispatch> object(plane.get());
    const Script image = NewScriptImage(3, 2, 1, DT_Float);
    image("ScalarEquals", {100});
    image("CorrectPlanar", {object});
    const auto pixels = image("GetPixels").elements<float>(VT_R4);
    EXPECT_EQ(-2, pixels[1] - pixels[0]);
    EXPECT_EQ(-4, pixels[3] - pixels[0]);
    plane->failing = 2;
    EXPECT_EQ(DISP_E_TYPEMISMATCH, image.Try("CorrectPlanar", {object}).result);
}

TEST_F(LateBinding, HoldsTheObjectDuringTheCallOnly) {
    Script image = NewScriptImage(4, 4);
    const auto before = ComPtr<IDispatch>(image.get());
    const auto count = [&] { return before->AddRef(), before->Release(); };
    const ULONG references = count();
    for (int i = 0; i < 3; ++i) {
        image("Dimensions");
        image("CreateFromImage", {image});
        image.Try("CreateFromImage", {image, "x"});
        image.Try("Sobel", {image, 7});
    }
    EXPECT_EQ(references, count());
}

}  // namespace
}  // namespace orlix::testing
