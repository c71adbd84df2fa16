// For clients in C++: create objects, call them, get failures as exceptions, walk over pixels.
//
//     using namespace orlix;
//     const Apartment apartment;
//     auto image = CreateObject<IImageVPAExPlus>("Orlix.Image");
//     Check(image->CreateFromFile(Text("surface.png")), image);
//     auto histogram = Call(Cast<IImageProcess>(image), &IImageProcess::get_Histogram);
//     double threshold = Call(histogram, &IHistogram::AutoThresholdMinimizeVariance, 0, 0);
//
// Strings are UTF-8 here and UTF-16 (BSTR) in the interfaces; Text (orlix/text.hpp) converts. Regions, event sinks and
// streams of your own derive from CountedObject (orlix/counted_object.hpp).
#ifndef ORLIX_CLIENT_HPP
#define ORLIX_CLIENT_HPP

// GCC 10 reports 201709 for its part of C++20.
#if __cplusplus < 201709L && !(defined(_MSVC_LANG) && _MSVC_LANG >= 202002L)
#error "orlix/client.hpp needs C++20: compile with -std=c++20, or link with orlix::orlix in CMake, which asks for it."
#endif

#include <orlix/orlix.h>
#include <orlix/com_ptr.hpp>
#include <orlix/text.hpp>

#ifdef _WIN32
#include <shlwapi.h>
#endif

#include <cstdint>
#include <iterator>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

namespace orlix {

// ------------------------------------------------------------------------------------------------------------ failures

// A failed call: its result, and the text and source (ProgID) that the object reported, both empty without a report.
// what() is the text or, without one, `subject` and the name of the result:
//     "Orlix.ImageView.1: CLASS_E_CLASSNOTAVAILABLE (the class is not built)"
class Error : public std::runtime_error {
public:
    Error(HRESULT result, const std::string& message, std::string source, std::string_view subject = {});
    HRESULT result() const noexcept { return result_; }
    const std::string& message() const noexcept { return message_; }
    const std::string& source() const noexcept { return source_; }

private:
    HRESULT result_;
    std::string message_;
    std::string source_;
};

// "E_POINTER (a null pointer was given)", or "result 0x80070020" for a result without a name here.
std::string Describe(HRESULT result);

[[noreturn]] void ThrowError(HRESULT result, IUnknown* object, REFIID iid);

// Returns S_OK and S_FALSE, throws Error for a failure. Pass the object that was called: if it says that it reports
// errors for the interface, the Error has the text that it reported.
inline HRESULT Check(HRESULT result) {
    if (FAILED(result)) ThrowError(result, nullptr, GUID_NULL);
    return result;
}
template <class I>
HRESULT Check(HRESULT result, const ComPtr<I>& object) {
    if (FAILED(result)) ThrowError(result, object.get(), __uuidof(I));
    return result;
}

// --------------------------------------------------------------------------------------------------------------- calls

namespace implementation {
// What a method writes to, and hands over: numbers and records as they are, interfaces and strings with their owner.
template <class T>
struct Output {
    T value{};
    T* Out() noexcept { return &value; }
};
template <class T>
requires std::is_convertible_v<T, IUnknown*>
struct Output<T> {
    ComPtr<std::remove_pointer_t<T>> value;
    T* Out() noexcept { return value.Out(); }
};
template <>
struct Output<BSTR> {
    Text value;
    BSTR* Out() noexcept { return value.Out(); }
};

template <class T>
const T& Argument(const T& argument) noexcept {
    return argument;
}
template <class I>
I* Argument(const ComPtr<I>& object) noexcept {
    return object.get();
}

template <class... Outputs, class Invoke>
auto OutputsOf(const Invoke& invoke) {
    std::tuple<Outputs...> outputs;
    std::apply([&](Outputs&... each) { invoke(each.Out()...); }, outputs);
    if constexpr (sizeof...(Outputs) == 1)
        return std::move(std::get<0>(outputs).value);
    else
        return std::apply([](Outputs&... each) { return std::tuple(std::move(each.value)...); }, outputs);
}
template <class All, size_t given, size_t... i>
auto CallWith(const auto& invoke, std::index_sequence<i...>) {
    return OutputsOf<Output<std::remove_pointer_t<std::tuple_element_t<given + i, All>>>...>(invoke);
}
}  // namespace implementation

// Calls a method with its first arguments, and returns what it writes through the others: a number or record, a ComPtr
// for an interface, a Text for a string, a std::tuple of several. Throws Error when the method fails, and for
// a null object.
//
//     auto blobs = Call(bitmap, &IBitmapProcess::FindBlobs, CT_8);
//     auto [bands, width, height] = Call(image, &IImageVPA::Dimensions);
template <class Object, class I, class... Parameters, class... Arguments>
auto Call(const ComPtr<Object>& object, HRESULT (STDMETHODCALLTYPE I::*method)(Parameters...),
          const Arguments&... arguments) {
    static_assert(sizeof...(Arguments) < sizeof...(Parameters), "nothing is left to be returned: Check(object->...)");
    if (!object) throw Error(E_POINTER, {}, {}, NameOf<Object>());
    constexpr size_t given = sizeof...(Arguments), written = sizeof...(Parameters) - given;
    return implementation::CallWith<std::tuple<Parameters...>, given>(
        [&](auto*... outputs) {
            Check((object.get()->*method)(implementation::Argument(arguments)..., outputs...), object);
        },
        std::make_index_sequence<written>());
}

// ------------------------------------------------------------------------------------------------------------ creation

// Puts the thread into an apartment of the component runtime for its lifetime (Windows); does nothing elsewhere.
class Apartment {
public:
#ifdef _WIN32
    Apartment() { Check(CoInitialize(nullptr)); }
    ~Apartment() { CoUninitialize(); }
#else
    Apartment() noexcept {}
    ~Apartment() {}
#endif
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
};

CLSID ClassOf(std::string_view progId);  // throws Error when no class has that name
std::string NameOf(const CLSID& clsid);  // its ProgID, or the identifier itself

template <class I>
ComPtr<I> CreateObject(const CLSID& clsid) {
    ComPtr<I> object;
    const HRESULT result = CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, __uuidof(I), object.OutVoid());
    if (FAILED(result)) throw Error(result, {}, {}, NameOf(clsid));
    return object;
}
template <class I>
ComPtr<I> CreateObject(std::string_view progId) {
    return CreateObject<I>(ClassOf(progId));
}

// Another interface of the same object; throws Error when the object does not have it.
template <class I, class From>
ComPtr<I> Cast(const ComPtr<From>& object) {
    ComPtr<I> other;
    const HRESULT result = object ? object->QueryInterface(__uuidof(I), other.OutVoid()) : E_POINTER;
    if (FAILED(result)) throw Error(result, {}, {}, NameOf<I>());
    return other;
}

// ------------------------------------------------------------------------------------------------------------- streams

// Streams for the image's IPersistStreamInit, on every system. Paths are UTF-8. They throw Error if opening fails.
//
//     Check(Cast<IPersistStreamInit>(image)->Save(CreateFileStream("image.orlix").get(), TRUE));
//     Check(Cast<IPersistStreamInit>(other)->Load(OpenFileStream("image.orlix").get()));

ComPtr<IStream> OpenFileStream(std::string_view path);    // an existing file, for reading
ComPtr<IStream> CreateFileStream(std::string_view path);  // a new file, or an old one emptied, for reading and writing
ComPtr<IStream> CreateMemoryStream();                     // empty
void SeekStart(const ComPtr<IStream>& stream);

// -------------------------------------------------------------------------------------------------------------- pixels

// The rows of one band, for images with adjacent columns (all images that this library makes):
//
//     for (std::span<uint8_t> row : Rows<uint8_t>(image, 0))
//         for (uint8_t& pixel : row) ...
//
// The image must hold pixels of the given size and must not change while its rows are in use.
template <class Pixel>
class Rows {
public:
    template <class I>
    explicit Rows(const ComPtr<I>& image, LONG band = 0) {
        LONG bands = 0;
        LONG type = 0;
        Check(image->Dimensions(&bands, &width_, &height_), image);
        Check(image->DataType(band, &type), image);
        void* base = nullptr;
        if (Check(image->VPA(band, &base, &table_), image) != S_OK) height_ = 0;
        base_ = static_cast<Pixel*>(base);
        if (static_cast<size_t>((type & 0x1ff) / 8) != sizeof(Pixel))
            throw Error(E_INVALIDARG, "Rows: the image has another pixel type.", {});
    }

    LONG width() const { return width_; }
    LONG height() const { return height_; }
    std::span<Pixel> operator[](LONG y) const {
        return {base_ + table_[0].XEntry + table_[y].YEntry, static_cast<size_t>(width_)};
    }

    class Iterator {
    public:
        using difference_type = std::ptrdiff_t;
        using value_type = std::span<Pixel>;
        Iterator() = default;
        Iterator(const Rows* rows, LONG y) : rows_(rows), y_(y) {}
        std::span<Pixel> operator*() const { return (*rows_)[y_]; }
        Iterator& operator++() {
            ++y_;
            return *this;
        }
        Iterator operator++(int) {
            const Iterator old = *this;
            ++y_;
            return old;
        }
        bool operator==(const Iterator& other) const { return y_ == other.y_; }

    private:
        const Rows* rows_ = nullptr;
        LONG y_ = 0;
    };
    Iterator begin() const { return {this, 0}; }
    Iterator end() const { return {this, height_}; }

private:
    Pixel* base_ = nullptr;
    VPAEntry* table_ = nullptr;
    LONG width_ = 0;
    LONG height_ = 0;
};

// ------------------------------------------------------------------------------------------------------ implementation

inline std::string Describe(HRESULT result) {
    static constexpr struct {
        uint32_t result;
        const char* meaning;
    } known[] = {{0x80004001, "E_NOTIMPL (not built, or not on this system)"},
                 {0x80004002, "E_NOINTERFACE (the object does not have this interface)"},
                 {0x80004003, "E_POINTER (a null pointer was given)"},
                 {0x80004005, "E_FAIL (failed without a reason)"},
                 {0x8000ffff, "E_UNEXPECTED (not in this state)"},
                 {0x80070002, "file not found"},
                 {0x80070003, "path not found"},
                 {0x80070005, "E_ACCESSDENIED (access denied)"},
                 {0x8007000e, "E_OUTOFMEMORY (out of memory)"},
                 {0x80070057, "E_INVALIDARG (an argument is out of range)"},
                 {0x80020009, "DISP_E_EXCEPTION (failed without a reason)"},
                 {0x80030002, "STG_E_FILENOTFOUND (file not found)"},
                 {0x80030003, "STG_E_PATHNOTFOUND (path not found)"},
                 {0x80030005, "STG_E_ACCESSDENIED (access denied)"},
                 {0x8003001d, "STG_E_WRITEFAULT (writing failed)"},
                 {0x8003001e, "STG_E_READFAULT (reading failed)"},
                 {0x80030070, "STG_E_MEDIUMFULL (no space left)"},
                 {0x80030103, "STG_E_CANTSAVE (not all was written)"},
                 {0x80040110, "CLASS_E_NOAGGREGATION (cannot be part of another object this way)"},
                 {0x80040111, "CLASS_E_CLASSNOTAVAILABLE (the class is not built)"},
                 {0x80040154, "REGDB_E_CLASSNOTREG (the class is not registered)"},
                 {0x800401f0, "CO_E_NOTINITIALIZED (the thread has no apartment, see Apartment)"},
                 {0x800401f3, "CO_E_CLASSSTRING (no class of this name is registered)"}};
    for (const auto& [code, meaning] : known)
        if (code == static_cast<uint32_t>(result)) return meaning;
    std::string text = "result 0x";
    for (int shift = 28; shift >= 0; shift -= 4)
        text += "0123456789abcdef"[(static_cast<uint32_t>(result) >> shift) & 15];
    return text;
}

inline Error::Error(HRESULT result, const std::string& message, std::string source, std::string_view subject)
    : std::runtime_error(!message.empty()  ? message
                         : subject.empty() ? Describe(result)
                                           : std::string(subject) + ": " + Describe(result)),
      result_(result),
      message_(message),
      source_(std::move(source)) {}

inline void ThrowError(HRESULT result, IUnknown* object, REFIID iid) {
    Text message;
    Text source;
    ComPtr<ISupportErrorInfo> support;
    if (object && SUCCEEDED(object->QueryInterface(__uuidof(ISupportErrorInfo), support.OutVoid())) &&
        support->InterfaceSupportsErrorInfo(iid) == S_OK) {
        ComPtr<IErrorInfo> info;
        if (GetErrorInfo(0, info.Out()) == S_OK) {
            info->GetDescription(message.Out());
            info->GetSource(source.Out());
        }
    }
    throw Error(result, message.Utf8(), source.Utf8());
}

inline ComPtr<IStream> OpenFileStream(std::string_view path) {
    ComPtr<IStream> stream;
    Check(SHCreateStreamOnFileEx(ToUtf16(path).c_str(), STGM_READ | STGM_SHARE_DENY_WRITE, 0, FALSE, nullptr,
                                 stream.Out()));
    return stream;
}

inline ComPtr<IStream> CreateFileStream(std::string_view path) {
    ComPtr<IStream> stream;
    constexpr DWORD kNormalFile = 0x80;
    Check(SHCreateStreamOnFileEx(ToUtf16(path).c_str(), STGM_READWRITE | STGM_CREATE | STGM_SHARE_EXCLUSIVE,
                                 kNormalFile, TRUE, nullptr, stream.Out()));
    return stream;
}

inline ComPtr<IStream> CreateMemoryStream() {
    ComPtr<IStream> stream;
    Check(CreateStreamOnHGlobal(nullptr, TRUE, stream.Out()));
    return stream;
}

inline void SeekStart(const ComPtr<IStream>& stream) {
    LARGE_INTEGER start = {};
    Check(stream->Seek(start, STREAM_SEEK_SET, nullptr));
}

inline CLSID ClassOf(std::string_view progId) {
    CLSID clsid = {};
    const HRESULT result = CLSIDFromProgID(ToUtf16(progId).c_str(), &clsid);
    if (FAILED(result)) throw Error(result, "no class is registered as " + std::string(progId), {});
    return clsid;
}

inline std::string NameOf(const CLSID& clsid) {
    LPOLESTR name = nullptr;
    if (SUCCEEDED(ProgIDFromCLSID(clsid, &name))) {
        const std::string progId = ToUtf8(name);
        CoTaskMemFree(name);
        return progId;
    }
    OLECHAR text[39] = {};
    StringFromGUID2(clsid, text, 39);
    return ToUtf8(text);
}

}  // namespace orlix

#endif
