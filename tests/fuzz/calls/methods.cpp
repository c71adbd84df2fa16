// The table of all methods, and the few whose arguments belong together.
#include <algorithm>
#include <array>
#include <cstring>
#include <tuple>
#include <utility>

#include "fuzz/calls/arguments.hpp"
#include "fuzz/calls/heap.hpp"
#include "image/source_image.hpp"

namespace orlix::fuzz {
namespace {

// A call of a method with given arguments.
template <auto Pointer>
class Caller;

template <class I, class... Parameters, HRESULT (STDMETHODCALLTYPE I::*Pointer)(Parameters...)>
class Caller<Pointer> {
public:
    explicit Caller(const Callee& callee) : callee_(callee) {}
    template <class... Arguments>
    HRESULT operator()(Arguments... arguments) const {
        I* const object = static_cast<I*>(callee_.target.get());
        World::Call call(callee_);
        return call.Result((object->*Pointer)(arguments...));
    }

private:
    const Callee& callee_;
};

// What a method hands out is used as a client would use it, while that is allowed: until the object changes.
// Specialised by method.
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
void Tame(const Method&) {}
template <class First, class... Others>
void Tame(const Method& method, First& first, Others&...) {
    constexpr double kLeast = 0.75;
    if constexpr (std::is_same_v<First, Argument<double>>)
        if (std::strstr(method.name, "Robust") && first.get() > 0 && first.get() < kLeast)
            first = Argument<double>(kLeast);
}

template <auto Pointer>
struct Invoker;

template <class I, class... Parameters, HRESULT (STDMETHODCALLTYPE I::*Pointer)(Parameters...)>
struct Invoker<Pointer> {
    static void Call(World& world, const Callee& callee) {
        I* const object = static_cast<I*>(callee.target.get());
        const Caller<Pointer> call(callee);
        if constexpr (Special<Pointer>::kSpecial) {
            Special<Pointer>::Call(world, *object, call);
        } else {
            // Element by element: a tuple makes its elements in an order of its own.
            const auto at = [&]<size_t... K>(std::index_sequence<K...>) {
                std::tuple<std::unique_ptr<Argument<Parameters>>...> arguments;
                ((std::get<K>(arguments) = std::make_unique<Argument<Parameters>>(world)), ...);
                Tame(callee.method, *std::get<K>(arguments)...);
                const HRESULT result = call(std::get<K>(arguments)->get()...);
                if constexpr (AfterCall<Pointer>::kLooks)
                    if (callee.target && result == S_OK)
                        AfterCall<Pointer>::Look(world, object, *std::get<K>(arguments)...);
                (std::get<K>(arguments)->Done(world), ...);
            };
            at(std::index_sequence_for<Parameters...>());
        }
    }
};

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

#define ORLIX_SPECIAL(I, name)                                                              \
    template <>                                                                             \
    struct Special<&I::name> {                                                              \
        static constexpr bool kSpecial = true;                                              \
        static void Call(World& world, I& target, const Caller<&I::name>& call);            \
    };                                                                                      \
    void Special<&I::name>::Call([[maybe_unused]] World& world, [[maybe_unused]] I& target, \
                                 const Caller<&I::name>& call)

ORLIX_SPECIAL(IImageVPAExPlus, Create) {
    const Size size(world);
    call(size.width, size.height, size.bands, size.type, world.choices().Chance(96) ? 0 : 1);
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
    if (honest) buffer = BufferFor(world, target);
    call(buffer, size.width, size.height, size.bands, size.type, world.choices().Chance(96) ? 1 : 0);
}

ORLIX_SPECIAL(IPictureEx, AttachBuffer) {
    const LONG width = 1 + static_cast<LONG>(world.choices().Below(24)), height = world.Long();
    const LONG bits = world.choices().Chance(48) ? world.Long() : world.choices().Chance(128) ? 8 : 16;
    void* const buffer = height <= 24 ? BufferFor(world, target) : HostileAddress(world.choices().Byte());
    call(buffer, width, height, bits);
}

Argument<BSTR> FileName(World& world) {
    const auto name = world.FileName();
    if (world.choices().Chance(4)) return Argument<BSTR>(nullptr);
    return Argument<BSTR>(SysAllocStringLen(name.data(), static_cast<UINT>(name.size())));
}

ORLIX_SPECIAL(IImageVPAExPlus, CreateFromFile) { call(FileName(world).get()); }

ORLIX_SPECIAL(IImageFile, LoadFromFile) {
    const Argument<BSTR> name = FileName(world);
    call(name.get(), world.choices().Chance(32) ? world.Long() : 0);
}

ORLIX_SPECIAL(IImageFile, GetNumberOfPages) {
    const Argument<BSTR> name = FileName(world);
    Argument<LONG*> pages(world);
    call(name.get(), pages.get());
}

ORLIX_SPECIAL(IVBHelper, OpenFileStream) {
    const Argument<BSTR> name = FileName(world);
    const Argument<FileStreamMode> mode(world);
    Argument<IUnknown**> stream(world);
    call(name.get(), mode.get(), stream.get());
    stream.Done(world);
}

ORLIX_SPECIAL(IVBHelper, MeasureFile) {
    const Argument<BSTR> name = FileName(world);
    const Argument<AutoThresholdType> threshold(world);
    Argument<SFileMeasurements*> measurements(world);
    call(name.get(), threshold.get(), world.Long(), world.choices().Chance(32) ? world.Long() : 0, measurements.get());
}

// The dialog would wait for somebody.
ORLIX_SPECIAL(IVBHelper, BrowseForFolder) { call(nullptr, nullptr, nullptr); }

ORLIX_SPECIAL(IImageFile, SaveToFile) {
    const Argument<BSTR> name = FileName(world);
    call(name.get(), Argument<ImageFileFormat>(world).get());
}

// A bitmap behind a header of 40 bytes, which may say something else than what is there.
void FillBitmap(World& world, std::span<uint8_t> memory) {
    Choices& choices = world.choices();
    constexpr uint8_t kDepths[] = {1, 4, 8, 16, 24, 32};
    constexpr size_t kFields[] = {0, 4, 8, 14, 16, 32};
    for (uint8_t& byte : memory) byte = static_cast<uint8_t>(&byte - memory.data());
    std::fill_n(memory.begin(), 40, uint8_t{0});
    memory[0] = 40;
    memory[4] = static_cast<uint8_t>(1 + choices.Below(24));
    memory[8] = static_cast<uint8_t>(1 + choices.Below(24));
    if (choices.Chance(96)) {  // top-down
        memory[8] = static_cast<uint8_t>(-memory[8]);
        memory[9] = memory[10] = memory[11] = 0xFF;
    }
    memory[12] = 1;
    memory[14] = kDepths[choices.Below(std::size(kDepths))];
    memory[16] = static_cast<uint8_t>(choices.Chance(96) ? choices.Below(4) : 0);
    if (choices.Chance(24)) memory[kFields[choices.Below(std::size(kFields))]] = choices.Byte();
}
constexpr size_t kBitmapSize = 40 + 1024 + 24 * 24 * 4;

ORLIX_SPECIAL(IDIBImage, Create) {
    const Size size(world);
    constexpr LONG kDepths[] = {1, 4, 8, 16, 24, 32};
    const LONG bits = world.choices().Chance(16) ? world.Long() : kDepths[world.choices().Below(std::size(kDepths))];
    call(size.width, world.choices().Chance(96) && size.height > 0 ? -size.height : size.height, bits);
}

ORLIX_SPECIAL(IDIBImage, Attach) {
    if (world.choices().Chance(24)) {
        void* const header = HostileAddress(world.choices().Byte());
        call(header, HostileAddress(world.choices().Byte()));
        return;
    }
    const std::span<uint8_t> memory = world.Memory(2 * kBitmapSize);
    FillBitmap(world, memory.first(kBitmapSize));
    void* bits = world.choices().Chance(128) ? nullptr : memory.data() + kBitmapSize;
    if (world.choices().Chance(16)) bits = HostileAddress(world.choices().Byte());
    call(memory.data(), bits);
}

ORLIX_SPECIAL(IDIBImage, GetPacked) {
    const LONG header = world.choices().Chance(16) ? world.Long() : world.choices().Chance(128) ? 40 : 124;
    const LONG size = std::min(world.choices().Chance(32) ? world.Long() : LONG{2 * kBitmapSize}, LONG{1} << 20);
    Bytes bytes(static_cast<size_t>(std::max(size, LONG{1})));
    LONG needed = 0;
    call(header, size, world.choices().Chance(6) ? nullptr : bytes.data(),
         world.choices().Chance(6) ? nullptr : &needed);
}

ORLIX_SPECIAL(IDIBImage, PutPacked) {
    Bytes bytes(world.choices().Chance(128) ? kBitmapSize : 40 + 4 * world.choices().Below(100));
    FillBitmap(world, bytes);
    const LONG size = world.choices().Chance(6) ? -1 - world.choices().Byte() : static_cast<LONG>(bytes.size());
    call(size, world.choices().Chance(6) ? nullptr : bytes.data());
}

ORLIX_SPECIAL(IDIBImage, LoadFromFile) { call(FileName(world).get()); }

ORLIX_SPECIAL(IDIBImage, SaveToFile) { call(FileName(world).get()); }

ORLIX_SPECIAL(IImageEntries, ReadBinaryEntry) {
    const LONG index = world.Long(), offset = world.Long(), size = world.Long();
    // The caller's memory is as large as the size says, except for sizes that no entry has.
    Bytes bytes(static_cast<size_t>(size > 0 && size < 100000 ? size : 1));
    call(index, offset, size, world.choices().Chance(6) ? nullptr : bytes.data());
}

ORLIX_SPECIAL(IImageEntries, PutBinaryEntry) {
    const Argument<BSTR> keyword(world);
    const LONG size = world.Long();
    if (size >= 100000) return;
    Bytes bytes(static_cast<size_t>(size > 0 ? size : 0), world.choices().Byte());
    call(keyword.get(), size, world.choices().Chance(6) ? nullptr : bytes.data());
}

// The system gives bins as they are touched: billions of them cost nothing here, and seconds in each method after it.
ORLIX_SPECIAL(IHistogram, Create) {
    const LONG bins = std::min(world.Long(), LONG{70000});
    const double left = world.Double(), right = world.Double();
    call(bins, left, right);
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
    call(count, world.choices().Chance(6) ? nullptr : vertices.data());
}

ORLIX_SPECIAL(IBitmapProcess, ApplyTable) {
    std::vector<unsigned char> table(512);
    for (unsigned char& entry : table) entry = world.choices().Byte() & 1;
    LONG passes = 0;
    call(world.choices().Chance(6) ? nullptr : table.data(), world.Long(),
         world.choices().Chance(6) ? nullptr : &passes);
}

// Memory for what a method of blobs writes, and not for what it must refuse.
template <class Record>
std::vector<Record> RecordsOf(IBlobs& blobs, LONG count) {
    LONG existing = 0;
    blobs.get_Count(&existing);
    return std::vector<Record>(static_cast<size_t>(std::clamp(count, LONG{0}, existing)));
}

struct BlobRange {
    explicit BlobRange(World& world)
        : first(world.choices().Chance(32) ? world.Long() : static_cast<LONG>(world.choices().Below(4))),
          count(world.choices().Chance(32) ? world.Long() : static_cast<LONG>(world.choices().Below(8))) {}
    LONG first, count;
};

ORLIX_SPECIAL(IBlobs, GetBinaryMeasurements) {
    const BlobRange range(world);
    auto records = RecordsOf<SBinaryMeasurements>(target, range.count);
    call(world.Long(), range.first, range.count, records.data());
}

ORLIX_SPECIAL(IBlobs, GetGrayMeasurements) {
    const BlobRange range(world);
    auto records = RecordsOf<SBlobGrayMeasurements>(target, range.count);
    call(range.first, range.count, records.data());
}

ORLIX_SPECIAL(IBlobs, GetValues) {
    const BlobRange range(world);
    auto values = RecordsOf<double>(target, range.count);
    call(static_cast<SingleMeasurementType>(world.choices().Below(120)), range.first, range.count, values.data());
}

ORLIX_SPECIAL(IBlobs, GetLevelMeasurements) {
    const BlobRange range(world);
    auto records = RecordsOf<SLevelMeasurements>(target, range.count);
    Argument<IImageVPA*> image(world);
    const LONG band = world.Long();
    const double level = world.Double();
    call(image.get(), band, level, range.first, range.count, records.data());
}

ORLIX_SPECIAL(IConnectionPoint, Unadvise) {
    const auto cookie = static_cast<DWORD>(world.choices().Chance(16) ? world.Long() : world.choices().Below(8));
    call(cookie);
}

ORLIX_SPECIAL(IEnumConnectionPoints, Next) {
    std::vector<IConnectionPoint*> points(world.choices().Below(5));
    ULONG fetched = 0;
    call(static_cast<ULONG>(points.size()), points.data(), world.choices().Chance(16) ? nullptr : &fetched);
    for (IConnectionPoint* const point : points)
        if (point) world.Adopt(__uuidof(IConnectionPoint), point);
}

ORLIX_SPECIAL(IEnumConnections, Next) {
    std::vector<CONNECTDATA> connections(world.choices().Below(5));
    ULONG fetched = 0;
    call(static_cast<ULONG>(connections.size()), connections.data(), world.choices().Chance(16) ? nullptr : &fetched);
    for (const CONNECTDATA& connection : connections)
        if (connection.pUnk) world.Adopt(__uuidof(IPictureExEvents), connection.pUnk);
}

// Too many locks would outlive the sequence: each is taken back.
ORLIX_SPECIAL(IClassFactory, LockServer) {
    if (call(TRUE) == S_OK) call(FALSE);
}

ORLIX_SPECIAL(IClassFactory, CreateInstance) {
    void* made = nullptr;
    const IID& iid = world.Identifier();
    call(static_cast<IUnknown*>(nullptr), iid, world.choices().Chance(6) ? nullptr : &made);
    if (made) world.Adopt(iid, static_cast<IUnknown*>(made));
}

#ifdef _WIN32

ORLIX_SPECIAL(IDispatch, GetIDsOfNames) {
    OLECHAR known[] = L"zoomFACTOR", unknown[] = L"none";
    LPOLESTR names[] = {world.choices().Chance(128) ? known : unknown, world.choices().Chance(16) ? nullptr : unknown};
    DISPID ids[2] = {};
    call(world.choices().Chance(8) ? world.Identifier() : IID_NULL, world.choices().Chance(6) ? nullptr : names,
         static_cast<UINT>(world.choices().Below(3)), LCID{0}, world.choices().Chance(6) ? nullptr : ids);
}

ORLIX_SPECIAL(IDispatch, Invoke) {
    Choices& choices = world.choices();
    VARIANT arguments[2] = {};
    for (VARIANT& argument : arguments) {
        constexpr VARTYPE kTypes[] = {VT_R8, VT_I4, VT_BSTR, VT_DISPATCH, VT_ERROR, VT_EMPTY};
        argument.vt = kTypes[choices.Below(std::size(kTypes))];
        if (argument.vt == VT_R8) argument.dblVal = world.Double();
        if (argument.vt == VT_I4 || argument.vt == VT_ERROR) argument.lVal = world.Long();
        if (argument.vt == VT_BSTR) argument.bstrVal = SysAllocString(choices.Chance(128) ? L"2.5" : L"none");
        if (argument.vt == VT_DISPATCH) argument.pdispVal = ComPtr<IDispatch>(&target).Detach();
    }
    DISPPARAMS parameters = {arguments, nullptr, static_cast<UINT>(choices.Below(3)), 0};
    VARIANT result = {};
    EXCEPINFO exception = {};
    UINT bad = 0;
    call(static_cast<DISPID>(choices.Below(8)), choices.Chance(8) ? world.Identifier() : IID_NULL, LCID{0},
         static_cast<WORD>(choices.Below(16)), choices.Chance(6) ? nullptr : &parameters,
         choices.Chance(16) ? nullptr : &result, choices.Chance(16) ? nullptr : &exception,
         choices.Chance(16) ? nullptr : &bad);
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

#define ORLIX_AFTER(I, name, ...)                               \
    template <>                                                 \
    struct AfterCall<&I::name> {                                \
        static constexpr bool kLooks = true;                    \
        static void Look(World& world, I* object, __VA_ARGS__); \
    };                                                          \
    void AfterCall<&I::name>::Look([[maybe_unused]] World& world, [[maybe_unused]] I* object, __VA_ARGS__)

// Writes pixels: what the library makes of them must not depend on what they were.
ORLIX_AFTER(IImageVPA, VPA, const auto&, const auto& base, const auto& table) {
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

// Reads as many elements as the object says that there are; returns their number.
template <class Object, class I, class Pointer>
size_t ReadAll(Object* object, HRESULT (STDMETHODCALLTYPE I::*number)(LONG*), const Pointer& elements) {
    LONG count = 0;
    if (!elements.pointer() || (object->*number)(&count) != S_OK) return 0;
    Read(elements.pointer(), static_cast<size_t>(count) * sizeof *elements.pointer());
    return static_cast<size_t>(count);
}

ORLIX_AFTER(IDIBImage, GetBits, const auto& bits, const auto& stride) {
    LONG width = 0, height = 0, depth = 0;
    if (!bits.pointer() || !stride.get() || object->GetFormat(&width, &height, &depth) != S_OK) return;
    const size_t row = (static_cast<size_t>(width) * static_cast<size_t>(depth) + 7) / 8;
    const size_t rows = static_cast<size_t>(height < 0 ? -height : height);
    const size_t size = static_cast<size_t>(*stride.get()) * (rows - 1) + row;
    Read(bits.pointer(), size);
    static_cast<uint8_t*>(bits.pointer())[world.choices().Below(size)] = world.choices().Byte();
}

ORLIX_AFTER(IHistogram, get_Bins, const auto& bins) {
    const size_t count = ReadAll(object, &IHistogram::get_NumberOfBins, bins);
    for (int i = 0; i < 4 && count > 0; ++i)
        bins.pointer()[world.choices().Below(count)] =
            world.choices().Chance(16) ? world.Long() : static_cast<LONG>(world.choices().Byte());
}
ORLIX_AFTER(IHistogram, get_DetailBins, const auto& bins) { ReadAll(object, &IHistogram::get_NumberOfBins, bins); }
ORLIX_AFTER(IHistogram, get_SmoothBins, const auto& bins) { ReadAll(object, &IHistogram::get_NumberOfBins, bins); }
ORLIX_AFTER(IPolygon, get_Vertices, const auto& vertices) {
    ReadAll(object, &IPolygon::get_NumberOfVertices, vertices);
}
ORLIX_AFTER(IStructuringElement, get_Elements, const auto& elements) {
    ReadAll(object, &IStructuringElement::get_NumberOfElements, elements);
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

ORLIX_AFTER(IBitmap, GetRowPtr, const auto&, const auto& row) { UseRow(world, object, row, false); }
ORLIX_AFTER(IBitmapProcess, GetWriteRowPtr, const auto&, const auto& row) { UseRow(world, object, row, true); }

ORLIX_AFTER(IBitmap, get_Bitmap, const auto& record) {
    const BITMAP* const bitmap = record.get();
    if (bitmap->bmBits)
        Read(bitmap->bmBits, static_cast<size_t>(bitmap->bmWidthBytes) * static_cast<size_t>(bitmap->bmHeight));
}

template <class Begin, class End>
void ReadRange(const Begin& begin, const End& end) {
    if (begin.pointer())
        Read(begin.pointer(), static_cast<size_t>(end.pointer() - begin.pointer()) * sizeof(*begin.pointer()));
}
ORLIX_AFTER(IStructuringElement, get_BinaryElements, const auto&, const auto& begin, const auto& end) {
    ReadRange(begin, end);
}
ORLIX_AFTER(IRegionOfInterest, GetRowRuns, const auto&, const auto& begin, const auto& end) { ReadRange(begin, end); }

ORLIX_AFTER(IPictureEx, CreateHBITMAP, const auto&, const auto& bitmap) { DeleteBitmap(bitmap.pointer()); }
ORLIX_AFTER(IPictureEx, CreateDIBSection, const auto&, const auto& bitmap) { DeleteBitmap(bitmap.pointer()); }

#undef ORLIX_AFTER

#define ORLIX_METHOD(I, name) {#I, #name, &__uuidof(I), &Invoker<&I::name>::Call},
const Method kMethods[] = {
#include "contract_methods.inc"
    ORLIX_METHOD(IPixelAccess, Accessible)};
#undef ORLIX_METHOD

}  // namespace

std::span<const Method> Methods() { return kMethods; }

}  // namespace orlix::fuzz
