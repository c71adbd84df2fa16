// The table of all methods, and the few whose arguments belong together.
#include <algorithm>
#include <array>
#include <climits>
#include <tuple>
#include <utility>

#include "fuzz/calls/arguments.hpp"
#include "fuzz/calls/heap.hpp"
#include "image/source_image.hpp"

namespace orlix::fuzz {
namespace {

// What a method hands out is used as a client would use it, while that is allowed: until the object changes. arguments
// is the tuple of what was passed. Specialised by method.
template <auto Pointer>
struct AfterCall {
    static constexpr bool kLooks = false;
};

// Methods that need arguments which fit each other are called by a specialisation.
template <auto Pointer>
struct Special {
    static constexpr bool kSpecial = false;
};

// Robust fits, whose first argument is the probability of a good pixel: small ones ask for millions of trials by
// contract.
template <auto Pointer>
constexpr bool kRobust = false;
#define ORLIX_ROBUST(name) \
    template <>            \
    constexpr bool kRobust<&IOrlixImageProcess::name> = true;
template <>
constexpr bool kRobust<&IPolygon::RobustCircleFit> = true;
ORLIX_ROBUST(get_RobustPlanarFit)
ORLIX_ROBUST(get_RobustBiquadraticFit)
ORLIX_ROBUST(get_RobustBicubicFit)
ORLIX_ROBUST(get_RobustHemisphereFit)
ORLIX_ROBUST(get_RobustAngledHemisphereFit)
ORLIX_ROBUST(RobustCorrectPlanar)
ORLIX_ROBUST(RobustCorrectBiquadratic)
ORLIX_ROBUST(RobustCorrectBicubic)
ORLIX_ROBUST(RobustCorrectHemisphere)
ORLIX_ROBUST(RobustCorrectAngledHemisphere)
#undef ORLIX_ROBUST

template <auto Pointer>
struct Invoker;

template <class I, class Result, class... Parameters, Result (STDMETHODCALLTYPE I::*Pointer)(Parameters...)>
struct Invoker<Pointer> {
    static void Call(World& world, const Method& method, ComPtr<IUnknown>& target, bool held) {
        I* const object = static_cast<I*>(target.get());
        if constexpr (Special<Pointer>::kSpecial) {
            Special<Pointer>::Call(world, method, target, held);
        } else {
            // Element by element: a tuple makes its elements in an order of its own.
            const auto at = [&]<size_t... K>(std::index_sequence<K...>) {
                std::tuple<std::unique_ptr<Argument<Parameters>>...> arguments;
                ((std::get<K>(arguments) = std::make_unique<Argument<Parameters>>(world)), ...);
                if constexpr (kRobust<Pointer>) {
                    constexpr double kLeast = 0.75;
                    const double probability = std::get<0>(arguments)->get();
                    if (probability > 0 && probability < kLeast) std::get<0>(arguments)->put(kLeast);
                }
                const HRESULT result = Invoke(world, method, target, held, *std::get<K>(arguments)...);
                if constexpr (AfterCall<Pointer>::kLooks)
                    if (target) AfterCall<Pointer>::Look(world, object, result, *std::get<K>(arguments)...);
                (std::get<K>(arguments)->Done(world, result), ...);
            };
            at(std::index_sequence_for<Parameters...>());
        }
    }

private:
    template <class... Arguments>
    static HRESULT Invoke(World& world, const Method& method, ComPtr<IUnknown>& target, bool held,
                          Arguments&... arguments) {
        I* const object = static_cast<I*>(target.get());
        World::Call call(world, method, target, held);
        return call.Result((object->*Pointer)(arguments.get()...));
    }
};

// For the specialisations: a call with given arguments.
template <class I, class... Parameters, class... Arguments>
HRESULT CallWith(World& world, const Method& method, ComPtr<IUnknown>& target, bool held,
                 HRESULT (STDMETHODCALLTYPE I::*pointer)(Parameters...), Arguments... arguments) {
    I* const object = static_cast<I*>(target.get());
    World::Call call(world, method, target, held);
    return call.Result((object->*pointer)(arguments...));
}

// Mostly small. Else what takes little time, or so much memory that it is refused: some methods look at each pixel many
// times.
struct Size {
    explicit Size(World& world) {
        Choices& choices = world.choices();
        constexpr LONG kTypes[] = {DT_BYTE, DT_WORD, DT_DWORD, DT_Float};
        type = kTypes[choices.Below(4)];
        width = 1 + static_cast<LONG>(choices.Below(24));
        height = 1 + static_cast<LONG>(choices.Below(24));
        bands = choices.Chance(64) ? 1 + static_cast<LONG>(choices.Below(3)) : 1;
        if (!choices.Chance(40)) return;
        (choices.Chance(128) ? width : height) = world.Long();
        if (choices.Chance(64)) bands = world.Long();
        if (choices.Chance(64)) type = world.Long();
        constexpr double kMost = 20000, kRefused = 1e8;
        const double pixels = static_cast<double>(width) * height * bands;
        if (width > 0 && height > 0 && bands > 0 && pixels > kMost && pixels < kRefused) {
            width = std::min(width, LONG{10000});
            height = bands = 1;
        }
    }
    LONG type, width, height, bands;
};

#define ORLIX_SPECIAL(I, name)                                                                     \
    template <>                                                                                    \
    struct Special<&I::name> {                                                                     \
        static constexpr bool kSpecial = true;                                                     \
        static void Call(World& world, const Method& method, ComPtr<IUnknown>& target, bool held); \
    };                                                                                             \
    void Special<&I::name>::Call(World& world, const Method& method, ComPtr<IUnknown>& target, bool held)

ORLIX_SPECIAL(IImageVPAExPlus, Create) {
    const Size size(world);
    const LONG zero = world.choices().Chance(96) ? 0 : 1;
    CallWith(world, method, target, held, &IImageVPAExPlus::Create, size.width, size.height, size.bands, size.type,
             zero);
}

// As large as the images above are at most.
constexpr size_t kBufferSize = 24 * 24 * 3 * sizeof(double);

// Memory of the client's that may be another image's too, the image's own pixels, or addresses with nothing behind
// them.
void* BufferFor(World& world, IUnknown& image) {
    Choices& choices = world.choices();
    const size_t kind = choices.Below(8);
    if (kind == 0) return HostileAddress(choices.Byte());
    if (kind < 3)
        for (const std::span<uint8_t> memory : world.memories())
            if (memory.size() >= 2 * kBufferSize) return memory.data() + choices.Below(kBufferSize);
    if (kind < 5) {
        ComPtr<IImageVPA> own;
        ComPtr<IPixelAccess> access;  // an image with a refused buffer still tells its address
        void* base = nullptr;
        VPAEntry* table = nullptr;
        LONG bands = 0, width = 0, height = 0, type = 0;
        if (SUCCEEDED(image.QueryInterface(__uuidof(IImageVPA), own.OutVoid())) && own &&
            SUCCEEDED(image.QueryInterface(__uuidof(IPixelAccess), access.OutVoid())) && access &&
            access->Accessible() == S_OK && own->VPA(0, &base, &table) == S_OK &&
            own->Dimensions(&bands, &width, &height) == S_OK && own->DataType(0, &type) == S_OK)
            return static_cast<uint8_t*>(base) +
                   choices.Below(static_cast<size_t>(width) * static_cast<size_t>(height) *
                                 static_cast<size_t>((type & 0x1ff) / 8));
    }
    return world.Memory(2 * kBufferSize).data();
}

ORLIX_SPECIAL(IImageVPAExPlus, AttachBuffer) {
    const Size size(world);
    const int64_t sample = (size.type & 0x1ff) / 8;
    const auto fits = [](LONG n) { return n > 0 && n <= 24; };
    const bool honest = fits(size.width) && fits(size.height) && fits(size.bands) && sample > 0 && sample <= 8;
    void* buffer = HostileAddress(world.choices().Byte());
    // Absurd sizes go with addresses behind which the system finds an end.
    if (honest) buffer = BufferFor(world, *target);
    const LONG zero = world.choices().Chance(96) ? 1 : 0;
    CallWith(world, method, target, held, &IImageVPAExPlus::AttachBuffer, buffer, size.width, size.height, size.bands,
             size.type, zero);
}

ORLIX_SPECIAL(IPictureEx, AttachBuffer) {
    const LONG width = 1 + static_cast<LONG>(world.choices().Below(24)), height = world.Long();
    const LONG bits = world.choices().Chance(48) ? world.Long() : world.choices().Chance(128) ? 8 : 16;
    void* const buffer = height <= 24 ? BufferFor(world, *target) : HostileAddress(world.choices().Byte());
    CallWith(world, method, target, held, &IPictureEx::AttachBuffer, buffer, width, height, bits);
}

ORLIX_SPECIAL(IImageVPAExPlus, CreateFromFile) {
    const auto name = world.FileName();
    const BSTR text =
        world.choices().Chance(4) ? nullptr : SysAllocStringLen(name.data(), static_cast<UINT>(name.size()));
    CallWith(world, method, target, held, &IImageVPAExPlus::CreateFromFile, text);
    SysFreeString(text);
}

ORLIX_SPECIAL(IImageFile, SaveToFile) {
    const auto name = world.FileName();
    const BSTR text =
        world.choices().Chance(4) ? nullptr : SysAllocStringLen(name.data(), static_cast<UINT>(name.size()));
    const Argument<ImageFileFormat> format(world);
    CallWith(world, method, target, held, &IImageFile::SaveToFile, text, format.get());
    SysFreeString(text);
}

ORLIX_SPECIAL(IImageEntries, ReadBinaryEntry) {
    const LONG index = world.Long(), offset = world.Long(), size = world.Long();
    // The caller's memory is as large as the size says, except for sizes that no entry has.
    Bytes bytes(static_cast<size_t>(size > 0 && size < 100000 ? size : 1));
    CallWith(world, method, target, held, &IImageEntries::ReadBinaryEntry, index, offset, size,
             world.choices().Chance(6) ? nullptr : bytes.data());
}

ORLIX_SPECIAL(IImageEntries, PutBinaryEntry) {
    const Argument<BSTR> keyword(world);
    const LONG size = world.Long();
    if (size >= 100000) return;
    Bytes bytes(static_cast<size_t>(size > 0 ? size : 0), world.choices().Byte());
    CallWith(world, method, target, held, &IImageEntries::PutBinaryEntry, keyword.get(), size,
             world.choices().Chance(6) ? nullptr : bytes.data());
}

// The system gives bins as they are touched: billions of them cost nothing here, and seconds in each method after it.
ORLIX_SPECIAL(IHistogram, Create) {
    const LONG bins = std::min(world.Long(), LONG{70000});
    const double left = world.Double(), right = world.Double();
    CallWith(world, method, target, held, &IHistogram::Create, bins, left, right);
}

ORLIX_SPECIAL(IPolygon, Create) {
    const LONG count = world.choices().Chance(200) ? static_cast<LONG>(world.choices().Below(40)) : world.Long();
    if (count > 2000) return;
    std::vector<SVertice> vertices(static_cast<size_t>(count > 0 ? count : 0));
    const bool tame = world.choices().Chance(128);
    for (SVertice& vertex : vertices) {
        vertex = {world.Double(), world.Double()};
        if (tame) vertex = {static_cast<double>(world.choices().Byte()), static_cast<double>(world.choices().Byte())};
    }
    CallWith(world, method, target, held, &IPolygon::Create, count,
             world.choices().Chance(6) ? nullptr : vertices.data());
}

ORLIX_SPECIAL(IConnectionPoint, Unadvise) {
    const auto cookie = static_cast<DWORD>(world.choices().Chance(16) ? world.Long() : world.choices().Below(8));
    CallWith(world, method, target, held, &IConnectionPoint::Unadvise, cookie);
}

template <class Element>
size_t Elements(World& world, std::vector<Element>& elements) {
    elements.resize(world.choices().Below(5));
    return elements.size();
}

ORLIX_SPECIAL(IEnumConnectionPoints, Next) {
    std::vector<IConnectionPoint*> points;
    const auto count = static_cast<ULONG>(Elements(world, points));
    ULONG fetched = 0;
    CallWith(world, method, target, held, &IEnumConnectionPoints::Next, count, points.data(),
             world.choices().Chance(16) ? nullptr : &fetched);
    for (IConnectionPoint* const point : points)
        if (point) world.Adopt(__uuidof(IConnectionPoint), point);
}

ORLIX_SPECIAL(IEnumConnections, Next) {
    std::vector<CONNECTDATA> connections;
    const auto count = static_cast<ULONG>(Elements(world, connections));
    ULONG fetched = 0;
    CallWith(world, method, target, held, &IEnumConnections::Next, count, connections.data(),
             world.choices().Chance(16) ? nullptr : &fetched);
    for (const CONNECTDATA& connection : connections)
        if (connection.pUnk) world.Adopt(__uuidof(IPictureExEvents), connection.pUnk);
}

// Too many locks would outlive the sequence: each is taken back.
ORLIX_SPECIAL(IClassFactory, LockServer) {
    if (CallWith(world, method, target, held, &IClassFactory::LockServer, TRUE) == S_OK)
        CallWith(world, method, target, held, &IClassFactory::LockServer, FALSE);
}

ORLIX_SPECIAL(IClassFactory, CreateInstance) {
    void* made = nullptr;
    const IID& iid = world.Identifier();
    CallWith(world, method, target, held, &IClassFactory::CreateInstance, static_cast<IUnknown*>(nullptr), iid,
             world.choices().Chance(6) ? nullptr : &made);
    if (made) world.Adopt(iid, static_cast<IUnknown*>(made));
}

#ifdef _WIN32

ORLIX_SPECIAL(IDispatch, GetIDsOfNames) {
    OLECHAR known[] = L"zoomFACTOR", unknown[] = L"none";
    LPOLESTR names[] = {world.choices().Chance(128) ? known : unknown, world.choices().Chance(16) ? nullptr : unknown};
    DISPID ids[2] = {};
    CallWith(world, method, target, held, &IDispatch::GetIDsOfNames,
             world.choices().Chance(8) ? world.Identifier() : IID_NULL, world.choices().Chance(6) ? nullptr : names,
             static_cast<UINT>(world.choices().Below(3)), LCID{0}, world.choices().Chance(6) ? nullptr : ids);
}

ORLIX_SPECIAL(IDispatch, Invoke) {
    Choices& choices = world.choices();
    VARIANT arguments[2] = {};
    for (VARIANT& argument : arguments) {
        switch (choices.Below(6)) {
            case 0:
                argument.vt = VT_R8;
                argument.dblVal = world.Double();
                break;
            case 1:
                argument.vt = VT_I4;
                argument.lVal = world.Long();
                break;
            case 2:
                argument.vt = VT_BSTR;
                argument.bstrVal = SysAllocString(choices.Chance(128) ? L"2.5" : L"none");
                break;
            case 3:
                argument.vt = VT_DISPATCH;
                target->AddRef();
                argument.pdispVal = static_cast<IDispatch*>(target.get());
                break;
            case 4:
                argument.vt = VT_ERROR;
                argument.scode = world.Long();
                break;
            default:
                break;
        }
    }
    DISPPARAMS parameters = {arguments, nullptr, static_cast<UINT>(choices.Below(3)), 0};
    VARIANT result = {};
    EXCEPINFO exception = {};
    UINT bad = 0;
    CallWith(world, method, target, held, &IDispatch::Invoke, static_cast<DISPID>(choices.Below(8)),
             choices.Chance(8) ? world.Identifier() : IID_NULL, LCID{0}, static_cast<WORD>(choices.Below(16)),
             choices.Chance(6) ? nullptr : &parameters, choices.Chance(16) ? nullptr : &result,
             choices.Chance(16) ? nullptr : &exception, choices.Chance(16) ? nullptr : &bad);
    for (VARIANT& argument : arguments) VariantClear(&argument);
    VariantClear(&result);
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrDescription);
    SysFreeString(exception.bstrHelpFile);
}

#endif

#undef ORLIX_SPECIAL

// Reads every byte, so that memory that is not there any more shows.
void Read(const void* bytes, size_t size) {
    uint8_t sum = 0;
    for (size_t i = 0; i < size; ++i) sum = static_cast<uint8_t>(sum ^ static_cast<const uint8_t*>(bytes)[i]);
    volatile uint8_t sink = sum;
    (void)sink;
}

#define ORLIX_AFTER(I, name)                                                                 \
    template <>                                                                              \
    struct AfterCall<&I::name> {                                                             \
        static constexpr bool kLooks = true;                                                 \
        template <class... Arguments>                                                        \
        static void Look(World& world, I* object, HRESULT result, Arguments&... arguments) { \
            if (result == S_OK) Use(world, object, arguments...);                            \
        }                                                                                    \
        template <class... Arguments>                                                        \
        static void Use(World& world, I* object, Arguments&... arguments);                   \
    };                                                                                       \
    template <class... Arguments>                                                            \
    void AfterCall<&I::name>::Use([[maybe_unused]] World& world, [[maybe_unused]] I* object, \
                                  [[maybe_unused]] Arguments&... arguments)

// Writes pixels: what the library makes of them must not depend on what they were.
ORLIX_AFTER(IImageVPA, VPA) {
    const auto& [band, base, table] = std::tie(arguments...);
    LONG bands = 0, width = 0, height = 0, type = 0;
    ComPtr<IPixelAccess> access;
    if (object->QueryInterface(__uuidof(IPixelAccess), access.OutVoid()) != S_OK || !access ||
        access->Accessible() != S_OK || object->Dimensions(&bands, &width, &height) != S_OK ||
        object->DataType(0, &type) != S_OK || !base.pointer() || !table.pointer())
        return;
    const auto sample = static_cast<size_t>((type & 0x1ff) / 8);
    for (int i = world.choices().Below(8) > 0 ? 6 : 60; i > 0; --i) {
        const LONG x = static_cast<LONG>(world.choices().Below(static_cast<size_t>(width)));
        const LONG y = static_cast<LONG>(world.choices().Below(static_cast<size_t>(height)));
        auto* const pixel = static_cast<uint8_t*>(base.pointer()) +
                            sample * static_cast<size_t>(table.pointer()[x].XEntry + table.pointer()[y].YEntry);
        const auto number = static_cast<float>(world.Double() * 0.5);
        if (type == DT_Float)
            std::memcpy(pixel, &number, sizeof number);
        else
            std::memset(pixel, world.choices().Byte(), sample);
    }
}

ORLIX_AFTER(IHistogram, get_Bins) {
    const auto& [bins] = std::tie(arguments...);
    LONG count = 0;
    if (!bins.pointer() || object->get_NumberOfBins(&count) != S_OK) return;
    Read(bins.pointer(), static_cast<size_t>(count) * sizeof(LONG));
    for (int i = 0; i < 4 && count > 0; ++i)
        bins.pointer()[world.choices().Below(static_cast<size_t>(count))] =
            world.choices().Chance(16) ? world.Long() : static_cast<LONG>(world.choices().Byte());
}

ORLIX_AFTER(IHistogram, get_DetailBins) {
    LONG count = 0;
    const auto& [bins] = std::tie(arguments...);
    if (bins.pointer() && object->get_NumberOfBins(&count) == S_OK)
        Read(bins.pointer(), static_cast<size_t>(count) * sizeof(LONG));
}

ORLIX_AFTER(IHistogram, get_SmoothBins) {
    LONG count = 0;
    const auto& [bins] = std::tie(arguments...);
    if (bins.pointer() && object->get_NumberOfBins(&count) == S_OK)
        Read(bins.pointer(), static_cast<size_t>(count) * sizeof(LONG));
}

// The pixels of a row, not the bytes behind them.
template <class Bitmap, class Pointer>
void UseRow(World& world, Bitmap* object, const Pointer& row, bool write) {
    LONG width = 0;
    if (!row.pointer() || object->get_Width(&width) != S_OK) return;
    const size_t bytes = (static_cast<size_t>(width) + 7) / 8;
    Read(row.pointer(), bytes);
    if (write && bytes) row.pointer()[world.choices().Below(bytes)] = world.choices().Byte();
}

ORLIX_AFTER(IBitmap, GetRowPtr) { UseRow(world, object, std::get<1>(std::tie(arguments...)), false); }
ORLIX_AFTER(IBitmapProcess, GetWriteRowPtr) { UseRow(world, object, std::get<1>(std::tie(arguments...)), true); }

ORLIX_AFTER(IBitmap, get_Bitmap) {
    const auto& [record] = std::tie(arguments...);
    const BITMAP* const bitmap = record.get();
    if (bitmap->bmBits)
        Read(bitmap->bmBits, static_cast<size_t>(bitmap->bmWidthBytes) * static_cast<size_t>(bitmap->bmHeight));
}

ORLIX_AFTER(IPolygon, get_Vertices) {
    LONG count = 0;
    const auto& [vertices] = std::tie(arguments...);
    if (vertices.pointer() && object->get_NumberOfVertices(&count) == S_OK)
        Read(vertices.pointer(), static_cast<size_t>(count) * sizeof(SVertice));
}

ORLIX_AFTER(IStructuringElement, get_Elements) {
    LONG count = 0;
    const auto& [elements] = std::tie(arguments...);
    if (elements.pointer() && object->get_NumberOfElements(&count) == S_OK)
        Read(elements.pointer(), static_cast<size_t>(count) * sizeof(SElement));
}

template <class Begin, class End>
void ReadRange(const Begin& begin, const End& end) {
    if (begin.pointer())
        Read(begin.pointer(), static_cast<size_t>(end.pointer() - begin.pointer()) * sizeof(*begin.pointer()));
}

ORLIX_AFTER(IStructuringElement, get_BinaryElements) {
    const auto& [bit, begin, end] = std::tie(arguments...);
    ReadRange(begin, end);
}

ORLIX_AFTER(IRegionOfInterest, GetRowRuns) {
    const auto& [row, begin, end] = std::tie(arguments...);
    ReadRange(begin, end);
}

ORLIX_AFTER(IPictureEx, CreateHBITMAP) {
    const auto& [context, bitmap] = std::tie(arguments...);
    DeleteBitmap(bitmap.pointer());
}

ORLIX_AFTER(IPictureEx, CreateDIBSection) {
    const auto& [bits, bitmap] = std::tie(arguments...);
    DeleteBitmap(bitmap.pointer());
}

#undef ORLIX_AFTER

#define ORLIX_METHOD(I, name) {#I, #name, &__uuidof(I), &Invoker<&I::name>::Call},
const Method kMethods[] = {
#include "contract_methods.inc"
    ORLIX_METHOD(IPersist, GetClassID) ORLIX_METHOD(IPersistStreamInit, IsDirty) ORLIX_METHOD(IPersistStreamInit, Load)
        ORLIX_METHOD(IPersistStreamInit, Save) ORLIX_METHOD(IPersistStreamInit, GetSizeMax) ORLIX_METHOD(
            IPersistStreamInit, InitNew) ORLIX_METHOD(IConnectionPointContainer, EnumConnectionPoints)
            ORLIX_METHOD(IConnectionPointContainer, FindConnectionPoint) ORLIX_METHOD(
                IConnectionPoint, GetConnectionInterface) ORLIX_METHOD(IConnectionPoint, GetConnectionPointContainer)
                ORLIX_METHOD(IConnectionPoint, Advise) ORLIX_METHOD(IConnectionPoint, Unadvise) ORLIX_METHOD(
                    IConnectionPoint, EnumConnections) ORLIX_METHOD(IEnumConnectionPoints, Next)
                    ORLIX_METHOD(IEnumConnectionPoints, Skip) ORLIX_METHOD(IEnumConnectionPoints, Reset) ORLIX_METHOD(
                        IEnumConnectionPoints, Clone) ORLIX_METHOD(IEnumConnections, Next)
                        ORLIX_METHOD(IEnumConnections, Skip) ORLIX_METHOD(IEnumConnections, Reset) ORLIX_METHOD(
                            IEnumConnections, Clone) ORLIX_METHOD(ISupportErrorInfo, InterfaceSupportsErrorInfo)
                            ORLIX_METHOD(IErrorInfo, GetGUID) ORLIX_METHOD(IErrorInfo, GetSource) ORLIX_METHOD(
                                IErrorInfo, GetDescription) ORLIX_METHOD(IErrorInfo, GetHelpFile)
                                ORLIX_METHOD(IErrorInfo, GetHelpContext) ORLIX_METHOD(IClassFactory, CreateInstance)
                                    ORLIX_METHOD(IClassFactory, LockServer) ORLIX_METHOD(IPixelAccess, Accessible)
#ifdef _WIN32
                                        ORLIX_METHOD(IDispatch, GetTypeInfoCount) ORLIX_METHOD(IDispatch, GetTypeInfo)
                                            ORLIX_METHOD(IDispatch, GetIDsOfNames) ORLIX_METHOD(IDispatch, Invoke)
#endif
};
#undef ORLIX_METHOD

}  // namespace

std::span<const Method> Methods() { return kMethods; }

}  // namespace orlix::fuzz
