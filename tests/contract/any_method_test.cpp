// Rules that hold for all methods of the contract, whatever it gains: what they say of an image that has no pixels, and
// that they refuse null pointers.
#include <algorithm>
#include <string_view>

#include "contract/support.hpp"

namespace orlix::testing {
namespace {

// Where pointers among the arguments lead.
struct Place {
    alignas(16) std::array<unsigned char, 512> bytes = {};
    Text text{"text"};
    TypedImage<uint8_t> image = NewImage<uint8_t>(1, 1);
};

// A method that can be called with any arguments: all numbers are the given one, and one pointer may be null.
struct Method {
    std::string_view name;
    IID iid;
    std::vector<size_t> pointers;  // positions of those that are no texts
    std::function<HRESULT(IUnknown*, double number, Place&, size_t nullAt)> call;
};

template <class I>
class AnyClient final : public CountedObject<Refusing<I>> {};

template <class Parameter>
Parameter AnyArgument(double number, Place& place, bool null) {
    using Pointed = std::remove_pointer_t<Parameter>;
    if constexpr (std::is_same_v<Parameter, BSTR>) {
        return place.text;
    } else if constexpr (std::is_same_v<Parameter, IImageVPA*>) {
        return null ? nullptr : place.image.get();
    } else if constexpr (std::is_pointer_v<Parameter> && std::is_convertible_v<Parameter, IUnknown*>) {
        static const auto client = MakeCounted<AnyClient<Pointed>>();
        return null ? nullptr : client.get();
    } else if constexpr (std::is_pointer_v<Parameter>) {
        return null ? nullptr : reinterpret_cast<Parameter>(place.bytes.data());
    } else if constexpr (std::is_arithmetic_v<Parameter> || std::is_enum_v<Parameter>) {
        return static_cast<Parameter>(number);
    } else {
        static const std::remove_cvref_t<Parameter> nothing = {};
        return nothing;
    }
}

template <class I, class... Parameters>
Method MethodOf(const char* name, HRESULT (STDMETHODCALLTYPE I::*method)(Parameters...)) {
    return [&]<size_t... i>(std::index_sequence<i...>) {
        Method result{name,
                      __uuidof(I),
                      {},
                      [method]([[maybe_unused]] IUnknown* object, [[maybe_unused]] double number,
                               [[maybe_unused]] Place& place, [[maybe_unused]] size_t nullAt) {
                          ComPtr<I> callee;
                          Check(object->QueryInterface(__uuidof(I), callee.OutVoid()));
                          return (callee.get()->*method)(AnyArgument<Parameters>(number, place, i == nullAt)...);
                      }};
        ((std::is_pointer_v<Parameters> && !std::is_same_v<Parameters, BSTR> ? result.pointers.push_back(i) : void()),
         ...);
        return result;
    }
    (std::index_sequence_for<Parameters...>());
}

// Those that the object answers.
std::vector<Method> MethodsOf(IUnknown* object) {
    static const std::vector<Method> all = {
#define ORLIX_METHOD(I, method) MethodOf(#I "::" #method, &I::method),
#include "contract_methods.inc"
#undef ORLIX_METHOD
    };
    std::vector<Method> answered;
    for (const Method& method : all)
        if (ComPtr<IUnknown> i; object->QueryInterface(method.iid, i.OutVoid()) == S_OK) answered.push_back(method);
    return answered;
}

template <class Names>
bool Contains(const Names& names, std::string_view name) {
    return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

// ------------------------------------------------------------------------------------------------------------ no image

// What need is there of an image: none at all, of a type, or of pixels?
enum class Need { Nothing, Type, Pixels };
Need NeedOf(const Method& method) {
    constexpr std::string_view settings[] = {
        "get_BandToProcess", "put_BandToProcess", "get_RegionOfInterest", "put_RegionOfInterest",
        "GetLuminanceRange", "get_NumberOfBins",  "put_NumberOfBins",     "PutLuminanceRange",
        "get_Table",         "put_Table"};
    constexpr std::string_view none[] = {"SaveToFile",      "get_SampleLimit",  "put_SampleLimit",
                                         "get_LocalMaxima", "get_LocalMinima",  "LocalBackgroundCorrect",
                                         "LoadFromFile",    "GetNumberOfPages", "get_Quality",
                                         "put_Quality",     "LoadFromStream"};
    const std::string_view owner = method.name.substr(0, method.name.find(':'));
    const std::string_view name = method.name.substr(method.name.rfind(':') + 1);
    if (Contains(none, name)) return Need::Nothing;
    if (owner == "IImageFile" || owner == "IImageEntries" || owner == "IDisplayProcess") return Need::Type;
    if (owner.ends_with("ImageProcess") || owner == "IImageProcessBase")
        return Contains(settings, name) ? Need::Type : Need::Pixels;
    return Need::Nothing;
}

void ExpectNoImage(const Image& image, Need least) {
    int asked = 0;
    for (const Method& method : MethodsOf(image.get())) {
        if (NeedOf(method) < least) continue;
        // Unlike the methods of other interfaces, those of the display do not say what is missing.
        const bool silent = method.name.starts_with("IDisplayProcess");
        Place place;
        const HRESULT result = method.call(image.get(), 0.5, place, SIZE_MAX);
        EXPECT_TRUE(silent ? FailsSilently(result) : Fails(result, std::string(method.name) + ": no image."))
            << method.name;
        ++asked;
    }
    EXPECT_GE(asked, 40);
}

TEST(NoImage, IsNamedByEachMethodThatNeedsOne) {
    const Image image;
    ExpectNoImage(image, Need::Type);
    EXPECT_TRUE(FailsSilently(image->Create(2, 2, 1, DT_Double, 0))) << "empties the image";
    ExpectNoImage(image, Need::Type);
    EXPECT_EQ(DISP_E_EXCEPTION, image->Create(0, 2, 1, DT_WORD, 0)) << "a typed image without pixels";
    ExpectNoImage(image, Need::Pixels);
    EXPECT_EQ(E_FAIL, image->AttachBuffer(reinterpret_cast<void*>(8), 2, 2, 1, DT_WORD, 0));
    ExpectNoImage(image, Need::Pixels);
}

// ------------------------------------------------------------------------------------------------------- null pointers

// Methods for which a null pointer has a meaning, or another result; their own tests have them.
constexpr std::string_view kNullIsSpecial[] = {
    "AttachBuffer",    "put_RegionOfInterest", "Attach",           "CreateFromHBITMAP",
    "get_LocalMaxima", "get_LocalMinima",      "Advise",           "HitOrMiss",
    "Create",          "get_LevelOutline",     "Render",           "RenderTopLeft",
    "RenderBlt",       "RenderStretch",        "Invoke",           "GetIDsOfNames",
    "CreateHBITMAP",   "GetTypeInfo",          "GetTypeInfoCount", "GetLevelMeasurements"};

// Before any other test, and nothing is written.
TEST(NullPointers, AreRefusedOneByOne) {
    const auto image = NewImage<uint8_t>(2, 2);
    const auto bitmap = NewBitmap(9, 4);
    const ComPtr<IUnknown> objects[] = {Cast<IUnknown>(image),
                                        Cast<IUnknown>(PointOf(image)),
                                        Cast<IUnknown>(HistogramOf({1, 2, 3}, 0, 2)),
                                        Cast<IUnknown>(bitmap),
                                        Cast<IUnknown>(Get(bitmap, &IBitmapProcess::FindBlobs, CT_8)),
                                        Cast<IUnknown>(NewRegion()),
                                        CreateObject<IUnknown>("orlix.StructuringElement"),
                                        CreateObject<IUnknown>("Orlix.Polygon"),
                                        CreateObject<IUnknown>("Orlix.OrlixBuffer"),
                                        CreateObject<IUnknown>("Orlix.VBHelper")};
    for (const auto& object : objects)
        for (const Method& method : MethodsOf(object.get()))
            for (const size_t position : method.pointers) {
                if (Contains(kNullIsSpecial, method.name.substr(method.name.rfind(':') + 1))) continue;
                Place place;
                place.bytes.fill(0xa5);
                const auto before = place.bytes;
                EXPECT_TRUE(FailsSilently(method.call(object.get(), 4711, place, position), E_POINTER))
                    << method.name << ", argument " << position;
                EXPECT_EQ(before, place.bytes) << method.name;
            }
}

}  // namespace
}  // namespace orlix::testing
