// What client tests share: creation of the objects under their registered names, values and reported texts of calls,
// objects of other components.
#pragma once

#include <gtest/gtest.h>

#include <orlix/client.hpp>
#include <orlix/counted_object.hpp>

#include <array>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "support/refusing.hpp"

#include "support/objects.hpp"

namespace orlix::testing {

inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInfinity = std::numeric_limits<double>::infinity();
inline constexpr LONG kLeast = std::numeric_limits<LONG>::min();
inline constexpr LONG kMost = std::numeric_limits<LONG>::max();
inline constexpr const char* kImageSource = "Orlix.Image.1";
inline constexpr HRESULT kClassNotAvailable = static_cast<HRESULT>(0x80040111);
inline constexpr HRESULT kClassNotRegistered = static_cast<HRESULT>(0x80040154);

// -------------------------------------------------------------------------------------------------------------- calls

// Takes the thread's error information. Its text; empty when there is none.
std::string TakeReportedText();

// The call failed with the result and reported the text in the name of the source.
::testing::AssertionResult Fails(HRESULT result, const std::string& text, const char* source = kImageSource,
                                 HRESULT expected = E_FAIL);
// The same with DISP_E_EXCEPTION, the result of some older methods.
::testing::AssertionResult Raises(HRESULT result, const std::string& text, const char* source = kImageSource);
// The call failed with the result and reported nothing.
::testing::AssertionResult FailsSilently(HRESULT result, HRESULT expected = E_FAIL);

// What a method that succeeds writes through its last arguments, after those that are given: the value, an owned
// interface, or a tuple of several values.
template <class Object, class I, class... Parameters, class... Given>
auto Get(const Object& object, HRESULT (STDMETHODCALLTYPE I::*method)(Parameters...), Given... given) {
    constexpr size_t n = sizeof...(Parameters) - sizeof...(Given);
    return [&]<size_t... i>(std::index_sequence<i...>) {
        using All = std::tuple<Parameters...>;
        std::tuple<std::remove_pointer_t<std::tuple_element_t<sizeof...(Given) + i, All>>...> values;
        (std::memset(&std::get<i>(values), 0xa5, sizeof std::get<i>(values)), ...);
        Check((object.get()->*method)(given..., &std::get<i>(values)...), object);
        using First = std::tuple_element_t<0, decltype(values)>;
        if constexpr (n == 1 && std::is_convertible_v<First, IUnknown*>)
            return ComPtr<std::remove_pointer_t<First>>::Attach(std::get<0>(values));
        else if constexpr (n == 1)
            return std::get<0>(values);
        else
            return values;
    }
    (std::make_index_sequence<n>());
}

template <class Object, class I>
std::string TextOf(const Object& object, HRESULT (STDMETHODCALLTYPE I::*property)(BSTR*)) {
    Text text;
    Check((object.get()->*property)(text.Out()), object);
    return static_cast<BSTR>(text) ? text.Utf8() : "(null)";
}

inline std::vector<LONG> Edges(const RECT& r) { return {r.left, r.top, r.right, r.bottom}; }
inline std::vector<double> Entries(const TCoordinateMap& map) {
    return {map.OrgX, map.OrgY, map.Matrix.A11, map.Matrix.A12, map.Matrix.A21, map.Matrix.A22};
}

// ------------------------------------------------------------------------------------------------------------- images

using PixelTypes = ::testing::Types<uint8_t, uint16_t, uint32_t, float>;
template <class Pixel>
constexpr LONG kTypeOf = std::is_same_v<Pixel, uint8_t>    ? DT_BYTE
                         : std::is_same_v<Pixel, uint16_t> ? DT_WORD
                         : std::is_same_v<Pixel, uint32_t> ? DT_DWORD
                                                           : DT_Float;

// An image object by its interfaces.
struct Image : ComPtr<IImageVPAExPlus> {
    ComPtr<IOrlixImageProcess> process;
    ComPtr<IDisplayProcess> display;
    ComPtr<IPictureExZoom> zoom;
    ComPtr<IPictureMemory> memory;
    ComPtr<IImageFile> file;
    ComPtr<IImageEntries> entries;
    ComPtr<IPersistStreamInitEx> persist;

    Image() : Image(CreateObject<IImageVPAExPlus>("Orlix.Image")) {}
    explicit Image(const ComPtr<IImageVPAExPlus>& image);
    std::tuple<LONG, LONG, LONG> size() const { return Get(*this, &IImageVPA::Dimensions); }  // bands, width, height
    std::pair<double, double> LuminanceRange() const;
    std::pair<double, double> DisplayRange() const;
    void SetRegion(const ComPtr<IShapeRegionOfInterest>& region) const {
        Check(process->put_RegionOfInterest(region.get()), process);
    }
};

// The pixels of a band, row by row.
template <class Pixel, class I>
std::vector<Pixel> PixelsOf(const ComPtr<I>& image, LONG band = 0) {
    std::vector<Pixel> pixels;
    for (const auto row : Rows<Pixel>(image, band)) pixels.insert(pixels.end(), row.begin(), row.end());
    return pixels;
}

template <class Pixel>
struct TypedImage : Image {
    using Image::Image;
    std::vector<Pixel> values(LONG band = 0) const { return PixelsOf<Pixel>(*this, band); }
    Pixel at(LONG x, LONG y) const { return Rows<Pixel>(*this)[y][static_cast<size_t>(x)]; }
    // valueAt(x, y) is cast to a pixel.
    template <class Value>
    void Fill(Value&& valueAt, LONG band = 0) const {
        LONG y = 0;
        for (const auto row : Rows<Pixel>(*this, band)) {
            LONG x = 0;
            for (Pixel& pixel : row) pixel = static_cast<Pixel>(valueAt(x++, y));
            ++y;
        }
    }
};

// A cleared image.
template <class Pixel>
TypedImage<Pixel> NewImage(LONG width, LONG height, LONG bands = 1) {
    TypedImage<Pixel> image;
    Check(image->Create(width, height, bands, kTypeOf<Pixel>, 1), image);
    return image;
}

// An image of one row, or of several: the pixels row by row.
template <class Pixel>
TypedImage<Pixel> ImageOf(LONG width, const std::vector<Pixel>& pixels) {
    const auto image = NewImage<Pixel>(width, static_cast<LONG>(pixels.size()) / width);
    image.Fill([&, i = size_t{0}](LONG, LONG) mutable { return pixels[i++]; });
    return image;
}

// ------------------------------------------------------------------------------------------------------ other objects

ComPtr<IShapeRegionOfInterest> NewRegion();
ComPtr<IShapeRegionOfInterest> RectangleOf(LONG width, LONG height, LONG left, LONG top, LONG right, LONG bottom);
ComPtr<IShapeRegionOfInterest> CircleOf(LONG width, LONG height, double x, double y, double radius);

// Cleared. BytesOf has the padding of the rows; RowsOf a character a pixel, '#' for 1, rows separated by '/'.
ComPtr<IBitmapProcess> NewBitmap(LONG width, LONG height);
std::vector<uint8_t> BytesOf(IBitmap* bitmap);
std::string RowsOf(IBitmap* bitmap);

ComPtr<IHistogram> HistogramOf(const std::vector<LONG>& counts, double left, double right);
std::vector<LONG> CountsOf(const ComPtr<IHistogram>& histogram);

// The connection point of an image's events.
template <class I>
ComPtr<IConnectionPoint> PointOf(const ComPtr<I>& image) {
    return Get(Cast<IConnectionPointContainer>(image), &IConnectionPointContainer::FindConnectionPoint,
               __uuidof(IPictureExEvents));
}

// -------------------------------------------------------------------------------------- objects of other components

// What each method does can be changed. The sample offsets need not be those of this library.
class ForeignImage final : public CountedObject<IImageVPA> {
public:
    LONG bands = 1, width = 1, height = 1, type = DT_BYTE;
    void* base = nullptr;
    std::vector<VPAEntry> table;           // margin included
    VPAEntry* otherTable = nullptr;        // entry 0 of one that is handed out instead
    std::function<void()> onVpa, onQuery;  // the latter once

    // The samples row by row without padding.
    static ComPtr<ForeignImage> Of(LONG width, LONG height, LONG type, void* samples);
    // Offsets of a table of the size, from the given functions of the in-range column and row.
    void SetOffsets(const std::function<LONG(LONG)>& column, const std::function<LONG(LONG)>& row);

    STDMETHODIMP QueryInterface(REFIID iid, void** object) noexcept override {
        if (onQuery) std::exchange(onQuery, nullptr)();
        return CountedObject::QueryInterface(iid, object);
    }
    STDMETHODIMP Dimensions(LONG* outBands, LONG* outWidth, LONG* outHeight) noexcept override;
    STDMETHODIMP DataType(LONG, LONG* outType) noexcept override { return *outType = type, S_OK; }
    STDMETHODIMP VPA(LONG band, void** outBase, VPAEntry** outTable) noexcept override;
    STDMETHODIMP GetCoords(TCoordinateMap* map) noexcept override { return *map = {7, 8, {1, 2, 3, 4}}, S_OK; }
    STDMETHODIMP SetCoords(TCoordinateMap) noexcept override { return S_OK; }
};

inline SRun RunOf(LONG start, LONG stop) { return {start, stop, 0, nullptr, nullptr, nullptr, nullptr}; }

// A box of rows that all have the same runs. The hooks may call anything.
class ForeignRegion final : public CountedObject<IRegionOfInterest> {
public:
    RECT box = {0, 0, 3, 2};
    std::vector<SRun> runs;
    HRESULT boxResult = S_OK, runsResult = S_OK;  // the latter of the failing row only
    LONG failingRow = -1;
    std::function<void()> onRuns, onLastRelease;

    STDMETHODIMP get_Width(LONG* width) noexcept override { return *width = box.right + 1, S_OK; }
    STDMETHODIMP get_Height(LONG* height) noexcept override { return *height = box.bottom + 1, S_OK; }
    STDMETHODIMP get_BoundingBox(RECT* outBox) noexcept override { return *outBox = box, boxResult; }
    STDMETHODIMP GetRowRuns(LONG row, SRun** begin, SRun** end) noexcept override;

private:
    void LetGo() noexcept override {
        if (onLastRelease) onLastRelease();
    }
};

// A bitmap with any record.
class ForeignBitmap final : public CountedObject<Refusing<IBitmap>> {
public:
    BITMAP record = {};
    HRESULT result = S_OK;

    STDMETHODIMP get_Bitmap(BITMAP* hVal) noexcept override { return *hVal = record, result; }
};

// A client of an image's events.
class Sink final : public CountedObject<IPictureExEvents> {
public:
    std::function<void(IPictureEx*, void* context, RenderSourceType)> onRender;
    std::function<void()> onAddRef, onLastRelease;  // the first one once
    int calls = 0;

    STDMETHODIMP_(ULONG) AddRef() noexcept override;
    STDMETHODIMP OnRender(IPictureEx* picture, void* context, RenderSourceType type) noexcept override;

private:
    void LetGo() noexcept override {
        if (onLastRelease) onLastRelease();
    }
};

// An object of a client that holds one of this library inside and answers everything through it.
class Holder final : public CountedObject<IUnknown> {
public:
    std::function<void()> onAddRef;  // once

    HRESULT Hold(const CLSID& clsid) {
        return CoCreateInstance(clsid, this, CLSCTX_INPROC_SERVER, __uuidof(IUnknown), inner_.OutVoid());
    }
    STDMETHODIMP QueryInterface(REFIID iid, void** object) noexcept override {
        return iid == __uuidof(IUnknown) ? CountedObject::QueryInterface(iid, object)
                                         : inner_->QueryInterface(iid, object);
    }
    STDMETHODIMP_(ULONG) AddRef() noexcept override;

private:
    void LetGo() noexcept override { inner_ = nullptr; }
    ComPtr<IUnknown> inner_;
};

}  // namespace orlix::testing
