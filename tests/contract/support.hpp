// What client tests share: creation of the objects under their registered names, reported texts, images of other
// components.
#pragma once

#include <gtest/gtest.h>

#include <orlix/client.hpp>
#include <orlix/counted_object.hpp>

#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <string>
#include <vector>

namespace orlix::testing {

inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInfinity = std::numeric_limits<double>::infinity();
inline constexpr const char* kImageSource = "Orlix.Image.1";

// Takes the thread's error information: its text, and where it came from. Both empty when there is none.
struct Reported {
    std::string text;
    std::string source;
};
Reported TakeReported();

// The call failed with the result and reported the text in the name of the source.
::testing::AssertionResult Fails(HRESULT result, const std::string& text, const char* source = kImageSource,
                                 HRESULT expected = E_FAIL);
// The call failed with the result and reported nothing.
::testing::AssertionResult FailsSilently(HRESULT result, HRESULT expected = E_FAIL);

ULONG ReferencesOf(IUnknown* object);

// The value of a property.
template <class Object, class I, class Value>
Value Get(const Object& object, HRESULT (STDMETHODCALLTYPE I::*property)(Value*)) {
    Value value;
    std::memset(&value, 0xa5, sizeof value);
    Check((object.get()->*property)(&value), object);
    return value;
}

using PixelTypes = ::testing::Types<uint8_t, uint16_t, uint32_t, float>;
template <class Pixel>
constexpr LONG kTypeOf = 0;
template <>
inline constexpr LONG kTypeOf<uint8_t> = DT_BYTE;
template <>
inline constexpr LONG kTypeOf<uint16_t> = DT_WORD;
template <>
inline constexpr LONG kTypeOf<uint32_t> = DT_DWORD;
template <>
inline constexpr LONG kTypeOf<float> = DT_Float;

// A cleared image.
template <class Pixel>
ComPtr<IImageVPAExPlus> NewImage(LONG width, LONG height, LONG bands = 1) {
    auto image = CreateObject<IImageVPAExPlus>("Orlix.Image");
    Check(image->Create(width, height, bands, kTypeOf<Pixel>, 1), image);
    return image;
}

// An image of one row, or of several: the pixels row by row.
template <class Pixel>
ComPtr<IImageVPAExPlus> ImageOf(LONG width, const std::vector<Pixel>& pixels) {
    auto image = NewImage<Pixel>(width, static_cast<LONG>(pixels.size()) / width);
    size_t i = 0;
    for (const auto row : Rows<Pixel>(image))
        for (Pixel& pixel : row) pixel = pixels[i++];
    return image;
}

template <class Pixel, class I>
std::vector<Pixel> PixelsOf(const ComPtr<I>& image, LONG band = 0) {
    std::vector<Pixel> pixels;
    for (const auto row : Rows<Pixel>(image, band)) pixels.insert(pixels.end(), row.begin(), row.end());
    return pixels;
}

// An image of another component: what each method does can be changed. The sample offsets need not be those of this
// library, see Interleaved().
class ForeignImage final : public CountedObject<IImageVPA> {
public:
    LONG bands = 1, width = 1, height = 1, type = DT_BYTE;
    void* base = nullptr;
    std::vector<VPAEntry> table;  // margin included
    HRESULT dimensionsResult = S_OK, typeResult = S_OK, vpaResult = S_OK, coordsResult = S_OK;
    bool nullTable = false;
    LONG growAfterVpa = 0;  // added to the height once VPA was called
    std::function<void()> onVpa;

    // Offsets of a table of the size, from the given functions of the in-range column and row.
    void SetOffsets(const std::function<LONG(LONG)>& column, const std::function<LONG(LONG)>& row);

    STDMETHODIMP Dimensions(LONG* outBands, LONG* outWidth, LONG* outHeight) noexcept override;
    STDMETHODIMP DataType(LONG, LONG* outType) noexcept override;
    STDMETHODIMP VPA(LONG band, void** outBase, VPAEntry** outTable) noexcept override;
    STDMETHODIMP GetCoords(TCoordinateMap* map) noexcept override;
    STDMETHODIMP SetCoords(TCoordinateMap) noexcept override { return S_OK; }
};

inline SRun RunOf(LONG start, LONG stop) { return {start, stop, 0, nullptr, nullptr, nullptr, nullptr}; }

// A region of another component: a box of rows that all have the same runs. The hooks may call anything.
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

}  // namespace orlix::testing
